#include "salvage/Salvage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "acceptance/Library.h"
#include "editor/messages/BulkMessages.h"

using Editor::BulkAddress;
using Editor::formatAddress;
using Editor::Salvage;
using Editor::Salvaged;
using Editor::SalvageResult;
using State = Salvaged::State;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr BulkAddress kVoice6{0x0E, 0x0A, 0x05};
constexpr BulkAddress kVoice7{0x0E, 0x0A, 0x06};
constexpr BulkAddress kElement{0x41, 0x02, 0x00};
constexpr BulkAddress kCommon{0x00, 0x00, 0x00};

BulkAddress footerOf(BulkAddress header) { return {0x0F, header.mid, header.lo}; }

// The messages of a unit, block by block.
struct Unit {
  explicit Unit(BulkAddress header, std::uint8_t value = 0, BDA::List list = BDA::List::normalVoice) {
    messages.push_back(blockDump(header));
    for (const BulkAddress block : blocksOf(list)) messages.push_back(blockDump(block, value));
    messages.push_back(blockDump(footerOf(header)));
  }
  Unit without(BulkAddress address) const {
    Unit unit = *this;
    std::erase_if(unit.messages, [&](const Bytes& one) { return Editor::readMessage(one).address == address; });
    return unit;
  }
  // The blocks from the `first`th to before the `last`th, 0 is the header.
  Unit part(std::size_t first, std::size_t last) const {
    Unit unit = *this;
    unit.messages.assign(messages.begin() + std::ptrdiff_t(first), messages.begin() + std::ptrdiff_t(last));
    return unit;
  }
  Unit with(BulkAddress address, const Bytes& instead) const {
    Unit unit = *this;
    for (Bytes& one : unit.messages)
      if (Editor::readMessage(one).address == address) one = instead;
    return unit;
  }
  std::vector<Bytes> messages;
};

class Salvaging : public testing::Test {
 public:
  Salvaging& file() {
    ++source_;
    return *this;
  }
  Salvaging& send(const Bytes& message) {
    salvage().add({std::size_t(source_), ++number_, 0, message, std::nullopt});
    return *this;
  }
  Salvaging& send(const Unit& unit) {
    for (const Bytes& message : unit.messages) send(message);
    return *this;
  }
  Salvaging& cutShort(const Bytes& message, std::size_t length) {
    salvage().addFragment(std::size_t(source_), std::span(message).first(length));
    return *this;
  }
  const SalvageResult& result() {
    if (!result_) result_ = salvage().finish();
    return *result_;
  }
  // "voice:user1:6 whole 0"
  std::vector<std::string> units() {
    std::vector<std::string> words;
    for (const Salvaged& unit : result().units) {
      words.push_back(Editor::nameOrBytes(unit.address) + " " + wordOf(unit.state));
      for (const std::size_t source : unit.from) words.back() += " " + std::to_string(source);
    }
    return words;
  }
  std::vector<Bytes> kept() {
    std::vector<Bytes> messages;
    for (const Editor::Piece& piece : result().messages) messages.push_back(piece.bytes);
    return messages;
  }

  Salvage::Options options;

 private:
  Salvage& salvage() {
    if (!salvage_) salvage_.emplace(options);
    return *salvage_;
  }

  std::optional<Salvage> salvage_;
  std::optional<SalvageResult> result_;
  int source_ = -1;
  std::uint64_t number_ = 0;
};

}  // namespace

TEST_F(Salvaging, keepsWholeUnitsAndSingleBlocksInTheOrderOfABackup) {
  const Unit voice(kVoice6);
  const Bytes fileDumpOfMulti = fileDump({0x0C, 0x50, 0x04}, "One", {1});
  file().send(blockDump(kCommon)).send(voice).send(fileDumpOfMulti).send(dump(Editor::kWriteTrigger));
  EXPECT_THAT(units(), ElementsAre("file:multi:5 whole 0", "voice:user1:6 whole 0", "system:common whole 0"));
  std::vector<Bytes> expected{fileDumpOfMulti, dump(Editor::kWriteTrigger)};
  expected.insert(expected.end(), voice.messages.begin(), voice.messages.end());
  expected.push_back(blockDump(kCommon));
  EXPECT_EQ(kept(), expected);
  EXPECT_FALSE(result().isTriggerAdded);
  EXPECT_THAT(result().requests, IsEmpty());
}

TEST_F(Salvaging, addsTheTriggerThatNoFileHasForTheDeviceOfTheFileDumps) {
  Bytes forDevice3 = fileDump({0x0C, 0x50, 0x04}, "One", {1});
  forDevice3[2] = 2;
  file().send(forDevice3).send(dump(Editor::kWriteTrigger));
  EXPECT_THAT(kept(), ElementsAre(forDevice3, dump(Editor::kWriteTrigger, {}, 2)));
  EXPECT_TRUE(result().isTriggerAdded);
}

TEST_F(Salvaging, listsWhatIsLostWithItsMissingBlocksAndAsksForItOnce) {
  file().send(Unit(kVoice6).without(kElement)).send(damaged(blockDump(kCommon)));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0", "system:common lost 0"));
  EXPECT_THAT(result().units[0].missing, ElementsAre(kElement));
  EXPECT_THAT(result().units[1].missing, ElementsAre(kCommon));
  EXPECT_THAT(result().requests, ElementsAre(request(kVoice6), request(kCommon)));
  EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(Salvaging, headerAndFooterAreBlocksThatCanBeMissingToo) {
  file().send(Unit(kVoice6).without(kVoice6)).send(Unit(kVoice7).without(footerOf(kVoice7)));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 lost 0", "voice:user1:7 lost 0"));
  EXPECT_THAT(result().units[0].missing, ElementsAre(kVoice6));
  EXPECT_THAT(result().units[1].missing, ElementsAre(footerOf(kVoice7)));
}

TEST_F(Salvaging, capturesThatShareBlocksCompleteEachOther) {
  const Unit whole(kVoice6, 1);
  file().send(whole.without(kElement));
  file().send(whole.without({0x40, 0x00, 0x00}).without(kVoice6));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 completed 0 1"));
  EXPECT_EQ(kept(), whole.messages);
}

TEST_F(Salvaging, capturesThatShareNothingAreNotOneSound) {
  const Unit whole(kVoice6, 1);
  file().send(whole.part(0, 10));
  file().send(whole.part(10, whole.messages.size()));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 lost 0 1"));
  EXPECT_THAT(result().units[0].missing, SizeIs(10));
  EXPECT_THAT(result().units[0].contradicts, IsEmpty());
}

TEST_F(Salvaging, headerAndFooterAreNothingInCommon) {
  const Unit whole(kVoice6, 1);
  Unit first = whole.part(0, 10);
  first.messages.push_back(whole.messages.back());
  Unit second = whole.part(10, whole.messages.size());
  second.messages.insert(second.messages.begin(), whole.messages.front());
  file().send(first).file().send(second);
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0 1"));
}

TEST_F(Salvaging, capturesThatDifferAnywhereNeverBecomeOne) {
  const Unit whole(kVoice6, 1);
  file().send(whole.without(kElement));
  file().send(whole.without({0x40, 0x00, 0x00}).with({0x42, 0x00, 0x00}, blockDump({0x42, 0x00, 0x00}, 2)));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 lost 0 1"));
  EXPECT_THAT(result().units[0].contradicts, ElementsAre(BulkAddress{0x42, 0x00, 0x00}));
  EXPECT_THAT(kept(), IsEmpty());
}

// What two have in common may be in both sounds: a third that differs says that there were two.
TEST_F(Salvaging, aThirdCaptureThatDiffersKeepsTwoFromBecomingOne) {
  const Unit whole(kVoice6, 1);
  file().send(whole.without(kElement));
  file().send(whole.without({0x40, 0x00, 0x00}));
  file().send(Unit(kVoice6, 2).part(0, 3));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0 1 2"));
}

TEST_F(Salvaging, thePreferredFileDecidesBetweenCapturesThatDiffer) {
  const Unit whole(kVoice6, 1);
  options.preferred = 1;
  file().send(whole.without(kElement));
  file().send(whole.without({0x40, 0x00, 0x00}));
  file().send(Unit(kVoice6, 2).part(0, 3));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 completed 0 1"));
}

TEST_F(Salvaging, mergingCompletesWithoutAnythingInCommonAndSaysSo) {
  const Unit whole(kVoice6, 1);
  options.merges = true;
  file().send(whole.part(0, 10));
  file().send(whole.part(10, whole.messages.size()));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 completed 0 1"));
  EXPECT_TRUE(result().units[0].isMerged);
  EXPECT_EQ(kept(), whole.messages);
}

TEST_F(Salvaging, mergingTakesThePreferredFilesBlockWhereTwoDiffer) {
  options.merges = true;
  options.preferred = 1;
  constexpr BulkAddress kFilter{0x42, 0x00, 0x00};
  const Unit second = Unit(kVoice6).with(kFilter, blockDump(kFilter, 2));
  file().send(Unit(kVoice6).without(kElement).with(kFilter, blockDump(kFilter, 1)));
  file().send(second.part(10, 26));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 completed 0 1"));
  EXPECT_THAT(result().units[0].contradicts, ElementsAre(kFilter));
  EXPECT_EQ(kept(), second.messages);
}

TEST_F(Salvaging, aWholeUnitBeatsIncompleteOnes) {
  const Unit whole(kVoice6, 1);
  file().send(Unit(kVoice6, 2).without(kElement)).file().send(whole);
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 1"));
  EXPECT_EQ(kept(), whole.messages);
}

TEST_F(Salvaging, twoWholeOnesThatDifferAreLost) {
  file().send(Unit(kVoice6, 1)).file().send(Unit(kVoice6, 1).with(kElement, blockDump(kElement, 2)));
  file().send(blockDump(kCommon));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 lost 0 1", "system:common whole 2"));
  EXPECT_THAT(result().units[0].contradicts, ElementsAre(kElement));
  EXPECT_THAT(result().units[0].missing, IsEmpty());
  EXPECT_THAT(result().requests, ElementsAre(request(kVoice6)));
}

TEST_F(Salvaging, ofTwoWholeOnesThePreferredFilesIsKept) {
  options.preferred = 1;
  const Unit second(kVoice6, 2);
  file().send(Unit(kVoice6, 1)).file().send(second);
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 1"));
  EXPECT_EQ(kept(), second.messages);
}

TEST_F(Salvaging, twoWholeOnesForOtherDevicesAreTheSame) {
  file().send(blockDump(kCommon)).file().send(dump(kCommon, Bytes(68), 3));
  EXPECT_THAT(units(), ElementsAre("system:common whole 0"));
}

TEST_F(Salvaging, inOneFileTheLaterOneCounts) {
  const Unit second(kVoice6, 2);
  file().send(Unit(kVoice6, 1)).send(second).send(blockDump(kCommon, 1)).send(blockDump(kCommon, 2));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 0", "system:common whole 0"));
  EXPECT_THAT(result().units[0].repeatedIn, ElementsAre(0));
  std::vector<Bytes> expected = second.messages;
  expected.push_back(blockDump(kCommon, 2));
  EXPECT_EQ(kept(), expected);
}

TEST_F(Salvaging, aWrongChecksumIsKeptOnlyWhenAskedAndNamed) {
  const Unit whole(kVoice6, 1);
  const Unit broken = whole.with(kElement, damaged(blockDump(kElement, 1)));
  options.correctsChecksums = true;
  file().send(broken).send(damaged(blockDump(kCommon)));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 0", "system:common whole 0"));
  std::vector<Bytes> expected = whole.messages;
  expected.push_back(blockDump(kCommon));
  EXPECT_EQ(kept(), expected);
  EXPECT_TRUE(result().units[1].messages[0].wrongChecksum.has_value());
}

// Where a checksum is wrong some other byte may be the wrong one.
TEST_F(Salvaging, whatNeedsNoCorrectionGoesBeforeWhatDoes) {
  options.correctsChecksums = true;
  file().send(damaged(blockDump(kCommon, 2))).file().send(blockDump(kCommon, 1));
  EXPECT_THAT(units(), ElementsAre("system:common whole 1"));
  EXPECT_THAT(kept(), ElementsAre(blockDump(kCommon, 1)));
}

TEST_F(Salvaging, aMessageThatDoesNotFitItsAddressIsNotCorrectedAndMayBeAnything) {
  options.correctsChecksums = true;
  file().send(damaged(dump(kCommon, Bytes(3))));
  EXPECT_THAT(units(), IsEmpty());
  EXPECT_EQ(result().unknown, 1u);
}

// The footer of one unit and the header of the next are lost: nothing says where the one ends.
TEST_F(Salvaging, blocksBetweenTheHeaderAndTheFooterOfTwoUnitsAreOfNone) {
  const Unit six(kVoice6, 1);
  const Unit seven(kVoice7, 2);
  file().send(six.part(0, 10)).send(seven.part(10, 26));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0", "voice:user1:7 lost 0", "40 00 00 lost 0"));
  EXPECT_THAT(result().units[0].missing, SizeIs(25));
  EXPECT_THAT(result().units[1].missing, SizeIs(25));
  EXPECT_FALSE(result().units[2].device.has_value());
  EXPECT_THAT(result().requests, ElementsAre(request(kVoice6), request(kVoice7)));
}

TEST_F(Salvaging, aBrokenHeaderOfAnotherUnitSaysTheSame) {
  const Unit six(kVoice6, 1);
  file().send(damaged(blockDump(kVoice7))).send(six.part(1, 26));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0", "voice:user1:7 lost 0", "40 00 00 lost 0"));
}

TEST_F(Salvaging, blocksOfNoKnownUnitThatAnotherFileHasAreNotLost) {
  const Unit six(kVoice6, 1);
  file().send(six.part(1, 25)).file().send(six);
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 1"));
}

// Two sounds in one place, the end of the first and the beginning of the second lost: to verify this is a whole unit.
TEST_F(Salvaging, blocksThatComeAgainOtherwiseAreOfAnotherSound) {
  file().send(Unit(kVoice6, 1).part(0, 10)).send(Unit(kVoice6, 2).part(5, 26));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 lost 0"));
  EXPECT_THAT(result().units[0].missing, SizeIs(4));
}

TEST_F(Salvaging, aUnitWhoseBlocksAllComeAgainIsTheLaterOne) {
  const Unit second(kVoice6, 2);
  file().send(Unit(kVoice6, 1).part(0, 10)).send(second.part(1, 26));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 0"));
  EXPECT_EQ(kept(), second.messages);
}

TEST_F(Salvaging, aBlockThatWasSentTwiceIsNoHarm) {
  const Unit whole(kVoice6, 1);
  file().send(whole.part(0, 10)).send(whole.part(9, 26));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 0"));
  EXPECT_EQ(kept(), whole.messages);
}

TEST_F(Salvaging, aMessageThatWasCutShortIsMissedWhereItWas) {
  file().send(Unit(kVoice6).part(0, 5)).cutShort(blockDump(kElement), 8).send(Unit(kVoice6).part(6, 26));
  file().cutShort(blockDump(kCommon), 30);
  file().cutShort(fileDump({0x0C, 0x50, 0x04}, "One", {1}), 10);
  EXPECT_THAT(units(), ElementsAre("file:multi:5 lost 2", "voice:user1:6 lost 0", "system:common lost 1"));
  EXPECT_EQ(result().unknown, 0u);
}

TEST_F(Salvaging, whatCannotBeNamedIsCounted) {
  file().cutShort(blockDump(kCommon), 5).send(damaged(dump({0x7F, 0x00, 0x00})));
  EXPECT_THAT(units(), IsEmpty());
  EXPECT_EQ(result().unknown, 2u);
}

TEST_F(Salvaging, whatAnotherFileHasIsNotLost) {
  file().send(damaged(blockDump(kCommon))).send(Unit(kVoice6).part(0, 7));
  file().send(blockDump(kCommon)).send(Unit(kVoice6));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 1", "system:common whole 1"));
  EXPECT_THAT(result().requests, IsEmpty());
}

// What is restored from what is kept has nothing removed.
TEST_F(Salvaging, erasersAndWhatNoInstrumentStoresAreLeftOut) {
  file().send(dump({0x0C, 0x0A, 0x00}, Bytes(4))).send(fileDump({0x0C, 0x00, 0x00}, "Preset", {1}));
  file().send(dump({0x0E, 0x31, 0x40})).send(dump({0x0F, 0x31, 0x40})).send(request(kCommon));
  EXPECT_THAT(units(), IsEmpty());
  EXPECT_THAT(kept(), IsEmpty());
  EXPECT_THAT(result().leftOut, SizeIs(5));
}

TEST_F(Salvaging, aContentInTwoFormsIsNamed) {
  file().send(fileDump({0x0C, 0x0A, 0x05}, "One", {1})).send(dump(Editor::kWriteTrigger)).send(Unit(kVoice6));
  ASSERT_THAT(result().twice, SizeIs(1));
  EXPECT_EQ(nameOf(result().twice[0]), "voice:user1:6");
}

TEST_F(Salvaging, theVoiceOfAPartIsOfOneKind) {
  constexpr BulkAddress kPart{0x0E, 0x30, 0x01};
  options.merges = true;
  file().send(Unit(kPart, 0, BDA::List::drumVoice).part(0, 40));
  file().send(Unit(kPart).without(kElement));
  file().send(Unit({0x0E, 0x30, 0x02}, 0, BDA::List::drumVoice));
  EXPECT_THAT(units(), ElementsAre("voice:part:2 lost 0 1", "voice:part:3 whole 2"));
}

TEST_F(Salvaging, requestsAreForTheDeviceThatSentTheRest) {
  file().send(dump(kVoice6, {}, 4)).send(dump({0x40, 0x00, 0x00}, Bytes(3), 4));
  EXPECT_THAT(result().requests, ElementsAre(request(kVoice6, 4)));
  EXPECT_EQ(result().unknown, 0u) << "it is the block that the unit lacks";
}

// Files of one sound each, with messages that are lost, broken or sent twice.
TEST_F(Salvaging, whatIsKeptIsAlwaysOneSound) {
  std::mt19937 random(1);
  const auto isOneIn = [&random](unsigned many) { return random() % many == 0; };
  const Unit sounds[] = {Unit(kVoice6, 1), Unit(kVoice6, 2)};
  unsigned keptUnits = 0;
  unsigned completedUnits = 0;
  for (int i = 0; i < 200; ++i) {
    Salvage salvage({});
    std::uint64_t number = 0;
    for (std::size_t source = 0; source < 3; ++source) {
      const unsigned loss = std::vector{3U, 30U, 300U}[random() % 3];
      for (const Bytes& message : sounds[random() % 8 == 0].messages) {
        if (isOneIn(loss)) continue;
        const Bytes sent = isOneIn(loss) ? damaged(message) : message;
        for (int times = isOneIn(30) ? 2 : 1; times > 0; --times)
          salvage.add({source, ++number, 0, sent, std::nullopt});
      }
    }
    std::vector<Bytes> kept;
    const SalvageResult result = salvage.finish();
    for (const Editor::Piece& piece : result.messages) kept.push_back(piece.bytes);
    if (kept.empty()) continue;
    ++keptUnits;
    completedUnits += result.units[0].state == State::completed;
    ASSERT_TRUE(kept == sounds[0].messages || kept == sounds[1].messages) << i;
  }
  EXPECT_GT(keptUnits, 20U);
  EXPECT_GT(completedUnits, 10U);
}
