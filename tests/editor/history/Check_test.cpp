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

TEST_F(Checks, ALibraryOfVersion1IsCheckedAsItIs) {
  makeOldLibrary(file);
  EXPECT_THAT(names(State::damaged), IsEmpty());
  EXPECT_THAT(names(State::opaque), ElementsAre("voice:user1:6", "nobody"));
  EXPECT_EQ(PlainDatabase{file}("PRAGMA user_version"), "1");
}

}  // namespace
}  // namespace Editor
