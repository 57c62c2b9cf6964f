#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "messages/Units.h"

namespace Editor {

// Holds messages back until it is seen that what they belong to is whole, as UnitFollower judges it: a unit until its
// footer, file dumps until their write trigger. Then all of them are handed on, or none. What is whole by itself is
// handed on at once, and what is no dump, too; but what is too short for any message is refused.
//
// A file dump that is broken is refused, and the others are written without it; but none of them where their trigger
// first removes all mixing voices, for one of these may be what the broken one holds.
class WholeUnits {
 public:
  // More than that is never held back of a unit, or before a trigger.
  static constexpr std::size_t kMostBytes = 16U << 20;

  struct Message {
    std::uint64_t number = 0;
    Reading reading;
    std::vector<std::uint8_t> bytes;
  };
  // Messages of which is known what is to be done with them, in their order.
  struct Decided {
    std::vector<Message> messages;
    std::string refusal;  // which unit or message of them is not handed on, and why; empty: all of them are
  };

  explicit WholeUnits(std::size_t mostBytes = kMostBytes) : mostBytes_(mostBytes) {}

  // The next message. A dump to which the instrument does not listen is handed on at once, for it to refuse, and is of
  // no unit.
  std::vector<Decided> next(Message message, bool isHeard);
  // A message was cut short: it may have been a file dump.
  void lose() { missFileDump("a message was cut short"); }
  // What is still held back: none of that is whole. Call it once, at the end.
  std::vector<Decided> finish();

 private:
  // What is held back together.
  struct Waiting {
    std::vector<Message> messages;
    std::size_t bytes = 0;
    bool isTooMuch = false;
    std::string fault;  // of a header or footer that is broken and taken all the same: with it goes the unit
  };

  void decide(Message message, const std::vector<UnitReport>& ended);
  void wait(Waiting& waiting, Message message);
  void release(Waiting& waiting, Message last);
  void releaseFileDumps(Message trigger);
  void missFileDump(const std::string& why);
  void refuse(Waiting& waiting, const UnitReport& unit);
  void refuse(Message message, std::string why);
  void handOn(Message message);

  const std::size_t mostBytes_;
  UnitFollower follower_;
  Waiting unit_;
  Waiting fileDumps_;
  std::string missing_;  // why not all file dumps for the next trigger are among them; empty: they are
  std::vector<Decided> decided_;
};

}  // namespace Editor
