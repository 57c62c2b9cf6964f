#include "arrange/ArrangedPlace.h"

#include "contents/ContentFormat.h"

namespace Editor {

namespace {

Library::Content contentOf(const ModelSet& models) { return {nameOf(models), encodeContent(models)}; }

ModelSet freshModels(const ArrangedPlace& buffer) {
  return freshTarget(buffer.target, buffer.kind == ContentKind::drum);
}

// Nothing, and damage, where it does not fit its checksum or cannot be read.
std::optional<Held> heldAt(Library& library, ContentId id, std::string& damage) {
  try {
    std::optional<Held> held = library.held(contentAt(id));
    if (!held || isWhole(*held)) return held;
  } catch (const LibraryError& error) {
    if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
  }
  damage = kItIsDamaged;
  return std::nullopt;
}

}  // namespace

ArrangedPlace readPlace(EmbeddedEditor& editor, const Target& target) {
  ArrangedPlace place;
  place.target = target;
  place.name = placeNameOf(target);
  if (place.isBuffer()) {
    place.kind = contentKindOf(target.buffer, editor.tools().live(target.buffer, target.part));
    place.damage = damageInShort(editor.tools(), target);
    if (place.damage.empty()) place.holds = contentOf(loadTarget(editor, target));
  } else {
    place.kind = contentKindOf(target.content);
    const std::optional<Held> content = heldAt(editor.library(), target.content, place.damage);
    if (place.hasFlag()) place.flag = editor.library().flag(target.content);
    if (!place.flag) place.damage = kItIsDamaged;
    if (content && place.damage.empty()) place.holds = Library::Content{content->name, content->bytes};
  }
  return place;
}

Library::Content asNew(const ArrangedPlace& buffer) { return contentOf(freshModels(buffer)); }

ModelSet modelsFor(const ArrangedPlace& buffer, const Library::Content& content, const Target& from) {
  ModelSet models = freshModels(buffer);
  if (const auto why = decodeContent(content.bytes, models)) refuse(from, *why);
  if (!buffer.isPart()) return models;
  ModelSet voice;
  voice.voice = std::move(models.voice);
  return voice;
}

}  // namespace Editor
