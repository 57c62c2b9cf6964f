// Help, wrong usage, unusable input, the place of the library.

#include "Program.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

class Usage : public Program {};

}  // namespace

TEST_F(Usage, helpAndVersionGoToStandardOutput) {
  const Result help = bda({"--help"});
  EXPECT_THAT(help, Exits(0));
  for (const char* verb : {"list", "verify", "receive", "request", "show", "apply", "settings", "contents", "backup",
                           "restore", "diff", "rename", "favourite", "remove", "screen"})
    EXPECT_THAT(help.out, HasSubstr(std::string("\n  ") + verb + " "));
  EXPECT_THAT(help.out, HasSubstr("Exit codes: 0 all good"));
  EXPECT_EQ(help.err, "");
  EXPECT_THAT(bda({"receive", "--help"}).out, HasSubstr("--trace"));
  EXPECT_THAT(bda({"-V"}).out, StartsWith("bda 0."));
}

TEST_F(Usage, wrongUsageExitsWith1AndSaysWhy) {
  write("a.syx", {blockDump({0, 0, 0})});
  const std::vector<std::vector<std::string>> wrong{{},
                                                    {"dance"},
                                                    {"list"},
                                                    {"list", "--nonsense", "a.syx"},
                                                    {"receive", "--port", "2", "a.syx"},
                                                    {"request", "0E0A"},
                                                    {"request", "voice:user9:1"},
                                                    {"show"},
                                                    {"show", "000000"},
                                                    {"apply", "system"},
                                                    {"settings", "colour"},
                                                    {"settings", "device-number", "17"},
                                                    {"-q", "-v", "contents"},
                                                    {"backup"},
                                                    {"restore"},
                                                    {"diff", "a.syx"},
                                                    {"diff", "-", "-"},
                                                    {"remove"},
                                                    {"screen"},
                                                    {"request", "system", "--trace", "-"}};
  for (const auto& arguments : wrong) {
    const Result run = bda(arguments);
    EXPECT_THAT(run, Exits(1)) << testing::PrintToString(arguments);
    EXPECT_THAT(run.err, Not(IsEmpty()));
    EXPECT_EQ(run.out, "");
  }
}

TEST_F(Usage, aVerbThatDoesNotExistIsNamed) {
  EXPECT_EQ(bda({"dance", "a.syx"}).err, "bda: there is no verb \"dance\" (bda --help tells more)\n");
  EXPECT_EQ(bda({"list"}).err, "bda: FILE is required (bda --help tells more)\n");
}

TEST_F(Usage, inputThatCannotBeUsedExitsWith2AndSaysWhy) {
  write("empty.syx", "");
  write("text.syx", "no MIDI here");
  EXPECT_THAT(bda({"list", "none.syx"}).err, HasSubstr("none.syx: No such file or directory"));
  EXPECT_THAT(bda({"list", "empty.syx"}).err, HasSubstr("empty.syx: no System Exclusive message in it"));
  for (const char* file : {"none.syx", "empty.syx", "text.syx", "."})
    for (const char* verb : {"list", "verify", "receive"})
      EXPECT_THAT(bda({verb, file}), Exits(2)) << verb << ' ' << file;
}

TEST_F(Usage, oneFileThatCannotBeUsedKeepsTheOthersFromBeingReceived) {
  write("a.syx", {blockDump({0, 0, 0}, 1)});
  EXPECT_THAT(bda({"receive", "a.syx", "none.syx"}), Exits(2));
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(Usage, aLibraryThatIsNoneExitsWith2AndStaysAsItIs) {
  write("notes.txt", "my notes");
  write("a.syx", {blockDump({0, 0, 0})});
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"receive", "a.syx"},
                                                    {"request", "system"},
                                                    {"show", "system"},
                                                    {"contents"},
                                                    {"settings"}}) {
    std::vector<std::string> words{"--library", "notes.txt"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(2));
    EXPECT_THAT(run.err, HasSubstr("notes.txt is no library"));
  }
  EXPECT_EQ(read("notes.txt"), "my notes");
  EXPECT_THAT(files(), ElementsAre("a.syx", "notes.txt"));
}

TEST_F(Usage, theLibraryIsFoundByOptionThenEnvironmentThenDefault) {
  EXPECT_THAT(bda({"--library", "mine.db", "settings", "device-number", "3"}), Exits(0));
  EXPECT_TRUE(exists("mine.db"));
  EXPECT_FALSE(exists("library.db"));
  EXPECT_EQ(bda({"settings", "--library", "mine.db", "device-number"}).out, "3\n");
  EXPECT_THAT(bdaWithout("BDA_LIBRARY", {"settings", "device-number", "4"}), Exits(0));
  EXPECT_TRUE(exists("XDG_DATA_HOME/bda/library.db"));
  EXPECT_THAT(bdaWithout("XDG_DATA_HOME", {"settings", "device-number", "5"}), Exits(0));
  EXPECT_TRUE(exists("HOME/.local/share/bda/library.db"));
}
