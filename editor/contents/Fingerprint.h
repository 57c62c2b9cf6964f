#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "models/ModelSet.h"

namespace Editor {

// What a content is, whatever it is called: two of one kind have the same hash when they are equal but for their names.
// Two others have the same one by a chance of 1 in 2^64, or when somebody made them so: who must be sure compares the
// bytes as well.
struct Fingerprint {
  bool isOpaque = false;  // not in our format
  // The 64-bit FNV-1a hash as 16 hex digits, in small letters: of the bytes of version 1 of our format with every name
  // in them empty; of opaque contents, of their bytes. It will be the same in every version and on every machine.
  std::string hash;

  friend bool operator==(const Fingerprint&, const Fingerprint&) = default;
};

Fingerprint fingerprintOf(ContentId id, std::span<const std::uint8_t> bytes);

// What the hash is made of, for who must be sure, or has a content of an edit buffer: `shape` is that of its models.
struct Nameless {
  bool isOpaque = false;
  std::vector<std::uint8_t> bytes;

  friend bool operator==(const Nameless&, const Nameless&) = default;
};
Nameless namelessOf(ModelSet shape, std::span<const std::uint8_t> bytes);
Fingerprint fingerprintOf(const Nameless& content);

// The hash itself, by its published definition; with what it was before, bytes that go on.
inline constexpr std::uint64_t kFnvOffsetBasis = 0xCBF29CE484222325;
std::uint64_t fnv1a(std::span<const std::uint8_t> bytes, std::uint64_t hash = kFnvOffsetBasis);

}  // namespace Editor
