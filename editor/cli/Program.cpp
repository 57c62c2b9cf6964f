#include "cli/Program.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <vector>

#include "cli/NameFile.h"

namespace Editor {

namespace {

constexpr std::array kVerbs{addList,  addVerify,   addReceive,   addRequest, addShow,
                            addApply, addSettings, addContents,  addBackup,  addRestore,
                            addDiff,  addRename,   addFavourite, addRemove,  addScreen};

constexpr const char* kAddresses =
    "An ADDRESS or TARGET is three hex bytes (0E0A05, 0E 0A 05, 0E/0A/05) or a name: voice:user1:6, "
    "voice:preset3:128,\n"
    "voice:gm:1, voice:edit, voice:part:4, voice:mix:1, drum:preset:1, drum:user:3, drum:gm, drum:edit,\n"
    "performance:a:1, performance:edit, multi:edit, master:1, master:edit, remote:1, remote:edit, system, additional,\n"
    "file:voice:user1:6, file:mix:1:3, file:multi:1, file:single.\n"
    "\n"
    "Exit codes: 0 all good, 1 wrong usage or an error of the program, 2 input that cannot be used, 3 something was\n"
    "refused or is broken (diff: differs), 130 ended by Ctrl-C.";

std::string fromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

void addCommonOptions(CLI::App& app, Program& program) {
  app.set_help_flag("-h,--help", "Say this and exit");
  app.set_version_flag("-V,--version", "bda " BDA_VERSION, "Say the version and exit");
  app.add_option_function<std::string>(
         "--library", [&program](const std::string& file) { program.setLibraryFile(file); },
         "The library; default $BDA_LIBRARY, $XDG_DATA_HOME/bda/library.db, ~/.local/share/bda/library.db")
      ->type_name("FILE");
  app.add_option_function<std::string>(
         "--names", [&program](const std::string& file) { program.setNameFile(file); },
         "The names of waveforms and arpeggios; default the library's name with .names behind it, if there is such")
      ->type_name("FILE");
  CLI::Option* const verbose = app.add_flag_callback(
      "-v,--verbose", [&program] { program.console.setLoudness(Console::Loudness::verbose); }, "Say more");
  app.add_flag_callback(
         "-q,--quiet", [&program] { program.console.setLoudness(Console::Loudness::quiet); },
         "Say only what went wrong")
      ->excludes(verbose);
}

int run(int argc, const char* const* argv, Program& program) {
  CLI::App app("Receives, keeps and answers MIDI System Exclusive bulk dumps.", "bda");
  app.footer(kAddresses);
  app.require_subcommand(1);
  app.fallthrough();
  addCommonOptions(app, program);
  for (const auto addVerb : kVerbs) addVerb(app, program);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return app.exit(error);  // --help, --version
    const std::vector<std::string> unknown =
        app.get_subcommands().empty() ? app.remaining() : std::vector<std::string>();
    throw Failure(kWrongUsage,
                  fmt::format("{} (bda --help tells more)",
                              unknown.empty() ? escape(error.what())
                                              : fmt::format("there is no verb \"{}\"", escape(unknown.front()))));
  }
  return program.exitCode();
}

}  // namespace

std::string Program::libraryFile() const {
  if (!library_.empty()) return library_;
  if (std::string file = fromEnvironment("BDA_LIBRARY"); !file.empty()) return file;
  if (const std::string data = fromEnvironment("XDG_DATA_HOME"); !data.empty()) return data + "/bda/library.db";
  if (const std::string home = fromEnvironment("HOME"); !home.empty()) return home + "/.local/share/bda/library.db";
  throw Failure(kWrongUsage, "no library: name one with --library or in BDA_LIBRARY");
}

namespace {

void giveNames(EditorJobTools& tools, const std::string& file, bool isRequired) {
  if (!isRequired && !std::filesystem::exists(file)) return;
  NameLists names = loadNames(file);
  std::string error = tools.setWaveNames(std::move(names.waveforms));
  if (error.empty()) error = tools.setArpeggioNames(std::move(names.arpeggios));
  if (!error.empty()) throw Failure(kUnusableInput, fmt::format("{}: {}", escape(file), error));
}

}  // namespace

std::unique_ptr<EmbeddedEditor> Program::openEditor(const std::string& file) const {
  try {
    auto editor = std::make_unique<EmbeddedEditor>(file);
    giveNames(editor->tools(), names_.empty() ? file + ".names" : names_, !names_.empty());
    return editor;
  } catch (const LibraryError& error) {
    throw Failure(kUnusableInput, escape(error.what()));
  } catch (const LiveModelError& error) {
    throw Failure(kUnusableInput, fmt::format("{}: {}", escape(file), error.what()));
  }
}

int runProgram(int argc, const char* const* argv) {
  Program program;
  int code = kWrongUsage;
  try {
    code = run(argc, argv, program);
  } catch (const Failure& failure) {
    program.console.problem(fmt::format("bda: {}", failure.what()));
    code = failure.code();
  } catch (const std::bad_alloc&) {
    program.console.problem("bda: out of memory");
  } catch (const std::exception& error) {
    program.console.problem(fmt::format("bda: {}", error.what()));
  }
  if (!program.console.finish()) {
    program.console.problem("bda: standard output could not be written");
    if (code == kAllGood) code = kWrongUsage;
  }
  return code;
}

}  // namespace Editor
