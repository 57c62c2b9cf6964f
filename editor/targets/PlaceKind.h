#pragma once

#include <cstdint>
#include <optional>

#include "targets/Targets.h"

namespace Editor {

// What fits a place: a normal voice any place of a normal voice, wherever that is, and so on.
enum class PlaceKind : std::uint8_t { normalVoice, drumVoice, multi, performance, master, remote, single };
// "a normal voice"
const char* wordsOf(PlaceKind kind);

PlaceKind kindOf(ContentId id);
// Of a part of a multi that of a normal voice; nothing for what is no place of one content: system and additional.
std::optional<PlaceKind> kindOf(const Target& target);
// Whether something of that kind fits a target. A part of a multi plays both kinds of voice: its bank says which.
bool fits(PlaceKind kind, const Target& target);

}  // namespace Editor
