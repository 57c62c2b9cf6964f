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

TEST(TargetJson, aTextHasTheModelsOfOneTarget) {
  const Target target = parseTarget("voice:user1:6");
  const ModelSet models = freshTarget(target, false);
  const std::string text = jsonLine(toJson(models)) + "\n";
  EXPECT_EQ(modelsFromText(text, target), models);
  const auto whyNot = [&](const std::string& wrong) -> std::string {
    try {
      modelsFromText(wrong, target);
    } catch (const TargetJsonError& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_EQ(whyNot(text + text), "expected one object");
  EXPECT_NE(whyNot("{}"), "");
  EXPECT_NE(whyNot(""), "");
}

}  // namespace
}  // namespace Editor
