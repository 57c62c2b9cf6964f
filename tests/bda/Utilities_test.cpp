#include "bda/BulkDumpAssistant.h"

#include "support/AssistantFixture.h"

namespace {

using namespace Testing;

using UtilitiesTest = AssistantFixture;

TEST_F(UtilitiesTest, SmokeOpensAndCloses) {
  openHeader();
  EXPECT_TRUE(isHeaderOpen());
  EXPECT_FALSE(isHeaderOpen());
}

}  // namespace
