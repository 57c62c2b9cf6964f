// The words of a command line reach the verbs as they were typed.

#include "Library.h"
#include "Program.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class WordsAsTyped : public Program {
 protected:
  static Bytes voice(std::uint8_t value) { return unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, value); }
};

}  // namespace

TEST_F(WordsAsTyped, aFileInBracketsIsThatFile) {
  for (const char* name : {"[x]", "[a,b]", "[]", "++", "x]"}) {
    for (const char* other : {"x", "a", "b"}) write(other, {systemDump(1)});
    write(name, {voice(0x41)});
    for (const char* verb : {"list", "verify", "receive"})
      for (const bool isBehind : {false, true}) {
        std::vector<std::string> words{verb, "--json"};
        if (isBehind) words.emplace_back("--");
        words.emplace_back(name);
        const Result run = bda(words);
        EXPECT_THAT(run, Exits(0)) << name;
        EXPECT_THAT(run.out, AllOf(HasSubstr("0E 0A 05"), Not(HasSubstr("00 00 00")))) << verb << " " << name;
      }
    EXPECT_THAT(bda({"explain", name, "7"}).out, HasSubstr("0E 0A 05")) << name;
    EXPECT_THAT(bda({"convert", name, "-o", "copy.syx"}), Exits(0));
    EXPECT_EQ(read("copy.syx"), read(name)) << name;
    EXPECT_THAT(bda({"salvage", name, "-o", "good.syx"}), Exits(0));
    EXPECT_EQ(read("good.syx"), read(name)) << name;
    EXPECT_THAT(bda({"diff", name, "copy.syx"}), Exits(0)) << name;
    EXPECT_THAT(bda({"restore", name, "--dry-run"}), Exits(0)) << name;
  }
}

TEST_F(WordsAsTyped, namesAndTermsKeepTheirBrackets) {
  write("a.syx", {voice(0x41)});
  ASSERT_THAT(bda({"receive", "-q", "a.syx"}), Exits(0));
  for (const char* name : {"[Pad]", "[a,b]", "++", "[[x]]"}) {
    ASSERT_THAT(bda({"rename", "voice:user1:6", name}), Exits(0));
    EXPECT_EQ(json({"contents", "--json", "voice:user1:6"})["name"], name);
    EXPECT_THAT(bda({"find", name}), Exits(0)) << name;
    EXPECT_THAT(bda({"find", "--where", std::string("voice.name=") + name}), Exits(0)) << name;
  }
  EXPECT_THAT(bda({"find", "[x]", "[[x]]"}), Exits(0));
  EXPECT_THAT(bda({"find", "[Pad]"}), Exits(3));
  ASSERT_THAT(bda({"rename", "voice:user1:6", "x"}), Exits(0));
  EXPECT_THAT(bda({"find", "[x]"}), Exits(3));
}

TEST_F(WordsAsTyped, listsOfOptionsKeepThem) {
  write("a.syx", {voice(0x41)});
  write("[a.syx]", {unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 0x42)});
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"find", "--in", "[a.syx]", "--json"}, {"find", "--in=[a.syx]", "--json"}})
    EXPECT_THAT(bda(words).out, AllOf(HasSubstr("voice:user1:7"), Not(HasSubstr("voice:user1:6"))));
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"convert", "a.syx", "-o", "b.syx", "--select", "[voice:user1:6]"},
        {"convert", "a.syx", "-o", "b.syx", "--select=[voice:user1:6]"}}) {
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(1));
    EXPECT_THAT(run.err, HasSubstr("\"[voice:user1:6]\""));
  }
}

TEST_F(WordsAsTyped, whatIsNotExpectedIsToldAsItWasTyped) {
  EXPECT_THAT(bda({"[list]"}).err, HasSubstr("there is no verb \"[list]\": did you mean list? ("));
  EXPECT_THAT(bda({"check", "[a,b]"}).err, HasSubstr("The following argument was not expected: [a,b] ("));
  EXPECT_THAT(bda({"check", "x]", "++"}).err, HasSubstr("The following arguments were not expected: x] ++ ("));
  EXPECT_THAT(bda({"undo", "[1]"}).err, HasSubstr("\"[1]\": expected a number"));
}
