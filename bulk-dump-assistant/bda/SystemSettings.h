#pragma once

// The two settings of the editor's system model that every message is checked against. Both let through what the model
// throws.

#include "bda/platform/CMA/DeviceNumber.h"

namespace CMA {
class JobTools;
}

namespace BDA {

// As Utility::getDeviceNumber.
CMA::DeviceNumber readDeviceNumber(CMA::JobTools& jobTools, unsigned char* nibble);

// Off, too, without a system model.
bool isReceiveSwitchOn(CMA::JobTools& jobTools);

}  // namespace BDA
