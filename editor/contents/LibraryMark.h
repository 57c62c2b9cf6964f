#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace Editor {

// What a file is by its first bytes, a hundred or all: a database of SQLite, and one that is a library of ours.
bool isSqliteFile(std::span<const std::uint8_t> first);
bool isLibraryFile(std::span<const std::uint8_t> first);

// What stands beside a library has its name and an ending. These are files that SQLite keeps and locks.
inline constexpr std::array<std::string_view, 3> kSideFiles{"-shm", "-wal", "-journal"};
// What things are called, as its user has written it down.
inline constexpr std::string_view kNamesEnding = ".names";
// A copy of an older version, and one that is not whole yet. Where one stands already a dot and a number follow,
// from 2.
inline constexpr std::string_view kCopyEnding = ".v1";
inline constexpr std::string_view kPartEnding = ".v1.part";

// Whether a file with that ending behind a library's name belongs to it, be there such a file or not.
bool belongsToLibrary(std::string_view ending);

}  // namespace Editor
