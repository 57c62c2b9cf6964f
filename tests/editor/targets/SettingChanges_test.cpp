#include "targets/SettingChanges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "editor/contents/TemporaryLibrary.h"
#include "targets/Targets.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SettingChanges : public testing::Test {
 protected:
  std::vector<PlaceChange> change(const std::string& name, const std::string& value) {
    editor.library().beginRun({"settings"});
    Library::Transaction transaction(editor.library());
    editor.tools().reload();
    std::vector<PlaceChange> changes = set(settingNamed(name), numberNamed(settingNamed(name), value), editor);
    transaction.commit();
    return changes;
  }
  std::string value(const std::string& name) {
    const std::optional<std::int64_t> number = valueOf(settingNamed(name), editor);
    return number ? wordsOf(settingNamed(name), *number) : "damaged";
  }
  static std::string whyNot(const std::function<void()>& act) {
    try {
      act();
    } catch (const std::invalid_argument& error) {
      return error.what();
    }
    return "";
  }

  TemporaryDirectory directory;
  EmbeddedEditor editor{directory / "library.db"};
};

TEST_F(SettingChanges, AreToldAsTheHistoryHasThemAndOfItsOwnToo) {
  EXPECT_THAT(change("device-number", "6"), ElementsAre(PlaceChange{"system", What::stored, std::nullopt, "", false}));
  EXPECT_EQ(value("device-number"), "6");
  EXPECT_THAT(change("mixing-voices", "7"), ElementsAre(PlaceChange{"mixing-voices", What::set, "2048", "7", false}));
  EXPECT_THAT(change("history", "5"), ElementsAre(PlaceChange{"history", What::set, "1000", "5", false}));
  EXPECT_EQ(entriesOf(editor.library()).size(), 2U);
  EXPECT_THAT(change("history", "5"), IsEmpty());
  EXPECT_EQ(toJson(settingNamed("history"), 0).dump(), R"({"setting":"history","value":"off"})");
}

TEST_F(SettingChanges, ADamagedOneHasNoValueAndIsMended) {
  change("mixing-voices", "7");
  PlainDatabase(directory / "library.db")("UPDATE setting SET value = -1");
  EXPECT_EQ(value("mixing-voices"), "damaged");
  const std::vector<PlaceChange> changes = change("mixing-voices", "8");
  ASSERT_EQ(changes.size(), 1U);
  EXPECT_TRUE(changes[0].wasDamaged);
  EXPECT_EQ(value("mixing-voices"), "8");
}

TEST_F(SettingChanges, DamagedSystemSettingsAreNotChanged) {
  change("device-number", "6");
  PlainDatabase(directory / "library.db")("UPDATE live_model SET bytes = x'00'");
  EXPECT_THROW(change("device-number", "7"), TargetError);
}

TEST_F(SettingChanges, WhatIsNoneSaysWhatMayHaveBeenMeant) {
  EXPECT_THAT(whyNot([] { settingNamed("mixing-voice"); }), HasSubstr("did you mean mixing-voices?"));
  EXPECT_THAT(whyNot([] { settingNamed("colour"); }), HasSubstr(": expected device-number, receive-bulk"));
  EXPECT_EQ(whyNot([] { numberNamed(Settings::kReceiveBulk, "yes"); }), "receive-bulk: \"yes\": expected on or off");
}

}  // namespace
}  // namespace Editor
