#include "contents/Library.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <limits>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include <SQLiteCpp/SQLiteCpp.h>

namespace Editor {
namespace {

constexpr std::uint32_t kApplicationId = 0x4244414C;  // "BDAL", in the header of every library
constexpr std::int32_t kVersion = 1;

// Names and bytes are blobs: text would be taken for UTF-8 and end at its first zero.
constexpr const char* kSchema = R"sql(
  CREATE TABLE contents(type INTEGER NOT NULL, number INTEGER NOT NULL, name BLOB NOT NULL, bytes BLOB NOT NULL,
                        PRIMARY KEY(type, number)) STRICT;
  CREATE TABLE favourites(type INTEGER NOT NULL, number INTEGER NOT NULL, flag INTEGER NOT NULL,
                          PRIMARY KEY(type, number)) STRICT, WITHOUT ROWID;
  CREATE TABLE live(key TEXT NOT NULL PRIMARY KEY, bytes BLOB NOT NULL) STRICT;
  CREATE TABLE settings(name TEXT NOT NULL PRIMARY KEY, value INTEGER NOT NULL) STRICT, WITHOUT ROWID;
)sql";

// SQLite counts in int. What int cannot count is beyond SQLite's own limit of texts and blobs too, and ends like that.
void requireCountable(std::size_t size) {
  if (!std::in_range<int>(size)) throw SQLite::Exception("string or blob too big", SQLITE_TOOBIG);
}

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
  // An empty span has no address, and SQLite would make a null of that.
  void bind(std::span<const std::uint8_t> bytes) {
    requireCountable(bytes.size());
    statement_.bind(++bound_, bytes.empty() ? static_cast<const void*>("") : bytes.data(), int(bytes.size()));
  }
  void bind(const std::string& text) {
    requireCountable(text.size());
    statement_.bind(++bound_, text);
  }

  SQLite::Statement& statement_;
  int bound_ = 0;
};

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::uint32_t bigEndian32(const unsigned char* bytes) {
  return std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 | bytes[3];
}

struct Header {
  bool empty = false;
  std::uint32_t applicationId = 0;  // 0 for what is not even a database
  std::uint32_t version = 0;
};

// The header of the file, seen before SQLite works with it: that may finish or take back what another program left
// undone, and would so change a file that is none of ours. Yet it has to be SQLite that reads, for to close a file
// handle of our own would drop every lock that this process has on the file.
Header readHeader(sqlite3* handle) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  std::array<unsigned char, 100> bytes{};
  // Not the size: SQLite calls a file of one byte empty.
  int result = file->pMethods->xRead(file, bytes.data(), 1, 0);
  if (result == SQLITE_IOERR_SHORT_READ) return {.empty = true};
  if (result == SQLITE_OK) result = file->pMethods->xRead(file, bytes.data(), int(bytes.size()), 0);
  if (result == SQLITE_IOERR_SHORT_READ) return {};
  if (result != SQLITE_OK) throw SQLite::Exception("disk I/O error", result);
  constexpr std::string_view kMagic("SQLite format 3\0", 16);
  if (std::memcmp(bytes.data(), kMagic.data(), kMagic.size()) != 0) return {};
  return {.applicationId = bigEndian32(&bytes[68]), .version = bigEndian32(&bytes[60])};
}

// Creates a directory and those above it, on disk when it returns: a file is as lost as the directory that held it.
void createDirectories(const std::filesystem::path& directory) {
  if (directory.empty() || std::filesystem::exists(directory)) return;
  createDirectories(directory.parent_path());
  std::filesystem::create_directory(directory);
  if (const int parent = ::open(directory.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); parent >= 0) {
    ::fsync(parent);
    ::close(parent);
  }
}

}  // namespace

struct Library::Database {
  Database(const std::filesystem::path& file, const Options& options)
      : busyTimeout(std::clamp(options.busyTimeout, std::chrono::milliseconds::zero(), kForEver)),
        connection(file.c_str(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, int(busyTimeout.count()), options.vfs) {}

  std::int64_t integer(const char* sql) { return connection.execAndGet(sql).getInt64(); }
  // Two that change the mode at once could wait for each other, so SQLite lets neither wait: that is left to us.
  std::string keepWriteAheadLog() {
    const auto deadline = std::chrono::steady_clock::now() + busyTimeout;
    while (true) {
      try {
        return connection.execAndGet("PRAGMA journal_mode = WAL").getString();
      } catch (const SQLite::Exception& error) {
        if (error.getErrorCode() != SQLITE_BUSY || std::chrono::steady_clock::now() >= deadline) throw;
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  // An SQLite error may have ended the transaction behind our back; what came next would then be written alone.
  bool transactionLost() const { return sqlite3_get_autocommit(connection.getHandle()) != 0; }

  static constexpr std::chrono::milliseconds kForEver{std::numeric_limits<int>::max()};  // as long as SQLite can wait
  const std::chrono::milliseconds busyTimeout;
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

Library::Library(const std::filesystem::path& file, const Options& options)
    : file_(file.empty() ? file : std::filesystem::absolute(file)) {
  if (file.empty()) throw LibraryError(LibraryError::Kind::CannotOpen, "a library needs a file name");
  try {
    if (options.vfs == nullptr) createDirectories(file_.parent_path());
  } catch (const std::filesystem::filesystem_error& error) {
    fail(SQLITE_CANTOPEN, error.code().message());
  }
  run([&] {
    database_ = std::make_unique<Database>(file_, options);
    SQLite::Database& connection = database_->connection;
    const auto requireLibrary = [this](std::int64_t applicationId, std::int64_t version) {
      if (applicationId != kApplicationId)
        throw LibraryError(LibraryError::Kind::NotALibrary, file_.string() + " is no library");
      if (version > kVersion)
        throw LibraryError(LibraryError::Kind::NewerVersion,
                           file_.string() + " was written by a newer version of this program (its library version is " +
                               std::to_string(version) + ", this program knows " + std::to_string(kVersion) + ")");
    };
    if (const Header header = readHeader(connection.getHandle()); !header.empty)
      requireLibrary(header.applicationId, header.version);
    connection.exec("PRAGMA synchronous = FULL");

    const auto isUnfinished = [this] {
      return database_->integer("PRAGMA user_version") == 0 &&
             database_->integer("SELECT count(*) FROM sqlite_master") == 0;
    };
    if (isUnfinished()) {
      // The id comes first and alone, in the only page that is written then: what a power cut leaves of the file is
      // empty or says that it is ours.
      connection.exec("PRAGMA application_id = " + std::to_string(kApplicationId));
      Transaction transaction(*this);
      if (isUnfinished()) {  // still: another program may have gone before us
        connection.exec(kSchema);
        connection.exec("PRAGMA user_version = " + std::to_string(kVersion));
      }
      transaction.commit();
    }
    // Again, now that no log hides anything.
    const std::int64_t version = database_->integer("PRAGMA user_version");
    requireLibrary(database_->integer("PRAGMA application_id"), version);
    if (version < kVersion) fail(SQLITE_CORRUPT, "its version is missing");

    // Not before the file is known as ours: this writes to it. A library stays in that mode.
    if (database_->keepWriteAheadLog() != "wal") fail(SQLITE_CANTOPEN, "no write-ahead log can be kept beside it");
    try {
      database_->statements.emplace(connection);
    } catch (const SQLite::Exception& error) {
      // A table or a column is missing.
      fail(error.getErrorCode() == SQLITE_ERROR ? SQLITE_CORRUPT : error.getErrorCode(), error.what());
    }
  });
}

Library::~Library() = default;

void Library::fail(int sqliteCode, const std::string& text) const {
  using Kind = LibraryError::Kind;
  ++failureCount_;
  const std::string name = file_.string();
  switch (sqliteCode & 0xFF) {
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_READONLY:
    case SQLITE_AUTH:
      throw LibraryError(Kind::CannotOpen, name + " cannot be opened: " + text);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw LibraryError(Kind::Locked, name + " is locked by another program");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      throw LibraryError(Kind::Damaged, name + " is damaged: " + text);
    default:
      throw LibraryError(Kind::Failed, name + ": " + text);
  }
}

template <typename Operation>
auto Library::run(Operation operation) const -> decltype(operation()) {
  try {
    return operation();
  } catch (const SQLite::Exception& error) {
    fail(error.getErrorCode(), error.what());
  }
}

Library::Transaction::Transaction(Library& library, Access access)
    : library_(library),
      outer_(library.open_.size()),
      changes_(library.pending_.size()),
      undo_(outer_ == 0 ? "ROLLBACK" : "ROLLBACK TO " + savepoint() + "; RELEASE " + savepoint()) {
  library.open_.reserve(outer_ + 1);
  library.run([&] {
    Database& database = *library.database_;
    if (outer_ > 0) {
      requireTransaction();
      database.connection.exec("SAVEPOINT " + savepoint());
    } else {
      Query(access == Access::Write ? database.beginWriting : database.begin).next();
    }
  });
  library.open_.push_back(this);
}

Library::Transaction::~Transaction() {
  std::vector<const Transaction*>& open = library_.open_;
  const auto self = std::find(open.begin(), open.end(), this);
  if (self == open.end()) return;  // committed, or ended with an outer one
  open.erase(self, open.end());
  library_.pending_.resize(changes_);
  if (outer_ == 0 || !library_.database_->transactionLost()) library_.database_->connection.tryExec(undo_);
}

void Library::Transaction::requireTransaction() const {
  if (library_.database_->transactionLost()) library_.fail(SQLITE_ABORT, "an earlier error has ended the transaction");
}

std::string Library::Transaction::savepoint() const { return "inner" + std::to_string(outer_); }

void Library::Transaction::commit() {
  std::vector<const Transaction*>& open = library_.open_;
  if (open.empty() || open.back() != this)
    throw std::logic_error("a transaction is committed once, after those inside it");
  library_.committed_.reserve(library_.committed_.size() + library_.pending_.size());  // no failure after the fact
  library_.run([&] {
    requireTransaction();
    if (outer_ > 0)
      library_.database_->connection.exec("RELEASE " + savepoint());
    else
      Query(library_.database_->commit).next();
  });
  open.pop_back();
  if (outer_ > 0) return;
  library_.changeCount_ += library_.pending_.size();
  library_.committed_.insert(library_.committed_.end(), library_.pending_.begin(), library_.pending_.end());
  library_.pending_.clear();
}

template <typename Operation>
void Library::change(Operation operation) {
  Transaction transaction(*this);
  run(operation);
  transaction.commit();
}

std::optional<Library::Content> Library::content(ContentId id) {
  return run([&]() -> std::optional<Content> {
    Query query(database_->statements->content, id);
    if (!query.next()) return std::nullopt;
    return Content{query.blob<std::string>(0), query.blob<Bytes>(1)};
  });
}

std::optional<std::string> Library::contentName(ContentId id) {
  return run([&]() -> std::optional<std::string> {
    Query query(database_->statements->contentName, id);
    if (!query.next()) return std::nullopt;
    return query.blob<std::string>(0);
  });
}

std::vector<ContentId> Library::contents() {
  return run([&] {
    std::vector<ContentId> ids;
    for (Query query(database_->statements->contents); query.next();) ids.push_back(query.id());
    return ids;
  });
}

void Library::store(ContentId id, std::span<const std::uint8_t> bytes, const std::string& name) {
  change([&] {
    Query(database_->statements->store, id, bytesOf(name), bytes).changes();
    pending_.push_back({Change::Kind::Stored, canonical(id)});
  });
}

void Library::store(ContentId id, std::span<const std::uint8_t> bytes) {
  change([&] {
    Query(database_->statements->storeBytes, id, bytes).changes();
    pending_.push_back({Change::Kind::Stored, canonical(id)});
  });
}

bool Library::rename(ContentId id, const std::string& name) {
  bool renamed = false;
  change([&] {
    renamed = Query(database_->statements->rename, bytesOf(name), id).changes();
    if (renamed) pending_.push_back({Change::Kind::Renamed, canonical(id)});
  });
  return renamed;
}

bool Library::remove(ContentId id) {
  bool removed = false;
  change([&] {
    removed = Query(database_->statements->remove, id).changes();
    if (removed) pending_.push_back({Change::Kind::Removed, canonical(id)});
  });
  return removed;
}

std::uint8_t Library::favourite(ContentId id) {
  return run([&] {
    Query query(database_->statements->favourite, id);
    return query.next() ? query.number<std::uint8_t>(0) : std::uint8_t(0);
  });
}

std::vector<std::pair<ContentId, std::uint8_t>> Library::favourites() {
  return run([&] {
    std::vector<std::pair<ContentId, std::uint8_t>> flags;
    for (Query query(database_->statements->favourites); query.next();)
      flags.emplace_back(query.id(), query.number<std::uint8_t>(2));
    return flags;
  });
}

void Library::setFavourite(ContentId id, std::uint8_t flag) {
  change([&] {
    if (favourite(id) == flag) return;
    if (flag == 0)
      Query(database_->statements->unflag, id).changes();
    else
      Query(database_->statements->flag, id, flag).changes();
    pending_.push_back({Change::Kind::Flagged, canonical(id)});
  });
}

std::int64_t Library::mixingVoiceCount() {
  return run([&] {
    std::int64_t count = 0;
    for (Query query(database_->statements->voices, ContSrv::ContType_Voice); query.next();)
      if (isMixingVoice({ContSrv::ContType_Voice, query.number<std::uint32_t>(0)})) ++count;
    return count;
  });
}

std::optional<Library::Bytes> Library::live(const std::string& key) {
  return run([&]() -> std::optional<Bytes> {
    Query query(database_->statements->live, key);
    if (!query.next()) return std::nullopt;
    return query.blob<Bytes>(0);
  });
}

std::vector<std::string> Library::liveKeys() {
  return run([&] {
    std::vector<std::string> keys;
    for (Query query(database_->statements->liveKeys); query.next();) keys.push_back(query.blob<std::string>(0));
    return keys;
  });
}

void Library::storeLive(const std::string& key, std::span<const std::uint8_t> bytes) {
  change([&] { Query(database_->statements->storeLive, key, bytes).changes(); });
}

std::int64_t Library::dataVersion() {
  return run([&] {
    Query query(database_->statements->dataVersion);
    query.next();
    return query.integer(0);
  });
}

std::optional<std::int64_t> Library::setting(const std::string& name) {
  return run([&]() -> std::optional<std::int64_t> {
    Query query(database_->statements->setting, name);
    if (!query.next()) return std::nullopt;
    return query.integer(0);
  });
}

void Library::set(const std::string& setting, std::int64_t value) {
  change([&] { Query(database_->statements->set, setting, value).changes(); });
}

}  // namespace Editor
