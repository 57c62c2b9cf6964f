#include "wire/Send.h"

#include <algorithm>
#include <utility>

namespace Editor {

const char* wordOf(SentUnit::State state) {
  switch (state) {
    case SentUnit::State::sent:
      return "sent";
    case SentUnit::State::equal:
      return "equal";
    case SentUnit::State::different:
      return "different";
    case SentUnit::State::unanswered:
      break;
  }
  return "unanswered";
}

Send::Send(std::vector<Unit> units, const Options& options, Pacer pacer, Receiver receiver)
    : units_(std::move(units)),
      options_(options),
      receiver_(std::move(receiver)),
      pacer_(std::move(pacer)),
      asking_(pacer_, options.terms, [this](std::span<const std::uint8_t> message) { return isEcho(message); }),
      results_(units_.size()) {
  for (std::size_t unit = 0; unit < units_.size(); ++unit) results_[unit].unit = unit;
}

// An instrument sends no requests: one that arrives is ours.
bool Send::isEcho(std::span<const std::uint8_t> message) {
  const bool isBefore = phase_ != Phase::verifying;
  if (readMessage(message).kind == Reading::Kind::request) {
    isDoubtful_ = isDoubtful_ || (!isBefore && !hasEchoes_);
    hasEchoes_ = true;
    return true;
  }
  const auto found = mayComeBack_.find({message.begin(), message.end()});
  if (found == mayComeBack_.end() || (!isBefore && !hasEchoes_)) return false;
  hasEchoes_ = true;
  if (--found->second == 0) mayComeBack_.erase(found);
  return true;
}

void Send::receive(std::span<const std::uint8_t> bytes, WireTime now) {
  if (std::ranges::any_of(bytes, [](std::uint8_t byte) { return byte < kFirstRealTime; })) heardAt_ = now;
  for (; !bytes.empty(); bytes = bytes.subspan(upToADecision(bytes).size())) {
    asking_.receive(upToADecision(bytes), now);
    pass(now);
  }
}

void Send::pass(WireTime now) {
  asking_.pass(now);
  while (!isDone() && goOn(now)) {
  }
}

std::optional<WireTime> Send::due() const {
  if (const std::optional<WireTime> toSend = pacer_.due()) return toSend;
  if (phase_ == Phase::sending) return pacer_.end();
  if (phase_ == Phase::quiet) return std::max(pacer_.end(), heardAt_) + options_.terms.timeout;
  return asking_.due();
}

void Send::enter(Phase phase) {
  phase_ = phase;
  unit_ = 0;
  isAsking_ = isPushed_ = false;
}

// False: there is something to wait for.
bool Send::goOn(WireTime now) {
  const bool isIdle = !pacer_.due();
  switch (phase_) {
    case Phase::begin:
      enter(options_.onlyChanged ? Phase::looking : Phase::sending);
      return true;
    case Phase::looking:
      if (!isStopping_ && unit_ < units_.size()) return ask(now);
      enter(isStopping_ ? Phase::done : Phase::sending);
      return true;
    case Phase::sending:
      return isIdle && sendNext(now);
    case Phase::quiet:
      if (!isStopping_ && now < *due()) return false;
      enter(isStopping_ ? Phase::done : Phase::verifying);
      return true;
    case Phase::verifying:
      if (!isStopping_ && unit_ < units_.size()) return ask(now);
      if (!isStopping_ && std::exchange(isDoubtful_, false)) {
        enter(Phase::verifying);
        return true;
      }
      if (!isStopping_) tellAll();
      enter(Phase::done);
      return false;
    case Phase::done:
      break;
  }
  return false;
}

bool Send::sendNext(WireTime now) {
  if (std::exchange(isPushed_, false)) {
    results_[unit_].state = SentUnit::State::sent;
    if (!options_.verifies) receiver_(results_[unit_]);
    ++unit_;
  }
  for (; !isStopping_ && unit_ < units_.size() && results_[unit_].state == SentUnit::State::equal; ++unit_)
    if (!options_.verifies) receiver_(results_[unit_]);
  if (isStopping_ || unit_ == units_.size()) {
    enter(options_.verifies && !isStopping_ ? Phase::quiet : Phase::done);
    return true;
  }
  push(units_[unit_], now);
  return false;
}

void Send::push(const Unit& unit, WireTime now) {
  isPushed_ = true;
  for (const std::vector<Message>* const part : {&unit.messages, &unit.behind})
    for (const Message& message : *part) {
      ++mayComeBack_[message];
      const bool isLast = &message == &part->back() && (part == &unit.behind || unit.behind.empty());
      pacer_.push({message, isLast}, now);
    }
}

// Asks for the unit, or heeds what came of that.
bool Send::ask(WireTime now) {
  if (!units_[unit_].asked) {
    ++unit_;
    return true;
  }
  if (!std::exchange(isAsking_, true)) {
    asking_.ask(*units_[unit_].asked, now);
    return false;
  }
  const std::optional<Asking::Result> result = asking_.takeResult();
  if (!result) return false;
  isAsking_ = false;
  results_[unit_] = judge(*result);
  ++unit_;
  if (result->isSomebodyThere) return true;
  for (; unit_ < units_.size(); ++unit_) results_[unit_].state = SentUnit::State::unanswered;
  return true;
}

SentUnit Send::judge(const Asking::Result& result) {
  const Unit& unit = units_[unit_];
  SentUnit judged{unit_, SentUnit::State::unanswered, {}, results_[unit_].tries + result.tries};
  if (!result.isAnswered()) return judged;
  judged.differences = readBack_.compare(unit.messages, result.messages);
  judged.state = judged.differences.empty() ? SentUnit::State::equal : SentUnit::State::different;
  return judged;
}

void Send::tellAll() {
  for (const SentUnit& result : results_) receiver_(result);
}

}  // namespace Editor
