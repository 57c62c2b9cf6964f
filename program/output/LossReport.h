#pragma once

#include <cstdint>
#include <string>

#include "input/InputStream.h"
#include "output/Complaints.h"

namespace Editor {

// Tells which bytes of files became no message, and why. Real-time bytes, of which a clock sends one every few
// milliseconds, share a line for each file.
class LossReport {
 public:
  explicit LossReport(Console& console) : console_(console), complaints_(console) {}

  void add(const InputLoss& loss);
  // What is still to say of the last file.
  void finish();
  // False when a message or a file is broken; stray bytes and real-time messages are only told.
  bool areAllWhole() const { return isWhole_; }

 private:
  Console& console_;
  Complaints complaints_;
  std::string file_;
  std::uint64_t realTime_ = 0;
  bool isWhole_ = true;
};

}  // namespace Editor
