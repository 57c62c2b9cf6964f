#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "Program.h"

namespace Editor {

// What a shell asks for when somebody presses the tabulator: `bda __complete WORD...`, of which the last is to be
// completed and may be empty. Verbs, options and what their words are called come from the tables of the help, the rest
// from the library, which is only read.

// The words behind it, when that is asked for; else nothing.
std::optional<std::vector<std::string>> wordsToComplete(int argc, const char* const* argv);

// One line for each word that fits, with what it is behind a tabulator; `:files` or `:folders` where their names fit
// too. Nothing goes wrong: what cannot be known is left out. Throws std::logic_error when a verb calls a word what no
// table knows.
void complete(const CLI::App& app, const std::vector<std::string>& words, Program& program);

}  // namespace Editor
