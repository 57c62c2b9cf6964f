#pragma once

#include <vector>

#include "output/Console.h"
#include "targets/PlaceChange.h"

namespace Editor {

// How a verb that changes the library tells it.
struct ChangeOptions {
  bool dryRun = false;  // nothing is changed: what is told would be
  bool json = false;
};

// Tells each change: as an object, or in words. Objects are data, and so is what a dry run says.
void tellChanges(const std::vector<PlaceChange>& changes, const ChangeOptions& options, Console& console);

}  // namespace Editor
