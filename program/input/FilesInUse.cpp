#include "input/FilesInUse.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <utility>

#include "ExitCode.h"
#include "contents/LibraryMark.h"
#include "messages/Text.h"
#include "output/Console.h"
#include "output/OutputFile.h"
#include "wire/BytePort.h"

namespace Editor {

// Where what is written is nowhere.
bool FilesInUse::isNowhere(const struct stat& status) {
  struct stat nowhere {};
  return S_ISCHR(status.st_mode) && ::stat("/dev/null", &nowhere) == 0 && status.st_rdev == nowhere.st_rdev;
}

// False for standard streams that are closed.
bool FilesInUse::identify(const std::string& path, int standardStream, File& file) {
  struct stat status {};
  const bool isStandard = path == "-";
  const bool exists = (isStandard ? ::fstat(standardStream, &status) : ::stat(path.c_str(), &status)) == 0;
  if (isStandard && !exists) return false;
  file.kind = !exists || S_ISREG(status.st_mode)                     ? Kind::file
              : S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode) ? Kind::pipe
                                                                     : Kind::device;
  if (exists && !isNowhere(status)) {
    file.device = status.st_dev;
    file.inode = status.st_ino;
  }
  if (!isStandard) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::weakly_canonical(followLinks(path), error);
    file.path = error ? path : std::filesystem::absolute(real, error).string();
  }
  return true;
}

void FilesInUse::add(const std::string& path, const std::string& what) {
  File file;
  if (!identify(path, STDIN_FILENO, file) || file.kind != Kind::file) return;
  file.what = what;
  files_.push_back(std::move(file));
}

void FilesInUse::addLibrary(const std::string& path) {
  add(path, "this is the library");
  File file;
  if (!identify(path, STDIN_FILENO, file)) return;
  library_ = file.path;
  // What belongs to it may have another name, too, and be written by that.
  const std::filesystem::path real(library_);
  const std::string name = real.filename().string();
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(real.parent_path(), error)) {
    const std::string other = entry.path().filename().string();
    if (other.starts_with(name) && belongsToLibrary(std::string_view(other).substr(name.size())))
      add(entry.path().string(), "this belongs to the library");
  }
}

void FilesInUse::addPort(const std::string& name) {
  if (!BytePort::isName(name)) return;
  for (const std::string& path : BytePort::pathsOf(name))
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO}) {
      File file;
      if (!identify(path, stream, file) || file.inode == 0) continue;
      file.what = "this is the port";
      files_.push_back(std::move(file));
    }
}

const FilesInUse::File* FilesInUse::find(const File& file) const {
  const auto found = std::ranges::find_if(files_, [&](const File& other) {
    const bool isSamePath = !file.path.empty() && file.path == other.path;
    return isSamePath || (file.inode != 0 && file.inode == other.inode && file.device == other.device);
  });
  return found == files_.end() ? nullptr : &*found;
}

void FilesInUse::addOutput(const std::string& path, const std::string& option) {
  File file;
  if (!identify(path, STDOUT_FILENO, file)) return;
  if (const File* const other = find(file))
    throw Failure(kWrongUsage, fmt::format("{} {}: {}", option, escape(path), other->what));
  const bool isBeside = !library_.empty() && file.path.starts_with(library_);
  if (isBeside && belongsToLibrary(std::string_view(file.path).substr(library_.size())))
    throw Failure(kWrongUsage, fmt::format("{} {}: this belongs to the library", option, escape(path)));
  if (file.kind == Kind::device) return;
  file.what = fmt::format("{} names this file too", option);
  files_.push_back(std::move(file));
}

void FilesInUse::addLines() {
  File file;
  if (!identify("-", STDOUT_FILENO, file)) return;
  if (const File* const other = find(file)) throw Failure(kWrongUsage, fmt::format("standard output: {}", other->what));
  if (file.kind == Kind::device) return;
  file.what = "this is standard output, where lines of this run go";
  files_.push_back(std::move(file));
}

}  // namespace Editor
