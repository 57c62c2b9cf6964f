#pragma once

#include <cstdio>
#include <cstdlib>

// A fuzz target's assertion: libFuzzer keeps the input that reaches an abort.
inline void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "found: %s\n", what);
  std::abort();
}
