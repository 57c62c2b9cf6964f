#pragma once

// What an editor goes through with its assistant, as scenarios for tests that make its services fail.

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "AddressRows.h"
#include "ExecuterNumbers.h"
#include "FileDumpFixture.h"
#include "bda/BulkDumpAssistant.h"
#include "support/AssistantFixture.h"

namespace Testing {

class FaultScenarios : public AssistantFixture {
 public:
  // One message; how it fares is for the test to note.
  virtual void feed(const Bytes& message, BDA::DevicePortNum from = BDA::DevicePort_Main) {
    assistant->receiveBulkDump(message.data(), lengthOf(message), from);
  }
  void dump(const char* address, const Bytes& data = {}) { feed(dumpMessage(address, data)); }
  void ask(const char* address) { feed(requestMessage(address)); }
  virtual void runJob(std::size_t number) { bulkJobs.at(number)->execEvent(nullptr, nullptr); }

  using Play = void (FaultScenarios::*)();
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
    feed(dumpMessage("00 20 00", pattern(20)), BDA::DevicePort_Echo);
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
  template <std::uint8_t mid, BDA::List list>
  void unit() {
    const auto addressOf = [](std::uint8_t hi, std::uint8_t middle, std::uint8_t lo) {
      char text[9];
      std::snprintf(text, sizeof text, "%02X %02X %02X", hi, middle, lo);
      return std::string(text);
    };
    const auto send = [&](std::uint8_t hi, std::uint8_t middle, std::uint8_t lo, std::size_t length) {
      dump(addressOf(hi, middle, lo).c_str(), pattern(length));
    };
    send(BDA::kHeaderHi, mid, 0, 0);
    BDA::forEachAddress(BDA::kParameterRows, [&](const BDA::AddressRow& row, std::uint8_t middle, std::uint8_t lo) {
      if (BDA::listOf(row.hi) == std::size_t(list))
        send(row.hi, middle, lo, BDA::kExecuterDataLength[BDA::executerOf(row, middle)]);
    });
    send(BDA::kFooterHi, mid, 0, 0);
    ask(addressOf(BDA::kHeaderHi, mid, 0).c_str());
  }
  void job() { runJob(4); }
  void fileDumps() {
    dump("0C 10 05", BDA::fieldOf("Mix", pattern(3)));
    dump("0C 10 06", BDA::kEmptyDump);
    dump("0C 50 05", BDA::fieldOf("Song", pattern(3)));
    dump("0C 50 06", BDA::kEmptyDump);
    dump("11 01 00");
    ask("0C 10 05");
    ask("0C 50 05");
  }
  void editorBlocks() {
    dump("71 00 00", pattern(128));
    ask("71 00 00");
    ask("70 20 00");
    ask("70 10 00");
    ask("70 30 00");
    ask("51 00 00");
  }
  void unknown() {
    dump("05 05 05");
    ask("05 05 05");
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

  // Elements, keys, parts ... are alike: every eighth of them stands for those that follow, and the first for all where
  // a test has to be short.
  static bool isOneOfMany(const std::string& call) {
#ifdef BDA_SAMPLED
    constexpr unsigned long kStep = 128;
#else
    constexpr unsigned long kStep = 8;
#endif
    const std::size_t at = call.rfind('[');
    return at != std::string::npos && std::stoul(call.substr(at + 1)) % kStep != 0;
  }

  static std::ptrdiff_t count(const std::vector<std::string>& list, const char* call) {
    return std::count_if(list.begin(), list.end(), [&](const std::string& line) { return line.rfind(call, 0) == 0; });
  }
};

struct Scenario {
  const char* name;
  FaultScenarios::Play play;
};
inline constexpr Scenario kScenarios[] = {
    {"system dump", &FaultScenarios::systemDump},
    {"stored voice", &FaultScenarios::storedVoice},
    {"stored multi and remote", &FaultScenarios::storedMultiAndRemote},
    {"mixing voice", &FaultScenarios::mixingVoice},
    {"system request", &FaultScenarios::systemRequest},
    {"master request", &FaultScenarios::masterRequest},
    {"job", &FaultScenarios::job},
    {"unknown addresses", &FaultScenarios::unknown},
    {"normal voice", &FaultScenarios::unit<0x0F, BDA::List::normalVoice>},
    {"drum voice", &FaultScenarios::unit<0x28, BDA::List::drumVoice>},
    {"performance", &FaultScenarios::unit<0x4F, BDA::List::performance>},
    {"multi", &FaultScenarios::unit<0x5F, BDA::List::multi>},
    {"master", &FaultScenarios::unit<0x7F, BDA::List::master>},
    {"remote", &FaultScenarios::unit<0x6F, BDA::List::remote>},
};

// Those, and what is told in words of its own by contract, for tests that do not look at the words.
inline std::vector<Scenario> everyScenario() {
  std::vector<Scenario> all(std::begin(kScenarios), std::end(kScenarios));
  all.push_back({"file dumps", &FaultScenarios::fileDumps});
  all.push_back({"editor blocks", &FaultScenarios::editorBlocks});
  return all;
}

}  // namespace Testing
