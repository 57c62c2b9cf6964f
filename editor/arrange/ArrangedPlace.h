#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "targets/ContentKind.h"
#include "targets/TargetModels.h"

namespace Editor {

// A place of a library, and what stood in it when it was read.
struct ArrangedPlace {
  Target target;
  std::string name;  // the same for all addresses of the place
  ContentKind kind = ContentKind::voice;
  std::optional<Library::Content> holds;  // of an edit buffer its models, in our format
  std::string damage;                     // why nobody can take what stands there: `holds` is empty
  std::optional<std::uint8_t> flag = 0;   // 0 where none can stand; nothing: it is damaged, and so is the place

  bool isBuffer() const { return target.kind == Target::Kind::editBuffer; }
  bool isPart() const { return isBuffer() && target.buffer == EditBuffer::partVoice; }
  bool hasFlag() const { return !isBuffer() && canBeFavourite(target.content); }
};

// Throws LibraryError. The live models are those of the library.
ArrangedPlace readPlace(EmbeddedEditor& editor, const Target& target);

// What an edit buffer holds that was never stored.
Library::Content asNew(const ArrangedPlace& buffer);

// The models that an edit buffer gets of a content: a part takes its voice alone, the multi that it plays in stays as
// it is. Throws TargetError (refused), which names `from`, for bytes that are none of ours.
ModelSet modelsFor(const ArrangedPlace& buffer, const Library::Content& content, const Target& from);

}  // namespace Editor
