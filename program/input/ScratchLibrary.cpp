#include "input/ScratchLibrary.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "ExitCode.h"
#include "messages/Text.h"
#include "output/Console.h"

namespace Editor {

namespace {

std::filesystem::path makeDirectory() {
  std::error_code error;
  const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
  std::string name = (parent / "bda-XXXXXX").string();
  if (error || ::mkdtemp(name.data()) == nullptr) {
    const char* const variable = std::getenv("TMPDIR");
    const std::string place = !error ? parent.string() : variable != nullptr ? variable : "TMPDIR";
    throw Failure(kWrongUsage, fmt::format("{}: cannot make a scratch library in this directory: {}", escape(place),
                                           error ? error.message() : std::strerror(errno)));
  }
  return name;
}

}  // namespace

ScratchLibrary::ScratchLibrary() : directory_(makeDirectory()) {
  try {
    editor_.emplace(directory_ / "library.db");
  } catch (...) {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
    throw;
  }
}

ScratchLibrary::~ScratchLibrary() {
  editor_.reset();
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

}  // namespace Editor
