#pragma once

#include <cstdint>
#include <span>

namespace Editor {

// What a file is by its first bytes, a hundred or all: a database of SQLite, and one that is a library of ours.
bool isSqliteFile(std::span<const std::uint8_t> first);
bool isLibraryFile(std::span<const std::uint8_t> first);

}  // namespace Editor
