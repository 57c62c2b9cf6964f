#include "history/ChangeJson.h"

#include <nlohmann/json.hpp>

#include "models/Latin1.h"

namespace Editor {

namespace {

nlohmann::ordered_json toJson(const PlaceChange& change, const std::optional<std::string>& value) {
  if (!value) return nullptr;
  if (const auto number = numberIn(*value); number && isNumber(change.what)) return *number;
  return latin1ToUtf8(*value);
}

}  // namespace

nlohmann::ordered_json toJson(const PlaceChange& change) {
  nlohmann::ordered_json json{{"content", change.place},
                              {"what", wordOf(change.what)},
                              {"before", toJson(change, change.before)},
                              {"after", toJson(change, change.after)}};
  if (change.wasDamaged) json["damaged"] = true;
  return json;
}

}  // namespace Editor
