#include "history/History.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>

#include "AddressRows.h"
#include "messages/AddressNames.h"
#include "models/LiveKeys.h"

namespace Editor {

namespace {

// A flag or a setting that was never set has a value all the same.
std::optional<std::string> valueOf(const Place& place, What what, const std::optional<std::string>& name) {
  if (name) return name;
  if (what == What::renamed) return "";  // an edit buffer as new
  if (place.kind == Place::Kind::favourite) return kNoFavourite;
  return place.kind == Place::Kind::setting ? std::optional(std::to_string(Library::kDefaultMixingVoiceMaximum)) : name;
}

PlaceChange placeChange(const Place& place, What what, const std::optional<std::string>& before,
                        const std::optional<std::string>& after, bool wasDamaged) {
  std::optional<std::string> value = valueOf(place, what, before);
  if (wasDamaged && isNumber(what)) value.reset();
  return {nameOf(place), what, std::move(value), valueOf(place, what, after), wasDamaged};
}

constexpr std::uint8_t kBehind = 0xFF;  // the edit buffers: what has no header

// Edit buffers by their addresses, as everything else stands already: part 2 before part 11.
bool isBefore(const RecordedChange& a, const RecordedChange& b) {
  const auto order = [](const Place& place) {
    const std::optional<MidLo> header = headerOfLiveKey(place.key);
    return header ? std::tuple(place.kind, header->mid, header->lo) : std::tuple(place.kind, kBehind, kBehind);
  };
  return order(a.place) < order(b.place);
}

constexpr const char* kUndo = "undo";

// One that says that it undoes itself or a later one undoes nothing, and so does another verb.
bool isUndo(const RecordedEntry& entry) {
  return entry.run.verb == kUndo && entry.run.undoes && *entry.run.undoes < entry.number;
}

// The oldest entries go, and leave the undos that undid them; between two that are kept none has ever gone.
bool canHaveBeen(std::int64_t number, const std::vector<RecordedEntry>& newestFirst) {
  if (number < 1) return false;
  return number < newestFirst.back().number ||
         std::any_of(newestFirst.begin(), newestFirst.end(),
                     [&](const RecordedEntry& entry) { return entry.number == number; });
}

std::string faultOfUndo(const RecordedEntry& entry, const std::vector<RecordedEntry>& newestFirst) {
  if (!entry.run.undoes) return entry.run.verb == kUndo ? "it does not say which entry it undoes" : "";
  if (entry.run.verb != kUndo) return "it says that it undoes an entry, and is no undo";
  if (!isUndo(entry)) return "it says that it undoes an entry that is not before it";
  return canHaveBeen(*entry.run.undoes, newestFirst) ? "" : "it says that it undoes an entry that there is not";
}

// Each entry that is undone, with the undo that did it.
std::map<std::int64_t, std::int64_t> undosOf(const std::vector<RecordedEntry>& newestFirst) {
  std::map<std::int64_t, std::int64_t> newest;  // undo of each entry, whether or not undone itself
  std::map<std::int64_t, std::int64_t> undone;
  for (const RecordedEntry& entry : newestFirst)
    if (isUndo(entry) && newest.try_emplace(*entry.run.undoes, entry.number).second && !undone.contains(entry.number))
      undone[*entry.run.undoes] = entry.number;
  return undone;
}

}  // namespace

std::string nameOf(const Place& place) {
  switch (place.kind) {
    case Place::Kind::content:
    case Place::Kind::favourite:
      return nameOf(place.id);
    case Place::Kind::live:
      if (const std::optional<MidLo> header = headerOfLiveKey(place.key))
        return nameOrBytes({BDA::kHeaderHi, header->mid, header->lo});
      break;
    case Place::Kind::setting:
      break;
  }
  return place.key;
}

std::string faultOf(const RecordedEntry& entry, const std::vector<RecordedChange>& changes,
                    const std::vector<RecordedEntry>& newestFirst) {
  if (!isTime(entry.time)) return "its time is none";
  if (std::string fault = faultOfUndo(entry, newestFirst); !fault.empty()) return fault;
  std::int64_t bytes = 0;
  for (const RecordedChange& change : changes) {
    if (!change.fault.empty()) return change.fault;
    bytes += sizeOf(change);
  }
  const bool isWhole = bytes == entry.bytes && (entry.run.undoes || !changes.empty());
  return isWhole ? "" : "its changes are not those that were recorded";
}

const char* wordOf(What what) {
  constexpr std::array kWords{"stored", "removed", "renamed", "flagged", "set"};
  return kWords.at(std::size_t(what) - 1);
}

std::string timeOf(const HistoryEntry& entry) {
  return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(std::time_t(isTime(entry.time) ? entry.time : 0)));
}

PlaceChange toPlaceChange(const Change& change) {
  const auto name = [](const std::optional<Standing>& one) { return one ? std::optional(one->name) : std::nullopt; };
  return placeChange(change.place, change.what, name(change.before), name(change.after), change.wasDamaged);
}

std::vector<PlaceChange> changesOf(Library& library, std::int64_t entry) {
  std::vector<RecordedChange> recorded = library.recordedChanges(entry, false);
  std::stable_sort(recorded.begin(), recorded.end(), isBefore);
  std::vector<PlaceChange> changes;
  for (const RecordedChange& change : recorded)
    if (change.fault.empty())
      changes.push_back(placeChange(change.place, change.what, change.nameBefore, change.nameAfter, change.wasDamaged));
  return changes;
}

std::vector<PlaceChange> changesOfRun(Library& library) {
  const std::optional<std::int64_t> entry = library.entryOfRun();
  return entry ? changesOf(library, *entry) : std::vector<PlaceChange>();
}

std::vector<HistoryEntry> entriesOf(Library& library) {
  const std::vector<RecordedEntry> recorded = library.recordedEntries();
  const std::map<std::int64_t, std::int64_t> undone = undosOf(recorded);
  std::vector<HistoryEntry> entries;
  for (const RecordedEntry& one : recorded) {
    const auto undo = undone.find(one.number);
    entries.push_back({one.number, one.time, one.run.verb, one.run.sources, one.run.undoes,
                       undo == undone.end() ? std::nullopt : std::optional(undo->second)});
  }
  return entries;
}

}  // namespace Editor
