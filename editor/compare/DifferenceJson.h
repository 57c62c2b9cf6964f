#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "compare/Compare.h"
#include "names/ParameterNames.h"

namespace Editor {

// What two libraries do not have in common, as it is printed.

// One object for each value that differs, or the one of a content that only one has.
std::vector<nlohmann::ordered_json> toJson(const Difference& difference, const ParameterNames& names);
// The last object: contents are counted, nothing else.
nlohmann::ordered_json toJson(const Comparison& comparison);

}  // namespace Editor
