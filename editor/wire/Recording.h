#pragma once

#include "midi/StreamJoiner.h"
#include "wire/WireEnd.h"

namespace Editor {

// Listens: hands on whole messages as they arrive, and what was dropped, until nothing has come for some time. Clock
// and active sensing do not count as something: an instrument sends them for ever.
class Recording final : public WireEnd {
 public:
  // `receiver` outlives it. No `quietAfter`: it is never done.
  Recording(StreamJoiner::Receiver& receiver, std::optional<WireTime> quietAfter)
      : joiner_(receiver, kLongestMessage), quietAfter_(quietAfter) {}

  void receive(std::span<const std::uint8_t> bytes, WireTime now) override;
  void lost(std::uint64_t count, WireTime now) override;
  void pass(WireTime now) override;
  std::optional<WireTime> due() const override;
  bool isDone() const override { return isDone_; }
  // Nothing more comes: what has begun has no end.
  void finish() { joiner_.finish(); }

 private:
  static constexpr std::size_t kLongestMessage = 16U << 20;

  StreamJoiner joiner_;
  const std::optional<WireTime> quietAfter_;
  std::optional<WireTime> quietSince_;  // the beginning, or the last byte that counts
  bool isDone_ = false;
};

}  // namespace Editor
