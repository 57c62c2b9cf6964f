#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "bda/editor.h"

namespace Editor {

// What every function of the C surface does beside its work: nothing is thrown across it, and what goes out belongs to
// its caller.

// Ends a call with that result, and these words.
struct CallFailure {
  bda_result result;
  std::string text;
};

// The exception that is being handled, as a result and in words. Empty words: there was no memory for them.
bda_result resultOfException(std::string& error) noexcept;

// Does what a call is for: its result, and in `error` what was wrong.
template <typename Act>
bda_result call(std::string& error, Act act) noexcept {
  error.clear();
  try {
    return act();
  } catch (...) {
    return resultOfException(error);
  }
}

// Throws CallFailure (BDA_MISUSED) for a null pointer; `what` is its name in the header.
void require(const void* pointer, const char* what);
// A text of the caller. Throws CallFailure: BDA_MISUSED for a null pointer, BDA_UNUSABLE for what is no UTF-8.
std::string_view textOf(const char* text, const char* what);
// What goes out, for bda_free(): text, or bytes with a NUL behind them. Throws std::bad_alloc.
using Copy = std::unique_ptr<char, decltype(&std::free)>;
Copy copyOf(std::string_view bytes);
// The last thing that a call does, or one of several that cannot fail any more; null: nobody wants it.
inline void handOut(Copy copy, char** out) noexcept {
  if (out != nullptr) *out = copy.release();
}
inline void handOut(Copy copy, std::uint8_t** out) noexcept {
  if (out != nullptr) *out = reinterpret_cast<std::uint8_t*>(copy.release());
}

}  // namespace Editor
