#include <cstdlib>

#include "bda/editor.h"
#include "bda/version.h"

const char* bda_version() { return BDA_VERSION_STRING; }

void bda_free(void* memory) {
  std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): what C was given
}
