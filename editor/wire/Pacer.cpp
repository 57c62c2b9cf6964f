#include "wire/Pacer.h"

#include <algorithm>
#include <utility>

namespace Editor {

namespace {

constexpr std::uint64_t kLongestPiece = 32;      // bytes
constexpr std::uint64_t kMostCatchUp = 32;       // bytes
constexpr std::uint64_t kPiecesPerSecond = 100;  // at least, or a slow wire would get its bytes in lumps

}  // namespace

void Pacer::push(Message message, WireTime now) {
  if (!message.bytes.empty()) messages_.push_back({std::move(message), now});
}

void Pacer::forgetWaiting() {
  messages_.erase(messages_.begin() + (isBetweenMessages() ? 0 : 1), messages_.end());
  if (messages_.empty()) start_.reset();
}

std::size_t Pacer::piece() const {
  const Pace pace = paceOf(messages_.front());
  if (takes_ == Takes::messages || pace == kNoPace) return messages_.front().bytes.size();
  return std::size_t(std::clamp<std::uint64_t>(pace.bytesPerSecond / kPiecesPerSecond, 1, kLongestPiece));
}

WireTime Pacer::pausesBehind(const Message& message) const {
  return pauses_.betweenMessages + (message.endsUnit ? pauses_.behindUnits : WireTime());
}

std::optional<WireTime> Pacer::due() const {
  if (messages_.empty()) return std::nullopt;
  const Waiting& message = messages_.front();
  if (start_) return *start_ + paceOf(message).timeOf(sinceStart() - sinceStart() % piece());
  const bool standsBefore = message.stall && takes_ == Takes::messages;
  return std::max(next_, message.came) + message.delay + (standsBefore ? message.stall->time : WireTime());
}

std::span<const std::uint8_t> Pacer::take(WireTime now) {
  const std::optional<WireTime> due = this->due();
  if (!due || now < *due) return {};
  const Message& message = messages_.front();
  const std::size_t inPiece = sinceStart() % piece();
  const WireTime late =
      inPiece == 0 ? std::max(now - *due - paceOf(message).timeOf(kMostCatchUp), WireTime()) : WireTime();
  start_ = start_.value_or(*due) + late;
  return std::span(message.bytes).subspan(done_, std::min(stopsAt() - done_, piece() - inPiece));
}

// Before which byte the first message stands still next, or ends.
std::size_t Pacer::stopsAt() const {
  const Message& message = messages_.front();
  const bool standsStill = message.stall && takes_ == Takes::bytes && done_ < message.stall->at;
  return standsStill ? std::min(message.stall->at, message.bytes.size()) : message.bytes.size();
}

void Pacer::sent(std::size_t count) {
  const Message& message = messages_.front();
  const bool comesToAStop = count > 0 && done_ + count == stopsAt();
  done_ += count;
  if (!comesToAStop) return;
  const WireTime end = *start_ + paceOf(message).timeOf(sinceStart());
  if (done_ < message.bytes.size()) {
    start_ = end + message.stall->time;
    startsAt_ = done_;
    return;
  }
  end_ = end;
  next_ = end_ + pausesBehind(message);
  messages_.pop_front();
  done_ = startsAt_ = 0;
  start_.reset();
}

WireTime Pacer::duration() const {
  WireTime time{};
  for (const Message& message : messages_)
    time += message.delay + (message.stall ? message.stall->time : WireTime()) +
            paceOf(message).timeOf(message.bytes.size()) + pausesBehind(message);
  return messages_.empty() ? time : time - pausesBehind(messages_.back());
}

}  // namespace Editor
