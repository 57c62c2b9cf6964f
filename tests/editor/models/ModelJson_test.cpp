#include "models/ModelJson.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "ModelMaker.h"

namespace Editor {
namespace {

using Json = nlohmann::ordered_json;

std::string keysOf(const Json& object) {
  std::string keys;
  for (const auto& [key, value] : object.items()) keys += (keys.empty() ? "" : " ") + key;
  return keys;
}

// What is wrong with a set's JSON after `spoil` has changed it; the set must stay as it is.
template <typename Spoil>
std::string refusal(const ModelSet& models, Spoil spoil) {
  Json json = toJson(models);
  spoil(json);
  ModelSet target = filled(models, 77);
  const ModelSet before = target;
  const std::optional<std::string> error = fromJson(json, target);
  EXPECT_EQ(target, before) << "changed in spite of the error";
  return error.value_or("no error");
}

TEST(ModelJson, aValueByItselfIsANumberOrATextOrNothing) {
  EXPECT_EQ(jsonLine(valueToJson(std::int64_t{7})), "7");
  EXPECT_EQ(jsonLine(valueToJson("Caf\xE9")), R"("Caf\u00e9")");
  EXPECT_EQ(jsonLine(valueToJson(std::vector<std::uint8_t>{0xF0, 0x01})), R"("F0 01")");
  EXPECT_EQ(jsonLine(valueToJson(std::monostate())), "null");
}

// ---- The published form --------------------------------------------------------------------------------------------

TEST(ModelJson, HasTheKeysOfTheModelsThatAreThere) {
  EXPECT_EQ(keysOf(toJson(emptySetFor(1))), "voice multi arpeggio");
  EXPECT_EQ(keysOf(toJson(emptySetFor(12))), "multi arpeggio");
  EXPECT_EQ(keysOf(toJson(emptySetFor(14))), "master");
  EXPECT_EQ(keysOf(toJson(emptySetFor(16))), "remote");
  EXPECT_EQ(keysOf(toJson(systemSet())), "system");
  EXPECT_EQ(keysOf(toJson(additionalSet())), "additional");
}

TEST(ModelJson, HasThePublishedKeysInTheirOrder) {
  const Json voice = toJson(emptySetFor(1))["voice"];
  EXPECT_EQ(keysOf(voice),
            "name type common commonExtra arpeggioCommon arpeggioTempo arpeggioEntry arpeggioSix insertionA insertionB "
            "insertionL element key");
  EXPECT_EQ(keysOf(voice["element"][0]), "params wave");
  EXPECT_EQ(keysOf(toJson(emptySetFor(5))["voice"]["key"][72]), "params wave");
  const Json multi = toJson(emptySetFor(11))["multi"];
  EXPECT_EQ(keysOf(multi),
            "name common reverb reverbSettings chorus chorusSettings insertionA insertionB masterEq masterEffect "
            "masterEffectSettings adPart part");
  EXPECT_EQ(keysOf(multi["adPart"][0]), "params");
  EXPECT_EQ(keysOf(multi["part"][15]), "bankProgram main extra");
  const Json arpeggio = toJson(emptySetFor(11))["arpeggio"];
  EXPECT_EQ(keysOf(arpeggio), "tempo common part");
  EXPECT_EQ(keysOf(arpeggio["part"][15]), "params six");
  const Json master = toJson(emptySetFor(14))["master"];
  EXPECT_EQ(keysOf(master), "name common zone");
  EXPECT_EQ(keysOf(master["zone"][3]), "params");
  const Json remote = toJson(emptySetFor(16))["remote"];
  EXPECT_EQ(keysOf(remote), "name1 name2 common controller");
  EXPECT_EQ(keysOf(remote["controller"][11]), "name1 name2 params");
  const Json system = toJson(systemSet())["system"];
  EXPECT_EQ(keysOf(system),
            "common tune adPart masterEq masterEffect masterEffectSettings quickSetup sequencer remote utility");
  EXPECT_EQ(keysOf(system["adPart"][0]), "params insertionA insertionB");
  EXPECT_EQ(keysOf(system["quickSetup"][5]), "name params");
  EXPECT_EQ(keysOf(toJson(additionalSet())["additional"]), "params");
}

TEST(ModelJson, ListsHaveAsManyEntriesAsThereAreNodes) {
  const Json normal = toJson(emptySetFor(1));
  EXPECT_EQ(normal["voice"]["element"].size(), 8u);
  EXPECT_EQ(normal["voice"]["key"], Json::array());
  const Json drum = toJson(emptySetFor(5));
  EXPECT_EQ(drum["voice"]["element"], Json::array());
  EXPECT_EQ(drum["voice"]["key"].size(), 73u);
  EXPECT_EQ(normal["multi"]["part"].size(), 16u);
  EXPECT_EQ(normal["multi"]["adPart"].size(), 1u);
  EXPECT_EQ(normal["arpeggio"]["part"].size(), 16u);
  EXPECT_EQ(toJson(emptySetFor(14))["master"]["zone"].size(), 4u);
  EXPECT_EQ(toJson(emptySetFor(16))["remote"]["controller"].size(), 12u);
  EXPECT_EQ(toJson(systemSet())["system"]["quickSetup"].size(), 6u);
  EXPECT_EQ(toJson(systemSet())["system"]["adPart"].size(), 1u);
}

TEST(ModelJson, AGroupIsAnArrayOfIntegers) {
  ModelSet models = emptySetFor(14);
  models.master->common.assign({0, 1, 255, 3, 4, 5, 6, 7});
  EXPECT_EQ(toJson(models)["master"]["common"].dump(), "[0,1,255,3,4,5,6,7]");
}

TEST(ModelJson, ANameIsItsBytesReadAsLatin1) {
  ModelSet models = emptySetFor(14);
  models.master->name.assign("Fl\xFCgel\x01\x7F\x80\xFF");
  EXPECT_EQ(toJson(models)["master"]["name"].dump(), "\"Fl\xC3\xBCgel\\u0001\x7F\xC2\x80\xC3\xBF\"");
}

// ---- The way back --------------------------------------------------------------------------------------------------

RC_GTEST_PROP(ModelJson, ComesBackAsItWas, ()) {
  const ModelSet shape = anyShape();
  const ModelSet models = filled(shape, anySeed());
  ModelSet target = filled(shape, anySeed());
  RC_ASSERT(fromJson(toJson(models), target) == std::nullopt);
  RC_ASSERT(target == models);
}

RC_GTEST_PROP(ModelJson, ComesBackAsItWasThroughText, ()) {
  const ModelSet shape = anyShape();
  const ModelSet models = filled(shape, anySeed());
  Json json;
  RC_ASSERT(parseJson(toJson(models).dump(2), json) == std::nullopt);
  ModelSet target = shape;
  RC_ASSERT(fromJson(json, target) == std::nullopt);
  RC_ASSERT(target == models);
}

RC_GTEST_PROP(ModelJson, ReadsNoOtherShape, ()) {
  const ModelSet models = anyShape();
  ModelSet target = anyShape();
  RC_PRE(!haveSameShape(models, target));
  const ModelSet before = target;
  RC_ASSERT(fromJson(toJson(models), target).has_value());
  RC_ASSERT(target == before);
}

TEST(ModelJson, ReadsIntegersThatAProgramPutThere) {
  ModelSet models = emptySetFor(14);
  Json json = toJson(models);
  json["master"]["common"][2] = 200;
  EXPECT_EQ(fromJson(json, models), std::nullopt);
  EXPECT_EQ(models.master->common.values()[2], 200);
}

TEST(ModelJson, ReadsKeysInAnyOrder) {
  ModelSet models = emptySetFor(14);
  Json json;
  ASSERT_EQ(parseJson(R"({"master":{"zone":[],"name":"x","common":[]}})", json), std::nullopt);
  json["master"]["zone"] = toJson(models)["master"]["zone"];
  json["master"]["common"] = toJson(models)["master"]["common"];
  EXPECT_EQ(fromJson(json, models), std::nullopt);
  EXPECT_EQ(models.master->name.text(), "x");
}

TEST(ModelJson, KeepsWatchersAndTellsThem) {
  struct : ChangeWatcher {
    int changes = 0;
    void changed() override { ++changes; }
  } watcher;
  ModelSet models = emptySetFor(14);
  models.master->zone[3].params.watch(&watcher);
  Json json = toJson(models);
  EXPECT_EQ(fromJson(json, models), std::nullopt);
  EXPECT_EQ(watcher.changes, 0);
  json["master"]["zone"][3]["params"][32] = 1;
  EXPECT_EQ(fromJson(json, models), std::nullopt);
  EXPECT_EQ(watcher.changes, 1);
}

// ---- Errors --------------------------------------------------------------------------------------------------------

TEST(ModelJson, NamesAMissingKey) {
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json.erase("multi"); }), "multi: missing");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"].erase("insertionL"); }),
            "voice.insertionL: missing");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"]["element"][3].erase("wave"); }),
            "voice.element[3].wave: missing");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"].erase("key"); }), "voice.key: missing")
      << "even that of an empty list";
}

TEST(ModelJson, NamesAnUnknownKey) {
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["master"] = 1; }), "master: unknown key");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"]["comon"] = 1; }), "voice.comon: unknown key");
  EXPECT_EQ(refusal(emptySetFor(16), [](Json& json) { json["remote"]["controller"][11]["name3"] = ""; }),
            "remote.controller[11].name3: unknown key");
}

TEST(ModelJson, NamesAWrongLength) {
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"]["common"].push_back(0); }),
            "voice.common: 94 entries instead of 93");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["multi"]["part"][15]["extra"].erase(0); }),
            "multi.part[15].extra: 6 entries instead of 7");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["multi"]["part"].erase(15); }),
            "multi.part: 15 entries instead of 16");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"]["key"].push_back(Json::object()); }),
            "voice.key: 1 entries instead of 0");
}

TEST(ModelJson, NamesAWrongType) {
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json = Json::array(); }), "the document: an object is expected");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"] = Json::array(); }), "voice: an object is expected");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"]["type"] = 0; }), "voice.type: an array is expected");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"]["element"] = Json::object(); }),
            "voice.element: an array is expected");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"]["element"][7] = 5; }),
            "voice.element[7]: an object is expected");
  EXPECT_EQ(refusal(emptySetFor(1), [](Json& json) { json["voice"]["name"] = 5; }), "voice.name: a string is expected");
}

TEST(ModelJson, NamesAValueThatIsNoParameter) {
  const auto with = [](const Json& value) {
    return refusal(emptySetFor(1), [&](Json& json) { json["voice"]["element"][3]["params"][12] = value; });
  };
  const std::string path = "voice.element[3].params[12]: ";
  EXPECT_EQ(with(256), path + "256 is no integer from 0 to 255");
  EXPECT_EQ(with(-1), path + "-1 is no integer from 0 to 255");
  EXPECT_EQ(with(1.0), path + "1.0 is no integer from 0 to 255");
  EXPECT_EQ(with(18446744073709551615u), path + "18446744073709551615 is no integer from 0 to 255");
  EXPECT_EQ(with(true), path + "boolean is no integer from 0 to 255");
  EXPECT_EQ(with(nullptr), path + "null is no integer from 0 to 255");
  EXPECT_EQ(with("1"), path + "string is no integer from 0 to 255");
  EXPECT_EQ(with(Json::array({1})), path + "array is no integer from 0 to 255");
  EXPECT_EQ(refusal(emptySetFor(11), [](Json& json) { json["arpeggio"]["part"][2]["six"][5] = 65536; }),
            "arpeggio.part[2].six[5]: 65536 is no integer from 0 to 65535");
}

TEST(ModelJson, NamesANameThatDoesNotFit) {
  EXPECT_EQ(refusal(systemSet(), [](Json& json) { json["system"]["quickSetup"][5]["name"] = "123456789"; }),
            "system.quickSetup[5].name: longer than 8 characters");
  const auto with = [](const std::string& text) {
    return refusal(systemSet(), [&](Json& json) { json["system"]["quickSetup"][5]["name"] = text; });
  };
  const std::string error = "system.quickSetup[5].name: a name has no other characters than U+0001 to U+00FF";
  EXPECT_EQ(with("\xC4\x80"), error) << "U+0100";
  EXPECT_EQ(with("\xE2\x82\xAC"), error) << "U+20AC";
  EXPECT_EQ(with(std::string("a\0b", 3)), error);
  EXPECT_EQ(with("\x80"), error) << "no UTF-8";
  EXPECT_EQ(with("a\xC3"), error) << "no UTF-8";
  EXPECT_EQ(with("\xC3(("), error) << "no UTF-8";
}

TEST(ModelJson, CountsTheCharactersOfANameNotTheirBytes) {
  ModelSet models = systemSet();
  Json json = toJson(models);
  json["system"]["quickSetup"][5]["name"] = "\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC";
  EXPECT_EQ(fromJson(json, models), std::nullopt);
  EXPECT_EQ(models.system->quickSetup[5].name.text(), std::string(8, '\xFC'));
}

// ---- Text ----------------------------------------------------------------------------------------------------------

TEST(ParseJson, RefusesAKeyThatOccursTwice) {
  Json json = 5;
  EXPECT_EQ(parseJson(R"({"a":{"b":1,"c":2,"b":3}})", json), "key \"b\" occurs twice in an object");
  EXPECT_EQ(json, Json(5)) << "untouched";
  EXPECT_EQ(parseJson(R"({"a":[{"b":1},{"b":2}],"b":{"a":3}})", json), std::nullopt) << "in objects of their own";
  EXPECT_EQ(json["b"]["a"], 3);
}

TEST(ParseJson, RefusesWhatIsNestedDeeperThanAnyStack) {
  Json json = 5;
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_EQ(parseJson(nested(30), json), std::nullopt);
  json = 5;
  for (const std::size_t depth : {100u, 200'000u}) {
    EXPECT_EQ(parseJson(nested(depth), json), "more than 32 objects and lists inside each other");
    EXPECT_EQ(parseJson("{\"x\": " + nested(depth) + "}", json), "more than 32 objects and lists inside each other");
  }
  EXPECT_EQ(json, Json(5));
}

TEST(ParseJson, RefusesWhatStandsBehindANul) {
  using namespace std::string_literals;
  Json json = 5;
  EXPECT_EQ(parseJson("{}\0{}"s, json), "there is a character U+0000 in it");
  EXPECT_EQ(json, Json(5));
}

TEST(ParseJson, SaysWhereTextIsNoJson) {
  Json json = 5;
  for (const char* text : {"", "{", "{\"a\":1,}", "[1] 2", "\"\xFF\""}) {
    const std::optional<std::string> error = parseJson(text, json);
    ASSERT_TRUE(error.has_value()) << text;
    EXPECT_NE(error->find("line 1, column"), std::string::npos) << *error;
    EXPECT_EQ(json, Json(5));
  }
}

}  // namespace
}  // namespace Editor
