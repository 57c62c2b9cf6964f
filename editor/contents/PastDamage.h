#pragma once

#include <functional>
#include <optional>

#include "contents/Database.h"

namespace Editor {

// What can still be read of a table when a page of it or of its index cannot, or the index is wrong: each row that is
// reached without the index, from the front up to the damage and from the back down to it.

enum class Listed : std::uint8_t { contents, favourites, liveKeys, entries, changes, changesWithBytes };
// Rows as the statements of Database::Reading give them, in no order, and maybe twice; changes are those of `entry`.
void visitPastDamage(Database& database, Listed rows, const std::function<void(const Query&)>& visit,
                     std::optional<std::int64_t> entry = {});

// What a place holds. Nothing: it is not there. Throws SQLite::Exception when that cannot be known.
std::optional<Held> heldPastDamage(Database& database, const Place& place);

}  // namespace Editor
