#include "contents/Places.h"

#include <array>
#include <charconv>
#include <utility>

#include "contents/ContentFormat.h"
#include "contents/Fingerprint.h"
#include "contents/Settings.h"
#include "models/LiveKeys.h"

namespace Editor {

namespace {

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::vector<ModelSet> shapesOf(const Place& place) {
  if (place.kind == Place::Kind::live) return shapesOfLiveKey(place.key);
  ModelSet models = emptySetFor(place.id);
  if (haveSameShape(models, ModelSet())) return {};
  return {std::move(models)};
}

std::optional<ModelSet> decoded(const Place& place, std::span<const std::uint8_t> bytes) {
  for (ModelSet& shape : shapesOf(place))
    if (!decodeContent(bytes, shape)) return std::move(shape);
  return std::nullopt;
}

// Of what differs. Neither has a name outside of its bytes but a content.
template <typename Kept>
What becameOf(const Place& place, const std::optional<Kept>& before, const std::optional<Kept>& after) {
  if (place.kind == Place::Kind::favourite) return What::flagged;
  if (place.kind == Place::Kind::setting) return What::set;
  if (!after) return What::removed;
  return before && before->name != after->name && before->bytes == after->bytes ? What::renamed : What::stored;
}

bool areEqualButForNames(const Place& place, const Held& before, const Held& after) {
  if (before.bytes.size() != after.bytes.size()) return false;
  std::optional<ModelSet> first = decoded(place, before.bytes);
  std::optional<ModelSet> second = decoded(place, after.bytes);
  if (!first || !second) return false;
  clearNames(*first);
  clearNames(*second);
  return *first == *second;
}

}  // namespace

std::int64_t checksumOf(std::span<const std::uint8_t> name, std::span<const std::uint8_t> bytes) {
  std::array<std::uint8_t, 8> length{};
  std::uint64_t rest = name.size();
  for (std::size_t i = length.size(); i-- > 0; rest >>= 8) length[i] = std::uint8_t(rest);
  return std::int64_t(fnv1a(bytes, fnv1a(name, fnv1a(length))));
}

std::optional<std::int64_t> numberIn(const std::string& text) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

std::optional<std::uint8_t> flagIn(const Held& held) {
  const std::optional<std::int64_t> flag = numberIn(held.name);
  return flag && std::in_range<std::uint8_t>(*flag) ? std::optional(std::uint8_t(*flag)) : std::nullopt;
}

std::optional<std::int64_t> settingIn(const Place& place, const Held& held) {
  const std::optional<std::int64_t> number = numberIn(held.name);
  const Setting* const setting = findRowSetting(place.key);
  return number && (setting == nullptr || setting->has(*number)) ? number : std::nullopt;
}

bool isSound(const Place& place, const Held& held) {
  if (place.kind == Place::Kind::favourite && !flagIn(held)) return false;
  if (place.kind == Place::Kind::setting && !settingIn(place, held)) return false;
  return isWhole(held);
}

Held heldOf(const std::string& name, std::span<const std::uint8_t> bytes) {
  return {name, {bytes.begin(), bytes.end()}, checksumOf(bytesOf(name), bytes)};
}

Held heldOf(std::int64_t number) { return heldOf(std::to_string(number), {}); }

bool isWhole(const Held& held) { return checksumOf(bytesOf(held.name), held.bytes) == held.checksum; }

What whatBecame(const Place& place, const std::optional<Held>& before, const std::optional<Held>& after,
                bool isRenaming) {
  const What became = becameOf(place, before, after);
  if (became != What::stored || !isRenaming) return became;
  // An edit buffer that was never stored is not empty, but as new.
  const bool isRenamed =
      before ? nameIn(place, *before) != nameIn(place, *after) && areEqualButForNames(place, *before, *after)
             : place.kind == Place::Kind::live && !nameIn(place, *after).empty();
  return isRenamed ? What::renamed : What::stored;
}

What whatBecame(const Place& place, const std::optional<Standing>& before, const std::optional<Standing>& after) {
  return becameOf(place, before, after);
}

Standing standingOf(const Place& place, const Held& held) { return {nameIn(place, held), fnv1a(held.bytes)}; }

std::string nameIn(const Place& place, const Held& held) {
  if (place.kind != Place::Kind::live) return held.name;
  const std::optional<ModelSet> models = decoded(place, held.bytes);
  return models ? nameOf(*models) : std::string();
}

}  // namespace Editor
