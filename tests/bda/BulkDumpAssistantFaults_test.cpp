// The editor fails: every call that a scenario makes on it is made to fail, and to throw, at its first, second ... last
// use. Nothing may leak out of that: Midi is resumed, the priority given back, and the scenario runs afterwards as if
// nothing had been.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <new>

#include "bda/BulkDumpAssistant.h"
#include "support/AssistantFixture.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::IsEmpty;

struct Scenario {
  const char* name;
  std::function<void(AssistantFixture& fixture)> run;
};

// Opens what scenarios need of the fixture.
class Faults : public AssistantFixture {
 public:
  void feed(const Bytes& message, DevicePortNum from = DevicePort_Main) {
    assistant->receiveBulkDump(message.data(), message.size(), from);
  }
  void dump(const char* address, const Bytes& data = {}) { feed(dumpMessage(address, data)); }
  void ask(const char* address) { feed(requestMessage(address)); }

  using Play = void (Faults::*)();
  void systemDump() {
    dump("00 00 00", pattern(68));
    dump("00 50 00", pattern(10));
    dump("00 40 00", pattern(8));
  }
  void storedVoice() {
    dump("0E 0A 05");
    dump("0F 0A 05");
  }
  void storedMultiAndRemote() {
    dump("0E 5F 00");
    dump("0F 5F 00");
    dump("0E 60 01");
    dump("0F 60 01");
    feed(dumpMessage("00 20 00", pattern(20)), DevicePort_Echo);
  }
  void mixingVoice() {
    dump("0F 31 45");
    ask("0E 31 05");
  }
  void systemRequest() {
    ask("00 00 00");
    ask("00 50 00");
    ask("00 06 00");
  }
  void masterRequest() { ask("0E 70 03"); }
  void job() { bulkJobs.at(4)->execEvent(nullptr, nullptr); }
  void unknown() {
    dump("05 05 05");
    ask("05 05 05");
  }

  // Everything that the scenario did, from a state without header and message.
  std::vector<std::string> played(Play play) {
    assistant->init();
    assistant->closeMsg();
    setReceiveSwitch(1);
    record.take();
    (this->*play)();
    std::vector<std::string> made = record.take();
    const std::vector<std::string> log = trace();
    made.insert(made.end(), log.begin(), log.end());
    forget();
    return made;
  }

  // The uses of a call that fail in turn: all, or where sanitizers make that slow the first, the last and some between.
  static std::vector<unsigned> turns(unsigned uses) {
    std::vector<unsigned> chosen;
#ifdef BDA_SAMPLED
    constexpr unsigned kStep = 13;
#else
    constexpr unsigned kStep = 1;
#endif
    for (unsigned nth = 1; nth <= uses; nth += nth < 4 ? 1 : kStep) chosen.push_back(nth);
    if (chosen.back() != uses) chosen.push_back(uses);
    return chosen;
  }

  static long count(const std::vector<std::string>& list, const char* call) {
    return std::count_if(list.begin(), list.end(), [&](const std::string& line) { return line.rfind(call, 0) == 0; });
  }

  void expectEverythingGivenBack(const std::vector<std::string>& made, const std::string& what) {
    EXPECT_EQ(count(made, "suspendOutputMidi"), count(made, "resumeOutputMidi")) << what;
    EXPECT_EQ(count(made, "thread.attach"), count(made, "thread.detach")) << what;
    EXPECT_EQ(count(made, "thread.change"), 2 * count(made, "thread.attach")) << what;
  }
};

constexpr std::pair<const char*, Faults::Play> kScenarios[] = {
    {"system dump", &Faults::systemDump},
    {"stored voice", &Faults::storedVoice},
    {"stored multi and remote", &Faults::storedMultiAndRemote},
    {"mixing voice", &Faults::mixingVoice},
    {"system request", &Faults::systemRequest},
    {"master request", &Faults::masterRequest},
    {"job", &Faults::job},
    {"unknown addresses", &Faults::unknown},
};

TEST_F(Faults, WhateverCallOfTheEditorFailsTheNextDumpWorks) {
  for (const auto& [name, play] : kScenarios) {
    played(play);  // what stays different after the first time, such as the bytes that are requested, is so now
    record.heal();
    const std::vector<std::string> good = played(play);
    const auto uses = record.uses();
    ASSERT_FALSE(uses.empty());
    for (const auto& [call, times] : uses) {
      for (const unsigned nth : turns(times)) {
        const std::string what = std::string(name) + ": " + call + " at use " + std::to_string(nth);
        record.heal();
        record.fail(call, nth);
        expectEverythingGivenBack(played(play), what);
        record.heal();
        ASSERT_EQ(played(play), good) << what;
      }
    }
  }
}

TEST_F(Faults, WhateverABlockThrowsTheNextDumpWorks) {
  // Calls from inside a receiver or a job; elsewhere the editor must not throw.
  const auto isInside = [](const std::string& call) {
    return call == "store" || call == "load" || call == "set" || call == "set16" || call == "setName" ||
           call.rfind("init", 0) == 0 || call.rfind("temporary", 0) == 0 || call == "system.common" ||
           call == "system.adPart[0]" || call == "system.quickSetup[0]" || call == "send";
  };
  for (const auto& [name, play] : kScenarios) {
    played(play);
    record.heal();
    const std::vector<std::string> good = played(play);
    const auto uses = record.uses();
    for (const auto& [call, times] : uses) {
      if (!isInside(call)) continue;
      for (const unsigned nth : turns(times)) {
        const std::string what = std::string(name) + ": " + call + " at use " + std::to_string(nth);
        record.heal();
        record.raise(call, nth);
        try {
          expectEverythingGivenBack(played(play), what);
        } catch (const std::bad_alloc&) {
          // The screen, the job's own use of the switch and the echo run in the editor's name.
          EXPECT_TRUE(call == "send" || call == "set") << what;
          traceScope.take();
        }
        record.heal();
        ASSERT_EQ(played(play), good) << what;
      }
    }
  }
}

// What a failure must say and show.

struct Stated {
  const char* call;
  unsigned nth;
  Faults::Play play;
  std::vector<int> shown;
  std::size_t lines;
};

TEST_F(Faults, FailuresAreReportedAndShownAsStated) {
  const Stated rows[] = {
      {"checkMode", 1, &Faults::storedVoice, {45, 1, 2}, 6},  // header refused; the footer fits none: twice, not found
      {"store", 1, &Faults::storedVoice, {11, 12, 1, 2, 44}, 4},
      {"initVoice", 1, &Faults::storedVoice, {11, 12, 1, 2}, 0},  // the editor's own affair
      {"initMulti", 1, &Faults::storedVoice, {11, 12, 1, 2}, 0},
      {"load", 1, &Faults::masterRequest, {13, 14, 44}, 4},
      {"removeMixingVoice", 1, &Faults::mixingVoice, {1, 2}, 4},
  };
  for (const Stated& row : rows) {
    assistant->init();
    assistant->closeMsg();
    forget();
    record.heal();
    if (row.call == std::string("removeMixingVoice"))
      record.answer("getMixingVoiceName", ContSrv::ContRes_EmptyContent);
    record.fail(row.call, row.nth);
    (this->*row.play)();
    EXPECT_EQ(shown(), row.shown) << row.call;
    EXPECT_EQ(trace().size(), row.lines) << row.call;
  }
}

TEST_F(Faults, WithoutAPortForItsMessagesNothingIsShownAndAVoiceIsStoredAllTheSame) {
  record.fail("openPort");
  bulkJobs.clear();
  construct();
  registerBridge();
  forget();
  storedVoice();
  const std::vector<std::string> made = calls();
  EXPECT_EQ(count(made, "setId"), 0);
  EXPECT_EQ(count(made, "flush(messages)"), 0);
  EXPECT_EQ(count(made, "store(0A 05)"), 1);
  EXPECT_EQ(shown(), std::vector<int>{});
}

}  // namespace
