#include "input/MidiPort.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>

#include "messages/Text.h"
#include "wire/Poll.h"

namespace Editor {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t kRoom = 1U << 20;  // of the inbox: five minutes of a cable

// RtMidi has so much for what waits to be moved by JACK, its length before each message, and drops what is longer
// without a word.
constexpr std::size_t kJackQueue = 16'383;
constexpr std::size_t kLongestByJack = kJackQueue - sizeof(int);
// What JACK itself needs for a message beside its bytes, at most.
constexpr std::size_t kJackEvent = 32;
// ALSA's sequencer cuts a message into cells of 28 bytes and gives a program 500 of them, of which one message may not
// take all.
constexpr std::size_t kLongestByAlsa = std::size_t{499} * 28;

constexpr std::string_view kOverrun = "overrun";

void received(double /*time*/, std::vector<unsigned char>* message, void* inbox) {
  if (message != nullptr) static_cast<Inbox*>(inbox)->push(*message);
}

// RtMidi names itself and where it is in front of what it has to say.
std::string reasonOf(std::string_view text) {
  if (const std::size_t colon = text.find(": "); text.starts_with("Midi") && colon != std::string_view::npos)
    text.remove_prefix(colon + 2);
  return std::string(text);
}

}  // namespace

void RtMidiTalk::said(RtMidiError::Type type, const std::string& text, void* talk) {
  std::string& first = static_cast<RtMidiTalk*>(talk)->text_;
  if (type != RtMidiError::DEBUG_WARNING && first.empty()) first = reasonOf(text);
}

// That the system had no room is the only thing that RtMidi says there about a port that is open; it does not say for
// how much: for a byte at least.
std::streamsize Quiet::Buffer::xsputn(const char* text, std::streamsize count) {
  if (inbox_ != nullptr && std::string_view(text, std::size_t(count)).find(kOverrun) != std::string_view::npos)
    inbox_->drop(1);
  return count;
}

MidiPort::MidiPort(Ends ends, int wake) : ends_(std::move(ends)), wake_(wake), inbox_(kRoom), quiet_(&inbox_) {
  const auto isByJack = [](const std::optional<Source>& source) { return source && source->api == RtMidi::UNIX_JACK; };
  if (isByJack(ends_.in) || isByJack(ends_.out)) {
    jack_ = JackServer::connect(&inbox_);
    if (!jack_) fail(PortError::Kind::cannotOpen, "the JACK server has ended");
  }
  try {
    if (ends_.in) {
      in_ = make<RtMidiIn>(*ends_.in);
      in_->ignoreTypes(false, false, false);
      in_->setCallback(received, &inbox_);
      open(*in_, *ends_.in);
    }
    if (ends_.out) {
      out_ = make<RtMidiOut>(*ends_.out);
      open(*out_, *ends_.out);
    }
  } catch (const RtMidiError& error) {
    fail(PortError::Kind::cannotOpen, reasonOf(error.getMessage()));
  }
}

MidiPort::~MidiPort() = default;

template <typename Rt>
std::unique_ptr<Rt> MidiPort::make(const Source& source) {
  const std::string client = (ends_.isOwn ? kVirtualClient : kWireClient) + std::to_string(::getpid());
  auto rt = std::make_unique<Rt>(source.api, client);
  talk_.follow(*rt);
  return rt;
}

void MidiPort::open(RtMidi& rt, const Source& source) {
  if (ends_.isOwn) {
    rt.openVirtualPort(source.name);
  } else {
    const unsigned count = rt.getPortCount();
    unsigned i = 0;
    while (i < count && rt.getPortName(i) != source.name) ++i;
    if (i == count) fail(PortError::Kind::cannotOpen, "it has gone");
    rt.openPort(i, "wire");
  }
  if (const std::string why = talk_.take(); !why.empty()) fail(PortError::Kind::cannotOpen, why);
}

std::size_t MidiPort::longestMessage() const {
  if (!ends_.out) return Port::longestMessage();
  if (ends_.out->api == RtMidi::UNIX_JACK) return std::min(kLongestByJack, jack_->bytesInACycle() - kJackEvent);
  return ends_.out->api == RtMidi::LINUX_ALSA ? kLongestByAlsa : Port::longestMessage();
}

// RtMidi would wait for JACK, for ever where that has ended; and JACK drops what is too much for one of its cycles.
bool MidiPort::hasRoom(std::size_t bytes) {
  if (!jack_ || ends_.out->api != RtMidi::UNIX_JACK) return true;
  const std::uint64_t cycle = jack_->cycles();
  if (cycle >= cycleSentAt_ + 2) underWay_ = 0;
  if (underWay_ > 0 && underWay_ + bytes + kJackEvent > std::min(kJackQueue, jack_->bytesInACycle())) return false;
  underWay_ += bytes + kJackEvent;
  cycleSentAt_ = cycle;
  return true;
}

std::size_t MidiPort::send(std::span<const std::uint8_t> bytes) {
  if (bytes.size() > longestMessage()) fail(PortError::Kind::failed, "a message is longer than it carries");
  if (!hasRoom(bytes.size())) return 0;
  out_->sendMessage(bytes.data(), bytes.size());
  if (const std::string why = talk_.take(); !why.empty()) fail(PortError::Kind::failed, "sending to it: " + why);
  return bytes.size();
}

std::span<const std::uint8_t> MidiPort::wait(std::optional<WireTime> until, bool wantsToSend) {
  constexpr WireTime kLooksAgain = 1s;
  constexpr WireTime kCycle = 1ms;  // after one there may be room
  const WireTime end = now() + (wantsToSend ? kCycle : kLooksAgain);
  std::array<pollfd, 2> watched{{{wake_, POLLIN, 0}, {inbox_.descriptor(), POLLIN, 0}}};
  pollUntil(watched, until ? std::min(*until, end) : end);
  const std::span<const std::uint8_t> bytes = take();
  if (!bytes.empty() || now() < lookedAt_ + kLooksAgain) return bytes;
  if ((in_ && !isStillThere(*in_, *ends_.in)) || (out_ && !isStillThere(*out_, *ends_.out)))
    fail(PortError::Kind::gone, "it has gone");
  lookedAt_ = now();
  return bytes;
}

// Nobody tells that somebody else's port has gone.
bool MidiPort::isStillThere(RtMidi& rt, const Source& source) const {
  if (ends_.isOwn) return true;
  const unsigned count = rt.getPortCount();
  for (unsigned i = 0; i < count; ++i)
    if (rt.getPortName(i) == source.name) return true;
  return false;
}

std::span<const std::uint8_t> MidiPort::take() {
  const Inbox::Content content = inbox_.take();
  dropped_ += content.dropped;
  if (content.bytes.empty() && content.dropped == 0 && !content.failure.empty())
    fail(PortError::Kind::gone, content.failure);
  return content.bytes;
}

void MidiPort::discard() {
  discardUntilQuiet(*this);
  dropped_ = 0;
}

// ALSA has taken what was sent. JACK moves it cycle by cycle, if it is still there.
void MidiPort::drain() {
  if (!jack_) return;
  for (const WireTime end = now() + 1s; jack_->cycles() < cycleSentAt_ + 2 && now() < end;)
    std::this_thread::sleep_for(1ms);
}

void MidiPort::fail(PortError::Kind kind, const std::string& why) const {
  throw PortError(kind, fmt::format("port {}: {}", escape(ends_.name), why));
}

}  // namespace Editor
