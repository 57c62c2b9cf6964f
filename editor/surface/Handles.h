#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "explain/MessageFile.h"
#include "names/ParameterNames.h"
#include "surface/Call.h"

// What stands behind the handles of bda/editor.h.

struct bda_library {
  std::string error;
  std::unique_ptr<Editor::EmbeddedEditor> editor;  // null: it could not be opened
  Editor::ParameterNames names;
  std::uint64_t messages = 0;  // that were handed over
  bool isOfFiles = false;      // it has received files: what they do not have is not there
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

// The editor of a handle that is open. Throws CallFailure (BDA_MISUSED).
inline EmbeddedEditor& editorOf(bda_library* library) {
  if (library->editor == nullptr) throw CallFailure{BDA_MISUSED, "the library could not be opened"};
  return *library->editor;
}

// What of an answer is missing or wrong, in words, a line for each: the answer is handed out all the same.
class Doubts {
 public:
  void add(const std::string& words) { words_ += (words_.empty() ? "" : "\n") + words; }
  bda_result end(std::string& error) {
    error = std::move(words_);
    return error.empty() ? BDA_OK : BDA_REFUSED;
  }

 private:
  std::string words_;
};

}  // namespace Editor
