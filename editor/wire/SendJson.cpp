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

Json toJson(const std::vector<ReadBackDifference>& differences) {
  Json json = Json::array();
  for (const ReadBackDifference& one : differences) json.push_back(toJson(one));
  return json;
}

}  // namespace

Json toJson(const SendPlan& plan, const SentUnit& unit) {
  const Send::Unit& sent = plan.units[unit.unit];
  const BulkAddress address = addressOf(sent);
  Json json{{"unit", nameOrBytes(sent.asked.value_or(address))},
            {"address", formatAddress(address)},
            {"state", wordOf(unit.state)},
            {"differences", toJson(unit.differences)},
            {"reason", unit.reason}};
  if (!unit.before.empty()) json["before"] = toJson(unit.before);
  return json;
}

}  // namespace Editor
