#pragma once

#include <cstdint>
#include <string>

#include "targets/Targets.h"

namespace Editor {

// Which places are copied, moved or swapped: each of `from` goes to the one of `to` in the same position.
struct Arrangement {
  enum class Kind : std::uint8_t { copy, move, swap };

  Kind kind = Kind::copy;
  Places<Target> from;
  Places<Target> to;
};

// Reads two words: places, ranges or banks. `to` is as many places as `from`, or the first of them. All throw
// TargetError (noTarget), of a swap also when a place is on both sides.
Arrangement parseArrangement(Arrangement::Kind kind, const std::string& from, const std::string& to);

}  // namespace Editor
