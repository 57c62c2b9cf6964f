#pragma once

// The 7-bit packing of file dumps in its plainest form, bit by bit: the yardstick for the real one.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Testing::Plain {

inline std::vector<std::uint8_t> encode(const std::vector<std::uint8_t>& source) {
  std::vector<std::uint8_t> packed;
  for (std::size_t group = 0; group < source.size(); group += 7) {
    const std::size_t leading = packed.size();
    packed.push_back(0);
    for (std::size_t i = 0; i < 7 && group + i < source.size(); ++i) {
      const int byte = source[group + i];
      if (byte >= 128) packed[leading] = std::uint8_t(packed[leading] + (64 >> i));
      packed.push_back(std::uint8_t(byte % 128));
    }
  }
  return packed;
}

// What can be unpacked, and whether that is all: a last group of a single byte is not.
struct Unpacked {
  std::vector<std::uint8_t> bytes;
  bool isWhole;
};
inline Unpacked decode(const std::vector<std::uint8_t>& packed) {
  Unpacked result{{}, packed.size() % 8 != 1};
  for (std::size_t at = 0; at < packed.size(); ++at) {
    if (at % 8 == 0) continue;
    const int leading = packed[at - at % 8];
    const bool top = leading / (128 >> at % 8) % 2 == 1;
    result.bytes.push_back(std::uint8_t(packed[at] | (top ? 128 : 0)));
  }
  return result;
}

}  // namespace Testing::Plain
