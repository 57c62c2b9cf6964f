// The editor fails: every call that a scenario makes on it is made to fail, and to throw, at its first, second ... last
// use. What it says and shows is what is stated for that call. Nothing may leak out of that: Midi is resumed, the
// priority given back, and the scenario runs afterwards as if nothing had been.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <new>
#include <set>
#include <string_view>

#include "AddressRows.h"
#include "ExecuterNumbers.h"
#include "bda/BulkDumpAssistant.h"
#include "support/AssistantFixture.h"

namespace {

using namespace Testing;
using namespace BDA;
using ::testing::IsEmpty;

// What a failing call has the module say first, and show; silent calls are not here. Models are by the beginning of
// their parts' names.
struct Stated {
  std::string_view call;
  std::string_view says;           // "": nothing
  int shows;                       // 0: nothing
  std::string_view scenario = "";  // "": in any
};
constexpr Stated kStated[] = {
    {"checkMode", "error : mode error...!\n", 45},
    {"getLoadSaveFlag", "error : can't receive bulk while loding/saving file !\n", 0},
    {"getLoadSaveFlag", "error : can't receive bulk while loading/saving file !\n", 0},
    {"store", "error : jobTools->storeForReceivedSysExBulk()! [ret = 1]\n", 44},
    {"load", "error : jobTools->loadForReceivedSysExBulk()! [ ret = 1]\n", 44},
    {"removeMixingVoice", "error: failed to remove mixing voices ! [ ContSrvResult = 3 ]\n", 0},
    // Without its system model the instrument has no device number, and its switch is off.
    {"get", "Receive Bulk Sw is OFF !!!\n", 41},
    {"system", "Receive Bulk Sw is OFF !!!\n", 41},
    {"system", "Device Number is set to [OFF]... so can't send SysExc.\n", 42},
    {"system", "", 42},  // a job says no more
    {"system", "error : getBulkDumpMessage() ! [ BDAErr = 0x80000000 ]\n", 44},
    {"system", "error : getBulkDumpMessage() ! [ BDAErr = 0x80000004 ]\n", 44},
    {"system", "error : getBulkDumpMessage() ! [ BDAErr = 0x80004000 ]\n", 44},
    // A part of a model that is not there.
    {"system", "Temporary Model is NULL !!!\n", 44},
    {"temporary.", "Temporary Model is NULL !!!\n", 44},
    {"temporary.", "error :model is NULL !\n", 44},
    {"voice", "Temporary Model is NULL !!!\n", 44},
    {"multi", "Temporary Model is NULL !!!\n", 44},
    {"arpeggio", "Temporary Model is NULL !!!\n", 44},
    {"master", "Temporary Model is NULL !!!\n", 44},
    {"master", "error :model is NULL !\n", 44},
    {"remote", "Temporary Model is NULL !!!\n", 44},
    // A performance's part does what a multi's part does as well. By contract the result of that is not used.
    {"multi", "Temporary Model is NULL !!!\n", 0, "performance"},
    {"temporary.", "Temporary Model is NULL !!!\n", 0, "performance"},
};
// Calls that may fail without a word: nothing is lost, or it is the editor's own affair.
constexpr std::string_view kSilent[] = {
    "additional",
    "arpeggio",
    "changeCorrectType",
    "correctBankSelAndProgramNum",
    "flush",
    "get",
    "get16",
    "getMixingVoiceName",
    "getName",
    "init",
    "insertionSwitchAllOff",
    "resumeOutputMidi",
    "send",
    "set",
    "set16",
    "setId",
    "setName",
    "suspendOutputMidi",
    "system",
    "temporary.arpeggio",
    "thread",
};

// "system" stands for "system.common" too, "init" for "initVoice".
bool concerns(std::string_view name, const std::string& call) {
  if (call.rfind(name, 0) != 0) return false;
  return call.size() == name.size() || name == "init" || name.back() == '.' || call[name.size()] == '.' ||
         call[name.size()] == '[';
}

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
  // A whole unit: header, all blocks, footer, and the request of it.
  template <std::uint8_t mid, List list>
  void unit() {
    const auto addressOf = [](std::uint8_t hi, std::uint8_t middle, std::uint8_t lo) {
      char text[9];
      std::snprintf(text, sizeof text, "%02X %02X %02X", hi, middle, lo);
      return std::string(text);
    };
    const auto send = [&](std::uint8_t hi, std::uint8_t middle, std::uint8_t lo, std::size_t length) {
      dump(addressOf(hi, middle, lo).c_str(), pattern(length));
    };
    send(kHeaderHi, mid, 0, 0);
    forEachAddress(kParameterRows, [&](const AddressRow& row, std::uint8_t middle, std::uint8_t lo) {
      if (listOf(row.hi) == std::size_t(list)) send(row.hi, middle, lo, kExecuterDataLength[executerOf(row, middle)]);
    });
    send(kFooterHi, mid, 0, 0);
    ask(addressOf(kHeaderHi, mid, 0).c_str());
  }
  void job() { bulkJobs.at(4)->execEvent(nullptr, nullptr); }
  void unknown() {
    dump("05 05 05");
    ask("05 05 05");
  }

  struct Played {
    std::vector<std::string> calls;
    std::vector<std::string> log;
    std::vector<int> shown;

    friend bool operator==(const Played&, const Played&) = default;
  };
  // Everything that the scenario did, from a state without header and message.
  Played played(Play play) {
    assistant->init();
    assistant->closeMsg();
    setReceiveSwitch(1);
    forget();
    (this->*play)();
    Played made{{}, trace(), shown()};
    made.calls = record.take();
    forget();
    return made;
  }

  // The uses of a call that fail in turn: all, or where there are many the first, the last and some between.
  static std::vector<unsigned> turns(unsigned uses) {
#ifdef BDA_SAMPLED
    constexpr unsigned kMost = 4;
#else
    constexpr unsigned kMost = 20;
#endif
    std::vector<unsigned> chosen;
    for (unsigned nth = 1; nth <= uses; nth += 1 + uses / (kMost + 1)) chosen.push_back(nth);
    if (chosen.back() != uses) chosen.push_back(uses);
    return chosen;
  }

  // Elements, keys, parts ... are alike: the first of each stands for all.
  static bool isOneOfMany(const std::string& call) {
    const std::size_t at = call.rfind('[');
    return at != std::string::npos && call.compare(at, 3, "[0]") != 0;
  }

  // What differs from the good run begins with what is stated for that call. The row that says it, null: silent.
  static const Stated* expectStated(const char* scenario, const std::string& call, const Played& failed,
                                    const Played& good, const std::string& what) {
    const auto differing = std::mismatch(failed.log.begin(), failed.log.end(), good.log.begin(), good.log.end()).first;
    // A report is two lines, its place first.
    const std::ptrdiff_t report = (differing - failed.log.begin()) / 2 * 2;
    const std::string says = differing == failed.log.end() ? "" : failed.log.at(std::size_t(report) + 1);
    for (const Stated& stated : kStated) {
      if (!concerns(stated.call, call) || says != stated.says) continue;
      if (!stated.scenario.empty() && stated.scenario != scenario) continue;
      const auto times = [&](const std::vector<int>& shown) {
        return std::count(shown.begin(), shown.end(), stated.shows);
      };
      if (stated.shows == 0 || times(failed.shown) > times(good.shown)) return &stated;
    }
    const bool mayBeSilent = std::any_of(std::begin(kSilent), std::end(kSilent),
                                         [&](std::string_view name) { return concerns(name, call); });
    EXPECT_TRUE(mayBeSilent) << what << " says \"" << says << "\"";
    EXPECT_EQ(failed.log, good.log) << what;
    EXPECT_EQ(failed.shown, good.shown) << what;
    return nullptr;
  }

  static long count(const std::vector<std::string>& list, const char* call) {
    return std::count_if(list.begin(), list.end(), [&](const std::string& line) { return line.rfind(call, 0) == 0; });
  }

  static void expectEverythingGivenBack(const std::vector<std::string>& made, const std::string& what) {
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
    {"normal voice", &Faults::unit<0x0F, List::normalVoice>},
    {"drum voice", &Faults::unit<0x28, List::drumVoice>},
    {"performance", &Faults::unit<0x4F, List::performance>},
    {"multi", &Faults::unit<0x5F, List::multi>},
    {"master", &Faults::unit<0x7F, List::master>},
    {"remote", &Faults::unit<0x6F, List::remote>},
};

TEST_F(Faults, WhateverCallOfTheEditorFailsIsReportedAsStatedAndTheNextDumpWorks) {
  std::set<const Stated*> seen;
  for (const auto& [name, play] : kScenarios) {
    played(play);  // what stays different after the first time, such as the bytes that are requested, is so now
    record.heal();
    const Played good = played(play);
    const auto uses = record.uses();
    ASSERT_FALSE(uses.empty());
    ASSERT_TRUE(good.log.empty() || play == &Faults::unknown) << name;
    for (const auto& [call, times] : uses) {
      if (isOneOfMany(call)) continue;
      for (const unsigned nth : turns(times)) {
        const std::string what = std::string(name) + ": " + call + " at use " + std::to_string(nth);
        record.heal();
        record.fail(call, nth);
        const Played failed = played(play);
        seen.insert(expectStated(name, call, failed, good, what));
        expectEverythingGivenBack(failed.calls, what);
        record.heal();
        ASSERT_TRUE(played(play) == good) << what;
      }
    }
  }
  for (const Stated& stated : kStated) EXPECT_TRUE(seen.contains(&stated)) << stated.call << ": " << stated.says;
}

TEST_F(Faults, WhateverABlockThrowsTheNextDumpWorks) {
  // Calls from inside a receiver or a job; elsewhere the editor must not throw.
  const auto isInside = [](const std::string& call) {
    return call == "store" || call == "load" || call == "set" || call == "set16" || call == "setName" ||
           call == "changeCorrectType" || call.rfind("init", 0) == 0 || call.rfind("temporary", 0) == 0 ||
           call == "system.common" || call == "system.adPart[0]" || call == "system.quickSetup[0]" || call == "send";
  };
  for (const auto& [name, play] : kScenarios) {
    played(play);
    record.heal();
    const Played good = played(play);
    const auto uses = record.uses();
    for (const auto& [call, times] : uses) {
      if (!isInside(call) || isOneOfMany(call)) continue;
      for (const unsigned nth : turns(times)) {
        const std::string what = std::string(name) + ": " + call + " at use " + std::to_string(nth);
        record.heal();
        record.raise(call, nth);
        try {
          expectEverythingGivenBack(played(play).calls, what);
        } catch (const std::bad_alloc&) {
          // The screen, the job's own use of the switch and the echo run in the editor's name.
          EXPECT_TRUE(call == "send" || call == "set") << what;
          traceScope.take();
        }
        record.heal();
        ASSERT_TRUE(played(play) == good) << what;
      }
    }
  }
}

TEST_F(Faults, FailuresShowTheirIdsInOrder) {
  const struct Row {
    const char* call;
    unsigned nth;
    Play play;
    std::vector<int> shown;
    std::size_t lines;
  } rows[] = {
      {"checkMode", 1, &Faults::storedVoice, {45, 1, 2}, 6},  // header refused; the footer fits none: twice, not found
      {"store", 1, &Faults::storedVoice, {11, 12, 1, 2, 44}, 4},
      {"initVoice", 1, &Faults::storedVoice, {11, 12, 1, 2}, 0},  // the editor's own affair
      {"initMulti", 1, &Faults::storedVoice, {11, 12, 1, 2}, 0},
      {"load", 1, &Faults::masterRequest, {13, 14, 44}, 4},
      {"removeMixingVoice", 1, &Faults::mixingVoice, {1, 2}, 4},
  };
  for (const Row& row : rows) {
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
