#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "history/History.h"
#include "wire/Fetch.h"
#include "wire/FetchJson.h"
#include "wire/Intake.h"

namespace Editor {

// A unit that an instrument is to be asked for.
struct WantedUnit {
  BulkAddress address;
  bool isSingle;  // it was asked for by its own name, not by that of a bank or range
};
// Those that words name, "all": everything that can be requested. Throws TargetError (noTarget), also for what no
// request brings as a unit.
std::vector<WantedUnit> unitsToFetch(const std::vector<std::string>& words);
std::vector<BulkAddress> addressesOf(const std::vector<WantedUnit>& units);

// What became of a unit in the end.
struct Settled {
  Fetched fetched = {};
  FetchedAs as = FetchedAs::lost;
  bool isTaken = false;                      // something was done with its answer
  bool isRemoved = false;                    // it is empty there, and no longer here either
  std::string why = {};                      // lost: more than its reason says, or ""
  std::optional<std::string> replaced = {};  // by its name; nothing: the place was empty, or nobody knows
  std::vector<PlaceChange> with = {};        // changes of other places that came with it
};

// What becomes of the units that an instrument was asked for: each goes where they are kept as soon as it has come, or
// all of them together at the end.
class Settlement {
 public:
  struct Options {
    bool atomic = false;       // all of them or none
    bool removeEmpty = false;  // what says that it is empty there is taken, too
    unsigned retries = 2;      // as they are asked for
  };
  // Who keeps the messages of a unit instead of a library, as they come: never `atomic`.
  using Keep = std::function<void(const Fetched&)>;
  using Receiver = std::function<void(const Settled&)>;

  Settlement(std::vector<WantedUnit> units, const Options& options, EmbeddedEditor& editor, Receiver receiver)
      : units_(std::move(units)), options_(options), receiver_(std::move(receiver)), intake_(editor) {}
  Settlement(std::vector<WantedUnit> units, const Options& options, Keep keep, Receiver receiver)
      : units_(std::move(units)), options_(options), receiver_(std::move(receiver)), keep_(std::move(keep)) {}

  // The next one, in their order. Throws LibraryError when the library fails: it is told as lost.
  void take(Fetched fetched);
  // Nothing more comes; the last call. Of units that are late nobody says that they are empty, where they are settled
  // now. `isWhole`: the wire was there to the end. Throws as take() does.
  void finish(const std::vector<std::size_t>& late, bool isWhole);

  // How many of which nothing is known, for they were not asked for.
  std::size_t unasked() const { return units_.size() - came_; }
  // Those that whoever wants all of them has to ask for again: lost, late and not asked for.
  std::vector<BulkAddress> toAskAgain(const std::vector<std::size_t>& late) const;
  // Of some that are empty nobody knows, for the instrument was silent: that may be a question which was lost.
  bool isSilenceDoubtful() const;

 private:
  static bool isAnswered(const Fetched& fetched) { return !fetched.messages.empty(); }
  bool isTaken(const Fetched& fetched) const;
  void settle(Fetched fetched);
  void store(std::vector<Fetched> fetched);
  void lose(Fetched fetched, const char* reason, const std::string& why);
  void tell(const Settled& settled);

  const std::vector<WantedUnit> units_;
  const Options options_;
  const Receiver receiver_;
  const Keep keep_;               // none: the library takes them
  std::optional<Intake> intake_;  // the library
  std::vector<Fetched> waiting_;  // for all others to come
  std::vector<BulkAddress> lost_;
  std::size_t came_ = 0;
  bool isAnyAskedAgain_ = false;
  bool areAnyEmptyBySilence_ = false;
  bool isSingleEmptyBySilence_ = false;
};

}  // namespace Editor
