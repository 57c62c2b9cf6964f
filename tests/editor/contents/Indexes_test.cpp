#include "contents/Indexes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "contents/Database.h"
#include "contents/Library.h"
#include "editor/contents/TemporaryLibrary.h"

namespace Editor {
namespace {

constexpr int kRows = 60;  // on one page of the index each
constexpr std::size_t kPage = 4096;

struct Probe {
  Indexed table;
  const char* name;
  bool isOld;
  const char* insert;  // a row; ? is its number from 0
  const char* find;    // 1: what the index leads to is that row, and the row after the one before
};

constexpr Probe kProbes[] = {
    {Indexed::content, "content", false, "INSERT INTO content VALUES(2 + ?1 / 40, 1000 * ?1, x'41', x'42', 7)",
     "SELECT count(*) FROM content AS t WHERE t.rowid = (SELECT rowid FROM content WHERE type = 2 + ?1 / 40 AND "
     "number = 1000 * ?1) AND +t.number = 1000 * ?1"},
    {Indexed::liveModel, "live_model", false, "INSERT INTO live_model VALUES('key' || (100 + ?1), x'42', 7)",
     "SELECT count(*) FROM live_model AS t WHERE t.rowid = (SELECT rowid FROM live_model WHERE key = 'key' || (100 + "
     "?1))"},
    {Indexed::change, "change", false,
     "INSERT INTO change(entry, kind, type, number, key, what) VALUES(1 + ?1 / 20, 1, 2, 1000 * ?1, '', 1)",
     "SELECT count(*) FROM change AS t WHERE t.rowid = (SELECT rowid FROM change WHERE entry = 1 + ?1 / 20 AND "
     "kind = 1 AND type = 2 AND number = 1000 * ?1)"},
    {Indexed::oldContent, "contents", true, "INSERT INTO contents VALUES(2 + ?1 / 40, 1000 * ?1, x'41', x'42')",
     "SELECT count(*) FROM contents AS t WHERE t.rowid = (SELECT rowid FROM contents WHERE type = 2 + ?1 / 40 AND "
     "number = 1000 * ?1)"},
    {Indexed::oldLiveModel, "live", true, "INSERT INTO live VALUES('key' || (100 + ?1), x'42')",
     "SELECT count(*) FROM live AS t WHERE t.rowid = (SELECT rowid FROM live WHERE key = 'key' || (100 + ?1))"},
};

class Indexes : public testing::TestWithParam<Probe> {
 protected:
  Indexes() {
    if (GetParam().isOld)
      makeOldLibrary(file_);
    else
      madeLibrary(file_);
    SQLite::Database database(file_.string(), SQLite::OPEN_READWRITE);
    database.exec("BEGIN; DELETE FROM main." + std::string(GetParam().name));
    SQLite::Statement insert(database, GetParam().insert);
    for (int i = 0; i < kRows; ++i) {
      insert.bind(1, i);
      insert.exec();
      insert.reset();
    }
    database.exec("COMMIT; PRAGMA wal_checkpoint(TRUNCATE)");
    const std::string index = "sqlite_autoindex_" + std::string(GetParam().name) + "_1";
    page_ = kPage *
            std::size_t(
                database.execAndGet("SELECT rootpage FROM sqlite_master WHERE name = '" + index + "'").getInt64() - 1);
  }

  bool isWrong() const { return isIndexWrong(SQLite::Database(file_.string()), GetParam().table); }
  // Whether each row is found, and no other one for it.
  bool leadsToAll() const {
    const SQLite::Database database(file_.string());
    SQLite::Statement find(database, GetParam().find);
    try {
      for (int i = 0; i < kRows; ++i) {
        find.bind(1, i);
        if (!find.executeStep() || find.getColumn(0).getInt() != 1) return false;
        find.reset();
      }
    } catch (const SQLite::Exception&) {
      return false;
    }
    return true;
  }

  const TemporaryDirectory directory_;
  const std::filesystem::path file_ = directory_ / "library.db";
  std::size_t page_ = 0;
};

TEST_P(Indexes, OneThatDoesNotLeadToEveryRowIsWrongWhicheverBitOfItIs) {
  ASSERT_TRUE(leadsToAll());
  EXPECT_FALSE(isWrong());
  const std::string whole = bytesOfFile(file_);
  int wrong = 0;
  for (std::size_t bit = 0; bit < 8 * kPage; bit += 61) {
    std::string flipped = whole;
    flipped[page_ + bit / 8] = char(std::uint8_t(flipped[page_ + bit / 8]) ^ (1U << bit % 8));
    writeFile(file_, flipped);
    const bool isFound = isWrong();
    wrong += isFound ? 1 : 0;
    EXPECT_TRUE(isFound || leadsToAll()) << bit;
  }
  EXPECT_GT(wrong, 50);
}

TEST_P(Indexes, ATableThatCannotBeReadSaysNothingOfItsIndex) {
  std::string bytes = bytesOfFile(file_);
  const std::size_t table = std::stoul(
      PlainDatabase{file_}("SELECT rootpage FROM sqlite_master WHERE name = '" + std::string(GetParam().name) + "'"));
  bytes.replace((table - 1) * kPage, kPage, std::string(kPage, '\0'));
  writeFile(file_, bytes);
  EXPECT_FALSE(isWrong());
}

// Of version 1 the rows are found without it as well.
TEST(IndexesOfVersion1, OneThatIsWrongHidesNothingFromWhoReads) {
  const TemporaryDirectory directory;
  const std::filesystem::path file = directory / "library.db";
  makeOldLibrary(file);
  PlainDatabase{file}("INSERT INTO contents VALUES(4, 0x3F0806, x'41', x'42'); PRAGMA wal_checkpoint(TRUNCATE)");
  std::string bytes = bytesOfFile(file);
  const std::size_t page = kPage * (std::stoul(PlainDatabase{file}("SELECT rootpage FROM sqlite_master WHERE name = "
                                                                   "'sqlite_autoindex_contents_1'")) -
                                    1);
  const std::size_t key = bytes.find(std::string("\x3F\x08\x06"), page);
  ASSERT_LT(key, page + kPage);
  bytes[key + 2] = '\x0E';
  writeFile(file, bytes);
  Library library(file, {.use = Library::Use::read});
  int told = 0;
  library.leaveOutUnread([&](const Library::Unread&) { ++told; });
  EXPECT_EQ(library.contents(), (std::vector<ContentId>{{4, 0x3F0805}, {4, 0x3F0806}}));
  EXPECT_EQ(told, 1);
  EXPECT_EQ(library.contentName({4, 0x3F0806}), "A");
  EXPECT_EQ(library.contentName({4, 0x3F080E}), std::nullopt);
  EXPECT_THROW(Library(file).rename({4, 0x3F0805}, "B"), LibraryError);
}

INSTANTIATE_TEST_SUITE_P(OfEachTable, Indexes, testing::ValuesIn(kProbes),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace Editor
