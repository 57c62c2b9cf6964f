#include "convert/InEditBuffers.h"

#include <gmock/gmock.h>

#include "ConvertFixture.h"
#include "targets/Targets.h"

using Editor::Batch;
using Editor::InEditBuffers;
using testing::ElementsAre;

namespace {

const std::vector<Bytes> kVoice = unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1);
const std::vector<Bytes> kMaster = unit({0x0E, 0x70, 0x02}, BDA::List::master, 1);

}  // namespace

TEST(InEditBuffers, eachUnitGoesToTheOneOfItsKindAndTheRestStays) {
  Batch batch = batchOf({kVoice, {blockDump({0, 0, 0})}, kMaster, {request({0, 0, 0})}});
  const InEditBuffers placed = placeInEditBuffers(batch);
  EXPECT_THAT(placesOf(batch), ElementsAre("voice:edit", "master:edit"));
  EXPECT_FALSE(placed.clash);
  EXPECT_EQ(placed.leftOut, 1u) << "the system block";
  EXPECT_EQ(batch.messages.size(), kVoice.size() + kMaster.size() + 1);
}

TEST(InEditBuffers, aSecondUnitOfAKindHasNoPlace) {
  Batch batch = batchOf({kVoice, unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 2)});
  const auto clash = placeInEditBuffers(batch).clash.value();
  EXPECT_EQ(clash.buffer, "voice:edit");
  EXPECT_EQ(clash.first, "voice:user1:6");
  EXPECT_EQ(clash.second, "voice:user1:7");
}

TEST(InEditBuffers, whatHasNoEditBufferIsRefused) {
  Batch batch = batchOf({{fileDump({0x0C, 0x7F, 0x00}, "One", {1})}});
  try {
    placeInEditBuffers(batch);
    FAIL() << "it was placed";
  } catch (const Editor::TargetError& error) {
    EXPECT_EQ(error.kind(), Editor::TargetError::Kind::refused);
    EXPECT_EQ(error.what(), batch.units.at(0).place + ": there is no edit buffer for it");
  }
}
