#pragma once

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
// For bda_free(). Throws std::bad_alloc.
char* handOut(std::string_view text);
// The same for an error, if there is one and somebody wants it; without memory for it there is none.
void handOutError(const std::string& text, char** error) noexcept;

}  // namespace Editor
