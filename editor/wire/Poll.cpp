#include "wire/Poll.h"

#include <algorithm>

namespace Editor {

int pollUntil(std::span<pollfd> watched, std::optional<WireTime> until) {
  timespec rest{};
  if (until) {
    const WireTime left = std::max(*until - machineTime(), WireTime());
    rest.tv_sec = std::chrono::duration_cast<std::chrono::seconds>(left).count();
    rest.tv_nsec = std::chrono::nanoseconds(left % std::chrono::seconds(1)).count();
  }
  return ::ppoll(watched.data(), watched.size(), until ? &rest : nullptr, nullptr);
}

}  // namespace Editor
