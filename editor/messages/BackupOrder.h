#pragma once

#include <optional>
#include <vector>

#include "messages/AddressNames.h"

namespace Editor {

// The order in which a backup has its messages, by the addresses that ask for them: file dumps, the write trigger
// behind them, units by their headers, system blocks, favourites. Within a group it is that of the addresses, but the
// edit buffer of the multi stands before the voices of its parts: its banks decide of what kind they are.
struct BackupOrder {
  bool operator()(BulkAddress a, BulkAddress b) const;
};

// The address that a backup asks for to have a content: of a file dump, or else of a header. Nothing: no message
// carries it.
std::optional<BulkAddress> backupAddressOf(ContentId content);

// What a backup of a library that holds everything asks for, in its order, but for the write trigger.
std::vector<BulkAddress> everythingInABackup();

}  // namespace Editor
