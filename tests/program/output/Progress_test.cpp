#include "output/Progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "ExitCode.h"

using Editor::Console;
using Editor::describeProgress;
using Editor::Failure;
using Editor::Interruptible;
using Editor::Progress;

TEST(Progress, saysItemsBytesAndTheTimeThatIsLeft) {
  using Seconds = std::chrono::duration<double>;
  EXPECT_EQ(describeProgress({120, 2600}, "content", {1250000, 0}, Seconds(1)),
            "120 of 2600 contents, 1.2 MB, 21 s left");
  EXPECT_EQ(describeProgress({2600, 2600}, "content", {0, 0}, Seconds(9)), "2600 of 2600 contents, 0.0 MB, 0 s left");
  EXPECT_EQ(describeProgress({120, 0}, "message", {1000000, 3000000}, Seconds(3)),
            "120 messages, 1.0 of 3.0 MB, 6 s left");
  EXPECT_EQ(describeProgress({120, 0}, "message", {1200000, 0}, Seconds(3)), "120 messages, 1.2 MB");
  EXPECT_EQ(describeProgress({1, 0}, "content", {1200000, 0}, Seconds(3)), "1 content, 1.2 MB");
  EXPECT_EQ(describeProgress({0, 1}, "content", {0, 0}, Seconds(3)), "0 of 1 content, 0.0 MB");
}

TEST(Progress, ctrlCEndsTheRunAtTheNextStep) {
  Console console;
  Progress progress(console, "restore", "message", 3);
  EXPECT_NO_THROW(progress.step(1));
  std::raise(SIGINT);
  try {
    progress.step(1);
    FAIL() << "it went on";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), Editor::kInterrupted);
    EXPECT_STREQ(failure.what(), "interrupted");
  }
}

// As nohup has it.
TEST(Progress, whatIsIgnoredStaysIgnored) {
  const auto before = std::signal(SIGHUP, SIG_IGN);
  {
    const Interruptible outer;
    const Interruptible inner;
    std::raise(SIGHUP);
    EXPECT_NO_THROW(Interruptible::check());
    std::raise(SIGINT);
    EXPECT_THROW(Interruptible::check(), Failure);
  }
  EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
}

TEST(Progress, anEarlierCtrlCDoesNotEndALaterRun) {
  {
    const Interruptible first;
    std::raise(SIGINT);
  }
  const Interruptible second;
  EXPECT_NO_THROW(Interruptible::check());
}

TEST(Progress, insideAnotherOneCtrlCIsNotLost) {
  const Interruptible outer;
  {
    const Interruptible inner;
    std::raise(SIGINT);
  }
  const Interruptible next;
  EXPECT_THROW(Interruptible::check(), Failure);
}

TEST(Progress, afterTheRunCtrlCEndsTheProgramAgain) {
  EXPECT_EXIT(
      {
        { const Interruptible run; }
        std::raise(SIGINT);
      },
      testing::KilledBySignal(SIGINT), "");
}
