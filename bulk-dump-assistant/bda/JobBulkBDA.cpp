#include "JobBulkBDA.h"

#include "CMA/JobTools.h"
#include "Failure.h"
#include "bda/BulkDumpAssistant.h"

namespace BDA {
namespace {

constexpr Failure<> kJobFailed{{"..\\..\\bda\\JobBulkBDA.cpp", 125, "BDA::JobBulkTools::sendBulkReqToBDA"},
                               "Job Bulk Error !!!\n"};

constexpr std::uint16_t kDeviceOffMessage = 42;
constexpr std::uint16_t kReceiveSwitchParameter = 50;
constexpr int kSetFlag = 1;

}  // namespace

unsigned long JobBulkTools::sendBulkReqToBDA(BulkRequestMessage& request) {
  unsigned char device = 0;
  if (Utility::getDeviceNumber(*jobTools_, &device) == CMA::DeviceNumber_Off) {
    // Past the assistant, which therefore does not know that this message is on the screen.
    if (messageModel_ != nullptr) messageModel_->setId(kDeviceOffMessage);
    return CMA::JOB::Result_UnknownError;
  }
  request[2] = (device & kDeviceMask) | kTypeRequest;

  CMA::SystemParameterModel* const system = jobTools_->getSystemModel();
  CMA::ParameterGroup* const utility = system == nullptr ? nullptr : system->getUtility();
  savedReceiveSwitch_ = 0;
  if (utility != nullptr) {
    utility->get(&savedReceiveSwitch_, kReceiveSwitchParameter);
    constexpr std::uint8_t kOn = 1;
    utility->set(&kOn, kReceiveSwitchParameter, kSetFlag);
  }
  BulkMsgType type = BulkMsg_ReceiveError;
  bool thrown = false;
  try {
    type = assistant_->receiveBulkDump(request.data(), request.size(), DevicePort_Main);
  } catch (...) {
    thrown = true;
  }
  if (utility != nullptr) utility->set(&savedReceiveSwitch_, kReceiveSwitchParameter, kSetFlag);

  if (type == BulkMsg_BulkRequest) return CMA::JOB::Result_Success;
  if (!thrown) kJobFailed();
  return CMA::JOB::Result_UnknownError;
}

}  // namespace BDA
