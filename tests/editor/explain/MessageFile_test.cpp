#include "explain/MessageFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "editor/messages/BulkMessages.h"
#include "midi/Hex.h"

using Editor::MessageFile;
using testing::ElementsAre;

namespace {

Bytes hex(const char* text) { return Editor::parseHex(text).value(); }
Bytes text(std::string_view text) { return {text.begin(), text.end()}; }

// "0:1.0": the byte at offset 0 is byte 0 of message 1; "7:outside of any message": in none.
std::vector<std::string> placesIn(const MessageFile& file) {
  std::vector<std::string> places;
  file.forEachByte([&](const MessageFile::Byte& byte) {
    std::string place = std::to_string(byte.offset) + ":";
    if (byte.message != MessageFile::kNone)
      place += std::to_string(byte.message) + "." + std::to_string(byte.at);
    else
      place += byte.dropped == nullptr ? "-" : byte.dropped;
    places.push_back(place);
    const std::optional<MessageFile::Byte> found = file.find(byte.offset);
    EXPECT_TRUE(found && found->offset == byte.offset && found->message == byte.message && found->at == byte.at &&
                found->value == byte.value && found->dropped == byte.dropped)
        << place;
  });
  return places;
}

}  // namespace

TEST(MessageFile, everyByteOfAStreamKnowsItsMessage) {
  const MessageFile file(hex("F0 01 F7 02 F0 F7"));
  EXPECT_THAT(placesIn(file), ElementsAre("0:1.0", "1:1.1", "2:1.2", "3:outside of any message", "4:2.0", "5:2.1"));
  EXPECT_EQ(file.countMessages(), 2u);
  EXPECT_TRUE(file.isUsable());
}

TEST(MessageFile, realTimeBytesInsideOfAMessageAreNotOfIt) {
  const MessageFile file(hex("F0 F8 01 FE F7"));
  EXPECT_THAT(placesIn(file), ElementsAre("0:1.0", "1:real-time", "2:1.1", "3:real-time", "4:1.2"));
}

TEST(MessageFile, theBytesOfAMessageThatWasCutShortSayWhy) {
  const MessageFile file(hex("F0 F7 F0 01 F8 02"));
  EXPECT_THAT(placesIn(file), ElementsAre("0:1.0", "1:1.1", "2:message without end", "3:message without end",
                                          "4:real-time", "5:message without end"));
}

TEST(MessageFile, ofAStandardMidiFileTheOffsetsAreTheFiles) {
  // One track: a message in two events with a meta event between, its lengths in no message.
  const MessageFile file(
      hex("4D 54 68 64 00 00 00 06 00 00 00 01 00 60 4D 54 72 6B 00 00 00 13 "
          "00 F0 02 01 02 00 FF 01 01 41 00 F7 02 03 F7 00 FF 2F 00"));
  ASSERT_EQ(file.countMessages(), 1u);
  EXPECT_THAT(std::vector<std::uint8_t>(file.message(1).begin(), file.message(1).end()),
              ElementsAre(0xF0, 1, 2, 3, 0xF7));
  const std::vector<std::string> places = placesIn(file);
  ASSERT_EQ(places.size(), file.size());
  EXPECT_EQ(places[22], "22:-");
  EXPECT_EQ(places[23], "23:1.0");
  EXPECT_EQ(places[24], "24:-");  // the event's length
  EXPECT_EQ(places[25], "25:1.1");
  EXPECT_EQ(places[26], "26:1.2");
  EXPECT_EQ(places[31], "31:-");
  EXPECT_EQ(places[33], "33:-");
  EXPECT_EQ(places[35], "35:1.3");
  EXPECT_EQ(places[36], "36:1.4");
}

TEST(MessageFile, aTextOfHexDigitsIsTheBytesThatItWrites) {
  const MessageFile file(text("# one\nF0 7d\r\n01F7 # F0\n05"));
  EXPECT_THAT(placesIn(file), ElementsAre("6:1.0", "9:1.1", "13:1.2", "15:1.3", "23:outside of any message"));
  ASSERT_TRUE(file.find(7));
  EXPECT_EQ(file.find(7)->offset, 6u);
  for (const std::uint64_t none : {0U, 8U, 25U, 26U}) EXPECT_FALSE(file.find(none)) << none;
  EXPECT_TRUE(file.isUsable());
}

TEST(MessageFile, noiseAndMessagesOfAnyLengthKnowWhereTheyStand) {
  Bytes file{0x05};
  std::vector<std::string> expected{"0:outside of any message"};
  for (std::uint32_t message = 1; message <= 50; ++message)
    for (std::uint32_t at = 0; at <= message; ++at) {
      expected.push_back(std::to_string(file.size()) + ":" + std::to_string(message) + "." + std::to_string(at));
      file.push_back(at == 0 ? 0xF0 : at == message ? 0xF7 : std::uint8_t(at));
      if (at % 7 != 3 || at == message) continue;
      expected.push_back(std::to_string(file.size()) + ":real-time");
      file.push_back(0xF8);
    }
  EXPECT_EQ(placesIn(MessageFile(file)), expected);
}

TEST(MessageFile, whatIsNoDigitInATextEndsTheMessageAndItsLine) {
  const MessageFile file(text("F0 01 F7\nF0 01 x 02 F7\n03 F7\n"));
  EXPECT_THAT(placesIn(file), ElementsAre("0:1.0", "3:1.1", "6:1.2", "9:message without end", "12:message without end",
                                          "23:outside of any message", "26:outside of any message"));
}

TEST(MessageFile, whatIsNotBuiltAsItMustBeIsKept) {
  const auto errorsOf = [](const Bytes& bytes) {
    const MessageFile file(bytes);
    std::vector<std::string> errors;
    for (const Editor::MidiFile::Error& error : file.errors())
      errors.push_back(std::to_string(error.offset) + ": " + error.text);
    return errors;
  };
  EXPECT_THAT(errorsOf(text("F0 01 F7\nF0 0x\n")),
              ElementsAre("13: line 2: expected two hex digits a byte, the rest of it is not read"));
  EXPECT_THAT(errorsOf(hex("4D 54 68 64 00 00 00 06 00 00 00 01 00 60 4D 54 72 6B 00 00 00 01")),
              ElementsAre("14: track 1 is cut short: 0 of 1 byte", "22: track 1: no end-of-track event"));
  EXPECT_THAT(errorsOf(hex("F0 01 F7 02")), testing::IsEmpty());
}

TEST(MessageFile, aMessageOfAStreamOrATextIsNotLongerThanAnyCanBe) {
  Bytes stream = hex("F0 01");
  stream.resize(Editor::kLongestMessage);
  stream.push_back(0xF7);
  EXPECT_EQ(MessageFile(stream).countMessages(), 0U);
  EXPECT_EQ(MessageFile(text("F0 01" + std::string(2 * (Editor::kLongestMessage - 2), '0') + "F7")).countMessages(),
            0U);
  stream.erase(stream.begin() + 1);
  EXPECT_EQ(MessageFile(stream).countMessages(), 1U);
}

TEST(MessageFile, realTimeBytesAndLossesOfATextAreKnownWhereTheyStand) {
  const MessageFile file(text("F0 F8 01 F7 05 F0 02 90 F7"));
  EXPECT_THAT(placesIn(file),
              ElementsAre("0:1.0", "3:real-time", "6:1.1", "9:1.2", "12:outside of any message",
                          "15:message cut short by another status byte", "18:message cut short by another status byte",
                          "21:outside of any message", "24:outside of any message"));
}

TEST(MessageFile, aFileOfSomethingElseIsNotUsable) {
  for (const char* other : {"", "hello", "{\"a\": 1}"}) EXPECT_FALSE(MessageFile(text(other)).isUsable()) << other;
  EXPECT_EQ(MessageFile(text("hello")).whyUnusable(), "no System Exclusive message in it: it seems to be text");
  EXPECT_FALSE(MessageFile(hex("05 F0 41 F7")).isUsable());
  EXPECT_TRUE(MessageFile(hex("F8 F0 41 F7")).isUsable());
  Bytes late = request({0, 0, 0});
  late.insert(late.begin(), 0x05);
  EXPECT_TRUE(MessageFile(late).isUsable());
}
