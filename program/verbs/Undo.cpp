// The verb undo: what an entry of the history changed, taken back.

#include "history/Undo.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "messages/Text.h"
#include "midi/Counted.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

void tellConflicts(const Undone& undone, Console& console) {
  const std::size_t told = std::min(undone.conflicts.size(), Console::kMostAlike);
  for (std::size_t i = 0; i < told; ++i)
    console.problem(fmt::format("{}: no longer holds what entry {} left there", undone.conflicts[i], undone.entry));
  if (told < undone.conflicts.size()) console.problem(fmt::format("and {} more", undone.conflicts.size() - told));
}

}  // namespace

void undo(std::optional<std::int64_t> entry, bool force, const ChangeOptions& options, Program& program) {
  program.requireLibrary(kRefused);
  const std::unique_ptr<EmbeddedEditor> editor = program.openToChange({"undo", {}, {}});
  Library::Transaction transaction(editor->library());
  const Undone undone = undo(*editor, entry, force ? Force::yes : Force::no);
  if (undone.state == Undone::State::nothingToUndo)
    throw Failure(kRefused,
                  entry ? fmt::format("there is no entry {} in the history", *entry) : "there is nothing to undo");
  tellConflicts(undone, program.console);
  if (undone.state == Undone::State::conflict)
    throw Failure(kRefused, fmt::format("entry {} is not undone, nothing is changed: --force puts back all the same",
                                        undone.entry));
  if (!options.dryRun) transaction.commit();
  tellChanges(undone.changes, options, program.console);
  program.console.note(fmt::format("entry {} {}: {}", undone.entry, options.dryRun ? "would be undone" : "is undone",
                                   counted(undone.changes.size(), "change")));
}

}  // namespace Editor
