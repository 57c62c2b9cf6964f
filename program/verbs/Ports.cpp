// The verb ports: what can be sent to and received from.

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>
#include <system_error>

#include "input/MidiPorts.h"
#include "messages/Text.h"
#include "models/ModelJson.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// MIDI devices as the system has them, by how their names begin.
constexpr std::array<std::pair<const char*, const char*>, 3> kStreams{{
    {"/dev/snd", "midiC"},
    {"/dev", "midi"},
    {"/dev", "dmmidi"},
}};

std::vector<std::string> findStreams() {
  std::vector<std::string> streams;
  for (const auto& [directory, beginning] : kStreams) {
    std::vector<std::string> found;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(directory, error), end; !error && entry != end;
         entry.increment(error)) {
      std::error_code unknown;
      if (entry->path().filename().string().starts_with(beginning) && entry->is_character_file(unknown))
        found.push_back(entry->path().string());
    }
    std::ranges::sort(found);
    streams.insert(streams.end(), found.begin(), found.end());
  }
  return streams;
}

struct Told {
  std::string name;
  const char* kind;
  bool in;
  bool out;
};

std::string jsonOf(const Told& port) {
  return jsonLine(nlohmann::ordered_json{{"name", port.name}, {"kind", port.kind}, {"in", port.in}, {"out", port.out}});
}

std::string lineOf(const Told& port) {
  const char* const ways = port.in && port.out ? "in and out" : port.in ? "in" : port.out ? "out" : "may not be used";
  return fmt::format("{}: {}, {}", escape(port.name), port.kind, ways);
}

}  // namespace

void ports(bool json, Program& program) {
  const MidiPortsFound midi = findMidiPorts();
  std::vector<Told> ports;
  for (const MidiPortsFound::Found& port : midi.ports)
    ports.push_back({port.name, port.isVirtual ? "virtual" : "midi", port.in, port.out});
  for (const std::string& path : findStreams())
    ports.push_back({path, "stream", ::access(path.c_str(), R_OK) == 0, ::access(path.c_str(), W_OK) == 0});
  for (const Told& port : ports) program.console.line(json ? jsonOf(port) : lineOf(port));
  if (!midi.problem.empty()) program.console.note(midi.problem);
  if (ports.empty()) program.console.note("there are no ports; a path, pty: and - can be used all the same");
}

}  // namespace Editor
