#include "contents/Settings.h"

#include <gtest/gtest.h>

namespace Editor {
namespace {

// What is said of a number is what it is set by, and nothing else is.
TEST(Settings, AreWrittenAndReadInTheSameWords) {
  for (const Setting& setting : Settings::kAll) {
    ASSERT_TRUE(setting.parameter || setting.has(setting.otherwise)) << setting.name;
    for (const std::int64_t number : {setting.least, setting.least + 1, setting.most - 1, setting.most})
      EXPECT_EQ(numberFor(setting, wordsOf(setting, number)), number) << setting.name;
    for (const std::int64_t number : {setting.least - 1, setting.most + 1}) {
      EXPECT_FALSE(setting.has(number)) << setting.name;
      EXPECT_EQ(numberFor(setting, wordsOf(setting, number)), std::nullopt) << setting.name << number;
    }
    for (const char* const text : {"", "5x", " 5", "ON", "99999999999999999999"})
      EXPECT_EQ(numberFor(setting, text), std::nullopt) << setting.name << text;
  }
}

TEST(Settings, WithAWordForANumberAreNotSetByTheNumber) {
  EXPECT_EQ(wordsOf(Settings::kDeviceNumber, 0), "1");
  EXPECT_EQ(wordsOf(Settings::kDeviceNumber, 16), "all");
  EXPECT_EQ(numberFor(Settings::kDeviceNumber, "17"), std::nullopt);
  EXPECT_EQ(numberFor(Settings::kDeviceNumber, "0"), std::nullopt);
  EXPECT_EQ(numberFor(Settings::kReceiveBulk, "1"), std::nullopt);
  EXPECT_EQ(numberFor(Settings::kHistory, "0"), std::nullopt);
  EXPECT_EQ(numberFor(Settings::kMixingVoices, "0"), 0);
}

TEST(Settings, AreFoundByTheirRows) {
  EXPECT_STREQ(findRowSetting("history")->name, "history");
  EXPECT_EQ(findRowSetting("device-number"), nullptr) << "it is none of the table's";
  EXPECT_EQ(findRowSetting("nobody"), nullptr);
}

}  // namespace
}  // namespace Editor
