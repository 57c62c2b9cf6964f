#include "messages/Nearest.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

using Editor::didYouMean;
using Editor::editDistance;
using Editor::nearest;

TEST(Nearest, eachSlipCountsOnce) {
  EXPECT_EQ(editDistance("", ""), 0u);
  EXPECT_EQ(editDistance("", "list"), 4u);
  EXPECT_EQ(editDistance("list", ""), 4u);
  EXPECT_EQ(editDistance("receive", "receive"), 0u);
  EXPECT_EQ(editDistance("recive", "receive"), 1u);
  EXPECT_EQ(editDistance("receieve", "receive"), 1u);
  EXPECT_EQ(editDistance("receife", "receive"), 1u);
  EXPECT_EQ(editDistance("recieve", "receive"), 1u);
  EXPECT_EQ(editDistance("kitten", "sitting"), 3u);
  EXPECT_EQ(editDistance("ca", "abc"), 3u);  // what was swapped is left alone
}

RC_GTEST_PROP(Nearest, theDistanceIsTheSameBothWaysAndAtMostTheLongerWord,
              (const std::string& a, const std::string& b)) {
  RC_ASSERT(editDistance(a, b) == editDistance(b, a));
  RC_ASSERT(editDistance(a, b) <= std::max(a.size(), b.size()));
  RC_ASSERT((editDistance(a, b) == 0) == (a == b));
}

TEST(Nearest, theNearestIsMeantAndOfSeveralTheFirst) {
  EXPECT_EQ(nearest("contnts", {"list", "contents", "content"}), "contents");
  EXPECT_EQ(nearest("rest", {"test", "best"}), "test");
  EXPECT_EQ(nearest("bakcpu", {"backup"}), "backup");
}

TEST(Nearest, whatIsFarIsNotMeant) {
  EXPECT_EQ(nearest("dance", {"rename", "remove", "list"}), "");
  EXPECT_EQ(nearest("bkapuc", {"backup"}), "");
  EXPECT_EQ(nearest("x", {"y"}), "");  // nothing of it is left
  EXPECT_EQ(nearest("", {"y"}), "");
  EXPECT_EQ(nearest("list", {}), "");
}

TEST(Nearest, theQuestionIsAskedOnlyWhenSomethingIsNear) {
  EXPECT_EQ(didYouMean("lsit", {"list", "diff"}), ": did you mean list?");
  EXPECT_EQ(didYouMean("dance", {"list", "diff"}), "");
}
