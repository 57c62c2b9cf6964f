#include "history/Undo.h"

#include <fmt/format.h>

#include <algorithm>

#include "contents/PartVoices.h"

namespace Editor {

namespace {

bool isAsLeft(const std::optional<Held>& held, const RecordedChange& change) {
  return held ? change.checksumAfter == held->checksum && isWhole(*held) : !change.checksumAfter;
}

// Whether undo without a number comes to it.
bool isNext(const HistoryEntry& entry) { return !entry.undoes && !entry.undoneBy; }

// The one that is named, or else the newest that is no undo and not undone.
Undone find(const std::vector<HistoryEntry>& newestFirst, std::optional<std::int64_t> named) {
  const auto entry = std::find_if(newestFirst.begin(), newestFirst.end(),
                                  [&](const HistoryEntry& one) { return named ? one.number == *named : isNext(one); });
  if (entry == newestFirst.end())
    return {.state = named ? Undone::State::noSuchEntry : Undone::State::nothingToUndo, .entry = named.value_or(0)};
  return {.state = entry->undoneBy ? Undone::State::isUndone : Undone::State::done,
          .entry = entry->number,
          .undoneBy = entry->undoneBy};
}

// Says of an entry what can no longer be trusted.
void judge(const std::vector<RecordedEntry>& entries, const std::vector<RecordedChange>& changes, Undone& undone) {
  const auto entry = std::find_if(entries.begin(), entries.end(),
                                  [&](const RecordedEntry& recorded) { return recorded.number == undone.entry; });
  undone.fault = faultOf(*entry, changes, entries);
  if (undone.fault.empty())
    for (const RecordedChange& change : changes)
      if (change.before && !isSound(change.place, *change.before)) undone.damaged.push_back(nameOf(change.place));
  if (!undone.fault.empty() || !undone.damaged.empty()) undone.state = Undone::State::damaged;
}

// The newest before that entry to which undo would come and of which nothing is damaged.
std::optional<std::int64_t> findSoundBefore(std::int64_t number, const std::vector<HistoryEntry>& newestFirst,
                                            const std::vector<RecordedEntry>& entries, Library& library) {
  for (const HistoryEntry& entry : newestFirst) {
    if (entry.number >= number || !isNext(entry)) continue;
    Undone undone{.entry = entry.number};
    try {
      judge(entries, library.recordedChanges(entry.number, true), undone);
    } catch (const LibraryError&) {
      continue;  // what cannot be read cannot be put back
    }
    if (undone.state == Undone::State::done) return entry.number;
  }
  return std::nullopt;
}

}  // namespace

std::string whyNotDone(const Undone& undone) {
  switch (undone.state) {
    case Undone::State::nothingToUndo:
      return "there is nothing to undo";
    case Undone::State::noSuchEntry:
      return fmt::format("there is no entry {} in the history", undone.entry);
    case Undone::State::isUndone:
      return fmt::format("entry {} is already undone, by {}", undone.entry, *undone.undoneBy);
    case Undone::State::conflict:
    case Undone::State::damaged:
      return fmt::format("entry {} is not undone, nothing is changed", undone.entry);
    case Undone::State::done:
      break;
  }
  return {};
}

std::vector<std::string> damageIn(const Undone& undone) {
  std::vector<std::string> lines;
  for (const std::string& place : undone.damaged)
    lines.push_back(fmt::format("{}: what it held before is damaged", place));
  if (!undone.fault.empty()) lines.push_back(fmt::format("entry {} is damaged: {}", undone.entry, undone.fault));
  return lines;
}

std::string wordsOfConflict(const Undone& undone) {
  return fmt::format("no longer holds what entry {} left there", undone.entry);
}

Undone undo(EmbeddedEditor& editor, std::optional<std::int64_t> entry, Force force) {
  Library& library = editor.library();
  const std::vector<HistoryEntry> newestFirst = entriesOf(library);
  Undone undone = find(newestFirst, entry);
  if (undone.state != Undone::State::done) return undone;
  const std::vector<RecordedChange> changes = library.recordedChanges(undone.entry, true);
  const std::vector<RecordedEntry> entries = library.recordedEntries();
  judge(entries, changes, undone);
  if (undone.state == Undone::State::damaged) {
    undone.older = findSoundBefore(undone.entry, newestFirst, entries, library);
    return undone;
  }
  for (const RecordedChange& change : changes)
    if (const std::string name = nameOf(change.place);
        !isAsLeft(library.held(change.place), change) &&
        std::ranges::find(undone.conflicts, name) == undone.conflicts.end())
      undone.conflicts.push_back(name);  // once, of content and flag
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
