#pragma once

#include "bda/Export.h"

namespace EvtSrv {
class MemoryHolder;
}

namespace CMA {

class JobTools;

namespace JOB {

enum Result : unsigned long {
  Result_Success = 0,
  Result_CurrentStateError,
  Result_VoiceTypeError,
  Result_EditCompareModeError,
  Result_SampleAuditionError,
  Result_UnknownError,
  Result_MixingVoiceFullError,
};

}  // namespace JOB

// An operation of the editor, which keeps its jobs in a vector and runs them. To run one of the assistant's is to hand
// it a message: on any thread, but never beside BulkDumpAssistant::receiveBulkDump, nor from inside sendSysEx.
class BDA_PLATFORM_API JobReceiver {
 public:
  virtual ~JobReceiver();

  // Runs the job. `argument` and `answer` belong to the caller and may be null. The result is a JOB::Result.
  virtual unsigned long execEvent(EvtSrv::MemoryHolder* argument, EvtSrv::MemoryHolder* answer) = 0;
  // Another event than the job's own; answered with Result_UnknownError unless a job knows it.
  virtual unsigned long execOther(EvtSrv::MemoryHolder* argument, EvtSrv::MemoryHolder* answer, unsigned char event);
};

// A job that sends the edit buffer of one kind to the instrument.
class BDA_PLATFORM_API JobBulkBase : public JobReceiver {
 public:
  // `jobTools` is the editor's and outlives the job.
  explicit JobBulkBase(JobTools* jobTools);
  ~JobBulkBase() override;

  // sendBulkRequest() and its result.
  unsigned long execEvent(EvtSrv::MemoryHolder* argument, EvtSrv::MemoryHolder* answer) override;
  virtual unsigned long sendBulkRequest() = 0;

 protected:
  JobTools* getJobTools() const { return jobTools_; }

 private:
  JobTools* jobTools_;
};

class BDA_PLATFORM_API JobNormalVoiceBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobNormalVoiceBulkBase() override;
};
class BDA_PLATFORM_API JobDrumVoiceBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobDrumVoiceBulkBase() override;
};
class BDA_PLATFORM_API JobPerformanceBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobPerformanceBulkBase() override;
};
class BDA_PLATFORM_API JobMixBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobMixBulkBase() override;
};
class BDA_PLATFORM_API JobMasterBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobMasterBulkBase() override;
};

}  // namespace CMA
