#include "wire/Recording.h"

#include <algorithm>

namespace Editor {

void Recording::receive(std::span<const std::uint8_t> bytes, WireTime now) {
  joiner_.feed(bytes);
  if (std::any_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte < kFirstRealTime; }))
    quietSince_ = now;
  else
    pass(now);
}

void Recording::lost(std::uint64_t count, WireTime now) {
  joiner_.lose(count);
  quietSince_ = now;
}

void Recording::pass(WireTime now) {
  if (!quietSince_) {
    quietSince_ = now;
    return;  // there may be something already
  }
  isDone_ = quietAfter_ && now - *quietSince_ >= *quietAfter_;
}

std::optional<WireTime> Recording::due() const {
  if (!quietSince_ || !quietAfter_) return std::nullopt;
  return *quietSince_ + *quietAfter_;
}

}  // namespace Editor
