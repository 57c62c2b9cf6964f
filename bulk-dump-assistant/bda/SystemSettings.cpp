#include "SystemSettings.h"

#include <cstdint>

#include "EditorNumbers.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {

CMA::ParameterGroup* utilityOf(CMA::JobTools& jobTools) {
  CMA::SystemParameterModel* const system = jobTools.getSystemModel();
  return system == nullptr ? nullptr : system->getUtility();
}

CMA::DeviceNumber readDeviceNumber(CMA::JobTools& jobTools, unsigned char* nibble) {
  std::uint8_t setting = CMA::DeviceNumber_Off;
  if (CMA::ParameterGroup* const utility = utilityOf(jobTools)) {
    setting = 0;
    utility->get(&setting, kDeviceNumberParameter);
  }
  const bool isDevice = setting != CMA::DeviceNumber_All && setting != CMA::DeviceNumber_Off;
  if (nibble != nullptr) *nibble = isDevice ? setting : std::uint8_t{0};
  return static_cast<CMA::DeviceNumber>(setting);
}

bool isReceiveSwitchOn(CMA::JobTools& jobTools) {
  std::uint8_t on = 0;
  if (CMA::ParameterGroup* const utility = utilityOf(jobTools)) utility->get(&on, kReceiveSwitchParameter);
  return on != 0;
}

}  // namespace BDA
