#include "history/HistoryJson.h"

#include <nlohmann/json.hpp>

#include "history/ChangeJson.h"

namespace Editor {

nlohmann::ordered_json toJson(const HistoryEntry& entry, const std::vector<PlaceChange>& changes) {
  using Json = nlohmann::ordered_json;
  const auto orNull = [](const std::optional<std::int64_t>& number) { return number ? Json(*number) : Json(nullptr); };
  Json places = Json::array();
  for (const PlaceChange& change : changes) places.push_back(toJson(change));
  return {{"entry", entry.number},
          {"time", timeOf(entry)},
          {"verb", entry.verb},
          {"sources", entry.sources},
          {"changes", std::move(places)},
          {"undoes", orNull(entry.undoes)},
          {"undoneBy", orNull(entry.undoneBy)}};
}

}  // namespace Editor
