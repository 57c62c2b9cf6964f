#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// A fuzz target's input, taken from the front; bytes that are missing are zero.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : left_(data, size) {}
  bool empty() const { return left_.empty(); }
  std::uint8_t byte() {
    if (left_.empty()) return 0;
    const std::uint8_t next = left_.front();
    left_ = left_.subspan(1);
    return next;
  }
  unsigned word() {
    const unsigned high = byte();
    return high << 8 | byte();
  }
  // At most so many.
  std::vector<std::uint8_t> bytes(std::size_t count) {
    std::vector<std::uint8_t> taken(left_.begin(), left_.begin() + std::ptrdiff_t(std::min(count, left_.size())));
    left_ = left_.subspan(taken.size());
    return taken;
  }

 private:
  std::span<const std::uint8_t> left_;
};
