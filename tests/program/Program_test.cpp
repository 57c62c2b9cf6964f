#include "Program.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "editor/contents/TemporaryLibrary.h"
#include "program/Anybody.h"

using Editor::Failure;
using Editor::Program;

namespace {

int codeForAnybody(void (*operation)(Program&), const std::string& library) {
  return ::codeForAnybody([&] {
    Program program;
    program.setLibraryFile(library);
    try {
      operation(program);
    } catch (const Failure& failure) {
      return int(failure.code());
    }
    return 0;
  });
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
  const auto change = [](Program& program) { program.openToChange({"test"}); };
  const auto rename = [](Program& program) {
    program.requireLibrary(Editor::kRefused);
    program.openToChange({"test"});
  };
  EXPECT_EQ(codeForAnybody(read, library), Editor::kUnusableInput);
  EXPECT_EQ(codeForAnybody(change, library), Editor::kUnusableInput);
  EXPECT_EQ(codeForAnybody(rename, library), Editor::kUnusableInput);
  ::chmod(closed.c_str(), 0755);
  EXPECT_EQ(codeForAnybody(read, library), 0);
}
