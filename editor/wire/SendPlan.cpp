#include "wire/SendPlan.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "AddressRows.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

bool isOf(EditBuffer buffer, BulkAddress address) {
  return address.hi == BDA::kHeaderHi && editBufferOf(address.mid) == buffer;
}

std::string nameOf(EditBuffer buffer) {
  const MidLo header = headerOf(buffer);
  return placeNameOf(BulkAddress{BDA::kHeaderHi, header.mid, header.lo});
}

bool isOfScreen(BulkAddress address) { return address == kScreen || address == kScreenData; }

}  // namespace

BulkAddress addressOf(const Send::Unit& unit) { return *readMessage(unit.messages.front()).address; }

SendPlan::SendPlan(const Batch& batch) {
  std::vector<std::optional<std::size_t>> planned(batch.units.size());  // where a unit of the batch stands here
  std::size_t triggers = 0;
  bool removesMixingVoices = false;
  for (const Batch::Message& message : batch.messages) {
    const Reading reading = readMessage(message.bytes);
    if (reading.kind != Reading::Kind::dump) {
      ++leftOut;
      continue;
    }
    devices.insert(*reading.device);
    ++messages;
    bytes += message.bytes.size();
    longest = std::max(longest, message.bytes.size());
    if (message.unit) {
      std::optional<std::size_t>& at = planned[*message.unit];
      const Batch::Unit& unit = batch.units[*message.unit];
      if (!at)
        add({unit.address, {}}, unit.place, fmt::format("{}: {}", unit.removes ? "removes" : "overwrites", unit.place));
      if (!at) at = units.size() - 1;
      units[*at].messages.push_back(message.bytes);
    } else if (reading.role == Role::trigger && !message.writes.empty()) {
      for (const std::size_t unit : message.writes)
        units[*planned[unit]].trigger = {triggers, message.bytes, units.size() - 1, reading.removesMixingVoices};
      ++triggers;
    } else {
      addAlone(message, reading);
    }
    if (!reading.removesMixingVoices) continue;
    removesMixingVoices = true;
    // Nobody knows which of what stands before it will still be there.
    for (Send::Unit& unit : units) unit.isNeverLeftOut = true;
  }
  if (removesMixingVoices) keepMixingVoices();
  group();
  tellFurther(removesMixingVoices);
}

void SendPlan::add(Send::Unit unit, std::string place, std::string effect) {
  units.push_back(std::move(unit));
  effects.push_back(std::move(effect));
  places.push_back(std::move(place));
}

void SendPlan::addAlone(const Batch::Message& message, const Reading& reading) {
  const BulkAddress address = *reading.address;
  if (address == kScreenData && !units.empty() && isOfScreen(addressOf(units.back()))) {
    units.back().messages.push_back(message.bytes);
    return;
  }
  if (reading.role == Role::emptyFooter) return addEmpty(message.bytes, address, Editor::nameOf(*reading.removes));
  const std::string place = nameOrBytes(isOfScreen(address) ? kScreen : address);
  const bool canBeAsked = reading.role == Role::alone && isAnsweredByUnit(address);
  std::string effect = fmt::format("{}: {}", reading.removes ? "removes" : "overwrites", place);
  if (reading.role == Role::trigger) effect = "writes the file dumps that the instrument holds";
  if (isOfScreen(address)) effect = "shows: screen";
  if (reading.role == Role::emptyHeader) effect = fmt::format("changes nothing: {}", place);
  add({canBeAsked ? reading.address : std::nullopt, {message.bytes}}, place, effect);
}

// An empty mixing voice: its footer removes what stands there, with the header before it or without. No trigger goes
// out between the messages of a unit.
void SendPlan::addEmpty(const Send::Message& footer, BulkAddress address, const std::string& place) {
  const BulkAddress header{BDA::kHeaderHi, address.mid, address.lo};
  const bool isBehindTrigger = std::ranges::any_of(
      units, [&](const Send::Unit& unit) { return unit.trigger && unit.trigger->behind + 1 == units.size(); });
  if (units.empty() || units.back().messages.size() > 1 || addressOf(units.back()) != header || isBehindTrigger)
    add({}, place, "");
  units.back().asked = BulkAddress{BDA::kHeaderHi, address.mid, std::uint8_t(address.lo & ~unsigned(BDA::kEmptyVoice))};
  units.back().messages.push_back(footer);
  places.back() = place;
  effects.back() = fmt::format("removes: {}", place);
}

// Those that stand behind the trigger that removes all others, too: they may have been equal until then.
void SendPlan::keepMixingVoices() {
  for (Send::Unit& unit : units) {
    const std::optional<ContentId> content = contentNamedBy(addressOf(unit));
    if (content && isMixingVoice(*content)) unit.isNeverLeftOut = true;
  }
}

// Those that go to one place; and a multi and the voices of its parts, of which each overwrites the other.
void SendPlan::group() {
  std::map<std::string, std::vector<std::size_t>> together;
  for (std::size_t unit = 0; unit < units.size(); ++unit) {
    const bool isOfPart = isOf(EditBuffer::partVoice, addressOf(units[unit]));
    together[isOfPart ? nameOf(EditBuffer::multi) : places[unit]].push_back(unit);
  }
  std::size_t number = 0;
  for (const auto& [place, members] : together) {
    for (const std::size_t unit : members)
      if (members.size() > 1) units[unit].group = number;
    ++number;
  }
}

void SendPlan::tellFurther(bool removesMixingVoices) {
  const auto find = [&](EditBuffer buffer) {
    return std::ranges::find_if(units, [&](const Send::Unit& unit) { return isOf(buffer, addressOf(unit)); });
  };
  const auto multi = find(EditBuffer::multi);
  const auto part = find(EditBuffer::partVoice);
  if (multi != units.end())
    further.push_back(
        fmt::format("overwrites: {}..16 (with {})", nameOf(EditBuffer::partVoice), nameOf(EditBuffer::multi)));
  else if (part != units.end())
    further.push_back(
        fmt::format("overwrites: {} (with {})", nameOf(EditBuffer::multi), placeNameOf(addressOf(*part))));
  if (removesMixingVoices) further.emplace_back("removes: all mixing voices");
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
