#pragma once

#include <string>

#include "exchange/EmbeddedEditor.h"
#include "targets/Targets.h"

namespace Editor {

// The models of a target as they are in the library. Throws TargetError (refused) when there are none.
ModelSet loadTarget(EmbeddedEditor& editor, const Target& target);

// Models of the shape that the target takes, fresh. `drum` counts where the target has both kinds of voice.
ModelSet freshTarget(const Target& target, bool drum);

// Replaces the whole target in one transaction. Throws TargetError (refused), with nothing changed.
void storeTarget(EmbeddedEditor& editor, const Target& target, const ModelSet& models);

}  // namespace Editor
