#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "messages/AddressNames.h"
#include "models/ModelSet.h"

namespace Editor {

// Which bits of which data byte of a block carry which parameter: the layout by which the module converts the block,
// read from the byte's side.
class BlockMap {
 public:
  // A parameter, or a name as a whole, that some bits of a byte can change.
  struct Carried {
    std::string path;   // as in JSON
    std::uint8_t bits;  // of the seven that a cable carries; never 0
    std::string how;    // which part of the value they are, in words
    // Where it stands in the models: in fieldsOf() those of the block's unit, and in that group.
    std::size_t field;
    std::size_t index;
  };

  // Nothing: such a block carries no parameters, or there is none.
  static std::optional<BlockMap> of(BulkAddress block);

  // Data bytes.
  std::size_t size() const { return bytes_.size(); }
  // In the order in which they are converted.
  const std::vector<Carried>& at(std::size_t dataByte) const { return bytes_[dataByte]; }
  // The bits that carry nothing, of the seven.
  std::uint8_t unusedBits(std::size_t dataByte) const;

 private:
  class Builder;

  std::vector<std::vector<Carried>> bytes_;
};

// The models that the blocks of a unit fill, those between its header and its footer or all of the system, fresh: of
// the unit in which that block stands. Without models for a block that carries no parameters.
ModelSet modelsAround(BulkAddress block);

// What a parameter or name of a map is in such models.
ParameterValue valueIn(const std::vector<ModelField>& fields, const BlockMap::Carried& carried);

}  // namespace Editor
