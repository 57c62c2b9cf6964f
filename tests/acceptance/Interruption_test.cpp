// A restore that is ended in the middle: the library is as it was before, or as it is after it, never between. Others
// that are ended have written nothing.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <map>
#include <random>
#include <thread>

#include "Killed.h"
#include "Library.h"
#include "Program.h"

namespace {

using Clock = std::chrono::steady_clock;
using State = std::map<Editor::ContentId, Bytes>;

class Interruption : public Program {
 protected:
  // Two files that fill the same places, and what the library holds after each.
  Interruption() {
    for (std::uint8_t value = 0; value < 2; ++value) {
      std::string messages;
      for (std::uint8_t number = 0; number < 100; ++number) {
        messages += text(unit({0x0E, 0x70, number}, BDA::List::master, value));
        messages += text(fileDump({0x0C, 0x50, number}, "Multi", Bytes(500, value)));
      }
      write(fileOf(value), messages + text(dump(Editor::kWriteTrigger)));
      const Clock::time_point start = Clock::now();
      EXPECT_THAT(bda({"restore", fileOf(value)}), Exits(0));
      duration_ = Clock::now() - start;
      states_[value] = state();
    }
    EXPECT_NE(states_[0], states_[1]);
  }

  static std::string fileOf(std::size_t value) { return "state" + std::to_string(value) + ".syx"; }

  State state() {
    Editor::Library library(directory / "library.db");
    State found;
    for (const Editor::ContentId id : library.contents()) found[id] = library.content(id)->bytes;
    return found;
  }

  // Restores a file and sends the signal at a random moment. The status that wait gives.
  int restoreAndSend(std::size_t value, int signal) {
    std::string program = BDA_PROGRAM;
    std::string library = "--library=" + (directory / "library.db").string();
    std::string verb = "restore";
    std::string file = (directory / fileOf(value)).string();
    char* argv[] = {program.data(), library.data(), verb.data(), file.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int error = posix_spawn(&child, BDA_PROGRAM, &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_EQ(error, 0);
    std::this_thread::sleep_for(duration_ * std::uniform_real_distribution<double>(0, 1)(random_));
    ::kill(child, signal);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    // The first run may have been slower than these are: too many signals would come too late.
    duration_ *= WIFEXITED(status) && WEXITSTATUS(status) == 0 ? 0.9 : 1.02;
    return status;
  }

  State states_[2];
  std::chrono::duration<double> duration_{};
  std::mt19937 random_{4711};
};

}  // namespace

TEST_F(Interruption, aKillLeavesTheLibraryBeforeOrAfterTheRestore) {
  constexpr int kKills = 200;
  std::size_t now = 1;
  int kills = 0;
  for (int run = 0; run < 10 * kKills && kills < kKills; ++run) {
    const int status = restoreAndSend(1 - now, SIGKILL);
    if (WIFSIGNALED(status)) ++kills;
    const State found = state();
    ASSERT_TRUE(found == states_[0] || found == states_[1]);
    now = found == states_[0] ? 0 : 1;
  }
  std::cout << kills << " kills, none between before and after\n";
  EXPECT_EQ(kills, kKills);
}

TEST_F(Interruption, ctrlCLeavesTheLibraryAsItWas) {
  std::size_t now = 1;
  int interrupted = 0;
  for (int run = 0; run < 200 && interrupted < 20; ++run) {
    const int status = restoreAndSend(1 - now, SIGINT);
    const bool isDone = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    const bool isInterrupted = WIFEXITED(status) && WEXITSTATUS(status) == 130;
    const bool isTooEarlyOrTooLate = WIFSIGNALED(status);  // the run has not begun, or has ended
    ASSERT_TRUE(isDone || isInterrupted || isTooEarlyOrTooLate) << status;
    const State found = state();
    if (isDone || (isTooEarlyOrTooLate && found != states_[now])) now = 1 - now;
    if (isInterrupted) ++interrupted;
    ASSERT_TRUE(found == states_[now]);
  }
  EXPECT_EQ(interrupted, 20);
}

using Ended = Killed;

// It has begun to write when the units are looked at.
TEST_F(Ended, ctrlCWhileConvertTellsItsUnitsLeavesNoFile) {
  std::string messages;
  for (int i = 0; i < 20'000; ++i) messages += text(unit({0x0E, 0x70, std::uint8_t(i % 128)}, BDA::List::master));
  write("a.syx", messages);
  const pid_t child = start({"convert", directory / "a.syx", "-o", directory / "b.syx", "--json"}, 1);
  const Clock::time_point end = Clock::now() + std::chrono::seconds(60);
  const auto hasBegun = [&] {
    const std::vector<std::string> all = files();
    return std::any_of(all.begin(), all.end(), [](const std::string& name) { return name.rfind("b.syx", 0) == 0; });
  };
  while (!hasBegun() && Clock::now() < end) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  ::kill(child, SIGINT);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 130);
  EXPECT_THAT(files(), testing::ElementsAre("a.syx", "told"));
  EXPECT_EQ(read("told"), "");
}
