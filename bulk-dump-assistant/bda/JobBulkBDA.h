#pragma once

#include <array>
#include <cstdint>

#include "AddressRows.h"
#include "BulkMessage.h"
#include "bda/platform/CMA/Job.h"

namespace BDA {

class BulkDumpAssistant;
class MessageModelInterfaceWrapper;

// A bulk request as the five jobs keep it.
using BulkRequestMessage = std::array<std::uint8_t, kRequestLength>;

// Feeds bulk requests to the assistant as if they had arrived on port 1, so that it sends the dumps.
class JobBulkTools {
 public:
  // Nothing is owned. Only `messageModel` may be null: nothing is then shown.
  JobBulkTools(BulkDumpAssistant* assistant, CMA::JobTools* jobTools, MessageModelInterfaceWrapper* messageModel)
      : assistant_(assistant), jobTools_(jobTools), messageModel_(messageModel), savedReceiveSwitch_(0) {}

  // Fills in the request's device number and runs it with the receive-bulk switch on, whatever its setting, which is
  // restored. A JOB::Result: Result_UnknownError when the device number is OFF or the message was no request that
  // could be answered, or when something was thrown. An answer that failed on the way is a success here: the log,
  // the screen and the observer tell.
  unsigned long sendBulkReqToBDA(BulkRequestMessage& request);

 private:
  BulkDumpAssistant* assistant_;
  CMA::JobTools* jobTools_;
  MessageModelInterfaceWrapper* messageModel_;
  std::uint8_t savedReceiveSwitch_;
};

// The job that sends the edit buffer whose header has the middle address byte `kHeaderMid`.
template <typename Base, std::uint8_t kHeaderMid>
class JobBulkBDA : public Base {
 public:
  JobBulkBDA(BulkDumpAssistant* assistant, CMA::JobTools* jobTools, MessageModelInterfaceWrapper* messageModel)
      : Base(jobTools),
        request_{kStartOfExclusive, kMakerId, 0, kModelId1, kModelId2, kHeaderHi, kHeaderMid, 0, kEndOfExclusive},
        tools_(assistant, jobTools, messageModel) {}

  unsigned long sendBulkRequest() override { return tools_.sendBulkReqToBDA(request_); }

 private:
  BulkRequestMessage request_;
  JobBulkTools tools_;
};

class JobNormalVoiceBulkBDA : public JobBulkBDA<CMA::JobNormalVoiceBulkBase, 0x0F> {
  using JobBulkBDA::JobBulkBDA;
};
class JobDrumVoiceBulkBDA : public JobBulkBDA<CMA::JobDrumVoiceBulkBase, 0x2F> {
  using JobBulkBDA::JobBulkBDA;
};
class JobPerformanceBulkBDA : public JobBulkBDA<CMA::JobPerformanceBulkBase, 0x4F> {
  using JobBulkBDA::JobBulkBDA;
};
class JobMixBulkBDA : public JobBulkBDA<CMA::JobMixBulkBase, 0x5F> {
  using JobBulkBDA::JobBulkBDA;
};
class JobMasterBulkBDA : public JobBulkBDA<CMA::JobMasterBulkBase, 0x7F> {
  using JobBulkBDA::JobBulkBDA;
};

}  // namespace BDA
