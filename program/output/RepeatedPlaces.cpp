#include "output/RepeatedPlaces.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "AddressRows.h"
#include "messages/Text.h"
#include "targets/Targets.h"

namespace Editor {

void RepeatedPlaces::add(const InputMessage& message, const Record& record) {
  const Reading& reading = record.reading;
  if (std::ranges::find(record.ended, UnitReport::State::discarded, &UnitReport::state) != record.ended.end())
    held_.clear();
  if (reading.kind != Reading::Kind::dump) return;
  if (reading.role == Role::trigger) return write(message, record);
  if (record.outcome == Outcome::refused || record.outcome == Outcome::ignored) return;
  switch (reading.role) {
    case Role::fileDump: {
      Name name;
      if (!reading.removes) name = isBroken(reading) ? "" : partsOfFileDump(message.bytes).name;  // both are held
      return put(held_, placeNameOf(*reading.address), std::move(name), message);
    }
    case Role::footer: {
      const BulkAddress header{BDA::kHeaderHi, reading.address->mid, reading.address->lo};
      return put(stored_, placeNameOf(header), nameStoredBy(*reading.address), message);
    }
    case Role::emptyFooter:
      return put(stored_, nameOf(*reading.removes), std::nullopt, message);
    case Role::alone:
      return put(stored_, nameOrBytes(*reading.address), "", message);
    default:
      return;
  }
}

void RepeatedPlaces::write(const InputMessage& message, const Record& trigger) {
  for (const Change& change : trigger.changes) {  // it may remove what no file dump is for
    if (change.place.kind != Place::Kind::content || change.what != What::removed) continue;
    const std::string place = nameOf(canonical(change.place.id));
    if (stored_.contains(place) && !held_.contains(place)) put(stored_, place, std::nullopt, message);
  }
  for (auto& [place, name] : std::exchange(held_, {})) put(stored_, place, std::move(name), message);
}

void RepeatedPlaces::put(Names& names, const std::string& place, Name name, const InputMessage& message) {
  constexpr const char* kKind = "more than once: the last one counts";
  const auto [at, isNew] = names.try_emplace(place, name);
  if (isNew) return;
  const Name before = std::exchange(at->second, std::move(name));
  if (!before && !at->second) return;
  const std::string lost = !before           ? "its removal"
                           : before->empty() ? "what came before"
                                             : fmt::format("\"{}\"", showName(*before));
  complaints_.note(kKind, fmt::format("{}: {}: {}, {} is left out", placeOf(message), place, kKind, lost));
}

std::string RepeatedPlaces::nameStoredBy(BulkAddress footer) {
  if (const std::optional<ContentId> content = contentNamedBy(footer))
    return editor_.library().contentName(canonical(*content)).value_or("");
  return Editor::nameOf(editor_.tools().live(*editBufferOf(footer.mid), footer.lo));
}

}  // namespace Editor
