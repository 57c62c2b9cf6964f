#include "Program.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>

#include "input/NameFile.h"
#include "messages/Text.h"

namespace Editor {

namespace {

std::string fromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

void giveNames(EditorJobTools& tools, NameLists names, const std::string& file) {
  std::string error = tools.setWaveNames(std::move(names.waveforms));
  if (error.empty()) error = tools.setArpeggioNames(std::move(names.arpeggios));
  if (!error.empty()) throw Failure(kUnusableInput, fmt::format("{}: {}", escape(file), error));
}

}  // namespace

std::string Program::libraryFile() const {
  if (!library_.empty()) return library_;
  if (std::string file = fromEnvironment("BDA_LIBRARY"); !file.empty()) return file;
  if (const std::string data = fromEnvironment("XDG_DATA_HOME"); !data.empty()) return data + "/bda/library.db";
  if (const std::string home = fromEnvironment("HOME"); !home.empty()) return home + "/.local/share/bda/library.db";
  throw Failure(kWrongUsage, "no library: name one with --library or in BDA_LIBRARY");
}

void Program::requireLibrary() const {
  std::error_code error;
  const std::string file = libraryFile();
  if (!std::filesystem::exists(file, error))
    throw Failure(kUnusableInput, fmt::format("{}: there is no such library", escape(file)));
}

std::unique_ptr<EmbeddedEditor> Program::openEditor(const std::string& file) {
  std::error_code unknown;
  const bool isNew = !std::filesystem::exists(file, unknown);
  const std::string nameFile = nameFileOf(file);
  std::optional<NameLists> names;  // read before there is a new library
  if (!names_.empty() || std::filesystem::exists(nameFile, unknown)) names = loadNames(nameFile);
  try {
    auto editor = std::make_unique<EmbeddedEditor>(file);
    if (names) giveNames(editor->tools(), std::move(*names), nameFile);
    if (isNew) console.note(fmt::format("{}: new library", escape(file)));
    return editor;
  } catch (const LibraryError& error) {
    throw Failure(kUnusableInput, escape(error.what()));
  } catch (const LiveModelError& error) {
    throw Failure(kUnusableInput, fmt::format("{}: {}", escape(file), escape(error.what())));
  }
}

}  // namespace Editor
