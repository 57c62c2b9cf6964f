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
  const auto print = [](bool isOpaque, std::span<const std::uint8_t> hashed) {
    return Fingerprint{isOpaque, fmt::format("{:016x}", fnv1a(hashed))};
  };
  ModelSet models = emptySetFor(id);
  if (haveSameShape(models, ModelSet()) || decodeContent(bytes, models)) return print(true, bytes);
  clearNames(models);
  return print(false, encodeContent(models));
}

}  // namespace Editor
