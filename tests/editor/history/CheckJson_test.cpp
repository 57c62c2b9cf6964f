#include "history/CheckJson.h"

#include <gtest/gtest.h>

#include "models/ModelJson.h"

namespace Editor {
namespace {

TEST(CheckJson, hasAReasonForWhatIsNotGood) {
  using Kind = Checked::Kind;
  using State = Checked::State;
  EXPECT_EQ(jsonLine(toJson({Kind::content, "voice:user1:6", State::good, ""})),
            R"({"content":"voice:user1:6","state":"good"})");
  EXPECT_EQ(jsonLine(toJson({Kind::content, "file:multi:1", State::opaque, "somebody's"})),
            R"({"content":"file:multi:1","state":"opaque","reason":"somebody's"})");
  EXPECT_EQ(jsonLine(toJson({Kind::table, "content", State::damaged, "torn\n"})),
            R"({"table":"content","state":"damaged","reason":"torn\n"})");
}

}  // namespace
}  // namespace Editor
