#pragma once

// An assistant on a recording platform. A test sends messages and takes what they did:
//
//   TEST_F(AssistantFixture, ...) {
//     flipByte(12);
//     EXPECT_EQ(send("00 00 00", pattern(68)), BDA::BulkMsg_CheckSumError);
//     EXPECT_THAT(trace(), ElementsAre(...));
//     EXPECT_THAT(shown(), ElementsAre(40));
//   }
//
// What is not taken from the trace fails the test; taking anything leaves nothing of it for the next take.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "support/RecordingPlatform.h"

namespace Testing {

// With the protected operations open.
class OpenAssistant : public BDA::BulkDumpAssistant {
 public:
  using BulkDumpAssistant::BulkDumpAssistant;
  using BulkDumpAssistant::checkAddress;
  using BulkDumpAssistant::closeMsg;
  using BulkDumpAssistant::init;
  using BulkDumpAssistant::isEditBufferFooter;
  using BulkDumpAssistant::showMsg;
};

class AssistantFixture : public ::testing::Test {
 protected:
  // An assistant that stands, with its bridge, and a record that begins now.
  void SetUp() override;
  void TearDown() override;

  // The parts of SetUp, for tests of construction. `silent`: no on-screen messages.
  void construct(bool silent = false);
  void registerBridge();

  // Each message arrives on `port`, in a buffer of exactly its length.
  BDA::DevicePortNum port = BDA::DevicePort_Main;
  BDA::BulkMsgType send(std::string_view address, const Bytes& data = {});
  BDA::BulkMsgType sendDump(std::string_view address, const Bytes& data) { return send(address, data); }
  BDA::BulkMsgType request(std::string_view address);
  BDA::BulkMsgType sendBytes(Bytes message);
  // The next message arrives with the lowest bit of that byte turned.
  void flipByte(std::size_t at) { flips_.push_back(at); }

  void setDevice(int setting) { tools.system.utility[51] = std::uint16_t(setting); }
  void setReceiveSwitch(int value) { tools.system.utility[50] = std::uint16_t(value); }

  // Opens and probes the open header by the edit buffer of the multi. The probe closes it, and leaves no records.
  void openHeader();
  bool isHeaderOpen();

  // Takes: log lines; ids on the screen; "4: F0 7D ..." of every message that was sent; calls on the platform, all or
  // without those whose names are given.
  std::vector<std::string> trace() { return traceScope.take(); }
  std::vector<int> shown();
  std::vector<std::string> sent();
  std::vector<std::string> calls() { return record.take(); }
  std::vector<std::string> callsWithout(const std::vector<std::string>& names);
  void forget();

  Calls record;
  TraceScope traceScope{&record};
  RecordingThreadListener threadListener{record};
  FakeEventPortManager manager{record};
  FakeJobTools tools{record};
  FakeWork work{record};
  std::vector<CMA::JobReceiver*> executerJobs;
  std::vector<CMA::JobReceiver*> bulkJobs;
  std::unique_ptr<OpenAssistant> assistant;
  std::unique_ptr<FakeBridge> bridge;
  // The assistant's own table, to put scripted blocks into.
  BDA::BulkTable& table();

 private:
  std::vector<std::size_t> flips_;
};

}  // namespace Testing
