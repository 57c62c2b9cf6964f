#include "JobBulkBDA.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/AssistantFixture.h"
#include "support/ScriptedExecuter.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct JobRow {
  const char* name;
  const char* headerMid;
};
constexpr JobRow kJobs[] = {
    {"normal voice", "0F"}, {"drum voice", "2F"}, {"performance", "4F"}, {"mix", "5F"}, {"master", "7F"}};

std::vector<std::string> jobError() {
  return failure("JobBulkBDA", 125, "BDA::JobBulkTools::sendBulkReqToBDA", "Job Bulk Error !!!\n");
}

const char* const kSwitchOn = "set(system.utility, 50, 1, flag 1)";
std::string switchTo(int value) { return "set(system.utility, 50, " + std::to_string(value) + ", flag 1)"; }

class BulkJobs : public AssistantFixture {
 protected:
  // The request stops at the mode check, without a word on the screen: what matters is that it came so far.
  void refuseAtTheModeCheck() { record.answer("checkMode", CMA::JOB::Result_EditCompareModeError); }
  unsigned long run(std::size_t job) { return bulkJobs.at(job)->execEvent(nullptr, nullptr); }
};

TEST_F(BulkJobs, EachRequestsTheHeaderOfItsEditBuffer) {
  refuseAtTheModeCheck();
  ASSERT_EQ(bulkJobs.size(), std::size(kJobs));
  for (std::size_t job = 0; job < bulkJobs.size(); ++job) {
    EXPECT_EQ(run(job), CMA::JOB::Result_Success) << kJobs[job].name;
    EXPECT_THAT(calls(),
                ElementsAre(kSwitchOn, "checkMode(0E " + std::string(kJobs[job].headerMid) + " 00)", switchTo(1)));
    EXPECT_EQ(trace().size(), 2U) << "the mode check's";
  }
}

TEST_F(BulkJobs, TheBaseClassesRunThemThroughTheirSendBulkRequest) {
  refuseAtTheModeCheck();
  for (CMA::JobReceiver* const job : bulkJobs)
    EXPECT_EQ(dynamic_cast<CMA::JobBulkBase&>(*job).sendBulkRequest(), CMA::JOB::Result_Success);
  trace();
}

TEST_F(BulkJobs, AnotherEventIsUnknownToThem) {
  for (CMA::JobReceiver* const job : bulkJobs)
    EXPECT_EQ(job->execOther(nullptr, nullptr, 1), CMA::JOB::Result_UnknownError);
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(BulkJobs, TheAnswerLeavesOnPort1) {
  ScriptedExecuter executer(record, &tools);
  executer.messages = {bytesOf("F0 F7")};
  for (const char* address : {"0E 7F 00", "33 00 00", "32 00 00", "32 01 00", "32 02 00", "32 03 00", "0F 7F 00"})
    replaceExecuter(table(), address, executer);
  EXPECT_EQ(run(4), CMA::JOB::Result_Success);
  EXPECT_THAT(sent(), ElementsAre("1: F0 F7", "1: F0 F7", "1: F0 F7", "1: F0 F7", "1: F0 F7", "1: F0 F7", "1: F0 F7"));
  EXPECT_THAT(shown(), ElementsAre(13, 14));
}

TEST_F(BulkJobs, EveryDeviceSettingPassesButOffWithSwitchOnOrOff) {
  refuseAtTheModeCheck();
  for (int setting = 0; setting <= 17; ++setting) {
    for (const int receiveSwitch : {0, 1}) {
      setDevice(setting);
      setReceiveSwitch(receiveSwitch);
      for (std::size_t job = 0; job < bulkJobs.size(); ++job) {
        EXPECT_EQ(run(job), setting == 17 ? CMA::JOB::Result_UnknownError : CMA::JOB::Result_Success) << setting;
        EXPECT_EQ(tools.system.utility[50], receiveSwitch);
        EXPECT_EQ(trace().size(), setting == 17 ? 0U : 2U) << "the mode check's";
      }
    }
  }
}

TEST_F(BulkJobs, WithDeviceOffNothingReachesTheAssistantAndTheSwitchIsNotTouched) {
  openHeader();
  setDevice(17);
  for (std::size_t job = 0; job < bulkJobs.size(); ++job) {
    EXPECT_EQ(run(job), CMA::JOB::Result_UnknownError);
    EXPECT_THAT(calls(), ElementsAre("setId(42)")) << "straight to the screen, without a flush or a log line";
  }
  assistant->closeMsg();
  EXPECT_THAT(calls(), ElementsAre("setId(12)")) << "to the assistant the header's message is still shown";
  setDevice(0);
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(BulkJobs, WithoutSystemModelTheDeviceIsOff) {
  record.fail("system");
  EXPECT_EQ(run(0), CMA::JOB::Result_UnknownError);
  EXPECT_THAT(calls(), ElementsAre("setId(42)"));
}

TEST_F(BulkJobs, WithSwitchOffTheySucceedAndItReadsOffAgain) {
  refuseAtTheModeCheck();
  for (const int value : {0, 1, 2, 255}) {
    setReceiveSwitch(value);
    for (std::size_t job = 0; job < bulkJobs.size(); ++job) {
      EXPECT_EQ(run(job), CMA::JOB::Result_Success);
      const std::vector<std::string> made = calls();
      ASSERT_EQ(made.size(), 3U);
      EXPECT_EQ(made.front(), kSwitchOn);
      EXPECT_EQ(made.back(), switchTo(value));
      EXPECT_EQ(tools.system.utility[50], value);
    }
    trace();
  }
}

TEST_F(BulkJobs, AnUnknownDeviceSettingIsMaskedHereAndRefusedByTheAssistant) {
  setDevice(18);
  setReceiveSwitch(0);
  EXPECT_EQ(run(0), CMA::JOB::Result_UnknownError);
  EXPECT_EQ(trace(),
            lines(failure("BulkDumpAssistant", 245, "BDA::BulkDumpAssistant::checkBulkDumpMessage",
                          "Wrong Device Number... so can't send SysExc. Utility DevNum=[18], Message Dev Num=[2]\n"),
                  jobError()));
  EXPECT_THAT(calls(), ElementsAre(kSwitchOn, "setId(43)", "flush(messages)", switchTo(0)));
}

TEST_F(BulkJobs, AnAnswerThatFailedOrWasBlockedIsASuccess) {
  record.answer("getLoadSaveFlag", 1);
  EXPECT_EQ(run(4), CMA::JOB::Result_Success);
  EXPECT_EQ(trace().size(), 2U);
  record.heal();
  assistant->registerBDABridge(nullptr);
  EXPECT_EQ(run(4), CMA::JOB::Result_Success);
  EXPECT_EQ(trace().size(), 2U);
  EXPECT_EQ(shown().back(), 44);
}

TEST_F(BulkJobs, ASkippedAnswerIsAFailure) {
  ScriptedExecuter executer(record, &tools);
  executer.result = BDA_INFO_SWALLOWED;
  for (const char* address : {"0E 7F 00", "33 00 00", "32 00 00", "32 01 00", "32 02 00", "32 03 00", "0F 7F 00"})
    replaceExecuter(table(), address, executer);
  setReceiveSwitch(0);
  EXPECT_EQ(run(4), CMA::JOB::Result_UnknownError);
  EXPECT_EQ(trace(), jobError());
  EXPECT_EQ(tools.system.utility[50], 0);
}

TEST_F(BulkJobs, TheSwitchIsRestoredWhenTheEditorThrows) {
  setReceiveSwitch(0);
  record.raise("checkMode");
  EXPECT_EQ(run(0), CMA::JOB::Result_UnknownError);
  EXPECT_THAT(calls(), ElementsAre(kSwitchOn, "checkMode(0E 0F 00)", switchTo(0)));
}

TEST_F(BulkJobs, ASystemModelThatGoesAwayOnTheWayLeavesTheSwitchAlone) {
  refuseAtTheModeCheck();
  for (const char* call : {"system", "system.utility"}) {
    record.fail(call, 2);  // the first is for the device number
    EXPECT_EQ(run(0), CMA::JOB::Result_Success) << call;
    EXPECT_THAT(calls(), ElementsAre("checkMode(0E 0F 00)"));
    trace();
    record.heal();
    refuseAtTheModeCheck();
  }
}

TEST(JobBulkTools, NeedsNoMessageModel) {
  Calls record;
  FakeJobTools tools(record);
  tools.system.utility[51] = 17;
  JobBulkTools jobTools(nullptr, &tools, nullptr);
  BulkRequestMessage message{0xF0, 0x7D, 0, 0x7F, 0x14, 0x0E, 0x0F, 0, 0xF7};
  EXPECT_EQ(jobTools.sendBulkReqToBDA(message), CMA::JOB::Result_UnknownError);
  EXPECT_EQ(message[2], 0);
}

TEST_F(BulkJobs, TheRequestCarriesTheDevicesNibbleUnderTheRequestType) {
  refuseAtTheModeCheck();
  JobBulkTools jobTools(assistant.get(), &tools, nullptr);
  BulkRequestMessage message{0xF0, 0x7D, 0, 0x7F, 0x14, 0x0E, 0x0F, 0, 0xF7};
  for (int setting = 0; setting <= 16; ++setting) {
    setDevice(setting);
    EXPECT_EQ(jobTools.sendBulkReqToBDA(message), CMA::JOB::Result_Success);
    EXPECT_EQ(message[2], setting == 16 ? 0x20 : 0x20 | setting);
  }
  setDevice(17);
  EXPECT_EQ(jobTools.sendBulkReqToBDA(message), CMA::JOB::Result_UnknownError);
  EXPECT_EQ(message[2], 0x20) << "as it was";
  setDevice(18);
  EXPECT_EQ(jobTools.sendBulkReqToBDA(message), CMA::JOB::Result_UnknownError);
  EXPECT_EQ(message[2], 0x22) << "masked, so that the type stays a request's";
  trace();
}

}  // namespace
