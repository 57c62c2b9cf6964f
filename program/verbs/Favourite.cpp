// The verb favourite: voices that are favourites, or no longer.

#include <fmt/format.h>

#include <memory>

#include "targets/PlaceChange.h"
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
  const std::unique_ptr<EmbeddedEditor> editor = program.openToChange(options.dryRun);
  Library& library = editor->library();
  Library::Transaction transaction(library);
  const std::int64_t before = library.favourite(target.content);
  const std::int64_t after = value == "off" ? 0 : before != 0 ? before : 1;
  if (before == 0 && !library.contentName(target.content)) refuse(target, "nothing is stored there");
  if (before == after)
    return program.console.note(
        fmt::format("nothing changes: {} is {} favourite", target.name, before != 0 ? "a" : "no"));
  library.setFavourite(target.content, std::uint8_t(after));
  transaction.commit();
  tellChanges({{placeNameOf(target), PlaceChange::What::flagged, before, after}}, options, program.console);
}

}  // namespace Editor
