#pragma once

#include <string>
#include <string_view>

#include "models/ModelSet.h"

namespace Editor {

// Text from a file or the command line, safe to show: control characters become \x1B and the like.
std::string escape(std::string_view text);
// A name of the instrument, ISO 8859-1: the same, and as UTF-8.
std::string showName(std::string_view latin1);
// A number as it is, a name in quotes, of bytes how many there are.
std::string showValue(const ParameterValue& value);

}  // namespace Editor
