#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "models/ModelSet.h"

namespace Editor {

// The bytes in which sets of models are stored, docs/content-format.md describes them. A set of one shape always takes
// the same number of bytes; the same models always become the same bytes.
std::vector<std::uint8_t> encodeContent(const ModelSet& models);

// Whether the bytes claim to be ours: what is not is somebody else's content file, which is kept as it is.
bool isContentFormat(std::span<const std::uint8_t> bytes);

// Fills `models`, whose shape is the one that is expected. Otherwise says why not, and leaves `models` as they are. Any
// bytes will do.
std::optional<std::string> decodeContent(std::span<const std::uint8_t> bytes, ModelSet& models);

}  // namespace Editor
