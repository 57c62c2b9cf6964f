#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Editor {

// Text in the width of a terminal. All of it is UTF-8 without control characters, one place a character.

// The width of the terminal that standard output, or another descriptor, is, else $COLUMNS, else 80.
std::size_t terminalWidth(int descriptor = 1);

std::size_t displayWidth(std::string_view text);

// The cells in as many columns as fit, one below the other and then column by column, as `ls` does; each line begins
// with two blanks. Where one is wider than that, each has a line to itself.
std::vector<std::string> inColumns(const std::vector<std::string>& cells, std::size_t width);

// The text in lines that are no wider, broken at blanks; a word that is wider has a line to itself.
std::vector<std::string> wrap(std::string_view text, std::size_t width);

}  // namespace Editor
