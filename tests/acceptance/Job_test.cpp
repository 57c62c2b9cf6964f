// The assistant's jobs, and where what they send arrives.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "Wire.h"
#include "editor/contents/TemporaryLibrary.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::pair<const char*, const char*> kJobs[] = {{"voice", "voice:edit"},
                                                         {"drum", "drum:edit"},
                                                         {"performance", "performance:edit"},
                                                         {"mix", "multi:edit"},
                                                         {"master", "master:edit"}};

class Job : public Wire {
 protected:
  // Edit buffers that are not new.
  void fill() {
    write("edit.syx",
          {unit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice, 0x41), unit({0x0E, 0x2F, 0x00}, BDA::List::drumVoice, 0x11),
           unit({0x0E, 0x4F, 0x00}, BDA::List::performance, 1), unit({0x0E, 0x5F, 0x00}, BDA::List::multi, 1),
           unit({0x0E, 0x7F, 0x00}, BDA::List::master, 1)});
    ASSERT_THAT(bda({"receive", "-q", "edit.syx"}), Exits(0));
  }
  std::string requested(const char* address) {
    EXPECT_THAT(bda({"request", "-q", address, "-o", "asked.syx"}), Exits(0)) << address;
    return read("asked.syx");
  }
};

}  // namespace

TEST_F(Job, eachSendsWhatARequestOfItsEditBufferIsAnsweredWith) {
  fill();
  for (const auto& [name, place] : kJobs) {
    const Result sent = bda({"job", name, "--to", "-"});
    EXPECT_THAT(sent, Exits(0));
    EXPECT_EQ(sent.out, requested(place)) << name;
    EXPECT_THAT(sent.err, HasSubstr(std::string("overwrites: ") + place + "\n"));
    EXPECT_THAT(sent.err, HasSubstr(std::string("sent: ") + place + "\n1 sent\n"));
  }
}

TEST_F(Job, allOfItIsInAFifoWhenTheProgramHasEnded) {
  fill();
  const std::string fifo = directory / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  for (const auto& [name, place] : kJobs) {
    EXPECT_THAT(bda({"job", name, "--to", fifo}), Exits(0));
    std::string got(65'536, '\0');
    got.resize(std::size_t(std::max<ssize_t>(::read(reader, got.data(), got.size()), 0)));
    EXPECT_EQ(got, requested(place)) << name;
  }
  ::close(reader);
}

TEST_F(Job, anInstrumentHasTheEditBuffersThen) {
  fill();
  Serving instrument = serve();
  for (const auto& [name, place] : kJobs) {
    const Result sent = bda({"job", name, "--to", instrument.path, "--pace", "usb"});
    EXPECT_THAT(sent, Exits(0));
    const std::string further = name == std::string("mix") ? "overwrites: voice:part:1..16 (with multi:edit)\n" : "";
    EXPECT_EQ(sent.out, std::string("overwrites: ") + place + "\n" + further + "sent: " + place + "\n");
  }
  // It has handled what came before when it answers.
  EXPECT_THAT(bda({"fetch", "master:edit", "--from", instrument.path, "-o", "got.syx"}), Exits(0));
  instrument.stop();
  EXPECT_EQ(library("instrument.db").contents().size(), 0u);
  for (const auto& [name, place] : kJobs) {
    const std::string here = requested(place);
    EXPECT_THAT(bda({"request", place, "-o", "there.syx", "--library", directory / "instrument.db"}), Exits(0));
    EXPECT_EQ(read("there.syx"), here) << name;
  }
}

TEST_F(Job, theReceiveSwitchDoesNotMatterAndTheLibraryStaysAsItIs) {
  fill();
  const std::string voice = requested("voice:edit");
  bda({"settings", "-q", "receive-bulk", "off"});
  EXPECT_THAT(bda({"request", "voice:edit", "-o", "refused.syx"}), Exits(3));
  std::filesystem::permissions(libraryFile(), std::filesystem::perms::owner_read);
  const std::string before = read("library.db");
  const Result sent = bda({"job", "voice", "--to", "-", "-q"});
  EXPECT_THAT(sent, Exits(0));
  EXPECT_EQ(sent.out, voice);
  EXPECT_EQ(read("library.db"), before);
  EXPECT_EQ(bda({"settings", "receive-bulk"}).out, "off\n");
}

TEST_F(Job, aPlaceThatWasNeverStoredIsANewOne) {
  const Result sent = bda({"job", "drum", "--to", "-", "-q"});
  EXPECT_THAT(sent, Exits(0));
  EXPECT_EQ(sent.out, requested("drum:edit"));
  EXPECT_THAT(bda({"job", "drum", "--to", "-", "--library", "nobody.db"}), Exits(2));
  EXPECT_FALSE(exists("nobody.db"));
}

TEST_F(Job, oneThatFailsSaysWhyAndSendsNothing) {
  fill();
  bda({"settings", "-q", "device-number", "off"});
  const Result off = bda({"job", "voice", "--to", "-"});
  EXPECT_THAT(off, Exits(3));
  EXPECT_EQ(off.out, "");
  EXPECT_EQ(off.err, "bda: voice:edit: nothing is sent: the device number is off\n");
  bda({"settings", "-q", "device-number", "all"});
  Editor::PlainDatabase{libraryFile()}("UPDATE live_model SET bytes = x'00' WHERE key = 'voice'");
  const Result damaged = bda({"job", "voice", "--to", "-"});
  EXPECT_EQ(damaged.out, "");
  EXPECT_THAT(damaged, Exits(3));
  EXPECT_THAT(damaged.err, HasSubstr("voice:edit: nothing is sent: what is stored there is damaged"));
  EXPECT_THAT(bda({"job", "drum", "--to", "-"}), Exits(0)) << "which is not";
}

TEST_F(Job, thereAreFive) {
  EXPECT_EQ(bda({"job", "mastr", "--to", "-"}).err,
            "bda: \"mastr\" is no job: expected one of voice, drum, performance, mix, master: did you mean master?\n");
  for (const char* const name : {"mastr", "multi", "voice:edit", ""})
    EXPECT_THAT(bda({"job", name, "--to", "-"}), Exits(1)) << name;
  EXPECT_THAT(bda({"job", "voice"}), Exits(1)) << "to nowhere";
  EXPECT_EQ(bda({"__complete", "job", "ma"}).out, "master\t\n");
}

TEST_F(Job, aPortThatCannotBeOpenedIsUnusableInput) {
  for (const char* const port : {"/nobody/here", "/dev", "midi 7"})
    EXPECT_THAT(bda({"job", "voice", "--to", port}), Exits(2)) << port;
}

TEST_F(Job, itIsPacedAndEndsWithItsLastByte) {
  fill();
  const std::size_t bytes = requested("master:edit").size();
  const Clock::time_point start = Clock::now();
  EXPECT_THAT(bda({"job", "master", "--to", "-", "--pace", std::to_string(bytes * 5)}), Exits(0));
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(190)) << "at that pace it takes 200";
}

TEST_F(Job, ctrlCEndsItBehindTheUnit) {
  fill();
  const std::string voice = requested("voice:edit");
  Serving instrument = serve();
  Serving sending(std::string(BDA_PROGRAM) + " job voice --library '" + libraryFile().string() + "' --to " +
                  instrument.path + " --pace 5000 2>/dev/null");
  EXPECT_EQ(sending.path, "overwrites: voice:edit");
  EXPECT_EQ(sending.stop(), 130);
  EXPECT_THAT(bda({"fetch", "voice:edit", "--from", instrument.path, "-o", "got.syx", "-q"}), Exits(0));
  EXPECT_EQ(read("got.syx"), voice);
}

TEST_F(Job, aHangUpIsAnError) {
  fill();
  const std::string fifo = directory / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  Serving sending(std::string(BDA_PROGRAM) + " job mix --library '" + libraryFile().string() + "' --to '" + fifo +
                  "' --pace 2000 2>&1");
  std::string first = sending.path;
  ::close(reader);
  EXPECT_EQ(sending.wait(), 1);
  EXPECT_THAT(sending.told, HasSubstr("1 not sent"));
  EXPECT_THAT(sending.told, HasSubstr("it has hung up"));
}
