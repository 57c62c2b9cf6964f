#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "input/InputStream.h"

namespace Editor {

// A library, or a file that may be one of messages.
struct Source {
  std::string path;  // as it was named, or that of a folder with the way into it
  bool isLibrary = false;
  bool isNamed = true;  // false: found in a folder
  std::uint64_t size = 0;
};

struct Sources {
  std::vector<Source> list;           // each once, in the order named, those of a folder by name; no library's log
  std::uint64_t ofOtherKinds = 0;     // in folders: neither file nor folder, or another database
  std::vector<std::string> problems;  // why something in a folder cannot be read, a text for each
};

// What holds no messages, from inside of the handler: of a folder it is passed over and counted, or told where
// something is lost with it; what was named is thrown again.
void passOver(Sources& sources, const Source& source, const NotMessages& failure);

// The sources of a command line: libraries, files, "-" and folders with those in them, of which no link is followed.
// Throws Failure (kUnusableInput) when one that was named does not exist.
//
// To be called before any of them is opened as a library: whoever closes its file drops the locks on it.
Sources findSources(const std::vector<std::string>& paths);

// Whether a file or folder of that name exists. Throws Failure (kUnusableInput) where its path cannot be followed.
bool isThere(const std::string& path);

// Whether a file is a library, or at least a database: what else is wrong with it, to open it says.
bool isLibrary(const std::string& path);

}  // namespace Editor
