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

#include <SQLiteCpp/SQLiteCpp.h>

#include "models/ContentAddress.h"

namespace Editor {

inline constexpr std::int32_t kLibraryVersion = 1;

// The database of a library, with the statements on its tables. Everything here throws SQLite::Exception.
struct Database {
  static constexpr std::chrono::milliseconds kForEver{std::numeric_limits<int>::max()};  // as long as SQLite can wait

  Database(const std::string& name, int flags, std::chrono::milliseconds busyTimeout, const char* vfs);
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  // An empty one without a file, gone with its last owner.
  static std::unique_ptr<Database> inMemory();

  std::int64_t integer(const char* sql) { return connection.execAndGet(sql).getInt64(); }
  // That is all that is left of a library which was begun and cut off, too.
  bool isUnfinished() {
    return integer("PRAGMA user_version") == 0 && integer("SELECT count(*) FROM sqlite_master") == 0;
  }
  void makeTables();
  // Once the tables are there. A missing one is damage.
  void prepareStatements();
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

  SQLite::Database connection;
  // Every message is a transaction. These need nothing of the file: they can be prepared before it is looked at.
  SQLite::Statement begin{connection, "BEGIN"};
  SQLite::Statement beginWriting{connection, "BEGIN IMMEDIATE"};
  SQLite::Statement commit{connection, "COMMIT"};

  struct Statements {
    explicit Statements(const SQLite::Database& database) : database_(database) {}
    const SQLite::Database& database_;
    SQLite::Statement content{database_, "SELECT name, bytes FROM contents WHERE type = ? AND number = ?"};
    SQLite::Statement contentName{database_, "SELECT name FROM contents WHERE type = ? AND number = ?"};
    SQLite::Statement contents{database_, "SELECT type, number FROM contents ORDER BY type, number"};
    SQLite::Statement store{database_,
                            "INSERT INTO contents(type, number, name, bytes) VALUES(?, ?, ?, ?) "
                            "ON CONFLICT DO UPDATE SET name = excluded.name, bytes = excluded.bytes"};
    SQLite::Statement storeBytes{database_,
                                 "INSERT INTO contents(type, number, name, bytes) VALUES(?, ?, x'', ?) "
                                 "ON CONFLICT DO UPDATE SET bytes = excluded.bytes"};
    SQLite::Statement rename{database_, "UPDATE contents SET name = ? WHERE type = ? AND number = ?"};
    SQLite::Statement remove{database_, "DELETE FROM contents WHERE type = ? AND number = ?"};
    SQLite::Statement voices{database_, "SELECT number FROM contents WHERE type = ?"};
    SQLite::Statement favourite{database_, "SELECT flag FROM favourites WHERE type = ? AND number = ?"};
    SQLite::Statement favourites{database_, "SELECT type, number, flag FROM favourites ORDER BY type, number"};
    SQLite::Statement flag{database_,
                           "INSERT INTO favourites(type, number, flag) VALUES(?, ?, ?) "
                           "ON CONFLICT DO UPDATE SET flag = excluded.flag"};
    SQLite::Statement unflag{database_, "DELETE FROM favourites WHERE type = ? AND number = ?"};
    SQLite::Statement live{database_, "SELECT bytes FROM live WHERE key = ?"};
    SQLite::Statement liveKeys{database_, "SELECT key FROM live ORDER BY key"};
    SQLite::Statement storeLive{database_,
                                "INSERT INTO live(key, bytes) VALUES(?, ?) "
                                "ON CONFLICT DO UPDATE SET bytes = excluded.bytes"};
    SQLite::Statement dataVersion{database_, "PRAGMA data_version"};
    SQLite::Statement setting{database_, "SELECT value FROM settings WHERE name = ?"};
    SQLite::Statement set{database_,
                          "INSERT INTO settings(name, value) VALUES(?, ?) "
                          "ON CONFLICT DO UPDATE SET value = excluded.value"};
  };
  std::optional<Statements> statements;
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
  ContentId id() const { return {number<std::uint32_t>(0), number<std::uint32_t>(1)}; }

 private:
  // The only way of an id into the file: no content is ever kept there twice.
  void bind(ContentId id) {
    id = canonical(id);
    bind(id.type);
    bind(id.number);
  }
  void bind(std::int64_t value) { statement_.bind(++bound_, value); }
  void bind(std::span<const std::uint8_t> bytes);
  void bind(const std::string& text);

  SQLite::Statement& statement_;
  int bound_ = 0;
};

}  // namespace Editor
