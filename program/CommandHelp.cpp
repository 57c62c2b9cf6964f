#include "CommandHelp.h"

#include <fmt/format.h>

#include <algorithm>

#include "VerbHelp.h"

namespace Editor {

namespace {

OptionHelp helpOf(const CLI::Option& option) {
  OptionHelp help;
  for (const std::string& name : option.get_snames()) help.names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) help.names.push_back("--" + name);
  if (option.get_type_size() != 0) {
    const std::string type = option.get_type_name();
    help.value = type.substr(0, type.find(':'));  // behind it are checks
  }
  help.text = option.get_description();
  if (const std::string usual = option.get_default_str(); !usual.empty())
    help.text += fmt::format("; default {}", usual);
  return help;
}

bool isHeeded(const OptionHelp& option, const VerbHelp& verb) {
  const std::string& name = option.names.back();
  if (name == "--library") return verb.heeds.library;
  if (name == "--names") return verb.heeds.names != Heeds::Names::none;
  if (name == "--verbose") return verb.heeds.verbose;
  return name != "--version";
}

}  // namespace

std::vector<OptionHelp> optionsOf(const CLI::App& app) {
  std::vector<OptionHelp> options;
  const bool isVerb = app.get_parent() != nullptr;
  for (const CLI::Option* const option : app.get_options()) {
    const bool isCommon = isVerb && option == app.get_help_ptr();
    if (!option->get_group().empty() && option->nonpositional() && !isCommon) options.push_back(helpOf(*option));
  }
  return options;
}

std::vector<OptionHelp> commonOptionsOf(const CLI::App& verb) {
  std::vector<OptionHelp> options = optionsOf(*verb.get_parent());
  const VerbHelp& help = *findVerb(verb.get_name());
  options.erase(
      std::remove_if(options.begin(), options.end(), [&](const OptionHelp& option) { return !isHeeded(option, help); }),
      options.end());
  return options;
}

std::string headOf(const OptionHelp& option) {
  const std::string names = fmt::format("{}", fmt::join(option.names, ", "));
  return option.value.empty() ? names : names + " " + option.value;
}

std::vector<ArgumentHelp> argumentsOf(const CLI::App& verb) {
  std::vector<ArgumentHelp> arguments;
  for (const CLI::Option* const option : verb.get_options())
    if (!option->get_group().empty() && option->get_positional())
      arguments.push_back({option->get_name(true, false), option->get_description()});
  return arguments;
}

}  // namespace Editor
