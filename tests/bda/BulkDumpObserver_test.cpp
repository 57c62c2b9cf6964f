#include "bda/BulkDumpObserver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <stdexcept>
#include <string_view>

#include "FaultScenarios.h"
#include "FileDumpFixture.h"
#include "support/RecordingObserver.h"
#include "support/ScriptedExecuter.h"

namespace {

using namespace Testing;
using namespace BDA;
using Outcome = BulkDumpOutcome;
using Refusal = BulkDumpRefusal;

// Numbers that compiled editors rely on; those of the refusals are pinned by the table of all of them.
static_assert(int(Outcome::accepted) == 0 && int(Outcome::handedToStore) == 1 && int(Outcome::completed) == 2);
static_assert(int(Outcome::nothingToDo) == 3 && int(Outcome::answered) == 4 && int(Outcome::nothingToSend) == 5);
static_assert(int(Outcome::ignored) == 6 && int(Outcome::notOurs) == 7 && int(Outcome::refused) == 8);

class Observer : public FaultScenarios {
 protected:
  void SetUp() override {
    AssistantFixture::SetUp();
    assistant->registerObserver(&observer);
  }
  void TearDown() override {
    trace();
    AssistantFixture::TearDown();
  }

  // What was told of the last message, and that it was told once and last.
  BulkDumpReport told() {
    const std::vector<BulkDumpReport> reports = observer.reports();
    const std::vector<std::string> made = calls();
    EXPECT_EQ(reports.size(), 1U);
    EXPECT_EQ(made.empty() ? "" : made.back(), "observed");
    return reports.empty() ? BulkDumpReport() : reports.back();
  }
  BulkDumpReport toldOf(std::string_view address, const Bytes& data = {}) {
    forget();
    send(address, data);
    return told();
  }
  BulkDumpReport toldOfRequest(std::string_view address) {
    forget();
    request(address);
    return told();
  }
  static std::string addressOf(const BulkDumpReport& report) {
    return report.hasAddress ? textOf(report.address, 3) : "";
  }

  void feed(const Bytes& message, DevicePortNum from) override {
    FaultScenarios::feed(message, from);
    if (perMessage) perMessage(trace(), shown());
  }

  void runJob(std::size_t number) override {
    FaultScenarios::runJob(number);
    if (!perMessage) return;
    const std::vector<std::string> log = trace();
    const std::vector<int> ids = shown();
    const bool makesNoRequest = log.empty() && ids == std::vector<int>{42};  // by itself: its device number is off
    if (makesNoRequest)
      EXPECT_TRUE(observer.reports().empty());
    else
      perMessage(log, ids);
  }

  void expectToldAsLoggedAndShown(Play play) {
    trace();
    forget();
    observer.reports();
    perMessage = [this](const std::vector<std::string>& log, const std::vector<int>& ids) {
      const std::vector<BulkDumpReport> reports = observer.reports();
      ASSERT_EQ(reports.size(), 1U);
      const bool failed = !log.empty() || (!ids.empty() && ids.back() >= 40);
      EXPECT_EQ(reports[0].outcome == Outcome::refused, failed) << ::testing::PrintToString(log);
      EXPECT_EQ(reports[0].refusal != Refusal::none, failed);
    };
    (this->*play)();
    perMessage = nullptr;
  }

  RecordingObserver observer{record};
  std::function<void(const std::vector<std::string>& log, const std::vector<int>& ids)> perMessage;
};

TEST_F(Observer, IsToldWhatBecameOfEachDump) {
  const struct Row {
    const char* address;
    std::size_t data;
    Outcome outcome;
    std::uint32_t result;
    std::uint32_t handedOver;
  } rows[] = {
      {"0E 0A 05", 0, Outcome::accepted, 0, 0},
      {"0F 0A 05", 0, Outcome::handedToStore, 0x4000, 1},
      {"0E 5F 00", 0, Outcome::accepted, 0, 0},
      {"0F 5F 00", 0, Outcome::handedToStore, 0x4000, 1},
      {"00 40 00", 8, Outcome::completed, 4, 0},
      {"71 00 00", 128, Outcome::completed, 0x400, 0},
      {"11 00 00", 0, Outcome::nothingToDo, 0x800, 0},
      {"0C 50 06", 4, Outcome::accepted, 0x1000, 0},  // a removal, see below
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.address);
    const BulkDumpReport report = toldOf(row.address, row.data == 4 ? kEmptyDump : pattern(row.data));
    EXPECT_EQ(report.kind, BulkMsg_BulkDump);
    EXPECT_EQ(addressOf(report), row.address);
    EXPECT_EQ(report.outcome, row.outcome);
    EXPECT_EQ(report.refusal, Refusal::none);
    EXPECT_EQ(report.result, row.result);
    EXPECT_EQ(report.handedOver, row.handedOver);
  }
  send("0C 50 05", fieldOf("Song", pattern(3)));
  send("0C 50 07", kEmptyDump);
  observer.reports();
  EXPECT_EQ(toldOf("11 00 00").handedOver, 3U) << "one written, two removed";
}

TEST_F(Observer, IsToldOfARemovedMixingVoiceAndOfOneThatWasNotThere) {
  BulkDumpReport report = toldOf("0F 31 45");
  EXPECT_EQ(report.outcome, Outcome::handedToStore);
  EXPECT_EQ(report.handedOver, 1U);
  record.answer("removeMixingVoice", ContSrv::ContRes_DoNothing);
  report = toldOf("0F 31 45");
  EXPECT_EQ(report.outcome, Outcome::nothingToDo);
  EXPECT_EQ(report.handedOver, 0U);
}

TEST_F(Observer, IsToldWhatBecameOfEachRequest) {
  EXPECT_EQ(toldOfRequest("00 40 00").outcome, Outcome::answered);
  const BulkDumpReport whole = toldOfRequest("0E 70 03");
  EXPECT_EQ(whole.kind, BulkMsg_BulkRequest);
  EXPECT_EQ(whole.outcome, Outcome::answered);
  EXPECT_EQ(addressOf(whole), "0E 70 03");
  record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
  EXPECT_EQ(toldOfRequest("0E 31 05").outcome, Outcome::answered);
  record.heal();
  port = DevicePort_Thru;
  EXPECT_EQ(toldOfRequest("00 40 00").outcome, Outcome::ignored);
  port = DevicePort_Main;
  ScriptedExecuter swallowed(record, &tools);
  swallowed.result = BDA_INFO_SWALLOWED;
  replaceExecuter(table(), "00 40 00", swallowed);
  const BulkDumpReport report = toldOfRequest("00 40 00");
  EXPECT_EQ(report.kind, BulkMsg_RequestSkipped);
  EXPECT_EQ(report.outcome, Outcome::nothingToSend);
}

TEST_F(Observer, IsToldOfMessagesThatAreNotHandled) {
  const struct Row {
    const char* message;
    BulkMsgType kind;
    Outcome outcome;
  } rows[] = {
      {"F0 7D 10 7F 14 00 00 00 F7", BulkMsg_Type1, Outcome::ignored},
      {"F0 7D 30 7F 14 00 00 00 F7", BulkMsg_Type3, Outcome::ignored},
      {"F0 7D 40 7F 14 00 00 00 F7", BulkMsg_Type4, Outcome::ignored},
      {"F0 7E 00 7F 14 00 00 00 F7", BulkMsg_OtherModel, Outcome::notOurs},
      {"90 40 7F", BulkMsg_NotSysEx, Outcome::notOurs},
      {"F0 7D 33 7F 14 70 00 06 F7", BulkMsg_WrongDeviceNumber, Outcome::ignored},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.message);
    forget();
    sendBytes(bytesOf(row.message));
    const BulkDumpReport report = told();
    EXPECT_EQ(report.kind, row.kind);
    EXPECT_EQ(report.outcome, row.outcome);
    EXPECT_EQ(report.refusal, Refusal::none);
    EXPECT_FALSE(report.hasAddress);
    EXPECT_EQ(report.result, 0U);
  }
}

TEST_F(Observer, SeesThatARefusedDumpWasTakenAllTheSame) {
  // One byte too many behind it, and a 0 where the byte count puts the checksum.
  Bytes message = bytesOf("F0 7D 00 7F 14 00 00 0E 0A 05 00 F7 F7");
  sendBytes(message);
  const BulkDumpReport report = told();
  EXPECT_EQ(report.kind, BulkMsg_BulkDump);
  EXPECT_EQ(report.outcome, Outcome::refused);
  EXPECT_EQ(report.refusal, Refusal::wrongByteCount);
  EXPECT_TRUE(report.isTaken);
  record.answer("checkMode", CMA::JOB::Result_CurrentStateError);
  sendBytes(message);
  EXPECT_FALSE(told().isTaken);
}

TEST_F(Observer, HearsNothingOfWhatAnEditorAsksMeanwhile) {
  const Bytes notice = bytesOf("F0 7D 60 02 F7");
  const Bytes broken = bytesOf("F0 7D 00 7F 14 00 00 00 40 00 01 F7");
  const Bytes ofAnotherDevice = bytesOf("F0 7D 05 7F 14 00 00 00 40 00 40 F7");
  record.during("send", [&] {
    Utility::isCorrectCheckSum(notice.data(), lengthOf(notice));
    EXPECT_EQ(assistant->checkBulkDumpMessage(broken.data(), lengthOf(broken)), BulkMsg_CheckSumError);
    EXPECT_EQ(assistant->checkBulkDumpMessage(ofAnotherDevice.data(), lengthOf(ofAnotherDevice)),
              BulkMsg_WrongDeviceNumber);
    trace();
  });
  const BulkDumpReport report = toldOf("00 40 00", pattern(8));
  EXPECT_EQ(report.outcome, Outcome::completed);
  EXPECT_EQ(report.refusal, Refusal::none);
}

TEST_F(Observer, IsToldWhatWasThrown) {
  record.raise("store");
  send("0E 0A 05");
  observer.reports();
  BulkDumpReport report = toldOf("0F 0A 05");
  EXPECT_EQ(report.refusal, Refusal::outOfMemory);
  EXPECT_EQ(report.result, 0x80000000U);
  record.heal();
  record.during("checkMode", [] { throw std::runtime_error("no mode"); });
  report = toldOf("00 40 00", pattern(8));
  EXPECT_EQ(report.kind, BulkMsg_BulkDump);
  EXPECT_EQ(report.outcome, Outcome::refused);
  EXPECT_EQ(report.refusal, Refusal::serviceThrew);
  record.heal();
  EXPECT_EQ(toldOf("00 40 00", pattern(8)).outcome, Outcome::completed);
}

TEST_F(Observer, IsToldThatWhatNoMemoryHoldsRanOutOfIt) {
  for (const bool hasNoSpace : {false, true}) {
    record.during("getSize", [hasNoSpace] {
      if (hasNoSpace) throw std::bad_alloc();
      throw std::length_error("longer than any vector");
    });
    work.contents[{ContSrv::ContType_Multi, 5}] = {"Song", pattern(3)};
    EXPECT_EQ(toldOfRequest("0C 50 05").refusal, Refusal::outOfMemory);
  }
}

TEST_F(Observer, SeesThatADumpWasTakenThoughItsEchoThrew) {
  record.during("send", [] { throw std::runtime_error("no port"); });
  const BulkDumpReport report = toldOf("00 40 00", pattern(8));
  EXPECT_EQ(report.outcome, Outcome::refused);
  EXPECT_EQ(report.refusal, Refusal::serviceThrew);
  EXPECT_TRUE(report.isTaken);
}

TEST_F(Observer, IsToldOfTheRequestsOfJobsButNotOfChecks) {
  const Bytes message = dumpMessage("00 40 00", pattern(8));
  assistant->checkBulkDumpMessage(message.data(), lengthOf(message));
  EXPECT_TRUE(observer.reports().empty());
  forget();
  bulkJobs[4]->execEvent(nullptr, nullptr);
  const std::vector<BulkDumpReport> reports = observer.reports();
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].outcome, Outcome::answered);
}

TEST_F(Observer, IsToldOfAJobsRequestBeforeTheReceiveSwitchIsPutBack) {
  setReceiveSwitch(0);
  unsigned sets = 0;
  record.during("set", [&] {
    if (++sets == 2) throw std::runtime_error("no switch");
  });
  EXPECT_EQ(bulkJobs[4]->execEvent(nullptr, nullptr), CMA::JOB::Result_UnknownError);
  const std::vector<BulkDumpReport> reports = observer.reports();
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].outcome, Outcome::answered);
}

TEST_F(Observer, HearsNothingOfAnAssistantThatDiesMeanwhile) {
  auto dying = std::make_unique<BulkDumpAssistant>(&manager, nullptr, nullptr, &tools, &work, true);
  record.raise("destroyTemporaryModel");
  record.during("setId", [&] { dying.reset(); });
  const BulkDumpReport report = toldOf("00 40 00", pattern(8));
  EXPECT_EQ(record.thrown(), 1U);
  EXPECT_EQ(report.outcome, Outcome::completed);
  EXPECT_EQ(report.refusal, Refusal::none);
}

TEST_F(Observer, ThatIsRegisteredAtTheEndIsTold) {
  RecordingObserver other(record);
  record.during("checkMode", [&] { assistant->registerObserver(&other); });
  send("00 40 00", Bytes(9));
  EXPECT_TRUE(observer.reports().empty());
  const std::vector<BulkDumpReport> reports = other.reports();
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].refusal, Refusal::wrongDataLength);
  record.during("checkMode", [&] { assistant->registerObserver(nullptr); });
  send("00 40 00", pattern(8));
  EXPECT_TRUE(other.reports().empty());
}

// The bridge may go while it sends.
TEST_F(Observer, IsToldThatAnAnswerWasSentUnlessSomeOfItWasNot) {
  record.during("send", [&] { assistant->registerBDABridge(nullptr); });
  EXPECT_EQ(toldOfRequest("00 40 00").outcome, Outcome::answered) << "of one dump";
  registerBridge();
  const BulkDumpReport report = toldOfRequest("0E 0A 05");
  EXPECT_EQ(report.outcome, Outcome::refused);
  EXPECT_EQ(report.refusal, Refusal::noBridge);
  record.heal();
}

TEST_F(Observer, MayThrowAndMayGo) {
  record.raise("observed");
  EXPECT_NO_THROW(send("00 40 00", pattern(8)));
  EXPECT_EQ(shown(), (std::vector<int>{11, 12}));
  assistant->registerObserver(nullptr);
  observer.reports();
  send("00 40 00", pattern(8));
  EXPECT_TRUE(observer.reports().empty());
}

TEST_F(Observer, ChangesNothingElse) {
  for (const Scenario& scenario : everyScenario()) {
    (this->*scenario.play)();  // what stays different after the first time is so now
    forget();
    trace();
    (this->*scenario.play)();
    std::vector<std::string> watched = calls();
    watched.erase(std::remove(watched.begin(), watched.end(), "observed"), watched.end());
    const std::vector<std::string> watchedTrace = trace();
    forget();
    assistant->registerObserver(nullptr);
    (this->*scenario.play)();
    EXPECT_EQ(calls(), watched) << scenario.name;
    EXPECT_EQ(trace(), watchedTrace) << scenario.name;
    assistant->registerObserver(&observer);
    forget();
  }
}

// Whatever is in the log, or an error on the screen, is a refusal, and nothing else is: when the first use of a call
// fails (a content is written), and the last one (one is read).
TEST_F(Observer, ToldRefusalsAreThoseOfLogAndScreen) {
  for (const Scenario& scenario : everyScenario()) {
    record.heal();
    (this->*scenario.play)();
    const auto uses = record.uses();
    for (const auto& [call, times] : uses) {
      if (isOneOfMany(call) || call == "observed") continue;
      for (const unsigned nth : std::set<unsigned>{1, times}) {
        SCOPED_TRACE(std::string(scenario.name) + ": " + call + " at use " + std::to_string(nth));
        record.heal();
        record.fail(call, nth);
        expectToldAsLoggedAndShown(scenario.play);
        record.heal();
        assistant->init();
      }
    }
  }
}

}  // namespace
