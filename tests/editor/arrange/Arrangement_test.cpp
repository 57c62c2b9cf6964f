#include "arrange/Arrangement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Kind = Arrangement::Kind;

std::vector<std::string> namesOf(const Places<Target>& places) {
  std::vector<std::string> names;
  for (const Target& target : places.list) names.push_back(target.name);
  return names;
}

std::string whyNot(const std::string& from, const std::string& to, Kind kind = Kind::copy) {
  try {
    parseArrangement(kind, from, to);
  } catch (const TargetError& error) {
    EXPECT_EQ(error.kind(), TargetError::Kind::noTarget);
    return error.what();
  }
  return "accepted";
}

TEST(Arrangement, aRangeGoesToARangeOrToItsFirstPlaceAndOn) {
  for (const char* to : {"voice:mix:3..4", "voice:mix:3"}) {
    const Arrangement arrangement = parseArrangement(Kind::move, "voice:user1:5..6", to);
    EXPECT_EQ(arrangement.kind, Kind::move);
    EXPECT_THAT(namesOf(arrangement.from), ElementsAre("voice:user1:5", "voice:user1:6"));
    EXPECT_THAT(namesOf(arrangement.to), ElementsAre("voice:mix:3", "voice:mix:4"));
  }
}

TEST(Arrangement, aBankGoesToABankOfItsSize) {
  EXPECT_EQ(parseArrangement(Kind::copy, "voice:user1", "voice:user2").to.list.size(), 128u);
  EXPECT_EQ(parseArrangement(Kind::copy, "voice:part", "voice:mix").to.list.back().name, "voice:mix:16");
  EXPECT_EQ(parseArrangement(Kind::copy, "voice:user1:1..16", "voice:part").to.list.size(), 16u);
}

TEST(Arrangement, bothSidesAreAsMany) {
  EXPECT_EQ(whyNot("voice:user1:1..16", "voice:user2"),
            "voice:user1:1..16 has 16 places, voice:user2 has 128 places: expected as many, or the first of them");
  EXPECT_THAT(whyNot("voice:user1:1", "voice:user2"), HasSubstr("has 1 place, voice:user2 has 128 places"));
  EXPECT_THAT(whyNot("voice:user1", "voice:user2:2"), HasSubstr("its bank has 127"));
}

TEST(Arrangement, whatIsNoPlaceIsNone) {
  EXPECT_EQ(whyNot("system", "system"), "system is neither a content nor an edit buffer");
  EXPECT_THAT(whyNot("voice:edit", "additional"), HasSubstr("additional is neither"));
  EXPECT_THAT(whyNot("voice:usr1", "voice:user2"), HasSubstr("did you mean voice:user1?"));
}

TEST(Arrangement, whatOverlapsIsCopiedAndMovedButNotSwapped) {
  for (const Kind kind : {Kind::copy, Kind::move})
    EXPECT_EQ(whyNot("voice:user1:1..3", "voice:user1:2", kind), "accepted");
  EXPECT_EQ(whyNot("voice:user1:1..3", "voice:user1:3", Kind::swap),
            "voice:user1:3 is on both sides: what overlaps cannot be swapped");
  EXPECT_THAT(whyNot("file:mix:1:2", "voice:mix:2", Kind::swap), HasSubstr("voice:mix:2 is on both sides"));
  EXPECT_EQ(whyNot("voice:user1:1..3", "voice:user1:4", Kind::swap), "accepted");
}

}  // namespace
}  // namespace Editor
