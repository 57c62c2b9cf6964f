#include "Program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

extern char** environ;

namespace {

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

Result run(const std::vector<std::string>& arguments, const std::filesystem::path& directory,
           const std::vector<std::string>& environment, const std::string& input) {
  const std::filesystem::path scratch = directory / ".run";
  std::filesystem::create_directory(scratch);
  std::ofstream(scratch / "in", std::ios::binary) << input;

  std::vector<std::string> words{BDA_PROGRAM};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  std::vector<std::string> variables = environment;
  std::vector<char*> envp;
  for (std::string& variable : variables) envp.push_back(variable.data());
  envp.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, (scratch / "in").c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, (scratch / "out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, (scratch / "err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
  pid_t child = 0;
  const int error = posix_spawn(&child, BDA_PROGRAM, &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  Result result;
  if (error != 0) return result;
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status)) result.code = WEXITSTATUS(status);
  result.out = contentsOf(scratch / "out");
  result.err = contentsOf(scratch / "err");
  std::filesystem::remove_all(scratch);
  return result;
}

}  // namespace

Program::Program() {
  std::string name = (std::filesystem::temp_directory_path() / "bda-acceptance-XXXXXX").string();
  directory = ::mkdtemp(name.data());
  // What the history does not record is enough for one to be made.
  Editor::Library(libraryFile()).set(Editor::Recorder::kEntries, Editor::Recorder::kDefaultEntries);
}

Program::~Program() { std::filesystem::remove_all(directory); }

Result Program::bda(const std::vector<std::string>& arguments, const std::string& input) {
  std::vector<std::string> environment{"BDA_LIBRARY=" + libraryFile().string()};
  // Of a JACK server that the test has started.
  if (const char* const server = std::getenv("JACK_DEFAULT_SERVER"))
    environment.push_back(std::string("JACK_DEFAULT_SERVER=") + server);
  return run(arguments, directory, environment, input);
}

Result Program::bdaWithout(const std::string& variable, const std::vector<std::string>& arguments) {
  std::vector<std::string> environment;
  for (const char* name : {"BDA_LIBRARY", "XDG_DATA_HOME", "HOME"})
    if (name != variable && std::string(name) != "BDA_LIBRARY")
      environment.push_back(std::string(name) + "=" + (directory / name).string());
  return run(arguments, directory, environment, "");
}

void Program::write(const std::string& name, const std::string& bytes) {
  std::ofstream(directory / name, std::ios::binary) << bytes;
}

void Program::write(const std::string& name, std::initializer_list<Bytes> messages) {
  std::string bytes;
  for (const Bytes& message : messages) bytes += text(message);
  write(name, bytes);
}

std::string Program::read(const std::string& name) const { return contentsOf(directory / name); }

bool Program::exists(const std::string& name) const { return std::filesystem::exists(directory / name); }

std::vector<std::string> Program::files() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(directory))
    if (const std::string name = entry.path().filename().string(); name.find("library.db") != 0) names.push_back(name);
  std::sort(names.begin(), names.end());
  return names;
}

Bytes Program::unit(Editor::BulkAddress header, BDA::List list, std::uint8_t value) {
  Bytes bytes = blockDump(header);
  const auto append = [&](const Bytes& message) { bytes.insert(bytes.end(), message.begin(), message.end()); };
  for (const Editor::BulkAddress block : blocksOf(list)) append(blockDump(block, value));
  append(blockDump({0x0F, header.mid, header.lo}));
  return bytes;
}

Bytes Program::systemDump(std::uint8_t value) {
  Bytes bytes;
  for (const Editor::BulkAddress block : Editor::systemAddresses()) {
    const Bytes message = blockDump(block, value);
    bytes.insert(bytes.end(), message.begin(), message.end());
  }
  return bytes;
}

Json Program::json(const std::vector<std::string>& arguments) {
  const Result result = bda(arguments);
  EXPECT_THAT(result, Exits(0));
  return Json::parse(result.out, nullptr, false);
}

std::vector<Json> Program::objects(const std::vector<std::string>& arguments) {
  const Result result = bda(arguments);
  EXPECT_THAT(result, Exits(0));
  return objectsOf(result.out);
}

std::vector<Json> Program::trace(const std::string& name) const { return objectsOf(read(name)); }

Json Program::change(const std::string& place, const char* what, const Json& before, const Json& after) {
  return {{"content", place}, {"what", what}, {"before", before}, {"after", after}};
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> found;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) found.push_back(line);
  return found;
}

std::vector<Json> objectsOf(const std::string& text) {
  std::vector<Json> objects;
  for (const std::string& line : lines(text)) objects.push_back(Json::parse(line));
  return objects;
}

std::string text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
