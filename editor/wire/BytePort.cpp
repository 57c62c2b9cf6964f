#include "wire/BytePort.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "messages/Text.h"
#include "wire/Poll.h"

namespace Editor {

namespace {

std::string reasonOf(int error) { return std::strerror(error); }

[[noreturn]] void refuse(const std::string& name, const std::string& why) {
  throw PortError(PortError::Kind::cannotOpen, fmt::format("port {}: {}", escape(name), why));
}

constexpr const char* kInUse = "another program uses it";

bool isThere(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0;
}

bool areOne(const std::string& path, const std::string& other) {
  struct stat first {};
  struct stat second {};
  return ::stat(path.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
         first.st_ino == second.st_ino;
}

// Nobody has the other end of a pseudo terminal open.
bool isLeft(int descriptor) {
  std::array<pollfd, 1> watched{{{descriptor, 0, 0}}};
  return ::poll(watched.data(), watched.size(), 0) > 0 && (watched[0].revents & POLLHUP) != 0;
}

// Bytes that have gone into a pseudo terminal and that nobody has read from this end of it.
int countUnread(int descriptor) {
  std::array<pollfd, 1> watched{{{descriptor, POLLIN, 0}}};
  ::poll(watched.data(), watched.size(), 0);  // has the system take over those that are on their way
  int count = 0;
  return ::ioctl(descriptor, FIONREAD, &count) == 0 ? count : 0;
}

// Nobody is there any more.
bool isGone(int error) { return error == EIO || error == ENODEV || error == ENXIO || error == EPIPE || error == EBADF; }

}  // namespace

// Raw and without waiting as long as it lives.
class BytePort::Opened {
 public:
  Opened(int descriptor, bool isOwn) : descriptor_(descriptor), isOwn_(isOwn), flags_(::fcntl(descriptor, F_GETFL)) {
    ::fcntl(descriptor_, F_SETFL, flags_ | O_NONBLOCK);
    isTerminal_ = ::isatty(descriptor_) != 0 && ::tcgetattr(descriptor_, &settings_) == 0;
    if (!isTerminal_) return;
    termios raw = settings_;
    ::cfmakeraw(&raw);
    ::tcsetattr(descriptor_, TCSANOW, &raw);
  }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;
  ~Opened() {
    if (isTerminal_) ::tcsetattr(descriptor_, TCSANOW, &settings_);
    if (isOwn_)
      ::close(descriptor_);
    else
      ::fcntl(descriptor_, F_SETFL, flags_);
  }

 private:
  const int descriptor_;
  const bool isOwn_;
  const int flags_;
  bool isTerminal_ = false;
  termios settings_{};
};

bool BytePort::isName(const std::string& name) {
  return name == "-" || name == "pty:" || name.find('/') != std::string::npos || isThere(name) ||
         std::ranges::all_of(pathsOf(name), isThere);
}

std::vector<std::string> BytePort::pathsOf(const std::string& name) {
  const std::size_t comma = name.find(',');
  if (comma == std::string::npos) return {name};
  return {name.substr(0, comma), name.substr(comma + 1)};
}

Pace BytePort::defaultPaceOf(const std::string& name) {
  struct stat status {};
  return paceOf(name != "-" && (::stat(pathsOf(name).back().c_str(), &status) != 0 || !S_ISFIFO(status.st_mode)));
}

BytePort::BytePort(const std::string& name, Direction direction, int wake, TellWaiting tellWaiting)
    : name_(name), wake_(wake), tellWaiting_(std::move(tellWaiting)) {
  if (name == "pty:") {
    openPseudoTerminal(direction);
    return;
  }
  const bool hears = direction != Direction::out;
  const bool speaks = direction != Direction::in;
  const std::vector<std::string> paths = pathsOf(name);
  isStandard_ = name == "-";
  if (isStandard_) {
    name_ = "standard input and output";
    if (hears) keep(in_ = STDIN_FILENO, false);
    if (speaks) keep(out_ = STDOUT_FILENO, false);
  } else if (paths.size() == 2) {
    if (areOne(paths[0], paths[1])) refuse(name, "a FIFO has one direction: two different ones are needed, IN,OUT");
    if (hears) in_ = openPath(paths[0], Direction::in);
    if (speaks) out_ = openPath(paths[1], Direction::out);
  } else {
    const int both = openPath(name, direction);
    if (hears) in_ = both;
    if (speaks) out_ = both;
  }
}

BytePort::~BytePort() { closeOther(); }

int BytePort::openPath(const std::string& path, Direction direction) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) refuse(path, reasonOf(errno));
  if (S_ISDIR(status.st_mode)) refuse(path, "it is a directory");
  if (!S_ISCHR(status.st_mode) && !S_ISFIFO(status.st_mode))
    refuse(path, "it is a file; a port is a MIDI device, a FIFO, pty: or -");
  const bool isFifo = S_ISFIFO(status.st_mode);
  const int descriptor =
      isFifo ? openFifo(path, direction) : ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) refuse(path, errno == EBUSY ? kInUse : reasonOf(errno));
  keep(descriptor, true);
  // Two who read take each other's bytes. Of a FIFO both ends are one file.
  if (!isFifo && ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) refuse(path, kInUse);
  isLine_ = isLine_ || !isFifo;
  return descriptor;
}

int BytePort::openFifo(const std::string& path, Direction direction) {
  if (direction == Direction::both) refuse(path, "a FIFO has one direction: two of them are needed, IN,OUT");
  return direction == Direction::in ? ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC) : openToWrite(path);
}

// Who hears, too, notices that nobody is there.
int BytePort::openToWrite(const std::string& path) {
  for (bool isTold = false;; isTold = true) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0 || errno != ENXIO) return descriptor;
    if (in_ >= 0) return ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    waitForReader(path, isTold);
  }
}

// The system tells nobody that somebody reads: it is tried again and again.
void BytePort::waitForReader(const std::string& path, bool isTold) const {
  constexpr WireTime kBetween = std::chrono::milliseconds(20);
  if (!isTold && tellWaiting_) tellWaiting_(path);
  if (isWokenBefore(machineTime() + kBetween)) refuse(path, "nobody reads from it");
}

bool BytePort::isWokenBefore(WireTime time) const {
  std::array<pollfd, 1> woken{{{wake_, POLLIN, 0}}};
  return pollUntil(woken, time) > 0;
}

void BytePort::openPseudoTerminal(Direction direction) {
  out_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  std::array<char, 128> path{};
  if (out_ < 0 || ::grantpt(out_) != 0 || ::unlockpt(out_) != 0 || ::ptsname_r(out_, path.data(), path.size()) != 0)
    refuse(name_, reasonOf(errno));
  keep(out_, true);
  name_ = path.data();
  isLine_ = isOwnTerminal_ = true;
  openOther();
  if (other_ < 0) refuse(name_, reasonOf(errno));
  if (direction != Direction::out) {
    in_ = out_;
    return;
  }
  closeOther();  // which shows from when on another one has it open
  for (bool isTold = false; isLeft(out_); isTold = true) waitForReader(name_, isTold);
  openOther();
}

// Not where somebody else has it for himself.
void BytePort::openOther() { other_ = ::open(name_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC); }

void BytePort::closeOther() {
  if (other_ >= 0) ::close(std::exchange(other_, -1));
}

void BytePort::keep(int descriptor, bool isOwn) { opened_.push_back(std::make_unique<Opened>(descriptor, isOwn)); }

std::size_t BytePort::send(std::span<const std::uint8_t> bytes) {
  while (true) {
    const ssize_t count = ::write(out_, bytes.data(), bytes.size());
    if (count >= 0) return std::size_t(count);
    if (errno == EAGAIN || errno == EWOULDBLOCK) return 0;
    if (errno != EINTR) fail("sending to it", errno);
  }
}

std::span<const std::uint8_t> BytePort::wait(std::optional<WireTime> until, bool wantsToSend) {
  std::array<pollfd, 3> watched{{{wake_, POLLIN, 0}, {in_, POLLIN, 0}, {wantsToSend ? out_ : -1, POLLOUT, 0}}};
  if (pollUntil(watched, until) < 0) {
    if (errno != EINTR) fail("waiting for it", errno);
    return {};
  }
  // Of a FIFO that nobody writes to yet there is nothing to read, and no end.
  if ((watched[1].revents & POLLIN) == 0 && (watched[1].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) end();
  if (watched[1].revents != 0) return read();
  if ((watched[2].revents & (POLLERR | POLLHUP | POLLNVAL)) != 0) fail("sending to it", EPIPE);
  return {};
}

std::span<const std::uint8_t> BytePort::read() {
  const ssize_t count = ::read(in_, buffer_.data(), buffer_.size());
  if (count > 0) return {buffer_.data(), std::size_t(count)};
  if (count == 0) end();
  if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) fail("receiving from it", errno);
  return {};
}

// Nothing more arrives.
void BytePort::end() {
  if (!isStandard_) fail("receiving from it", EPIPE);
  in_ = -1;
  throw PortError(PortError::Kind::ended, fmt::format("port {}: its input has ended", escape(name_)));
}

// Standard input is a file whose beginning was meant.
void BytePort::discard() {
  if (!isStandard_ && !isOwnTerminal_) discardUntilQuiet(*this);
}

void BytePort::drain() {
  if (isOwnTerminal_) return drainTerminal();
  // Where it is no terminal its driver has the bytes, and sends them; and Ctrl-C ends it.
  if (isLine_) ::tcdrain(out_);
}

// What nobody has read goes with the terminal. Whoever is there gets time for it, as long as some of it is taken now
// and then. Who only sends waits for somebody who comes back, too, and has not sent what is left.
void BytePort::drainTerminal() {
  constexpr WireTime kPatience = std::chrono::seconds(2);
  constexpr WireTime kBetween = std::chrono::milliseconds(5);
  WireTime end = machineTime() + kPatience;
  int before = 0;
  for (int count = countUnread(other_); count > 0; count = countUnread(other_)) {
    if (count != std::exchange(before, count)) end = machineTime() + kPatience;
    closeOther();
    const bool isNobodyThere = isLeft(out_);
    openOther();
    if (in_ >= 0 && isNobodyThere) return;
    if (!isWokenBefore(machineTime() + kBetween) && machineTime() < end) continue;
    if (in_ < 0) fail("sending to it", EPIPE);
    return;
  }
}

void BytePort::fail(const std::string& doing, int error) const {
  if (isGone(error)) throw PortError(PortError::Kind::gone, fmt::format("port {}: it has hung up", escape(name_)));
  throw PortError(PortError::Kind::failed, fmt::format("port {}: {}: {}", escape(name_), doing, reasonOf(error)));
}

}  // namespace Editor
