#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace Editor {

// What a file is by its first bytes, a hundred or all: a database of SQLite, and one that is a library of ours.
bool isSqliteFile(std::span<const std::uint8_t> first);
bool isLibraryFile(std::span<const std::uint8_t> first);

// How the names of the files go on that SQLite keeps, and locks, beside a library's.
inline constexpr std::array<std::string_view, 3> kSideFiles{"-shm", "-wal", "-journal"};

}  // namespace Editor
