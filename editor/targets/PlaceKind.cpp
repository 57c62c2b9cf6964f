#include "targets/PlaceKind.h"

#include <array>

namespace Editor {

namespace {

PlaceKind kindOf(EditBuffer buffer) {
  switch (buffer) {
    case EditBuffer::normalVoice:
    case EditBuffer::partVoice:
      return PlaceKind::normalVoice;
    case EditBuffer::drumVoice:
      return PlaceKind::drumVoice;
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

}  // namespace

const char* wordsOf(PlaceKind kind) {
  constexpr std::array kWords{"a normal voice", "a drum voice",     "a multi",           "a performance",
                              "a master",       "a remote setting", "the single content"};
  return kWords[std::size_t(kind)];
}

PlaceKind kindOf(ContentId id) {
  switch (id.type) {
    case ContSrv::ContType_Voice:
      return isDrumVoice(id) ? PlaceKind::drumVoice : PlaceKind::normalVoice;
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

std::optional<PlaceKind> kindOf(const Target& target) {
  if (target.kind == Target::Kind::content) return kindOf(target.content);
  if (target.kind == Target::Kind::editBuffer) return kindOf(target.buffer);
  return std::nullopt;
}

bool fits(PlaceKind kind, const Target& target) {
  const bool isPart = target.kind == Target::Kind::editBuffer && target.buffer == EditBuffer::partVoice;
  return kindOf(target) == kind || (isPart && kind == PlaceKind::drumVoice);
}

}  // namespace Editor
