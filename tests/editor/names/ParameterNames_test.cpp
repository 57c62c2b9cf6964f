#include "names/ParameterNames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using Editor::ParameterNames;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const auto kIsVoices = [](const std::string& path) { return path.rfind("voice.", 0) == 0; };

ParameterNames names() {
  ParameterNames names;
  names.nameParameter("voice.common[3]", "Volume");
  names.nameParameter("multi.common[5]", "Volume");
  names.nameParameter("voice.common[4]", "Pan");
  names.nameValue("voice.common[3]", 0, "Off");
  names.nameValue("voice.common[3]", 127, "Full");
  names.nameValue("voice.common[3]", 126, "Full");
  return names;
}

}  // namespace

TEST(ParameterNames, tellWhatParametersAndValuesAreCalled) {
  EXPECT_EQ(names().nameOf("voice.common[3]"), "Volume");
  EXPECT_EQ(names().nameOf("voice.common[33]"), "");
  EXPECT_EQ(names().nameOf("voice.common[3]", std::int64_t{0}), "Off");
  EXPECT_EQ(names().nameOf("voice.common[3]", std::int64_t{1}), "");
  EXPECT_EQ(names().nameOf("voice.common[4]", std::int64_t{0}), "");
  EXPECT_EQ(names().nameOf("voice.common[3]", std::string("0")), "");
}

TEST(ParameterNames, tellHowManyOfSomePathsAreCalledSo) {
  EXPECT_THAT(names().namesAmong([](const std::string&) { return true; }),
              ElementsAre(std::pair("Pan", 1), std::pair("Volume", 2)));
  EXPECT_THAT(names().namesAmong([](const std::string& path) { return path == "voice.common[3]"; }),
              ElementsAre(std::pair("Volume", 1)));
  EXPECT_THAT(ParameterNames().namesAmong([](const std::string&) { return true; }), IsEmpty());
}

TEST(ParameterNames, theFirstNameOfAParameterAndOfAValueStays) {
  ParameterNames twice = names();
  EXPECT_FALSE(twice.nameParameter("voice.common[3]", "Level"));
  EXPECT_FALSE(twice.nameValue("voice.common[3]", 0, "None"));
  EXPECT_EQ(twice.nameOf("voice.common[3]"), "Volume");
  EXPECT_EQ(twice.nameOf("voice.common[3]", std::int64_t{0}), "Off");
}

TEST(ParameterNames, aWordIsAPathOrTheNameOfOneThatIsThere) {
  EXPECT_EQ(names().pathOf("voice.common[9]", kIsVoices), "voice.common[9]");
  EXPECT_EQ(names().pathOf("Volume", kIsVoices), "voice.common[3]");
  EXPECT_EQ(names().pathOf("volume", kIsVoices), "");
  EXPECT_EQ(names().pathOf("multi.common[5]", kIsVoices), "");
  try {
    names().pathOf("Volume", [](const std::string& path) { return path != "Volume"; });
    FAIL() << "both are meant";
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(), HasSubstr("\"Volume\" is the name of multi.common[5] and voice.common[3]"));
  }
}

TEST(ParameterNames, theNameOfAValueStandsForAllThatAreCalledSo) {
  EXPECT_THAT(names().valuesOf("voice.common[3]", "Off"), ElementsAre(0));
  EXPECT_THAT(names().valuesOf("voice.common[3]", "Full"), ElementsAre(126, 127));
  EXPECT_THAT(names().valuesOf("voice.common[4]", "Off"), IsEmpty());
}
