#include "exchange/EmbeddedEditor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "editor/messages/BulkMessages.h"

using Editor::BulkAddress;
using Editor::EditBuffer;
using Editor::EmbeddedEditor;
using Editor::Outcome;
using Editor::Record;
using State = Editor::UnitReport::State;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr BulkAddress kHeader{0x0E, 0x0A, 0x05};
constexpr BulkAddress kFooter{0x0F, 0x0A, 0x05};
constexpr BulkAddress kElement{0x41, 0x02, 0x00};
constexpr BulkAddress kSystemCommon{0x00, 0x00, 0x00};

class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "bda-editor-XXXXXX").string();
    path_ = ::mkdtemp(name.data());
  }
  ~TemporaryDirectory() { std::filesystem::remove_all(path_); }
  std::filesystem::path operator/(const char* name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

class EmbeddedEditorTest : public testing::Test {
 protected:
  Record send(const Bytes& message, BDA::DevicePortNum port = BDA::DevicePort_Main) {
    return editor->handle(message, port, ++count_);
  }
  Record block(BulkAddress address, std::uint8_t value = 0) { return send(blockDump(address, value)); }
  void blocks(BDA::List list) {
    for (const BulkAddress address : blocksOf(list)) ASSERT_EQ(block(address).outcome, Outcome::accepted);
  }
  void setUtility(std::uint16_t parameter, std::uint8_t value) {
    Editor::ModelSet system = editor->tools().liveSystem();
    system.system->utility.set(&value, parameter, 0);
    ASSERT_TRUE(editor->tools().replaceSystem(system));
  }
  // What a second program would find in the library.
  EmbeddedEditor another() { return EmbeddedEditor(directory / "library.db"); }

  TemporaryDirectory directory;
  std::optional<EmbeddedEditor> editor{std::in_place, directory / "library.db"};

 private:
  std::uint64_t count_ = 0;
};

std::vector<std::uint16_t> shown(std::initializer_list<int> ids) { return {ids.begin(), ids.end()}; }

// Makes the first page that holds nothing but `filling` after its pointer to the next page point outside the file.
void breakChainOfPages(const std::filesystem::path& file, char filling) {
  constexpr std::size_t kPage = 4096;
  constexpr std::size_t kPointer = 4;
  std::fstream library(file, std::ios::in | std::ios::out | std::ios::binary);
  std::string page(kPage, '\0');
  for (std::size_t at = 0; library.read(page.data(), kPage); at += kPage) {
    if (page.find_first_not_of(filling, kPointer) != std::string::npos) continue;
    library.seekp(std::streamoff(at));
    library.write("\xFF\xFF\xFF\xFF", kPointer);
    return;
  }
  FAIL() << file << " has no such page";
}

}  // namespace

// ---- As first message on port 1 ----

TEST_F(EmbeddedEditorTest, aSystemBlockCompletes) {
  const Bytes message = blockDump(kSystemCommon, 1);
  const Record record = send(message);
  EXPECT_EQ(record.result, BDA::BulkMsg_BulkDump);
  EXPECT_EQ(record.shown, shown({11, 12}));
  EXPECT_THAT(record.log, IsEmpty());
  ASSERT_THAT(record.sent, SizeIs(1));
  EXPECT_EQ(record.sent[0].port, BDA::DevicePort_Echo);
  EXPECT_EQ(record.sent[0].bytes, message);
  EXPECT_EQ(record.outcome, Outcome::completed);
  EXPECT_THAT(record.contents, IsEmpty());
}

TEST_F(EmbeddedEditorTest, aHeaderAndItsBlocksAreAcceptedAndTheFooterOfABankStores) {
  const Record header = block(kHeader);
  EXPECT_EQ(header.shown, shown({11}));
  EXPECT_THAT(header.log, IsEmpty());
  EXPECT_THAT(header.sent, SizeIs(1));
  EXPECT_EQ(header.outcome, Outcome::accepted);

  const Record first = block(blocksOf(BDA::List::normalVoice).front());
  EXPECT_EQ(first.shown, shown({12, 11}));
  EXPECT_EQ(first.outcome, Outcome::accepted);
  blocks(BDA::List::normalVoice);

  const Record footer = block(kFooter);
  EXPECT_EQ(footer.result, BDA::BulkMsg_BulkDump);
  EXPECT_EQ(footer.shown, shown({12, 1, 2}));
  EXPECT_THAT(footer.log, IsEmpty());
  EXPECT_THAT(footer.sent, SizeIs(1));
  EXPECT_EQ(footer.outcome, Outcome::stored);
  EXPECT_THAT(footer.contents, ElementsAre("voice:user1:6"));
  EXPECT_THAT(footer.missing, IsEmpty());
  ASSERT_THAT(footer.ended, SizeIs(1));
  EXPECT_EQ(footer.ended[0].state, State::complete);
}

TEST_F(EmbeddedEditorTest, theFooterOfAnEditBufferStores) {
  block({0x0E, 0x5F, 0x00});
  blocks(BDA::List::multi);
  const Record footer = block({0x0F, 0x5F, 0x00});
  EXPECT_EQ(footer.shown, shown({12, 11, 12}));
  EXPECT_EQ(footer.outcome, Outcome::stored);
  EXPECT_THAT(footer.contents, ElementsAre("multi:edit"));
}

TEST_F(EmbeddedEditorTest, aWrongLengthIsRefused) {
  const Record record = send(dump(kSystemCommon, Bytes(67)));
  EXPECT_EQ(record.result, BDA::BulkMsg_BulkDump);
  EXPECT_EQ(record.shown, shown({11, 12, 44}));
  EXPECT_THAT(record.log, SizeIs(4));
  EXPECT_THAT(record.sent, SizeIs(1));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(record.reason, "wrong length for its block: 67 data bytes, this block has 68");
}

TEST_F(EmbeddedEditorTest, anUnknownAddressIsRefused) {
  const Record record = send(dump({0x7F, 0x00, 0x00}));
  EXPECT_EQ(record.shown, shown({11, 12}));
  EXPECT_THAT(record.log, SizeIs(2));
  EXPECT_THAT(record.sent, SizeIs(1));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(record.reason, "no block at 7F 00 00");
}

TEST_F(EmbeddedEditorTest, anotherInstrumentsMessageIsNotOurs) {
  Bytes foreign = blockDump(kSystemCommon);
  foreign[1] = 0x01;
  for (const Bytes& message : {foreign, Bytes{0xF0, 0x7E, 0xF7}}) {
    const Record record = send(message);
    EXPECT_EQ(record.result, BDA::BulkMsg_OtherModel);
    EXPECT_THAT(record.shown, IsEmpty());
    EXPECT_THAT(record.log, IsEmpty());
    EXPECT_THAT(record.sent, IsEmpty());
    EXPECT_EQ(record.outcome, Outcome::notOurs);
  }
}

TEST_F(EmbeddedEditorTest, aRequestToWhichThereIsNothingToSend) {
  // The voice of a part in a bank whose voices this instrument does not keep.
  Editor::ModelSet multi = editor->tools().live(EditBuffer::multi);
  ASSERT_TRUE(multi.multi->part[3].bankProgram.assign({0x3F, 0x32, 0}));
  ASSERT_TRUE(editor->tools().replaceLive(EditBuffer::multi, 0, multi));
  const Record record = send(request({0x0E, 0x30, 0x03}));
  EXPECT_EQ(record.result, BDA::BulkMsg_RequestSkipped);
  EXPECT_EQ(record.shown, shown({13, 14}));
  EXPECT_THAT(record.log, IsEmpty());
  EXPECT_THAT(record.sent, IsEmpty());
  EXPECT_EQ(record.outcome, Outcome::nothingToSend);
}

TEST_F(EmbeddedEditorTest, aFileDumpIsAcceptedAndStoredByItsTrigger) {
  const Record held = send(dump({0x0C, 0x50, 0x04}, {0, 0, 0, 2, 0, 0x41}));
  EXPECT_EQ(held.shown, shown({11}));
  EXPECT_THAT(held.log, IsEmpty());
  EXPECT_EQ(held.outcome, Outcome::accepted);
  EXPECT_THAT(editor->openUnits(), SizeIs(1));

  const Record trigger = send(dump({0x11, 0x00, 0x00}));
  EXPECT_EQ(trigger.shown, shown({12, 1, 2}));
  EXPECT_EQ(trigger.outcome, Outcome::stored);
  EXPECT_THAT(trigger.contents, ElementsAre("file:multi:5"));
  EXPECT_THAT(trigger.removed, IsEmpty());
  EXPECT_THAT(editor->openUnits(), IsEmpty());
}

TEST_F(EmbeddedEditorTest, aFavouriteBlockCompletes) {
  const Record record = block({0x71, 0x28, 0x00}, 1);
  EXPECT_EQ(record.shown, shown({11, 12}));
  EXPECT_THAT(record.log, IsEmpty());
  EXPECT_EQ(record.outcome, Outcome::completed);
  EXPECT_EQ(another().library().favourites().size(), 32u);
}

TEST_F(EmbeddedEditorTest, aWrongChecksumIsRefused) {
  const Record record = send(damaged(blockDump(kSystemCommon)));
  EXPECT_EQ(record.result, BDA::BulkMsg_CheckSumError);
  EXPECT_EQ(record.shown, shown({40}));
  EXPECT_THAT(record.log, SizeIs(2));
  EXPECT_THAT(record.sent, IsEmpty());
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_THAT(record.reason, HasSubstr("checksum wrong"));
}

// ---- The other rows ----

TEST_F(EmbeddedEditorTest, messagesOfOtherTypesAreIgnored) {
  for (const int type : {0x10, 0x30, 0x40}) {
    Bytes message = request(kSystemCommon);
    message[2] = std::uint8_t(type);
    EXPECT_EQ(send(message).outcome, Outcome::ignored) << type;
  }
}

TEST_F(EmbeddedEditorTest, theUnaskedMessageForAnotherDeviceIsIgnored) {
  const Record record = send({0xF0, 0x7D, 0x35, 0x7F, 0x14, 0x70, 0x00, 0x06, 0xF7});
  EXPECT_EQ(record.result, BDA::BulkMsg_WrongDeviceNumber);
  EXPECT_THAT(record.shown, IsEmpty());
  EXPECT_THAT(record.log, SizeIs(2));
  EXPECT_EQ(record.outcome, Outcome::ignored);
}

TEST_F(EmbeddedEditorTest, theHeaderOfAnEmptyMixingVoiceIsIgnoredThoughTheModuleKnowsNoSuchBlock) {
  const Record record = send(dump({0x0E, 0x31, 0x45}));
  EXPECT_EQ(record.result, BDA::BulkMsg_BulkDump);
  EXPECT_THAT(record.log, SizeIs(2));
  EXPECT_EQ(record.outcome, Outcome::ignored);
}

TEST_F(EmbeddedEditorTest, theHeaderOfAnEmptyMixingVoiceIsIgnoredWhateverIsWrongWithIt) {
  EXPECT_EQ(send(damaged(dump({0x0E, 0x31, 0x45}))).outcome, Outcome::ignored);
  EXPECT_EQ(send(dump({0x0E, 0x31, 0x45}, {}, 4)).outcome, Outcome::ignored);
  EXPECT_EQ(send(damaged(dump({0x0E, 0x31, 0x05}))).outcome, Outcome::refused);
}

TEST_F(EmbeddedEditorTest, aPartWithoutBlocksLacksThoseOfTheVoiceThatItTakes) {
  send(dump({0x0E, 0x30, 0x02}));
  EXPECT_EQ(send(dump({0x0F, 0x30, 0x02})).missing, blocksOf(BDA::List::normalVoice));
  Editor::ModelSet multi = editor->tools().live(Editor::EditBuffer::multi);
  ASSERT_TRUE(multi.multi->part[2].bankProgram.assign({63, 40, 3}));
  editor->tools().replaceLive(Editor::EditBuffer::multi, 0, multi);
  send(dump({0x0E, 0x30, 0x02}));
  EXPECT_EQ(send(dump({0x0F, 0x30, 0x02})).missing, blocksOf(BDA::List::drumVoice));
}

TEST_F(EmbeddedEditorTest, aWrongDeviceNumberIsRefused) {
  const Record record = send(dump(kSystemCommon, Bytes(68), 4));
  EXPECT_EQ(record.result, BDA::BulkMsg_WrongDeviceNumber);
  EXPECT_EQ(record.shown, shown({43}));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(record.reason, "it is for device 5, the device number is 1");
}

TEST_F(EmbeddedEditorTest, theDeviceNumberOffRefuses) {
  setUtility(Editor::SystemModel::kDeviceNumber, 17);
  const Record record = block(kSystemCommon);
  EXPECT_EQ(record.result, BDA::BulkMsg_DeviceNumberOff);
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(record.reason, "the device number is off");
}

TEST_F(EmbeddedEditorTest, theReceiveSwitchOffRefuses) {
  setUtility(Editor::SystemModel::kReceiveBulk, 0);
  for (const Bytes& message : {blockDump(kSystemCommon), request(kSystemCommon)}) {
    const Record record = send(message);
    EXPECT_EQ(record.result, BDA::BulkMsg_ReceiveSwOff);
    EXPECT_EQ(record.outcome, Outcome::refused);
    EXPECT_EQ(record.reason, "receive-bulk is off");
  }
}

TEST_F(EmbeddedEditorTest, aMessageOfAnUnknownTypeOrLengthIsRefused) {
  Bytes unknown = request(kSystemCommon);
  unknown[2] = 0x50;
  Bytes tooLong = request(kSystemCommon);
  tooLong.insert(tooLong.end() - 1, 0x00);
  for (const Bytes& message : {unknown, tooLong}) {
    const Record record = send(message);
    EXPECT_EQ(record.result, BDA::BulkMsg_ReceiveError);
    EXPECT_EQ(record.outcome, Outcome::refused);
    EXPECT_FALSE(record.reason.empty());
  }
}

TEST_F(EmbeddedEditorTest, aMixingVoiceThatFindsNoRoomIsRefused) {
  editor->library().setMixingVoiceMaximum(0);
  const Record record = block({0x0E, 0x31, 0x05});
  EXPECT_EQ(record.shown, shown({46}));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(record.reason, "there is no room for another mixing voice");
}

TEST_F(EmbeddedEditorTest, aRequestIsAnswered) {
  const Record record = send(request(kSystemCommon));
  EXPECT_EQ(record.result, BDA::BulkMsg_BulkRequest);
  EXPECT_EQ(record.shown, shown({13, 14}));
  ASSERT_THAT(record.sent, SizeIs(1));
  EXPECT_EQ(record.sent[0].port, BDA::DevicePort_Main);
  EXPECT_EQ(record.outcome, Outcome::answered);
}

TEST_F(EmbeddedEditorTest, aRequestOnTheThruPortIsIgnored) {
  const Record record = send(request(kSystemCommon), BDA::DevicePort_Thru);
  EXPECT_EQ(record.result, BDA::BulkMsg_BulkRequest);
  EXPECT_THAT(record.sent, IsEmpty());
  EXPECT_EQ(record.outcome, Outcome::ignored);
}

TEST_F(EmbeddedEditorTest, aRequestForAnEmptySlotIsRefused) {
  const Record record = send(request(kHeader));
  EXPECT_EQ(record.result, BDA::BulkMsg_BulkRequest);
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(record.reason, "nothing is stored there");
}

TEST_F(EmbeddedEditorTest, aRequestForAnEmptyMixingVoiceIsAnswered) {
  const Record record = send(request({0x0E, 0x31, 0x02}));
  EXPECT_THAT(record.shown, IsEmpty());
  EXPECT_THAT(record.sent, SizeIs(2));
  EXPECT_EQ(record.outcome, Outcome::answered);
}

TEST_F(EmbeddedEditorTest, aTriggerWithNothingToDoCompletes) {
  const Record record = send(dump({0x11, 0x00, 0x00}));
  EXPECT_EQ(record.shown, shown({1, 2}));
  EXPECT_EQ(record.outcome, Outcome::completed);
  EXPECT_THAT(record.contents, IsEmpty());
}

TEST_F(EmbeddedEditorTest, theFooterOfAnEmptyMixingVoiceStoresWhenItRemovesOne) {
  EXPECT_EQ(send(dump({0x0F, 0x31, 0x45})).outcome, Outcome::ignored);  // there was none
  block({0x0E, 0x31, 0x05});
  EXPECT_EQ(block({0x0F, 0x31, 0x05}).outcome, Outcome::stored);
  const Record record = send(dump({0x0F, 0x31, 0x45}));
  EXPECT_THAT(record.shown, IsEmpty());
  EXPECT_EQ(record.outcome, Outcome::stored);
  EXPECT_THAT(record.contents, ElementsAre("voice:mix:6"));
  EXPECT_THAT(record.removed, ElementsAre("voice:mix:6"));
  EXPECT_THAT(another().library().contents(), IsEmpty());
}

TEST_F(EmbeddedEditorTest, aTriggerThatRemovesAContentStores) {
  send(dump({0x0C, 0x50, 0x04}, {0, 0, 0, 2, 0, 0x41}));
  send(dump({0x11, 0x00, 0x00}));
  send(dump({0x0C, 0x50, 0x04}, {0, 0, 0, 0}));
  const Record record = send(dump({0x11, 0x00, 0x00}));
  EXPECT_EQ(record.outcome, Outcome::stored);
  EXPECT_THAT(record.contents, ElementsAre("file:multi:5"));
  EXPECT_THAT(record.removed, ElementsAre("file:multi:5"));
  EXPECT_THAT(another().library().contents(), IsEmpty());
}

// ---- What is on disk ----

TEST_F(EmbeddedEditorTest, aSystemBlockIsInTheLibraryWhenItsOutcomeIsTold) {
  ASSERT_EQ(block(kSystemCommon, 1).outcome, Outcome::completed);
  EXPECT_EQ(another().tools().liveSystem(), editor->tools().liveSystem());
  EXPECT_NE(another().tools().liveSystem().system->common.values()[0], 0);
}

TEST_F(EmbeddedEditorTest, anEditBufferIsInTheLibraryWhenItsFooterIsStored) {
  block({0x0E, 0x0F, 0x00});
  for (const BulkAddress address : blocksOf(BDA::List::normalVoice)) block(address, 1);
  EXPECT_NE(another().tools().live(EditBuffer::normalVoice), editor->tools().live(EditBuffer::multi));
  EXPECT_EQ(another().tools().live(EditBuffer::normalVoice).voice->common.values()[0], 0);
  ASSERT_EQ(block({0x0F, 0x0F, 0x00}).outcome, Outcome::stored);
  EXPECT_EQ(another().tools().live(EditBuffer::normalVoice), editor->tools().live(EditBuffer::normalVoice));
  EXPECT_NE(another().tools().live(EditBuffer::normalVoice).voice->common.values()[0], 0);
}

TEST_F(EmbeddedEditorTest, aRefusedMessageChangesNothing) {
  block(kSystemCommon, 1);
  const Editor::ModelSet before = editor->tools().liveSystem();
  EXPECT_EQ(send(dump(kSystemCommon, Bytes(67, 2))).outcome, Outcome::refused);
  EXPECT_EQ(send(damaged(blockDump(kSystemCommon, 2))).outcome, Outcome::refused);
  EXPECT_EQ(editor->tools().liveSystem(), before);
  EXPECT_EQ(another().tools().liveSystem(), before);
}

TEST_F(EmbeddedEditorTest, whatAnotherProgramChangedIsKept) {
  EmbeddedEditor other = another();
  other.handle(blockDump({0x00, 0x06, 0x00}, 1), BDA::DevicePort_Main, 1);
  block(kSystemCommon, 1);
  EXPECT_EQ(editor->tools().liveSystem().system->remote, other.tools().liveSystem().system->remote);
  EXPECT_EQ(another().tools().liveSystem(), editor->tools().liveSystem());
}

TEST_F(EmbeddedEditorTest, aLibraryThatCannotBeWrittenStopsTheMessageAndKeepsTheOldValues) {
  Editor::Library::Options impatient;
  impatient.busyTimeout = std::chrono::milliseconds(10);
  editor.emplace(directory / "library.db", impatient);
  block(kSystemCommon, 1);
  const Editor::ModelSet before = editor->tools().liveSystem();
  EmbeddedEditor other = another();
  const Editor::Library::Transaction locked(other.library());
  EXPECT_THROW(block(kSystemCommon, 2), Editor::LibraryError);
  EXPECT_EQ(editor->tools().liveSystem(), before);
  EXPECT_EQ(another().tools().liveSystem(), before);
}

// ---- Units ----

TEST_F(EmbeddedEditorTest, blocksThatDidNotArriveBeforeTheFooterAreMissing) {
  block(kHeader);
  for (const BulkAddress address : blocksOf(BDA::List::normalVoice))
    if (address != kElement) block(address);
  const Record footer = block(kFooter);
  EXPECT_EQ(footer.outcome, Outcome::stored);
  EXPECT_THAT(footer.missing, ElementsAre(kElement));
  ASSERT_THAT(footer.ended, SizeIs(1));
  EXPECT_EQ(footer.ended[0].state, State::incomplete);
}

TEST_F(EmbeddedEditorTest, aDamagedBlockIsMissing) {
  block(kHeader);
  for (const BulkAddress address : blocksOf(BDA::List::normalVoice))
    send(address == kElement ? damaged(blockDump(address)) : blockDump(address));
  EXPECT_THAT(block(kFooter).missing, ElementsAre(kElement));
}

TEST_F(EmbeddedEditorTest, anotherHeaderAbandonsTheOpenUnit) {
  block(kHeader);
  const Record record = block({0x0E, 0x0A, 0x06});
  EXPECT_EQ(record.outcome, Outcome::accepted);
  ASSERT_THAT(record.ended, SizeIs(1));
  EXPECT_EQ(record.ended[0].state, State::abandoned);
  EXPECT_EQ(record.ended[0].address, kHeader);
  ASSERT_THAT(editor->openUnits(), SizeIs(1));
  EXPECT_EQ(editor->openUnits()[0].address, (BulkAddress{0x0E, 0x0A, 0x06}));
}

TEST_F(EmbeddedEditorTest, whateverMakesTheModuleForgetTheHeaderAbandonsTheOpenUnit) {
  for (const Bytes& message : {blockDump(kSystemCommon), request(kSystemCommon), dump(kSystemCommon, Bytes(3)),
                               dump({0x11, 0x00, 0x00}), dump(kSystemCommon, Bytes(68), 4), dump(kElement, Bytes(3))}) {
    ASSERT_EQ(block(kHeader).outcome, Outcome::accepted);
    const Record record = send(message);
    ASSERT_FALSE(record.ended.empty());
    EXPECT_EQ(record.ended.back().state, State::abandoned);
    EXPECT_THAT(editor->openUnits(), IsEmpty());
    const Record after = block(kElement);
    EXPECT_EQ(after.outcome, Outcome::refused);
    EXPECT_EQ(after.reason, "no open header admits this block");
  }
}

TEST_F(EmbeddedEditorTest, whatLeavesTheHeaderOpenDoesNotAbandonTheUnit) {
  ASSERT_EQ(block(kHeader).outcome, Outcome::accepted);
  send(damaged(blockDump(kElement)));
  send(dump({0x7F, 0x00, 0x00}));
  block({0x46, 0x00, 0x00});
  send(request(kSystemCommon), BDA::DevicePort_Thru);
  send({0xF0, 0x7E, 0xF7});
  EXPECT_EQ(block(kElement).outcome, Outcome::accepted);
  EXPECT_THAT(editor->openUnits(), SizeIs(1));
}

TEST_F(EmbeddedEditorTest, aFooterWithoutHeaderIsRefused) {
  EXPECT_EQ(block(kFooter).reason, "it closes no open header");
  // Nothing stands in the way of this one in the module: its two bytes are those of no header at all.
  const Record record = block({0x0F, 0x00, 0x00});
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(record.reason, "no header has opened what is to be stored there");
  EXPECT_THAT(editor->library().contents(), IsEmpty());
}

TEST_F(EmbeddedEditorTest, aRefusedFileDumpDiscardsThoseHeld) {
  send(dump({0x0C, 0x50, 0x04}, {0, 0, 0, 2, 0, 0x41}));
  const Record record = send(dump({0x0C, 0x00, 0x04}, {0, 0, 0, 2, 0, 0x41}));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(record.reason, "this bank is not stored by file dumps");
  ASSERT_THAT(record.ended, SizeIs(1));
  EXPECT_EQ(record.ended[0].state, State::discarded);
  EXPECT_THAT(record.ended[0].blocks, ElementsAre(BulkAddress{0x0C, 0x50, 0x04}));
  EXPECT_EQ(send(dump({0x11, 0x00, 0x00})).outcome, Outcome::completed);
}

TEST_F(EmbeddedEditorTest, aRefusedTriggerNamesWhatItHasNotWritten) {
  send(dump({0x0C, 0x50, 0x04}, {0, 0, 0, 2, 0, 0x41}));
  send(dump({0x0C, 0x50, 0x05}, {0, 0, 0, 9, 0, 0x41}));
  const Record record = send(dump({0x11, 0x00, 0x00}));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_THAT(record.contents, ElementsAre("file:multi:5"));
  EXPECT_THAT(record.reason, HasSubstr("a file dump ends before its content does"));
  EXPECT_THAT(record.reason, HasSubstr("; not written: file:multi:6 (message 2)"));
}

TEST_F(EmbeddedEditorTest, aTriggerThatDoesNotExistWritesNothing) {
  send(dump({0x0C, 0x50, 0x04}, {0, 0, 0, 2, 0, 0x41}));
  EXPECT_EQ(send(dump({0x11, 0x05, 0x00})).outcome, Outcome::refused);
  ASSERT_THAT(editor->openUnits(), SizeIs(1));
  EXPECT_EQ(editor->openUnits()[0].state, State::held);
}

TEST_F(EmbeddedEditorTest, aRefusalHasAReasonOfItsOwn) {
  EXPECT_EQ(block({0x0F, 0x00, 0x00}).reason, "no header has opened what is to be stored there");
  EXPECT_EQ(block({0x41, 0x00, 0x00}).reason, "no open header admits this block");
  EXPECT_EQ(block(kFooter).reason, "it closes no open header");
}

TEST_F(EmbeddedEditorTest, aWrongLengthThatTheModuleTakesCountsAsArrived) {
  const Bytes whole = blockDump(kElement, 1);
  Bytes message(whole.begin(), whole.end() - 2);
  message[5] = 0;
  message[6] = 4;
  message[14] = 0;  // where four bytes of data would have their checksum
  message.insert(message.end(), {0, 0xF7});
  block(kHeader);
  EXPECT_EQ(send(message).outcome, Outcome::refused);
  const Record footer = block(kFooter);
  EXPECT_EQ(footer.outcome, Outcome::stored);
  EXPECT_THAT(footer.missing, SizeIs(blocksOf(BDA::List::normalVoice).size() - 1));
  EXPECT_THAT(footer.missing, testing::Not(testing::Contains(kElement)));
}

// The library takes nothing from a refused message, but the module has done with its unit.
TEST_F(EmbeddedEditorTest, aWrongLengthThatTheModuleTakesAndForgetsTheHeaderForAbandonsTheUnit) {
  const Bytes system = dump({0x00, 0x06, 0x00}, {0, 0, 0, 0, 0});
  Bytes footer = dump(kFooter);
  footer[10] = 0;  // where no bytes of data would have their checksum
  footer.insert(footer.end() - 1, 0);
  Bytes block = system;
  block[6] = 4;
  for (const Bytes& message : {footer, block}) {
    this->block(kHeader);
    const Record record = send(message);
    EXPECT_EQ(record.outcome, Outcome::refused);
    EXPECT_TRUE(record.report.isTaken);
    ASSERT_THAT(record.ended, SizeIs(1));
    EXPECT_EQ(record.ended[0].state, State::abandoned);
    EXPECT_THAT(record.ended[0].cause, HasSubstr("which was refused"));
    EXPECT_THAT(editor->openUnits(), IsEmpty());
    EXPECT_EQ(this->block(kElement).outcome, Outcome::refused);
  }
  EXPECT_THAT(editor->library().contents(), IsEmpty());
}

// ---- What fails without a line in the log ----

TEST_F(EmbeddedEditorTest, aContentThatCannotBeReadIsNotAnsweredAsAnEmptyOne) {
  const Bytes bytes(12000, 0x5A);  // too long for one page of the library
  editor->library().store({1, 4}, bytes, "Damaged");
  editor.reset();
  breakChainOfPages(directory / "library.db", 0x5A);
  editor.emplace(directory / "library.db");

  const Record record = send(request({0x0C, 0x50, 0x04}));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_THAT(record.reason, HasSubstr("is damaged"));
  EXPECT_EQ(block(kSystemCommon, 1).outcome, Outcome::completed);
}

TEST_F(EmbeddedEditorTest, requestsCarryTheDeviceNumberOfTheLibrary) {
  setUtility(Editor::SystemModel::kDeviceNumber, 6);
  EXPECT_EQ(editor->requestFor(kSystemCommon), request(kSystemCommon, 6));
  EXPECT_EQ(send(editor->requestFor(kSystemCommon)).outcome, Outcome::answered);
  setUtility(Editor::SystemModel::kDeviceNumber, 16);
  EXPECT_EQ(editor->requestFor(kSystemCommon), request(kSystemCommon));
}
