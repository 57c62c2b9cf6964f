#pragma once

#include <stdexcept>
#include <string>

namespace Editor {

// Exit codes of the program.
enum ExitCode : int {
  kAllGood = 0,
  kWrongUsage = 1,     // or an error of the program itself
  kUnusableInput = 2,  // no such file, no MIDI in it, a library that cannot be opened
  kRefused = 3,        // something was refused, is broken, damaged, different, lost or not found
  kInterrupted = 130,  // by the user: everything is as it was at the last message
};

// Ends the run: one line for standard error, and the exit code.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode code() const { return code_; }

 private:
  ExitCode code_;
};

}  // namespace Editor
