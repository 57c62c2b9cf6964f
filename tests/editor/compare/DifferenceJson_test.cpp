#include "compare/DifferenceJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "models/ModelJson.h"

namespace Editor {
namespace {

using testing::ElementsAre;

std::vector<std::string> linesOf(const Difference& difference, const ParameterNames& names = {}) {
  std::vector<std::string> lines;
  for (const nlohmann::ordered_json& object : toJson(difference, names)) lines.push_back(jsonLine(object));
  return lines;
}

TEST(DifferenceJson, whatOnlyOneHasIsOneObject) {
  Difference difference;
  difference.target = "voice:user1:6";
  difference.name = "Caf\xE9";
  difference.kind = Difference::Kind::onlyInFirst;
  EXPECT_THAT(linesOf(difference), ElementsAre(R"({"content":"voice:user1:6","path":null,"a":"Caf\u00e9","b":null})"));
  difference.kind = Difference::Kind::onlyInSecond;
  EXPECT_THAT(linesOf(difference), ElementsAre(R"({"content":"voice:user1:6","path":null,"a":null,"b":"Caf\u00e9"})"));
}

TEST(DifferenceJson, eachValueIsAnObjectNamesFirst) {
  Difference difference;
  difference.target = "voice:user1:6";
  difference.names = {{"name", "Old", "New"}};
  difference.parameters = {{"voice.common[3]", std::int64_t{0}, std::int64_t{2}},
                           {"favourite", std::int64_t{1}, std::monostate()}};
  ParameterNames names;
  names.nameParameter("voice.common[3]", "Volume");
  names.nameValue("voice.common[3]", 0, "Off");
  EXPECT_THAT(linesOf(difference, names),
              ElementsAre(R"({"content":"voice:user1:6","path":"name","a":"Old","b":"New"})",
                          R"({"content":"voice:user1:6","path":"voice.common[3]","a":0,"b":2,"name":"Volume",)"
                          R"("aName":"Off"})",
                          R"({"content":"voice:user1:6","path":"favourite","a":1,"b":null})"));
}

TEST(DifferenceJson, theSummaryCountsContents) {
  EXPECT_EQ(jsonLine(toJson(Comparison{1, 2, 3, 4, 5, 6})),
            R"({"summary":{"equal":1,"different":2,"onlyA":3,"onlyB":4,"renamed":5}})");
}

}  // namespace
}  // namespace Editor
