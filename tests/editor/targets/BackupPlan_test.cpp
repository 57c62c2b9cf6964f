#include "targets/BackupPlan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "models/ModelJson.h"
#include "targets/TargetModels.h"

namespace Editor {
namespace {

using testing::Contains;
using testing::ElementsAre;

std::vector<std::string> namesOf(const std::vector<BackupPlan::Item>& items) {
  std::vector<std::string> names;
  for (const BackupPlan::Item& item : items) names.push_back(item.name);
  return names;
}

class BackupPlans : public testing::Test {
 protected:
  void storeAsNew(const std::string& place) {
    storeTarget(editor, parseTarget(place), freshTarget(parseTarget(place), false));
  }

  EmbeddedEditor editor;
};

TEST_F(BackupPlans, contentsGoByTheirFileDumpsAndOthersBlockByBlock) {
  for (const char* const place : {"master:3", "voice:user1:6", "voice:user1:2", "performance:a:1"}) storeAsNew(place);
  const BackupPlan plan = planBackup(editor);
  EXPECT_THAT(namesOf(plan.fileDumps), ElementsAre("voice:user1:2", "voice:user1:6"));
  EXPECT_EQ(plan.fileDumps[0].address, (BulkAddress{0x0C, 0x0A, 0x01}));
  EXPECT_THAT(namesOf(plan.units), ElementsAre("performance:a:1", "master:3"));
  EXPECT_THAT(plan.unaddressed, ElementsAre());
}

TEST_F(BackupPlans, editBuffersThatWereStoredAreUnitsTheMultiBeforeItsParts) {
  storeAsNew("voice:edit");
  storeAsNew("multi:edit");
  const std::vector<std::string> units = namesOf(planBackup(editor).units);
  EXPECT_THAT(units, Contains("voice:edit"));
  const auto multi = std::find(units.begin(), units.end(), "multi:edit");
  const auto part = std::find(units.begin(), units.end(), "voice:part:1");
  ASSERT_NE(part, units.end());
  EXPECT_LT(multi - units.begin(), part - units.begin());
}

TEST_F(BackupPlans, systemAndFavouritesAreAlwaysAskedFor) {
  const BackupPlan plan = planBackup(editor);
  EXPECT_EQ(plan.system.size(), systemAddresses().size());
  EXPECT_FALSE(plan.favourites.empty());
  EXPECT_TRUE(plan.fileDumps.empty());
  EXPECT_TRUE(plan.units.empty());
}

TEST_F(BackupPlans, aManifestHasWhatWasNotLeftOut) {
  editor.library().store({4, 0x3F0805}, std::vector<std::uint8_t>{1, 2}, "Caf\xE9");
  storeAsNew("voice:user1:7");
  storeAsNew("voice:edit");
  nlohmann::ordered_json manifest = manifestOf(editor, planBackup(editor), {"voice:user1:7"});
  EXPECT_FALSE(manifest["version"].get<std::string>().empty());
  manifest["version"] = "";
  EXPECT_EQ(jsonLine(manifest), R"({"version":"","deviceNumber":"1","contents":[)"
                                R"({"place":"voice:user1:6","name":"Caf\u00e9","hash":"082f2407b4e8902a"}]})");
}

}  // namespace
}  // namespace Editor
