#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"

namespace Editor {

// Stores whole units that came over a wire in a library, as its instrument would: all messages of all units, or none.
class Intake {
 public:
  using Messages = std::vector<std::vector<std::uint8_t>>;

  struct Result {
    enum class State : std::uint8_t {
      stored,
      refused,    // a message was
      notStored,  // there was no place for it
    };

    State state = State::stored;
    std::size_t unit = 0;                      // refused, not stored: which one of them
    std::string why;                           // and why
    std::vector<std::vector<Change>> changes;  // stored: of each unit
  };

  // The editor outlives this object.
  explicit Intake(EmbeddedEditor& editor) : editor_(editor) {}

  // One transaction, for units from header to footer and single dumps in their order, without write triggers. What it
  // says is stored is on disk. Throws LibraryError when the library fails: nothing is stored.
  Result store(const std::vector<Messages>& units);

 private:
  EmbeddedEditor& editor_;
  std::uint64_t number_ = 0;
};

}  // namespace Editor
