#pragma once

#include <filesystem>
#include <optional>

#include "exchange/EmbeddedEditor.h"
#include "output/Progress.h"

namespace Editor {

// A fresh library in a directory of its own, which goes with it.
class ScratchLibrary {
 public:
  // Throws Failure and LibraryError.
  ScratchLibrary();
  ScratchLibrary(const ScratchLibrary&) = delete;
  ScratchLibrary& operator=(const ScratchLibrary&) = delete;
  ~ScratchLibrary();

  EmbeddedEditor& editor() { return *editor_; }

 private:
  const Interruptible interruptible_;  // or the directory would stay
  std::filesystem::path directory_;
  std::optional<EmbeddedEditor> editor_;
};

}  // namespace Editor
