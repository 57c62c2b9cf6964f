#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "wire/Port.h"

namespace Editor {

// A stream of MIDI bytes that a path names:
//
//   a character device ("/dev/snd/midiC1D0"), a terminal in raw mode; paced like a cable
//   "pty:", a new pseudo terminal, whose other end others open by the path that is its name; likewise. It is kept open
//     here: others come and go. To drain it is to wait until they have read all
//   a FIFO, which has one direction, or two of them, "IN,OUT"; not paced. It hangs up when who writes to it has gone,
//     or who reads from it
//   "-", standard input and output; not paced
//
// Only to write to a FIFO or to "pty:" is to wait for somebody who reads: without one all would be lost.
class BytePort final : public Port {
 public:
  enum class Direction : std::uint8_t { in, out, both };

  // Whether that is what names one: "-", "pty:", whatever has a slash in it, and what is there, be it one or both.
  static bool isName(const std::string& name);
  // Those that a name may be: both of "IN,OUT", or the name itself.
  static std::vector<std::string> pathsOf(const std::string& name);
  // The default pace of the port of that name, or that it would have, without opening it.
  static Pace defaultPaceOf(const std::string& name);

  // `wake` is a descriptor that ends a wait as soon as there is something to read from it; it stays its owner's, who
  // also reads from it. -1: there is none. `tellWaiting` hears once of the path that nobody reads from yet.
  // Throws PortError (cannotOpen), also when it was woken first.
  using TellWaiting = std::function<void(const std::string& path)>;
  BytePort(const std::string& name, Direction direction, int wake = -1, TellWaiting tellWaiting = {});
  ~BytePort() override;

  const std::string& name() const override { return name_; }
  Pacer::Takes takes() const override { return Pacer::Takes::bytes; }
  Pace defaultPace() const override { return paceOf(isLine_); }

  WireTime now() override { return machineTime(); }
  std::size_t send(std::span<const std::uint8_t> bytes) override;
  std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool wantsToSend) override;
  void discard() override;
  void drain() override;

 private:
  class Opened;  // a descriptor, as it was before, and its end

  static Pace paceOf(bool isLine) { return isLine ? kCablePace : kNoPace; }
  int openPath(const std::string& path, Direction direction);
  int openFifo(const std::string& path, Direction direction);
  int openToWrite(const std::string& path);
  void waitForReader(const std::string& path, bool isTold) const;
  bool isWokenBefore(WireTime time) const;
  void openPseudoTerminal(Direction direction);
  void openOther();
  void closeOther();
  void drainTerminal();
  void keep(int descriptor, bool isOwn);
  std::span<const std::uint8_t> read();
  [[noreturn]] void end();
  [[noreturn]] void fail(const std::string& doing, int error) const;

  std::string name_;
  const int wake_;
  const TellWaiting tellWaiting_;
  bool isOwnTerminal_ = false;
  int other_ = -1;           // its other end
  bool isStandard_ = false;  // input and output, which end as files do
  bool isLine_ = false;      // a device: what is written takes the time of a cable
  int in_ = -1;
  int out_ = -1;
  std::vector<std::unique_ptr<Opened>> opened_;
  std::array<std::uint8_t, 4096> buffer_{};
};

}  // namespace Editor
