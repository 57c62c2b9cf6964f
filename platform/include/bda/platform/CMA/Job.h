#pragma once

#include "bda/Export.h"

namespace EvtSrv {
class MemoryHolder;
}

namespace CMA {

class JobTools;

// What jobs, and the operations of JobTools, answer.
namespace JOB {

// The results that have a number; any other number is a failure too.
enum Result : unsigned long {
  Result_Success = 0,               // it is done
  Result_CurrentStateError = 1,     // not in the editor's present mode
  Result_VoiceTypeError = 2,        // not for the present kind of voice
  Result_EditCompareModeError = 3,  // not while an edited sound is compared with the stored one
  Result_SampleAuditionError = 4,   // not while a sample is being heard
  Result_UnknownError = 5,          // any other failure
  Result_MixingVoiceFullError = 6,  // there are as many mixing voices as there may be
};

}  // namespace JOB

// An operation of the editor, which keeps its jobs in a vector and runs them. To run one of the assistant's is to hand
// it a message: on any thread, but never beside BulkDumpAssistant::receiveBulkDump, nor from inside sendSysEx.
class BDA_PLATFORM_API JobReceiver {
 public:
  virtual ~JobReceiver();

  // Runs the job, on the caller's thread, to its end. `argument` and `answer` belong to the caller and may be null. The
  // result is a JOB::Result.
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

  // sendBulkRequest() and its result. `argument` and `answer` are not used.
  unsigned long execEvent(EvtSrv::MemoryHolder* argument, EvtSrv::MemoryHolder* answer) override;
  // Sends the edit buffer. A JOB::Result: an answer that failed on the way counts as a success.
  virtual unsigned long sendBulkRequest() = 0;

 protected:
  // What the job was made with.
  JobTools* getJobTools() const { return jobTools_; }

 private:
  JobTools* jobTools_;
};

// Sends the edit buffer of the normal voice.
class BDA_PLATFORM_API JobNormalVoiceBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobNormalVoiceBulkBase() override;
};
// Sends the edit buffer of the drum voice.
class BDA_PLATFORM_API JobDrumVoiceBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobDrumVoiceBulkBase() override;
};
// Sends the edit buffer of the performance.
class BDA_PLATFORM_API JobPerformanceBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobPerformanceBulkBase() override;
};
// Sends the edit buffer of the multi.
class BDA_PLATFORM_API JobMixBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobMixBulkBase() override;
};
// Sends the edit buffer of the master.
class BDA_PLATFORM_API JobMasterBulkBase : public JobBulkBase {
 public:
  using JobBulkBase::JobBulkBase;
  ~JobMasterBulkBase() override;
};

}  // namespace CMA
