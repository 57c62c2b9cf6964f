#include "convert/Placing.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "AddressRows.h"
#include "messages/Messages.h"
#include "targets/TargetJson.h"

namespace Editor {

namespace {

using Form = Batch::Unit::Form;

// The file dump that an instrument writes there; the one that was named, where a content has two.
std::optional<BulkAddress> fileDumpAt(const Destination& to) {
  if (to.target.kind != Target::Kind::content) return std::nullopt;
  std::optional<BulkAddress> address = to.address;
  if (address->hi != BDA::kFileDumpHi) {
    const std::optional<MidLo> place = fileDumpOf(to.target.content);
    if (!place) return std::nullopt;
    address = BulkAddress{BDA::kFileDumpHi, place->mid, place->lo};
  }
  return isWritableFileDump(*address) ? address : std::nullopt;
}

bool isGoodPart(const std::vector<std::uint8_t>& message) {
  const Reading reading = readMessage(message);
  return reading.role == Role::part && reading.verdict == Reading::Verdict::good;
}

std::vector<std::string> parameterPathsOf(const ModelSet& models) {
  std::vector<std::string> paths;
  for (const ModelField& field : fieldsOf(models))
    for (std::size_t i = 0; field.group != nullptr && i < field.group->values().size(); ++i)
      paths.push_back(parameterPath(field, i));
  return paths;
}

}  // namespace

std::vector<Destination> parseDestinations(const std::string& text) {
  if (text == "system" || text == "additional") return {{parseTarget(text), std::nullopt}};
  std::vector<Destination> destinations;
  for (const BulkAddress address : parsePlaces(text).list)
    destinations.push_back({parseTarget(formatAddress(address)), address});
  return destinations;
}

Placing::LeftOut Placing::place(std::size_t unit, const Destination& to) {
  const Batch::Unit& moved = batch_.units[unit];
  if (moved.form == Form::json) return {placeJson(unit, to), {}};
  if (!fits(moved.kind, to.target))
    refuse(to.target, fmt::format("{} does not fit, it is {}", moved.place, wordsOf(moved.kind)));
  if (moved.form == Form::fileDump) return placeFileDump(unit, to);
  placeBlocks(unit, to);
  return {};
}

void Placing::placeBlocks(std::size_t unit, const Destination& to) {
  Batch::Unit& moved = batch_.units[unit];
  if (to.target.header) {
    readdress(batch_.messages[messages_[unit].front()].bytes, *to.target.header);
    readdress(batch_.messages[messages_[unit].back()].bytes, footerOf(*to.target.header));
    moved.address = to.target.header;
  } else {
    const std::optional<BulkAddress> address = fileDumpAt(to);
    const UnitModels::Held held = read(unit);
    if (!address || !held.models) refuse(to.target, fmt::format("{} cannot go there: {}", moved.place, held.why));
    Dumps dumps = models_.fileDumpOf(moved.kind, *held.models);
    readdress(dumps.messages.front(), *address);
    moved.address = address;
    replace(unit, std::move(dumps.messages), Form::fileDump);
  }
  moved.place = placeNameOf(*moved.address);
}

Placing::LeftOut Placing::placeFileDump(std::size_t unit, const Destination& to) {
  Batch::Unit& moved = batch_.units[unit];
  LeftOut leftOut;
  if (const std::optional<BulkAddress> address = fileDumpAt(to)) {
    readdress(batch_.messages[messages_[unit].front()].bytes, *address);
    moved.address = address;
  } else {
    const UnitModels::Held held = read(unit);
    if (!held.models || !to.target.header)
      refuse(to.target, fmt::format("{} cannot go there, where blocks are taken: {}", moved.place, held.why));
    Dumps dumps = models_.blocksOf(moved.kind, *held.models);
    readdress(dumps.messages.front(), *to.target.header);
    readdress(dumps.messages.back(), footerOf(*to.target.header));
    moved.address = to.target.header;
    replace(unit, std::move(dumps.messages), Form::blocks);
    leftOut.parameters = std::move(dumps.leftOut);
    if (held.name != nameOf(*held.models)) leftOut.name = held.name;
  }
  moved.place = placeNameOf(*moved.address);
  return leftOut;
}

std::vector<std::string> Placing::placeJson(std::size_t unit, const Destination& to) {
  Batch::Unit& moved = batch_.units[unit];
  const std::optional<ContentKind> kind = moved.place.empty() ? std::nullopt : contentKindOf(parseTarget(moved.place));
  const bool isMulti = kind == ContentKind::multi || kind == ContentKind::performance;  // whose models are alike
  if (isOfOtherKind(moved.object, to.target) || (isMulti && !fits(*kind, to.target)))
    refuse(to.target, "models of another kind do not fit");
  const ModelSet models = modelsFromJson(moved.object, to.target);
  if (models.additional) {
    replace(unit, {}, Form::blocks);
    return parameterPathsOf(models);
  }
  std::optional<BulkAddress> address = to.address;
  if (address && address->hi == BDA::kFileDumpHi && !fileDumpAt(to)) address = to.target.header;
  Dumps dumps = dumpsOf(to.target, address, models);
  moved.address = address ? *address : systemAddresses().front();
  moved.kind = contentKindOf(to.target).value_or(ContentKind::single);
  if (models.voice && models.voice->isDrum()) moved.kind = ContentKind::drum;
  moved.place = address ? placeNameOf(*address) : to.target.name;
  replace(unit, std::move(dumps.messages), address && address->hi == BDA::kFileDumpHi ? Form::fileDump : Form::blocks);
  return std::move(dumps.leftOut);
}

void Placing::finish() {
  const std::vector<std::size_t> ends = this->ends();
  std::vector<Batch::Message> messages;
  std::vector<std::size_t> waiting;
  std::size_t end = 0;  // before it nothing new is put
  for (std::size_t i = 0; i <= batch_.messages.size(); ++i) {
    if (i >= end || i == batch_.messages.size())
      for (const std::size_t unit : std::exchange(waiting, {})) putNew(unit, messages);
    if (i == batch_.messages.size()) break;
    const std::optional<std::size_t> unit = batch_.messages[i].unit;
    if (unit && replaced_[*unit] && messages_[*unit].front() == i) waiting.push_back(*unit);
    if (!takeOld(i)) continue;
    if (unit) end = std::max(end, ends[*unit]);
    const bool isHeld = unit && batch_.units[*unit].form == Form::fileDump && ends[*unit] == i + 1;
    if (isHeld && !held_) held_ = unit;
    messages.push_back(std::move(batch_.messages[i]));
  }
  batch_.messages = std::move(messages);
  dropEmpty();
}

// What has become no message is no unit any more.
void Placing::dropEmpty() {
  std::vector<Batch::Unit> units;
  std::vector<std::size_t> nowAt(batch_.units.size());
  for (std::size_t i = 0; i < batch_.units.size(); ++i) {
    nowAt[i] = units.size();
    if (!replaced_[i] || !replaced_[i]->empty()) units.push_back(std::move(batch_.units[i]));
  }
  batch_.units = std::move(units);
  for (Batch::Message& message : batch_.messages) {
    if (message.unit) message.unit = nowAt[*message.unit];
    for (std::size_t& unit : message.writes) unit = nowAt[unit];
  }
}

// By unit: behind which message it is over, where it keeps its messages.
std::vector<std::size_t> Placing::ends() const {
  std::vector<std::size_t> ends(batch_.units.size());
  for (std::size_t unit = 0; unit < ends.size(); ++unit) ends[unit] = messages_[unit].back() + 1;
  for (std::size_t i = 0; i < batch_.messages.size(); ++i)
    for (const std::size_t unit : batch_.messages[i].writes) ends[unit] = i + 1;
  return ends;
}

// Whether an old message stays. A block that came twice in a unit goes with it, and a trigger that has nothing left to
// write.
bool Placing::takeOld(std::size_t message) {
  Batch::Message& old = batch_.messages[message];
  if (old.unit) {
    if (!replaced_[*old.unit]) return true;
    goneUntil_ = std::max(goneUntil_, messages_[*old.unit].back());
    return false;
  }
  if (message < goneUntil_ && isGoodPart(old.bytes)) return false;
  const bool hasWritten = !old.writes.empty();
  std::erase_if(old.writes, [&](std::size_t unit) { return batch_.units[unit].form == Form::blocks; });
  return !hasWritten || !old.writes.empty();
}

void Placing::putNew(std::size_t unit, std::vector<Batch::Message>& messages) {
  for (std::vector<std::uint8_t>& bytes : *replaced_[unit]) messages.push_back({std::move(bytes), unit});
  if (batch_.units[unit].form != Form::fileDump) return;
  if (held_)
    throw TargetError(TargetError::Kind::refused,
                      fmt::format("{} needs a write trigger, which would write {} as well, that is held before it and "
                                  "not written; nothing is written",
                                  batch_.units[unit].place, batch_.units[*held_].place));
  messages.push_back({triggerFor(messages.back().bytes), std::nullopt, {unit}});
}

UnitModels::Held Placing::read(std::size_t unit) {
  MessageBytes messages;
  for (const std::size_t message : messages_[unit]) messages.push_back(batch_.messages[message].bytes);
  return models_.read(batch_.units[unit], messages);
}

// New messages are for the device that the old ones were for.
void Placing::replace(std::size_t unit, MessageBytes messages, Form form) {
  const std::optional<unsigned> device = readMessage(batch_.messages[messages_[unit].front()].bytes).device;
  for (std::vector<std::uint8_t>& message : messages)
    if (device) setDevice(message, *device);
  replaced_[unit] = std::move(messages);
  batch_.units[unit].form = form;
}

}  // namespace Editor
