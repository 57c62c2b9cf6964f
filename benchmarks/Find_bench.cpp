// The program's find in a folder of 10,000 voices, each a message file of its own, and in one file of all of them.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "AddressRows.h"
#include "CommandLine.h"
#include "editor/messages/BulkMessages.h"

namespace {

constexpr unsigned kVoices = 10'000;

// Standard output goes nowhere as long as it lives: it is the program's, and the benchmarks tell there too.
class Silence {
 public:
  Silence() : output_(::dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(nowhere, STDOUT_FILENO);
    ::close(nowhere);
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() {
    std::fflush(stdout);
    ::dup2(output_, STDOUT_FILENO);
    ::close(output_);
  }

 private:
  const int output_;
};

class Voices {
 public:
  Voices() {
    std::string name = (std::filesystem::temp_directory_path() / "bda-benchmark-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no directory to work in");
    directory_ = name;
    std::filesystem::create_directory(directory_ / "one");
    std::ofstream one(directory_ / "one" / "all.syx", std::ios::binary);
    for (unsigned number = 0; number < kVoices; ++number) {
      const auto folder = directory_ / "many" / std::to_string(number / 100);
      if (number % 100 == 0) std::filesystem::create_directories(folder);
      const std::string voice = voiceOf(number);
      std::ofstream(folder / fmt::format("{:05}.syx", number), std::ios::binary) << voice;
      one << voice;
    }
    receive(voiceOf(0));
  }
  Voices(const Voices&) = delete;
  Voices& operator=(const Voices&) = delete;
  ~Voices() { std::filesystem::remove_all(directory_); }

  // Whether `bda -q find ... --in FOLDER` finds something. What it finds goes nowhere.
  bool find(const char* folder, const std::vector<const char*>& words) const {
    const std::string in = directory_ / folder;
    std::vector<const char*> arguments{"find", "--json", "--in", in.c_str()};
    arguments.insert(arguments.end(), words.begin(), words.end());
    return bda(arguments);
  }

 private:
  // A whole unit, somewhere in the user's banks, its blocks filled with values that depend on the number; each is there
  // twice.
  static std::string voiceOf(unsigned number) {
    const auto mid = std::uint8_t(0x0A + number / 128 % 3);
    const auto lo = std::uint8_t(number % 128);
    std::string bytes;
    const auto add = [&](const Bytes& message) { bytes.append(message.begin(), message.end()); };
    add(dump({BDA::kHeaderHi, mid, lo}));
    unsigned block = 0;
    const unsigned sound = number % (kVoices / 2);
    for (const Editor::BulkAddress address : blocksOf(BDA::List::normalVoice))
      add(blockDump(address, std::uint8_t(block++ % 2 == 0 ? sound % 128 : sound / 128)));
    add(dump({BDA::kFooterHi, mid, lo}));
    return bytes;
  }

  bool bda(std::vector<const char*> words) const {
    const Silence silence;
    const std::string library = directory_ / "library.db";
    words.insert(words.begin(), {"bda", "-q", "--library", library.c_str()});
    return Editor::runProgram(int(words.size()), words.data()) == 0;
  }

  void receive(const std::string& voice) const {
    const std::string file = directory_ / "voice.syx";
    std::ofstream(file, std::ios::binary) << voice;
    if (!bda({"receive", file.c_str()})) throw std::runtime_error("the voice is not received");
  }

  std::filesystem::path directory_;
};

const Voices& voices() {
  static const Voices all;
  return all;
}

void find(benchmark::State& state, const char* folder, const std::vector<const char*>& words) {
  voices();
  for (auto run : state)
    if (!voices().find(folder, words)) state.SkipWithError("nothing is found");
  state.counters["voices"] = kVoices;
}

BENCHMARK_CAPTURE(find, name, "many", {"*"})
    ->Name("Find/10,000 voices in files, all by name")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(find, condition, "many", {"--where", "voice.common[3]>3"})
    ->Name("Find/10,000 voices in files, by a parameter")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(find, like, "many", {"--like", "voice:user1:1"})
    ->Name("Find/10,000 voices in files, by likeness")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(find, duplicates, "many", {"--duplicates"})
    ->Name("Find/10,000 voices in files, duplicates")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(find, oneFile, "one", {"--like", "voice:user1:1"})
    ->Name("Find/10,000 voices in one file, by likeness")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
