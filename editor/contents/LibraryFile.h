#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <vector>

#include "contents/Database.h"

namespace Editor {

// Where a library lies: opens the database there, or makes it. Everything here throws SQLite::Exception, and
// LibraryError for what is no library of ours.
class LibraryFile {
 public:
  // `vfs`: the SQLite VFS to use; null: the operating system's files.
  LibraryFile(std::filesystem::path path, std::chrono::milliseconds busyTimeout, const char* vfs)
      : path_(std::move(path)), busyTimeout_(busyTimeout), vfs_(vfs) {}

  // Null when there is none, or nothing but what making one has left that was cut off.
  std::unique_ptr<Database> open() const;
  // The same for reading alone: nothing is written, nor left behind, and a place that cannot be written, or has no room
  // left, will do when no log stands beside the file, which only a writer could read.
  std::unique_ptr<Database> openToRead() const;
  bool exists() const;
  // A copy in memory of the library whose file has these bytes; the path is its name only.
  std::unique_ptr<Database> openImage(std::span<const std::uint8_t> image) const;

  // Throws unless a library can be made there.
  void requireRoom() const;

  // To be called when a transaction that writes has begun: another program may have brought the library to another
  // version. Throws when that is newer than ours.
  void followVersion(Database& database) const;
  // Leaves a copy of one of version 1 beside it; see copyBeside().
  std::filesystem::path copyOldVersion(Database& database) const;

 private:
  friend class LibraryMaking;

  std::unique_ptr<Database> open(const std::string& name, int flags) const;
  std::unique_ptr<Database> openWhatIsThere(const std::string& name, int flags) const;
  std::unique_ptr<Database> openAsItIs() const;
  void requireFile() const;
  void requireLibrary(Database& database) const;
  void clearSideFiles() const;
  void requireLibrary(std::int64_t applicationId, std::int64_t version) const;
  void requireKnown(std::int64_t version) const;
  void keepWriteAheadLog(Database& database) const;
  bool hasLog() const;
  std::filesystem::path nearestDirectory() const;

  std::filesystem::path path_;  // absolute
  std::chrono::milliseconds busyTimeout_;
  const char* vfs_;
};

// As long as one lives no other program makes a library there: it waits for its own.
class LibraryMaking {
 public:
  explicit LibraryMaking(const LibraryFile& file);
  LibraryMaking(const LibraryMaking&) = delete;
  LibraryMaking& operator=(const LibraryMaking&) = delete;
  ~LibraryMaking() { unlock(); }

  // Makes it, with the directories that are missing, of all that `rows` holds: on disk when this returns, or not there
  // at all.
  std::unique_ptr<Database> make(Database& rows);

 private:
  void lock(const std::filesystem::path& directory, int how);
  void unlock();
  void createDirectories(const std::filesystem::path& directory);
  std::unique_ptr<Database> makeFile(Database& rows);
  void takeBack(bool wasThere);

  const LibraryFile& file_;
  std::vector<int> locks_;                   // of directories, the upper ones first
  std::vector<std::filesystem::path> made_;  // directories, the upper ones first
};

}  // namespace Editor
