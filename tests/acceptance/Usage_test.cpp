// Help, wrong usage, unusable input, the place of the library.

#include <sys/stat.h>

#include "Program.h"
#include "bda/version.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

class Usage : public Program {
 protected:
  static std::vector<std::string> verbs() {
    return {"list",    "verify", "convert",    "explain",  "salvage",   "receive", "request", "screen", "contents",
            "find",    "show",   "apply",      "rename",   "favourite", "remove",  "copy",    "move",   "swap",
            "history", "undo",   "check",      "settings", "backup",    "restore", "diff",    "help",   "fetch",
            "record",  "send",   "instrument", "job",      "ports",     "replay"};
  }
};

}  // namespace

TEST_F(Usage, helpAndVersionGoToStandardOutput) {
  const Result help = bda({"--help"});
  EXPECT_THAT(help, Exits(0));
  for (const std::string& verb : verbs()) EXPECT_THAT(help.out, HasSubstr("\n  " + verb + " "));
  EXPECT_THAT(help.out, HasSubstr("Exit codes: 0 all good"));
  EXPECT_EQ(help.err, "");
  EXPECT_THAT(bda({"receive", "--help"}).out, HasSubstr("--trace"));
  EXPECT_THAT(bda({"list", "--help"}).out, HasSubstr("Usage: bda list [OPTIONS] FILE...\n"));
  EXPECT_EQ(bda({"-V"}).out, "bda " BDA_VERSION_STRING "\n");
}

TEST_F(Usage, helpListsTheVerbsByGroups) {
  const std::string help = bda({"--help"}).out;
  std::size_t at = 0;
  for (const char* line :
       {"\nFiles, without a library:\n  list ", "\n  verify ", "\nReceiving and answering:\n  receive ", "\n  request ",
        "\nThe instrument, at a port:\n  fetch ", "\n  record ", "\nThe library:\n  contents ", "\n  show ",
        "\nHelp:\n  help ", "\nOptions:\n"}) {
    at = help.find(line, at);
    EXPECT_NE(at, std::string::npos) << line;
  }
}

TEST_F(Usage, allHelpFits80Columns) {
  const auto fits = [&](const std::vector<std::string>& words) {
    for (const std::string& line : lines(bda(words).out)) EXPECT_LE(line.size(), 80u) << line;
  };
  fits({"--help"});
  for (const std::string& verb : verbs()) fits({verb, "--help"});
}

TEST_F(Usage, theHelpOfAVerbHasItsOptionsTheCommonOnesThatItHeedsAndTwoExamples) {
  for (const std::string& verb : verbs()) {
    const std::string help = bda({"help", verb}).out;
    EXPECT_EQ(help, bda({verb, "--help"}).out);
    EXPECT_THAT(help, HasSubstr("\nUsage: bda " + verb + " [OPTIONS]"));
    EXPECT_THAT(help, HasSubstr("\nCommon options:\n  -h, --help "));
    std::size_t examples = 0;
    for (std::size_t at = help.find("\nExamples:\n"); (at = help.find("\n  bda ", at)) != std::string::npos; ++at)
      ++examples;
    EXPECT_EQ(examples, 2u) << help;
  }
  EXPECT_THAT(bda({"help", "list"}).out, Not(HasSubstr("--library")));
  EXPECT_THAT(bda({"help", "verify"}).out, Not(HasSubstr("--library")));
  EXPECT_THAT(bda({"help", "contents"}).out, testing::AllOf(HasSubstr("--library FILE"), Not(HasSubstr("--names"))));
  EXPECT_THAT(bda({"help", "request"}).out, HasSubstr("--names FILE"));
  EXPECT_EQ(bda({"help"}).out, bda({"--help"}).out);
}

TEST_F(Usage, whatIsMisspeltIsAskedFor) {
  EXPECT_EQ(bda({"recieve", "a.syx"}).err,
            "bda: there is no verb \"recieve\": did you mean receive? (bda help tells more)\n");
  EXPECT_EQ(bda({"help", "favorite"}).err,
            "bda: there is no verb \"favorite\": did you mean favourite? (bda help tells more)\n");
  EXPECT_EQ(bda({"list", "--jsn", "a.syx"}).err,
            "bda: there is no option --jsn: did you mean --json? (bda help list tells more)\n");
  EXPECT_EQ(bda({"contents", "--libary=x.db"}).err,
            "bda: there is no option --libary: did you mean --library? (bda help contents tells more)\n");
  EXPECT_THAT(bda({"request", "voice:edti"}).err, HasSubstr("\"voice:edti\": did you mean voice:edit? Else one of "));
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"recieve"}, {"help", "favorite"}, {"list", "--jsn"}})
    EXPECT_THAT(bda(words), Exits(1));
}

TEST_F(Usage, wrongUsageExitsWith1AndSaysWhy) {
  write("a.syx", {blockDump({0, 0, 0})});
  const std::vector<std::vector<std::string>> wrong{
      {},
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
      {"rename"},
      {"rename", "--from", "a.txt", "voice:edit", "Name"},
      {"copy", "voice:user1:1"},
      {"copy", "voice:user1:1", "voice:user1:2", "voice:user1:3"},
      {"copy", "system", "system"},
      {"copy", "voice:user1:1..3", "voice:user1:1..2"},
      {"copy", "voice:user1:1..3", "voice:user1:127"},
      {"move", "voice:user1", "voice:mix"},
      {"move", "voice:user1:1", "voice:user1:2", "--from-library", "a.db"},
      {"swap", "voice:user1:1..3", "voice:user1:3"},
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
  EXPECT_EQ(bda({"dance", "a.syx"}).err, "bda: there is no verb \"dance\" (bda help tells more)\n");
  EXPECT_EQ(bda({}).err, "bda: expected a verb (bda help tells more)\n");
  EXPECT_EQ(bda({"list"}).err, "bda: FILE is required (bda help list tells more)\n");
  EXPECT_EQ(bda({"--bogus"}).err, "bda: there is no option --bogus (bda help tells more)\n");
  EXPECT_THAT(bda({"receive", "a.syx", "--port", "x"}).err, HasSubstr("\"x\": expected 1, 4, 5 or 6"));
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
  removeLibrary();
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

TEST_F(Usage, nothingButAFileIsALibrary) {
  std::filesystem::create_directory(directory / "folder");
  ASSERT_EQ(::mkfifo((directory / "pipe").c_str(), 0600), 0);
  for (const auto& [library, what] :
       {std::pair("folder", "a folder"), {"/dev/null", "a device or a pipe"}, {"pipe", "a device or a pipe"}})
    for (std::vector<std::string> words :
         std::vector<std::vector<std::string>>{{"contents"},
                                               {"check"},
                                               {"history"},
                                               {"find", "x"},
                                               {"settings"},
                                               {"backup", "-o", "b.syx"},
                                               {"settings", "device-number", "3"},
                                               {"settings", "device-number", "3", "--dry-run"},
                                               {"rename", "voice:edit", "A"},
                                               {"copy", "voice:edit", "voice:user1:1"},
                                               {"undo"}}) {
      words.insert(words.end(), {"--library", library});
      const Result run = bda(words);
      EXPECT_THAT(run, Exits(2)) << testing::PrintToString(words);
      EXPECT_THAT(run.err, HasSubstr(std::string(library) + " is no library: it is " + what));
    }
  EXPECT_THAT(bda({"copy", "voice:edit", "voice:user1:1", "--from-library", "folder"}), Exits(2));
  EXPECT_TRUE(std::filesystem::is_empty(directory / "folder"));
  EXPECT_FALSE(exists("b.syx"));
}

TEST_F(Usage, anOutputThatTheRunNeedsIsRefusedAndStaysAsItIs) {
  ASSERT_THAT(bda({"settings", "device-number", "1"}), Exits(0));
  write("a.syx", {request({0, 0, 0})});
  write("my.names", "waveform 1 Grand Piano\n");
  std::filesystem::create_symlink("library.db", directory / "link");
  std::filesystem::create_hard_link(directory / "library.db", directory / "hard");
  const std::string library = read("library.db");
  const std::string input = read("a.syx");
  const std::vector<std::vector<std::string>> verbs{{"backup", "-o"},
                                                    {"screen", "-o"},
                                                    {"request", "system", "-o"},
                                                    {"request", "system", "-o", "other", "--trace"},
                                                    {"receive", "a.syx", "-o"},
                                                    {"receive", "a.syx", "--trace"}};
  const auto refuses = [&](std::vector<std::string> words, const std::string& file, const std::string& why) {
    words.push_back(file);
    words.insert(words.end(), {"--names", "my.names"});
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(1)) << testing::PrintToString(words);
    EXPECT_THAT(run.err, HasSubstr(file + ": " + why));
    EXPECT_EQ(run.out, "");
  };
  for (const auto& verb : verbs) {
    for (const char* file : {"library.db", "./library.db", "link", "hard"}) refuses(verb, file, "this is the library");
    for (const char* file : {"library.db-wal", "library.db-shm", "library.db-journal"})
      refuses(verb, file, "this belongs to the library");
    refuses(verb, "my.names", "these are the names of waveforms, arpeggios and parameters");
  }
  refuses({"receive", "a.syx", "-o"}, "a.syx", "this is also an input");
  refuses({"receive", "a.syx", "--trace"}, "./a.syx", "this is also an input");
  refuses({"receive", "a.syx", "-o", "new", "--trace"}, "./new", "-o names this file too");
  refuses({"request", "system", "-o", "new", "--trace"}, "new", "-o names this file too");
  EXPECT_EQ(read("library.db"), library);
  EXPECT_EQ(read("a.syx"), input);
  EXPECT_THAT(files(), ElementsAre("a.syx", "hard", "link", "my.names"));
}

TEST_F(Usage, noOutputTakesThePlaceOfACopyOfAnOlderVersionOrOfNames) {
  write("a.syx", {request({0, 0, 0})});
  write("library.db.v1", "kept");
  std::filesystem::create_symlink("library.db.v1", directory / "link");
  std::filesystem::create_hard_link(directory / "library.db.v1", directory / "hard");
  const auto refuses = [&](std::vector<std::string> words, const std::string& file) {
    words.push_back(file);
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(1)) << testing::PrintToString(words);
    EXPECT_THAT(run.err, HasSubstr(file + ": this belongs to the library"));
  };
  for (const std::vector<std::string>& verb :
       std::vector<std::vector<std::string>>{{"backup", "-o"},
                                             {"backup", "-o", "b.syx", "--manifest"},
                                             {"request", "system", "-o"},
                                             {"request", "system", "--transcript"},
                                             {"receive", "a.syx", "--trace"},
                                             {"salvage", "a.syx", "-o"},
                                             {"salvage", "a.syx", "-o", "b.syx", "--requests"},
                                             {"convert", "a.syx", "-o"}})
    for (const char* file :
         {"library.db.v1", "./library.db.v1.2", "library.db.v1.part", "library.db.v1.part.12", "link", "hard"})
      refuses(verb, file);
  write("my.names", "");
  refuses({"request", "system", "--names", "my.names", "-o"}, "library.db.names");
  EXPECT_EQ(read("library.db.v1"), "kept");
  for (const char* file : {"library.db.v12", "library.db.v1.", "library.db.v1.x", "library.db.v2", "other.db.v1"})
    EXPECT_THAT(bda({"request", "system", "-o", file}), Exits(0)) << file;
}

TEST_F(Usage, aLibraryThatIsStillToComeIsNoOutputEither) {
  removeLibrary();
  write("a.syx", {request({0, 0, 0})});
  EXPECT_THAT(bda({"receive", "a.syx", "-o", "library.db"}), Exits(1));
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(Usage, devicesMayBeNamedTwice) {
  EXPECT_THAT(bda({"request", "system", "-o", "/dev/null", "--trace", "/dev/null"}), Exits(0));
}

TEST_F(Usage, anEmptyFileNameIsWrongUsage) {
  removeLibrary();
  write("a.syx", {blockDump({0, 0, 0})});
  const std::vector<std::vector<std::string>> wrong{{"contents", "--library", ""},
                                                    {"contents", "--names", ""},
                                                    {"backup", "-o", ""},
                                                    {"screen", "-o", ""},
                                                    {"request", "system", "-o", ""},
                                                    {"request", "system", "--trace", ""},
                                                    {"receive", "a.syx", "-o", ""},
                                                    {"receive", "a.syx", "--trace", ""},
                                                    {"receive", "a.syx", ""},
                                                    {"list", ""},
                                                    {"verify", ""},
                                                    {"restore", ""},
                                                    {"diff", "", "a.syx"},
                                                    {"diff", "a.syx", ""},
                                                    {"apply", "system", ""},
                                                    {"rename", "--from", ""},
                                                    {"copy", "voice:edit", "voice:user1:1", "--from-library", ""}};
  for (const auto& words : wrong) {
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(1)) << testing::PrintToString(words);
    EXPECT_THAT(run.err, HasSubstr("an empty file name"));
  }
  // or the file that follows would be taken for the trace, and be replaced
  const Result run = bda({"receive", "--trace=", "a.syx", "a.syx"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("--trace=: an empty value"));
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(Usage, theLibraryIsFoundByOptionThenEnvironmentThenDefault) {
  removeLibrary();
  EXPECT_THAT(bda({"--library", "mine.db", "settings", "device-number", "3"}), Exits(0));
  EXPECT_TRUE(exists("mine.db"));
  EXPECT_FALSE(exists("library.db"));
  EXPECT_EQ(bda({"settings", "--library", "mine.db", "device-number"}).out, "3\n");
  EXPECT_THAT(bdaWithout("BDA_LIBRARY", {"settings", "device-number", "4"}), Exits(0));
  EXPECT_TRUE(exists("XDG_DATA_HOME/bda/library.db"));
  EXPECT_THAT(bdaWithout("XDG_DATA_HOME", {"settings", "device-number", "5"}), Exits(0));
  EXPECT_TRUE(exists("HOME/.local/share/bda/library.db"));
}
