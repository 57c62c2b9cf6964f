#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "wire/WireTime.h"

namespace Editor {

// How fast bytes go out, in bytes a second; 0: as fast as the port takes them.
struct Pace {
  std::uint64_t bytesPerSecond = 0;

  // When that many bytes have passed, from their first one; a fraction of a microsecond counts as one.
  WireTime timeOf(std::uint64_t bytes) const;

  friend bool operator==(const Pace&, const Pace&) = default;
};

inline constexpr Pace kCablePace{3'125};  // a MIDI cable: 31,250 baud, ten bits a byte
inline constexpr Pace kUsbPace{1'000'000};
inline constexpr Pace kNoPace{};
inline constexpr std::array<std::pair<const char*, Pace>, 3> kNamedPaces{{
    {"cable", kCablePace},
    {"usb", kUsbPace},
    {"none", kNoPace},
}};

// One of those names, or bytes a second from 1. Nothing: it is none of them.
std::optional<Pace> parsePace(std::string_view text);

// What an instrument is given to work off what it got.
struct Pauses {
  WireTime betweenMessages{};
  WireTime behindUnits{};  // behind the footer of each, beside the other
};

}  // namespace Editor
