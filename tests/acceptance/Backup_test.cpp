// backup and restore: the whole library as messages, and messages into a library, all or nothing.

#include <map>

#include "Library.h"
#include "Program.h"

using Editor::BulkAddress;
using Editor::kWriteTrigger;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

constexpr BulkAddress kUserVoice{0x0E, 0x0A, 0x05};
constexpr std::size_t kSystemAndFavourites = 14 + 15;

class Backup : public Program {
 protected:
  // Something of every kind: file dumps, units, edit buffers, system and favourites.
  void fill() {
    Bytes favourites = blockDump({0x71, 0x0A, 0x00});
    favourites[10 + 5] = 1;
    favourites[favourites.size() - 2] = std::uint8_t((favourites[favourites.size() - 2] - 1) & 0x7F);
    write("fill.syx",
          {unit(kUserVoice, BDA::List::normalVoice, 1), unit({0x0E, 0x28, 0x03}, BDA::List::drumVoice, 1),
           unit({0x0E, 0x02, 0x7F}, BDA::List::normalVoice, 2), unit({0x0E, 0x21, 0x00}, BDA::List::drumVoice),
           unit({0x0E, 0x41, 0x11}, BDA::List::performance), unit({0x0E, 0x70, 0x02}, BDA::List::master, 3),
           unit({0x0E, 0x60, 0x31}, BDA::List::remote, 1), unit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice, 3),
           fileDump({0x0C, 0x50, 0x07}, "Opaque", {1, 2, 3}), fileDump({0x0C, 0x14, 0x02}, "Mix", {4}),
           fileDump({0x0C, 0x31, 0x03}, "Mix of 1", {5}), fileDump({0x0C, 0x7F, 0x00}, "", Bytes(100, 6)),
           dump(kWriteTrigger), systemDump(1), favourites});
    ASSERT_THAT(bda({"receive", "-q", "fill.syx"}), Exits(0));
    // A multi with a drum voice in part 3, and another one in part 2.
    Json multi = json({"show", "multi:edit", "--json"});
    multi["multi"]["part"][2]["bankProgram"] = {0x3F, 0x28, 0};
    write("multi.json", multi.dump());
    ASSERT_THAT(bda({"apply", "multi:edit", "multi.json"}), Exits(0));
    ASSERT_THAT(bda({"rename", "voice:part:2", "Second"}), Exits(0));
    ASSERT_THAT(bda({"rename", "voice:part:3", "Drums"}), Exits(0));
  }

  std::vector<std::string> addressesOf(const char* file) {
    std::vector<std::string> addresses;
    for (const Json& message : objects({"list", "--json", file})) addresses.push_back(message["address"]);
    return addresses;
  }
};

}  // namespace

TEST_F(Backup, aFreshLibraryIsItsSystemAndItsFavourites) {
  ASSERT_THAT(bda({"settings"}), Exits(0));  // makes the library
  EXPECT_THAT(bda({"backup", "-o", "a.syx"}), Exits(0));
  const std::vector<std::string> addresses = addressesOf("a.syx");
  ASSERT_THAT(addresses, SizeIs(kSystemAndFavourites));
  EXPECT_EQ(addresses.front(), "00 00 00");
  EXPECT_EQ(addresses[13], "00 55 00");
  EXPECT_EQ(addresses[14], "71 00 00");
  EXPECT_EQ(addresses.back(), "71 28 00");
}

TEST_F(Backup, backupThenRestoreThenBackupGivesTheSameBytes) {
  fill();
  EXPECT_THAT(bda({"backup", "-o", "a.syx"}), Exits(0));
  EXPECT_THAT(bda({"verify", "a.syx"}), Exits(0));
  EXPECT_THAT(bda({"restore", "a.syx", "--library", "other.db"}), Exits(0));
  EXPECT_THAT(bda({"backup", "-o", "b.syx", "--library", "other.db"}), Exits(0));
  EXPECT_EQ(read("a.syx"), read("b.syx"));
  const Result diff = bda({"diff", "library.db", "other.db"});
  EXPECT_THAT(diff, Exits(0));
  EXPECT_EQ(diff.out, "");
}

TEST_F(Backup, groupsAndAddressesComeInAFixedOrder) {
  fill();
  EXPECT_THAT(bda({"backup", "-o", "a.syx"}), Exits(0));
  std::vector<std::string> heads;
  for (const std::string& address : addressesOf("a.syx"))
    if (address.compare(0, 2, "0C") == 0 || address.compare(0, 2, "0E") == 0 || address.compare(0, 2, "11") == 0)
      heads.push_back(address);
  ASSERT_THAT(heads, SizeIs(7 + 6 + 17));
  EXPECT_THAT(std::vector<std::string>(heads.begin(), heads.begin() + 12),
              ElementsAre("0C 0A 05", "0C 14 02", "0C 28 03", "0C 31 03", "0C 50 07", "0C 7F 00", "11 00 00",
                          "0E 02 7F", "0E 0F 00", "0E 21 00", "0E 5F 00", "0E 30 00"));
  EXPECT_THAT(std::vector<std::string>(heads.end() - 4, heads.end()),
              ElementsAre("0E 30 0F", "0E 41 11", "0E 60 31", "0E 70 02"));
}

TEST_F(Backup, aContentThatNoMessageCarriesIsNamedAndTheRestIsWritten) {
  fill();
  library().store(kPresetVoice1, Bytes{1, 2, 3}, "Opaque");
  library().store({4, 0x3F0806}, Bytes(0x4000, 1), "Too long");
  const Result run = bda({"backup", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("voice:preset1:1: not in the backup: "));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:7: not in the backup: its file dump would have 18739 data bytes, at most "
                                 "16383 are possible"));
  EXPECT_THAT(lines(run.err), SizeIs(3));
  EXPECT_THAT(bda({"restore", "a.syx", "--library", "other.db"}), Exits(0));
  const Result diff = bda({"diff", "library.db", "other.db"});
  EXPECT_THAT(diff, Exits(3));
  EXPECT_EQ(diff.out,
            "voice:preset1:1: only in library.db: \"Opaque\"\n"
            "voice:user1:7: only in library.db: \"Too long\"\n");
}

TEST_F(Backup, anEmptyContentIsNoFileDump) {
  library().store(kUserVoice6, Bytes{}, "Empty");  // whose file dump would remove it
  const Result run = bda({"backup", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: not in the backup: "));
}

TEST_F(Backup, aLibraryWithMoreMixingVoicesThanItMayHaveIsWhole) {
  fill();
  ASSERT_THAT(bda({"settings", "mixing-voices", "1"}), Exits(0));
  EXPECT_THAT(bda({"backup", "-o", "a.syx"}), Exits(0));
  EXPECT_THAT(bda({"restore", "a.syx"}), Exits(0));
  EXPECT_THAT(bda({"restore", "a.syx", "--library", "other.db"}), Exits(0));
}

TEST_F(Backup, parametersAndFlagsThatNoBlockHoldsAreNamed) {
  Json system = json({"show", "system", "--json"});
  system["system"]["utility"][3] = 200;
  write("a.json", system.dump());
  ASSERT_THAT(bda({"apply", "system", "a.json"}), Exits(0));
  library().setFavourite({Editor::kContentPerformance, 4}, 1);
  const Result run = bda({"backup", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("system: no message carries this (here | in the backup): system.utility[3]: 200 | 0"));
  EXPECT_THAT(run.err, HasSubstr("performance:a:5: no message carries this (here | in the backup): favourite: 1 | 0"));
}

TEST_F(Backup, anAnswerThatIsNoMidiIsLeftOut) {
  library().setFavourite({4, 0x3F2800}, 0x80);
  const Result run = bda({"backup", "-o", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("favourites:drum:user: not in the backup: its answer has 80 at byte 10"));
  EXPECT_THAT(addressesOf("a.syx"), AllOf(SizeIs(kSystemAndFavourites - 1), Not(testing::Contains("71 28 00"))));
}

TEST_F(Backup, howTheLibraryListensIsNotInTheWay) {
  fill();
  EXPECT_THAT(bda({"backup", "-o", "a.syx"}), Exits(0));
  for (const char* device : {"off", "all"}) {
    ASSERT_THAT(bda({"settings", "receive-bulk", "off"}), Exits(0));
    ASSERT_THAT(bda({"settings", "device-number", device}), Exits(0));
    EXPECT_THAT(bda({"backup", "-o", "b.syx"}), Exits(0));
    EXPECT_EQ(read("a.syx"), read("b.syx"));
    EXPECT_THAT(bda({"restore", "b.syx"}), Exits(0));
    EXPECT_EQ(bda({"settings"}).out, std::string("device-number ") + device +
                                         "\nreceive-bulk off\nmixing-voices 2048\nhistory 1000\nhistory-size 64\n");
  }
}

TEST_F(Backup, theMessagesCarryTheLibrarysDeviceNumber) {
  ASSERT_THAT(bda({"settings", "device-number", "5"}), Exits(0));
  ASSERT_THAT(bda({"backup", "-o", "a.syx"}), Exits(0));
  EXPECT_THAT(bda({"restore", "a.syx"}), Exits(0));
  const Result run = bda({"restore", "a.syx", "--library", "other.db"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 1 at offset 0: refused: system common: it is for device 5, the device "
                                 "number is 1"));
  EXPECT_FALSE(exists("other.db"));
}

TEST_F(Backup, standardOutputIsAFileToo) {
  ASSERT_THAT(bda({"settings"}), Exits(0));  // makes the library
  const Result run = bda({"backup", "-o", "-"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(bda({"backup", "-o", "a.syx"}), Exits(0));
  EXPECT_EQ(run.out, read("a.syx"));
}

TEST_F(Backup, anOutputThatCannotBeWrittenIsAnError) {
  ASSERT_THAT(bda({"settings"}), Exits(0));  // makes the library
  EXPECT_THAT(bda({"backup", "-o", "none/a.syx"}), Exits(1));
}

// ---- restore ----

TEST_F(Backup, aBrokenMessageKeepsAllOthersOut) {
  removeLibrary();
  write("a.syx", {systemDump(1), damaged(blockDump({0x00, 0x40, 0x00}))});
  const std::string offset = std::to_string(systemDump(1).size());
  const Result run = bda({"restore", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 15 at offset " + offset + ": checksum wrong: "));
  EXPECT_THAT(run.err, HasSubstr("nothing is restored"));
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(Backup, aUnitThatIsNotWholeKeepsAllOthersOut) {
  removeLibrary();
  const struct {
    std::vector<Bytes> messages;
    const char* problem;
  } broken[] = {
      {{systemDump(1), blockDump(kUserVoice), blockDump({0x0F, 0x0A, 0x05})},
       "message 16 at offset 473: voice:user1:6: 24 blocks missing"},
      {{systemDump(1), blockDump(kUserVoice)}, "message 15 at offset 461: voice:user1:6: still open"},
      {{systemDump(1), fileDump({0x0C, 0x50, 0x00}, "A", {1})}, "message 15 at offset 461: 1 file dump still held"},
      {{systemDump(1), fileDump({0x0C, 0x00, 0x00}, "A", {1})}, "can be requested, but not stored"},
      {{systemDump(1), Bytes{0xF0, 0x7D, 0x00}}, "3 bytes dropped"}};
  for (const auto& [messages, problem] : broken) {
    std::string bytes;
    for (const Bytes& message : messages) bytes += text(message);
    write("a.syx", bytes);
    const Result run = bda({"restore", "a.syx"});
    EXPECT_THAT(run, Exits(3)) << problem;
    EXPECT_THAT(run.err, HasSubstr(problem));
    EXPECT_FALSE(exists("library.db"));
  }
}

TEST_F(Backup, aRefusalTakesBackWhatCameBeforeIt) {
  ASSERT_THAT(bda({"settings", "mixing-voices", "0"}), Exits(0));
  write("a.syx", {systemDump(1), unit(kUserVoice, BDA::List::normalVoice), fileDump({0x0C, 0x14, 0x02}, "Mix", {4}),
                  dump(kWriteTrigger)});
  const std::string before = bda({"show", "system", "--json"}).out;
  const Result run = bda({"restore", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 42 at offset "));
  EXPECT_THAT(run.err, HasSubstr("there is no room for another mixing voice"));
  EXPECT_EQ(bda({"show", "system", "--json"}).out, before);
  EXPECT_EQ(bda({"contents"}).out, "");
}

TEST_F(Backup, whatTheFileDoesNotNameStays) {
  library().store(kMulti1, Bytes{1}, "Mine");
  write("a.syx", {unit(kUserVoice, BDA::List::normalVoice)});
  EXPECT_THAT(bda({"restore", "a.syx"}), Exits(0));
  EXPECT_EQ(library().contents().size(), 2u);
}

TEST_F(Backup, whatARestoreReplacedOrRemovedIsTold) {
  library().store(kUserVoice6, Bytes{1}, "Mine");
  library().store(kMulti1, Bytes{1}, "Mine too");
  write("a.syx", {unit(kUserVoice, BDA::List::normalVoice), unit({0x0E, 0x70, 0x00}, BDA::List::master),
                  dump({0x0C, 0x50, 0x00}, {0, 0, 0, 0}), dump(kWriteTrigger)});
  EXPECT_EQ(bda({"restore", "a.syx"}).err,
            "removed: file:multi:1 \"Mine too\"\n"
            "stored: voice:user1:6, replaces \"Mine\"\n"
            "restored: 35 messages, 2 contents stored, 1 removed\n");
  EXPECT_EQ(bda({"restore", "a.syx"}).err,
            "nothing changes\n"
            "restored: 35 messages, 0 contents stored, 0 removed, 2 as they were\n");
}

TEST_F(Backup, aFavouriteIsNoContentMoreAndOneThatIsLostIsTold) {
  library().store(kUserVoice6, Bytes{1}, "Mine");
  ASSERT_THAT(bda({"backup", "-q", "-o", "none.syx"}), Exits(0));
  ASSERT_THAT(bda({"favourite", "voice:user1:6", "on"}), Exits(0));
  ASSERT_THAT(bda({"backup", "-q", "-o", "one.syx"}), Exits(0));
  const auto last = [&](const char* file, const char* library) {
    return lines(bda({"restore", file, "--library", library}).err).back();
  };
  EXPECT_THAT(last("one.syx", "new.db"), testing::EndsWith(" messages, 1 content stored, 0 removed"));
  const Result lost = bda({"restore", "none.syx", "--library", "new.db"});
  EXPECT_THAT(lost.err, HasSubstr("flagged: voice:user1:6: no favourite\n"));
  EXPECT_THAT(lost.err, HasSubstr(" messages, 0 contents stored, 0 removed, 1 as they were\n"));
  EXPECT_THAT(last("one.syx", "new.db"), testing::EndsWith("0 contents stored, 0 removed, 1 as they were"));
}

TEST_F(Backup, otherDevicesAreCountedWithTheWayToTakeThem) {
  write("a.syx", {dump({0, 6, 0}, Bytes(5), 0), dump({0, 6, 0}, Bytes(5), 5), dump({0, 6, 0}, Bytes(5), 6),
                  dump({0, 6, 0}, Bytes(5), 5)});
  const Result run = bda({"restore", "a.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("a.syx: message 2 at offset "));
  EXPECT_THAT(run.err, HasSubstr("2 messages for device 6: take it with --any-device, or listen to it from now on: "
                                 "bda settings device-number 6\n1 message for device 7: "));
  EXPECT_THAT(run.err, Not(HasSubstr("for device 1:")));
}

TEST_F(Backup, anInstrumentThatIsOffIsNotSwitchedOnByTheWayOut) {
  write("one.syx", {dump({0, 6, 0}, Bytes(5), 0)});
  write("three.syx", {dump({0, 6, 0}, Bytes(5), 2)});
  ASSERT_THAT(bda({"settings", "device-number", "off"}), Exits(0));
  EXPECT_THAT(bda({"restore", "one.syx"}), Exits(0));
  for (const char* dryRun : {"--json", "--dry-run"}) {
    const Result run = bda({"restore", "three.syx", dryRun});
    EXPECT_THAT(run, Exits(3));
    EXPECT_THAT(run.err, HasSubstr("it is for device 3, the device number is off, and counts as 1\n"));
    EXPECT_THAT(run.err, HasSubstr("1 message for device 3: take it with --any-device\n"));
  }
  EXPECT_THAT(bda({"restore", "three.syx", "--any-device"}), Exits(0));
  EXPECT_EQ(bda({"settings", "device-number"}).out, "off\n");
}

TEST_F(Backup, requestsAndOtherInstrumentsMessagesAreIgnored) {
  Bytes foreign = request({0, 0, 0});
  foreign[1] = 0x41;
  write("a.syx", {foreign, request({0, 0, 0}), systemDump(1)});
  const Result run = bda({"restore", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("2 of 16 messages are no dumps: ignored"));
}

TEST_F(Backup, aRequestInsideOfAUnitCutsItInTwo) {
  const Bytes one = unit(kUserVoice, BDA::List::normalVoice, 1);
  const Bytes two = unit(kUserVoice, BDA::List::normalVoice, 2);
  const std::size_t half = blockDump(kUserVoice).size() + blockDump({0x40, 0x00, 0x00}).size();
  write("a.syx", {Bytes(one.begin(), one.begin() + std::ptrdiff_t(half)), request({0, 0, 0}),
                  Bytes(two.begin() + std::ptrdiff_t(half), two.end())});
  ASSERT_THAT(bda({"verify", "-q", "a.syx"}), Exits(3));
  for (const std::vector<std::string>& words : {std::vector<std::string>{"restore", "a.syx"},
                                                {"restore", "--dry-run", "a.syx"},
                                                {"show", "--from", "a.syx", "voice:user1:6"},
                                                {"diff", "a.syx", "a.syx"}}) {
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(3)) << testing::PrintToString(words);
    EXPECT_THAT(run.err, HasSubstr("voice:user1:6: abandoned (messages 1 to 3)")) << testing::PrintToString(words);
    EXPECT_EQ(run.out, "") << testing::PrintToString(words);
  }
  EXPECT_EQ(bda({"contents"}).out, "");
}

TEST_F(Backup, ofAPlaceThatComesAgainItIsSaidWhatIsLeftOut) {
  const std::string again = ": more than once: the last one counts, ";
  write("units.syx", {unit(kUserVoice, BDA::List::normalVoice, 0x41), unit(kUserVoice, BDA::List::normalVoice, 0x42)});
  write("dumps.syx", {fileDump({0x0C, 0x50, 0x00}, "One", {1}), fileDump({0x0C, 0x50, 0x00}, "Two \x7E", {2}),
                      dump(kWriteTrigger), dump({0x0C, 0x50, 0x00}, Bytes(4)), dump(kWriteTrigger)});
  write("late.syx", {fileDump({0x0C, 0x0A, 0x05}, "Dump", {1}), unit(kUserVoice, BDA::List::normalVoice, 0x41),
                     dump(kWriteTrigger)});
  write("mix.syx", {unit({0x0E, 0x31, 0x03}, BDA::List::normalVoice, 0x43), dump({0x11, 0x01, 0x00})});
  write("system.syx", {systemDump(1), blockDump({0x00, 0x40, 0x00}, 2)});
  const struct {
    const char* file;
    std::vector<std::string> told;
  } files[] = {
      {"units.syx", {"voice:user1:6" + again + "\"" + std::string(20, 'A') + "\" is left out"}},
      {"dumps.syx", {"file:multi:1" + again + "\"One\" is left out", "file:multi:1" + again + "\"Two ~\" is left out"}},
      {"late.syx", {"voice:user1:6" + again + "\"" + std::string(20, 'A') + "\" is left out"}},
      {"mix.syx", {"voice:mix:4" + again + "\"" + std::string(20, 'C') + "\" is left out"}},
      {"system.syx", {"system:audio-input" + again + "what came before is left out"}}};
  for (const auto& [file, told] : files)
    for (const std::vector<std::string>& words : {std::vector<std::string>{"restore", "--dry-run", file},
                                                  {"restore", "--library", std::string(file) + ".db", file},
                                                  {"diff", file, file}}) {
      const Result run = bda(words);
      EXPECT_THAT(run, Exits(0)) << testing::PrintToString(words);
      std::vector<std::string> notes;
      for (const std::string& line : lines(run.err))
        if (line.find(again) != std::string::npos)
          notes.push_back(line.substr(line.rfind(": ", line.find(again) - 1) + 2));
      if (words.front() == "diff") notes.resize(notes.size() / 2);
      EXPECT_EQ(notes, told) << testing::PrintToString(words);
    }
  // One that is broken is held like any other, and says no name: it ends before that does.
  write("broken.syx",
        {dump({0x0C, 0x50, 0x00}, {0, 9, 1}), fileDump({0x0C, 0x50, 0x00}, "One", {1}), dump(kWriteTrigger)});
  EXPECT_THAT(bda({"diff", "broken.syx", "broken.syx"}).err,
              HasSubstr("file:multi:1" + again + "what came before is left out"));
  write("once.syx", {unit(kUserVoice, BDA::List::normalVoice, 0x41), systemDump(1)});
  ASSERT_THAT(bda({"restore", "once.syx"}), Exits(0));
  EXPECT_THAT(bda({"restore", "once.syx"}).err, Not(HasSubstr("more than once")))
      << "what stood there before is no matter";
}

TEST_F(Backup, aDryRunNamesTheSoundsThatWouldBeReplaced) {
  write("a.syx",
        {unit(kUserVoice, BDA::List::normalVoice, 0x41), unit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice, 0x41)});
  write("b.syx",
        {unit(kUserVoice, BDA::List::normalVoice, 0x42), unit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice, 0x42)});
  ASSERT_THAT(bda({"restore", "a.syx"}), Exits(0));
  const std::string names = " \"" + std::string(20, 'B') + "\", replaces \"" + std::string(20, 'A') + "\" (";
  EXPECT_THAT(
      lines(bda({"restore", "--dry-run", "b.syx"}).out),
      ElementsAre(HasSubstr("would change: voice:user1:6" + names), HasSubstr("would change: voice:edit" + names)));
}

TEST_F(Backup, aDryRunSaysWhatWouldChangeAndChangesNothing) {
  library().store(kUserVoice6, Bytes{1}, "Mine");
  library().store(kMulti1, Bytes{1}, "Mine too");
  write("a.syx", {unit(kUserVoice, BDA::List::normalVoice), unit({0x0E, 0x70, 0x00}, BDA::List::master),
                  dump({0x0C, 0x50, 0x00}, {0, 0, 0, 0}), dump(kWriteTrigger), blockDump({0x00, 0x06, 0x00}, 1)});
  const std::string before = bda({"contents", "--json"}).out;
  const Result run = bda({"restore", "--dry-run", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out,
            "would remove: file:multi:1 \"Mine too\"\n"
            "would change: voice:user1:6, replaces \"Mine\" (2 differences)\n"
            "would store: master:1\n"
            "would change: system (2 differences)\n");
  EXPECT_EQ(bda({"contents", "--json"}).out, before);
  EXPECT_THAT(bda({"restore", "a.syx"}), Exits(0));
  const Result again = bda({"restore", "--dry-run", "a.syx"});
  EXPECT_THAT(again, Exits(0));
  EXPECT_EQ(again.out, "");
  EXPECT_THAT(again.err, HasSubstr("nothing would change"));
}

TEST_F(Backup, aDryRunCreatesNoLibraryAndIsRefusedAsTheRestoreWouldBe) {
  removeLibrary();
  write("a.syx", {systemDump(1)});
  EXPECT_THAT(bda({"restore", "--dry-run", "a.syx"}), Exits(0));
  EXPECT_FALSE(exists("library.db"));
  write("b.syx", {dump({0, 6, 0}, Bytes(5), 3)});
  EXPECT_THAT(bda({"restore", "--dry-run", "b.syx"}), Exits(3));
  EXPECT_THAT(files(), ElementsAre("a.syx", "b.syx"));
}

TEST_F(Backup, aVerboseDryRunIsOneStreamInOrder) {
  library().store(kMulti1, Bytes{1}, "Mine");
  library().store(kMulti2, Bytes{1}, "Old");
  write("a.syx", {fileDump({0x0C, 0x50, 0x00}, "Yours", {1, 2}), fileDump({0x0C, 0x50, 0x01}, "New", {1}),
                  dump(kWriteTrigger), blockDump({0x00, 0x06, 0x00}, 1)});
  const Result run = bda({"restore", "--dry-run", "-v", "a.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out,
            "would change: file:multi:1 \"Yours\", replaces \"Mine\" (2 differences)\n"
            "    name: \"Mine\" | \"Yours\"\n"
            "    opaque bytes differ: 1 | 2 bytes\n"
            "would rename: file:multi:2: \"Old\" | \"New\"\n"
            "would change: system (2 differences)\n"
            "    system.remote[0]: 0 | 1\n"
            "    system.remote[1]: 0 | 1\n");
  EXPECT_THAT(lines(run.err), ElementsAre("would be restored: 4 messages, 2 contents stored, 0 removed"));
}

TEST_F(Backup, aManifestNamesEveryContentWithTheHashThatContentsGives) {
  fill();
  ASSERT_THAT(bda({"backup", "-o", "backup.syx", "--manifest", "backup.json"}), Exits(0));
  EXPECT_THAT(lines(read("backup.json")), SizeIs(1));
  const Json manifest = Json::parse(read("backup.json"));
  EXPECT_EQ(manifest["deviceNumber"], bda({"settings", "device-number"}).out.substr(0, 1));
  EXPECT_THAT(bda({"--version"}).out, HasSubstr(manifest["version"].get<std::string>()));
  std::map<std::string, Json> stored;
  for (const std::string& line : lines(bda({"contents", "--json"}).out))
    if (const Json json = Json::parse(line); json["stored"]) stored[json["content"]] = json;
  ASSERT_THAT(manifest["contents"], SizeIs(stored.size()));
  for (const Json& content : manifest["contents"]) {
    EXPECT_EQ(content["hash"], stored.at(content["place"])["hash"]);
    EXPECT_EQ(content["name"], stored.at(content["place"])["name"]);
  }
  ASSERT_THAT(bda({"backup", "-o", "again.syx", "--manifest", "again.json"}), Exits(0));
  EXPECT_EQ(read("again.json"), read("backup.json"));
  EXPECT_THAT(bda({"backup", "-o", "-", "--manifest", "-"}), Exits(1));
  EXPECT_THAT(bda({"backup", "-o", "same.syx", "--manifest", "same.syx"}), Exits(1));
}
