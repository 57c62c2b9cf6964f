// The program with a full library, all places that file dumps store: what a backup and a restore take, beside a copy of
// the library's file. Each run ends as the program's does, with everything on disk.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "AddressRows.h"
#include "CommandLine.h"
#include "contents/ContentFormat.h"
#include "contents/Library.h"
#include "messages/Units.h"

namespace {

class FullLibrary {
 public:
  FullLibrary() {
    std::string name = (std::filesystem::temp_directory_path() / "bda-benchmark-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no directory to work in");
    directory_ = name;
    Editor::Library library(path("full.db"));
    Editor::Library::Transaction transaction(library);
    for (unsigned mid = 0; mid < 0x80; ++mid)
      for (unsigned lo = 0; lo < 0x80; ++lo) fill(library, {std::uint8_t(mid), std::uint8_t(lo)});
    transaction.commit();
    contents_ = library.contents().size();
  }
  FullLibrary(const FullLibrary&) = delete;
  FullLibrary& operator=(const FullLibrary&) = delete;
  ~FullLibrary() { std::filesystem::remove_all(directory_); }

  std::filesystem::path path(const char* name) const { return directory_ / name; }
  std::size_t contents() const { return contents_; }

  // Whether `bda -q --library LIBRARY VERB ... FILE` ends well.
  bool bda(const char* library, std::initializer_list<const char*> verb, const char* file) const {
    const std::string libraryPath = path(library);
    const std::string filePath = path(file);
    std::vector<const char*> arguments{"bda", "-q", "--library", libraryPath.c_str()};
    arguments.insert(arguments.end(), verb);
    arguments.push_back(filePath.c_str());
    return Editor::runProgram(int(arguments.size()), arguments.data()) == 0;
  }

 private:
  static void fill(Editor::Library& library, Editor::MidLo place) {
    const std::optional<Editor::ContentId> content = Editor::contentOfFileDump(place);
    if (!content || !Editor::isWritableFileDump({BDA::kFileDumpHi, place.mid, place.lo})) return;
    const Editor::ModelSet models = Editor::emptySetFor(*content);
    const bool hasName = content->type != ContSrv::ContType_Single;  // whose file dump carries none
    library.store(*content, Editor::encodeContent(models),
                  hasName ? fmt::format("Content {:02X} {:02X}", place.mid, place.lo) : std::string());
  }

  std::filesystem::path directory_;
  std::size_t contents_ = 0;
};

const FullLibrary& fullLibrary() {
  static const FullLibrary library;
  return library;
}

void backUp(benchmark::State& state) {
  for (auto run : state)
    if (!fullLibrary().bda("full.db", {"backup", "-o"}, "full.syx")) state.SkipWithError("the backup failed");
  state.counters["contents"] = double(fullLibrary().contents());
  state.counters["file"] = double(std::filesystem::file_size(fullLibrary().path("full.syx")));
}

void restore(benchmark::State& state) {
  if (!fullLibrary().bda("full.db", {"backup", "-o"}, "full.syx")) state.SkipWithError("the backup failed");
  for (auto run : state) {
    state.PauseTiming();
    for (const char* file : {"new.db", "new.db-wal", "new.db-shm"}) std::filesystem::remove(fullLibrary().path(file));
    state.ResumeTiming();
    if (!fullLibrary().bda("new.db", {"restore"}, "full.syx")) state.SkipWithError("the restore failed");
  }
  state.counters["contents"] = double(Editor::Library(fullLibrary().path("new.db")).contents().size());
}

void copyFile(benchmark::State& state) {
  using std::filesystem::copy_options;
  for (auto run : state)
    std::filesystem::copy_file(fullLibrary().path("full.db"), fullLibrary().path("copy.db"),
                               copy_options::overwrite_existing);
  state.counters["file"] = double(std::filesystem::file_size(fullLibrary().path("copy.db")));
}

BENCHMARK(backUp)->Name("Full library/backup")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(restore)->Name("Full library/restore")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(copyFile)->Name("Full library/copy of its file")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
