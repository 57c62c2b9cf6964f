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

BulkAddress footerOf(BulkAddress header) { return {BDA::kFooterHi, header.mid, header.lo}; }

void addressBlocks(MessageBytes& messages, BulkAddress header) {
  readdress(messages.front(), header);
  readdress(messages.back(), footerOf(header));
}

}  // namespace

std::vector<Destination> parseDestinations(const std::string& text) {
  if (text == "system" || text == "additional") return {{parseTarget(text), std::nullopt}};
  std::vector<Destination> destinations;
  for (const BulkAddress address : parsePlaces(text).list)
    destinations.push_back({parseTarget(formatAddress(address)), address});
  return destinations;
}

std::vector<std::string> Placing::place(std::size_t unit, const Destination& to) {
  const Batch::Unit& moved = batch_.units[unit];
  if (moved.form == Form::json) return placeJson(unit, to);
  if (!fits(moved.kind, to.target))
    refuse(to.target, fmt::format("{} does not fit, it is {}", moved.place, wordsOf(moved.kind)));
  return moved.form == Form::blocks ? placeBlocks(unit, to) : placeFileDump(unit, to);
}

std::vector<std::string> Placing::placeBlocks(std::size_t unit, const Destination& to) {
  Batch::Unit& moved = batch_.units[unit];
  std::vector<std::string> leftOut;
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
  return leftOut;
}

std::vector<std::string> Placing::placeFileDump(std::size_t unit, const Destination& to) {
  Batch::Unit& moved = batch_.units[unit];
  std::vector<std::string> leftOut;
  if (const std::optional<BulkAddress> address = fileDumpAt(to)) {
    readdress(batch_.messages[messages_[unit].front()].bytes, *address);
    moved.address = address;
  } else {
    const UnitModels::Held held = read(unit);
    if (!held.models || !to.target.header)
      refuse(to.target, fmt::format("{} cannot become blocks, which it takes: {}", moved.place, held.why));
    Dumps dumps = models_.blocksOf(moved.kind, *held.models);
    addressBlocks(dumps.messages, *to.target.header);
    moved.address = to.target.header;
    replace(unit, std::move(dumps.messages), Form::blocks);
    leftOut = std::move(dumps.leftOut);
  }
  moved.place = placeNameOf(*moved.address);
  return leftOut;
}

std::vector<std::string> Placing::placeJson(std::size_t unit, const Destination& to) {
  Batch::Unit& moved = batch_.units[unit];
  if (to.target.kind == Target::Kind::additional) refuse(to.target, "no message carries it");
  const std::optional<ContentKind> kind = moved.place.empty() ? std::nullopt : contentKindOf(parseTarget(moved.place));
  const bool isMulti = kind == ContentKind::multi || kind == ContentKind::performance;  // whose models are alike
  if (isOfOtherKind(moved.object, to.target) || (isMulti && !fits(*kind, to.target)))
    refuse(to.target, "models of another kind do not fit");
  const ModelSet models = modelsFromJson(moved.object, to.target);
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
  std::vector<Batch::Message> messages;
  for (Batch::Message& message : batch_.messages) {
    const auto isBlocks = [&](std::size_t unit) { return batch_.units[unit].form == Form::blocks; };
    const bool hasWritten = !message.writes.empty();
    message.writes.erase(std::remove_if(message.writes.begin(), message.writes.end(), isBlocks), message.writes.end());
    if (hasWritten && message.writes.empty()) continue;  // a trigger that has nothing left to write
    if (!message.unit || !replaced_[*message.unit]) {
      messages.push_back(std::move(message));
      continue;
    }
    const std::size_t unit = *message.unit;
    if (replaced_[unit]->empty()) continue;  // they stand where the first one was
    for (std::vector<std::uint8_t>& bytes : *replaced_[unit]) messages.push_back({std::move(bytes), unit});
    replaced_[unit]->clear();
    if (batch_.units[unit].form != Form::fileDump) continue;
    messages.push_back({triggerFor(messages.back().bytes), std::nullopt, {unit}});
  }
  batch_.messages = std::move(messages);
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
