#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "models/ModelSet.h"

namespace Editor {

// The keys under which the store keeps the live models.

inline constexpr const char* kSystemKey = "system";
inline constexpr const char* kAdditionalKey = "additional";

// `part` (0 to 15) counts for partVoice only.
std::string liveKeyOf(EditBuffer buffer, std::uint8_t part = 0);

// The header of the edit buffer that is kept under a key; nothing for the system settings, the additional parameters
// and keys of nobody.
std::optional<MidLo> headerOfLiveKey(std::string_view key);

// The shapes that models under that key can have, fresh: the voice of a part has two. None for a key of nobody.
std::vector<ModelSet> shapesOfLiveKey(std::string_view key);

}  // namespace Editor
