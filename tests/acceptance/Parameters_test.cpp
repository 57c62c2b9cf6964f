// show, apply, settings, contents: the library's values in and out.

#include "Program.h"

#include "contents/Library.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class Parameters : public Program {
 protected:
  // Stores what one unit holds, all of its bytes being `value`.
  void store(Editor::BulkAddress header, BDA::List list, std::uint8_t value = 1) {
    write("store.syx", {unit(header, list, value)});
    ASSERT_THAT(bda({"receive", "store.syx"}), Exits(0));
    std::filesystem::remove(directory / "store.syx");
  }
};

}  // namespace

TEST_F(Parameters, theSystemOfAFreshLibraryHasReceiveBulkOnAndDeviceNumber1) {
  const Json system = json({"show", "system", "--json"})["system"];
  EXPECT_EQ(system["utility"].size(), 52u);
  EXPECT_EQ(system["utility"][50], 1);
  EXPECT_EQ(system["utility"][51], 0);
  EXPECT_EQ(system["common"], Json(std::vector<int>(50)));
  std::vector<std::string> keys;
  for (const auto& [key, value] : system.items()) keys.push_back(key);
  EXPECT_THAT(keys, ElementsAre("common", "tune", "adPart", "masterEq", "masterEffect", "masterEffectSettings",
                                "quickSetup", "sequencer", "remote", "utility"));
}

TEST_F(Parameters, whatAHeaderOpensIsShown) {
  const auto keysOf = [&](const char* target) {
    std::string keys;
    const Json shown = json({"show", target, "--json"});
    for (const auto& [key, value] : shown.items()) keys += key + ' ';
    return keys;
  };
  EXPECT_EQ(keysOf("voice:edit"), "voice multi arpeggio ");
  EXPECT_EQ(keysOf("drum:edit"), "voice multi arpeggio ");
  EXPECT_EQ(keysOf("voice:part:4"), "voice multi arpeggio ");
  EXPECT_EQ(keysOf("multi:edit"), "multi arpeggio ");
  EXPECT_EQ(keysOf("performance:edit"), "multi arpeggio ");
  EXPECT_EQ(keysOf("master:edit"), "master ");
  EXPECT_EQ(keysOf("remote:edit"), "remote ");
  EXPECT_EQ(keysOf("additional"), "additional ");
}

TEST_F(Parameters, applyIsTheInverseOfShow) {
  store({0x0E, 0x0A, 0x05}, BDA::List::normalVoice);
  store({0x0E, 0x28, 0x03}, BDA::List::drumVoice);
  store({0x0E, 0x41, 0x11}, BDA::List::performance, 0);
  store({0x0E, 0x70, 0x00}, BDA::List::master);
  store({0x0E, 0x60, 0x00}, BDA::List::remote);
  for (const char* target :
       {"voice:user1:6", "drum:user:4", "performance:b:18", "master:1", "remote:1", "system", "additional",
        "voice:edit", "drum:edit", "voice:part:4", "multi:edit", "performance:edit", "master:edit", "remote:edit"}) {
    const Result shown = bda({"show", target, "--json"});
    ASSERT_THAT(shown, Exits(0));
    write("a.json", shown.out);
    EXPECT_THAT(bda({"apply", target, "a.json", "--library", "other.db"}), Exits(0)) << target;
    EXPECT_EQ(bda({"show", target, "--json", "--library", "other.db"}).out, shown.out) << target;
  }
}

TEST_F(Parameters, applyTakesThePlaceOfEveryValue) {
  Json system = json({"show", "system", "--json"});
  system["system"]["common"][0] = 5;
  system["system"]["quickSetup"][2]["params"][0] = 1;
  system["system"]["utility"][51] = 3;
  write("a.json", system.dump());
  EXPECT_THAT(bda({"apply", "system", "a.json"}), Exits(0));
  EXPECT_EQ(json({"show", "system", "--json"}), system);
  EXPECT_EQ(bda({"settings", "device-number"}).out, "4\n");
  EXPECT_THAT(bda({"apply", "system", "-"}, system.dump()), Exits(0));
}

TEST_F(Parameters, applyToABankSlotFillsIt) {
  write("a.json", bda({"show", "master:edit", "--json"}).out);
  EXPECT_THAT(bda({"show", "master:7", "--json"}), Exits(3));
  EXPECT_THAT(bda({"apply", "0E", "70", "06", "a.json"}), Exits(0));
  EXPECT_THAT(bda({"show", "master:7", "--json"}), Exits(0));
  EXPECT_THAT(bda({"request", "master:7"}), Exits(0));
}

TEST_F(Parameters, applyRefusesWhatDoesNotFitTheTargetAndNamesThePath) {
  const Json good = json({"show", "multi:edit", "--json"});
  Json missing = good;
  missing["multi"]["part"][3].erase("extra");
  Json unknown = good;
  unknown["multi"]["colour"] = 1;
  Json tooLong = good;
  tooLong["multi"]["common"].push_back(0);
  Json tooBig = good;
  tooBig["arpeggio"]["part"][2]["params"][7] = 256;
  Json longName = good;
  longName["multi"]["name"] = "a name of more than twenty characters";
  const struct {
    std::string text;
    const char* path;
  } wrong[] = {{missing.dump(), "multi.part[3].extra"},
               {unknown.dump(), "multi.colour"},
               {tooLong.dump(), "multi.common"},
               {tooBig.dump(), "arpeggio.part[2].params[7]"},
               {longName.dump(), "multi.name"},
               {"{}", "multi"},
               {"no JSON", "a.json"}};
  const std::string before = bda({"show", "multi:edit", "--json"}).out;
  for (const auto& [text, path] : wrong) {
    write("a.json", text);
    const Result run = bda({"apply", "multi:edit", "a.json"});
    EXPECT_THAT(run, Exits(2)) << path;
    EXPECT_THAT(run.err, HasSubstr(path));
    EXPECT_THAT(run.err, HasSubstr("a.json: "));
  }
  EXPECT_EQ(bda({"show", "multi:edit", "--json"}).out, before);
  EXPECT_THAT(bda({"apply", "multi:edit", "none.json"}), Exits(2));
}

TEST_F(Parameters, applyRefusesWhatTheBlocksCannotCarryAndNamesThePath) {
  const Json good = json({"show", "system", "--json"});
  Json eightBit = good;
  eightBit["system"]["masterEq"][1] = 200;
  Json name = good;
  name["system"]["quickSetup"][1]["name"] = "\u00E9t\u00E9";
  Json device = good;
  device["system"]["utility"][51] = 18;
  const struct {
    Json json;
    const char* path;
  } wrong[] = {{eightBit, "system.masterEq[1]: 200 cannot be carried, it would arrive as 72"},
               {name, "system.quickSetup[1].name: "},
               {device, "system.utility[51]: 18 is no device number"}};
  for (const auto& [json, path] : wrong) {
    write("a.json", json.dump());
    const Result run = bda({"apply", "system", "a.json"});
    EXPECT_THAT(run, Exits(3));
    EXPECT_THAT(run.err, HasSubstr(std::string("system: ") + path));
  }
  EXPECT_EQ(json({"show", "system", "--json"}), good);
}

TEST_F(Parameters, applyKeepsParametersThatNoBlockHolds) {
  Json system = json({"show", "system", "--json"});
  system["system"]["utility"][3] = 200;
  write("a.json", system.dump());
  EXPECT_THAT(bda({"apply", "system", "a.json"}), Exits(0));
  EXPECT_EQ(json({"show", "system", "--json"}), system);
}

TEST_F(Parameters, namesThatNoCableCarriesAreRefusedInEditBuffersToo) {
  const struct {
    const char* target;
    const char* model;
    const char* name;
  } named[] = {{"voice:edit", "voice", "name"},   {"drum:edit", "voice", "name"},
               {"voice:part:4", "voice", "name"}, {"performance:edit", "multi", "name"},
               {"master:edit", "master", "name"}, {"remote:edit", "remote", "name1"}};
  for (const auto& [target, model, name] : named) {
    Json models = json({"show", target, "--json"});
    models[model][name] = "\u00FC";
    write("a.json", models.dump());
    const Result run = bda({"apply", target, "a.json"});
    EXPECT_THAT(run, Exits(3)) << target;
    EXPECT_THAT(run.err, HasSubstr(std::string(model) + "." + name + ": \"\u00FC\" cannot be carried"));
  }
}

TEST_F(Parameters, showNamesWhatIsNotThere) {
  const Result run = bda({"show", "voice:user1:6"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:6: nothing is stored there"));
}

TEST_F(Parameters, bytesOfAnotherFormatAreKeptAndNeitherShownNorReplaced) {
  write("a.syx", {dump({0x0C, 0x0A, 0x05}, {0, 2, 0x00, 0x41, 0, 2, 0x00, 0x42}), dump({0x11, 0, 0})});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  EXPECT_THAT(bda({"contents"}).out, HasSubstr("opaque"));
  EXPECT_THAT(bda({"show", "voice:user1:6"}), Exits(3));
  write("a.json", bda({"show", "voice:edit", "--json"}).out);
  EXPECT_THAT(bda({"apply", "voice:user1:6", "a.json"}), Exits(3));
  EXPECT_THAT(bda({"request", "voice:user1:6"}), Exits(3));
  EXPECT_THAT(bda({"request", "file:voice:user1:6", "write", "-o", "back.syx"}), Exits(0));
  EXPECT_EQ(read("back.syx"), read("a.syx"));
}

TEST_F(Parameters, showPrintsPathsAndValues) {
  const Result run = bda({"show", "system"});
  EXPECT_THAT(run.out, HasSubstr("system.sequencer: 0 0 0 0 0 0 0\n"));
  EXPECT_THAT(run.out, HasSubstr("system.quickSetup[5].name: \"\"\n"));
}

TEST_F(Parameters, severalTargetsAreShownWithHeadings) {
  const Result run = bda({"show", "system", "0E", "7F", "00", "master:edit"});
  EXPECT_THAT(run, Exits(0));
  const std::string master = bda({"show", "master:edit"}).out;
  EXPECT_EQ(run.out, "system:\n" + bda({"show", "system"}).out + "master:edit:\n" + master + "master:edit:\n" + master);
}

TEST_F(Parameters, eachOfSeveralTargetsHasAnObjectThatNamesIt) {
  const std::vector<std::string> objects = lines(bda({"show", "multi:edit", "remote:edit", "--json"}).out);
  ASSERT_THAT(objects, SizeIs(2));
  EXPECT_THAT(objects[0], StartsWith(R"({"target":"multi:edit","multi":{)"));
  Json remote = Json::parse(objects[1]);
  EXPECT_EQ(remote["target"], "remote:edit");
  remote.erase("target");
  EXPECT_EQ(remote, json({"show", "remote:edit", "--json"}));
  write("a.json", remote.dump());
  EXPECT_THAT(bda({"apply", "remote:edit", "a.json"}), Exits(0));
}

TEST_F(Parameters, aTargetThatCannotBeShownKeepsNoOtherFromIt) {
  store({0x0E, 0x70, 0x02}, BDA::List::master);
  const Result run = bda({"show", "master:2", "master:3", "file:single", "--json"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("master:2: nothing is stored there"));
  EXPECT_THAT(run.err, HasSubstr("file:single: its bytes are kept as they came"));
  EXPECT_THAT(lines(run.out), ElementsAre(StartsWith(R"({"target":"master:3","master":{)")));
  EXPECT_THAT(bda({"show", "master:3", "nonsense"}), Exits(1));
}

TEST_F(Parameters, ofABankOrARangeOnlyWhatIsStoredIsShown) {
  store({0x0E, 0x70, 0x02}, BDA::List::master);
  store({0x0E, 0x70, 0x7F}, BDA::List::master);
  const Result bank = bda({"show", "master", "--json"});
  EXPECT_THAT(bank, Exits(0));
  EXPECT_THAT(lines(bank.out),
              ElementsAre(StartsWith(R"({"target":"master:3",)"), StartsWith(R"({"target":"master:128",)")));
  EXPECT_EQ(bank.err, "master: 126 places hold nothing\n");
  EXPECT_THAT(lines(bda({"show", "master:3..3", "--json"}).out), ElementsAre(StartsWith(R"({"target":"master:3",)")));
  const Result empty = bda({"show", "master:4..6"});
  EXPECT_THAT(empty, Exits(3));
  EXPECT_EQ(empty.err, "bda: master:4..6: 3 places hold nothing\n");
  EXPECT_THAT(lines(bda({"show", "voice:part", "--json"}).out), SizeIs(16));
}

TEST_F(Parameters, namesAreSafeToShow) {
  Editor::Library(directory / "library.db").store({1, 2}, Bytes{1}, "\x1B[31mred \xE9t\xE9");
  EXPECT_THAT(bda({"contents"}).out, HasSubstr("\\x1B[31mred \u00E9t\u00E9"));
  EXPECT_THAT(bda({"contents"}).out, Not(HasSubstr("\x1B")));
  EXPECT_EQ(Json::parse(bda({"contents", "--json"}).out)["name"], "\x1B[31mred \u00E9t\u00E9");
  EXPECT_THAT(bda({"contents", "--json"}).out, HasSubstr(R"(\u001b[31mred \u00e9t\u00e9)"));
}

TEST_F(Parameters, jsonIsAsciiAndReadBack) {
  Json multi = json({"show", "multi:edit", "--json"});
  multi["multi"]["name"] =
      "\xC2\x9B"
      "31mred";  // a control character to some terminals
  ASSERT_THAT(bda({"apply", "multi:edit", "-"}, multi.dump()), Exits(0));
  const Result shown = bda({"show", "multi:edit", "--json"});
  EXPECT_THAT(shown.out, HasSubstr(R"("name":"\u009b31mred")"));
  EXPECT_EQ(Json::parse(shown.out), multi);
  EXPECT_THAT(bda({"apply", "multi:edit", "-", "--library", "other.db"}, shown.out), Exits(0));
  EXPECT_EQ(bda({"show", "multi:edit", "--json", "--library", "other.db"}).out, shown.out);
}

TEST_F(Parameters, contentsListWhatIsStoredByBankWithFavourites) {
  store({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41);
  store({0x0E, 0x70, 0x00}, BDA::List::master, 0x42);
  Bytes flags(32);
  flags[3] = 1;
  write("a.syx", {dump({0x71, 0x28, 0x00}, flags)});
  ASSERT_THAT(bda({"receive", "a.syx"}), Exits(0));
  const Result run = bda({"contents"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("voice:user1:\n  voice:user1:6 "));
  EXPECT_THAT(run.out, HasSubstr("drum:user:\n  favourites that hold nothing: 4\n"));
  EXPECT_THAT(run.out, HasSubstr("master:\n  master:1 "));
  EXPECT_THAT(run.err, HasSubstr("2 contents stored"));
  const std::vector<std::string> objects = lines(bda({"contents", "--json"}).out);
  ASSERT_THAT(objects, SizeIs(3));
  EXPECT_THAT(objects[0],
              StartsWith(R"({"content":"voice:user1:6","type":4,"number":4130821,"stored":true,"name":"A)"));
  EXPECT_EQ(objects[1], R"({"content":"drum:user:4","type":4,"number":4139011,"stored":false,"favourite":1})");
}

TEST_F(Parameters, settingsAreShownAndSet) {
  EXPECT_EQ(bda({"settings"}).out,
            "device-number 1\nreceive-bulk on\nmixing-voices 2048\nhistory 1000\nhistory-size 64\n");
  EXPECT_THAT(bda({"settings", "device-number", "16"}), Exits(0));
  EXPECT_EQ(bda({"settings", "device-number"}).out, "16\n");
  EXPECT_THAT(bda({"settings", "mixing-voices", "1"}), Exits(0));
  EXPECT_THAT(bda({"settings", "receive-bulk", "off"}), Exits(0));
  EXPECT_EQ(bda({"settings"}).out,
            "device-number 16\nreceive-bulk off\nmixing-voices 1\nhistory 1000\nhistory-size 64\n");
  for (const char* value : {"0", "17", "-1", "1x", "ALL"})
    EXPECT_THAT(bda({"settings", "device-number", value}), Exits(1));
  EXPECT_EQ(bda({"settings", "device-number"}).out, "16\n");
}

TEST_F(Parameters, aMisspeltSettingIsAskedFor) {
  EXPECT_EQ(bda({"settings", "device-numer"}).err,
            "bda: there is no setting \"device-numer\": did you mean device-number?\n");
  EXPECT_THAT(bda({"settings", "colour"}).err, HasSubstr("expected device-number, receive-bulk, mixing-voices"));
}

TEST_F(Parameters, theNumberOfMixingVoicesIsKept) {
  bda({"settings", "mixing-voices", "1"});
  store({0x0E, 0x31, 0x00}, BDA::List::normalVoice);
  write("a.syx", {blockDump({0x0E, 0x31, 0x01})});
  EXPECT_THAT(bda({"receive", "a.syx"}), Exits(3));
  write("a.json", bda({"show", "voice:mix:1", "--json"}).out);
  const Result run = bda({"apply", "voice:mix:2", "a.json"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.err, HasSubstr("no room for another mixing voice"));
  EXPECT_THAT(bda({"apply", "voice:mix:1", "a.json"}), Exits(0));
}

TEST_F(Parameters, ofAFileAreThoseThatALibraryWouldHold) {
  write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x41)});
  const Result ofFile = bda({"show", "voice:user1:6", "--from", "voice.syx", "--json"});
  EXPECT_THAT(ofFile, Exits(0));
  EXPECT_THAT(bda({"show", "voice:user1:6", "--json"}), Exits(3)) << "the library has it not";
  ASSERT_THAT(bda({"receive", "-q", "voice.syx"}), Exits(0));
  EXPECT_EQ(bda({"show", "voice:user1:6", "--json"}).out, ofFile.out);
  for (const char* target : {"voice:user1:7", "voice:edit", "system"})
    EXPECT_THAT(bda({"show", target, "--from", "voice.syx"}), Exits(3)) << target;
  removeLibrary();
  EXPECT_THAT(bda({"show", "voice:user1", "--from", "voice.syx", "--library", "none.db"}), Exits(0));
  EXPECT_FALSE(exists("none.db"));
  EXPECT_THAT(bda({"show", "voice:user1:6", "--from", "none.syx"}), Exits(2));
  write("voice.syx", read("voice.syx").substr(0, 100));
  EXPECT_THAT(bda({"show", "voice:user1:6", "--from", "voice.syx"}), Exits(3));
}
