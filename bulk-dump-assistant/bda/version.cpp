#include "bda/version.h"

namespace BDA {

const char* libraryVersion() noexcept { return BDA_VERSION_STRING; }

}  // namespace BDA
