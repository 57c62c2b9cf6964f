#include "output/Progress.h"

#include <fmt/format.h>

#include <cmath>
#include <csignal>
#include <utility>

#include "ExitCode.h"

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
  for (std::size_t i = 0; i < std::size(kSignals); ++i) ::sigaction(kSignals[i], &action, &previous_[i]);
}

Interruptible::~Interruptible() {
  --living;
  for (std::size_t i = 0; i < std::size(kSignals); ++i) ::sigaction(kSignals[i], &previous_[i], nullptr);
}

void Interruptible::check() {
  if (isInterrupted != 0) throw Failure(kInterrupted, "interrupted");
}

Progress::Progress(Console& console, std::string verb, std::string items, std::uint64_t count)
    : console_(console), verb_(std::move(verb)), items_(std::move(items)), count_(count) {}

void Progress::step(std::uint64_t bytes) {
  constexpr std::chrono::milliseconds kBetween(100);
  Interruptible::check();
  ++done_;
  bytes_ += bytes;
  const Clock::time_point now = Clock::now();
  if (now - shown_ < kBetween) return;
  shown_ = now;
  console_.progress(fmt::format("{}: {}", verb_, describeProgress(done_, count_, items_, bytes_, now - start_)));
}

std::string describeProgress(std::uint64_t done, std::uint64_t count, const std::string& items, std::uint64_t bytes,
                             std::chrono::duration<double> elapsed) {
  constexpr double kMega = 1e6;
  std::string text = fmt::format("{} of {} {}, {:.1f} MB", done, count, items, double(bytes) / kMega);
  if (done > 0 && done <= count)
    text += fmt::format(", {:.0f} s left", std::ceil(elapsed.count() / double(done) * double(count - done)));
  return text;
}

}  // namespace Editor
