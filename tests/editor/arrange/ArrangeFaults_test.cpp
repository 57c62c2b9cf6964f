// An arrangement on a disk that fails.

#include "editor/arrange/ArrangeFixture.h"
#include "editor/contents/FaultyVfs.h"
#include "editor/contents/TemporaryLibrary.h"

namespace Editor {
namespace {

using Kind = Arrangement::Kind;

// What there is in the file, as a program sees it that opens it now.
struct State {
  std::vector<std::pair<ContentId, std::optional<Library::Content>>> contents;
  std::vector<std::pair<ContentId, Library::Flag>> flags;
  ModelSet buffer;

  friend bool operator==(const State&, const State&) = default;
};

State stateOf(const std::filesystem::path& file) {
  EmbeddedEditor editor(file);
  State state{{}, editor.library().favourites(), editor.tools().live(EditBuffer::master)};
  for (const ContentId id : editor.library().contents()) state.contents.emplace_back(id, editor.library().content(id));
  return state;
}

void fill(EmbeddedEditor& editor) {
  for (const char* place : {"voice:user1:1", "voice:user1:2", "voice:user2:2", "master:1", "master:edit"}) {
    const Target target = parseTarget(place);
    ModelSet models = freshTarget(target, false);
    nameIn(models)->assign(place);
    storeTarget(editor, target, models);
  }
  editor.library().setFavourite(parseContent("voice:user1:1").content, 1);
}

struct Run {
  Kind kind;
  const char* from;
  const char* to;
};

class ArrangeFaults : public testing::TestWithParam<Run> {
 protected:
  static void run(EmbeddedEditor& editor) {
    arrange(editor, parseArrangement(GetParam().kind, GetParam().from, GetParam().to));
  }

  void failAtEveryStep(FaultyVfs::Fault fault) {
    bool struck = true;
    for (int step = 1; struck; ++step) {
      const std::filesystem::path file = directory_ / (std::to_string(step) + ".db").c_str();
      FaultyVfs disk;
      EmbeddedEditor editor(file, {.vfs = FaultyVfs::kName});
      fill(editor);
      const State before = stateOf(file);
      bool isTold = true;
      disk.arm(fault, step);
      try {
        run(editor);
      } catch (const LibraryError&) {
        isTold = false;
      }
      struck = disk.hasStruck();
      disk.disarm();
      EXPECT_EQ(isTold, stateOf(file) != before) << step;
      EXPECT_TRUE(struck || isTold);
      ASSERT_LT(step, 200);
    }
  }

 private:
  TemporaryDirectory directory_;
};

TEST_P(ArrangeFaults, anErrorOfTheDiskLeavesAllOrNothing) { failAtEveryStep(FaultyVfs::Fault::IoError); }
TEST_P(ArrangeFaults, aFullDiskLeavesAllOrNothing) { failAtEveryStep(FaultyVfs::Fault::DiskFull); }

TEST_P(ArrangeFaults, aRunIsOneCommit) {
  const TemporaryDirectory directory;
  const FaultyVfs disk;
  EmbeddedEditor editor(directory / "library.db", {.vfs = FaultyVfs::kName});
  fill(editor);
  const int before = disk.commits();
  run(editor);
  EXPECT_EQ(disk.commits(), before + 1);
}

INSTANTIATE_TEST_SUITE_P(Disk, ArrangeFaults,
                         testing::Values(Run{Kind::copy, "voice:user1:1..2", "voice:user2:1"},
                                         Run{Kind::move, "voice:user1:1..2", "voice:user2:1"},
                                         Run{Kind::swap, "voice:user1:1..2", "voice:user2:1"},
                                         Run{Kind::swap, "master:1", "master:edit"}));

}  // namespace
}  // namespace Editor
