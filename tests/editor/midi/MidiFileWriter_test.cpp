#include "midi/MidiFileWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include <rapidcheck/gtest.h>

#include "midi/Hex.h"
#include "midi/MidiFile.h"

namespace {

using namespace std::chrono_literals;
using Editor::MidiFileWriter;
using Message = std::vector<std::uint8_t>;

Message message(std::size_t size) {
  Message bytes(size, 0x01);
  bytes.front() = 0xF0;
  bytes.back() = 0xF7;
  return bytes;
}

Message fileOf(const std::vector<Message>& messages, std::chrono::milliseconds pause) {
  MidiFileWriter writer(pause);
  for (const Message& one : messages) writer.add(one);
  return writer.finish();
}

std::uint32_t numberAt(const Message& bytes, std::size_t& at) {
  std::uint32_t value = 0;
  do value = value << 7 | (bytes[at] & 0x7Fu);
  while (bytes[at++] >= 0x80);
  return value;
}

// When each message begins, in microseconds by the file's own tempo, and the end of the track. Read by a walk of its
// own: F0 events and meta events of one track.
std::vector<double> times(const Message& file) {
  const double ticksPerQuarter = file[12] << 8 | file[13];
  double quarter = 500'000;
  double now = 0;
  std::vector<double> times;
  for (std::size_t at = 22; at < file.size();) {
    now += numberAt(file, at) * quarter / ticksPerQuarter;
    const std::uint8_t status = file[at++];
    const std::uint8_t meta = status == 0xFF ? file[at++] : std::uint8_t(0);
    const std::uint32_t length = numberAt(file, at);
    if (meta == 0x51) quarter = file[at] << 16 | file[at + 1] << 8 | file[at + 2];
    if (meta != 0x51) times.push_back(now);
    at += length;
  }
  return times;
}

}  // namespace

TEST(MidiFileWriter, writesFormat0WithOneTrackAndATempo) {
  EXPECT_EQ(Editor::formatHex(fileOf({{0xF0, 0x7D, 0x01, 0xF7}}, 0ms)),
            "4D 54 68 64 00 00 00 06 00 00 00 01 0C 35 4D 54 72 6B 00 00 00 11 "
            "00 FF 51 03 07 A1 20 00 F0 03 7D 01 F7 08 FF 2F 00");
}

TEST(MidiFileWriter, aMessageWaitsForTheEndOfTheOneBeforeAtTheSpeedOfACable) {
  // 320 us a byte
  EXPECT_THAT(times(fileOf({message(4), message(100), message(2)}, 0ms)), testing::ElementsAre(0, 1280, 33280, 33920));
}

TEST(MidiFileWriter, aPauseIsNeverShorterThanItWasAsked) {
  EXPECT_THAT(times(fileOf({message(4), message(4), message(4)}, 20ms)),
              testing::ElementsAre(0, 1280 + 20'000, 2 * (1280 + 20'000), 2 * (1280 + 20'000) + 1280));
  const std::vector<double> odd = times(fileOf({message(4), message(4)}, 1ms));  // no whole number of ticks
  EXPECT_GE(odd[1], 2280);
  EXPECT_LT(odd[1], 2280 + 160);
}

TEST(MidiFileWriter, saysHowLongTheFilePlays) {
  MidiFileWriter writer(20ms);
  EXPECT_EQ(writer.duration(), 0us);
  writer.add(message(4));
  writer.add(message(100));
  EXPECT_EQ(writer.duration(), 1280us + 20'000us + 32'000us);
}

RC_GTEST_PROP(MidiFileWriter, whatIsWrittenIsRead, (const std::vector<std::uint16_t>& sizes, std::uint16_t pause)) {
  std::vector<Message> messages;
  for (const std::uint16_t size : sizes) messages.push_back(message(2u + size));
  const Message bytes = fileOf(messages, std::chrono::milliseconds(pause));
  const Editor::MidiFile file = Editor::readMidiFile(bytes);
  RC_ASSERT(file.standard && file.errors.empty() && file.dropped.empty());
  RC_ASSERT(file.messages.size() == messages.size());
  for (std::size_t i = 0; i < messages.size(); ++i)
    RC_ASSERT(Message(file.messages[i].bytes.begin(), file.messages[i].bytes.end()) == messages[i]);
}
