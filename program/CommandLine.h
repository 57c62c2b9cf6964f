#pragma once

namespace Editor {

// Runs the program `bda`; the result is its exit code.
int runProgram(int argc, const char* const* argv);

}  // namespace Editor
