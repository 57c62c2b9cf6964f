#include "messages/Units.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "editor/messages/BulkMessages.h"

using Editor::BulkAddress;
using Editor::parseAddress;
using Editor::UnitFollower;
using Editor::UnitReport;
using State = UnitReport::State;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr BulkAddress kHeader{0x0E, 0x0A, 0x05};
constexpr BulkAddress kFooter{0x0F, 0x0A, 0x05};
constexpr BulkAddress kElement{0x41, 0x02, 0x00};

class Units : public testing::Test {
 public:
  Units& send(const Bytes& message) {
    for (UnitReport& unit : follower_.next(Editor::readMessage(message), ++count_)) reports.push_back(std::move(unit));
    return *this;
  }
  Units& block(BulkAddress address) { return send(blockDump(address)); }
  Units& sendAll(BDA::List list) {
    for (const BulkAddress address : blocksOf(list)) block(address);
    return *this;
  }
  Units& finish() {
    for (UnitReport& unit : follower_.finish()) reports.push_back(std::move(unit));
    return *this;
  }
  std::vector<State> states() const {
    std::vector<State> found;
    for (const UnitReport& report : reports) found.push_back(report.state);
    return found;
  }

  std::vector<UnitReport> reports;

 private:
  UnitFollower follower_;
  std::uint64_t count_ = 0;
};

}  // namespace

TEST_F(Units, aHeaderOrFooterOfTheWrongLengthBreaksItsUnit) {
  send(dump(kHeader, {1})).sendAll(BDA::List::normalVoice).block(kFooter);
  block(kHeader).sendAll(BDA::List::normalVoice).send(dump(kFooter, {1}));
  block(kHeader).sendAll(BDA::List::normalVoice).block(kFooter).finish();
  ASSERT_THAT(states(), ElementsAre(State::abandoned, State::abandoned, State::complete));
  EXPECT_EQ(describeUnit(reports[0]),
            "voice:user1:6: abandoned (messages 1 to 26), by a header of the wrong length, closed at message 26");
  EXPECT_EQ(describeUnit(reports[1]),
            "voice:user1:6: abandoned (messages 27 to 52), by a footer of the wrong length at message 52");
  EXPECT_TRUE(isBroken(reports[0]));
}

TEST_F(Units, whatAnEndInTheMidstLeavesOfAMessageEndsNone) {
  block(kHeader).sendAll(BDA::List::normalVoice).send({0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0xF7}).block(kFooter);
  EXPECT_THAT(finish().states(), ElementsAre(State::complete)) << "the instrument takes no notice of it";
}

TEST_F(Units, headerAllBlocksFooterIsComplete) {
  block(kHeader).sendAll(BDA::List::normalVoice).block(kFooter).finish();
  ASSERT_THAT(states(), ElementsAre(State::complete));
  EXPECT_EQ(reports[0].address, kHeader);
  EXPECT_EQ(reports[0].firstMessage, 1u);
  EXPECT_EQ(reports[0].lastMessage, 26u);
  EXPECT_FALSE(isBroken(reports[0]));
  EXPECT_EQ(describeUnit(reports[0]), "voice:user1:6: complete (messages 1 to 26)");
}

TEST_F(Units, everyHeaderTypeAsksForItsOwnBlocks) {
  const struct {
    BulkAddress header;
    BDA::List list;
  } kinds[] = {{{0x0E, 0x0F, 0x00}, BDA::List::normalVoice}, {{0x0E, 0x28, 0x00}, BDA::List::drumVoice},
               {{0x0E, 0x30, 0x01}, BDA::List::normalVoice}, {{0x0E, 0x30, 0x02}, BDA::List::drumVoice},
               {{0x0E, 0x31, 0x00}, BDA::List::normalVoice}, {{0x0E, 0x5F, 0x00}, BDA::List::multi},
               {{0x0E, 0x41, 0x11}, BDA::List::performance}, {{0x0E, 0x70, 0x00}, BDA::List::master},
               {{0x0E, 0x60, 0x31}, BDA::List::remote}};
  for (const auto& [header, list] : kinds) {
    reports.clear();
    block(header).sendAll(list).block({0x0F, header.mid, header.lo});
    EXPECT_THAT(states(), ElementsAre(State::complete)) << formatAddress(header);
  }
}

TEST_F(Units, missingBlocksAreNamed) {
  block(kHeader);
  for (const BulkAddress address : blocksOf(BDA::List::normalVoice))
    if (address != kElement) block(address);
  block(kFooter);
  ASSERT_THAT(states(), ElementsAre(State::incomplete));
  EXPECT_THAT(reports[0].blocks, ElementsAre(kElement));
  EXPECT_THAT(describeUnit(reports[0]),
              HasSubstr("1 block missing (messages 1 to 25): element 3 oscillator (41 02 00)"));
}

TEST_F(Units, aDamagedBlockIsMissingAndTheUnitGoesOn) {
  block(kHeader);
  for (const BulkAddress address : blocksOf(BDA::List::normalVoice))
    send(address == kElement ? damaged(blockDump(address)) : blockDump(address));
  block(kFooter);
  ASSERT_THAT(states(), ElementsAre(State::incomplete));
  EXPECT_THAT(reports[0].blocks, ElementsAre(kElement));
}

TEST_F(Units, anotherHeaderAbandonsTheOpenUnit) {
  block(kHeader).block(kElement).block({0x0E, 0x0A, 0x06});
  ASSERT_THAT(states(), ElementsAre(State::abandoned));
  EXPECT_EQ(reports[0].address, kHeader);
  EXPECT_THAT(describeUnit(reports[0]), HasSubstr("by normal voice user 1, 007: header at message 3"));
}

TEST_F(Units, messagesThatResetTheInstrumentAbandonTheOpenUnit) {
  Bytes wrongType = request({0, 0, 0});
  wrongType[2] = 0x50;
  for (const Bytes& message : {blockDump({0x00, 0x00, 0x00}), blockDump({0x71, 0x20, 0x00}), dump({0x11, 0x00, 0x00}),
                               request({0x00, 0x00, 0x00}), dump({0x41, 0x00, 0x00}, Bytes(3)), wrongType}) {
    reports.clear();
    block(kHeader).send(message);
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports[0].state, State::abandoned);
    EXPECT_EQ(reports[0].address, kHeader);
    block(kElement);
    EXPECT_EQ(reports.back().state, State::outside);
  }
}

TEST_F(Units, messagesForOthersDoNotDisturbAUnit) {
  Bytes foreign = request({0, 0, 0});
  foreign[1] = 0x01;
  block(kHeader).sendAll(BDA::List::normalVoice).send(foreign).send(dump({0x0E, 0x60, 0x32}));
  send(dump({0x0C, 0x0A, 0x00}, Bytes(4))).block(kFooter);
  EXPECT_THAT(states(), ElementsAre(State::complete));
}

TEST_F(Units, aBlockThatTheOpenHeaderDoesNotAdmitIsOutside) {
  block(kElement).block(kHeader).block({0x46, 0x00, 0x00}).sendAll(BDA::List::normalVoice).block(kFooter);
  ASSERT_THAT(states(), ElementsAre(State::outside, State::outside, State::complete));
  EXPECT_THAT(describeUnit(reports[0]),
              HasSubstr("element 3 oscillator: no open header admits this block (message 1)"));
}

TEST_F(Units, aFooterClosesOnlyItsOwnHeader) {
  block(kFooter).block(kHeader).block({0x0F, 0x0A, 0x06}).finish();
  ASSERT_THAT(states(), ElementsAre(State::strayFooter, State::strayFooter, State::open));
  EXPECT_EQ(reports[2].blocks.size(), 24u);
  EXPECT_TRUE(isBroken(reports[2]));
}

TEST_F(Units, fileDumpsAreWrittenByTheirTrigger) {
  send(dump({0x0C, 0x0A, 0x05}, Bytes(4))).send(dump({0x0C, 0x50, 0x00}, Bytes(4)));
  send(dump({0x0C, 0x0A, 0x05}, Bytes(4))).block({0x11, 0x00, 0x00}).finish();
  ASSERT_THAT(states(), ElementsAre(State::written));
  EXPECT_THAT(reports[0].blocks, ElementsAre(BulkAddress{0x0C, 0x0A, 0x05}, BulkAddress{0x0C, 0x50, 0x00}));
  EXPECT_FALSE(isBroken(reports[0]));
}

TEST_F(Units, fileDumpsWithoutTriggerAreHeldAtTheEnd) {
  send(dump({0x0C, 0x0A, 0x05}, Bytes(4))).finish();
  ASSERT_THAT(states(), ElementsAre(State::held));
  EXPECT_TRUE(isBroken(reports[0]));
  EXPECT_THAT(describeUnit(reports[0]), HasSubstr("file dump of voice user1:6 (0C 0A 05)"));
}

TEST_F(Units, aFileDumpThatIsNeverStoredDiscardsThoseHeld) {
  send(dump({0x0C, 0x0A, 0x05}, Bytes(4))).send(dump({0x0C, 0x00, 0x05}, Bytes(4))).block({0x11, 0x00, 0x00}).finish();
  ASSERT_THAT(states(), ElementsAre(State::discarded, State::written));
  EXPECT_THAT(reports[0].blocks, ElementsAre(BulkAddress{0x0C, 0x0A, 0x05}));
  EXPECT_TRUE(reports[1].blocks.empty());
}

TEST_F(Units, dataOfAScreenDoesNotDisturbAUnit) {
  block(kHeader).send(dump({0x51, 0x00, 0x01}, Bytes(100))).sendAll(BDA::List::normalVoice).block(kFooter);
  EXPECT_THAT(states(), ElementsAre(State::complete));
  EXPECT_EQ(reports[0].note, "");
}

TEST_F(Units, messagesForDifferentDevicesAreNoted) {
  block(kHeader);
  for (const BulkAddress address : blocksOf(BDA::List::normalVoice))
    send(dump(address, Bytes(*findBlock(address)->dataLength), address == kElement ? 4 : 0));
  block(kFooter);
  send(dump({0x0C, 0x0A, 0x05}, Bytes(4), 1)).block({0x11, 0x00, 0x00});
  send(dump({0x0C, 0x0A, 0x05}, Bytes(4))).block({0x11, 0x00, 0x00}).finish();
  ASSERT_THAT(states(), ElementsAre(State::complete, State::written, State::written));
  EXPECT_EQ(reports[0].note, "its messages are for different devices: 1, 5");
  EXPECT_EQ(reports[1].note, "its messages are for different devices: 1, 2");
  EXPECT_EQ(reports[2].note, "");
  EXPECT_THAT(describeUnit(reports[0]),
              HasSubstr("complete (messages 1 to 26); its messages are for different devices: 1, 5"));
}

TEST_F(Units, theVoiceOfAPartWithoutBlocksLacksThemAll) {
  block({0x0E, 0x30, 0x02}).block({0x0F, 0x30, 0x02}).finish();
  ASSERT_THAT(states(), ElementsAre(State::incomplete));
  EXPECT_EQ(reports[0].blocks, blocksOf(BDA::List::normalVoice));
}

TEST_F(Units, theTwoAddressesOfAMixingVoiceAreOnePlace) {
  send(dump(parseAddress("file:voice:mix:5"), Bytes(4)))
      .send(dump(parseAddress("file:mix:1:5"), Bytes(4)))
      .block({0x11, 0x00, 0x00})
      .finish();
  ASSERT_THAT(states(), ElementsAre(State::written));
  EXPECT_EQ(reports[0].blocks.size(), 2u);
  EXPECT_EQ(reports[0].note, "file:voice:mix:5 of message 1 is replaced by file:mix:1:5 of message 2");
}

TEST_F(Units, aFileDumpThatComesAgainReplacesTheOneThatIsHeld) {
  const Bytes message = dump({0x0C, 0x0A, 0x05}, Bytes(4));
  send(message).send(message).send(message).block({0x11, 0x00, 0x00}).send(message).block({0x11, 0x00, 0x00}).finish();
  ASSERT_THAT(states(), ElementsAre(State::written, State::written));
  EXPECT_EQ(reports[0].firstMessage, 1u);
  EXPECT_EQ(reports[0].note,
            "file:voice:user1:6 of message 1 is replaced by that of message 2; "
            "file:voice:user1:6 of message 2 is replaced by that of message 3");
  EXPECT_FALSE(isBroken(reports[0]));
  EXPECT_EQ(reports[1].note, "");
}

TEST_F(Units, aBrokenFileDumpIsHeldLikeAnyOther) {
  send(dump({0x0C, 0x0A, 0x05}, {0, 0, 0, 1, 0})).finish();
  EXPECT_THAT(states(), ElementsAre(State::held));
}

TEST_F(Units, nothingIsLeftAfterAWholeFile) {
  send(blockDump({0x00, 0x00, 0x00})).send(request({0, 0, 0})).finish();
  EXPECT_TRUE(reports.empty());
}
