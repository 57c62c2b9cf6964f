// explain: what the bytes of a message file are, and where a parameter travels.

#include <numeric>

#include "Library.h"
#include "Program.h"

using Editor::BulkAddress;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

constexpr BulkAddress kHeader{0x0E, 0x0A, 0x05};
constexpr BulkAddress kVoiceCommon{0x40, 0x00, 0x00};
constexpr std::size_t kDataAt = 10;

class Explain : public Program {
 protected:
  // Data bytes that differ from each other, below 80.
  static Bytes pattern(std::size_t size) {
    Bytes data(size);
    for (std::size_t i = 0; i < size; ++i) data[i] = std::uint8_t((i * 37 + 11) % 128);
    return data;
  }
  Json at(const std::string& file, std::size_t offset) {
    return json({"explain", file, std::to_string(offset), "--json"});
  }
};

// What `path` is in the JSON of show: "voice.common[3]".
Json valueAt(Json json, std::string path) {
  std::replace(path.begin(), path.end(), '[', '.');
  std::erase(path, ']');
  std::istringstream words(path);
  for (std::string word; std::getline(words, word, '.');) json = json.is_array() ? json[std::stoul(word)] : json[word];
  return json;
}

}  // namespace

TEST_F(Explain, everyPartOfADumpIsNamedAndNeedsNoLibrary) {
  removeLibrary();
  write("a.syx", {blockDump({0, 0, 0}, 1), dump(kVoiceCommon, pattern(80), 4)});
  const std::size_t second = 80;
  const Json device = at("a.syx", second + 2);
  EXPECT_EQ(device["file"], "a.syx");
  EXPECT_EQ(device["offset"], second + 2);
  EXPECT_EQ(device["message"], 2);
  EXPECT_EQ(device["address"], "40 00 00");
  EXPECT_EQ(device["name"], "normal voice common");
  EXPECT_EQ(device["part"], "device");
  EXPECT_EQ(device["type"], "dump");
  EXPECT_EQ(device["device"], 5);
  EXPECT_EQ(at("a.syx", 0)["name"], "system:common");
  std::vector<std::string> parts;
  for (const unsigned i : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 10U, 89U, 90U, 91U})
    parts.push_back(at("a.syx", second + i)["part"]);
  EXPECT_THAT(parts, ElementsAre("frame", "maker", "device", "model", "model", "byteCount", "byteCount", "address",
                                 "address", "address", "data", "data", "checksum", "frame"));
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(Explain, aDataByteNamesItsParametersWithTheirValues) {
  write("a.syx", {dump(kVoiceCommon, pattern(80))});
  const Json both = at("a.syx", kDataAt + 30);
  EXPECT_EQ(both["dataByte"], 30);
  ASSERT_THAT(both["parameters"], SizeIs(2));
  const unsigned byte = pattern(80)[30];
  EXPECT_EQ(both["parameters"][0]["path"], "voice.common[4]");
  EXPECT_EQ(both["parameters"][0]["bits"], 0x0F);
  EXPECT_EQ(both["parameters"][0]["value"], byte & 0x0F);
  EXPECT_EQ(both["parameters"][1]["path"], "voice.common[3]");
  EXPECT_EQ(both["parameters"][1]["bits"], 0x70);
  EXPECT_EQ(both["parameters"][1]["value"], byte >> 4);
  EXPECT_EQ(both["unused"], 0);
  const Json gap = at("a.syx", kDataAt + 20);
  EXPECT_EQ(gap["part"], "data");
  EXPECT_THAT(gap["parameters"], IsEmpty());
  EXPECT_EQ(gap["unused"], 127);
}

TEST_F(Explain, theValuesAreThoseThatShowSaysAfterwards) {
  Bytes file = dump(kHeader);
  const auto append = [&file](const Bytes& message) { file.insert(file.end(), message.begin(), message.end()); };
  for (const BulkAddress block : blocksOf(BDA::List::normalVoice))
    append(dump(block, pattern(*Editor::findBlock(block)->dataLength)));
  append(dump({0x0F, kHeader.mid, kHeader.lo}));
  write("voice.syx", {file});
  ASSERT_THAT(bda({"receive", "voice.syx"}), Exits(0));
  const Json shown = json({"show", "voice:user1:6", "--json"});
  std::size_t compared = 0;
  for (const Json& byte : objects({"explain", "voice.syx", "--json"}))
    for (const Json& parameter : byte["parameters"]) {
      ASSERT_EQ(parameter["value"], valueAt(shown, parameter["path"])) << byte;
      ++compared;
    }
  EXPECT_GT(compared, 1000u);
}

TEST_F(Explain, aWholeFileIsOneObjectAByteOrSixteenBytesALine) {
  write("a.syx", {blockDump({0, 0, 0}, 1), request(kHeader)});
  const std::vector<Json> bytes = objects({"explain", "a.syx", "--json"});
  ASSERT_THAT(bytes, SizeIs(80 + 9));
  for (const unsigned i : {0U, 12U, 78U, 85U}) EXPECT_EQ(bytes[i], at("a.syx", i));
  const Result run = bda({"explain", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  const std::vector<std::string> all = lines(run.out);
  ASSERT_THAT(all, SizeIs(1 + 5 + 1 + 1));
  EXPECT_EQ(all[0], "message 1: dump of system common (00 00 00)");
  EXPECT_THAT(all[1], StartsWith("       0  F0 7D 00 7F 14 00 44 00 00 00 01 01 01 01 01 01  frame, maker"));
  EXPECT_THAT(all[1], HasSubstr("system.common[0-1], system.tune[0]"));
  EXPECT_THAT(all[6], HasSubstr("request of normal voice user 1, 006: header"));
}

TEST_F(Explain, offsetsMayBeHexAndOneBehindTheEndIsRefused) {
  write("a.syx", {request(kHeader)});
  EXPECT_EQ(json({"explain", "a.syx", "0x5", "--json"}), at("a.syx", 5));
  for (const char* behind : {"9", "0x9", "99999999999999999999999"})
    EXPECT_THAT(bda({"explain", "a.syx", behind}), Exits(2)) << behind;
  EXPECT_THAT(bda({"explain", "none.syx", "0"}), Exits(2));
  write("text.syx", "hello");
  EXPECT_THAT(bda({"explain", "text.syx"}), Exits(2));
}

TEST_F(Explain, wrongUsageIsOne) {
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"explain"},
                                             {"explain", "voice:user1:6"},
                                             {"explain", "0E", "0A", "05"},
                                             {"explain", "system"},
                                             {"explain", "voice:user1:6", "voice.commom[3]"},
                                             {"explain", "voice:user1:6", "voice.common[93]"},
                                             {"explain", "voice:user1", "voice.common[3]"},
                                             {"explain", "no:address", "voice.common[3]"},
                                             {"explain", "a.syx", "1", "2"}})
    EXPECT_THAT(bda(words), Exits(1)) << words.back();
  EXPECT_THAT(bda({"explain", "voice:user1:6", "voice.commom[3]"}).err, HasSubstr("did you mean voice.common[3]?"));
}

TEST_F(Explain, looseBytesAreOutsideAndNoFailure) {
  Bytes file = request(kHeader);
  file.push_back(0x05);
  write("a.syx", {file});
  const Json loose = at("a.syx", 9);
  EXPECT_EQ(loose["part"], "outside");
  EXPECT_FALSE(loose.contains("message"));
  EXPECT_EQ(loose["reason"], "outside of any message");
}

TEST_F(Explain, ofAMidiFileTheOffsetsAreTheFiles) {
  const Bytes message = request(kHeader);
  Bytes midi{'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1, 0, 96, 'M', 'T', 'r', 'k', 0, 0, 0, 15, 0, 0xF0, 8};
  midi.insert(midi.end(), message.begin() + 1, message.end());
  midi.insert(midi.end(), {0, 0xFF, 0x2F, 0});
  write("a.mid", {midi});
  EXPECT_EQ(at("a.mid", 3)["part"], "outside");
  EXPECT_EQ(at("a.mid", 23)["part"], "frame");
  EXPECT_EQ(at("a.mid", 24)["part"], "outside");  // how long the event is
  EXPECT_EQ(at("a.mid", 25)["part"], "maker");
  EXPECT_EQ(at("a.mid", 29)["part"], "address");
  EXPECT_THAT(objects({"explain", "a.mid", "--json"}), SizeIs(midi.size()));
}

TEST_F(Explain, aTextOfHexDigitsIsExplainedDigitByDigit) {
  write("a.txt", "# a request\nF0 7D 20 7F 14 0E 0A 05 F7\n");
  EXPECT_EQ(at("a.txt", 0)["part"], "outside");
  EXPECT_EQ(at("a.txt", 12)["part"], "frame");
  EXPECT_EQ(at("a.txt", 15)["part"], "maker");
  EXPECT_EQ(at("a.txt", 16)["part"], "maker");
  EXPECT_EQ(at("a.txt", 17)["part"], "outside");
  EXPECT_EQ(at("a.txt", 27)["address"], "0E 0A 05");
  EXPECT_THAT(objects({"explain", "a.txt", "--json"}), SizeIs(9));
}

TEST_F(Explain, whatCannotBeReadOfATextOrAMidiFileIsToldAsByTheOthers) {
  const std::string good = "F0 7D 01 F7\n";
  write("a.txt", good + "noise\n" + good);
  write("a.mid", std::string("MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\x20\0\xF0\3\x7D\1\xF7", 28));
  for (const char* const file : {"a.txt", "a.mid"}) {
    const Result list = bda({"list", file});
    const Result run = bda({"explain", file});
    EXPECT_THAT(list, Exits(3));
    EXPECT_THAT(run, Exits(3));
    EXPECT_THAT(run.out, HasSubstr("message 1"));
    EXPECT_EQ(run.err, list.err);
    EXPECT_NE(run.err, "");
    const Result json = bda({"explain", file, "--json"});
    EXPECT_THAT(json, Exits(3));
    EXPECT_EQ(json.err, list.err);
  }
  EXPECT_THAT(bda({"explain", "a.txt"}).err, HasSubstr("line 2: expected two hex digits a byte"));
}

TEST_F(Explain, aMessageBeyondAllBoundsIsNone) {
  const std::string endless(std::size_t{16} << 20, '\0');
  write("a.syx", "\xF0\x7D" + endless + "\xF7" + text(blockDump({0, 0, 0}, 1)));
  const Json inside = at("a.syx", 100);
  EXPECT_EQ(inside["part"], "outside");
  EXPECT_EQ(inside["reason"], "message longer than any can be");
  EXPECT_EQ(at("a.syx", endless.size() + 3)["message"], 1);
}

TEST_F(Explain, anOffsetThatIsNoneIsSaidToBe) {
  write("a.syx", {systemDump(1)});
  for (const char* offset : {"1e3", "-1", "0x"}) {
    const Result run = bda({"explain", "--", "a.syx", offset});
    EXPECT_THAT(run, Exits(1)) << offset;
    EXPECT_THAT(run.err, HasSubstr("expected the offset of a byte")) << offset;
  }
}

TEST_F(Explain, insideOfAFileDumpItIsABytesPlaceInNameOrContent) {
  // Name: 2 bytes of length, one group of "Abc"; content: 2 bytes of length, two groups of 8 and 3.
  write("a.syx", {fileDump({0x0C, 0x0A, 0x05}, "Abc", pattern(9))});
  EXPECT_EQ(at("a.syx", kDataAt)["content"], "voice:user1:6");
  EXPECT_EQ(at("a.syx", kDataAt + 2)["nameByte"], Json({0, 1, 2}));
  EXPECT_EQ(at("a.syx", kDataAt + 4)["nameByte"], 1);
  EXPECT_EQ(at("a.syx", kDataAt + 8)["contentByte"], Json({0, 1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(at("a.syx", kDataAt + 9)["contentByte"], 0);
  EXPECT_EQ(at("a.syx", kDataAt + 16)["contentByte"], Json({7, 8}));
  EXPECT_EQ(at("a.syx", kDataAt + 18)["contentByte"], 8);
  EXPECT_FALSE(at("a.syx", kDataAt + 6).contains("contentByte"));
}

TEST_F(Explain, aParameterNamesTheBytesThatCarryItInWhatRequestSends) {
  write("unit.syx", {unit(kHeader, BDA::List::normalVoice, 5)});
  ASSERT_THAT(bda({"receive", "unit.syx"}), Exits(0));
  ASSERT_THAT(bda({"request", "voice:user1:6", "-o", "sent.syx"}), Exits(0));
  const std::vector<Json> wave = objects({"explain", "voice:user1:6", "voice.element[3].wave[0]", "--json"});
  ASSERT_THAT(wave, SizeIs(2));
  EXPECT_EQ(wave[0]["address"], "41 03 00");
  EXPECT_EQ(wave[0]["dataByte"], 2);
  EXPECT_EQ(wave[1]["dataByte"], 3);
  EXPECT_EQ(wave[0]["bits"], 127);
  EXPECT_EQ(wave[0]["byte"], 5);
  EXPECT_EQ(objects({"explain", "0E", "0A", "05", "voice.element[3].wave[0]", "--json"}), wave);
  EXPECT_THAT(objects({"explain", "voice:user1:6", "voice.name", "--json"}), SizeIs(20));
  // The other way round: the file that request wrote says the same, message by message.
  for (const char* path : {"voice.common[3]", "multi.part[0].extra[0]", "multi.reverb[5]", "voice.name"}) {
    std::vector<Json> found;
    for (const Json& byte : objects({"explain", "sent.syx", "--json"}))
      for (const Json& parameter : byte["parameters"])
        if (parameter["path"] == path)
          found.push_back({{"address", byte["address"]},
                           {"message", byte["message"]},
                           {"dataByte", byte["dataByte"]},
                           {"bits", parameter["bits"]},
                           {"how", parameter["how"]},
                           {"byte", byte["byte"]}});
    EXPECT_EQ(objects({"explain", "voice:user1:6", path, "--json"}), found) << path;
  }
}

TEST_F(Explain, systemIsAllOfItsBlocks) {
  const std::vector<Json> tune = objects({"explain", "system", "system.tune[0]", "--json"});
  ASSERT_THAT(tune, SizeIs(4));
  EXPECT_EQ(tune[0]["address"], "00 00 00");
  EXPECT_EQ(tune[0]["bits"], 15);
  EXPECT_EQ(objects({"explain", "system:common", "system.tune[0]", "--json"}), tune);
}

TEST_F(Explain, whatAnotherBlockOfTheSystemCarriesIsSaidToBeThere) {
  const Result other = bda({"explain", "system:common", "system.masterEq[0]"});
  EXPECT_THAT(other, Exits(3));
  EXPECT_THAT(other.err, HasSubstr("system:common: it does not carry system.masterEq[0]: see system:master-eq\n"));
  EXPECT_THAT(bda({"explain", "system:master-eq", "system.masterEq[0]"}), Exits(0));
  EXPECT_THAT(bda({"explain", "system", "system.utility[50]"}).err,
              HasSubstr("system: no block carries system.utility[50]\n"));
}

TEST_F(Explain, aFileDumpIsSaidToHaveNoBytesOfASingleParameter) {
  const Result voice = bda({"explain", "file:voice:user1:6", "voice.common[3]"});
  EXPECT_THAT(voice, Exits(3));
  EXPECT_THAT(voice.err, HasSubstr("in a file dump no parameter has bytes of its own: see voice:user1:6\n"));
  EXPECT_THAT(bda({"explain", "file:multi:1", "multi.common[3]"}).err, HasSubstr("has bytes of its own\n"));
}

TEST_F(Explain, onlyWhatThePlaceHasIsAskedAbout) {
  write("names", "parameter master.common[0] name\nparameter voice.common[3] One\nparameter voice.common[4] One\n");
  for (const char* word : {"name", "On"}) {
    const Result run = bda({"explain", "voice:user1:6", word, "--names", "names"});
    EXPECT_THAT(run, Exits(1));
    EXPECT_THAT(run.err, testing::AllOf(HasSubstr("it has no parameter"), testing::Not(HasSubstr("did you mean"))));
  }
}

TEST_F(Explain, theOffsetIsToldAsItWasGiven) {
  write("a.syx", {request(kHeader)});
  EXPECT_THAT(bda({"explain", "a.syx", "99999999999999999999999"}).err,
              HasSubstr("offset 99999999999999999999999 lies behind the end: it has 9 bytes"));
  EXPECT_THAT(bda({"explain", "a.syx", "0x9"}).err, HasSubstr("offset 0x9 lies behind the end"));
}

TEST_F(Explain, whatIsTooLargeToBeReadWholeIsRefused) {
  write("a.syx", {request(kHeader)});
  std::filesystem::resize_file(directory / "a.syx", 64'000'001);
  for (const char* file : {"a.syx", "/dev/zero"}) {
    const Result run = bda({"explain", file, "0"});
    EXPECT_THAT(run, Exits(2)) << file;
    EXPECT_THAT(run.err, HasSubstr("larger than 64 MB")) << file;
    EXPECT_THAT(bda({"apply", "voice:user1:6", file}), Exits(2)) << file;
    EXPECT_THAT(bda({"request", "names:waveforms:1", "--names", file}), Exits(2)) << file;
    EXPECT_THAT(bda({"rename", "--from", file}), Exits(2)) << file;
  }
}

TEST_F(Explain, aPathThatCannotBeFollowedIsAnInputThatCannotBeUsed) {
  std::filesystem::create_symlink("loop", directory / "loop");
  write("a.syx", {request(kHeader)});
  for (const std::string& path : {std::string("loop"), std::string(300, 'x'), std::string("a.syx/b")}) {
    EXPECT_THAT(bda({"explain", path}), Exits(2)) << path;
    EXPECT_THAT(bda({"explain", path, "0"}), Exits(2)) << path;
    EXPECT_THAT(bda({"diff", path, "a.syx"}), Exits(2)) << path;
    EXPECT_THAT(bda({"diff", "a.syx", path}), Exits(2)) << path;
  }
  for (const std::string& path : {std::string("loop"), std::string(300, 'x')})
    EXPECT_THAT(bda({"explain", path, "voice.common[3]"}), Exits(2)) << path;
}

TEST_F(Explain, whatNoBlockCarriesOrNothingHoldsIsRefused) {
  EXPECT_THAT(bda({"explain", "system", "system.utility[50]"}), Exits(3));
  EXPECT_THAT(bda({"explain", "voice:user1:6", "voice.common[3]"}), Exits(3));
  EXPECT_THAT(bda({"explain", "file:voice:user1:6", "voice.common[3]"}), Exits(3));
}
