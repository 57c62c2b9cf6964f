#include "find/FileCandidates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "acceptance/Library.h"
#include "contents/ContentFormat.h"
#include "editor/messages/BulkMessages.h"
#include "find/ModelValues.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr BulkAddress kTrigger{0x11, 0x00, 0x00};

struct FileReceiverTest : testing::Test {
  void addUnit(BulkAddress header, BDA::List list, std::uint8_t value = 0, std::uint8_t device = 0) {
    messages.push_back(dump(header, {}, device));
    for (const BulkAddress block : blocksOf(list))
      messages.push_back(dump(block, Bytes(findBlock(block)->dataLength.value_or(0), value), device));
    messages.push_back(dump({BDA::kFooterHi, header.mid, header.lo}, {}, device));
  }

  // The places that the messages so far store, and forgets them.
  std::vector<std::string> receive(EditBuffers buffers = EditBuffers::leftOut) {
    std::vector<FileMessage> file;
    for (const Bytes& message : messages) file.push_back({file.size() + 1, message});
    contents = receiver.receive(file, buffers);
    messages.clear();
    std::vector<std::string> places;
    for (const Candidate& candidate : contents.whole) places.push_back(candidate.place);
    return places;
  }

  FileReceiver receiver;
  std::vector<Bytes> messages;
  FileContents contents;
};

TEST_F(FileReceiverTest, aWholeUnitIsAContent) {
  messages.push_back(blockDump({0, 6, 0}));
  addUnit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41);
  EXPECT_THAT(receive(), ElementsAre("voice:user1:6"));
  const Candidate& voice = contents.whole[0];
  EXPECT_EQ(voice.kind, ContentKind::voice);
  EXPECT_EQ(voice.name, std::string(20, 'A'));
  EXPECT_EQ(voice.id, (ContentId{4, 0x3F0805}));
  EXPECT_EQ(voice.message, 2u);
  EXPECT_EQ(contents.broken, 0u);
  ModelSet models = emptySetFor(ContentKind::voice);
  ASSERT_FALSE(decodeContent(voice.bytes, models));
  EXPECT_EQ(models.voice->name.text(), voice.name);
}

TEST_F(FileReceiverTest, eachKindIsReceived) {
  addUnit({0x0E, 0x28, 0x01}, BDA::List::drumVoice);
  addUnit({0x0E, 0x31, 0x02}, BDA::List::normalVoice);
  addUnit({0x0E, 0x40, 0x03}, BDA::List::performance);
  addUnit({0x0E, 0x70, 0x04}, BDA::List::master);
  addUnit({0x0E, 0x60, 0x05}, BDA::List::remote);
  EXPECT_THAT(receive(), ElementsAre("drum:user:2", "voice:mix:3", "performance:a:4", "master:5", "remote:6"));
  std::vector<ContentKind> kinds;
  for (const Candidate& candidate : contents.whole) {
    kinds.push_back(candidate.kind);
    ModelSet models = emptySetFor(candidate.kind);
    EXPECT_FALSE(decodeContent(candidate.bytes, models)) << candidate.place;
  }
  EXPECT_THAT(kinds, ElementsAre(ContentKind::drum, ContentKind::mix, ContentKind::performance, ContentKind::master,
                                 ContentKind::remote));
}

TEST_F(FileReceiverTest, aUnitThatIsNotWholeIsCountedAndNoContent) {
  addUnit({0x0E, 0x0A, 0x00}, BDA::List::normalVoice);
  messages.erase(messages.begin() + 5);
  addUnit({0x0E, 0x0A, 0x01}, BDA::List::normalVoice);
  messages[messages.size() - 2] = damaged(messages[messages.size() - 2]);
  addUnit({0x0E, 0x0A, 0x02}, BDA::List::normalVoice);
  messages.insert(messages.end() - 3, request({0x0E, 0x0A, 0x00}));  // as verify judges: abandoned
  messages.push_back(dump({0x0E, 0x0A, 0x03}));
  const std::size_t blocks = 3;  // outside behind the request, and a stray footer
  EXPECT_THAT(receive(), IsEmpty());
  EXPECT_EQ(contents.broken, 3 + blocks + 1);
}

TEST_F(FileReceiverTest, whatIsBrokenBetweenWholeUnitsDoesNotTouchThem) {
  addUnit({0x0E, 0x0A, 0x00}, BDA::List::normalVoice);
  messages.push_back(dump({0x0E, 0x0A, 0x03}));
  messages.push_back(blockDump({0x46, 0, 0}));
  addUnit({0x0E, 0x0A, 0x02}, BDA::List::normalVoice);
  EXPECT_THAT(receive(), ElementsAre("voice:user1:1", "voice:user1:3"));
}

TEST_F(FileReceiverTest, onePlaceIsFoundAsOftenAsAWholeUnitStoresIt) {
  addUnit({0x0E, 0x0A, 0x00}, BDA::List::normalVoice, 1);
  addUnit({0x0E, 0x0A, 0x00}, BDA::List::normalVoice, 2);
  EXPECT_THAT(receive(), ElementsAre("voice:user1:1", "voice:user1:1"));
  EXPECT_NE(contents.whole[0].bytes, contents.whole[1].bytes);
  EXPECT_LT(contents.whole[0].message, contents.whole[1].message);
}

TEST_F(FileReceiverTest, unitsAreTakenForAnyDevice) {
  addUnit({0x0E, 0x0A, 0x00}, BDA::List::normalVoice, 1, 9);
  EXPECT_THAT(receive(), ElementsAre("voice:user1:1"));
}

TEST_F(FileReceiverTest, fileDumpsCountWhenTheirTriggerWritesThem) {
  messages.push_back(fileDump({0x0C, 0x50, 0x00}, "Early", {1}));
  messages.push_back(fileDump({0x0C, 0x7F, 0x00}, "", {3}));
  messages.push_back(fileDump({0x0C, 0x50, 0x00}, "Late", {1, 2}));
  messages.push_back(dump({0x0C, 0x50, 0x01}, Bytes(4)));  // removes
  messages.push_back(dump(kTrigger));
  messages.push_back(fileDump({0x0C, 0x50, 0x02}, "Held", {1}));
  messages.push_back(fileDump({0x0C, 0x50, 0x03}, "Held", {1}));
  EXPECT_THAT(receive(), testing::UnorderedElementsAre("file:multi:1", "file:single"));
  EXPECT_EQ(contents.broken, 2u) << "each of those that are held";
  for (const Candidate& candidate : contents.whole) {
    if (candidate.place != "file:multi:1") continue;
    EXPECT_EQ(candidate.name, "Late");
    EXPECT_EQ(candidate.bytes, (Bytes{1, 2}));
    EXPECT_EQ(candidate.message, 3u);
    EXPECT_EQ(candidate.kind, ContentKind::multi);
  }
}

TEST_F(FileReceiverTest, aBrokenFileDumpIsCountedOnceAndNoContent) {
  const Bytes whole = fileDump({0x0C, 0x50, 0x00}, "Whole", {1});
  const Bytes wrong = damaged(fileDump({0x0C, 0x50, 0x01}, "Wrong", {1}));
  const Bytes tooShort = dump({0x0C, 0x50, 0x02}, Bytes{0, 3, 1});
  for (const Bytes& broken : {wrong, tooShort}) {
    messages = {whole, broken, dump(kTrigger)};
    EXPECT_THAT(receive(), ElementsAre("file:multi:1"));
    EXPECT_EQ(contents.broken, 1u);
  }
  messages = {wrong};
  receive();
  EXPECT_EQ(contents.broken, 1u);
  messages = {tooShort};  // held without a trigger
  receive();
  EXPECT_EQ(contents.broken, 1u);
  messages = {tooShort, tooShort, dump(kTrigger), whole, dump(kTrigger)};
  EXPECT_THAT(receive(), ElementsAre("file:multi:1"));
  EXPECT_EQ(contents.broken, 2u);
}

TEST_F(FileReceiverTest, theRemainderOfAMessageIsCountedWhereNoUnitLacksIt) {
  const Bytes remainder{0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0xF7};
  messages = {fileDump({0x0C, 0x50, 0x00}, "Whole", {1}), remainder, dump(kTrigger)};
  EXPECT_THAT(receive(), ElementsAre("file:multi:1"));
  EXPECT_EQ(contents.broken, 1u);
  messages = {blockDump({0x0E, 0x0A, 0x00}), remainder, blockDump({0x0F, 0x0A, 0x00})};
  receive();
  EXPECT_EQ(contents.broken, 1u) << "the unit";
  messages = {fileDump({0x0C, 0x50, 0x00}, "Held", {1}), remainder, fileDump({0x0C, 0x50, 0x01}, "Held", {1})};
  receive();
  EXPECT_EQ(contents.broken, 3u);
}

TEST_F(FileReceiverTest, howFarItIsIsSaidInsideOfAFile) {
  for (std::uint8_t number = 0; number < 4; ++number) addUnit({0x0E, 0x70, number}, BDA::List::master);
  const std::size_t unit = messages.size() / 4;
  std::vector<FileMessage> file;
  for (const Bytes& message : messages) file.push_back({file.size() + 1, message});
  std::vector<std::size_t> told;
  receiver.receive(file, EditBuffers::leftOut, [&](std::size_t done) { told.push_back(done); });
  EXPECT_THAT(told, ElementsAre(0, unit, 2 * unit, 3 * unit));
}

TEST_F(FileReceiverTest, aMixingVoiceWithTwoDumpsIsOneContent) {
  messages.push_back(fileDump({0x0C, 0x31, 0x00}, "Bank", {1}));
  messages.push_back(fileDump({0x0C, 0x10, 0x00}, "Multi", {2}));
  messages.push_back(dump(kTrigger));
  EXPECT_THAT(receive(), ElementsAre("voice:mix:1"));
  EXPECT_EQ(contents.whole[0].name, "Multi");
}

TEST_F(FileReceiverTest, flagsAreThoseThatTheFileLeaves) {
  Bytes flags(128, 0);
  flags[5] = 1;
  addUnit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice);
  addUnit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice);
  messages.push_back(dump({0x71, 0x0A, 0x00}, flags));
  receive();
  ASSERT_EQ(contents.whole.size(), 2u);
  EXPECT_EQ(contents.whole[0].favourite, 1);
  EXPECT_EQ(contents.whole[1].favourite, 0);
  addUnit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice);  // in another file
  receive();
  EXPECT_EQ(contents.whole.at(0).favourite, 0);
}

// ---- Edit buffers ----

TEST_F(FileReceiverTest, editBuffersAreContentsOnlyWhenAsked) {
  for (int i = 0; i < 2; ++i) {
    addUnit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice, 0x41);
    addUnit({0x0E, 0x5F, 0x00}, BDA::List::multi, 1);
    addUnit({0x0E, 0x7F, 0x00}, BDA::List::master, 1);
    if (i == 0)
      EXPECT_THAT(receive(), IsEmpty());
    else
      EXPECT_THAT(receive(EditBuffers::included), ElementsAre("voice:edit", "multi:edit", "master:edit"));
  }
  EXPECT_EQ(contents.whole[0].name, std::string(20, 'A'));
  EXPECT_EQ(contents.whole[0].kind, ContentKind::voice);
  EXPECT_EQ(contents.whole[0].message, 1u);
  EXPECT_FALSE(contents.whole[0].id);
}

TEST_F(FileReceiverTest, noFileSeesTheMultiOfAnother) {
  addUnit({0x0E, 0x5F, 0x00}, BDA::List::multi, 1);
  addUnit({0x0E, 0x30, 0x00}, BDA::List::normalVoice, 2);
  EXPECT_THAT(receive(EditBuffers::included), ElementsAre("multi:edit", "voice:part:1"));
  const std::vector<std::uint8_t> withMulti = contents.whole.at(1).bytes;
  addUnit({0x0E, 0x30, 0x00}, BDA::List::normalVoice, 2);
  EXPECT_THAT(receive(EditBuffers::included), ElementsAre("voice:part:1"));
  EXPECT_NE(contents.whole[0].bytes, withMulti);
}

}  // namespace
}  // namespace Editor
