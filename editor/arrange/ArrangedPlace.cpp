#include "arrange/ArrangedPlace.h"

#include <array>

#include "contents/ContentFormat.h"

namespace Editor {

namespace {

PlaceKind voiceKind(bool isDrum) { return isDrum ? PlaceKind::drumVoice : PlaceKind::normalVoice; }

PlaceKind kindOf(ContentId id) {
  switch (id.type) {
    case ContSrv::ContType_Voice:
      return voiceKind(isDrumVoice(id));
    case ContSrv::ContType_Multi:
      return PlaceKind::multi;
    case kContentPerformance:
      return PlaceKind::performance;
    case kContentMaster:
      return PlaceKind::master;
    case kContentRemote:
      return PlaceKind::remote;
    default:
      return PlaceKind::single;
  }
}

// The bank of a part decides what it plays.
PlaceKind kindOf(const EditorJobTools& tools, EditBuffer buffer, std::uint8_t part) {
  switch (buffer) {
    case EditBuffer::normalVoice:
    case EditBuffer::drumVoice:
    case EditBuffer::partVoice:
      return voiceKind(tools.live(buffer, part).voice->isDrum());
    case EditBuffer::multi:
      return PlaceKind::multi;
    case EditBuffer::performance:
      return PlaceKind::performance;
    case EditBuffer::master:
      return PlaceKind::master;
    case EditBuffer::remote:
      break;
  }
  return PlaceKind::remote;
}

Library::Content contentOf(const ModelSet& models) { return {nameOf(models), encodeContent(models)}; }

ModelSet freshModels(const ArrangedPlace& buffer) {
  return freshTarget(buffer.target, buffer.kind == PlaceKind::drumVoice);
}

}  // namespace

const char* wordsOf(PlaceKind kind) {
  constexpr std::array kWords{"a normal voice", "a drum voice",     "a multi",           "a performance",
                              "a master",       "a remote setting", "the single content"};
  return kWords[std::size_t(kind)];
}

ArrangedPlace readPlace(EmbeddedEditor& editor, const Target& target) {
  ArrangedPlace place;
  place.target = target;
  place.name = placeNameOf(target);
  if (place.isBuffer()) {
    place.kind = kindOf(editor.tools(), target.buffer, target.part);
    place.isDamaged = !damageOf(editor.tools(), target).empty();
    if (!place.isDamaged) place.holds = contentOf(loadTarget(editor, target));
  } else {
    place.kind = kindOf(target.content);
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
