#include "output/Console.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>

using Editor::Console;

namespace {

// What a terminal of 80 columns and 24 lines gets from it.
std::string onTerminal(const std::function<void(Console&)>& speak) {
  const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
  EXPECT_EQ(::grantpt(terminal), 0);
  EXPECT_EQ(::unlockpt(terminal), 0);
  const int other = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
  const winsize size{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
  EXPECT_EQ(::ioctl(other, TIOCSWINSZ, &size), 0);
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(other, STDOUT_FILENO);
    ::dup2(other, STDERR_FILENO);
    Console console;
    speak(console);
    ::_exit(console.finish() ? 0 : 1);
  }
  ::close(other);
  std::string got;
  char buffer[4096];
  for (ssize_t count = 0; (count = ::read(terminal, buffer, sizeof buffer)) > 0;)
    got.append(buffer, std::size_t(count));
  ::close(terminal);
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  return got;
}

constexpr const char* kClear = "\r\x1B[K";

}  // namespace

TEST(Console, progressStaysTheLastLineWhileOthersPass) {
  const std::string got = onTerminal([](Console& console) {
    console.progress("receive: 1 messages");
    console.line("stored: a");
    console.problem("refused: b");
    console.progress("receive: 2 messages");
    console.line("stored: c");
  });
  EXPECT_EQ(got, std::string("receive: 1 messages") + kClear + "stored: a\r\nreceive: 1 messages" + kClear +
                     "refused: b\r\nreceive: 1 messages" + kClear + "receive: 2 messages" + kClear +
                     "stored: c\r\nreceive: 2 messages" + kClear);
}

TEST(Console, progressThatHasEndedIsGone) {
  const std::string got = onTerminal([](Console& console) {
    console.progress("receive: 1 messages");
    console.endProgress();
    console.note("1 stored");
  });
  EXPECT_EQ(got, std::string("receive: 1 messages") + kClear + "1 stored\r\n");
}

TEST(Console, progressIsNoWiderThanTheTerminal) {
  const std::string got = onTerminal([](Console& console) { console.progress(std::string(200, 'x')); });
  EXPECT_EQ(got, std::string(79, 'x') + kClear);
}

TEST(Console, quietSaysNoProgress) {
  const std::string got = onTerminal([](Console& console) {
    console.setLoudness(Console::Loudness::quiet);
    console.progress("receive: 1 messages");
    console.line("stored: a");
  });
  EXPECT_EQ(got, "stored: a\r\n");
}
