#include "convert/Selection.h"

#include <algorithm>
#include <utility>

#include "messages/Messages.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

// The place of a message that is taken by itself, or has file dumps written.
std::optional<std::string> placeOfAlone(const Batch::Message& message) {
  const Reading reading = readMessage(message.bytes);
  const bool isAlone = reading.role == Role::alone || reading.role == Role::trigger;
  if (message.unit || reading.kind != Reading::Kind::dump || isBroken(reading) || !isAlone) return std::nullopt;
  return placeNameOf(*reading.address);
}

}  // namespace

Selection::Selection(const std::vector<std::string>& words) {
  for (const std::string& text : joinAddresses(words)) {
    const Places<BulkAddress> named = parsePlaces(text);
    Word word{named.name, {named.name}};
    for (const BulkAddress address : named.list) word.places.insert(placeNameOf(address));
    words_.push_back(std::move(word));
  }
}

bool Selection::takes(const std::string& place) const {
  return std::any_of(words_.begin(), words_.end(), [&](const Word& word) { return word.places.contains(place); });
}

bool Selection::takesAlone(const Batch::Message& message) const {
  const std::optional<std::string> place = placeOfAlone(message);
  return place && takes(*place);
}

Selection::Result Selection::apply(Batch& batch) const {
  Result result;
  Batch kept;
  std::set<std::string> found;
  std::vector<std::optional<std::size_t>> nowAt(batch.units.size());
  for (std::size_t i = 0; i < batch.units.size(); ++i) {
    if (!takes(batch.units[i].place)) continue;
    found.insert(batch.units[i].place);
    nowAt[i] = kept.units.size();
    kept.units.push_back(std::move(batch.units[i]));
  }
  for (Batch::Message& message : batch.messages) {
    std::vector<std::size_t> writes;
    for (const std::size_t unit : message.writes)
      if (nowAt[unit]) writes.push_back(*nowAt[unit]);
    const bool isAsked = takesAlone(message);
    if (isAsked) found.insert(*placeOfAlone(message));
    if (message.unit ? !nowAt[*message.unit] : writes.empty() && !isAsked) continue;
    if (!writes.empty() && !isAsked && readMessage(message.bytes).address != kWriteTrigger) {
      readdress(message.bytes, kWriteTrigger);
      result.tamesTrigger = true;
    }
    if (message.unit) message.unit = nowAt[*message.unit];
    message.writes = std::move(writes);
    kept.messages.push_back(std::move(message));
  }
  for (UnitReport& report : batch.broken) {
    if (!takes(placeNameOf(report.address))) continue;
    found.insert(placeNameOf(report.address));
    kept.broken.push_back(std::move(report));
  }
  for (Batch::BrokenMessage& message : batch.brokenMessages) {
    if (!message.address || !takes(placeNameOf(*message.address))) continue;
    found.insert(placeNameOf(*message.address));
    kept.brokenMessages.push_back(std::move(message));
  }
  for (const Word& word : words_)
    if (std::none_of(word.places.begin(), word.places.end(),
                     [&](const std::string& place) { return found.contains(place); }))
      result.notFound.push_back(word.text);
  batch = std::move(kept);
  return result;
}

}  // namespace Editor
