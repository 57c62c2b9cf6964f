#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>

#include "contents/Places.h"

namespace Editor {

inline constexpr std::int32_t kLibraryVersion = 2;
inline constexpr std::uint32_t kLibraryApplicationId = 0x4244414C;  // "BDAL", in the header of every library

// Whether the file itself is at fault.
bool isDamage(const SQLite::Exception& error);

// SQLite counts in int. What int cannot count is beyond SQLite's own limit of texts and blobs too, and ends like that.
void requireCountable(std::size_t size);

// The database of a library, with the statements on its tables. Everything here throws SQLite::Exception.
struct Database {
  static constexpr std::chrono::milliseconds kForEver{std::numeric_limits<int>::max()};  // as long as SQLite can wait

  Database(const std::string& name, int flags, std::chrono::milliseconds busyTimeout, const char* vfs);
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  // An empty one without a file, gone with its last owner.
  static std::unique_ptr<Database> inMemory();
  // The same of this one as its transaction sees it, page by page: what is damaged here is damaged there.
  std::unique_ptr<Database> copyInMemory();
  // All of it as the bytes of a file, as its transaction sees it; and what such bytes hold, whatever that is.
  std::vector<std::uint8_t> image();
  static std::unique_ptr<Database> ofImage(std::span<const std::uint8_t> image);

  std::int64_t integer(const char* sql) { return connection.execAndGet(sql).getInt64(); }
  // That is all that is left of a library which was begun and cut off, too.
  bool isUnfinished() {
    return integer("PRAGMA user_version") == 0 && integer("SELECT count(*) FROM sqlite_master") == 0;
  }
  // Of the library, as the transaction sees it.
  std::int64_t version();
  void makeTables();
  // Once the tables are there. A missing one is damage. One of version 1 is read through views that are like the
  // tables of version 2, and belong to this connection alone.
  void prepareStatements();
  // To be called where another program may have brought the library to version 2 since: the views then go.
  void followVersion();
  // From version 1 to 2: all tables anew under other names, so that a program of version 1 that has the library open
  // fails instead of writing past checksums and history. In a transaction, whose end without a commit takes it back.
  void migrate();
  // What a place holds, by the index of its table; and has it hold that, or nothing.
  std::optional<Held> held(const Place& place);
  void write(const Place& place, const std::optional<Held>& held);
  // By its own integrity check: each table with what is wrong with it, or nothing.
  std::vector<std::pair<std::string, std::string>> checkTables();
  // Whether the index of the contents or live models is wrong, or that of the changes in the history, which are many.
  // Found out once each, of a library of version 1 as it was opened.
  bool hasWrongIndex();
  bool hasWrongHistory();
  // Whether any table has a row.
  bool holdsAnything();
  // Into tables that are empty.
  void copyRowsTo(Database& other);
  // An SQLite error may have ended the transaction behind our back; what came next would then be written alone.
  bool transactionLost() const { return sqlite3_get_autocommit(connection.getHandle()) != 0; }

  // Whether the file has been removed or renamed since it was opened: what is written then, nobody will find.
  bool isFileGone() const {
    int hasMoved = 0;
    return sqlite3_file_control(connection.getHandle(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved) == SQLITE_OK &&
           hasMoved != 0;
  }

  // Whether that is why the last operation failed.
  bool isDiskFull() const;

  SQLite::Database connection;
  // Every message is a transaction. These need nothing of the file: they can be prepared before it is looked at.
  SQLite::Statement begin{connection, "BEGIN"};
  SQLite::Statement beginWriting{connection, "BEGIN IMMEDIATE"};
  SQLite::Statement commit{connection, "COMMIT"};
  SQLite::Statement userVersion{connection, "PRAGMA user_version"};

  struct Reading {
    explicit Reading(const SQLite::Database& database) : database_(database) {}
    const SQLite::Database& database_;
    SQLite::Statement content{database_, "SELECT name, bytes, checksum FROM content WHERE type = ? AND number = ?"};
    SQLite::Statement contentName{database_, "SELECT name FROM content WHERE type = ? AND number = ?"};
    SQLite::Statement contents{database_, "SELECT type, number FROM content ORDER BY type, number"};
    SQLite::Statement voices{database_, "SELECT number FROM content WHERE type = ?"};
    SQLite::Statement favourite{database_, "SELECT flag FROM favourite WHERE type = ? AND number = ?"};
    SQLite::Statement favourites{database_, "SELECT type, number, flag FROM favourite ORDER BY type, number"};
    SQLite::Statement live{database_, "SELECT bytes, checksum FROM live_model WHERE key = ?"};
    SQLite::Statement liveKeys{database_, "SELECT key FROM live_model ORDER BY key"};
    SQLite::Statement setting{database_, "SELECT value FROM setting WHERE name = ?"};
    SQLite::Statement dataVersion{database_, "PRAGMA data_version"};
    SQLite::Statement entries{database_,
                              "SELECT number, time, undoes, verb, sources, bytes FROM entry ORDER BY number DESC"};
    SQLite::Statement changes{database_,
                              "SELECT kind, type, number, key, what, name_before, name_after, checksum_after, "
                              "held_checksum <> checksum(held_name, held_bytes) "
                              "FROM change WHERE entry = ? ORDER BY kind, type, number, key"};
    SQLite::Statement changesWithBytes{database_,
                                       "SELECT kind, type, number, key, what, name_before, name_after, checksum_after, "
                                       "held_checksum <> checksum(held_name, held_bytes), held_name, held_checksum, "
                                       "held_bytes FROM change WHERE entry = ? ORDER BY kind, type, number, key"};
    SQLite::Statement changeAt{database_,
                               "SELECT held_name, held_checksum, held_bytes FROM change "
                               "WHERE entry = ? AND kind = ? AND type = ? AND number = ? AND key = ?"};
    SQLite::Statement missingEntries{
        database_, "SELECT DISTINCT entry FROM change WHERE entry NOT IN (SELECT number FROM entry) ORDER BY entry"};
    SQLite::Statement sizeOfHistory{database_, "SELECT count(*), coalesce(sum(bytes), 0) FROM entry"};
  };

  struct Writing {
    explicit Writing(const SQLite::Database& database) : database_(database) {}
    const SQLite::Database& database_;
    SQLite::Statement store{database_,
                            "INSERT INTO content(type, number, name, bytes, checksum) VALUES(?, ?, ?, ?, ?) "
                            "ON CONFLICT DO UPDATE SET name = excluded.name, bytes = excluded.bytes, "
                            "checksum = excluded.checksum"};
    SQLite::Statement remove{database_, "DELETE FROM content WHERE type = ? AND number = ?"};
    SQLite::Statement flag{database_,
                           "INSERT INTO favourite(type, number, flag) VALUES(?, ?, ?) "
                           "ON CONFLICT DO UPDATE SET flag = excluded.flag"};
    SQLite::Statement unflag{database_, "DELETE FROM favourite WHERE type = ? AND number = ?"};
    SQLite::Statement storeLive{database_,
                                "INSERT INTO live_model(key, bytes, checksum) VALUES(?, ?, ?) "
                                "ON CONFLICT DO UPDATE SET bytes = excluded.bytes, checksum = excluded.checksum"};
    SQLite::Statement removeLive{database_, "DELETE FROM live_model WHERE key = ?"};
    SQLite::Statement set{database_,
                          "INSERT INTO setting(name, value) VALUES(?, ?) "
                          "ON CONFLICT DO UPDATE SET value = excluded.value"};
    SQLite::Statement unset{database_, "DELETE FROM setting WHERE name = ?"};
    // The newest entry is never removed: its number and those before are never given again.
    SQLite::Statement addEntry{database_,
                               "INSERT INTO entry(number, time, undoes, bytes, verb, sources) "
                               "SELECT coalesce(max(number), 0) + 1, ?, ?, 0, ?, ? FROM entry WHERE number < ?"};
    SQLite::Statement growEntry{database_, "UPDATE entry SET bytes = bytes + ? WHERE number = ?"};
    SQLite::Statement isOpenEntry{database_,
                                  "SELECT EXISTS(SELECT 1 FROM entry WHERE number = ?1) AND "
                                  "NOT EXISTS(SELECT 1 FROM entry WHERE number > ?1 AND undoes = ?1)"};
    SQLite::Statement isEmptyEntry{database_, "SELECT NOT EXISTS(SELECT 1 FROM change WHERE entry = ?)"};
    SQLite::Statement removeEntry{database_, "DELETE FROM entry WHERE number = ?"};
    SQLite::Statement addChange{
        database_,
        "INSERT INTO change(entry, kind, type, number, key, what, name_before, name_after, checksum_after, held_name, "
        "held_checksum, held_bytes) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?) "
        "ON CONFLICT DO UPDATE SET what = excluded.what, name_after = excluded.name_after, "
        "checksum_after = excluded.checksum_after"};
    SQLite::Statement removeChange{
        database_, "DELETE FROM change WHERE entry = ? AND kind = ? AND type = ? AND number = ? AND key = ?"};
    SQLite::Statement removeChanges{database_, "DELETE FROM change WHERE entry = ?"};
  };

  std::optional<Reading> reading;
  std::optional<Writing> writing;  // only to tables of this version

 private:
  bool hasViews_ = false;  // or had
  std::optional<bool> hasWrongIndex_;
  std::optional<bool> hasWrongHistory_;
};

// One execution of a prepared statement: binds from left to right, reads columns, leaves it ready for the next.
class Query {
 public:
  template <typename... Values>
  explicit Query(SQLite::Statement& statement, const Values&... values) : statement_(statement) {
    (bind(values), ...);
  }
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;
  ~Query() { statement_.tryReset(); }

  bool next() { return statement_.executeStep(); }
  // Runs a statement that changes something; whether it did.
  bool changes() { return statement_.exec() > 0; }

  bool isNull(int column) const { return statement_.getColumn(column).isNull(); }
  std::int64_t integer(int column) const { return statement_.getColumn(column).getInt64(); }
  // An integer that only somebody else can have made too large for what it stands for.
  template <typename Number>
  Number number(int column) const {
    const std::int64_t value = integer(column);
    if (!std::in_range<Number>(value)) throw SQLite::Exception("a number in it is out of range", SQLITE_CORRUPT);
    return Number(value);
  }
  template <typename Blob>
  Blob blob(int column) const {
    const SQLite::Column value = statement_.getColumn(column);
    const auto* const first = static_cast<const typename Blob::value_type*>(value.getBlob());
    return first == nullptr ? Blob() : Blob(first, first + value.getBytes());
  }
  bool isId() const { return std::in_range<std::uint32_t>(integer(0)) && std::in_range<std::uint32_t>(integer(1)); }
  ContentId id() const { return {number<std::uint32_t>(0), number<std::uint32_t>(1)}; }

 private:
  // The only way of an id into the file: no content is ever kept there twice.
  void bind(ContentId id) {
    id = canonical(id);
    bind(id.type);
    bind(id.number);
  }
  void bind(const Place& place) {
    bind(std::int64_t(place.kind));
    bind(place.id);
    bind(place.key);
  }
  void bind(std::int64_t value) { statement_.bind(++bound_, value); }
  void bind(std::span<const std::uint8_t> bytes);
  void bind(const std::string& text);
  template <typename Value>
  void bind(const std::optional<Value>& value) {
    if (value)
      bind(*value);
    else
      statement_.bind(++bound_);
  }

  SQLite::Statement& statement_;
  int bound_ = 0;
};

}  // namespace Editor
