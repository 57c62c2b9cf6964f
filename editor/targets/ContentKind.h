#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "models/ModelSet.h"
#include "targets/Targets.h"

namespace Editor {

// What contents and edit buffers can be compared with each other: those of one kind have the same parameters.
enum class ContentKind : std::uint8_t { voice, drum, mix, multi, performance, master, remote, single };
inline constexpr std::size_t kContentKinds = 8;

const char* wordOf(ContentKind kind);
std::vector<std::string> contentKindWords();
// Throws std::invalid_argument, which says what was expected or may have been meant.
ContentKind contentKindNamed(const std::string& word);
// "a normal voice", as which a mixing voice counts too.
const char* wordsOf(ContentKind kind);
// Where it is edited, and its blocks can be sent to; nothing for what has no blocks.
std::optional<EditBuffer> editBufferOf(ContentKind kind);

// Of an id that a content can have.
ContentKind contentKindOf(ContentId id);
// `models`: those that it holds. The voice of a multi part is of the kind that its part plays.
ContentKind contentKindOf(EditBuffer buffer, const ModelSet& models);
// Of a part of a multi that of a normal voice; nothing for what is no place of one content: system and additional.
std::optional<ContentKind> contentKindOf(const Target& target);

// Whether what is of one kind can stand in a place of the other: a normal voice in any place of a normal voice,
// wherever that is, everything else in places of its own kind.
bool fits(ContentKind kind, ContentKind place);
// The same for a target. A part of a multi plays both kinds of voice: its bank says which.
bool fits(ContentKind kind, const Target& target);

// What one of that kind holds in our format, fresh; empty for those that never have it.
ModelSet emptySetFor(ContentKind kind);

}  // namespace Editor
