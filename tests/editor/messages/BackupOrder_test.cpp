#include "messages/BackupOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

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
