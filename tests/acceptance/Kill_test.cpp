// A receive that is killed at a random moment: every unit is in the library whole or not at all, and what was told is.

#include <iostream>
#include <map>
#include <set>

#include "Killed.h"
#include "Library.h"
#include "messages/AddressNames.h"

namespace {

using State = std::map<std::string, Bytes>;

class Kill : public Killed {
 protected:
  Kill() {
    std::string messages;
    for (std::uint8_t number = 0; number < 100; ++number)
      messages += text(unit({0x0E, 0x70, number}, BDA::List::master, number));
    write("all.syx", messages);
    const Result run = bda({"receive", "-v", (directory / "all.syx").string()});
    EXPECT_THAT(run, Exits(0));
    length_ = run.out.size();
    whole_ = state();
    EXPECT_EQ(whole_.size(), 100u);
  }

  State state() {
    if (!exists("library.db")) return {};
    Editor::Library library(directory / "library.db");
    State found;
    for (const Editor::ContentId id : library.contents()) found[Editor::nameOf(id)] = library.content(id)->bytes;
    return found;
  }

  // Receives all into a new library and kills that. The names of what it told as stored; the last line may be cut
  // short.
  std::set<std::string> receiveAndKill() {
    for (const char* file : {"library.db", "library.db-wal", "library.db-shm"})
      std::filesystem::remove(directory / file);
    const pid_t child = start({"receive", "-v", (directory / "all.syx").string()}, 1);
    const int status = killAfter(child, random_() % length_);
    if (WIFSIGNALED(status)) ++kills_;

    const std::string prefix = "stored: ";
    std::set<std::string> names;
    for (const std::string& line : toldLines())
      if (line.starts_with(prefix)) names.insert(line.substr(prefix.size(), line.find(" (") - prefix.size()));
    return names;
  }

  // Kills it when it has told so many bytes and a moment more. The status that wait gives.
  int killAfter(pid_t child, std::size_t bytes) {
    int status = 0;
    while (std::filesystem::file_size(directory / "told") < bytes) {
      if (::waitpid(child, &status, WNOHANG) == child) return status;
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random_() % 1000));
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    return status;
  }

  State whole_;
  std::size_t length_ = 0;  // of all that is told
  int kills_ = 0;
};

}  // namespace

TEST_F(Kill, leavesWhatWasToldAndNoHalfUnit) {
  const int most = kills(100);
  std::size_t told = 0;
  for (int run = 0; run < 10 * most && kills_ < most; ++run) {
    const std::set<std::string> names = receiveAndKill();
    told += names.size();
    const State found = state();
    for (const auto& [name, bytes] : found) ASSERT_EQ(bytes, whole_.at(name)) << name;
    for (const std::string& name : names) ASSERT_TRUE(found.contains(name)) << name;
    // One more may be there: killed between its commit and its line, and those whose lines had not left the program.
    ASSERT_LE(names.size(), found.size());
  }
  std::cout << kills_ << " kills, " << told << " contents told, none lost\n";
  EXPECT_EQ(kills_, most);
  EXPECT_GT(told, 0u);
}
