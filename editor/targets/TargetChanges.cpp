#include "targets/TargetChanges.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "contents/ContentFormat.h"
#include "targets/CarryCheck.h"
#include "targets/TargetModels.h"

namespace Editor {

namespace {

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

std::optional<Library::Content> contentOf(Library& library, const Target& target) {
  try {
    return library.content(target.content);
  } catch (const LibraryError& error) {
    if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
    refuse(target, error.what());
  }
}

void renameContent(EmbeddedEditor& editor, const Target& target, const std::string& name) {
  constexpr std::size_t kLongest = 20;  // in the list of multi names too
  const std::optional<Library::Content> content = contentOf(editor.library(), target);
  if (!content) refuse(target, "nothing is stored there");
  ModelSet models = emptySetFor(target.content);
  if (haveSameShape(models, ModelSet()) || decodeContent(content->bytes, models)) {
    checkName(target, name, kLongest);
    editor.library().rename(target.content, name);
    return;
  }
  checkName(target, name, nameIn(models)->capacity());
  nameIn(models)->assign(name);
  const std::uint64_t failures = editor.library().failureCount();
  std::string why;
  if (!editor.store().storeModels(target.content, name, models, why))
    failToStore(editor.library(), failures, target, why);
}

void renameBuffer(EmbeddedEditor& editor, const Target& target, const std::string& name) {
  ModelSet models = loadTarget(editor, target);
  checkName(target, name, nameIn(models)->capacity());
  nameIn(models)->assign(name);
  storeTarget(editor, target, models);
}

[[noreturn]] void refuseAll(const Places<Target>& places, const char* what) {
  throw TargetError(TargetError::Kind::refused, fmt::format("{}: nothing is stored there{}", places.name, what));
}

// False: neither a voice nor a flag is there.
bool setFavourite(Library& library, ContentId id, bool isOn) {
  const std::optional<std::uint8_t> flag = library.flag(id);
  if (flag == 0 && !library.contentName(id)) return false;
  const bool isSo = flag && (*flag != 0) == isOn;
  if (!isSo) library.setFavourite(id, isOn ? 1 : 0);
  return true;
}

}  // namespace

std::string applyTarget(EmbeddedEditor& editor, const Target& target, const ModelSet& models) {
  CarryCheck check = checkCarried(target, models);
  if (!check.refusal.empty()) refuse(target, check.refusal);
  storeTarget(editor, target, models);
  return std::move(check.unchecked);
}

void requireNamed(const Target& target) {
  if (target.kind == Target::Kind::system || target.kind == Target::Kind::additional)
    throw TargetError(TargetError::Kind::noTarget, fmt::format("{} has no name", target.name));
}

void renameTarget(EmbeddedEditor& editor, const Target& target, const std::string& name) {
  if (!hasName(target)) refuse(target, "no message carries a name for it");
  if (target.kind == Target::Kind::content)
    renameContent(editor, target, name);
  else
    renameBuffer(editor, target, name);
}

Removal parseRemoval(const std::string& word) {
  try {
    return {parseContents(word), std::nullopt};
  } catch (const TargetError& error) {
    return {parseTargets(word), error};
  }
}

void requireRemovable(const Removal& removal, const EditorJobTools& tools) {
  // The voice of a part may be whole where its multi is not.
  const auto isDamaged = [&](const Target& target) { return damageInShort(tools, target) == kItIsDamaged; };
  if (removal.unlessDamaged && !std::ranges::all_of(removal.places.list, isDamaged))
    throw TargetError(*removal.unlessDamaged);
}

std::size_t Removing::take(const Places<Target>& places) {
  std::size_t leftOut = 0;
  for (const Target& target : places.list) {
    const std::string name = placeNameOf(target);
    if (taken_.contains(name)) continue;
    if (forgetTarget(library_, target))
      taken_.insert(name);
    else
      ++leftOut;
  }
  if (leftOut == places.list.size()) refuseAll(places, "; nothing is removed");
  return leftOut;
}

void requireFlags(const Places<Target>& places) {
  for (const Target& target : places.list)
    if (!canBeFavourite(target.content))
      refuse(target, "only preset, GM and user voices and drum voices can be favourites");
}

std::size_t setFavourites(Library& library, const Places<Target>& places, bool isOn) {
  const auto leftOut = std::size_t(std::ranges::count_if(
      places.list, [&](const Target& target) { return !setFavourite(library, target.content, isOn); }));
  if (leftOut == places.list.size()) refuseAll(places, "");
  return leftOut;
}

}  // namespace Editor
