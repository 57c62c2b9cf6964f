#pragma once

// The two settings of the editor's system model that every message is checked against. What the model throws is let
// through.

#include "bda/platform/CMA/DeviceNumber.h"

namespace CMA {
class JobTools;
class ParameterGroup;
}  // namespace CMA

namespace BDA {

// Where they are; null if there is no such model.
CMA::ParameterGroup* utilityOf(CMA::JobTools& jobTools);

// As Utility::getDeviceNumber.
CMA::DeviceNumber readDeviceNumber(CMA::JobTools& jobTools, unsigned char* nibble);

// Off, too, without a system model.
bool isReceiveSwitchOn(CMA::JobTools& jobTools);

}  // namespace BDA
