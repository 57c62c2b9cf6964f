#pragma once

// The 7-bit packing of file dumps: groups of up to seven bytes become a leading byte, which holds their top bits (the
// first byte's in bit 6), and their low seven bits, one byte each.

#include <cstddef>
#include <cstdint>
#include <span>

namespace BDA::FileDumpCodec {

inline constexpr std::size_t kGroup = 7;
inline constexpr std::size_t kPackedGroup = 8;

constexpr std::size_t packedSize(std::size_t size) { return size + (size + kGroup - 1) / kGroup; }
// Not for sizes that leave a single byte in the last group: no packed data has those.
constexpr std::size_t unpackedSize(std::size_t packed) { return packed - (packed + kPackedGroup - 1) / kPackedGroup; }

// One group: `count` source bytes to count + 1 packed ones, and `count` packed bytes to count - 1. False, with nothing
// written, for a null pointer or a count above 7 (8).
bool encodeGroup(const std::uint8_t* source, std::uint8_t count, std::uint8_t* packed);
bool decodeGroup(const std::uint8_t* packed, std::uint8_t count, std::uint8_t* out);

// All groups. `packed` holds packedSize(source.size()) bytes, `out` unpackedSize(packed.size()). Nothing overlaps.
// False when a group step fails.
bool encode(std::span<const std::uint8_t> source, std::uint8_t* packed);
bool decode(std::span<const std::uint8_t> packed, std::uint8_t* out);

}  // namespace BDA::FileDumpCodec
