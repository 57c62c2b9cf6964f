// The verbs that change single contents: rename, favourite and remove.

#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "cli/TargetModels.h"
#include "cli/Verbs.h"
#include "contents/ContentFormat.h"

namespace Editor {

namespace {

[[noreturn]] void refuseEmpty(const Target& target) { refuse(target, "nothing is stored there"); }

Target contentTarget(const std::string& word) {
  Target target = parseTarget(word);
  if (target.kind != Target::Kind::content)
    throw Failure(kWrongUsage, fmt::format("{} is no stored content: expected the address or name of one, such as "
                                           "voice:user1:6 or file:multi:1",
                                           target.name));
  return target;
}

// ---- rename ----

// The blocks of the multi that is edited hold no name, nor does the file dump of the single content.
bool hasName(const Target& target) {
  return target.kind == Target::Kind::editBuffer ? target.buffer != EditBuffer::multi
                                                 : target.content.type != ContSrv::ContType_Single;
}

void checkName(const Target& target, const std::string& name, std::size_t most) {
  if (std::any_of(name.begin(), name.end(), [](char c) { return c < ' ' || c > '~'; }))
    refuse(target, fmt::format("\"{}\" has a character that cannot be carried: expected printable ASCII", name));
  if (name.size() > most)
    refuse(target, fmt::format("\"{}\" has {} characters, a name here has at most {}", name, name.size(), most));
}

void renameContent(EmbeddedEditor& editor, const Target& target, const std::string& name) {
  constexpr std::size_t kLongest = 20;  // in the list of multi names too
  const std::optional<Library::Content> content = editor.library().content(target.content);
  if (!content) refuseEmpty(target);
  ModelSet models = emptySetFor(target.content);
  if (haveSameShape(models, ModelSet()) || decodeContent(content->bytes, models)) {
    checkName(target, name, kLongest);
    editor.library().rename(target.content, name);
    return;
  }
  checkName(target, name, nameIn(models)->capacity());
  nameIn(models)->assign(name);
  std::string why;
  if (!editor.store().storeModels(target.content, name, models, why)) refuse(target, why);
}

}  // namespace

void rename(const Words& words, Program& program) {
  if (words.size() < 2) throw Failure(kWrongUsage, "expected an address and a name");
  const std::string& name = words.back();
  const Words address(words.begin(), words.end() - 1);
  if (joinAddresses(address).size() > 1)
    throw Failure(kWrongUsage, "expected one address and one name: a name with blanks stands in quotes");
  const Target target = parseOneTarget(address);
  if (target.kind == Target::Kind::system || target.kind == Target::Kind::additional)
    throw Failure(kWrongUsage, fmt::format("{} has no name", target.name));
  if (!hasName(target)) refuse(target, "no message carries a name for it");
  const std::unique_ptr<EmbeddedEditor> editor = program.openEditor();
  Library::Transaction transaction(editor->library());
  if (target.kind == Target::Kind::content) {
    renameContent(*editor, target, name);
  } else {
    editor->tools().reload();  // now that nobody changes it
    ModelSet models = loadTarget(*editor, target);
    checkName(target, name, nameIn(models)->capacity());
    nameIn(models)->assign(name);
    storeTarget(*editor, target, models);
  }
  transaction.commit();
  program.console.note(fmt::format("{}: renamed to \"{}\"", target.name, name));
}

// ---- favourite ----

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
  const Target target = contentTarget(joined.front());
  if (!canBeFavourite(target.content))
    refuse(target, "only preset, GM and user voices and drum voices can be favourites");
  const std::unique_ptr<EmbeddedEditor> editor = program.openEditor();
  Library& library = editor->library();
  Library::Transaction transaction(library);
  const bool isOn = library.favourite(target.content) != 0;
  if (!isOn && !library.contentName(target.content)) refuseEmpty(target);
  if (isOn != (value == "on")) library.setFavourite(target.content, value == "on" ? 1 : 0);
  transaction.commit();
  program.console.note(fmt::format("{}: {}", target.name, value == "on" ? "is a favourite" : "is no favourite"));
}

// ---- remove ----

void remove(const Words& words, Program& program) {
  std::vector<Target> targets;
  for (const std::string& word : joinAddresses(words)) {
    Target target = contentTarget(word);
    const bool isTwice = std::any_of(targets.begin(), targets.end(),
                                     [&](const Target& other) { return other.content == target.content; });
    if (!isTwice) targets.push_back(std::move(target));
  }
  const std::unique_ptr<EmbeddedEditor> editor = program.openEditor();
  Library::Transaction transaction(editor->library());
  for (const Target& target : targets)
    if (!editor->library().remove(target.content)) refuse(target, "nothing is stored there; nothing is removed");
  transaction.commit();
  for (const Target& target : targets) program.console.note(fmt::format("{}: removed", target.name));
}

}  // namespace Editor
