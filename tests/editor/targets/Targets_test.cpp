#include "targets/Targets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Editor::BulkAddress;
using Editor::parsePlaces;
using Editor::parseTargets;
using Editor::Target;
using Editor::TargetError;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

std::vector<std::string> namesOf(const std::string& text) {
  std::vector<std::string> names;
  for (const Target& target : parseTargets(text).list) names.push_back(target.name);
  return names;
}

std::string whyNot(const std::string& text) {
  try {
    parseTargets(text);
  } catch (const TargetError& error) {
    EXPECT_EQ(error.kind(), TargetError::Kind::noTarget);
    return error.what();
  }
  return "accepted";
}

}  // namespace

TEST(Targets, anAddressIsOnePlace) {
  EXPECT_THAT(namesOf("voice:user1:6"), ElementsAre("voice:user1:6"));
  EXPECT_THAT(namesOf("0E0A05"), ElementsAre("voice:user1:6"));
  EXPECT_THAT(namesOf("drum:gm"), ElementsAre("drum:gm"));
  EXPECT_THAT(namesOf("system"), ElementsAre("system"));
  EXPECT_THAT(namesOf("additional"), ElementsAre("additional"));
  EXPECT_EQ(parseTargets("0E0A05").name, "voice:user1:6");
  EXPECT_TRUE(parseTargets("0E0A05").isOne);
}

TEST(Targets, onlyWhatWouldBeTakenIsAskedAbout) {
  EXPECT_THAT(whyNot("multi:1"), HasSubstr("\"multi:1\": did you mean file:multi:1?"));
  EXPECT_THAT(whyNot("multi"), HasSubstr("did you mean file:multi?"));
  EXPECT_THAT(whyNot("multi:1..3"), HasSubstr("did you mean file:multi:1?"));
  EXPECT_THAT(whyNot("voice:user1:1-16"), testing::StrEq("\"voice:user1:1-16\": did you mean voice:user1:1..16?"));
  EXPECT_THAT(whyNot("voice:user1:1-129"), Not(HasSubstr("..129")));
  EXPECT_THAT(whyNot("scren"), Not(HasSubstr("did you mean")));  // no target
  EXPECT_THAT(whyNot("names:waveforms"), Not(HasSubstr("names:waveforms:1")));
  EXPECT_THAT(whyNot("additionl"), HasSubstr("did you mean additional?"));
  const auto whyNoContent = [](const char* text) -> std::string {
    try {
      Editor::parseContents(text);
    } catch (const TargetError& error) {
      return error.what();
    }
    return "accepted";
  };
  EXPECT_THAT(whyNoContent("voice:eidt"), Not(HasSubstr("did you mean voice:edit")));
  EXPECT_THAT(whyNoContent("voice:usr1"), HasSubstr("did you mean voice:user1?"));
}

TEST(Targets, wherePlacesAreTakenOneByOneABankOrARangeIsSaidToBeNone) {
  for (const char* several :
       {"voice:user1", "voice:user1:1..16", "voice:user1:1-16", "voice:user1:9..x", "file:multi"}) {
    try {
      Editor::parseTarget(several);
      FAIL() << several;
    } catch (const TargetError& error) {
      EXPECT_EQ(error.what(), '"' + std::string(several) + "\": expected one place, not a bank or a range");
    }
  }
}

TEST(Targets, aBankIsAllOfItsPlacesInOrder) {
  const struct {
    const char* bank;
    std::size_t places;
    const char* last;
  } banks[] = {{"voice:preset8", 128, "voice:preset8:128"},
               {"voice:gm", 128, "voice:gm:128"},
               {"voice:user1", 128, "voice:user1:128"},
               {"voice:part", 16, "voice:part:16"},
               {"voice:mix", 16, "voice:mix:16"},
               {"drum:preset", 64, "drum:preset:64"},
               {"drum:user", 32, "drum:user:32"},
               {"performance:b", 128, "performance:b:128"},
               {"master", 128, "master:128"},
               {"remote", 50, "remote:50"},
               {"file:multi", 128, "file:multi:128"},
               {"file:mix:128", 16, "file:mix:128:16"},
               {"FILE:Voice:User3", 128, "file:voice:user3:128"}};
  for (const auto& [bank, places, last] : banks) {
    const auto targets = parseTargets(bank);
    EXPECT_FALSE(targets.isOne);
    EXPECT_EQ(targets.name, bank);
    ASSERT_EQ(targets.list.size(), places) << bank;
    EXPECT_EQ(targets.list.back().name, last);
  }
}

TEST(Targets, aRangeIsSomeOfABank) {
  EXPECT_THAT(namesOf("voice:user1:127..128"), ElementsAre("voice:user1:127", "voice:user1:128"));
  EXPECT_THAT(namesOf("remote:3..3"), ElementsAre("remote:3"));
  EXPECT_FALSE(parseTargets("remote:3..3").isOne);
  EXPECT_THAT(namesOf("file:mix:2:1..2"), ElementsAre("file:mix:2:1", "file:mix:2:2"));
}

TEST(Targets, whatIsNoRangeSaysWhatWasExpected) {
  EXPECT_THAT(whyNot("voice:user1:1..129"), HasSubstr("\"voice:user1:129\": expected voice:user1..3:1..128"));
  EXPECT_THAT(whyNot("voice:user1:0..3"), HasSubstr("\"voice:user1:0\": expected voice:user1..3:1..128"));
  EXPECT_THAT(whyNot("voice:user1:4..3"), HasSubstr("the second number is less than the first"));
  for (const char* text : {"voice:edit..3", "voice:user1..3", "voice:user1:1..", "voice:user1:1..x", "..", "..3",
                           "voice:user1:1..voice:user1:3"})
    EXPECT_THAT(whyNot(text), HasSubstr("expected a range such as voice:user1:1..16")) << text;
}

TEST(Targets, blocksThatAreNoTargetsAreRefused) {
  EXPECT_THAT(whyNot("system:common"), HasSubstr("is no target"));
  EXPECT_THAT(whyNot("system:quick-setup"), HasSubstr("is no target"));
  EXPECT_THAT(whyNot("0F0A05"), HasSubstr("is no target"));
}

TEST(Targets, whatMayHaveBeenMeantIsAskedFor) {
  EXPECT_THAT(whyNot("voice:usr1"), HasSubstr("did you mean voice:user1?"));
  EXPECT_THAT(whyNot("performence:b"), HasSubstr("did you mean performance:b?"));
  EXPECT_THAT(whyNot("aditional"), HasSubstr("did you mean additional?"));
  EXPECT_THAT(whyNot("sytem"), HasSubstr("did you mean system?"));
  EXPECT_THAT(whyNot("nothing-like-it"), Not(HasSubstr("did you mean")));
}

TEST(Targets, banksAndRangesAreAskedForBlockByBlock) {
  EXPECT_EQ(parsePlaces("system").list, Editor::systemAddresses());
  EXPECT_EQ(parsePlaces("system:quick-setup").list.size(), 6u);
  EXPECT_EQ(parsePlaces("names:waveforms").list.size(), 64u);
  EXPECT_EQ(Editor::parseAddresses({"master:2..3", "0E", "0A", "05"}),
            (std::vector<BulkAddress>{{0x0E, 0x70, 0x01}, {0x0E, 0x70, 0x02}, {0x0E, 0x0A, 0x05}}));
  EXPECT_THROW(parsePlaces("additional"), TargetError);
}

TEST(Targets, placesGoOnInTheirBankFromTheFirst) {
  const auto placesFrom = [](const char* first, std::size_t count) {
    std::vector<std::string> names;
    for (const Target& target : Editor::placesFrom(Editor::parseTarget(first), count)) names.push_back(target.name);
    return names;
  };
  EXPECT_THAT(placesFrom("0E0A05", 2), ElementsAre("voice:user1:6", "voice:user1:7"));
  EXPECT_THAT(placesFrom("voice:user1:128", 1), ElementsAre("voice:user1:128"));
  EXPECT_THAT(placesFrom("file:mix:2:15", 2), ElementsAre("file:mix:2:15", "file:mix:2:16"));
  EXPECT_THAT(placesFrom("voice:edit", 1), ElementsAre("voice:edit"));
  try {
    placesFrom("voice:user1:120", 10);
    FAIL();
  } catch (const TargetError& error) {
    EXPECT_EQ(error.kind(), TargetError::Kind::noTarget);
    EXPECT_STREQ(error.what(), "voice:user1:120: 10 places are needed from there on, its bank has 9");
  }
  EXPECT_THROW(placesFrom("drum:gm", 2), TargetError);
}

TEST(Targets, aContentHasOneNameByWhateverAddress) {
  for (const char* text : {"voice:user1:6", "file:voice:user1:6", "0E0A05", "0C0A05"})
    EXPECT_EQ(placeNameOf(Editor::parseTarget(text)), "voice:user1:6");
  EXPECT_EQ(placeNameOf(Editor::parseTarget("file:mix:1:3")), "voice:mix:3");
  EXPECT_EQ(placeNameOf(Editor::parseTarget("file:multi:1")), "file:multi:1");
  EXPECT_EQ(placeNameOf(Editor::parseTarget("voice:part:4")), "voice:part:4");
}

TEST(Targets, onlyContentsCanBeAskedForAsContents) {
  EXPECT_EQ(Editor::parseContents("voice:user1:1..16").list.size(), 16u);
  for (const char* text : {"voice:part", "voice:edit", "system"})
    EXPECT_THROW(Editor::parseContents(text), TargetError);
}

TEST(Targets, aBankIsWhatNumberedNamesShare) {
  EXPECT_EQ(Editor::bankOfName("voice:user1:6"), "voice:user1");
  EXPECT_EQ(Editor::bankOfName("master:128"), "master");
  EXPECT_EQ(Editor::bankOfName("file:mix:3:5"), "file:mix:3");
  EXPECT_EQ(Editor::bankOfName("drum:gm"), "drum:gm");
  EXPECT_EQ(Editor::bankOfName("voice:"), "voice:");
  EXPECT_EQ(Editor::bankOfName("12"), "12");
}
