// The verb favourite: voices that are favourites, or no longer.

#include <fmt/format.h>

#include "ChangeRun.h"
#include "midi/Counted.h"
#include "targets/TargetChanges.h"
#include "verbs/Verbs.h"

namespace Editor {

void favourite(const Words& words, const ChangeOptions& options, Program& program) {
  const std::string value = words.empty() ? "" : words.back();
  if (words.size() < 2 || (value != "on" && value != "off"))
    throw Failure(kWrongUsage, "expected addresses, and on or off");
  std::vector<Places<Target>> asked;
  for (const std::string& word : joinAddresses(Words(words.begin(), words.end() - 1)))
    asked.push_back(parseContents(word));
  for (const Places<Target>& places : asked) requireFlags(places);
  program.requireLibrary(kRefused);
  ChangeRun run(program, {"favourite"}, options);
  for (const Places<Target>& places : asked)
    if (const std::size_t leftOut = setFavourites(run.library(), places, value == "on"); leftOut > 0)
      program.console.note(fmt::format("{}: {} nothing and {} no flag", places.name,
                                       counted(leftOut, "place holds", "places hold"), leftOut == 1 ? "has" : "have"));
  run.keep();
}

}  // namespace Editor
