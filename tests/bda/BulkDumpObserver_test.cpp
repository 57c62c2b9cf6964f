#include "bda/BulkDumpObserver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
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
    if (perMessage) perMessage(trace(), shown());
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
  observer.reports();
  EXPECT_EQ(toldOf("11 00 00").handedOver, 2U) << "one written, one removed";
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
    Refusal refusal = Refusal::none;
    bool hasAddress = false;
  } rows[] = {
      {"F0 7D 10 7F 14 00 00 00 F7", BulkMsg_Type1, Outcome::ignored},
      {"F0 7D 30 7F 14 00 00 00 F7", BulkMsg_Type3, Outcome::ignored},
      {"F0 7D 40 7F 14 00 00 00 F7", BulkMsg_Type4, Outcome::ignored},
      {"F0 7E 00 7F 14 00 00 00 F7", BulkMsg_OtherModel, Outcome::notOurs},
      {"90 40 7F", BulkMsg_NotSysEx, Outcome::notOurs},
      {"F0 7D 33 7F 14 70 00 06 F7", BulkMsg_WrongDeviceNumber, Outcome::ignored},
      {"F0 7D 03 7F 14 00 00 06 F7", BulkMsg_WrongDeviceNumber, Outcome::refused, Refusal::wrongDeviceNumber},
      {"F0 7D 50 7F 14 00 00 00 F7", BulkMsg_ReceiveError, Outcome::refused, Refusal::malformedMessage},
      {"F0 7D 20 7F 14 00 00 00 00 F7", BulkMsg_ReceiveError, Outcome::refused, Refusal::malformedMessage},
      {"F0 7D 00 7F 14 00 00 00 40 00 41 F7", BulkMsg_CheckSumError, Outcome::refused, Refusal::wrongCheckSum, true},
      {"F0 7D 00 7F 14 00 08 00 40 00 38 F7", BulkMsg_CheckSumError, Outcome::refused, Refusal::wrongByteCount, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.message);
    forget();
    sendBytes(bytesOf(row.message));
    const BulkDumpReport report = told();
    EXPECT_EQ(report.kind, row.kind);
    EXPECT_EQ(report.outcome, row.outcome);
    EXPECT_EQ(report.refusal, row.refusal);
    EXPECT_EQ(report.hasAddress, row.hasAddress);
    EXPECT_EQ(report.result, 0U);
  }
  setReceiveSwitch(0);
  EXPECT_EQ(toldOf("00 40 00", pattern(8)).refusal, Refusal::receiveSwitchOff);
  EXPECT_EQ(toldOfRequest("00 40 00").refusal, Refusal::receiveSwitchOff);
  setDevice(17);
  EXPECT_EQ(toldOf("00 40 00", pattern(8)).refusal, Refusal::deviceNumberOff);
}

// What goes wrong on the way to a block, inside it, and in the editor.
TEST_F(Observer, IsToldTheFirstReason) {
  const struct Row {
    Refusal refusal;
    const char* failing = nullptr;  // a call of the editor
    long answer = -1;               // what that answers, if it does not merely fail
    const char* before = nullptr;   // a dump that comes first
    const char* address = "00 40 00";
    std::size_t data = 8;
  } rows[] = {
      {Refusal::wrongMode, "checkMode", CMA::JOB::Result_CurrentStateError},
      {Refusal::wrongVoiceTypeInMode, "checkMode", CMA::JOB::Result_VoiceTypeError},
      {Refusal::editCompare, "checkMode", CMA::JOB::Result_EditCompareModeError},
      {Refusal::sampleAudition, "checkMode", CMA::JOB::Result_SampleAuditionError},
      {Refusal::mixingVoicesFull, "checkMode", CMA::JOB::Result_MixingVoiceFullError},
      {Refusal::unknownModeResult, "checkMode", 77},
      {Refusal::loadingOrSaving, "getLoadSaveFlag", 1},
      {Refusal::noBlock, nullptr, -1, nullptr, "05 05 05", 0},
      {Refusal::headerMismatch, nullptr, -1, nullptr, "40 00 00", 80},
      {Refusal::headerMismatch, nullptr, -1, "0E 0A 05", "0F 0A 06", 0},
      {Refusal::wrongDataLength, nullptr, -1, nullptr, "00 40 00", 7},
      {Refusal::modelMissing, "system.common", -1, nullptr, "00 00 00", 68},
      {Refusal::notStored, "store", -1, "0E 0A 05", "0F 0A 05", 0},
      {Refusal::requestOnly, nullptr, -1, nullptr, "70 30 00", kExecuterDataLength[59]},
      {Refusal::favoriteNotSet, "setContentFavoriteFlag", -1, nullptr, "71 00 00", 128},
      {Refusal::mixingVoiceNotRemoved, "removeMixingVoice", -1, nullptr, "0F 31 45", 0},
      {Refusal::mixingVoicesNotCounted, "getMixingVoiceSumSync", -1, nullptr, "11 00 00", 0},
      {Refusal::overwriteRefused, "requestOverWriteConfig", -1, nullptr, "11 00 00", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(::testing::Message() << int(row.refusal) << " " << row.address);
    record.heal();
    assistant->init();
    if (row.before != nullptr) {
      send(row.before);
      observer.reports();
    }
    if (row.failing != nullptr) {
      if (row.answer < 0)
        record.fail(row.failing);
      else
        record.answer(row.failing, row.answer);
    }
    const BulkDumpReport report = toldOf(row.address, pattern(row.data));
    EXPECT_EQ(report.outcome, Outcome::refused);
    EXPECT_EQ(report.refusal, row.refusal) << int(report.refusal);
    EXPECT_EQ(report.handedOver, 0U);
  }
}

TEST_F(Observer, IsToldWhatATriggerHandedOverBeforeAndAfterWhatFailed) {
  const struct Row {
    const char* call;
    unsigned nth;
    Refusal refusal;
    std::uint32_t handedOver;
  } rows[] = {
      {"getDataFilePath", 1, Refusal::noFilePath, 3},
      {"openDataFile", 2, Refusal::fileNotOpened, 3},
      {"openData", 1, Refusal::dataNotOpened, 3},
      {"setContentName", 1, Refusal::nameNotSet, 3},
      {"write", 2, Refusal::dataNotWritten, 3},
      {"closeDataWithoutSync", 1, Refusal::dataNotClosed, 3},
      {"closeDataFile", 1, Refusal::fileNotClosed, 3},
      {"removeContent", 1, Refusal::contentNotRemoved, 3},
      {"removeContents", 1, Refusal::contentNotRemoved, 3},
      {"requestOverWriteConfig", 1, Refusal::overwriteRefused, 4},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.call);
    record.heal();
    send("0C 10 05", fieldOf("Mix", pattern(3)));
    send("0C 10 06", kEmptyDump);
    send("0C 50 05", fieldOf("Song", pattern(3)));
    send("0C 50 06", kEmptyDump);
    observer.reports();
    record.heal();
    record.fail(row.call, row.nth);
    const BulkDumpReport report = toldOf("11 00 00");
    EXPECT_EQ(report.outcome, Outcome::refused);
    EXPECT_EQ(report.refusal, row.refusal) << int(report.refusal);
    EXPECT_EQ(report.handedOver, row.handedOver);
  }
}

TEST_F(Observer, IsToldWhatIsWrongWithAFileDump) {
  const struct Row {
    Bytes field;
    Refusal refusal;
  } rows[] = {
      {{}, Refusal::emptyFileDump},
      {{0, 5, 1}, Refusal::fileDumpNameCutShort},
      {{0, 0, 0, 5, 1}, Refusal::fileDumpDataCutShort},
      {{0, 0, 0, 1, 1}, Refusal::notUnpacked},
  };
  for (const Row& row : rows) {
    send("0C 50 05", row.field);
    observer.reports();
    EXPECT_EQ(toldOf("11 00 00").refusal, row.refusal);
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
  const Bytes broken = bytesOf("F0 7D 50 7F 14 00 00 00 F7");
  record.during("send", [&] {
    Utility::isCorrectCheckSum(notice.data(), lengthOf(notice));
    assistant->checkBulkDumpMessage(broken.data(), lengthOf(broken));
  });
  const BulkDumpReport report = toldOf("00 40 00", pattern(8));
  EXPECT_EQ(report.outcome, Outcome::completed);
  EXPECT_EQ(report.refusal, Refusal::none);
}

TEST_F(Observer, IsToldOfAnAnswerThatCouldNotBeSentWhole) {
  record.during("send", [&] { assistant->registerBDABridge(nullptr); });
  EXPECT_EQ(toldOfRequest("0E 70 03").refusal, Refusal::noBridge);
}

TEST_F(Observer, IsToldWhyARequestFailed) {
  const struct Row {
    Refusal refusal;
    const char* failing;
    const char* address;
  } rows[] = {
      {Refusal::notLoaded, "load", "0E 70 03"},
      {Refusal::notRequestedAlone, nullptr, "0F 5F 00"},
      {Refusal::nameNotRead, "getContentName", "0C 50 05"},
      {Refusal::noFilePath, "getDataFilePath", "0C 50 05"},
      {Refusal::favoriteNotRead, "getContentInformation", "71 00 00"},
      {Refusal::nameNotFound, "waveformName", "70 20 00"},
      {Refusal::noBlock, nullptr, "05 05 05"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.address);
    record.heal();
    if (std::string_view(row.address) == "0F 5F 00") send("0E 5F 00");
    observer.reports();
    if (row.failing != nullptr) record.fail(row.failing);
    const BulkDumpReport report = toldOfRequest(row.address);
    EXPECT_EQ(report.outcome, Outcome::refused);
    EXPECT_EQ(report.refusal, row.refusal) << int(report.refusal);
    EXPECT_FALSE(report.isTaken);
  }
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

TEST_F(Observer, IsToldThatTheAssistantWasNotConstructed) {
  record.raise("createTemporaryModel");
  OpenAssistant undone(&manager, nullptr, nullptr, &tools, nullptr, false);
  record.heal();
  undone.registerObserver(&observer);
  const Bytes message = dumpMessage("00 40 00", pattern(8));
  undone.receiveBulkDump(message.data(), lengthOf(message), DevicePort_Main);
  const std::vector<BulkDumpReport> reports = observer.reports();
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_EQ(reports[0].refusal, Refusal::notConstructed);
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
  for (const Scenario& scenario : kScenarios) {
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

// Whatever is in the log, or an error on the screen, is a refusal, and nothing else is.
TEST_F(Observer, ToldRefusalsAreThoseOfLogAndScreen) {
  for (const Scenario& scenario : kScenarios) {
    record.heal();
    (this->*scenario.play)();
    const auto uses = record.uses();
    for (const auto& [call, times] : uses) {
      if (isOneOfMany(call) || call == "observed") continue;
      SCOPED_TRACE(std::string(scenario.name) + ": " + call);
      record.heal();
      record.fail(call, times);
      trace();
      forget();
      observer.reports();
      perMessage = [&](const std::vector<std::string>& log, const std::vector<int>& ids) {
        const std::vector<BulkDumpReport> reports = observer.reports();
        ASSERT_EQ(reports.size(), 1U);
        const bool failed = !log.empty() || (!ids.empty() && ids.back() >= 40);
        EXPECT_EQ(reports[0].outcome == Outcome::refused, failed) << ::testing::PrintToString(log);
        EXPECT_EQ(reports[0].refusal != Refusal::none, failed);
      };
      (this->*scenario.play)();
      perMessage = nullptr;
      record.heal();
      assistant->init();
    }
  }
}

}  // namespace
