// The verb undo: what an entry of the history changed, taken back.

#include "history/Undo.h"

#include <fmt/format.h>

#include "ChangeRun.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "output/Complaints.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

void tellConflicts(const Undone& undone, Console& console) {
  const std::string kind = fmt::format("no longer holds what entry {} left there", undone.entry);
  Complaints complaints(console);
  for (const std::string& place : undone.conflicts) {
    const std::string line = fmt::format("{}: {}", place, kind);
    if (console.isVerbose())
      console.problem(line);
    else
      complaints.tell(kind, line);
  }
  complaints.finish();
  if (!console.isVerbose() && undone.conflicts.size() > kMostAlike) console.problem("all with -v");
}

// Undo without a number stops at such an entry for good.
std::string wayOn(const Undone& undone) {
  return undone.older ? fmt::format(": bda undo {} takes back the next one before it", *undone.older) : "";
}

}  // namespace

void undo(std::optional<std::int64_t> entry, bool force, const ChangeOptions& options, Program& program) {
  program.requireLibrary(kRefused);
  ChangeRun run(program, {"undo"}, options);
  const Undone undone = undo(run.editor(), entry, force ? Force::yes : Force::no);
  if (undone.state == Undone::State::nothingToUndo)
    throw Failure(kRefused,
                  entry ? fmt::format("there is no entry {} in the history", *entry) : "there is nothing to undo");
  if (undone.state == Undone::State::isUndone)
    throw Failure(kRefused, fmt::format("entry {} is already undone, by {}", undone.entry, *undone.undoneBy));
  for (const std::string& place : undone.damaged)
    program.console.problem(fmt::format("{}: what it held before is damaged", place));
  if (!undone.fault.empty())
    program.console.problem(fmt::format("entry {} is damaged: {}", undone.entry, undone.fault));
  if (undone.state == Undone::State::damaged)
    throw Failure(kRefused, fmt::format("entry {} is not undone, nothing is changed{}", undone.entry, wayOn(undone)));
  tellConflicts(undone, program.console);
  if (undone.state == Undone::State::conflict)
    throw Failure(kRefused, fmt::format("entry {} is not undone, nothing is changed: --force puts back all the same",
                                        undone.entry));
  run.keep();
  program.console.note(fmt::format("entry {} {}: {}", undone.entry, options.dryRun ? "would be undone" : "is undone",
                                   counted(undone.changes.size(), "change")));
}

}  // namespace Editor
