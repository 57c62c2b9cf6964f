#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <type_traits>

#include "Address.h"
#include "bda/BulkDumpAssistant.h"
#include "support/AssistantFixture.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

static_assert(!std::has_virtual_destructor_v<BulkDumpAssistant>);
static_assert(std::is_copy_constructible_v<BulkDumpAssistant> && std::is_copy_assignable_v<BulkDumpAssistant>);
static_assert(std::has_virtual_destructor_v<BulkDumpBridge>);

struct InheritingBridge : BulkDumpBridge {
  using BulkDumpBridge::BulkDumpBridge;
  void sendSysEx(const unsigned char*, std::uint32_t, DevicePortNum) override {}
};
static_assert(!std::is_default_constructible_v<InheritingBridge>, "every bridge says which assistant it is for");
static_assert(std::is_copy_constructible_v<InheritingBridge> && std::is_copy_assignable_v<InheritingBridge>);

// Nothing is constructed yet.
class Construction : public AssistantFixture {
 protected:
  void SetUp() override {}
};

TEST_F(Construction, OpensItsScreenThenCreatesTheTemporaryModelThenTheRest) {
  std::size_t jobsBeforeExecuters = 5;
  record.during("voiceContentNumber", [&] { jobsBeforeExecuters = bulkJobs.size(); });
  construct();
  const std::vector<std::string> made = calls();
  ASSERT_GE(made.size(), 2U);
  EXPECT_EQ(made[0], "openPort(BulkDumpAssistant, 0)");
  EXPECT_EQ(made[1], "createTemporaryModel");
  // The executers ask for numbers of voices, and the editor's jobs stand by then.
  for (std::size_t i = 2; i < made.size(); ++i) EXPECT_EQ(made[i].rfind("voiceContentNumber(", 0), 0U) << made[i];
  EXPECT_EQ(jobsBeforeExecuters, 5U);
}

TEST_F(Construction, AppendsFiveJobsInOrder) {
  struct Other : CMA::JobReceiver {
    unsigned long execEvent(EvtSrv::MemoryHolder*, EvtSrv::MemoryHolder*) override { return 0; }
  } other;
  bulkJobs.push_back(&other);
  construct();
  ASSERT_EQ(bulkJobs.size(), 6U);
  EXPECT_EQ(bulkJobs[0], &other);
  EXPECT_NE(dynamic_cast<CMA::JobNormalVoiceBulkBase*>(bulkJobs[1]), nullptr);
  EXPECT_NE(dynamic_cast<CMA::JobDrumVoiceBulkBase*>(bulkJobs[2]), nullptr);
  EXPECT_NE(dynamic_cast<CMA::JobPerformanceBulkBase*>(bulkJobs[3]), nullptr);
  EXPECT_NE(dynamic_cast<CMA::JobMixBulkBase*>(bulkJobs[4]), nullptr);
  EXPECT_NE(dynamic_cast<CMA::JobMasterBulkBase*>(bulkJobs[5]), nullptr);
  EXPECT_THAT(executerJobs, IsEmpty());
}

TEST_F(Construction, EndsWithTheTemporaryModelAndLeavesItsJobsInTheVector) {
  construct();
  registerBridge();
  const std::vector<CMA::JobReceiver*> before = bulkJobs;
  forget();
  assistant.reset();
  EXPECT_THAT(calls(), ElementsAre("destroyTemporaryModel"));
  EXPECT_EQ(bulkJobs, before);
}

TEST_F(Construction, WithoutTemporaryModelNoneIsDestroyedAndTheSystemStillReceives) {
  record.fail("createTemporaryModel");
  construct();
  registerBridge();
  forget();
  EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
  EXPECT_THAT(shown(), ElementsAre(11, 12));
  forget();
  assistant.reset();
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(Construction, NullVectorsManagerAndStoreAreAllowed) {
  assistant = std::make_unique<OpenAssistant>(nullptr, nullptr, nullptr, &tools, nullptr, false);
  registerBridge();
  forget();
  EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
  EXPECT_EQ(sent().size(), 1U);
  EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
  EXPECT_EQ(sent().size(), 1U);
  EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(Construction, WithoutStoreMixingVoicesGoTheNormalWay) {
  assistant = std::make_unique<OpenAssistant>(&manager, nullptr, nullptr, &tools, nullptr, false);
  registerBridge();
  record.answer("checkMode", CMA::JOB::Result_EditCompareModeError);
  forget();
  send("0F 31 45");
  request("0E 31 05");
  EXPECT_THAT(calls(), ElementsAre("checkMode(0F 31 45)", "checkMode(0E 31 05)"));
  EXPECT_EQ(trace().size(), 4U);
}

TEST_F(Construction, SilentItNeverReachesTheScreenButStillPreparesToStore) {
  construct(true);
  registerBridge();
  EXPECT_THAT(calls(), Not(Contains("openPort(BulkDumpAssistant, 0)")));
  for (const unsigned id : {11U, 12U, 13U, 40U, 44U, 45U, 46U}) assistant->showMsg(std::uint16_t(id));
  assistant->closeMsg();
  EXPECT_THAT(calls(), IsEmpty());
  assistant->showMsg(1);
  assistant->closeMsg();
  EXPECT_THAT(calls(), ElementsAre("set(additional.params, 0, 0, flag 1)", "flush(additional)"));
  send("0E 0A 05");
  EXPECT_EQ(send("0F 0A 05"), BulkMsg_BulkDump);
  EXPECT_THAT(shown(), IsEmpty());
  EXPECT_THAT(calls(), Contains("store(0A 05)"));
}

TEST_F(Construction, TwoAssistantsHaveTheirOwnHeaderMessageAndBridge) {
  construct();
  registerBridge();
  openHeader();
  Calls otherRecord;
  FakeJobTools otherTools(otherRecord);
  FakeEventPortManager otherManager(otherRecord);
  BulkDumpAssistant other(&otherManager, nullptr, nullptr, &otherTools, nullptr, false);
  FakeBridge otherBridge(otherRecord, &other);
  otherRecord.take();
  const Bytes footer = dumpMessage("0F 5F 00");
  other.receiveBulkDump(footer.data(), lengthOf(footer), DevicePort_Main);
  trace();
  EXPECT_THAT(otherRecord.take(), Not(Contains("store(5F 00)"))) << "the other one's header is not open";
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_TRUE(isHeaderOpen());
}

class Bridge : public AssistantFixture {};

TEST_F(Bridge, RegistersItselfWhenItIsConstructed) {
  FakeBridge other(record, assistant.get());
  send("00 40 00", pattern(8));
  EXPECT_EQ(other.messages.size(), 1U);
  EXPECT_THAT(sent(), IsEmpty());
  assistant->registerBDABridge(nullptr);
}

TEST_F(Bridge, ASecondRegistrationReplacesTheFirstForEchoNoticeAndAnswer) {
  FakeBridge other(record, nullptr);
  assistant->registerBDABridge(&other);
  send("00 40 00", pattern(8));
  request("00 40 00");
  port = DevicePort_Echo;
  send("00 40 00", pattern(8));
  EXPECT_EQ(other.messages.size(), 3U);
  EXPECT_THAT(sent(), IsEmpty());
  assistant->registerBDABridge(nullptr);
}

TEST_F(Bridge, CopiesAndBridgesWithoutAssistantRegisterNothing) {
  FakeBridge other(record, assistant.get());
  FakeBridge copy(other);
  FakeBridge free(record, nullptr);
  static_cast<BulkDumpBridge&>(free) = other;
  send("00 40 00", pattern(8));
  EXPECT_EQ(other.messages.size(), 1U);
  EXPECT_THAT(copy.messages, IsEmpty());
  EXPECT_THAT(free.messages, IsEmpty());
  assistant->registerBDABridge(nullptr);
}

TEST_F(Bridge, MayReplaceItselfFromInsideASend) {
  FakeBridge other(record, nullptr);
  record.during("send", [&] { assistant->registerBDABridge(&other); });
  send("0E 6F 00");
  EXPECT_EQ(sent().size(), 1U) << "the echo";
  send("0F 6F 00");
  EXPECT_EQ(other.messages.size(), 2U) << "notice and echo";
  assistant->registerBDABridge(nullptr);
}

TEST_F(Bridge, MayUnregisterItselfFromInsideTheNoticeSoThatNothingIsEchoed) {
  send("0E 6F 00");
  forget();
  record.during("send", [&] { assistant->registerBDABridge(nullptr); });
  send("0F 6F 00");
  EXPECT_THAT(sent(), ElementsAre("5: F0 7D 60 02 F7"));
}

class Lifecycle : public AssistantFixture {};

TEST_F(Lifecycle, BdaLoopDoesNothing) {
  openHeader();
  for (int i = 0; i < 3; ++i) assistant->bdaLoop();
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_TRUE(isHeaderOpen());
}

TEST_F(Lifecycle, InitForgetsTheHeaderAndNothingElse) {
  openHeader();
  assistant->init();
  EXPECT_THAT(calls(), IsEmpty());
  assistant->closeMsg();
  EXPECT_THAT(calls(), ElementsAre("setId(12)"));
  EXPECT_FALSE(isHeaderOpen());
}

// A copy is never destroyed: it shares everything with its source.
class Copy : public AssistantFixture {
 protected:
  OpenAssistant& copyOf(const OpenAssistant& source) { return *new (place_) OpenAssistant(source); }

 private:
  alignas(OpenAssistant) std::byte place_[sizeof(OpenAssistant)];
};

TEST_F(Copy, SharesTheOpenHeader) {
  OpenAssistant& copy = copyOf(*assistant);
  const Bytes header = dumpMessage("0E 5F 00");
  EXPECT_EQ(copy.receiveBulkDump(header.data(), lengthOf(header), DevicePort_Main), BulkMsg_BulkDump);
  EXPECT_TRUE(isHeaderOpen());
  openHeader();
  copy.init();
  EXPECT_FALSE(isHeaderOpen());
}

TEST_F(Copy, HasItsOwnMessageShown) {
  assistant->showMsg(11);
  OpenAssistant& copy = copyOf(*assistant);
  copy.closeMsg();
  assistant->closeMsg();
  EXPECT_THAT(shown(), ElementsAre(11, 12, 12));
}

TEST_F(Copy, RegisteringABridgeOnItChangesTheSharedReceiversButNotTheSourcesEcho) {
  OpenAssistant& copy = copyOf(*assistant);
  FakeBridge other(record, nullptr);
  copy.registerBDABridge(&other);
  request("00 40 00");
  EXPECT_EQ(other.messages.size(), 1U);
  EXPECT_THAT(sent(), IsEmpty());
  send("00 40 00", pattern(8));
  EXPECT_EQ(other.messages.size(), 1U);
  EXPECT_EQ(sent().size(), 1U);
}

TEST_F(Copy, TheJobsKeepServingTheSource) {
  OpenAssistant& copy = copyOf(*assistant);
  EXPECT_EQ(bulkJobs.size(), 5U);
  record.answer("checkMode", CMA::JOB::Result_CurrentStateError);
  bulkJobs[0]->execEvent(nullptr, nullptr);
  trace();
  EXPECT_THAT(shown(), ElementsAre(45));
  copy.showMsg(11);
  forget();
  assistant->closeMsg();
  EXPECT_THAT(shown(), IsEmpty()) << "45 was the source's";
  copy.closeMsg();
  EXPECT_THAT(shown(), ElementsAre(12));
}

TEST_F(Copy, AssignmentMakesItShareTheOther) {
  Calls otherRecord;
  FakeJobTools otherTools(otherRecord);
  OpenAssistant other(nullptr, nullptr, nullptr, &otherTools, nullptr, true);
  OpenAssistant& copy = copyOf(*assistant);
  copy = other;
  otherRecord.take();
  EXPECT_EQ(copy.checkAddress({0x0E, 0x0A, 0x05}), 0U);
  EXPECT_THAT(otherRecord.take(), ElementsAre("checkMode(0E 0A 05)"));
  EXPECT_THAT(calls(), IsEmpty());
}

}  // namespace
