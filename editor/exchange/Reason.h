#pragma once

#include <string>

#include "exchange/UnitTracker.h"

namespace Editor {

// Why a message was refused, for its user. `units` is as it was before the message. Throws LibraryError.
std::string reasonOf(const Reading& reading, const Handed& handed, const UnitTracker& units, Library& library,
                     const EditorJobTools& tools);

}  // namespace Editor
