// The program as a process: what receiving a file takes beside a restore of the same file, in processor time. A receive
// has every unit on disk when it is told, a restore all of them at its end.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "editor/messages/BulkMessages.h"

extern char** environ;

namespace {

using Editor::BulkAddress;

class Directory {
 public:
  Directory() {
    std::string name = (std::filesystem::temp_directory_path() / "bda-benchmark-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no directory to work in");
    path_ = name;
  }
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;
  ~Directory() { std::filesystem::remove_all(path_); }

  std::string operator/(const char* name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

// Messages, counted as they are put together.
struct Messages {
  std::string bytes;
  std::size_t count = 0;

  void add(const Bytes& message) {
    bytes.append(message.begin(), message.end());
    ++count;
  }
  // A whole unit, its blocks filled with `value`.
  void addUnit(BDA::List list, std::uint8_t mid, std::uint8_t lo, std::uint8_t value) {
    add(blockDump({BDA::kHeaderHi, mid, lo}));
    for (const BulkAddress block : blocksOf(list)) add(blockDump(block, value));
    add(blockDump({BDA::kFooterHi, mid, lo}));
  }
};

// The three banks of the user's voices.
Messages userVoices() {
  Messages messages;
  for (std::uint8_t bank = 0x0A; bank <= 0x0C; ++bank)
    for (std::uint8_t number = 0; number < 128; ++number)
      messages.addUnit(BDA::List::normalVoice, bank, number, number);
  return messages;
}

// The bank of the user's drum voices, and the edit buffer of the multi between them.
Messages multisAndDrumVoices() {
  Messages messages;
  for (std::uint8_t number = 0; number < 32; ++number) {
    messages.addUnit(BDA::List::multi, 0x5F, 0x00, number);
    messages.addUnit(BDA::List::drumVoice, 0x28, number, number);
  }
  return messages;
}

double seconds(const timeval& time) { return double(time.tv_sec) + 1e-6 * double(time.tv_usec); }

// The processor time of `bda --library LIBRARY VERB FILE`, in seconds; what it says goes nowhere.
double processorTime(std::string library, std::string verb, std::string file) {
  std::string program = BDA_PROGRAM;
  std::string option = "--library";
  char* argv[] = {program.data(), option.data(), library.data(), verb.data(), file.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int output : {1, 2}) posix_spawn_file_actions_addopen(&actions, output, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int error = posix_spawn(&child, BDA_PROGRAM, &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("bda cannot be started");
  int status = 0;
  rusage used{};
  ::wait4(child, &status, 0, &used);
  if (status != 0) throw std::runtime_error("bda " + verb + " failed");
  return seconds(used.ru_utime) + seconds(used.ru_stime);
}

// Turn by turn, so that both have the same machine.
void receive(benchmark::State& state, const Messages& messages) {
  const Directory directory;
  std::ofstream(directory / "all.syx", std::ios::binary) << messages.bytes;
  double received = 0;
  double restored = 0;
  for (auto run : state) {
    for (const char* file : {"a.db", "a.db-wal", "a.db-shm", "b.db", "b.db-wal", "b.db-shm"})
      std::filesystem::remove(directory / file);
    restored += processorTime(directory / "a.db", "restore", directory / "all.syx");
    const double time = processorTime(directory / "b.db", "receive", directory / "all.syx");
    received += time;
    state.SetIterationTime(time);
  }
  const double count = double(messages.count) * double(state.iterations());
  state.counters["messages"] = double(messages.count);
  state.counters["bytes"] = double(messages.bytes.size());
  state.counters["receive_us_per_message"] = 1e6 * received / count;
  state.counters["restore_us_per_message"] = 1e6 * restored / count;
  state.counters["receive/restore"] = received / restored;
}

BENCHMARK_CAPTURE(receive, userVoices, userVoices())
    ->Name("Receive/384 user voices")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();
BENCHMARK_CAPTURE(receive, multisAndDrumVoices, multisAndDrumVoices())
    ->Name("Receive/32 multis and 32 drum voices")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
