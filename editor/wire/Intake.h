#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"

namespace Editor {

// Stores whole units that came over a wire in a library, as its instrument would: all messages of a unit, or none.
class Intake {
 public:
  using Messages = std::vector<std::vector<std::uint8_t>>;

  // The editor outlives this object.
  explicit Intake(EmbeddedEditor& editor) : editor_(editor) {}

  // One transaction for all these messages: of units, from header to footer or single dumps, in their order; file dumps
  // have their trigger behind them. On disk when this returns nothing; else why nothing of it is stored. Throws
  // LibraryError when the library fails, with nothing stored.
  std::optional<std::string> store(const std::vector<Messages>& units);

 private:
  EmbeddedEditor& editor_;
  std::uint64_t number_ = 0;
};

}  // namespace Editor
