#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "convert/UnitFiles.h"

namespace Editor {

// What has been written into a file of that name, as it is printed.
nlohmann::ordered_json toJson(const UnitFile& written, const Batch& batch, const std::string& name);

}  // namespace Editor
