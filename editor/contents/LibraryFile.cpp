#include "contents/LibraryFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <system_error>
#include <thread>

#include "contents/Library.h"
#include "contents/LibraryCopy.h"
#include "contents/LibraryMark.h"

namespace Editor {

namespace {

std::uint32_t bigEndian32(const unsigned char* bytes) {
  return std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 | bytes[3];
}

struct Header {
  bool empty = false;
  std::uint32_t applicationId = 0;  // 0 for what is not even a database
  std::uint32_t version = 0;
};

Header headerIn(std::span<const std::uint8_t> first) {
  constexpr std::size_t kSize = 100;
  if (first.size() < kSize || !isSqliteFile(first)) return {};
  return {.applicationId = bigEndian32(&first[68]), .version = bigEndian32(&first[60])};
}

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
  return headerIn(bytes);
}

// A path as a URI's: what would mean something there is escaped.
std::string uriOf(const std::filesystem::path& path) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string uri = "file:";
  for (const char c : path.string()) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > ' ' && byte < 0x7F && std::strchr("%?#", c) == nullptr)
      uri += c;
    else
      uri += {'%', kDigits[byte >> 4], kDigits[byte & 0x0F]};
  }
  return uri;
}

// A link stands for the file that SQLite works with: there its side files stand.
std::filesystem::path resolved(const std::filesystem::path& path) {
  std::error_code unknown;
  std::filesystem::path file = std::filesystem::canonical(path, unknown);
  return unknown ? path : file;
}

// Whether side files could not be made, or not as large as they have to be.
bool isAboutRoom(const SQLite::Exception& error) {
  const int code = error.getErrorCode() & 0xFF;
  return code == SQLITE_IOERR || code == SQLITE_FULL || code == SQLITE_CANTOPEN;
}

// Works on what a failure has left of a library, with a lock that nobody has who uses it: it is left to him otherwise.
// Needs no room: the lock is held without shared memory.
template <typename Operation>
void whileAlone(const std::filesystem::path& path, Operation operation) {
  std::error_code unknown;
  if (!std::filesystem::exists(path, unknown)) return;
  try {
    Database database(path.string(), SQLite::OPEN_READWRITE, std::chrono::milliseconds(0), nullptr);
    database.connection.exec("PRAGMA locking_mode = EXCLUSIVE");
    database.connection.exec("BEGIN EXCLUSIVE");
    operation(database);
  } catch (const SQLite::Exception&) {
    // Somebody uses it.
  }
}

// What it throws then says that the disk is full, where it is.
template <typename Operation>
auto tellingFullDisk(Database& database, Operation operation) {
  try {
    return operation();
  } catch (const SQLite::Exception& error) {
    if (!database.isDiskFull()) throw;
    throw SQLite::Exception("the disk is full", error.getErrorCode());
  }
}

[[noreturn]] void cannotOpen(int error) { throw SQLite::Exception(std::strerror(error), SQLITE_CANTOPEN); }

}  // namespace

bool isSqliteFile(std::span<const std::uint8_t> first) {
  constexpr std::string_view kMagic("SQLite format 3\0", 16);
  return first.size() >= kMagic.size() && std::memcmp(first.data(), kMagic.data(), kMagic.size()) == 0;
}

bool isLibraryFile(std::span<const std::uint8_t> first) {
  return headerIn(first).applicationId == kLibraryApplicationId;
}

bool belongsToLibrary(std::string_view ending) {
  if (ending == kNamesEnding || std::ranges::find(kSideFiles, ending) != kSideFiles.end()) return true;
  const std::string_view copy = ending.starts_with(kPartEnding) ? kPartEnding : kCopyEnding;
  if (!ending.starts_with(copy)) return false;
  const std::string_view number = ending.substr(copy.size());
  return number.empty() || (number.size() > 1 && number.front() == '.' &&
                            number.find_first_not_of("0123456789", 1) == std::string_view::npos);
}

std::unique_ptr<Database> LibraryFile::open() const {
  if (!exists()) return nullptr;
  requireFile();
  if (vfs_ == nullptr && ::access(path_.c_str(), W_OK) != 0) cannotOpen(errno);
  std::unique_ptr<Database> database = open(path_.string(), SQLite::OPEN_READWRITE);
  if (database == nullptr) return nullptr;
  database->connection.exec("PRAGMA synchronous = FULL");
  keepWriteAheadLog(*database);  // not before the file is known as ours: this writes to it
  database->prepareStatements();
  return database;
}

std::unique_ptr<Database> LibraryFile::openToRead() const {
  if (!exists()) return nullptr;
  requireFile();
  // Who must not write to the file can neither put away the log that SQLite makes for a reader, nor make one in a
  // directory that is closed to him: the file is read as it is, unless somebody works on it or was cut off.
  const bool isReadOnly = vfs_ == nullptr && (::access(path_.c_str(), W_OK) != 0 ||
                                              ::access(resolved(path_).parent_path().c_str(), W_OK | X_OK) != 0);
  if (isReadOnly && hasLog())
    throw SQLite::Exception("its place cannot be written, and the log beside it only a writer can read",
                            SQLITE_CANTOPEN);
  if (isReadOnly) return openAsItIs();
  try {
    std::unique_ptr<Database> database = open(path_.string(), SQLite::OPEN_READWRITE);
    if (database != nullptr) database->prepareStatements();
    return database;
  } catch (const SQLite::Exception& error) {
    if (vfs_ != nullptr || hasLog() || !isAboutRoom(error)) throw;
  }
  clearSideFiles();
  return openAsItIs();
}

// As if nobody could ever change it.
std::unique_ptr<Database> LibraryFile::openAsItIs() const {
  std::unique_ptr<Database> database = open(uriOf(path_) + "?immutable=1", SQLite::OPEN_READONLY | SQLite::OPEN_URI);
  if (database != nullptr) database->prepareStatements();
  return database;
}

// What a connection has left that had no room for all of its side files.
void LibraryFile::clearSideFiles() const {
  whileAlone(path_, [&](Database&) {
    std::error_code ignored;
    std::filesystem::remove(resolved(path_).string() + "-shm", ignored);
  });
}

// Null when there is nothing in it yet.
std::unique_ptr<Database> LibraryFile::open(const std::string& name, int flags) const {
  try {
    return openWhatIsThere(name, flags);
  } catch (const SQLite::Exception&) {
    if (exists()) throw;
    return nullptr;  // who began to make it has failed meanwhile, and taken it back
  }
}

std::unique_ptr<Database> LibraryFile::openWhatIsThere(const std::string& name, int flags) const {
  auto database = std::make_unique<Database>(name, flags, busyTimeout_, vfs_);
  if (const Header header = readHeader(database->connection.getHandle()); !header.empty)
    requireLibrary(header.applicationId, header.version);
  if (tellingFullDisk(*database, [&] { return database->isUnfinished(); })) return nullptr;
  requireLibrary(*database);  // again, now that no log hides anything
  return database;
}

std::unique_ptr<Database> LibraryFile::openImage(std::span<const std::uint8_t> image) const {
  const std::unique_ptr<Database> database = Database::ofImage(image);
  if (!isSqliteFile(image) || database->isUnfinished()) requireLibrary(0, 0);
  requireLibrary(*database);
  database->prepareStatements();  // one of version 1 is copied through its views
  return database->copyInMemory();
}

void LibraryFile::requireLibrary(Database& database) const {
  const std::int64_t version = database.integer("PRAGMA user_version");
  requireLibrary(database.integer("PRAGMA application_id"), version);
  if (version < 1) throw SQLite::Exception("its version is missing", SQLITE_CORRUPT);
}

bool LibraryFile::exists() const {
  if (vfs_ == nullptr) return std::filesystem::exists(path_);
  sqlite3_vfs* const vfs = sqlite3_vfs_find(vfs_);
  int exists = 0;
  const int result = vfs->xAccess(vfs, path_.c_str(), SQLITE_ACCESS_EXISTS, &exists);
  if (result != SQLITE_OK) throw SQLite::Exception("disk I/O error", result);
  return exists != 0;
}

// A device may never end, or seem to be a library that holds nothing yet.
void LibraryFile::requireFile() const {
  if (vfs_ != nullptr) return;
  const std::filesystem::file_status status = std::filesystem::status(path_);
  if (!std::filesystem::exists(status) || std::filesystem::is_regular_file(status)) return;  // it may just have gone
  const char* const what = std::filesystem::is_directory(status) ? "a folder" : "a device or a pipe";
  throw LibraryError(LibraryError::Kind::NotALibrary, path_.string() + " is no library: it is " + what);
}

void LibraryFile::requireRoom() const {
  if (vfs_ != nullptr) return;
  if (!path_.has_filename()) cannotOpen(EISDIR);
  const std::filesystem::path directory = nearestDirectory();
  if (!std::filesystem::is_directory(directory)) cannotOpen(ENOTDIR);
  if (::access(directory.c_str(), W_OK | X_OK) != 0) cannotOpen(errno);
  // There are places where permissions say nothing, as /proc: whether a file can be made there, only one that is says.
  std::string probe = (directory / ".bda-XXXXXX").string();
  const int file = ::mkstemp(probe.data());
  if (file < 0) cannotOpen(errno);
  ::close(file);
  ::unlink(probe.c_str());
}

void LibraryFile::requireLibrary(std::int64_t applicationId, std::int64_t version) const {
  if (applicationId != kLibraryApplicationId)
    throw LibraryError(LibraryError::Kind::NotALibrary, path_.string() + " is no library", "it is no library");
  requireKnown(version);
}

void LibraryFile::requireKnown(std::int64_t version) const {
  if (version <= kLibraryVersion) return;
  const std::string text = " was written by a newer version of this program (its library version is " +
                           std::to_string(version) + ", this program knows " + std::to_string(kLibraryVersion) + ")";
  throw LibraryError(LibraryError::Kind::NewerVersion, path_.string() + text, "it" + text);
}

void LibraryFile::followVersion(Database& database) const {
  requireKnown(database.version());
  database.followVersion();
}

std::filesystem::path LibraryFile::copyOldVersion(Database& database) const {
  return copyBeside(path_, database, busyTimeout_, vfs_);
}

// A library stays in that mode. Two that change it at once could wait for each other, so SQLite lets neither wait: that
// is left to us.
void LibraryFile::keepWriteAheadLog(Database& database) const {
  const auto deadline = std::chrono::steady_clock::now() + std::min(busyTimeout_, Database::kForEver);
  while (true) {
    try {
      if (database.connection.execAndGet("PRAGMA journal_mode = WAL").getString() == "wal") return;
      throw SQLite::Exception("no write-ahead log can be kept beside it", SQLITE_CANTOPEN);
    } catch (const SQLite::Exception& error) {
      if (error.getErrorCode() != SQLITE_BUSY || std::chrono::steady_clock::now() >= deadline) throw;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

// A log without a byte is none.
bool LibraryFile::hasLog() const {
  const std::string file = resolved(path_).string();
  const auto holdsAnything = [&](const char* ending) {
    std::error_code unknown;
    return std::filesystem::exists(file + ending) && std::filesystem::file_size(file + ending, unknown) != 0;
  };
  return holdsAnything("-wal") || holdsAnything("-journal");
}

// The directory that the library lies in, or the lowest above it that is there.
std::filesystem::path LibraryFile::nearestDirectory() const {
  std::filesystem::path directory = path_.parent_path();
  while (!std::filesystem::exists(directory) && directory.has_relative_path()) directory = directory.parent_path();
  return directory;
}

// The lowest directory that exists is locked, and the one above it against others that would make it: so whoever finds
// a directory that is just being made waits for its maker. Upper ones come first, or two could wait for each other.
LibraryMaking::LibraryMaking(const LibraryFile& file) : file_(file) {
  if (file.vfs_ != nullptr) return;
  try {
    std::filesystem::path directory;
    do {  // who had to wait may find more directories than before
      unlock();
      directory = file.nearestDirectory();
      if (directory.has_relative_path()) lock(directory.parent_path(), LOCK_SH);
      lock(directory, LOCK_EX);
    } while (directory != file.nearestDirectory());
  } catch (...) {
    unlock();
    throw;
  }
}

std::unique_ptr<Database> LibraryMaking::make(Database& rows) {
  if (file_.vfs_ != nullptr) return makeFile(rows);
  const bool wasThere = std::filesystem::exists(file_.path_);
  try {
    createDirectories(file_.path_.parent_path());
    return makeFile(rows);
  } catch (...) {
    takeBack(wasThere);
    throw;
  }
}

// Unless somebody who knows no locks of directories has made one meanwhile.
void LibraryMaking::takeBack(bool wasThere) {
  std::error_code ignored;
  if (!wasThere)
    whileAlone(file_.path_, [&](Database& database) {
      if (!database.isUnfinished()) return;
      for (const std::string_view ending : kSideFiles)
        std::filesystem::remove(file_.path_.string().append(ending), ignored);
      std::filesystem::remove(file_.path_, ignored);
    });
  for (; !made_.empty(); made_.pop_back()) std::filesystem::remove(made_.back(), ignored);  // unless it is in use
}

std::unique_ptr<Database> LibraryMaking::makeFile(Database& rows) {
  auto database = std::make_unique<Database>(file_.path_.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE,
                                             file_.busyTimeout_, file_.vfs_);
  SQLite::Database& connection = database->connection;
  const auto requireNothing = [&] {  // no program of ours can have made it, but one that we do not know
    if (!database->isUnfinished()) throw SQLite::Exception("another program has made it", SQLITE_BUSY);
  };
  requireNothing();
  connection.exec("PRAGMA synchronous = FULL");
  // The id comes first and alone, in the only page that is written then: what a power cut leaves of the file is empty
  // or says that it is ours.
  tellingFullDisk(*database, [&] {
    connection.exec("PRAGMA application_id = " + std::to_string(kLibraryApplicationId));
    file_.keepWriteAheadLog(*database);
    SQLite::Transaction transaction(connection, SQLite::TransactionBehavior::IMMEDIATE);
    requireNothing();
    database->makeTables();
    rows.copyRowsTo(*database);
    database->prepareStatements();
    transaction.commit();  // the last thing that can fail: what is on disk must not be told as failed
  });
  return database;
}

// One that must not be read cannot be locked: two that make a library there at once are then told so.
void LibraryMaking::lock(const std::filesystem::path& directory, int how) {
  const int descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  locks_.push_back(descriptor);
  const auto deadline = std::chrono::steady_clock::now() + std::min(file_.busyTimeout_, Database::kForEver);
  while (::flock(descriptor, how | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    if (std::chrono::steady_clock::now() >= deadline) throw SQLite::Exception("another program makes it", SQLITE_BUSY);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void LibraryMaking::unlock() {
  for (const int descriptor : locks_) ::close(descriptor);
  locks_.clear();
}

// With those above it, on disk when it returns: a file is as lost as the directory that held it.
void LibraryMaking::createDirectories(const std::filesystem::path& directory) {
  if (std::filesystem::exists(directory)) return;
  const std::filesystem::path parent = directory.parent_path();
  createDirectories(parent);
  if (std::filesystem::create_directory(directory)) made_.push_back(directory);
  lock(directory, LOCK_EX);
  syncDirectory(parent);
}

}  // namespace Editor
