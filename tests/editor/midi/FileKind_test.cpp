#include "midi/FileKind.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Editor::describeFile;
using Editor::MidiKind;
using Editor::midiKindOf;

std::vector<std::uint8_t> bytes(const std::string& text) { return {text.begin(), text.end()}; }

}  // namespace

TEST(FileKind, theFirstFourBytesDecide) {
  EXPECT_EQ(midiKindOf(bytes("MThd")), MidiKind::standard);
  EXPECT_EQ(midiKindOf(bytes("RIFF")), MidiKind::riff);
  for (const char* const other : {"", "M", "MTh", "MTrk", "\xF0\x7D", "RIF"})
    EXPECT_EQ(midiKindOf(bytes(other)), MidiKind::stream) << other;
}

TEST(FileKind, whatBeginsAsHexTextIsAStreamWhereItGoesOnAsNoText) {
  for (const char* const begin : {"ce  ", "# ab", "0123"}) {
    EXPECT_EQ(midiKindOf(bytes(std::string(begin) + "F0 \r\n\t# M\xFCller")), MidiKind::text) << begin;
    EXPECT_EQ(midiKindOf(bytes(std::string(begin) + "\xF0\x7D\x01")), MidiKind::stream) << begin;
  }
}

TEST(FileKind, saysWhatAFileSeemsToBe) {
  EXPECT_EQ(describeFile({}), "an empty file");
  EXPECT_EQ(describeFile(bytes("\xFF\xD8\xFF\xE0 rest")), "a JPEG picture");
  EXPECT_EQ(describeFile(bytes("\x7F"
                               "ELF\2")),
            "a program (ELF)");
  EXPECT_EQ(describeFile(bytes("Grüße\r\n\tund so weiter")), "text");
  EXPECT_EQ(describeFile(bytes(std::string("\1\2\0", 3))), "something else");
  for (const char* const midi : {"\xF0\x7D", "\xF0", "\xF8\xF8\xF8", "\x90@@\x80@@"})
    EXPECT_EQ(describeFile(bytes(midi)), "MIDI without a whole System Exclusive message");
  EXPECT_EQ(describeFile(bytes("\xEF\xBB\xBFtext")), "text");
  EXPECT_EQ(describeFile(bytes(std::string(257, '\0') + "ustar")), "a tar archive: unpack it first");
  EXPECT_EQ(describeFile(bytes("RIFF....WAVE")), "a WAVE sound");
  EXPECT_EQ(describeFile(bytes("RIFF....ACON")), "a RIFF file without MIDI");
}

// A magic that is cut short is none.
TEST(FileKind, readsNoByteThatIsNotThere) {
  const std::vector<std::uint8_t> whole = bytes("SQLite format 3");
  for (std::size_t size = 0; size <= whole.size(); ++size)
    EXPECT_EQ(describeFile(std::span(whole).first(size)), size == 0 ? "an empty file" : "text");
}
