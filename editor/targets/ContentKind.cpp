#include "targets/ContentKind.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "messages/Nearest.h"

namespace Editor {

namespace {

struct Row {
  ContentKind kind;
  const char* word;
  const char* words;
  ContentKind standsFor;             // where it is put somewhere
  unsigned headerType;               // of one that holds the same models; 0: none does
  std::optional<EditBuffer> buffer;  // where it is edited
};

constexpr std::array<Row, kContentKinds> kRows{{
    {ContentKind::voice, "voice", "a normal voice", ContentKind::voice, 1, EditBuffer::normalVoice},
    {ContentKind::drum, "drum", "a drum voice", ContentKind::drum, 5, EditBuffer::drumVoice},
    {ContentKind::mix, "mix", "a normal voice", ContentKind::voice, 10, EditBuffer::normalVoice},
    {ContentKind::multi, "multi", "a multi", ContentKind::multi, 11, EditBuffer::multi},
    {ContentKind::performance, "performance", "a performance", ContentKind::performance, 12, EditBuffer::performance},
    {ContentKind::master, "master", "a master", ContentKind::master, 14, EditBuffer::master},
    {ContentKind::remote, "remote", "a remote setting", ContentKind::remote, 16, EditBuffer::remote},
    {ContentKind::single, "single", "the single content", ContentKind::single, 0, std::nullopt},
}};

const Row& rowOf(ContentKind kind) { return kRows[std::size_t(kind)]; }

// The voice of a part counts as a normal one.
ContentKind kindOf(EditBuffer buffer) {
  const auto* const found =
      std::find_if(kRows.begin(), kRows.end(), [&](const Row& row) { return row.buffer == buffer; });
  return found == kRows.end() ? ContentKind::voice : found->kind;
}

}  // namespace

const char* wordOf(ContentKind kind) { return rowOf(kind).word; }

const char* wordsOf(ContentKind kind) { return rowOf(kind).words; }

std::optional<EditBuffer> editBufferOf(ContentKind kind) { return rowOf(kind).buffer; }

std::vector<std::string> contentKindWords() {
  std::vector<std::string> words;
  words.reserve(std::size(kRows));
  for (const Row& row : kRows) words.emplace_back(row.word);
  return words;
}

ContentKind contentKindNamed(const std::string& word) {
  const auto* const found = std::find_if(kRows.begin(), kRows.end(), [&](const Row& row) { return row.word == word; });
  if (found != kRows.end()) return found->kind;
  const std::vector<std::string> words = contentKindWords();
  throw std::invalid_argument(
      fmt::format("\"{}\": expected one of {}{}", word, fmt::join(words, ", "), didYouMean(word, words)));
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
  return models.voice && models.voice->isDrum() ? ContentKind::drum : kindOf(buffer);
}

std::optional<ContentKind> contentKindOf(const Target& target) {
  if (target.kind == Target::Kind::content) return contentKindOf(target.content);
  if (target.kind == Target::Kind::editBuffer) return kindOf(target.buffer);
  return std::nullopt;
}

bool fits(ContentKind kind, ContentKind place) { return rowOf(kind).standsFor == rowOf(place).standsFor; }

bool fits(ContentKind kind, const Target& target) {
  const std::optional<ContentKind> place = contentKindOf(target);
  const bool isPart = target.kind == Target::Kind::editBuffer && target.buffer == EditBuffer::partVoice;
  return (place && fits(kind, *place)) || (isPart && kind == ContentKind::drum);
}

ModelSet emptySetFor(ContentKind kind) { return emptySetFor(rowOf(kind).headerType); }

}  // namespace Editor
