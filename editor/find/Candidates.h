#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "targets/ContentKind.h"
#include "targets/Targets.h"

namespace Editor {

// One content, or edit buffer, that a search looks at.
struct Candidate {
  std::string place;            // readable
  std::optional<ContentId> id;  // nothing: an edit buffer
  ContentKind kind = ContentKind::voice;
  std::string name;             // in the library's list; of an edit buffer the one inside
  Library::Flag favourite = 0;  // 0 for none
  std::vector<std::uint8_t> bytes;
  std::optional<std::uint64_t> message;  // of a message file: the first of its unit
};

// Whether edit buffers are looked at, too.
enum class EditBuffers : std::uint8_t { leftOut, included };

// What a library holds, in one of its states: contents by type and number, then the edit buffers that were ever stored.
// One that is damaged is named instead: `visitDamaged` gets its place, and why it cannot be taken. Throws LibraryError.
void forEachCandidate(EmbeddedEditor& editor, EditBuffers buffers, const std::function<void(Candidate)>& visit,
                      const std::function<void(const std::string&, const std::string&)>& visitDamaged);

// What is stored there, or nothing. Throws LibraryError.
std::optional<Candidate> findCandidate(EmbeddedEditor& editor, ContentId id);

// Throws TargetError (noTarget) unless the target is a content or an edit buffer.
void requireCandidate(const Target& target);
// The one that such a target names. Throws TargetError (refused) where nothing is stored or that is damaged, and
// LibraryError.
Candidate candidateAt(EmbeddedEditor& editor, const Target& target);

}  // namespace Editor
