#include "midi/Hex.h"

namespace Editor {

namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

// The value of a digit, or -1.
int digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

}  // namespace

std::string formatHex(std::span<const std::uint8_t> bytes) {
  std::string text;
  text.reserve(3 * bytes.size());
  for (const std::uint8_t byte : bytes) {
    if (!text.empty()) text += ' ';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0F];
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> parseHex(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  std::vector<std::uint8_t> bytes;
  for (std::size_t at = text.find_first_not_of(kBlanks); at < text.size(); at = text.find_first_not_of(kBlanks, at)) {
    const int high = digit(text[at++]);
    const int low = at < text.size() ? digit(text[at++]) : -1;
    if (high < 0 || low < 0) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
  }
  return bytes;
}

}  // namespace Editor
