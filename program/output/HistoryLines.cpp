#include "output/HistoryLines.h"

#include <fmt/format.h>

#include <algorithm>

#include "messages/Text.h"

namespace Editor {

namespace {

constexpr What kWhats[] = {What::stored, What::removed, What::renamed, What::flagged, What::set};

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

}  // namespace Editor
