#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "messages/Verification.h"
#include "wire/SendPlan.h"

namespace Editor {

// What of a batch is sent to an instrument, or why nothing is.
struct Sendable {
  enum class Why : std::uint8_t {
    isSent,
    isBroken,   // something of it is not whole, or would not be stored
    isUnusable  // there is nothing, too much for one place, or nobody to ask for it
  };
  struct Options {
    bool toEditBuffers = false;  // where it can be heard, and overwrites nothing that is stored
    bool asks = false;           // the instrument is asked for its units, too
  };

  std::vector<MessageFault> faults;  // what is broken of it
  std::vector<std::string> leftOut;  // how much of it is not sent and why, in words
  Why why = Why::isSent;
  std::string words;             // why nothing is sent
  std::optional<SendPlan> plan;  // what is
};

// Throws TargetError (refused) where a unit has no edit buffer, and TargetJsonError.
Sendable sendableOf(Batch batch, const Sendable::Options& options);

}  // namespace Editor
