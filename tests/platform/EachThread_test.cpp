// What an editor sets for one thread is nothing to the others.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "bda/platform/Basekit/Tracer.h"
#include "bda/platform/UtilSrv/Thread.h"

namespace {

using Basekit::Tracer;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using UtilSrv::Thread;

struct Lines : Basekit::TracerSink {
  Lines() : before(Tracer::setThreadSink(this)) {}
  ~Lines() override { Tracer::setThreadSink(before); }
  void write(const char* text, std::size_t length) noexcept override { texts.emplace_back(text, length); }
  Basekit::TracerSink* before;
  std::vector<std::string> texts;
};

struct Listener : UtilSrv::ThreadListener {
  Listener() : before(Thread::setThreadListener(this)) {}
  ~Listener() override { Thread::setThreadListener(before); }
  void attached() noexcept override { ++calls; }
  void policyRead() noexcept override { ++calls; }
  void priorityRead() noexcept override { ++calls; }
  void changed(Thread::_PolicyType, Thread::_PriorityType, int) noexcept override { ++calls; }
  void detached() noexcept override { ++calls; }
  UtilSrv::ThreadListener* before;
  int calls = 0;
};

TEST(EachThread, HasItsOwnTracerSink) {
  Lines mine;
  std::vector<std::string> theirs;
  Basekit::TracerSink* found = &mine;
  std::thread([&] {
    found = Tracer::setThreadSink(nullptr);
    Lines lines;
    Tracer::dumpError("theirs\n");
    theirs = lines.texts;
  }).join();
  EXPECT_EQ(found, nullptr);
  EXPECT_THAT(theirs, ElementsAre("theirs\n"));
  EXPECT_THAT(mine.texts, IsEmpty());
}

TEST(EachThread, HasItsOwnThreadListener) {
  Listener mine;
  int theirs = 0;
  std::thread([&] {
    Listener listener;
    Thread other;
    other.attach();
    other.detach();
    theirs = listener.calls;
  }).join();
  EXPECT_EQ(mine.calls, 0);
  EXPECT_EQ(theirs, 2);
}

}  // namespace
