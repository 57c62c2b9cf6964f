#include "Program.h"

#include <fmt/format.h>

#include <cstdlib>
#include <filesystem>
#include <utility>

#include "contents/LibraryCopy.h"
#include "history/History.h"
#include "input/NameFile.h"
#include "messages/Text.h"

namespace Editor {

namespace {

constexpr const char* kLibraryVariable = "BDA_LIBRARY";

// What cannot be reached is not missing: to open it says why.
bool isMissing(const std::string& file) {
  std::error_code unknown;
  return std::filesystem::status(file, unknown).type() == std::filesystem::file_type::not_found;
}

std::string fromEnvironment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

std::optional<std::string> Program::findLibraryFile() const {
  if (!library_.empty()) return library_;
  if (std::string file = fromEnvironment(kLibraryVariable); !file.empty()) return file;
  if (const std::string data = fromEnvironment("XDG_DATA_HOME"); !data.empty()) return data + "/bda/library.db";
  if (const std::string home = fromEnvironment("HOME"); !home.empty()) return home + "/.local/share/bda/library.db";
  return std::nullopt;
}

std::optional<std::string> Program::nameFileInUse(const std::string& library) const {
  std::error_code unknown;
  const std::string file = nameFileOf(library);
  if (!needsNames_ || (names_.empty() && !std::filesystem::exists(file, unknown))) return std::nullopt;
  return file;
}

std::string Program::libraryFile() const {
  if (std::optional<std::string> file = findLibraryFile()) return *std::move(file);
  throw Failure(kWrongUsage, "no library: name one with --library or in BDA_LIBRARY");
}

void Program::requireLibrary(ExitCode code) const {
  const std::string file = libraryFile();
  if (isMissing(file)) throw Failure(code, fmt::format("{}: there is no such library", escape(file)));
}

bool Program::hasLibrary() const { return !isMissing(libraryFile()); }

ParameterNames Program::parameterNames(std::vector<std::string> libraries) const {
  if (!names_.empty()) return loadNames(names_).parameters;
  if (std::optional<std::string> own = findLibraryFile()) libraries.push_back(*std::move(own));
  for (const std::string& library : libraries) {
    std::error_code unknown;
    const std::string file = nameFileOf(library);
    if (std::filesystem::exists(file, unknown)) return loadNames(file).parameters;
  }
  return {};
}

std::unique_ptr<EmbeddedEditor> Program::openToChange(LibraryRun run) {
  const std::string file = libraryFile();
  std::unique_ptr<EmbeddedEditor> editor = open(file, Library::Use::change);
  editor->library().beginRun(std::move(run));
  if (isMissing(file)) console.note(fmt::format("{}: no library yet, the first change makes one", escape(file)));
  if (editor->library().isOfOlderVersion())
    console.note(fmt::format(
        "{}: a library of an older version: the first change brings it to this one, and leaves a copy as {}",
        escape(file), escape(nameOfCopy(file).string())));
  return editor;
}

Library::Use Program::useToRead() {
  const std::string file = libraryFile();
  if (hasLibrary()) return Library::Use::read;
  const bool isNamed = !library_.empty() || !fromEnvironment(kLibraryVariable).empty();
  if (isNamed) requireLibrary(kUnusableInput);
  console.note(fmt::format("{}: there is no library yet, it is read as an empty one", escape(file)));
  return Library::Use::memory;
}

std::unique_ptr<Library> Program::openLibraryToRead() {
  const std::string file = libraryFile();
  try {
    const Library::Use use = useToRead();
    auto library = std::make_unique<Library>(file, Library::Options{.use = use});
    if (use == Library::Use::read) readPastDamage(file, *library);
    return library;
  } catch (const LibraryError& error) {
    throw Failure(kUnusableInput, escape(error.what()));
  }
}

std::unique_ptr<EmbeddedEditor> Program::openToRehearse(LibraryRun run) {
  const std::string file = libraryFile();
  std::unique_ptr<EmbeddedEditor> copy = open(file, Library::Use::memory);
  if (isMissing(file)) {
    console.note(fmt::format("{}: there is no library yet", escape(file)));
  } else {
    const std::unique_ptr<EmbeddedEditor> editor = openToRead(file);
    const EmbeddedEditor::View oneState(*editor);
    copy->library().copyFrom(editor->library());
  }
  copy->library().beginRun(std::move(run));
  return copy;
}

std::unique_ptr<EmbeddedEditor> Program::open(const std::string& file, Library::Use use) {
  const std::optional<std::string> nameFile = nameFileInUse(file);
  std::optional<NameLists> names;
  if (nameFile) names = loadNames(*nameFile);
  try {
    auto editor = std::make_unique<EmbeddedEditor>(file, Library::Options{.use = use});
    if (use == Library::Use::read) readPastDamage(file, editor->library());
    if (!editor->tools().systemDamage().empty())
      console.note(
          fmt::format("{}: the system settings are damaged and count as new (bda check tells more)", escape(file)));
    if (!names) return editor;
    if (const std::string error = giveNames(std::move(*names), editor->tools()); !error.empty())
      throw Failure(kUnusableInput, fmt::format("{}: {}", escape(*nameFile), error));
    return editor;
  } catch (const LibraryError& error) {
    throw Failure(kUnusableInput, escape(error.what()));
  } catch (const LiveModelError& error) {
    throw Failure(kUnusableInput, escape(error.what()));
  }
}

void Program::readPastDamage(const std::string& file, Library& library) {
  if (library.isYetEmpty())
    console.note(fmt::format("{}: there is nothing in it yet, it is read as an empty library", escape(file)));
  library.leaveOutUnread([this, file](const Library::Unread& unread) { leaveOut(file, unread); });
}

void Program::leaveOut(const std::string& library, const Library::Unread& unread) {
  const bool isFlag = unread.place && unread.place->kind == Place::Kind::favourite;
  const std::string what =
      unread.place
          ? fmt::format("{}: {}left out: it is damaged", nameOf(*unread.place), isFlag ? "its favourite flag is " : "")
          : fmt::format("table {} is damaged, what cannot be read of it is left out", unread.table);
  const std::string text =
      fmt::format("{}: {}: {} (bda check tells more)", escape(library), what, escape(unread.reason));
  if (leftOut_.insert(text).second) console.problem(text);
  refuse();
}

void Program::tellDamaged(const std::string& place, const std::string& why) {
  console.problem(fmt::format("{}: {} (bda check tells more)", place, why));
  refuse();
}

void Program::failInputs(const std::vector<std::string>& problems) {
  for (const std::string& problem : problems) console.problem(fmt::format("bda: {}", problem));
  if (!problems.empty()) endWith(kUnusableInput);
}

}  // namespace Editor
