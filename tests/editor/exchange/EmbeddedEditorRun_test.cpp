// Many messages as one change, or one view, of the library.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "editor/messages/BulkMessages.h"
#include "exchange/EmbeddedEditor.h"

using Editor::EmbeddedEditor;
using Editor::Outcome;
using OneRun = Editor::EmbeddedEditor::Run;
using Access = Editor::Library::Transaction::Access;

namespace {

class EmbeddedEditorRun : public testing::Test {
 protected:
  EmbeddedEditorRun() {
    std::string name = (std::filesystem::temp_directory_path() / "bda-run-XXXXXX").string();
    directory = ::mkdtemp(name.data());
    editor.emplace(directory / "library.db");
  }
  ~EmbeddedEditorRun() override {
    editor.reset();
    std::filesystem::remove_all(directory);
  }

  Outcome send(const Bytes& message) { return editor->handle(message, BDA::DevicePort_Main, ++count).outcome; }
  Outcome sendSystem(std::uint8_t value, std::uint8_t device = 0) {
    return send(dump({0x00, 0x06, 0x00}, Bytes(5, value), device));
  }
  void sendMaster(std::uint8_t number) {
    send(blockDump({0x0E, 0x70, number}));
    for (const Editor::BulkAddress block : blocksOf(BDA::List::master)) send(blockDump(block));
    EXPECT_EQ(send(blockDump({0x0F, 0x70, number})), Outcome::completed);  // nothing is stored before the commit
  }
  // What another program finds.
  Editor::ModelSet system() { return EmbeddedEditor(directory / "library.db").tools().liveSystem(); }
  std::size_t contents() { return Editor::Library(directory / "library.db").contents().size(); }
  void set(std::uint16_t parameter, std::uint8_t value) {
    Editor::ModelSet models = editor->tools().liveSystem();
    models.system->utility.set(&value, parameter, 0);
    ASSERT_TRUE(editor->tools().replaceSystem(models));
  }

  std::filesystem::path directory;
  std::optional<EmbeddedEditor> editor;
  std::uint64_t count = 0;
};

}  // namespace

TEST_F(EmbeddedEditorRun, nothingIsOnDiskBeforeTheCommit) {
  const Editor::ModelSet before = system();
  OneRun run(*editor);
  sendMaster(0);
  EXPECT_EQ(sendSystem(1), Outcome::completed);
  EXPECT_EQ(contents(), 0u);
  EXPECT_EQ(system(), before);
  run.commit();
  EXPECT_EQ(contents(), 1u);
  EXPECT_NE(system(), before);
}

TEST_F(EmbeddedEditorRun, noEditBufferIsSaidToBeStoredBeforeTheCommit) {
  OneRun run(*editor);
  send(blockDump({0x0E, 0x7F, 0x00}));
  const Editor::Record record = editor->handle(blockDump({0x0F, 0x7F, 0x00}), BDA::DevicePort_Main, ++count);
  EXPECT_EQ(record.outcome, Outcome::completed);
  EXPECT_THAT(record.contents, testing::IsEmpty());
}

TEST_F(EmbeddedEditorRun, withoutACommitEverythingIsTakenBack) {
  const Editor::ModelSet before = system();
  {
    const OneRun run(*editor);
    sendMaster(0);
    sendSystem(1);
    EXPECT_NE(editor->tools().liveSystem(), before);
  }
  EXPECT_EQ(contents(), 0u);
  EXPECT_EQ(system(), before);
  EXPECT_EQ(editor->tools().liveSystem(), before);
  sendSystem(2);
  EXPECT_NE(system(), before);
}

TEST_F(EmbeddedEditorRun, aMessageThatIsRefusedLeavesTheOthers) {
  OneRun run(*editor);
  sendSystem(1);
  EXPECT_EQ(send(damaged(blockDump({0x00, 0x06, 0x00}, 2))), Outcome::refused);
  EXPECT_EQ(send(dump({0x00, 0x06, 0x00}, Bytes(4))), Outcome::refused);
  sendMaster(1);
  const Editor::ModelSet live = editor->tools().liveSystem();
  run.commit();
  EXPECT_EQ(system(), live);
  EXPECT_EQ(contents(), 1u);
}

TEST_F(EmbeddedEditorRun, howTheLibraryListensIsNotInTheWayAndStaysAsItWas) {
  set(Editor::SystemModel::kReceiveBulk, 0);
  set(Editor::SystemModel::kDeviceNumber, CMA::DeviceNumber_Off);
  EXPECT_TRUE(editor->isDeviceOff());
  const Editor::ModelSet before = system();
  {
    const OneRun reading(*editor, Access::Read);
    EXPECT_EQ(send(request({0x00, 0x06, 0x00})), Outcome::answered);
  }
  {
    OneRun writing(*editor);
    EXPECT_EQ(sendSystem(0), Outcome::completed);
    EXPECT_TRUE(editor->isDeviceOff());
    EXPECT_EQ(editor->handle(dump({0x00, 0x06, 0x00}, Bytes(5), 1), BDA::DevicePort_Main, ++count).reason,
              "it is for device 2, the device number is off, and counts as 1");
    writing.commit();
  }
  EXPECT_EQ(system(), before);
  EXPECT_EQ(sendSystem(0), Outcome::refused);
}

TEST_F(EmbeddedEditorRun, messagesForAnyDeviceAreTakenWhenAskedFor) {
  const Editor::ModelSet before = system();
  OneRun run(*editor, Access::Write, OneRun::Devices::any);
  EXPECT_EQ(sendSystem(0, 9), Outcome::completed);
  run.commit();
  EXPECT_EQ(system(), before);
}

TEST_F(EmbeddedEditorRun, oneStateIsSeenWhateverOthersChange) {
  EmbeddedEditor other(directory / "library.db");
  const OneRun run(*editor, Access::Read);
  const auto answer = [&] {
    return editor->handle(request({0x00, 0x06, 0x00}), BDA::DevicePort_Main, 1).sent[0].bytes;
  };
  const Bytes before = answer();
  ASSERT_EQ(other.handle(dump({0x00, 0x06, 0x00}, Bytes(5, 1)), BDA::DevicePort_Main, 1).outcome, Outcome::completed);
  EXPECT_EQ(answer(), before);
}
