#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "models/ContentAddress.h"
#include "models/ModelSet.h"

namespace Editor {

// What contents and edit buffers can be compared with each other: those of one kind have the same parameters.
enum class ContentKind : std::uint8_t { voice, drum, mix, multi, performance, master, remote, single };
inline constexpr std::size_t kContentKinds = 8;

const char* wordOf(ContentKind kind);
std::vector<std::string> contentKindWords();
std::optional<ContentKind> findContentKind(std::string_view word);

// Of an id that a content can have.
ContentKind contentKindOf(ContentId id);
// `models`: those that it holds. The voice of a multi part is of the kind that its part plays.
ContentKind contentKindOf(EditBuffer buffer, const ModelSet& models);

// What one of that kind holds in our format, fresh; empty for those that never have it.
ModelSet emptySetFor(ContentKind kind);

}  // namespace Editor
