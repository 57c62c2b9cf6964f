#include "find/Candidates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contents/ContentFormat.h"
#include "editor/contents/TemporaryLibrary.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr ContentId kVoice{4, 0x3F0805};
constexpr ContentId kMulti{1, 0};

struct CandidatesTest : testing::Test {
  CandidatesTest() {
    editor.library().store(kVoice, encodeContent(emptySetFor(kVoice)), "Voice");
    editor.library().setFavourite(kVoice, 2);
    editor.library().store(kMulti, std::vector<std::uint8_t>{1}, "Opaque");
    ModelSet master = editor.tools().live(EditBuffer::master);
    master.master->name.assign("Edited");
    EXPECT_TRUE(editor.tools().replaceLive(EditBuffer::master, 0, master));
  }

  std::vector<std::string> visit(EditBuffers buffers) {
    std::vector<std::string> places;
    all.clear();
    forEachCandidate(
        editor, buffers,
        [&](Candidate candidate) {
          places.push_back(candidate.place);
          all.push_back(std::move(candidate));
        },
        [&](const std::string& place, const std::string& why) { places.push_back(place + ": " + why); });
    return places;
  }

  EmbeddedEditor editor;
  std::vector<Candidate> all;
};

TEST_F(CandidatesTest, areContentsWithTheirFlags) {
  EXPECT_THAT(visit(EditBuffers::leftOut), ElementsAre("file:multi:1", "voice:user1:6"));
  EXPECT_EQ(all[0].kind, ContentKind::multi);
  EXPECT_EQ(all[0].favourite, 0);
  EXPECT_EQ(all[1].kind, ContentKind::voice);
  EXPECT_EQ(all[1].favourite, 2);
  EXPECT_EQ(all[1].name, "Voice");
  EXPECT_EQ(all[1].id, kVoice);
}

TEST_F(CandidatesTest, areEditBuffersThatWereStoredWhenAsked) {
  EXPECT_THAT(visit(EditBuffers::included), ElementsAre("file:multi:1", "voice:user1:6", "master:edit"));
  EXPECT_EQ(all[2].name, "Edited");
  EXPECT_EQ(all[2].kind, ContentKind::master);
  ModelSet models = emptySetFor(ContentKind::master);
  ASSERT_FALSE(decodeContent(all[2].bytes, models));
  EXPECT_EQ(models.master->name.text(), "Edited");
}

TEST_F(CandidatesTest, theVoiceOfAPartIsOfTheKindThatItPlays) {
  const Candidate part = candidateAt(editor, parseTarget("voice:part:4"));
  EXPECT_EQ(part.kind, ContentKind::voice);
  ModelSet models = emptySetFor(ContentKind::voice);
  EXPECT_FALSE(decodeContent(part.bytes, models));  // with the multi that it plays in
  EXPECT_EQ(contentKindOf(EditBuffer::partVoice, emptySetFor(9, true)), ContentKind::drum);
}

TEST_F(CandidatesTest, aDamagedOneIsNamedAndKeepsNoneFromTheOthers) {
  const TemporaryDirectory directory;
  const auto file = directory / "library.db";
  {
    Library library(file);
    library.store(kVoice, std::vector<std::uint8_t>{1, 2}, "Voice");
    library.store(kMulti, std::vector<std::uint8_t>{1, 2}, "Multi");
  }
  PlainDatabase plain(file);
  plain("UPDATE content SET bytes = x'03' WHERE type = 1");
  EmbeddedEditor damaged(file);
  std::vector<std::string> places;
  forEachCandidate(
      damaged, EditBuffers::leftOut, [&](const Candidate& candidate) { places.push_back(candidate.place); },
      [&](const std::string& place, const std::string& why) { places.push_back(place + ": " + why); });
  EXPECT_THAT(places, ElementsAre("file:multi:1: it is damaged", "voice:user1:6"));
  EXPECT_THROW(candidateAt(damaged, parseTarget("file:multi:1")), TargetError);
}

TEST_F(CandidatesTest, anAddressIsThatOfAContentOrAnEditBuffer) {
  EXPECT_EQ(candidateAt(editor, parseTarget("voice:user1:6")).name, "Voice");
  EXPECT_EQ(candidateAt(editor, parseTarget("0C0A05")).place, "voice:user1:6");
  EXPECT_NO_THROW(requireCandidate(parseTarget("voice:edit")));
  for (const char* const target : {"system", "additional"})
    EXPECT_THROW(requireCandidate(parseTarget(target)), TargetError);
  try {
    candidateAt(editor, parseTarget("voice:user1:7"));
    FAIL();
  } catch (const TargetError& error) {
    EXPECT_EQ(error.kind(), TargetError::Kind::refused);
  }
}

}  // namespace
}  // namespace Editor
