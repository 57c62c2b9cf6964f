#include "convert/Batch.h"

#include <gmock/gmock.h>

#include "ConvertFixture.h"
#include "messages/Messages.h"
#include "targets/TargetJson.h"

using Editor::Batch;
using Editor::ContentKind;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Form = Batch::Unit::Form;

const std::vector<Bytes> kVoice = unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1);
const Bytes kFileDump = fileDump({0x0C, 0x0A, 0x06}, "Kept", {1});
const Bytes kTrigger = blockDump({0x11, 0x00, 0x00});
const Bytes kForeign{0xF0, 0x41, 0x01, 0xF7};

// Of each message the unit that it is part of, -1 for none.
std::vector<int> unitsOf(const Batch& batch) {
  std::vector<int> units;
  for (const Batch::Message& message : batch.messages) units.push_back(message.unit ? int(*message.unit) : -1);
  return units;
}

}  // namespace

TEST(Batch, aUnitIsFromHeaderToFooterWithoutWhatStandsBetween) {
  std::vector<Bytes> messages = kVoice;
  messages.insert(messages.begin() + 2, kForeign);
  messages.push_back(kForeign);
  const Batch batch = batchOf({messages});
  EXPECT_THAT(placesOf(batch), ElementsAre("voice:user1:6"));
  std::vector<int> units(messages.size(), 0);
  units[2] = units.back() = -1;
  EXPECT_EQ(unitsOf(batch), units);
  EXPECT_EQ(bytesOf(batch), joined({messages}));
}

TEST(Batch, ofABlockThatComesTwiceTheLastOneIsOfTheUnit) {
  const Batch batch = batchOf({{kVoice[0], kVoice[1]}, {kVoice.begin() + 1, kVoice.end()}});
  EXPECT_EQ(unitsOf(batch)[1], -1);
  EXPECT_EQ(unitsOf(batch)[2], 0);
}

TEST(Batch, aFileDumpIsAUnitWithItsTriggerOrWithout) {
  const Batch batch = batchOf({{kFileDump, kTrigger, kFileDump}});
  EXPECT_THAT(unitsOf(batch), ElementsAre(0, -1, 1));
  EXPECT_THAT(batch.messages[1].writes, ElementsAre(0u));
  EXPECT_THAT(batch.broken, IsEmpty());
  EXPECT_EQ(batch.units[0].form, Form::fileDump);
  EXPECT_FALSE(batch.units[0].removes);
  EXPECT_TRUE(batchOf({{dump({0x0C, 0x0A, 0x06}, Bytes(4))}}).units.front().removes);
}

TEST(Batch, aFileDumpIsWrittenByTheTriggerForItsDevice) {
  const auto voice = [](std::uint8_t number, std::uint8_t device) {
    return dump({0x0C, 0x0A, number}, Bytes(4), device);
  };
  const auto trigger = [](std::uint8_t device) { return dump({0x11, 0x00, 0x00}, {}, device); };
  Batch batch = batchOf({{voice(0, 0), voice(1, 3), trigger(0), trigger(3)}});
  EXPECT_THAT(batch.messages[2].writes, ElementsAre(0u));
  EXPECT_THAT(batch.messages[3].writes, ElementsAre(1u));
  batch = batchOf({{voice(0, 0), trigger(3), voice(1, 0), trigger(0)}});
  EXPECT_THAT(batch.messages[1].writes, IsEmpty());
  EXPECT_THAT(batch.messages[3].writes, ElementsAre(0u, 1u));
  batch = batchOf({{voice(0, 0), voice(0, 3), trigger(0), trigger(3)}});
  EXPECT_THAT(batch.messages[2].writes, ElementsAre(0u)) << "what is for another device replaces nothing";
  EXPECT_THAT(batch.messages[3].writes, ElementsAre(1u));
  batch = batchOf({{voice(0, 0), trigger(3)}});
  EXPECT_THAT(batch.messages[1].writes, IsEmpty()) << "for its own device there is none";
}

TEST(Batch, unitsStandInTheOrderInWhichTheyBegin) {
  std::vector<Bytes> messages = kVoice;
  messages.insert(messages.begin() + 1, kFileDump);
  EXPECT_THAT(placesOf(batchOf({messages})), ElementsAre("voice:user1:6", "voice:user1:7"));
}

TEST(Batch, whatIsBrokenIsNoUnit) {
  std::vector<Bytes> messages = kVoice;
  messages[3] = damaged(messages[3]);
  const Batch batch = batchOf({messages, {damaged(kFileDump)}});
  EXPECT_THAT(batch.units, IsEmpty());
  ASSERT_EQ(batch.broken.size(), 1u);
  EXPECT_EQ(batch.broken.front().state, Editor::UnitReport::State::incomplete);
  ASSERT_EQ(batch.brokenMessages.size(), 1u);
  EXPECT_EQ(batch.brokenMessages.front().message, messages.size() + 1);
  EXPECT_EQ(bytesOf(batch), joined({messages, {damaged(kFileDump)}}));
}

TEST(Batch, aUnitWithAHeaderOrFooterOfTheWrongLengthIsBroken) {
  for (const std::size_t at : {std::size_t(0), kVoice.size() - 1}) {
    std::vector<Bytes> messages = kVoice;
    messages[at] = dump({std::uint8_t(at == 0 ? 0x0E : 0x0F), 0x0A, 0x05}, {1});
    const Batch batch = batchOf({messages});
    EXPECT_THAT(batch.units, IsEmpty());
    ASSERT_EQ(batch.broken.size(), 1u);
    EXPECT_EQ(batch.broken.front().state, Editor::UnitReport::State::abandoned);
    EXPECT_TRUE(batch.brokenMessages.empty()) << "what is told of their unit is enough";
    EXPECT_EQ(bytesOf(batch), joined({messages}));
  }
}

TEST(Batch, everyBrokenMessageIsNamedButTheBlocksThatABrokenUnitLacks) {
  std::vector<Bytes> unit = kVoice;
  unit[3] = damaged(unit[3]);
  std::vector<Bytes> twice = kVoice;
  twice.insert(twice.begin() + 2, damaged(kVoice[2]));
  const std::vector<Bytes> others{damaged(blockDump({0x00, 0x40, 0x00})), damaged(kTrigger), damaged(kVoice[4])};
  const Batch batch = batchOf({unit, others, twice});
  std::vector<std::uint64_t> numbers;
  for (const Batch::BrokenMessage& message : batch.brokenMessages) numbers.push_back(message.message);
  const std::uint64_t before = unit.size();
  EXPECT_THAT(numbers, ElementsAre(before + 1, before + 2, before + 3, before + 6));
  EXPECT_THAT(placesOf(batch), ElementsAre("voice:user1:6"));
}

TEST(Batch, aTriggerWritesNoFileDumpThatIsBroken) {
  const Batch batch = batchOf({{dump({0x0C, 0x0A, 0x05}, Bytes(3)), kTrigger}});
  EXPECT_THAT(batch.units, IsEmpty());
  EXPECT_EQ(batch.brokenMessages.size(), 1u);
  EXPECT_THAT(batch.messages.back().writes, IsEmpty());
}

TEST(Batch, aUnitIsOfTheKindOfItsBlocks) {
  using List = BDA::List;
  const auto kindOf = [](Editor::BulkAddress header, List list) {
    return batchOf({unit(header, list, 0)}).units.front().kind;
  };
  EXPECT_EQ(kindOf({0x0E, 0x30, 0x03}, List::normalVoice), ContentKind::voice);
  EXPECT_EQ(kindOf({0x0E, 0x30, 0x03}, List::drumVoice), ContentKind::drum);
  EXPECT_EQ(kindOf({0x0E, 0x5F, 0x00}, List::multi), ContentKind::multi);
  EXPECT_EQ(kindOf({0x0E, 0x40, 0x00}, List::performance), ContentKind::performance);
  EXPECT_EQ(kindOf({0x0E, 0x70, 0x00}, List::master), ContentKind::master);
  EXPECT_EQ(kindOf({0x0E, 0x60, 0x00}, List::remote), ContentKind::remote);
}

TEST(Batch, aPlaceHasOneNameForAllItsAddresses) {
  EXPECT_EQ(Editor::placeNameOf({0x0E, 0x0A, 0x05}), "voice:user1:6");
  EXPECT_EQ(Editor::placeNameOf({0x0F, 0x0A, 0x05}), "voice:user1:6");
  EXPECT_EQ(Editor::placeNameOf({0x0C, 0x0A, 0x05}), "voice:user1:6");
  EXPECT_EQ(Editor::placeNameOf({0x0C, 0x11, 0x00}), Editor::placeNameOf({0x0C, 0x31, 0x01}));
  EXPECT_EQ(Editor::placeNameOf({0x0C, 0x50, 0x02}), "file:multi:3");
  EXPECT_EQ(Editor::placeNameOf({0x0E, 0x0F, 0x00}), "voice:edit");
  EXPECT_EQ(Editor::placeNameOf({0x00, 0x00, 0x00}), "system:common");
}

TEST(Batch, jsonKeepsItsPlaceAmongTheMessages) {
  Editor::BatchBuilder builder;
  builder.add(kForeign);
  builder.addJson(nlohmann::ordered_json{{"target", "file:voice:user1:6"}, {"voice", 1}});
  builder.addJson(nlohmann::ordered_json{{"voice", 1}});
  const Batch batch = builder.finish();
  EXPECT_THAT(placesOf(batch), ElementsAre("voice:user1:6", ""));
  EXPECT_THAT(unitsOf(batch), ElementsAre(-1, 0, 1));
  EXPECT_EQ(batch.units[0].object.dump(), R"({"voice":1})");
  EXPECT_THROW(Editor::BatchBuilder().addJson(nlohmann::ordered_json{{"target", "voice:user9:6"}}),
               Editor::TargetJsonError);
  EXPECT_THROW(Editor::BatchBuilder().addJson(nlohmann::ordered_json{{"target", 7}}), Editor::TargetJsonError);
}

TEST(Batch, anotherAddressBringsTheChecksumThatFits) {
  for (std::uint8_t value = 0; value < 0x80; ++value) {
    Bytes message = dump({0x0E, 0x0A, 0x05}, {value});
    Editor::readdress(message, {0x0E, 0x0F, value});
    EXPECT_EQ(message, dump({0x0E, 0x0F, value}, {value}));
  }
}

TEST(Batch, theTriggerOfAFileDumpIsForTheSameDevice) {
  for (const std::uint8_t device : {std::uint8_t{0}, std::uint8_t{15}})
    EXPECT_EQ(Editor::triggerFor(dump({0x0C, 0x0A, 0x05}, Bytes(4), device)), dump({0x11, 0x00, 0x00}, {}, device));
}

TEST(Batch, onlyMessagesOfThisInstrumentHaveADeviceNumber) {
  Bytes message = dump({0, 0, 0}, Bytes(68), 3);
  Editor::setDevice(message, 16);
  EXPECT_EQ(message, dump({0, 0, 0}, Bytes(68), 15));
  message = request({0, 0, 0}, 3);
  Editor::setDevice(message, 1);
  EXPECT_EQ(message, request({0, 0, 0}, 0));
  message = kForeign;
  Editor::setDevice(message, 5);
  EXPECT_EQ(message, kForeign);
}
