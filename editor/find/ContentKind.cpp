#include "find/ContentKind.h"

#include <algorithm>

namespace Editor {

namespace {

struct Row {
  ContentKind kind;
  const char* word;
  unsigned headerType;  // of one that holds the same models; 0: none does
};

constexpr std::array<Row, kContentKinds> kRows{{
    {ContentKind::voice, "voice", 1},
    {ContentKind::drum, "drum", 5},
    {ContentKind::mix, "mix", 10},
    {ContentKind::multi, "multi", 11},
    {ContentKind::performance, "performance", 12},
    {ContentKind::master, "master", 14},
    {ContentKind::remote, "remote", 16},
    {ContentKind::single, "single", 0},
}};

const Row& rowOf(ContentKind kind) { return kRows[std::size_t(kind)]; }

}  // namespace

const char* wordOf(ContentKind kind) { return rowOf(kind).word; }

std::vector<std::string> contentKindWords() {
  std::vector<std::string> words;
  words.reserve(std::size(kRows));
  for (const Row& row : kRows) words.emplace_back(row.word);
  return words;
}

std::optional<ContentKind> findContentKind(std::string_view word) {
  const auto* const found = std::find_if(kRows.begin(), kRows.end(), [&](const Row& row) { return row.word == word; });
  return found == kRows.end() ? std::nullopt : std::optional(found->kind);
}

ContentKind contentKindOf(ContentId id) {
  switch (id.type) {
    case ContSrv::ContType_Multi:
      return ContentKind::multi;
    case ContSrv::ContType_Single:
      return ContentKind::single;
    case kContentPerformance:
      return ContentKind::performance;
    case kContentMaster:
      return ContentKind::master;
    case kContentRemote:
      return ContentKind::remote;
    default:
      return isMixingVoice(id) ? ContentKind::mix : isDrumVoice(id) ? ContentKind::drum : ContentKind::voice;
  }
}

ContentKind contentKindOf(EditBuffer buffer, const ModelSet& models) {
  switch (buffer) {
    case EditBuffer::normalVoice:
      return ContentKind::voice;
    case EditBuffer::drumVoice:
      return ContentKind::drum;
    case EditBuffer::partVoice:
      return models.voice->isDrum() ? ContentKind::drum : ContentKind::voice;
    case EditBuffer::multi:
      return ContentKind::multi;
    case EditBuffer::performance:
      return ContentKind::performance;
    case EditBuffer::master:
      return ContentKind::master;
    case EditBuffer::remote:
      break;
  }
  return ContentKind::remote;
}

ModelSet emptySetFor(ContentKind kind) { return emptySetFor(rowOf(kind).headerType); }

}  // namespace Editor
