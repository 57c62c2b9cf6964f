#pragma once

#include <nlohmann/json_fwd.hpp>

#include "targets/Inventory.h"

namespace Editor {

// A content, or the favourite flag of an empty place, as it is printed.
nlohmann::ordered_json toJson(const Inventory::Entry& entry);

}  // namespace Editor
