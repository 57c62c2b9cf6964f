#pragma once

#include <sqlite3.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Editor {

// The operating system's files with a disk that fails on demand. It counts what is done to the disk (writes,
// truncations, syncs) and keeps for every file what a power cut would leave of it: what was synced for certain, of the
// rest any part. One at a time.
class FaultyVfs {
 public:
  enum class Fault {
    None,
    IoError,   // one operation fails
    DiskFull,  // that write and all that follow fail
    PowerCut,  // nothing works any more
  };

  FaultyVfs() : system_(sqlite3_vfs_find(nullptr)), vfs_(*system_) {
    current_ = this;
    vfs_.zName = kName;
    vfs_.pNext = nullptr;
    vfs_.szOsFile = int(sizeof(File)) + system_->szOsFile;
    vfs_.xOpen = open;
    vfs_.xDelete = remove;
    sqlite3_vfs_register(&vfs_, 0);
  }
  FaultyVfs(const FaultyVfs&) = delete;
  FaultyVfs& operator=(const FaultyVfs&) = delete;
  ~FaultyVfs() {
    sqlite3_vfs_unregister(&vfs_);
    current_ = nullptr;
  }

  static constexpr const char* kName = "faulty";

  // The `countdown`-th operation from now on (1 is the next one) fails.
  void arm(Fault fault, int countdown) {
    fault_ = fault;
    countdown_ = countdown;
  }
  void disarm() { arm(Fault::None, 0); }
  bool hasStruck() const { return fault_ != Fault::None && countdown_ <= 0; }
  int operations() const { return operations_; }
  // The transactions that wrote something, and were committed to a write-ahead log.
  int commits() const { return commits_; }
  // Whether files can be read.
  void setReadable(bool readable) { readable_ = readable; }
  // From now on syncs are answered but not done.
  void ignoreSyncs() { ignoresSyncs_ = true; }

  // A file that was there before, on disk for certain.
  void adopt(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    images_[file.string()].durable = {std::istreambuf_iterator<char>(in), {}};
  }

  // Writes the files that a power cut at this moment would leave to another directory.
  void leaveFiles(const std::filesystem::path& directory, unsigned seed) const {
    std::mt19937 random(seed);
    for (const auto& [name, image] : images_) {
      std::string bytes = image.durable;
      for (const Write& write : image.pending)
        if (random() % 2 == 0) write.applyTo(bytes);
      std::ofstream(directory / std::filesystem::path(name).filename(), std::ios::binary) << bytes;
    }
  }

 private:
  struct File {
    sqlite3_file base;
    const char* name;  // null: not on the disk, as far as we are concerned

    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
  };

  struct Write {
    std::size_t offset;
    std::string bytes;
    bool truncates;

    void applyTo(std::string& file) const {
      if (truncates || file.size() < offset + bytes.size()) file.resize(offset + bytes.size());
      file.replace(offset, bytes.size(), bytes);
    }
  };
  struct Image {
    std::string durable;
    std::vector<Write> pending;
  };

  // In a log the header of a page that is the last of its transaction says how many pages the database then has.
  static bool isCommit(std::string_view name, const std::string& bytes) {
    constexpr std::size_t kHeader = 24;
    constexpr std::size_t kPages = 4;
    return name.ends_with("-wal") && bytes.size() == kHeader && bytes.compare(kPages, 4, std::string(4, '\0')) != 0;
  }

  // SQLITE_OK, or the error that the operation has to answer.
  int operate(int error) {
    ++operations_;
    if (fault_ == Fault::None) return SQLITE_OK;
    --countdown_;
    if (countdown_ == 0) return fault_ == Fault::DiskFull && error == SQLITE_IOERR_WRITE ? SQLITE_FULL : error;
    if (countdown_ > 0 || fault_ == Fault::IoError) return SQLITE_OK;
    if (fault_ == Fault::PowerCut) return error;
    return error == SQLITE_IOERR_WRITE ? SQLITE_FULL : SQLITE_OK;
  }

  static File& fileOf(sqlite3_file* file) { return *reinterpret_cast<File*>(file); }

  static int open(sqlite3_vfs* /*vfs*/, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    constexpr int kTracked = SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_MAIN_JOURNAL | SQLITE_OPEN_WAL;
    File& self = fileOf(file);
    self.base.pMethods = nullptr;
    self.name = (flags & kTracked) != 0 ? name : nullptr;
    const int result = current_->system_->xOpen(current_->system_, name, self.real(), flags, outFlags);
    if (result != SQLITE_OK) return result;
    self.base.pMethods = &methods();
    if (self.name != nullptr) current_->images_.try_emplace(self.name);
    return SQLITE_OK;
  }

  static int remove(sqlite3_vfs* /*vfs*/, const char* name, int syncDirectory) {
    if (const int error = current_->operate(SQLITE_IOERR_DELETE); error != SQLITE_OK) return error;
    current_->images_.erase(name);
    return current_->system_->xDelete(current_->system_, name, syncDirectory);
  }

  // All but the operations below goes straight to the real file.
  template <auto Method, typename... Arguments>
  static auto forward(sqlite3_file* file, Arguments... arguments) {
    sqlite3_file* const real = fileOf(file).real();
    return (real->pMethods->*Method)(real, arguments...);
  }

  static int read(sqlite3_file* file, void* bytes, int size, sqlite3_int64 offset) {
    if (!current_->readable_) return SQLITE_IOERR_READ;
    return forward<&sqlite3_io_methods::xRead>(file, bytes, size, offset);
  }

  static int write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset) {
    File& self = fileOf(file);
    if (self.name != nullptr) {
      if (const int error = current_->operate(SQLITE_IOERR_WRITE); error != SQLITE_OK) return error;
      std::string written(static_cast<const char*>(bytes), std::size_t(size));
      if (isCommit(self.name, written)) ++current_->commits_;
      current_->images_[self.name].pending.push_back({std::size_t(offset), std::move(written), false});
    }
    return self.real()->pMethods->xWrite(self.real(), bytes, size, offset);
  }

  static int truncate(sqlite3_file* file, sqlite3_int64 size) {
    File& self = fileOf(file);
    if (self.name != nullptr) {
      if (const int error = current_->operate(SQLITE_IOERR_TRUNCATE); error != SQLITE_OK) return error;
      current_->images_[self.name].pending.push_back({std::size_t(size), {}, true});
    }
    return self.real()->pMethods->xTruncate(self.real(), size);
  }

  static int sync(sqlite3_file* file, int flags) {
    File& self = fileOf(file);
    if (self.name != nullptr) {
      if (const int error = current_->operate(SQLITE_IOERR_FSYNC); error != SQLITE_OK) return error;
      Image& image = current_->images_[self.name];
      if (current_->ignoresSyncs_) return SQLITE_OK;
      for (const Write& pending : image.pending) pending.applyTo(image.durable);
      image.pending.clear();
    }
    return self.real()->pMethods->xSync(self.real(), flags);
  }

  static const sqlite3_io_methods& methods() {
    using M = sqlite3_io_methods;
    static const M kMethods = [] {
      M m{};
      m.iVersion = 2;  // with a shared index of the log, without mapped memory
      m.xClose = forward<&M::xClose>;
      m.xRead = read;
      m.xWrite = write;
      m.xTruncate = truncate;
      m.xSync = sync;
      m.xFileSize = forward<&M::xFileSize>;
      m.xLock = forward<&M::xLock>;
      m.xUnlock = forward<&M::xUnlock>;
      m.xCheckReservedLock = forward<&M::xCheckReservedLock>;
      m.xFileControl = forward<&M::xFileControl>;
      m.xSectorSize = forward<&M::xSectorSize>;
      m.xDeviceCharacteristics = forward<&M::xDeviceCharacteristics>;
      m.xShmMap = forward<&M::xShmMap>;
      m.xShmLock = forward<&M::xShmLock>;
      m.xShmBarrier = forward<&M::xShmBarrier>;
      m.xShmUnmap = forward<&M::xShmUnmap>;
      return m;
    }();
    return kMethods;
  }

  static inline FaultyVfs* current_ = nullptr;

  sqlite3_vfs* system_;
  sqlite3_vfs vfs_;
  Fault fault_ = Fault::None;
  int countdown_ = 0;
  int operations_ = 0;
  int commits_ = 0;
  bool ignoresSyncs_ = false;
  bool readable_ = true;
  std::map<std::string, Image> images_;
};

}  // namespace Editor
