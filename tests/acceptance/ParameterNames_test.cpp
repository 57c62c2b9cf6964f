// Names of parameters and values: shown behind them, and taken for their paths.

#include <string>
#include <vector>

#include "Program.h"

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Json = nlohmann::ordered_json;

namespace {

// A voice at voice:user1:6 with zeros, one at voice:user1:7 with ones: voice.common[4] is 0 and 1.
class ParameterNames : public Program {
 protected:
  ParameterNames() {
    write("zeros.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0)});
    write("ones.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1)});
    write("both.syx",
          {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0), unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 1)});
    EXPECT_THAT(bda({"receive", "-q", "both.syx"}), Exits(0));
    write("library.db.names", kNames);
  }
  std::vector<std::string> told(const std::vector<std::string>& arguments, int code = 0) {
    const Result run = bda(arguments);
    EXPECT_THAT(run, Exits(code));
    return lines(run.out);
  }
  std::vector<Json> objects(const std::vector<std::string>& arguments, int code = 0) {
    std::vector<Json> all;
    for (const std::string& line : told(arguments, code)) all.push_back(Json::parse(line));
    return all;
  }

  static constexpr const char* kNames =
      "# mine\n"
      "waveform 1 Grand Piano\n"
      "parameter voice.common[4] Volume\n"
      "value voice.common[4] 0 Off\n"
      "parameter voice.common[3] Pan Position\n"
      "parameter voice.element[0].params[0] Switch\n"
      "parameter voice.element[1].params[0] Switch\n"
      "parameter master.common[0] Volume\n"
      "value master.common[0] 1 Off\n"
      "value voice.common[5] 0 None\n";
};

constexpr const char* kDataByte30 = "52";  // of the voice's common block, after the header

}  // namespace

TEST_F(ParameterNames, showSaysThemBelowTheirGroup) {
  const std::vector<std::string> off = told({"show", "voice:user1:6"});
  EXPECT_THAT(off, Contains("  voice.common[4] (Volume): 0 (Off)"));
  EXPECT_THAT(off, Contains("  voice.common[3] (Pan Position): 0"));
  EXPECT_THAT(off, Contains("  voice.common[5]: 0 (None)"));
  EXPECT_THAT(off, Contains("  voice.element[1].params[0] (Switch): 0"));
  EXPECT_THAT(told({"show", "voice:user1:7"}),
              AllOf(Contains("  voice.common[4] (Volume): 1"), Not(Contains(HasSubstr("(Off)")))));
  EXPECT_THAT(told({"show", "--from", "ones.syx", "voice:user1:6"}), Contains("  voice.common[4] (Volume): 1"));
  EXPECT_THAT(told({"show", "system"}), Not(Contains(HasSubstr("("))));
}

TEST_F(ParameterNames, theJsonOfShowStaysWhatApplyTakes) {
  const Result shown = bda({"show", "--json", "voice:user1:6"});
  EXPECT_THAT(shown.out, Not(HasSubstr("Volume")));
  write("voice.json", shown.out);
  EXPECT_THAT(bda({"apply", "voice:user1:7", "voice.json"}), Exits(0));
}

TEST_F(ParameterNames, explainSaysThemOfAByte) {
  const std::vector<std::string> said = told({"explain", "zeros.syx", kDataByte30});
  EXPECT_THAT(said, Contains("voice.common[4] (Volume) = 0 (Off): bits 0F: the value, in the low nibble"));
  EXPECT_THAT(said, Contains("voice.common[3] (Pan Position) = 0: bits 70: the value, in the high nibble"));
  EXPECT_THAT(bda({"explain", "zeros.syx"}).out, HasSubstr("voice.common[4] (Volume), voice.common[3] (Pan Position)"));
  const Json byte = json({"explain", "zeros.syx", kDataByte30, "--json"});
  EXPECT_EQ(byte["parameters"][0]["path"], "voice.common[4]");
  EXPECT_EQ(byte["parameters"][0]["name"], "Volume");
  EXPECT_EQ(byte["parameters"][0]["valueName"], "Off");
  EXPECT_EQ(byte["parameters"][1]["name"], "Pan Position");
  EXPECT_FALSE(byte["parameters"][1].contains("valueName"));
}

TEST_F(ParameterNames, explainTakesThemForPaths) {
  const std::vector<std::string> byPath = told({"explain", "voice:user1:6", "voice.common[4]"});
  EXPECT_THAT(byPath, Not(IsEmpty()));
  EXPECT_EQ(told({"explain", "voice:user1:6", "Volume"}), byPath);
  EXPECT_EQ(told({"explain", "0E", "0A", "05", "Volume"}), byPath);
  EXPECT_EQ(told({"explain", "voice:user1:6", "Volume", "--json"}),
            told({"explain", "voice:user1:6", "voice.common[4]", "--json"}));
  EXPECT_EQ(told({"explain", "master:edit", "Volume"}), told({"explain", "master:edit", "master.common[0]"}));
  const Result unknown = bda({"explain", "voice:user1:6", "Volum"});
  EXPECT_THAT(unknown, Exits(1));
  EXPECT_THAT(unknown.err, HasSubstr("did you mean Volume?"));
  const Result several = bda({"explain", "voice:user1:6", "Switch"});
  EXPECT_THAT(several, Exits(1));
  EXPECT_THAT(several.err, HasSubstr("\"Switch\" is the name of voice.element[0].params[0] and "
                                     "voice.element[1].params[0]"));
}

TEST_F(ParameterNames, diffSaysThemOfWhatDiffers) {
  for (const std::vector<std::string>& files :
       {std::vector<std::string>{"zeros.syx", "ones.syx"}, {"library.db", "ones.syx"}}) {
    EXPECT_THAT(told({"diff", files[0], files[1]}, 3),
                Contains("voice:user1:6: voice.common[4] (Volume): 0 (Off) | 1"));
    std::vector<Json> named;
    for (const Json& line : objects({"diff", files[0], files[1], "--json"}, 3))
      if (line.contains("name")) named.push_back(line);
    EXPECT_THAT(named, Contains(Json({{"content", "voice:user1:6"},
                                      {"path", "voice.common[4]"},
                                      {"a", 0},
                                      {"b", 1},
                                      {"name", "Volume"},
                                      {"aName", "Off"}})));
  }
}

TEST_F(ParameterNames, diffTakesThoseBesideTheLibrariesThatItComparesFirst) {
  write("other.db", read("library.db"));
  write("other.db.names", "parameter voice.common[4] Level\n");
  EXPECT_THAT(bda({"diff", "other.db", "ones.syx"}).out, HasSubstr("voice.common[4] (Level): 0 | 1"));
  EXPECT_THAT(bda({"diff", "zeros.syx", "other.db"}).out, Not(HasSubstr("Volume")));
  write("mine", "parameter voice.common[4] Mine\n");
  EXPECT_THAT(bda({"diff", "other.db", "ones.syx", "--names", "mine"}).out, HasSubstr("voice.common[4] (Mine): 0 | 1"));
}

TEST_F(ParameterNames, findTakesThemInConditionsAndSaysThem) {
  EXPECT_THAT(told({"find", "--where", "Volume=1"}),
              ElementsAre(AllOf(HasSubstr("voice:user1:7 "), HasSubstr("  voice.common[4] (Volume): 1"))));
  EXPECT_THAT(told({"find", "--where", "Volume<1"}),
              ElementsAre(AllOf(HasSubstr("voice:user1:6 "), HasSubstr("  voice.common[4] (Volume): 0 (Off)"))));
  EXPECT_EQ(told({"find", "--where", "Volume = Off"}), told({"find", "--where", "voice.common[4]=0"}));
  EXPECT_THAT(told({"find", "--where", "voice.common[4]!=Off"}), ElementsAre(HasSubstr("voice:user1:7 ")));
  EXPECT_THAT(told({"find", "--where", "Pan Position=0", "--where", "voice.common[6]=0"}),
              ElementsAre(AllOf(HasSubstr("(Pan Position): 0"), Not(HasSubstr("[6]")))));
  const std::vector<Json> found = objects({"find", "--json", "--where", "Volume<100", "--where", "Volume=Off"});
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0]["parameters"],
            Json::parse(R"([{"path": "voice.common[4]", "name": "Volume", "value": 0, "valueName": "Off"}])"));
  EXPECT_FALSE(objects({"find", "--json"})[0].contains("parameters"));
}

TEST_F(ParameterNames, findTakesANameForWhatItIsInEachKind) {
  write("master.syx", {unit({0x0E, 0x70, 0x00}, BDA::List::master, 1)});
  ASSERT_THAT(bda({"receive", "-q", "master.syx"}), Exits(0));
  EXPECT_THAT(told({"find", "--where", "Volume=Off"}),
              ElementsAre(HasSubstr("voice:user1:6 "), AllOf(HasSubstr("master:1 "), HasSubstr("(Volume): 1 (Off)"))));
}

TEST_F(ParameterNames, findRefusesNamesThatSayNothingOrTooMuch) {
  for (const auto& [condition, why] : {std::pair("Volum=1", "did you mean Volume?"),
                                       {"Switch=1", "is the name of voice.element[0].params[0] and "},
                                       {"Volume=Loud", "Volume is a number"}}) {
    const Result run = bda({"find", "--where", condition});
    EXPECT_THAT(run, Exits(1));
    EXPECT_THAT(run.err, HasSubstr(why));
  }
}

TEST_F(ParameterNames, findTakesANameForWhatItIsInTheKindThatIsSearched) {
  write("performance.syx", {unit({0x0E, 0x40, 0x00}, BDA::List::performance, 1)});
  ASSERT_THAT(bda({"receive", "-q", "performance.syx"}), Exits(0));
  write("mine", "parameter voice.common[3] V\nparameter multi.common[3] V\nvalue multi.common[3] 1 One\n");
  EXPECT_THAT(bda({"find", "--names", "mine", "--where", "V=One"}), Exits(1));
  EXPECT_THAT(bda({"find", "--names", "mine", "--where", "V=One", "--kind", "voice"}), Exits(1));
  EXPECT_THAT(told({"find", "--names", "mine", "--where", "V=One", "--kind", "performance"}),
              ElementsAre(HasSubstr("multi.common[3] (V): 1 (One)")));
  EXPECT_THAT(told({"find", "--where", "voice.common[4]=1", "--kind", "performance"}, 3), IsEmpty());
}

TEST_F(ParameterNames, aPathIsWrittenInOneWay) {
  write("mine", "parameter voice.common[04] Mine\n");
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"find", "--where", "voice.common[04]=1"}, {"explain", "voice:user1:6", "voice.common[04]"}})
    EXPECT_THAT(bda(words), Exits(1)) << testing::PrintToString(words);
  EXPECT_THAT(bda({"find", "--where", "voice.common[04]=1"}).err, HasSubstr("expected voice.common[0] to "));
  const Result names = bda({"show", "voice:user1:6", "--names", "mine"});
  EXPECT_THAT(names, Exits(2));
  EXPECT_THAT(names.err, HasSubstr("line 1: \"voice.common[04]\": expected voice.common[0] to "));
}

TEST_F(ParameterNames, aLineThatIsNoneIsToldByItsNumberAndNothingIsSaid) {
  write("bad", "parameter voice.common[4] Volume\nparameter voice.common[400] Pan\n");
  for (const std::vector<std::string>& verb : {std::vector<std::string>{"show", "voice:user1:6"},
                                               {"explain", "zeros.syx"},
                                               {"explain", "voice:user1:6", "Volume"},
                                               {"diff", "zeros.syx", "ones.syx"},
                                               {"find"},
                                               {"request", "names:waveforms:1"}}) {
    std::vector<std::string> words = verb;
    words.insert(words.end(), {"--names", "bad"});
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(2));
    EXPECT_THAT(run.err, HasSubstr("bad: line 2: \"voice.common[400]\": expected voice.common[0] to voice.common[92]"));
    EXPECT_EQ(run.out, "");
  }
}

TEST_F(ParameterNames, theSameFileNamesWaveformsAndParameters) {
  EXPECT_THAT(bda({"request", "names:waveforms:1"}).out, HasSubstr("Grand Piano"));
}
