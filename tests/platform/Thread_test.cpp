#include "bda/platform/UtilSrv/Thread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/OwnScheduling.h"

namespace {

using namespace Testing;
using ::testing::ElementsAreArray;
using UtilSrv::Thread;

// This thread is scheduled in an unusual way, and the test's choice of scheduling ends with it.
class ThreadTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(setOwnScheduling(kUnusual)); }
  void TearDown() override {
    Thread::setScheduling(Thread::Scheduling::System);
    setOwnScheduling({});
  }
  void expectLeftAlone() {
    EXPECT_EQ(thread.getPolicy(), 0);
    EXPECT_EQ(thread.getPriority(), 0);
    EXPECT_FALSE(thread.change(0, 0, 0));
    EXPECT_TRUE(ownScheduling() == kUnusual);
  }

  Thread thread;
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

TEST_F(ThreadTest, ReadsAndChangesWhatTheSystemSchedulesAndNothingElsewhere) {
  thread.attach();
  if (!kHasScheduling) {
    expectLeftAlone();
    return;
  }
  EXPECT_EQ(thread.getPolicy(), kUnusual.policy);
  EXPECT_EQ(thread.getPriority(), kUnusual.priority);
  EXPECT_TRUE(thread.change(0, 0, 0));
  EXPECT_TRUE(ownScheduling() == OwnScheduling{});
}

TEST_F(ThreadTest, UnattachedItReads0AndChangesNothing) {
  expectLeftAlone();
  thread.attach();
  thread.detach();
  expectLeftAlone();
}

TEST_F(ThreadTest, AnEditorHasItsThreadsLeftAlone) {
  Thread::setScheduling(Thread::Scheduling::LeftAlone);
  thread.attach();
  expectLeftAlone();
  const Thread copy(thread);
  EXPECT_EQ(copy.getPolicy(), 0);
}

TEST_F(ThreadTest, WhatIsAttachedWhenItIsToBeLeftAloneIsStillRestored) {
  thread.attach();
  const Thread::_PolicyType policy = thread.getPolicy();
  const Thread::_PriorityType priority = thread.getPriority();
  thread.change(0, 0, 0);
  Thread::setScheduling(Thread::Scheduling::LeftAlone);
  thread.change(policy, priority, 0);
  EXPECT_TRUE(ownScheduling() == kUnusual);
  thread.attach();
  expectLeftAlone();
}

TEST_F(ThreadTest, SchedulingIsTheSystemsUntilAnEditorSaysOtherwise) {
  EXPECT_EQ(Thread::setScheduling(Thread::Scheduling::LeftAlone), Thread::Scheduling::System);
  EXPECT_EQ(Thread::setScheduling(Thread::Scheduling::System), Thread::Scheduling::LeftAlone);
  thread.attach();
  EXPECT_EQ(thread.change(0, 0, 0), kHasScheduling);
}

TEST_F(ThreadTest, ItsListenerHearsEveryCallAlsoOfWhatIsLeftAlone) {
  const std::string change = "change " + std::to_string(kUnusual.policy) + " " + std::to_string(kUnusual.priority);
  const std::vector<std::string> everyCall{"attach", "getPolicy", "getPriority", change + " 0", "detach"};
  for (const Thread::Scheduling scheduling : {Thread::Scheduling::System, Thread::Scheduling::LeftAlone}) {
    Thread::setScheduling(scheduling);
    Listener listener;
    thread.attach();
    thread.getPolicy();
    thread.getPriority();
    thread.change(kUnusual.policy, kUnusual.priority, 0);
    thread.detach();
    EXPECT_THAT(listener.calls, ElementsAreArray(everyCall));
  }
}

}  // namespace
