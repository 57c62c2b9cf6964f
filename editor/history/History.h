#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "contents/Library.h"

namespace Editor {

// What the history of a library says, as data.

// The readable name of a place: of a content or the place of a favourite flag ("voice:user1:6"), of an edit buffer
// ("voice:edit"), "system", "additional", of a setting ("mixing-voices").
std::string nameOf(const Place& place);

struct PlaceChange {
  std::string place;
  What what = What::stored;
  // Names, nothing where the place is empty, "" of what bears none; of flags and settings the values.
  std::optional<std::string> before;  // of flags and settings nothing, too, where it was damaged
  std::optional<std::string> after;
  bool wasDamaged = false;  // what the place held before: an undo cannot bring it back

  friend bool operator==(const PlaceChange&, const PlaceChange&) = default;
};

// A change as it was listed.
PlaceChange toPlaceChange(const Change& change);

struct HistoryEntry {
  std::int64_t number = 0;
  std::int64_t time = 0;  // in seconds since 1970
  std::string verb;
  std::vector<std::string> sources;
  std::optional<std::int64_t> undoes;
  std::optional<std::int64_t> undoneBy;  // its newest undo, unless that is undone itself
};

// When its first change was made (RFC 3339, UTC); in 1970 where that is damaged.
std::string timeOf(const HistoryEntry& entry);

inline constexpr const char* kNoFavourite = "0";  // the value of such a flag

// What is wrong with an entry, in words, for its changes as they stand in the file with their bytes, and all entries,
// itself among them: such an entry is not undone. Empty: nothing.
std::string faultOf(const RecordedEntry& entry, const std::vector<RecordedChange>& changes,
                    const std::vector<RecordedEntry>& newestFirst);

// When entries can have been made.
constexpr bool isTime(std::int64_t seconds) { return seconds >= 0 && seconds <= 253'402'300'799; }  // to the year 9999

const char* wordOf(What what);  // "stored"
inline bool isNumber(What what) { return what == What::flagged || what == What::set; }

// All of them, the newest first, without their changes. Throws LibraryError, as all that follow.
std::vector<HistoryEntry> entriesOf(Library& library);
// As they stand in the entry, without rows that are damaged.
std::vector<PlaceChange> changesOf(Library& library, std::int64_t entry);
// Of the run that is going on, as they will stand there: before its transaction is committed, for then there may be no
// entry.
std::vector<PlaceChange> changesOfRun(Library& library);

}  // namespace Editor
