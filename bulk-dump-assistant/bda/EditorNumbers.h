#pragma once

// Numbers by which the editor's models and its screen know things.

#include <cstdint>

namespace BDA {

// Parameters of the system's utility group.
inline constexpr std::uint16_t kReceiveSwitchParameter = 50;
inline constexpr std::uint16_t kDeviceNumberParameter = 51;

// The flag of every parameter that is set, but for a tempo that is only carried over: the model tells its listeners.
inline constexpr int kSetFlag = 1;

// Messages on the screen.
enum MessageId : std::uint16_t {
  kNoMessage = 0,
  kStoring = 1,
  kReceiving = 11,
  kAnswering = 13,
  kCheckSumErrorMessage = 40,
  kReceiveSwitchOffMessage = 41,
  kDeviceOffMessage = 42,
  kWrongDeviceMessage = 43,
  kErrorMessage = 44,
  kModeErrorMessage = 45,
  kMixingVoiceFullMessage = 46,
};

}  // namespace BDA
