#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "targets/Targets.h"

namespace Editor {

// Removes what is stored for a target, damaged or not; live models are then as new, and voices of parts that do not fit
// a new multi with them. False when nothing is stored. Throws LibraryError.
bool forgetTarget(Library& library, const Target& target);

// Why the live models of a target cannot be read; empty when they can, and of a content.
std::string damageOf(const EditorJobTools& tools, const Target& target);

// The same in few words, for a line that names the target.
std::string damageInShort(const EditorJobTools& tools, const Target& target);
inline constexpr const char* kItIsDamaged = "it is damaged";

// The models of a target as they are in the library. Throws TargetError (refused) when there are none or they are
// damaged, and LibraryError.
ModelSet loadTarget(EmbeddedEditor& editor, const Target& target);

// What becomes of the places that a word names, when all of them are loaded.
struct TargetVisitor {
  std::function<void(const Target&, const ModelSet&)> loaded;
  std::function<void(const TargetError&)> refused;  // what was stored there has no models, or cannot be read
  std::function<void(const Target&)> damaged;       // a content
};
// Loads them one after the other: what one refuses keeps none from the others. Of a bank or a range empty places are
// left out; returns how many. Throws LibraryError.
std::size_t loadTargets(EmbeddedEditor& editor, const Places<Target>& places, const TargetVisitor& visitor);

// Leaves no edit buffer, system and additional in the list that were never stored: in a library they are as new, a file
// of messages does not have them. Throws LibraryError.
void dropUnstored(EmbeddedEditor& editor, std::vector<Target>& targets);

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
