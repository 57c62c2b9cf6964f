#include "input/FilesInUse.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

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

// False for standard streams that are no file.
bool FilesInUse::identify(const std::string& path, int standardStream, File& file) {
  struct stat status {};
  const bool isStandard = path == "-";
  const bool exists = (isStandard ? ::fstat(standardStream, &status) : ::stat(path.c_str(), &status)) == 0;
  file.isDevice = exists && !S_ISREG(status.st_mode);
  if (isStandard && (!exists || file.isDevice)) return false;
  if (exists) {
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
  if (!identify(path, STDIN_FILENO, file) || file.isDevice) return;
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

void FilesInUse::addOutput(const std::string& path, const std::string& option) {
  File file;
  if (!identify(path, STDOUT_FILENO, file)) return;
  for (const File& other : files_) {
    const bool isSamePath = !file.path.empty() && file.path == other.path;
    const bool isSameFile = file.inode != 0 && file.inode == other.inode && file.device == other.device;
    if (isSamePath || isSameFile)
      throw Failure(kWrongUsage, fmt::format("{} {}: {}", option, escape(path), other.what));
  }
  const bool isBeside = !library_.empty() && file.path.starts_with(library_);
  if (isBeside && belongsToLibrary(std::string_view(file.path).substr(library_.size())))
    throw Failure(kWrongUsage, fmt::format("{} {}: this belongs to the library", option, escape(path)));
  if (file.isDevice) return;
  file.what = fmt::format("{} names this file too", option);
  files_.push_back(std::move(file));
}

}  // namespace Editor
