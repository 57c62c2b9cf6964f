#include "cli/ScratchLibrary.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "cli/Console.h"
#include "cli/Failure.h"

namespace Editor {

namespace {

std::filesystem::path makeDirectory() {
  std::error_code error;
  std::string name = (std::filesystem::temp_directory_path(error) / "bda-XXXXXX").string();
  if (error || ::mkdtemp(name.data()) == nullptr)
    throw Failure(kWrongUsage, fmt::format("{}: no directory for a scratch library: {}", escape(name),
                                           error ? error.message() : std::strerror(errno)));
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
