// The names that file dumps bring, and those that they leave.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "editor/contents/TemporaryLibrary.h"
#include "editor/messages/BulkMessages.h"
#include "exchange/EmbeddedEditor.h"
#include "support/PlainFileDumpCodec.h"

using Editor::BulkAddress;
using Editor::ContentId;
using Editor::EmbeddedEditor;
using Editor::Outcome;
using Editor::Record;
using testing::ElementsAre;
using testing::HasSubstr;
using Content = Editor::Library::Content;

namespace {

constexpr BulkAddress kAddress{0x0C, 0x0A, 0x05};
constexpr ContentId kVoice{4, 0x3F0805};
constexpr BulkAddress kOtherAddress{0x0C, 0x50, 0x04};
constexpr ContentId kOther{1, 4};

const Bytes kNoName;
const Bytes kBrokenName{0x41};  // a packed group without data
const Bytes kBrokenData{0x42};
const Content kOld{"Old", {1, 2, 3}};

Bytes packed(const std::string& name) { return Testing::Plain::encode({name.begin(), name.end()}); }
Bytes packed(const Bytes& bytes) { return Testing::Plain::encode(bytes); }

Bytes fileDump(BulkAddress address, const Bytes& name, const Bytes& data) {
  Bytes field;
  for (const Bytes* const part : {&name, &data}) {
    field.push_back(std::uint8_t(part->size() >> 7));
    field.push_back(std::uint8_t(part->size() & 0x7F));
    field.insert(field.end(), part->begin(), part->end());
  }
  return dump(address, field);
}

class EmbeddedEditorNames : public testing::Test {
 protected:
  Record send(const Bytes& message) { return editor.handle(message, BDA::DevicePort_Main, ++count_); }
  Record trigger() { return send(dump(Editor::kWriteTrigger)); }
  // What becomes of the content when a dump with that name and data comes, both as they travel.
  std::optional<Content> after(const Bytes& name, const Bytes& data) {
    EXPECT_EQ(send(fileDump(kAddress, name, data)).outcome, Outcome::accepted);
    record = trigger();
    return onDisk(kVoice);
  }
  std::optional<Content> onDisk(ContentId id) { return Editor::Library(directory / "library.db").content(id); }

  Editor::TemporaryDirectory directory;
  EmbeddedEditor editor{directory / "library.db"};
  Record record;  // of the trigger

 private:
  std::uint64_t count_ = 0;
};

// Stands for a content that is replaced.
class EmbeddedEditorOldName : public EmbeddedEditorNames {
 protected:
  void SetUp() override { editor.library().store(kVoice, kOld.bytes, kOld.name); }
};

}  // namespace

// ---- A content that is replaced ----

TEST_F(EmbeddedEditorOldName, isReplacedByTheOneThatCame) {
  EXPECT_EQ(after(packed("New"), packed(Bytes{4})), (Content{"New", {4}}));
  EXPECT_EQ(record.outcome, Outcome::stored);
}

TEST_F(EmbeddedEditorOldName, staysWhenTheNewOneCannotBeUnpacked) {
  EXPECT_EQ(after(kBrokenName, packed(Bytes{4})), (Content{"Old", {4}}));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_THAT(record.contents, ElementsAre("voice:user1:6"));
  EXPECT_THAT(record.reason, HasSubstr("could not be unpacked"));
}

TEST_F(EmbeddedEditorOldName, staysWhenTheLastGroupOfTheNewOneCannotBeUnpacked) {
  Bytes name = packed("Sevenths");
  name.resize(9);
  EXPECT_EQ(after(name, packed(Bytes{4})), (Content{"Old", {4}}));
  EXPECT_EQ(record.outcome, Outcome::refused);
}

TEST_F(EmbeddedEditorOldName, staysWithTheOldBytesWhenTheNewOnesCannotBeUnpacked) {
  EXPECT_EQ(after(packed("New"), kBrokenData), kOld);
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_THAT(record.reason, HasSubstr("; not written: file:voice:user1:6 (message 1)"));
}

TEST_F(EmbeddedEditorOldName, staysWhenNothingOfTheDumpCanBeUnpacked) {
  EXPECT_EQ(after(kBrokenName, kBrokenData), kOld);
  EXPECT_EQ(after(kNoName, kBrokenData), kOld);
}

TEST_F(EmbeddedEditorOldName, isGoneWhenTheDumpSaysThatThereIsNone) {
  EXPECT_EQ(after(kNoName, packed(Bytes{4})), (Content{"", {4}}));
  EXPECT_EQ(record.outcome, Outcome::stored);
  EXPECT_EQ(send(request(kAddress)).sent.at(0).bytes, fileDump(kAddress, kNoName, packed(Bytes{4})));
}

TEST_F(EmbeddedEditorOldName, isGoneInARunToo) {
  EmbeddedEditor::Run run(editor);
  after(kNoName, packed(Bytes{4}));
  run.commit();
  EXPECT_EQ(onDisk(kVoice), (Content{"", {4}}));
}

TEST_F(EmbeddedEditorOldName, goesWithTheContentThatIsRemoved) {
  EXPECT_EQ(after(kBrokenName, {}), std::nullopt);
  EXPECT_EQ(record.outcome, Outcome::stored);
  EXPECT_EQ(after(kBrokenName, packed(Bytes{4})), (Content{"", {4}}));
}

TEST_F(EmbeddedEditorOldName, ofAMixingVoiceGoesWithTheRemovalBeforeThePass) {
  const ContentId mixingVoice{4, 0x3F8012};  // 2 of multi 1
  editor.library().store(mixingVoice, kOld.bytes, kOld.name);
  send(fileDump({0x0C, 0x12, 0x01}, kBrokenName, packed(Bytes{4})));
  EXPECT_EQ(send(dump({0x11, 0x01, 0x00})).outcome, Outcome::refused);
  EXPECT_EQ(onDisk(mixingVoice), (Content{"", {4}}));
  EXPECT_EQ(onDisk(kVoice), kOld);
}

TEST_F(EmbeddedEditorOldName, isThatOfTheLastDumpBeforeTheTrigger) {
  send(fileDump(kAddress, kNoName, packed(Bytes{4})));
  EXPECT_EQ(after(packed("New"), packed(Bytes{5})), (Content{"New", {5}}));
  send(fileDump(kAddress, packed("Newer"), packed(Bytes{6})));
  EXPECT_EQ(after(kNoName, packed(Bytes{7})), (Content{"", {7}}));
}

TEST_F(EmbeddedEditorOldName, isThatOfTheLastDumpAtEitherAddressOfAMixingVoice) {
  const ContentId mixingVoice{4, 0x3F3C03};
  const BulkAddress addresses[] = {{0x0C, 0x31, 0x03}, {0x0C, 0x13, 0x00}};
  editor.library().store(mixingVoice, kOld.bytes, kOld.name);
  for (const std::size_t last : {0U, 1U}) {
    send(fileDump(addresses[1 - last], packed("New"), packed(Bytes{4})));
    send(fileDump(addresses[last], kNoName, packed(Bytes{5})));
    trigger();
    EXPECT_EQ(onDisk(mixingVoice), (Content{"", {5}}));
    send(fileDump(addresses[1 - last], kNoName, packed(Bytes{6})));
    send(fileDump(addresses[last], packed("New"), packed(Bytes{7})));
    trigger();
    EXPECT_EQ(onDisk(mixingVoice), (Content{"New", {7}}));
  }
}

TEST_F(EmbeddedEditorOldName, ofOneContentIsNoneOfTheOthers) {
  editor.library().store(kOther, Bytes{1}, "Other");
  send(fileDump(kOtherAddress, kNoName, packed(Bytes{5})));
  EXPECT_EQ(after(kBrokenName, packed(Bytes{4})), (Content{"Old", {4}}));
  EXPECT_EQ(onDisk(kOther), (Content{"", {5}}));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_THAT(record.contents, ElementsAre("file:multi:5", "voice:user1:6"));
}

TEST_F(EmbeddedEditorOldName, isNotForgottenWithTheDumpsThatWereDiscarded) {
  send(fileDump(kAddress, kNoName, packed(Bytes{4})));
  send(fileDump({0x0C, 0x00, 0x04}, kNoName, packed(Bytes{4})));  // a preset bank: discards what is held
  EXPECT_EQ(after(kBrokenName, packed(Bytes{5})), (Content{"Old", {5}}));
}

TEST_F(EmbeddedEditorOldName, staysWithEverythingWhenTheLibraryRefusesTheNewOne) {
  Editor::PlainDatabase plain(directory / "library.db");
  plain(
      "CREATE TRIGGER full BEFORE INSERT ON content WHEN new.name = CAST('New' AS BLOB) "
      "BEGIN SELECT RAISE(ABORT, 'disk full'); END");
  send(fileDump(kOtherAddress, packed("Other"), packed(Bytes{5})));
  EXPECT_EQ(after(packed("New"), packed(Bytes{4})), kOld);
  EXPECT_EQ(onDisk(kOther), std::nullopt);
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_THAT(record.reason, HasSubstr("disk full"));
}

TEST_F(EmbeddedEditorOldName, staysWithEverythingWhenItCannotBeTakenAway) {
  Editor::PlainDatabase plain(directory / "library.db");
  plain("CREATE TRIGGER full BEFORE INSERT ON content WHEN new.name = x'' BEGIN SELECT RAISE(ABORT, 'disk full'); END");
  send(fileDump(kOtherAddress, packed("Other"), packed(Bytes{5})));
  send(fileDump(kAddress, kNoName, packed(Bytes{4})));
  EXPECT_THROW(trigger(), Editor::LibraryError);
  EXPECT_EQ(onDisk(kVoice), kOld);
  EXPECT_EQ(onDisk(kOther), std::nullopt);
}

// ---- A new content ----

TEST_F(EmbeddedEditorNames, aNewContentHasTheNameThatCame) {
  EXPECT_EQ(after(packed("New"), packed(Bytes{4})), (Content{"New", {4}}));
}

TEST_F(EmbeddedEditorNames, aNewContentWhoseNameCannotBeUnpackedHasTheEmptyName) {
  EXPECT_EQ(after(kBrokenName, packed(Bytes{4})), (Content{"", {4}}));
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(send(request(kAddress)).sent.at(0).bytes, fileDump(kAddress, kNoName, packed(Bytes{4})));
}

TEST_F(EmbeddedEditorNames, aNewContentWithoutANameHasTheEmptyName) {
  EXPECT_EQ(after(kNoName, packed(Bytes{4})), (Content{"", {4}}));
  EXPECT_EQ(record.outcome, Outcome::stored);
}

TEST_F(EmbeddedEditorNames, aNameWithoutBytesIsNoContent) {
  EXPECT_EQ(after(packed("New"), kBrokenData), std::nullopt);
  EXPECT_EQ(record.outcome, Outcome::refused);
}

TEST_F(EmbeddedEditorNames, aDumpThatIsTakenThoughItsLengthIsWrongNamesItsContentAlike) {
  for (const Bytes& name : {kNoName, packed("New")}) {
    editor.library().store(kVoice, kOld.bytes, kOld.name);
    Bytes message = fileDump(kAddress, name, packed(Bytes{4}));
    message[message.size() - 2] = 0;  // where its checksum should be
    message.push_back(0xF7);
    EXPECT_EQ(send(message).outcome, Outcome::refused);
    trigger();
    EXPECT_EQ(onDisk(kVoice)->name, name == kNoName ? "" : "New");
  }
}
