#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Editor {

// The names of waveforms and arpeggios; the first of each is number 1 to people.
struct NameLists {
  std::vector<std::string> waveforms;
  std::vector<std::string> arpeggios;
};

// Reads the text of a file of names, see docs/program.md. Empty names stand for numbers that it does not give.
// Otherwise the answer says what is wrong, beginning with "line 7: ".
[[nodiscard]] std::string parseNames(std::string_view text, NameLists& names);

// Throws Failure (kUnusableInput), which names file and line.
NameLists loadNames(const std::string& file);

}  // namespace Editor
