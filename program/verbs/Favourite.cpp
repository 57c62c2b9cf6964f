// The verb favourite: voices that are favourites, or no longer.

#include <fmt/format.h>

#include "ChangeRun.h"
#include "verbs/Verbs.h"

namespace Editor {

void favourite(const Words& words, const ChangeOptions& options, Program& program) {
  const std::string value = words.empty() ? "" : words.back();
  if (words.size() < 2 || (value != "on" && value != "off"))
    throw Failure(kWrongUsage, "expected an address, and on or off");
  const Words joined = joinAddresses(Words(words.begin(), words.end() - 1));
  if (joined.size() != 1) throw Failure(kWrongUsage, "expected one address");
  const Target target = parseContent(joined.front());
  if (!canBeFavourite(target.content))
    refuse(target, "only preset, GM and user voices and drum voices can be favourites");
  program.requireLibrary(kRefused);
  ChangeRun run(program, {"favourite"}, options);
  Library& library = run.library();
  const bool isOn = library.favourite(target.content) != 0;
  if (!isOn && !library.contentName(target.content)) refuse(target, "nothing is stored there");
  if (isOn != (value == "on")) library.setFavourite(target.content, value == "on" ? 1 : 0);
  run.keep();
}

}  // namespace Editor
