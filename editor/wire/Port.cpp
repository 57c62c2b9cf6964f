#include "wire/Port.h"

#include <algorithm>

namespace Editor {

void discardUntilQuiet(Port& port) {
  constexpr WireTime kMoment = std::chrono::milliseconds(200);
  constexpr WireTime kMost = std::chrono::seconds(2);
  if (port.wait(port.now(), false).empty()) return;
  const WireTime end = port.now() + kMost;
  for (WireTime quiet = port.now() + kMoment; port.now() < std::min(quiet, end);)
    if (!port.wait(std::min(quiet, end), false).empty()) quiet = port.now() + kMoment;
}

}  // namespace Editor
