#include "names/NameFile.h"

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
            "line 2: \"voice\": expected waveform or arpeggio, a number and a name, parameter, a path and a name, or "
            "value, a path, a number and a name");
  EXPECT_EQ(errorOf("waveform 0 a"), "line 1: \"0\": expected a number from 1 to 1024");
  EXPECT_EQ(errorOf("waveform 1025 a"), "line 1: \"1025\": expected a number from 1 to 1024");
  EXPECT_EQ(errorOf("arpeggio 257 a"), "line 1: \"257\": expected a number from 1 to 256");
  EXPECT_EQ(errorOf("waveform 1x a"), "line 1: \"1x\": expected a number from 1 to 1024");
  EXPECT_EQ(errorOf("waveform"), "line 1: \"\": expected a number from 1 to 1024");
  EXPECT_EQ(errorOf("waveform 1 a\n\nwaveform 1 b"), "line 3: waveform 1 occurs twice");
  EXPECT_EQ(errorOf("waveform 1 a\tb"), "line 1: the name has a character that is not printable ASCII");
}

TEST(NameFile, parametersAndTheirValuesHaveNames) {
  NameLists names;
  EXPECT_EQ(parseNames("parameter voice.common[3] Volume\nvalue voice.common[3] 0 Off - or nearly\r\n"
                       "value voice.common[3] 255 Full\nparameter voice.element[7].params[136] Last one\n"
                       "parameter voice.key[72].params[0] Key\nparameter system.utility[51] System\n"
                       "parameter additional.params[0] Else\nparameter system.tune[0] Tune\n"
                       "value system.tune[0] 65535 High\nparameter multi.common[3] Volume",
                       names),
            "");
  EXPECT_EQ(names.parameters.nameOf("voice.common[3]"), "Volume");
  EXPECT_EQ(names.parameters.nameOf("voice.common[3]", std::int64_t{0}), "Off - or nearly");
  EXPECT_EQ(names.parameters.nameOf("voice.common[3]", std::int64_t{255}), "Full");
  EXPECT_EQ(names.parameters.nameOf("voice.element[7].params[136]"), "Last one");
  EXPECT_EQ(names.parameters.nameOf("multi.common[3]"), "Volume");
  EXPECT_THAT(names.waveforms, IsEmpty());
}

TEST(NameFile, aParameterThatThereIsNotIsToldWithItsLine) {
  EXPECT_EQ(errorOf("#\nparameter voice.comon[3] Volume"),
            "line 2: \"voice.comon[3]\": expected the path of a parameter, such as voice.common[3]: did you mean "
            "voice.common[3]?");
  EXPECT_THAT(errorOf("parameter voice.comon[300] Volume"), testing::EndsWith("did you mean voice.common[92]?"));
  EXPECT_THAT(errorOf("parameter voice.comon Volume"), testing::EndsWith("did you mean voice.common[0]?"));
  EXPECT_THAT(errorOf("parameter voice.element[8].wave[0] Volume"),
              testing::EndsWith("did you mean voice.element[0].wave[0]?"));
  EXPECT_EQ(errorOf("parameter voice.common[93] Volume"),
            "line 1: \"voice.common[93]\": expected voice.common[0] to voice.common[92]");
  EXPECT_EQ(errorOf("parameter voice.common Volume"),
            "line 1: \"voice.common\": expected voice.common[0] to voice.common[92]");
  for (const char* path : {"voice.common[03]", "voice.common[+3]", "voice.common[]", "voice.common[x]"})
    EXPECT_EQ(errorOf(std::string("value ") + path + " 0 Off"),
              std::string("line 1: \"") + path + "\": expected voice.common[0] to voice.common[92]");
  for (const char* path : {"", "voice", "voice.name", "voice.element[8].params[0]", "Volume", "voice.common[3"})
    EXPECT_THAT(errorOf(std::string("value ") + path + " 0 Off"),
                testing::StartsWith(std::string("line 1: \"") + path + "\": expected the path of a parameter"));
  EXPECT_EQ(errorOf("value voice.common[3] 256 Off"), "line 1: \"256\": expected a number from 0 to 255");
  EXPECT_EQ(errorOf("value voice.common[3] -1 Off"), "line 1: \"-1\": expected a number from 0 to 255");
  EXPECT_EQ(errorOf("value voice.common[3] Off"), "line 1: \"Off\": expected a number from 0 to 255");
}

TEST(NameFile, aNameThatCouldBeSomethingElseOnTheCommandLineIsToldWithItsLine) {
  EXPECT_EQ(errorOf("parameter voice.common[3]"), "line 1: expected a name behind voice.common[3]");
  EXPECT_EQ(errorOf("value voice.common[3] 0"), "line 1: expected a name behind voice.common[3] 0");
  EXPECT_EQ(errorOf("parameter voice.common[3]  Volume"), "line 1: the name has a blank at an end");
  EXPECT_EQ(errorOf("value voice.common[3] 0 Off "), "line 1: the name has a blank at an end");
  EXPECT_EQ(errorOf("parameter voice.common[3] 12"), "line 1: \"12\": a number is no name");
  EXPECT_EQ(errorOf("value voice.common[3] 0 0x1F"), "line 1: \"0x1F\": a number is no name");
  for (const char* number : {"-1", "+5", "0X5", "0x", "-0x1f", "007", "-"}) {
    const bool isNone = std::string(number) == "-";
    const std::string why = isNone ? "" : std::string("line 1: \"") + number + "\": a number is no name";
    EXPECT_EQ(errorOf(std::string("parameter voice.common[3] ") + number), why);
    EXPECT_EQ(errorOf(std::string("value voice.common[3] 0 ") + number), why);
  }
  EXPECT_EQ(errorOf("parameter voice.common[3] 0xylophone"), "");
  EXPECT_EQ(errorOf("parameter voice.common[3] voice.common[4]"), "line 1: \"voice.common[4]\": a path is no name");
  EXPECT_EQ(errorOf("parameter voice.common[3] A=B"), "line 1: \"A=B\": the name of a parameter has none of = ! < >");
  EXPECT_EQ(errorOf("value voice.common[3] 0 <off>"), "");
  EXPECT_EQ(errorOf("parameter voice.common[3] " + std::string(29, 'x')),
            "line 1: the name has 29 characters, at most 28 are possible");
  EXPECT_EQ(errorOf("value voice.common[3] 0 O\tf"), "line 1: the name has a character that is not printable ASCII");
}

TEST(NameFile, aByteOrderMarkBeforeTheTextIsPassedOver) {
  NameLists names;
  EXPECT_EQ(parseNames("\xEF\xBB\xBFwaveform 1 Sine\n", names), "");
  EXPECT_THAT(names.waveforms, ElementsAre("Sine"));
  EXPECT_THAT(errorOf("waveform 1 Sine\n\xEF\xBB\xBFwaveform 2 Saw\n"), testing::StartsWith("line 2: "));
}

TEST(NameFile, whatIsNamedTwiceIsToldWithItsLine) {
  EXPECT_EQ(errorOf("parameter voice.common[3] a\nparameter voice.common[3] b"),
            "line 2: parameter voice.common[3] occurs twice");
  EXPECT_EQ(errorOf("value voice.common[3] 0 a\nvalue voice.common[3] 1 a\nvalue voice.common[3] 0 b"),
            "line 3: value voice.common[3] 0 occurs twice");
}
