// A library on a disk that fails at any moment: what was there before a transaction is there, or all of the
// transaction, and what was reported as committed is never lost.

#include <gtest/gtest.h>

#include <iostream>
#include <map>

#include "contents/ContentsWork.h"
#include "contents/Library.h"
#include "editor/contents/FaultyVfs.h"
#include "editor/contents/TemporaryLibrary.h"

namespace Editor {
namespace {

using namespace ContSrv;  // NOLINT(google-build-using-namespace): every name of it is spoken here
using Fault = FaultyVfs::Fault;

constexpr int kRounds = 6;
constexpr int kReopened = 3;  // before this round the library is closed and opened again: its log is worked in

// All that a library holds, to be compared.
struct State {
  std::map<ContentId, Library::Content> contents;
  std::vector<std::pair<ContentId, Library::Flag>> favourites;

  friend bool operator==(const State&, const State&) = default;
};

State stateOf(Library& library) {
  State state;
  for (const ContentId id : library.contents()) state.contents[id] = library.content(id).value();
  state.favourites = library.favourites();
  return state;
}

// Each round is one pass: contents replaced, added and removed, all of it stamped with the round. True when sync() says
// that it is stored.
bool runRound(ContentsWork& work, int round) {
  work.removeContents(ContType_Multi, {std::uint32_t(round - 1)}, false);
  for (const std::uint32_t number : {std::uint32_t(round), std::uint32_t(50), std::uint32_t(51)}) {
    std::string path;
    work.getDataFilePath(ContType_Multi, number, path);
    DataFile* const file = work.openDataFile(path, OpenMode_Write);
    if (file == nullptr) continue;
    Data* const data = file->openData();
    work.setContentName(ContType_Multi, number, "round " + std::to_string(round), false);
    const Library::Bytes bytes(5000, std::uint8_t(round));
    data->write(bytes.data(), std::int64_t(bytes.size()));
    file->closeDataWithoutSync(data);
    work.closeDataFile(file, 0);
  }
  return work.sync() == ContRes_Success;
}

// The states after 0, 1, ... rounds on a good disk.
std::vector<State> goodStates() {
  TemporaryDirectory directory;
  Library library(directory / "library.db");
  ContentsWork work(library);
  std::vector<State> states{stateOf(library)};
  for (int round = 1; round <= kRounds; ++round) {
    EXPECT_TRUE(runRound(work, round));
    states.push_back(stateOf(library));
  }
  return states;
}

struct Outcome {
  int reported = 0;  // rounds that were reported as stored
  bool failed = false;
};

// Creates a library and runs all rounds, until something fails.
Outcome runAll(const std::filesystem::path& file) {
  Outcome run;
  try {
    for (int round = 1; round <= kRounds;) {
      Library library(file, {.vfs = FaultyVfs::kName});
      ContentsWork work(library);
      const int end = round < kReopened ? kReopened : kRounds + 1;
      for (; round < end; ++round) {
        if (!runRound(work, round)) return {run.reported, true};
        run.reported = round;
      }
    }
  } catch (const LibraryError&) {
    run.failed = true;
  }
  return run;
}

// How many operations such a run takes.
int operationsOfARun() {
  TemporaryDirectory directory;
  FaultyVfs vfs;
  EXPECT_EQ(runAll(directory / "library.db").reported, kRounds);
  return vfs.operations();
}

struct Losses {
  int passes = 0;   // a pass that was reported is not there, or half of one is
  int damaged = 0;  // the library cannot be opened, or is inconsistent
};

// Cuts the power at every operation, several times, and opens what is left. Counts what is not as it has to be.
Losses lossesByPowerCuts(bool ignoreSyncs) {
#ifdef BDA_SAMPLED
  constexpr int kStep = 7;
#else
  constexpr int kStep = 1;
#endif
  constexpr unsigned kSeeds = 3;
  const std::vector<State> good = goodStates();
  const int operations = operationsOfARun();
  Losses losses;
  int cuts = 0;
  for (int cut = 1; cut <= operations; cut += kStep) {
    TemporaryDirectory directory;
    FaultyVfs vfs;
    if (ignoreSyncs) vfs.ignoreSyncs();
    vfs.arm(Fault::PowerCut, cut);
    const Outcome run = runAll(directory / "library.db");
    for (unsigned seed = 0; seed < kSeeds; ++seed) {
      ++cuts;
      TemporaryDirectory afterwards;
      vfs.leaveFiles(afterwards.path(), seed);
      const auto file = afterwards / "library.db";
      try {
        Library library(file);
        const State state = stateOf(library);
        const auto reported = std::size_t(run.reported);
        const bool asReported = state == good[reported];
        const bool oneMore = run.failed && reported + 1 < good.size() && state == good[reported + 1];
        if (!(asReported || oneMore)) ++losses.passes;
        if (PlainDatabase(file)("PRAGMA integrity_check") != "ok") ++losses.damaged;
      } catch (const std::exception& error) {
        if (!ignoreSyncs) ADD_FAILURE() << "cut at operation " << cut << ": " << error.what();
        ++losses.damaged;
      }
    }
  }
  std::cout << cuts << " power cuts" << (ignoreSyncs ? " without syncs: " : ": ") << losses.passes << " passes lost, "
            << losses.damaged << " libraries damaged\n";
  return losses;
}

TEST(LibraryFaults, NothingIsLostByAPowerCutAtAnyMoment) {
  const Losses losses = lossesByPowerCuts(false);
  EXPECT_EQ(losses.passes, 0);
  EXPECT_EQ(losses.damaged, 0);
}

// Otherwise the test above would prove nothing.
TEST(LibraryFaults, LossesAndDamageAreFoundOnADiskThatIgnoresSyncs) {
  const Losses losses = lossesByPowerCuts(true);
  EXPECT_GT(losses.passes, 0);
  EXPECT_GT(losses.damaged, 0);
}

struct FaultAtEveryOperation : ::testing::TestWithParam<Fault> {};

TEST_P(FaultAtEveryOperation, LeavesWholePassesAndALibraryThatWorks) {
  const std::vector<State> good = goodStates();
  const int operations = operationsOfARun();
  ASSERT_GT(operations, 50);
  int failures = 0;
  for (int n = 1; n <= operations; ++n) {
    TemporaryDirectory directory;
    const auto file = directory / "library.db";
    FaultyVfs vfs;
    vfs.arm(GetParam(), n);
    const Outcome run = runAll(file);
    ASSERT_TRUE(vfs.hasStruck());
    failures += run.failed ? 1 : 0;
    vfs.disarm();

    Library library(file);
    const State state = stateOf(library);
    const auto reported = std::size_t(run.reported);
    // A failed sync may still have reached the disk: then the pass is there as a whole.
    ASSERT_TRUE(state == good[reported] || (run.failed && state == good[reported + 1])) << "operation " << n;
    ASSERT_EQ(PlainDatabase(file)("PRAGMA integrity_check"), "ok");
    ContentsWork work(library);
    ASSERT_TRUE(runRound(work, 7));
  }
  std::cout << operations << " faults, " << failures << " reported, 0 losses\n";
  EXPECT_GT(failures, 50);  // where none is reported, as in a checkpoint, none was lost
}

INSTANTIATE_TEST_SUITE_P(Disk, FaultAtEveryOperation, ::testing::Values(Fault::IoError, Fault::DiskFull),
                         [](const auto& tested) { return tested.param == Fault::IoError ? "IoError" : "DiskFull"; });

TEST(LibraryFaults, AfterAFailureInAPassTheWorkGoesOnAsIfItHadNotBegun) {
  TemporaryDirectory directory;
  FaultyVfs vfs;
  Library library(directory / "library.db", {.vfs = FaultyVfs::kName});
  ContentsWork work(library);
  ASSERT_TRUE(runRound(work, 1));
  const State before = stateOf(library);
  library.takeChanges();
  vfs.arm(Fault::DiskFull, 1);
  EXPECT_FALSE(runRound(work, 2));
  EXPECT_NE(work.takeError(), "");
  EXPECT_TRUE(library.takeChanges().empty());
  EXPECT_TRUE(stateOf(library) == before);
  EXPECT_EQ(work.setContentFavoriteFlag(ContType_Voice, 1, 1, true), ContRes_StoreError);
  vfs.disarm();
  EXPECT_TRUE(runRound(work, 2));
  EXPECT_EQ(work.setContentFavoriteFlag(ContType_Voice, 1, 1, true), ContRes_Success);
}

TEST(LibraryFaults, AReadThatFailsTakesThePassBack) {
  TemporaryDirectory directory;
  FaultyVfs vfs;
  Library library(madeLibrary(directory / "library.db"), {.vfs = FaultyVfs::kName});
  ContentsWork work(library);
  ASSERT_EQ(work.requestOverWriteConfig(ContType_Multi), ContRes_Success);
  vfs.setReadable(false);
  std::int64_t count = 0;
  std::int64_t maximum = 0;
  EXPECT_EQ(work.getMixingVoiceSumSync(count, maximum), ContRes_StoreError);
  vfs.setReadable(true);
  EXPECT_EQ(work.getMixingVoiceSumSync(count, maximum), ContRes_Success);
  EXPECT_EQ(work.removeContents(ContType_Multi, {1}, false), ContRes_StoreError);
  EXPECT_EQ(work.sync(), ContRes_StoreError);
  EXPECT_TRUE(runRound(work, 1));
}

}  // namespace
}  // namespace Editor
