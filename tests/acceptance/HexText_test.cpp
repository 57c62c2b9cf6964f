// Messages as hex text, in every verb that reads messages.

#include "Library.h"
#include "Program.h"

using testing::HasSubstr;
using Json = nlohmann::ordered_json;

namespace {

const Bytes kTrigger = blockDump({0x11, 0x00, 0x00});
const Bytes kForeign{0xF0, 0x41, 0x10, 0xF7};

class HexText : public Program {
 protected:
  // The same messages as bytes and as text: a voice, a file dump, system blocks, something of another maker.
  void writeBoth() {
    write("a.syx", {kForeign, unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 'A'),
                    fileDump({0x0C, 0x0A, 0x06}, "Piano", {1, 2, 3}), kTrigger, systemDump(1)});
    ASSERT_THAT(bda({"convert", "a.syx", "-o", "a.txt"}), Exits(0));
  }

  // What a verb says of a file, line by line, without the places of the messages in it.
  std::vector<Json> said(std::vector<std::string> words, const std::string& file) {
    words.push_back(file);
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(0));
    std::vector<Json> objects;
    for (const std::string& line : lines(run.out)) {
      objects.push_back(Json::parse(line));
      for (const char* const place : {"file", "offset", "source", "from"}) objects.back().erase(place);
    }
    return objects;
  }
};

}  // namespace

TEST_F(HexText, hasAMessageALineAndIsWhatTheBytesAre) {
  write("a.syx", {request({0, 0x40, 0}), kForeign});
  EXPECT_THAT(bda({"convert", "a.syx", "-o", "a.txt"}), Exits(0));
  EXPECT_EQ(read("a.txt"), "F0 7D 20 7F 14 00 40 00 F7\nF0 41 10 F7\n");
  for (const char* const verb : {"list", "verify"}) {
    const Result run = bda({verb, "a.txt"});
    EXPECT_THAT(run, Exits(0));
    EXPECT_THAT(run.out, HasSubstr("request of system audio input part"));
  }
  write(
      "system.txt", "# system\n" + [] {
        std::string text;
        for (const std::uint8_t byte : blockDump({0, 0x40, 0}))
          text += "0123456789abcdef"[byte >> 4], text += "0123456789abcdef"[byte & 15];
        return text;
      }());
  EXPECT_THAT(bda({"receive", "system.txt"}), Exits(0));
}

TEST_F(HexText, thatIsNoHexIsToldLineByLine) {
  write("a.txt", "F0 41 F7\nF0 41 xx\nF0 42 F7\n");
  const Result run = bda({"convert", "a.txt", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("a.txt: offset 15: line 2: expected two hex digits a byte"));
  EXPECT_EQ(read("a.syx"), "\xF0\x41\xF7\xF0\x42\xF7");
  std::string many = "F0 41 F7\n";
  for (int i = 0; i < 30; ++i) many += "zz\n";
  write("many.txt", many);
  const Result alike = bda({"convert", "many.txt", "-o", "a.syx"});
  EXPECT_THAT(lines(alike.err), testing::Contains("and 10 more: many.txt: not built as it must be"));
  EXPECT_THAT(alike.err, testing::Not(HasSubstr("line 22:")));
  write("words.txt", "# only words\n");
  const Result none = bda({"list", "words.txt"});
  EXPECT_THAT(none, Exits(2));
  EXPECT_EQ(none.err, "bda: words.txt: no System Exclusive message in it: it seems to be text\n");
}

TEST_F(HexText, isJudgedAsTheBytesThatItWrites) {
  writeBoth();
  for (const char* const verb : {"list", "verify"}) {
    const std::vector<Json> bytes = said({verb, "--json"}, "a.syx");
    EXPECT_GT(bytes.size(), 26u) << verb;
    EXPECT_EQ(said({verb, "--json"}, "a.txt"), bytes) << verb;
  }
}

TEST_F(HexText, isReceivedAndRestored) {
  writeBoth();
  for (const char* const verb : {"receive", "restore"}) {
    removeLibrary();
    EXPECT_THAT(bda({verb, "a.syx"}), Exits(0)) << verb;
    const std::string kept = bda({"backup", "-o", "-"}).out;
    removeLibrary();
    EXPECT_THAT(bda({verb, "a.txt"}), Exits(0)) << verb;
    EXPECT_EQ(bda({"backup", "-o", "-"}).out, kept) << verb;
    removeLibrary();
    EXPECT_THAT(bda({verb, "-"}, read("a.txt")), Exits(0)) << verb;
    EXPECT_EQ(bda({"backup", "-o", "-"}).out, kept) << verb;
  }
}

TEST_F(HexText, isComparedFoundShownAndSalvaged) {
  writeBoth();
  const Result same = bda({"diff", "a.syx", "a.txt"});
  EXPECT_THAT(same, Exits(0));
  const std::vector<Json> found = said({"find", "--json", "--in"}, "a.syx");
  EXPECT_EQ(found.size(), 2u);
  EXPECT_EQ(said({"find", "--json", "--in"}, "a.txt"), found);
  const Result shown = bda({"show", "voice:user1:6", "--from", "a.txt", "--json"});
  EXPECT_THAT(shown, Exits(0));
  EXPECT_EQ(shown.out, bda({"show", "voice:user1:6", "--from", "a.syx", "--json"}).out);
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "bytes.syx"}), Exits(0));
  EXPECT_THAT(bda({"salvage", "a.txt", "-o", "text.syx"}), Exits(0));
  EXPECT_EQ(read("text.syx"), read("bytes.syx"));
}

TEST_F(HexText, isExplainedWhereItsDigitsStand) {
  write("a.txt", "# a request\nF0 7D 20 7F 14 00 40 00 F7\n01\n");
  const Json first = json({"explain", "a.txt", "12", "--json"});
  EXPECT_EQ(first["part"], "frame");
  EXPECT_EQ(first["message"], 1);
  EXPECT_EQ(Json::parse(lines(bda({"list", "a.txt", "--json"}).out).front())["offset"], 12);
  EXPECT_EQ(json({"explain", "a.txt", "28", "--json"})["part"], "address");
  EXPECT_EQ(json({"explain", "a.txt", "39", "--json"})["reason"], "outside of any message");
}

TEST_F(HexText, isFoundInFoldersAndOtherTextIsPassedOver) {
  writeBoth();
  std::filesystem::create_directory(directory / "dir");
  std::filesystem::rename(directory / "a.txt", directory / "dir/a.txt");
  write("dir/words.txt", "# words\n\nof no use\n");
  write("dir/README", "added, and deaf\n");
  const Result run = bda({"find", "Piano", "--in", "dir"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("dir/a.txt"));
  EXPECT_THAT(run.err, HasSubstr("2 files"));
}
