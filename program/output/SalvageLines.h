#pragma once

#include <string>
#include <vector>

#include "salvage/Salvage.h"

namespace Editor {

// What became of captured units, as lines for people. `files`: the sources, as they were named.

// "b.syx has it otherwise, but not whole"
std::string describe(const NotTaken& other, const std::vector<std::string>& files);
// "lost: voice:user1:6: 1 block missing: element 3 oscillator (41 02 00) (a.syx, b.syx)"
std::string lineOf(const Salvaged& unit, const std::vector<std::string>& files);

}  // namespace Editor
