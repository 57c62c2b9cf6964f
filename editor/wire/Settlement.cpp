#include "wire/Settlement.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "messages/BackupOrder.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

// What a unit that was taken is, where nothing went wrong.
FetchedAs stateOf(const Fetched& fetched, FetchedAs other) {
  return fetched.state == Fetched::State::empty ? FetchedAs::empty : other;
}

// What a unit has changed: in its own place, and as a unit of blocks in the edit buffers that belong to that.
void noteChanges(const std::vector<Change>& changes, Settled& settled) {
  const BulkAddress address = settled.fetched.address;
  const std::string place = placeNameOf(address);
  const bool isUnit = findBlock(address)->role == Role::header;
  for (const Change& change : changes)
    if (nameOf(change.place) == place) {
      if (change.before && !settled.replaced) settled.replaced = change.before->name;
    } else if (isUnit && change.place.kind == Place::Kind::live && change.before != change.after) {
      settled.with.push_back(toPlaceChange(change));
    }
  settled.isRemoved = settled.as == FetchedAs::empty && settled.replaced;
}

}  // namespace

std::vector<WantedUnit> unitsToFetch(const std::vector<std::string>& words) {
  std::vector<WantedUnit> units;
  for (const std::string& word : joinAddresses(words)) {
    const bool isAll = word == "all";
    const Places<BulkAddress> places =
        isAll ? Places<BulkAddress>{word, false, everythingInABackup()} : parsePlaces(word);
    for (const BulkAddress address : places.list) {
      if (!findBlock(address) || !isAnsweredByUnit(address))
        throw TargetError(TargetError::Kind::noTarget,
                          fmt::format("{} ({}) cannot be fetched: expected a header, a file dump that can be stored, a "
                                      "system block or favourites, such as voice:user1:6",
                                      nameOrBytes(address), describeAddress(address)));
      units.push_back({address, places.isOne});
    }
  }
  return units;
}

std::vector<BulkAddress> addressesOf(const std::vector<WantedUnit>& units) {
  std::vector<BulkAddress> addresses;
  addresses.reserve(units.size());
  for (const WantedUnit& unit : units) addresses.push_back(unit.address);
  return addresses;
}

void Settlement::take(Fetched fetched) {
  ++came_;
  isAnyAskedAgain_ = isAnyAskedAgain_ || (isAnswered(fetched) && fetched.tries > 1);
  areAnyEmptyBySilence_ = areAnyEmptyBySilence_ || fetched.isEmptyBySilence;
  isSingleEmptyBySilence_ = isSingleEmptyBySilence_ || (fetched.isEmptyBySilence && units_[fetched.unit].isSingle);
  options_.atomic ? waiting_.push_back(std::move(fetched)) : settle(std::move(fetched));
}

void Settlement::finish(const std::vector<std::size_t>& late, bool isWhole) {
  for (const std::size_t unit : late)
    if (unit < waiting_.size()) loseAsLate(waiting_[unit]);
  std::vector<Fetched> all = std::exchange(waiting_, {});
  const auto isLost = [](const Fetched& one) { return one.state == Fetched::State::lost; };
  if (isWhole && std::ranges::none_of(all, isLost)) return store(std::move(all));
  for (Fetched& one : all)
    isTaken(one) ? lose(std::move(one), "not stored", "others are lost") : settle(std::move(one));
}

bool Settlement::isTaken(const Fetched& fetched) const {
  return isAnswered(fetched) && (fetched.state == Fetched::State::whole || options_.removeEmpty);
}

void Settlement::settle(Fetched fetched) {
  if (!isTaken(fetched)) {
    const FetchedAs as = stateOf(fetched, FetchedAs::lost);
    return tell({.fetched = std::move(fetched), .as = as});
  }
  if (!keep_) {
    std::vector<Fetched> one;
    one.push_back(std::move(fetched));
    return store(std::move(one));
  }
  keep_(fetched);
  const FetchedAs as = stateOf(fetched, FetchedAs::kept);
  tell({.fetched = std::move(fetched), .as = as, .isTaken = true});
}

// In one transaction, and tells all of them.
void Settlement::store(std::vector<Fetched> fetched) {
  std::vector<Intake::Messages> messages;
  for (const Fetched& unit : fetched)
    if (isTaken(unit)) messages.push_back(unit.messages);
  Intake::Result result;
  try {
    if (!messages.empty()) result = intake_->store(messages);
  } catch (const LibraryError&) {
    for (Fetched& unit : fetched) isTaken(unit) ? lose(std::move(unit), "not stored", "") : settle(std::move(unit));
    throw;
  }
  const char* const reason = result.state == Intake::Result::State::refused ? "refused" : "not stored";
  std::size_t taken = 0;
  for (Fetched& unit : fetched) {
    if (!isTaken(unit)) {
      settle(std::move(unit));
      continue;
    }
    const std::size_t which = taken++;
    if (result.state == Intake::Result::State::stored) {
      const FetchedAs as = stateOf(unit, FetchedAs::stored);
      Settled settled{.fetched = std::move(unit), .as = as, .isTaken = true};
      noteChanges(result.changes[which], settled);
      tell(settled);
    } else if (which == result.unit) {
      lose(std::move(unit), reason, result.why);
    } else {
      lose(std::move(unit), "not stored", fmt::format("another one is {}", reason));
    }
  }
}

void Settlement::lose(Fetched fetched, const char* reason, const std::string& why) {
  fetched.reason = reason;
  tell({.fetched = std::move(fetched), .as = FetchedAs::lost, .why = why});
}

void Settlement::tell(const Settled& settled) {
  if (settled.as == FetchedAs::lost) lost_.push_back(settled.fetched.address);
  receiver_(settled);
}

std::vector<BulkAddress> Settlement::toAskAgain(const std::vector<std::size_t>& late) const {
  std::vector<BulkAddress> addresses = lost_;
  for (const std::size_t unit : late)
    if (std::ranges::find(addresses, units_[unit].address) == addresses.end())
      addresses.push_back(units_[unit].address);
  for (std::size_t unit = came_; unit < units_.size(); ++unit) addresses.push_back(units_[unit].address);
  return addresses;
}

bool Settlement::isSilenceDoubtful() const {
  const bool mayBeLoss = isAnyAskedAgain_ || options_.retries == 0;
  return isSingleEmptyBySilence_ || (areAnyEmptyBySilence_ && mayBeLoss);
}

}  // namespace Editor
