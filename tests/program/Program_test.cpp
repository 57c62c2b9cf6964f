#include "Program.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "editor/contents/TemporaryLibrary.h"

using Editor::Failure;
using Editor::Program;

namespace {

// The exit code that an operation ends with for somebody whom permissions hold back, in a process of his own.
int codeForAnybody(void (*operation)(Program&), const std::string& library) {
  constexpr uid_t kNobody = 65534;
  const pid_t child = ::fork();
  if (child == 0) {
    if (::geteuid() == 0 && ::setuid(kNobody) != 0) ::_exit(-1);
    Program program;
    program.setLibraryFile(library);
    try {
      operation(program);
    } catch (const Failure& failure) {
      ::_exit(failure.code());
    } catch (...) {
      ::_exit(-1);
    }
    ::_exit(0);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

// Else a library of somebody else would be read as an empty one.
TEST(ProgramsLibrary, thatCannotBeReachedIsNoneThatDoesNotExist) {
  const Editor::TemporaryDirectory directory;
  ::chmod(directory.path().c_str(), 0755);
  const auto closed = directory / "closed";
  std::filesystem::create_directory(closed);
  Editor::madeLibrary(closed / "library.db");
  ::chmod(closed.c_str(), 0);
  const std::string library = (closed / "library.db").string();
  const auto read = [](Program& program) { program.openToRead(); };
  const auto change = [](Program& program) { program.openToChange({"test", {}, {}}); };
  const auto rename = [](Program& program) {
    program.requireLibrary(Editor::kRefused);
    program.openToChange({"test", {}, {}});
  };
  EXPECT_EQ(codeForAnybody(read, library), Editor::kUnusableInput);
  EXPECT_EQ(codeForAnybody(change, library), Editor::kUnusableInput);
  EXPECT_EQ(codeForAnybody(rename, library), Editor::kUnusableInput);
  ::chmod(closed.c_str(), 0755);
  EXPECT_EQ(codeForAnybody(read, library), 0);
}
