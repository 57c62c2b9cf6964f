#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace Editor {

// All that the help says, of the program and of each verb, as a page that `man` reads.
std::string manualOf(const CLI::App& app);

}  // namespace Editor
