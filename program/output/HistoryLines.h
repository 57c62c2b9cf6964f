#pragma once

#include <string>

#include "history/History.h"

namespace Editor {

// "12  2026-01-31T12:00:00Z  receive dump.syx: 3 stored, 1 removed"
std::string lineOf(const HistoryEntry& entry, const std::vector<PlaceChange>& changes);

}  // namespace Editor
