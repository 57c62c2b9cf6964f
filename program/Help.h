#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace Editor {

// The help of the command line: what VerbHelp.h says of the verbs, with the options that they declare. No line is wider
// than 80.

// Adds the verb of that name, which has its help.
CLI::App& addVerb(CLI::App& app, const std::string& name);

void useHelp(CLI::App& app);
// The help of a verb; of all when it is empty. Throws Failure (kWrongUsage) when there is no such verb.
std::string helpOf(const CLI::App& app, const std::string& verb);

// Why the command line could not be read, and what may have been meant; `unknown` are the words that nobody expected,
// as they were typed.
std::string whyNotRead(const CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& unknown);

}  // namespace Editor
