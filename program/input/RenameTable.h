#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "targets/Targets.h"

namespace Editor {

// A line of a table of new names: the address of a content or an edit buffer, and its name.
struct RenameRow {
  std::size_t line;  // from 1
  Target target;
  std::string name;
};

// Reads the text of such a table, see docs/program.md; each place once. Otherwise the answer says what is wrong,
// beginning with "line 7: ".
[[nodiscard]] std::string parseRenameTable(std::string_view text, std::vector<RenameRow>& rows);

// "-" is standard input. Throws Failure (kUnusableInput), which names file and line.
std::vector<RenameRow> loadRenameTable(const std::string& file);

}  // namespace Editor
