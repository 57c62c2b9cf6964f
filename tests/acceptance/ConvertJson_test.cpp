// convert: what show printed becomes dumps.

#include <tuple>

#include "Library.h"
#include "Program.h"

using Editor::BulkAddress;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using Json = nlohmann::ordered_json;

namespace {

const Bytes kTrigger = blockDump({0x11, 0x00, 0x00});

class ConvertJson : public Program {
 protected:
  static Bytes voice(BulkAddress header) { return unit(header, BDA::List::normalVoice, 'A'); }
  // voice:user1:6 and 7 as JSON, an object a line.
  std::string twoVoices() {
    write("a.syx", {voice({0x0E, 0x0A, 0x05}), voice({0x0E, 0x0A, 0x06})});
    EXPECT_THAT(bda({"receive", "-q", "a.syx"}), Exits(0));
    return bda({"show", "voice:user1:6..7", "--json"}).out;
  }
  // As `show` prints it among others.
  std::string additional() {
    Json object = json({"show", "additional", "--json"});
    object["target"] = "additional";
    return object.dump() + "\n";
  }
};

}  // namespace

TEST_F(ConvertJson, whatShowPrintedBecomesDumps) {
  write("a.syx", {voice({0x0E, 0x0A, 0x05}), unit({0x0E, 0x28, 0x01}, BDA::List::drumVoice, 'D'), systemDump(1)});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  for (const char* const target : {"voice:user1:6", "drum:user:2", "system", "multi:edit", "file:voice:user1:6"}) {
    write("a.json", bda({"show", target, "--json"}).out);
    ASSERT_THAT(bda({"request", target, "-o", "asked.syx"}), Exits(0)) << target;
    const Result run = bdaWithout("HOME", {"convert", "a.json", "--place", target, "-o", "a.syx"});
    EXPECT_THAT(run, Exits(0)) << target;
    EXPECT_EQ(read("a.syx").substr(0, read("asked.syx").size()), read("asked.syx")) << target;
    EXPECT_THAT(bda({"verify", "a.syx"}), Exits(0)) << target;
  }
}

TEST_F(ConvertJson, jsonThatSaysItsTargetNeedsNoPlace) {
  const std::string objects = twoVoices();
  const Result run = bda({"convert", "-", "-o", "b.syx"}, objects);
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(read("b.syx"), bda({"request", "voice:user1:6..7", "-o", "-"}).out);
  EXPECT_THAT(bda({"convert", "-", "-o", "b.syx"}, bda({"show", "voice:user1:6", "--json"}).out), Exits(1));
}

TEST_F(ConvertJson, jsonThatIsForAFileDumpBecomesOne) {
  write("a.syx", {voice({0x0E, 0x0A, 0x05})});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  Json object = json({"show", "voice:user1:6", "--json"});
  object["target"] = "file:voice:user1:6";
  EXPECT_THAT(bda({"convert", "-", "-o", "b.syx"}, object.dump()), Exits(0));
  EXPECT_EQ(read("b.syx"), bda({"request", "file:voice:user1:6", "-o", "-"}).out + text(kTrigger));
}

TEST_F(ConvertJson, theTriggerOfANewFileDumpWritesNoOtherOne) {
  write("a.syx", {voice({0x0E, 0x0A, 0x05})});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  Json object = json({"show", "voice:user1:6", "--json"});
  object["target"] = "file:voice:user1:6";
  write("a.json", object.dump());
  const Bytes other = fileDump({0x0C, 0x50, 0x02}, "Held", {1});
  write("held.syx", {other});
  const Result run = bda({"convert", "held.syx", "a.json", "-o", "b.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("needs a write trigger"));
  EXPECT_FALSE(exists("b.syx"));
  EXPECT_THAT(bda({"convert", "a.json", "held.syx", "-o", "b.syx"}), Exits(0));
  EXPECT_EQ(read("b.syx"), bda({"request", "file:voice:user1:6", "-o", "-"}).out + text(kTrigger) + text(other));
  write("written.syx", {other, kTrigger});
  EXPECT_THAT(bda({"convert", "written.syx", "a.json", "-o", "b.syx"}), Exits(0));
}

TEST_F(ConvertJson, jsonIsRefusedByItsKindOrItsValues) {
  Json system = json({"show", "system", "--json"});
  write("a.json", system.dump());
  EXPECT_THAT(bda({"convert", "a.json", "--place", "voice:edit", "-o", "b.syx"}), Exits(3));
  system["system"]["masterEq"][1] = 200;
  write("wide.json", system.dump());
  const Result wide = bda({"convert", "wide.json", "--place", "system", "-o", "b.syx"});
  EXPECT_THAT(wide, Exits(3));
  EXPECT_THAT(wide.err, HasSubstr("system.masterEq[1]: 200 cannot be carried, it would arrive as 72"));
  write("bad.json", "{\"system\": 1}");
  EXPECT_THAT(bda({"convert", "bad.json", "--place", "system", "-o", "b.syx"}), Exits(2));
  write("cut.json", "{\"system\"");
  EXPECT_THAT(bda({"convert", "cut.json", "--place", "system", "-o", "b.syx"}), Exits(2));
  EXPECT_FALSE(exists("b.syx"));
  EXPECT_THAT(bda({"list", "a.json"}), Exits(2));  // for others it is none of messages
}

TEST_F(ConvertJson, settingsThatNoMessageCarriesAreNamed) {
  Json system = json({"show", "system", "--json"});
  system["system"]["utility"][50] = 0;
  system["system"]["utility"][51] = 16;
  write("a.json", system.dump());
  const Result run = bda({"convert", "a.json", "--place", "system", "-o", "b.syx"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("system: no message carries 2 parameters: system.utility[50], system.utility[51]"));
  EXPECT_THAT(bda({"verify", "b.syx"}), Exits(0));
}

TEST_F(ConvertJson, jsonMayBeginWithAMarkAndHoldAnyCharacter) {
  write("a.json", "\xEF\xBB\xBF" + twoVoices());
  EXPECT_THAT(bda({"convert", "a.json", "-o", "b.syx"}), Exits(0));
  EXPECT_THAT(bda({"verify", "b.syx"}).out, HasSubstr("voice:user1:7: complete"));
  Json object = json({"show", "voice:user1:6", "--json"});
  object["target"] = "voice:\xF0\x9F\x8E\xB9";
  write("a.json", "\n" + object.dump());
  EXPECT_THAT(bda({"convert", "a.json", "-o", "b.syx"}).err, HasSubstr("target: "));
}

TEST_F(ConvertJson, whatIsNotPlacedComesFromNowhere) {
  write("a.syx", {voice({0x0E, 0x0A, 0x05})});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  write("a.json", bda({"show", "voice:user1:6..7", "--json"}).out);
  write("a.json", lines(read("a.json")).front());
  const Result run = bda({"convert", "a.json", "-o", "b.syx"});
  EXPECT_THAT(run.err, Not(HasSubstr("->")));
  EXPECT_FALSE(objects({"convert", "a.json", "-o", "b.syx", "--json"}).at(0).contains("from"));
}

TEST_F(ConvertJson, whatNoMessageCarriesIsNamedAndTheOthersAreWritten) {
  const std::string voices = twoVoices();
  ASSERT_THAT(bda({"convert", "-", "-o", "b.syx"}, voices), Exits(0));
  const std::string first = lines(voices).front() + "\n";
  const Result run = bda({"convert", "-", "-o", "c.syx"}, first + additional() + voices.substr(first.size()));
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("additional: no message carries 1 parameter: additional.params[0]\n"));
  EXPECT_THAT(run.err, HasSubstr(", 2 units: "));
  EXPECT_EQ(read("c.syx"), read("b.syx"));
  const Result split = bda({"convert", "-", "--split", "dir", "--json"}, additional() + voices);
  EXPECT_THAT(split, Exits(3));
  EXPECT_THAT(split.err, HasSubstr("additional: no message carries 1 parameter"));
  ASSERT_THAT(lines(split.out), SizeIs(2));
  EXPECT_EQ(Json::parse(lines(split.out).back())["unit"], "voice:user1:7");
  const Result alone = bda({"convert", "-", "-o", "d.syx"}, additional());
  EXPECT_THAT(alone, Exits(3));
  EXPECT_THAT(alone.err, HasSubstr("no message carries 1 parameter"));
  EXPECT_THAT(alone.err, HasSubstr("nothing is written"));
  EXPECT_FALSE(exists("d.syx"));
  EXPECT_THAT(bda({"convert", "-", "-o", "d.syx"}, R"({"target": "additional", "additional": 1})"), Exits(2));
}

TEST_F(ConvertJson, whatIsWrongIsToldWithItsFileAndLine) {
  const std::string voices = twoVoices();
  const std::string first = lines(voices).front();
  Json wide = Json::parse(first);
  wide["voice"]["common"][0] = 300;
  Json elsewhere = Json::parse(first);
  elsewhere["target"] = "voice:user9:6";
  Json homeless = Json::parse(first);
  homeless.erase("target");
  for (const auto& [wrong, code, why] :
       {std::tuple(wide.dump(), 2, "line 3: voice:user1:6: voice.common[0]: 300 is no integer from 0 to 255"),
        {elsewhere.dump(), 2, "line 3: target: "},
        {homeless.dump(), 1, "line 3: JSON that does not say its target"},
        {std::string("{\"voice\" 1}"), 2, "line 3: "}}) {
    write("v.json", first + "\n\n" + wrong + "\n");
    const Result run = bda({"convert", "v.json", "-o", "b.syx"});
    EXPECT_THAT(run, Exits(code));
    EXPECT_THAT(run.err, HasSubstr(std::string("v.json: ") + why));
  }
  write("v.json", lines(voices).back());
  write("one.json", wide.dump());
  const Result placed = bda({"convert", "v.json", "one.json", "--place", "voice:user2", "-o", "b.syx"});
  EXPECT_THAT(placed, Exits(2));
  EXPECT_THAT(placed.err, HasSubstr("one.json: voice:user2:2: voice.common[0]: 300 is no integer"));
  const Result kind = bda({"convert", "v.json", "--place", "master:1", "-o", "b.syx"});
  EXPECT_THAT(kind, Exits(3));
  EXPECT_THAT(kind.err, HasSubstr("v.json: master:1: models of another kind do not fit"));
  EXPECT_FALSE(exists("b.syx"));
}

TEST_F(ConvertJson, aLineThatIsNoneIsToldByItsNumber) {
  const std::string good = "{\"target\": \"voice:user1:1\"}\n";
  for (const char* const wrong : {"garbage\n", "{\"target\": 5", "{\"target\": \"voi"}) {
    write("some.json", good + good + wrong);
    const Result run = bda({"convert", "some.json", "-o", "out.syx"});
    EXPECT_THAT(run, Exits(2)) << wrong;
    EXPECT_THAT(run.err, HasSubstr("some.json: line 3: ")) << wrong;
  }
}
