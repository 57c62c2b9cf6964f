// Transcripts of runs at a library and on a wire, and those runs once more.

#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>

#include "Library.h"
#include "Program.h"
#include "Serving.h"
#include "editor/contents/TemporaryLibrary.h"
#include "messages/Messages.h"
#include "midi/Hex.h"
#include "wire/BytePort.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr Editor::BulkAddress kVoice{0x0E, 0x0A, 0x05};
constexpr Editor::BulkAddress kMaster{0x0E, 0x70, 0x03};

class Transcript : public Program {
 protected:
  Transcript() {
    write("all.syx", {unit(kVoice, BDA::List::normalVoice, 0x41), unit(kMaster, BDA::List::master), systemDump(1)});
  }

  // The lines that have it.
  std::vector<Json> linesWith(const std::string& key, const Json& value) const {
    std::vector<Json> found;
    for (const Json& line : trace("run.jsonl"))
      if (line.contains(key) && (value.is_null() || line.at(key) == value)) found.push_back(line);
    return found;
  }
  std::vector<std::string> transcribed(std::vector<std::string> words) const {
    words.insert(words.end(), {"--transcript", "run.jsonl", "--with-library"});
    return words;
  }
};

}  // namespace

TEST_F(Transcript, ofReceiveHasTheTraceOfEachMessageAndIsDoneAgain) {
  EXPECT_THAT(bda(transcribed({"receive", "-q", "all.syx", "--trace", "trace.jsonl"})), Exits(0));
  std::vector<Json> handed = linesWith("outcome", nullptr);
  const std::vector<Json> traced = trace("trace.jsonl");
  ASSERT_EQ(handed.size(), traced.size());
  for (std::size_t i = 0; i < traced.size(); ++i) {
    EXPECT_EQ(handed[i].at("direction"), "in");
    EXPECT_EQ(handed[i].at("bytes"), traced[i].at("in"));
    Json expected = traced[i];
    for (const char* const key : {"in", "sent"}) expected.erase(key);
    for (const auto& [key, value] : expected.items()) EXPECT_EQ(handed[i].at(key), value) << key;
  }
  const Result again = bda({"replay", "run.jsonl"});
  EXPECT_THAT(again, Exits(0));
  EXPECT_THAT(again.err, HasSubstr(std::to_string(traced.size()) + " messages replayed: no difference"));
}

TEST_F(Transcript, aReplayChangesNoLibrary) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--transcript", "run.jsonl"}), Exits(0));
  removeLibrary();
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--library", "old.db"}), Exits(0));
  const std::string before = read("old.db");
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(2));
  EXPECT_THAT(bda({"replay", "run.jsonl"}).err, AllOf(HasSubstr("--from-library"), HasSubstr("library.db")));
  EXPECT_THAT(bda({"replay", "run.jsonl", "--from-library", "old.db"}),
              Exits(3));  // it holds already what was new then
  EXPECT_EQ(read("old.db"), before);
  EXPECT_FALSE(exists("library.db"));
}

TEST_F(Transcript, meetsTheLibraryThatTheCommandLineNamesWhereItHoldsNone) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--library", "full.db"}), Exits(0));
  EXPECT_THAT(bda({"request", "-q", "master:4", "-o", "x.syx", "--library", "full.db", "--transcript", "run.jsonl"}),
              Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(2)) << "one that nobody has named is none";
  EXPECT_THAT(bda({"replay", "run.jsonl", "--library", "full.db"}), Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl", "--library", "library.db"}), Exits(3)) << "where nothing is stored";
  EXPECT_THAT(bda({"replay", "run.jsonl", "--library", "library.db", "--from-library", "full.db"}), Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl", "--library", "missing.db"}), Exits(2));
  EXPECT_THAT(bda({"help", "replay"}).out, HasSubstr("--library FILE"));
  EXPECT_THAT(bda(transcribed({"request", "-q", "master:4", "-o", "x.syx", "--library", "full.db"})), Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl", "--library", "library.db"}), Exits(0)) << "it holds its own";
}

TEST_F(Transcript, ofRequestIsDoneAgain) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx"}), Exits(0));
  EXPECT_THAT(bda(transcribed({"request", "-q", "voice:user1:6", "system", "master:9", "-o", "out.syx"})), Exits(3));
  std::string sent;
  for (const Json& line : linesWith("direction", "out")) sent += line.at("bytes").get<std::string>() + "\n";
  write("sent.txt", sent);
  EXPECT_THAT(bda({"convert", "-q", "sent.txt", "-o", "sent.syx"}), Exits(0));
  EXPECT_EQ(read("sent.syx"), read("out.syx"));
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, anAlteredLineIsTheFirstDifference) {
  EXPECT_THAT(bda(transcribed({"receive", "-q", "all.syx"})), Exits(0));
  std::string text = read("run.jsonl");
  const std::size_t at = text.find("accepted");
  text[at] = 'A';
  write("altered.jsonl", text);
  const auto line = std::count(text.begin(), text.begin() + std::ptrdiff_t(at), '\n') + 1;
  const Result again = bda({"replay", "altered.jsonl"});
  EXPECT_THAT(again, Exits(3));
  EXPECT_THAT(again.err, HasSubstr("altered.jsonl, line " + std::to_string(line) + ": "));
}

TEST_F(Transcript, ofWhatIsRefusedByWholeHasItWithoutATrace) {
  write("half.syx", {dump(kMaster), dump(kVoice)});
  EXPECT_THAT(bda(transcribed({"receive", "--whole", "-q", "half.syx", "all.syx"})), Exits(3));
  EXPECT_EQ(linesWith("direction", "in").size(), linesWith("outcome", nullptr).size() + 2);
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, ofMessagesForAnyDeviceIsDoneAgain) {
  write("all.syx", {dump(kMaster)});
  EXPECT_THAT(bda({"settings", "device-number", "5"}), Exits(0));
  EXPECT_THAT(bda(transcribed({"receive", "-q", "--any-device", "all.syx"})), Exits(3));
  EXPECT_EQ(linesWith("outcome", "accepted").size(), 1U);
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, ofTheNamesThatWereUsedIsDoneAgainWithout) {
  write("library.db.names", "waveform 1 Grand Piano\n");
  EXPECT_THAT(bda({"receive", "-q", "all.syx"}), Exits(0));
  EXPECT_THAT(bda(transcribed({"request", "-q", "names:waveforms:1", "-o", "names.syx"})), Exits(0));
  EXPECT_THAT(read("names.syx"), HasSubstr("Grand Piano"));
  std::filesystem::remove(directory / "library.db.names");
  EXPECT_EQ(linesWith("transcript", 1).at(0).at("names"), "waveform 1 Grand Piano\n");
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, ofAnInstrumentAndOfWhoFetchesFromItAreDoneAgain) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--library", "instrument.db"}), Exits(0));
  Serving instrument(std::string(BDA_PROGRAM) + " instrument --on pty: --pace none --library '" +
                     (directory / "instrument.db").string() + "' --transcript '" +
                     (directory / "instrument.jsonl").string() + "' --with-library 2>/dev/null");
  EXPECT_THAT(bda(transcribed({"fetch", "-q", "voice:user1:6", "file:voice:user1:6", "master:4", "system", "--pace",
                               "none", "--from", instrument.path})),
              Exits(0));
  EXPECT_EQ(instrument.stop(), 130);
  EXPECT_THAT(bda({"replay", "instrument.jsonl"}), Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));

  // What the one sent the other heard, and the other way round.
  const auto passed = [&](const std::string& file, const char* direction) {
    std::vector<std::string> bytes;
    for (const Json& line : trace(file))
      if (line.value("direction", "") == direction && line.value("passedOn", true) && line.at("bytes") != "")
        bytes.push_back(line.at("bytes").get<std::string>());
    return bytes;
  };
  EXPECT_EQ(passed("instrument.jsonl", "in"), passed("run.jsonl", "out"));
  std::vector<std::string> heard = passed("run.jsonl", "in");
  std::erase(heard, Editor::formatHex(Editor::writeTrigger(0)));  // which fetch itself gives its library
  EXPECT_EQ(passed("instrument.jsonl", "out"), heard);
}

TEST_F(Transcript, ofSendHasWhatTheLibraryAnsweredWhenItWentOut) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx"}), Exits(0));
  const Result sent = bda(transcribed({"send", "-q", "voice:user1:6", "--to", "-"}));
  EXPECT_THAT(sent, Exits(0));
  EXPECT_EQ(sent.out, bda({"request", "-q", "voice:user1:6", "-o", "-"}).out);
  EXPECT_EQ(linesWith("direction", "out").size(), linesWith("message", 1).size() - 1);
  EXPECT_THAT(linesWith("passedOn", nullptr), IsEmpty());
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, ofAJobIsDoneAgainAsOne) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx"}), Exits(0));
  EXPECT_THAT(bda({"settings", "receive-bulk", "off"}), Exits(0));
  EXPECT_THAT(bda(transcribed({"job", "-q", "voice", "--to", "-"})), Exits(0));
  EXPECT_EQ(linesWith("job", "voice").size(), 1U);
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, ofRecordHasWhatArrivedAndNothingToDoAgain) {
  const std::string bytes = read("all.syx");
  EXPECT_THAT(bda(transcribed({"record", "-q", "--from", "-", "-o", "recorded.syx"}), bytes), Exits(0));
  EXPECT_EQ(linesWith("direction", "in").size(), trace("run.jsonl").size() - 1);
  const Result again = bda({"replay", "run.jsonl"});
  EXPECT_THAT(again, Exits(2));
  EXPECT_THAT(again.err, HasSubstr("nothing to replay"));
}

TEST_F(Transcript, thatCannotBeWrittenIsAFailure) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--transcript", "/dev/full"}), Exits(1));
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--transcript", "no/such/run.jsonl"}), Exits(1));
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--transcript", "library.db"}), Exits(1));
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--transcript", "all.syx"}), Exits(1));
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--with-library"}), Exits(1));
}

TEST_F(Transcript, thatCannotBeWrittenIsToldAtOnce) {
  Serving instrument("env -C '" + directory.string() +
                     "' " BDA_PROGRAM " instrument --on pty: --library library.db --transcript /dev/full 2>&1");
  EXPECT_EQ(instrument.path, "bda: /dev/full: cannot be written: No space left on device");
  EXPECT_EQ(instrument.stop(), 1);
  EXPECT_THAT(instrument.told, Not(HasSubstr("/dev/full")));
}

TEST_F(Transcript, intoAFifoNeedsSomebodyWhoReads) {
  ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
  const std::vector<std::string> run{"receive", "-q", "all.syx", "--transcript", "fifo", "--with-library"};
  const Result refused = bda(run);
  EXPECT_THAT(refused, Exits(1));
  EXPECT_EQ(refused.err, "bda: fifo: cannot be written: nobody reads from it\n");
  EXPECT_EQ(library().contents().size(), 0u);
  Serving reader("sh -c 'cd " + directory.string() + " && echo && exec cat fifo > run.jsonl'");
  Result read;
  for (int tries = 0; tries < 1000 && (read = bda(run)).code == 1; ++tries) {  // until it has opened it
  }
  EXPECT_THAT(read, Exits(0));
  EXPECT_EQ(reader.wait(), 0);
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, ofTwoRunsIsThatOfTheFirst) {
  Serving first("env -C '" + directory.string() +
                "' " BDA_PROGRAM " instrument --on pty: --library library.db --transcript run.jsonl 2>/dev/null");
  const Result second = bda({"receive", "all.syx", "--transcript", "run.jsonl"});
  EXPECT_THAT(second, Exits(1));
  EXPECT_THAT(second.err, HasSubstr("run.jsonl: cannot be written: it is the transcript of another run"));
  EXPECT_EQ(library().contents().size(), 0u);
  EXPECT_EQ(first.stop(), 130);
  EXPECT_EQ(linesWith("verb", "instrument").size(), 1U);
  EXPECT_EQ(trace("run.jsonl").size(), 1U);
  EXPECT_THAT(bda(transcribed({"receive", "-q", "all.syx"})), Exits(0)) << "and then that of another";
  for (int runs = 0; runs < 2; ++runs)
    EXPECT_THAT(bda({"receive", "-q", "all.syx", "--transcript", "/dev/null"}), Exits(0));
}

TEST_F(Transcript, aRunThatCannotBeginLeavesTheFileAsItWas) {
  write("run.jsonl", "before\n");
  const std::vector<std::vector<std::string>> runs{
      {"fetch", "voice:edit", "--from", "/nope"},
      {"record", "--from", "/nope", "-o", "x.syx"},
      {"instrument", "--on", "/nope"},
      {"send", "all.syx", "--to", "/nope"},
      {"send", "voice:edit", "--to", "/nope"},
      {"job", "voice", "--to", "/nope"},
      {"send", "missing.syx", "--to", "-"},
      {"request", "voice:edit", "--library", "no/such.db", "-o", "x.syx"},
      {"receive", "missing.syx"},
  };
  for (const std::vector<std::string>& run : runs) {
    EXPECT_NE(bda(transcribed(run)).code, 0) << run[0];
    EXPECT_EQ(read("run.jsonl"), "before\n") << run[0];
    std::filesystem::remove(directory / "run.jsonl");
    bda(transcribed(run));
    EXPECT_FALSE(exists("run.jsonl")) << run[0];
    write("run.jsonl", "before\n");
  }
  const std::string dump = read("all.syx");
  EXPECT_THAT(bda({"send", "all.syx", "--to", "pty:", "--transcript", "all.syx"}), Exits(1));
  EXPECT_EQ(read("all.syx"), dump);
}

TEST_F(Transcript, aLinkThatLeadsNowhereStaysWhereARunCannotBegin) {
  const std::filesystem::path link = directory / "link";
  std::filesystem::create_symlink("run.jsonl", link);
  for (const char* const verb : {"fetch", "record"}) {
    std::vector<std::string> run{verb, "--from", "/nope", "--transcript", "link", "-o", "x.syx"};
    if (verb == std::string("fetch")) run.insert(run.begin() + 1, "voice:edit");
    EXPECT_THAT(bda(run), Exits(2));
    EXPECT_TRUE(std::filesystem::is_symlink(link)) << verb;
    EXPECT_FALSE(exists("run.jsonl")) << verb;
  }
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--transcript", "link"}), Exits(0));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_THAT(linesWith("verb", "receive"), Not(IsEmpty()));
}

TEST_F(Transcript, isNothingForStandardOutput) {
  EXPECT_THAT(bda({"receive", "all.syx", "--transcript", "-"}), Exits(1));
}

TEST_F(Transcript, isNotWhereStandardOutputGoes) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx"}), Exits(0));
  const auto run = [&](const std::string& words) {
    const std::string command = "cd '" + directory.string() + "' && BDA_LIBRARY=library.db " BDA_PROGRAM " " + words;
    const int status = std::system(command.c_str());
    return WEXITSTATUS(status);
  };
  const std::string why = "--transcript out: this is standard output, where lines of this run go";
  for (const char* const words : {"request voice:user1:6", "receive --json --dry-run all.syx", "receive all.syx",
                                  "record --from pty: -o r.syx --json", "instrument --on pty: --json"}) {
    EXPECT_EQ(run(words + std::string(" --transcript out > out 2> err")), 1) << words;
    EXPECT_THAT(read("err"), HasSubstr(why)) << words;
    EXPECT_EQ(read("out"), "") << words;
  }
  EXPECT_EQ(run("receive -q all.syx -o out > out 2> err"), 1);
  EXPECT_EQ(run("request voice:user1:6 --transcript /dev/stdout 2> err | cat > out; grep -q 'standard output' err"), 0);
  EXPECT_EQ(read("out"), "");
  // What says nothing there may write it by whatever name.
  EXPECT_EQ(run("request -q voice:user1:6 -o /dev/stdout --transcript run.jsonl | cat > out"), 0);
  EXPECT_EQ(read("out"), bda({"request", "-q", "voice:user1:6", "-o", "-"}).out);
  EXPECT_EQ(run("receive -q all.syx --transcript /dev/null > /dev/null"), 0);
}

// Its bytes were for standard output, which is that file.
TEST_F(Transcript, isNotWhereThePortGoes) {
  const std::string command =
      "cd '" + directory.string() + "' && " BDA_PROGRAM " send all.syx --to - --transcript out > out 2> err";
  const int status = std::system(command.c_str());
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_THAT(read("err"), HasSubstr("--transcript out: this is the port"));
}

// The run brings it to this version, and leaves a copy as it was.
TEST_F(Transcript, ofALibraryOfVersion1IsDoneAgain) {
  removeLibrary();
  Editor::makeOldLibrary(libraryFile());
  const std::string old = read("library.db");
  EXPECT_THAT(bda(transcribed({"request", "-q", "file:voice:user1:6", "system", "-o", "out.syx"})), Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl", "--from-library", "library.db"}), Exits(0));
  EXPECT_EQ(read("library.db"), old);

  EXPECT_THAT(bda(transcribed({"receive", "-q", "all.syx"})), Exits(0));
  EXPECT_NE(read("library.db"), old);
  EXPECT_EQ(read("library.db.v1"), old);
  removeLibrary();
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl", "--from-library", "library.db.v1"}), Exits(0));
  EXPECT_EQ(read("library.db.v1"), old);

  Editor::makeOldLibrary(libraryFile());
  Serving instrument("env -C '" + directory.string() +
                     "' " BDA_PROGRAM
                     " instrument --on pty: --library library.db --transcript run.jsonl --with-library 2>/dev/null");
  EXPECT_THAT(bda({"send", "-q", "all.syx", "--verify", "--pace", "none", "--to", instrument.path}), Exits(0));
  EXPECT_EQ(instrument.stop(), 130);
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
  EXPECT_EQ(read("library.db.v1.2"), old);
}

TEST_F(Transcript, whoseLibraryCannotBeReadNamesNoOther) {
  EXPECT_THAT(bda(transcribed({"receive", "-q", "all.syx"})), Exits(0));
  std::vector<Json> all = trace("run.jsonl");
  std::string unsealed;
  all[0]["library"] = "AAAA";
  for (Json& line : all) {
    line.erase("hash");
    line.erase("sealed");
    unsealed += line.dump() + "\n";
  }
  write("other.jsonl", unsealed);
  const Result again = bda({"replay", "other.jsonl"});
  EXPECT_THAT(again, Exits(2));
  EXPECT_EQ(again.err, "bda: other.jsonl: the library in it: it is no library\n");
}

TEST_F(Transcript, whoseFirstLineIsNoneAnyMoreWasAltered) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--transcript", "run.jsonl"}), Exits(0));
  const std::string text = read("run.jsonl");
  write("brace.jsonl", "[" + text.substr(1));
  std::string key = text;
  key[key.find("libraryName")] = 'L';
  write("key.jsonl", key);
  write("missing.jsonl", text.substr(text.find('\n') + 1));
  for (const char* const file : {"brace.jsonl", "key.jsonl", "missing.jsonl"}) {
    const Result again = bda({"replay", file});
    EXPECT_THAT(again, Exits(3)) << file;
    EXPECT_THAT(again.err, HasSubstr(std::string(file) + ", line 1: ")) << file;
  }
  write("cut.jsonl", text.substr(1, text.find('\n')));
  EXPECT_THAT(bda({"replay", "cut.jsonl"}), Exits(2)) << "nothing says that it was one";
}

TEST_F(Transcript, ofTheScreenIsDoneAgain) {
  EXPECT_THAT(bda(transcribed({"request", "-q", "screen", "-o", "screen.syx"})), Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, whoseLastLineIsCutOrAlteredIsNotAllTheSame) {
  EXPECT_THAT(bda(transcribed({"receive", "-q", "all.syx"})), Exits(0));
  std::string text = read("run.jsonl");
  text.pop_back();
  write("whole.jsonl", text);
  EXPECT_THAT(bda({"replay", "whole.jsonl"}), Exits(0));
  write("cut.jsonl", text.substr(0, text.size() - 1));
  EXPECT_THAT(bda({"replay", "cut.jsonl"}), Exits(3));
  EXPECT_THAT(bda({"replay", "cut.jsonl"}).err, HasSubstr("its last line is cut short"));
  text[text.rfind("F7")] = 'E';
  write("altered.jsonl", text);
  EXPECT_THAT(bda({"replay", "altered.jsonl"}), Exits(3));
  EXPECT_THAT(bda({"replay", "altered.jsonl"}).err, HasSubstr("altered or removed"));
  std::string head = read("run.jsonl");
  head[head.find("\"library\":\"") + 40] ^= 1;
  write("head.jsonl", head);
  EXPECT_THAT(bda({"replay", "head.jsonl"}), Exits(3));
  EXPECT_THAT(bda({"replay", "head.jsonl"}).err, HasSubstr("head.jsonl, line 1: "));
}

// The faults are not the assistant's: what it made of each message is the same without them.
TEST_F(Transcript, ofAnInstrumentWithFaultsIsDoneAgain) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--library", "instrument.db"}), Exits(0));
  Serving instrument(std::string(BDA_PROGRAM) + " instrument --on pty: --library '" +
                     (directory / "instrument.db").string() + "' --transcript '" + (directory / "run.jsonl").string() +
                     "' --with-library --faults flip=20%,cut=10%,repeat=20%,drop=10%,reorder=30% --seed 3 2>/dev/null");
  bda({"fetch", "voice:user1:6", "master:4", "system", "--from", instrument.path, "--timeout", "0.2", "--pace", "none",
       "-o", "some.syx"});
  instrument.stop();
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, ofAnInstrumentThatHearsWithFaultsIsDoneAgain) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--library", "instrument.db"}), Exits(0));
  Serving instrument("env -C '" + directory.string() +
                     "' " BDA_PROGRAM
                     " instrument --on pty: --library instrument.db --transcript run.jsonl --with-library "
                     "--faults in-drop=30%,in-flip=30%,in-cut=10% --seed 3 2>'" +
                     (directory / "told").string() + "'");
  bda({"fetch", "voice:user1:6", "master:4", "system", "--from", instrument.path, "--timeout", "0.1", "--pace", "none",
       "-o", "some.syx"});
  instrument.stop();
  EXPECT_FALSE(linesWith("passedOn", false).empty());
  EXPECT_THAT(read("told"), HasSubstr("lost or altered by a fault before it was handled\n"));
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, ofAnInstrumentSaysWhatHasNotGoneOut) {
  EXPECT_THAT(bda({"receive", "-q", "all.syx", "--library", "instrument.db"}), Exits(0));
  Serving instrument(std::string(BDA_PROGRAM) + " instrument --on pty: --pace 500 --library '" +
                     (directory / "instrument.db").string() + "' --transcript '" + (directory / "run.jsonl").string() +
                     "' --with-library 2>/dev/null");
  Editor::BytePort port(instrument.path, Editor::BytePort::Direction::both);
  const std::vector<std::uint8_t> request = Editor::requestMessage(kVoice, 0);
  EXPECT_EQ(port.send(request), request.size());
  std::size_t heard = 0;
  while (heard < 100) heard += port.wait(port.now() + std::chrono::milliseconds(200), false).size();
  EXPECT_EQ(instrument.stop(), 130);
  EXPECT_FALSE(linesWith("passedOn", false).empty());
  EXPECT_THAT(bda({"replay", "run.jsonl"}), Exits(0));
}

TEST_F(Transcript, whatIsNoneIsRefused) {
  write("none.jsonl", "{\"message\": 1}\n");
  EXPECT_THAT(bda({"replay", "none.jsonl"}), Exits(2));
  EXPECT_THAT(bda({"replay", "all.syx"}), Exits(2));
  EXPECT_THAT(bda({"replay", "missing.jsonl"}), Exits(2));
  EXPECT_THAT(bda(transcribed({"receive", "-q", "all.syx"})), Exits(0));
  EXPECT_THAT(bda({"replay", "run.jsonl", "--from-library", "missing.db"}), Exits(2));
  EXPECT_THAT(bda({"replay", "-"}, read("run.jsonl")), Exits(0));
}
