#include "convert/Selection.h"

#include <gmock/gmock.h>

#include "ConvertFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Editor::Selection::Result select(Editor::Batch& batch, const std::vector<std::string>& words) {
  return Editor::Selection(words).apply(batch);
}

const std::vector<Bytes> kVoice = unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1);
const Bytes kFileDump = fileDump({0x0C, 0x0A, 0x06}, "Kept", {1});
const Bytes kOtherFileDump = fileDump({0x0C, 0x50, 0x00}, "Multi", {2});
const Bytes kSystem = blockDump({0, 0, 0}, 3);
const Bytes kTrigger = blockDump({0x11, 0x00, 0x00});
const Bytes kTriggerThatRemoves = blockDump({0x11, 0x01, 0x00});

}  // namespace

TEST(Selection, aBankTakesUnitsOfBothForms) {
  Editor::Batch batch = batchOf({{kSystem}, kVoice, {kFileDump, kOtherFileDump, kTrigger}});
  EXPECT_THAT(select(batch, {"voice:user1"}).notFound, IsEmpty());
  EXPECT_THAT(placesOf(batch), ElementsAre("voice:user1:6", "voice:user1:7"));
  EXPECT_EQ(bytesOf(batch), joined({kVoice, {kFileDump, kTrigger}}));
}

TEST(Selection, aPlaceIsTheSameByEachOfItsNames) {
  for (const char* const word : {"voice:user1:7", "file:voice:user1:7", "0C0A06", "voice:user1:7..9"}) {
    Editor::Batch batch = batchOf({kVoice, {kFileDump, kTrigger}});
    select(batch, {word});
    EXPECT_EQ(bytesOf(batch), joined({{kFileDump, kTrigger}})) << word;
  }
}

TEST(Selection, aTriggerGoesWithWhatItWritesOnly) {
  Editor::Batch batch = batchOf({{kFileDump, kTrigger, kOtherFileDump, kTrigger}});
  select(batch, {"file:multi:1"});
  EXPECT_EQ(bytesOf(batch), joined({{kOtherFileDump, kTrigger}}));
}

TEST(Selection, theTriggerForTheDeviceOfAFileDumpGoesWithIt) {
  const Bytes voice = fileDump({0x0C, 0x0A, 0x06}, "Kept", {1});
  const Bytes other = dump({0x0C, 0x0A, 0x07}, Bytes(4), 3);
  const Bytes otherTrigger = dump({0x11, 0x00, 0x00}, {}, 3);
  Editor::Batch batch = batchOf({{voice, other, kTrigger, otherTrigger}});
  select(batch, {"voice:user1:8"});
  EXPECT_EQ(bytesOf(batch), joined({{other, otherTrigger}}));
  batch = batchOf({{voice, otherTrigger, kTrigger}});
  select(batch, {"voice:user1:7"});
  EXPECT_EQ(bytesOf(batch), joined({{voice, kTrigger}}));
}

TEST(Selection, aTriggerThatRemovesMixingVoicesRemovesNothingAfterwards) {
  Editor::Batch batch = batchOf({{kFileDump, kTriggerThatRemoves}});
  EXPECT_TRUE(select(batch, {"voice:user1"}).tamesTrigger);
  EXPECT_EQ(bytesOf(batch), joined({{kFileDump, kTrigger}}));
  batch = batchOf({{kFileDump, kTriggerThatRemoves}});
  EXPECT_FALSE(select(batch, {"voice:user1", "write:no-mixing-voices"}).tamesTrigger);
  EXPECT_EQ(bytesOf(batch), joined({{kFileDump, kTriggerThatRemoves}}));
}

TEST(Selection, whatIsTakenByItselfIsNamedByItself) {
  Editor::Batch batch = batchOf({{kSystem}, kVoice, {request({0, 0, 0}), damaged(kSystem)}});
  select(batch, {"system"});
  EXPECT_EQ(bytesOf(batch), kSystem);
}

TEST(Selection, whatIsNotThereIsNamed) {
  Editor::Batch batch = batchOf({kVoice});
  EXPECT_THAT(select(batch, {"voice:user2", "voice:user1:6", "drum:edit"}).notFound,
              ElementsAre("voice:user2", "drum:edit"));
  EXPECT_EQ(bytesOf(batch), joined({kVoice}));
}

TEST(Selection, brokenUnitsAreNotTakenAndOnlyThoseThatWereAskedForAreTold) {
  std::vector<Bytes> broken = kVoice;
  broken.erase(broken.begin() + 3);
  std::vector<Bytes> other = unit({0x0E, 0x0B, 0x05}, BDA::List::normalVoice, 1);
  other.pop_back();
  Editor::Batch batch = batchOf({broken, other});
  EXPECT_THAT(select(batch, {"voice:user1:6"}).notFound, IsEmpty());
  EXPECT_THAT(batch.messages, IsEmpty());
  ASSERT_EQ(batch.broken.size(), 1u);
  EXPECT_EQ(batch.broken.front().state, Editor::UnitReport::State::incomplete);
}

TEST(Selection, aBrokenMessageOfItsOwnIsToldWhereItWasAskedFor) {
  Editor::Batch batch = batchOf({{damaged(kSystem), damaged(kTrigger), damaged(kFileDump)}, kVoice});
  EXPECT_THAT(select(batch, {"system:common", "voice:user1:6"}).notFound, IsEmpty());
  ASSERT_EQ(batch.brokenMessages.size(), 1u);
  EXPECT_EQ(batch.brokenMessages.front().message, 1u);
  EXPECT_EQ(bytesOf(batch), joined({kVoice}));
}
