#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <map>

#include "midi/Counted.h"
#include "output/Console.h"

namespace Editor {

// Messages for other devices than the library's: told with a count for each, and what to do about them.
class OtherDevices {
 public:
  // False when there was one for that device before.
  bool add(unsigned device) { return ++messages_[device] == 1; }
  void tell(Console& console) const {
    for (const auto& [device, count] : messages_)
      console.problem(
          fmt::format("{} for device {}: take it with --any-device, or listen to it from now on: "
                      "bda settings device-number {}",
                      counted(count, "message"), device, device));
  }

 private:
  std::map<unsigned, std::uint64_t> messages_;
};

}  // namespace Editor
