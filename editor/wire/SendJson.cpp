#include "wire/SendJson.h"

#include <nlohmann/json.hpp>

#include "models/ModelJson.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const ReadBackDifference& difference) {
  return {{"address", formatAddress(difference.address)},
          {"dataByte", difference.dataByte},
          {"path", difference.path ? Json(*difference.path) : Json(nullptr)},
          {"sent", valueToJson(difference.sent)},
          {"read", valueToJson(difference.read)}};
}

}  // namespace

Json toJson(const SendPlan& plan, const SentUnit& unit) {
  Json differences = Json::array();
  if (unit.state == SentUnit::State::different)
    for (const ReadBackDifference& one : unit.differences) differences.push_back(toJson(one));
  const Send::Unit& sent = plan.units[unit.unit];
  const BulkAddress address = addressOf(sent);
  return {{"unit", nameOrBytes(sent.asked.value_or(address))},
          {"address", formatAddress(address)},
          {"state", wordOf(unit.state)},
          {"differences", std::move(differences)},
          {"reason", unit.reason}};
}

}  // namespace Editor
