#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "exchange/EmbeddedEditor.h"
#include "history/History.h"
#include "messages/InputMessage.h"

namespace Editor {

// Receives the dumps among messages that were judged whole, as one change of a library. Unless it is committed nothing
// is changed; it must not be where a dump was refused, or a unit is still open. Throws LibraryError.
class Restore {
 public:
  // The run of the library's history has begun.
  Restore(EmbeddedEditor& editor, EmbeddedEditor::Run::Devices devices)
      : editor_(editor), run_(editor, Library::Transaction::Access::Write, devices) {}

  // The next message; nothing: it is no dump, and passed over.
  std::optional<Record> take(const Reading& reading, const InputMessage& message);
  std::uint64_t dumps() const { return dumps_; }

  // When all are taken: what they have changed.
  std::vector<PlaceChange> settle();
  void commit();  // nothing where there was no dump

  // Contents that the dumps have brought or removed, once that is committed.
  struct Tally {
    std::size_t stored = 0;
    std::size_t removed = 0;
    std::size_t same = 0;  // as they were
  };
  Tally tally(const std::vector<PlaceChange>& changes);

 private:
  EmbeddedEditor& editor_;
  EmbeddedEditor::Run run_;
  std::uint64_t dumps_ = 0;
};

}  // namespace Editor
