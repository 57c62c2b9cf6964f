#pragma once

#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "targets/Targets.h"

namespace Editor {

// The models of a target as they are in the library. Throws TargetError (refused) when there are none, and
// LibraryError.
ModelSet loadTarget(EmbeddedEditor& editor, const Target& target);

// All edit buffers, by kind and part.
std::vector<Target> editBuffers();
// The edit buffers that were ever stored, in that order, then system and additional if they were. Throws
// LibraryError.
std::vector<Target> storedLive(EmbeddedEditor& editor);

// Models of the shape that the target takes, fresh. `drum` counts where the target has both kinds of voice.
ModelSet freshTarget(const Target& target, bool drum);

// Replaces the whole target in one transaction. Throws TargetError (refused), or LibraryError when it was the library
// that failed, with nothing changed.
void storeTarget(EmbeddedEditor& editor, const Target& target, const ModelSet& models);

// Throws what storeTarget does, for one that stored by itself and could not. `failures` is what the library had counted
// before.
[[noreturn]] void failToStore(const Library& library, std::uint64_t failures, const Target& target,
                              const std::string& why);

}  // namespace Editor
