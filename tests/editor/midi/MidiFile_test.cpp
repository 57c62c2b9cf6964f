#include "midi/MidiFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include <rapidcheck/gtest.h>

#include "midi/Hex.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;
using Strings = std::vector<std::string>;

constexpr const char* kEndOfTrack = "00 FF 2F 00";

Bytes bytes(const std::string& hex) { return parseHex(hex).value(); }

void append(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }

Bytes chunk(const std::string& type, const Bytes& body) {
  Bytes result(type.begin(), type.end());
  for (int shift = 24; shift >= 0; shift -= 8) result.push_back(static_cast<std::uint8_t>(body.size() >> shift));
  append(result, body);
  return result;
}

Bytes track(const std::string& events) { return chunk("MTrk", bytes(events + kEndOfTrack)); }

// The first event of the first track stands at 22, its status byte mostly at 23.
Bytes standardFile(int format, const std::vector<Bytes>& tracks) {
  Bytes file =
      chunk("MThd", {0, static_cast<std::uint8_t>(format), 0, static_cast<std::uint8_t>(tracks.size()), 0, 96});
  for (const Bytes& one : tracks) append(file, one);
  return file;
}

// What was read, one line each: "offset: bytes", "offset: count reason", "offset: text".
Strings messages(const MidiFile& file) {
  Strings lines;
  for (const auto& [span, offset] : file.messages) lines.push_back(std::to_string(offset) + ": " + formatHex(span));
  return lines;
}

Strings dropped(const MidiFile& file) {
  Strings lines;
  for (const auto& [offset, count, reason] : file.dropped) {
    lines.push_back(std::to_string(offset) + ": " + std::to_string(count) + " " + describe(reason));
  }
  return lines;
}

Strings errors(const MidiFile& file) {
  Strings lines;
  for (const auto& [offset, text] : file.errors) lines.push_back(std::to_string(offset) + ": " + text);
  return lines;
}

// A file of format 0 with one track of these events and an end of track.
MidiFile readEvents(const std::string& events) { return readMidiFile(standardFile(0, {track(events)})); }

// The one error of a track of exactly these bytes.
std::string trackError(const std::string& events) {
  const MidiFile file = readMidiFile(standardFile(0, {chunk("MTrk", bytes(events))}));
  EXPECT_EQ(file.errors.size(), 1u) << events;
  return file.errors.empty() ? "" : errors(file).front();
}

TEST(MidiFile, ReadsARawStream) {
  const MidiFile file = readMidiFile(bytes("F0 7D 01 F7 F8 F0 02 F8 F7 90 F0 03"));
  EXPECT_FALSE(file.standard);
  EXPECT_THAT(messages(file), ElementsAre("0: F0 7D 01 F7", "5: F0 02 F7"));
  EXPECT_THAT(dropped(file), ElementsAre("4: 1 real-time", "7: 1 real-time", "9: 1 outside of any message",
                                         "10: 2 message without end"));
  EXPECT_THAT(file.errors, IsEmpty());
}

TEST(MidiFile, TellsAStandardMidiFileByItsFirstFourBytes) {
  EXPECT_TRUE(readMidiFile(bytes("4D 54 68 64")).standard);
  EXPECT_FALSE(readMidiFile(bytes("4D 54 68")).standard);
  EXPECT_FALSE(readMidiFile(bytes("00 4D 54 68 64")).standard);
}

TEST(MidiFile, OfAnEmptyFileIsEmpty) {
  const MidiFile file = readMidiFile({});
  EXPECT_THAT(file.messages, IsEmpty());
  EXPECT_THAT(file.dropped, IsEmpty());
  EXPECT_THAT(file.errors, IsEmpty());
}

TEST(MidiFile, StaysValidWhenItIsMoved) {
  MidiFile file = readMidiFile(bytes("F0 01 F7"));
  const MidiFile moved = std::move(file);
  EXPECT_THAT(messages(moved), ElementsAre("0: F0 01 F7"));
}

TEST(MidiFile, ReadsSystemExclusiveEventsWithTheirOffsets) {
  const MidiFile file = readEvents("00 F0 03 7D 01 F7 81 00 F0 01 F7");
  EXPECT_TRUE(file.standard);
  EXPECT_THAT(messages(file), ElementsAre("23: F0 7D 01 F7", "30: F0 F7"));
  EXPECT_THAT(dropped(file), IsEmpty());
  EXPECT_THAT(errors(file), IsEmpty());
}

TEST(MidiFile, JoinsAMessageThatIsSplitOverEvents) {
  const MidiFile file = readEvents("00 F0 02 7D 01 10 F7 01 02 00 FF 01 02 41 42 10 F7 02 03 F7");
  EXPECT_THAT(messages(file), ElementsAre("23: F0 7D 01 02 03 F7"));
  EXPECT_THAT(dropped(file), IsEmpty());
  EXPECT_THAT(errors(file), IsEmpty());
}

TEST(MidiFile, NeverJoinsASplitMessageAcrossAChannelEvent) {
  const MidiFile file = readEvents("00 F0 02 7D 01 00 C0 05 00 F7 02 02 F7");
  EXPECT_THAT(messages(file), IsEmpty());
  EXPECT_THAT(dropped(file), ElementsAre("23: 3 message without end", "33: 2 outside of any message"));
}

TEST(MidiFile, NeverMergesAnAbandonedMessageIntoTheNextEvent) {
  const MidiFile file = readEvents("00 F0 02 7D 01 00 F0 02 02 F7");
  EXPECT_THAT(messages(file), ElementsAre("28: F0 02 F7"));
  EXPECT_THAT(dropped(file), ElementsAre("23: 3 message cut short by another status byte"));
}

TEST(MidiFile, NeverMergesAMessageIntoTheNextTrack) {
  const MidiFile file = readMidiFile(standardFile(2, {track("00 F0 01 01"), track("00 F7 02 02 F7")}));
  EXPECT_THAT(messages(file), IsEmpty());
  EXPECT_THAT(dropped(file), ElementsAre("23: 2 message without end", "41: 2 outside of any message"));
}

TEST(MidiFile, DropsAndReportsWhatElseEscapeEventsCarry) {
  const MidiFile file = readEvents("00 F7 03 90 40 40 00 F7 01 F8 00 F7 04 F0 01 02 F7");
  EXPECT_THAT(messages(file), ElementsAre("35: F0 01 02 F7"));
  EXPECT_THAT(dropped(file), ElementsAre("25: 3 outside of any message", "31: 1 real-time"));
  EXPECT_THAT(errors(file), IsEmpty());
}

TEST(MidiFile, ReportsBytesOfAnEventThatAreNoPartOfItsMessage) {
  const MidiFile file = readEvents("00 F0 05 01 F8 F7 02 03");
  EXPECT_THAT(messages(file), ElementsAre("23: F0 01 F7"));
  EXPECT_THAT(dropped(file), ElementsAre("26: 1 real-time", "28: 2 outside of any message"));
}

TEST(MidiFile, PassesOverChannelEventsOfEveryKind) {
  for (int status = 0x80; status < 0xF0; ++status) {
    const Bytes data(status >= 0xC0 && status < 0xE0 ? 1 : 2, 0x11);
    Bytes events{0x00, static_cast<std::uint8_t>(status)};
    append(events, data);
    append(events, bytes("05"));
    append(events, data);
    append(events, bytes("83 60"));
    append(events, data);
    const MidiFile file = readEvents(formatHex(events) + "00 F0 01 F7");
    EXPECT_EQ(messages(file).size(), 1u) << status;
    EXPECT_THAT(errors(file), IsEmpty()) << status;
  }
}

TEST(MidiFile, EndsRunningStatusAtMetaAndSystemExclusiveEvents) {
  EXPECT_EQ(trackError("00 90 40 40 00 F0 01 F7 00 41 40"),
            "30: track 1: a data byte where an event must begin, 3 bytes of the track are not read");
  EXPECT_EQ(trackError("00 90 40 40 00 FF 01 00 00 41 40"),
            "30: track 1: a data byte where an event must begin, 3 bytes of the track are not read");
}

TEST(MidiFile, StartsEveryTrackWithoutRunningStatus) {
  const MidiFile file = readMidiFile(standardFile(1, {chunk("MTrk", bytes("00 90 40 40")), track("00 40 40")}));
  EXPECT_THAT(errors(file), ElementsAre("26: track 1: no end-of-track event",
                                        "34: track 2: a data byte where an event must begin, 7 bytes of the track "
                                        "are not read"));
}

TEST(MidiFile, MergesTheTracksOfFormat1ByTime) {
  const std::vector<Bytes> tracks = {
      track("00 F0 02 01 F7 20 F0 02 02 F7 00 F0 02 03 F7"),
      track("10 F0 02 11 F7 10 F0 02 12 F7 83 00 F0 02 13 F7"),
      track("00 F0 02 21 F7 82 00 F0 02 22 F7"),
  };
  const auto order = [&](int format) {
    std::string ids;
    for (const auto& message : readMidiFile(standardFile(format, tracks)).messages) {
      ids += formatHex(message.bytes.subspan(1, 1)) + " ";
    }
    return ids;
  };
  EXPECT_EQ(order(1), "01 21 11 02 03 12 22 13 ");
  EXPECT_EQ(order(0), "01 02 03 11 12 13 21 22 ");
  EXPECT_EQ(order(2), "01 02 03 11 12 13 21 22 ");
}

TEST(MidiFile, KeepsTheOrderOfTracksAndEventsAmongMessagesOfOneTime) {
  std::vector<Bytes> tracks(4);
  Strings expected;
  for (std::size_t i = 0; i < 100; ++i) {
    expected.push_back(formatHex(Bytes{0xF0, static_cast<std::uint8_t>(i), 0xF7}));
    append(tracks[i / 25], Bytes{0x00, 0xF0, 0x02, static_cast<std::uint8_t>(i), 0xF7});
  }
  for (Bytes& events : tracks) events = track(formatHex(events));
  Strings read;
  const MidiFile file = readMidiFile(standardFile(1, tracks));
  for (const auto& message : file.messages) read.push_back(formatHex(message.bytes));
  EXPECT_EQ(read, expected);
}

TEST(MidiFile, TakesASplitMessageAtTheTimeOfItsEnd) {
  const MidiFile file = readMidiFile(standardFile(1, {track("00 F0 01 01 20 F7 01 F7"), track("10 F0 02 02 F7")}));
  EXPECT_THAT(messages(file), ElementsAre("43: F0 02 F7", "23: F0 01 F7"));
}

TEST(MidiFile, AddsUpTheLongestDeltaTimes) {
  std::string events;
  for (int i = 0; i < 17; ++i) events += "FF FF FF 7F FF 01 00 ";  // 17 * 2^28 is more than 32 bits hold
  const MidiFile file =
      readMidiFile(standardFile(1, {track(events + "00 F0 02 01 F7"), track("FF FF FF 7F F0 02 02 F7")}));
  ASSERT_EQ(file.messages.size(), 2u);
  EXPECT_EQ(formatHex(file.messages[0].bytes), "F0 02 F7");
  EXPECT_EQ(formatHex(file.messages[1].bytes), "F0 01 F7");
}

TEST(MidiFile, SkipsUnknownChunksAndTheRestOfALongHeader) {
  Bytes file = chunk("MThd", bytes("00 01 00 01 00 60 AA BB CC"));
  append(file, chunk("XFIH", bytes("F0 01 F7")));
  append(file, track("00 F0 02 02 F7"));
  append(file, chunk("XFKM", {}));
  const MidiFile read = readMidiFile(file);
  EXPECT_THAT(messages(read), ElementsAre("37: F0 02 F7"));
  EXPECT_THAT(dropped(read), IsEmpty());
  EXPECT_THAT(errors(read), IsEmpty());
}

TEST(MidiFile, NamesABrokenFileHeader) {
  EXPECT_THAT(errors(readMidiFile(bytes("4D 54 68 64 00 00 00 06 00"))),
              ElementsAre("0: file header is cut short: 9 of 14 bytes"));
  EXPECT_THAT(errors(readMidiFile(bytes("4D 54 68 64 00 00 00 05 00 00 00 00 00 60"))),
              ElementsAre("4: impossible length of the file header: 5"));
  EXPECT_THAT(errors(readMidiFile(bytes("4D 54 68 64 FF FF FF FF 00 00 00 00 00 60"))),
              ElementsAre("4: impossible length of the file header: 4294967295"));
}

TEST(MidiFile, ReadsAnUnknownFormatAndSaysSo) {
  const MidiFile file = readMidiFile(standardFile(3, {track("00 F0 02 01 F7")}));
  EXPECT_THAT(messages(file), ElementsAre("23: F0 01 F7"));
  EXPECT_THAT(errors(file), ElementsAre("8: unknown format 3, its tracks are read one after the other"));
}

TEST(MidiFile, MissesPromisedTracksAndReadsUnpromisedOnes) {
  Bytes file = standardFile(1, {track("00 F0 02 01 F7"), track("00 F0 02 02 F7")});
  file[11] = 3;
  EXPECT_THAT(errors(readMidiFile(file)), ElementsAre("10: number of tracks: 3 promised, 2 found"));
  file[11] = 1;
  EXPECT_THAT(errors(readMidiFile(file)), ElementsAre("10: number of tracks: 1 promised, 2 found"));
  EXPECT_EQ(readMidiFile(file).messages.size(), 2u);
}

TEST(MidiFile, NamesWhatIsWrongInATrackAndWhatWasNotRead) {
  EXPECT_EQ(trackError(""), "22: track 1: no end-of-track event");
  EXPECT_EQ(trackError("00 FF 2F 00 00"),
            "26: track 1: bytes after the end-of-track event, 1 byte of the track is not read");
  for (const char* events : {"81", "00", "80 80 80 80 00 FF 2F 00"}) {
    EXPECT_THAT(trackError(events), ::testing::StartsWith("22: track 1: broken delta time, ")) << events;
  }
  for (const char* events : {"00 90", "00 90 40", "00 90 40 80", "00 C0", "00 C0 FF 2F 00"}) {
    EXPECT_THAT(trackError(events), ::testing::StartsWith("22: track 1: broken channel event, ")) << events;
  }
  for (const char* events :
       {"00 F0", "00 F0 02 F7", "00 F0 81", "00 F7 01", "00 F0 FF FF FF 7F F7", "00 F0 80 80 80 80 02 01 F7"}) {
    EXPECT_THAT(trackError(events), ::testing::StartsWith("22: track 1: System Exclusive event of a wrong length, "))
        << events;
  }
  for (const char* events : {"00 FF", "00 FF 01", "00 FF 01 01", "00 FF 2F 81", "00 FF 01 FF FF FF 7F"}) {
    EXPECT_THAT(trackError(events), ::testing::StartsWith("22: track 1: meta event of a wrong length, ")) << events;
  }
  for (const char* status : {"F1", "F2", "F3", "F4", "F5", "F6", "F8", "F9", "FA", "FB", "FC", "FD", "FE"}) {
    EXPECT_THAT(trackError(std::string("00 ") + status + " 00 00 FF 2F 00"),
                ::testing::StartsWith("22: track 1: a status byte that begins no event, "))
        << status;
  }
}

TEST(MidiFile, KeepsWhatStandsBeforeAndAfterABrokenTrack) {
  const MidiFile file = readMidiFile(standardFile(
      1, {track("00 F0 02 01 F7"), track("00 F0 02 02 F7 00 F6 00 F0 02 03 F7"), track("00 F0 02 04 F7")}));
  EXPECT_THAT(messages(file), ElementsAre("23: F0 01 F7", "40: F0 02 F7", "64: F0 04 F7"));
  EXPECT_THAT(errors(file), ElementsAre("44: track 2: a status byte that begins no event, 11 bytes of the track are "
                                        "not read"));
}

TEST(MidiFile, ReadsACutTrackAsFarAsItGoes) {
  Bytes file = standardFile(0, {track("00 F0 02 01 F7 00 F0 02 02 F7")});
  file.erase(file.end() - 5, file.end());
  const MidiFile read = readMidiFile(file);
  EXPECT_THAT(messages(read), ElementsAre("23: F0 01 F7"));
  EXPECT_THAT(errors(read), ElementsAre("14: track 1 is cut short: 9 of 14 bytes",
                                        "27: track 1: System Exclusive event of a wrong length, 4 bytes of the track "
                                        "are not read"));
}

TEST(MidiFile, NoticesEveryCut) {
  Bytes whole = standardFile(2, {track("00 F0 01 01 00 F7 02 02 F7"), track("00 90 40 40 00 41 40 00 F0 02 03 F7")});
  append(whole, chunk("XFIH", bytes("01 02 03")));
  const Strings all = messages(readMidiFile(whole));
  EXPECT_THAT(errors(readMidiFile(whole)), IsEmpty());
  for (std::size_t length = 1; length < whole.size(); ++length) {
    if (length == whole.size() - 11) continue;  // before the unknown chunk: nothing is missing
    // A copy of its own, so that a sanitizer sees every read past the cut.
    const MidiFile file = readMidiFile(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
    EXPECT_FALSE(file.errors.empty() && file.dropped.empty()) << length;
    const Strings some = messages(file);
    ASSERT_LE(some.size(), all.size());
    EXPECT_TRUE(std::equal(some.begin(), some.end(), all.begin())) << length;
  }
}

TEST(MidiFile, NamesBytesAfterTheLastChunk) {
  Bytes file = standardFile(0, {track("")});
  append(file, {0, 0, 0});
  EXPECT_THAT(errors(readMidiFile(file)), ElementsAre("26: 3 bytes after the last chunk"));
  append(file, {0, 0, 0, 0, 9});
  EXPECT_THAT(errors(readMidiFile(file)), ElementsAre("26: unknown chunk is cut short: 0 of 9 bytes"));
}

rc::Gen<Bytes> message() {
  return rc::gen::map(rc::gen::container<Bytes>(rc::gen::inRange<std::uint8_t>(0x00, 0x80)), [](Bytes data) {
    data.insert(data.begin(), 0xF0);
    data.push_back(0xF7);
    return data;
  });
}

// A variable-length quantity below 2^14.
void appendNumber(Bytes& to, std::size_t number) {
  if (number > 0x7F) to.push_back(static_cast<std::uint8_t>(0x80 | number >> 7));
  to.push_back(static_cast<std::uint8_t>(number & 0x7F));
}

RC_GTEST_PROP(MidiFile, ReadsBackMessagesHoweverTheyAreSplitOverEvents, ()) {
  const auto written = *rc::gen::container<std::vector<Bytes>>(message());
  Bytes events;
  for (const Bytes& one : written) {
    for (std::size_t at = 1, part = 0; at < one.size(); at += part) {
      part = *rc::gen::inRange<std::size_t>(1, one.size() - at + 1);
      events.push_back(0);
      events.push_back(at == 1 ? 0xF0 : 0xF7);
      appendNumber(events, part);
      events.insert(events.end(), one.begin() + static_cast<std::ptrdiff_t>(at),
                    one.begin() + static_cast<std::ptrdiff_t>(at + part));
    }
  }
  append(events, bytes(kEndOfTrack));
  const MidiFile file = readMidiFile(standardFile(0, {chunk("MTrk", events)}));
  RC_ASSERT(file.errors.empty() && file.dropped.empty());
  RC_ASSERT(file.messages.size() == written.size());
  for (std::size_t i = 0; i < written.size(); ++i) {
    RC_ASSERT(Bytes(file.messages[i].bytes.begin(), file.messages[i].bytes.end()) == written[i]);
  }
}

RC_GTEST_PROP(MidiFile, AccountsForEveryByteOfARawStream, (const Bytes& stream)) {
  const MidiFile file = readMidiFile(stream);
  std::uint64_t accounted = 0;
  for (const auto& one : file.messages) accounted += one.bytes.size();
  for (const auto& one : file.dropped) accounted += one.count;
  RC_ASSERT(accounted == stream.size());
}

class LoadBytes : public ::testing::Test {
 protected:
  void TearDown() override { std::remove(path_.c_str()); }
  // Of its own for each test: they may run side by side.
  const std::string path_ =
      ::testing::TempDir() + "LoadBytes." + ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".syx";
  std::string error_;
};

TEST_F(LoadBytes, GivesAllBytesOfAFileOfAnySize) {
  for (const std::size_t size : {0u, 1u, 65'535u, 65'536u, 65'537u, 131'072u, 1'000'000u}) {
    Bytes content(size);
    for (std::size_t i = 0; i < size; ++i) content[i] = static_cast<std::uint8_t>(i * 7);
    std::ofstream(path_, std::ios::binary).write(reinterpret_cast<const char*>(content.data()), std::ssize(content));
    EXPECT_EQ(loadBytes(path_, error_), content) << size;
    EXPECT_EQ(error_, "");
  }
}

TEST_F(LoadBytes, SaysWhyAFileCannotBeRead) {
  EXPECT_EQ(loadBytes(path_, error_), std::nullopt);
  EXPECT_EQ(error_, "No such file or directory");
  EXPECT_EQ(loadBytes(::testing::TempDir(), error_), std::nullopt);
  EXPECT_EQ(error_, "Is a directory");
}

TEST_F(LoadBytes, RefusesWhatIsTooLargeForMemory) {
  std::ofstream(path_, std::ios::binary) << "F0";
  std::filesystem::resize_file(path_, Editor::kLargestMidiFile);
  EXPECT_TRUE(loadBytes(path_, error_));
  std::filesystem::resize_file(path_, Editor::kLargestMidiFile + 1);
  EXPECT_EQ(loadBytes(path_, error_), std::nullopt);
  EXPECT_EQ(error_, "files of its kind are read whole, this one is larger than 64 MB");
  error_.clear();
  EXPECT_EQ(loadBytes("/dev/zero", error_), std::nullopt);
  EXPECT_NE(error_, "");
  std::filesystem::remove(path_);
}

TEST_F(LoadBytes, ReadsStandardInputForADash) {
  std::ofstream(path_, std::ios::binary) << "\xF0\x01\xF7";
  ASSERT_NE(std::freopen(path_.c_str(), "rb", stdin), nullptr);
  EXPECT_EQ(loadBytes("-", error_), bytes("F0 01 F7"));
}

// A file of Windows: little-endian lengths, chunks on even offsets.
Bytes riffFile(const std::vector<std::pair<std::string, Bytes>>& chunks) {
  const auto text = [](const std::string& word) { return Bytes(word.begin(), word.end()); };
  Bytes file = text("RIFF");
  append(file, {0, 0, 0, 0});  // which nobody looks at
  append(file, text("RMID"));
  for (const auto& [type, body] : chunks) {
    append(file, text(type));
    for (int shift = 0; shift < 32; shift += 8) file.push_back(static_cast<std::uint8_t>(body.size() >> shift));
    append(file, body);
    if (body.size() % 2 == 1) file.push_back(0);
  }
  return file;
}

TEST(RiffFile, HoldsAStandardMidiFileWhoseOffsetsAreItsOwn) {
  const Bytes inner = standardFile(0, {track("00 F0 03 7D 01 F7")});
  const MidiFile file = readMidiFile(riffFile({{"DISP", {1, 2, 3}}, {"data", inner}}));
  EXPECT_TRUE(file.standard);
  EXPECT_THAT(messages(file), ElementsAre("55: F0 7D 01 F7"));  // 12 + 12 + 8 before the file, 23 in it
  EXPECT_THAT(errors(file), IsEmpty());
  const MidiFile broken = readMidiFile(riffFile({{"data", standardFile(0, {})}}));
  EXPECT_THAT(errors(broken), IsEmpty());
}

TEST(RiffFile, SaysWhatItLacks) {
  EXPECT_THAT(errors(readMidiFile(bytes("52 49 46 46"))), ElementsAre("0: a RIFF file without MIDI"));
  EXPECT_THAT(errors(readMidiFile(riffFile({{"DISP", {1}}}))), ElementsAre("12: no data in it"));
  EXPECT_THAT(errors(readMidiFile(riffFile({{"data", {1, 2, 3, 4}}}))),
              ElementsAre("20: the data is no Standard MIDI File"));
  Bytes cut = riffFile({{"data", standardFile(0, {track("00 F0 03 7D 01 F7")})}});
  cut.resize(cut.size() - 4);
  const MidiFile file = readMidiFile(cut);
  EXPECT_THAT(messages(file), ElementsAre("43: F0 7D 01 F7"));
  ASSERT_FALSE(errors(file).empty());
  EXPECT_EQ(errors(file).front(), "12: the data is cut short: 28 of 32 bytes");
}

// No length in it leads outside of it.
TEST(RiffFile, IsReadSafelyWhereverItIsCutOff) {
  const Bytes whole = riffFile({{"DISP", {1, 2, 3}}, {"data", standardFile(0, {track("00 F0 03 7D 01 F7")})}});
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const Bytes cut(whole.begin(), whole.begin() + std::ptrdiff_t(size));
    const MidiFile file = readMidiFile(cut);
    EXPECT_TRUE(size < 4 || !file.errors.empty()) << size;
  }
}

TEST(IsSevenBit, HoldsForAFramedMessageOfDataBytesOnly) {
  for (const char* hex : {"F0 F7", "F0 00 F7", "F0 7F 00 7F F7"}) EXPECT_TRUE(isSevenBit(bytes(hex))) << hex;
  for (const char* hex : {"", "F0", "F7", "F7 F0", "F0 F0", "F7 F7", "00 F7", "F0 00", "F0 80 F7", "F0 F0 F7",
                          "F0 F7 F7", "F0 00 FF F7", "F0 00 F8 00 F7"}) {
    EXPECT_FALSE(isSevenBit(bytes(hex))) << hex;
  }
}

}  // namespace
}  // namespace Editor
