#pragma once

#include <cstddef>
#include <string>

#include "convert/Batch.h"

namespace Editor {

// Addresses the units of a batch to the edit buffers, so that it overwrites nothing that is stored.
struct InEditBuffers {
  std::string takenTwice;   // the edit buffer that a second unit would overwrite: the batch is of no use then
  std::size_t leftOut = 0;  // dumps that stood by themselves: system blocks, favourites, triggers
};
// Throws TargetError (refused) where a unit has no edit buffer, and TargetJsonError.
InEditBuffers placeInEditBuffers(Batch& batch);

}  // namespace Editor
