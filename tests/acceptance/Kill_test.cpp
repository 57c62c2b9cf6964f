// A receive that is killed at a random moment: every unit is in the library whole or not at all, and what was told is.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "Library.h"
#include "Program.h"
#include "messages/AddressNames.h"

extern char** environ;

namespace {

using State = std::map<std::string, Bytes>;

class Kill : public Program {
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
    std::string words[] = {BDA_PROGRAM, "--library=" + (directory / "library.db").string(), "receive", "-v",
                           (directory / "all.syx").string()};
    char* argv[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(), words[4].data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, (directory / "told").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    EXPECT_EQ(posix_spawn(&child, BDA_PROGRAM, &actions, nullptr, argv, environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    const int status = killAfter(child, random_() % length_);
    if (WIFSIGNALED(status)) ++kills_;

    const std::string prefix = "stored: ";
    std::set<std::string> told;
    std::string all = read("told");
    all.resize(all.find_last_of('\n') + 1);
    for (const std::string& line : lines(all))
      if (line.starts_with(prefix)) told.insert(line.substr(prefix.size(), line.find(" (") - prefix.size()));
    return told;
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
  std::mt19937 random_{4711};
};

}  // namespace

TEST_F(Kill, leavesWhatWasToldAndNoHalfUnit) {
  constexpr int kKills = 100;
  std::size_t told = 0;
  for (int run = 0; run < 10 * kKills && kills_ < kKills; ++run) {
    const std::set<std::string> names = receiveAndKill();
    told += names.size();
    const State found = state();
    for (const auto& [name, bytes] : found) ASSERT_EQ(bytes, whole_.at(name)) << name;
    for (const std::string& name : names) ASSERT_TRUE(found.contains(name)) << name;
    // One more may be there: killed between its commit and its line, and those whose lines had not left the program.
    ASSERT_LE(names.size(), found.size());
  }
  std::cout << kills_ << " kills, " << told << " contents told, none lost\n";
  EXPECT_EQ(kills_, kKills);
  EXPECT_GT(told, 0u);
}
