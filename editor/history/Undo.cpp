#include "history/Undo.h"

#include <algorithm>

#include "contents/PartVoices.h"

namespace Editor {

namespace {

bool isAsLeft(const std::optional<Held>& held, const RecordedChange& change) {
  return held ? change.checksumAfter == held->checksum && isWhole(*held) : !change.checksumAfter;
}

// The one that is named, or else the newest that is no undo and not undone.
Undone find(Library& library, std::optional<std::int64_t> named) {
  for (const HistoryEntry& entry : entriesOf(library)) {
    const bool isMeant = named ? entry.number == *named : !entry.undoes && !entry.undoneBy;
    if (isMeant) return {Undone::State::done, entry.number, {}, {}, {}};
  }
  return {Undone::State::nothingToUndo, named.value_or(0), {}, {}, {}};
}

}  // namespace

Undone undo(EmbeddedEditor& editor, std::optional<std::int64_t> entry, Force force) {
  Library& library = editor.library();
  Undone undone = find(library, entry);
  if (undone.state != Undone::State::done) return undone;
  const std::vector<RecordedChange> changes = library.recordedChanges(undone.entry, true);
  for (const RecordedChange& change : changes)
    if (!isAsLeft(library.held(change.place), change)) undone.conflicts.push_back(nameOf(change.place));
  for (const RecordedChange& change : changes)
    if (change.before && !isWhole(*change.before)) undone.damaged.push_back(nameOf(change.place));
  if (!undone.damaged.empty()) {
    undone.state = Undone::State::damaged;
    return undone;
  }
  if (!undone.conflicts.empty() && force == Force::no) {
    undone.state = Undone::State::conflict;
    return undone;
  }
  const bool isRenaming = std::all_of(changes.begin(), changes.end(),
                                      [](const RecordedChange& change) { return change.what == What::renamed; });
  library.beginRun({"undo", {}, undone.entry, isRenaming});
  library.openEntry();
  for (const RecordedChange& change : changes) library.putBack(change.place, change.before);
  dropMisfits(library);  // a forced undo may bring back a multi without the voices of its parts
  undone.changes = changesOfRun(library);
  editor.tools().reload();
  return undone;
}

}  // namespace Editor
