#include "contents/LibraryCopy.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "contents/LibraryMark.h"

namespace Editor {

namespace {

void require(int result, const char* what) {
  if (result != SQLITE_OK) throw SQLite::Exception(what, result);
}

// SQLite does this only for another connection, and only then without giving up the write lock.
void writeLogBack(const std::filesystem::path& file, std::chrono::milliseconds busyTimeout, const char* vfs) {
  Database other(file.string(), SQLite::OPEN_READWRITE, busyTimeout, vfs);
  other.connection.exec("PRAGMA synchronous = FULL");
  const auto deadline = std::chrono::steady_clock::now() + std::min(busyTimeout, Database::kForEver);
  while (true) {
    SQLite::Statement checkpoint(other.connection, "PRAGMA wal_checkpoint(PASSIVE)");
    checkpoint.executeStep();
    const bool isDone =
        checkpoint.getColumn(0).getInt() == 0 && checkpoint.getColumn(1).getInt() == checkpoint.getColumn(2).getInt();
    if (isDone) return;
    if (std::chrono::steady_clock::now() >= deadline)
      throw SQLite::Exception("another program reads an older state", SQLITE_BUSY);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

// A file by the way that SQLite takes: to close one of our own that is the library would drop every lock on it.
class PlainFile {
 public:
  PlainFile(const std::filesystem::path& path, const char* vfs)
      : vfs_(sqlite3_vfs_find(vfs)),
        name_(sqlite3_create_filename(path.c_str(), "", "", 0, nullptr)),
        memory_(std::size_t(vfs_->szOsFile)) {
    if (name_ == nullptr) throw std::bad_alloc();
    constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXCLUSIVE | SQLITE_OPEN_MAIN_DB;
    int flags = 0;
    const int result = vfs_->xOpen(vfs_, name_, file(), kFlags, &flags);
    if (result == SQLITE_OK) return;
    sqlite3_free_filename(name_);
    throw SQLite::Exception("no copy can be made beside it", result);
  }
  PlainFile(const PlainFile&) = delete;
  PlainFile& operator=(const PlainFile&) = delete;
  ~PlainFile() {
    file()->pMethods->xClose(file());
    sqlite3_free_filename(name_);
  }

  sqlite3_file* file() { return reinterpret_cast<sqlite3_file*>(memory_.data()); }

 private:
  sqlite3_vfs* const vfs_;
  const char* const name_;
  std::vector<std::max_align_t> memory_;  // more than it takes
};

// Beside the library itself, where `file` is a link to it.
std::filesystem::path freeName(const std::filesystem::path& file, std::string_view ending) {
  const std::filesystem::path library = std::filesystem::is_symlink(file) ? std::filesystem::canonical(file) : file;
  const std::string name = library.string().append(ending);
  std::filesystem::path free = name;
  for (unsigned number = 2; std::filesystem::exists(std::filesystem::symlink_status(free)); ++number)
    free = name + "." + std::to_string(number);
  return free;
}

void copyBytes(sqlite3_file* from, sqlite3_file* to) {
  constexpr sqlite3_int64 kMost = 1 << 16;
  constexpr const char* kFailed = "the copy of it could not be written";
  sqlite3_int64 size = 0;
  require(from->pMethods->xFileSize(from, &size), "disk I/O error");
  require(to->pMethods->xTruncate(to, 0), kFailed);
  std::vector<unsigned char> bytes(kMost);
  for (sqlite3_int64 done = 0; done < size; done += kMost) {
    const int count = int(std::min(kMost, size - done));
    require(from->pMethods->xRead(from, bytes.data(), count, done), "disk I/O error");
    require(to->pMethods->xWrite(to, bytes.data(), count, done), kFailed);
  }
  require(to->pMethods->xSync(to, SQLITE_SYNC_FULL), kFailed);
}

}  // namespace

std::filesystem::path nameOfCopy(const std::filesystem::path& file) { return freeName(file, kCopyEnding); }

std::filesystem::path copyBeside(const std::filesystem::path& file, Database& database,
                                 std::chrono::milliseconds busyTimeout, const char* vfs) {
  writeLogBack(file, busyTimeout, vfs);
  // Half of it is there under this name only: of a program that was killed it may be left.
  const std::filesystem::path part = freeName(file, kPartEnding);
  std::filesystem::path copy;
  sqlite3_file* library = nullptr;
  sqlite3_file_control(database.connection.getHandle(), "main", SQLITE_FCNTL_FILE_POINTER, &library);
  auto made = std::make_unique<PlainFile>(part, vfs);
  try {
    {
      const std::unique_ptr<PlainFile> to = std::move(made);
      std::filesystem::permissions(part, std::filesystem::status(file).permissions());
      copyBytes(library, to->file());
    }
    copy = nameOfCopy(file);
    std::filesystem::rename(part, copy);
  } catch (...) {
    std::error_code ignored;
    std::filesystem::remove(part, ignored);
    throw;
  }
  syncDirectory(copy.parent_path());
  return copy;
}

void syncDirectory(const std::filesystem::path& directory) {
  const int handle = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;
  ::fsync(handle);
  ::close(handle);
}

}  // namespace Editor
