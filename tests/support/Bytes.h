#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Testing {

using Bytes = std::vector<std::uint8_t>;

// "F0 7D 00" as bytes and back. Anything but pairs of hexadecimal digits and blanks fails the test.
Bytes bytesOf(std::string_view hex);
std::string textOf(const std::uint8_t* bytes, std::size_t count);
std::string textOf(const Bytes& bytes);

// In the type of the module's lengths, which has 32 bits on some systems.
template <typename Message>
unsigned long lengthOf(const Message& message) {
  return static_cast<unsigned long>(message.size());
}

// 7-bit bytes of a block, no two neighbours alike, so that a value at the wrong place shows.
Bytes pattern(std::size_t length);

// Complete messages for the address "0E 5F 00". Their sums are made by another way than the module's.
Bytes dumpMessage(std::string_view address, const Bytes& data = {}, int device = 0);
Bytes requestMessage(std::string_view address, int device = 0);

}  // namespace Testing
