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
  Undone found{.state = Undone::State::nothingToUndo, .entry = named.value_or(0)};
  for (const HistoryEntry& entry : entriesOf(library)) {
    const bool isNext = !entry.undoes && !entry.undoneBy;
    if (found.state != Undone::State::nothingToUndo) {
      if (!isNext) continue;
      found.older = entry.number;
      break;
    }
    if (named ? entry.number != *named : !isNext) continue;
    found.state = entry.undoneBy ? Undone::State::isUndone : Undone::State::done;
    found.entry = entry.number;
    found.undoneBy = entry.undoneBy;
  }
  return found;
}

std::string faultOf(Library& library, std::int64_t number, const std::vector<RecordedChange>& changes) {
  const std::vector<RecordedEntry> entries = library.recordedEntries();
  const auto entry = std::find_if(entries.begin(), entries.end(),
                                  [&](const RecordedEntry& recorded) { return recorded.number == number; });
  return faultOf(*entry, changes, entries);
}

}  // namespace

Undone undo(EmbeddedEditor& editor, std::optional<std::int64_t> entry, Force force) {
  Library& library = editor.library();
  Undone undone = find(library, entry);
  if (undone.state != Undone::State::done) return undone;
  const std::vector<RecordedChange> changes = library.recordedChanges(undone.entry, true);
  undone.fault = faultOf(library, undone.entry, changes);
  if (!undone.fault.empty()) {
    undone.state = Undone::State::damaged;
    return undone;
  }
  for (const RecordedChange& change : changes)
    if (!isAsLeft(library.held(change.place), change)) undone.conflicts.push_back(nameOf(change.place));
  for (const RecordedChange& change : changes)
    if (change.before && !isSound(change.place, *change.before)) undone.damaged.push_back(nameOf(change.place));
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
