#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "contents/Library.h"

namespace Editor {

// What a check found of one thing in a library.
struct Checked {
  enum class Kind : std::uint8_t { content, table };  // live models count as contents
  enum class State : std::uint8_t {
    good,
    damaged,
    opaque,  // not in our format: as it came
  };

  Kind kind = Kind::content;
  std::string name;  // readable; of a table its own
  State state = State::good;
  std::string reason;  // in words; empty when good
};

const char* wordOf(Checked::State state);

// How much there was.
struct CheckCounts {
  std::uint64_t contents = 0;  // and live models
  std::uint64_t opaque = 0;
  std::uint64_t damaged = 0;  // contents and live models
  std::map<std::string, std::uint64_t> damagedInTables;
};

// Looks at everything in one state of the library: each table by the database's own integrity check, each content and
// each set of live models against the checksum kept with it, and whether it can be read, and what the history keeps.
CheckCounts checkLibrary(Library& library, const std::function<void(const Checked&)>& visit);

}  // namespace Editor
