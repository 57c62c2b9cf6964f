// An instrument that is unplugged in the middle of a fetch, and of what is sent to it.

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>

#include "Wire.h"

using testing::HasSubstr;

namespace {

// The other end of a pseudo terminal, in this process's hands.
class Terminal {
 public:
  Terminal() : ours_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    char path[128] = "";
    EXPECT_TRUE(ours_ >= 0 && ::grantpt(ours_) == 0 && ::unlockpt(ours_) == 0);
    EXPECT_EQ(::ptsname_r(ours_, path, sizeof path), 0);
    name = path;
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() { unplug(); }

  void unplug() {
    if (ours_ >= 0) ::close(ours_);
    ours_ = -1;
  }
  std::string receive(std::size_t count) {
    std::string all(count, '\0');
    std::size_t came = 0;
    while (came < count) {
      const ssize_t some = ::read(ours_, all.data() + came, count - came);
      if (some <= 0) break;  // nobody is there any more
      came += std::size_t(some);
    }
    return all.substr(0, came);
  }
  void send(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t some = ::write(ours_, bytes.data(), bytes.size());
      if (some <= 0) return;
      bytes.remove_prefix(std::size_t(some));
    }
  }

  std::string name;

 private:
  int ours_;
};

class WireUnplugged : public Wire {
 protected:
  WireUnplugged() {
    fillInstrument();
    write("before.syx", {unit({0x0E, 0x70, 0x00}, BDA::List::master, 2)});
    bda({"receive", "-q", "before.syx"});
  }
  std::string requested(const char* address) {
    bda({"request", address, "-o", "asked.syx", "-q", "--library", directory / "instrument.db"});
    return read("asked.syx");
  }
  std::string command(const std::string& words) {
    return std::string(BDA_PROGRAM) + " --library '" + libraryFile().string() + "' " + words;
  }
};

}  // namespace

TEST_F(WireUnplugged, aFetchEndsWithWhatItHasTold) {
  const std::string answers[] = {requested("master:4"), requested("file:voice:user1:6")};
  const std::size_t sizes[] = {answers[0].size(), answers[1].size()};
  const std::string before = requested("master:4");
  std::filesystem::copy_file(libraryFile(), directory / "before.db");
  for (const std::size_t bytes :
       {std::size_t(0), std::size_t(1), sizes[0] - 1, sizes[0], sizes[0] + 1, sizes[0] + sizes[1] - 1}) {
    SCOPED_TRACE("after byte " + std::to_string(bytes));
    std::filesystem::copy_file(directory / "before.db", libraryFile(),
                               std::filesystem::copy_options::overwrite_existing);
    Terminal terminal;
    Serving fetching(command("fetch master:4 file:voice:user1:6 --from " + terminal.name + " 2>&1"));
    EXPECT_EQ(fetching.path, "from " + terminal.name);
    std::size_t left = bytes;
    for (const std::string& answer : answers) {
      EXPECT_EQ(terminal.receive(9).size(), 9u);
      terminal.send(std::string_view(answer).substr(0, std::min(left, answer.size())));
      left -= std::min(left, answer.size());
      if (left == 0) break;
    }
    if (bytes == sizes[0]) terminal.receive(9);  // what it asks for when it has told what it stored
    terminal.unplug();
    EXPECT_EQ(fetching.wait(), 1);
    const bool isFirstThere = fetching.told.find("stored: master:4") != std::string::npos;
    EXPECT_EQ(isFirstThere, bytes >= sizes[0]) << fetching.told;
    EXPECT_THAT(fetching.told, HasSubstr(isFirstThere ? "lost: file:voice:user1:6" : "lost: master:4"));
    EXPECT_THAT(fetching.told, HasSubstr("it has hung up"));
    EXPECT_EQ(library().contents().size(), isFirstThere ? 2u : 1u);
    EXPECT_THAT(bda({"check"}), Exits(0));
    if (!isFirstThere) {
      EXPECT_THAT(bda({"diff", "before.db", "library.db"}), Exits(0));
    }
  }
}

TEST_F(WireUnplugged, nothingOfAnAtomicFetchIsStored) {
  const std::string answer = requested("master:4");
  std::filesystem::copy_file(libraryFile(), directory / "before.db");
  Terminal terminal;
  Serving fetching(command("fetch master:4 multi:edit --atomic --from " + terminal.name + " 2>&1"));
  terminal.receive(9);
  terminal.send(answer);
  terminal.receive(9);
  terminal.unplug();
  EXPECT_EQ(fetching.wait(), 1);
  EXPECT_THAT(fetching.told, HasSubstr("lost: master:4: not stored"));
  EXPECT_THAT(bda({"diff", "before.db", "library.db"}), Exits(0));
}

TEST_F(WireUnplugged, whatIsSentIsToldUpToTheUnitThatIsOpen) {
  const std::string first = requested("master:4");
  const std::string second = requested("voice:user1:6");
  write("two.syx", first + second);
  for (const std::size_t bytes : {std::size_t(0), first.size() - 1, first.size() + 1, first.size() + 300}) {
    SCOPED_TRACE("after byte " + std::to_string(bytes));
    Terminal terminal;
    Serving sending(
        command("send '" + (directory / "two.syx").string() + "' --pace 1000 --to " + terminal.name + " 2>&1"));
    EXPECT_EQ(terminal.receive(bytes), (first + second).substr(0, bytes));
    terminal.unplug();
    EXPECT_EQ(sending.wait(), 1);
    EXPECT_THAT(sending.told, HasSubstr("it has hung up"));
    EXPECT_EQ(sending.told.find("sent: voice:user1:6"), std::string::npos) << sending.told;
    if (bytes > first.size()) {
      EXPECT_THAT(sending.told, HasSubstr("sent: master:4"));
    }
  }
}

TEST_F(WireUnplugged, anInstrumentTellsTheMessageThatHasNoEnd) {
  Terminal there;
  Serving instrument(command("instrument --on " + there.name + " 2>&1"));
  EXPECT_EQ(instrument.path, "on " + there.name);
  const Bytes asked = request({0x0E, 0x70, 0x00});
  there.send(text(asked) + "\xF0\x7D\x20");
  EXPECT_NE(there.receive(1), "") << "it has heard that";
  there.unplug();
  EXPECT_EQ(instrument.wait(), 1);
  EXPECT_THAT(instrument.told, HasSubstr("offset 9: 3 bytes dropped, message without end"));
}
