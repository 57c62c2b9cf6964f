#include "Help.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "ExitCode.h"
#include "VerbHelp.h"
#include "messages/Nearest.h"
#include "messages/Text.h"
#include "output/Columns.h"

namespace Editor {

namespace {

constexpr const char* kAddresses = R"(
An ADDRESS or TARGET is three hex bytes (0E0A05, 0E 0A 05, 0E/0A/05) or a name:
  voice:user1:6, voice:preset3:128, voice:gm:1, voice:edit, voice:part:4,
  voice:mix:1, drum:preset:1, drum:user:3, drum:gm, drum:edit, performance:a:1,
  performance:edit, multi:edit, master:1, master:edit, remote:1, remote:edit,
  system, additional, file:voice:user1:6, file:mix:1:3, file:multi:1,
  file:single
contents, show, request, remove, copy, move and swap also take a bank
(voice:user1) or a range of one (voice:user1:1..16).

Exit codes: 0 all good, 1 wrong usage or an error of the program, 2 input that
cannot be used, 3 something was refused or is broken (diff: differs, find:
nothing was found), 130 ended by Ctrl-C.
)";

constexpr std::size_t kWidth = 80;
constexpr std::size_t kVerbTextAt = 13;
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

// "-o, --output"
std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

bool isHeeded(const CLI::Option& option, const VerbHelp& verb) {
  const std::string name = namesOf(option).back();
  if (name == "--library") return verb.heeds.library;
  if (name == "--names") return verb.heeds.names;
  if (name == "--verbose") return verb.heeds.verbose;
  return name != "--version";
}

// The options of `app` that are to be taken.
template <typename Take>
std::string optionsOf(const CLI::App& app, Take take) {
  std::string text;
  for (const CLI::Option* const option : app.get_options()) {
    if (option->get_group().empty() || !option->nonpositional() || !take(*option)) continue;
    std::string what = fmt::format("{}", fmt::join(namesOf(*option), ", "));
    if (option->get_type_size() != 0) what += " " + option->get_type_name();
    std::string description = option->get_description();
    if (const std::string usual = option->get_default_str(); !usual.empty())
      description += fmt::format("; default {}", usual);
    text += entry(what, description);
  }
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
      std::string entries;
      for (const VerbHelp& verb : verbHelps())
        if (verb.group == group) entries += entry(verb.name, verb.summary, kVerbTextAt);
      text += titled(titleOf(group), entries);
    }
    text += titled("Options", optionsOf(app, [](const CLI::Option&) { return true; }));
    return text + kAddresses;
  }

  static std::string helpOfVerb(const CLI::App& app, const VerbHelp& verb) {
    std::string text = fmt::format("{}\n\nUsage: bda {} [OPTIONS] {}\n", verb.summary, verb.name, verb.arguments);
    std::string words;
    for (const CLI::Option* const option : app.get_options())
      if (!option->get_group().empty() && option->get_positional())
        words += entry(option->get_name(true, false), option->get_description());
    text += titled("Arguments", words);
    text += titled("Options", optionsOf(app, [&](const CLI::Option& option) { return &option != app.get_help_ptr(); }));
    text += titled("Common options",
                   optionsOf(*app.get_parent(), [&](const CLI::Option& option) { return isHeeded(option, verb); }));
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
    for (const CLI::Option* const option : owner->get_options())
      for (std::string& known : namesOf(*option)) options.push_back(std::move(known));
  }
  return fmt::format("there is no option {}{}", escape(name), didYouMean(name, options));
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

std::string whyNotRead(const CLI::App& app, const CLI::ParseError& error) {
  const std::vector<CLI::App*> given = app.get_subcommands();
  const CLI::App* const verb = given.empty() ? nullptr : given.front();
  const std::string more = fmt::format(" (bda help{} tells more)", verb == nullptr ? "" : " " + verb->get_name());
  const std::vector<std::string> unknown = app.remaining(true);
  if (unknown.empty()) return (verb == nullptr ? "expected a verb" : escape(error.what())) + more;
  const std::string& word = unknown.front();
  if (word.size() > 1 && word.front() == '-' && word != "--") return noSuchOption(word, app, verb) + more;
  return (verb == nullptr ? noSuchVerb(word) : escape(error.what())) + more;
}

}  // namespace Editor
