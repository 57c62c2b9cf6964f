// What comes in: files of other kinds, pipes that never end, messages for other devices, and ends before the end.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>

#include "Library.h"
#include "Program.h"

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

constexpr Editor::BulkAddress kUserVoice6Header{0x0E, 0x0A, 0x05};

// What has been freed stays in memory for a while where the address sanitizer looks on.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define BDA_KEEPS_FREED_MEMORY
#endif
#endif
#if defined(BDA_KEEPS_FREED_MEMORY) || defined(__SANITIZE_ADDRESS__)
constexpr bool kKeepsFreedMemory = true;
#else
constexpr bool kKeepsFreedMemory = false;
#endif

class Input : public Program {
 protected:
  // A program that runs while the test feeds it.
  class Running {
   public:
    Running(
        const Input& test, std::vector<std::string> arguments, const std::function<void()>& prepare = [] {}) {
      int in[2];
      int out[2];
      EXPECT_EQ(::pipe2(in, O_CLOEXEC), 0);
      EXPECT_EQ(::pipe2(out, O_CLOEXEC), 0);
      arguments.insert(arguments.begin(), BDA_PROGRAM);
      std::vector<char*> argv;
      for (std::string& word : arguments) argv.push_back(word.data());
      argv.push_back(nullptr);
      const std::string library = "BDA_LIBRARY=" + test.libraryFile().string();
      const std::string errors = (test.directory / "errors").string();
      child_ = ::fork();
      if (child_ == 0) {
        ::dup2(in[0], 0);
        ::dup2(out[1], 1);
        const int file = ::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(file, 2);
        if (::chdir(test.directory.c_str()) != 0) ::_exit(126);
        prepare();
        char* environment[] = {const_cast<char*>(library.c_str()), nullptr};
        ::execve(BDA_PROGRAM, argv.data(), environment);
        ::_exit(127);
      }
      ::close(in[0]);
      ::close(out[1]);
      in_ = in[1];
      out_ = out[0];
    }
    ~Running() {
      closeInput();
      ::close(out_);
    }

    void feed(const Bytes& bytes) {
      for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t count = ::write(in_, bytes.data() + at, bytes.size() - at);
        ASSERT_GT(count, 0);
        at += std::size_t(count);
      }
    }
    void closeInput() {
      if (in_ >= 0) ::close(in_);
      in_ = -1;
    }
    // The next line of its standard output; waits for it.
    std::string line() {
      std::string text;
      for (char c = 0; ::read(out_, &c, 1) == 1 && c != '\n';) text += c;
      return text;
    }
    // The next bytes of its standard output; waits for them.
    Bytes bytes(std::size_t count) {
      Bytes all(count);
      std::size_t done = 0;
      while (done < count) {
        const ssize_t more = ::read(out_, all.data() + done, count - done);
        if (more <= 0) break;
        done += std::size_t(more);
      }
      EXPECT_EQ(done, count);
      return all;
    }
    void signal(int number) const { ::kill(child_, number); }
    // Its exit code, and what it had in memory at most, in KB.
    int end() {
      closeInput();
      char buffer[4096];
      while (::read(out_, buffer, sizeof buffer) > 0) {
      }
      int status = 0;
      rusage usage{};
      ::wait4(child_, &status, 0, &usage);
      memory = usage.ru_maxrss;
      return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    long memory = 0;

   private:
    pid_t child_ = -1;
    int in_ = -1;
    int out_ = -1;
  };
};

Bytes foreignMessage() { return {0xF0, 0x7E, 0x7F, 0x06, 0x01, 0xF7}; }

std::string lastLine(const std::string& text) {
  const std::vector<std::string> all = lines(text);
  return all.empty() ? "" : all.back();
}

}  // namespace

// ---- Files of other kinds -------------------------------------------------------------------------------------------

TEST_F(Input, aFileOfAnotherKindIsNamedInOneLine) {
  const struct {
    std::string bytes;
    const char* what;
  } kinds[] = {{std::string("\xFF\xD8\xFF\xE0\0\x10JFIF\xF0\xF7\x80\x90", 14), "a JPEG picture"},
               {std::string("\x7F"
                            "ELF\2\1\1\xF0\1\xF7",
                            10),
                "a program (ELF)"},
               {"Dear diary,\n", "text"},
               {"", "an empty file"},
               {std::string("PK\3\4\xF0\1", 6), "a ZIP archive"},
               {std::string("\1\2\3\xF0\1\xF7", 6), "something else"},
               {"RIFF\4\1\1\1WAVE", "a WAVE sound"},
               {std::string("\xF0\1\2\3", 4), "MIDI without a whole System Exclusive message"}};
  for (const auto& [bytes, what] : kinds) {
    write("other", bytes);
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{{"list", "other"},
                                                                                       {"list", "--json", "other"},
                                                                                       {"verify", "other"},
                                                                                       {"verify", "--json", "other"},
                                                                                       {"receive", "other"},
                                                                                       {"restore", "other"}}) {
      const Result run = bda(words);
      EXPECT_THAT(run, Exits(2)) << what << testing::PrintToString(words);
      EXPECT_THAT(run.out, IsEmpty());
      EXPECT_THAT(lines(run.err), ElementsAre(AllOf(StartsWith("bda: other: no System Exclusive message in it"),
                                                    HasSubstr(std::string("it seems to be ") + what))));
    }
    const Result piped = bda({"list", "--json", "-"}, bytes);
    EXPECT_THAT(piped, Exits(2)) << what;
    EXPECT_THAT(piped.err, HasSubstr(std::string("it seems to be ") + what));
  }
}

TEST_F(Input, onlyMessagesOfOtherMakersAreNothingToRestore) {
  write("other.syx", {foreignMessage()});
  EXPECT_THAT(bda({"list", "other.syx"}), Exits(0));
  EXPECT_THAT(bda({"verify", "other.syx"}), Exits(0));
  EXPECT_THAT(bda({"receive", "other.syx"}), Exits(0));
  const Result restored = bda({"restore", "other.syx"});
  EXPECT_THAT(restored, Exits(2));
  EXPECT_THAT(restored.err, HasSubstr("no message is for this instrument"));
}

TEST_F(Input, aFileThatBeginsOtherwiseIsOneOfMessagesWhenItHasOneForThisInstrument) {
  write("late.syx", "\1\2\3" + text(foreignMessage()) + text(blockDump({0x00, 0x00, 0x00})));
  EXPECT_THAT(bda({"list", "late.syx"}), Exits(0));
  EXPECT_THAT(lines(bda({"list", "late.syx"}).out), SizeIs(2));
  write("clock.syx", "\xF8\xF8" + text(foreignMessage()));
  EXPECT_THAT(bda({"list", "clock.syx"}), Exits(0));
}

TEST_F(Input, aRiffMidiFileIsOpened) {
  const Bytes message = blockDump({0x00, 0x00, 0x00}, 1);
  std::string track = std::string("\0\xF0", 2) + char(message.size() - 1) +
                      text(Bytes(message.begin() + 1, message.end())) + std::string("\0\xFF\x2F\0", 4);
  std::string file = std::string("MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0", 21) + char(track.size()) + track;
  write("file.rmi", std::string("RIFF\0\0\0\0RMIDdata", 16) + char(file.size()) + std::string("\0\0\0", 3) + file);
  const Result run = bda({"list", "--json", "file.rmi"});
  EXPECT_THAT(run, Exits(0));
  ASSERT_THAT(lines(run.out), SizeIs(1));
  EXPECT_EQ(Json::parse(run.out)["offset"], 20 + 22 + 1);
  EXPECT_THAT(bda({"receive", "file.rmi"}), Exits(0));
}

TEST_F(Input, complaintsThatAreAlikeEndAfterTwentyWithACount) {
  std::string bytes;
  for (int i = 0; i < 30; ++i) bytes += text(blockDump({0x00, 0x40, 0x00})) + "\1";
  write("stray.syx", bytes);
  for (const char* const verb : {"list", "verify", "receive"}) {
    const Result run = bda({verb, "stray.syx"});
    EXPECT_THAT(run, Exits(0));
    const std::vector<std::string> told = lines(run.err);
    EXPECT_EQ(std::count_if(told.begin(), told.end(),
                            [](const auto& line) { return line.find("1 byte dropped") != line.npos; }),
              20)
        << verb;
    EXPECT_THAT(run.err, HasSubstr("and 10 more: stray.syx: outside of any message\n")) << verb;
  }
  EXPECT_THAT(lines(bda({"list", "--json", "stray.syx"}).out), SizeIs(60));
}

TEST_F(Input, refusalsThatAreAlikeEndAfterTwentyWithACount) {
  std::string bytes;
  for (int i = 0; i < 30; ++i) bytes += text(damaged(blockDump({0x00, 0x40, 0x00})));
  write("damaged.syx", bytes + text(blockDump({0x41, 0x00, 0x00})));
  const Result run = bda({"receive", "damaged.syx"});
  EXPECT_THAT(run, Exits(3));
  const std::vector<std::string> told = lines(run.err);
  ASSERT_THAT(told, SizeIs(23));
  EXPECT_THAT(told[20], HasSubstr("no open header admits this block"));
  EXPECT_THAT(told[19], HasSubstr("refused: system audio input part: checksum wrong: "));
  EXPECT_EQ(told[21], "and 10 more: refused: checksum wrong");
  EXPECT_EQ(told[22], "31 refused");
  EXPECT_THAT(lines(bda({"verify", "damaged.syx"}).err), SizeIs(22));
  EXPECT_THAT(bda({"restore", "damaged.syx"}).err, HasSubstr("and 10 more: checksum wrong\n"));
}

TEST_F(Input, aLargeFileOfAnotherKindIsNamedToo) {
  write("song.wav", std::string("RIFF\0\0\0\7WAVE", 12));
  std::filesystem::resize_file(directory / "song.wav", 100'000'000);
  const Result run = bda({"list", "song.wav"});
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, HasSubstr("it seems to be a WAVE sound"));
}

// However much of a clock comes first, and in whatever pieces.
TEST_F(Input, realTimeBytesSayNothingOfTheKind) {
  write("clock.syx", std::string(100'000, '\xF8') + text(foreignMessage()));
  EXPECT_THAT(bda({"list", "clock.syx"}), Exits(0));
  Running program(*this, {"list", "-"});
  program.feed(Bytes(10, 0xF8));
  program.feed(foreignMessage());
  EXPECT_THAT(program.line(), HasSubstr("not for this instrument"));
  EXPECT_EQ(program.end(), 0);
}

TEST_F(Input, aMessageThatIsCutShortIsToldHoweverManyRealTimeBytesAreInIt) {
  std::string bytes = text(blockDump({0x00, 0x40, 0x00})) + '\xF0';
  for (int i = 0; i < 10'000; ++i) bytes += "\xF8\1";
  write("cut.syx", bytes);
  const Result run = bda({"verify", "--json", "cut.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out, HasSubstr("\"dropped\":10001,\"reason\":\"message without end\",\"verdict\":\"cut short\""));
}

TEST_F(Input, aPipeIsComparedFromItsFirstByte) {
  std::string bytes;
  for (std::uint8_t number = 0; number < 20; ++number)
    bytes += text(unit({0x0E, 0x0A, number}, BDA::List::normalVoice, 1));
  write("bank.syx", bytes);
  ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
  Running program(*this, {"diff", "bank.syx", "fifo"});
  const int fifo = ::open((directory / "fifo").c_str(), O_WRONLY);
  for (std::size_t at = 0; at < bytes.size();) at += std::size_t(::write(fifo, bytes.data() + at, bytes.size() - at));
  ::close(fifo);
  EXPECT_EQ(program.end(), 0);
  EXPECT_THAT(read("errors"), HasSubstr("no difference; contents: 20 equal"));
}

// ---- Messages for other devices -------------------------------------------------------------------------------------

TEST_F(Input, aWrongDeviceNumberIsToldOnceWithItsCountAndTheWayOut) {
  std::string bytes;
  for (int i = 0; i < 30; ++i) bytes += text(dump({0x00, 0x40, 0x00}, Bytes(8), 5));
  write("six.syx", bytes + text(blockDump({0x00, 0x40, 0x00})));
  const Result run = bda({"receive", "six.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(lines(run.err), ElementsAre(HasSubstr("it is for device 6, the device number is 1"),
                                          AllOf(StartsWith("30 messages for device 6"), HasSubstr("--any-device"),
                                                HasSubstr("bda settings device-number 6")),
                                          "1 completed, 30 refused"));
}

TEST_F(Input, messagesForAnyDeviceAreTakenWhenAsked) {
  const Bytes data{3, 3, 3, 3, 3, 0, 3, 0};  // the sixth and the eighth carry nothing
  write("six.syx", {dump({0x00, 0x40, 0x00}, data, 5), request({0x00, 0x40, 0x00}, 5)});
  EXPECT_THAT(bda({"receive", "six.syx"}), Exits(3));
  const Result run = bda({"receive", "--any-device", "six.syx", "-o", "answer.syx"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(lastLine(run.err), "1 completed, 1 answered");
  EXPECT_EQ(read("answer.syx"), text(dump({0x00, 0x40, 0x00}, data)));
  EXPECT_EQ(bda({"settings", "device-number"}).out, "1\n");

  const Bytes others{4, 4, 4, 4, 4, 0, 4, 0};
  write("six.syx", {dump({0x00, 0x40, 0x00}, others, 5)});
  EXPECT_THAT(bda({"restore", "six.syx"}), Exits(3));
  EXPECT_THAT(bda({"restore", "--dry-run", "--any-device", "six.syx"}), Exits(0));
  EXPECT_THAT(bda({"restore", "--any-device", "six.syx"}), Exits(0));
  EXPECT_THAT(bda({"request", "system:audio-input", "-o", "answer.syx"}), Exits(0));
  EXPECT_EQ(read("answer.syx"), text(dump({0x00, 0x40, 0x00}, others)));
  EXPECT_EQ(bda({"settings", "device-number"}).out, "1\n");
}

// ---- Pipes and ends -------------------------------------------------------------------------------------------------

TEST_F(Input, aMessageThatComesThroughAPipeIsHandedOnAtOnce) {
  for (const char* const verb : {"receive", "list", "verify"}) {
    Running program(*this, {verb, "-"});
    for (int i = 0; i < 3; ++i) {
      program.feed(blockDump({0x00, 0x40, 0x00}));
      EXPECT_THAT(program.line(), HasSubstr("audio input part")) << verb;
    }
    EXPECT_EQ(program.end(), 0) << verb;
  }
}

TEST_F(Input, anAnswerGoesOutAsSoonAsItsRequestIsHandled) {
  Running program(*this, {"receive", "-", "-o", "-"});
  for (int i = 0; i < 3; ++i) {
    program.feed(request({0x00, 0x40, 0x00}));
    const Bytes expected = dump({0x00, 0x40, 0x00}, Bytes(8));
    EXPECT_EQ(program.bytes(expected.size()).front(), 0xF0);
  }
  EXPECT_EQ(program.end(), 0);
}

TEST_F(Input, theTraceGoesThroughAPipeLineByLine) {
  Running program(*this, {"receive", "-", "--trace", "-"});
  for (int number = 1; number <= 3; ++number) {
    program.feed(blockDump({0x00, 0x40, 0x00}));
    EXPECT_EQ(Json::parse(program.line())["message"], number);
  }
  EXPECT_EQ(program.end(), 0);
}

// What is stored has nothing to do with where the answers go.
TEST_F(Input, answersThatCannotBeWrittenKeepNothingElseBack) {
  write("both.syx", text(request({0x00, 0x40, 0x00})) + text(unit(kUserVoice6Header, BDA::List::normalVoice)));
  Running program(*this, {"receive", "both.syx", "-o", "-"}, [] { ::dup2(::open("/dev/full", O_WRONLY), 1); });
  EXPECT_EQ(program.end(), 1);
  const std::vector<std::string> told = lines(read("errors"));
  EXPECT_EQ(std::count(told.begin(), told.end(), "bda: standard output: cannot write it: No space left on device"), 1);
  EXPECT_EQ(told.back(), "1 stored, 1 answered, 25 accepted");
  EXPECT_THAT(bda({"contents"}).out, HasSubstr("voice:user1:6"));
}

TEST_F(Input, standardInputIsReadOnlyOnce) {
  const Result run = bda({"receive", "-", "-"}, text(blockDump({0x00, 0x40, 0x00})));
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err, "bda: standard input can be read only once\n");
}

TEST_F(Input, ctrlCEndsWithTheTallyOfWhatWasStored) {
  Running program(*this, {"receive", "-"});
  program.feed(unit(kUserVoice6Header, BDA::List::normalVoice));
  EXPECT_EQ(program.line(), "stored: voice:user1:6 (standard input: message 26 at offset 2040)");
  program.feed(dump({0x00, 0x40, 0x00}, Bytes(8), 5));
  program.feed(blockDump({0x00, 0x40, 0x00}));
  EXPECT_THAT(program.line(), StartsWith("completed"));
  program.feed(blockDump({0x0E, 0x0A, 0x06}));
  program.feed(foreignMessage());
  EXPECT_THAT(program.line(), StartsWith("not-ours"));
  program.signal(SIGINT);
  EXPECT_EQ(program.end(), 130);
  const std::string told = read("errors");
  EXPECT_THAT(told, HasSubstr("voice:user1:7: still open"));
  EXPECT_THAT(told, HasSubstr("1 message for device 6"));
  EXPECT_THAT(told, HasSubstr("bda: interrupted\n"));
  EXPECT_EQ(lastLine(told), "1 stored, 1 completed, 26 accepted, 1 refused, 1 not-ours");
  EXPECT_THAT(bda({"contents"}).out, HasSubstr("voice:user1:6"));
}

TEST_F(Input, ctrlCEndsAVerbThatOnlyLooksBetweenTwoMessages) {
  for (const char* const verb : {"list", "verify"}) {
    Running program(*this, {verb, "-"});
    program.feed(blockDump({0x00, 0x40, 0x00}));
    EXPECT_THAT(program.line(), HasSubstr("audio input part")) << verb;
    program.signal(SIGINT);
    EXPECT_EQ(program.end(), 130) << verb;
    EXPECT_EQ(read("errors"), "bda: interrupted\n") << verb;
  }
}

TEST_F(Input, aFileThatMayNotGrowEndsAsAFullDiskDoes) {
  std::string bytes;
  for (std::uint8_t number = 0; number < 100; ++number)
    bytes += text(unit({0x0E, 0x0A, number}, BDA::List::normalVoice, number));
  write("bank.syx", bytes);
  Running program(*this, {"receive", "bank.syx"}, [] {
    const rlimit limit{200'000, 200'000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  });
  EXPECT_EQ(program.end(), 1);
  const std::string told = read("errors");
  EXPECT_THAT(told, HasSubstr("library.db"));
  EXPECT_THAT(told, HasSubstr(": what began here is not handled to its end, nor stored\n"));
  EXPECT_THAT(told, Not(HasSubstr("without footer"))) << "the file has it";
  const std::string tally = lastLine(told);
  EXPECT_THAT(tally, HasSubstr(" stored, "));
  const Result found = bda({"contents", "--json"});
  EXPECT_THAT(found, Exits(0));
  EXPECT_EQ(std::to_string(lines(found.out).size()), tally.substr(0, tally.find(' ')));
}

TEST_F(Input, aFileWithAnythingOfThisMakerIsReadThoughItBeginsWithSomethingElse) {
  Bytes other = request({0, 0, 0});
  other[4] = 0x33;  // another model
  write("other.syx", "\x01\x02" + text(other));
  EXPECT_THAT(bda({"list", "other.syx"}), Exits(0));
  EXPECT_THAT(bda({"explain", "other.syx", "0"}), Exits(0));
  other[1] = 0x41;
  write("other.syx", "\x01\x02" + text(other));
  EXPECT_THAT(bda({"list", "other.syx"}), Exits(2));
}

TEST_F(Input, aCaptureThatBeginsInsideOfAMessageMayBeginAsTextDoes) {
  for (const char* const begin : {"# ce", "abcd", "ce  "}) {
    write("capture.syx", begin + text(unit(kUserVoice6Header, BDA::List::normalVoice)));
    EXPECT_THAT(bda({"list", "capture.syx"}), Exits(0)) << begin;
    EXPECT_THAT(bda({"explain", "capture.syx", "4", "--json"}).out, HasSubstr("\"message\":1")) << begin;
  }
}

TEST_F(Input, anEndlessInputDoesNotFillTheMemory) {
  constexpr long kMost = kKeepsFreedMemory ? 700'000 : 60'000;
  Bytes messages;
  while (messages.size() < 1'000'000) {
    const Bytes message = blockDump({0x00, 0x00, 0x00});
    messages.insert(messages.end(), message.begin(), message.end());
  }
  const Bytes noMessage(1'000'000, 0x11);
  for (const Bytes& kind : {messages, noMessage}) {
    Running program(*this, {"list", "-q", "-"}, [] { ::dup2(::open("/dev/null", O_WRONLY), 1); });
    program.feed({0xF0});  // of a message that never ends, or that the next one cuts short
    for (int i = 0; i < 50; ++i) program.feed(kind);
    EXPECT_NE(program.end(), -1);
    EXPECT_LT(program.memory, kMost);
  }
}

TEST_F(Input, whatProvesUnusableMeanwhileKeepsWhatWasTold) {
  ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
  write("good.syx", {blockDump({0x00, 0x40, 0x00})});
  Running program(*this, {"receive", "good.syx", "fifo", "good.syx"});
  const int fifo = ::open((directory / "fifo").c_str(), O_WRONLY);
  ASSERT_EQ(::write(fifo, "hello", 5), 5);
  ::close(fifo);
  EXPECT_EQ(program.end(), 2);
  const std::string told = read("errors");
  EXPECT_THAT(told, HasSubstr("fifo: no System Exclusive message in it: it seems to be text"));
  EXPECT_EQ(lastLine(told), "2 completed");
}
