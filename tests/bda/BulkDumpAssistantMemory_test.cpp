// What the module allocates, and what becomes of it when storage runs out. The recording platform is silent meanwhile,
// so that only the module is measured.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "bda/BulkDumpAssistant.h"
#include "support/Allocations.h"
#include "support/AssistantFixture.h"

namespace {

using namespace Testing;
using namespace BDA;

class Memory : public AssistantFixture {
 protected:
  // What the module allocates in `action`.
  template <typename Action>
  long allocationsOf(Action action) {
    record.records = false;
    allocations.of(action);
    record.records = true;
    return allocations.count;
  }
  // With that allocation failing, and (`onwards`) all that follow.
  template <typename Action>
  void withFailure(long number, bool onwards, Action action) {
    record.records = false;
    allocations.ofWithFailure(number, onwards, action);
    record.records = true;
  }
  BulkMsgType feed(const Bytes& message, std::uint32_t from = 1) {
    return assistant->receiveBulkDump(message.data(), message.size(), DevicePortNum(from));
  }
};

struct Block {
  const char* address;
  std::size_t length;
};
constexpr Block kSystemBlocks[] = {
    {"00 00 00", 68}, {"00 40 00", 8},  {"00 03 00", 36}, {"00 04 00", 36},
    {"00 20 00", 20}, {"00 21 00", 38}, {"00 05 00", 22}, {"00 06 00", 5},
};

TEST_F(Memory, TheCounterCounts) {
  EXPECT_EQ(allocationsOf([] { delete new int(7); }), 1);
}

TEST_F(Memory, AReceivedParameterBlockAllocatesNothing) {
  for (const Block& block : kSystemBlocks) {
    const Bytes message = dumpMessage(block.address, pattern(block.length));
    for (const std::uint32_t from : {1U, 4U, 5U, 6U, 2U})
      EXPECT_EQ(allocationsOf([&] { EXPECT_EQ(feed(message, from), BulkMsg_BulkDump); }), 0) << block.address;
  }
  ASSERT_EQ(tools.system.adPart->params[0], pattern(8)[0]) << "it was received";
}

TEST_F(Memory, AHeaderAndABlockAfterItAllocateNothingInTheModule) {
  openHeader();  // the fakes' models exist now; the header itself makes new ones
  const Bytes equaliser = dumpMessage("36 10 00", pattern(20));
  EXPECT_EQ(allocationsOf([&] { feed(equaliser); }), 0);
  EXPECT_EQ(tools.temporaryMulti->masterEq[0], pattern(20)[0]) << "it was received";
}

TEST_F(Memory, AFooterAllocatesNothing) {
  send("0E 0A 05");
  const Bytes footer = dumpMessage("0F 0A 05");
  EXPECT_EQ(allocationsOf([&] { feed(footer); }), 0);
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Memory, RejectionsAllocateNothing) {
  Bytes wrong = dumpMessage("00 40 00", pattern(8));
  wrong[12] ^= 1;
  const Bytes other = dumpMessage("00 40 00", pattern(8), 3);
  const Bytes foreign = bytesOf("F0 7E 00 7F 14 00 00 00 F7");
  struct NoSink : Basekit::TracerSink {
    void write(const char*, std::size_t) noexcept override {}
  } none;
  Basekit::TracerSink* const before = Basekit::Tracer::setThreadSink(&none);
  for (const Bytes& message : {wrong, other, foreign}) EXPECT_EQ(allocationsOf([&] { feed(message); }), 0);
  Basekit::Tracer::setThreadSink(before);
}

TEST_F(Memory, ABuiltDumpMessageAllocatesAtMostTwice) {
  for (const Block& block : kSystemBlocks) {
    const Bytes message = requestMessage(block.address);
    // Two for the message and the list that holds it, one for the list of blocks.
    const long count = allocationsOf([&] { EXPECT_EQ(feed(message), BulkMsg_BulkRequest); });
    EXPECT_LE(count, 3) << block.address;
    EXPECT_GE(count, 1) << "nothing was built";
  }
}

TEST_F(Memory, TheMessagesOfALongAnswerAllocateAtMostTwiceEach) {
  request("0E 5F 00");
  const long messages = long(sent().size());
  ASSERT_GT(messages, 20);
  const Bytes message = requestMessage("0E 5F 00");
  const long count = allocationsOf([&] { feed(message); });
  constexpr long kListOfBlocks = 8;  // it grows by doubling
  EXPECT_LE(count, 2 * messages + kListOfBlocks);
}

TEST_F(Memory, WhenStorageRunsOutARequestFailsAndTheNextIsAnswered) {
  const Bytes message = requestMessage("00 00 00");
  const long count = allocationsOf([&] { feed(message); });
  ASSERT_GT(count, 0);
  forget();
  for (const bool onwards : {false, true}) {
    for (long number = 1; number <= count; ++number) {
      BulkMsgType type = BulkMsg_NotSysEx;
      withFailure(number, onwards, [&] { type = feed(message); });
      EXPECT_EQ(type, BulkMsg_BulkRequest);
      assistant->closeMsg();
      forget();
      EXPECT_EQ(request("00 00 00"), BulkMsg_BulkRequest);
      EXPECT_EQ(shown(), (std::vector<int>{13, 14})) << number;
      EXPECT_EQ(sent().size(), 1U);
    }
  }
}

TEST_F(Memory, WhenStorageRunsOutInsideADumpItFailsAndTheNextIsReceived) {
  struct Greedy : FakeJobTools {
    using FakeJobTools::FakeJobTools;
    unsigned long storeForReceivedSysExBulk(CMA::TemporaryCoreModel*, std::uint8_t, std::uint8_t) override {
      delete new int(7);
      return CMA::JOB::Result_Success;
    }
    void suspendOutputMidi() override { ++suspended; }
    void resumeOutputMidi() override { --suspended; }
    int suspended = 0;
  } greedy(record);
  OpenAssistant own(&manager, nullptr, nullptr, &greedy, nullptr, false);
  FakeBridge ownBridge(record, &own);
  const Bytes header = dumpMessage("0E 0A 05");
  const Bytes footer = dumpMessage("0F 0A 05");
  own.receiveBulkDump(header.data(), header.size(), DevicePort_Main);
  forget();
  withFailure(1, true, [&] { own.receiveBulkDump(footer.data(), footer.size(), DevicePort_Main); });
  EXPECT_EQ(greedy.suspended, 0);
  own.closeMsg();
  EXPECT_EQ(shown(), std::vector<int>{}) << "44 has no closing id";
  own.receiveBulkDump(header.data(), header.size(), DevicePort_Main);
  own.receiveBulkDump(footer.data(), footer.size(), DevicePort_Main);
  EXPECT_EQ(shown(), (std::vector<int>{11, 12, 1, 2}));
}

// Every allocation of the construction fails once, alone and with all that follow: the assistant stands, whatever is
// left of it, takes messages of every kind, and goes without a trace.
TEST_F(Memory, WhenStorageRunsOutWhileItIsConstructedItStandsAndGoes) {
  assistant->registerBDABridge(nullptr);
  assistant.reset();
  alignas(OpenAssistant) static std::byte place[sizeof(OpenAssistant)];
  OpenAssistant* made = nullptr;
  std::vector<CMA::JobReceiver*> jobs;
  const auto constructIt = [&] {
    jobs.clear();
    made = nullptr;
    made = new (place) OpenAssistant(&manager, nullptr, &jobs, &tools, &work, false);
  };
  const long count = allocationsOf(constructIt);
  made->~OpenAssistant();
  ASSERT_GT(count, 8330) << "one object a block";

  struct NoSink : Basekit::TracerSink {
    void write(const char*, std::size_t) noexcept override {}
  } none;
  Basekit::TracerSink* const before = Basekit::Tracer::setThreadSink(&none);
  const auto tryOut = [&](long number, bool onwards) {
    jobs.shrink_to_fit();
    withFailure(number, onwards, constructIt);
    ASSERT_NE(made, nullptr);
    record.records = false;
    FakeBridge own(record, made);
    for (const char* address : {"00 40 00", "0E 0A 05", "0F 0A 05", "0E 5F 00", "36 10 00", "05 05 05", "71 00 00"}) {
      const Bytes dump = dumpMessage(address, pattern(8));
      EXPECT_EQ(made->receiveBulkDump(dump.data(), dump.size(), DevicePort_Main), BulkMsg_BulkDump);
      const Bytes ask = requestMessage(address);
      const BulkMsgType type = made->receiveBulkDump(ask.data(), ask.size(), DevicePort_Main);
      EXPECT_TRUE(type == BulkMsg_BulkRequest || type == BulkMsg_RequestSkipped);
    }
    for (CMA::JobReceiver* job : jobs)
      if (job != nullptr) job->execEvent(nullptr, nullptr);
    made->~OpenAssistant();
    record.records = true;
  };
  // All of the first and the last ones, where the objects are; a sample of the blocks between.
  for (long number = 1; number <= count; number += number < 140 || number > count - 40 ? 1 : 211) tryOut(number, false);
  for (long number = 1; number <= count; number += number < 140 || number > count - 40 ? 7 : 1009) tryOut(number, true);
  Basekit::Tracer::setThreadSink(before);
}

}  // namespace
