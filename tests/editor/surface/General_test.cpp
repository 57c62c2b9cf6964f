#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "bda/editor.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST(General, ThePlacesOfTheInstrumentAreKnownWithoutALibrary) {
  char* json = nullptr;
  ASSERT_EQ(bda_places(&json), BDA_OK);
  const std::string lines = json;
  bda_free(json);
  EXPECT_THAT(lines, StartsWith(R"({"bank":")"));
  EXPECT_THAT(lines, HasSubstr(R"({"bank":"voice:user1","kind":"voice","first":"voice:user1:1",)"
                               R"("last":"voice:user1:128","places":128})"
                               "\n"));
  EXPECT_EQ(bda_places(nullptr), BDA_MISUSED);
}

}  // namespace
