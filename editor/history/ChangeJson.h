#pragma once

#include <nlohmann/json_fwd.hpp>

#include "history/History.h"

namespace Editor {

// A change as it is printed: "content", "what", "before", "after", and "damaged" where it is so.
nlohmann::ordered_json toJson(const PlaceChange& change);

}  // namespace Editor
