#pragma once

#include <string>
#include <vector>

#include "history/History.h"
#include "output/Console.h"

namespace Editor {

// How a verb that changes the library tells it.
struct ChangeOptions {
  bool dryRun = false;  // nothing is changed: what is told would be
  bool json = false;
};

// Tells each change: as an object, or in words. Objects are data, and so is what a dry run says. Of other words there
// are twenty of a kind, and all with -v.
void tellChanges(const std::vector<PlaceChange>& changes, const ChangeOptions& options, Console& console);

// Behind a change of what was damaged. That is told of each, however many are alike.
inline constexpr const char* kOverDamage = "; what was there is damaged, an undo cannot bring it back";

// What stands behind the place: " \"Piano\", replaces \"Strings\"".
std::string detailOf(const PlaceChange& change);
// stored: voice:user1:6 "Piano", replaces "Strings"
std::string lineOf(const PlaceChange& change);

}  // namespace Editor
