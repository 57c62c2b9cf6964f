#include "wire/Fetch.h"

#include <algorithm>
#include <utility>

#include "AddressRows.h"

namespace Editor {

namespace {

// Places that are not answered while nothing is stored there.
bool isSilentWhenEmpty(BulkAddress address) {
  return findBlock(address)->role == Role::header && !editBufferOf(address.mid) && address.mid != BDA::kMixingVoiceMid;
}

}  // namespace

void loseAsLate(Fetched& fetched) {
  if (fetched.state == Fetched::State::lost) return;
  fetched.state = Fetched::State::lost;
  fetched.isEmptyBySilence = false;
  fetched.missing = Answer(fetched.address, 0).missing();
  fetched.reason = "silent";
}

Fetch::Fetch(std::vector<BulkAddress> units, const AskingTerms& terms, Pacer pacer, Receiver receiver)
    : units_(std::move(units)),
      receiver_(std::move(receiver)),
      pacer_(std::move(pacer)),
      asking_(pacer_, terms, [this](std::span<const std::uint8_t> message) { hear(message); }) {}

void Fetch::hear(std::span<const std::uint8_t> message) {
  const Reading reading = readMessage(message);
  if (reading.kind != Reading::Kind::dump || isBroken(reading) || reading.device != asking_.terms().device + 1U) return;
  if (reading.role == Role::part || reading.role == Role::footer) return;
  const auto unanswered =
      std::ranges::find(unanswered_, *reading.address, [this](std::size_t unit) { return units_[unit]; });
  if (unanswered == unanswered_.end() || (!areAllTold() && *reading.address == units_[unit_])) return;
  late_.push_back(*unanswered);
  unanswered_.erase(unanswered);
}

// The instrument is given time behind each unit: to work off what it was asked for last.
void Fetch::begin(WireTime now) {
  if (!areAllTold()) asking_.ask(units_[unit_], now, 0, unit_ > 0 ? pacer_.pauses().behindUnits : WireTime());
}

void Fetch::receive(std::span<const std::uint8_t> bytes, WireTime now) {
  for (; !bytes.empty(); bytes = bytes.subspan(upToADecision(bytes).size())) {
    asking_.receive(upToADecision(bytes), now);
    pass(now);
  }
}

void Fetch::pass(WireTime now) {
  if (isStopped_) return;
  if (!std::exchange(hasBegun_, true)) begin(now);
  asking_.pass(now);
  if (std::optional<Asking::Result> result = asking_.takeResult()) heed(*std::move(result), now);
}

std::optional<WireTime> Fetch::due() const {
  const std::optional<WireTime> toSend = pacer_.due();
  return toSend ? toSend : asking_.due();
}

void Fetch::heed(Asking::Result result, WireTime now) {
  // One that has answered before may be there all the same: the question itself may have been lost.
  silences_ = result.isSomebodyThere ? 0 : silences_ + 1;
  if (silences_ > (hasAnswered_ ? 1U : 0U)) return giveUp(std::move(result));
  hasAnswered_ = hasAnswered_ || result.isSomebodyThere;
  Fetched::State state = Fetched::State::lost;
  if (result.state == Answer::State::whole) state = Fetched::State::whole;
  const bool isSilent = !result.isAnythingHeard && !result.isOtherHeard && result.isSomebodyThere;
  if (result.state == Answer::State::empty || (isSilent && isSilentWhenEmpty(units_[unit_])))
    state = Fetched::State::empty;
  tell(state, std::move(result));
  begin(now);
}

void Fetch::stop() {
  if (isDone()) return;
  isStopped_ = true;
  if (asking_.isAsking()) tell(Fetched::State::lost, asking_.giveUp());
  pacer_.forgetWaiting();
}

void Fetch::tell(Fetched::State state, Asking::Result result) {
  const BulkAddress address = units_[unit_];
  Fetched fetched;
  fetched.unit = unit_;
  fetched.address = address;
  fetched.state = state;
  fetched.isEmptyBySilence = state == Fetched::State::empty && !result.isAnythingHeard;
  fetched.tries = result.tries;
  if (state == Fetched::State::lost) {
    fetched.reason = asking_.whyUnanswered(result);
    fetched.missing = std::move(result.missing);
    fetched.other = result.other;
  }
  fetched.messages = std::move(result.messages);
  if (fetched.isEmptyBySilence ||
      (fetched.state == Fetched::State::lost && !result.isAnythingHeard && fetched.tries > 0))
    unanswered_.push_back(unit_);
  ++unit_;
  receiver_(std::move(fetched));
}

// Nobody is there: the rest is not asked for.
void Fetch::giveUp(Asking::Result last) {
  tell(Fetched::State::lost, std::move(last));
  while (!areAllTold()) {
    Asking::Result unasked;
    unasked.isSomebodyThere = false;
    unasked.missing = Answer(units_[unit_], 0).missing();
    tell(Fetched::State::lost, std::move(unasked));
  }
}

}  // namespace Editor
