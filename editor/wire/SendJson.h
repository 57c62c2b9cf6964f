#pragma once

#include <nlohmann/json_fwd.hpp>

#include "wire/SendPlan.h"

namespace Editor {

// What became of a unit of the plan, as it is printed.
nlohmann::ordered_json toJson(const SendPlan& plan, const SentUnit& unit);

}  // namespace Editor
