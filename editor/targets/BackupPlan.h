#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"

namespace Editor {

// What a backup asks a library for: these groups one after the other, each in its order.
struct BackupPlan {
  struct Item {
    BulkAddress address;  // to ask for
    std::string name;
    std::optional<ContentId> content;
  };

  std::vector<Item> fileDumps;  // the write trigger stands behind them
  std::vector<Item> units;      // header to footer: contents that no file dump stores, and edit buffers
  std::vector<Item> system;
  std::vector<Item> favourites;
  std::vector<std::string> unaddressed;  // contents that no address carries
};

// For everything that the library holds. Throws LibraryError.
BackupPlan planBackup(EmbeddedEditor& editor);

// What is in such a backup, by the names of places but for those that were left out, as it is written down. There is
// nothing in it of when it was made: the same library gives the same. Throws LibraryError.
nlohmann::ordered_json manifestOf(EmbeddedEditor& editor, const BackupPlan& plan, const std::set<std::string>& leftOut);

}  // namespace Editor
