#pragma once

#include <ostream>

#include "history/History.h"

namespace Editor {

// For tests that fail.
inline void PrintTo(const PlaceChange& change, std::ostream* out) {
  *out << change.place << ' ' << wordOf(change.what) << ' ' << change.before.value_or("(nothing)") << " -> "
       << change.after.value_or("(nothing)");
}

}  // namespace Editor
