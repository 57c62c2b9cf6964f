// The verb favourite: voices that are favourites, or no longer.

#include <fmt/format.h>

#include "ChangeRun.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// False: neither a voice nor a flag is there.
bool setFlag(Library& library, ContentId id, bool isOn) {
  const std::optional<std::uint8_t> flag = library.flag(id);
  if (flag == 0 && !library.contentName(id)) return false;
  const bool isSo = flag && (*flag != 0) == isOn;
  if (!isSo) library.setFavourite(id, isOn ? 1 : 0);
  return true;
}

// Of a bank or a range empty places are left out.
void setFlags(Library& library, const Places<Target>& places, bool isOn, Console& console) {
  std::size_t leftOut = 0;
  for (const Target& target : places.list)
    if (!setFlag(library, target.content, isOn)) ++leftOut;
  if (leftOut == places.list.size())
    throw Failure(kRefused, fmt::format("{}: nothing is stored there", escape(places.name)));
  if (leftOut > 0)
    console.note(fmt::format("{}: {} nothing and {} no flag", places.name,
                             counted(leftOut, "place holds", "places hold"), leftOut == 1 ? "has" : "have"));
}

}  // namespace

void favourite(const Words& words, const ChangeOptions& options, Program& program) {
  const std::string value = words.empty() ? "" : words.back();
  if (words.size() < 2 || (value != "on" && value != "off"))
    throw Failure(kWrongUsage, "expected addresses, and on or off");
  std::vector<Places<Target>> asked;
  for (const std::string& word : joinAddresses(Words(words.begin(), words.end() - 1)))
    asked.push_back(parseContents(word));
  for (const Places<Target>& places : asked)
    for (const Target& target : places.list)
      if (!canBeFavourite(target.content))
        refuse(target, "only preset, GM and user voices and drum voices can be favourites");
  program.requireLibrary(kRefused);
  ChangeRun run(program, {"favourite"}, options);
  for (const Places<Target>& places : asked) setFlags(run.library(), places, value == "on", program.console);
  run.keep();
}

}  // namespace Editor
