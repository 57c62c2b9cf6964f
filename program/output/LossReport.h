#pragma once

#include <cstdint>
#include <string>

#include "input/InputStream.h"
#include "output/Console.h"

namespace Editor {

// Tells which bytes of files became no message, and why: of each file the first ones and how many more there are.
// Real-time bytes, of which a clock sends one every few milliseconds, share a line.
class LossReport {
 public:
  explicit LossReport(Console& console) : console_(console) {}

  void add(const InputLoss& loss);
  // What is still to say of the last file.
  void finish();
  // False when a message or a file is broken; stray bytes and real-time messages are only told.
  bool areAllWhole() const { return isWhole_; }

 private:
  Console& console_;
  std::string file_;
  std::uint64_t told_ = 0;
  std::uint64_t untold_ = 0;
  std::uint64_t realTime_ = 0;
  bool isWhole_ = true;
};

}  // namespace Editor
