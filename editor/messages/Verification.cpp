#include "messages/Verification.h"

namespace Editor {

std::vector<UnitReport> Verification::next(const Reading& reading, std::uint64_t message) {
  ++messages_;
  if (isBroken(reading)) ++brokenMessages_;
  isAnyOurs_ = isAnyOurs_ || reading.kind != Reading::Kind::foreign;
  return counted(follower_.next(reading, message));
}

std::vector<UnitReport> Verification::finish() { return counted(follower_.finish()); }

std::vector<UnitReport> Verification::counted(std::vector<UnitReport> ended) {
  for (const UnitReport& unit : ended) {
    ++units_;
    if (isBroken(unit)) ++brokenUnits_;
  }
  return ended;
}

}  // namespace Editor
