#include "support/Bytes.h"

#include <cctype>
#include <cstdio>
#include <stdexcept>

namespace Testing {

Bytes bytesOf(std::string_view hex) {
  Bytes bytes;
  int digits = 0;
  for (const char c : hex) {
    if (c == ' ' && digits % 2 == 0) continue;
    if (std::isxdigit(static_cast<unsigned char>(c)) == 0) throw std::invalid_argument("no hex: " + std::string(hex));
    const int lower = std::tolower(static_cast<unsigned char>(c));
    const int value = lower <= '9' ? lower - '0' : lower - 'a' + 10;
    if (digits++ % 2 == 0)
      bytes.push_back(std::uint8_t(value << 4));
    else
      bytes.back() = std::uint8_t(bytes.back() | value);
  }
  if (digits % 2 != 0) throw std::invalid_argument("half a byte: " + std::string(hex));
  return bytes;
}

std::string textOf(const std::uint8_t* bytes, std::size_t count) {
  std::string text;
  char digits[4];
  for (std::size_t i = 0; i < count; ++i) {
    std::snprintf(digits, sizeof digits, i == 0 ? "%02X" : " %02X", unsigned{bytes[i]});
    text += digits;
  }
  return text;
}

std::string textOf(const Bytes& bytes) { return textOf(bytes.data(), bytes.size()); }

Bytes pattern(std::size_t length) {
  Bytes bytes(length);
  for (std::size_t i = 0; i < length; ++i) bytes[i] = std::uint8_t((i * 37 + 11) % 127);
  return bytes;
}

Bytes dumpMessage(std::string_view address, const Bytes& data, int device) {
  Bytes message{0xF0,
                0x7D,
                std::uint8_t(device),
                0x7F,
                0x14,
                std::uint8_t(data.size() / 128 % 256),
                std::uint8_t(data.size() % 128)};
  for (const std::uint8_t byte : bytesOf(address)) message.push_back(byte);
  message.insert(message.end(), data.begin(), data.end());
  int sum = 0;
  for (std::size_t i = 5; i < message.size(); ++i) sum += message[i];
  message.push_back(std::uint8_t((128 - sum % 128) % 128));
  message.push_back(0xF7);
  return message;
}

Bytes requestMessage(std::string_view address, int device) {
  Bytes message{0xF0, 0x7D, std::uint8_t(0x20 + device), 0x7F, 0x14};
  for (const std::uint8_t byte : bytesOf(address)) message.push_back(byte);
  message.push_back(0xF7);
  return message;
}

}  // namespace Testing
