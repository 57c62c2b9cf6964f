#pragma once

#include <string>
#include <vector>

#include "arrange/Arrangement.h"
#include "exchange/EmbeddedEditor.h"

namespace Editor {

// What became of an arrangement beside what the library's history says; places by their readable names.
struct Arranged {
  // Between two places, beside the changes.
  struct Note {
    std::string from;
    std::string to;

    friend bool operator==(const Note&, const Note&) = default;
  };

  // Of one place.
  struct Damage {
    std::string place;
    std::string why;
  };

  std::vector<std::string> leftOut;  // of `from`: nothing stood there, and what stood in their `to` stays
  std::vector<Damage> damaged;       // what should have been taken from there cannot be: it stays as it is
  std::vector<Note> droppedFlags;    // a favourite went where no flag can stand
  std::vector<Note> voicesAlone;     // a voice became that of a part: what else belonged to it did not go along
};

// Copies, moves or swaps what the places hold: contents byte for byte, names and favourite flags with them, and edit
// buffers. All is read first, then judged, then written as one transaction.
//
// - Where nothing stands, nothing is taken; a swap then moves what stands on the other side.
// - What is damaged is not taken, and keeps nothing else from being taken; over it another content can be put.
// - What is moved away leaves its place empty, without a favourite flag; an edit buffer is then as if it had never been
//   stored. The multi that a part plays in always stays as it is.
// - The flag of a place is replaced by that of the place which the content comes from, if that one can have a flag.
//
// Throws TargetError (refused) when nothing stands in any of the places, when kinds do not fit, when bytes that are not
// ours would go to an edit buffer, or there is no room for more mixing voices; and LibraryError. Nothing is changed
// then.
Arranged arrange(EmbeddedEditor& editor, const Arrangement& arrangement);
// Copies from another library.
Arranged arrange(EmbeddedEditor& editor, const Arrangement& arrangement, EmbeddedEditor& other);

}  // namespace Editor
