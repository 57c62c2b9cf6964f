// salvage: what is whole in broken captures, and requests for the rest.

#include <utility>

#include "Library.h"
#include "Program.h"

using Editor::BulkAddress;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

namespace {

constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};
constexpr BulkAddress kElement{0x41, 0x02, 0x00};

class Salvage : public Program {
 protected:
  static Bytes voice(std::uint8_t value = 1) { return unit(kVoice, BDA::List::normalVoice, value); }
  static std::string without(const Bytes& whole, const Bytes& message) {
    std::string bytes = text(whole);
    return bytes.erase(bytes.find(text(message)), message.size());
  }
};

}  // namespace

TEST_F(Salvage, aBackupComesBackByteForByte) {
  write("in.syx", {voice(), unit({0x0E, 0x70, 0x02}, BDA::List::master, 3), unit({0x0E, 0x5F, 0x00}, BDA::List::multi),
                   fileDump({0x0C, 0x50, 0x07}, "Opaque", {1, 2, 3}), dump(Editor::kWriteTrigger), systemDump(1)});
  ASSERT_THAT(bda({"receive", "in.syx"}), Exits(0));
  ASSERT_THAT(bda({"backup", "-o", "backup.syx"}), Exits(0));
  const Result run = bda({"salvage", "backup.syx", "-o", "good.syx", "--requests", "r.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(read("good.syx"), read("backup.syx"));
  EXPECT_FALSE(exists("r.syx"));
  EXPECT_THAT(run.out, HasSubstr("whole: file:multi:8 (backup.syx)"));
}

TEST_F(Salvage, twoCapturesCompleteEachOther) {
  write("a.syx", without(voice(), blockDump(kElement, 1)));
  std::string damaged = text(voice());
  damaged[text(voice()).size() - 40] ^= 1;  // in the last block
  write("b.syx", damaged);
  const Result run = bda({"salvage", "a.syx", "b.syx", "-o", "good.syx", "--requests", "r.syx", "--json"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"completed","from":["a.syx","b.syx"],)"
                     R"("missing":[],"contradicts":[]})"
                     "\n");
  EXPECT_EQ(read("good.syx"), text(voice()));
  EXPECT_FALSE(exists("r.syx"));
  EXPECT_THAT(run.err, HasSubstr("checksum wrong"));
  EXPECT_THAT(bda({"verify", "good.syx"}), Exits(0));
}

TEST_F(Salvage, whatIsLostIsListedAndItsRequestsAreAnsweredByTheInstrument) {
  const std::string system = text(systemDump(1));
  write("whole.syx", {voice(), systemDump(1)});
  write("a.syx", without(voice(), blockDump(kElement, 1)) + system.substr(0, system.size() - 20));
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx", "--requests", "r.syx", "--json"});
  EXPECT_THAT(run, Exits(3));
  std::vector<Json> lost;
  for (const Json& unit : objectsOf(run.out))
    if (unit["state"] == "lost") lost.push_back(unit);
  ASSERT_THAT(lost, SizeIs(2));
  EXPECT_EQ(lost[0]["unit"], "voice:user1:6");
  EXPECT_EQ(lost[0]["missing"].dump(), R"(["41 02 00"])");
  ASSERT_THAT(bda({"receive", "whole.syx"}), Exits(0));
  EXPECT_THAT(bda({"receive", "r.syx", "-o", "rest.syx"}), Exits(0));
  EXPECT_THAT(bda({"salvage", "a.syx", "rest.syx", "-o", "all.syx"}), Exits(0));
  EXPECT_EQ(lines(bda({"list", "r.syx"}).out).size(), 2U);
}

TEST_F(Salvage, remainsOfTwoSoundsNeverBecomeOne) {
  const std::string one = text(voice(1));
  const std::string two = text(voice(2));
  write("a.syx", one.substr(0, 1000));
  write("b.syx", two.substr(900));
  const Result run = bda({"salvage", "a.syx", "b.syx", "-o", "good.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_FALSE(exists("good.syx"));
  EXPECT_THAT(run.err, HasSubstr("nothing is whole: good.syx is not written"));
}

// The end of the one and the beginning of the other are swallowed, and what is left of a message stands between them:
// every block is there.
TEST_F(Salvage, whatStandsBehindDamageIsOfAnotherCapture) {
  const std::string one = text(voice(1));
  const std::string two = text(voice(2));
  const std::size_t first = one.find(text(blockDump(kElement, 1)));
  const std::size_t second = two.find(text(blockDump(kElement, 2)));
  Bytes foreign = blockDump(kElement);
  foreign[1] = 0x41;
  for (const std::string& between : {two.substr(second - 7, 7), one.substr(first, 30), one.substr(first, 5),
                                     text(damaged(blockDump(kElement, 2))), text(foreign)}) {
    write("a.syx", one.substr(0, first) + between + two.substr(second));
    const Result run = bda({"salvage", "a.syx", "-o", "good.syx"});
    EXPECT_THAT(run, Exits(3));
    EXPECT_THAT(run.out, HasSubstr("lost: voice:user1:6"));
    EXPECT_FALSE(exists("good.syx"));
  }
  Bytes forAnotherDevice = voice(1);
  for (std::size_t i = first; i + 2 < forAnotherDevice.size(); ++i)
    if (forAnotherDevice[i] == 0xF0) forAnotherDevice[i + 2] = 3;
  write("a.syx", {forAnotherDevice});
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "good.syx"}), Exits(3));
  const std::string clock = "\xF8";
  write("a.syx", one.substr(0, first) + clock + one.substr(first, 20) + clock + one.substr(first + 20));
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "good.syx"}), Exits(0));
  EXPECT_EQ(read("good.syx"), one);
}

TEST_F(Salvage, whatNoRequestCanFetchIsSaid) {
  const std::string whole = text(voice());
  const std::string blocks = whole.substr(blockDump(kVoice).size(), 200);
  write("a.syx", text(blockDump({0x00, 0x40, 0x00})) + blocks + text(damaged(dump({0x7F, 0x00, 0x00}))));
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx", "--requests", "r.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("lost, and no request can fetch it: blocks of no known unit, normal voice common"));
  EXPECT_THAT(run.err, HasSubstr("no requests are written"));
  EXPECT_THAT(run.err, Not(HasSubstr("nothing has to be requested")));
  EXPECT_FALSE(exists("r.syx"));
  write("b.syx", text(damaged(dump({0x7F, 0x00, 0x00}))) + text(damaged(blockDump({0x00, 0x40, 0x00}))));
  const Result other = bda({"salvage", "b.syx", "-o", "good.syx", "--requests", "r.syx"});
  EXPECT_THAT(other, Exits(3));
  EXPECT_THAT(other.err, HasSubstr("lost, and no request can fetch it: what was in 1 broken message"));
  EXPECT_EQ(read("r.syx"), text(request({0x00, 0x40, 0x00})));
}

TEST_F(Salvage, mergingIsAskedForAndSaid) {
  const std::string whole = text(voice());
  const std::size_t middle = whole.find(text(blockDump(kElement, 1)));
  write("a.syx", whole.substr(0, middle));
  write("b.syx", whole.substr(middle));
  EXPECT_THAT(bda({"salvage", "a.syx", "b.syx", "-o", "good.syx"}), Exits(3));
  const Result run = bda({"salvage", "a.syx", "b.syx", "-o", "good.syx", "--merge"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: merged, and nothing says that it is one sound"));
  EXPECT_EQ(read("good.syx"), whole);
}

TEST_F(Salvage, ofTwoWholeOnesThatDifferNoneIsKeptUnlessOneIsPreferred) {
  write("a.syx", {voice(1), blockDump({0x00, 0x40, 0x00})});
  std::string other = text(voice(1));
  other.replace(other.find(text(blockDump(kElement, 1))), blockDump(kElement).size(), text(blockDump(kElement, 2)));
  write("b.syx", other);
  const Result run = bda({"salvage", "a.syx", "b.syx", "-o", "good.syx", "--json"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(lines(run.out)[0],
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"lost","from":["a.syx","b.syx"],)"
            R"("missing":[],"contradicts":["41 02 00"]})");
  EXPECT_EQ(read("good.syx"), text(blockDump({0x00, 0x40, 0x00})));
  EXPECT_THAT(bda({"salvage", "a.syx", "b.syx", "-o", "good.syx", "--prefer", "b.syx"}), Exits(0));
  EXPECT_EQ(read("good.syx"), other + text(blockDump({0x00, 0x40, 0x00})));
  EXPECT_THAT(bda({"salvage", "a.syx", "b.syx", "-o", "good.syx", "--prefer", "c.syx"}), Exits(1));
}

TEST_F(Salvage, inOneFileTheLaterOneCountsAndThatIsSaid) {
  write("a.syx", {voice(1), voice(2)});
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: more than once in a.syx: the last one counts"));
  EXPECT_EQ(read("good.syx"), text(voice(2)));
}

TEST_F(Salvage, checksumsAreCorrectedWhenAskedAndNamed) {
  write("a.syx", {damaged(blockDump({0x00, 0x40, 0x00}))});
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "good.syx"}), Exits(3));
  EXPECT_FALSE(exists("good.syx"));
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx", "--fix-checksums"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 1 at offset 0: system audio input part: checksum 39 corrected to 38"));
  EXPECT_EQ(read("good.syx"), text(blockDump({0x00, 0x40, 0x00})));
}

TEST_F(Salvage, aTriggerThatIsMissingIsAdded) {
  write("a.syx", {fileDump({0x0C, 0x50, 0x07}, "One", {1})});
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("no file has the write trigger behind its file dumps: one is added"));
  EXPECT_EQ(read("good.syx"), read("a.syx") + text(dump(Editor::kWriteTrigger)));
}

TEST_F(Salvage, aMessageCutShortIsLostByItsName) {
  const std::string block = text(blockDump({0x00, 0x40, 0x00}));
  write("a.syx", text(blockDump({0x00, 0x00, 0x00})) + block.substr(0, 12));
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx", "--requests", "r.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out, HasSubstr("lost: system:audio-input: it is broken (a.syx)"));
  EXPECT_EQ(read("r.syx"), text(request({0x00, 0x40, 0x00})));
}

// What the rest of them held nothing says.
TEST_F(Salvage, filesThatCannotBeReadInFullEndItWith3) {
  const Bytes first = blockDump({0x00, 0x00, 0x00});
  write("a.syx", {first, blockDump({0x00, 0x40, 0x00})});
  ASSERT_THAT(bda({"convert", "a.syx", "-o", "a.mid"}), Exits(0));
  ASSERT_THAT(bda({"convert", "a.syx", "-o", "a.txt"}), Exits(0));
  const std::string midi = read("a.mid");
  const std::string hex = read("a.txt");
  const std::string riff = std::string("RIFF\0\4\0\0RMIDdata\0\4\0\0", 20) + midi;
  const auto salvaged = [&] { return bda({"salvage", "a.mid", "a.txt", "-o", "good.syx"}); };
  EXPECT_THAT(salvaged(), Exits(0));
  EXPECT_THAT(salvaged().err, Not(HasSubstr("in full")));
  for (const std::string& broken : {midi.substr(0, midi.size() - 20), riff, midi + "MTrk"}) {
    write("a.mid", broken);
    const Result run = salvaged();
    EXPECT_THAT(run, Exits(3));
    EXPECT_THAT(run.err, HasSubstr("2 whole, 0 completed, 0 lost; 2 messages kept; 1 file not read in full\n"));
    EXPECT_EQ(read("good.syx"), read("a.syx"));
  }
  write("a.txt", hex + "FO 7D\n" + hex);
  EXPECT_THAT(salvaged(), Exits(3));
  EXPECT_THAT(salvaged().err, HasSubstr("; 2 files not read in full\n"));
  const Result json = bda({"salvage", "a.txt", "-o", "good.syx", "--json", "--requests", "r.syx"});
  EXPECT_THAT(json, Exits(3));
  EXPECT_THAT(json.err, HasSubstr("lost, and no request can fetch it: what was not read of 1 file\n"));
  EXPECT_THAT(json.err, HasSubstr("; 1 file not read in full\n"));
}

TEST_F(Salvage, outputsAreNoInputsAndNeverTheSame) {
  write("a.syx", {voice()});
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "a.syx"}), Exits(1));
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "b.syx", "--requests", "a.syx"}), Exits(1));
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "b.syx", "--requests", "b.syx"}), Exits(1));
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "-", "--requests", "-"}), Exits(1));
  EXPECT_THAT(bda({"salvage", "a.syx"}), Exits(1));
  EXPECT_THAT(files(), ElementsAre("a.syx"));
}

TEST_F(Salvage, needsNoLibraryAndMakesNone) {
  removeLibrary();
  write("a.syx", {voice()});
  EXPECT_EQ(bda({"salvage", "a.syx", "-o", "-"}).out, text(voice()));
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(Salvage, ofOtherMakersMessagesNothingIsWhole) {
  Bytes foreign = request({0, 0, 0});
  foreign[1] = 0x41;
  write("a.syx", {foreign});
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "good.syx"}), Exits(3));
  write("b.syx", "no messages");
  EXPECT_THAT(bda({"salvage", "b.syx", "-o", "good.syx"}), Exits(2));
  EXPECT_FALSE(exists("good.syx"));
}

TEST_F(Salvage, fileDumpsOfSeveralDevicesAreStoredByTheTriggerOfEach) {
  Bytes forDevice5 = fileDump({0x0C, 0x50, 0x06}, "Five", {1});
  forDevice5[2] = 4;
  write("a.syx", {fileDump({0x0C, 0x50, 0x05}, "One", {1}), dump(Editor::kWriteTrigger)});
  write("c.syx", {forDevice5});
  const Result run = bda({"salvage", "c.syx", "a.syx", "-o", "good.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("device 5: no file has the write trigger behind its file dumps: one is added"));
  EXPECT_THAT(run.err, Not(HasSubstr("device 1:")));
  EXPECT_EQ(read("good.syx"), read("a.syx") + read("c.syx") + text(dump(Editor::kWriteTrigger, {}, 4)));
  EXPECT_THAT(bda({"receive", "good.syx"}).out, HasSubstr("file:multi:6"));
}

TEST_F(Salvage, aTriggerThatWouldRemoveMixingVoicesIsSaidToBeLeftOut) {
  write("a.syx", {fileDump({0x0C, 0x50, 0x07}, "One", {1}), dump({0x11, 0x01, 0x00})});
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("1 message left out: it would have all mixing voices removed"));
  EXPECT_THAT(run.err, HasSubstr("device 1: no file has a write trigger behind its file dumps that removes nothing"));
  EXPECT_THAT(run.err, Not(HasSubstr("no file has the write trigger")));
}

TEST_F(Salvage, aTriggerThatIsCorrectedIsNamedToo) {
  write("a.syx", {fileDump({0x0C, 0x50, 0x07}, "One", {1}), damaged(dump(Editor::kWriteTrigger))});
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx", "--fix-checksums"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 2 at offset"));
  EXPECT_THAT(run.err, HasSubstr("corrected to"));
  EXPECT_EQ(read("good.syx").size(), read("a.syx").size());
}

// An instrument answers with the file dump alone: the trigger comes from here.
TEST_F(Salvage, theAnswerOfALostFileDumpIsCompletedByAnotherRunAndThatIsSaid) {
  const Bytes multi = fileDump({0x0C, 0x50, 0x07}, "One", {1});
  write("a.syx", {voice(), damaged(multi)});
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx", "--requests", "r.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("1 request in r.syx"));
  EXPECT_THAT(run.err, HasSubstr("bda salvage good.syx ANSWERS -o FILE adds it"));
  write("whole.syx", {multi, dump(Editor::kWriteTrigger)});
  ASSERT_THAT(bda({"receive", "whole.syx"}), Exits(0));
  ASSERT_THAT(bda({"receive", "r.syx", "-o", "answers.syx"}), Exits(0));
  EXPECT_THAT(bda({"salvage", "good.syx", "answers.syx", "-o", "all.syx"}), Exits(0));
  EXPECT_EQ(read("all.syx"), read("whole.syx") + text(voice()));
}

TEST_F(Salvage, saysWhichOutputsAreWritten) {
  write("a.syx", {damaged(blockDump({0x00, 0x40, 0x00}))});
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx", "--requests", "r.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("nothing is whole: good.syx is not written; 1 request in r.syx"));
  EXPECT_THAT(files(), ElementsAre("a.syx", "r.syx"));
}

TEST_F(Salvage, whatStandsInAUnitIsSaidAndWhetherMergingWouldHelp) {
  const std::string whole = text(voice());
  const std::size_t header = blockDump(kVoice).size();
  write("a.syx", whole.substr(0, header) + "abc" + whole.substr(header));
  const Result run = bda({"salvage", "a.syx", "-o", "good.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out,
              HasSubstr("lost: voice:user1:6: nothing says that its remains are of one sound, the fullest lack "
                        "1 block: normal voice user 1, 006: header (0E 0A 05); --merge completes it (a.syx)"));
  EXPECT_THAT(bda({"salvage", "a.syx", "-o", "good.syx", "--merge"}), Exits(0));
  EXPECT_EQ(read("good.syx"), whole);
}

TEST_F(Salvage, whatThePreferredFileHasOtherwiseAndIsNotTakenIsSaid) {
  write("old.syx", {voice(1)});
  write("new.syx", text(voice(2)).substr(0, 200));
  const Result run = bda({"salvage", "old.syx", "new.syx", "-o", "good.syx", "--prefer", "new.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: new.syx has it otherwise, but not whole, and that is not taken: "
                                 "normal voice common (40 00 00)"));
  EXPECT_EQ(read("good.syx"), text(voice(1)));
}

TEST_F(Salvage, remainsThatDifferFromWhatIsWholeAreSaid) {
  constexpr BulkAddress kCommon{0x40, 0x00, 0x00};
  const std::string remain = text(blockDump(kVoice)) + text(blockDump(kCommon, 2));
  write("whole.syx", {voice(1)});
  write("remain.syx", remain);
  write("both.syx", remain + text(voice(1)));
  using Words = std::vector<std::string>;
  for (const auto& [files, from] :
       {std::pair(Words{"remain.syx", "whole.syx"}, "whole.syx"), std::pair(Words{"both.syx"}, "both.syx")}) {
    Words words{"salvage", "-o", "good.syx"};
    words.insert(words.end(), files.begin(), files.end());
    const Result run = bda(words);
    const std::string said = files[0] + " has it otherwise, but not whole";
    EXPECT_THAT(run, Exits(0));
    EXPECT_EQ(run.out, "whole: voice:user1:6, " + said + " (" + from + ")\n");
    EXPECT_THAT(run.err,
                HasSubstr("voice:user1:6: " + said + ", and that is not taken: normal voice common (40 00 00)"));
    EXPECT_EQ(read("good.syx"), text(voice(1)));
    words.emplace_back("--json");
    EXPECT_EQ(objectsOf(bda(words).out).at(0)["contradicts"].dump(), R"(["40 00 00"])");
  }
}

TEST_F(Salvage, anotherWholeOneThatIsLeftOutForThePreferredOneIsSaid) {
  std::string other = text(voice(1));
  other.replace(other.find(text(blockDump(kElement, 1))), blockDump(kElement).size(), text(blockDump(kElement, 2)));
  write("a.syx", {voice(1)});
  for (const char* const name : {"b.syx", "c.syx"}) write(name, other);
  const Result run = bda({"salvage", "a.syx", "b.syx", "c.syx", "-o", "good.syx", "--prefer", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "whole: voice:user1:6, b.syx, c.syx have it otherwise, whole too (a.syx)\n");
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: b.syx, c.syx have it otherwise, whole too, and that is not taken: "
                                 "element 3 oscillator (41 02 00)\n"));
  const Result json = bda({"salvage", "a.syx", "b.syx", "-o", "good.syx", "--prefer", "a.syx", "--json"});
  EXPECT_EQ(objectsOf(json.out).at(0)["contradicts"].dump(), R"(["41 02 00"])");
  EXPECT_EQ(read("good.syx"), text(voice(1)));
}

TEST_F(Salvage, ofAFileDumpAndAUnitOfOnePlaceThePreferredOneIsKept) {
  const std::string stored = text(fileDump({0x0C, 0x0A, 0x05}, "One", {1})) + text(dump(Editor::kWriteTrigger));
  write("dump.syx", stored);
  write("unit.syx", {voice()});
  const auto salvaged = [&](const std::vector<std::string>& more) {
    std::vector<std::string> words{"salvage", "dump.syx", "unit.syx", "-o", "good.syx"};
    words.insert(words.end(), more.begin(), more.end());
    return bda(words);
  };
  EXPECT_THAT(salvaged({}).err, HasSubstr("voice:user1:6: kept as a file dump and as a unit, which is stored last"));
  EXPECT_EQ(read("good.syx"), stored + text(voice()));

  const Result ofDump = salvaged({"--prefer", "dump.syx"});
  EXPECT_THAT(ofDump, Exits(0));
  EXPECT_EQ(ofDump.out, "whole: file:voice:user1:6, unit.syx has it block by block (dump.syx)\n");
  EXPECT_THAT(ofDump.err, HasSubstr("file:voice:user1:6: unit.syx has it block by block, and that is not taken: "
                                    "normal voice user 1, 006: header (0E 0A 05)\n"));
  EXPECT_THAT(ofDump.err, Not(HasSubstr("kept as a file dump and as a unit")));
  EXPECT_EQ(read("good.syx"), stored);
  const std::vector<Json> units = objectsOf(salvaged({"--prefer", "dump.syx", "--json"}).out);
  ASSERT_THAT(units, SizeIs(1));
  EXPECT_EQ(units[0]["contradicts"].dump(), R"(["0E 0A 05"])");

  const Result ofUnit = salvaged({"--prefer", "unit.syx"});
  EXPECT_THAT(ofUnit, Exits(0));
  EXPECT_EQ(ofUnit.out, "whole: voice:user1:6, dump.syx has it as a file dump (unit.syx)\n");
  EXPECT_EQ(read("good.syx"), text(voice()));
}

TEST_F(Salvage, voicesOfTwoKindsDifferInTheirHeader) {
  constexpr BulkAddress kPart{0x0E, 0x30, 0x01};
  write("a.syx", {unit(kPart, BDA::List::normalVoice)});
  write("b.syx", {unit(kPart, BDA::List::drumVoice)});
  const Result run = bda({"salvage", "a.syx", "b.syx", "-o", "good.syx", "--json"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(objectsOf(run.out).at(0)["contradicts"].dump(), R"(["0E 30 01"])");
  EXPECT_THAT(bda({"salvage", "a.syx", "b.syx", "-o", "good.syx"}).out, HasSubstr("captures differ in kind"));
}

TEST_F(Salvage, takesTheMessageFilesOfFolders) {
  std::filesystem::create_directories(directory / "captures" / "more");
  write("captures/a.syx", without(voice(), blockDump(kElement, 1)));
  write("captures/more/b.syx", without(voice(), blockDump(kVoice)));
  write("captures/notes.txt", "a rainy day");
  std::filesystem::copy_file(libraryFile(), directory / "captures" / "own.db");
  const Result run = bda({"salvage", "captures", "-o", "good.syx", "--prefer", "captures/a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("completed: voice:user1:6 (captures/a.syx, captures/more/b.syx)"));
  EXPECT_THAT(run.err, HasSubstr("passed over: 2 files of other kinds"));
  EXPECT_EQ(read("good.syx"), text(voice()));
  EXPECT_THAT(bda({"salvage", "captures", "-o", "captures/a.syx"}), Exits(1));
  EXPECT_THAT(bda({"salvage", "library.db", "-o", "good.syx"}), Exits(2));
  write("captures/cut.syx", text(fileDump({0x0C, 0x50, 0x05}, "Cut", {1})).substr(0, 15));
  const Result cut = bda({"salvage", "captures", "-o", "good.syx"});
  EXPECT_THAT(cut, Exits(2));
  EXPECT_THAT(cut.err, HasSubstr("captures/cut.syx: no System Exclusive message in it"));
  std::filesystem::create_directory(directory / "empty");
  EXPECT_THAT(bda({"salvage", "empty", "-o", "good.syx"}), Exits(2));
}
