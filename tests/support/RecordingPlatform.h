#pragma once

// An editor's side of the platform for tests: every call on it is written into one list, in order, and any use of any
// call can be made to fail, to answer something else, or to throw.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "bda/BulkDumpAssistant.h"
#include "bda/platform/Basekit/Tracer.h"
#include "bda/platform/UtilSrv/Thread.h"
#include "support/Bytes.h"
#include "support/Calls.h"
#include "support/FakeEventPorts.h"
#include "support/FakeJobTools.h"
#include "support/FakeModels.h"
#include "support/FakeWork.h"

namespace Testing {

// Recorded: "send(4, F0 7D ...)".
class FakeBridge : public BDA::BulkDumpBridge {
 public:
  FakeBridge(Calls& calls, BDA::BulkDumpAssistant* assistant) : BulkDumpBridge(assistant), calls_(calls) {}
  void sendSysEx(const unsigned char* message, std::uint32_t length, BDA::DevicePortNum port) override;

  struct Message {
    BDA::DevicePortNum port;
    Bytes bytes;
  };
  std::vector<Message> messages;
  std::vector<const unsigned char*> pointers;  // where each message stood when it was sent

 private:
  Calls& calls_;
};

// Recorded: "thread.attach", "thread.getPolicy", "thread.getPriority", "thread.change(2, 1, 0)", "thread.detach".
// Listens to the thread that made it, while it lives.
class RecordingThreadListener : public UtilSrv::ThreadListener {
 public:
  explicit RecordingThreadListener(Calls& calls) : calls_(calls), before_(UtilSrv::Thread::setThreadListener(this)) {}
  ~RecordingThreadListener() override { UtilSrv::Thread::setThreadListener(before_); }
  void attached() noexcept override;
  void policyRead() noexcept override;
  void priorityRead() noexcept override;
  void changed(UtilSrv::Thread::_PolicyType policy, UtilSrv::Thread::_PriorityType priority,
               int mode) noexcept override;
  void detached() noexcept override;

 private:
  Calls& calls_;
  UtilSrv::ThreadListener* before_;
};

// Collects what is traced on the thread that made it. Whoever expects lines takes them; lines that are left at its end
// fail the test.
class TraceScope : public Basekit::TracerSink {
 public:
  explicit TraceScope(Calls* calls = nullptr) : calls_(calls), before_(Basekit::Tracer::setThreadSink(this)) {}
  ~TraceScope() override;
  void write(const char* text, std::size_t length) noexcept override;
  std::vector<std::string> take();

 private:
  Calls* calls_;
  Basekit::TracerSink* before_;
  std::vector<std::string> lines_;
};

// The texts of one failure: its location in the family's source file ("Receiver") and its message.
std::vector<std::string> failure(std::string_view family, int line, std::string_view function,
                                 std::string_view message);
// Several of them in a row.
template <typename... More>
std::vector<std::string> lines(std::vector<std::string> first, const More&... more) {
  (first.insert(first.end(), more.begin(), more.end()), ...);
  return first;
}

}  // namespace Testing
