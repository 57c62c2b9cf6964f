#pragma once

#include <string>

#include "find/Search.h"

namespace Editor {

// What a search has found, a line each.

// "voice:user1:6            Piano  *favourite", behind its likeness where it has one, and behind its source where there
// may be several; and before what was asked of parameters that have a name.
std::string lineOf(const Found& found, bool withSource, const ParameterNames& names);

}  // namespace Editor
