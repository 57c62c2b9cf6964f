#pragma once

#include <CLI/CLI.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Editor {

// A command line that is not finished, read as far as it goes.
struct CompletionLine {
  const CLI::App* verb = nullptr;  // null: it has none yet
  bool hasUnknownVerb = false;
  bool areWordsOnly = false;       // behind --
  std::vector<std::string> words;  // the verb's
  std::string value;               // what the option calls its value, when that comes next
  std::string library;             // that it names
};

CompletionLine readLine(const CLI::App& app, std::span<const std::string> words);

// What a verb calls the word behind so many others, one or more names for each of its usages: FILE, on|off.
std::vector<std::string> placeholdersOf(std::string_view usage, std::size_t index);

// What an option calls its value; empty when there is no such option, or it takes none.
std::string valueOf(const CLI::App& app, const CLI::App* verb, const std::string& option);

}  // namespace Editor
