#include "BulkExecuterFileDump.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <stdexcept>

#include "FileDumpFixture.h"

namespace BDA {
namespace {

using Testing::pattern;

// A store that fails ------------------------------------------------------------------------------------------------

// What becomes of an operation when one call answers something else.
struct Fault {
  bool isFailure = true;
  std::string report;             // empty: none
  std::set<std::string> skipped;  // the calls directly after it that are left out
};

class FileDumpFaults : public FileDumpFixture {
 protected:
  // `calls` without those that directly follow position `at` and are skipped.
  static Lines without(const Lines& calls, std::size_t at, const std::set<std::string>& skipped) {
    Lines left(calls.begin(), calls.begin() + std::ptrdiff_t(at) + 1);
    std::size_t next = at + 1;
    while (next < calls.size() && skipped.contains(nameOf(calls[next]))) ++next;
    left.insert(left.end(), calls.begin() + std::ptrdiff_t(next), calls.end());
    return left;
  }
  static std::string result(const std::string& message, long value) {
    return "error : " + message + "() ! [ ContSrvResult = " + std::to_string(value) + " ]\n";
  }
};

class FileDumpWriteFaults : public FileDumpFaults {
 protected:
  // A voice, a new and an old mixing voice, one that is removed, multis of which one is removed, the single content.
  void play() {
    record.heal();
    work.contents = {
        {{kVoice, 0x3F8010}, {"Old", {}}}, {{kVoice, 0x3F8020}, {"Gone", {}}}, {{kMulti, 7}, {"Gone", {}}}};
    hold("0C 0A 05", fieldOf("Piano", pattern(20)));
    hold("0C 10 00", fieldOf("New", pattern(21)));
    hold("0C 10 01", fieldOf("Changed", pattern(22)));
    hold("0C 10 02", kEmptyDump);
    hold("0C 50 06", fieldOf("Song", pattern(23)));
    hold("0C 50 07", kEmptyDump);
    hold("0C 7F 00", fieldOf("", pattern(24)));
  }
  BDAErr go() { return receive("11 01 00", {}); }

  static Fault stated(const std::string& name, int type, long answer) {
    const bool isSuccess = answer == ContSrv::ContRes_Success;
    const bool isGood = isSuccess || answer == ContSrv::ContRes_DoNothing;
    const std::set<std::string> rest{"openData", "setContentName", "write", "closeDataWithoutSync", "closeDataFile"};
    const Fault fine{false, "", {}};
    if (name == "removeMixingVoice")
      return isGood
                 ? fine
                 : Fault{true,
                         inSet("error: failed to remove mixing voices ! [ ContSrvResult = " + std::to_string(answer) +
                               " ]\n"),
                         {}};
    if (name == "getDataFilePath") {
      std::set<std::string> all = rest;
      all.insert({"getContentName", "openDataFile"});
      return isSuccess ? fine : Fault{true, inWrite(result("contentsWork->getDataFilePath", answer)), all};
    }
    if (name == "setContentName")
      return isGood
                 ? fine
                 : Fault{true,
                         inWrite("error : contentsWork->setContentName() ! ret = [" + std::to_string(answer) + "]\n"),
                         {}};
    if (name == "closeDataWithoutSync")
      return isSuccess ? fine : Fault{true, inWrite(result("contentsDataFile->closeDataWithoutSync", answer)), {}};
    if (name == "closeDataFile")
      return isSuccess ? fine : Fault{true, inWrite(result("contentsWork->closeDataFile", answer)), {}};
    if (name == "removeContent")
      return isGood ? fine : Fault{true, inWrite(result("contentsWork->removeContent", answer)), {}};
    if (name == "requestOverWriteConfig")
      return isSuccess ? fine : Fault{true, inPass(result("contentsWork->requestOverWriteConfig", answer)), {}};
    if (name == "removeContents")
      return isGood ? fine
                    : Fault{true,
                            inPass("error : contentsWork->removeContents() ! [ ContType = " + std::to_string(type) +
                                   ", ContSrvResult = " + std::to_string(answer) + " ]\n"),
                            {}};
    if (name == "getContentName" || name == "sync") return fine;
    throw std::logic_error(name);
  }

  void expectFault(const Lines& good, std::size_t at, const Fault& fault, const std::string& what) {
    EXPECT_EQ(go(), fault.isFailure ? 0x80000800u : 0x800u) << what;
    EXPECT_EQ(reports(), fault.report.empty() ? Lines{} : Lines{fault.report}) << what;
    EXPECT_EQ(calls(), without(good, at, fault.skipped)) << what;
  }
  void expectGood(const Lines& good, const Stored& expected, const std::string& what) {
    play();
    EXPECT_EQ(go(), 0x800u) << what;
    EXPECT_EQ(calls(), good) << what;
    EXPECT_EQ(stored(), expected) << what;
  }
};

TEST_F(FileDumpWriteFaults, EveryResultOfEveryCallIsTreatedAsStatedAndTheNextPassIsClean) {
  play();
  EXPECT_EQ(go(), 0x800u);
  const Lines good = calls();
  const Stored goodStored = stored();
  ASSERT_EQ(good.size(), 128u + 43) << "the removals and the pass";

  std::map<std::string, unsigned> uses;
  for (std::size_t at = 0; at < good.size(); ++at) {
    const std::string name = nameOf(good[at]);
    const unsigned nth = ++uses[name];
    const std::string what = good[at] + " at use " + std::to_string(nth);
    if (name == "openDataFile" || name == "openData") {
      play();
      record.fail(name, nth);
      const Fault fault = name == "openData"
                              ? Fault{true,
                                      inWrite("error : contentsDataFile->openData() !\n"),
                                      {"setContentName", "write", "closeDataWithoutSync"}}
                              : Fault{true,
                                      inWrite("error : contentsWork->openDataFile() !\n"),
                                      {"openData", "setContentName", "write", "closeDataWithoutSync", "closeDataFile"}};
      expectFault(good, at, fault, what);
    } else if (name == "write") {
      const long size = std::stol(good[at].substr(6));
      for (const long count : {0L, 1L, size - 1, size + 1, -1L}) {
        play();
        record.answer(name, count, nth);
        expectFault(
            good, at,
            {true, inWrite("error : contentsData->write() ! [ res size = " + std::to_string(count) + " ] \n"), {}},
            what);
      }
    } else if (name == "getMixingVoiceSumSync") {
      for (long answer = 1; answer <= 5; ++answer) {
        play();
        record.answer(name, answer, nth);
        EXPECT_EQ(go(), 0x80000800u);
        EXPECT_EQ(reports(), Lines{inPass(result("contentsWork->getMixingVoiceSumSync", answer))});
        EXPECT_EQ(calls(), Lines(good.begin(), good.begin() + std::ptrdiff_t(at) + 1)) << "and nothing more";
        EXPECT_EQ(trigger(), 0x800u);
        EXPECT_EQ(calls(), pass({}, 0)) << "all is discarded";
      }
    } else {
      const std::size_t bracket = good[at].find('(');
      const int type = name == "removeContents" ? std::stoi(good[at].substr(bracket + 1)) : 0;
      for (long answer = 1; answer <= 5; ++answer) {
#ifdef BDA_SAMPLED
        if (name == "removeMixingVoice" && nth % 60 != 1) continue;
#endif
        play();
        record.answer(name, answer, nth);
        expectFault(good, at, stated(name, type, answer), what + " -> " + std::to_string(answer));
      }
    }
    if (name != "removeMixingVoice" || nth % 60 == 1) expectGood(good, goodStored, what);
    if (HasFailure()) return;
  }
}

TEST_F(FileDumpWriteFaults, AFileWithoutDataIsClosedAndItsOwnFailureTold) {
  play();
  record.fail("openData", 1);
  record.fail("closeDataFile", 1);
  EXPECT_EQ(go(), 0x80000800u);
  EXPECT_EQ(reports(), (Lines{inWrite("error : contentsDataFile->openData() !\n"),
                              inWrite("error : contentsWork->closeDataFile() !\n")}));
  calls();
}

TEST_F(FileDumpWriteFaults, EveryFailureOfOneContentIsTold) {
  hold("0C 0A 05", fieldOf("Piano", pattern(20)));
  for (const char* call :
       {"setContentName", "write", "closeDataWithoutSync", "closeDataFile", "requestOverWriteConfig", "sync"})
    record.fail(call);
  EXPECT_EQ(trigger(), 0x80000800u);
  EXPECT_EQ(reports(), (Lines{inWrite("error : contentsWork->setContentName() ! ret = [3]\n"),
                              inWrite("error : contentsData->write() ! [ res size = 0 ] \n"),
                              inWrite(result("contentsDataFile->closeDataWithoutSync", 3)),
                              inWrite(result("contentsWork->closeDataFile", 3)),
                              inPass(result("contentsWork->requestOverWriteConfig", 3))}));
  EXPECT_EQ(calls(), pass({written(kVoice, 2053, "Piano", 20)}, kVoice)) << "nothing is left out for it";
}

TEST_F(FileDumpWriteFaults, WhenAllFailsEachContentIsTold) {
  play();
  for (const char* call :
       {"removeMixingVoice", "getDataFilePath", "removeContent", "removeContents", "requestOverWriteConfig"})
    record.fail(call);
  EXPECT_EQ(go(), 0x80000800u);
  const Lines told = reports();
  EXPECT_EQ(told.size(), 128u + 5 + 1 + 1 + 3);
  calls();
}

class FileDumpReadFaults : public FileDumpFaults {};

TEST_F(FileDumpReadFaults, EveryResultOfEveryCallIsTreatedAsStatedAndTheNextAnswerIsClean) {
  const Bytes head = bytesOf("F0 7D 00 7F 14 00 00 0C 50 05");
  const Bytes whole = Testing::dumpMessage("0C 50 05", fieldOf("Song", pattern(50)));
  work.contents[{kMulti, 5}] = {"Song", pattern(50)};
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x1000u);
  const Lines good = calls();
  ASSERT_EQ(good, readOf(kMulti, 5, 50));

  for (std::size_t at = 0; at < good.size(); ++at) {
    const std::string name = nameOf(good[at]);
    const std::set<std::string> rest(good.begin(), good.end());
    const auto expectFault = [&](long answer, const Fault& fault, const Bytes& sent) {
      const std::string what = name + " -> " + std::to_string(answer);
      record.heal();
      record.answer(name, answer);
      EXPECT_EQ(request("0C 50 05", message), fault.isFailure ? 0x80001000u : 0x1000u) << what;
      EXPECT_EQ(reports(), fault.isFailure ? (Lines{fault.report, cannotRead()}) : Lines{}) << what;
      EXPECT_EQ(message, fault.isFailure ? head : sent) << what;
      EXPECT_EQ(calls(), without(good, at, fault.skipped)) << what;
      record.heal();
      EXPECT_EQ(request("0C 50 05", message), 0x1000u) << what;
      EXPECT_EQ(message, whole) << what;
      EXPECT_EQ(calls(), good) << what;
    };
    const std::set<std::string> all{"getContentName", "openDataFile", "openData",     "getSize",
                                    "read",           "closeData",    "closeDataFile"};
    const std::string readError = inRead("error : content data read error ! \n");
    if (name == "openDataFile") {
      expectFault(0, {false, "", all}, Testing::dumpMessage("0C 50 05", kEmptyDump));
    } else if (name == "openData") {
      expectFault(
          0, {true, inRead("error : contentsDataFile->openData(). data is null !\n"), {"getSize", "read", "closeData"}},
          {});
    } else if (name == "getSize") {
      expectFault(0, {false, "", {"read"}}, Testing::dumpMessage("0C 50 05", fieldOf("Song", {})));
      expectFault(-1, {true, readError, {"read"}}, {});
    } else if (name == "read") {
      for (const long count : {-1, 0, 1, 49}) expectFault(count, {true, readError, {}}, {});
    } else {
      for (long answer = 1; answer <= 5; ++answer) {
        if (name == "getContentName" && answer == ContSrv::ContRes_EmptyContent)
          expectFault(answer, {false, "", {}}, Testing::dumpMessage("0C 50 05", fieldOf("", pattern(50))));
        else if (name == "getContentName" || name == "getDataFilePath")
          expectFault(answer, {true, inRead(result("contentsWork->" + name, answer)), all}, {});
        else if (name == "closeData")
          expectFault(answer, {true, inRead(result("contentsDataFile->closeData", answer)), {}}, {});
        else
          expectFault(answer, {true, inRead(result("contentsWork->closeDataFile", answer)), {}}, {});
      }
    }
  }
}

TEST_F(FileDumpReadFaults, AFileWithoutDataIsClosedAndItsOwnFailureTold) {
  work.contents[{kMulti, 5}] = {"Song", pattern(50)};
  record.fail("openData");
  record.fail("closeDataFile");
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x80001000u);
  EXPECT_EQ(reports(), (Lines{inRead("error : contentsDataFile->openData(). data is null !\n"),
                              inRead(result("contentsWork->closeDataFile", 3)), cannotRead()}));
  calls();
}

TEST_F(FileDumpReadFaults, AFailureNeitherTakesNorDiscardsWhatIsHeld) {
  hold("0C 50 05", fieldOf("Held", pattern(3)));
  record.fail("getDataFilePath", 1);
  Bytes message;
  EXPECT_EQ(request("0C 50 05", message), 0x80001000u);
  reports();
  calls();
  EXPECT_EQ(trigger(), 0x800u);
  EXPECT_EQ(calls(), pass({written(kMulti, 5, "Held", 3)}, kMulti));
}

}  // namespace
}  // namespace BDA
