#include "salvage/Salvage.h"

#include <algorithm>
#include <functional>

#include "SalvageFixture.h"
#include "acceptance/Library.h"

using Editor::BulkAddress;
using Editor::Salvaged;
using testing::ElementsAre;
using testing::FieldsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Form = Editor::NotTaken::Form;

namespace {

constexpr BulkAddress kFirst{0x40, 0x00, 0x00};
constexpr BulkAddress kSecond{0x40, 0x01, 0x00};

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
  EXPECT_THAT(result().addedTriggers, IsEmpty());
  EXPECT_THAT(result().requests, IsEmpty());
}

TEST_F(Salvaging, addsTheTriggerThatNoFileHasForTheDeviceOfTheFileDumps) {
  Bytes forDevice3 = fileDump({0x0C, 0x50, 0x04}, "One", {1});
  forDevice3[2] = 2;
  file().send(forDevice3).send(dump(Editor::kWriteTrigger));
  EXPECT_THAT(kept(), ElementsAre(forDevice3, dump(Editor::kWriteTrigger, {}, 2)));
  ASSERT_THAT(result().addedTriggers, SizeIs(1));
  EXPECT_EQ(result().addedTriggers[0].device, 3u);
  EXPECT_FALSE(result().addedTriggers[0].isInsteadOfAnother);
}

TEST_F(Salvaging, fileDumpsForOneDeviceStandTogetherAndTheirOwnTriggerBehindThem) {
  const auto multi = [](std::uint8_t number, std::uint8_t device) {
    Bytes message = fileDump({0x0C, 0x50, number}, "Multi", {number});
    message[2] = device;
    return message;
  };
  const Bytes trigger5 = dump(Editor::kWriteTrigger, {}, 4);
  file().send(multi(2, 0)).send(multi(1, 4)).send(trigger5);
  file().send(multi(4, 4)).send(trigger5).send(multi(3, 0));
  EXPECT_THAT(kept(),
              ElementsAre(multi(2, 0), multi(3, 0), dump(Editor::kWriteTrigger), multi(1, 4), multi(4, 4), trigger5));
  ASSERT_THAT(result().addedTriggers, SizeIs(1));
  EXPECT_EQ(result().addedTriggers[0].device, 1u);
}

TEST_F(Salvaging, aTriggerThatRemovesMixingVoicesIsLeftOutForOneThatOnlyWrites) {
  const Bytes fileDumpOfMulti = fileDump({0x0C, 0x50, 0x04}, "One", {1});
  file().send(fileDumpOfMulti).send(dump({0x11, 0x01, 0x00}));
  EXPECT_THAT(kept(), ElementsAre(fileDumpOfMulti, dump(Editor::kWriteTrigger)));
  ASSERT_THAT(result().addedTriggers, SizeIs(1));
  EXPECT_TRUE(result().addedTriggers[0].isInsteadOfAnother);
  ASSERT_THAT(result().leftOut, SizeIs(1));
  EXPECT_STREQ(result().leftOut[0].why, "it would have all mixing voices removed");
}

TEST_F(Salvaging, aTriggerAsItWasCapturedGoesBeforeOneThatWasCorrected) {
  options.correctsChecksums = true;
  const Bytes fileDumpOfMulti = fileDump({0x0C, 0x50, 0x04}, "One", {1});
  file().send(fileDumpOfMulti).send(damaged(dump(Editor::kWriteTrigger)));
  EXPECT_TRUE(result().messages.back().wrongChecksum.has_value());
  EXPECT_THAT(result().addedTriggers, IsEmpty());
  anew().file().send(fileDumpOfMulti).send(damaged(dump(Editor::kWriteTrigger))).send(dump(Editor::kWriteTrigger));
  EXPECT_FALSE(result().messages.back().wrongChecksum.has_value());
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

TEST_F(Salvaging, twoWholeOnesOfTwoKindsDifferInTheirHeader) {
  constexpr BulkAddress kPart{0x0E, 0x30, 0x01};
  file().send(Unit(kPart)).file().send(Unit(kPart, 0, BDA::List::drumVoice));
  ASSERT_THAT(units(), ElementsAre("voice:part:2 lost 0 1"));
  EXPECT_THAT(result().units[0].contradicts, ElementsAre(kPart));
}

TEST_F(Salvaging, whatThePreferredFileHasOtherwiseButNotWholeIsNamed) {
  options.preferred = 1;
  const Unit old(kVoice6, 1);
  file().send(old).file().send(Unit(kVoice6, 2).part(0, 3));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 whole 0"));
  EXPECT_THAT(notTaken(), ElementsAre(FieldsAre(Form::remains, ElementsAre(1), ElementsAre(kFirst, kSecond))));
  anew().file().send(old).file().send(old.part(0, 3));
  EXPECT_THAT(notTaken(), IsEmpty());
  anew().file().send(old).file().send(old.part(0, 3)).send(Unit(kVoice6, 2));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 1"));
  EXPECT_THAT(notTaken(), ElementsAre(FieldsAre(Form::remains, ElementsAre(1), ElementsAre(kFirst, kSecond)),
                                      FieldsAre(Form::whole, ElementsAre(0), SizeIs(24))));
}

TEST_F(Salvaging, remainsThatDifferFromWhatIsKeptAreNamedWhoeverIsPreferred) {
  const Unit whole(kVoice6, 1);
  const Unit other = Unit(kVoice6, 2).part(0, 3);
  const auto areNamed = [](std::size_t source) {
    return ElementsAre(FieldsAre(Form::remains, ElementsAre(source), ElementsAre(kFirst, kSecond)));
  };
  file().send(other).file().send(whole);
  EXPECT_THAT(notTaken(), areNamed(0));
  anew().file().send(other).send(whole);
  EXPECT_THAT(notTaken(), areNamed(0));
  anew().file().send(other).send(whole.part(1, 26));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 whole 0"));
  EXPECT_THAT(notTaken(), areNamed(0));
  anew().file().send(whole.part(0, 3)).file().send(whole);
  EXPECT_THAT(notTaken(), IsEmpty());
  options.preferred = 1;
  anew().file().send(whole.without(kElement)).file().send(whole.without({0x42, 0x00, 0x00})).file().send(other);
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 completed 0 1"));
  EXPECT_THAT(notTaken(), areNamed(2));
}

TEST_F(Salvaging, otherWholeOnesThanThePreferredAreNamed) {
  options.preferred = 1;
  const Unit other = Unit(kVoice6, 1).with(kElement, blockDump(kElement, 2));
  file().send(other).file().send(Unit(kVoice6, 1)).file().send(other).file().send(Unit(kVoice6, 1));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 whole 1"));
  EXPECT_THAT(notTaken(), ElementsAre(FieldsAre(Form::whole, ElementsAre(0, 2), ElementsAre(kElement))));
}

// What merging chooses between is named as that.
TEST_F(Salvaging, whatIsMergedLeavesOutOnlyCapturesForOtherDevices) {
  options.merges = true;
  const Unit sound(kVoice6, 1);
  const auto forDevice5 = [](Bytes message) {
    message[2] = 4;
    return message;
  };
  file().send(sound.part(0, 10)).send(Unit(kVoice6, 2).part(9, 26));
  file().send(forDevice5(blockDump(kVoice6))).send(forDevice5(blockDump(kFirst, 3)));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 completed 0"));
  EXPECT_THAT(result().units[0].contradicts, SizeIs(1));
  EXPECT_THAT(notTaken(), ElementsAre(FieldsAre(Form::remains, ElementsAre(1), ElementsAre(kFirst))));
}

TEST_F(Salvaging, saysWhatMergingWouldComplete) {
  const Unit whole(kVoice6, 1);
  file().send(whole.part(0, 1)).loose().send(whole.part(1, 26)).send(Unit(kVoice7).without(kElement));
  ASSERT_THAT(units(), ElementsAre("voice:user1:6 lost 0", "voice:user1:7 lost 0"));
  EXPECT_TRUE(result().units[0].isMergeable);
  EXPECT_FALSE(result().units[1].isMergeable);
}

TEST_F(Salvaging, pausesBetweenUnitsWhereItCanBeEnded) {
  Editor::Salvage salvage(options);
  std::uint64_t number = 0;
  for (const Bytes& message : {blockDump(kCommon), blockDump({0x00, 0x40, 0x00}), blockDump({0x40, 0x00, 0x00})})
    salvage.add({0, ++number, 0, message, std::nullopt});
  int pauses = 0;
  EXPECT_THAT(salvage.finish([&] { ++pauses; }).units, SizeIs(3));
  EXPECT_EQ(pauses, 3);
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

// The footer of one sound and the header of the next are lost, and the block where they meet is equal in both.
TEST_F(Salvaging, aBlockThatStandsTwiceMayBeWhereTwoSoundsMeet) {
  const Unit whole(kVoice6, 1);
  const Unit other = Unit(kVoice6, 2).with(kElement, blockDump(kElement, 1));
  const auto meeting = std::ranges::find(other.messages, blockDump(kElement, 1)) - other.messages.begin();
  const auto at = std::size_t(meeting);
  for (const Unit& second : {other, whole}) {
    options.merges = false;
    anew().file().send(whole.part(0, at + 1)).send(second.part(at, 26));
    ASSERT_THAT(units(), ElementsAre("voice:user1:6 lost 0"));
    EXPECT_THAT(result().units[0].missing, SizeIs(at - 1));
    EXPECT_TRUE(result().units[0].isMergeable);
    EXPECT_THAT(result().requests, ElementsAre(request(kVoice6)));
    options.merges = true;
    anew().file().send(whole.part(0, at + 1)).send(second.part(at, 26));
    EXPECT_THAT(units(), ElementsAre("voice:user1:6 completed 0"));
    EXPECT_TRUE(result().units[0].isMerged);
  }
}

TEST_F(Salvaging, anotherFileSaysThatABlockWasSentTwice) {
  const Unit whole(kVoice6, 1);
  file().send(whole.part(0, 10)).send(whole.part(9, 26)).file().send(whole.part(0, 1)).send(whole.part(5, 15));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 completed 0 1"));
  EXPECT_EQ(kept(), whole.messages);
  anew().file().send(whole.part(0, 10)).send(whole.part(9, 26)).file().send(whole.part(0, 1)).send(whole.part(9, 15));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0 1")) << "the block that stands twice says nothing";
}

TEST_F(Salvaging, whereEachMessageStandsTwiceAllWasHeardTwice) {
  const Unit whole(kVoice6, 1);
  Unit doubled = whole.part(0, 0);
  for (const Bytes& message : whole.messages) doubled.messages.insert(doubled.messages.end(), 2, message);
  file().send(doubled);
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 0"));
  EXPECT_EQ(kept(), whole.messages);
  anew().file().send(doubled.part(0, 20)).send(doubled.part(18, 52));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0"));
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

TEST_F(Salvaging, ofTwoFormsOfAContentThatOfThePreferredFileAloneIsKept) {
  constexpr BulkAddress kFileDump{0x0C, 0x0A, 0x05};
  const Bytes stored = fileDump(kFileDump, "One", {1});
  const Unit unit(kVoice6);
  options.preferred = 0;
  file().send(stored).send(dump(Editor::kWriteTrigger)).file().send(unit);
  EXPECT_THAT(units(), ElementsAre("file:voice:user1:6 whole 0"));
  EXPECT_THAT(kept(), ElementsAre(stored, dump(Editor::kWriteTrigger)));
  EXPECT_THAT(notTaken(), ElementsAre(FieldsAre(Form::asUnit, ElementsAre(1), ElementsAre(kVoice6))));
  EXPECT_THAT(result().twice, IsEmpty());
  anew().file().send(unit).file().send(stored).send(dump(Editor::kWriteTrigger));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 0"));
  EXPECT_EQ(kept(), unit.messages);
  EXPECT_THAT(notTaken(), ElementsAre(FieldsAre(Form::asFileDump, ElementsAre(1), ElementsAre(kFileDump))));
  for (const std::size_t preferred : {0U, 1U}) {  // both are of it, or none is
    options.preferred = preferred;
    anew().file().send(unit).send(stored).file().send(blockDump(kCommon));
    EXPECT_THAT(units(), SizeIs(3));
    EXPECT_THAT(result().twice, SizeIs(1));
  }
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

// ---- What stands inside of a unit ----

// The first blocks of one voice and the last of another of the same place: together they have every block.
TEST_F(Salvaging, whatStandsInsideOfAUnitMayHaveSwallowedTheEndOfOneSoundAndTheBeginningOfTheNext) {
  const auto sending = [](const Bytes& message) { return [message](Salvaging& to) { to.send(message); }; };
  const auto cuttingShort = [](const Bytes& message, std::size_t length) {
    return [message, length](Salvaging& to) { to.cutShort(message, length); };
  };
  Bytes countWrong = blockDump(kElement, 1);
  countWrong.erase(countWrong.end() - 5);
  Bytes ofNoType = blockDump(kElement, 1);
  ofNoType[2] = 0x70;
  Bytes ofOtherType = blockDump(kElement, 1);
  ofOtherType[2] = 0x10;
  Bytes foreign = blockDump(kElement, 1);
  foreign[1] = 0x41;
  const std::pair<const char*, std::function<void(Salvaging&)>> between[] = {
      {"a wrong checksum", sending(damaged(blockDump(kElement, 1)))},
      {"of a single block", sending(damaged(blockDump(kCommon)))},
      {"of a file dump", sending(damaged(fileDump({0x0C, 0x50, 0x04}, "One", {1})))},
      {"a wrong byte count", sending(countWrong)},
      {"the length of another block", sending(dump(kElement, Bytes(3)))},
      {"an unknown address", sending(dump({0x7F, 0x00, 0x00}))},
      {"no type", sending(ofNoType)},
      {"a type of something else", sending(ofOtherType)},
      {"another instrument's", sending(foreign)},
      {"a file dump", sending(fileDump({0x0C, 0x50, 0x04}, "One", {1}))},
      {"an eraser", sending(dump({0x0E, 0x31, 0x40}))},
      {"cut short behind its address", cuttingShort(blockDump(kElement, 1), 12)},
      {"cut short before it", cuttingShort(blockDump(kElement, 1), 5)},
      {"another instrument's cut short", cuttingShort(foreign, 12)},
      {"of which nothing is known", cuttingShort({}, 0)},
      {"in no message", [](Salvaging& to) { to.loose(); }}};
  for (const auto& [what, send] : between) {
    SCOPED_TRACE(what);
    anew().file().send(Unit(kVoice6, 1).part(0, 10));
    send(*this);
    this->send(Unit(kVoice6, 2).part(10, 26));
    EXPECT_THAT(units(), testing::Contains("voice:user1:6 lost 0"));
    EXPECT_THAT(result().requests, testing::Contains(request(kVoice6)));
    EXPECT_EQ(result().unknown, 0U) << "it is what the unit lacks";
    options.merges = true;
    anew().file().send(Unit(kVoice6, 1).part(0, 10));
    send(*this);
    this->send(Unit(kVoice6, 2).part(10, 26));
    EXPECT_THAT(units(), testing::Contains("voice:user1:6 completed 0"));
    EXPECT_TRUE(std::ranges::any_of(result().units, &Salvaged::isMerged));
    options.merges = false;
  }
}

TEST_F(Salvaging, aUnitIsForOneDevice) {
  const Unit whole(kVoice6, 1);
  Unit forAnother = whole;
  for (Bytes& message : forAnother.messages) message[2] = 3;
  for (const bool merges : {false, true}) {
    options.merges = merges;
    anew().file().send(whole.part(0, 10)).send(forAnother.part(10, 26));
    EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0"));
    anew().file().send(whole.part(0, 25)).send(forAnother.part(25, 26));
    EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0"));
    anew().file().send(whole.part(0, 20)).file().send(forAnother.part(5, 26));
    EXPECT_THAT(units(), ElementsAre("voice:user1:6 lost 0 1"));
    anew().file().send(whole).send(forAnother);
    EXPECT_EQ(kept(), forAnother.messages);
  }
}

TEST_F(Salvaging, anotherCaptureJoinsWhatStandsBeforeAndBehindTheDamage) {
  const Unit whole(kVoice6, 1);
  file().send(whole.part(0, 10)).send(damaged(blockDump(kElement, 1))).send(whole.part(11, 26));
  file().send(whole.part(0, 20)).loose().send(whole.part(20, 26));
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 completed 0 1"));
  EXPECT_EQ(kept(), whole.messages);
}

TEST_F(Salvaging, whatStandsBetweenUnitsIsNoHarm) {
  const Unit six(kVoice6, 1);
  const Unit seven(kVoice7, 2);
  file().loose().send(six).loose().cutShort({0xF0, 0x41, 0x00}, 3).send(seven).loose();
  EXPECT_THAT(units(), ElementsAre("voice:user1:6 whole 0", "voice:user1:7 whole 0"));
  EXPECT_EQ(result().unknown, 0U);
}

TEST(SalvageLosses, whatASourceLosesCountsByWhatItIs) {
  using Kind = Editor::InputLoss::Kind;
  const std::string file = "a.syx";
  const Bytes header = blockDump(kVoice6);
  const auto salvaged = [&](std::initializer_list<Kind> losses) {
    Editor::Salvage salvage({});
    for (const Kind kind : losses) salvage.lose(0, {file, 0, 1, "why", kind, std::span(header).first(10)});
    return salvage.finish();
  };
  EXPECT_TRUE(salvaged({Kind::realTime, Kind::loose}).isNothingLost());
  const Editor::SalvageResult cut = salvaged({Kind::cutShort});
  EXPECT_EQ(cut.units.size(), 1u) << "there was such a voice";
  EXPECT_FALSE(cut.isNothingLost());
  const Editor::SalvageResult broken = salvaged({Kind::brokenFile, Kind::brokenFile});
  EXPECT_EQ(broken.notInFull, 1u);
  EXPECT_FALSE(broken.isNothingLost());
}
