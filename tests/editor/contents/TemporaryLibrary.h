#pragma once

#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "contents/Library.h"

namespace Editor {

// A directory of its own for every test, gone at its end; in memory where there is such a place, for a library waits
// for its disk at every commit.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    const std::filesystem::path memory = "/dev/shm";
    const bool usable = ::access(memory.c_str(), W_OK) == 0;
    std::string name = ((usable ? memory : std::filesystem::temp_directory_path()) / "bda-contents-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    path_ = name;
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::filesystem::path operator/(const char* name) const { return path_ / name; }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// A library that holds no contents, in a file of its own: a setting is enough for one to be made.
inline std::filesystem::path madeLibrary(const std::filesystem::path& file) {
  Library(file).setMixingVoiceMaximum(Library::kDefaultMixingVoiceMaximum);
  return file;
}

inline std::string bytesOfFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void writeFile(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary);
  out << bytes;
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

// Another program that works on the same file, without anything of ours in between. It waits for a lock as one does:
// who opens a library holds one for a moment.
class PlainDatabase {
 public:
  explicit PlainDatabase(const std::filesystem::path& file) {
    if (sqlite3_open(file.c_str(), &database_) != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(database_));
    sqlite3_busy_timeout(database_, 10'000);
  }
  PlainDatabase(const PlainDatabase&) = delete;
  PlainDatabase& operator=(const PlainDatabase&) = delete;
  ~PlainDatabase() { sqlite3_close(database_); }

  // The first column of the last row, as text.
  std::string operator()(const std::string& sql) {
    std::string value;
    const auto keep = [](void* target, int, char** columns, char**) {
      *static_cast<std::string*>(target) = columns[0] == nullptr ? "NULL" : columns[0];
      return 0;
    };
    if (sqlite3_exec(database_, sql.c_str(), keep, &value, nullptr) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(database_));
    return value;
  }

 private:
  sqlite3* database_ = nullptr;
};

// A library of version 1, as its program made it: the voice 3F0805 "Piano" (1, 2, 3) with a favourite flag, live models
// and a setting. Without a log beside it.
inline void makeOldLibrary(const std::filesystem::path& file) {
  PlainDatabase plain(file);
  plain("PRAGMA application_id = " + std::to_string(0x4244414C));
  plain(R"sql(
    PRAGMA journal_mode = WAL;
    BEGIN;
    CREATE TABLE contents(type INTEGER NOT NULL, number INTEGER NOT NULL, name BLOB NOT NULL, bytes BLOB NOT NULL,
                          PRIMARY KEY(type, number)) STRICT;
    CREATE TABLE favourites(type INTEGER NOT NULL, number INTEGER NOT NULL, flag INTEGER NOT NULL,
                            PRIMARY KEY(type, number)) STRICT, WITHOUT ROWID;
    CREATE TABLE live(key TEXT NOT NULL PRIMARY KEY, bytes BLOB NOT NULL) STRICT;
    CREATE TABLE settings(name TEXT NOT NULL PRIMARY KEY, value INTEGER NOT NULL) STRICT, WITHOUT ROWID;
    PRAGMA user_version = 1;
    INSERT INTO contents VALUES(4, 0x3F0805, CAST('Piano' AS BLOB), x'010203');
    INSERT INTO favourites VALUES(4, 0x3F0805, 1);
    INSERT INTO live VALUES('nobody', x'09');
    INSERT INTO settings VALUES('mixing-voices', 7);
    COMMIT;
  )sql");
}

}  // namespace Editor
