#include "wire/Pace.h"

#include <charconv>

namespace Editor {

// In two parts: the product of the whole would not fit beyond 18 TB.
WireTime Pace::timeOf(std::uint64_t bytes) const {
  if (bytesPerSecond == 0) return {};
  constexpr std::uint64_t kSecond = std::chrono::microseconds(std::chrono::seconds(1)).count();
  const std::uint64_t rest = bytes % bytesPerSecond;
  return std::chrono::seconds(bytes / bytesPerSecond) +
         WireTime((rest * kSecond + bytesPerSecond - 1) / bytesPerSecond);
}

std::optional<Pace> parsePace(std::string_view text) {
  for (const auto& [name, pace] : kNamedPaces)
    if (text == name) return pace;
  Pace pace;
  const auto [last, error] = std::from_chars(text.data(), text.data() + text.size(), pace.bytesPerSecond);
  constexpr std::uint64_t kMost = 1'000'000'000'000;  // beyond every port, and far from what a product would not hold
  if (error != std::errc() || last != text.data() + text.size() || pace == kNoPace || pace.bytesPerSecond > kMost)
    return std::nullopt;
  return pace;
}

}  // namespace Editor
