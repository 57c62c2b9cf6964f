#include "history/Check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contents/ContentFormat.h"
#include "editor/contents/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Bytes = Library::Bytes;
using State = Checked::State;

struct Checks : LibraryTest {
  std::vector<Checked> found(State state) {
    std::vector<Checked> those;
    Library library(file, {.use = Library::Use::read});
    checkLibrary(library, [&](const Checked& checked) {
      if (checked.state == state) those.push_back(checked);
    });
    return those;
  }
  std::vector<std::string> names(State state) {
    std::vector<std::string> all;
    for (const Checked& checked : found(state)) all.push_back(checked.name);
    return all;
  }
  // A voice in our format, an opaque multi, and the history of that.
  void fill() {
    Library library(file);
    library.store(kVoice, encodeContent(emptySetFor(kVoice)), "Piano");
    library.beginRun({"again"});
    library.store(kVoice, encodeContent(emptySetFor(kVoice)), "Grand");
    library.store(kMulti, Bytes{1, 2, 3}, "opaque");
    library.storeLive("voice", encodeContent(emptySetFor(headerTypeOf(headerOf(EditBuffer::normalVoice)))));
  }
  void damage(const std::string& sql) { PlainDatabase{file}(sql); }
};

TEST_F(Checks, EverythingIsGoodOrOpaque) {
  fill();
  EXPECT_THAT(names(State::damaged), IsEmpty());
  EXPECT_THAT(names(State::opaque), ElementsAre("file:multi:8"));
  EXPECT_THAT(names(State::good), ElementsAre("change", "content", "entry", "favourite", "live_model", "setting",
                                              "voice:user1:6", "voice:edit"));
}

TEST_F(Checks, WhatIsThereIsCounted) {
  fill();
  const auto count = [&] {
    Library library(file, {.use = Library::Use::read});
    CheckCounts counts = checkLibrary(library, [](const Checked&) {});
    return std::vector{counts.contents, counts.opaque, counts.damaged, counts.damagedInTables["change"]};
  };
  EXPECT_THAT(count(), ElementsAre(3, 1, 0, 0));
  damage("UPDATE live_model SET bytes = CAST(substr(bytes, 1, 40) || x'55' || substr(bytes, 42) AS BLOB)");
  damage("UPDATE change SET held_name = CAST('Pianp' AS BLOB) WHERE held_name IS NOT NULL");
  EXPECT_THAT(count(), ElementsAre(3, 1, 1, 1));
}

TEST_F(Checks, LiveModelsAreInNoOtherFormat) {
  Library(file).storeLive("voice", Bytes{1, 2, 3});
  EXPECT_THAT(names(State::damaged), ElementsAre("voice:edit"));
  EXPECT_THAT(names(State::opaque), IsEmpty());
}

TEST_F(Checks, ABitThatFlippedIsFoundWhereverItIs) {
  fill();
  damage("UPDATE content SET bytes = CAST(substr(bytes, 1, 40) || x'55' || substr(bytes, 42) AS BLOB) WHERE type = 4");
  damage("UPDATE live_model SET bytes = CAST(substr(bytes, 1, 40) || x'55' || substr(bytes, 42) AS BLOB)");
  damage("UPDATE change SET held_name = CAST('Pianp' AS BLOB) WHERE held_name IS NOT NULL");
  EXPECT_THAT(names(State::damaged), ElementsAre("voice:user1:6", "voice:edit", "change"));
  EXPECT_THAT(found(State::damaged)[0].reason, HasSubstr("checksum"));
  EXPECT_THAT(found(State::damaged)[2].reason, HasSubstr("entry 2: what voice:user1:6 held"));
  EXPECT_THAT(names(State::opaque), ElementsAre("file:multi:8"));
}

TEST_F(Checks, WhatClaimsToBeOursAndCannotBeReadIsDamaged) {
  fill();
  Bytes broken = encodeContent(emptySetFor(kVoice));
  broken.pop_back();
  Library(file).store(kVoice, broken, "Piano");
  EXPECT_THAT(names(State::damaged), ElementsAre("voice:user1:6"));
}

TEST_F(Checks, ADamagedTableIsNamedAndKeepsNothingElseFromBeingLookedAt) {
  fill();
  Library(file).setFavourite(kVoice, 1);
  const long page = std::stol(PlainDatabase{file}("SELECT rootpage FROM sqlite_master WHERE name = 'favourite'"));
  const long size = std::stol(PlainDatabase{file}("PRAGMA page_size"));
  std::string bytes = bytesOfFile(file);
  bytes.replace(std::size_t((page - 1) * size), 100, std::string(100, '\x55'));
  writeFile(file, bytes);
  EXPECT_THAT(names(State::damaged), ElementsAre("favourite"));
  EXPECT_THAT(names(State::good), ::testing::Contains("voice:user1:6"));
}

TEST_F(Checks, AContentOfNoPlaceIsDamaged) {
  fill();
  damage("INSERT INTO content VALUES(99, 5, x'41', x'01', 5)");
  damage("INSERT INTO content VALUES(1, 128, x'41', x'01', 5)");
  EXPECT_THAT(names(State::damaged), ElementsAre("content 128 of type 1", "content 5 of type 99"));
  EXPECT_EQ(found(State::damaged)[0].reason, "there is no such place");
}

TEST_F(Checks, AChangeThatNamesItsPlaceAsAnotherKindDoesIsDamaged) {
  for (const char* sql : {"key = 'x' WHERE kind = 1", "key = 'x' WHERE kind = 2", "number = 1 WHERE kind = 3",
                          "type = 1 WHERE kind = 4", "key = '' WHERE kind = 4"}) {
    std::filesystem::remove(file);
    fill();
    Library(file).setFavourite(kVoice, 1);
    Library(file).setMixingVoiceMaximum(7);
    EXPECT_THAT(names(State::damaged), IsEmpty());
    damage(std::string("UPDATE change SET ") + sql);
    EXPECT_THAT(names(State::damaged), ::testing::Each("entry")) << sql;
    EXPECT_THAT(found(State::damaged).at(0).reason, HasSubstr("does not name its place as it must")) << sql;
  }
}

TEST_F(Checks, AnEntryUndoesOneThatWasThereBeforeIt) {
  {
    Library library(file);
    for (const char* name : {"one", "two", "three"}) {
      library.beginRun({name});
      library.store(kVoice, Bytes{1}, name);
    }
    library.beginRun({"undo", {}, 1});
    library.store(kVoice, Bytes{1}, "zero");
  }
  EXPECT_THAT(names(State::damaged), IsEmpty());
  for (const char* sql :
       {"undoes = -1 WHERE number = 4", "undoes = 0 WHERE number = 4", "undoes = 4 WHERE number = 4",
        "undoes = 9 WHERE number = 4", "undoes = NULL WHERE number = 4", "undoes = 1 WHERE number = 3"}) {
    damage(std::string("UPDATE entry SET ") + sql);
    EXPECT_THAT(names(State::damaged), ElementsAre("entry")) << sql;
    damage("UPDATE entry SET undoes = NULL; UPDATE entry SET undoes = 1 WHERE number = 4");
  }
  damage("DELETE FROM entry WHERE number = 2; DELETE FROM change WHERE entry = 2");
  EXPECT_THAT(names(State::damaged), IsEmpty());
  damage("UPDATE entry SET undoes = 2 WHERE number = 4");
  EXPECT_THAT(found(State::damaged).at(0).reason, HasSubstr("undoes an entry that there is not"));
  damage("DELETE FROM entry WHERE number = 1; DELETE FROM change WHERE entry = 1");
  EXPECT_THAT(names(State::damaged), IsEmpty()) << "the oldest go, and leave their undos";
}

TEST_F(Checks, AnEntryHasANumberThatCanBeGiven) {
  for (const char* number : {"0", "-7", "9007199254740992", "9223372036854775807"}) {
    std::filesystem::remove(file);
    fill();
    damage(std::string("INSERT INTO entry(number, time, bytes, verb, sources) VALUES(") + number + ", 0, 0, 'x', x'')");
    EXPECT_THAT(names(State::damaged), ElementsAre("entry")) << number;
    EXPECT_EQ(found(State::damaged).at(0).reason, std::string("there is no entry ") + number);
    Library(file).store(kVoice, Bytes{1}, "goes on");
    EXPECT_EQ(Library(file).recordedEntries().front().number, 3) << number;
  }
}

TEST_F(Checks, AFlagStandsWhereThereCanBeOne) {
  fill();
  Library(file).setFavourite(kVoice, 1);
  EXPECT_THAT(names(State::damaged), IsEmpty());
  Library(file).setFavourite(kMulti, 1);
  EXPECT_THAT(found(State::damaged).at(0).reason, HasSubstr("it cannot be a favourite"));
}

TEST_F(Checks, ALibraryOfVersion1IsCheckedAsItIs) {
  makeOldLibrary(file);
  EXPECT_THAT(names(State::damaged), IsEmpty());
  EXPECT_THAT(names(State::opaque), ElementsAre("voice:user1:6", "nobody"));
  EXPECT_EQ(PlainDatabase{file}("PRAGMA user_version"), "1");
}

}  // namespace
}  // namespace Editor
