#include "input/Sources.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "ExitCode.h"
#include "contents/LibraryMark.h"
#include "messages/Text.h"

namespace Editor {

namespace {

namespace fs = std::filesystem;

// As many as there are of the first hundred.
std::vector<std::uint8_t> firstBytesOf(const std::string& path) {
  std::array<char, 100> first{};
  std::ifstream file(path, std::ios::binary);
  file.read(first.data(), first.size());
  return {first.begin(), first.begin() + file.gcount()};
}

bool isBesideLibrary(const fs::path& path) {
  const std::string name = path.string();
  return std::any_of(kSideFiles.begin(), kSideFiles.end(), [&](std::string_view ending) {
    return name.ends_with(ending) && isLibrary(name.substr(0, name.size() - ending.size()));
  });
}

class Finding {
 public:
  void add(const std::string& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (path == "-") {
      sources.list.push_back({path});
    } else if (!fs::exists(status)) {
      throw Failure(kUnusableInput, fmt::format("{}: {}", escape(path), error.message()));
    } else if (fs::is_directory(status)) {
      const fs::path place = fs::canonical(path, error);
      addFolder(path, error ? fs::path(path) : place);
    } else if (isNew(fs::canonical(path, error))) {
      const bool isFile = fs::is_regular_file(status);
      sources.list.push_back({path, isLibrary(path), true, isFile ? fs::file_size(path, error) : 0});
    }
  }

  Sources sources;

 private:
  bool isNew(const fs::path& place) { return places_.insert(place.string()).second; }

  // `place`: where it really is.
  void addFolder(const fs::path& folder, const fs::path& place) {
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator next(folder, error), end; !error && next != end; next.increment(error))
      entries.push_back(*next);
    if (error) sources.problems.push_back(fmt::format("{}: {}", escape(folder.string()), error.message()));
    std::sort(entries.begin(), entries.end());
    for (const fs::directory_entry& entry : entries) addEntry(entry, place / entry.path().filename());
  }

  void addEntry(const fs::directory_entry& entry, const fs::path& place) {
    std::error_code error;
    const fs::file_status status = entry.symlink_status(error);
    if (fs::is_symlink(status) || isBesideLibrary(entry.path()) || !isNew(place)) return;
    if (fs::is_directory(status)) return addFolder(entry.path(), place);
    const std::string path = entry.path().string();
    if (!fs::is_regular_file(status)) {
      ++sources.ofOtherKinds;  // to open a pipe might never end
      return;
    }
    const std::vector<std::uint8_t> first = firstBytesOf(path);
    if (isSqliteFile(first) && !isLibraryFile(first))
      ++sources.ofOtherKinds;
    else
      sources.list.push_back({path, isLibraryFile(first), false, entry.file_size(error)});
  }

  std::set<std::string> places_;
};

}  // namespace

Sources findSources(const std::vector<std::string>& paths) {
  if (std::count(paths.begin(), paths.end(), "-") > 1)
    throw Failure(kWrongUsage, "standard input can be read only once");
  Finding finding;
  for (const std::string& path : paths) finding.add(path);
  return std::move(finding.sources);
}

void passOver(Sources& sources, const Source& source, const NotMessages& failure) {
  if (source.isNamed) throw;
  if (failure.isCut())
    sources.problems.emplace_back(failure.what());
  else
    ++sources.ofOtherKinds;
}

bool isThere(const std::string& path) {
  std::error_code error;
  const bool exists = fs::exists(path, error);
  if (error) throw Failure(kUnusableInput, fmt::format("{}: {}", escape(path), error.message()));
  return exists;
}

bool isLibrary(const std::string& path) {
  std::error_code unknown;
  if (path == "-" || !std::filesystem::is_regular_file(path, unknown)) return false;  // a pipe can be read only once
  return isSqliteFile(firstBytesOf(path));
}

}  // namespace Editor
