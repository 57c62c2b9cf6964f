#pragma once

#include <chrono>
#include <filesystem>

#include "contents/Database.h"

namespace Editor {

// The name that a copy of a library gets which is made now: `<file>.v1`, or `<file>.v1.2` and so on where something
// stands there already.
std::filesystem::path nameOfCopy(const std::filesystem::path& file);

// Leaves a copy of a library beside it, under that name, as it is before it is brought to a new version. `database`
// holds the write lock and has written nothing yet. What the log holds is written back first, so that the copy is whole
// without one and has every byte of the library's file; whoever reads an older state prevents that, and then there is
// no copy. On disk when this returns. Throws SQLite::Exception and std::filesystem::filesystem_error.
std::filesystem::path copyBeside(const std::filesystem::path& file, Database& database,
                                 std::chrono::milliseconds busyTimeout, const char* vfs);

// As the data in it, a name is lost until its directory is on disk.
void syncDirectory(const std::filesystem::path& directory);

}  // namespace Editor
