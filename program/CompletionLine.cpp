#include "CompletionLine.h"

#include <utility>

#include "CommandHelp.h"
#include "VerbHelp.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

std::vector<std::string> split(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts;
  for (;;) {
    const std::size_t end = text.find(separator);
    if (end != 0) parts.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + separator.size());
  }
}

// "[SETTING" without its bracket.
std::string withoutBrackets(const std::string& token) {
  const std::size_t begin = token.find_first_not_of('[');
  return begin == std::string::npos ? "" : token.substr(begin, token.find(']') - begin);
}

}  // namespace

std::string valueOf(const CLI::App& app, const CLI::App* verb, const std::string& option) {
  for (const CLI::App* const owner : {verb, &app}) {
    if (owner == nullptr) continue;
    for (const OptionHelp& known : optionsOf(*owner))
      for (const std::string& name : known.names)
        if (name == option) return known.value;
  }
  return "";
}

CompletionLine readLine(const CLI::App& app, std::span<const std::string> words) {
  CompletionLine line;
  std::string option;
  for (const std::string& word : words) {
    if (!line.value.empty()) {
      if (option == "--library") line.library = word;
      line.value.clear();
    } else if (!line.areWordsOnly && word == "--") {
      line.areWordsOnly = true;
    } else if (!line.areWordsOnly && word.size() > 1 && word.front() == '-') {
      const std::size_t equals = word.find('=');
      option = word.substr(0, equals);
      if (equals == std::string::npos)
        line.value = valueOf(app, line.verb, option);
      else if (option == "--library")
        line.library = word.substr(equals + 1);
    } else if (line.verb == nullptr) {
      line.hasUnknownVerb = findVerb(word) == nullptr;
      if (line.hasUnknownVerb) break;
      line.verb = app.get_subcommand(word);
    } else {
      line.words.push_back(word);
    }
  }
  line.words = joinAddresses(line.words);
  return line;
}

std::vector<std::string> placeholdersOf(std::string_view usage, std::size_t index) {
  std::vector<std::string> found;
  for (const std::string& form : split(usage, " | ")) {
    std::size_t at = 0;   // of the next word
    bool goesOn = false;  // one before it may stand there again and again
    bool isValue = false;
    for (const std::string& token : split(form, " ")) {
      const std::string word = withoutBrackets(token);
      if (word.empty() || word.front() == '-') {
        isValue = true;
      } else if (std::exchange(isValue, false)) {
        continue;
      } else {
        const bool isRepeated = word.ends_with("...");
        goesOn = goesOn || isRepeated;
        if (index == at || (index > at && goesOn)) found.push_back(isRepeated ? word.substr(0, word.size() - 3) : word);
        ++at;
      }
    }
  }
  return found;
}

}  // namespace Editor
