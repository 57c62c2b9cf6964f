#pragma once

#include <memory>
#include <string>

#include "EmbeddedEditor.h"
#include "cli/Console.h"
#include "cli/Failure.h"

namespace Editor {

// What the verbs share: where they speak, which library they use, how the run ends.
class Program {
 public:
  Console console;

  // The library that the command line, the environment or the default names.
  std::string libraryFile() const;
  void setLibraryFile(const std::string& file) { library_ = file; }
  // The names of waveforms and arpeggios; without it the file beside the library, or else the built-in ones.
  void setNameFile(const std::string& file) { names_ = file; }
  // Opens it, or `file`. Throws Failure (kUnusableInput).
  std::unique_ptr<EmbeddedEditor> openEditor() const { return openEditor(libraryFile()); }
  std::unique_ptr<EmbeddedEditor> openEditor(const std::string& file) const;

  // Something was refused or is broken: the run goes on, and ends with this.
  void refuse() { exitCode_ = kRefused; }
  ExitCode exitCode() const { return exitCode_; }

 private:
  std::string library_;
  std::string names_;
  ExitCode exitCode_ = kAllGood;
};

}  // namespace Editor
