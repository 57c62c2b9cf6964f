#include "convert/InEditBuffers.h"

#include <map>
#include <string>

#include "AddressRows.h"
#include "convert/Placing.h"

namespace Editor {

InEditBuffers placeInEditBuffers(Batch& batch) {
  InEditBuffers result;
  UnitModels models;
  Placing placing(batch, models);
  std::map<EditBuffer, std::string> taken;
  for (std::size_t unit = 0; unit < batch.units.size(); ++unit) {
    const std::optional<EditBuffer> buffer = editBufferOf(batch.units[unit].kind);
    if (!buffer)
      throw TargetError(TargetError::Kind::refused, batch.units[unit].place + ": there is no edit buffer for it");
    const MidLo header = headerOf(*buffer);
    const std::string name = nameOrBytes({BDA::kHeaderHi, header.mid, header.lo});
    const std::string place = batch.units[unit].place;
    if (const auto [other, isFirst] = taken.try_emplace(*buffer, place); !isFirst) {
      result.clash = {name, other->second, place};
      return result;
    }
    placing.place(unit, parseDestinations(name).front());
  }
  placing.finish();
  result.leftOut = std::erase_if(batch.messages, [](const Batch::Message& message) {
    return !message.unit && readMessage(message.bytes).kind == Reading::Kind::dump;
  });
  return result;
}

}  // namespace Editor
