#include "output/ChangeLines.h"

#include <fmt/format.h>

#include <array>
#include <map>
#include <nlohmann/json.hpp>

#include "history/ChangeJson.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"

namespace Editor {

namespace {

// By What.
constexpr std::array kPlanned{"would store", "would remove", "would rename", "would flag", "would set"};

std::string quoted(const std::string& name) { return fmt::format("\"{}\"", showName(name)); }

std::string toWords(const PlaceChange& change, const char* verb) {
  return fmt::format("{}: {}{}{}", verb, change.place, detailOf(change), change.wasDamaged ? kOverDamage : "");
}

}  // namespace

std::string detailOf(const PlaceChange& change) {
  switch (change.what) {
    case What::stored: {
      std::string stored = change.after->empty() ? "" : " " + quoted(*change.after);
      if (change.before) stored += ", replaces " + (change.before->empty() ? "what was there" : quoted(*change.before));
      return stored;
    }
    case What::removed:
      return change.before->empty() ? "" : " " + quoted(*change.before);
    case What::renamed:
      return fmt::format(" {} to {}", quoted(*change.before), quoted(*change.after));
    case What::flagged:
      return change.after == kNoFavourite ? ": no favourite" : ": a favourite";
    case What::set:
      break;
  }
  return fmt::format(": {}, was {}", *change.after, change.before.value_or("damaged"));
}

std::string lineOf(const PlaceChange& change) { return toWords(change, wordOf(change.what)); }

void tellChanges(const std::vector<PlaceChange>& changes, const ChangeOptions& options, Console& console) {
  std::map<What, std::size_t> counts;
  std::map<What, std::size_t> untold;
  for (const PlaceChange& change : changes) {
    if (options.json)
      console.line(jsonLine(toJson(change)));
    else if (options.dryRun)
      console.line(toWords(change, kPlanned.at(std::size_t(change.what) - 1)));
    else if (++counts[change.what] <= kMostAlike || console.isVerbose() || change.wasDamaged)
      console.note(lineOf(change));
    else
      ++untold[change.what];
  }
  for (const auto& [what, count] : untold)
    console.note(fmt::format("and {} more {}: all with -v", count, wordOf(what)));
  if (changes.empty()) console.note("nothing changes");
}

}  // namespace Editor
