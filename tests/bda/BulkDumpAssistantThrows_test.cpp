// The editor throws: every call that a scenario makes on it throws at its first, second ... last use. Nothing of that
// comes out of the assistant: the message ends like one whose block failed, and what follows runs as if nothing had
// been.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <numeric>
#include <string_view>

#include "FaultScenarios.h"
#include "bda/BulkDumpAssistant.h"
#include "support/RecordingObserver.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Ids = std::vector<int>;

// What one message, or one job, came to.
struct Handled {
  std::uint32_t type = 0;  // of a job: its result
  bool isJob = false;
  bool hasThrown = false;   // a call of the editor, meanwhile
  unsigned usesBefore = 0;  // how often that call was made until then, by earlier messages
  Ids shown;
  std::vector<std::string> log;
  std::vector<std::string> calls;

  friend bool operator==(const Handled&, const Handled&) = default;
};

class Throws : public FaultScenarios, public ::testing::WithParamInterface<Scenario> {
 public:
  void feed(const Bytes& message, DevicePortNum from) override {
    handle(false, [&] { return assistant->receiveBulkDump(message.data(), lengthOf(message), from); });
  }
  void runJob(std::size_t number) override {
    handle(true, [&] { return bulkJobs.at(number)->execEvent(nullptr, nullptr); });
  }

  // What comes of each message, if that use of that call throws.
  std::vector<Handled> playedWithout(const std::string& call, unsigned nth, Play play) {
    record.heal();
    record.raise(call, nth);
    throwing_ = call;
    return played(play);
  }
  std::vector<Handled> played(Play play) {
    assistant->init();
    assistant->closeMsg();
    setReceiveSwitch(1);
    forget();
    handled_.clear();
    (this->*play)();
    sent();
    return std::exchange(handled_, {});
  }

 private:
  template <typename Action>
  void handle(bool isJob, Action action) {
    Handled made;
    made.isJob = isJob;
    const unsigned before = record.thrown();
    const auto uses = record.uses().find(throwing_);
    const unsigned usesBefore = uses == record.uses().end() ? 0 : uses->second;
    EXPECT_NO_THROW(made.type = std::uint32_t(action()));
    made.hasThrown = record.thrown() != before;
    if (made.hasThrown) made.usesBefore = usesBefore;
    made.shown = shown();
    made.log = trace();
    made.calls = record.take();
    handled_.push_back(std::move(made));
  }

  std::vector<Handled> handled_;
  std::string throwing_;
};

// The id that stands on the screen after `shown`, if `before` stood there; 0: none.
int onScreen(int before, const Ids& shown) {
  for (const int id : shown) before = id == 2 || id == 12 || id == 14 ? 0 : id;
  return before;
}

constexpr bool isProgress(int id) { return id == 1 || id == 11 || id == 13; }

// Whether the call itself is part of showing a message: it throws before anything stands on the screen.
bool shows(std::string_view call) {
  return call == "setId" || call.substr(0, 5) == "flush" || call.substr(0, 10) == "additional" || call == "set";
}

std::ptrdiff_t countOf(const std::vector<std::string>& calls, const char* call) {
  return FaultScenarios::count(calls, call);
}

// Device number and receive switch are asked for before it is known what kind of message came: one read of the
// system's settings for each.
bool findsTheKind(std::string_view call, unsigned useInMessage) {
  constexpr unsigned kReads = 2;
  return useInMessage <= kReads && (call == "system" || call == "system.utility" || call == "get");
}

// What is taken and given back around a block: all of it as in the good run, in that order and with those values, or
// none. What could not be suspended is not resumed.
std::vector<std::string> heldAndGivenBack(const std::vector<std::string>& calls) {
  std::vector<std::string> held;
  std::copy_if(calls.begin(), calls.end(), std::back_inserter(held), [](const std::string& call) {
    return call == "suspendOutputMidi" || call == "resumeOutputMidi" || call.rfind("thread.", 0) == 0;
  });
  return held;
}

void expectEverythingGivenBack(const Handled& handled, const Handled& good, const std::string& call) {
  const std::vector<std::string> held = heldAndGivenBack(handled.calls);
  std::vector<std::string> whole = heldAndGivenBack(good.calls);
  if (handled.hasThrown && call == "suspendOutputMidi")
    whole.erase(std::remove(whole.begin(), whole.end(), "resumeOutputMidi"), whole.end());
  EXPECT_TRUE(held.empty() || held == whole) << ::testing::PrintToString(held);
  EXPECT_EQ(countOf(handled.calls, "openDataFile"),
            countOf(handled.calls, "closeDataFile") + (handled.hasThrown && call == "openDataFile" ? 1 : 0));
}

// The message during which use `nth` of `call` threw, beside the same one of the good run.
void expectFailedLikeItsBlock(const Handled& failed, const Handled& good, int stoodBefore, const std::string& call,
                              unsigned nth) {
  if (failed.isJob)
    EXPECT_EQ(failed.type, CMA::JOB::Result_UnknownError);
  else if (findsTheKind(call, nth - failed.usesBefore))
    EXPECT_EQ(failed.type, BulkMsg_ReceiveError);
  else
    EXPECT_EQ(failed.type, good.type);

  // As far as it came it showed what the good one showed; then the error, where a message was being shown.
  const auto differing = std::mismatch(failed.shown.begin(), failed.shown.end(), good.shown.begin(), good.shown.end());
  const Ids asInGood(failed.shown.begin(), differing.first);
  const Ids more(differing.first, failed.shown.end());
  const int standing = onScreen(stoodBefore, asInGood);
  // 12 may be the good one's end, or come before 44.
  const bool wasShowing = standing != 0 || shows(call) || (!asInGood.empty() && asInGood.back() % 10 != 1);
  const bool showsError = !failed.shown.empty() && failed.shown.back() == 44;
  SCOPED_TRACE(::testing::PrintToString(failed.shown));
  EXPECT_TRUE(showsError || !isProgress(standing)) << "nobody is told";
  EXPECT_TRUE(more.empty() || (showsError && wasShowing)) << "nothing was being shown";
}

std::vector<unsigned> everyUse(unsigned uses) {
  std::vector<unsigned> all(uses);
  std::iota(all.begin(), all.end(), 1U);
  return all;
}

// Its operations are noexcept.
bool cannotThrow(std::string_view call) { return call.substr(0, 7) == "thread."; }

TEST_P(Throws, WhateverThrowsEndsTheMessageLikeAFailedBlockAndTheNextWorks) {
  const Scenario& scenario = GetParam();
  played(scenario.play);  // what stays different after the first time, such as the bytes requested, is so now
  record.heal();
  const std::vector<Handled> good = played(scenario.play);
  const bool isShort = good.size() < 10;
  std::size_t cases = 0;
  const auto uses = record.uses();
  for (const auto& [call, times] : uses) {
    if (isOneOfMany(call) || cannotThrow(call)) continue;
    for (const unsigned nth : isShort ? everyUse(times) : turns(times)) {
      SCOPED_TRACE(call + " at use " + std::to_string(nth));
      const std::vector<Handled> made = playedWithout(call, nth, scenario.play);
      ASSERT_EQ(made.size(), good.size());
      ASSERT_EQ(record.thrown(), 1U);
      const auto thrown = std::find_if(made.begin(), made.end(), [](const Handled& one) { return one.hasThrown; });
      ASSERT_NE(thrown, made.end());
      const auto untilThen = thrown - made.begin();
      ASSERT_TRUE(std::equal(made.begin(), thrown, good.begin())) << "before it threw";
      int stood = 0;
      for (auto one = made.begin(); one != thrown; ++one) stood = onScreen(stood, one->shown);
      const Handled& twin = good[std::size_t(untilThen)];
      expectFailedLikeItsBlock(*thrown, twin, stood, call, nth);
      for (auto one = thrown; one != made.end(); ++one)
        expectEverythingGivenBack(*one, good[std::size_t(one - made.begin())], call);
      const bool tellsNoMore =
          thrown->log.size() <= twin.log.size() && std::equal(thrown->log.begin(), thrown->log.end(), twin.log.begin());
      EXPECT_TRUE(scenario.play == &FaultScenarios::fileDumps || tellsNoMore) << "a new line in the log";
      record.heal();
      ASSERT_EQ(played(scenario.play), good) << "afterwards";
      ASSERT_FALSE(HasFailure());
      ++cases;
    }
  }
  EXPECT_GT(cases, 5U);
}

INSTANTIATE_TEST_SUITE_P(In, Throws, ::testing::ValuesIn(everyScenario()), [](const auto& scenario) {
  std::string name = scenario.param.name;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
});

// ---- One call at a time ----

class ThrowsOnce : public AssistantFixture {
 protected:
  // Of a dump that follows: was the header forgotten?
  bool wasForgotten() { return !isHeaderOpen(); }
};

TEST_F(ThrowsOnce, EachCallOfADumpEndsItAsStated) {
  const struct Row {
    const char* call;
    const char* address;
    std::size_t data;
    Ids shown;  // after 11 of an open header
    bool echoes = false;
    BulkMsgType type = BulkMsg_BulkDump;
  } rows[] = {
      {"system", "00 40 00", 8, {12, 44}, false, BulkMsg_ReceiveError},
      {"system.utility", "00 40 00", 8, {12, 44}, false, BulkMsg_ReceiveError},
      {"get", "00 40 00", 8, {12, 44}, false, BulkMsg_ReceiveError},
      {"removeMixingVoice", "0F 31 45", 0, {12, 44}},
      {"checkMode", "00 40 00", 8, {12, 44}},
      {"getLoadSaveFlag", "00 40 00", 8, {12, 44}},
      {"setId", "00 40 00", 8, {12, 44}},  // 12 again: it threw
      {"flush", "00 40 00", 8, {12, 11, 12, 44}},
      {"additional", "0F 0A 05", 0, {12, 2, 44}},
      {"suspendOutputMidi", "00 40 00", 8, {12, 11, 12, 44}, true},
      {"resumeOutputMidi", "00 40 00", 8, {12, 11, 12, 44}, true},
      {"send", "00 40 00", 8, {12, 11, 12}, true},  // the echo, when all else is done
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.call);
    record.heal();
    assistant->closeMsg();
    openHeader();
    record.heal();
    record.raise(row.call, 1);
    BulkMsgType type = BulkMsg_NotSysEx;
    EXPECT_NO_THROW(type = send(row.address, pattern(row.data)));
    EXPECT_EQ(record.thrown(), 1U);
    EXPECT_EQ(type, row.type);
    EXPECT_EQ(shown(), row.shown);
    const std::vector<std::string> made = calls();
    EXPECT_EQ(FaultScenarios::count(made, "send(4"), row.echoes ? 1 : 0);
    record.heal();
    EXPECT_TRUE(wasForgotten());
    EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
    EXPECT_THAT(shown(), ElementsAre(11, 12));
  }
}

TEST_F(ThrowsOnce, EachCallOfARequestEndsItAsStated) {
  const struct Row {
    const char* call;
    const char* address;
    Ids shown;
    BulkMsgType type = BulkMsg_BulkRequest;
  } rows[] = {
      {"system", "00 40 00", {}, BulkMsg_ReceiveError},
      {"getMixingVoiceName", "0E 31 05", {}},
      {"checkMode", "00 40 00", {}},
      {"getLoadSaveFlag", "00 40 00", {}},
      {"setId", "00 40 00", {14, 44}},
      {"flush", "00 40 00", {13, 14, 44}},
      {"send", "00 40 00", {13, 14, 44}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.call);
    assistant->closeMsg();
    forget();
    record.heal();
    record.raise(row.call, 1);
    BulkMsgType type = BulkMsg_NotSysEx;
    EXPECT_NO_THROW(type = request(row.address));
    EXPECT_EQ(record.thrown(), 1U);
    EXPECT_EQ(type, row.type);
    EXPECT_EQ(shown(), row.shown);
    record.heal();
    EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
    EXPECT_THAT(shown(), ElementsAre(13, 14));
  }
}

TEST_F(ThrowsOnce, AScreenThatAlwaysThrowsLosesNoPriorityAndNoOutput) {
  record.raise("setId");
  EXPECT_EQ(send("0E 0A 05"), BulkMsg_BulkDump);
  EXPECT_EQ(send("0F 0A 05"), BulkMsg_BulkDump);
  const std::vector<std::string> made = calls();
  EXPECT_EQ(FaultScenarios::count(made, "store"), 0) << "it could not be told";
  EXPECT_EQ(FaultScenarios::count(made, "thread.attach"), 0);
  EXPECT_THAT(trace(), IsEmpty());
  record.heal();
  EXPECT_EQ(send("0E 0A 05"), BulkMsg_BulkDump);
  EXPECT_EQ(send("0F 0A 05"), BulkMsg_BulkDump);
  EXPECT_EQ(FaultScenarios::count(calls(), "store"), 1);
}

TEST_F(ThrowsOnce, TheOperationsOfADerivedEditorLetNothingOut) {
  const Bytes message = dumpMessage("00 40 00", pattern(8));
  record.raise("system");
  EXPECT_EQ(assistant->checkBulkDumpMessage(message.data(), lengthOf(message)), BulkMsg_ReceiveError);
  std::uint8_t nibble = 7;
  EXPECT_EQ(Utility::getDeviceNumber(tools, &nibble), CMA::DeviceNumber_Off);
  EXPECT_EQ(nibble, 0);
  EXPECT_EQ(Utility::getDeviceNumber(tools, nullptr), CMA::DeviceNumber_Off);
  record.raise("checkMode");
  EXPECT_EQ(assistant->checkAddress({0x00, 0x40, 0x00}), 0x80000000UL);
  record.raise("setId");
  EXPECT_NO_THROW(assistant->showMsg(1));
  EXPECT_NO_THROW(assistant->closeMsg());
  EXPECT_NO_THROW(assistant->init());
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(ThrowsOnce, AJobTellsOfWhatWasThrownButNotOfAnAnswerThatFailed) {
  record.raise("send", 2);  // in the midst of the answer
  EXPECT_EQ(bulkJobs[4]->execEvent(nullptr, nullptr), CMA::JOB::Result_UnknownError);
  EXPECT_EQ(tools.system.utility[50], 1);
  EXPECT_EQ(shown().back(), 44);
  EXPECT_THAT(trace(), IsEmpty());
  record.heal();
  record.raise("set", 2);  // the switch, when all else is done
  EXPECT_EQ(bulkJobs[4]->execEvent(nullptr, nullptr), CMA::JOB::Result_UnknownError);
  record.heal();
  EXPECT_EQ(bulkJobs[4]->execEvent(nullptr, nullptr), CMA::JOB::Result_Success);
}

// What else the trigger has to do is done.
TEST_F(ThrowsOnce, AWriteTriggerGoesOnWithTheRest) {
  record.raise("removeMixingVoice", 3);
  send("11 01 00");
  EXPECT_EQ(FaultScenarios::count(calls(), "removeMixingVoice"), 128);

  record.heal();
  send("0C 50 05", BDA::kEmptyDump);
  forget();
  record.raise("requestOverWriteConfig", 1);
  send("11 00 00");
  EXPECT_EQ(record.thrown(), 1U);
  const std::vector<std::string> made = calls();
  EXPECT_EQ(FaultScenarios::count(made, "removeContents"), 1);
  EXPECT_EQ(FaultScenarios::count(made, "sync"), 1);
  trace();
}

TEST_F(ThrowsOnce, TheHeaderIsForgottenWhoeverListens) {
  RecordingObserver observer(record);
  assistant->registerObserver(&observer);
  openHeader();
  record.heal();
  record.raise("checkMode", 1);
  send("00 40 00", pattern(8));
  EXPECT_EQ(record.thrown(), 1U);
  record.heal();
  EXPECT_TRUE(wasForgotten());
  assistant->registerObserver(nullptr);
}

TEST_F(ThrowsOnce, NothingStaysHeldForALaterTrigger) {
  for (const char* call : {"removeMixingVoice", "voiceContentNumber", "getMixingVoiceNumber"}) {
    SCOPED_TRACE(call);
    record.heal();
    send("0C 50 05", BDA::fieldOf("Song", pattern(3)));
    record.heal();
    record.raise(call, 1);
    send(call == std::string_view("removeMixingVoice")    ? "11 01 00"
         : call == std::string_view("voiceContentNumber") ? "0C 0A 01"
                                                          : "0C 10 01",
         BDA::kEmptyDump);
    EXPECT_EQ(record.thrown(), 1U);
    record.heal();
    forget();
    trace();
    send("11 00 00");
    EXPECT_EQ(FaultScenarios::count(calls(), "openDataFile"), 0);
  }
}

TEST_F(ThrowsOnce, APassOfWhichSomethingWasWrittenIsSynchronised) {
  for (const char* call : {"requestOverWriteConfig", "removeContents", "openData", "closeDataWithoutSync"}) {
    SCOPED_TRACE(call);
    record.heal();
    send("0C 0A 05", BDA::fieldOf("Voice", pattern(3)));
    send("0C 0A 06", BDA::kEmptyDump);
    send("0C 50 05", BDA::fieldOf("Song", pattern(3)));
    forget();
    record.heal();
    record.raise(call, 1);
    send("11 00 00");
    trace();
    EXPECT_EQ(record.thrown(), 1U);
    const std::vector<std::string> made = calls();
    EXPECT_EQ(FaultScenarios::count(made, "openDataFile"), 2);
    EXPECT_EQ(FaultScenarios::count(made, "sync"), 1);
    EXPECT_EQ(shown().back(), 44);
  }
}

class ThrowsInConstruction : public AssistantFixture {
 protected:
  void SetUp() override {}
};

TEST_F(ThrowsInConstruction, WhatItMadeIsUndoneAndEveryMessageRefused) {
  struct Other : CMA::JobReceiver {
    unsigned long execEvent(EvtSrv::MemoryHolder*, EvtSrv::MemoryHolder*) override { return 0; }
  } other;
  construct();
  assistant.reset();
  const std::map<std::string, unsigned, std::less<>> uses = record.uses();
  const char* const kOnTheWay[] = {"openPort", "createTemporaryModel", "voiceContentNumber"};
  for (const char* call : kOnTheWay) {
    for (unsigned nth = 1; nth <= uses.at(call); ++nth) {
      SCOPED_TRACE(std::string(call) + " at use " + std::to_string(nth));
      bulkJobs = {&other};
      forget();
      record.heal();
      record.raise(call, nth);
      ASSERT_NO_THROW(construct());
      EXPECT_EQ(record.thrown(), 1U);
      EXPECT_THAT(bulkJobs, ElementsAre(&other));
      const bool hadModel = std::string_view(call) == "voiceContentNumber";
      EXPECT_EQ(FaultScenarios::count(calls(), "destroyTemporaryModel"), hadModel ? 1 : 0);
      record.heal();
      registerBridge();
      EXPECT_EQ(send("00 40 00", pattern(8)), BulkMsg_BulkDump);
      EXPECT_EQ(request("00 40 00"), BulkMsg_BulkRequest);
      EXPECT_EQ(send("0F 31 45"), BulkMsg_BulkDump);
      EXPECT_EQ(FaultScenarios::count(calls(), "removeMixingVoice"), 0);
      const bool hasScreen = std::string_view(call) != "openPort";
      EXPECT_EQ(shown(), hasScreen ? Ids({11, 12, 44, 13, 14, 44, 1, 2, 44}) : Ids());
      forget();
      assistant.reset();
      EXPECT_THAT(calls(), IsEmpty()) << "twice";
      bridge.reset();
    }
  }
}

TEST_F(ThrowsInConstruction, ADestructorLetsNothingOut) {
  construct();
  record.raise("destroyTemporaryModel");
  EXPECT_NO_THROW(assistant.reset());
  EXPECT_EQ(record.thrown(), 1U);
}

}  // namespace
