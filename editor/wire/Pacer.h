#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "wire/Pace.h"

namespace Editor {

// Lets messages out at a pace: says which bytes may go when. It neither sends nor waits.
//
// A message is on its way from its first byte until its last one has passed at the pace, and then for its pauses; the
// next one begins there, or when it comes, if that is later. In no second more than the pace and 64 bytes go out, also
// where the sender was late: what was missed by more than the time of half of them is not made up for.
class Pacer {
 public:
  // How a port takes messages.
  enum class Takes : std::uint8_t {
    bytes,     // long ones in pieces
    messages,  // each as a whole
  };

  Pacer(Pace pace, Pauses pauses, Takes takes) : pace_(pace), pauses_(pauses), takes_(takes) {}

  // Where a message stands still in its midst, and how long. Where messages are taken as a whole it comes so much
  // later.
  struct Stall {
    std::size_t at = 0;  // before that byte
    WireTime time{};
  };
  // Which message one answers, and as the how many-th of its answers, from 1.
  struct Answer {
    std::uint64_t message = 0;
    std::uint64_t number = 0;
    friend bool operator==(const Answer&, const Answer&) = default;
  };
  struct Message {
    std::vector<std::uint8_t> bytes;
    bool endsUnit = false;          // it is the footer of a unit
    WireTime delay{};               // before it begins, whatever else is waited for
    std::optional<Pace> pace = {};  // its own
    std::optional<Stall> stall = {};
    std::optional<Answer> answer = {};
  };

  const Pauses& pauses() const { return pauses_; }

  // Behind all others.
  void push(Message message, WireTime now);
  // Those that have not begun to go out.
  void forgetWaiting();

  // The bytes that may go out now, of one message; none: before due() there are none. Valid until the next call.
  std::span<const std::uint8_t> take(WireTime now);
  // What that message answers, if it does.
  const std::optional<Answer>& answer() const { return messages_.front().answer; }
  // So many of them, from their first, have gone out.
  void sent(std::size_t count);

  // When there are bytes to send; nothing: everything has gone out.
  std::optional<WireTime> due() const;
  // When the last byte that has gone out has passed. Nobody waits for a pause behind which nothing comes.
  WireTime end() const { return end_; }
  // Whether none has begun that has not gone out to its last byte.
  bool isBetweenMessages() const { return done_ == 0; }
  // Messages that have not gone out to their last byte.
  std::size_t waiting() const { return messages_.size(); }
  // The next message does not wait for the pause behind the last one.
  void skipPause() { next_ = end_; }

  // How long all messages that wait take from the first byte to the end of the last, pauses included but behind the
  // last.
  WireTime duration() const;

 private:
  struct Waiting : Message {
    WireTime came;
  };
  Pace paceOf(const Message& message) const { return message.pace.value_or(pace_); }
  std::size_t piece() const;
  std::size_t stopsAt() const;
  std::size_t sinceStart() const { return done_ - startsAt_; }
  WireTime pausesBehind(const Message& message) const;

  const Pace pace_;
  const Pauses pauses_;
  const Takes takes_;
  std::deque<Waiting> messages_;
  std::size_t done_ = 0;           // bytes of the first one
  std::size_t startsAt_ = 0;       // 0, or behind its stall
  std::optional<WireTime> start_;  // of the first one: when that byte went out, or would have, had nobody been late
  WireTime end_{};                 // of what has gone out
  WireTime next_{};                // when one that has not begun may begin
};

}  // namespace Editor
