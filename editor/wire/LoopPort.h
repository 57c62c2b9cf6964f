#pragma once

#include <deque>
#include <string>
#include <vector>

#include "wire/WireEnd.h"

namespace Editor {

// A port inside of one process, at whose other end another one is at work. It has a clock of its own, which moves only
// while somebody waits: hours pass in no time.
class LoopPort final : public Port {
 public:
  // `other` must outlive it. `chunk` is how many bytes arrive at once, at most.
  explicit LoopPort(WireEnd& other, std::size_t chunk = 4096) : other_(other), chunk_(chunk) {}

  const std::string& name() const override { return name_; }
  Pacer::Takes takes() const override { return Pacer::Takes::bytes; }
  Pace defaultPace() const override { return kCablePace; }

  WireTime now() override { return now_; }
  std::size_t send(std::span<const std::uint8_t> bytes) override;
  // Throws PortError (failed) where both would wait for ever.
  std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool wantsToSend) override;

  // From the byte of that number on, in both directions together, it has hung up.
  void hangUpAt(std::uint64_t byte) { hangUpAt_ = byte; }

 private:
  std::size_t countPassing(std::size_t bytes);

  const std::string name_ = "loop-back";
  WireEnd& other_;
  const std::size_t chunk_;
  WireTime now_{};
  std::uint64_t passed_ = 0;
  std::optional<std::uint64_t> hangUpAt_;
  std::vector<std::uint8_t> arrived_;
};

}  // namespace Editor
