#include "targets/Banks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "messages/BackupOrder.h"
#include "models/ModelJson.h"

namespace Editor {
namespace {

using testing::Contains;

std::vector<std::string> lines() {
  std::vector<std::string> lines;
  for (const Bank& bank : allBanks()) lines.push_back(jsonLine(toJson(bank)));
  return lines;
}

TEST(Banks, areThoseOfTheNamesOfTheirPlaces) {
  EXPECT_THAT(lines(), Contains(R"({"bank":"voice:user1","kind":"voice","first":"voice:user1:1",)"
                                R"("last":"voice:user1:128","places":128})"));
  EXPECT_THAT(lines(), Contains(R"({"bank":"drum:gm","kind":"drum","first":"drum:gm","last":"drum:gm","places":1})"));
}

TEST(Banks, nameEachContentThatAMessageCarriesOnce) {
  std::set<std::string> named;
  for (const Bank& bank : allBanks()) {
    const Places<Target> places = parseContents(bank.name);
    ASSERT_EQ(places.list.size(), bank.places) << bank.name;
    EXPECT_EQ(places.list.front().name, bank.first);
    EXPECT_EQ(places.list.back().name, bank.last);
    for (const Target& place : places.list) {
      EXPECT_EQ(contentKindOf(place), bank.kind) << place.name;
      EXPECT_TRUE(named.insert(place.name).second) << place.name << " twice";
    }
  }
  for (const BulkAddress address : everythingInABackup())
    if (const auto content = contentNamedBy(address)) {
      EXPECT_TRUE(named.contains(nameOf(*content))) << nameOf(*content);
    }
}

}  // namespace
}  // namespace Editor
