#include "input/NameFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Editor::NameLists;
using Editor::parseNames;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string errorOf(std::string_view text) {
  NameLists names;
  return parseNames(text, names);
}

}  // namespace

TEST(NameFile, namesStandAtTheirNumbersAndGapsAreEmpty) {
  NameLists names;
  EXPECT_EQ(parseNames("waveform 3 Grand Piano\nwaveform 1 Sine\narpeggio 2  Up \n", names), "");
  EXPECT_THAT(names.waveforms, ElementsAre("Sine", "", "Grand Piano"));
  EXPECT_THAT(names.arpeggios, ElementsAre("", " Up "));
}

TEST(NameFile, commentsEmptyLinesAndOtherLineEndsCountForNothing) {
  NameLists names;
  EXPECT_EQ(parseNames("# a comment\r\n\r\n  \nwaveform 1 Sine\r\nwaveform 2 Saw", names), "");
  EXPECT_THAT(names.waveforms, ElementsAre("Sine", "Saw"));
  EXPECT_EQ(parseNames("", names), "");
  EXPECT_THAT(names.waveforms, IsEmpty());
}

TEST(NameFile, aNameMayHave28Characters) {
  EXPECT_EQ(errorOf("waveform 1024 " + std::string(28, 'x')), "");
  EXPECT_EQ(errorOf("#\narpeggio 256 " + std::string(29, 'x')),
            "line 2: the name has 29 characters, at most 28 are possible");
}

TEST(NameFile, whatIsWrongIsToldWithItsLine) {
  EXPECT_EQ(errorOf("waveform 1 a\nvoice 1 b"),
            "line 2: \"voice\": expected waveform or arpeggio, a number and a name");
  EXPECT_EQ(errorOf("waveform 0 a"), "line 1: \"0\": expected a number from 1 to 1024");
  EXPECT_EQ(errorOf("waveform 1025 a"), "line 1: \"1025\": expected a number from 1 to 1024");
  EXPECT_EQ(errorOf("arpeggio 257 a"), "line 1: \"257\": expected a number from 1 to 256");
  EXPECT_EQ(errorOf("waveform 1x a"), "line 1: \"1x\": expected a number from 1 to 1024");
  EXPECT_EQ(errorOf("waveform"), "line 1: \"\": expected a number from 1 to 1024");
  EXPECT_EQ(errorOf("waveform 1 a\n\nwaveform 1 b"), "line 3: waveform 1 occurs twice");
  EXPECT_EQ(errorOf("waveform 1 a\tb"), "line 1: the name has a character that is not printable ASCII");
}
