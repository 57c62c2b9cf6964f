#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "convert/Batch.h"

namespace Editor {

// Addresses the units of a batch to the edit buffers, so that it overwrites nothing that is stored.
struct InEditBuffers {
  // Two units would go to one edit buffer: the batch is of no use then.
  struct Clash {
    std::string buffer;
    std::string first;
    std::string second;
  };
  std::optional<Clash> clash = {};
  std::size_t leftOut = 0;  // dumps that stood by themselves: system blocks, favourites, triggers
};
// Throws TargetError (refused) where a unit has no edit buffer, and TargetJsonError.
InEditBuffers placeInEditBuffers(Batch& batch);

}  // namespace Editor
