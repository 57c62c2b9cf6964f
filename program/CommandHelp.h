#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace Editor {

// What the command line declares of a verb's options and words, for whoever tells it: help, manual, completion.

struct OptionHelp {
  std::vector<std::string> names;  // "-o", "--output"
  std::string value;               // what it is called; empty: it takes none
  std::string text;
};

// Those that a verb has by itself, or those of the whole program.
std::vector<OptionHelp> optionsOf(const CLI::App& app);
// Those of the whole program that the verb heeds.
std::vector<OptionHelp> commonOptionsOf(const CLI::App& verb);

// "-o, --output FILE"
std::string headOf(const OptionHelp& option);

struct ArgumentHelp {
  std::string name;
  std::string text;
};
std::vector<ArgumentHelp> argumentsOf(const CLI::App& verb);

}  // namespace Editor
