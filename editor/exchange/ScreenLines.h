#pragma once

#include <string>
#include <vector>

#include "contents/Library.h"
#include "models/EditorJobTools.h"

namespace Editor {

// What the editor's screen says: which library this is, how it listens, how much it holds. Throws LibraryError.
std::vector<std::string> screenLines(Library& library, const EditorJobTools& tools);

}  // namespace Editor
