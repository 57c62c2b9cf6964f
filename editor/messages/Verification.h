#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "messages/Messages.h"
#include "messages/Units.h"

namespace Editor {

// What is broken in a message, in a unit that ended with it, or in how it was received.
struct MessageFault {
  std::string kind;  // the same for those that are alike
  std::string text;  // behind the place of the message
};
std::vector<MessageFault> faultsIn(const Reading& reading);
std::vector<MessageFault> faultsIn(const std::vector<UnitReport>& ended);

// Judges messages by themselves, one after the other, and the units that they make.
class Verification {
 public:
  // The next message, under its number. Returns the units that end with it.
  std::vector<UnitReport> next(const Reading& reading, std::uint64_t message);
  // Those that are still open; call it once, at the end.
  std::vector<UnitReport> finish();

  std::uint64_t messages() const { return messages_; }
  std::uint64_t brokenMessages() const { return brokenMessages_; }
  std::uint64_t units() const { return units_; }
  std::uint64_t brokenUnits() const { return brokenUnits_; }
  bool areAllWhole() const { return brokenMessages_ + brokenUnits_ == 0; }
  // Whether one of them is for this instrument at all.
  bool isAnyOurs() const { return isAnyOurs_; }

 private:
  std::vector<UnitReport> counted(std::vector<UnitReport> ended);

  UnitFollower follower_;
  std::uint64_t messages_ = 0;
  std::uint64_t brokenMessages_ = 0;
  std::uint64_t units_ = 0;
  std::uint64_t brokenUnits_ = 0;
  bool isAnyOurs_ = false;
};

}  // namespace Editor
