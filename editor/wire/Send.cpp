#include "wire/Send.h"

#include <algorithm>
#include <map>
#include <utility>

namespace Editor {

namespace {

// What an instrument, or a cable, gives back of what it was sent comes no later and no more often.
constexpr WireTime kLatestEcho = std::chrono::seconds(10);
constexpr std::size_t kMostEchoes = 2;

// The last one ends the unit.
void pushTo(Pacer& pacer, const std::vector<Send::Message>& messages, const Send::Trigger* trigger, WireTime now) {
  for (const Send::Message& message : messages)
    pacer.push({message, trigger == nullptr && &message == &messages.back()}, now);
  if (trigger != nullptr) pacer.push({trigger->message, true}, now);
}

}  // namespace

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

bool isMissed(const SentUnit& unit) { return unit.state == SentUnit::State::different || !unit.reason.empty(); }

WireTime durationOf(const std::vector<Send::Unit>& units, Pacer pacer) {
  std::map<std::size_t, std::size_t> lastOf;  // by triggers
  for (std::size_t unit = 0; unit < units.size(); ++unit)
    if (units[unit].trigger) lastOf[units[unit].trigger->number] = unit;
  for (std::size_t unit = 0; unit < units.size(); ++unit) {
    const std::optional<Send::Trigger>& trigger = units[unit].trigger;
    pushTo(pacer, units[unit].messages, trigger && lastOf[trigger->number] == unit ? &*trigger : nullptr, {});
  }
  return pacer.duration();
}

Send::Send(std::vector<Unit> units, const Options& options, Pacer pacer, Receiver receiver)
    : units_(std::move(units)),
      options_(options),
      receiver_(std::move(receiver)),
      pacer_(std::move(pacer)),
      asking_(pacer_, options.terms, [this](std::span<const std::uint8_t> message) { hear(message); }),
      results_(units_.size()),
      isLeftOut_(units_.size()),
      outAt_(units_.size()),
      phase_(options.onlyChanged ? Phase::looking : Phase::sending) {
  for (std::size_t unit = 0; unit < units_.size(); ++unit) results_[unit].unit = unit;
}

void Send::hear(std::span<const std::uint8_t> message) {
  if (phase_ != Phase::quiet || now_ > pacer_.end() + kLatestEcho) return;
  const auto isThat = [&](const Message& one) { return std::ranges::equal(one, message); };
  if (std::ranges::any_of(units_, [&](const Unit& unit) {
        return std::ranges::any_of(unit.messages, isThat) || (unit.trigger && isThat(unit.trigger->message));
      }))
    echoAt_ = now_;
}

void Send::receive(std::span<const std::uint8_t> bytes, WireTime now) {
  now_ = now;
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
  if (isStopping_ && canStop()) return WireTime();
  if (const std::optional<WireTime> toSend = pacer_.due()) return toSend;
  if (phase_ == Phase::sending) return pacer_.end();
  if (phase_ == Phase::quiet) return quietUntil();
  return asking_.due();
}

void Send::sent(std::size_t count) {
  pacer_.sent(count);
  hasBegun_ = hasBegun_ || count > 0;
}

// No message is cut, and no unit that has begun.
bool Send::canStop() const {
  if (phase_ == Phase::sending) return (!isUnitPushed_ && !triggerPushed_) || (isUnitPushed_ && !hasBegun_);
  return pacer_.isBetweenMessages();
}

void Send::enter(Phase phase) {
  phase_ = phase;
  unit_ = 0;
  isAsking_ = false;
}

// False: there is something to wait for.
bool Send::goOn(WireTime now) {
  if (isStopping_ && phase_ != Phase::sending) {
    if (!canStop()) return false;
    if (phase_ != Phase::looking) tellSettled();
    enter(Phase::done);
    return false;
  }
  switch (phase_) {
    case Phase::looking:
      if (unit_ < units_.size()) return ask(now);
      leaveOut();
      enter(Phase::sending);
      return true;
    case Phase::sending:
      return sendNext(now);
    case Phase::quiet:
      if (now < quietUntil()) return false;
      hasWaited_ = true;
      phase_ = Phase::verifying;
      return true;
    case Phase::verifying:
      if (unit_ < units_.size()) return ask(now);
      tellSettled();
      enter(Phase::done);
      return false;
    case Phase::done:
      break;
  }
  return false;
}

// What is equal; of a group all or nothing. What became of the others is open again.
void Send::leaveOut() {
  std::set<std::size_t> going;
  for (const SentUnit& result : results_)
    if (const std::optional<std::size_t> group = units_[result.unit].group;
        group && result.state != SentUnit::State::equal)
      going.insert(*group);
  for (SentUnit& result : results_) {
    const std::optional<std::size_t> group = units_[result.unit].group;
    isLeftOut_[result.unit] = result.state == SentUnit::State::equal && !(group && going.contains(*group));
    if (isLeftOut_[result.unit]) continue;
    result.state = SentUnit::State::sent;
    result.reason.clear();
  }
}

bool Send::sendNext(WireTime now) {
  if (isStopping_ && isUnitPushed_ && !hasBegun_) {
    pacer_.forgetWaiting();
    isUnitPushed_ = false;
    triggerPushed_.reset();
  }
  if (pacer_.due()) return false;
  settle();
  while (!isStopping_ && unit_ < units_.size() && isLeftOut_[unit_]) ++unit_;
  if (!options_.verifies) tellSettled();
  if (!isStopping_ && unit_ < units_.size()) {
    const Unit& unit = units_[unit_];
    isUnitPushed_ = true;
    push(unit.messages, isLastOfTrigger(unit_) ? &*unit.trigger : nullptr, now);
    return false;
  }
  if (pushOpenTrigger(now)) return false;
  if (isStopping_ && options_.verifies) tellSettled();
  enter(options_.verifies && !isStopping_ ? Phase::quiet : Phase::done);
  return true;
}

// What was on its way is out.
void Send::settle() {
  if (triggerPushed_) triggersOut_.insert(*std::exchange(triggerPushed_, std::nullopt));
  if (std::exchange(isUnitPushed_, false)) outAt_[unit_++] = pacer_.end();
}

bool Send::isSettled(std::size_t unit) const {
  const std::optional<Trigger>& trigger = units_[unit].trigger;
  return isLeftOut_[unit] || (outAt_[unit] && (!trigger || triggersOut_.contains(trigger->number)));
}

void Send::tellSettled() {
  for (; told_ < units_.size() && isSettled(told_); ++told_) {
    SentUnit& result = results_[told_];
    if (options_.verifies && result.state == SentUnit::State::sent)
      result.reason = units_[told_].asked ? "not verified" : "cannot be asked for";
    receiver_(result);
  }
}

bool Send::isLastOfTrigger(std::size_t unit) const {
  const std::optional<Trigger>& trigger = units_[unit].trigger;
  if (!trigger) return false;
  for (std::size_t later = unit + 1; later < units_.size(); ++later)
    if (units_[later].trigger && units_[later].trigger->number == trigger->number && !isLeftOut_[later]) return false;
  return true;
}

void Send::push(const std::vector<Message>& messages, const Trigger* trigger, WireTime now) {
  hasBegun_ = false;
  if (trigger != nullptr) triggerPushed_ = trigger->number;
  pushTo(pacer_, messages, trigger, now);
}

// That of file dumps that went out before it was stopped.
bool Send::pushOpenTrigger(WireTime now) {
  for (const std::size_t unit : unwritten()) {
    const Trigger& trigger = *units_[unit].trigger;
    if (trigger.removesOthers) continue;
    pacer_.skipPause();
    push({}, &trigger, now);
    return true;
  }
  return false;
}

std::vector<std::size_t> Send::unwritten() const {
  std::vector<std::size_t> found;
  for (std::size_t unit = 0; unit < units_.size(); ++unit)
    if (outAt_[unit] && units_[unit].trigger && !triggersOut_.contains(units_[unit].trigger->number))
      found.push_back(unit);
  return found;
}

std::optional<Send::Unfinished> Send::unfinished() const {
  if (phase_ != Phase::sending || !isUnitPushed_ || !hasBegun_) return std::nullopt;
  std::vector<Message> messages = units_[unit_].messages;
  if (triggerPushed_) messages.push_back(units_[unit_].trigger->message);
  Unfinished unfinished{unit_, {}};
  for (std::size_t i = messages.size() - pacer_.waiting(); i < messages.size(); ++i)
    unfinished.missing.push_back(*readMessage(messages[i]).address);
  return unfinished;
}

// Asks for the unit, or heeds what came of that.
bool Send::ask(WireTime now) {
  const Unit& unit = units_[unit_];
  if (!unit.asked || (phase_ == Phase::looking && unit.isNeverLeftOut)) {
    ++unit_;
    return true;
  }
  if (!std::exchange(isAsking_, true)) {
    asking_.ask(*unit.asked, now, std::exchange(hasWaited_, false) ? 1 : 0);
    return false;
  }
  const std::optional<Asking::Result> result = asking_.takeResult();
  if (!result) return false;
  isAsking_ = false;
  const bool isSomebodyThere = result->isSomebodyThere;
  const bool isSpoilt = !result->isAnswered() && result->isAnythingHeard;
  judge(*result);
  if (results_[unit_].state == SentUnit::State::equal && ++equals_ <= echoesOf(unit_, now)) {
    results_[unit_].state = SentUnit::State::sent;
    return true;
  }
  if (isSpoilt && ++spoilt_ <= echoesOf(unit_, now)) {
    results_[unit_].state = SentUnit::State::sent;
    echoAt_ = now;
    phase_ = Phase::quiet;
    return true;
  }
  equals_ = spoilt_ = 0;
  const std::string reason = results_[unit_].reason;
  ++unit_;
  if (isSomebodyThere) return true;
  for (; unit_ < units_.size(); ++unit_) {
    if (!units_[unit_].asked) continue;
    results_[unit_].state = SentUnit::State::unanswered;
    results_[unit_].reason = reason;
  }
  return true;
}

void Send::judge(const Asking::Result& result) {
  const Unit& unit = units_[unit_];
  SentUnit& judged = results_[unit_];
  judged = {unit_, SentUnit::State::unanswered, {}, judged.tries + result.tries, {}};
  if (!result.isAnswered()) {
    judged.reason = asking_.whyUnanswered(result);
    return;
  }
  judged.differences = readBack_.compare(unit.messages, result.messages);
  judged.state = judged.differences.empty() ? SentUnit::State::equal : SentUnit::State::different;
}

// How many messages of each of its kind may still be echoes: of each unit that went to the same place.
std::size_t Send::echoesOf(std::size_t asked, WireTime now) const {
  std::size_t echoes = 0;
  std::optional<WireTime> outAt;
  for (std::size_t unit = 0; unit < units_.size(); ++unit)
    if (outAt_[unit] && units_[unit].asked == units_[asked].asked) {
      echoes += kMostEchoes;
      outAt = outAt_[unit];
    }
  return outAt && now <= *outAt + kLatestEcho ? echoes : 0;
}

}  // namespace Editor
