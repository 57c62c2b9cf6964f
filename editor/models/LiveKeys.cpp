#include "models/LiveKeys.h"

namespace Editor {

namespace {

struct Key {
  EditBuffer buffer;
  const char* key;
};

constexpr const char* kPart = "part:";  // and its number, from 0
constexpr Key kKeys[] = {{EditBuffer::normalVoice, "voice"}, {EditBuffer::drumVoice, "drum"},
                         {EditBuffer::multi, "multi"},       {EditBuffer::performance, "performance"},
                         {EditBuffer::master, "master"},     {EditBuffer::remote, "remote"}};

}  // namespace

std::string liveKeyOf(EditBuffer buffer, std::uint8_t part) {
  for (const Key& one : kKeys)
    if (one.buffer == buffer) return one.key;
  return kPart + std::to_string(part);
}

std::optional<MidLo> headerOfLiveKey(std::string_view key) {
  for (const Key& one : kKeys)
    if (key == one.key) return headerOf(one.buffer);
  for (std::uint8_t part = 0; part < kParts; ++part)
    if (key == liveKeyOf(EditBuffer::partVoice, part)) return headerOf(EditBuffer::partVoice, part);
  return std::nullopt;
}

std::vector<ModelSet> shapesOfLiveKey(std::string_view key) {
  const std::optional<MidLo> header = headerOfLiveKey(key);
  if (header && editBufferOf(header->mid) != EditBuffer::partVoice) return {emptySetFor(headerTypeOf(*header))};
  if (header) {  // its multi is kept by itself
    std::vector<ModelSet> voices(2);
    voices[0].voice.emplace(false);
    voices[1].voice.emplace(true);
    return voices;
  }
  ModelSet models;
  if (key == kSystemKey) models.system.emplace();
  if (key == kAdditionalKey) models.additional.emplace();
  if (haveSameShape(models, ModelSet())) return {};
  return {std::move(models)};
}

}  // namespace Editor
