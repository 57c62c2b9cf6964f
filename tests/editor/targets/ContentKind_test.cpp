#include "targets/ContentKind.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Editor {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(ContentKind, isKnownOfEveryContentAndHasItsShape) {
  const std::vector<std::pair<ContentId, ContentKind>> expected{{{4, 0x3F0000}, ContentKind::voice},
                                                                {{4, voiceContentNumber(11, 0)}, ContentKind::drum},
                                                                {{4, voiceContentNumber(14, 0)}, ContentKind::drum},
                                                                {{4, mixingVoiceNumber(0, 3)}, ContentKind::mix},
                                                                {{4, mixingVoiceNumber(9, 3)}, ContentKind::mix},
                                                                {{1, 127}, ContentKind::multi},
                                                                {{kContentPerformance, 200}, ContentKind::performance},
                                                                {{kContentMaster, 3}, ContentKind::master},
                                                                {{kContentRemote, 3}, ContentKind::remote},
                                                                {{ContSrv::ContType_Single, 0}, ContentKind::single}};
  for (const auto& [id, kind] : expected) {
    ASSERT_TRUE(isContent(id)) << id.type << ' ' << id.number;
    EXPECT_EQ(contentKindOf(id), kind) << wordOf(kind);
    EXPECT_TRUE(haveSameShape(emptySetFor(id), emptySetFor(kind))) << wordOf(kind);
  }
}

TEST(ContentKind, hasAWord) {
  const std::vector<std::string> words = contentKindWords();
  EXPECT_THAT(words, ElementsAre("voice", "drum", "mix", "multi", "performance", "master", "remote", "single"));
  for (std::size_t i = 0; i < words.size(); ++i) {
    EXPECT_EQ(wordOf(ContentKind(i)), words[i]);
    EXPECT_EQ(contentKindNamed(words[i]), ContentKind(i));
  }
  try {
    contentKindNamed("voices");
    FAIL() << "there is no such kind";
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(), AllOf(HasSubstr("expected one of voice, drum"), HasSubstr("did you mean voice?")));
  }
}

TEST(ContentKind, aMixingVoiceFitsWhereverANormalVoiceDoes) {
  for (const char* const place : {"voice:user1:6", "voice:edit", "file:mix:5:1", "voice:part:3", "voice:mix:1"})
    for (const ContentKind kind : {ContentKind::voice, ContentKind::mix})
      EXPECT_TRUE(fits(kind, parseTarget(place))) << place;
  EXPECT_FALSE(fits(ContentKind::mix, ContentKind::drum));
  EXPECT_STREQ(wordsOf(ContentKind::mix), wordsOf(ContentKind::voice));
}

TEST(ContentKind, aPartPlaysBothKindsOfVoice) {
  EXPECT_TRUE(fits(ContentKind::drum, parseTarget("voice:part:3")));
  EXPECT_FALSE(fits(ContentKind::drum, parseTarget("voice:edit")));
  EXPECT_FALSE(fits(ContentKind::multi, parseTarget("voice:part:3")));
}

TEST(ContentKind, everythingElseFitsItsOwnKindOnly) {
  EXPECT_TRUE(fits(ContentKind::multi, parseTarget("multi:edit")));
  EXPECT_FALSE(fits(ContentKind::multi, parseTarget("performance:edit")));
  for (const char* const none : {"system", "additional"}) {
    EXPECT_FALSE(contentKindOf(parseTarget(none)));
    for (std::size_t kind = 0; kind < kContentKinds; ++kind) EXPECT_FALSE(fits(ContentKind(kind), parseTarget(none)));
  }
}

}  // namespace
}  // namespace Editor
