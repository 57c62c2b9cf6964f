#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Editor {

// The files of one run, so that none that is needed is overwritten. A file is the same one by whatever path or link,
// and so is a pipe that is written; a device is none here, unless it is the port. "-" is standard input, or standard
// output.
class FilesInUse {
 public:
  // The file is kept or read: `what` says so in words, "this is the library".
  void add(const std::string& path, const std::string& what);
  // The library, with all that belongs to it.
  void addLibrary(const std::string& path);
  // The device or the FIFOs that a port of that name is, or the files that "-" stands for.
  void addPort(const std::string& name);
  // Lines go to standard output; it counts as in use from now on. Throws Failure (kWrongUsage) when it was before.
  void addLines();
  // `option` writes the file. The same.
  void addOutput(const std::string& path, const std::string& option);

 private:
  enum class Kind : std::uint8_t { file, pipe, device };  // one that does not exist will be a file
  struct File {
    std::string path;  // absolute, links followed
    std::uint64_t device = 0;
    std::uint64_t inode = 0;  // 0: it does not exist
    Kind kind = Kind::file;
    std::string what;
  };
  static bool isNowhere(const struct stat& status);
  static bool identify(const std::string& path, int standardStream, File& file);
  const File* find(const File& file) const;

  std::vector<File> files_;
  std::string library_;  // as a path of theirs
};

}  // namespace Editor
