#pragma once

#include <string>

#include "names/NameFile.h"

namespace Editor {

// Throws Failure (kUnusableInput), which names file and line.
NameLists loadNames(const std::string& file);

}  // namespace Editor
