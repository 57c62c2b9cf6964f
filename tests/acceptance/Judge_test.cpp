// list and verify: what a file holds, judged without a library.

#include "Library.h"
#include "Program.h"

using Editor::BulkAddress;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

constexpr BulkAddress kHeader{0x0E, 0x0A, 0x05};

class Judge : public Program {};

}  // namespace

TEST_F(Judge, listPrintsOneLineForEachMessageAndNeedsNoLibrary) {
  removeLibrary();
  write("a.syx", {blockDump({0x00, 0x00, 0x00}, 1), request({0x00, 0x40, 0x00}, 4)});
  const Result run = bda({"list", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  ASSERT_THAT(lines(run.out), SizeIs(2));
  EXPECT_THAT(lines(run.out)[0], ContainsRegex("1 +0 +good +1 +00 00 00 +system common, 68 data bytes, checksum 78"));
  EXPECT_THAT(lines(run.out)[1], ContainsRegex("2 +80 +good +5 +00 40 00 +request of system audio input part"));
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(files(), ElementsAre("a.syx"));
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(Judge, listNamesEveryVerdict) {
  Bytes foreign = request({0, 0, 0});
  foreign[1] = 0x41;
  Bytes type = request({0, 0, 0});
  type[2] = 0x60;
  write("a.syx", {foreign, damaged(blockDump({0, 0, 0})), dump({0, 0, 0}, Bytes(3)), dump({0x7F, 0, 0}), type});
  const Result run = bda({"list", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  ASSERT_THAT(lines(run.out), SizeIs(5));
  EXPECT_THAT(lines(run.out)[0], HasSubstr("not for this instrument"));
  EXPECT_THAT(lines(run.out)[1], ContainsRegex("checksum wrong .* 68 data bytes .checksum 3D, expected 3C.$"));
  EXPECT_THAT(
      lines(run.out)[2],
      ContainsRegex("wrong length for its block .*system common, checksum 7D .3 data bytes, this block has 68.$"));
  EXPECT_THAT(lines(run.out)[3], HasSubstr("unknown address"));
  EXPECT_THAT(lines(run.out)[4], HasSubstr("unknown type"));
}

TEST_F(Judge, messagesForOtherInstrumentsAreFine) {
  Bytes foreign = request({0, 0, 0});
  foreign[1] = 0x41;
  write("a.syx", {foreign});
  EXPECT_THAT(bda({"list", "a.syx"}), Exits(0));
  EXPECT_THAT(bda({"verify", "a.syx"}), Exits(0));
}

TEST_F(Judge, theRemainderOfAMessageIsBrokenThoughTheInstrumentPassesOverIt) {
  const Bytes whole = unit(kHeader, BDA::List::normalVoice, 0x41);
  const auto footer = std::ptrdiff_t(blockDump({0x0F, 0x0A, 0x05}).size());
  write("a.syx", {Bytes(whole.begin(), whole.end() - footer),
                  {0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0xF7},
                  Bytes(whole.end() - footer, whole.end())});
  const Result verify = bda({"verify", "a.syx"});
  EXPECT_THAT(verify, Exits(3));
  EXPECT_THAT(verify.err, HasSubstr("wrong length: 7 bytes, a message has at least 9"));
  EXPECT_THAT(verify.out, HasSubstr("voice:user1:6: complete"));
  EXPECT_THAT(bda({"list", "a.syx"}), Exits(3));
  EXPECT_THAT(bda({"restore", "a.syx"}), Exits(3));
  const Result receive = bda({"receive", "a.syx"});
  EXPECT_THAT(receive, Exits(3));
  EXPECT_THAT(receive.out, HasSubstr("not-ours: no valid message"));
  EXPECT_THAT(receive.out, HasSubstr("stored: voice:user1:6"));
  EXPECT_THAT(receive.err, ContainsRegex("a.syx: message 26 at offset [0-9]+: wrong length: 7 bytes, a message has"));
  EXPECT_THAT(receive.err, HasSubstr("25 accepted, 1 not-ours\n"));
}

TEST_F(Judge, theRemainderOfAMessageIsToldByAllThatReadFiles) {
  const Bytes whole = unit(kHeader, BDA::List::normalVoice, 0x41);
  for (const Bytes& remainder : {Bytes{0xF0, 0x7D, 0x00, 0x7F, 0xF7},
                                 {0xF0, 0x7D, 0x00, 0x7F, 0x14, 0xF7},
                                 {0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x0E, 0xF7},
                                 {0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x0E, 0x0A, 0xF7}}) {
    write("a.syx", {whole, remainder});
    const std::string told = "wrong length: " + std::to_string(remainder.size()) + " bytes, a message has at least 9";
    for (const std::vector<std::string>& words : {std::vector<std::string>{"verify", "a.syx"},
                                                  {"receive", "a.syx"},
                                                  {"receive", "--whole", "a.syx"},
                                                  {"receive", "--dry-run", "a.syx"},
                                                  {"receive", "--json", "a.syx"},
                                                  {"restore", "a.syx"},
                                                  {"show", "voice:user1:6", "--from", "a.syx"},
                                                  {"diff", "a.syx", "a.syx"},
                                                  {"convert", "a.syx", "--split", "out"},
                                                  {"salvage", "a.syx", "-o", "good.syx"},
                                                  {"send", "a.syx", "--to", "-"}}) {
      const Result run = bda(words);
      EXPECT_THAT(run, Exits(3)) << words[0];
      EXPECT_THAT(run.err, HasSubstr(told)) << words[0];
    }
    const Result instrument = bda({"instrument", "--on", "-"}, read("a.syx"));
    EXPECT_THAT(instrument, Exits(3));
    EXPECT_THAT(instrument.err, HasSubstr(told));
    EXPECT_THAT(bda({"find", "--in", "a.syx"}).err, HasSubstr("left out: 1 unit that is not whole"));
  }
}

TEST_F(Judge, theRemaindersOfOthersMessagesAreFine) {
  const Bytes system = dump({0, 6, 0}, Bytes(5));
  for (const Bytes& stub : {Bytes{0xF0, 0x41, 0x00, 0x7F, 0x14, 0xF7}, {0xF0, 0x7D, 0x00, 0x11, 0x11, 0xF7}}) {
    write("a.syx", {system, stub});
    EXPECT_THAT(bda({"receive", "a.syx"}), Exits(0));
    EXPECT_THAT(bda({"receive", "--whole", "a.syx"}), Exits(0));
    EXPECT_THAT(bda({"diff", "a.syx", "a.syx"}), Exits(0));
  }
}

TEST_F(Judge, listAsJsonHasTheDocumentedFields) {
  write("a.syx", {blockDump(kHeader)});
  const Result run = bda({"list", "--json", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out,
            R"({"message":1,"file":"a.syx","offset":0,"kind":"dump","verdict":"good",)"
            R"("carries":"normal voice user 1, 006: header","device":1,"address":"0E 0A 05","name":"voice:user1:6",)"
            R"("dataBytes":0,"checksum":99,"expectedChecksum":99,"bytes":12})"
            "\n");
}

TEST_F(Judge, messagesAreCountedThroughAllFiles) {
  write("a.syx", {blockDump({0, 0, 0})});
  write("b.syx", {blockDump({0, 0, 0})});
  const Result run = bda({"list", "--json", "a.syx", "b.syx"});
  ASSERT_THAT(lines(run.out), SizeIs(2));
  EXPECT_THAT(lines(run.out)[1], HasSubstr(R"("message":2,"file":"b.syx","offset":0)"));
  EXPECT_THAT(lines(bda({"list", "a.syx", "b.syx"}).out), testing::Contains("b.syx:"));
}

TEST_F(Judge, verifySaysThatAWholeUnitIsComplete) {
  write("a.syx", {unit(kHeader, BDA::List::normalVoice)});
  const Result run = bda({"verify", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("voice:user1:6: complete (messages 1 to 26)"));
  EXPECT_THAT(run.err, HasSubstr("26 messages, 0 broken; 1 unit, 0 broken"));
}

TEST_F(Judge, verifyNamesMissingBlocks) {
  write("a.syx", {blockDump(kHeader), blockDump({0x0F, 0x0A, 0x05})});
  const Result run = bda({"verify", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out, HasSubstr("voice:user1:6: 24 blocks missing (messages 1 to 2)"));
  EXPECT_THAT(run.out, HasSubstr("element 3 oscillator (41 02 00)"));
}

TEST_F(Judge, verifyNamesUnitsThatAreAbandonedOrStillOpen) {
  write("a.syx", {blockDump(kHeader), blockDump({0x0E, 0x0A, 0x06})});
  const Result run = bda({"verify", "a.syx", "--json"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out, HasSubstr(R"("unit":"voice:user1:6","address":"0E 0A 05","state":"abandoned")"));
  EXPECT_THAT(run.out, HasSubstr(R"("unit":"voice:user1:7","address":"0E 0A 06","state":"open")"));
}

TEST_F(Judge, verifyTellsWhereABrokenMessageStands) {
  write("a.syx", {blockDump({0, 0, 0}), damaged(blockDump({0, 0x40, 0}))});
  const Result run = bda({"verify", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 2 at offset 80: checksum wrong: checksum 39, expected 38"));
}

TEST_F(Judge, aMessageThatIsCutShortIsToldAndBreaksTheFile) {
  write("a.syx", text(blockDump({0, 0, 0})) + text({0xF0, 0x7D, 0x00, 0x7F}));
  for (const char* verb : {"list", "verify"}) {
    const Result run = bda({verb, "a.syx"});
    EXPECT_THAT(run, Exits(3));
    EXPECT_THAT(run.err, HasSubstr("a.syx: offset 80: 4 bytes dropped, message without end"));
  }
}

TEST_F(Judge, strayBytesAreToldButBreakNothing) {
  write("a.syx", text({0x01, 0x02}) + text(blockDump({0, 0, 0})));
  const Result run = bda({"verify", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("a.syx: offset 0: 2 bytes dropped, outside of any message"));
}

TEST_F(Judge, realTimeBytesShareOneLine) {
  const Bytes message = blockDump({0, 0, 0});
  write("a.syx", "\xF8\xF8" + text({message.begin(), message.begin() + 20}) + "\xFE" +
                     text({message.begin() + 20, message.end()}) + "\xF8");
  EXPECT_EQ(bda({"list", "-q", "a.syx"}).err, "a.syx: 4 real-time bytes dropped\n");
  const Result run = bda({"list", "-v", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("a.syx: offset 22: 1 byte dropped, real-time\n"));
}

TEST_F(Judge, aFileDumpThatCannotBeStoredBreaksTheFileAndIsNotRestored) {
  write("a.syx", {dump({0x0C, 0x0A, 0x05}, {0, 0, 0, 3, 0, 1}), dump({0x11, 0x00, 0x00})});
  const std::string why = "broken file dump: its content has 3 bytes, but there is room for 2";
  EXPECT_THAT(bda({"list", "a.syx"}), Exits(3));
  for (const char* verb : {"verify", "restore"}) {
    const Result run = bda({verb, "a.syx"});
    EXPECT_THAT(run, Exits(3));
    EXPECT_THAT(run.err, HasSubstr("a.syx: message 1 at offset 0: " + why));
  }
  EXPECT_THAT(bda({"receive", "a.syx"}), Exits(3));
  EXPECT_FALSE(bda({"contents"}).out.find("user1") != std::string::npos);
}

// A file dump without data has what stands in its place removed.
TEST_F(Judge, anEraserLooksLikeOne) {
  write("a.syx",
        {fileDump({0x0C, 0x0A, 0x01}, "Kept", {1}), dump({0x0C, 0x0A, 0x00}, Bytes(4)), dump({0x11, 0x00, 0x00})});
  const Result list = bda({"list", "a.syx"});
  EXPECT_THAT(list, Exits(0));
  EXPECT_THAT(lines(list.out)[1], ContainsRegex("removes .*\\(removes voice:user1:1\\)"));
  const Result verify = bda({"verify", "a.syx"});
  EXPECT_THAT(verify, Exits(0));
  EXPECT_THAT(verify.out, HasSubstr("2 file dumps written, removes 1 "));

  const std::vector<std::string> objects = lines(bda({"verify", "--json", "a.syx"}).out);
  ASSERT_THAT(objects, SizeIs(4));
  const auto whole = nlohmann::json::parse(objects[0]);
  EXPECT_EQ(whole["verdict"], "good");
  EXPECT_FALSE(whole.contains("removes"));
  const auto eraser = nlohmann::json::parse(objects[1]);
  EXPECT_EQ(eraser["verdict"], "removes");
  EXPECT_EQ(eraser["removes"], nlohmann::json::array({"voice:user1:1"}));
  EXPECT_EQ(nlohmann::json::parse(objects[3])["removes"], nlohmann::json::array({"voice:user1:1"}));
}

TEST_F(Judge, aBrokenFileDumpIsNamedAndNoneOfTheWhole) {
  write("a.syx", {fileDump({0x0C, 0x0A, 0x01}, "Kept", {1}), dump({0x0C, 0x50, 0x05}, {0, 0, 0, 9, 0, 0x41}),
                  dump({0x11, 0x00, 0x00})});
  const Result verify = bda({"verify", "a.syx"});
  EXPECT_THAT(verify, Exits(3));
  EXPECT_THAT(verify.out, HasSubstr("1 file dump (messages 1 to 3)"));
  EXPECT_THAT(verify.out, HasSubstr("; broken: file:multi:6 of message 2"));
}

TEST_F(Judge, whatEmptiesMixingVoicesLooksLikeIt) {
  write("a.syx", {dump({0x0F, 0x31, 0x42}), dump({0x11, 0x01, 0x00})});
  const Result verify = bda({"verify", "--json", "a.syx"});
  EXPECT_THAT(verify, Exits(0));
  const std::vector<Json> told = objectsOf(verify.out);
  ASSERT_THAT(told, SizeIs(3));
  EXPECT_EQ(told[0]["verdict"], "removes");
  EXPECT_EQ(told[0]["removes"], Json::array({"voice:mix:3"}));
  EXPECT_EQ(told[1]["verdict"], "removes");
  EXPECT_EQ(told[1]["removes"], Json::array({"mix"}));
  EXPECT_EQ(told[2]["removes"], Json::array({"mix"}));
  EXPECT_EQ(told[2]["note"], "removes all mixing voices first");
  EXPECT_THAT(lines(bda({"list", "a.syx"}).out)[1],
              ContainsRegex(" removes .*write trigger that removes all mixing voices"));
  write("b.syx", {fileDump({0x0C, 0x31, 0x02}, "Mix", {5}), dump(Editor::kWriteTrigger)});
  ASSERT_THAT(bda({"receive", "b.syx"}), Exits(0));
  EXPECT_THAT(bda({"receive", "a.syx"}).out, HasSubstr("removed: voice:mix:3 ")) << "the instrument agrees";
}

TEST_F(Judge, ofFileDumpsThatReplaceEachOtherTheFirstAreNamed) {
  std::string messages;
  for (int i = 0; i < 30; ++i) messages += text(fileDump({0x0C, 0x50, 0x05}, "Again", {1}));
  write("a.syx", messages + text(dump(Editor::kWriteTrigger)));
  const std::string told = bda({"verify", "a.syx"}).out;
  EXPECT_THAT(told, HasSubstr("file:multi:6 of message 20 is replaced by that of message 21; 9 more are replaced"));
  EXPECT_THAT(told, Not(HasSubstr("of message 21 is")));
}

TEST_F(Judge, anEraserThatIsReplacedOrCannotBeStoredRemovesNothing) {
  write("a.syx",
        {dump({0x0C, 0x0A, 0x00}, Bytes(4)), fileDump({0x0C, 0x0A, 0x00}, "Kept", {1}), dump({0x11, 0x00, 0x00})});
  EXPECT_EQ(nlohmann::json::parse(lines(bda({"verify", "--json", "a.syx"}).out).back())["removes"],
            nlohmann::json::array());
  write("b.syx", {dump({0x0C, 0x00, 0x00}, Bytes(4))});
  EXPECT_EQ(nlohmann::json::parse(bda({"list", "--json", "b.syx"}).out)["verdict"], "good");
}

TEST_F(Judge, whatBecameNoMessageHasAnObjectOfItsOwnInItsPlace) {
  const std::string message = text(blockDump({0x00, 0x40, 0x00}));  // 20 bytes
  write("loose.syx", "\x01\x02" + message + "\xFE" + message);
  const Result loose = bda({"list", "--json", "loose.syx"});
  EXPECT_THAT(loose, Exits(0));
  const std::vector<std::string> objects = lines(loose.out);
  ASSERT_THAT(objects, SizeIs(4));
  EXPECT_EQ(objects[0], R"({"file":"loose.syx","offset":0,"dropped":2,"reason":"outside of any message"})");
  EXPECT_EQ(nlohmann::json::parse(objects[1])["offset"], 2);
  EXPECT_EQ(objects[2], R"({"file":"loose.syx","offset":22,"dropped":1,"reason":"real-time"})");
  EXPECT_EQ(nlohmann::json::parse(objects[3])["offset"], 23);

  write("cut.syx", message.substr(0, 5) + message + message.substr(0, 7));
  for (const char* verb : {"list", "verify"}) {
    const Result cut = bda({verb, "--json", "cut.syx"});
    EXPECT_THAT(cut, Exits(3));
    ASSERT_THAT(lines(cut.out), SizeIs(3));
    const auto first = nlohmann::json::parse(lines(cut.out)[0]);
    EXPECT_EQ(first["dropped"], 5);
    EXPECT_EQ(first["verdict"], "cut short");
    EXPECT_EQ(nlohmann::json::parse(lines(cut.out)[2])["offset"], 25);
  }
}

TEST_F(Judge, aBrokenFileHasAnObjectThatSaysSo) {
  const Bytes message = blockDump({0x00, 0x40, 0x00});
  const Bytes track{0x00, 0xF0, std::uint8_t(message.size() - 1)};
  std::string midi("MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\x7F", 22);  // the track is shorter than it says
  midi += text(track) + text({message.begin() + 1, message.end()});
  write("song.mid", midi);
  const Result run = bda({"list", "--json", "song.mid"});
  EXPECT_THAT(run, Exits(3));
  ASSERT_THAT(lines(run.out), SizeIs(3));  // it has no end-of-track event either
  const auto broken = nlohmann::json::parse(lines(run.out)[0]);
  EXPECT_EQ(broken["verdict"], "broken file");
  EXPECT_EQ(broken["dropped"], 0);
}

TEST_F(Judge, fileNamesInJsonAreTheNamesAsGiven) {
  write("a\tb\xC3\xA9.syx", {blockDump({0, 0, 0})});
  const Result run = bda({"list", "--json", "a\tb\xC3\xA9.syx"});
  EXPECT_THAT(run.out, HasSubstr(R"("file":"a\tb\u00e9.syx")"));
  EXPECT_EQ(nlohmann::json::parse(run.out)["file"], "a\tb\xC3\xA9.syx");
  EXPECT_THAT(bda({"list", "--json", "-"}, text(blockDump({0, 0, 0}))).out, HasSubstr(R"("file":"-")"));
}

TEST_F(Judge, standardInputIsAFileToo) {
  const Result run = bda({"list", "-"}, text(blockDump({0, 0, 0})));
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(lines(run.out), SizeIs(1));
}

TEST_F(Judge, filesAreRecognisedByTheirContent) {
  const Bytes message = blockDump({0x00, 0x40, 0x00});
  const Bytes track{0x00, 0xF0, std::uint8_t(message.size() - 1)};
  std::string midi("MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0", 21);
  midi += char(track.size() + message.size() - 1 + 4);
  midi += text(track) + text({message.begin() + 1, message.end()}) + std::string("\0\xFF\x2F\0", 4);
  write("song.syx", midi);  // whatever it is called
  const Result run = bda({"list", "song.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("system audio input part, 8 data bytes"));
}

TEST_F(Judge, controlCharactersOfFileNamesAreEscaped) {
  write("a\x1B[31m.syx", text({0xF0, 0x7D}));
  const Result run = bda({"list", "a\x1B[31m.syx"});
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, HasSubstr("a\\x1B[31m.syx"));
  EXPECT_THAT(run.err, Not(HasSubstr("\x1B")));
}
