#include "JobBulkBDA.h"

#include "EditorNumbers.h"
#include "Failure.h"
#include "bda/BulkDumpAssistant.h"
#include "bda/platform/CMA/JobTools.h"

namespace BDA {
namespace {

constexpr Failure<> kJobFailed{{"..\\..\\bda\\JobBulkBDA.cpp", 125, "BDA::JobBulkTools::sendBulkReqToBDA"},
                               "Job Bulk Error !!!\n"};

constexpr std::uint8_t kOn = 1;

// The receive-bulk switch of a system model, put back as it was. Without a model there is none.
class ReceiveSwitch {
 public:
  ReceiveSwitch(CMA::SystemParameterModel* system, std::uint8_t& saved)
      : utility_(system == nullptr ? nullptr : system->getUtility()), saved_(saved) {
    saved_ = 0;
    if (utility_ != nullptr) utility_->get(&saved_, kReceiveSwitchParameter);
  }
  ReceiveSwitch(const ReceiveSwitch&) = delete;
  ReceiveSwitch& operator=(const ReceiveSwitch&) = delete;
  ~ReceiveSwitch() {
    try {
      set(saved_);
    } catch (...) {
      // The editor's model cannot even take its old value; the job tells of the failure that came first.
    }
  }

  void set(std::uint8_t value) {
    if (utility_ != nullptr) utility_->set(&value, kReceiveSwitchParameter, kSetFlag);
  }

 private:
  CMA::ParameterGroup* utility_;
  std::uint8_t& saved_;
};

}  // namespace

unsigned long JobBulkTools::sendBulkReqToBDA(BulkRequestMessage& request) try {
  unsigned char device = 0;
  if (Utility::getDeviceNumber(*jobTools_, &device) == CMA::DeviceNumber_Off) {
    // Past the assistant, which therefore does not know that this message is on the screen.
    if (messageModel_ != nullptr) messageModel_->setId(kDeviceOffMessage);
    return CMA::JOB::Result_UnknownError;
  }
  request[2] = (device & kDeviceMask) | kTypeRequest;

  const BulkMsgType type = [&] {
    ReceiveSwitch receiveSwitch(jobTools_->getSystemModel(), savedReceiveSwitch_);
    receiveSwitch.set(kOn);
    return assistant_->receiveBulkDump(request.data(), kRequestLength, DevicePort_Main);
  }();
  if (type == BulkMsg_BulkRequest) return CMA::JOB::Result_Success;
  kJobFailed();
  return CMA::JOB::Result_UnknownError;
} catch (...) {
  return CMA::JOB::Result_UnknownError;
}

}  // namespace BDA
