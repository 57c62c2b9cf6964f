#include "output/HistoryLines.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "history/ChangeJson.h"
#include "messages/Text.h"
#include "models/ModelJson.h"
#include "output/ChangeLines.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

constexpr What kWhats[] = {What::stored, What::removed, What::renamed, What::flagged, What::set};

// By RFC 3339.
std::string timeOf(const HistoryEntry& entry) {
  const std::int64_t time = isTime(entry.time) ? entry.time : 0;  // the entry is damaged
  return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(std::time_t(time)));
}

}  // namespace

std::string lineOf(const HistoryEntry& entry, const std::vector<PlaceChange>& changes) {
  std::string line = fmt::format("{:>4}  {}  {}", entry.number, timeOf(entry), entry.verb);
  for (const std::string& source : entry.sources) line += " " + escape(source);
  if (entry.undoes) line += fmt::format(" {}", *entry.undoes);
  const char* separator = ": ";
  for (const What what : kWhats) {
    const auto count = std::count_if(changes.begin(), changes.end(), [&](const auto& one) { return one.what == what; });
    if (count == 0) continue;
    line += fmt::format("{}{} {}", separator, count, wordOf(what));
    separator = ", ";
  }
  if (entry.undoneBy) line += fmt::format(" (undone by {})", *entry.undoneBy);
  const auto damaged = std::find_if(changes.begin(), changes.end(), [](const auto& one) { return one.wasDamaged; });
  if (damaged != changes.end())
    line += fmt::format(" (cannot be undone: what {} held before is damaged)", damaged->place);
  return line;
}

std::string jsonOf(const HistoryEntry& entry, const std::vector<PlaceChange>& changes) {
  const auto orNull = [](const std::optional<std::int64_t>& number) { return number ? Json(*number) : Json(nullptr); };
  Json places = Json::array();
  for (const PlaceChange& change : changes) places.push_back(toJson(change));
  const Json json{{"entry", entry.number},
                  {"time", timeOf(entry)},
                  {"verb", entry.verb},
                  {"sources", entry.sources},
                  {"changes", std::move(places)},
                  {"undoes", orNull(entry.undoes)},
                  {"undoneBy", orNull(entry.undoneBy)}};
  return jsonLine(json);
}

}  // namespace Editor
