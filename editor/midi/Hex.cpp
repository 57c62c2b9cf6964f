#include "midi/Hex.h"

namespace Editor {

namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

}  // namespace

std::optional<unsigned> hexDigit(char c) {
  if (c >= '0' && c <= '9') return unsigned(c - '0');
  if (c >= 'A' && c <= 'F') return unsigned(c - 'A' + 10);
  if (c >= 'a' && c <= 'f') return unsigned(c - 'a' + 10);
  return std::nullopt;
}

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
    const std::optional<unsigned> high = hexDigit(text[at++]);
    const std::optional<unsigned> low = at < text.size() ? hexDigit(text[at++]) : std::nullopt;
    if (!high || !low) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(*high * 16 + *low));
  }
  return bytes;
}

}  // namespace Editor
