// Changes of a library that are killed at a random moment: all of a change is there, with its entry in the history, or
// nothing of it, and what was told is there.

#include <algorithm>
#include <iostream>
#include <map>

#include "Killed.h"
#include "Library.h"
#include "editor/contents/TemporaryLibrary.h"
#include "messages/AddressNames.h"

namespace {

struct Change {
  const char* name;
  bool isOfVersion1;
  std::vector<std::string> words;
};
void PrintTo(const Change& change, std::ostream* out) { *out << change.name; }

struct State {
  std::map<std::string, Editor::Library::Content> contents;
  std::vector<std::pair<Editor::ContentId, Editor::Library::Flag>> flags;
  std::size_t entries = 0;

  friend bool operator==(const State&, const State&) = default;
};

class KillEdit : public Killed, public testing::WithParamInterface<Change> {
 protected:
  KillEdit() {
    if (GetParam().isOfVersion1) {
      removeLibrary();
      Editor::makeOldLibrary(libraryFile());
      Editor::PlainDatabase plain(libraryFile());
      for (int number = 0; number < 100; ++number)
        plain("INSERT INTO contents VALUES(1, " + std::to_string(number) + ", x'41', zeroblob(4000))");
    } else {
      Editor::Library library(libraryFile());
      Editor::Library::Transaction transaction(library);
      for (std::uint32_t number = 0; number < 100; ++number) {
        library.store({1, number}, Bytes(4000, std::uint8_t(number)), "Multi " + std::to_string(number + 1));
        if (number < 60) library.store({4, 0x3F0800 + number}, Bytes{1, 2, 3}, "Voice " + std::to_string(number + 1));
      }
      library.setFavourite(kUserVoice6, 1);
      transaction.commit();
    }
    if (GetParam().words.front() == "undo") {
      EXPECT_THAT(bda({"move", "file:multi:1..60", "file:multi:5"}), Exits(0));
    }
    std::filesystem::copy_file(libraryFile(), before_);
    before = state();
    const auto began = std::chrono::steady_clock::now();
    EXPECT_THAT(bda(GetParam().words), Exits(0));
    length_ = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - began).count();
    after = state();
    EXPECT_NE(after, before);
  }

  State state() {
    Editor::Library library(libraryFile());
    State found{{}, library.favourites(), library.recordedEntries().size()};
    for (const Editor::ContentId id : library.contents())
      found.contents[Editor::nameOf(id)] = library.content(id).value();
    return found;
  }

  std::filesystem::path copy() const { return libraryFile().string() + ".v1"; }

  // Whether it was killed before it had ended.
  bool changeAndKill() {
    for (const char* ending : {"", "-wal", "-shm", ".v1"}) std::filesystem::remove(libraryFile().string() + ending);
    std::filesystem::copy_file(before_, libraryFile());
    const pid_t child = start(GetParam().words, 2);
    std::this_thread::sleep_for(std::chrono::microseconds(std::int64_t(random_()) % (length_ + length_ / 5)));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status);
  }

  bool hasTold() {
    const std::vector<std::string> told = toldLines();
    return std::any_of(told.begin(), told.end(),
                       [](const std::string& line) { return line.find("the first change") == std::string::npos; });
  }

  const std::filesystem::path before_ = directory / "before.db";
  State before;
  State after;
  std::int64_t length_ = 0;  // of a run, in microseconds
};

TEST_P(KillEdit, leavesAllOfAChangeOrNothing) {
  const std::string old = read("before.db");
  const int most = kills(20);
  int killed = 0;
  int kept = 0;
  for (int run = 0; run < 10 * most && killed < most; ++run) {
    const bool isKilled = changeAndKill();
    killed += isKilled ? 1 : 0;
    ASSERT_TRUE(!exists("library.db.v1") || read("library.db.v1") == old);
    const State found = state();
    ASSERT_TRUE(found == before || found == after);
    ASSERT_TRUE((isKilled && !hasTold()) || found == after) << "what was told is lost";
    kept += isKilled && found == after ? 1 : 0;
  }
  std::cout << killed << " kills, " << kept << " of them behind the commit, none between\n";
  EXPECT_EQ(killed, most);
}

INSTANTIATE_TEST_SUITE_P(Verbs, KillEdit,
                         testing::Values(Change{"copy", false, {"copy", "voice:user1:1..60", "voice:user2:1"}},
                                         Change{"move", false, {"move", "file:multi:1..100", "file:multi:11"}},
                                         Change{"swap", false, {"swap", "voice:user1", "voice:user2"}},
                                         Change{"undo", false, {"undo"}},
                                         Change{"migration", true, {"rename", "voice:user1:6", "Grand"}}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
