#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Editor {

// The files of one run, so that none that is needed is overwritten. A file is the same one by whatever path or link;
// devices and pipes are no files here, unless they are the port. "-" is standard input, or standard output.
class FilesInUse {
 public:
  // The file is kept or read: `what` says so in words, "this is the library".
  void add(const std::string& path, const std::string& what);
  // The library, with all that belongs to it.
  void addLibrary(const std::string& path);
  // The device or the FIFOs that a port of that name is, or the files that "-" stands for.
  void addPort(const std::string& name);
  // `option` writes the file; it counts as in use from now on. Throws Failure (kWrongUsage) when it was before.
  void addOutput(const std::string& path, const std::string& option);

 private:
  struct File {
    std::string path;  // absolute, links followed
    std::uint64_t device = 0;
    std::uint64_t inode = 0;  // 0: it does not exist
    bool isDevice = false;    // or a pipe
    std::string what;
  };
  static bool identify(const std::string& path, int standardStream, File& file);

  std::vector<File> files_;
  std::string library_;  // as a path of theirs
};

}  // namespace Editor
