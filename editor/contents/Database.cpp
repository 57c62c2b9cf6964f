#include "contents/Database.h"

#include <algorithm>

namespace Editor {

namespace {

// Names and bytes are blobs: text would be taken for UTF-8 and end at its first zero.
constexpr const char* kTables = R"sql(
  CREATE TABLE contents(type INTEGER NOT NULL, number INTEGER NOT NULL, name BLOB NOT NULL, bytes BLOB NOT NULL,
                        PRIMARY KEY(type, number)) STRICT;
  CREATE TABLE favourites(type INTEGER NOT NULL, number INTEGER NOT NULL, flag INTEGER NOT NULL,
                          PRIMARY KEY(type, number)) STRICT, WITHOUT ROWID;
  CREATE TABLE live(key TEXT NOT NULL PRIMARY KEY, bytes BLOB NOT NULL) STRICT;
  CREATE TABLE settings(name TEXT NOT NULL PRIMARY KEY, value INTEGER NOT NULL) STRICT, WITHOUT ROWID;
)sql";

struct Table {
  const char* any;  // whether it has a row
  const char* all;
  const char* insert;
};

constexpr Table kRows[] = {
    {"SELECT EXISTS(SELECT 1 FROM contents)", "SELECT type, number, name, bytes FROM contents",
     "INSERT INTO contents(type, number, name, bytes) VALUES(?, ?, ?, ?)"},
    {"SELECT EXISTS(SELECT 1 FROM favourites)", "SELECT type, number, flag FROM favourites",
     "INSERT INTO favourites(type, number, flag) VALUES(?, ?, ?)"},
    {"SELECT EXISTS(SELECT 1 FROM live)", "SELECT key, bytes FROM live", "INSERT INTO live(key, bytes) VALUES(?, ?)"},
    {"SELECT EXISTS(SELECT 1 FROM settings)", "SELECT name, value FROM settings",
     "INSERT INTO settings(name, value) VALUES(?, ?)"},
};

// SQLite counts in int. What int cannot count is beyond SQLite's own limit of texts and blobs too, and ends like that.
void requireCountable(std::size_t size) {
  if (!std::in_range<int>(size)) throw SQLite::Exception("string or blob too big", SQLITE_TOOBIG);
}

}  // namespace

Database::Database(const std::string& name, int flags, std::chrono::milliseconds busyTimeout, const char* vfs)
    : connection(name.c_str(), flags, int(std::clamp(busyTimeout, std::chrono::milliseconds::zero(), kForEver).count()),
                 vfs) {}

std::unique_ptr<Database> Database::inMemory() {
  constexpr const char* kNoFile = ":memory:";
  auto database = std::make_unique<Database>(kNoFile, SQLite::OPEN_READWRITE, kForEver, nullptr);
  database->makeTables();
  database->prepareStatements();
  return database;
}

void Database::makeTables() {
  connection.exec(kTables);
  connection.exec("PRAGMA user_version = " + std::to_string(kLibraryVersion));
}

void Database::prepareStatements() {
  try {
    statements.emplace(connection);
  } catch (const SQLite::Exception& error) {
    if (error.getErrorCode() != SQLITE_ERROR) throw;
    throw SQLite::Exception(error.what(), SQLITE_CORRUPT);  // a table or a column is missing
  }
}

bool Database::holdsAnything() {
  return std::any_of(std::begin(kRows), std::end(kRows),
                     [this](const Table& table) { return integer(table.any) != 0; });
}

void Database::copyRowsTo(Database& other) {
  for (const Table& table : kRows) {
    SQLite::Statement row(connection, table.all);
    SQLite::Statement insert(other.connection, table.insert);
    while (row.executeStep()) {
      for (int column = 0; column < row.getColumnCount(); ++column) {
        const SQLite::Column value = row.getColumn(column);
        const int place = column + 1;
        if (value.isInteger())
          insert.bind(place, value.getInt64());
        else if (value.isBlob())
          insert.bind(place, value.size() == 0 ? static_cast<const void*>("") : value.getBlob(), value.size());
        else
          insert.bind(place, value.getString());
      }
      insert.exec();
      insert.reset();
    }
  }
}

// An empty span has no address, and SQLite would make a null of that.
void Query::bind(std::span<const std::uint8_t> bytes) {
  requireCountable(bytes.size());
  statement_.bind(++bound_, bytes.empty() ? static_cast<const void*>("") : bytes.data(), int(bytes.size()));
}

void Query::bind(const std::string& text) {
  requireCountable(text.size());
  statement_.bind(++bound_, text);
}

}  // namespace Editor
