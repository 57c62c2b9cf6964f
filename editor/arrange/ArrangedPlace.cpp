#include "arrange/ArrangedPlace.h"

#include "contents/ContentFormat.h"

namespace Editor {

namespace {

Library::Content contentOf(const ModelSet& models) { return {nameOf(models), encodeContent(models)}; }

ModelSet freshModels(const ArrangedPlace& buffer) {
  return freshTarget(buffer.target, buffer.kind == ContentKind::drum);
}

}  // namespace

ArrangedPlace readPlace(EmbeddedEditor& editor, const Target& target) {
  ArrangedPlace place;
  place.target = target;
  place.name = placeNameOf(target);
  if (place.isBuffer()) {
    place.kind = contentKindOf(target.buffer, editor.tools().live(target.buffer, target.part));
    place.isDamaged = !damageOf(editor.tools(), target).empty();
    if (!place.isDamaged) place.holds = contentOf(loadTarget(editor, target));
  } else {
    place.kind = contentKindOf(target.content);
    const std::optional<Held> held = editor.library().held(contentAt(target.content));
    place.isDamaged = held && !isWhole(*held);
    if (held && !place.isDamaged) place.holds = Library::Content{held->name, held->bytes};
    if (place.hasFlag()) place.flag = editor.library().favourite(target.content);
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
