#include "find/Candidates.h"

#include <fmt/format.h>

#include <map>
#include <utility>

#include "contents/ContentFormat.h"
#include "targets/TargetModels.h"

namespace Editor {

namespace {

Candidate candidateOf(ContentId id, Library::Content content, Library::Flag favourite) {
  return {nameOf(id), id, contentKindOf(id), std::move(content.name), favourite, std::move(content.bytes), {}};
}

Candidate candidateOf(EmbeddedEditor& editor, const Target& buffer) {
  const ModelSet models = loadTarget(editor, buffer);
  return {buffer.name, {}, contentKindOf(buffer.buffer, models), nameOf(models), 0, encodeContent(models), {}};
}

}  // namespace

void forEachCandidate(EmbeddedEditor& editor, EditBuffers buffers, const std::function<void(Candidate)>& visit,
                      const std::function<void(const std::string&, const std::string&)>& visitDamaged) {
  const EmbeddedEditor::View oneState(editor);
  Library& library = editor.library();
  std::map<ContentId, Library::Flag> flags;
  for (const auto& [id, flag] : library.favourites()) flags[id] = flag;
  for (const ContentId id : library.contents()) {
    std::optional<Library::Content> content;
    try {
      content = library.content(id);
    } catch (const LibraryError& error) {
      if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
      visitDamaged(nameOf(id), kItIsDamaged);
    }
    const auto flag = flags.find(id);
    if (content) visit(candidateOf(id, std::move(*content), flag == flags.end() ? Library::Flag(0) : flag->second));
  }
  if (buffers == EditBuffers::leftOut) return;
  for (const Target& target : storedLive(editor))
    if (target.kind == Target::Kind::editBuffer) {
      if (const std::string why = damageInShort(editor.tools(), target); why.empty())
        visit(candidateOf(editor, target));
      else
        visitDamaged(target.name, why);
    }
}

std::optional<Candidate> findCandidate(EmbeddedEditor& editor, ContentId id) {
  std::optional<Library::Content> content = editor.library().content(id);
  if (!content) return std::nullopt;
  return candidateOf(canonical(id), std::move(*content), editor.library().flag(id));
}

void requireCandidate(const Target& target) {
  if (target.kind == Target::Kind::content || target.kind == Target::Kind::editBuffer) return;
  throw TargetError(TargetError::Kind::noTarget,
                    fmt::format("{} is no content: expected the address or name of one, or of an edit buffer, such as "
                                "voice:user1:6 or voice:edit",
                                target.name));
}

Candidate candidateAt(EmbeddedEditor& editor, const Target& target) {
  if (target.kind == Target::Kind::editBuffer) return candidateOf(editor, target);
  try {
    if (std::optional<Candidate> found = findCandidate(editor, target.content)) return std::move(*found);
  } catch (const LibraryError& error) {
    if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
    refuse(target, error.what());
  }
  refuse(target, "nothing is stored there");
}

}  // namespace Editor
