// The jobs that the assistant gives its editor, run in the embedded one.

#include <gtest/gtest.h>

#include "editor/contents/TemporaryLibrary.h"
#include "editor/messages/BulkMessages.h"
#include "exchange/Answers.h"
#include "exchange/EmbeddedEditor.h"

namespace Editor {
namespace {

void set(EmbeddedEditor& editor, std::uint16_t parameter, std::uint8_t value) {
  ModelSet system = editor.tools().liveSystem();
  system.system->utility.set(&value, parameter, 0);
  ASSERT_TRUE(editor.tools().replaceSystem(system));
}

std::vector<Bytes> sentBy(const Record& record) {
  std::vector<Bytes> messages;
  for (const AssistantHost::Sent& sent : record.sent) {
    EXPECT_EQ(sent.port, BDA::DevicePort_Main);
    messages.push_back(sent.bytes);
  }
  return messages;
}

TEST(EmbeddedEditorJobs, EachSendsItsEditBufferAsARequestHasItSent) {
  EmbeddedEditor editor;
  for (std::size_t job = 0; job < kBulkJobs.size(); ++job) {
    const MidLo header = headerOf(kBulkJobs[job].buffer);
    const BulkAddress address{0x0E, header.mid, header.lo};
    const Record record = editor.run(job);
    EXPECT_EQ(record.outcome, Outcome::answered) << kBulkJobs[job].name;
    EXPECT_EQ(record.result, BDA::BulkMsg_BulkRequest);
    EXPECT_EQ(record.reading.address, address);
    EXPECT_EQ(sentBy(record), sentBy(editor.handle(editor.requestFor(address), BDA::DevicePort_Main, 1)));
  }
}

TEST(EmbeddedEditorJobs, TheReceiveSwitchIsAsItWasAndNothingIsAChange) {
  for (const std::uint8_t setting : Bytes{0, 1}) {
    EmbeddedEditor editor;
    set(editor, SystemModel::kReceiveBulk, setting);
    editor.library().takeChanges();
    EXPECT_EQ(editor.run(0).outcome, Outcome::answered);
    EXPECT_EQ(editor.tools().liveSystem().system->utility.values()[SystemModel::kReceiveBulk], setting);
    const Record next = editor.handle(dump({0x0C, 0x0A, 0x05}, {0, 0, 0, 0}), BDA::DevicePort_Main, 1);
    EXPECT_EQ(next.changes.size(), 0U);
    EXPECT_EQ(next.outcome == Outcome::refused, setting == 0);
  }
}

TEST(EmbeddedEditorJobs, WithoutADeviceNumberNothingIsSent) {
  EmbeddedEditor editor;
  ASSERT_EQ(editor.run(1).outcome, Outcome::answered);
  set(editor, SystemModel::kDeviceNumber, CMA::DeviceNumber_Off);
  const Record record = editor.run(0);
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_EQ(record.reason, "the device number is off");
  EXPECT_EQ(whyUnanswered(record), record.reason);
  EXPECT_TRUE(record.sent.empty());
}

TEST(EmbeddedEditorJobs, ADamagedEditBufferIsNotSentAndTheOthersAre) {
  const TemporaryDirectory directory;
  const std::filesystem::path file = madeLibrary(directory / "library.db");
  ModelSet multi;
  {
    EmbeddedEditor editor(file);
    multi = editor.tools().live(EditBuffer::multi);
    ASSERT_TRUE(editor.tools().replaceLive(EditBuffer::multi, 0, multi));
  }
  PlainDatabase{file}("UPDATE live_model SET bytes = x'00' WHERE key = 'multi'");
  EmbeddedEditor editor(file, {.use = Library::Use::read});
  const Record record = editor.run(3);
  EXPECT_EQ(record.outcome, Outcome::refused);
  EXPECT_NE(record.reason.find("damaged"), std::string::npos) << record.reason;
  EXPECT_TRUE(record.sent.empty());
  EXPECT_EQ(editor.run(4).outcome, Outcome::answered);
}

}  // namespace
}  // namespace Editor
