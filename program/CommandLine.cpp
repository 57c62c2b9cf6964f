#include "CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <csignal>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string_view>

#include "Completion.h"
#include "Help.h"
#include "Manual.h"
#include "VerbHelp.h"
#include "VerbOptions.h"
#include "bda/version.h"
#include "input/FilesInUse.h"
#include "messages/Text.h"
#include "targets/Targets.h"

namespace Editor {

namespace {

void addCommonOptions(CLI::App& app, Program& program) {
  app.set_help_flag("-h,--help", "Say this and exit");
  app.set_version_flag("-V,--version", "bda " BDA_VERSION_STRING, "Say the version and exit");
  app.add_option_function<std::string>(
         "--library", [&program](const std::string& file) { program.setLibraryFile(file); },
         "The library; default $BDA_LIBRARY, $XDG_DATA_HOME/bda/library.db, ~/.local/share/bda/library.db")
      ->type_name("FILE")
      ->check(checkFileName);
  app.add_option_function<std::string>(
         "--names", [&program](const std::string& file) { program.setNameFile(file); },
         "The names of waveforms, arpeggios and parameters; default the library's name with .names behind it, if there "
         "is such")
      ->type_name("FILE")
      ->check(checkFileName);
  CLI::Option* const verbose = app.add_flag_callback(
      "-v,--verbose", [&program] { program.console.setLoudness(Console::Loudness::verbose); }, "Say more");
  app.add_flag_callback(
         "-q,--quiet", [&program] { program.console.setLoudness(Console::Loudness::quiet); },
         "Say only what went wrong")
      ->excludes(verbose);
}

// "--trace=$UNSET a.syx" would take the file that follows for the option's.
void refuseEmptyValues(int argc, const char* const* argv) {
  for (int i = 1; i < argc && std::string_view(argv[i]) != "--"; ++i) {
    const std::string_view word = argv[i];
    if (word.substr(0, 2) == "--" && word.find('=') == word.size() - 1)
      throw Failure(kWrongUsage, fmt::format("{}: an empty value (bda help tells more)", escape(word)));
  }
}

// CLI11 takes a word `[a,b]` apart as a list, and `++` for the end of a verb's words, wherever they stand. A character
// behind them, which no word of a command line can have, keeps it from that, until the word is handed on as it was
// typed.
constexpr char kGuard = '\0';

std::string asTyped(std::string word) {
  std::erase(word, kGuard);
  return word;
}

// Backwards, as CLI11 reads them.
std::vector<std::string> guardWords(int argc, const char* const* argv) {
  std::vector<std::string> words(std::make_reverse_iterator(argv + argc),
                                 std::make_reverse_iterator(argv + std::min(argc, 1)));
  for (std::string& word : words)
    if (word.ends_with(']') || word == "++") word += kGuard;
  return words;
}

void handOnAsTyped(CLI::App& app) {
  for (CLI::Option* const option : app.get_options()) option->transform(asTyped);
  for (CLI::App* const verb : app.get_subcommands({})) handOnAsTyped(*verb);
}

std::string whyNotParsed(const CLI::App& app, const CLI::ParseError& error) {
  std::vector<std::string> unknown = app.remaining(true);
  std::ranges::transform(unknown, unknown.begin(), asTyped);
  return whyNotRead(app, error, unknown);
}

// Whether standard output gets lines, and no bytes: from some verbs it gets nothing where there is a file for that.
bool saysLines(const Given& given, const CLI::App& app) {
  if (app.got_subcommand("request")) return given.exchange.output.empty();
  if (app.got_subcommand("convert")) return given.convert.json;
  return !app.got_subcommand("backup") && !app.got_subcommand("screen");
}

// What is written must be no file that the run needs, nor be written twice.
void checkOutputs(const Given& given, const Program& program, const CLI::App& app) {
  const std::pair<const char*, const std::string*> outputs[] = {
      {"-o", &given.output},
      {"-o", &given.exchange.output},
      {"-o", &given.salvage.output},
      {"-o", &given.record.output},
      {"-o", &given.fetch.output},
      {"--requests", &given.salvage.requests},
      {"--requests", &given.fetch.requests},
      {"--trace", &given.exchange.trace},
      {"--transcript", &program.transcript.file},
      {"--manifest", &given.manifest},
  };
  const std::string ports[] = {given.record.from, given.fetch.from, given.send.to, given.instrument.on};
  const auto nameOf = [](const auto& output) -> const std::string& { return *output.second; };
  const auto isNone = [](const std::string& name) { return name.empty(); };
  if (std::ranges::all_of(outputs, isNone, nameOf) && std::ranges::all_of(ports, isNone)) return;
  FilesInUse files;
  if (const std::optional<std::string> library = program.findLibraryFile()) {
    files.addLibrary(*library);
    files.add(program.nameFileOf(*library), "these are the names of waveforms, arpeggios and parameters");
  }
  const std::initializer_list<const char*> readFiles{"receive", "salvage", "convert", "send"};
  if (std::ranges::any_of(readFiles, [&](const char* verb) { return app.got_subcommand(verb); }))
    for (const Words& words : {given.words, given.convert.select})
      for (const std::string& file : words) files.add(file, "this is also an input");
  for (const std::string& port : ports) files.addPort(port);
  const bool carriesBytes = std::ranges::count(outputs, "-", nameOf) + std::ranges::count(ports, "-") > 0;
  if (!carriesBytes && saysLines(given, app)) files.addLines();
  for (const auto& [option, output] : outputs)
    if (!output->empty()) files.addOutput(*output, option);
}

int run(int argc, const char* const* argv, Program& program) {
  CLI::App app("Receives, keeps and answers MIDI System Exclusive bulk dumps.", "bda");
  useHelp(app);
  app.require_subcommand(1);
  app.fallthrough();
  addCommonOptions(app, program);
  Given given;
  addVerbs(app, given, program);
  if (const auto words = wordsToComplete(argc, argv)) {
    complete(app, *words, program);
    return kAllGood;
  }
  refuseEmptyValues(argc, argv);
  handOnAsTyped(app);
  try {
    app.parse(guardWords(argc, argv));
  } catch (const CLI::CallForHelp&) {
    program.console.text(app.help());  // of the verb, if there is one
    return kAllGood;
  } catch (const CLI::CallForVersion& version) {
    program.console.line(version.what());
    return kAllGood;
  } catch (const CLI::ParseError& error) {
    throw Failure(kWrongUsage, whyNotParsed(app, error));
  }
  if (findVerb(app.get_subcommands().front()->get_name())->heeds.names == Heeds::Names::lists) program.needNames();
  checkOutputs(given, program, app);
  given.verb();
  return program.exitCode();
}

}  // namespace

int runProgram(int argc, const char* const* argv) {
  constexpr const char* kOutOfMemory = "bda: out of memory";
  std::signal(SIGPIPE, SIG_IGN);  // that nobody reads what is said is no reason to leave work half done
  std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is told as a disk is that is full
  Program program;
  int code = kWrongUsage;
  try {
    code = run(argc, argv, program);
  } catch (const Failure& failure) {
    program.console.problem(fmt::format("bda: {}", failure.what()));
    code = failure.code();
  } catch (const TargetError& error) {
    program.console.problem(fmt::format("bda: {}", error.what()));
    code = error.kind() == TargetError::Kind::refused ? kRefused : kWrongUsage;
  } catch (const std::bad_alloc&) {
    program.console.problem(kOutOfMemory);
  } catch (const std::length_error&) {  // of what no memory could hold
    program.console.problem(kOutOfMemory);
  } catch (const std::exception& error) {
    program.console.problem(fmt::format("bda: {}", escape(error.what())));
  }
  if (!program.console.finish()) {
    program.console.problem(fmt::format("bda: standard output could not be written{}",
                                        program.hasChanged() ? "; the library is changed" : ""));
    program.failOutput();
  }
  return program.hasOutputFailed() ? int(kWrongUsage) : code;
}

}  // namespace Editor
