// UtilSrv::Thread where the system schedules threads.

#include <gtest/gtest.h>

#include <thread>

#include "bda/platform/UtilSrv/Thread.h"
#include "support/OwnScheduling.h"

namespace {

using namespace Testing;
using UtilSrv::Thread;

constexpr Thread::_PolicyType kRoundRobin = 2;

// Runs `body` on a thread whose scheduling is not the one that an unattached Thread tells of.
template <typename Body>
void onUnusualThread(Body body) {
  std::thread([&] {
    ASSERT_TRUE(setOwnScheduling(kUnusual));
    body();
  }).join();
}

TEST(ThreadScheduling, IsReadOfTheAttachedThread) {
  onUnusualThread([] {
    Thread thread;
    thread.attach();
    EXPECT_EQ(thread.getPolicy(), kUnusual.policy);
    EXPECT_EQ(thread.getPriority(), kUnusual.priority);
    if (!thread.change(kRoundRobin, 1, 0)) return;  // a matter of privilege
    EXPECT_EQ(thread.getPolicy(), kRoundRobin);
    EXPECT_EQ(thread.getPriority(), 1);
  });
}

TEST(ThreadScheduling, ChangeTellsWhetherTheSystemAllowedIt) {
  std::thread([] {
    Thread thread;
    thread.attach();
    EXPECT_TRUE(thread.change(kUnusual.policy, kUnusual.priority, 0));
    EXPECT_TRUE(ownScheduling() == kUnusual);
    const bool changed = thread.change(kRoundRobin, 1, 0);
    const OwnScheduling after = ownScheduling();
    EXPECT_EQ(after.policy, changed ? kRoundRobin : kUnusual.policy);
    EXPECT_EQ(after.priority, changed ? 1 : kUnusual.priority);
    EXPECT_TRUE(thread.change(kUnusual.policy, kUnusual.priority, 0));
    EXPECT_TRUE(ownScheduling() == kUnusual);
  }).join();
}

// A thread that has no right to its priority, which somebody else gave it, or where nobody could, that has none at all.
TEST(ThreadScheduling, WithoutTheRightToAPriorityStaysWhereItWasLowered) {
  std::thread([] {
    constexpr OwnScheduling kGiven{kRoundRobin, 50};
    const bool isGiven = setOwnScheduling(kGiven);
    const bool mayRaise = !giveUpRightToPriority() && isGiven;
    const OwnScheduling before = ownScheduling();
    Thread thread;
    thread.attach();
    const bool isLowered = thread.change(kRoundRobin, 1, 0);
    EXPECT_EQ(isLowered, isGiven);
    EXPECT_EQ(thread.change(kGiven.policy, kGiven.priority, 0), mayRaise);
    const OwnScheduling left = mayRaise ? kGiven : isLowered ? OwnScheduling{kRoundRobin, 1} : before;
    EXPECT_TRUE(ownScheduling() == left);
  }).join();
}

TEST(ThreadScheduling, WhatIsImpossibleIsRefused) {
  const OwnScheduling before = ownScheduling();
  Thread thread;
  thread.attach();
  EXPECT_FALSE(thread.change(kRoundRobin, 1000, 0));
  EXPECT_FALSE(thread.change(12345, 0, 0));
  EXPECT_TRUE(ownScheduling() == before);
}

TEST(ThreadScheduling, OfACopyIsTheSameThreads) {
  onUnusualThread([] {
    Thread thread;
    thread.attach();
    const Thread copy(thread);
    Thread assigned;
    assigned = thread;
    EXPECT_EQ(copy.getPolicy(), kUnusual.policy);
    EXPECT_EQ(assigned.getPolicy(), kUnusual.policy);
    EXPECT_TRUE(assigned.change(0, 0, 0));
    EXPECT_TRUE(ownScheduling() == OwnScheduling{});
    EXPECT_EQ(copy.getPolicy(), 0);
  });
}

TEST(ThreadScheduling, IsLeftAloneOnEveryThreadOfTheProcess) {
  Thread::setScheduling(Thread::Scheduling::LeftAlone);
  onUnusualThread([] {
    Thread thread;
    thread.attach();
    EXPECT_FALSE(thread.change(0, 0, 0));
    EXPECT_TRUE(ownScheduling() == kUnusual);
  });
  Thread::setScheduling(Thread::Scheduling::System);
}

}  // namespace
