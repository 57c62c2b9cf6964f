// FIFOs as ports: whoever writes to one waits for somebody who reads from it.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "Wire.h"
#include "wire/BytePort.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

class WireFifo : public Wire {
 protected:
  WireFifo() {
    write("master.syx", {unit({0x0E, 0x70, 0x03}, BDA::List::master)});
    for (const char* const name : {"up", "down"}) EXPECT_EQ(::mkfifo((directory / name).c_str(), 0600), 0);
  }

  // Beside the test, in its directory.
  Serving start(const std::string& words) const {
    return Serving("env -C '" + directory.string() + "' BDA_LIBRARY='" + libraryFile().string() + "' " BDA_PROGRAM " " +
                   words + " 2>&1");
  }
  // All that comes until nobody writes any more.
  std::string readFifo(const char* name) const {
    const int fifo = ::open((directory / name).c_str(), O_RDONLY | O_CLOEXEC);
    std::string all;
    char some[4096];
    for (ssize_t count = 0; (count = ::read(fifo, some, sizeof some)) > 0;) all.append(some, std::size_t(count));
    ::close(fifo);
    return all;
  }
};

constexpr const char* kWaiting = "waiting for somebody to read from ./up";

}  // namespace

TEST_F(WireFifo, whatIsSentIsKeptForWhoReadsItLater) {
  Serving sending = start("send master.syx --to ./up");
  EXPECT_EQ(sending.path, kWaiting);
  EXPECT_EQ(readFifo("up"), read("master.syx"));
  EXPECT_EQ(sending.wait(), 0);
  EXPECT_THAT(sending.told, AllOf(HasSubstr("sent: master:4\n"), Not(HasSubstr("waiting"))));
  bda({"receive", "-q", "master.syx"});
  Serving job = start("job master --to ./up");
  EXPECT_EQ(job.path, kWaiting);
  EXPECT_FALSE(readFifo("up").empty());
  EXPECT_EQ(job.wait(), 0);
}

// As a FIFO, but that it goes with the program.
TEST_F(WireFifo, whoSendsToANewTerminalWaitsForSomebodyToo) {
  for (const char* const words : {"send master.syx --to pty:", "send -q master.syx --to pty:"}) {
    Serving sending = start(words);
    constexpr std::string_view kSaid = "waiting for somebody to read from ";
    ASSERT_EQ(sending.path.find(kSaid), 0u) << sending.path;
    Editor::BytePort there(sending.path.substr(kSaid.size()), Editor::BytePort::Direction::both);
    std::string heard;
    while (heard.size() < read("master.syx").size()) {
      const std::span<const std::uint8_t> bytes = there.wait(there.now() + std::chrono::seconds(10), false);
      if (bytes.empty()) break;
      heard.append(bytes.begin(), bytes.end());
    }
    EXPECT_EQ(heard, read("master.syx"));
    EXPECT_EQ(sending.wait(), 0);
  }
  Serving job = start("job voice --to pty:");
  EXPECT_EQ(job.stop(), 130);
}

TEST_F(WireFifo, ctrlCEndsTheWaitForWhoReads) {
  for (const char* const words : {"send master.syx --to ./up", "job voice --to ./up"}) {
    Serving waiting = start(words + std::string(" --transcript run.jsonl"));
    EXPECT_EQ(waiting.path, kWaiting) << words;
    EXPECT_EQ(waiting.stop(), 130) << words;
    EXPECT_EQ(waiting.told, "bda: interrupted\n") << words;
    EXPECT_FALSE(exists("run.jsonl")) << words;
  }
}

TEST_F(WireFifo, whoReadsAndGoesBeforeItIsOutHangsUp) {
  Serving sending = start("send master.syx --to ./up --pace 100");
  EXPECT_EQ(sending.path, kWaiting);
  const int reader = ::open((directory / "up").c_str(), O_RDONLY | O_CLOEXEC);
  char first = 0;
  EXPECT_EQ(::read(reader, &first, 1), 1);
  ::close(reader);
  EXPECT_EQ(sending.wait(), 1);
  EXPECT_THAT(sending.told, AllOf(HasSubstr("port ./up: it has hung up"), HasSubstr("1 not sent")));
}

TEST_F(WireFifo, whereNobodyIsIsKnownInTime) {
  const Result fetched = bda({"fetch", "master:4", "--from", "down,up", "--timeout", "0.1"});
  EXPECT_THAT(fetched, Exits(3));
  EXPECT_THAT(fetched.err, HasSubstr("lost: master:4: silent"));
}

TEST_F(WireFifo, twoAtAPairOfThemMeet) {
  fillInstrument();
  Serving instrument = start("instrument --on ./down,./up --library instrument.db");
  EXPECT_THAT(instrument.path, HasSubstr("on ./down,./up"));
  EXPECT_THAT(bda({"fetch", "master:4", "--from", "up,down"}), Exits(0)) << "names without a slash";
  EXPECT_EQ(instrument.wait(), 1);
  EXPECT_THAT(instrument.told, AllOf(HasSubstr("answered: request of "), HasSubstr("it has hung up")));
  EXPECT_EQ(library().contents().size(), 1u);
}

TEST_F(WireFifo, anAnswerThatIsNotOutWhenItsAskerGoesIsTold) {
  fillInstrument();
  Serving instrument = start("instrument --on ./down,./up --pace 100 --library instrument.db");
  const int asker = ::open((directory / "down").c_str(), O_WRONLY | O_CLOEXEC);
  const int reader = ::open((directory / "up").c_str(), O_RDONLY | O_CLOEXEC);
  const std::string asked = text(request({0x0E, 0x7F, 0x00}));
  EXPECT_EQ(::write(asker, asked.data(), asked.size()), ssize_t(asked.size()));
  char first = 0;
  EXPECT_EQ(::read(reader, &first, 1), 1);
  ::close(asker);
  EXPECT_EQ(instrument.wait(), 1);
  ::close(reader);
  EXPECT_THAT(instrument.told, AllOf(HasSubstr("not all that it answered has gone out"), HasSubstr("it has hung up")));
}

TEST_F(WireFifo, isNoPlaceForAnyOtherOutput) {
  const std::vector<std::vector<std::string>> runs{
      {"send", "master.syx", "--to", "./up", "--transcript", "up"},
      {"job", "voice", "--to", "up", "--transcript", "./up"},
      {"fetch", "master:4", "--from", "down,up", "--transcript", "up"},
      {"fetch", "master:4", "--from", "down,up", "-o", "down"},
      {"fetch", "master:4", "--from", "down,up", "--requests", "up"},
      {"instrument", "--on", "down,up", "--transcript", directory / "down"},
      {"record", "--from", "up", "-o", "up"},
  };
  for (const std::vector<std::string>& run : runs) {
    const Result refused = bda(run);
    EXPECT_THAT(refused, Exits(1)) << run[0];
    EXPECT_THAT(refused.err, HasSubstr("this is the port")) << run[0];
  }
}

// By whatever name: lines would go onto the wire, or into the midst of its dumps.
TEST_F(WireFifo, isNotStandardOutputWithLines) {
  const std::pair<const char*, const char*> runs[] = {
      {"job voice --to /dev/stdout 2> err | cat > out", "standard output: this is the port"},
      {"send master.syx --to /dev/stdout 2> err | cat > out", "standard output: this is the port"},
      {"job voice --to up 2> err <>up >&0", "standard output: this is the port"},
      {"instrument --on down,up 2> err <>up >&0", "standard output: this is the port"},
      {"job voice --to - --transcript /dev/stdout 2> err | cat > out", "--transcript /dev/stdout: this is the port"},
      {"job voice --to - --transcript up 2> err <>up >&0", "--transcript up: this is the port"},
  };
  for (const auto& [words, why] : runs) {
    write("out", "");
    const std::string command = "cd '" + directory.string() + "' && BDA_LIBRARY=library.db " BDA_PROGRAM " ";
    EXPECT_NE(std::system((command + words).c_str()), -1);
    EXPECT_THAT(read("err"), HasSubstr(why)) << words;
    EXPECT_EQ(read("out"), "") << words;
  }
}

TEST_F(WireFifo, whatIsNoPortOfItsKindIsSaid) {
  for (const char* const word : {"pty:x", "pty:/x"}) EXPECT_THAT(bda({"send", "master.syx", "--to", word}), Exits(2));
  EXPECT_THAT(bda({"send", "master.syx", "--to", "pty:x"}).err,
              HasSubstr("port pty:x: a new pseudo terminal gets its "));
  const Result unnamed = bda({"record", "--from", "virtual:", "-o", "x.syx"});
  EXPECT_THAT(unnamed, Exits(2));
  EXPECT_THAT(unnamed.err, HasSubstr("port virtual:: it needs a name: expected virtual:NAME"));
}
