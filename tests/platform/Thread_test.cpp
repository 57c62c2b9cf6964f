#include "UtilSrv/Thread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using UtilSrv::Thread;

// The calling thread's own view.
struct Scheduling {
  Scheduling() {
    sched_param parameters{};
    pthread_getschedparam(pthread_self(), &policy, &parameters);
    priority = parameters.sched_priority;
  }
  bool operator==(const Scheduling& other) const { return policy == other.policy && priority == other.priority; }
  int policy = -1;
  int priority = -1;
};

struct Listener : UtilSrv::ThreadListener {
  Listener() : before(Thread::setThreadListener(this)) {}
  ~Listener() override { Thread::setThreadListener(before); }
  void attached() noexcept override { calls.emplace_back("attach"); }
  void policyRead() noexcept override { calls.emplace_back("getPolicy"); }
  void priorityRead() noexcept override { calls.emplace_back("getPriority"); }
  void changed(Thread::_PolicyType policy, Thread::_PriorityType priority, int mode) noexcept override {
    calls.push_back("change " + std::to_string(policy) + " " + std::to_string(priority) + " " + std::to_string(mode));
  }
  void detached() noexcept override { calls.emplace_back("detach"); }
  UtilSrv::ThreadListener* before;
  std::vector<std::string> calls;
};

TEST(Thread, ReadsTheSchedulingOfTheAttachedThread) {
  const Scheduling mine;
  Thread thread;
  thread.attach();
  EXPECT_EQ(thread.getPolicy(), mine.policy);
  EXPECT_EQ(thread.getPriority(), mine.priority);
}

TEST(Thread, UnattachedItReads0AndChangesNothing) {
  const Scheduling before;
  Thread thread;
  EXPECT_EQ(thread.getPolicy(), 0);
  EXPECT_EQ(thread.getPriority(), 0);
  EXPECT_FALSE(thread.change(2, 1, 0));
  thread.attach();
  thread.detach();
  EXPECT_FALSE(thread.change(2, 1, 0));
  EXPECT_TRUE(Scheduling() == before);
}

TEST(Thread, ChangeTellsWhetherTheSystemAllowedIt) {
  std::thread([] {
    Thread thread;
    thread.attach();
    const Scheduling before;
    const bool changed = thread.change(2, 1, 0);
    const Scheduling after;
    if (changed) {
      EXPECT_EQ(after.policy, SCHED_RR);
      EXPECT_EQ(after.priority, 1);
      EXPECT_TRUE(thread.change(before.policy, before.priority, 0));
    }
    EXPECT_TRUE(Scheduling() == before);  // without the privilege nothing happened
  }).join();
}

TEST(Thread, ImpossibleSchedulingIsRefused) {
  const Scheduling before;
  Thread thread;
  thread.attach();
  EXPECT_FALSE(thread.change(2, 1000, 0));
  EXPECT_FALSE(thread.change(12345, 0, 0));
  EXPECT_TRUE(Scheduling() == before);
}

TEST(Thread, ACopyIsAttachedToTheSameThread) {
  Thread thread;
  thread.attach();
  const Thread copy(thread);
  Thread assigned;
  assigned = thread;
  std::thread([&] {  // another thread's scheduling would be another number only with privileges; it must not crash
    EXPECT_EQ(copy.getPolicy(), assigned.getPolicy());
  })
      .join();
  EXPECT_EQ(copy.getPolicy(), Scheduling().policy);
}

TEST(Thread, ItsListenerHearsEveryCallOfItsThreadOnly) {
  Listener listener;
  const Scheduling before;
  Thread thread;
  thread.attach();
  thread.getPolicy();
  thread.getPriority();
  thread.change(before.policy, before.priority, 0);
  thread.detach();
  EXPECT_THAT(
      listener.calls,
      ElementsAre("attach", "getPolicy", "getPriority",
                  "change " + std::to_string(before.policy) + " " + std::to_string(before.priority) + " 0", "detach"));
  listener.calls.clear();
  std::thread([] {
    Thread other;
    other.attach();
  }).join();
  EXPECT_THAT(listener.calls, IsEmpty());
}

}  // namespace
