#include "wire/LoopPort.h"

#include <algorithm>

namespace Editor {

// How many of the bytes that come next still get through.
std::size_t LoopPort::countPassing(std::size_t bytes) {
  bytes = std::min(bytes, chunk_);
  if (hangUpAt_) {
    if (passed_ >= *hangUpAt_) throw PortError(PortError::Kind::gone, "port " + name_ + ": it has hung up");
    bytes = std::size_t(std::min<std::uint64_t>(bytes, *hangUpAt_ - passed_));
  }
  passed_ += bytes;
  return bytes;
}

std::size_t LoopPort::send(std::span<const std::uint8_t> bytes) {
  const std::size_t count = countPassing(bytes.size());
  other_.receive(bytes.first(count), now_);
  return count;
}

std::span<const std::uint8_t> LoopPort::wait(std::optional<WireTime> until, bool wantsToSend) {
  if (wantsToSend) return {};
  while (true) {
    other_.pass(now_);
    if (const std::span<const std::uint8_t> bytes = other_.toSend(now_); !bytes.empty()) {
      const std::size_t count = countPassing(bytes.size());
      arrived_.assign(bytes.begin(), bytes.begin() + std::ptrdiff_t(count));
      other_.sent(count);
      return arrived_;
    }
    if (until && *until <= now_) return {};
    const std::optional<WireTime> due = other_.due();
    if (!due && !until) throw PortError(PortError::Kind::failed, "port " + name_ + ": both ends wait for ever");
    now_ = std::max(now_, !due ? *until : until ? std::min(*due, *until) : *due);
  }
}

}  // namespace Editor
