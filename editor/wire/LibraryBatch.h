#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "convert/Batch.h"
#include "exchange/EmbeddedEditor.h"

namespace Editor {

// Whether file dumps are to be stored there: only a write trigger has that done.
enum class Triggers : std::uint8_t { none, behindFileDumps };

// What of a library goes to an instrument: what requests of these places are answered by, in one state of the library.
// File dumps that follow each other share a trigger. Calls visitMissing(address, why) for a place that has nothing to
// send. Throws LibraryError.
Batch batchOf(EmbeddedEditor& editor, const std::vector<BulkAddress>& addresses, Triggers triggers,
              const std::function<void(BulkAddress, const std::string&)>& visitMissing);

}  // namespace Editor
