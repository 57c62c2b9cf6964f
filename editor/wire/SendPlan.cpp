#include "wire/SendPlan.h"

#include <algorithm>
#include <utility>

#include "targets/Targets.h"

namespace Editor {

SendPlan::SendPlan(const Batch& batch) {
  std::vector<std::optional<std::size_t>> planned(batch.units.size());  // where a unit of the batch stands here
  const auto add = [&](Send::Unit unit, std::string place, bool isRemoved) {
    units.push_back(std::move(unit));
    places.push_back(std::move(place));
    removes.push_back(isRemoved);
  };
  for (const Batch::Message& message : batch.messages) {
    const Reading reading = readMessage(message.bytes);
    if (reading.kind != Reading::Kind::dump) {
      ++leftOut;
      continue;
    }
    devices.insert(*reading.device);
    removesMixingVoices = removesMixingVoices || reading.removesMixingVoices;
    ++messages;
    bytes += message.bytes.size();
    longest = std::max(longest, message.bytes.size());
    if (message.unit) {
      std::optional<std::size_t>& at = planned[*message.unit];
      const Batch::Unit& unit = batch.units[*message.unit];
      if (!at) add({unit.address, {}, {}}, unit.place, unit.removes);
      if (!at) at = units.size() - 1;
      units[*at].messages.push_back(message.bytes);
    } else if (reading.role == Role::trigger && !message.writes.empty()) {
      units[*planned[message.writes.back()]].behind.push_back(message.bytes);
    } else {
      const bool canBeAsked = reading.role == Role::alone && isAnsweredByUnit(*reading.address);
      add({canBeAsked ? reading.address : std::nullopt, {message.bytes}, {}}, nameOrBytes(*reading.address),
          reading.removes.has_value());
    }
  }
}

std::vector<std::size_t> unwrittenIn(const Batch& batch) {
  std::vector<bool> isWritten(batch.units.size());
  for (const Batch::Message& message : batch.messages)
    for (const std::size_t unit : message.writes) isWritten[unit] = true;
  std::vector<std::size_t> unwritten;
  for (std::size_t unit = 0; unit < batch.units.size(); ++unit)
    if (batch.units[unit].form == Batch::Unit::Form::fileDump && !isWritten[unit]) unwritten.push_back(unit);
  return unwritten;
}

}  // namespace Editor
