#pragma once

#include <string>

#include "names/ParameterNames.h"

namespace Editor {

// Parameters and values as they are, and behind that what their user calls them.

// "voice.common[3] (Volume)"
std::string showPath(const std::string& path, const ParameterNames& names);
// "0 (Off)"
std::string showValue(const std::string& path, const ParameterValue& value, const ParameterNames& names);

}  // namespace Editor
