#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Editor {

// The value of a hex digit, in either case; nothing when it is none.
std::optional<unsigned> hexDigit(char c);

// "F0 7D .. F7": upper case, one blank between bytes.
std::string formatHex(std::span<const std::uint8_t> bytes);

// Reads what formatHex writes, also in lower case and with any or no blanks, tabs or line ends between bytes (not
// inside one). Nothing if there is anything else in the text.
std::optional<std::vector<std::uint8_t>> parseHex(std::string_view text);

}  // namespace Editor
