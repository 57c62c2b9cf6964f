#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "history/History.h"

namespace Editor {

// What became of an undo.
struct Undone {
  enum class State : std::uint8_t {
    done,
    nothingToUndo,  // no entry is left
    noSuchEntry,    // none has the number that was named
    isUndone,       // the entry that was named is undone as it stands
    conflict,       // places no longer hold what the entry left there
    damaged,        // what places held before can no longer be trusted: it is never put back
  };

  State state = State::done;
  std::int64_t entry = 0;                     // that was, or would have been, taken back
  std::optional<std::int64_t> undoneBy = {};  // isUndone: the undo that did it
  std::optional<std::int64_t> older = {};     // damaged: the next one before it that is not
  std::vector<std::string> conflicts = {};    // the places; also where they were taken back all the same
  std::vector<std::string> damaged = {};
  std::string fault = {};                 // damaged: what is wrong with the entry itself
  std::vector<PlaceChange> changes = {};  // done: what the undo changed
};

// Why it is not done, in words; "" where it is.
std::string whyNotDone(const Undone& undone);
// What is damaged, a line for each place, and for the entry itself.
std::vector<std::string> damageIn(const Undone& undone);
// "no longer holds what entry 3 left there": what is told of each of `conflicts`.
std::string wordsOfConflict(const Undone& undone);

enum class Force : std::uint8_t { no, yes };

// Puts back what the places of an entry held before it, in the transaction that the caller has open and commits; unless
// it is done nothing is changed. The entry is the one that is named, or the newest that is no undo and not undone; one
// that is undone now cannot be undone once more. The undo is an entry and a run of the library itself, so it can be
// undone by its number. A place is compared by what it holds, whatever happened to it meanwhile: where that is not what
// the entry left there nothing is put back, but with force. What the history holds damaged is not put back with it
// either. The editor's live models are then those of the library. Throws LibraryError, and LiveModelError.
Undone undo(EmbeddedEditor& editor, std::optional<std::int64_t> entry, Force force);

}  // namespace Editor
