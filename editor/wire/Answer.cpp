#include "wire/Answer.h"

#include <algorithm>

#include "AddressRows.h"

namespace Editor {

namespace {

// An empty mixing voice is answered under addresses of its own.
BulkAddress asIfStored(BulkAddress address) {
  return {address.hi, address.mid, std::uint8_t(address.lo & ~unsigned(BDA::kEmptyVoice))};
}

Role roleOf(BulkAddress address) {
  const std::optional<BlockFacts> facts = findBlock(address);
  return facts ? facts->role : Role::unknown;
}

}  // namespace

bool isAnsweredByUnit(BulkAddress asked) {
  const Role role = roleOf(asked);
  return role == Role::header || (role == Role::fileDump && isWritableFileDump(asked)) ||
         (role == Role::alone && asked != kScreen);
}

bool Answer::next(const Reading& reading, std::span<const std::uint8_t> message) {
  if (isEnded() || reading.kind != Reading::Kind::dump || reading.device != device_ + 1U) return false;
  if (Editor::isBroken(reading)) return broken(reading);
  if (roleOf(asked_) != Role::header) return single(reading, message);
  switch (reading.role) {
    case Role::header:
      return header(*reading.address, message);
    case Role::part:
      return part(*reading.address, message);
    case Role::footer:
      return footer(*reading.address, message);
    case Role::emptyHeader:
    case Role::emptyFooter:
      return emptyUnit(reading, message);
    default:
      return false;
  }
}

// Which block it was is not certain, but that it was one.
bool Answer::broken(const Reading& reading) {
  isBroken_ = true;
  const bool isLast = roleOf(asked_) != Role::header ? reading.address == asked_ : reading.address == footerOf(asked_);
  if (isLast && (open_ || roleOf(asked_) != Role::header)) state_ = State::spoilt;
  return true;
}

bool Answer::single(const Reading& reading, std::span<const std::uint8_t> message) {
  if (reading.address != asked_) return false;
  state_ = reading.removes ? State::empty : State::whole;
  keep(asked_, message);
  return true;
}

// The instrument begins anew; what came before is of an earlier request, or cut short.
void Answer::begin(State state) {
  state_ = state;
  open_.reset();
  isEmptyBegun_ = false;
  isOther_ = false;
  contradicts_ = false;
  messages_.clear();
  addresses_.clear();
}

void Answer::keep(BulkAddress address, std::span<const std::uint8_t> message) {
  addresses_.push_back(address);
  messages_.emplace_back(message.begin(), message.end());
}

bool Answer::header(BulkAddress address, std::span<const std::uint8_t> message) {
  begin(address == asked_ ? State::begun : State::none);
  isOther_ = address != asked_;
  if (isOther_) return false;
  constexpr unsigned kMostBegins = 4;  // one that begins for ever brings nothing on
  keep(address, message);
  open_.emplace(asked_, 0);
  return ++begins_ <= kMostBegins;
}

// Without its header it is of no use, but of an answer.
bool Answer::part(BulkAddress address, std::span<const std::uint8_t> message) {
  constexpr unsigned kMostStrays = 100;  // more than any unit has
  if (!open_) return !isOther_ && ++strays_ <= kMostStrays;
  if (const auto same = std::ranges::find(addresses_, address); same != addresses_.end()) {
    const std::size_t which = std::size_t(same - addresses_.begin());
    contradicts_ = contradicts_ || !std::ranges::equal(messages_[which], message);
    return false;
  }
  if (!open_->arrive(address)) return false;
  keep(address, message);
  return true;
}

bool Answer::footer(BulkAddress address, std::span<const std::uint8_t> message) {
  if (address != footerOf(asked_)) {
    begin(State::none);
    return false;
  }
  if (!open_) {
    state_ = State::spoilt;
    return true;
  }
  keep(address, message);
  state_ = open_->missing().empty() && !contradicts_ ? State::whole : State::spoilt;
  return true;
}

bool Answer::emptyUnit(const Reading& reading, std::span<const std::uint8_t> message) {
  BulkAddress header = asIfStored(*reading.address);
  header.hi = BDA::kHeaderHi;
  const bool isBegin = reading.role == Role::emptyHeader;
  if (header != asked_) {
    begin(State::none);
    return false;
  }
  if (isBegin) {
    const bool wasStored = open_.has_value();  // a moment ago
    begin(State::begun);
    contradicts_ = wasStored;
  }
  keep(*reading.address, message);
  if (!isBegin) state_ = isEmptyBegun_ && !contradicts_ ? State::empty : State::spoilt;
  isEmptyBegun_ = isBegin;
  return true;
}

std::vector<BulkAddress> Answer::missing() const {
  if (roleOf(asked_) != Role::header) return {asked_};
  std::vector<BulkAddress> missing = open_ ? open_->missing() : OpenUnit(asked_, 0).missing();
  if (!open_) missing.insert(missing.begin(), asked_);
  if (addresses_.empty() || addresses_.back() != footerOf(asked_)) missing.push_back(footerOf(asked_));
  return missing;
}

}  // namespace Editor
