#pragma once

#include <nlohmann/json_fwd.hpp>

#include "find/Search.h"
#include "names/ParameterNames.h"

namespace Editor {

// What a search has found, as it is printed. Its hash is that of a search that wants hashes.
nlohmann::ordered_json toJson(const Found& found, const ParameterNames& names);

}  // namespace Editor
