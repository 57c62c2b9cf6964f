#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Editor {

// Base64 with the usual letters and padding, without line ends.
std::string formatBase64(std::span<const std::uint8_t> bytes);

// Reads what formatBase64 writes. Nothing if the text is anything else.
std::optional<std::vector<std::uint8_t>> parseBase64(std::string_view text);

}  // namespace Editor
