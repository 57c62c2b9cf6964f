#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>

#include "exchange/EmbeddedEditor.h"
#include "targets/Targets.h"

namespace Editor {

// Changes of places that are no new content. Whoever makes them has a transaction of the library open, and commits it
// unless one of them throws: TargetError (refused) or LibraryError.

// Replaces the whole target. Refuses values that its blocks cannot carry, naming the first by its path. Returns why
// that could not be seen; empty: it was.
std::string applyTarget(EmbeddedEditor& editor, const Target& target, const ModelSet& models);

// Throws TargetError (noTarget) for what is neither a content nor an edit buffer.
void requireNamed(const Target& target);
// Gives a content or an edit buffer another name, in the library's list and inside of its models.
void renameTarget(EmbeddedEditor& editor, const Target& target, const std::string& name);

// What a word asks to have removed: contents, or else live models, but those only that are damaged.
struct Removal {
  Places<Target> places;
  std::optional<TargetError> unlessDamaged;  // what is wrong with live models that are not
};
// Throws TargetError (noTarget).
Removal parseRemoval(const std::string& word);
// Throws TargetError (noTarget) for live models that are not damaged.
void requireRemovable(const Removal& removal, const EditorJobTools& tools);

// Removes what places hold, those that several words name once.
class Removing {
 public:
  explicit Removing(Library& library) : library_(library) {}

  // Of a bank or a range empty places are left out: returns how many. Refuses where none holds anything.
  std::size_t take(const Places<Target>& places);

 private:
  Library& library_;
  std::set<std::string> taken_;
};

// Throws TargetError (refused), which names the first of the places that can have no favourite flag.
void requireFlags(const Places<Target>& places);
// Makes contents favourites, or no longer. Of a bank or a range places with neither content nor flag are left out:
// returns how many. Refuses where all are.
std::size_t setFavourites(Library& library, const Places<Target>& places, bool isOn);

}  // namespace Editor
