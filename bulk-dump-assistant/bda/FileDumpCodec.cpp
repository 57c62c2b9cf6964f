#include "FileDumpCodec.h"

#include <bit>
#include <cstring>

namespace BDA::FileDumpCodec {
namespace {

// A whole group fits a 64-bit word, first byte lowest. Other machines take every group byte by byte.
constexpr bool kIsLittleEndian = std::endian::native == std::endian::little;

template <typename Word>
Word load(const std::uint8_t* bytes) {
  Word word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}
template <typename Word>
void store(std::uint8_t* bytes, Word word) {
  std::memcpy(bytes, &word, sizeof word);
}

// Byte i of the group moves up by one, without its top bit. The top bits, one in each of seven bytes, meet in the
// leading byte: bit 8i times 2^(9(6-i)) is bit 54 - i, and no two of the 49 products share a bit, so none carries.
std::uint64_t encodeWord(std::uint64_t group) {
  const std::uint64_t topBits = group >> 7 & 0x0001010101010101;
  return (group << 8 & 0x7F7F7F7F7F7F7F00) | (topBits * 0x0040201008040201 >> 48 & 0x7F);
}

// The way back: bit 6 - i of the leading byte times 2^(9i+1) is bit 8i + 7, the top bit of byte i; again no carries.
// The eighth byte of the result is 0.
std::uint64_t decodeWord(std::uint64_t packed) {
  return packed >> 8 | ((packed & 0x7F) * 0x0080402010080402 & 0x0080808080808080);
}

}  // namespace

bool encodeGroup(const std::uint8_t* source, std::uint8_t count, std::uint8_t* packed) {
  if (source == nullptr || packed == nullptr || count > kGroup) return false;
  packed[0] = 0;
  for (unsigned i = 0; i < count; ++i) {
    packed[0] = std::uint8_t(packed[0] | (source[i] & 0x80U) >> (i + 1));
    packed[i + 1] = source[i] & 0x7FU;
  }
  return true;
}

bool decodeGroup(const std::uint8_t* packed, std::uint8_t count, std::uint8_t* out) {
  if (packed == nullptr || out == nullptr || count > kPackedGroup) return false;
  for (unsigned i = 0; i + 1 < count; ++i) out[i] = std::uint8_t(packed[i + 1] | (packed[0] & (0x40U >> i)) << (i + 1));
  return true;
}

bool encode(std::span<const std::uint8_t> source, std::uint8_t* packed) {
  const std::uint8_t* from = source.data();
  std::size_t left = source.size();
  if constexpr (kIsLittleEndian) {
    // Eight bytes are read for seven while there are eight; the last whole group is read as two overlapping halves.
    for (; left > kGroup; left -= kGroup, from += kGroup, packed += kPackedGroup)
      store(packed, encodeWord(load<std::uint64_t>(from)));
    if (left == kGroup) {
      const std::uint64_t low = load<std::uint32_t>(from);
      const std::uint64_t high = load<std::uint32_t>(from + 3);
      store(packed, encodeWord(low | high << 24));
      return true;
    }
  }
  while (left > 0) {
    const std::size_t count = left < kGroup ? left : kGroup;
    if (!encodeGroup(from, std::uint8_t(count), packed)) return false;
    from += count;
    left -= count;
    packed += count + 1;
  }
  return true;
}

bool decode(std::span<const std::uint8_t> packed, std::uint8_t* out) {
  const std::uint8_t* from = packed.data();
  std::size_t left = packed.size();
  if constexpr (kIsLittleEndian) {
    // Eight bytes are written for seven while another whole group follows; the last one is written as two overlapping
    // halves.
    for (; left >= 2 * kPackedGroup; left -= kPackedGroup, from += kPackedGroup, out += kGroup)
      store(out, decodeWord(load<std::uint64_t>(from)));
    if (left >= kPackedGroup) {
      const std::uint64_t group = decodeWord(load<std::uint64_t>(from));
      store(out, std::uint32_t(group));
      store(out + 3, std::uint32_t(group >> 24));
      left -= kPackedGroup;
      from += kPackedGroup;
      out += kGroup;
    }
  }
  while (left > 0) {
    const std::size_t count = left < kPackedGroup ? left : kPackedGroup;
    if (!decodeGroup(from, std::uint8_t(count), out)) return false;
    from += count;
    left -= count;
    out += count - 1;
  }
  return true;
}

}  // namespace BDA::FileDumpCodec
