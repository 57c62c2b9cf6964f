#include "contents/Indexes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "contents/Database.h"

namespace Editor {

namespace {

struct KeyedTable {
  const char* name;
  const char* key;      // the columns of its index
  const char* columns;  // the same as Row has them, 0 and '' where there is none
};

constexpr const char* kContentColumns = "type, number, 0, 0, ''";
constexpr const char* kLiveColumns = "0, 0, 0, 0, key";
constexpr std::array<KeyedTable, 5> kTables{{
    {"content", "type, number", kContentColumns},
    {"live_model", "key", kLiveColumns},
    {"change", "entry, kind, type, number, key", "entry, kind, type, number, key"},
    {"contents", "type, number", kContentColumns},
    {"live", "key", kLiveColumns},
}};

// Numbers and a text of the key and the number of the row, as SQLite orders them too, and then the types of the
// columns: for SQLite a text is not the blob of the same bytes.
using Row = std::tuple<std::array<std::int64_t, 4>, std::string, std::int64_t, std::array<int, 5>>;

std::vector<Row> rowsOf(const SQLite::Database& database, const KeyedTable& table, const std::string& way) {
  SQLite::Statement statement(database,
                              std::string("SELECT ") + table.columns + ", rowid FROM main." + table.name + way);
  std::vector<Row> rows;
  while (statement.executeStep()) {
    const auto number = [&](int column) { return statement.getColumn(column).getInt64(); };
    std::array<int, 5> types{};
    for (int column = 0; column < int(types.size()); ++column)
      types.at(std::size_t(column)) = statement.getColumn(column).getType();
    rows.emplace_back(std::array{number(0), number(1), number(2), number(3)}, statement.getColumn(4).getString(),
                      number(5), types);
  }
  return rows;
}

}  // namespace

bool isIndexWrong(const SQLite::Database& database, Indexed table) {
  const KeyedTable& keyed = kTables.at(std::size_t(table));
  std::vector<Row> rows;
  try {
    rows = rowsOf(database, keyed, " NOT INDEXED");
  } catch (const SQLite::Exception& error) {
    if (!isDamage(error)) throw;
    return false;
  }
  std::sort(rows.begin(), rows.end());
  try {
    const std::string index = " INDEXED BY sqlite_autoindex_" + std::string(keyed.name) + "_1 ORDER BY ";
    return rows != rowsOf(database, keyed, index + keyed.key);
  } catch (const SQLite::Exception& error) {
    if (!isDamage(error)) throw;
    return true;
  }
}

}  // namespace Editor
