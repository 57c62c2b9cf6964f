#include "Completion.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "CommandHelp.h"
#include "CompletionLine.h"
#include "VerbHelp.h"
#include "history/History.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "targets/ContentKind.h"
#include "targets/Targets.h"
#include "wire/Faults.h"
#include "wire/Pace.h"

namespace Editor {

namespace {

constexpr const char* kVerb = "__complete";
constexpr const char* kFiles = ":files";
constexpr const char* kFolders = ":folders";
constexpr std::chrono::milliseconds kPatience{200};  // with another program that has the library

// What a shell is told about the word that `word` may become.
class Completing {
 public:
  Completing(const CLI::App& app, Program& program) : app_(app), program_(program) {}

  void run(std::vector<std::string> words) {
    if (words.empty()) words.emplace_back();
    word_ = words.back();
    words.pop_back();
    line_ = readLine(app_, words);
    if (line_.hasUnknownVerb) return;
    if (!line_.library.empty()) program_.setLibraryFile(line_.library);
    if (!line_.value.empty()) return offer(line_.value);
    const std::size_t equals = word_.find('=');
    if (!line_.areWordsOnly && word_.starts_with("--") && equals != std::string::npos) {
      const std::string value = valueOf(app_, line_.verb, word_.substr(0, equals));
      before_ = word_.substr(0, equals + 1);
      word_.erase(0, equals + 1);
      if (!value.empty()) offer(value);
    } else if (!line_.areWordsOnly && word_.starts_with('-')) {
      offerOptions();
    } else if (line_.verb == nullptr) {
      offerVerbs();
    } else {
      for (const std::string& one : placeholdersOf(help().arguments, line_.words.size())) offer(one);
    }
  }

 private:
  struct Kind {
    const char* placeholder;
    void (Completing::*offer)();
  };
  // How the verbs call their words and the values of their options.
  static const std::array<Kind, 33> kKinds;

  // What the tables call that word: several names are several possibilities, those that are none are words themselves.
  void offer(const std::string& placeholder) {
    std::string_view names = placeholder;
    if (names.ends_with("...")) names.remove_suffix(3);
    for (;;) {
      const std::size_t end = names.find('|');
      offerOne(std::string(names.substr(0, end)));
      if (end == std::string_view::npos) return;
      names.remove_prefix(end + 1);
    }
  }

  void offerOne(const std::string& name) {
    if (std::none_of(name.begin(), name.end(), [](char c) { return 'A' <= c && c <= 'Z'; })) return tell(name, "");
    const auto* const found =
        std::find_if(kKinds.begin(), kKinds.end(), [&](const Kind& kind) { return name == kind.placeholder; });
    if (found == kKinds.end()) throw std::logic_error("what is a " + name + "?");
    (this->*found->offer)();
  }

  const VerbHelp& help() const { return *findVerb(line_.verb->get_name()); }

  void offerNothing() {}
  void offerFiles() { program_.console.line(kFiles); }
  void offerFolders() { program_.console.line(kFolders); }

  void offerVerbs() {
    for (const VerbHelp& verb : verbHelps()) tell(verb.name, verb.summary);
  }

  void offerOptions() {
    std::vector<OptionHelp> options = line_.verb == nullptr ? optionsOf(app_) : optionsOf(*line_.verb);
    if (line_.verb != nullptr)
      for (OptionHelp& option : commonOptionsOf(*line_.verb)) options.push_back(std::move(option));
    for (const OptionHelp& option : options) tell(option.names.back(), option.text);
  }

  void offerKinds() {
    for (const std::string& kind : contentKindWords()) tell(kind, "");
  }

  void offerPorts() {
    tell("pty:", "a new pseudo terminal");
    tell("virtual:", "a new MIDI port");
    offerFiles();
  }

  void offerPaces() {
    for (const auto& [name, pace] : kNamedPaces) tell(name, "");
  }

  // Of a list the last one.
  void offerFaults() {
    const std::string before = word_.substr(0, word_.rfind(',') + 1);
    for (const std::string& name : faultNames()) tell(before + name + "=", "");
  }

  void offerSettings() {
    for (const Setting& setting : Settings::kAll) tell(setting.name, setting.values);
  }

  void offerSettingValues() {
    for (const Setting& setting : Settings::kAll)
      if (line_.words.front() == setting.name)
        for (const std::optional<Setting::Word>& value : setting.words)
          if (value) tell(value->word, "");
  }

  void offerEntries() {
    withLibrary([&](Library& library) {
      for (const HistoryEntry& entry : entriesOf(library)) {
        std::string what = entry.verb;
        for (const std::string& source : entry.sources) what += " " + escape(source);
        tell(std::to_string(entry.number), what);
      }
    });
  }

  // Segment by segment: `voice:`, `voice:user1:`, `voice:user1:6`.
  void offerAddresses() {
    if (word_.find("..") != std::string::npos) return offerRange();
    std::vector<std::string> names;
    std::size_t inSegment = 0;
    const auto endSegment = [&] {
      if (!names.empty() && names.back().ends_with(':')) tell(names.back(), counted(inSegment, "name"));
      inSegment = 0;
    };
    std::vector<std::string> leaves;
    for (const std::string& name : addressNames()) {
      if (!name.starts_with(word_)) continue;
      const std::size_t colon = name.find(':', word_.size());
      std::string next = name.substr(0, colon == std::string::npos ? colon : colon + 1);
      if (names.empty() || names.back() != next) {
        endSegment();
        if (colon == std::string::npos) leaves.push_back(next);
        names.push_back(std::move(next));
      }
      ++inSegment;
    }
    endSegment();
    for (const std::string& name : leaves) tell(name, whatIsAt(name));
  }

  // `voice:user1:1..16`
  void offerRange() {
    const std::size_t dots = word_.find("..");
    const std::string first = word_.substr(0, dots);
    const std::string bank = bankOfName(first);
    bool isBehind = false;
    for (const std::string& name : addressNames()) {
      if (isBehind && bankOfName(name) == bank)
        tell(fmt::format("{}..{}", first, name.substr(bank.size() + 1)), whatIsAt(name));
      isBehind = isBehind || name == first;
    }
  }

  // The verbs of the library take what it holds, the others whatever has a name. Names of one kind stand together.
  std::vector<std::string> addressNames() const {
    const bool areTargets = help().group == VerbGroup::library;
    std::vector<std::string> names{"system"};
    if (areTargets) names.emplace_back("additional");
    for (std::string& name : blockNames()) {
      const auto facts = findBlock(*findName(name));
      if (!areTargets || facts->role == Role::header || facts->role == Role::fileDump) names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
      const std::string bankOfA = bankOfName(a);
      const std::string bankOfB = bankOfName(b);
      return bankOfA == bankOfB && a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    return names;
  }

  // The name of what the library holds there; of what holds nothing that could be named, what it is.
  std::string whatIsAt(const std::string& name) {
    const auto address = findName(name);
    if (!address) return "";
    const Role role = findBlock(*address)->role;
    if (role != Role::header && role != Role::fileDump) return describeAddress(*address);
    const Target target = parseTarget(name);
    if (target.kind != Target::Kind::content) return describeAddress(*address);
    std::string held;
    withLibrary([&](Library& library) { held = showName(library.contentName(target.content).value_or("")); });
    return held;
  }

  // Unless there is none that can be read.
  void withLibrary(const std::function<void(Library&)>& use) {
    try {
      if (!isOpened_) {
        isOpened_ = true;
        const std::string file = program_.libraryFile();
        if (program_.hasLibrary())
          library_ =
              std::make_unique<Library>(file, Library::Options{.use = Library::Use::read, .busyTimeout = kPatience});
      }
      if (library_) use(*library_);
    } catch (const LibraryError&) {
      library_.reset();
    } catch (const Failure&) {  // nothing says which library
    }
  }

  void tell(const std::string& word, const std::string& what) {
    if (word.starts_with(word_)) program_.console.line(fmt::format("{}{}\t{}", before_, word, what));
  }

  const CLI::App& app_;
  Program& program_;
  std::string before_;  // of the word: an option and =
  std::string word_;    // what there is of it
  CompletionLine line_;
  bool isOpened_ = false;
  std::unique_ptr<Library> library_;
};

const std::array<Completing::Kind, 33> Completing::kKinds{{
    {"FILE", &Completing::offerFiles},
    {"IN", &Completing::offerFiles},
    {"OUT", &Completing::offerFiles},
    {"GOOD", &Completing::offerFiles},
    {"ANSWERS", &Completing::offerFiles},
    {"TABLE", &Completing::offerFiles},
    {"TRANSCRIPT", &Completing::offerFiles},
    {"SOURCE", &Completing::offerFiles},
    {"A", &Completing::offerFiles},
    {"B", &Completing::offerFiles},
    {"REQUESTS", &Completing::offerFiles},
    {"LIBRARY", &Completing::offerFiles},
    {"DIR", &Completing::offerFolders},
    {"PORT", &Completing::offerPorts},
    {"PACE", &Completing::offerPaces},
    {"LIST", &Completing::offerFaults},
    {"KIND", &Completing::offerKinds},
    {"ADDRESS", &Completing::offerAddresses},
    {"TARGET", &Completing::offerAddresses},
    {"FROM", &Completing::offerAddresses},
    {"TO", &Completing::offerAddresses},
    {"SETTING", &Completing::offerSettings},
    {"VALUE", &Completing::offerSettingValues},
    {"VERB", &Completing::offerVerbs},
    {"ENTRY", &Completing::offerEntries},
    // What only its author knows.
    {"NAME", &Completing::offerNothing},
    {"TERM", &Completing::offerNothing},
    {"N", &Completing::offerNothing},
    {"CONDITION", &Completing::offerNothing},
    {"OFFSET", &Completing::offerNothing},
    {"PATH", &Completing::offerNothing},
    {"SECONDS", &Completing::offerNothing},
    {"MILLISECONDS", &Completing::offerNothing},
}};

}  // namespace

std::optional<std::vector<std::string>> wordsToComplete(int argc, const char* const* argv) {
  if (argc < 2 || std::string_view(argv[1]) != kVerb) return std::nullopt;
  return std::vector<std::string>(argv + 2, argv + argc);
}

void complete(const CLI::App& app, const std::vector<std::string>& words, Program& program) {
  Completing(app, program).run(words);
}

}  // namespace Editor
