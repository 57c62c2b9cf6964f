#include "wire/Send.h"

#include <algorithm>
#include <map>
#include <utility>

namespace Editor {

namespace {

// What an instrument, or a cable, gives back of what it was sent comes no later and no more often.
constexpr WireTime kLatestEcho = std::chrono::seconds(10);
constexpr std::size_t kMostEchoes = 2;

// The last one ends the unit, unless a trigger comes next.
void pushTo(Pacer& pacer, const std::vector<Send::Message>& messages, bool isBeforeTrigger, WireTime now) {
  for (const Send::Message& message : messages)
    pacer.push({message, !isBeforeTrigger && &message == &messages.back()}, now);
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
  std::map<std::size_t, std::map<std::size_t, const Send::Message*>> triggers;  // by the units behind which they stand
  for (const Send::Unit& unit : units)
    if (unit.trigger) triggers[unit.trigger->behind][unit.trigger->number] = &unit.trigger->message;
  for (std::size_t unit = 0; unit < units.size(); ++unit) {
    const auto& behind = triggers[unit];
    pushTo(pacer, units[unit].messages, !behind.empty(), {});
    for (const auto& [number, message] : behind) pacer.push({*message, number == behind.rbegin()->first}, {});
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
  if (phase_ == Phase::sending) return !triggerPushed_ && !(isUnitPushed_ && hasBegun_);
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
    giveUp();
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
    result.whyUnknown = std::exchange(result.reason, {});
  }
}

bool Send::sendNext(WireTime now) {
  if (isStopping_ && isUnitPushed_ && !hasBegun_) {
    pacer_.forgetWaiting();
    isUnitPushed_ = false;
  }
  if (pacer_.due()) return false;
  settle();
  hasBegun_ = false;
  unit_ = nextFrom(unit_);
  if (!options_.verifies) tellSettled();
  if (const Trigger* const trigger = triggerBefore(unit_)) {
    if (isStopping_) pacer_.skipPause();
    triggerPushed_ = trigger->number;
    pacer_.push({trigger->message, triggerBefore(unit_) == nullptr}, now);
    return false;
  }
  if (!isStopping_ && unit_ < units_.size()) {
    isUnitPushed_ = true;
    pushTo(pacer_, units_[unit_].messages, triggerBefore(nextFrom(unit_ + 1)) != nullptr, now);
    return false;
  }
  if (isStopping_) giveUp();
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
  for (std::size_t unit = told_; unit < units_.size() && isSettled(unit); ++unit) tell(unit);
}

void Send::giveUp() {
  if (phase_ == Phase::sending && !pacer_.due()) settle();
  for (std::size_t unit = told_; unit < units_.size(); ++unit)
    if (isSettled(unit)) tell(unit);
}

void Send::tell(std::size_t unit) {
  told_ = unit + 1;
  SentUnit& result = results_[unit];
  if (options_.verifies && result.state == SentUnit::State::sent)
    result.reason = units_[unit].asked ? "not verified" : "cannot be asked for";
  receiver_(result);
}

// The first that is not left out, from there on.
std::size_t Send::nextFrom(std::size_t unit) const {
  while (unit < units_.size() && isLeftOut_[unit]) ++unit;
  return unit;
}

// The first that goes out before that unit and is not on its way yet, once those before it are out. Who is stopped does
// not wait for what else stands before it.
const Send::Trigger* Send::triggerBefore(std::size_t unit) const {
  const Trigger* found = nullptr;
  for (std::size_t i = 0; i < unit; ++i) {
    const std::optional<Trigger>& trigger = units_[i].trigger;
    if (!trigger || isLeftOut_[i] || triggersOut_.contains(trigger->number) || triggerPushed_ == trigger->number)
      continue;
    const bool isDue = trigger->behind < unit || (isStopping_ && !trigger->removesOthers);
    if (isDue && (found == nullptr || trigger->number < found->number)) found = &*trigger;
  }
  return found;
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
  const std::vector<Message>& messages = units_[unit_].messages;
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
  judged.state = SentUnit::State::unanswered;
  judged.tries += result.tries;
  judged.differences.clear();
  judged.reason.clear();
  if (!result.isAnswered()) {
    judged.reason = asking_.whyUnanswered(result);
    return;
  }
  std::vector<ReadBackDifference> differences = readBack_.compare(unit.messages, result.messages);
  judged.state = differences.empty() ? SentUnit::State::equal : SentUnit::State::different;
  (phase_ == Phase::looking ? judged.before : judged.differences) = std::move(differences);
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
