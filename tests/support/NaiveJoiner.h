#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "midi/StreamJoiner.h"

namespace Editor {

// The plainest joiner that is right: a state machine that looks at one byte after the other and copies each message.
// The yardstick for the real one. It reports each dropped real-time and stray byte on its own, not in runs.
class NaiveJoiner {
 public:
  using Reason = StreamJoiner::Reason;

  explicit NaiveJoiner(StreamJoiner::Receiver& receiver) : receiver_(receiver) {}

  void feed(std::span<const std::uint8_t> chunk) {
    for (const std::uint8_t byte : chunk) step(byte, position_++);
  }

  void finish() { cutShort(Reason::Unfinished); }

 private:
  void step(std::uint8_t byte, std::uint64_t offset) {
    if (byte >= 0xF8) {
      receiver_.dropped(offset, 1, Reason::RealTime);
    } else if (byte == 0xF0) {
      cutShort(Reason::Abandoned);
      message_.push_back(byte);
      start_ = offset;
    } else if (message_.empty()) {
      receiver_.dropped(offset, 1, Reason::Stray);
    } else if (byte == 0xF7) {
      message_.push_back(byte);
      receiver_.message(message_, start_);
      message_.clear();
    } else if (byte >= 0x80) {
      cutShort(Reason::Abandoned);
      receiver_.dropped(offset, 1, Reason::Stray);
    } else {
      message_.push_back(byte);
    }
  }

  void cutShort(Reason reason) {
    if (!message_.empty()) receiver_.dropped(start_, message_.size(), reason);
    message_.clear();
  }

  StreamJoiner::Receiver& receiver_;
  std::uint64_t position_ = 0;
  std::uint64_t start_ = 0;
  std::vector<std::uint8_t> message_;  // empty: no message is open
};

}  // namespace Editor
