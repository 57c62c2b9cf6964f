#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "models/ContentAddress.h"

namespace Editor {

// All that can change in a library, place by place: that is what the history records, and what an undo puts back.

struct Place {
  enum class Kind : std::uint8_t { content = 1, favourite = 2, live = 3, setting = 4 };  // as in the file

  Kind kind = Kind::content;
  ContentId id;     // of contents and favourites, canonical
  std::string key;  // of live models and settings

  friend bool operator==(const Place&, const Place&) = default;
  friend bool operator<(const Place& a, const Place& b) {
    return std::tie(a.kind, a.id, a.key) < std::tie(b.kind, b.id, b.key);
  }
};

inline Place contentAt(ContentId id) { return {Place::Kind::content, canonical(id), {}}; }
inline Place favouriteAt(ContentId id) { return {Place::Kind::favourite, canonical(id), {}}; }
inline Place liveAt(std::string key) { return {Place::Kind::live, {}, std::move(key)}; }
inline Place settingAt(std::string name) { return {Place::Kind::setting, {}, std::move(name)}; }

// What a place holds.
struct Held {
  std::string name;  // of a content; a flag and the value of a setting as a decimal number
  std::vector<std::uint8_t> bytes;
  std::int64_t checksum = 0;  // as it was kept with them

  friend bool operator==(const Held&, const Held&) = default;
};

// The checksum that is kept with every name and its bytes: the 64-bit FNV-1a hash of the name's length as eight bytes,
// the most significant first, the name and the bytes. SQLite itself has none.
std::int64_t checksumOf(std::span<const std::uint8_t> name, std::span<const std::uint8_t> bytes);
Held heldOf(const std::string& name, std::span<const std::uint8_t> bytes);
Held heldOf(std::int64_t number);
bool isWhole(const Held& held);
std::optional<std::int64_t> numberIn(const std::string& text);  // nothing: there is none, or more than one
// Of the place of one; nothing: no flag has that number, or no such setting.
std::optional<std::uint8_t> flagIn(const Held& held);
std::optional<std::int64_t> settingIn(const Place& place, const Held& held);
// Whether it can be put back there.
bool isSound(const Place& place, const Held& held);

// What became of a place.
enum class What : std::uint8_t { stored = 1, removed = 2, renamed = 3, flagged = 4, set = 5 };  // as in the file
// `isRenaming`: by a run that changes nothing but names. Without it a content that comes over one which differs in its
// name alone is stored, but for one that stays the same to the byte.
What whatBecame(const Place& place, const std::optional<Held>& before, const std::optional<Held>& after,
                bool isRenaming);

// The name that a place bears with this in it: edit buffers have theirs inside of their models.
std::string nameIn(const Place& place, const Held& held);

// What a place holds, as far as it takes to tell whether that has become something else: its name as nameIn() says, and
// a hash of its bytes.
struct Standing {
  std::string name;
  std::uint64_t bytes = 0;

  friend bool operator==(const Standing&, const Standing&) = default;
};
Standing standingOf(const Place& place, const Held& held);
// By a run that does not only rename.
What whatBecame(const Place& place, const std::optional<Standing>& before, const std::optional<Standing>& after);

}  // namespace Editor
