#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "contents/Places.h"
#include "contents/Settings.h"

namespace Editor {

struct Database;
class Query;

// What changes a library: a run of a verb.
struct LibraryRun {
  std::string verb = {};
  std::vector<std::string> sources = {};    // the files that it reads, as its user named them
  std::optional<std::int64_t> undoes = {};  // the entry that it takes back
  bool isRenaming = false;                  // it changes nothing but names
  bool isEndless = false;                   // its end is not in sight: what it changes later is another matter
};

// Entries are numbered from 1, and no number is used again: one that is larger nobody lives to see, and not every
// reader of JSON can tell it from the next.
inline constexpr std::int64_t kLastEntry = (std::int64_t{1} << 53) - 1;

// An entry of the history as it stands in the file.
struct RecordedEntry {
  std::int64_t number = 0;
  std::int64_t time = 0;  // when it was begun, in seconds since 1970
  LibraryRun run;
  std::int64_t bytes = 0;  // as its changes say of themselves
};

// One place that a run changed: what it held before the first change, and what the last one left there.
struct RecordedChange {
  Place place;
  What what = What::stored;
  std::optional<std::string> nameBefore;  // nothing: it was empty; as nameIn() says
  std::optional<std::string> nameAfter;
  std::optional<std::int64_t> checksumAfter;
  bool wasDamaged = false;     // what it held before: nothing can put that back
  std::optional<Held> before;  // only where it is asked for
  std::string fault;           // what is wrong with the row, in words: then nothing of it counts
};

// Writes the history: each change of a place into the entry of the run, in the transaction that makes the change. An
// entry is begun by the first change of a run, and goes on in its later transactions; a new one begins when the last
// was undone or removed meanwhile, and in an endless run after a minute without a change. What is taken back is taken
// out of it.
//
// Never recorded are
//   - the settings of the history itself: an undo would change what is kept of it
//   - what the transaction that begins the entry takes back itself, a place that holds at its end what it held before:
//     there is nothing to undo. An entry that has no place then goes, but for that of an undo, which says that it was
//     done
//   - blocks of a unit that its footer has not stored: they are not in the library
//   - that a library was made, or brought to a new version: no place changed by that
//   - libraries in memory, but for runs that say what they are: those rehearse what they would change
//   - anything but undos while the history is off: its entry goes when the transaction ends
class Recorder {
 public:
  using Clock = std::chrono::system_clock::time_point (*)();
  static constexpr std::chrono::seconds kPause{60};
  static constexpr std::int64_t kDefaultEntries = Settings::kHistory.otherwise;
  static constexpr const char* kEntries = Settings::kHistory.name;  // 0: off
  static constexpr const char* kMegabytes = Settings::kHistorySize.name;

  explicit Recorder(Clock clock) : now_(clock) {}

  void begin(LibraryRun run);
  bool hasRun() const { return !run_.verb.empty(); }
  // Inside of a transaction, as all that follows. Throw SQLite::Exception.
  //
  // Begins the entry of the run at once: it stands without a change too when it is an undo.
  void open(Database& database);
  void record(Database& database, const Place& place, const std::optional<Held>& before,
              const std::optional<Held>& after);
  // Before an outermost transaction is committed. False: the entry was to begin with it, and no place has changed.
  bool finish(Database& database);
  // Removes the oldest entries that are too many or too large, never the newest.
  void trim(Database& database);

  // Where it stands, for who takes something back.
  struct Mark {
    std::optional<std::int64_t> entry;
    bool hasRecorded = false;  // in the transaction that is open
    bool hasBegun = false;     // the entry, in that transaction
    bool hasSet = false;       // a setting of the history, in that transaction
  };
  const Mark& mark() const { return at_; }
  void takeBack(const Mark& mark) { at_ = mark; }

 private:
  bool isOff(Database& database) const;
  bool goesOn(Database& database) const;
  bool isEmpty(Database& database) const;
  std::int64_t addRow(Database& database, const Place& place, const std::optional<Held>& before,
                      const std::optional<Held>& after) const;

  const Clock now_;
  LibraryRun run_;
  Mark at_;
  std::chrono::system_clock::time_point lastChange_;
  std::int64_t untrimmed_ = 0;  // bytes
};

// Of rows as the statements of Database::Reading give them; the bytes of a change only `withBytes`.
RecordedEntry recordedEntry(const Query& row);
RecordedChange recordedChange(const Query& row, bool withBytes);
// About what it takes in the file, its bytes with it.
std::int64_t sizeOf(const RecordedChange& change);
// The numbers of entries that are not there, though changes of them are.
std::vector<std::int64_t> missingEntries(Database& database);

}  // namespace Editor
