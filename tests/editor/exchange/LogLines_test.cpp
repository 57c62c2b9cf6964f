#include "exchange/LogLines.h"

#include <gmock/gmock.h>

#include "editor/contents/TemporaryLibrary.h"
#include "editor/messages/BulkMessages.h"
#include "exchange/EmbeddedEditor.h"

using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

// What is logged about that message.
std::vector<std::string> linesAbout(const Bytes& message) {
  const Editor::TemporaryDirectory directory;
  Editor::EmbeddedEditor editor(directory / "library.db");
  const Editor::Record record = editor.handle(message, BDA::DevicePort_Main, 1);
  return linesOf(record.log, record.reading);
}

}  // namespace

TEST(LogLines, aWrongChecksumSaysWhichNumberIsWhich) {
  EXPECT_THAT(linesAbout(damaged(blockDump({0, 6, 0}))),
              Contains("Check Sum Error!: Address=[00,06,00], Received Check Sum=[ 0x75 ], Correct Check Sum=[ 0x74 ] "
                       "(\"received\" is what was computed, \"correct\" is what the message has)"));
}

TEST(LogLines, aWrongChecksumOfALongDumpSaysThatADataByteIsNone) {
  const Bytes longDump = damaged(dump({0x0C, 0x0A, 0x05}, Bytes(300, 3)));
  EXPECT_THAT(linesAbout(longDump),
              Contains(AllOf(HasSubstr("Correct Check Sum=[ 0x03 ]"), EndsWith("is a data byte and no checksum)"))));
}

TEST(LogLines, aWrongByteCountSaysThatNoChecksumWasComputed) {
  for (const int wrong : {-1, 1, 100}) {
    Bytes message = blockDump({0, 6, 0}, 1);
    message[6] = std::uint8_t(message[6] + wrong);
    EXPECT_THAT(linesAbout(message),
                Contains(AllOf(StartsWith("Check Sum Error!"), HasSubstr("(nothing was computed"))));
  }
}

TEST(LogLines, otherNumbersThanOursAreExplained) {
  EXPECT_THAT(linesAbout(blockDump({0, 6, 0})), testing::IsEmpty());
  EXPECT_THAT(linesAbout(dump({0, 6, 0}, Bytes(5), 3)), Contains(EndsWith("(devices are counted from 0 here)")));
  EXPECT_THAT(linesAbout(dump({0, 6, 0}, Bytes(20))),
              Contains("Wrong data length. (Remote): Correct = [05], Data = [14] (in hexadecimal)"));
}

TEST(LogLines, aTextIsItsFirstLineWithoutControlCharacters) {
  EXPECT_EQ(Editor::linesOf({"a\x1B\nb", "", "c "}, {}), (std::vector<std::string>{"a\\x1B", "c "}));
}
