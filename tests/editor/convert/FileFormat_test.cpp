#include "convert/FileFormat.h"

#include <gmock/gmock.h>

#include "ConvertFixture.h"
#include "midi/MidiFile.h"

using Editor::FileFormat;
using Editor::formatOf;

namespace {

std::string text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

}  // namespace

TEST(FileFormat, theEndingDecidesInEitherCase) {
  EXPECT_EQ(formatOf("a.syx"), FileFormat::stream);
  EXPECT_EQ(formatOf("dir/A.MID"), FileFormat::standard);
  EXPECT_EQ(formatOf("a.syx.Txt"), FileFormat::text);
  for (const char* const other : {"", "syx", "a", "a.sy", "a.midi", "a.syx/", "a.syx "})
    EXPECT_EQ(formatOf(other), std::nullopt) << other;
}

TEST(FileFormat, everyMessageGoesAlongInItsOrder) {
  const Bytes foreign{0xF0, 0x41, 0xF7};
  const Bytes ours = request({0, 0, 0});
  const Editor::Batch batch = batchOf({{ours, foreign, {0xF0, 0xF7}}});
  const auto bytes = [&](FileFormat format) {
    return Editor::writeFile(batch, format, std::chrono::milliseconds(20)).value().bytes;
  };
  EXPECT_EQ(bytes(FileFormat::stream), bytesOf(batch));
  EXPECT_EQ(text(bytes(FileFormat::text)), "F0 7D 20 7F 14 00 00 00 F7\nF0 41 F7\nF0 F7\n");
  const Bytes midi = bytes(FileFormat::standard);
  const Editor::MidiFile file = Editor::readMidiFile(midi);
  ASSERT_EQ(file.messages.size(), 3u);
  EXPECT_TRUE(file.errors.empty() && file.dropped.empty());
  EXPECT_EQ(Bytes(file.messages[1].bytes.begin(), file.messages[1].bytes.end()), foreign);
}
