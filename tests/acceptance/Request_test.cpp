// request: what the library answers, as .syx.

#include "Program.h"

#include "contents/Library.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class Request : public Program {};

}  // namespace

TEST_F(Request, whatIsAlikeOfManyPlacesIsToldTwentyTimesAndCounted) {
  const Result voices = bda({"request", "voice:user1"});
  EXPECT_THAT(voices, Exits(3));
  EXPECT_THAT(lines(voices.err), SizeIs(22));
  EXPECT_THAT(voices.err, HasSubstr("and 108 more: nothing is stored there\n"));
  const Result erasers = bda({"request", "file:voice:user1", "-o", "a.syx"});
  EXPECT_THAT(erasers, Exits(0));
  EXPECT_THAT(erasers.err,
              HasSubstr("and 108 more: nothing is stored there: this dump has whoever receives it remove"));
  EXPECT_EQ(bda({"-q", "request", "file:voice:user1", "-o", "a.syx"}).err, "");
}

TEST_F(Request, eachOfTheFourteenSystemBlocksIsAnsweredByItself) {
  for (const Editor::BulkAddress address : Editor::systemAddresses()) {
    const Result run = bda({"request", formatAddress(address)});
    EXPECT_THAT(run, Exits(0)) << formatAddress(address);
    EXPECT_EQ(text(blockDump(address)).substr(0, 10), run.out.substr(0, 10));
    EXPECT_EQ(run.out.size(), blockDump(address).size());
  }
}

TEST_F(Request, everyFormOfAnAddressMeansTheSame) {
  const std::string answer = bda({"request", "004000"}).out;
  EXPECT_EQ(answer, text(blockDump({0x00, 0x40, 0x00})));
  EXPECT_EQ(bda({"request", "00 40 00"}).out, answer);
  EXPECT_EQ(bda({"request", "00/40/00"}).out, answer);
  EXPECT_EQ(bda({"request", "00", "40", "00"}).out, answer);
  EXPECT_EQ(bda({"request", "system:audio-input"}).out, answer);
}

TEST_F(Request, answersFollowEachOtherInTheOrderAskedFor) {
  EXPECT_THAT(bda({"request", "000600", "004000", "-o", "a.syx"}), Exits(0));
  EXPECT_EQ(read("a.syx"), text(blockDump({0, 0x06, 0})) + text(blockDump({0, 0x40, 0})));
  EXPECT_THAT(files(), ElementsAre("a.syx"));
}

TEST_F(Request, theDumpOfAnEmptyPlaceIsSaidToRemoveWhatIsThere) {
  const Result run = bda({"request", "file:multi:5", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(lines(run.err),
              testing::Contains("file:multi:5: nothing is stored there: this dump has whoever receives it "
                                "remove what is"));
  EXPECT_THAT(bda({"request", "voice:mix:7", "-o", "a.syx"}).err,
              testing::StartsWith("voice:mix:7: nothing is stored there: this dump has whoever receives it remove"));
  EXPECT_THAT(
      bda({"request", "write:no-mixing-voices", "-o", "a.syx"}).err,
      testing::StartsWith("write:no-mixing-voices: this dump has whoever receives it remove all mixing voices"));
  for (const char* const harmless : {"system:common", "write"})
    EXPECT_THAT(bda({"request", harmless, "-o", "a.syx"}).err, testing::Not(HasSubstr("remove")));
}

TEST_F(Request, theDeviceNumberIsTheLibrarys) {
  bda({"settings", "device-number", "7"});
  EXPECT_THAT(bda({"request", "004000"}).out, StartsWith(text({0xF0, 0x7D, 0x06, 0x7F, 0x14})));
  bda({"settings", "device-number", "off"});
  const Result run = bda({"request", "004000"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("no answer: the device number is off"));
}

TEST_F(Request, anAddressWithoutAnswerIsNamedAndTheOthersAreWritten) {
  const Result run = bda({"request", "voice:user1:6", "004000", "7F0000", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6 (0E 0A 05, normal voice user 1, 006: header): no answer: nothing is "
                                 "stored there"));
  EXPECT_THAT(run.err, HasSubstr("7F 00 00 (unknown address): no answer: no block at 7F 00 00\n"));
  EXPECT_EQ(read("a.syx"), text(blockDump({0, 0x40, 0})));
}

TEST_F(Request, anAddressWithoutANameIsNamedByItsBytesOnce) {
  const std::string why = "it is not answered by itself, only with the header that it belongs to\n";
  EXPECT_THAT(bda({"request", "400000"}).err, StartsWith("40 00 00 (normal voice common): no answer: " + why));
  EXPECT_THAT(bda({"explain", "400000", "voice.common[3]"}).err, StartsWith("40 00 00: no answer: " + why));
}

TEST_F(Request, withoutAnyAnswerTheFileStaysAsItIs) {
  write("a.syx", "kept");
  const Result run = bda({"request", "voice:user1:6", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(read("a.syx"), "kept");
  EXPECT_THAT(files(), ElementsAre("a.syx"));
}

TEST_F(Request, parametersBetweenHeaderAndFooterCannotBeAskedForByThemselves) {
  const Result run = bda({"request", "410200"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("element 3 oscillator): no answer"));
  EXPECT_EQ(run.out, "");
}

TEST_F(Request, theThruPortDoesNotAnswer) {
  const Result run = bda({"request", "004000", "--port", "6"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("requests that arrive on this port are not answered"));
}

TEST_F(Request, remoteSettingsAnswerOnTheirOwnPort) {
  EXPECT_THAT(bda({"request", "remote:edit", "-o", "a.syx", "--trace", "t.jsonl"}), Exits(0));
  ASSERT_THAT(trace("t.jsonl"), SizeIs(1));
  EXPECT_EQ(trace("t.jsonl")[0]["sent"][0]["port"], 5);
  EXPECT_THAT(bda({"verify", "a.syx"}), Exits(0));
}

TEST_F(Request, theTraceOfARequestComesFromNoFile) {
  EXPECT_THAT(bda({"request", "004000", "-o", "a.syx", "--trace", "t.jsonl"}), Exits(0));
  ASSERT_THAT(trace("t.jsonl"), SizeIs(1));
  EXPECT_EQ(trace("t.jsonl")[0].dump(),
            R"({"message":1,"file":null,"offset":null,"port":1,"in":"F0 7D 20 7F 14 00 40 00 F7",)"
            R"("result":{"value":1,"name":"BulkMsg_BulkRequest"},"outcome":"answered","shown":[13,14],"log":[],)"
            R"("sent":[{"port":1,"bytes":"F0 7D 00 7F 14 00 08 00 40 00 00 00 00 00 00 00 00 00 38 F7"}]})");
}

TEST_F(Request, whatAnEditBufferHoldsComesOutAsAWholeUnit) {
  for (const char* name :
       {"voice:edit", "drum:edit", "voice:part:1", "multi:edit", "performance:edit", "master:edit", "remote:edit"}) {
    EXPECT_THAT(bda({"request", name, "-o", "a.syx"}), Exits(0));
    const Result run = bda({"verify", "a.syx"});
    EXPECT_THAT(run, Exits(0));
    EXPECT_THAT(run.out, HasSubstr(std::string(name) + ": complete"));
  }
}

TEST_F(Request, anAnswerThatIsNoMidiIsRefusedAndNamed) {
  // A favourite flag leaves as it was kept; a byte that no cable carries can only have come from outside.
  Editor::Library(directory / "library.db").setFavourite({4, 0x3F2800}, 0x80);
  const Result run = bda({"request", "favourites:drum:user", "004000", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("favourites:drum:user (71 28 00, favourites of user drum bank): no answer: its answer "
                                 "has 80 at byte 10, which is no MIDI data byte"));
  EXPECT_EQ(read("a.syx"), text(blockDump({0, 0x40, 0})));
}

TEST_F(Request, anOpaqueContentAnswersAsAFileDumpOnly) {
  Editor::Library(directory / "library.db").store({4, 0x3F0805}, Bytes{1, 2, 3}, "Opaque");
  const Result run = bda({"request", "voice:user1:6", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("no answer: its bytes are not in this editor's format"));
  EXPECT_THAT(files(), IsEmpty());
  EXPECT_THAT(bda({"request", "file:voice:user1:6", "-o", "a.syx"}), Exits(0));
}

TEST_F(Request, anOutputThatCannotBeReplacedIsAnError) {
  const Result run = bda({"request", "004000", "-o", "."});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("Is a directory"));
}
