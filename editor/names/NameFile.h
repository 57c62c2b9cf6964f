#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "models/EditorJobTools.h"
#include "names/ParameterNames.h"

namespace Editor {

// The names of waveforms and arpeggios, the first of each is number 1 to people, and those of parameters.
struct NameLists {
  std::vector<std::string> waveforms;
  std::vector<std::string> arpeggios;
  ParameterNames parameters;
};

// Reads the text of a file of names, see docs/program.md. Empty names stand for waveforms and arpeggios that it does
// not give. Otherwise the answer says what is wrong, beginning with "line 7: ".
[[nodiscard]] std::string parseNames(std::string_view text, NameLists& names);

// Has the editor use those of waveforms and arpeggios. The answer says what is wrong with them, "" when nothing is.
[[nodiscard]] std::string giveNames(NameLists names, EditorJobTools& tools);

}  // namespace Editor
