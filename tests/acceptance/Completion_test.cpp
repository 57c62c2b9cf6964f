// Completion: what the program says that fits, and what bash and zsh make of it on a terminal.

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <set>
#include <utility>

#include "Library.h"
#include "Program.h"

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

class Completion : public Program {
 protected:
  // For the words behind bda; nothing is ever told but them.
  std::vector<std::string> completed(std::vector<std::string> words) {
    words.insert(words.begin(), "__complete");
    const Result result = bda(words);
    EXPECT_THAT(result, Exits(0)) << testing::PrintToString(words);
    EXPECT_EQ(result.err, "");
    return lines(result.out);
  }
  void storeVoice() { Editor::Library(libraryFile()).store(kUserVoice6, Bytes{1, 2, 3}, "Grand Piano"); }
  std::vector<std::string> verbs() {
    std::vector<std::string> names;
    for (const std::string& line : completed({""})) names.push_back(line.substr(0, line.find('\t')));
    return names;
  }
};

// A shell on a terminal of its own, that types and asks what its line became.
class Shell {
 public:
  Shell(const std::vector<std::string>& arguments, const std::filesystem::path& directory,
        const std::filesystem::path& library, const std::string& prepare)
      : said_(directory / "said") {
    terminal_ = ::posix_openpt(O_RDWR | O_NOCTTY);
    ::grantpt(terminal_);
    ::unlockpt(terminal_);
    const std::string name = ::ptsname(terminal_);
    const std::string path = std::filesystem::path(BDA_PROGRAM).parent_path().string() + ":" + std::getenv("PATH");
    child_ = ::fork();
    if (child_ == 0) {
      ::setsid();
      const int side = ::open(name.c_str(), O_RDWR);  // is the controlling terminal from now on
      for (const int descriptor : {0, 1, 2}) ::dup2(side, descriptor);
      ::setenv("PATH", path.c_str(), 1);
      ::setenv("TERM", "dumb", 1);
      ::setenv("HOME", directory.c_str(), 1);
      ::setenv("BDA_LIBRARY", library.c_str(), 1);
      if (::chdir(directory.c_str()) != 0) ::_exit(1);
      std::vector<char*> argv;
      for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
      argv.push_back(nullptr);
      ::execvp(argv[0], argv.data());
      ::_exit(127);
    }
    std::ofstream(directory / "prepare") << prepare;
    type(". ./prepare\n");
    EXPECT_NE(wait(), "") << "the shell is not ready";
  }
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;
  ~Shell() {
    ::close(terminal_);
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
  }

  // All that it drew since the line before.
  const std::string& drawn() const { return drawn_; }

  // What stands in the line after that, a tabulator and then control T; the line is emptied again.
  std::string complete(const std::string& keys) {
    type(keys + "\t\x14");
    return wait();
  }

 private:
  void type(const std::string& keys) { EXPECT_EQ(::write(terminal_, keys.data(), keys.size()), ssize_t(keys.size())); }
  // Until the shell has said something; what it draws meanwhile is kept.
  std::string wait() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    drawn_.clear();
    while (std::chrono::steady_clock::now() < end) {
      pollfd ready{terminal_, POLLIN, 0};
      char drawn[4096];
      if (::poll(&ready, 1, 20) > 0) {
        const ssize_t count = ::read(terminal_, drawn, sizeof drawn);
        if (count <= 0) break;
        drawn_.append(drawn, std::size_t(count));
      }
      std::ifstream stream(said_);
      std::string text;
      if (!std::getline(stream, text, '\n') || stream.eof()) continue;
      stream.close();
      std::filesystem::remove(said_);
      return text;
    }
    return "";
  }

  const std::filesystem::path said_;
  std::string drawn_;
  int terminal_ = -1;
  pid_t child_ = -1;
};

bool isHere(const std::string& program) { return std::system(("command -v " + program + " >/dev/null").c_str()) == 0; }

const std::string kScripts = BDA_SOURCE_DIR "/program/completion";

// The same in both shells.
void completesOnTheTerminal(Shell& shell) {
  EXPECT_EQ(shell.complete("bda favo"), "bda favourite ");
  EXPECT_EQ(shell.complete("bda undo --fo"), "bda undo --force ");
  EXPECT_EQ(shell.complete("bda -q settings dev"), "bda -q settings device-number ");
  EXPECT_EQ(shell.complete("bda show sys"), "bda show system ");
  EXPECT_EQ(shell.complete("bda show drum:u"), "bda show drum:user:");
  EXPECT_EQ(shell.complete("bda rename voice:user1:12"), "bda rename voice:user1:12");
  EXPECT_EQ(shell.complete("bda rename voice:user1:128"), "bda rename voice:user1:128 ");
  EXPECT_EQ(shell.complete("bda receive dum"), "bda receive dump.syx ");
  EXPECT_EQ(shell.complete("bda receive --trace=dum"), "bda receive --trace=dump.syx ");
  EXPECT_EQ(shell.complete("bda copy --from-library 'old lib.db' master:ed"),
            "bda copy --from-library 'old lib.db' master:edit ");
  EXPECT_EQ(shell.complete("bda dance x"), "bda dance x");
  EXPECT_EQ(shell.complete("bda receive --trace=a=one"), "bda receive --trace=a=one.syx ");
}

}  // namespace

TEST_F(Completion, offersEveryVerbWithWhatItDoes) {
  const std::vector<std::string> offered = completed({""});
  std::size_t told = 0;
  for (const std::string& line : lines(bda({"--help"}).out))
    for (const std::string& one : offered) {
      const std::string verb = one.substr(0, one.find('\t'));
      if (line.rfind("  " + verb + " ", 0) == 0) told += line.find(one.substr(verb.size() + 1)) != std::string::npos;
    }
  EXPECT_EQ(told, offered.size());
  EXPECT_THAT(completed({"fav"}), ElementsAre("favourite\tMake voices favourites, or no longer"));
  EXPECT_THAT(completed({"help", "swa"}), ElementsAre(StartsWith("swap\t")));
  EXPECT_THAT(completed({"-q", "swa"}), ElementsAre(StartsWith("swap\t")));
  EXPECT_THAT(completed({"dance", ""}), IsEmpty());
}

TEST_F(Completion, offersTheOptionsOfAVerbAsItsHelpHasThem) {
  for (const std::string& verb : verbs()) {
    const std::string help = bda({"help", verb}).out;
    for (const std::string& option : completed({verb, "-"}))
      EXPECT_THAT(help, HasSubstr(option.substr(0, option.find('\t')))) << verb;
  }
  EXPECT_THAT(completed({"undo", "--f"}), ElementsAre("--force\tPut back also what was changed since"));
  EXPECT_THAT(completed({"list", "--lib"}), IsEmpty());
  EXPECT_THAT(completed({"receive", "--port", ""}), ElementsAre("1\t", "4\t", "5\t", "6\t"));
  EXPECT_THAT(completed({"receive", "--port=5"}), ElementsAre("--port=5\t"));
  EXPECT_THAT(completed({"remove", "--", "--"}), IsEmpty());
}

TEST_F(Completion, knowsWhatEveryVerbAndOptionCallsItsWords) {
  std::set<std::string> options;  // which are called the same everywhere
  for (const std::string& verb : verbs()) {
    completed({verb, ""});
    completed({verb, "x", ""});
    for (const std::string& line : completed({verb, "-"}))
      if (const std::string option = line.substr(0, line.find('\t')); options.insert(option).second)
        completed({verb, option, ""});
  }
  EXPECT_GE(options.size(), 30u);
}

TEST_F(Completion, offersAddressesPartByPartWithTheNamesOfWhatTheLibraryHolds) {
  storeVoice();
  EXPECT_THAT(completed({"show", "voice:us"}),
              ElementsAre("voice:user1:\t128 names", "voice:user2:\t128 names", "voice:user3:\t128 names"));
  const std::vector<std::string> bank = completed({"copy", "voice:user1:"});
  ASSERT_EQ(bank.size(), 128u);
  EXPECT_EQ(bank[0], "voice:user1:1\t");
  EXPECT_EQ(bank[5], "voice:user1:6\tGrand Piano");
  EXPECT_EQ(bank[9], "voice:user1:10\t");
  EXPECT_THAT(completed({"show", "voice:user1:6..1"}),
              AllOf(Contains("voice:user1:6..10\t"), Not(Contains(HasSubstr("..1\t")))));
  EXPECT_THAT(completed({"copy", "0E", "0A", "05", "master:ed"}), ElementsAre(StartsWith("master:edit\t")));
  EXPECT_THAT(completed({"remove", "scr"}), IsEmpty());
  EXPECT_THAT(completed({"request", "scr"}), ElementsAre(StartsWith("screen\t")));
  EXPECT_THAT(completed({"favourite", "o"}), IsEmpty());
  EXPECT_THAT(completed({"favourite", "voice:user1:6", "o"}), ElementsAre("on\t", "off\t"));
  EXPECT_THAT(completed({"favourite", "voice:user1:6", "master:ed"}), ElementsAre(StartsWith("master:edit\t")));
  EXPECT_THAT(completed({"rename", "voice:user1:6", ""}), IsEmpty());
  EXPECT_THAT(completed({"apply", "system", ""}), ElementsAre(":files"));
}

TEST_F(Completion, offersSettingsTheirValuesAndTheEntriesOfTheHistory) {
  EXPECT_THAT(completed({"settings", "hist"}), ElementsAre(StartsWith("history\t"), StartsWith("history-size\t")));
  EXPECT_THAT(completed({"settings", "device-number", ""}), ElementsAre("all\t", "off\t"));
  EXPECT_THAT(completed({"find", "--kind", "ma"}), ElementsAre("master\t"));
  EXPECT_THAT(completed({"undo", ""}), IsEmpty());
  EXPECT_THAT(bda({"settings", "device-number", "5"}), Exits(0));
  EXPECT_THAT(completed({"undo", ""}), ElementsAre("1\tsettings"));
}

TEST_F(Completion, takesTheLibraryThatTheLineNames) {
  storeVoice();
  std::filesystem::rename(libraryFile(), directory / "other.db");
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"--library", "other.db", "show"}, {"show", "--library=other.db"}}) {
    std::vector<std::string> all = words;
    all.emplace_back("voice:user1:6");
    EXPECT_THAT(completed(all), Contains("voice:user1:6\tGrand Piano"));
  }
}

TEST_F(Completion, makesNoLibraryAndTellsNoErrors) {
  removeLibrary();
  EXPECT_THAT(completed({"show", "voice:user1:6"}), Contains("voice:user1:6\t"));
  EXPECT_THAT(completed({"undo", ""}), IsEmpty());
  EXPECT_THAT(files(), IsEmpty());
  EXPECT_FALSE(exists("library.db"));
  write("library.db", "this is no library, and long enough to be looked at: all of it is text.");
  EXPECT_THAT(completed({"show", "voice:user1:6"}), Contains("voice:user1:6\t"));
  EXPECT_THAT(completed({"--library="}), ElementsAre(":files"));
  EXPECT_THAT(completed({}), Not(IsEmpty()));
  EXPECT_THAT(completed({"show", "voice:user9:1.."}), IsEmpty());
  EXPECT_THAT(completed({"show", ".."}), IsEmpty());
  const Result homeless = bdaWithout("HOME", {"__complete", "show", "voice:user1:6"});
  EXPECT_THAT(homeless, Exits(0));
}

TEST_F(Completion, bashCompletesOnTheTerminal) {
  ASSERT_TRUE(isHere("bash")) << "bash is not installed";
  storeVoice();
  write("dump.syx", "");
  write("a=one.syx", "");
  Shell shell({"bash", "--norc", "--noprofile", "-i"}, directory, libraryFile(),
              "bind 'set bell-style none'\nset +o history\n"
              ". '" +
                  kScripts +
                  "/bda.bash'\n"
                  "_say() { printf '%s\\n' \"$READLINE_LINE\" >said; READLINE_LINE= READLINE_POINT=0; }\n"
                  "bind -x '\"\\C-t\": _say'\necho ready >said\n");
  completesOnTheTerminal(shell);
  write("b:one.syx", "");
  std::filesystem::create_directory(directory / "c:two");
  write("one.syx", "");
  write("xdump", "");
  // Files by their whole names, not by what stands behind a mark.
  EXPECT_EQ(shell.complete("bda receive x:dum"), "bda receive x:dum");
  EXPECT_EQ(shell.complete("bda receive x=dum"), "bda receive x=dum");
  EXPECT_EQ(shell.complete("bda receive b:on"), "bda receive b:one.syx ");
  EXPECT_EQ(shell.complete("bda receive b:"), "bda receive b:one.syx ");
  EXPECT_EQ(shell.complete("bda receive b\\:on"), "bda receive b\\:one.syx ");
  EXPECT_EQ(shell.complete("bda receive --trace=b:on"), "bda receive --trace=b:one.syx ");
  EXPECT_EQ(shell.complete("bda receive 'b:on"), "bda receive 'b:one.syx' ");
  EXPECT_EQ(shell.complete("bda receive c:tw"), "bda receive c:two/");
}

TEST_F(Completion, zshCompletesOnTheTerminal) {
  ASSERT_TRUE(isHere("zsh")) << "zsh is not installed";
  storeVoice();
  write("dump.syx", "");
  write("a=one.syx", "");
  Shell shell({"zsh", "-f", "-i"}, directory, libraryFile(),
              "fpath=('" + kScripts +
                  "' $fpath)\nautoload -Uz compinit\ncompinit -D -u\n"
                  "unsetopt BEEP AUTO_REMOVE_SLASH AUTO_MENU LIST_AMBIGUOUS\nLISTMAX=9999\n"
                  "_say() { print -r -- \"$BUFFER\" >said; BUFFER=; }\n"
                  "zle -N _say\nbindkey '^T' _say\nbindkey '^I' expand-or-complete\necho ready >said\n");
  completesOnTheTerminal(shell);
  Editor::Library(libraryFile()).store(kUserVoice6, Bytes{1, 2, 3}, "A\\B:C");
  shell.complete("bda show voice:user1:6");
  EXPECT_THAT(shell.drawn(), HasSubstr("A\\B:C"));
}
