#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "exchange/EmbeddedEditor.h"
#include "input/InputStream.h"
#include "output/Complaints.h"

namespace Editor {

// Tells which places come again in the messages that an editor takes: of those the last one counts, and what came
// before is gone. Nothing that stood there before the first message is meant.
class RepeatedPlaces {
 public:
  // Both outlive this object.
  RepeatedPlaces(EmbeddedEditor& editor, Console& console) : editor_(editor), complaints_(console) {}

  // The next message, which the editor has handled. Throws LibraryError.
  void add(const InputMessage& message, const Record& record);
  // Call it once, at the end.
  void finish() { complaints_.finish(); }

 private:
  using Name = std::optional<std::string>;  // of what came for a place; nothing: its removal
  using Names = std::map<std::string, Name>;

  void write(const InputMessage& message, const Record& trigger);
  void put(Names& names, const std::string& place, Name name, const InputMessage& message);
  std::string nameStoredBy(BulkAddress footer);

  EmbeddedEditor& editor_;
  Complaints complaints_;
  Names stored_;  // by place
  Names held_;    // the same of file dumps that wait for their trigger
};

}  // namespace Editor
