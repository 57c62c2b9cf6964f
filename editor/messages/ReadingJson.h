#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "messages/InputMessage.h"
#include "messages/Messages.h"
#include "messages/Units.h"

namespace Editor {

// Files of messages, message by message, as they are printed.

nlohmann::ordered_json toJson(const InputMessage& message, const Reading& reading);
nlohmann::ordered_json toJson(const InputLoss& loss);
nlohmann::ordered_json toJson(const UnitReport& unit);

// A list of three bytes each.
nlohmann::ordered_json toJson(const std::vector<BulkAddress>& addresses);

}  // namespace Editor
