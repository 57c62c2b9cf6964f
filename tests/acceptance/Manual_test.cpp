// The manual: all that the help says, as a page that man shows.

#include <cstdlib>
#include <utility>

#include "Program.h"

using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Manual : public Program {
 protected:
  // The page as man shows it, and what it complains of.
  Result shown() {
    const Result page = bda({"help", "--man"});
    EXPECT_THAT(page, Exits(0));
    EXPECT_EQ(page.err, "");
    write("bda.1", page.out);
    const std::string man = "cd " + directory.string() +
                            " && LC_ALL=C.UTF-8 MANWIDTH=80 MAN_KEEP_FORMATTING= man --warnings -l bda.1 >shown 2>told";
    const int status = std::system(man.c_str());
    return {status, read("shown"), read("told")};
  }
};

// Without the breaks of lines, which are elsewhere in each form.
std::string flow(const std::string& text) {
  std::string words;
  for (const char c : text)
    if (c != ' ' && c != '\n')
      words += c;
    else if (!words.empty() && words.back() != ' ')
      words += ' ';
  return words;
}

}  // namespace

TEST_F(Manual, manShowsItWithoutComplaintIn80Columns) {
  const Result page = shown();
  EXPECT_THAT(page, Exits(0));
  EXPECT_THAT(page.err, IsEmpty());
  EXPECT_THAT(lines(page.out), testing::Each(testing::SizeIs(testing::Le(80u))));
  std::size_t at = 0;
  for (const char* section : {"NAME", "SYNOPSIS", "DESCRIPTION", "VERBS", "OPTIONS", "ADDRESSES", "EXIT STATUS"}) {
    at = page.out.find(std::string("\n") + section + "\n", at);
    EXPECT_NE(at, std::string::npos) << section;
  }
  EXPECT_THAT(page.out, HasSubstr("       bda - receives, keeps and answers"));
}

TEST_F(Manual, mandocFindsNothingWrongWithIt) {
  write("bda.1", bda({"help", "--man"}).out);
  const int status =
      std::system(("cd " + directory.string() + " && mandoc -T lint -W warning bda.1 >told 2>&1").c_str());
  EXPECT_EQ(read("told"), "");
  EXPECT_EQ(status, 0) << "or mandoc is not installed";
}

TEST_F(Manual, allThatTheHelpOfAVerbSaysIsThere) {
  const std::string page = flow(shown().out);
  std::size_t verbs = 0;
  for (const std::string& line : lines(bda({"--help"}).out)) {
    if (line.rfind("  ", 0) != 0 || line[2] < 'a' || line[2] > 'z' || line.find("  ", 3) == std::string::npos) continue;
    const std::string verb = line.substr(2, line.find(' ', 2) - 2);
    if (verb.find_first_of(":,") != std::string::npos) continue;
    ++verbs;
    const std::vector<std::string> help = lines(bda({"help", verb}).out);
    EXPECT_THAT(page, HasSubstr(flow(help.at(2).substr(7) + " " + help.at(0))));
    bool isOwn = false;
    std::string entry;
    for (const std::string& text : help) {
      if (!entry.empty() && text.rfind("    ", 0) != 0) {
        EXPECT_THAT(page, HasSubstr(flow(std::exchange(entry, "")))) << verb;
      }
      if (!text.empty() && text.front() != ' ') isOwn = text == "Options:" || text == "Arguments:";
      if (isOwn && text.rfind("  ", 0) == 0) entry += text + "\n";
    }
  }
  EXPECT_GE(verbs, 20u);
}
