#pragma once

#include <nlohmann/json_fwd.hpp>

#include "wire/SendPlan.h"

namespace Editor {

// What became of a unit of the plan, as it is printed. Differences from what the instrument held before it was sent are
// no part of that.
nlohmann::ordered_json toJson(const SendPlan& plan, const SentUnit& unit);

}  // namespace Editor
