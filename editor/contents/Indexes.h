#pragma once

#include <cstdint>

#include <SQLiteCpp/SQLiteCpp.h>

namespace Editor {

// The tables of a library whose rows are found by an index beside them.
enum class Indexed : std::uint8_t { content, liveModel, change, oldContent, oldLiveModel };  // old: of version 1

// Whether the index of a table does not have exactly its rows, in order: SQLite believes an index, and would take a
// place for empty, or another one for it. False where the table itself cannot be read to its end: SQLite meets that
// damage when it comes there.
bool isIndexWrong(const SQLite::Database& database, Indexed table);

}  // namespace Editor
