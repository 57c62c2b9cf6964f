#pragma once

#include <chrono>
#include <csignal>
#include <cstdint>
#include <iterator>
#include <string>

#include "output/Console.h"

namespace Editor {

// As long as one lives Ctrl-C does not end the program at once: a long run ends between two messages, and what it
// leaves behind is put away.
class Interruptible {
 public:
  Interruptible();
  Interruptible(const Interruptible&) = delete;
  Interruptible& operator=(const Interruptible&) = delete;
  ~Interruptible();

  // Throws Failure (kInterrupted) once the user has asked for it.
  static void check();
  // Whether the user has asked for it.
  static bool isAsked();
  // As if nobody had: who goes on for a moment wants to know when it is asked for again.
  static void forget();
  // Until there is something to read, or its end. Throws the same.
  static void wait(int descriptor);
  // There is something to read from it once the user has asked for it: for who waits for more than one thing.
  static int descriptor();

 private:
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
  struct sigaction previous_[std::size(kSignals)];
};

// How far a long run has come: items, bytes and the time that is left, in place on a terminal. Every step is a place
// where Ctrl-C ends the run.
class Progress {
 public:
  // "backup: 120 of 2600 contents": `verb`, what one `item` is called, their count, and all their bytes; each may be 0
  // when it is not known.
  Progress(Console& console, std::string verb, std::string item, std::uint64_t count, std::uint64_t size = 0);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { console_.endProgress(); }

  // Nothing more is shown.
  void end() { console_.endProgress(); }

  // One item of that many bytes is done. Throws as Interruptible::check().
  void step(std::uint64_t bytes);
  // Bytes that are of no item are done. Throws the same.
  void pass(std::uint64_t bytes);
  // Only shown: Ctrl-C is somebody else's business.
  void show(std::uint64_t items, std::uint64_t bytes);

 private:
  using Clock = std::chrono::steady_clock;

  Console& console_;
  const std::string verb_;
  const std::string item_;
  const std::uint64_t count_;
  const std::uint64_t size_;
  std::uint64_t done_ = 0;
  std::uint64_t bytes_ = 0;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point shown_ = start_;
  const Interruptible interruptible_;
};

// So many of so many, which is 0 when it is not known.
struct Share {
  std::uint64_t done;
  std::uint64_t all;
};
// "120 of 2600 contents, 1.2 MB, 3 s left", "120 messages, 1.2 of 3.4 MB, 3 s left"
std::string describeProgress(Share items, const std::string& item, Share bytes, std::chrono::duration<double> elapsed);

}  // namespace Editor
