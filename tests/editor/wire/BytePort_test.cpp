#include "wire/BytePort.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <future>
#include <string>
#include <vector>

namespace Editor {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;
using Direction = BytePort::Direction;
using testing::HasSubstr;

struct Folder {
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "bda-port-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error(name);
    path = name;
  }
  ~Folder() { std::filesystem::remove_all(path); }
  std::string fifo(const char* name) const {
    const std::string file = path / name;
    EXPECT_EQ(::mkfifo(file.c_str(), 0600), 0);
    return file;
  }
  std::filesystem::path path;
};

// So many bytes, or what has come when nothing more does.
Bytes receive(Port& port, std::size_t count) {
  Bytes all;
  while (all.size() < count) {
    const std::span<const std::uint8_t> bytes = port.wait(port.now() + 10s, false);
    if (bytes.empty()) break;
    all.insert(all.end(), bytes.begin(), bytes.end());
  }
  return all;
}

void sendAll(Port& port, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    bytes = bytes.subspan(port.send(bytes));
    if (!bytes.empty()) port.wait(port.now() + 10s, true);
  }
}

std::string whyNot(const std::string& name) {
  try {
    const BytePort port(name, Direction::both);
  } catch (const PortError& error) {
    EXPECT_EQ(error.kind(), PortError::Kind::cannotOpen) << name;
    return error.what();
  }
  return "it opens";
}

Bytes everyByte() {
  Bytes bytes;
  for (int i = 0; i < 256; ++i) bytes.push_back(std::uint8_t(i));
  return bytes;
}

TEST(BytePort, APseudoTerminalCarriesEveryByteInBothDirections) {
  BytePort here("pty:", Direction::both);
  EXPECT_THAT(here.name(), HasSubstr("/dev/pts/"));
  EXPECT_EQ(here.defaultPace(), kCablePace);
  for (int client = 0; client < 2; ++client) {  // they come and go
    BytePort there(here.name(), Direction::both);
    EXPECT_EQ(there.defaultPace(), kCablePace);
    sendAll(there, everyByte());
    EXPECT_EQ(receive(here, 256), everyByte());
    sendAll(here, everyByte());
    EXPECT_EQ(receive(there, 256), everyByte());
    there.drain();
  }
}

TEST(BytePort, OfAPseudoTerminalThatIsGoneItIsSaid) {
  std::optional<BytePort> here(std::in_place, "pty:", Direction::both);
  BytePort there(here->name(), Direction::both);
  here.reset();
  try {
    receive(there, 1);
    ADD_FAILURE();
  } catch (const PortError& error) {
    EXPECT_EQ(error.kind(), PortError::Kind::gone);
    EXPECT_EQ(error.what(), "port " + there.name() + ": it has hung up");
  }
  EXPECT_THROW(sendAll(there, everyByte()), PortError);
}

TEST(BytePort, OnlyToWriteToAPseudoTerminalIsToWaitForWhoOpensIt) {
  std::promise<std::string> path;
  auto opening = std::async(std::launch::async, [&] {
    return std::make_unique<BytePort>("pty:", Direction::out, -1,
                                      [&](const std::string& name) { path.set_value(name); });
  });
  const std::string name = path.get_future().get();
  EXPECT_EQ(opening.wait_for(100ms), std::future_status::timeout);
  std::optional<BytePort> there(std::in_place, name, Direction::both);
  const std::unique_ptr<BytePort> here = opening.get();
  EXPECT_EQ(here->name(), name);
  there.reset();
  sendAll(*here, everyByte());  // they come and go
  there.emplace(name, Direction::both);
  EXPECT_EQ(receive(*there, 256), everyByte());
  here->drain();
  sendAll(*here, everyByte());
  try {
    here->drain();
    ADD_FAILURE() << "nobody has read it";
  } catch (const PortError& error) {
    EXPECT_EQ(error.kind(), PortError::Kind::gone);
  }
}

TEST(BytePort, TheWaitForWhoOpensAPseudoTerminalCanBeEnded) {
  int wake[2];
  ASSERT_EQ(::pipe(wake), 0);
  ASSERT_EQ(::write(wake[1], "x", 1), 1);
  EXPECT_THROW(BytePort("pty:", Direction::out, wake[0]), PortError);
  ::close(wake[0]);
  ::close(wake[1]);
}

TEST(BytePort, APseudoTerminalIsDrainedWhenAllIsReadOrNobodyIsThere) {
  BytePort here("pty:", Direction::both);
  sendAll(here, everyByte());
  const WireTime begin = here.now();
  here.drain();
  EXPECT_LT(here.now() - begin, 1s) << "nobody is there";
  BytePort there(here.name(), Direction::both);
  auto draining = std::async(std::launch::async, [&] { here.drain(); });
  EXPECT_EQ(draining.wait_for(100ms), std::future_status::timeout);
  EXPECT_EQ(receive(there, 256), everyByte());
  draining.get();
  sendAll(here, everyByte());
  const WireTime again = here.now();
  here.drain();
  EXPECT_GE(here.now() - again, 1s);
  EXPECT_LT(here.now() - again, 10s) << "nobody reads";
}

TEST(BytePort, TwoFifosAreAPort) {
  const Folder folder;
  const std::string up = folder.fifo("up");
  const std::string down = folder.fifo("down");
  auto other =
      std::async(std::launch::async, [&] { return std::make_unique<BytePort>(down + "," + up, Direction::both); });
  BytePort here(up + "," + down, Direction::both);
  const std::unique_ptr<BytePort> there = other.get();
  EXPECT_EQ(here.defaultPace(), kNoPace);
  sendAll(here, everyByte());
  EXPECT_EQ(receive(*there, 256), everyByte());
  sendAll(*there, everyByte());
  EXPECT_EQ(receive(here, 256), everyByte());
}

TEST(BytePort, AFifoHangsUpWhenWhoWroteToItHasGone) {
  const Folder folder;
  const std::string fifo = folder.fifo("fifo");
  BytePort in(fifo, Direction::in);
  EXPECT_TRUE(in.wait(in.now() + 1ms, false).empty()) << "nobody writes to it yet";
  {
    BytePort out(fifo, Direction::out);
    sendAll(out, everyByte());
  }
  EXPECT_EQ(receive(in, 256), everyByte());
  EXPECT_THROW(in.wait(std::nullopt, false), PortError);
}

TEST(BytePort, ATerminalIsForOneProgram) {
  BytePort here("pty:", Direction::both);
  const BytePort there(here.name(), Direction::both);
  EXPECT_EQ(whyNot(here.name()), "port " + here.name() + ": another program uses it");
}

TEST(BytePort, WhatCameBeforeIsThrownAway) {
  BytePort here("pty:", Direction::both);
  sendAll(here, everyByte());
  BytePort there(here.name(), Direction::both);
  there.discard();
  sendAll(here, Bytes{1, 2, 3});
  EXPECT_EQ(receive(there, 3), (Bytes{1, 2, 3}));
}

TEST(BytePort, WhatGoesIntoAFifoStaysThereForWhoReadsIt) {
  const Folder folder;
  const std::string fifo = folder.fifo("fifo");
  BytePort in(fifo, Direction::in);
  {
    BytePort out(fifo, Direction::out);
    sendAll(out, everyByte());
    EXPECT_TRUE(out.wait(out.now(), false).empty());
  }
  EXPECT_EQ(receive(in, 256), everyByte());
}

TEST(BytePort, ToWriteToAFifoIsToWaitForWhoReadsIt) {
  const Folder folder;
  const std::string fifo = folder.fifo("fifo");
  std::promise<std::string> told;
  auto writing = std::async(std::launch::async, [&] {
    BytePort out(fifo, Direction::out, -1, [&](const std::string& path) { told.set_value(path); });  // once
    sendAll(out, everyByte());
  });
  EXPECT_EQ(told.get_future().get(), fifo);
  EXPECT_EQ(writing.wait_for(100ms), std::future_status::timeout);
  BytePort in(fifo, Direction::in);
  EXPECT_EQ(receive(in, 256), everyByte());
  writing.get();
}

TEST(BytePort, WhoReadsAlreadyIsNotWaitedFor) {
  const Folder folder;
  const std::string fifo = folder.fifo("fifo");
  const BytePort in(fifo, Direction::in);
  const BytePort out(fifo, Direction::out, -1, [](const std::string& path) { ADD_FAILURE() << path; });
}

TEST(BytePort, SomebodyCanEndTheWaitForAReader) {
  const Folder folder;
  const std::string fifo = folder.fifo("fifo");
  int wake[2];
  ASSERT_EQ(::pipe(wake), 0);
  try {
    const auto wakeUp = [&](const std::string& path) {
      EXPECT_EQ(path, fifo);
      EXPECT_EQ(::write(wake[1], "x", 1), 1);
    };
    const BytePort port(fifo, Direction::out, wake[0], wakeUp);
    ADD_FAILURE() << "nobody reads from it";
  } catch (const PortError& error) {
    EXPECT_EQ(error.kind(), PortError::Kind::cannotOpen);
    EXPECT_EQ(error.what(), "port " + fifo + ": nobody reads from it");
  }
  ::close(wake[0]);
  ::close(wake[1]);
}

TEST(BytePort, WhoHearsTooWaitsForNobodyWhoReads) {
  const Folder folder;
  BytePort port(folder.fifo("up") + "," + folder.fifo("down"), Direction::both, -1,
                [](const std::string& path) { ADD_FAILURE() << path; });
  sendAll(port, everyByte());
}

TEST(BytePort, AFifoHangsUpWhenWhoReadFromItHasGone) {
  std::signal(SIGPIPE, SIG_IGN);
  const Folder folder;
  const std::string fifo = folder.fifo("fifo");
  std::optional<BytePort> in(std::in_place, fifo, Direction::in);
  BytePort out(fifo, Direction::out);
  in.reset();
  EXPECT_THROW(out.send(everyByte()), PortError);
  EXPECT_THROW(out.wait(std::nullopt, true), PortError);
}

TEST(BytePort, TwoFifosHereAreAName) {
  const Folder folder;
  folder.fifo("up");
  folder.fifo("down");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path);
  EXPECT_TRUE(BytePort::isName("up"));
  EXPECT_TRUE(BytePort::isName("up,down"));
  EXPECT_FALSE(BytePort::isName("up,"));
  EXPECT_FALSE(BytePort::isName("up,nobody"));
  EXPECT_FALSE(BytePort::isName("nobody,up"));
  std::filesystem::current_path(before);
}

TEST(BytePort, OneFifoHasNotTwoDirections) {
  const Folder folder;
  const std::string fifo = folder.fifo("fifo");
  const std::string link = folder.path / "link";
  const std::string hard = folder.path / "hard";
  std::filesystem::create_symlink(fifo, link);
  std::filesystem::create_hard_link(fifo, hard);
  const std::string other = folder.path / "." / "fifo";
  for (const std::string& name :
       {fifo, fifo + "," + fifo, fifo + "," + link, hard + "," + fifo, fifo + "," + other, other + "," + link})
    EXPECT_THAT(whyNot(name), HasSubstr("a FIFO has one direction")) << name;
}

TEST(BytePort, AFullFifoTakesWhatGoesAndWaitsForTheRest) {
  const Folder folder;
  const std::string fifo = folder.fifo("fifo");
  BytePort in(fifo, Direction::in);
  BytePort out(fifo, Direction::out);
  const Bytes much(1U << 20U, 0x55);
  std::span<const std::uint8_t> left = much;
  std::size_t received = 0;
  while (received < much.size()) {
    if (!left.empty()) left = left.subspan(out.send(left));
    const std::span<const std::uint8_t> bytes = in.wait(in.now(), false);
    received += bytes.size();
  }
  EXPECT_TRUE(left.empty());
  EXPECT_EQ(received, much.size());
}

TEST(BytePort, SomebodyCanEndAWait) {
  const Folder folder;
  int wake[2];
  ASSERT_EQ(::pipe(wake), 0);
  BytePort port(folder.fifo("fifo"), Direction::in, wake[0]);
  ASSERT_EQ(::write(wake[1], "x", 1), 1);
  EXPECT_TRUE(port.wait(std::nullopt, false).empty());
  ::close(wake[0]);
  ::close(wake[1]);
}

TEST(BytePort, LeavesATerminalAsItWas) {
  BytePort here("pty:", Direction::both);
  const int terminal = ::open(here.name().c_str(), O_RDWR | O_NOCTTY);
  termios before{};
  termios during{};
  termios after{};
  // The port at the master's side has made it raw: as a shell would have it.
  ASSERT_EQ(::tcgetattr(terminal, &before), 0);
  before.c_lflag |= tcflag_t(ECHO | ICANON);
  ASSERT_EQ(::tcsetattr(terminal, TCSANOW, &before), 0);
  {
    const BytePort there(here.name(), Direction::both);
    ASSERT_EQ(::tcgetattr(terminal, &during), 0);
    EXPECT_EQ(during.c_lflag & tcflag_t(ECHO | ICANON), 0U);
  }
  ASSERT_EQ(::tcgetattr(terminal, &after), 0);
  EXPECT_EQ(after.c_lflag, before.c_lflag);
  ::close(terminal);
}

TEST(BytePort, WhatIsNoneIsRefusedInWords) {
  const Folder folder;
  const std::string file = folder.path / "file";
  EXPECT_NE(::close(::open(file.c_str(), O_CREAT | O_WRONLY, 0600)), -1);
  EXPECT_EQ(whyNot(folder.path / "none"), "port " + (folder.path / "none").string() + ": No such file or directory");
  EXPECT_EQ(whyNot(folder.path), "port " + folder.path.string() + ": it is a directory");
  EXPECT_THAT(whyNot(file), HasSubstr("it is a file; a port is a MIDI device, a FIFO, pty: or -"));
  EXPECT_TRUE(BytePort::isName("-"));
  EXPECT_TRUE(BytePort::isName("pty:"));
  EXPECT_TRUE(BytePort::isName("./fifo"));
  EXPECT_FALSE(BytePort::isName("Synthesizer"));
}

}  // namespace
}  // namespace Editor
