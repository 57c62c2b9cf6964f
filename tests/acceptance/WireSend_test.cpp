// What is told of what is sent: before the first byte, when it ends early, when nobody can say whether it arrived.

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

#include "Wire.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using namespace std::chrono_literals;

namespace {

// The other end of a terminal, in this process's hands: nobody reads there unless it does.
class OtherEnd {
 public:
  OtherEnd() : ours_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    char path[128] = "";
    EXPECT_TRUE(ours_ >= 0 && ::grantpt(ours_) == 0 && ::unlockpt(ours_) == 0);
    EXPECT_EQ(::ptsname_r(ours_, path, sizeof path), 0);
    name = path;
    theirs_ = ::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios raw{};
    EXPECT_EQ(::tcgetattr(theirs_, &raw), 0);
    ::cfmakeraw(&raw);
    ::tcsetattr(theirs_, TCSANOW, &raw);
  }
  OtherEnd(const OtherEnd&) = delete;
  OtherEnd& operator=(const OtherEnd&) = delete;
  ~OtherEnd() {
    ::close(theirs_);
    ::close(ours_);
  }
  void take(std::size_t count) const {
    std::string bytes(count, '\0');
    for (std::size_t came = 0; came < count;) came += std::size_t(::read(ours_, bytes.data(), count - came));
  }

  void give(const Bytes& bytes) const { EXPECT_EQ(::write(ours_, bytes.data(), bytes.size()), ssize_t(bytes.size())); }

  std::string name;

 private:
  int ours_;
  int theirs_ = -1;
};

class WireSend : public Wire {
 protected:
  WireSend() {
    write("master.syx", {master_});
    write("two.syx", {master_, unit({0x0E, 0x70, 0x04}, BDA::List::master)});
    write("voice.syx", {voice_});
  }
  static std::string send(const std::string& words) { return std::string(BDA_PROGRAM) + " send " + words + " 2>&1"; }
  std::string file(const char* name) const { return "'" + (directory / name).string() + "'"; }
  static std::chrono::duration<double> since(std::chrono::steady_clock::time_point begin) {
    return std::chrono::steady_clock::now() - begin;
  }

  const Bytes master_ = unit({0x0E, 0x70, 0x03}, BDA::List::master);
  const Bytes voice_ = unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice);
};

}  // namespace

TEST_F(WireSend, whoReadsObjectsIsToldWhatIsOverwrittenOnStandardError) {
  const Result dry = bda({"send", "two.syx", "--to", "pty:", "--dry-run", "--json", "-q"});
  EXPECT_THAT(dry, Exits(0));
  EXPECT_EQ(dry.out, "");
  EXPECT_EQ(dry.err, "overwrites: master:4\noverwrites: master:5\n");
  const Serving instrument = serve();
  EXPECT_THAT(bda({"send", "two.syx", "--to", instrument.path, "--json", "-q"}).err,
              StartsWith("overwrites: master:4\n"));
  write("wipe.syx", {dump({0x11, 0x01, 0x00})});
  EXPECT_THAT(bda({"send", "wipe.syx", "--to", "pty:", "--dry-run", "--json"}).err,
              HasSubstr("removes: all mixing voices\n"));
}

TEST_F(WireSend, whatNobodyCanBeAskedForIsNotVerified) {
  Serving instrument = serve();
  write("trigger.syx", {dump(Editor::kWriteTrigger), master_});
  const std::vector<std::string> words{"send", "trigger.syx", "--to", instrument.path, "--verify", "--timeout", "0.3"};
  const Result sent = bda(words);
  EXPECT_THAT(sent, Exits(3));
  EXPECT_THAT(sent.out, StartsWith("writes the file dumps that the instrument holds\noverwrites: master:4\n"));
  EXPECT_THAT(sent.err, HasSubstr("sent: write: cannot be asked for\n"));
  std::vector<std::string> json = words;
  json.push_back("--json");
  const std::vector<Json> units = objectsOf(bda(json).out);
  ASSERT_EQ(units.size(), 2u);
  EXPECT_EQ(units[0]["state"], "sent");
  EXPECT_EQ(units[0]["reason"], "cannot be asked for");
  EXPECT_EQ(units[1]["state"], "equal");
  EXPECT_EQ(units[1]["reason"], "");
}

TEST_F(WireSend, whyNobodyAnswersIsTold) {
  Serving deaf = serve("--faults deaf=1");
  const std::vector<std::string> terms{"--verify", "--timeout", "0.2", "--retries", "0"};
  std::vector<std::string> words{"send", "master.syx", "--to", deaf.path, "--json"};
  words.insert(words.end(), terms.begin(), terms.end());
  EXPECT_EQ(Json::parse(bda(words).out)["reason"], "silent");
  Serving other = serve("--faults wrong-device=1");
  words = {"send", "master.syx", "--to", other.path};
  words.insert(words.end(), terms.begin(), terms.end());
  EXPECT_THAT(bda(words).err, HasSubstr("unanswered: master:4: other device "));
}

TEST_F(WireSend, whatNoEditBufferTakesIsCounted) {
  write("all.syx", {systemDump(1), dump(Editor::kWriteTrigger), {0xF0, 0x7E, 0x7F, 0x06, 0x01, 0xF7}, voice_});
  const Result sent = bda({"send", "all.syx", "--to", "pty:", "--to-edit-buffer", "--dry-run"});
  EXPECT_THAT(sent, Exits(0));
  EXPECT_EQ(sent.out, "overwrites: voice:edit\n");
  EXPECT_THAT(sent.err, AllOf(HasSubstr("15 messages left out: no edit buffer takes them\n"),
                              HasSubstr("1 message left out: no dumps for this instrument\n")));
  write("none.syx", {systemDump(1)});
  EXPECT_THAT(bda({"send", "none.syx", "--to", "pty:", "--to-edit-buffer", "--dry-run"}), Exits(2));
  bda({"receive", "-q", "voice.syx"});
  EXPECT_THAT(bda({"send", "file:voice:user1:6", "--to", "pty:", "--to-edit-buffer", "--dry-run"}).err,
              Not(HasSubstr("left out")))
      << "the trigger is the program's own";
}

TEST_F(WireSend, aMultiAndItsPartsOverwriteEachOther) {
  write("part.syx", {unit({0x0E, 0x30, 0x02}, BDA::List::normalVoice)});
  EXPECT_EQ(bda({"send", "part.syx", "--to", "pty:", "--dry-run"}).out,
            "overwrites: voice:part:3\noverwrites: multi:edit (with voice:part:3)\n");
  write("multi.syx", {unit({0x0E, 0x5F, 0x00}, BDA::List::multi)});
  EXPECT_EQ(bda({"send", "multi.syx", "--to", "pty:", "--dry-run"}).out,
            "overwrites: multi:edit\noverwrites: voice:part:1..16 (with multi:edit)\n");
}

TEST_F(WireSend, whatWasDifferentStandsUnderALineOfItsOwn) {
  fillInstrument();
  write("other.syx", {unit({0x0E, 0x70, 0x03}, BDA::List::master, 3)});
  Serving instrument = serve("--faults full=1");
  const std::vector<std::string> words{"send", "other.syx", "--to", instrument.path, "--changed", "--timeout", "0.3"};
  const Result sent = bda(words);
  EXPECT_THAT(sent, Exits(0));
  EXPECT_THAT(sent.out, HasSubstr("sent: master:4\n"));
  EXPECT_THAT(sent.err, HasSubstr("was different: master:4\n    "));
  std::vector<std::string> json = words;
  json.push_back("--json");
  const Json object = Json::parse(bda(json).out);
  EXPECT_EQ(object["state"], "sent");
  EXPECT_EQ(object["differences"], Json::array());
  EXPECT_FALSE(object["before"].empty());
}

// A part of the instrument's multi holds a voice of the other kind.
TEST_F(WireSend, aVoiceOfTheOtherKindIsNamedSo) {
  const Bytes drum = unit({0x0E, 0x30, 0x00}, BDA::List::drumVoice);
  write("part.syx", {unit({0x0E, 0x30, 0x00}, BDA::List::normalVoice)});
  const auto sent = [&](const char* options) {
    OtherEnd end;
    Serving sending(send(file("part.syx") + " --verify --pace none --timeout 1 --to " + end.name + options));
    end.take(read("part.syx").size());
    end.take(request({0x0E, 0x30, 0x00}).size());
    end.give(drum);
    EXPECT_EQ(sending.wait(), 3);
    return sending.told;
  };
  EXPECT_THAT(sent(""), HasSubstr("    0E 30 00: a normal voice sent, a drum voice read\n"));
  EXPECT_THAT(sent(" --json"), HasSubstr(R"("differences":[{"address":"0E 30 00","dataByte":0,"path":null,)"
                                         R"("sent":"normal voice","read":"drum voice"}])"));
}

TEST_F(WireSend, aDryRunTakesThePaceOfThePort) {
  const std::string fifo = directory / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  for (const std::string& port : {std::string("-"), fifo, "/nobody/here," + fifo})
    EXPECT_THAT(bda({"send", "voice.syx", "--to", port, "--dry-run"}).err, HasSubstr(" bytes, 0.0 s\n")) << port;
  for (const char* const port : {"pty:", "/dev/null", "/nobody/here"})
    EXPECT_THAT(bda({"send", "voice.syx", "--to", port, "--dry-run"}).err, HasSubstr(" bytes, 0.7 s\n")) << port;
}

TEST_F(WireSend, noPauseIsWaitedOutBehindTheLastByte) {
  const Serving instrument = serve();
  const auto begin = std::chrono::steady_clock::now();
  const Result sent = bda({"send", "master.syx", "--to", instrument.path, "--unit-pause", "60000"});
  EXPECT_THAT(sent, Exits(0));
  EXPECT_THAT(sent.err, HasSubstr(" bytes, 0.1 s\n"));
  EXPECT_LT(since(begin), 30s);
}

TEST_F(WireSend, ctrlCInThePauseBehindAUnitSendsNoOther) {
  OtherEnd end;
  Serving sending(send(file("two.syx") + " --unit-pause 60000 --to " + end.name));
  end.take(master_.size());
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(sending.stop(), 130);
  EXPECT_LT(since(begin), 30s);
  EXPECT_THAT(sending.told, AllOf(HasSubstr("sent: master:4\n"), HasSubstr("1 sent, 1 not sent\n"),
                                  Not(HasSubstr("sent: master:5"))));
}

TEST_F(WireSend, aSecondCtrlCTellsWhatIsMissing) {
  OtherEnd end;
  Serving sending(send(file("voice.syx") + " --pace 200 --to " + end.name));
  end.take(100);
  sending.interrupt();
  end.take(100);
  EXPECT_EQ(sending.stop(), 130);
  EXPECT_THAT(sending.told, HasSubstr("begun and not finished: voice:user1:6, missing "));
  EXPECT_THAT(sending.told, HasSubstr("(0F 0A 05)"));
  EXPECT_THAT(sending.told, HasSubstr("1 not sent\n"));
}

TEST_F(WireSend, ctrlCWhileReadingBackTellsWhatIsKnown) {
  OtherEnd end;
  Serving sending(send(file("two.syx") + " --verify --timeout 30 --json -q --to " + end.name));
  end.take(2 * master_.size());
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(sending.stop(), 130);
  EXPECT_LT(since(begin), 20s);
  EXPECT_THAT(sending.told, HasSubstr(R"({"unit":"master:4","address":"0E 70 03","state":"sent","differences":[],)"
                                      R"("reason":"not verified"})"));
  EXPECT_THAT(sending.told, HasSubstr(R"({"unit":"master:5")"));
}

TEST_F(WireSend, aPortThatTakesNothingMoreEndsTheRun) {
  std::string many;
  for (int i = 0; i < 100; ++i) many += text(voice_);
  write("many.syx", many);
  OtherEnd end;
  const Result sent =
      bda({"send", "many.syx", "--to", end.name, "--pace", "none", "--timeout", "0.3", "--retries", "0"});
  EXPECT_THAT(sent, Exits(1));
  EXPECT_THAT(sent.err, AllOf(HasSubstr("it takes no bytes any more"), HasSubstr("begun and not finished: ")));
}

TEST_F(WireSend, faultsThatAreThereTwiceOrNotAtAllAreRefused) {
  const Result twice = bda({"instrument", "--on", "pty:", "--faults", "drop=1%,drop=2%"});
  EXPECT_THAT(twice, Exits(1));
  EXPECT_THAT(twice.err, HasSubstr("it is there twice"));
  EXPECT_THAT(bda({"instrument", "--on", "pty:", "--faults", ""}), Exits(1));
  EXPECT_THAT(bda({"instrument", "--on", "pty:", "--faults="}), Exits(1));
}

TEST_F(WireSend, anEmptyMixingVoiceRemovesWhatStandsThereAndCanBeAskedFor) {
  write("stored.syx", {unit({0x0E, 0x31, 0x00}, BDA::List::normalVoice)});
  fillInstrument();
  const Serving instrument = serve();
  EXPECT_THAT(fetch(instrument, {"voice:mix:1", "--remove-empty", "-o", "first.syx"}), Exits(0));
  EXPECT_THAT(fetch(instrument, {"voice:mix:2", "--remove-empty", "-o", "empty.syx"}), Exits(0));
  const std::vector<std::string> to{"--to", instrument.path, "--timeout", "0.3", "--pace", "none"};
  const auto sent = [&](std::vector<std::string> words) {
    words.insert(words.begin(), "send");
    words.insert(words.end(), to.begin(), to.end());
    return bda(words);
  };
  const Result equal = sent({"stored.syx", "empty.syx", "--verify"});
  EXPECT_THAT(equal, Exits(0));
  EXPECT_THAT(equal.out, AllOf(HasSubstr("removes: voice:mix:2\n"), HasSubstr("equal: voice:mix:2\n")));
  // Removed and stored again: both or neither.
  const Result changed = sent({"first.syx", "stored.syx", "--changed"});
  EXPECT_THAT(changed.out, AllOf(HasSubstr("sent: voice:mix:1\n"), Not(HasSubstr("equal"))));
  EXPECT_THAT(fetch(instrument, {"voice:mix:1", "-o", "again.syx"}), Exits(0));
  EXPECT_EQ(read("again.syx"), read("stored.syx"));
}
