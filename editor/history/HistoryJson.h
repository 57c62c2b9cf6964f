#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "history/History.h"

namespace Editor {

// An entry of the history as it is printed, with its changes.
nlohmann::ordered_json toJson(const HistoryEntry& entry, const std::vector<PlaceChange>& changes);

}  // namespace Editor
