#include "bda/platform/UtilSrv/Thread.h"

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

// Runs `body` on a thread whose scheduling is not the one that an unattached Thread tells of. Every thread may ask for
// it.
template <typename Body>
void onBatchThread(Body body) {
  std::thread([&] {
    const sched_param parameters{};
    ASSERT_EQ(pthread_setschedparam(pthread_self(), SCHED_BATCH, &parameters), 0);
    body();
  }).join();
}

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
  onBatchThread([] {
    Thread thread;
    thread.attach();
    EXPECT_EQ(thread.getPolicy(), SCHED_BATCH);
    EXPECT_EQ(thread.getPriority(), 0);
    if (!thread.change(SCHED_RR, 1, 0)) return;  // a matter of privilege
    EXPECT_EQ(thread.getPolicy(), SCHED_RR);
    EXPECT_EQ(thread.getPriority(), 1);
  });
}

TEST(Thread, UnattachedItReads0AndChangesNothing) {
  onBatchThread([] {
    const auto expectUnattached = [](Thread& thread) {
      EXPECT_EQ(thread.getPolicy(), 0);
      EXPECT_EQ(thread.getPriority(), 0);
      EXPECT_FALSE(thread.change(SCHED_OTHER, 0, 0));
      EXPECT_EQ(Scheduling().policy, SCHED_BATCH);
    };
    Thread thread;
    expectUnattached(thread);
    thread.attach();
    thread.detach();
    expectUnattached(thread);
  });
}

TEST(Thread, ChangeTellsWhetherTheSystemAllowedIt) {
  std::thread([] {
    Thread thread;
    thread.attach();
    EXPECT_TRUE(thread.change(SCHED_BATCH, 0, 0));
    const Scheduling before;
    EXPECT_EQ(before.policy, SCHED_BATCH);
    const bool changed = thread.change(SCHED_RR, 1, 0);
    const Scheduling after;
    EXPECT_EQ(after.policy, changed ? SCHED_RR : SCHED_BATCH);
    EXPECT_EQ(after.priority, changed ? 1 : 0);
    EXPECT_TRUE(thread.change(SCHED_BATCH, 0, 0));
    EXPECT_TRUE(Scheduling() == before);
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
  onBatchThread([] {
    Thread thread;
    thread.attach();
    const Thread copy(thread);
    Thread assigned;
    assigned = thread;
    EXPECT_EQ(copy.getPolicy(), SCHED_BATCH);
    EXPECT_EQ(assigned.getPolicy(), SCHED_BATCH);
    EXPECT_TRUE(assigned.change(SCHED_OTHER, 0, 0));
    EXPECT_EQ(Scheduling().policy, SCHED_OTHER);
    EXPECT_EQ(copy.getPolicy(), SCHED_OTHER);
  });
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
