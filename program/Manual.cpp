#include "Manual.h"

#include <fmt/format.h>

#include <cctype>
#include <iterator>
#include <string_view>

#include "CommandHelp.h"
#include "VerbHelp.h"
#include "bda/version.h"

namespace Editor {

namespace {

// As roff takes it for text: hyphens are the minus signs that a shell takes, and no line is a request.
std::string roff(std::string_view text) {
  std::string escaped = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
  for (const char c : text) {
    if (c == '\\')
      escaped += "\\e";
    else if (c == '-')
      escaped += "\\-";
    else
      escaped += c;
  }
  return escaped;
}

std::string bold(std::string_view text) { return "\\fB" + roff(text) + "\\fR"; }
std::string italic(std::string_view text) { return "\\fI" + roff(text) + "\\fR"; }

class Page {
 public:
  explicit Page(const CLI::App& app) : app_(app) {}

  std::string text() {
    add(".TH BDA 1 {} \"bda {}\" \"User Commands\"", BDA_DATE, BDA_VERSION_STRING);
    add(".nh\n.ad l");  // what is typed is not to be broken or stretched
    addName();
    add(".SH SYNOPSIS\n{} {} [{}] ...", bold("bda"), italic("VERB"), italic("OPTIONS"));
    add(".SH DESCRIPTION\n{}", roff(app_.get_description()));
    add(".SH VERBS");
    for (const VerbGroup group : kVerbGroups) {
      add(".SS {}", roff(titleOf(group)));
      for (const VerbHelp& verb : verbHelps())
        if (verb.group == group) addVerb(verb);
    }
    add(".SH OPTIONS");
    addOptions(optionsOf(app_));
    add(".SH ADDRESSES");
    addParagraphs(addressHelp());
    add(".SH EXIT STATUS");
    for (const ExitCodeHelp& code : exitCodeHelps())
      add(".TP\n{}\n{}", bold(std::to_string(code.code)), roff(code.what));
    return std::move(text_);
  }

 private:
  template <typename... Values>
  void add(fmt::format_string<const Values&...> format, const Values&... values) {
    fmt::format_to(std::back_inserter(text_), format, values...);
    text_ += '\n';
  }

  // What `apropos` lists: no sentence.
  void addName() {
    std::string what = app_.get_description();
    what.front() = char(std::tolower(static_cast<unsigned char>(what.front())));
    if (what.ends_with('.')) what.pop_back();
    add(".SH NAME\nbda \\- {}", roff(what));
  }

  void addVerb(const VerbHelp& verb) {
    const CLI::App& app = *app_.get_subcommand(verb.name);
    add(".TP\n{} [{}] {}\n{}.\n.RS", bold(fmt::format("bda {}", verb.name)), italic("OPTIONS"), roff(verb.arguments),
        roff(verb.summary));
    for (const ArgumentHelp& argument : argumentsOf(app))
      add(".TP\n{}\n{}", italic(argument.name), roff(argument.text));
    addOptions(optionsOf(app));
    std::string common;
    for (const OptionHelp& option : commonOptionsOf(app))
      common += fmt::format("{}{}", common.empty() ? "" : ", ", bold(option.names.back()));
    add(".PP\nCommon options: {}.", common);
    for (const Example& example : verb.examples) add(".TP\n{}\n{}", bold(example.command), roff(example.what));
    add(".RE");
  }

  void addOptions(const std::vector<OptionHelp>& options) {
    for (const OptionHelp& option : options) {
      std::string head;
      for (const std::string& name : option.names) head += fmt::format("{}{}", head.empty() ? "" : ", ", bold(name));
      if (!option.value.empty()) head += " " + italic(option.value);
      add(".TP\n{}\n{}", head, roff(option.text));
    }
  }

  // Lines that are filled; indented ones with an indent of their own.
  void addParagraphs(std::string_view text) {
    bool isIndented = false;
    while (!text.empty()) {
      const std::size_t end = text.find('\n');
      const std::string_view line = text.substr(0, end);
      text.remove_prefix(end + 1);
      if (const bool indents = line.starts_with(' '); indents != isIndented) {
        add("{}", indents ? ".RS" : ".RE");
        isIndented = indents;
      }
      add("{}", line.empty() ? ".PP" : roff(line.substr(line.find_first_not_of(' '))));
    }
    if (isIndented) add(".RE");
  }

  const CLI::App& app_;
  std::string text_;
};

}  // namespace

std::string manualOf(const CLI::App& app) { return Page(app).text(); }

}  // namespace Editor
