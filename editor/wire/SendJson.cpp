#include "wire/SendJson.h"

#include <nlohmann/json.hpp>

#include "models/ModelJson.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const ReadBackDifference& difference) {
  const bool isDump = std::holds_alternative<std::vector<std::uint8_t>>(difference.sent);  // that did not come back
  return {{"address", formatAddress(difference.address)},
          {"dataByte", difference.dataByte},
          {"path", difference.path ? Json(*difference.path) : Json(nullptr)},
          {"sent", isDump ? Json(nullptr) : valueToJson(difference.sent)},
          {"read", valueToJson(difference.read)}};
}

}  // namespace

Json toJson(const SendPlan& plan, const SentUnit& unit) {
  Json differences = Json::array();
  if (unit.state == SentUnit::State::different)
    for (const ReadBackDifference& one : unit.differences) differences.push_back(toJson(one));
  const BulkAddress address = addressOf(plan.units[unit.unit]);
  return {{"unit", nameOrBytes(address)},
          {"address", formatAddress(address)},
          {"state", wordOf(unit.state)},
          {"differences", std::move(differences)},
          {"reason", unit.reason}};
}

}  // namespace Editor
