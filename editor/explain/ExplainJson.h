#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "explain/Explain.h"
#include "names/ParameterNames.h"

namespace Editor {

// What a byte of a file is, as it is printed. `file` as it was named.
nlohmann::ordered_json toJson(const std::string& file, const MessageFile::Byte& byte, const ByteMeaning& meaning,
                              const ParameterNames& names);

// Where a parameter travels.
nlohmann::ordered_json toJson(const CarryingByte& byte);

}  // namespace Editor
