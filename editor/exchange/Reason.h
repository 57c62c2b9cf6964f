#pragma once

#include <string>

#include "exchange/UnitTracker.h"

namespace Editor {

// Why a message was refused, for its user.
struct Reason {
  std::string words;
  std::string inCommon;  // of that what messages share that are refused for the same
};
// `units` is as it was before the message. `isDeviceOff`: the device number is off, whatever counts in its place.
// Throws LibraryError.
Reason reasonOf(const Reading& reading, const Handed& handed, const UnitTracker& units, Library& library,
                const EditorJobTools& tools, bool isDeviceOff);

}  // namespace Editor
