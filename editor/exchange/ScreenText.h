#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Editor {

// The editor's screen: lines of text in a font of fixed width, white on black, the first one black on white.
inline constexpr std::size_t kScreenWidth = 160;
inline constexpr std::size_t kScreenHeight = 64;
inline constexpr std::size_t kScreenColumns = 26;
inline constexpr std::size_t kScreenLines = 8;

// One byte a pixel, 0 or 127, row by row. What is too long or too much is cut off; what is not printable ASCII becomes
// a question mark.
std::vector<std::uint8_t> paintScreen(const std::vector<std::string>& lines);

}  // namespace Editor
