#pragma once

#include <optional>
#include <string>
#include <vector>

#include "convert/UnitModels.h"

namespace Editor {

// A place that a unit can be addressed to.
struct Destination {
  Target target;
  std::optional<BulkAddress> address;  // as it was named; none: `system`, `additional`
};
// The places that a word names: one, a bank or a range. Throws TargetError (noTarget).
std::vector<Destination> parseDestinations(const std::string& text);

// Addresses units of a batch to other places. A unit stays what it is, blocks or file dump, where its place can be
// reached so; else it becomes the other: the edit buffers have no file dumps, multis and the mixing voices of other
// multis no headers of their own, and nobody writes file dumps of presets.
class Placing {
 public:
  // Both outlive this object.
  Placing(Batch& batch, UnitModels& models)
      : batch_(batch), models_(models), messages_(batch.messagesByUnit()), replaced_(batch.units.size()) {}

  // What the new messages of a unit leave out.
  struct LeftOut {
    std::vector<std::string> parameters;  // by their paths
    std::string name;                     // of a file dump that has become blocks: where the one inside is another
  };
  // Throws TargetError (refused) when it is of a kind that does not fit, or cannot become what its place needs; and
  // TargetJsonError.
  LeftOut place(std::size_t unit, const Destination& to);
  // The last call: until then a unit that becomes the other form has its old messages. Its new ones stand where the
  // first old one stood, but never inside of another unit of blocks, nor between file dumps and the trigger that writes
  // them: then behind that. `additional`, which no message carries, is gone, and other units may have its number.
  void finish();

 private:
  void placeBlocks(std::size_t unit, const Destination& to);
  LeftOut placeFileDump(std::size_t unit, const Destination& to);
  std::vector<std::string> placeJson(std::size_t unit, const Destination& to);
  UnitModels::Held read(std::size_t unit);
  void replace(std::size_t unit, MessageBytes messages, Batch::Unit::Form form);
  void dropEmpty();
  std::vector<std::size_t> ends() const;
  bool takeOld(std::size_t message);
  void putNew(std::size_t unit, std::vector<Batch::Message>& messages);

  Batch& batch_;
  UnitModels& models_;
  const std::vector<std::vector<std::size_t>> messages_;
  std::vector<std::optional<MessageBytes>> replaced_;
  std::optional<std::size_t> held_;  // the first unit before the new messages that no trigger writes
  std::size_t goneUntil_ = 0;        // of the units that are replaced: the last message
};

}  // namespace Editor
