#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "targets/Targets.h"

namespace Editor {

// What a library holds.
struct Inventory {
  struct Entry {
    ContentId id;
    std::optional<Library::Content> content;  // nothing: only a favourite flag, or it is damaged
    bool isDamaged = false;
    Library::Flag favourite = 0;  // nothing: the flag is damaged

    bool isStored() const { return content || isDamaged; }
  };

  std::vector<Entry> entries;   // by type and number
  std::vector<Target> live;     // edit buffers, system and additional that were ever stored
  std::vector<Target> damaged;  // those of them that cannot be read
};

// In one of its states. `asked`: of these places; none: everything. Throws LibraryError.
Inventory inventoryOf(EmbeddedEditor& editor, const std::vector<Places<Target>>& asked = {});

}  // namespace Editor
