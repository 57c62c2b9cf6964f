#include "input/MidiPorts.h"

#include <RtMidi.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "input/JackServer.h"
#include "input/MidiPort.h"
#include "messages/Text.h"
#include "wire/PortNames.h"

namespace Editor {

namespace {

// A port that others have.
struct Listed {
  MidiPort::Source port;
  std::string name;  // as people know it
  bool isVirtual = false;
  unsigned process = 0;  // this program's, elsewhere: which one
};

// What others need not know of a name: which client of ALSA it is, which run of this program.
std::optional<Listed> listed(RtMidi::Api api, const std::string& full, const JackServer* jack) {
  Listed port{{api, full}, full, false, 0};
  if (api == RtMidi::LINUX_ALSA) {
    constexpr unsigned kFirstProgram = 128;
    const std::size_t number = full.rfind(' ') + 1;
    unsigned client = 0;
    std::from_chars(full.data() + number, full.data() + full.size(), client);
    if (number > 0) port.name.resize(number - 1);
    port.isVirtual = client >= kFirstProgram;
  } else {
    port.isVirtual = jack != nullptr && !jack->isDevice(full);
  }
  if (port.name.starts_with(kWireClient)) return std::nullopt;
  if (!port.name.starts_with(kVirtualClient)) return port;
  const std::size_t id = std::string_view(kVirtualClient).size();
  std::from_chars(full.data() + id, full.data() + full.size(), port.process);
  port.name = port.name.substr(port.name.find(':') + 1);
  return port;
}

// All that can be received from, or sent to.
template <typename Rt>
void list(RtMidi::Api api, const JackServer* jack, std::vector<Listed>& ports) {
  Rt rt(api, kWireClient);
  RtMidiTalk talk;
  talk.follow(rt);
  const unsigned count = rt.getPortCount();
  for (unsigned i = 0; i < count; ++i)
    if (const std::string full = rt.getPortName(i); !full.empty())
      if (std::optional<Listed> port = listed(api, full, jack)) ports.push_back(*std::move(port));
}

std::vector<std::string> namesOf(const std::vector<Listed>& ports) {
  std::vector<std::string> names;
  names.reserve(ports.size());
  for (const Listed& port : ports) names.push_back(port.name);
  return names;
}

// Both lists name ports of the same name in the same order: what goes to the second comes from the second.
void tellApart(std::vector<Listed>& ports) {
  std::ranges::stable_sort(ports, {}, &Listed::process);
  std::vector<std::string> names = toldApart(namesOf(ports));
  for (std::size_t i = 0; i < ports.size(); ++i) ports[i].name = std::move(names[i]);
}

// What there is on this machine, each by its system.
class Systems {
 public:
  Systems() {
    const Quiet quiet;
    std::string why;
    if (const int sequencer = ::open("/dev/snd/seq", O_RDWR | O_NONBLOCK | O_CLOEXEC); sequencer >= 0) {
      ::close(sequencer);
      apis_.push_back(RtMidi::LINUX_ALSA);
    } else {
      why = "ALSA: /dev/snd/seq: " + std::generic_category().message(errno);
    }
    jack_ = JackServer::connect();
    if (jack_)
      apis_.insert(apis_.begin(), RtMidi::UNIX_JACK);
    else
      why += "; JACK: there is no server";
    for (const RtMidi::Api api : apis_) try {
        list<RtMidiIn>(api, jack_.get(), sources);
        list<RtMidiOut>(api, jack_.get(), destinations);
        isAnyThere_ = true;
      } catch (const RtMidiError& error) {
        why += fmt::format("; {}", error.getMessage());
      }
    tellApart(sources);
    tellApart(destinations);
    if (!isAnyThere_) problem = fmt::format("no MIDI system of the machine can be used: {}", why);
  }

  // Where a port of our own is made: who starts a JACK server wants to use it.
  RtMidi::Api first() const { return apis_.empty() ? RtMidi::UNSPECIFIED : apis_.front(); }

  std::vector<Listed> sources;
  std::vector<Listed> destinations;
  std::string problem;

 private:
  std::vector<RtMidi::Api> apis_;
  std::unique_ptr<JackServer> jack_;
  bool isAnyThere_ = false;
};

[[noreturn]] void refuse(const std::string& name, const std::string& why) {
  throw PortError(PortError::Kind::cannotOpen, fmt::format("port {}: {}", escape(name), why));
}

// Null: none is meant.
const Listed* find(const std::string& name, const std::vector<Listed>& ports) {
  const std::optional<std::size_t> found = findPort(name, namesOf(ports));
  return found ? &ports[*found] : nullptr;
}

}  // namespace

MidiPortsFound findMidiPorts() {
  const Systems systems;
  MidiPortsFound found{{}, systems.problem};
  for (const Listed& port : systems.sources) found.ports.push_back({port.name, port.isVirtual, true, false});
  for (const Listed& port : systems.destinations) {
    const auto same = std::ranges::find(found.ports, port.name, &MidiPortsFound::Found::name);
    if (same != found.ports.end())
      same->out = true;
    else
      found.ports.push_back({port.name, port.isVirtual, false, true});
  }
  return found;
}

std::unique_ptr<Port> openMidiPort(const std::string& name, BytePort::Direction direction, int wake) {
  const Systems systems;
  if (!systems.problem.empty()) refuse(name, systems.problem);
  const bool hears = direction != BytePort::Direction::out;
  const bool speaks = direction != BytePort::Direction::in;
  MidiPort::Ends ends;
  if (name.starts_with(kVirtualPort)) {
    const MidiPort::Source own{systems.first(), name.substr(std::string_view(kVirtualPort).size())};
    ends = {name, true, hears ? std::optional(own) : std::nullopt, speaks ? std::optional(own) : std::nullopt};
    return std::make_unique<MidiPort>(std::move(ends), wake);
  }
  const Listed* const source = hears ? find(name, systems.sources) : nullptr;
  const Listed* const destination = speaks ? find(name, systems.destinations) : nullptr;
  std::vector<std::string> names = namesOf(systems.sources);
  for (const std::string& other : namesOf(systems.destinations))
    if (std::ranges::find(names, other) == names.end()) names.push_back(other);
  if (source == nullptr && destination == nullptr && !findPort(name, names))
    throw PortError(PortError::Kind::cannotOpen, describeNoPort(name, names));
  if (hears && source == nullptr) refuse(name, "nothing can be received from it");
  if (speaks && destination == nullptr) refuse(name, "nothing can be sent to it");
  if (source != nullptr) ends.in = source->port;
  if (destination != nullptr) ends.out = destination->port;
  const std::string from = source != nullptr ? source->name : destination->name;
  const std::string to = destination != nullptr ? destination->name : from;
  ends.name = from == to ? from : from + ", " + to;
  return std::make_unique<MidiPort>(std::move(ends), wake);
}

}  // namespace Editor
