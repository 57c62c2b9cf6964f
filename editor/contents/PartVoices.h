#pragma once

#include "contents/Library.h"

namespace Editor {

// The voices of a multi's parts follow the multi that is stored, or a new one where none is: those of the other kind
// are removed, as they are when any multi comes. Where it is damaged nobody knows, and all stay. For whoever has put
// back or removed live models. Throws LibraryError.
void dropMisfits(Library& library);

}  // namespace Editor
