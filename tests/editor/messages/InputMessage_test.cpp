#include "messages/InputMessage.h"

#include <gtest/gtest.h>

namespace Editor {
namespace {

TEST(InputLoss, aMessageThatIsCutOrAFileThatIsNotBuiltAsItMustBeIsBroken) {
  using Kind = InputLoss::Kind;
  using Reason = StreamJoiner::Reason;
  const std::string file = "a.syx";
  const auto breaks = [&](Kind kind) { return isBroken({file, 0, 1, "why", kind}); };
  EXPECT_EQ(kindOf(Reason::RealTime), Kind::realTime);
  EXPECT_EQ(kindOf(Reason::Stray), Kind::loose);
  for (const Reason reason : {Reason::Abandoned, Reason::Unfinished, Reason::TooLong, Reason::Overrun})
    EXPECT_EQ(kindOf(reason), Kind::cutShort);
  EXPECT_FALSE(breaks(Kind::realTime) || breaks(Kind::loose));
  EXPECT_TRUE(breaks(Kind::cutShort) && breaks(Kind::brokenFile));
}

}  // namespace
}  // namespace Editor
