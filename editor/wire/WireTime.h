#pragma once

#include <chrono>

namespace Editor {

// Time on a wire, since a moment before all else: only differences mean something. Who waits, and by which clock, is
// the port's business; everything else is told what time it is.
using WireTime = std::chrono::microseconds;

// The time of the machine, which never goes back.
inline WireTime machineTime() {
  return std::chrono::duration_cast<WireTime>(std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace Editor
