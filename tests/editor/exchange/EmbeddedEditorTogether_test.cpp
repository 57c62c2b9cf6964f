// Several programs on one library: each sees at its next message what the others have changed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <functional>

#include "editor/contents/TemporaryLibrary.h"
#include "editor/messages/BulkMessages.h"
#include "exchange/EmbeddedEditor.h"

namespace Editor {
namespace {

constexpr BulkAddress kSystemRemote{0x00, 0x06, 0x00};
constexpr BulkAddress kPartHeader{0x0E, 0x30, 0x00};
constexpr BulkAddress kPartFooter{0x0F, 0x30, 0x00};

class Together : public testing::Test {
 protected:
  static Record send(EmbeddedEditor& editor, const Bytes& message) {
    return editor.handle(message, BDA::DevicePort_Main, 1);
  }
  static Record set(EmbeddedEditor& editor, std::uint8_t value) {
    return send(editor, dump(kSystemRemote, {value, value, 0, 0, 0}));
  }
  // What a request is answered with.
  static Bytes answerOf(EmbeddedEditor& editor) { return send(editor, request(kSystemRemote)).sent.at(0).bytes; }
  static void setUtility(EmbeddedEditor& editor, std::uint16_t parameter, std::uint8_t value) {
    ModelSet system = editor.tools().liveSystem();
    system.system->utility.set(&value, parameter, 0);
    ASSERT_TRUE(editor.tools().replaceSystem(system));
  }
  // Selects a bank of drum voices for the first part of the multi.
  static void selectDrums(EmbeddedEditor& editor) {
    ModelSet multi = editor.tools().live(EditBuffer::multi);
    ASSERT_TRUE(multi.multi->part[0].bankProgram.assign({0x3F, 0x28, 0}));
    ASSERT_TRUE(editor.tools().replaceLive(EditBuffer::multi, 0, multi));
  }

  TemporaryDirectory directory;
  const std::filesystem::path file = directory / "library.db";
};

// A program of its own: takes values from the other one and answers with what it then sees.
class OtherProcess {
 public:
  using Work = std::function<std::uint8_t(std::uint8_t)>;

  // `start` is called in the new process, and what it gives for each value.
  explicit OtherProcess(const std::function<Work()>& start) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (::pipe(in.data()) != 0 || ::pipe(out.data()) != 0) throw std::runtime_error("no pipe");
    process_ = ::fork();
    if (process_ < 0) throw std::runtime_error("no process");
    if (process_ == 0) {
      ::close(in[1]);
      ::close(out[0]);
      ::_exit(serve(start, in[0], out[1]));
    }
    ::close(in[0]);
    ::close(out[1]);
    to_ = in[1];
    from_ = out[0];
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  ~OtherProcess() {
    ::close(to_);
    ::close(from_);
    int status = -1;
    ::waitpid(process_, &status, 0);
    EXPECT_EQ(status, 0) << "the other process failed";
  }

  std::uint8_t operator()(std::uint8_t value) const {
    std::uint8_t seen = 0xFF;
    EXPECT_EQ(::write(to_, &value, 1), 1);
    EXPECT_EQ(::read(from_, &seen, 1), 1);
    return seen;
  }

 private:
  static int serve(const std::function<Work()>& start, int in, int out) {
    try {
      const Work work = start();
      for (std::uint8_t value = 0; ::read(in, &value, 1) == 1;) {
        value = work(value);
        if (::write(out, &value, 1) != 1) return 1;
      }
      return 0;
    } catch (const std::exception&) {
      return 1;
    }
  }

  pid_t process_ = -1;
  int to_ = -1;
  int from_ = -1;
};

constexpr std::size_t kData = 10;  // of a dump

}  // namespace

TEST_F(Together, aMessageForAnyDeviceIsTakenUnderTheNumberThatTheOtherHasSet) {
  EmbeddedEditor mine(file);
  EmbeddedEditor other(file);
  mine.takeAnyDevice();
  for (const std::uint8_t number : Bytes{5, 7}) {
    setUtility(other, SystemModel::kDeviceNumber, number);
    EXPECT_EQ(send(mine, dump(kSystemRemote, {number, 0, 0, 0, 0}, 2)).outcome, Outcome::completed);
    const Record answered = send(mine, request(kSystemRemote, 3));
    EXPECT_EQ(answered.sent.at(0).bytes, dump(kSystemRemote, {number, 0, 0, 0, 0}, number));
  }
}

TEST_F(Together, eachSeesWhatTheOtherChangedAtItsNextMessage) {
  EmbeddedEditor one(file);
  EmbeddedEditor two(file);
  for (std::uint8_t value = 1; value < 20; ++value) {
    set(value % 2 == 0 ? one : two, value);
    EXPECT_EQ(answerOf(one), answerOf(two));
    EXPECT_EQ(answerOf(one)[kData], value);
  }
}

TEST_F(Together, twoProcessesSeeWhatTheOtherChangedAtTheNextMessage) {
  // The other one answers with the value that it sees, and then changes it.
  const OtherProcess other([this]() -> OtherProcess::Work {
    auto editor = std::make_shared<EmbeddedEditor>(file);
    return [editor](std::uint8_t value) {
      const std::uint8_t seen = answerOf(*editor)[kData];
      set(*editor, value);
      return seen;
    };
  });
  EmbeddedEditor editor(file);
  set(editor, 0);
  for (std::uint8_t value = 0; value < 100; value += 2) {
    EXPECT_EQ(other(std::uint8_t(value + 1)), value);
    EXPECT_EQ(answerOf(editor)[kData], value + 1);
    EXPECT_EQ(set(editor, std::uint8_t(value + 2)).outcome, Outcome::completed);
  }
}

TEST_F(Together, inTheMidstOfAUnitTheOthersSettingsCountAtOnce) {
  EmbeddedEditor editor(file);
  EmbeddedEditor other(file);
  ASSERT_EQ(send(editor, blockDump({0x0E, 0x0A, 0x05})).outcome, Outcome::accepted);
  setUtility(other, SystemModel::kDeviceNumber, 3);
  EXPECT_EQ(send(editor, blockDump({0x41, 0x00, 0x00})).report.refusal, BDA::BulkDumpRefusal::wrongDeviceNumber);
  setUtility(other, SystemModel::kDeviceNumber, 0);
  ASSERT_EQ(send(editor, blockDump({0x0E, 0x0A, 0x05})).outcome, Outcome::accepted);
  setUtility(other, SystemModel::kReceiveBulk, 0);
  EXPECT_EQ(send(editor, blockDump({0x0F, 0x0A, 0x05})).report.refusal, BDA::BulkDumpRefusal::receiveSwitchOff);
}

TEST_F(Together, aHalfUnitGoesOnWhenTheOtherChangesSomethingElse) {
  EmbeddedEditor editor(file);
  EmbeddedEditor other(file);
  send(editor, blockDump({0x0E, 0x5F, 0x00}));
  for (const BulkAddress block : blocksOf(BDA::List::multi)) {
    ASSERT_EQ(send(editor, blockDump(block, 1)).outcome, Outcome::accepted);
    set(other, std::uint8_t(1 + block.lo % 2));
  }
  EXPECT_EQ(send(editor, blockDump({0x0F, 0x5F, 0x00})).outcome, Outcome::stored);
  EXPECT_EQ(editor.tools().liveSystem(), other.tools().liveSystem());
  const EmbeddedEditor after(file);
  EXPECT_EQ(after.tools().liveSystem(), other.tools().liveSystem());
  EXPECT_EQ(after.tools().live(EditBuffer::multi), editor.tools().live(EditBuffer::multi));
  EXPECT_NE(after.tools().live(EditBuffer::multi), other.tools().live(EditBuffer::multi));
}

TEST_F(Together, aVoiceDoesNotGoIntoAPartThatPlaysDrumsMeanwhile) {
  EmbeddedEditor editor(file);
  EmbeddedEditor other(file);
  ASSERT_EQ(send(editor, blockDump(kPartHeader)).outcome, Outcome::accepted);
  selectDrums(other);
  const Record footer = send(editor, blockDump(kPartFooter));
  EXPECT_EQ(footer.outcome, Outcome::refused);
  EXPECT_EQ(EmbeddedEditor(file).tools().live(EditBuffer::partVoice, 0), other.tools().live(EditBuffer::partVoice, 0));
  EXPECT_TRUE(editor.tools().live(EditBuffer::partVoice, 0).voice->isDrum());
}

}  // namespace Editor
