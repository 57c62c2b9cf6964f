// What GoogleTest asks a host for (its gtest/internal/custom/gtest-port.h), where the compiler's library has no
// std::mutex and std::condition_variable. GoogleTest's own mutex and thread-local storage are the system's.
#pragma once

#include <atomic>

#define GTEST_HAS_NOTIFICATION_ 1

namespace testing::internal {

// Lets a thread of GoogleTest's own tests wait. No test of ours does, so waiting may be costly.
class Notification {
 public:
  Notification() = default;
  Notification(const Notification&) = delete;
  Notification& operator=(const Notification&) = delete;

  void Notify() { notified_ = true; }
  void WaitForNotification() {
    while (!notified_) {
    }
  }

 private:
  std::atomic<bool> notified_{false};
};

}  // namespace testing::internal
