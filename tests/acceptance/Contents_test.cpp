// contents: what the library holds, as lines, as a grid on a terminal, as JSON.

#include "contents/Library.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "Library.h"
#include "Program.h"
#include "contents/ContentFormat.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

extern char** environ;

namespace {

constexpr Editor::ContentId userVoice(std::uint32_t number) { return {4, 0x3F0800 + number - 1}; }
constexpr Editor::ContentId kRemote3{103, 2};

class Contents : public Program {
 protected:
  // A fresh content of that kind.
  void store(Editor::ContentId id, const std::string& name) {
    Editor::Library(directory / "library.db").store(id, Editor::encodeContent(Editor::emptySetFor(id)), name);
  }

  std::vector<std::string> names(const std::vector<std::string>& addresses) {
    std::vector<std::string> words{"contents", "--json"};
    words.insert(words.end(), addresses.begin(), addresses.end());
    std::vector<std::string> found;
    for (const Json& content : objects(words)) found.push_back(content["content"]);
    return found;
  }

  std::string hash(const std::string& address) {
    return Json::parse(bda({"contents", "--json", address}).out).value("hash", "none");
  }

  // What `bda contents` says when standard output is a terminal of that width.
  std::vector<std::string> onTerminal(std::uint16_t columns) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_EQ(::grantpt(terminal), 0);
    EXPECT_EQ(::unlockpt(terminal), 0);
    const winsize size{.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
    const int other = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
    EXPECT_EQ(::ioctl(other, TIOCSWINSZ, &size), 0);
    std::string program = BDA_PROGRAM;
    std::string option = "--library=" + (directory / "library.db").string();
    std::string verb = "contents";
    char* argv[] = {program.data(), option.data(), verb.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, other, 1);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    EXPECT_EQ(posix_spawn(&child, BDA_PROGRAM, &actions, nullptr, argv, environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(other);
    std::string said;  // up to the end of the program: the terminal has no other user then
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(terminal, buffer, sizeof buffer)) > 0;)
      said.append(buffer, std::size_t(count));
    ::close(terminal);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    std::vector<std::string> shown = lines(said);
    for (std::string& line : shown)
      if (!line.empty() && line.back() == '\r') line.pop_back();
    return shown;
  }
};

}  // namespace

TEST_F(Contents, editBuffersAndSystemAreCountedAndListedOnceTheyAreStored) {
  EXPECT_EQ(bda({"-q", "settings"}).err, "");
  EXPECT_EQ(bda({"contents"}).err, "nothing stored\n");
  store(userVoice(6), "Pad");
  EXPECT_EQ(bda({"contents"}).err, "1 content stored\n");
  write("a.syx", {unit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice, 0x41)});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  EXPECT_EQ(bda({"contents"}).err, "1 content and 1 edit buffer stored\n");
  ASSERT_THAT(bda({"settings", "device-number", "2"}), Exits(0));
  write("b.syx", {unit({0x0E, 0x7F, 0x00}, BDA::List::master, 0x42)});
  ASSERT_THAT(bda({"receive", "b.syx", "--library", "library.db"}), Exits(3));  // for device 1
  ASSERT_THAT(bda({"settings", "device-number", "1"}), Exits(0));
  ASSERT_THAT(bda({"receive", "b.syx"}), Exits(0));
  write("additional.json", bda({"show", "additional", "--json"}).out);
  ASSERT_THAT(bda({"apply", "additional", "additional.json"}), Exits(0));
  const Result run = bda({"contents"});
  EXPECT_EQ(run.err, "1 content, 2 edit buffers, the system settings and the additional parameters stored\n");
  EXPECT_EQ(run.out,
            "voice:user1:\n"
            "  voice:user1:6            Pad\n"
            "edit buffers:\n"
            "  voice:edit               AAAAAAAAAAAAAAAAAAAA\n"
            "  master:edit              BBBBBBBBBBBBBBBBBBBB\n"
            "system settings:\n"
            "  system\n"
            "  additional\n");
  EXPECT_THAT(lines(bda({"contents", "--json"}).out), SizeIs(1));
  EXPECT_EQ(bda({"contents", "master:edit", "system"}).err, "1 edit buffer and the system settings stored there\n");
}

TEST_F(Contents, banksRangesAndAddressesSelect) {
  for (const std::uint32_t number : {1u, 6u, 17u, 128u}) store(userVoice(number), "Voice");
  store(kRemote3, "Remote");
  store(kMulti1, "Multi");
  library().setFavourite(userVoice(9), 1);
  EXPECT_THAT(names({"voice:user1"}),
              ElementsAre("voice:user1:1", "voice:user1:6", "voice:user1:9", "voice:user1:17", "voice:user1:128"));
  EXPECT_THAT(names({"voice:user1:1..16"}), ElementsAre("voice:user1:1", "voice:user1:6", "voice:user1:9"));
  EXPECT_THAT(names({"remote", "0E", "0A", "10"}), ElementsAre("voice:user1:17", "remote:3"));
  EXPECT_THAT(names({"file:voice:user1:128", "file:multi"}), ElementsAre("file:multi:1", "voice:user1:128"));
  EXPECT_THAT(names({"voice:user2"}), IsEmpty());
  EXPECT_EQ(bda({"contents", "voice:user1:1..6"}).err, "2 contents stored there\n");
  EXPECT_EQ(bda({"contents", "voice:user2"}).err, "nothing stored there\n");
}

TEST_F(Contents, whatIsNoBankIsWrongUsage) {
  const Result run = bda({"contents", "voice:usr1"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("\"voice:usr1\": did you mean voice:user1?"));
  EXPECT_THAT(bda({"contents", "voice:user1:2..1"}), Exits(1));
  EXPECT_THAT(bda({"contents", "system:common"}), Exits(1));
  EXPECT_THAT(bda({"contents", "--grid", "--lines"}), Exits(1));
  EXPECT_THAT(bda({"contents", "--json", "--grid"}), Exits(1));
}

TEST_F(Contents, aTerminalGetsAGridThatFitsItsWidth) {
  for (std::uint32_t number = 1; number <= 128; ++number) store(userVoice(number), "Voice " + std::to_string(number));
  store(kRemote3, "A remote of no small name");
  {
    Editor::Library library(directory / "library.db");
    library.setFavourite(userVoice(2), 1);
    library.store(userVoice(3), Bytes{1, 2, 3}, "\xC4tna");
    for (std::uint32_t number = 0; number < 100; ++number) library.setFavourite({4, 0x3F0900 + number}, 1);
  }
  for (const std::uint16_t width : std::initializer_list<std::uint16_t>{40, 80, 132, 200}) {
    const std::vector<std::string> shown = onTerminal(width);
    std::size_t widest = 0;
    for (const std::string& line : shown) widest = std::max(widest, line.size());
    EXPECT_LE(widest, width + 1u);  // one letter of two bytes
    EXPECT_GT(widest, width - 24u);
    EXPECT_EQ(shown.front(), "voice:user1:");
    EXPECT_THAT(shown, testing::Contains(HasSubstr("  2 Voice 2 *")));
    EXPECT_THAT(shown, testing::Contains(HasSubstr("  3 \u00C4tna (opaque)")));
    EXPECT_THAT(shown, testing::Contains(HasSubstr("128 Voice 128")));
  }
  EXPECT_THAT(onTerminal(80).size(), testing::Lt(60u));
}

TEST_F(Contents, aGridCanBeAskedForAndIs80WideWithoutATerminal) {
  for (std::uint32_t number = 1; number <= 40; ++number) store(userVoice(number), "Voice");
  const std::vector<std::string> grid = lines(bda({"contents", "--grid"}).out);
  ASSERT_THAT(grid, SizeIs(7));  // seven columns of nine, and two between them
  EXPECT_EQ(grid[1], "    1 Voice    7 Voice   13 Voice   19 Voice   25 Voice   31 Voice   37 Voice");
  EXPECT_THAT(lines(bda({"contents"}).out), SizeIs(41));
  EXPECT_EQ(bda({"contents", "--lines"}).out, bda({"contents"}).out);
}

TEST_F(Contents, theHashSaysWhatAContentIsWhateverItIsCalled) {
  write("a.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  Json voice = json({"show", "voice:user1:6", "--json"});
  voice["voice"]["name"] = "Other";
  voice["multi"]["name"] = "Another";
  write("renamed.json", voice.dump());
  ASSERT_THAT(bda({"apply", "voice:user2:1", "renamed.json"}), Exits(0));
  voice["voice"]["common"][30] = 1;
  write("changed.json", voice.dump());
  ASSERT_THAT(bda({"apply", "voice:user2:2", "changed.json"}), Exits(0));
  EXPECT_THAT(hash("voice:user1:6"), testing::MatchesRegex("[0-9a-f]{16}"));
  EXPECT_EQ(hash("voice:user2:1"), hash("voice:user1:6"));
  EXPECT_NE(hash("voice:user2:2"), hash("voice:user1:6"));
}

TEST_F(Contents, theHashOfOpaqueBytesIsThatOfTheBytes) {
  const std::string bytes = "foobar";
  library().store(userVoice(1), Bytes(bytes.begin(), bytes.end()), "any");
  EXPECT_EQ(hash("voice:user1:1"), "85944171f73967e8");
}
