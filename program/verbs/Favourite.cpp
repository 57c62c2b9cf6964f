// The verb favourite: voices that are favourites, or no longer.

#include <fmt/format.h>

#include <memory>

#include "targets/Targets.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// Whether a block of favourites has a place for it.
bool canBeFavourite(ContentId id) {
  const std::optional<BankVoice> voice = bankVoiceOf(id);
  return voice && voice->bank != kMixingBank;
}

}  // namespace

void favourite(const Words& words, Program& program) {
  const std::string value = words.empty() ? "" : words.back();
  if (words.size() < 2 || (value != "on" && value != "off"))
    throw Failure(kWrongUsage, "expected an address, and on or off");
  const Words joined = joinAddresses(Words(words.begin(), words.end() - 1));
  if (joined.size() != 1) throw Failure(kWrongUsage, "expected one address");
  const Target target = parseContent(joined.front());
  if (!canBeFavourite(target.content))
    refuse(target, "only preset, GM and user voices and drum voices can be favourites");
  program.requireLibrary(kRefused);
  const std::unique_ptr<EmbeddedEditor> editor = program.openToChange({"favourite", {}, {}});
  Library& library = editor->library();
  Library::Transaction transaction(library);
  const bool isOn = library.favourite(target.content) != 0;
  if (!isOn && !library.contentName(target.content)) refuse(target, "nothing is stored there");
  if (isOn != (value == "on")) library.setFavourite(target.content, value == "on" ? 1 : 0);
  transaction.commit();
  program.console.note(fmt::format("{}: {}", target.name, value == "on" ? "is a favourite" : "is no favourite"));
}

}  // namespace Editor
