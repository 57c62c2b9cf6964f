#include "wire/Asking.h"

#include <algorithm>
#include <utility>

namespace Editor {

void Asking::ask(BulkAddress address, unsigned retries, WireTime now) {
  asked_ = address;
  retries_ = retries;
  result_ = {};
  isDecided_ = false;
  request(now);
}

void Asking::request(WireTime now) {
  answer_.emplace(asked_, terms_.device);
  heardAt_.reset();
  bytes_ = 0;
  ++result_.tries;
  pacer_.push({requestMessage(asked_, terms_.device)}, now);
}

void Asking::receive(std::span<const std::uint8_t> bytes, WireTime now) {
  constexpr std::uint8_t kRealTime = 0xF8;
  const auto count = std::ranges::count_if(bytes, [](std::uint8_t byte) { return byte < kRealTime; });
  overheard_.isClockHeard = overheard_.isClockHeard || std::size_t(count) < bytes.size();
  if (count > 0) byteAt_ = now;
  bytes_ += std::uint64_t(count);
  isHeard_ = false;
  joiner_.feed(bytes);
  if (isHeard_) {
    heardAt_ = now;
    result_.isAnythingHeard = true;
  }
  if (answer_ && answer_->isEnded()) endTry(now);
  pass(now);
}

void Asking::message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) {
  const Reading reading = readMessage(bytes);
  if (reading.kind == Reading::Kind::foreign) {
    overheard_.isOtherModelHeard = overheard_.isOtherModelHeard || isOfThisMaker(bytes);
  } else if (reading.kind == Reading::Kind::dump && reading.device != terms_.device + 1U) {
    overheard_.otherDevice = reading.device;
  } else if (answer_) {
    isHeard_ = answer_->next(reading, bytes) || isHeard_;
  }
}

// While a message arrives its bytes count as an answer's: of what kind it is is known at its end.
std::optional<WireTime> Asking::due() const {
  if (!answer_ || pacer_.due()) return std::nullopt;
  const WireTime heard = std::max(heardAt_.value_or(WireTime()), joiner_.isInMessage() ? byteAt_ : WireTime());
  return std::max(pacer_.end(), heard) + terms_.timeout;
}

void Asking::pass(WireTime now) {
  if (!answer_) return;
  const std::optional<WireTime> due = this->due();
  if ((due && now >= *due) || bytes_ > kMostBytes) endTry(now);
}

void Asking::endTry(WireTime now) {
  result_.isBroken = result_.isBroken || answer_->isBroken();
  const bool isAnswered = answer_->state() == Answer::State::whole || answer_->state() == Answer::State::empty;
  if (!isAnswered && result_.tries <= retries_) return request(now);
  result_.state = answer_->state();
  result_.missing = isAnswered ? std::vector<BulkAddress>() : answer_->missing();
  if (isAnswered) result_.messages = answer_->takeMessages();
  answer_.reset();
  isDecided_ = true;
}

std::optional<Asking::Result> Asking::takeResult() {
  if (!isDecided_) return std::nullopt;
  isDecided_ = false;
  return std::move(result_);
}

}  // namespace Editor
