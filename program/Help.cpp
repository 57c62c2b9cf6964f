#include "Help.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "CommandHelp.h"
#include "ExitCode.h"
#include "VerbHelp.h"
#include "messages/Nearest.h"
#include "messages/Text.h"
#include "output/Columns.h"

namespace Editor {

namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kVerbTextAt = 14;
constexpr std::size_t kOptionTextAt = 26;

// A word or option, and what it is, which begins in that column.
std::string entry(const std::string& what, const std::string& text, std::size_t textAt = kOptionTextAt) {
  std::string left = "  " + what;
  std::string lines;
  for (const std::string& line : wrap(text, kWidth - textAt)) {
    if (left.size() + 2 > textAt) {
      lines += left + '\n';
      left.clear();
    }
    lines += fmt::format("{:<{}}{}\n", left, textAt, line);
    left.clear();
  }
  return lines;
}

std::string optionEntries(const std::vector<OptionHelp>& options) {
  std::string text;
  for (const OptionHelp& option : options) text += entry(headOf(option), option.text);
  return text;
}

std::string titled(const char* title, const std::string& entries) {
  return entries.empty() ? "" : fmt::format("\n{}:\n{}", title, entries);
}

class HelpText : public CLI::Formatter {
 public:
  std::string make_help(const CLI::App* app, std::string /*name*/, CLI::AppFormatMode /*mode*/) const override {
    return app->get_parent() == nullptr ? helpOfAll(*app) : helpOfVerb(*app, *findVerb(app->get_name()));
  }

 private:
  static std::string helpOfAll(const CLI::App& app) {
    std::string text = fmt::format("{}\n\nUsage: bda VERB [OPTIONS] ...\n", app.get_description());
    for (const VerbGroup group : kVerbGroups) {
      std::string verbs;
      for (const VerbHelp& verb : verbHelps())
        if (verb.group == group) verbs += entry(verb.name, verb.summary, kVerbTextAt);
      text += titled(titleOf(group), verbs);
    }
    text += titled("Options", optionEntries(optionsOf(app)));
    text += fmt::format("\n{}\n", addressHelp());
    std::vector<std::string> codes;
    for (const ExitCodeHelp& one : exitCodeHelps()) codes.push_back(fmt::format("{} {}", one.code, one.what));
    for (const std::string& line : wrap(fmt::format("Exit codes: {}.", fmt::join(codes, ", ")), kWidth))
      text += line + '\n';
    return text;
  }

  static std::string helpOfVerb(const CLI::App& app, const VerbHelp& verb) {
    std::string text = fmt::format("{}\n\nUsage: bda {} [OPTIONS] {}\n", verb.summary, verb.name, verb.arguments);
    std::string words;
    for (const ArgumentHelp& argument : argumentsOf(app)) words += entry(argument.name, argument.text);
    text += titled("Arguments", words);
    text += titled("Options", optionEntries(optionsOf(app)));
    text += titled("Common options", optionEntries(commonOptionsOf(app)));
    std::size_t longest = 0;
    for (const Example& example : verb.examples) longest = std::max(longest, std::string_view(example.command).size());
    std::string examples;
    for (const Example& example : verb.examples)
      examples += fmt::format("  {:<{}}  # {}\n", example.command, longest, example.what);
    return text + titled("Examples", examples);
  }
};

std::string noSuchVerb(const std::string& word) {
  std::vector<std::string> verbs;
  for (const VerbHelp& verb : verbHelps()) verbs.emplace_back(verb.name);
  return fmt::format("there is no verb \"{}\"{}", escape(word), didYouMean(word, verbs));
}

std::string noSuchOption(const std::string& word, const CLI::App& app, const CLI::App* verb) {
  const std::string name = word.substr(0, word.find('='));
  std::vector<std::string> options;
  for (const CLI::App* const owner : {verb, &app}) {
    if (owner == nullptr) continue;
    for (const OptionHelp& option : optionsOf(*owner))
      options.insert(options.end(), option.names.begin(), option.names.end());
  }
  return fmt::format("there is no option {}{}", escape(name), didYouMean(name, options));
}

std::string notExpected(const std::vector<std::string>& words) {
  return fmt::format("{} not expected: {}",
                     words.size() == 1 ? "The following argument was" : "The following arguments were",
                     escape(fmt::format("{}", fmt::join(words, " "))));
}

}  // namespace

CLI::App& addVerb(CLI::App& app, const std::string& name) {
  const VerbHelp* const verb = findVerb(name);
  if (verb == nullptr) throw std::logic_error("a verb without help: " + name);
  return *app.add_subcommand(verb->name, verb->summary);
}

void useHelp(CLI::App& app) { app.formatter(std::make_shared<HelpText>()); }

std::string helpOf(const CLI::App& app, const std::string& verb) {
  if (!verb.empty() && findVerb(verb) == nullptr)
    throw Failure(kWrongUsage, noSuchVerb(verb) + " (bda help tells more)");
  const CLI::App* const asked = verb.empty() ? &app : app.get_subcommand(verb);
  return asked->get_formatter()->make_help(asked, {}, CLI::AppFormatMode::Normal);
}

std::string whyNotRead(const CLI::App& app, const CLI::ParseError& error, const std::vector<std::string>& unknown) {
  const std::vector<CLI::App*> given = app.get_subcommands();
  const CLI::App* const verb = given.empty() ? nullptr : given.front();
  const std::string more = fmt::format(" (bda help{} tells more)", verb == nullptr ? "" : " " + verb->get_name());
  if (unknown.empty()) return (verb == nullptr ? "expected a verb" : escape(error.what())) + more;
  const std::string& word = unknown.front();
  if (word.size() > 1 && word.front() == '-' && word != "--") return noSuchOption(word, app, verb) + more;
  if (verb == nullptr) return noSuchVerb(word) + more;
  const bool isOfThem = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
  return (isOfThem ? notExpected(unknown) : escape(error.what())) + more;
}

}  // namespace Editor
