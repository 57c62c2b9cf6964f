// convert: messages from files into files.

#include <filesystem>
#include <map>

#include "Library.h"
#include "Program.h"

using Editor::BulkAddress;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using Json = nlohmann::ordered_json;

namespace {

const Bytes kTrigger = blockDump({0x11, 0x00, 0x00});
const Bytes kForeign{0xF0, 0x41, 0x10, 0xF7};

// A Standard MIDI File of one track as a player takes it: when each message begins, in microseconds by the file's
// tempo.
struct Played {
  struct Message {
    double begins;
    std::string bytes;
  };

  explicit Played(const std::string& file) : file_(file), format(number(8, 2)), ticksPerQuarter_(number(12, 2)) {
    EXPECT_EQ(number(10, 2), 1u);
    for (std::size_t at = 22; at < file.size();) {
      ends += length(at) * quarter_ / ticksPerQuarter_;
      const std::uint8_t status = byte(at++);
      const std::uint8_t meta = status == 0xFF ? byte(at++) : std::uint8_t(0);
      const std::uint32_t size = length(at);
      if (meta == 0x51) quarter_ = number(at, 3);
      if (status == 0xF0) messages.push_back({ends, "\xF0" + file.substr(at, size)});
      at += size;
    }
  }

  std::string file_;
  unsigned format;
  std::vector<Message> messages;
  double ends = 0;

 private:
  std::uint8_t byte(std::size_t at) const { return static_cast<std::uint8_t>(file_.at(at)); }
  unsigned number(std::size_t at, std::size_t bytes) const {
    unsigned value = 0;
    for (std::size_t i = 0; i < bytes; ++i) value = value << 8 | byte(at + i);
    return value;
  }
  std::uint32_t length(std::size_t& at) const {
    std::uint32_t value = 0;
    do value = value << 7 | (byte(at) & 0x7Fu);
    while (byte(at++) >= 0x80);
    return value;
  }

  double quarter_ = 500'000;
  double ticksPerQuarter_;
};

class Convert : public Program {
 protected:
  static Bytes voice(BulkAddress header, std::uint8_t value = 'A') {
    return unit(header, BDA::List::normalVoice, value);
  }
  // The files of a folder, by name.
  std::map<std::string, std::string> folder(const std::string& name) const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory / name))
      files.emplace(entry.path().filename().string(), read(name + "/" + entry.path().filename().string()));
    return files;
  }
  std::vector<std::string> units(const std::string& file) {
    std::vector<std::string> names;
    for (const std::string& line : lines(bda({"verify", "--json", file}).out))
      if (const Json json = Json::parse(line); json.contains("unit"))
        names.push_back(json["unit"].get<std::string>() + " " + json["state"].get<std::string>());
    return names;
  }
};

}  // namespace

TEST_F(Convert, thereAndBackGivesTheSameBytesAndNeedsNoLibrary) {
  removeLibrary();
  write("a.syx", {kForeign,
                  voice({0x0E, 0x0A, 0x05}),
                  request({0, 0, 0}, 4),
                  damaged(blockDump({0, 0, 0})),
                  fileDump({0x0C, 0x0A, 0x06}, "Piano", Bytes(3000, 7)),
                  kTrigger,
                  {0xF0, 0xF7}});
  for (const char* const other : {"b.mid", "b.txt", "b.syx"}) {
    EXPECT_THAT(bda({"convert", "a.syx", "-o", other}), Exits(0));
    EXPECT_THAT(bda({"convert", other, "-o", "back.syx"}), Exits(0));
    EXPECT_EQ(read("back.syx"), read("a.syx")) << other;
  }
  EXPECT_THAT(files(), ElementsAre("a.syx", "b.mid", "b.syx", "b.txt", "back.syx"));
}

TEST_F(Convert, everyKindOfInputIsReadByItsContent) {
  write("a.syx", {kForeign, blockDump({0, 0x40, 0})});
  ASSERT_THAT(bda({"convert", "a.syx", "-o", "a.mid"}), Exits(0));
  ASSERT_THAT(bda({"convert", "a.syx", "-o", "a.TXT"}), Exits(0));
  const std::string midi = read("a.mid");
  EXPECT_EQ(midi.substr(0, 4), "MThd");
  const std::string size{char(midi.size() & 0xFF), char(midi.size() >> 8), 0, 0};
  write("a.rmi", std::string("RIFF\0\0\0\0RMIDdata", 16) + size + midi);
  for (const char* const kind : {"a.syx", "a.mid", "a.TXT", "a.rmi"}) {
    write("unnamed", read(kind));
    EXPECT_THAT(bda({"convert", "unnamed", "-o", "named.syx"}), Exits(0)) << kind;
    EXPECT_EQ(read("named.syx"), read("a.syx")) << kind;
    const Result piped = bda({"convert", "-", "-o", "-"}, read(kind));
    EXPECT_THAT(piped, Exits(0)) << kind;
    EXPECT_EQ(piped.out, read("a.syx")) << kind;
  }
}

TEST_F(Convert, severalFilesBecomeOneInTheirOrder) {
  write("a.syx", {kForeign});
  write("b.txt", "F0 42 f7 # another\n");
  const Result run = bda({"convert", "b.txt", "-", "a.syx", "-o", "-"}, "\xF0\x43\xF7");
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "\xF0\x42\xF7\xF0\x43\xF7\xF0\x41\x10\xF7");
}

TEST_F(Convert, whatBecameNoMessageIsTold) {
  write("a.syx", "\x01\x02" + text(kForeign) + text(request({0, 0, 0})));
  const Result loose = bda({"convert", "a.syx", "-o", "b.syx"});
  EXPECT_THAT(loose, Exits(0));
  EXPECT_EQ(read("b.syx"), read("a.syx").substr(2));
  EXPECT_THAT(loose.err, HasSubstr("a.syx: offset 0: 2 bytes dropped, outside of any message"));
  write("a.syx", text(kForeign) + "\xF0\x41");
  const Result cut = bda({"convert", "a.syx", "-o", "b.syx"});
  EXPECT_THAT(cut, Exits(3));
  EXPECT_EQ(read("b.syx"), text(kForeign));
}

TEST_F(Convert, whoeverPlaysAMidSendsAtTheSpeedOfACable) {
  const std::vector<Bytes> messages{kForeign, unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice), {0xF0, 0xF7}, kForeign};
  write("a.syx", {messages[0], messages[1], messages[2], messages[3]});
  for (const unsigned pause : {20u, 0u, 7u, 60'000u}) {
    std::vector<std::string> words{"convert", "a.syx", "-o", "a.mid"};
    if (pause != 20) words.insert(words.end(), {"--pause", std::to_string(pause)});
    EXPECT_THAT(bda(words), Exits(0));
    const Played file(read("a.mid"));
    EXPECT_EQ(file.format, 0u);
    ASSERT_EQ(file.messages.size(), 26 + 3);
    std::string all;
    for (std::size_t i = 0; i < file.messages.size(); ++i) {
      all += file.messages[i].bytes;
      if (i + 1 == file.messages.size()) continue;
      const double sent = double(file.messages[i].bytes.size()) / 3125 * 1e6;
      const double next = file.messages[i].begins + sent + pause * 1000.0;
      EXPECT_GE(file.messages[i + 1].begins, next) << i;
      EXPECT_LT(file.messages[i + 1].begins, next + 160) << i;
    }
    EXPECT_EQ(all, read("a.syx"));
    EXPECT_GE(file.ends, file.messages.back().begins + double(file.messages.back().bytes.size()) / 3125 * 1e6);
  }
}

TEST_F(Convert, saysHowLongTheFilePlays) {
  write("a.syx", {kForeign, kForeign});
  EXPECT_THAT(bda({"convert", "a.syx", "-o", "a.mid"}).err, HasSubstr("0.0 s to play"));
  EXPECT_THAT(bda({"convert", "a.syx", "-o", "a.mid", "--pause", "1500"}).err, HasSubstr("1.5 s to play"));
}

TEST_F(Convert, wrongUsageIsToldAndNothingIsWritten) {
  write("a.syx", {kForeign});
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"a.syx"},
           {"-o", "b.syx"},
           {"a.syx", "-o", "b.bin"},
           {"a.syx", "-o", "b"},
           {"a.syx", "-o", "b.syx", "--split", "dir"},
           {"a.syx", "-o", "b.syx", "--pause", "20"},
           {"a.syx", "-o", "b.mid", "--pause", "-1"},
           {"a.syx", "-o", "b.syx", "--device", "0"},
           {"a.syx", "-o", "b.syx", "--device", "17"},
           {"a.syx", "-o", "b.syx", "--place", "voice:user9:1"},
           {"a.syx", "-o", "b.syx", "--select", "voice:user9:1"},
           {"a.syx", "-o", "a.syx"},
       }) {
    std::vector<std::string> all = words;
    all.insert(all.begin(), "convert");
    EXPECT_THAT(bda(all), Exits(1)) << testing::PrintToString(words);
    EXPECT_THAT(files(), ElementsAre("a.syx"));
  }
  EXPECT_EQ(read("a.syx"), text(kForeign));
}

TEST_F(Convert, aFileThatCannotBeWrittenIs1AndOneThatCannotBeUsedIs2) {
  write("a.syx", {kForeign});
  EXPECT_THAT(bda({"convert", "a.syx", "-o", "none/b.syx"}), Exits(1));
  EXPECT_THAT(bda({"convert", "a.syx", "--split", "a.syx"}), Exits(1));
  EXPECT_THAT(bda({"convert", "a.syx", "none.syx", "-o", "b.syx"}), Exits(2));
  EXPECT_THAT(bda({"convert", "a.syx", "-", "-o", "b.syx"}, "words"), Exits(2));
  EXPECT_THAT(files(), ElementsAre("a.syx"));
}

TEST_F(Convert, anOutputThatCannotBeWrittenIs1WhateverElseWasFound) {
  write("good.syx", {kForeign});
  write("cut.syx", text(kForeign) + "\xF0\x41");
  for (const char* const name : {"full.syx", "full.mid", "full.txt"}) {
    std::filesystem::create_symlink("/dev/full", directory / name);
    for (const char* const file : {"good.syx", "cut.syx"}) {
      const Result run = bda({"convert", file, "-o", name});
      EXPECT_THAT(run, Exits(1)) << name;
      EXPECT_THAT(run.err, HasSubstr("cannot write it: No space left on device"));
    }
  }
  write("old.syx", "old");
  std::filesystem::create_directory(directory / "dir.syx");
  EXPECT_THAT(bda({"convert", "good.syx", "-o", "dir.syx"}), Exits(1));
  EXPECT_THAT(bda({"convert", "good.syx", "--split", "/dev/null/dir"}), Exits(1));
  EXPECT_THAT(bda({"convert", "good.syx", "--split", "/proc"}), Exits(1));
  EXPECT_THAT(bda({"convert", "good.syx", "-o", "old.syx"}), Exits(0));
  EXPECT_EQ(read("old.syx"), text(kForeign));
}

TEST_F(Convert, placeAddressesAUnitToAnotherPlace) {
  write("a.syx", {kForeign, voice({0x0E, 0x0A, 0x05})});
  const Result run = bda({"convert", "a.syx", "--place", "voice:edit", "-o", "b.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6 -> voice:edit"));
  EXPECT_EQ(read("b.syx"), text(kForeign) + text(voice({0x0E, 0x0F, 0x00})));
  EXPECT_THAT(units("b.syx"), ElementsAre("voice:edit complete"));
  EXPECT_THAT(bda({"receive", "b.syx"}), Exits(0));
}

TEST_F(Convert, aRequestedFileDumpIsPlacedToo) {
  write("a.syx", {voice({0x0E, 0x0A, 0x05})});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  ASSERT_THAT(bda({"request", "file:voice:user1:6", "-o", "a.syx"}), Exits(0));
  EXPECT_THAT(bda({"convert", "a.syx", "--place", "voice:user3:9", "-o", "b.syx"}), Exits(0));
  EXPECT_THAT(bda({"list", "b.syx"}).out, HasSubstr("file dump of voice user3:9"));
  EXPECT_THAT(bda({"convert", "a.syx", "--place", "voice:edit", "-o", "b.syx"}), Exits(0));
  ASSERT_THAT(bda({"request", "voice:user1:6", "-o", "blocks.syx"}), Exits(0));
  ASSERT_THAT(bda({"convert", "blocks.syx", "--place", "voice:edit", "-o", "blocks.mid"}), Exits(0));
  EXPECT_EQ(read("b.syx"), bda({"convert", "blocks.mid", "-o", "-"}).out);
  EXPECT_THAT(units("b.syx"), ElementsAre("voice:edit complete"));
}

TEST_F(Convert, whatNoBlockCarriesOfAFileDumpIsNamed) {
  write("a.syx", {unit({0x0E, 0x5F, 0x00}, BDA::List::multi, 1)});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  ASSERT_THAT(bda({"copy", "multi:edit", "file:multi:3"}), Exits(0));
  ASSERT_THAT(bda({"rename", "file:multi:3", "Evening"}), Exits(0));
  ASSERT_THAT(bda({"request", "file:multi:3", "-o", "a.syx"}), Exits(0));
  const Result run = bda({"convert", "a.syx", "--place", "multi:edit", "-o", "b.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("multi:edit: no message carries 1 parameter: multi.name"));
  EXPECT_THAT(units("b.syx"), ElementsAre("multi:edit complete"));
}

TEST_F(Convert, theNameOfAFileDumpThatBecomesBlocksIsNamed) {
  write("a.syx", {voice({0x0E, 0x0A, 0x05})});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  ASSERT_THAT(bda({"request", "file:voice:user1:6", "-o", "a.syx"}), Exits(0));
  std::string message = read("a.syx");
  ASSERT_EQ(message.at(13), 'A');  // of the name
  message[13] = 'B';
  char& checksum = message[message.size() - 2];
  checksum = char((checksum - 1) & 0x7F);
  write("a.syx", message);
  const Result run = bda({"convert", "a.syx", "--place", "voice:edit", "-o", "b.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("voice:edit: no message carries the name of its file dump: \"BAAAAAAAAAAAAAAAAAAA\""));
  EXPECT_THAT(units("b.syx"), ElementsAre("voice:edit complete"));
  EXPECT_THAT(bda({"convert", "a.syx", "--place", "voice:user2:1", "-o", "b.syx"}), Exits(0));
}

TEST_F(Convert, moreUnitsThanPlacesAre2AndAnotherKindIs3) {
  write("a.syx", {voice({0x0E, 0x0A, 0x05}), voice({0x0E, 0x0A, 0x06})});
  EXPECT_THAT(bda({"convert", "a.syx", "--place", "voice:edit", "-o", "b.syx"}), Exits(2));
  EXPECT_THAT(bda({"convert", "a.syx", "--place", "drum:user", "-o", "b.syx"}), Exits(3));
  write("none.syx", {kForeign});
  EXPECT_THAT(bda({"convert", "none.syx", "--place", "voice:edit", "-o", "b.syx"}), Exits(2));
  const Bytes whole = voice({0x0E, 0x0A, 0x05});
  write("cut.syx", {Bytes(whole.begin(), whole.end() - 12)});
  EXPECT_THAT(bda({"convert", "cut.syx", "--place", "voice:edit", "-o", "b.syx"}), Exits(3));
  EXPECT_FALSE(exists("b.syx"));
  EXPECT_THAT(bda({"convert", "a.syx", "--place", "voice:user2", "-o", "b.syx"}), Exits(0));
  EXPECT_THAT(units("b.syx"), ElementsAre("voice:user2:1 complete", "voice:user2:2 complete"));
}

TEST_F(Convert, deviceIsThatOfThisMakersMessages) {
  write("a.syx", {kForeign, voice({0x0E, 0x0A, 0x05}), request({0, 0, 0}, 3)});
  EXPECT_THAT(bda({"convert", "a.syx", "--device", "6", "-o", "b.syx"}), Exits(0));
  for (const std::string& line : lines(bda({"list", "--json", "b.syx"}).out)) {
    const Json json = Json::parse(line);
    EXPECT_TRUE(json["kind"] == "foreign" || json["device"] == 6) << line;
    EXPECT_NE(json["verdict"], "checksum wrong");
  }
  EXPECT_EQ(read("b.syx").substr(0, 4), text(kForeign));
}

TEST_F(Convert, selectTakesNoTriggerForAnotherDevice) {
  write("a.syx", {fileDump({0x0C, 0x0A, 0x05}, "Piano", {1}), dump({0x11, 0x00, 0x00}, {}, 3)});
  EXPECT_THAT(bda({"convert", "a.syx", "-o", "b.syx", "--select", "voice:user1:6"}), Exits(0));
  EXPECT_EQ(read("b.syx"), text(fileDump({0x0C, 0x0A, 0x05}, "Piano", {1})));
}

TEST_F(Convert, selectTakesUnitsOnly) {
  write("a.syx", {kForeign, voice({0x0E, 0x0A, 0x05}), voice({0x0E, 0x0B, 0x05}), blockDump({0, 0, 0})});
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"a.syx", "-o", "b.syx", "--select", "voice:user1"},
        {"--select", "voice:user1", "a.syx", "-o", "b.syx"},
        {"-o", "b.syx", "--select", "0E", "0A", "05", "a.syx"}}) {
    std::vector<std::string> all = words;
    all.insert(all.begin(), "convert");
    EXPECT_THAT(bda(all), Exits(0)) << testing::PrintToString(words);
    EXPECT_EQ(read("b.syx"), text(voice({0x0E, 0x0A, 0x05})));
    std::filesystem::remove(directory / "b.syx");
  }
  EXPECT_THAT(bda({"convert", "a.syx", "-o", "b.syx", "--select", "master"}), Exits(3));
  EXPECT_FALSE(exists("b.syx"));
  const Result some = bda({"convert", "a.syx", "-o", "b.syx", "--select", "master", "voice:user2:6"});
  EXPECT_THAT(some, Exits(3));
  EXPECT_THAT(some.err, HasSubstr("master: there is none in the files"));
  EXPECT_EQ(read("b.syx"), text(voice({0x0E, 0x0B, 0x05})));
}

TEST_F(Convert, splitGivesEachUnitAFileAndTheRestOther) {
  write("a.syx", {kForeign, voice({0x0E, 0x0A, 0x05}), blockDump({0, 0, 0}), voice({0x0E, 0x0A, 0x05}, 'B'),
                  fileDump({0x0C, 0x50, 0x02}, "../x", {1}), voice({0x0E, 0x0A, 0x05}), kTrigger, kForeign});
  const Result run = bda({"convert", "a.syx", "--split", "new/dir"});
  EXPECT_THAT(run, Exits(0));
  const std::string name = "voice-user1-006-AAAAAAAAAAAAAAAAAAAA";
  std::map<std::string, std::string> expected{
      {"other.syx", text(kForeign) + text(blockDump({0, 0, 0})) + text(kForeign)},
      {name + ".syx", text(voice({0x0E, 0x0A, 0x05}))},
      {name + "-2.syx", text(voice({0x0E, 0x0A, 0x05}))},
      {"voice-user1-006-BBBBBBBBBBBBBBBBBBBB.syx", text(voice({0x0E, 0x0A, 0x05}, 'B'))},
      {"multi-003-x.syx", text(fileDump({0x0C, 0x50, 0x02}, "../x", {1})) + text(kTrigger)}};
  EXPECT_EQ(folder("new/dir"), expected);
  EXPECT_THAT(lines(run.out), SizeIs(5));
  EXPECT_THAT(bda({"verify", "new/dir/multi-003-x.syx"}), Exits(0));

  EXPECT_THAT(bda({"convert", "a.syx", "--split", "new/dir"}), Exits(0));  // again: what stands there is the same
  EXPECT_EQ(folder("new/dir"), expected);
}

TEST_F(Convert, splitTellsOfFileDumpsThatNoInstrumentStores) {
  const Bytes preset = fileDump({0x0C, 0x00, 0x00}, "Preset", {1});
  write("a.syx", {preset, fileDump({0x0C, 0x0A, 0x05}, "User", {1}), kTrigger});
  const Result run = bda({"convert", "a.syx", "--split", "dir"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("file:voice:preset1:1: can be requested, but not stored"));
  EXPECT_THAT(run.err, Not(HasSubstr("user1")));
  EXPECT_THAT(folder("dir"), SizeIs(2));
  EXPECT_EQ(read("dir/voice-preset1-001-Preset.syx"), text(preset));
}

TEST_F(Convert, splitShortensNamesThatNoFileCanHave) {
  std::vector<Bytes> dumps;
  for (const char last : {'x', 'y', 'z'})
    dumps.push_back(fileDump({0x0C, 0x0A, 0x05}, std::string(300, 'A') + last, {1}));
  write("a.syx", {dumps[0], dumps[1], dumps[2], kTrigger});
  EXPECT_THAT(bda({"convert", "a.syx", "--split", "dir"}), Exits(0));
  const std::string name = "dir/voice-user1-006-" + std::string(200, 'A');
  EXPECT_THAT(folder("dir"), SizeIs(3));
  EXPECT_EQ(read(name + ".syx"), text(dumps[0]) + text(kTrigger));
  EXPECT_EQ(read(name + "-2.syx"), text(dumps[1]) + text(kTrigger));
  EXPECT_EQ(read(name + "-3.syx"), text(dumps[2]) + text(kTrigger));
}

TEST_F(Convert, splitWritesOverNothing) {
  write("a.syx", {kForeign, voice({0x0E, 0x0A, 0x05}, ' ')});
  write("precious", "precious");
  std::filesystem::create_directory(directory / "dir");
  write("dir/other.syx", "mine");
  std::filesystem::create_symlink(directory / "precious", directory / "dir" / "voice-user1-006.syx");
  EXPECT_THAT(bda({"convert", "a.syx", "--split", "dir"}), Exits(0));
  EXPECT_EQ(read("dir/other.syx"), "mine");
  EXPECT_EQ(read("dir/other-2.syx"), text(kForeign));
  EXPECT_EQ(read("precious"), "precious");
  EXPECT_EQ(read("dir/voice-user1-006-2.syx"), text(voice({0x0E, 0x0A, 0x05}, ' ')));
}

TEST_F(Convert, splitPutsWhatIsNoWholeUnitToTheRestAndSaysSo) {
  const Bytes whole = voice({0x0E, 0x0A, 0x05});
  write("cut.syx", {Bytes(whole.begin(), whole.end() - 12)});
  const Result run = bda({"convert", "cut.syx", "--split", "dir"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: still open at the end"));
  EXPECT_EQ(folder("dir"), (std::map<std::string, std::string>{{"other.syx", read("cut.syx")}}));
}

TEST_F(Convert, aUnitWithABrokenHeaderOrFooterIsNoneWhereUnitsCount) {
  const Bytes whole = voice({0x0E, 0x0A, 0x05});
  const std::size_t end = dump({0x0E, 0x0A, 0x05}).size();
  for (const bool isHeader : {true, false}) {
    const std::string blocks = text(whole).substr(isHeader ? end : 0, whole.size() - end);
    const std::string broken = text(dump({std::uint8_t(isHeader ? 0x0E : 0x0F), 0x0A, 0x05}, {1}));
    write("a.syx", isHeader ? broken + blocks : blocks + broken);
    EXPECT_THAT(units("a.syx"), testing::ElementsAre("voice:user1:6 abandoned"));
    for (const std::vector<std::string>& words : {std::vector<std::string>{"--split", "dir"},
                                                  {"-o", "b.syx", "--place", "voice:user2:1"},
                                                  {"-o", "b.syx", "--select", "voice:user1:6"}}) {
      std::vector<std::string> all = words;
      all.insert(all.begin(), {"convert", "a.syx"});
      const Result run = bda(all);
      EXPECT_THAT(run, Exits(3)) << testing::PrintToString(words);
      EXPECT_THAT(run.err, HasSubstr("voice:user1:6: abandoned (messages 1 to 26), by a "));
    }
    EXPECT_EQ(folder("dir"), (std::map<std::string, std::string>{{"other.syx", read("a.syx")}}));
    EXPECT_FALSE(exists("b.syx"));
    std::filesystem::remove_all(directory / "dir");
    ASSERT_THAT(bda({"convert", "a.syx", "-o", "all.syx"}), Exits(0));
    EXPECT_EQ(read("all.syx"), read("a.syx")) << "its messages are messages";
    EXPECT_THAT(bda({"receive", "a.syx"}).out, HasSubstr("stored: voice:user1:6"));
  }
}

TEST_F(Convert, aBrokenFileDumpIsToldWhereUnitsCount) {
  write("a.syx", {damaged(fileDump({0x0C, 0x0A, 0x06}, "Piano", {1})), kTrigger});
  for (const std::vector<std::string>& words : {std::vector<std::string>{"--split", "dir"},
                                                {"-o", "b.syx", "--place", "voice:user2:1"},
                                                {"-o", "b.syx", "--select", "voice:user1:7"}}) {
    std::vector<std::string> all = words;
    all.insert(all.begin(), {"convert", "a.syx"});
    const Result run = bda(all);
    EXPECT_THAT(run, Exits(3)) << testing::PrintToString(words);
    EXPECT_THAT(run.err, HasSubstr("file:voice:user1:7: broken (message 1): checksum"));
  }
  EXPECT_EQ(folder("dir"), (std::map<std::string, std::string>{{"other.syx", read("a.syx")}}));
  EXPECT_FALSE(exists("b.syx"));
}

TEST_F(Convert, jsonTellsWhatWasWrittenUnitByUnit) {
  write("a.syx", {kForeign, voice({0x0E, 0x0A, 0x05}), dump({0x0C, 0x0A, 0x06}, Bytes(4)), kTrigger});
  const Result one = bda({"convert", "a.syx", "--place", "voice:user2", "-o", "b.mid", "--json"});
  EXPECT_THAT(one, Exits(0));
  ASSERT_THAT(lines(one.out), SizeIs(3));
  EXPECT_EQ(lines(one.out)[0],
            R"({"unit":"voice:user2:1","address":"0E 0B 00","form":"blocks","name":"AAAAAAAAAAAAAAAAAAAA",)"
            R"("from":"voice:user1:6","messages":26,"bytes":)" +
                std::to_string(voice({0x0E, 0x0A, 0x05}).size()) + R"(,"file":"b.mid"})");
  EXPECT_EQ(lines(one.out)[1],
            R"({"unit":"voice:user2:2","address":"0C 0B 01","form":"file dump","name":"","from":"voice:user1:7",)"
            R"("removes":["voice:user2:2"],"messages":1,"bytes":16,"file":"b.mid"})");
  EXPECT_EQ(lines(one.out)[2], R"({"unit":null,"messages":2,"bytes":16,"file":"b.mid"})");
  const Result split = bda({"convert", "a.syx", "--split", "dir", "--json"});
  ASSERT_THAT(lines(split.out), SizeIs(3));
  EXPECT_EQ(Json::parse(lines(split.out)[1])["file"], "dir/voice-user1-007-removes.syx");
  EXPECT_EQ(Json::parse(lines(split.out)[2])["messages"], 1);
}

TEST_F(Convert, noUnitIsTornApartByAnother) {
  const std::string outer = text(voice({0x0E, 0x0A, 0x05}));
  const std::size_t middle = outer.find('\xF7', 100) + 1;
  write("a.syx", {voice({0x0E, 0x0A, 0x06})});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  ASSERT_THAT(bda({"request", "file:voice:user1:7", "-o", "inner.syx"}), Exits(0));
  write("torn.syx", outer.substr(0, middle) + read("inner.syx") + outer.substr(middle) + text(kTrigger));
  write("begin.syx", outer.substr(0, middle));
  Json object = json({"show", "voice:user1:7", "--json"});
  object["target"] = "voice:user1:7";
  write("inner.json", object.dump());
  write("end.syx", outer.substr(middle));
  EXPECT_THAT(bda({"convert", "torn.syx", "--place", "voice:part:1..2", "-o", "b.syx"}), Exits(0));
  EXPECT_THAT(units("b.syx"), ElementsAre("voice:part:1 complete", "voice:part:2 complete"));
  EXPECT_THAT(bda({"convert", "begin.syx", "inner.json", "end.syx", "-o", "b.syx"}), Exits(0));
  EXPECT_THAT(units("b.syx"), ElementsAre("voice:user1:6 complete", "voice:user1:7 complete"));
}

TEST_F(Convert, brokenBlocksAndTriggersAreToldWhereUnitsCount) {
  const Bytes block = blockDump({0x00, 0x40, 0x00});
  const Bytes whole = voice({0x0E, 0x0A, 0x05});
  write("a.syx", {whole, damaged(block), damaged(kTrigger)});
  const std::string told = "system:audio-input: broken (message 27): checksum wrong";
  for (const std::vector<std::string>& words : {std::vector<std::string>{"--split", "dir"},
                                                {"-o", "b.syx", "--place", "voice:user2:1"},
                                                {"-o", "c.syx", "--select", "voice:user1:6", "system:audio-input"}}) {
    std::vector<std::string> all = words;
    all.insert(all.begin(), {"convert", "a.syx"});
    const Result run = bda(all);
    EXPECT_THAT(run, Exits(3)) << testing::PrintToString(words);
    EXPECT_THAT(run.err, HasSubstr(told));
    EXPECT_THAT(run.err, Not(HasSubstr("there is none")));
  }
  EXPECT_EQ(read("dir/other.syx"), text(damaged(block)) + text(damaged(kTrigger)));
  EXPECT_EQ(read("b.syx"), text(voice({0x0E, 0x0B, 0x00})) + read("dir/other.syx"));
  EXPECT_EQ(read("c.syx"), text(whole));
  EXPECT_THAT(bda({"convert", "a.syx", "-o", "b.syx"}), Exits(0));
  EXPECT_EQ(read("b.syx"), read("a.syx"));
}

TEST_F(Convert, aCaptureThatBeginsLikeJsonIsOneAllTheSame) {
  write("a.syx", "{\"" + text(voice({0x0E, 0x0A, 0x05})));
  EXPECT_THAT(bda({"convert", "a.syx", "-o", "b.syx"}), Exits(0));
  EXPECT_EQ(read("b.syx"), text(voice({0x0E, 0x0A, 0x05})));
}
