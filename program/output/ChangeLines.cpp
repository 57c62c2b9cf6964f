#include "output/ChangeLines.h"

#include <fmt/format.h>

#include <array>
#include <nlohmann/json.hpp>

#include "messages/Text.h"
#include "models/Latin1.h"

namespace Editor {

namespace {

struct Words {
  const char* done;
  const char* planned;
};
// By PlaceChange::What.
constexpr std::array<Words, 4> kWords{
    {{"stored", "would store"}, {"removed", "would remove"}, {"renamed", "would rename"}, {"flagged", "would flag"}}};

nlohmann::ordered_json toJson(const std::optional<ParameterValue>& value) {
  if (!value) return nullptr;
  if (const auto* const name = std::get_if<std::string>(&*value)) return latin1ToUtf8(*name);
  return std::get<std::int64_t>(*value);
}

std::string toJsonLine(const PlaceChange& change) {
  const nlohmann::ordered_json json{{"content", change.place},
                                    {"what", kWords[std::size_t(change.what)].done},
                                    {"before", toJson(change.before)},
                                    {"after", toJson(change.after)}};
  return json.dump(-1, ' ', true);  // a terminal would obey U+0080 to U+009F
}

// What stands behind the place.
std::string detailOf(const PlaceChange& change) {
  switch (change.what) {
    case PlaceChange::What::stored: {
      const std::string stored = change.after ? " " + showValue(*change.after) : "";
      return stored + (change.before ? ", replaces " + showValue(*change.before) : "");
    }
    case PlaceChange::What::removed:
      return " " + showValue(*change.before);
    case PlaceChange::What::renamed:
      return fmt::format(" {} to {}", showValue(*change.before), showValue(*change.after));
    case PlaceChange::What::flagged:
      break;
  }
  return change.after == ParameterValue(std::int64_t(0)) ? ": no favourite" : ": a favourite";
}

std::string toWords(const PlaceChange& change, bool dryRun) {
  const Words& words = kWords[std::size_t(change.what)];
  return fmt::format("{}: {}{}", dryRun ? words.planned : words.done, change.place, detailOf(change));
}

}  // namespace

void tellChanges(const std::vector<PlaceChange>& changes, const ChangeOptions& options, Console& console) {
  for (const PlaceChange& change : changes) {
    if (options.json)
      console.line(toJsonLine(change));
    else if (options.dryRun)
      console.line(toWords(change, true));
    else
      console.note(toWords(change, false));
  }
}

}  // namespace Editor
