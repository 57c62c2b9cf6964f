#include "VerbOptions.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "Help.h"
#include "Manual.h"
#include "targets/ContentKind.h"
#include "wire/Faults.h"

namespace Editor {

namespace {

std::string checkNumber(const std::string& text) {
  std::int64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && last == end && number > 0) return "";
  return fmt::format("\"{}\": expected a number from 1 to {}", text, std::numeric_limits<std::int64_t>::max());
}

constexpr std::int64_t kLargestSeed = (std::int64_t{1} << 53) - 1;

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

void addPortNumber(CLI::App& verb, unsigned& port) {
  verb.add_option("--port", port, "The port on which the messages arrive")
      ->type_name("1|4|5|6")
      ->check([](const std::string& word) {
        constexpr std::array kPorts{"1", "4", "5", "6"};
        const bool isPort = std::find(kPorts.begin(), kPorts.end(), word) != kPorts.end();
        return isPort ? std::string() : fmt::format("\"{}\": expected 1, 4, 5 or 6", word);
      })
      ->capture_default_str();
}

CLI::Option* addTranscript(CLI::App& verb, Program& program) {
  TranscriptOptions& options = program.transcript;
  CLI::Option* const transcript =
      verb.add_option("--transcript", options.file,
                      "A file for all messages and what became of them, which replay does again")
          ->type_name("FILE")
          ->check(checkFileName)
          ->check([](const std::string& word) { return word == "-" ? "a transcript goes into a file" : ""; });
  verb.add_flag("--with-library", options.withLibrary, "Keep in the transcript the library that they met")
      ->needs(transcript);
  return transcript;
}

// The option of the trace.
CLI::Option* addExchangeOptions(CLI::App& verb, ExchangeOptions& options, Program& program) {
  addPortNumber(verb, options.port);
  addTranscript(verb, program);
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
  CLI::Option* const trace = addExchangeOptions(verb, given.exchange, program);
  verb.add_flag("--dry-run", given.receive.dryRun, kDryRun)->excludes(answers)->excludes(trace);
  verb.add_flag("--json", given.receive.json, "One object a line for each message, as the trace has it");
  verb.callback([&] { given.verb = [&] { receive(given.words, given.exchange, given.receive, program); }; });
}

CLI::Option* addPort(CLI::App& verb, const char* name, const char* description, std::string& port) {
  return verb.add_option(name, port, description)->type_name("PORT")->required()->check([](const std::string& word) {
    return word.empty() ? "an empty name" : "";
  });
}

constexpr const char* kTo =
    "Where it goes: a MIDI port by its name or a part of it (see ports), a new one (virtual:NAME), a device, a FIFO or "
    "two by their paths (IN,OUT), pty: (a new pseudo terminal), or -";
constexpr const char* kFrom =
    "Where it comes from: a MIDI port by its name or a part of it (see ports), a new one (virtual:NAME), a device or "
    "FIFO by its path, pty: (a new pseudo terminal), or -";

// Seconds and milliseconds, with decimals.
CLI::Option* addTime(CLI::App& verb, const char* name, const char* description, double unit,
                     std::function<void(WireTime)> take) {
  return verb
      .add_option_function<double>(
          name, [unit, take = std::move(take)](double number) { take(WireTime(std::llround(number * unit))); },
          description)
      ->check([](const std::string& word) {
        constexpr double kMost = 1e9;
        double number = -1;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        const bool isGood = error == std::errc() && end == word.data() + word.size() && number >= 0 && number <= kMost;
        return isGood ? std::string() : fmt::format("\"{}\": expected a number from 0 to {:.0f}", word, kMost);
      });
}
constexpr double kSecond = 1e6;
constexpr double kMillisecond = 1e3;

void addPorts(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "ports");
  verb.add_flag("--json", given.json, "One object a line");
  verb.callback([&] { given.verb = [&] { ports(given.json, program); }; });
}

void addRecord(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "record");
  RecordOptions& options = given.record;
  addPort(verb, "--from", kFrom, options.from);
  verb.add_option("-o,--output", options.output, "Where the messages go; - is standard output")
      ->type_name("FILE")
      ->required()
      ->check(checkFileName);
  addTime(verb, "--quiet-after", "End when nothing has come for so long; default by Ctrl-C only", kSecond,
          [&options](WireTime time) { options.quietAfter = time; })
      ->type_name("SECONDS");
  addTranscript(verb, program);
  verb.add_flag("--json", options.json, "One object a line for each message");
  verb.callback([&] { given.verb = [&] { record(given.record, program); }; });
}

// How bytes go out.
void addPacing(CLI::App& verb, std::optional<Pace>& pace, Pauses& pauses) {
  verb.add_option_function<std::string>(
          "--pace", [&pace](const std::string& word) { pace = parsePace(word); },
          "cable, usb, none, or bytes a second; default that of the port")
      ->type_name("PACE")
      ->check([](const std::string& word) {
        return parsePace(word) ? std::string()
                               : fmt::format("\"{}\": expected cable, usb, none, or bytes a second", word);
      });
  addTime(verb, "--pause", "Between messages", kMillisecond, [&pauses](WireTime time) {
    pauses.betweenMessages = time;
  })->type_name("MILLISECONDS");
  addTime(verb, "--unit-pause", "Behind each unit", kMillisecond, [&pauses](WireTime time) {
    pauses.behindUnits = time;
  })->type_name("MILLISECONDS");
}

// How an instrument is asked.
void addAsking(CLI::App& verb, WireTime& timeout, unsigned& retries) {
  addTime(verb, "--timeout", "How long to wait for the next byte; default 2", kSecond, [&timeout](WireTime time) {
    timeout = time;
  })->type_name("SECONDS");
  verb.add_option("--retries", retries, "How often to ask again; default 2")
      ->type_name("N")
      ->check(CLI::Range(0, 1'000));
}

void addFetch(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "fetch");
  FetchOptions& options = given.fetch;
  addWords(verb, "ADDRESS", "Headers, file dumps, system blocks, favourites, their banks or ranges; all", given);
  addPort(verb, "--from", kFrom, options.from);
  CLI::Option* const output =
      verb.add_option("-o,--output", options.output, "A file for the dumps; default the library")
          ->type_name("FILE")
          ->check(checkFileName);
  verb.add_flag("--trigger", options.trigger, "A write trigger at the end of the file")->needs(output);
  verb.add_option("--requests", options.requests, "A file for the requests that fetch what is lost")
      ->type_name("FILE")
      ->check(checkFileName);
  verb.add_flag("--atomic", options.atomic, "Store all of it, or nothing")->excludes(output);
  verb.add_flag("--remove-empty", options.removeEmpty, "Remove here what is empty there");
  addAsking(verb, options.timeout, options.retries);
  addPacing(verb, options.pace, options.pauses);
  addTranscript(verb, program);
  verb.add_flag("--dry-run", options.dryRun, kDryRun)->excludes(output);
  verb.add_flag("--json", options.json, "One object a unit");
  verb.callback([&] { given.verb = [&] { fetch(given.words, given.fetch, program); }; });
}

void addSend(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "send");
  SendOptions& options = given.send;
  addWords(verb, "FILE|ADDRESS", "Message files, or places of the library, their banks or ranges", given)
      ->check(checkFileName);
  addPort(verb, "--to", kTo, options.to);
  verb.add_flag("--to-edit-buffer", options.toEditBuffer,
                "Where it can be heard, and overwrites nothing that is stored");
  verb.add_flag("--verify", options.verify, "Read back what was sent, and compare it");
  verb.add_flag("--changed", options.changed, "Leave out what the instrument has already");
  addAsking(verb, options.timeout, options.retries);
  addPacing(verb, options.pace, options.pauses);
  addTranscript(verb, program);
  verb.add_flag("--dry-run", options.dryRun, "Say what would go out and how long it takes, and send nothing");
  verb.add_flag("--json", options.json, "One object a unit");
  verb.callback([&] { given.verb = [&] { send(given.words, given.send, program); }; });
}

void addJob(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "job");
  SendOptions& options = given.send;
  verb.add_option("JOB", given.setting, "Whose edit buffer goes out")->required();
  addPort(verb, "--to", kTo, options.to);
  addPacing(verb, options.pace, options.pauses);
  addTranscript(verb, program);
  verb.add_flag("--json", options.json, "One object a unit");
  verb.callback([&] { given.verb = [&] { job(given.setting, given.send, program); }; });
}

void addInstrument(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "instrument");
  InstrumentOptions& options = given.instrument;
  addPort(verb, "--on",
          "Where it answers: a new MIDI port (virtual:NAME), another one by its name or a part of it (see ports), a "
          "device or two FIFOs by their paths (IN,OUT), pty: (a new pseudo terminal), or -",
          options.on);
  verb.add_option(
          "--faults", options.faults,
          "What goes wrong how often, as drop=1%,delay=0.05:300: " + fmt::format("{}", fmt::join(faultNames(), ", ")))
      ->type_name("LIST");
  verb.add_option("--seed", options.seed, "Other faults of the same list; the same seed has the same")
      ->type_name("N")
      ->check(CLI::Range(std::int64_t{0}, kLargestSeed));
  addPortNumber(verb, options.port);
  verb.add_flag("--echo", options.echoes, "Send what the instrument echoes, too");
  addPacing(verb, options.pace, options.pauses);
  addTranscript(verb, program);
  verb.add_flag("--json", options.json, "One object a line for each message, as the trace has it");
  verb.callback([&] { given.verb = [&] { instrument(given.instrument, program); }; });
}

void addRequest(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "request");
  addWords(verb, "ADDRESS", "Three hex bytes or names, banks or ranges; system means all system blocks", given);
  verb.add_option("-o,--output", given.exchange.output, "Where the dumps go; default standard output")
      ->type_name("FILE")
      ->check(checkFileName);
  addExchangeOptions(verb, given.exchange, program);
  verb.callback([&] { given.verb = [&] { request(given.words, given.exchange, program); }; });
}

void addReplay(CLI::App& app, Given& given, Program& program) {
  CLI::App& verb = addVerb(app, "replay");
  verb.add_option("TRANSCRIPT", given.file, "What --transcript has written; - is standard input")
      ->required()
      ->check(checkFileName);
  verb.add_option("--from-library", given.otherLibrary,
                  "The library as it was; default the one in the transcript, or else the one that --library names")
      ->type_name("FILE")
      ->check(checkFileName);
  verb.callback([&] { given.verb = [&] { replay(given.file, given.otherLibrary, program); }; });
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

constexpr std::array kVerbs{addList,       addVerify,  addConvert, addExplain,   addSalvage,  addReceive, addRequest,
                            addReplay,     addShow,    addApply,   addSettings,  addContents, addFind,    addBackup,
                            addRestore,    addDiff,    addRename,  addFavourite, addRemove,   addCopy,    addMove,
                            addSwap,       addHistory, addUndo,    addCheck,     addScreen,   addRecord,  addFetch,
                            addInstrument, addSend,    addJob,     addPorts,     addHelp};

}  // namespace

std::string checkFileName(const std::string& name) { return name.empty() ? "an empty file name" : ""; }

void addVerbs(CLI::App& app, Given& given, Program& program) {
  for (const auto add : kVerbs) add(app, given, program);
}

}  // namespace Editor
