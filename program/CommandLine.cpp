#include "CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <csignal>
#include <functional>
#include <iterator>
#include <limits>
#include <new>
#include <stdexcept>
#include <string_view>

#include "Completion.h"
#include "Help.h"
#include "Manual.h"
#include "VerbHelp.h"
#include "bda/version.h"
#include "input/FilesInUse.h"
#include "messages/Text.h"
#include "targets/ContentKind.h"
#include "targets/Targets.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// The words of the command line, whichever verb they are for: only one runs.
struct Given {
  Words words;
  std::string never;
  std::string file;
  std::string secondFile;
  std::string output;
  std::string setting;
  std::optional<std::string> value;
  ExchangeOptions exchange;
  ConvertOptions convert;
  ShowOptions show;
  ReceiveOptions receive;
  ContentsOptions contents;
  std::string manifest;
  FindOptions find;
  bool json = false;
  RestoreOptions restore;
  ChangeOptions change;
  std::string table;
  std::string otherLibrary;
  SalvageOptions salvage;
  bool brief = false;
  HistoryOptions history;
  std::optional<std::int64_t> entry;
  bool force = false;
  bool manual = false;
  std::function<void()> verb;  // what to do with them
};

// As CLI11 checks values: what is wrong with it, or nothing.
std::string checkFileName(const std::string& name) { return name.empty() ? "an empty file name" : ""; }

std::string checkNumber(const std::string& text) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && last == end && number > 0) return "";
  return fmt::format("\"{}\": expected a number from 1 to {}", text, std::numeric_limits<std::int64_t>::max());
}

constexpr const char* kDryRun = "Say what would change, and change nothing";
constexpr const char* kAnyDevice = "Take messages for other device numbers too";
constexpr const char* kMessageFiles = "Message files, .syx, .mid or hex text by content; - is standard input";

CLI::Option* addWords(CLI::App& verb, const std::string& name, const std::string& description, Given& given) {
  CLI::Option* const words = verb.add_option(name, given.words, description)->required();
  // Never gets a word: as long as a verb misses one, words that begin with - may follow its --.
  verb.add_option("LAST", given.never)->group("");
  return words;
}

void addChangeOptions(CLI::App& verb, ChangeOptions& options) {
  verb.add_flag("--dry-run", options.dryRun, kDryRun);
  verb.add_flag("--json", options.json, "One object for each change");
}

void addList(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "list");
  addWords(verb, "FILE", kMessageFiles, given)->check(checkFileName);
  verb.add_flag("--json", given.json, "One object a line");
  verb.callback([&] { given.verb = [&] { list(given.words, given.json, program); }; });
}

void addVerify(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "verify");
  addWords(verb, "FILE", kMessageFiles, given)->check(checkFileName);
  verb.add_flag("--json", given.json, "One object a line");
  verb.callback([&] { given.verb = [&] { verify(given.words, given.json, program); }; });
}

void addConvert(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "convert");
  ConvertOptions& options = given.convert;
  addWords(verb, "IN", "Message files, or what show --json printed, by content; - is standard input", given)
      ->required(false)
      ->check(checkFileName);
  CLI::Option* const output =
      verb.add_option("-o,--output", given.output, "All in one: a .syx, .mid or .txt; - is standard output, as .syx")
          ->type_name("OUT")
          ->check(checkFileName);
  verb.add_option("--split", options.directory, "A folder for a file a unit, and other.syx for the rest")
      ->type_name("DIR")
      ->check(checkFileName)
      ->excludes(output);
  verb.add_option("--place", options.place, "Where the units go instead: a place each, of a range or bank")
      ->type_name("ADDRESS")
      ->check(checkFileName);
  verb.add_option("--device", options.device, "The device number that the messages are for, 1 to 16")
      ->type_name("N")
      ->check(CLI::Range(1, 16));
  verb.add_option("--select", options.select, "Only the units of these places, banks or ranges")
      ->type_name("ADDRESS...");
  verb.add_option_function<unsigned>(
          "--pause",
          [&options](unsigned milliseconds) {
            options.pause = std::chrono::milliseconds(milliseconds);
            options.pauses = true;
          },
          "Between the messages of a .mid; default 20")
      ->type_name("MILLISECONDS")
      ->check(CLI::Range(0, 60'000));
  verb.add_flag("--json", options.json, "One object a unit, for what was written");
  verb.callback([&] {
    given.verb = [&] {
      options.output = given.output;
      convert(given.words, options, program);
    };
  });
}

void addExplain(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "explain");
  addWords(verb, "FILE [OFFSET]|ADDRESS PATH",
           "A message file and one of its bytes, or a parameter by its path in JSON or its name", given)
      ->check(checkFileName);
  verb.add_flag("--json", given.json, "One object a line, a byte");
  verb.callback([&] { given.verb = [&] { explain(given.words, given.json, program); }; });
}

void addSalvage(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "salvage");
  SalvageOptions& options = given.salvage;
  addWords(verb, "FILE", "Message files, and folders of them; - is standard input", given)->check(checkFileName);
  verb.add_option("-o,--output", options.output, "Where what is whole goes; - is standard output")
      ->type_name("GOOD")
      ->required()
      ->check(checkFileName);
  verb.add_option("--requests", options.requests, "Where the requests that fetch the rest go")
      ->type_name("FILE")
      ->check(checkFileName);
  verb.add_flag("--fix-checksums", options.fixChecksums, "Keep messages of which the checksum alone is wrong, mended");
  verb.add_flag("--merge", options.merge, "Complete units also by captures that may be of other sounds");
  verb.add_option("--prefer", options.preferred, "The one of the files that counts where two differ")
      ->type_name("FILE")
      ->check(checkFileName);
  verb.add_flag("--json", options.json, "One object a line, for each unit and single block");
  verb.callback([&] { given.verb = [&] { salvage(given.words, given.salvage, program); }; });
}

// The option of the trace.
CLI::Option* addExchangeOptions(CLI::App& verb, ExchangeOptions& options) {
  verb.add_option("--port", options.port, "The port on which the messages arrive")
      ->type_name("1|4|5|6")
      ->check([](const std::string& port) {
        constexpr std::array kPorts{"1", "4", "5", "6"};
        const bool isPort = std::find(kPorts.begin(), kPorts.end(), port) != kPorts.end();
        return isPort ? std::string() : fmt::format("\"{}\": expected 1, 4, 5 or 6", port);
      })
      ->capture_default_str();
  return verb.add_option("--trace", options.trace, "One JSON object a line for every message; - is standard output")
      ->type_name("FILE")
      ->check(checkFileName);
}

void addReceive(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "receive");
  addWords(verb, "FILE", kMessageFiles, given)->check(checkFileName);
  CLI::Option* const answers =
      verb.add_option("-o,--output", given.exchange.output, "Where the answers to requests go; - is standard output")
          ->type_name("ANSWERS")
          ->check(checkFileName);
  verb.add_flag("--any-device", given.exchange.anyDevice, kAnyDevice);
  verb.add_flag("--whole", given.receive.whole, "Store whole units only, as verify judges them, and refuse the rest");
  CLI::Option* const trace = addExchangeOptions(verb, given.exchange);
  verb.add_flag("--dry-run", given.receive.dryRun, kDryRun)->excludes(answers)->excludes(trace);
  verb.add_flag("--json", given.receive.json, "One object a line for each message, as the trace has it");
  verb.callback([&] { given.verb = [&] { receive(given.words, given.exchange, given.receive, program); }; });
}

void addRequest(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "request");
  addWords(verb, "ADDRESS", "Three hex bytes or names, banks or ranges; system means all system blocks", given);
  verb.add_option("-o,--output", given.exchange.output, "Where the dumps go; default standard output")
      ->type_name("FILE")
      ->check(checkFileName);
  addExchangeOptions(verb, given.exchange);
  verb.callback([&] { given.verb = [&] { request(given.words, given.exchange, program); }; });
}

void addShow(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "show");
  addWords(verb, "TARGET", "system, additional, headers or file dumps, their banks or ranges", given);
  verb.add_flag("--json", given.show.json, "One object, as apply reads it; of several targets one object a line");
  verb.add_option("--from", given.show.from, "A message file to show them of, instead of the library")
      ->type_name("FILE")
      ->check(checkFileName);
  verb.callback([&] { given.verb = [&] { show(given.words, given.show, program); }; });
}

void addApply(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "apply");
  addWords(verb, "TARGET FILE", "A target as for show, and its JSON; - is standard input", given);
  addChangeOptions(verb, given.change);
  verb.callback([&] { given.verb = [&] { apply(given.words, given.change, program); }; });
}

void addSettings(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "settings");
  verb.add_option("SETTING", given.setting, "Which; default all");
  verb.add_option("VALUE", given.value, "Its new value");
  addChangeOptions(verb, given.change);
  verb.callback([&] { given.verb = [&] { settings(given.setting, given.value, given.change, program); }; });
}

void addContents(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "contents");
  verb.add_option("ADDRESS", given.words, "Only these: banks, ranges, single places; default all");
  CLI::Option* const json = verb.add_flag("--json", given.contents.json, "One object a line");
  CLI::Option* const grid =
      verb.add_flag("--grid", given.contents.grid, "In columns, as on a terminal")->excludes(json);
  verb.add_flag("--lines", given.contents.lines, "One line each, as to a file or a pipe")
      ->excludes(json)
      ->excludes(grid);
  verb.callback([&] { given.verb = [&] { contents(given.words, given.contents, program); }; });
}

void addFind(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "find");
  FindOptions& options = given.find;
  verb.add_option("TERM", given.words, "Part of a name, or with * a whole one; case does not count");
  verb.add_option("--in", options.sources, "A library, a message file or a folder of them; default the library")
      ->type_name("SOURCE")
      ->allow_extra_args(false)
      ->check(checkFileName);
  verb.add_option("--kind", options.kind, fmt::format("One of {}", fmt::join(contentKindWords(), ", ")))
      ->type_name("KIND");
  verb.add_option("--where", options.conditions,
                  "What a parameter is, by its path in JSON or its name: = != < <= > >=, as 'voice.common[3]>64'")
      ->type_name("CONDITION")
      ->allow_extra_args(false);
  verb.add_option("--same-as", options.sameAs, "Equal to that content of the library, but for names")
      ->type_name("ADDRESS");
  verb.add_option("--like", options.like, "By likeness to that content of the library, the nearest first")
      ->type_name("ADDRESS");
  verb.add_flag("--duplicates", options.duplicates, "What is there more than once, but for names");
  verb.add_flag("--favourite", options.favourite, "Favourites only");
  verb.add_flag("--edit-buffers", options.editBuffers, "Edit buffers too");
  verb.add_flag("--json", options.json, "One object a line");
  verb.callback([&] { given.verb = [&] { find(given.words, options, program); }; });
}

void addBackup(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "backup");
  verb.add_option("-o,--output", given.output, "Where it goes; - is standard output")
      ->type_name("FILE")
      ->required()
      ->check(checkFileName);
  verb.add_option("--manifest", given.manifest, "A JSON file that names what is in it, with hashes")
      ->type_name("FILE")
      ->check(checkFileName);
  verb.callback([&] { given.verb = [&] { backup(given.output, given.manifest, program); }; });
}

void addRestore(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "restore");
  verb.add_option("FILE", given.file, "A backup, or any message file; - is standard input")
      ->required()
      ->check(checkFileName);
  verb.add_flag("--any-device", given.restore.anyDevice, kAnyDevice);
  addChangeOptions(verb, given.restore);
  verb.callback([&] { given.verb = [&] { restore(given.file, given.restore, program); }; });
}

void addDiff(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "diff");
  verb.add_option("A", given.file, "A library, or a message file; - is standard input")
      ->required()
      ->check(checkFileName);
  verb.add_option("B", given.secondFile, "The same")->required()->check(checkFileName);
  CLI::Option* const brief = verb.add_flag("--brief", given.brief, "Which contents differ, not in what");
  verb.add_flag("--json", given.json, "One object for each value that differs, the last one counts")->excludes(brief);
  verb.callback([&] {
    given.verb = [&] {
      const DiffForm form = given.json ? DiffForm::json : given.brief ? DiffForm::brief : DiffForm::words;
      diff(given.file, given.secondFile, form, program);
    };
  });
}

void addRename(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "rename");
  CLI::Option* const words =
      addWords(verb, "ADDRESS NAME", "A header or file dump, and up to 20 characters of ASCII", given);
  verb.add_option("--from", given.table, "Lines of an address and a name, all of them or none; - is standard input")
      ->type_name("TABLE")
      ->check(checkFileName)
      ->excludes(words->required(false));
  addChangeOptions(verb, given.change);
  verb.callback([&] { given.verb = [&] { rename(given.words, given.table, given.change, program); }; });
}

void addFavourite(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "favourite");
  addWords(verb, "ADDRESS... on|off", "Voices or drum voices: places, ranges or banks; on or off", given);
  addChangeOptions(verb, given.change);
  verb.callback([&] { given.verb = [&] { favourite(given.words, given.change, program); }; });
}

void addRemove(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "remove");
  addWords(verb, "ADDRESS", "Headers or file dumps, their banks or ranges", given);
  addChangeOptions(verb, given.change);
  verb.callback([&] { given.verb = [&] { remove(given.words, given.change, program); }; });
}

CLI::App& addArranging(CLI::App& verb, const char* words, Arrangement::Kind kind, Given& given, Program& program) {
  addWords(verb, words, "Contents or edit buffers: places, ranges or banks; of the second the first place will do",
           given);
  addChangeOptions(verb, given.change);
  verb.callback(
      [&, kind] { given.verb = [&, kind] { arrange(kind, given.words, given.otherLibrary, given.change, program); }; });
  return verb;
}

void addCopy(CLI::App& app, Given& given, Program& program) {
  addArranging(addVerb(app, "copy"), "FROM TO", Arrangement::Kind::copy, given, program)
      .add_option("--from-library", given.otherLibrary, "The library that FROM is in; default the same")
      ->type_name("FILE")
      ->check(checkFileName);
}

void addMove(CLI::App& app, Given& given, Program& program) {
  addArranging(addVerb(app, "move"), "FROM TO", Arrangement::Kind::move, given, program);
}

void addSwap(CLI::App& app, Given& given, Program& program) {
  addArranging(addVerb(app, "swap"), "ADDRESS ADDRESS", Arrangement::Kind::swap, given, program);
}

void addHistory(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "history");
  verb.add_option("-n", given.history.most, "So many entries at most")->type_name("N")->check(checkNumber);
  verb.add_flag("--json", given.history.json, "One object a line, an entry with its changes");
  verb.callback([&] { given.verb = [&] { history(given.history, program); }; });
}

void addUndo(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "undo");
  verb.add_option("ENTRY", given.entry, "Which; default the newest that is no undo and not undone")->check(checkNumber);
  verb.add_flag("--force", given.force, "Put back also what was changed since");
  addChangeOptions(verb, given.change);
  verb.callback([&] { given.verb = [&] { undo(given.entry, given.force, given.change, program); }; });
}

void addCheck(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "check");
  verb.add_flag("--json", given.json, "One object a line, for each table and each content");
  verb.callback([&] { given.verb = [&] { check(given.json, program); }; });
}

void addScreen(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "screen");
  verb.add_option("-o,--output", given.output, "A PNG file; - is standard output")
      ->type_name("FILE")
      ->required()
      ->check(checkFileName);
  verb.callback([&] { given.verb = [&] { screen(given.output, program); }; });
}

void addHelp(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "help");
  CLI::Option* const which = verb.add_option("VERB", given.setting, "Which; default all");
  verb.add_flag("--man", given.manual, "All that the help says, as a page for man")->excludes(which);
  verb.callback(
      [&] { given.verb = [&] { program.console.text(given.manual ? manualOf(app) : helpOf(app, given.setting)); }; });
}

constexpr std::array kVerbs{addList,    addVerify, addConvert,   addExplain,  addSalvage, addReceive, addRequest,
                            addShow,    addApply,  addSettings,  addContents, addFind,    addBackup,  addRestore,
                            addDiff,    addRename, addFavourite, addRemove,   addCopy,    addMove,    addSwap,
                            addHistory, addUndo,   addCheck,     addScreen,   addHelp};

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

// What is written must be no file that the run needs, nor be written twice.
void checkOutputs(const Given& given, const Program& program, bool readsFiles) {
  const std::pair<const char*, const std::string*> outputs[] = {{"-o", &given.output},
                                                                {"-o", &given.exchange.output},
                                                                {"-o", &given.salvage.output},
                                                                {"--requests", &given.salvage.requests},
                                                                {"--trace", &given.exchange.trace},
                                                                {"--manifest", &given.manifest}};
  if (std::ranges::all_of(outputs, [](const auto& output) { return output.second->empty(); })) return;
  FilesInUse files;
  if (const std::optional<std::string> library = program.findLibraryFile()) {
    files.addLibrary(*library);
    files.add(program.nameFileOf(*library), "these are the names of waveforms, arpeggios and parameters");
  }
  if (readsFiles)
    for (const Words& words : {given.words, given.convert.select})
      for (const std::string& file : words) files.add(file, "this is also an input");
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
  for (const auto add : kVerbs) add(app, given, program);
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
  const std::initializer_list<const char*> readFiles{"receive", "salvage", "convert"};
  checkOutputs(given, program,
               std::ranges::any_of(readFiles, [&](const char* verb) { return app.got_subcommand(verb); }));
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
