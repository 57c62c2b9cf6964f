#include "contents/PastDamage.h"

#include <array>

namespace Editor {

namespace {

using Ways = std::array<const char*, 2>;  // from the front, from the back

constexpr Ways kContents{"SELECT type, number FROM content NOT INDEXED ORDER BY rowid",
                         "SELECT type, number FROM content NOT INDEXED ORDER BY rowid DESC"};
constexpr Ways kFavourites{"SELECT type, number, flag FROM favourite ORDER BY type, number",
                           "SELECT type, number, flag FROM favourite ORDER BY type DESC, number DESC"};
constexpr Ways kLiveKeys{"SELECT key FROM live_model NOT INDEXED ORDER BY rowid",
                         "SELECT key FROM live_model NOT INDEXED ORDER BY rowid DESC"};
constexpr Ways kEntries{"SELECT number, time, undoes, verb, sources, bytes FROM entry ORDER BY number",
                        "SELECT number, time, undoes, verb, sources, bytes FROM entry ORDER BY number DESC"};
constexpr Ways kChanges{
    "SELECT kind, type, number, key, what, name_before, name_after, checksum_after, "
    "held_checksum <> checksum(held_name, held_bytes) FROM change NOT INDEXED WHERE entry = ? ORDER BY rowid",
    "SELECT kind, type, number, key, what, name_before, name_after, checksum_after, "
    "held_checksum <> checksum(held_name, held_bytes) FROM change NOT INDEXED WHERE entry = ? ORDER BY rowid DESC"};
constexpr Ways kChangesWithBytes{
    "SELECT kind, type, number, key, what, name_before, name_after, checksum_after, "
    "held_checksum <> checksum(held_name, held_bytes), held_name, held_checksum, held_bytes FROM change NOT INDEXED "
    "WHERE entry = ? ORDER BY rowid",
    "SELECT kind, type, number, key, what, name_before, name_after, checksum_after, "
    "held_checksum <> checksum(held_name, held_bytes), held_name, held_checksum, held_bytes FROM change NOT INDEXED "
    "WHERE entry = ? ORDER BY rowid DESC"};
constexpr Ways kContent{
    "SELECT name, bytes, checksum FROM content NOT INDEXED WHERE type = ? AND number = ? ORDER BY rowid",
    "SELECT name, bytes, checksum FROM content NOT INDEXED WHERE type = ? AND number = ? ORDER BY rowid DESC"};
constexpr Ways kLive{"SELECT x'', bytes, checksum FROM live_model NOT INDEXED WHERE key = ? ORDER BY rowid",
                     "SELECT x'', bytes, checksum FROM live_model NOT INDEXED WHERE key = ? ORDER BY rowid DESC"};

const Ways& waysOf(Listed rows) {
  switch (rows) {
    case Listed::contents:
      return kContents;
    case Listed::favourites:
      return kFavourites;
    case Listed::liveKeys:
      return kLiveKeys;
    case Listed::entries:
      return kEntries;
    case Listed::changes:
      return kChanges;
    case Listed::changesWithBytes:
      break;
  }
  return kChangesWithBytes;
}

template <typename Key>
std::optional<Held> heldPastDamage(Database& database, const Ways& ways, const Key& key) {
  for (const char* const sql : ways) {
    const bool isLast = sql == ways.back();
    try {
      SQLite::Statement statement(database.connection, sql);
      Query query(statement, key);
      if (!query.next()) return std::nullopt;
      return Held{query.blob<std::string>(0), query.blob<std::vector<std::uint8_t>>(1), query.integer(2)};
    } catch (const SQLite::Exception& error) {
      if (isLast || !isDamage(error)) throw;
    }
  }
  return std::nullopt;
}

}  // namespace

void visitPastDamage(Database& database, Listed rows, const std::function<void(const Query&)>& visit,
                     std::optional<std::int64_t> entry) {
  for (const char* const sql : waysOf(rows)) {
    try {
      SQLite::Statement statement(database.connection, sql);
      if (entry) statement.bind(1, *entry);
      for (Query query(statement); query.next();) visit(query);
    } catch (const SQLite::Exception& error) {
      if (!isDamage(error)) throw;
    }
  }
}

std::optional<Held> heldPastDamage(Database& database, const Place& place) {
  switch (place.kind) {
    case Place::Kind::content:
      return heldPastDamage(database, kContent, place.id);
    case Place::Kind::live:
      return heldPastDamage(database, kLive, place.key);
    case Place::Kind::favourite:
    case Place::Kind::setting:
      break;
  }
  throw SQLite::Exception("its table cannot be read", SQLITE_CORRUPT);  // that has no other index than itself
}

}  // namespace Editor
