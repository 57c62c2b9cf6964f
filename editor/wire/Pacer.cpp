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
  return start_ ? *start_ + paceOf(message).timeOf(done_ - done_ % piece())
                : std::max(next_, message.came) + message.delay;
}

std::span<const std::uint8_t> Pacer::take(WireTime now) {
  const std::optional<WireTime> due = this->due();
  if (!due || now < *due) return {};
  const bool beginsPiece = done_ % piece() == 0;
  const WireTime late =
      beginsPiece ? std::max(now - *due - paceOf(messages_.front()).timeOf(kMostCatchUp), WireTime()) : WireTime();
  start_ = start_.value_or(*due) + late;
  const std::span<const std::uint8_t> bytes = messages_.front().bytes;
  return bytes.subspan(done_, std::min(bytes.size() - done_, piece() - done_ % piece()));
}

void Pacer::sent(std::size_t count) {
  done_ += count;
  const Message& message = messages_.front();
  if (done_ < message.bytes.size()) return;
  end_ = *start_ + paceOf(message).timeOf(done_);
  next_ = end_ + pausesBehind(message);
  messages_.pop_front();
  done_ = 0;
  start_.reset();
}

WireTime Pacer::duration() const {
  WireTime time{};
  for (const Message& message : messages_)
    time += message.delay + paceOf(message).timeOf(message.bytes.size()) + pausesBehind(message);
  return messages_.empty() ? time : time - pausesBehind(messages_.back());
}

}  // namespace Editor
