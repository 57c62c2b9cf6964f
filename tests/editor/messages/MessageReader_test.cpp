#include "messages/MessageReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/messages/BulkMessages.h"
#include "midi/MidiFile.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A file that has to be waited for, so many bytes at a time.
class Pipe final : public ByteSource {
 public:
  Pipe(Bytes bytes, std::size_t atATime) : bytes_(bytes), atATime_(atATime) {}

  bool isPlain() const override { return false; }
  Bytes next() override {
    const Bytes some = bytes_.first(std::min(bytes_.size(), std::max(atATime_, begun_)));
    bytes_ = bytes_.subspan(some.size());
    begun_ = 0;
    return some;
  }
  Bytes first(std::size_t least) override {
    begun_ = std::min(least, bytes_.size());
    return bytes_.first(begun_);
  }

 private:
  Bytes bytes_;
  const std::size_t atATime_;
  std::size_t begun_ = 0;
};

// "a.syx message 1 at 0" and "a.syx lost 2 at 12".
class MessageReading : public testing::Test {
 protected:
  FileJudgement read(ByteSource& source, const std::string& file = "a.syx") { return reader.read(source, file); }
  FileJudgement read(const Bytes& bytes, const std::string& file = "a.syx") {
    BytesInMemory source(bytes);
    return read(source, file);
  }

  std::vector<std::string> told;
  MessageReader reader{
      [this](const InputMessage& message) {
        told.push_back(message.file + " message " + std::to_string(message.number) + " at " +
                       std::to_string(message.offset));
      },
      [this](const InputLoss& loss) {
        told.push_back(loss.file + " lost " + std::to_string(loss.dropped) + " at " + std::to_string(loss.offset));
      }};
  const Bytes whole = request({0, 0, 0});  // a message of nine bytes
};

Bytes joined(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST_F(MessageReading, whatIsBetweenMessagesIsToldInTheOrderOfTheFile) {
  const Bytes clocked = joined({{whole.begin(), whole.begin() + 4}, {0xF8}, {whole.begin() + 4, whole.end()}});
  EXPECT_TRUE(read(joined({whole, {1, 2}, clocked, {0xF0, 0x43}})).isUsable());
  EXPECT_THAT(told, ElementsAre("a.syx message 1 at 0", "a.syx lost 2 at 9", "a.syx message 2 at 11",
                                "a.syx lost 1 at 15", "a.syx lost 2 at 21"));
}

TEST_F(MessageReading, messagesAreNumberedThroughAllFiles) {
  read(whole);
  read(whole, "b.syx");
  EXPECT_THAT(told, ElementsAre("a.syx message 1 at 0", "b.syx message 2 at 0"));
}

TEST_F(MessageReading, textIsReadAsTheBytesThatItWrites) {
  const std::string text = "# a request\nF0 7D 20 7F 14 00 00 00 F7\nno hex\n";
  EXPECT_TRUE(read(Bytes(text.begin(), text.end())).isUsable());
  EXPECT_THAT(told, ElementsAre("a.syx message 1 at 12", "a.syx lost 0 at 39"));
}

TEST_F(MessageReading, aPipeTellsNoLossBeforeItsFirstMessage) {
  const Bytes bytes = joined({{1, 2}, whole, {3}});
  for (const std::size_t atATime : {std::size_t(1), std::size_t(100)}) {
    told.clear();
    Pipe pipe(bytes, atATime);
    EXPECT_TRUE(read(pipe).isUsable());
    EXPECT_EQ(told.size(), 3u);
    EXPECT_EQ(told[0], "a.syx lost 2 at 0");
  }
  told.clear();
  const Bytes noise{1, 2, 3};
  Pipe pipe(noise, 1);
  EXPECT_FALSE(read(pipe).isUsable());
  EXPECT_THAT(told, IsEmpty()) << "it is no file of messages";
  read(noise);
  EXPECT_THAT(told, ElementsAre("a.syx lost 3 at 0"));
}

FileJudgement judge(const Bytes& bytes) {
  BytesInMemory source(bytes);
  return judgeFile(source);
}

TEST(FileJudgement, aFileOfMessagesBeginsWithOneOrHasOneOfThisMaker) {
  const Bytes ours = request({0, 0, 0});
  const Bytes others{0xF0, 0x41, 0xF7};
  EXPECT_TRUE(judge(others).isUsable());
  EXPECT_TRUE(judge(joined({{0xF8}, others})).isUsable()) << "a clock comes at any time";
  EXPECT_TRUE(judge(joined({{1}, ours})).isUsable());
  const FileJudgement foreign = judge(joined({{1}, others}));
  EXPECT_FALSE(foreign.isUsable());
  EXPECT_TRUE(foreign.hasMessage());
  EXPECT_FALSE(foreign.isCut());
}

TEST(FileJudgement, whatBeginsAsMessagesDoIsCut) {
  EXPECT_TRUE(judge({0xF0, 0x43}).isCut());
  EXPECT_FALSE(judge({0xF0, 0x43}).isUsable());
  EXPECT_TRUE(judge({'M', 'T', 'h', 'd', 0, 0}).isCut());
  const FileJudgement text = judge({'h', 'e', 'l', 'l', 'o'});
  EXPECT_FALSE(text.isCut());
  EXPECT_FALSE(text.kind().empty());
}

TEST(FileJudgement, anObjectIsNoMessages) {
  const auto isObject = [](const std::string& text) {
    const Bytes bytes(text.begin(), text.end());
    BytesInMemory source(bytes);
    return isJson(source);
  };
  EXPECT_TRUE(isObject(" \n{\"voice\": 1}"));
  EXPECT_TRUE(isObject("\xEF\xBB\xBF{}"));
  EXPECT_FALSE(isObject("[1]"));
  EXPECT_FALSE(isObject("{\xF0\x7D\xF7"));
}

TEST(FileJudgement, whatIsReadWholeIsNotTooLarge) {
  class Endless final : public ByteSource {
   public:
    bool isPlain() const override { return true; }
    Bytes next() override { return bytes_; }
    Bytes first(std::size_t /*least*/) override { return bytes_; }

   private:
    const std::vector<std::uint8_t> bytes_ = std::vector<std::uint8_t>(kLargestMidiFile / 4);
  } endless;
  EXPECT_THROW(readWhole(endless), ReadError);
}

}  // namespace
}  // namespace Editor
