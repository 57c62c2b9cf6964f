// receive: what it replaces, receive --whole and receive --dry-run.

#include "Library.h"
#include "Program.h"

using Editor::BulkAddress;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr BulkAddress kHeader{0x0E, 0x0A, 0x05};
constexpr BulkAddress kElement{0x41, 0x02, 0x00};

class ReceiveWhole : public Program {
 protected:
  // A voice that lacks a block, and a whole one.
  void writeHalf() {
    std::string half = text(unit(kHeader, BDA::List::normalVoice, 2));
    half.erase(half.find(text(blockDump(kElement, 2))), blockDump(kElement).size());
    write("half.syx", half + text(unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 1)));
  }
  void nameVoice(const char* name) {
    write("named.syx", {unit(kHeader, BDA::List::normalVoice, 1)});
    ASSERT_THAT(bda({"receive", "named.syx"}), Exits(0));
    ASSERT_THAT(bda({"rename", "voice:user1:6", name}), Exits(0));
  }
  std::string contents() { return bda({"contents", "--lines"}).out; }
};

}  // namespace

TEST_F(ReceiveWhole, aStoredLineSaysWhatItReplaced) {
  nameVoice("Old");
  const Result run = bda({"receive", "named.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "stored: voice:user1:6 (named.syx: message 26 at offset 2040), replaces \"Old\"\n");
  write("multi.syx", {fileDump({0x0C, 0x50, 0x04}, "One", {1}), dump({0x11, 0x00, 0x00})});
  EXPECT_EQ(bda({"receive", "multi.syx"}).out, "stored: file:multi:5 (multi.syx: message 2 at offset 22)\n");
  EXPECT_EQ(bda({"receive", "multi.syx"}).out,
            "stored: file:multi:5 (multi.syx: message 2 at offset 22), replaces \"One\"\n");
}

TEST_F(ReceiveWhole, anEditBufferThatWasStoredIsReplacedToo) {
  write("edit.syx", {unit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice, 1)});
  EXPECT_THAT(bda({"receive", "edit.syx"}).out, Not(HasSubstr("replaces")));
  ASSERT_THAT(bda({"rename", "voice:edit", "Mine"}), Exits(0));
  EXPECT_THAT(bda({"receive", "edit.syx"}).out, HasSubstr(", replaces \"Mine\"\n"));
}

TEST_F(ReceiveWhole, whatIsRefusedByItselfIsNamedOnce) {
  write("a.syx", {blockDump(kElement), blockDump({0x0F, 0x0A, 0x05}), fileDump({0x0C, 0x00, 0x04}, "Preset", {1}),
                  dump({0x11, 0x00, 0x00}), damaged(blockDump({0x00, 0x40, 0x00}))});
  const Result run = bda({"receive", "--whole", "a.syx"});
  EXPECT_THAT(
      lines(run.err),
      ElementsAre(testing::EndsWith("refused: element 3 oscillator: no open header admits this block (message 1)"),
                  testing::EndsWith("refused: normal voice user 1, 006: footer closes no open header (message 2)"),
                  testing::EndsWith("refused: file:voice:preset1:5: can be requested, but not stored (message 3)"),
                  testing::EndsWith("refused: system audio input part: checksum wrong: checksum 39, expected 38"),
                  testing::_));
}

TEST_F(ReceiveWhole, theRemainderOfAMessageIsRefusedAndTheUnitAroundItStored) {
  const std::string whole = text(unit(kHeader, BDA::List::normalVoice, 1));
  const std::string header = text(blockDump(kHeader));
  write("a.syx", header + text({0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0x00, 0xF7}) + whole.substr(header.size()));
  const Result run = bda({"receive", "--whole", "a.syx", "--trace", "trace"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 2 at offset 12: refused: no valid message: wrong length: 8 bytes"));
  EXPECT_EQ(lines(run.err).back(), "1 stored, 25 accepted, 1 refused");
  EXPECT_THAT(run.out, HasSubstr("stored: voice:user1:6"));
  EXPECT_EQ(trace("trace").size(), 26U);
}

TEST_F(ReceiveWhole, storesNothingThatLacksABlock) {
  nameVoice("Old");
  writeHalf();
  const Result run = bda({"receive", "--whole", "half.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(lines(run.out), ElementsAre(HasSubstr("stored: voice:user1:7")));
  EXPECT_THAT(run.err, HasSubstr("half.syx: message 25 at offset "));
  EXPECT_THAT(run.err, HasSubstr(": refused: 25 messages: voice:user1:6: 1 block missing (messages 1 to 25): element 3 "
                                 "oscillator (41 02 00)"));
  EXPECT_EQ(lines(run.err).back(), "1 stored, 25 accepted, 25 refused");
  EXPECT_THAT(contents(), HasSubstr("Old"));
  EXPECT_THAT(bda({"receive", "half.syx"}).out, HasSubstr("stored: voice:user1:6")) << "without it: as an instrument";
}

TEST_F(ReceiveWhole, manyBrokenMessagesDoNotHideTheUnitsThatAreRefused) {
  writeHalf();
  std::string broken = text(unit({0x0E, 0x0A, 0x01}, BDA::List::normalVoice, 1));
  const std::size_t header = dump({0x0E, 0x0A, 0x01}).size();
  std::size_t at = header;
  for (std::size_t end = broken.find('\xF7', at); end + 1 <= broken.size() - header; end = broken.find('\xF7', at)) {
    broken[end - 1] = char(broken[end - 1] ^ 1);
    at = end + 1;
  }
  write("a.syx", broken + read("half.syx"));
  const Result run = bda({"receive", "--whole", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:2: 24 blocks missing"));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: 1 block missing"));
  EXPECT_THAT(run.err, HasSubstr("and 4 more: checksum wrong\n"));
}

TEST_F(ReceiveWhole, aHeaderOrFooterThatIsBrokenTakesItsUnitWithIt) {
  const Bytes whole = unit(kHeader, BDA::List::normalVoice, 1);
  const std::size_t end = dump(kHeader).size();
  const std::string blocks = text(whole).substr(end, whole.size() - 2 * end);
  const std::string header = text(dump(kHeader));
  const std::string footer = text(dump({0x0F, 0x0A, 0x05}));
  const std::string other = text(unit({0x0E, 0x70, 0x00}, BDA::List::master, 1));
  write("footer.syx", header + blocks + text(dump({0x0F, 0x0A, 0x05}, {1})) + other);
  write("header.syx", text(dump(kHeader, {1})) + blocks + footer + other);
  for (const char* const file : {"footer.syx", "header.syx"}) {
    const Result run = bda({"receive", "--whole", file});
    EXPECT_THAT(run, Exits(3));
    EXPECT_THAT(run.out, Not(HasSubstr("voice:user1:6")));
    EXPECT_THAT(run.err, HasSubstr("refused: 26 messages: normal voice user 1, 006: "));
    EXPECT_THAT(lines(run.err).back(), HasSubstr("26 refused"));
    EXPECT_THAT(run.err, Not(HasSubstr("abandoned")));
  }
}

TEST_F(ReceiveWhole, wholeUnitsComeInAsWithoutIt) {
  write("a.syx", {unit(kHeader, BDA::List::normalVoice, 1), fileDump({0x0C, 0x50, 0x04}, "One", {1}),
                  dump({0x11, 0x00, 0x00}), systemDump(1), request({0, 0, 0})});
  const Result whole = bda({"receive", "--whole", "a.syx", "--library", "one.db"});
  const Result literal = bda({"receive", "a.syx", "--library", "two.db"});
  EXPECT_THAT(whole, Exits(0));
  EXPECT_EQ(whole.out, literal.out);
  EXPECT_EQ(lines(whole.err).back(), lines(literal.err).back());
  EXPECT_THAT(bda({"diff", "one.db", "two.db"}), Exits(0));
}

TEST_F(ReceiveWhole, whatIsOpenOrHeldAtTheEndIsRefused) {
  write("a.syx", {fileDump({0x0C, 0x50, 0x04}, "One", {1}), blockDump(kHeader), blockDump(kElement)});
  const Result run = bda({"receive", "--whole", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(lines(run.err).back(), "3 refused");
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: still open at the end"));
  EXPECT_THAT(run.err, HasSubstr("1 file dump still held at the end"));
}

TEST_F(ReceiveWhole, aBlockForAnotherDeviceIsNotOfTheUnit) {
  std::string mixed = text(unit(kHeader, BDA::List::normalVoice, 1));
  const std::size_t block = mixed.find(text(blockDump(kElement, 1)));
  mixed[block + 2] = 3;
  write("a.syx", mixed);
  const Result run = bda({"receive", "--whole", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: 1 block missing"));
  EXPECT_THAT(run.err, HasSubstr("1 message for device 4: take it with --any-device"));
  EXPECT_THAT(bda({"receive", "--whole", "--any-device", "a.syx"}).out, HasSubstr("stored: voice:user1:6"));
  ASSERT_THAT(bda({"settings", "receive-bulk", "off"}), Exits(0));
  EXPECT_THAT(bda({"receive", "--whole", "--any-device", "a.syx"}).err, HasSubstr("receive-bulk is off"));
}

TEST_F(ReceiveWhole, aDryRunSaysWhatWouldBeAndChangesNothing) {
  nameVoice("Old");
  write("multi.syx", {fileDump({0x0C, 0x50, 0x04}, "One", {1}), dump({0x11, 0x00, 0x00})});
  ASSERT_THAT(bda({"receive", "multi.syx"}), Exits(0));
  write("a.syx", {unit(kHeader, BDA::List::normalVoice, 3), dump({0x0C, 0x50, 0x04}, Bytes(4)),
                  fileDump({0x0C, 0x50, 0x05}, "Two", {1}), dump({0x11, 0x00, 0x00}), systemDump(1),
                  damaged(blockDump({0, 0, 0}))});
  const std::string before = read("library.db");
  const std::string held = contents();
  const Result run = bda({"receive", "--dry-run", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  const std::vector<std::string> told = lines(run.out);
  EXPECT_THAT(told, Contains("would be stored: voice:user1:6 (a.syx: message 26 at offset 2040), replaces \"Old\""));
  EXPECT_THAT(told, Contains(HasSubstr("would be removed: file:multi:5 (")));
  EXPECT_THAT(run.out, HasSubstr("it is \"One\""));
  EXPECT_THAT(told, Contains(HasSubstr("would be stored: file:multi:6 (")));
  EXPECT_THAT(told, Contains(HasSubstr("would be completed: system common (")));
  EXPECT_THAT(run.err, HasSubstr("would be refused: system common: checksum wrong"));
  EXPECT_THAT(lines(run.err).back(), HasSubstr("dry run, nothing is changed: 2 stored, 1 removed, "));
  EXPECT_EQ(read("library.db"), before);
  EXPECT_EQ(contents(), held);
  EXPECT_THAT(lines(bda({"history"}).out).size(), 3U);
}

TEST_F(ReceiveWhole, aDryRunMakesNoLibrary) {
  removeLibrary();
  write("a.syx", {unit(kHeader, BDA::List::normalVoice, 1)});
  const Result run = bda({"receive", "--dry-run", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "would be stored: voice:user1:6 (a.syx: message 26 at offset 2040)\n");
  EXPECT_FALSE(exists("library.db"));
  EXPECT_THAT(bda({"receive", "--dry-run", "a.syx", "-o", "answers.syx"}), Exits(1));
}

TEST_F(ReceiveWhole, aDryRunOfWholeUnitsIsBoth) {
  writeHalf();
  const Result run = bda({"receive", "--whole", "--dry-run", "half.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(lines(run.out), ElementsAre(HasSubstr("would be stored: voice:user1:7")));
  EXPECT_THAT(run.err, HasSubstr("would be refused: 25 messages: voice:user1:6: 1 block missing"));
  EXPECT_THAT(contents(), IsEmpty());
}

TEST_F(ReceiveWhole, whatComesThroughAPipeIsHandedOnWithTheFooter) {
  const Result run = bda({"receive", "--whole", "-"}, text(unit(kHeader, BDA::List::normalVoice, 1)));
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "stored: voice:user1:6 (standard input: message 26 at offset 2040)\n");
}

TEST_F(ReceiveWhole, noMixingVoiceIsRemovedForFileDumpsThatAreNotAllThere) {
  write("mix.syx", {fileDump({0x0C, 0x31, 0x02}, "Mix", {5}), dump(Editor::kWriteTrigger)});
  ASSERT_THAT(bda({"receive", "mix.syx"}), Exits(0));
  const std::string before = contents();
  const Bytes other = fileDump({0x0C, 0x31, 0x03}, "Other", {6});
  const Bytes again = fileDump({0x0C, 0x31, 0x02}, "Mix", {7});
  const std::string trigger = text(dump({0x11, 0x01, 0x00}));
  write("damaged.syx", text(other) + text(damaged(again)) + trigger);
  write("cut.syx", text(other) + text(again).substr(0, 14) + trigger);
  for (const char* const file : {"damaged.syx", "cut.syx"}) {
    const Result run = bda({"receive", "--whole", file});
    EXPECT_THAT(run, Exits(3)) << file;
    EXPECT_THAT(run.err,
                HasSubstr("refused: 2 messages: all mixing voices would be removed, and not all file dumps are "
                          "whole: "))
        << file;
    EXPECT_EQ(run.out, "") << file;
    EXPECT_EQ(contents(), before) << file;
  }
  write("whole.syx", text(other) + text(again) + trigger);
  EXPECT_THAT(bda({"receive", "--whole", "whole.syx"}), Exits(0));
}
