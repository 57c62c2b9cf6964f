#pragma once

#include "messages/AddressNames.h"

namespace Editor {

// The order in which a backup has its messages, by the addresses that ask for them: file dumps, the write trigger
// behind them, units by their headers, system blocks, favourites. Within a group it is that of the addresses, but the
// edit buffer of the multi stands before the voices of its parts: its banks decide of what kind they are.
struct BackupOrder {
  bool operator()(BulkAddress a, BulkAddress b) const;
};

}  // namespace Editor
