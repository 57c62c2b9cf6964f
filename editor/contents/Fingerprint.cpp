#include "contents/Fingerprint.h"

#include <fmt/format.h>

#include "contents/ContentFormat.h"

namespace Editor {

std::uint64_t fnv1a(std::span<const std::uint8_t> bytes, std::uint64_t hash) {
  constexpr std::uint64_t kPrime = 0x100000001B3;
  for (const std::uint8_t byte : bytes) hash = (hash ^ byte) * kPrime;
  return hash;
}

Fingerprint fingerprintOf(ContentId id, std::span<const std::uint8_t> bytes) {
  return fingerprintOf(namelessOf(emptySetFor(id), bytes));
}

Nameless namelessOf(ModelSet shape, std::span<const std::uint8_t> bytes) {
  if (haveSameShape(shape, ModelSet()) || decodeContent(bytes, shape)) return {true, {bytes.begin(), bytes.end()}};
  clearNames(shape);
  return {false, encodeContent(shape)};
}

Fingerprint fingerprintOf(const Nameless& content) {
  return {content.isOpaque, fmt::format("{:016x}", fnv1a(content.bytes))};
}

}  // namespace Editor
