#pragma once

#include <chrono>

namespace Editor {

// Time on a wire, since a moment before all else: only differences mean something. Who waits, and by which clock, is
// the port's business; everything else is told what time it is.
using WireTime = std::chrono::microseconds;

}  // namespace Editor
