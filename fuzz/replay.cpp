// Feeds files, and all files of folders, to a fuzz target once: fuzz findings as ordinary tests, without libFuzzer.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replay(const std::filesystem::path& path) {
  // Named before it runs: a crash leaves the name of its input as the last line.
  std::printf("%s\n", path.string().c_str());
  std::fflush(stdout);
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint8_t nothing = 0;
  LLVMFuzzerTestOneInput(&nothing, 0);
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path path = argv[i];
    if (!std::filesystem::is_directory(path)) {
      if (std::filesystem::exists(path)) replay(path);
      continue;  // a target that never broke has no folder
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
      if (entry.is_regular_file()) replay(entry.path());
    }
  }
}
