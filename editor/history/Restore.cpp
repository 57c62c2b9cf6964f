#include "history/Restore.h"

#include <set>
#include <string>

namespace Editor {

std::optional<Record> Restore::take(const Reading& reading, const InputMessage& message) {
  if (reading.kind != Reading::Kind::dump) return std::nullopt;
  ++dumps_;
  return editor_.handle(reading, message.bytes, BDA::DevicePort_Main, message.number);
}

std::vector<PlaceChange> Restore::settle() {
  run_.settle();
  return changesOfRun(editor_.library());
}

void Restore::commit() {
  if (dumps_ > 0) run_.commit();
}

Restore::Tally Restore::tally(const std::vector<PlaceChange>& changes) {
  std::set<std::string> received;
  for (const Change& change : editor_.library().takeChanges())
    if (change.place.kind == Place::Kind::content && change.what != What::renamed)
      received.insert(nameOf(change.place));
  Tally tally;
  for (const PlaceChange& change : changes)
    if (received.contains(change.place) && change.what != What::flagged)
      ++(change.what == What::removed ? tally.removed : tally.stored);
  tally.same = received.size() - tally.stored - tally.removed;
  return tally;
}

}  // namespace Editor
