#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "convert/UnitFiles.h"

namespace Editor {

// What has been written into a file of that name, as it is printed. `from`: the place of the unit before it was placed,
// "" where it has not been.
nlohmann::ordered_json toJson(const UnitFile& written, const Batch& batch, const std::string& from,
                              const std::string& name);

}  // namespace Editor
