#include "contents/Database.h"

#include <algorithm>
#include <cerrno>

#include <SQLiteCpp/Backup.h>

#include "contents/Indexes.h"

namespace Editor {

namespace {

constexpr const char* kNoFile = ":memory:";

// Names and bytes are blobs: text would be taken for UTF-8 and end at its first zero. What an entry needs of a place to
// put it back is what it held; of what it left there a checksum is enough, to find out whether it is still there.
constexpr const char* kTables = R"sql(
  CREATE TABLE content(type INTEGER NOT NULL, number INTEGER NOT NULL, name BLOB NOT NULL, bytes BLOB NOT NULL,
                       checksum INTEGER NOT NULL, PRIMARY KEY(type, number)) STRICT;
  CREATE TABLE favourite(type INTEGER NOT NULL, number INTEGER NOT NULL, flag INTEGER NOT NULL,
                         PRIMARY KEY(type, number)) STRICT, WITHOUT ROWID;
  CREATE TABLE live_model(key TEXT NOT NULL PRIMARY KEY, bytes BLOB NOT NULL, checksum INTEGER NOT NULL) STRICT;
  CREATE TABLE setting(name TEXT NOT NULL PRIMARY KEY, value INTEGER NOT NULL) STRICT, WITHOUT ROWID;
  CREATE TABLE entry(number INTEGER NOT NULL PRIMARY KEY, time INTEGER NOT NULL, undoes INTEGER,
                     bytes INTEGER NOT NULL, verb TEXT NOT NULL, sources BLOB NOT NULL) STRICT;
  CREATE TABLE change(entry INTEGER NOT NULL, kind INTEGER NOT NULL, type INTEGER NOT NULL, number INTEGER NOT NULL,
                      key TEXT NOT NULL, what INTEGER NOT NULL, name_before BLOB, name_after BLOB,
                      checksum_after INTEGER, held_name BLOB, held_checksum INTEGER, held_bytes BLOB,
                      PRIMARY KEY(entry, kind, type, number, key)) STRICT;
)sql";

// The tables of version 1 as if they were those of version 2. `way`: how SQLite finds the rows of those with an index.
std::string viewsOfOldTables(const std::string& way) {
  return R"sql(
  PRAGMA temp_store = MEMORY;
  CREATE TEMP VIEW content AS
    SELECT type, number, name, bytes, checksum(name, bytes) AS checksum FROM main.contents)sql" +
         way + R"sql(;
  CREATE TEMP VIEW live_model AS SELECT key, bytes, checksum(x'', bytes) AS checksum FROM main.live)sql" +
         way + R"sql(;
  CREATE TEMP VIEW favourite AS SELECT type, number, flag FROM main.favourites;
  CREATE TEMP VIEW setting AS SELECT name, value FROM main.settings;
  CREATE TEMP VIEW entry AS SELECT 0 AS number, 0 AS time, 0 AS undoes, 0 AS bytes, '' AS verb, x'' AS sources WHERE 0;
  CREATE TEMP VIEW change AS SELECT 0 AS entry, 0 AS kind, 0 AS type, 0 AS number, '' AS key, 0 AS what,
    x'' AS name_before, x'' AS name_after, 0 AS checksum_after, x'' AS held_name, 0 AS held_checksum,
    x'' AS held_bytes WHERE 0;
)sql";
}

constexpr const char* kDropViews = R"sql(
  DROP VIEW temp.content; DROP VIEW temp.favourite; DROP VIEW temp.live_model; DROP VIEW temp.setting;
  DROP VIEW temp.entry; DROP VIEW temp.change;
)sql";

constexpr const char* kMoveRows = R"sql(
  INSERT INTO content SELECT type, number, name, bytes, checksum(name, bytes) FROM contents;
  INSERT INTO favourite SELECT type, number, flag FROM favourites;
  INSERT INTO live_model SELECT key, bytes, checksum(x'', bytes) FROM live;
  INSERT INTO setting SELECT name, value FROM settings;
  DROP TABLE contents; DROP TABLE favourites; DROP TABLE live; DROP TABLE settings;
)sql";

struct Table {
  const char* any;  // whether it has a row
  const char* all;
  const char* insert;
};

constexpr Table kRows[] = {
    {"SELECT EXISTS(SELECT 1 FROM content)", "SELECT type, number, name, bytes, checksum FROM content",
     "INSERT INTO content(type, number, name, bytes, checksum) VALUES(?, ?, ?, ?, ?)"},
    {"SELECT EXISTS(SELECT 1 FROM favourite)", "SELECT type, number, flag FROM favourite",
     "INSERT INTO favourite(type, number, flag) VALUES(?, ?, ?)"},
    {"SELECT EXISTS(SELECT 1 FROM live_model)", "SELECT key, bytes, checksum FROM live_model",
     "INSERT INTO live_model(key, bytes, checksum) VALUES(?, ?, ?)"},
    {"SELECT EXISTS(SELECT 1 FROM setting)", "SELECT name, value FROM setting",
     "INSERT INTO setting(name, value) VALUES(?, ?)"},
    {"SELECT EXISTS(SELECT 1 FROM entry)", "SELECT number, time, undoes, bytes, verb, sources FROM entry",
     "INSERT INTO entry(number, time, undoes, bytes, verb, sources) VALUES(?, ?, ?, ?, ?, ?)"},
    {"SELECT EXISTS(SELECT 1 FROM change)",
     "SELECT entry, kind, type, number, key, what, name_before, name_after, checksum_after, held_name, held_checksum, "
     "held_bytes FROM change",
     "INSERT INTO change(entry, kind, type, number, key, what, name_before, name_after, checksum_after, held_name, "
     "held_checksum, held_bytes) VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"},
};

// checksumOf() for statements: of a name and bytes.
void checksum(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  const auto bytes = [](sqlite3_value* value) {
    const auto* const first = static_cast<const std::uint8_t*>(sqlite3_value_blob(value));
    return std::span(first, std::size_t(sqlite3_value_bytes(value)));
  };
  sqlite3_result_int64(context, checksumOf(bytes(values[0]), bytes(values[1])));
}

std::span<const std::uint8_t> blobOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

bool isDamage(const SQLite::Exception& error) { return (error.getErrorCode() & 0xFF) == SQLITE_CORRUPT; }

void requireCountable(std::size_t size) {
  if (!std::in_range<int>(size)) throw SQLite::Exception("string or blob too big", SQLITE_TOOBIG);
}

Database::Database(const std::string& name, int flags, std::chrono::milliseconds busyTimeout, const char* vfs)
    : connection(name.c_str(), flags, int(std::clamp(busyTimeout, std::chrono::milliseconds::zero(), kForEver).count()),
                 vfs) {
  connection.createFunction("checksum", 2, true, nullptr, checksum);
}

std::unique_ptr<Database> Database::inMemory() {
  auto database = std::make_unique<Database>(kNoFile, SQLite::OPEN_READWRITE, kForEver, nullptr);
  database->connection.exec("PRAGMA application_id = " + std::to_string(kLibraryApplicationId));
  database->makeTables();
  database->prepareStatements();
  return database;
}

std::vector<std::uint8_t> Database::image() {
  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
      sqlite3_serialize(connection.getHandle(), "main", &size, 0), sqlite3_free);
  if (bytes == nullptr) throw SQLite::Exception("out of memory", SQLITE_NOMEM);
  return {bytes.get(), bytes.get() + size};
}

// What is in memory has no write-ahead log, and SQLite opens none that says it has.
std::unique_ptr<Database> Database::ofImage(std::span<const std::uint8_t> image) {
  constexpr std::size_t kWriteVersion = 18;
  constexpr std::size_t kReadVersion = 19;
  constexpr unsigned char kNoLog = 1;
  auto* const bytes = static_cast<unsigned char*>(sqlite3_malloc64(std::max<std::size_t>(image.size(), 1)));
  if (bytes == nullptr) throw SQLite::Exception("out of memory", SQLITE_NOMEM);
  std::ranges::copy(image, bytes);
  for (const std::size_t version : {kWriteVersion, kReadVersion})
    if (version < image.size()) bytes[version] = kNoLog;
  auto database = std::make_unique<Database>(kNoFile, SQLite::OPEN_READWRITE, kForEver, nullptr);
  const auto size = sqlite3_int64(image.size());
  // SQLite frees the bytes, also where it fails.
  const int result =
      sqlite3_deserialize(database->connection.getHandle(), "main", bytes, size, size, SQLITE_DESERIALIZE_FREEONCLOSE);
  if (result != SQLITE_OK) throw SQLite::Exception("it cannot be read", result);
  return database;
}

std::unique_ptr<Database> Database::copyInMemory() {
  auto database = std::make_unique<Database>(kNoFile, SQLite::OPEN_READWRITE, kForEver, nullptr);
  SQLite::Backup(database->connection, connection).executeStep();
  // Not found out there: SQLite refuses to write in memory once it has met damage.
  database->hasWrongIndex_ = hasWrongIndex();
  database->hasWrongHistory_ = hasWrongHistory();
  database->prepareStatements();
  return database;
}

bool Database::isDiskFull() const {
  sqlite3* const handle = connection.getHandle();
  if (sqlite3_errcode(handle) == SQLITE_FULL) return true;
  const int error = sqlite3_system_errno(handle);
  return (sqlite3_errcode(handle) & 0xFF) == SQLITE_IOERR && (error == ENOSPC || error == EDQUOT || error == EFBIG);
}

std::int64_t Database::version() {
  Query query(userVersion);
  query.next();
  return query.integer(0);
}

void Database::makeTables() {
  connection.exec(kTables);
  connection.exec("PRAGMA user_version = " + std::to_string(kLibraryVersion));
}

void Database::prepareStatements() {
  try {
    hasViews_ = version() < kLibraryVersion;
    if (hasViews_) connection.exec(viewsOfOldTables(hasWrongIndex() ? " NOT INDEXED" : ""));
    reading.emplace(connection);
    if (!hasViews_) writing.emplace(connection);
  } catch (const SQLite::Exception& error) {
    if (error.getErrorCode() != SQLITE_ERROR) throw;
    throw SQLite::Exception(error.what(), SQLITE_CORRUPT);  // a table or a column is missing
  }
}

// What is prepared is prepared anew by SQLite when the tables are others, and when a transaction brings the views back.
void Database::followVersion() {
  if (!hasViews_ || version() < kLibraryVersion) return;
  if (integer("SELECT count(*) FROM temp.sqlite_master") != 0) connection.exec(kDropViews);
  if (!writing) writing.emplace(connection);
}

void Database::migrate() {
  connection.exec(kDropViews);
  makeTables();
  connection.exec(kMoveRows);
  if (!writing) writing.emplace(connection);
}

std::optional<Held> Database::held(const Place& place) {
  switch (place.kind) {
    case Place::Kind::content: {
      Query query(reading->content, place.id);
      if (!query.next()) return std::nullopt;
      return Held{query.blob<std::string>(0), query.blob<std::vector<std::uint8_t>>(1), query.integer(2)};
    }
    case Place::Kind::favourite: {
      Query query(reading->favourite, place.id);
      return query.next() ? std::optional(heldOf(query.integer(0))) : std::nullopt;
    }
    case Place::Kind::live: {
      Query query(reading->live, place.key);
      if (!query.next()) return std::nullopt;
      return Held{{}, query.blob<std::vector<std::uint8_t>>(0), query.integer(1)};
    }
    case Place::Kind::setting:
      break;
  }
  Query query(reading->setting, place.key);
  return query.next() ? std::optional(heldOf(query.integer(0))) : std::nullopt;
}

void Database::write(const Place& place, const std::optional<Held>& held) {
  switch (place.kind) {
    case Place::Kind::content:
      if (held)
        Query(writing->store, place.id, blobOf(held->name), std::span(held->bytes), held->checksum).changes();
      else
        Query(writing->remove, place.id).changes();
      return;
    case Place::Kind::favourite:
      if (held)
        Query(writing->flag, place.id, std::int64_t(std::stoll(held->name))).changes();
      else
        Query(writing->unflag, place.id).changes();
      return;
    case Place::Kind::live:
      if (held)
        Query(writing->storeLive, place.key, std::span(held->bytes), held->checksum).changes();
      else
        Query(writing->removeLive, place.key).changes();
      return;
    case Place::Kind::setting:
      if (held)
        Query(writing->set, place.key, std::int64_t(std::stoll(held->name))).changes();
      else
        Query(writing->unset, place.key).changes();
  }
}

std::vector<std::pair<std::string, std::string>> Database::checkTables() {
  std::vector<std::pair<std::string, std::string>> tables;
  SQLite::Statement names(connection, "SELECT name FROM main.sqlite_master WHERE type = 'table' ORDER BY name");
  while (names.executeStep()) {
    const std::string name = names.getColumn(0).getString();
    std::string wrong;
    const auto add = [&](const std::string& text) { wrong += (wrong.empty() ? "" : "; ") + text; };
    try {
      SQLite::Statement check(connection, "PRAGMA main.integrity_check(" + name + ")");
      while (check.executeStep())
        if (const std::string text = check.getColumn(0).getString(); text != "ok") add(text);
    } catch (const SQLite::Exception& error) {
      add(error.what());  // so damaged that the check gives up: the other tables are looked at all the same
    }
    tables.emplace_back(name, wrong);
  }
  return tables;
}

bool Database::hasWrongIndex() {
  if (!hasWrongIndex_)
    hasWrongIndex_ = isIndexWrong(connection, hasViews_ ? Indexed::oldContent : Indexed::content) ||
                     isIndexWrong(connection, hasViews_ ? Indexed::oldLiveModel : Indexed::liveModel);
  return *hasWrongIndex_;
}

bool Database::hasWrongHistory() {
  if (!hasWrongHistory_) hasWrongHistory_ = !hasViews_ && isIndexWrong(connection, Indexed::change);
  return *hasWrongHistory_;
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
        if (value.isNull())
          insert.bind(place);
        else if (value.isInteger())
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
