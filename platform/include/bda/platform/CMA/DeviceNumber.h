#pragma once

#include <cstdint>

namespace CMA {

// The device-number setting: 0 to 15 are devices 1 to 16.
enum DeviceNumber : std::int32_t {
  DeviceNumber_All = 16,  // every device number is accepted, device 1 is sent
  DeviceNumber_Off = 17,  // no System Exclusive message is accepted or sent
};

}  // namespace CMA
