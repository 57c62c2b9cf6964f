#pragma once

#include "bda/Export.h"

// The version that one compiles with. It stands here and nowhere else: the build reads it from these three lines.
#define BDA_VERSION_MAJOR 0
#define BDA_VERSION_MINOR 2
#define BDA_VERSION_PATCH 0

// The same as one number, greater for each later version (0.2.0 is 200, 1.12.3 is 11203), and as text, "0.2.0".
#define BDA_VERSION (BDA_VERSION_MAJOR * 10000 + BDA_VERSION_MINOR * 100 + BDA_VERSION_PATCH)
#define BDA_VERSION_STRING \
  BDA_QUOTED(BDA_VERSION_MAJOR) "." BDA_QUOTED(BDA_VERSION_MINOR) "." BDA_QUOTED(BDA_VERSION_PATCH)

#define BDA_QUOTED(number) BDA_QUOTED_AS_IT_IS(number)
#define BDA_QUOTED_AS_IT_IS(text) #text

namespace BDA {

// The version that one runs with, as BDA_VERSION_STRING has it. While the first number is 0 libraries fit only each
// other's patches: an editor runs with the minor version that it was compiled with, which the SONAME sees to.
BDA_API const char* libraryVersion() noexcept;

}  // namespace BDA
