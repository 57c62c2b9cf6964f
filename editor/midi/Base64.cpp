#include "midi/Base64.h"

#include <algorithm>

namespace Editor {

namespace {

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kBytes = 3;  // are four letters
constexpr std::size_t kGroup = 4;
constexpr unsigned kLetterBits = 6;
constexpr unsigned kByteBits = 8;

}  // namespace

std::string formatBase64(std::span<const std::uint8_t> bytes) {
  std::string text;
  text.reserve((bytes.size() + kBytes - 1) / kBytes * kGroup);
  for (std::size_t first = 0; first < bytes.size(); first += kBytes) {
    const std::size_t count = std::min(kBytes, bytes.size() - first);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kBytes; ++i) bits = bits << kByteBits | (i < count ? bytes[first + i] : 0U);
    for (std::size_t letter = 0; letter < kGroup; ++letter)
      text += letter <= count ? kLetters[bits >> (kLetterBits * (kGroup - 1 - letter)) & 0x3F] : '=';
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> parseBase64(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / kGroup * kBytes);
  std::string_view letters = text;
  for (std::size_t padding = 0; padding < kGroup - 2 && letters.ends_with('='); ++padding) letters.remove_suffix(1);
  std::uint32_t bits = 0;
  unsigned count = 0;
  for (const char letter : letters) {
    const std::size_t value = kLetters.find(letter);
    if (value == std::string_view::npos) return std::nullopt;
    bits = bits << kLetterBits | std::uint32_t(value);
    count += kLetterBits;
    if (count < kByteBits) continue;
    count -= kByteBits;
    bytes.push_back(std::uint8_t(bits >> count));
    bits &= (1U << count) - 1;
  }
  // Nothing is left over: neither bits, nor letters that make no byte, nor padding where there is none.
  if (text.size() % kGroup != 0 || bits != 0 || count >= kLetterBits) return std::nullopt;
  return bytes;
}

}  // namespace Editor
