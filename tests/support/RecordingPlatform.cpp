#include "support/RecordingPlatform.h"

#include <gtest/gtest.h>

#include <utility>

#include "support/FakeCalls.h"

namespace Testing {

void FakeBridge::sendSysEx(const unsigned char* message, std::uint32_t length, BDA::DevicePortNum port) {
  const auto text = [&] { return call("send", std::uint32_t{port}, textOf(message, length)); };
  if (calls_.use("send", 1, 0, text) == 0 || !calls_.records) return;
  messages.push_back({port, Bytes(message, message + length)});
  pointers.push_back(message);
}

void RecordingThreadListener::attached() noexcept {
  calls_.use("thread.attach", 1, 0, [] { return call("thread.attach"); });
}
void RecordingThreadListener::policyRead() noexcept {
  calls_.use("thread.getPolicy", 1, 0, [] { return call("thread.getPolicy"); });
}
void RecordingThreadListener::priorityRead() noexcept {
  calls_.use("thread.getPriority", 1, 0, [] { return call("thread.getPriority"); });
}
void RecordingThreadListener::changed(UtilSrv::Thread::_PolicyType policy, UtilSrv::Thread::_PriorityType priority,
                                      int mode) noexcept {
  calls_.use("thread.change", 1, 0, [&] { return call("thread.change", policy, priority, mode); });
}
void RecordingThreadListener::detached() noexcept {
  calls_.use("thread.detach", 1, 0, [] { return call("thread.detach"); });
}

TraceScope::~TraceScope() {
  Basekit::Tracer::setThreadSink(before_);
  for (const std::string& line : lines_) ADD_FAILURE() << "unexpected line: " << line;
}

void TraceScope::write(const char* text, std::size_t length) noexcept {
  lines_.emplace_back(text, length);
  if (calls_ != nullptr) calls_->trace(lines_.back());
}

std::vector<std::string> TraceScope::take() { return std::exchange(lines_, {}); }

std::vector<std::string> failure(std::string_view family, int line, std::string_view function,
                                 std::string_view message) {
  return {"..\\..\\bda\\" + std::string(family) + ".cpp:" + std::to_string(line) + " [" + std::string(function) + "] ",
          std::string(message)};
}

}  // namespace Testing
