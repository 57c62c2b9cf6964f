#include "messages/Verification.h"

namespace Editor {

std::vector<MessageFault> faultsIn(const Reading& reading) {
  if (!isBroken(reading)) return {};
  return {{wordOf(reading.verdict), describeFault(reading)}};
}

std::vector<MessageFault> faultsIn(const std::vector<UnitReport>& ended) {
  std::vector<MessageFault> faults;
  for (const UnitReport& unit : ended)
    if (isBroken(unit)) faults.push_back({wordOf(unit.state), describeUnit(unit)});
  return faults;
}

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
