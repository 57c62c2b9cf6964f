#include "targets/TargetJson.h"

#include <gtest/gtest.h>

#include "targets/TargetModels.h"

namespace Editor {
namespace {

TEST(TargetJson, theTargetStandsBeforeItsModels) {
  const Target target = parseTarget("0E0A05");
  const ModelSet models = freshTarget(target, false);
  const nlohmann::ordered_json json = toJson(target, models);
  EXPECT_EQ(jsonLine(json), R"({"target":"voice:user1:6",)" + jsonLine(toJson(models)).substr(1));
}

}  // namespace
}  // namespace Editor
