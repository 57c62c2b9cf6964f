// The verb rename: new names for contents and edit buffers.

#include <fmt/format.h>

#include <algorithm>

#include "ChangeRun.h"
#include "contents/ContentFormat.h"
#include "input/InputStream.h"
#include "input/RenameTable.h"
#include "targets/TargetModels.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// The blocks of the multi that is edited hold no name, nor does the file dump of the single content.
bool hasName(const Target& target) {
  return target.kind == Target::Kind::editBuffer ? target.buffer != EditBuffer::multi
                                                 : target.content.type != ContSrv::ContType_Single;
}

void checkName(const Target& target, const std::string& name, std::size_t most) {
  if (std::any_of(name.begin(), name.end(), [](char c) { return c < ' ' || c > '~'; }))
    refuse(target, fmt::format("\"{}\" has a character that cannot be carried: expected printable ASCII", name));
  if (name.size() > most)
    refuse(target, fmt::format("\"{}\" has {} characters, a name here has at most {}", name, name.size(), most));
}

std::optional<Library::Content> contentOf(Library& library, const Target& target) {
  try {
    return library.content(target.content);
  } catch (const LibraryError& error) {
    if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
    refuse(target, error.what());
  }
}

void renameContent(EmbeddedEditor& editor, const Target& target, const std::string& name) {
  constexpr std::size_t kLongest = 20;  // in the list of multi names too
  const std::optional<Library::Content> content = contentOf(editor.library(), target);
  if (!content) refuse(target, "nothing is stored there");
  ModelSet models = emptySetFor(target.content);
  if (haveSameShape(models, ModelSet()) || decodeContent(content->bytes, models)) {
    checkName(target, name, kLongest);
    editor.library().rename(target.content, name);
    return;
  }
  checkName(target, name, nameIn(models)->capacity());
  nameIn(models)->assign(name);
  const std::uint64_t failures = editor.library().failureCount();
  std::string why;
  if (!editor.store().storeModels(target.content, name, models, why))
    failToStore(editor.library(), failures, target, why);
}

void renameBuffer(EmbeddedEditor& editor, const Target& target, const std::string& name) {
  ModelSet models = loadTarget(editor, target);
  checkName(target, name, nameIn(models)->capacity());
  nameIn(models)->assign(name);
  storeTarget(editor, target, models);
}

// Inside of a transaction.
void renamePlace(EmbeddedEditor& editor, const Target& target, const std::string& name) {
  if (!hasName(target)) refuse(target, "no message carries a name for it");
  if (target.kind == Target::Kind::content)
    renameContent(editor, target, name);
  else
    renameBuffer(editor, target, name);
}

RenameRow rowOf(const Words& words) {
  if (words.size() < 2) throw Failure(kWrongUsage, "expected an address and a name");
  const Words address(words.begin(), words.end() - 1);
  if (joinAddresses(address).size() > 1)
    throw Failure(kWrongUsage, "expected one address and one name: a name with blanks stands in quotes");
  const Target target = parseOneTarget(address);
  if (target.kind == Target::Kind::system || target.kind == Target::Kind::additional)
    throw Failure(kWrongUsage, fmt::format("{} has no name", target.name));
  return {1, target, words.back()};
}

}  // namespace

void rename(const Words& words, const std::string& table, const ChangeOptions& options, Program& program) {
  const bool isTable = !table.empty();
  const std::vector<RenameRow> rows = isTable ? loadRenameTable(table) : std::vector<RenameRow>{rowOf(words)};
  program.requireLibrary(kRefused);
  ChangeRun run(program, {"rename", isTable ? Words{table} : Words(), {}, true}, options);
  for (const RenameRow& row : rows) {
    try {
      renamePlace(run.editor(), row.target, row.name);
    } catch (const TargetError& error) {
      if (!isTable) throw;
      throw Failure(kRefused,
                    fmt::format("{}: line {}: {}; nothing is renamed", displayName(table), row.line, error.what()));
    }
  }
  run.keep();
}

}  // namespace Editor
