#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "explain/MessageFile.h"
#include "names/ParameterNames.h"
#include "surface/Call.h"

// What stands behind the handles of bda/editor.h.

struct bda_library {
  std::string error;
  std::shared_ptr<Editor::EmbeddedEditor> editor;  // null: it could not be opened; a wire has it, too
  std::weak_ptr<void> wire;                        // that uses it
  std::string path = "memory";                     // as it was named, or that of which it is a copy
  Editor::ParameterNames names;
  std::uint64_t messages = 0;  // that were handed over
  bool isInMemory = true;      // there is no file
  bool isOfFiles = false;      // it has received files: what they do not have is not there
  bool isToRead = false;       // it was opened so
  bool isReceiving = false;    // what the history says of changes is that of messages which were handed over
};

struct bda_files {
  struct File {
    std::string name;
    std::vector<std::uint8_t> bytes;
    std::unique_ptr<Editor::MessageFile> explained = {};  // once it is asked for
  };

  std::string error;
  std::vector<File> list;
  Editor::ParameterNames names;
};

namespace Editor {

// The editor of a handle that is open, and that no wire uses. Throws CallFailure (BDA_MISUSED).
inline EmbeddedEditor& editorOf(bda_library* library) {
  if (library->editor == nullptr) throw CallFailure{BDA_MISUSED, "the library could not be opened"};
  if (!library->wire.expired()) throw CallFailure{BDA_MISUSED, "a wire uses the library"};
  return *library->editor;
}

// Throws CallFailure (BDA_REFUSED).
inline void requireChangeable(const bda_library& library) {
  if (library.isToRead) throw CallFailure{BDA_REFUSED, "the library was opened to be read: nothing is changed"};
}

// Those that a file of names gives; null: none. Throws CallFailure (BDA_UNUSABLE).
ParameterNames parameterNamesIn(const char* names);

// What of an answer is missing or wrong, in words, a line for each: the answer is handed out all the same.
class Doubts {
 public:
  // What was said before is not said again.
  void add(const std::string& words) {
    if (said_.insert(words).second) words_ += (words_.empty() ? "" : "\n") + words;
  }
  bool areNone() const { return words_.empty(); }
  // For a call that has no answer then. Throws CallFailure.
  [[noreturn]] void fail(bda_result result) { throw CallFailure{result, std::move(words_)}; }
  // The same (BDA_REFUSED) where there are any.
  void refuse() {
    if (!areNone()) fail(BDA_REFUSED);
  }
  bda_result end(std::string& error) {
    error = std::move(words_);
    return error.empty() ? BDA_OK : BDA_REFUSED;
  }

 private:
  std::string words_;
  std::set<std::string> said_;
};

// As long as it lives what cannot be read of a library is left out of what is read, and makes doubts.
class LeavingOut {
 public:
  LeavingOut(EmbeddedEditor& editor, Doubts& doubts);
  LeavingOut(const LeavingOut&) = delete;
  LeavingOut& operator=(const LeavingOut&) = delete;
  ~LeavingOut() { library_.leaveOutUnread({}); }

 private:
  Library& library_;
};

// Those who call with the handle of a library. `act` gets its editor, and what is wrong with its answer.
template <typename Act>
bda_result callWith(bda_library* library, Act act) noexcept {
  if (library == nullptr) return BDA_MISUSED;
  return call(library->error, [&] {
    Doubts doubts;
    act(editorOf(library), doubts);
    return doubts.end(library->error);
  });
}

// The places that a caller names, as the words of a command line; `what` is their name in the header. Throws
// CallFailure, as textOf() does and for no words.
std::vector<std::string> wordsOf(const char* places, const char* what);

}  // namespace Editor
