#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "salvage/Salvage.h"

namespace Editor {

// What became of a captured unit, as it is printed. `files`: the sources, as they were named.
nlohmann::ordered_json toJson(const Salvaged& unit, const std::vector<std::string>& files);

}  // namespace Editor
