#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "history/History.h"

namespace Editor {

// The settings of a library as its user reads and sets them.

// Both throw std::invalid_argument, which says what was expected or may have been meant.
const Setting& settingNamed(const std::string& name);
std::int64_t numberNamed(const Setting& setting, const std::string& words);

// Nothing: it is damaged, or no such value. The live models are those of the library. Throws LibraryError, as what
// follows.
std::optional<std::int64_t> valueOf(const Setting& setting, EmbeddedEditor& editor);
// As it is printed.
nlohmann::ordered_json toJson(const Setting& setting, std::int64_t number);

// Sets it, in the transaction that the caller has open and commits: what has changed in its run, also of what the
// history does not record of itself. Throws TargetError (refused) while the system settings are damaged.
std::vector<PlaceChange> set(const Setting& setting, std::int64_t number, EmbeddedEditor& editor);

}  // namespace Editor
