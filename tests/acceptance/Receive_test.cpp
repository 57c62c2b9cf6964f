// receive: what comes in, what is said of it, and what is in the library afterwards.

#include <cstdlib>

#include "Library.h"
#include "Program.h"

using Editor::BulkAddress;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

constexpr BulkAddress kHeader{0x0E, 0x0A, 0x05};
constexpr BulkAddress kFooter{0x0F, 0x0A, 0x05};
constexpr BulkAddress kElement{0x41, 0x02, 0x00};

class Receive : public Program {};

}  // namespace

TEST_F(Receive, aWholeSystemDumpGoesInAndOutByteForByte) {
  write("in.syx", {systemDump(0)});
  EXPECT_THAT(bda({"receive", "in.syx"}), Exits(0));
  EXPECT_THAT(bda({"request", "system", "-o", "out.syx"}), Exits(0));
  EXPECT_THAT(bda({"receive", "out.syx", "--library", "other.db"}), Exits(0));
  EXPECT_THAT(bda({"request", "system", "-o", "again.syx", "--library", "other.db"}), Exits(0));
  EXPECT_EQ(read("out.syx").size(), read("in.syx").size());
  EXPECT_EQ(read("again.syx"), read("out.syx"));
}

TEST_F(Receive, aWholeVoiceIsStoredAndSaidSo) {
  write("a.syx", {unit(kHeader, BDA::List::normalVoice, 1)});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "stored: voice:user1:6 (a.syx: message 26 at offset 2040)\n");
  EXPECT_THAT(run.err, HasSubstr("1 stored, 25 accepted"));
  EXPECT_THAT(bda({"contents"}).out, HasSubstr("voice:user1:6"));
}

TEST_F(Receive, theLastLineCountsContentsAndARemovalIsNotStored) {
  write("a.syx",
        {fileDump({0x0C, 0x50, 0x04}, "One", {1}), fileDump({0x0C, 0x50, 0x05}, "Two", {2}), dump({0x11, 0x00, 0x00})});
  EXPECT_THAT(lines(bda({"receive", "a.syx"}).err), Contains("2 stored, 2 accepted"));
  write("b.syx",
        {dump({0x0C, 0x50, 0x04}, Bytes(4)), fileDump({0x0C, 0x50, 0x06}, "Three", {3}), dump({0x11, 0x00, 0x00})});
  const Result run = bda({"receive", "b.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(lines(run.err), ElementsAre("1 stored, 1 removed, 2 accepted"));
}

TEST_F(Receive, theVoiceOfAPartSetsTheEffectsOfTheMulti) {
  const Editor::MidLo part = Editor::headerOf(Editor::EditBuffer::partVoice, 2);
  write("a.syx", {unit({0x0E, part.mid, part.lo}, BDA::List::normalVoice, 1)});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(lines(run.out), AllOf(Contains(HasSubstr("stored: voice:part:3 (a.syx: message 26 at offset")),
                                    Contains(HasSubstr("stored with it: multi:edit (a.syx: message 26 at offset"))));
  EXPECT_EQ(bda({"receive", "a.syx"}).out.find("stored with it"), std::string::npos) << "nothing else changes again";
}

// The kinds of the parts' voices follow the multi that is edited.
class ReceiveMulti : public Program {
 protected:
  // A multi whose third part plays a drum voice, over one whose parts are named after their numbers.
  void SetUp() override {
    write("multi.syx", {unit({0x0E, 0x5F, 0x00}, BDA::List::multi)});
    ASSERT_THAT(bda({"receive", "multi.syx"}), Exits(0));
    for (int part = 1; part <= 16; ++part)
      ASSERT_THAT(bda({"rename", place(part), "Part " + std::to_string(part)}), Exits(0));
    Json multi = json({"show", "multi:edit", "--json"});
    multi["multi"]["part"][2]["bankProgram"] = {127, 0, 0};
    write("drums.json", multi.dump());
    ASSERT_THAT(bda({"convert", "drums.json", "--place", "multi:edit", "-o", "drums.syx"}), Exits(0));
  }
  static std::string place(int part) { return "voice:part:" + std::to_string(part); }
};

TEST_F(ReceiveMulti, eachVoiceThatChangesWithItIsTold) {
  EXPECT_THAT(lines(bda({"receive", "drums.syx", "--dry-run"}).out),
              ElementsAre(HasSubstr("would be stored: multi:edit (drums.syx: message "),
                          AllOf(HasSubstr("would be stored with it: voice:part:3 (drums.syx: message "),
                                HasSubstr("), replaces \"Part 3\""))));
  const Result run = bda({"receive", "drums.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(lines(run.out), ElementsAre(HasSubstr("stored: multi:edit (drums.syx: message "),
                                          AllOf(HasSubstr("stored with it: voice:part:3 (drums.syx: message "),
                                                HasSubstr("), replaces \"Part 3\""))));
  EXPECT_THAT(run.err, HasSubstr("1 stored, ")) << "the multi, as a content counts";
}

TEST_F(ReceiveMulti, itsObjectHasTheChangesOfTheHistory) {
  const std::vector<Json> rehearsed = objects({"receive", "drums.syx", "--dry-run", "--json"});
  const std::vector<Json> told = objects({"receive", "drums.syx", "--json", "--trace", "trace"});
  EXPECT_EQ(told.back()["contents"], Json({"multi:edit"}));
  EXPECT_THAT(told.back()["changes"], testing::UnorderedElementsAre(change("multi:edit", "stored", "", ""),
                                                                    change("voice:part:3", "stored", "Part 3", "")));
  EXPECT_EQ(rehearsed.back()["changes"], told.back()["changes"]);
  EXPECT_EQ(trace("trace").back()["changes"], told.back()["changes"]);
  EXPECT_FALSE(told.front().contains("changes")) << "the header";
  EXPECT_THAT(objects({"history", "-n", "1", "--json"}).front()["changes"],
              testing::UnorderedElementsAreArray(told.back()["changes"]));
  EXPECT_FALSE(objects({"receive", "drums.syx", "--json"}).back().contains("changes")) << "the same again";
}

TEST_F(Receive, theObjectOfATriggerSaysWhatBecameOfEachPlace) {
  const auto song = [](std::uint8_t number, const char* name, std::uint8_t value) {
    return fileDump({0x0C, 0x50, number}, name, {value});
  };
  write("a.syx", {song(4, "One", 1), song(5, "Two", 2), song(6, "Three", 3), dump({0x11, 0x00, 0x00})});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  write("b.syx", {dump({0x0C, 0x50, 0x04}, Bytes(4)), song(5, "Other", 5), song(6, "Three", 3), song(7, "Four", 4),
                  dump({0x11, 0x00, 0x00})});
  const std::vector<Json> told = objects({"receive", "b.syx", "--json"});
  EXPECT_EQ(told.back()["contents"], Json({"file:multi:6", "file:multi:7", "file:multi:8", "file:multi:5"}));
  EXPECT_EQ(told.back()["changes"],
            Json({change("file:multi:6", "stored", "Two", "Other"), change("file:multi:8", "stored", nullptr, "Four"),
                  change("file:multi:5", "removed", "One", nullptr)}));
}

TEST_F(Receive, systemBlocksAndFavouritesAreChangesToo) {
  write("a.syx", {systemDump(1), dump({0x71, 0x0A, 0x00}, Bytes(128, 1))});
  std::vector<Json> changes;
  for (const Json& told : objects({"receive", "a.syx", "--json"}))
    if (told.contains("changes")) changes.insert(changes.end(), told["changes"].begin(), told["changes"].end());
  EXPECT_THAT(changes, Contains(change("system", "stored", nullptr, "")));
  EXPECT_THAT(changes, Contains(change("system", "stored", "", "")));
  EXPECT_THAT(changes, Contains(change("voice:user1:128", "flagged", 0, 1)));
}

TEST_F(Receive, whatARefusedTriggerStoredIsCounted) {
  write("a.syx", {fileDump({0x0C, 0x50, 0x04}, "One", {1}), dump({0x0C, 0x50, 0x05}, {0, 0, 0, 9, 0, 0x41}),
                  dump({0x11, 0x00, 0x00})});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(lines(run.out), ElementsAre("stored: file:multi:5 (a.syx: message 3 at offset 40)"));
  EXPECT_EQ(lines(run.err).back(), "1 stored, 2 accepted, 1 refused");
}

TEST_F(Receive, refusedMessagesAreToldWithFileOffsetNumberAndReason) {
  ASSERT_THAT(bda({"settings"}), Exits(0));  // makes the library
  write("a.syx", {blockDump({0, 0x40, 0}), damaged(blockDump({0, 0, 0})), dump({0, 0, 0}, Bytes(3)), dump({0x7F, 0, 0}),
                  dump({0, 0x40, 0}, Bytes(8), 3), blockDump(kElement), blockDump(kFooter)});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(lines(run.out), ElementsAre("completed: system audio input part (a.syx: message 1 at offset 0)"));
  const std::vector<std::string> told = lines(run.err);
  ASSERT_THAT(told, SizeIs(8));
  EXPECT_EQ(told[0], "a.syx: message 2 at offset 20: refused: system common: checksum wrong: checksum 3D, expected 3C");
  EXPECT_EQ(told[1],
            "a.syx: message 3 at offset 100: refused: system common: wrong length for its block: 3 data bytes, this "
            "block has 68");
  EXPECT_EQ(told[2], "a.syx: message 4 at offset 115: refused: unknown address: no block at 7F 00 00");
  EXPECT_EQ(told[3],
            "a.syx: message 5 at offset 127: refused: system audio input part: it is for device 4, the device number "
            "is 1");
  EXPECT_EQ(told[4], "a.syx: message 6 at offset 147: refused: element 3 oscillator: no open header admits this block");
  EXPECT_EQ(told[5],
            "a.syx: message 7 at offset 247: refused: normal voice user 1, 006: footer: it closes no open header");
  EXPECT_EQ(told[6],
            "1 message for device 4: take it with --any-device, or listen to it from now on: bda settings "
            "device-number 4");
  EXPECT_EQ(told[7], "1 completed, 6 refused");
  EXPECT_THAT(bda({"contents"}).out, IsEmpty());
}

TEST_F(Receive, aUnitThatLacksBlocksIsStoredAndNamedIncomplete) {
  write("a.syx", {blockDump(kHeader), blockDump(kElement), blockDump(kFooter)});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out, HasSubstr("stored: voice:user1:6"));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 3 at offset 112: voice:user1:6: 23 blocks missing (messages 1 to 3)"));
  EXPECT_THAT(run.err, HasSubstr("element 4 oscillator (41 03 00)"));
  EXPECT_THAT(run.err, Not(HasSubstr("element 3 oscillator")));
}

TEST_F(Receive, anAbandonedUnitIsNamed) {
  write("a.syx", {blockDump(kHeader), unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice)});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: abandoned (messages 1 to 2), by normal voice user 1, 007: header"));
  EXPECT_THAT(run.out, HasSubstr("stored: voice:user1:7"));
}

TEST_F(Receive, whatIsStillOpenAtTheEndIsNamed) {
  write("a.syx", {dump({0x0C, 0x50, 0x04}, {0, 0, 0, 2, 0, 0x41}), blockDump(kHeader), blockDump(kElement)});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err,
              HasSubstr("a.syx: message 2 at offset 18: voice:user1:6: still open at the end, without footer"));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 1 at offset 0: 1 file dump still held at the end, without write "
                                 "trigger (from message 1): file dump "
                                 "of multi 5 (0C 50 04)"));
  EXPECT_THAT(run.out, Not(HasSubstr("stored")));
  EXPECT_THAT(bda({"contents"}).out, IsEmpty());
}

TEST_F(Receive, refusedDataThatTheInstrumentTakesAllTheSameIsToldWhenItIsStored) {
  Bytes reverb = blockDump({0x40, 0x01, 0x00});
  --reverb[6];  // the last data byte, a 0, stands where the checksum should
  const Bytes whole = unit(kHeader, BDA::List::normalVoice);
  std::string sent = text(whole);
  sent.replace(sent.find(text(blockDump({0x40, 0x01, 0x00}))), reverb.size(), text(reverb));
  Bytes file = dump({0x0C, 0x50, 0x04}, {0, 2, 0x00, 0x41, 0, 2, 0x00, 0x42, 0});
  --file[6];
  write("a.syx", sent + text(file) + text(dump({0x11, 0, 0})));
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("refused: normal voice reverb: wrong length"));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: complete (messages 1 to 26); refused, and in it all the same, is what "
                                 "message 3 carried"));
  EXPECT_THAT(run.err, HasSubstr("; refused, and in it all the same, is what message 27 carried"));
}

TEST_F(Receive, bytesBehindAContentAreTold) {
  write("a.syx", {dump({0x0C, 0x50, 0x04}, {0, 2, 0x00, 0x41, 0, 2, 0x00, 0x42, 0, 0}), dump({0x11, 0, 0})});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out, HasSubstr("stored: file:multi:5"));
  EXPECT_THAT(run.err,
              HasSubstr("a.syx: message 1 at offset 0: broken file dump: 2 bytes behind its content, which are "
                        "not used"));
}

TEST_F(Receive, aUnitMayGoOnInTheNextFile) {
  const Bytes whole = unit(kHeader, BDA::List::normalVoice);
  write("1.syx", {{whole.begin(), whole.begin() + 12}});
  write("2.syx", {{whole.begin() + 12, whole.end()}});
  EXPECT_THAT(bda({"receive", "1.syx", "2.syx"}), Exits(0));
  EXPECT_THAT(bda({"receive", "1.syx"}), Exits(3));
}

TEST_F(Receive, fileDumpsAreStoredByTheirTrigger) {
  write("a.syx", {dump({0x0C, 0x50, 0x04}, {0, 2, 0x00, 0x41, 0, 2, 0x00, 0x42}), dump({0x11, 0, 0})});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("stored: file:multi:5"));
  EXPECT_THAT(bda({"contents"}).out, HasSubstr("opaque, 1 bytes"));
  EXPECT_THAT(bda({"request", "file:multi:5", "write", "-o", "back.syx"}), Exits(0));
  EXPECT_EQ(read("back.syx"), read("a.syx"));
}

TEST_F(Receive, aFileDumpOfNothingRemovesAndIsToldSo) {
  write("a.syx", {dump({0x0C, 0x50, 0x04}, {0, 2, 0x00, 0x41, 0, 2, 0x00, 0x42}), dump({0x11, 0, 0})});
  write("b.syx", {dump({0x0C, 0x50, 0x04}, {0, 0, 0, 0}), dump({0x11, 0, 0})});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  const Result run = bda({"receive", "b.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "removed: file:multi:5 (b.syx: message 2 at offset 16), it was \"A\"\n");
  EXPECT_THAT(bda({"contents"}).out, Not(HasSubstr("multi:5")));
}

TEST_F(Receive, messagesOfOthersAndOfOtherTypesNeverChangeTheCode) {
  Bytes foreign = request({0, 0, 0});
  foreign[1] = 0x41;
  Bytes type = request({0, 0, 0});
  type[2] = 0x10;
  write("a.syx", {foreign, type, {0xF0, 0x7D, 0x35, 0x7F, 0x14, 0x70, 0x00, 0x06, 0xF7}});
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(lines(run.out), ElementsAre(HasSubstr("not-ours: another instrument's message"), HasSubstr("ignored: "),
                                          HasSubstr("ignored: ")));
}

TEST_F(Receive, cutMessagesAreToldAndExitWith3) {
  write("a.syx", text(blockDump({0, 0x40, 0})) + text({0xF0, 0x7D, 0x00}));
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("a.syx: offset 20: 3 bytes dropped, message without end"));
  EXPECT_THAT(run.out, HasSubstr("completed: system audio input part"));
}

TEST_F(Receive, theWayOutForOtherDevicesIsOneThatTheVerbHas) {
  const std::string six = text(dump({0, 6, 0}, Bytes(5), 5));
  write("a.syx", six);
  EXPECT_THAT(bda({"receive", "a.syx"}).err,
              HasSubstr("1 message for device 6: take it with --any-device, or listen to it from now on: "
                        "bda settings device-number 6\n"));
  EXPECT_THAT(bda({"instrument", "--on", "-"}, six).err,
              HasSubstr("1 message for device 6: listen to it from now on: bda settings device-number 6\n"));
}

TEST_F(Receive, settingsRefuse) {
  write("a.syx", {blockDump({0, 0, 0})});
  EXPECT_THAT(bda({"settings", "receive-bulk", "off"}), Exits(0));
  EXPECT_THAT(bda({"receive", "a.syx"}), Exits(3));
  EXPECT_THAT(bda({"receive", "a.syx"}).err, HasSubstr("receive-bulk is off"));
  EXPECT_THAT(bda({"settings", "receive-bulk", "on"}), Exits(0));
  EXPECT_THAT(bda({"settings", "device-number", "off"}), Exits(0));
  EXPECT_THAT(bda({"receive", "a.syx"}).err, HasSubstr("the device number is off"));
  EXPECT_THAT(bda({"settings", "device-number", "all"}), Exits(0));
  EXPECT_THAT(bda({"receive", "a.syx"}), Exits(0));
}

TEST_F(Receive, answersGoToTheirFile) {
  write("a.syx", {request({0, 0x40, 0}), request({0, 0x06, 0})});
  const Result run = bda({"receive", "a.syx", "-o", "answers.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(lines(run.out), SizeIs(2));
  EXPECT_EQ(read("answers.syx"), text(blockDump({0, 0x40, 0})) + text(blockDump({0, 0x06, 0})));
}

TEST_F(Receive, answersOnStandardOutputHaveItForThemselves) {
  write("a.syx", {request({0, 0x40, 0})});
  const Result run = bda({"receive", "a.syx", "-o", "-"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, text(blockDump({0, 0x40, 0})));
  EXPECT_THAT(run.err, HasSubstr("answered: request of system audio input part, 1 message"));
}

TEST_F(Receive, withoutAnswersTheirFileStaysAsItIs) {
  write("a.syx", {blockDump({0, 0, 0})});
  write("answers.syx", "kept");
  EXPECT_THAT(bda({"receive", "a.syx", "-o", "answers.syx"}), Exits(0));
  EXPECT_EQ(read("answers.syx"), "kept");
  EXPECT_THAT(files(), ElementsAre("a.syx", "answers.syx"));
}

TEST_F(Receive, anOutputThatCannotBeCreatedKeepsEverythingAsItIs) {
  write("a.syx", {blockDump({0, 0, 0}, 1)});
  const Result run = bda({"receive", "a.syx", "-o", "none/answers.syx"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("none/answers.syx: cannot create it: No such file or directory"));
  EXPECT_THAT(bda({"show", "system"}).out, HasSubstr("system.sequencer: 0 0 0 0 0 0 0"));
}

TEST_F(Receive, theTraceHasOneObjectForEachMessage) {
  const Bytes foreign{0xF0, 0x7E, 0x00, 0xF7};
  write("a.syx", {blockDump({0, 0x40, 0}), foreign});
  write("b.syx", {blockDump(kHeader), blockDump(kFooter), damaged(blockDump({0, 0, 0}))});
  EXPECT_THAT(bda({"receive", "a.syx", "b.syx", "--port", "6", "--trace", "t.jsonl"}), Exits(3));
  const auto objects = trace("t.jsonl");
  ASSERT_THAT(objects, SizeIs(5));
  EXPECT_EQ(objects[0].dump(),
            R"({"message":1,"file":"a.syx","offset":0,"port":6,)"
            R"("in":"F0 7D 00 7F 14 00 08 00 40 00 00 00 00 00 00 00 00 00 38 F7",)"
            R"("result":{"value":0,"name":"BulkMsg_BulkDump"},"outcome":"completed","shown":[11,12],"log":[],)"
            R"("sent":[{"port":4,"bytes":"F0 7D 00 7F 14 00 08 00 40 00 00 00 00 00 00 00 00 00 38 F7"}]})");
  EXPECT_EQ(objects[1].dump(),
            R"({"message":2,"file":"a.syx","offset":20,"port":6,"in":"F0 7E 00 F7",)"
            R"("result":{"value":5,"name":"BulkMsg_OtherModel"},"outcome":"not-ours","shown":[],"log":[],"sent":[]})");
  EXPECT_EQ(objects[2]["message"], 3);
  EXPECT_EQ(objects[2]["file"], "b.syx");
  EXPECT_EQ(objects[2]["offset"], 0);
  EXPECT_EQ(objects[3]["outcome"], "stored");
  EXPECT_EQ(objects[3]["contents"].dump(), R"(["voice:user1:6"])");
  EXPECT_EQ(objects[3]["missing"].size(), 24u);
  EXPECT_EQ(objects[3]["missing"][0], "40 00 00");
  EXPECT_EQ(objects[4]["outcome"], "refused");
  EXPECT_EQ(objects[4]["log"].dump(),
            R"(["..\\..\\bda\\BulkDumpAssistant.cpp:267 [BDA::BulkDumpAssistant::checkBulkDumpMessage] ",)"
            R"("Check Sum Error!: Address=[00,00,00], Received Check Sum=[ 0x3c ], Correct Check Sum=[ 0x3d ]\n"])");
}

TEST_F(Receive, theTraceAndTheAnswersCanBeOneRun) {
  write("a.syx", {request({0, 0x40, 0})});
  EXPECT_THAT(bda({"receive", "a.syx", "-o", "answers.syx", "--trace", "-"}), Exits(0));
  const Result run = bda({"receive", "a.syx", "-o", "answers.syx", "--trace", "-"});
  ASSERT_THAT(lines(run.out), SizeIs(1));
  EXPECT_THAT(run.out, HasSubstr(R"("outcome":"answered")"));
}

TEST_F(Receive, aTraceThatCannotBeWrittenEndsTheRunButKeepsTheAnswers) {
  write("a.syx", {request({0, 0x40, 0})});
  const Result run = bda({"receive", "a.syx", "-o", "b.syx", "--trace", "/dev/full"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("/dev/full: cannot write it: No space left on device"));
  EXPECT_EQ(read("b.syx"), text(blockDump({0, 0x40, 0})));
  EXPECT_THAT(bda({"request", "004000", "-o", "c.syx", "--trace", "/dev/full"}), Exits(1));
  EXPECT_EQ(read("c.syx"), read("b.syx"));

  std::string many;
  for (int i = 0; i < 1000; ++i) many += text(request({0, 0x40, 0}));
  write("many.syx", many);
  EXPECT_THAT(bda({"receive", "many.syx", "--trace", "/dev/full"}).err,
              HasSubstr("No space left on device; nothing after it is handled"));
}

TEST_F(Receive, quietSaysOnlyWhatWentWrong) {
  write("a.syx", {blockDump({0, 0x40, 0}), damaged(blockDump({0, 0, 0}))});
  const Result run = bda({"-q", "receive", "a.syx"});
  EXPECT_THAT(lines(run.err), ElementsAre(HasSubstr("message 2 at offset 20: refused")));
}

TEST_F(Receive, verboseShowsTheLogAndWhatItMeans) {
  Bytes wrongCount = blockDump({0, 0, 0});
  ++wrongCount[6];
  write("a.syx", {damaged(blockDump({0, 0, 0})), wrongCount});
  const std::vector<std::string> told = lines(bda({"-v", "receive", "a.syx"}).err);
  EXPECT_THAT(told, Contains("a.syx: message 1 at offset 0: refused: system common: checksum wrong: checksum 3D, "
                             "expected 3C"));
  EXPECT_THAT(told,
              Contains("    log: Check Sum Error!: Address=[00,00,00], Received Check Sum=[ 0x3c ], Correct Check "
                       "Sum=[ 0x3d ] (\"received\" is what was computed, \"correct\" is what the message has)"));
  EXPECT_THAT(told, Contains("a.syx: message 2 at offset 80: refused: system common: wrong length: 68 data bytes, its "
                             "byte count says 69"));
  EXPECT_THAT(told, Contains(AllOf(HasSubstr("log: Check Sum Error!"), HasSubstr("nothing was computed"))));
}

TEST_F(Receive, aLockedLibraryIsToldAndNothingIsChanged) {
  write("a.syx", {blockDump({0, 0, 0}, 1)});
  EXPECT_THAT(bda({"settings"}), Exits(0));
  Editor::Library library(directory / "library.db");
  const Editor::Library::Transaction transaction(library);
  const Result run = bda({"receive", "a.syx"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 1 at offset 0: not handled, nor is anything after it: "));
  EXPECT_THAT(run.err, HasSubstr("locked by another program"));
  EXPECT_THAT(run.out, IsEmpty());
}

// ---- As JSON ----

TEST_F(Receive, asJsonItSaysTheLinesOfTheTrace) {
  write("a.syx", {unit(kHeader, BDA::List::normalVoice, 1), damaged(blockDump({0, 0, 0})), request({0, 0x40, 0}),
                  dump({0, 0x40, 0}, Bytes(8), 3)});
  const Result run = bda({"receive", "--json", "a.syx", "--trace", "trace", "-o", "answers.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(run.out, read("trace"));
  ASSERT_THAT(objectsOf(run.out), SizeIs(29));
  EXPECT_EQ(objectsOf(run.out)[25]["outcome"], "stored");
  EXPECT_EQ(objectsOf(run.out)[25]["contents"].dump(), R"(["voice:user1:6"])");
  EXPECT_THAT(run.err, HasSubstr("checksum wrong"));
  EXPECT_EQ(lines(run.err).back(), "1 stored, 1 answered, 25 accepted, 2 refused");
  EXPECT_EQ(bda({"receive", "--json", "-q", "a.syx", "--library", "quiet.db"}).out, run.out);
  EXPECT_EQ(bda({"receive", "--json", "-v", "a.syx", "--library", "loud.db"}).out, run.out);
}

TEST_F(Receive, asJsonADryRunSaysWhatWouldBecomeOfEach) {
  write("a.syx", {unit(kHeader, BDA::List::normalVoice, 1)});
  const std::string before = read("library.db");
  const Result run = bda({"receive", "--json", "--dry-run", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_TRUE(read("library.db") == before);
  EXPECT_EQ(bda({"receive", "--json", "a.syx"}).out, run.out);
}

TEST_F(Receive, asJsonWhatIsHandedToNobodyHasNoObject) {
  const std::string whole = text(unit(kHeader, BDA::List::normalVoice, 1));
  write("a.syx", whole.substr(0, whole.size() - blockDump(kFooter).size()) + text(blockDump({0, 0x40, 0})));
  const Result run = bda({"receive", "--json", "--whole", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  ASSERT_THAT(objectsOf(run.out), SizeIs(1));
  EXPECT_EQ(objectsOf(run.out)[0]["message"], 26);
  EXPECT_EQ(objectsOf(run.out)[0]["outcome"], "completed");
}

TEST_F(Receive, asJsonItLeavesStandardOutputToAnswersAndTrace) {
  write("a.syx", {request({0, 0x40, 0})});
  const Result run = bda({"receive", "--json", "a.syx", "-o", "-"});
  EXPECT_EQ(run.out, text(blockDump({0, 0x40, 0})));
  EXPECT_EQ(Json::parse(lines(run.err)[0])["outcome"], "answered");
  const Result traced = bda({"receive", "--json", "a.syx", "--trace", "-"});
  EXPECT_EQ(lines(traced.out)[0], lines(traced.err)[0]);
}

// Who reads the objects waits for each.
TEST_F(Receive, asJsonEachObjectIsFlushed) {
  write("a.syx", {blockDump({0, 0x40, 0}), blockDump({0, 0, 0})});
  const std::string command = "cd " + directory.string() +
                              " && mkfifo in out && { BDA_LIBRARY=library.db " BDA_PROGRAM
                              " receive -q --json in >out & } && exec 4<>out 3>in && head -c " +
                              std::to_string(blockDump({0, 0x40, 0}).size()) +
                              " a.syx >&3 && read -r line <&4 && echo \"$line\" >first && exec 3>&- && wait";
  ASSERT_EQ(std::system(("timeout 30 bash -c '" + command + "'").c_str()), 0);
  EXPECT_EQ(Json::parse(read("first"))["outcome"], "completed");
}
