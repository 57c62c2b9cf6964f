#include <cstdlib>
#include <string>

#include "bda/version.h"
#include "models/ModelJson.h"
#include "surface/Call.h"
#include "targets/Banks.h"

using namespace Editor;  // NOLINT(google-build-using-namespace): functions of C have none

const char* bda_version() { return BDA_VERSION_STRING; }

void bda_free(void* memory) {
  std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): what C was given
}

bda_result bda_places(char** json) {
  if (json == nullptr) return BDA_MISUSED;
  *json = nullptr;
  std::string unheard;
  return call(unheard, [&] {
    std::string lines;
    for (const Bank& bank : allBanks()) lines += jsonLine(toJson(bank)) + '\n';
    handOut(copyOf(lines), json);
    return BDA_OK;
  });
}
