#include "JobBulkBDA.h"

#include "EditorNumbers.h"
#include "Failure.h"
#include "GiveBack.h"
#include "Reception.h"
#include "SystemSettings.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {
namespace {

constexpr Failure<> kJobFailed{
    {"..\\..\\bda\\JobBulkBDA.cpp", 125, "BDA::JobBulkTools::sendBulkReqToBDA"}, Refusal::none, "Job Bulk Error !!!\n"};

constexpr std::uint8_t kOn = 1;

}  // namespace

unsigned long JobBulkTools::sendBulkReqToBDA(BulkRequestMessage& request) try {
  unsigned char device = 0;
  if (readDeviceNumber(*jobTools_, &device) == CMA::DeviceNumber_Off) {
    // Past the assistant, which therefore does not know that this message is on the screen.
    if (messageModel_ != nullptr) messageModel_->setId(kDeviceOffMessage);
    return CMA::JOB::Result_UnknownError;
  }
  request[2] = (device & kDeviceMask) | kTypeRequest;

  // Without a system model there is no switch.
  CMA::ParameterGroup* const utility = utilityOf(*jobTools_);
  const auto setSwitch = [utility](std::uint8_t value) {
    if (utility != nullptr) utility->set(&value, kReceiveSwitchParameter, kSetFlag);
  };
  savedReceiveSwitch_ = 0;
  if (utility != nullptr) utility->get(&savedReceiveSwitch_, kReceiveSwitchParameter);
  GiveBack receiveSwitch([&] { setSwitch(savedReceiveSwitch_); });
  setSwitch(kOn);
  Reception reception;
  assistant_->receive(request.data(), kRequestLength, DevicePort_Main, reception);
  receiveSwitch.now();
  if (reception.hasThrown) return CMA::JOB::Result_UnknownError;
  if (reception.kind == BulkMsg_BulkRequest) return CMA::JOB::Result_Success;
  kJobFailed();
  return CMA::JOB::Result_UnknownError;
} catch (...) {
  return CMA::JOB::Result_UnknownError;
}

}  // namespace BDA
