#include "midi/StreamJoiner.h"

#include <bit>
#include <cstring>
#include <utility>

namespace Editor {

namespace {

constexpr std::uint8_t kStart = 0xF0;
constexpr std::uint8_t kEnd = 0xF7;

std::uint64_t statusBits(const std::uint8_t* bytes) {
  std::uint64_t eight = 0;
  std::memcpy(&eight, bytes, sizeof eight);
  return eight & 0x8080808080808080u;
}

// Which of the eight bytes is the first with its status bit set; at least one is.
std::size_t firstOf(std::uint64_t bits) {
  return static_cast<std::size_t>(std::endian::native == std::endian::little ? std::countr_zero(bits)
                                                                             : std::countl_zero(bits)) /
         8;
}

// Position of the first status byte from `at` on, or the size. Any status byte matters, not only F7: the others abandon
// a message or must leave it.
std::size_t findStatus(std::span<const std::uint8_t> bytes, std::size_t at) {
  for (; bytes.size() - at >= 16; at += 16) {
    const std::uint64_t low = statusBits(bytes.data() + at);
    const std::uint64_t high = statusBits(bytes.data() + at + 8);
    if ((low | high) != 0) return at + (low != 0 ? firstOf(low) : 8 + firstOf(high));
  }
  while (at < bytes.size() && bytes[at] < 0x80) ++at;
  return at;
}

}  // namespace

void StreamJoiner::feed(std::span<const std::uint8_t> chunk) {
  std::size_t begin = open_ ? 0 : deliverWhole(chunk, 0);  // of the bytes not yet accounted for: a message's, or strays
  for (std::size_t at = findStatus(chunk, begin); at < chunk.size(); at = findStatus(chunk, at)) {
    const std::uint8_t status = chunk[at];
    if (open_ && status == kEnd) {
      deliver(chunk.subspan(begin, at + 1 - begin));
      at = begin = deliverWhole(chunk, at + 1);
      continue;
    }
    if (status >= kFirstRealTime) {
      setAside(chunk.subspan(begin, at - begin), begin);
      drop(position_ + at, 1, Reason::RealTime);
      begin = ++at;
      continue;
    }
    if (open_) {
      abandon(chunk.subspan(begin, at - begin), Reason::Abandoned);
      begin = at;
    }
    if (status == kStart) {
      drop(position_ + begin, at - begin, Reason::Stray);
      open_ = true;
      messageOffset_ = position_ + at;
      begin = at;
    }
    ++at;
  }
  setAside(chunk.subspan(begin), begin);
  position_ += chunk.size();
}

void StreamJoiner::finish() {
  if (open_) abandon({}, Reason::Unfinished);
  reportRun();
}

void StreamJoiner::lose(std::uint64_t count) {
  if (count == 0) return;
  finish();
  receiver_.dropped(position_, count, Reason::Overrun);
  position_ += count;
}

// The usual case, kept tight: hands out the messages that follow one another from `at` on, each whole and undisturbed.
// Returns where anything else begins.
std::size_t StreamJoiner::deliverWhole(std::span<const std::uint8_t> chunk, std::size_t at) {
  while (at < chunk.size() && chunk[at] == kStart) {
    const std::size_t end = findStatus(chunk, at + 1);
    if (end == chunk.size() || chunk[end] != kEnd || end - at >= longest_) break;
    if (runCount_ != 0) reportRun();
    receiver_.message(chunk.subspan(at, end + 1 - at), position_ + at);
    at = end + 1;
  }
  return at;
}

// `bytes` from `at` in the chunk belong to the open message, which goes on elsewhere, or to none.
void StreamJoiner::setAside(std::span<const std::uint8_t> bytes, std::size_t at) {
  if (!open_) return drop(position_ + at, bytes.size(), Reason::Stray);
  if (tooLong_ == 0 && bytes.size() <= longest_ - held_.size()) {
    held_.insert(held_.end(), bytes.begin(), bytes.end());
    return;
  }
  tooLong_ += held_.size() + bytes.size();
  held_.clear();
}

// `tail`: the message's bytes that are not held yet.
void StreamJoiner::deliver(std::span<const std::uint8_t> tail) {
  if (tooLong_ > 0 || tail.size() > longest_ - held_.size()) return abandon(tail, Reason::TooLong);
  reportRun();
  open_ = false;
  if (held_.empty()) {
    receiver_.message(tail, messageOffset_);
    return;
  }
  held_.insert(held_.end(), tail.begin(), tail.end());
  receiver_.message(held_, messageOffset_);
  held_.clear();
}

void StreamJoiner::abandon(std::span<const std::uint8_t> tail, Reason reason) {
  reportRun();
  const std::uint64_t count = std::exchange(tooLong_, 0) + held_.size() + tail.size();
  if (count > longest_) {
    reason = Reason::TooLong;
  } else {
    held_.insert(held_.end(), tail.begin(), tail.end());
    receiver_.cutShort(held_);
  }
  receiver_.dropped(messageOffset_, count, reason);
  held_.clear();
  open_ = false;
}

void StreamJoiner::drop(std::uint64_t offset, std::uint64_t count, Reason reason) {
  if (count == 0) return;
  if (runCount_ != 0 && (runReason_ != reason || runOffset_ + runCount_ != offset)) reportRun();
  if (runCount_ == 0) {
    runOffset_ = offset;
    runReason_ = reason;
  }
  runCount_ += count;
}

void StreamJoiner::reportRun() {
  if (runCount_ != 0) receiver_.dropped(runOffset_, runCount_, runReason_);
  runCount_ = 0;
}

const char* describe(StreamJoiner::Reason reason) {
  switch (reason) {
    case StreamJoiner::Reason::RealTime:
      return "real-time";
    case StreamJoiner::Reason::Stray:
      return "outside of any message";
    case StreamJoiner::Reason::Abandoned:
      return "message cut short by another status byte";
    case StreamJoiner::Reason::Unfinished:
      return "message without end";
    case StreamJoiner::Reason::TooLong:
      return "message longer than any can be";
    case StreamJoiner::Reason::Overrun:
      return "came faster than it was taken";
  }
  return "?";
}

}  // namespace Editor
