#pragma once

// Counts what this thread allocates, and fails it on demand. This header replaces the program's operator new: it is
// for the one source of a test program.

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace Testing {

struct Allocations {
  static constexpr std::uint64_t kMoreThanThereIs = std::min(std::uint64_t{1} << 32, std::uint64_t{PTRDIFF_MAX});

  std::array<long, 5> failing{};  // the numbers of those that fail, from 1
  long failingFrom = LONG_MAX;    // as do this one and all that follow
  bool onlyNothrow = false;       // the others are neither counted nor failed
  bool counting = false;
  long count = 0;

  // Counts those of `action`.
  template <typename Action>
  long of(Action action) {
    count = 0;
    counting = true;
    action();
    counting = false;
    return count;
  }
  // The same, with that one failing, and (`onwards`) all that follow.
  template <typename Action>
  long ofWithFailure(long number, bool onwards, Action action) {
    failing = {number};
    failingFrom = onwards ? number : LONG_MAX;
    of(action);
    failing = {};
    failingFrom = LONG_MAX;
    return count;
  }
  bool fails(long number) const {
    return number >= failingFrom || std::find(failing.begin(), failing.end(), number) != failing.end();
  }
  void* allocate(std::size_t size, bool isNothrow) noexcept {
    if (size >= kMoreThanThereIs) return nullptr;
    if (counting && (isNothrow || !onlyNothrow) && fails(++count)) return nullptr;
    return std::malloc(size == 0 ? 1 : size);
  }
  void* allocateOrThrow(std::size_t size) {
    if (void* const memory = allocate(size, false)) return memory;
    throw std::bad_alloc();
  }
};

inline thread_local Allocations allocations;

}  // namespace Testing

void* operator new(std::size_t size) { return Testing::allocations.allocateOrThrow(size); }
void* operator new[](std::size_t size) { return Testing::allocations.allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Testing::allocations.allocate(size, true);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Testing::allocations.allocate(size, true);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
