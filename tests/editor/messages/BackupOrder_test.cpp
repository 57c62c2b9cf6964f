#include "messages/BackupOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "AddressRows.h"

using Editor::BulkAddress;

TEST(BackupOrder, isFileDumpsTheirTriggerUnitsSystemFavourites) {
  const std::vector<BulkAddress> ordered{{0x0C, 0x0A, 0x05}, {0x0C, 0x50, 0x00}, Editor::kWriteTrigger,
                                         {0x0E, 0x00, 0x01}, {0x0E, 0x00, 0x02}, {0x0E, 0x21, 0x00},
                                         {0x00, 0x00, 0x00}, {0x00, 0x40, 0x00}, {0x71, 0x00, 0x00}};
  std::vector<BulkAddress> shuffled(ordered.rbegin(), ordered.rend());
  std::sort(shuffled.begin(), shuffled.end(), Editor::BackupOrder());
  EXPECT_EQ(shuffled, ordered);
}

TEST(BackupOrder, hasTheMultiBeforeTheVoicesOfItsParts) {
  const Editor::BackupOrder isBefore;
  const BulkAddress multi = Editor::parseAddress("multi:edit");
  EXPECT_TRUE(isBefore(multi, Editor::parseAddress("voice:part:1")));
  EXPECT_TRUE(isBefore(Editor::parseAddress("drum:edit"), multi));
  EXPECT_TRUE(isBefore(Editor::parseAddress("voice:part:16"), Editor::parseAddress("performance:a:1")));
}

TEST(BackupOrder, knowsEverythingThatABackupCanHold) {
  const std::vector<BulkAddress> all = Editor::everythingInABackup();
  EXPECT_TRUE(std::is_sorted(all.begin(), all.end(), Editor::BackupOrder()));
  std::map<unsigned, std::size_t> count;
  for (const BulkAddress address : all) ++count[address.hi];
  EXPECT_EQ(count[BDA::kFileDumpHi], 2593u);
  EXPECT_EQ(count[0x00], Editor::systemAddresses().size());
  EXPECT_EQ(count[0x71], 15u);
  // Presets, performances, masters, remote settings, edit buffers.
  EXPECT_EQ(count[BDA::kHeaderHi], 8u * 128 + 128 + 64 + 1 + 256 + 128 + 50 + 22);
}
