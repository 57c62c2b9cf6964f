#include "output/Progress.h"

#include <fmt/format.h>

#include <poll.h>

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

}  // namespace

Interruptible::Interruptible() {
  if (living++ == 0) isInterrupted = 0;
  struct sigaction action {};
  action.sa_flags = SA_RESTART;
  action.sa_handler = [](int) { isInterrupted = 1; };
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

void Interruptible::check() {
  if (isInterrupted != 0) throw Failure(kInterrupted, "interrupted");
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
  ++done_;
  pass(bytes);
}

void Progress::pass(std::uint64_t bytes) {
  constexpr std::chrono::milliseconds kBetween(100);
  Interruptible::check();
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
