#pragma once

#include <optional>
#include <string>
#include <vector>

#include "convert/Batch.h"
#include "exchange/EmbeddedEditor.h"
#include "targets/Targets.h"

namespace Editor {

using MessageBytes = std::vector<std::vector<std::uint8_t>>;

// What models become on the wire.
struct Dumps {
  MessageBytes messages;
  std::vector<std::string>
      leftOut;  // the paths of parameters that no block carries, where they are not as in fresh ones
};

// An instrument with a library of its own, in memory: what units hold, and what else would carry that.
class UnitModels {
 public:
  UnitModels() : run_(editor_, Library::Transaction::Access::Write, EmbeddedEditor::Run::Devices::any) {}

  struct Held {
    std::string name;  // as a library would list it
    std::optional<ModelSet> models;
    std::string why;  // why there are none
  };
  // Of a unit of messages, wherever it is for.
  Held read(const Batch::Unit& unit, const MessageBytes& messages);

  // The blocks or the file dump of models of that kind, addressed to some place that takes them. Throw TargetError
  // (refused) when nothing carries them.
  Dumps blocksOf(ContentKind kind, const ModelSet& models);
  Dumps fileDumpOf(ContentKind kind, const ModelSet& models);

 private:
  Held readBlocks(const Batch::Unit& unit, MessageBytes messages);
  Held readFileDump(const Batch::Unit& unit, std::vector<std::uint8_t> message);
  std::string receive(const std::vector<std::uint8_t>& message);

  EmbeddedEditor editor_;
  EmbeddedEditor::Run run_;
  std::uint64_t number_ = 0;
};

// What `request` answers for a header, a file dump or (no address) all of `system`, after `apply` of these models to
// their target. Throws TargetError (refused).
Dumps dumpsOf(const Target& target, const std::optional<BulkAddress>& address, const ModelSet& models);

}  // namespace Editor
