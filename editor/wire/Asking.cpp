#include "wire/Asking.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace Editor {

std::span<const std::uint8_t> upToADecision(std::span<const std::uint8_t> bytes) {
  constexpr std::uint8_t kEnd = 0xF7;
  const auto isStatus = [](std::uint8_t byte) { return byte > 0x7F && byte < kFirstRealTime; };
  if (bytes.empty()) return bytes;
  // Behind an end, before any other status byte but the first.
  const auto status = bytes.front() == kEnd ? bytes.begin() : std::find_if(bytes.begin() + 1, bytes.end(), isStatus);
  return bytes.first(std::size_t(status - bytes.begin()) + (status != bytes.end() && *status == kEnd ? 1 : 0));
}

void Asking::ask(BulkAddress address, WireTime now, unsigned waited, WireTime pause) {
  constexpr unsigned kBesideRetries = 2;  // the first try, and whether anybody is there
  if (std::ranges::find(askedBefore_, asked_) == askedBefore_.end()) askedBefore_.push_back(asked_);
  asked_ = address;
  waits_ = terms_.retries + kBesideRetries - waited;
  result_ = {};
  isDecided_ = false;
  asksForAnybody_ = false;
  late_.reset();
  ++result_.tries;
  request(address, now, pause);
}

void Asking::request(BulkAddress address, WireTime now, WireTime pause) {
  answer_.emplace(address, terms_.device);
  heardAt_.reset();
  bytes_ = 0;
  pacer_.push({requestMessage(address, terms_.device), false, pause}, now);
}

void Asking::receive(std::span<const std::uint8_t> bytes, WireTime now) {
  const auto count = std::ranges::count_if(bytes, [](std::uint8_t byte) { return byte < kFirstRealTime; });
  overheard_.isClockHeard = overheard_.isClockHeard || std::size_t(count) < bytes.size();
  if (count > 0) byteAt_ = now;
  bytes_ += std::uint64_t(count);
  isHeard_ = false;
  joiner_.feed(bytes);
  if (isHeard_) {
    heardAt_ = now;
    (asksForAnybody_ ? result_.isSomebodyThere : result_.isAnythingHeard) = true;
  }
  if (answer_ && (answer_->isEnded() || (late_ && late_->isEnded()))) endTry(now);
  pass(now);
}

void Asking::lose(std::uint64_t count, WireTime now) {
  byteAt_ = now;
  joiner_.lose(count);
}

void Asking::message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) {
  if (listener_) listener_(bytes);
  const Reading reading = readMessage(bytes);
  const bool isOfOther = reading.kind == Reading::Kind::dump && reading.device != terms_.device + 1U;
  if (isOfOther) overheard_.otherDevice = reading.device;
  if (reading.kind == Reading::Kind::foreign && isOfThisMaker(bytes)) overheard_.isOtherModelHeard = true;
  // What comes before the first request has gone out is no answer to it.
  if (!answer_ || (result_.tries == 1 && pacer_.due())) return;
  if (isOfOther || (reading.kind == Reading::Kind::foreign && isOfThisMaker(bytes))) result_.isOtherHeard = true;
  const bool isOurs = reading.device.value_or(terms_.device + 1U) == terms_.device + 1U;
  if (reading.kind == Reading::Kind::invalid && isOurs) return hearCut();
  const bool isOfAnswer = answer_->next(reading, bytes);
  // The answer may come while it is asked whether anybody is there.
  const bool isLate = late_ && late_->next(reading, bytes);
  if (isLate) result_.isAnythingHeard = true;
  if (isOfAnswer || isLate)
    isHeard_ = true;
  else if (reading.kind == Reading::Kind::dump && !isOfOther)
    hearOther(reading);
}

// The instrument may have understood another question: nobody says that it is silent. But the first try hears what
// still comes of an earlier answer, and where it is asked again the next one tells.
void Asking::hearOther(const Reading& reading) {
  const bool begins = reading.role != Role::part && reading.role != Role::footer && reading.role != Role::emptyFooter;
  const bool isEarlier = !begins || std::ranges::find(askedBefore_, *reading.address) != askedBefore_.end();
  if (isEarlier && result_.tries == 1 && terms_.retries > 0) return;
  result_.isAnythingHeard = result_.isSomebodyThere = true;
  if (begins) result_.other = reading.address;
}

void Asking::dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason reason) {
  if (reason != StreamJoiner::Reason::RealTime && reason != StreamJoiner::Reason::Stray && answer_) hearCut();
}

// A message that was cut, with or without an end behind, may have been of the answer.
void Asking::hearCut() {
  (asksForAnybody_ ? result_.isSomebodyThere : result_.isAnythingHeard) = true;
  result_.isBroken = true;
}

// While a message arrives its bytes count as an answer's: of what kind it is is known at its end.
std::optional<WireTime> Asking::due() const {
  if (!answer_) return std::nullopt;
  if (const std::optional<WireTime> toSend = pacer_.due()) return *toSend + terms_.timeout;  // nobody takes it
  const WireTime heard = std::max(heardAt_.value_or(WireTime()), joiner_.isInMessage() ? byteAt_ : WireTime());
  return std::max(pacer_.end(), heard) + terms_.timeout;
}

void Asking::pass(WireTime now) {
  if (!answer_) return;
  const std::optional<WireTime> due = this->due();
  if (now < *due && bytes_ <= kMostBytes) return;
  joiner_.finish();  // what has begun has no end
  endTry(now);
}

void Asking::endTry(WireTime now) {
  constexpr BulkAddress kWhatEveryoneHas{0x00, 0x00, 0x00};  // system common
  take(late_ ? *late_ : *answer_);
  if (asksForAnybody_) return decide();
  if (!result_.isAnythingHeard) --waits_;
  if (!result_.isAnswered() && result_.tries <= terms_.retries && (result_.isAnythingHeard || waits_ > 1)) {
    ++result_.tries;
    return request(asked_, now);
  }
  asksForAnybody_ = !result_.isAnythingHeard && waits_ > 0;
  if (!asksForAnybody_) return decide();
  result_.isSomebodyThere = false;
  late_.emplace(asked_, terms_.device);
  request(kWhatEveryoneHas, now);
}

void Asking::take(Answer& answer) {
  result_.state = answer.state();
  result_.isBroken = result_.isBroken || answer.isBroken();
  result_.missing = result_.isAnswered() ? std::vector<BulkAddress>() : answer.missing();
  if (result_.isAnswered()) result_.messages = answer.takeMessages();
}

Asking::Result Asking::giveUp() {
  if (!asksForAnybody_) result_.missing = answer_->missing();
  if (!asksForAnybody_ && pacer_.due()) --result_.tries;  // its request has not gone out
  answer_.reset();
  return std::move(result_);
}

void Asking::decide() {
  answer_.reset();
  isDecided_ = true;
}

std::string Asking::whyUnanswered(const Result& result) const {
  if (result.isAnythingHeard && result.isBroken) return "broken";
  if (result.isAnythingHeard) return "incomplete";
  if (result.isSomebodyThere && !result.isOtherHeard) return "silent";
  if (overheard_.otherDevice) return fmt::format("other device {}", *overheard_.otherDevice);
  if (overheard_.isOtherModelHeard) return "other model";
  return overheard_.isClockHeard ? "only clock" : "silent";
}

std::optional<Asking::Result> Asking::takeResult() {
  if (!isDecided_) return std::nullopt;
  isDecided_ = false;
  return std::move(result_);
}

}  // namespace Editor
