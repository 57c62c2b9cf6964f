// find that is ended by Ctrl-C while it tells what it has found.

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <thread>

#include "Library.h"
#include "Program.h"

namespace {

class FindInterrupted : public Program {
 protected:
  // Starts `bda find` with these words; its standard output is a pipe.
  void start(const std::vector<std::string>& words) {
    std::vector<std::string> all{BDA_PROGRAM, "--library=" + libraryFile().string(), "find"};
    all.insert(all.end(), words.begin(), words.end());
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    child_ = ::fork();
    if (child_ == 0) {
      ::dup2(ends[1], 1);
      ::close(ends[0]);
      ::close(ends[1]);
      std::vector<char*> argv;
      for (std::string& word : all) argv.push_back(word.data());
      argv.push_back(nullptr);
      ::alarm(60);  // one that hangs fails
      if (::chdir(directory.c_str()) == 0) ::execv(argv[0], argv.data());
      ::_exit(127);
    }
    ::close(ends[1]);
    pipe_ = ends[0];
  }
  // Until it catches Ctrl-C.
  void waitUntilItListens() {
    constexpr unsigned long kInterrupt = 1UL << (SIGINT - 1);
    for (unsigned long caught = 0; (caught & kInterrupt) == 0;) {
      std::ifstream status("/proc/" + std::to_string(child_) + "/status");
      std::string word;
      while (status >> word) {
        if (word == "SigCgt:") status >> std::hex >> caught;
        if (word == "State:") {
          ASSERT_TRUE(status >> word && word != "Z") << "it has ended";
        }
      }
    }
  }
  // Until it has told so much that it waits for somebody to read.
  void waitUntilFull() {
    int before = -1;
    for (int stillFor = 0; stillFor < 5; std::this_thread::sleep_for(std::chrono::milliseconds(50))) {
      int now = 0;
      ASSERT_EQ(::ioctl(pipe_, FIONREAD, &now), 0);
      stillFor = now > 0 && now == before ? stillFor + 1 : 0;
      before = now;
    }
  }
  // All that it has told, and its exit code.
  std::pair<std::string, int> end() {
    std::string told;
    char some[4096];
    for (ssize_t count = 0; (count = ::read(pipe_, some, sizeof some)) > 0;) told.append(some, std::size_t(count));
    ::close(pipe_);
    int status = 0;
    ::waitpid(child_, &status, 0);
    return {told, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
  }

  pid_t child_ = -1;
  int pipe_ = -1;
};

}  // namespace

TEST_F(FindInterrupted, whatIsToldAtTheEndIsEndedToo) {
  std::string masters;
  const std::string one = text(unit({0x0E, 0x70, 0x00}, BDA::List::master, 1));
  constexpr std::size_t kMany = 1500;
  for (std::size_t i = 0; i < kMany; ++i) masters += one;
  write("many.syx", masters);
  start({"--duplicates", "--json", "--in", "many.syx"});
  waitUntilFull();
  ::kill(child_, SIGINT);
  const auto [told, code] = end();
  EXPECT_EQ(code, 130);
  EXPECT_LT(lines(told).size(), kMany);
  for (const std::string& line : lines(told)) EXPECT_TRUE(Json::accept(line)) << line;
}

TEST_F(FindInterrupted, aPipeThatNobodyWritesToIsNoLongerWaitedFor) {
  ASSERT_EQ(::mkfifo((directory / "pipe").c_str(), 0600), 0);
  start({"--in", "pipe", "a"});
  waitUntilItListens();
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  ::kill(child_, SIGINT);
  EXPECT_EQ(end().second, 130);
}
