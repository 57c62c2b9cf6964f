#pragma once

#include <nlohmann/json_fwd.hpp>

#include "history/Check.h"

namespace Editor {

// What a check found of one thing, as it is printed.
nlohmann::ordered_json toJson(const Checked& checked);

}  // namespace Editor
