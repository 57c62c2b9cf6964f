// The verb rename: new names for contents and edit buffers.

#include <fmt/format.h>

#include "ChangeRun.h"
#include "input/InputStream.h"
#include "input/RenameTable.h"
#include "targets/TargetChanges.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

RenameRow rowOf(const Words& words) {
  if (words.size() < 2) throw Failure(kWrongUsage, "expected an address and a name");
  const Words address(words.begin(), words.end() - 1);
  if (joinAddresses(address).size() > 1)
    throw Failure(kWrongUsage, "expected one address and one name: a name with blanks stands in quotes");
  const Target target = parseOneTarget(address);
  requireNamed(target);
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
      renameTarget(run.editor(), row.target, row.name);
    } catch (const TargetError& error) {
      if (!isTable) throw;
      throw Failure(kRefused,
                    fmt::format("{}: line {}: {}; nothing is renamed", displayName(table), row.line, error.what()));
    }
  }
  run.keep();
}

}  // namespace Editor
