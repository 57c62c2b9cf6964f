#include "output/Progress.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <csignal>
#include <utility>

#include "ExitCode.h"
#include "midi/Counted.h"

namespace Editor {

namespace {

volatile std::sig_atomic_t isInterrupted = 0;
int living = 0;
// A byte goes through it when Ctrl-C comes; nobody takes it out as long as one lives.
int wakePipe[2] = {-1, -1};

void askToEnd(int /*signal*/) {
  isInterrupted = 1;
  const int error = errno;
  if (wakePipe[1] >= 0 && ::write(wakePipe[1], "", 1) < 0) {
    // It is full: who waits is awake.
  }
  errno = error;
}

}  // namespace

Interruptible::Interruptible() {
  if (living++ == 0) forget();
  struct sigaction action {};
  action.sa_flags = SA_RESTART;
  action.sa_handler = askToEnd;
  struct sigaction* previous = previous_;
  for (const int signal : kSignals) {
    ::sigaction(signal, &action, previous);
    // As nohup and a shell's background have it: who started us wants it ignored.
    if (previous->sa_handler == SIG_IGN) ::sigaction(signal, previous, nullptr);
    ++previous;
  }
}

Interruptible::~Interruptible() {
  --living;
  const struct sigaction* previous = previous_;
  for (const int signal : kSignals) ::sigaction(signal, previous++, nullptr);
}

bool Interruptible::isAsked() { return isInterrupted != 0; }

void Interruptible::forget() {
  isInterrupted = 0;
  for (char byte = 0; wakePipe[0] >= 0 && ::read(wakePipe[0], &byte, 1) > 0;) {
  }
}

void Interruptible::check() {
  if (isAsked()) throw Failure(kInterrupted, "interrupted");
}

int Interruptible::descriptor() {
  if (wakePipe[0] < 0 && ::pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
    throw Failure(kWrongUsage, "the system has no more descriptors");
  return wakePipe[0];
}

void Interruptible::wait(int descriptor) {
  sigset_t asked;
  sigset_t before;
  ::sigemptyset(&asked);
  for (const int signal : kSignals) ::sigaddset(&asked, signal);
  // Between the look and the wait none may be missed.
  ::pthread_sigmask(SIG_BLOCK, &asked, &before);
  pollfd input{descriptor, POLLIN, 0};
  // A signal that asks for nothing must not end it: of a pipe that nobody writes to yet it would seem to be the end.
  while (isInterrupted == 0 && ::ppoll(&input, 1, nullptr, &before) < 0 && errno == EINTR) {
  }
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  check();
}

Progress::Progress(Console& console, std::string verb, std::string item, std::uint64_t count, std::uint64_t size)
    : console_(console), verb_(std::move(verb)), item_(std::move(item)), count_(count), size_(size) {}

void Progress::step(std::uint64_t bytes) {
  Interruptible::check();
  show(1, bytes);
}

void Progress::pass(std::uint64_t bytes) {
  Interruptible::check();
  show(0, bytes);
}

void Progress::show(std::uint64_t items, std::uint64_t bytes) {
  constexpr std::chrono::milliseconds kBetween(100);
  done_ += items;
  bytes_ += bytes;
  const Clock::time_point now = Clock::now();
  if (now - shown_ < kBetween) return;
  shown_ = now;
  console_.progress(
      fmt::format("{}: {}", verb_, describeProgress({done_, count_}, item_, {bytes_, size_}, now - start_)));
}

std::string describeProgress(Share items, const std::string& item, Share bytes, std::chrono::duration<double> elapsed) {
  constexpr double kMega = 1e6;
  std::string text =
      items.all > 0 ? fmt::format("{} of {}", items.done, counted(items.all, item)) : counted(items.done, item);
  text += bytes.all > 0 ? fmt::format(", {:.1f} of {:.1f} MB", double(bytes.done) / kMega, double(bytes.all) / kMega)
                        : fmt::format(", {:.1f} MB", double(bytes.done) / kMega);
  const Share known = items.all > 0 ? items : bytes;
  if (known.done > 0 && known.done <= known.all)
    text += fmt::format(", {:.0f} s left",
                        std::ceil(elapsed.count() / double(known.done) * double(known.all - known.done)));
  return text;
}

}  // namespace Editor
