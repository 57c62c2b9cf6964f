#pragma once

#include <RtMidi.h>

#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "input/JackServer.h"
#include "wire/Inbox.h"
#include "wire/Port.h"

namespace Editor {

// As what this program appears to others: with the number of its process. Ports of the first are the ends of a wire to
// somebody else's port, and of no use to anybody.
inline constexpr const char* kWireClient = "bda-wire-";
inline constexpr const char* kVirtualClient = "bda-port-";

// What RtMidi says, which it does on standard error or by a call, goes here as long as it lives.
class RtMidiTalk {
 public:
  RtMidiTalk() = default;
  RtMidiTalk(const RtMidiTalk&) = delete;
  RtMidiTalk& operator=(const RtMidiTalk&) = delete;

  // It outlives the other.
  void follow(RtMidi& rt) { rt.setErrorCallback(said, this); }
  // The first that it has said since the last time; "": nothing.
  std::string take() { return std::exchange(text_, ""); }

 private:
  static void said(RtMidiError::Type type, const std::string& text, void* talk);

  std::string text_;
};

// What is said on standard error by RtMidi's own threads, and before it can be told to call, is said to an inbox, or to
// nobody. Nobody else here uses std::cerr.
class Quiet {
 public:
  explicit Quiet(Inbox* inbox = nullptr) : buffer_(inbox), before_(std::cerr.rdbuf(&buffer_)) {}
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;
  ~Quiet() { std::cerr.rdbuf(before_); }

 private:
  class Buffer final : public std::streambuf {
   public:
    explicit Buffer(Inbox* inbox) : inbox_(inbox) {}

   private:
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char* text, std::streamsize count) override;

    Inbox* const inbox_;
  };

  Buffer buffer_;
  std::streambuf* const before_;
};

// A MIDI port of the system: another program's or a device's, or one of our own. It takes whole messages.
class MidiPort final : public Port {
 public:
  struct Source {
    RtMidi::Api api = RtMidi::UNSPECIFIED;
    std::string name;  // in full, as RtMidi has it; of one of our own as others see it
  };
  struct Ends {
    std::string name;  // of both, as people know it
    bool isOwn = false;
    std::optional<Source> in = {};  // where it receives
    std::optional<Source> out = {};
  };

  // `wake` as for a BytePort. Throws PortError (cannotOpen).
  MidiPort(Ends ends, int wake);
  ~MidiPort() override;

  const std::string& name() const override { return ends_.name; }
  Pacer::Takes takes() const override { return Pacer::Takes::messages; }
  Pace defaultPace() const override { return kCablePace; }
  std::size_t longestMessage() const override;

  WireTime now() override { return machineTime(); }
  std::size_t send(std::span<const std::uint8_t> bytes) override;
  std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool wantsToSend) override;
  std::uint64_t dropped() const override { return dropped_; }
  void discard() override;
  void drain() override;

 private:
  template <typename Rt>
  std::unique_ptr<Rt> make(const Source& source);
  void open(RtMidi& rt, const Source& source);
  bool isStillThere(RtMidi& rt, const Source& source) const;
  bool hasRoom(std::size_t bytes);
  std::span<const std::uint8_t> take();
  [[noreturn]] void fail(PortError::Kind kind, const std::string& why) const;

  const Ends ends_;
  const int wake_;
  Inbox inbox_;
  const Quiet quiet_;
  RtMidiTalk talk_;
  std::unique_ptr<JackServer> jack_;  // where one of the ends is there
  std::unique_ptr<RtMidiIn> in_;
  std::unique_ptr<RtMidiOut> out_;
  std::uint64_t dropped_ = 0;
  WireTime lookedAt_{};            // when it was still there
  std::uint64_t cycleSentAt_ = 0;  // the last message
  std::size_t underWay_ = 0;       // bytes that JACK may not have moved yet
};

}  // namespace Editor
