#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <map>
#include <string>

#include "midi/Counted.h"
#include "output/Console.h"

namespace Editor {

// Messages for other devices than the library's: told with a count for each, and what to do about them.
class OtherDevices {
 public:
  // What there is to do: an option of the verb, a setting of the library, which switches on an instrument that is off.
  enum class WayOut : std::uint8_t { optionOrSetting, option, setting };

  // False when there was one for that device before.
  bool add(unsigned device) { return ++messages_[device] == 1; }
  void tell(Console& console, WayOut way) const {
    for (const auto& [device, count] : messages_) {
      std::string what;
      if (way != WayOut::setting) what = "take it with --any-device";
      if (way == WayOut::optionOrSetting) what += ", or ";
      if (way != WayOut::option) what += fmt::format("listen to it from now on: bda settings device-number {}", device);
      console.problem(fmt::format("{} for device {}: {}", counted(count, "message"), device, what));
    }
  }

 private:
  std::map<unsigned, std::uint64_t> messages_;
};

}  // namespace Editor
