#include <gtest/gtest.h>

#include <thread>

#include "support/RecordingPlatform.h"

namespace {

using namespace Testing;
using namespace BDA;

TEST(BulkDumpAssistantThreads, TwoAssistantsOnTwoThreadsDoNotDisturbEachOther) {
  const auto exchange = [](int device, int* good) {
    Calls own;
    TraceScope silence;
    FakeJobTools ownTools(own);
    FakeEventPortManager ownManager(own);
    FakeWork ownWork(own);
    ownTools.system.utility[51] = std::uint16_t(device);
    BulkDumpAssistant ownAssistant(&ownManager, nullptr, nullptr, &ownTools, &ownWork, false);
    FakeBridge ownBridge(own, &ownAssistant);
    own.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
    const Bytes block = dumpMessage("00 40 00", pattern(8), device);
    const Bytes mixingRequest = requestMessage("0E 31 0" + std::to_string(device), device);
    for (int i = 0; i < 300; ++i) {
      ownAssistant.receiveBulkDump(block.data(), lengthOf(block), DevicePort_Main);
      ownAssistant.receiveBulkDump(mixingRequest.data(), lengthOf(mixingRequest), DevicePort_Main);
      own.take();
      if (ownBridge.messages.size() == 3 && ownBridge.messages[0].bytes == block &&
          ownBridge.messages[1].bytes[9] == (0x40 | device) && ownBridge.messages[2].bytes[2] == device)
        ++*good;
      ownBridge.messages.clear();
    }
  };
  int good[2] = {};
  std::thread first(exchange, 3, &good[0]);
  std::thread second(exchange, 9, &good[1]);
  first.join();
  second.join();
  EXPECT_EQ(good[0], 300);
  EXPECT_EQ(good[1], 300);
}

}  // namespace
