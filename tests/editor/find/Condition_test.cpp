#include "find/Condition.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>

#include "editor/models/ModelMaker.h"
#include "models/ModelJson.h"

namespace Editor {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using Json = nlohmann::ordered_json;

// A voice whose common parameter 3 is 64, with that name.
ModelSet voice(const char* name = "Piano") {
  ModelSet models = emptySetFor(ContentKind::voice);
  const std::uint8_t value = 64;
  models.voice->common.set(&value, 3, 0);
  models.voice->name.assign(name);
  return models;
}

bool holds(const std::string& condition, const ModelSet& models, ContentKind kind = ContentKind::voice) {
  return Condition(condition).holds(kind, valuesOf(models));
}

std::string complaint(const std::string& condition) {
  try {
    const Condition wrong(condition);
    return "none";
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

TEST(Condition, comparesWithEachOperator) {
  const std::map<std::string, std::array<bool, 3>> expected{
      // with 63, 64 and 65
      {"=", {false, true, false}}, {"!=", {true, false, true}}, {"<", {false, false, true}},
      {"<=", {false, true, true}}, {">", {true, false, false}}, {">=", {true, true, false}},
  };
  for (const auto& [sign, results] : expected)
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(holds("voice.common[3]" + sign + std::to_string(63 + i), voice()), results[std::size_t(i)])
          << sign << 63 + i;
}

TEST(Condition, blanksAroundTheOperatorDoNotCount) { EXPECT_TRUE(holds(" voice.common[3]  >=  64 ", voice())); }

TEST(Condition, theValueMayLieOutsideOfWhatTheParameterHolds) {
  EXPECT_TRUE(holds("voice.common[3]>-1", voice()));
  EXPECT_TRUE(holds("voice.common[3]<4294967296", voice()));
}

TEST(Condition, namesAreEqualOrNotInEachCharacter) {
  EXPECT_TRUE(holds("voice.name=Pi\u00E4no", voice("Pi\xE4no")));
  EXPECT_FALSE(holds("voice.name=Pi\u00E4no", voice("pi\xE4no")));
  EXPECT_TRUE(holds("voice.name!=Organ", voice()));
  EXPECT_FALSE(holds("voice.name!=Piano", voice()));
  EXPECT_TRUE(holds("voice.name=", voice("")));
  EXPECT_FALSE(holds("voice.name=\u0416", voice("")));
  EXPECT_TRUE(holds("voice.name!=\u0416", voice()));
}

TEST(Condition, neverHoldsForWhatHasNoSuchParameter) {
  const ModelSet master = emptySetFor(ContentKind::master);
  EXPECT_FALSE(holds("voice.common[3]!=1", master, ContentKind::master));
  EXPECT_FALSE(holds("voice.element[0].wave[0]=0", emptySetFor(ContentKind::drum), ContentKind::drum));
  EXPECT_TRUE(holds("voice.key[0].wave[0]=0", emptySetFor(ContentKind::drum), ContentKind::drum));
}

// Whatever the JSON of models has, a condition finds by the same path.
class Walk {
 public:
  Walk(ContentKind kind, const ModelSet& models) : kind_(kind), values_(valuesOf(models)) { walk(toJson(models), ""); }
  std::size_t numbers = 0;
  std::size_t names = 0;

 private:
  void walk(const Json& json, const std::string& path) {
    if (json.is_object())
      for (const auto& [key, value] : json.items()) walk(value, path.empty() ? key : path + '.' + key);
    if (json.is_array())
      for (std::size_t i = 0; i < json.size(); ++i) walk(json[i], path + '[' + std::to_string(i) + ']');
    if (json.is_number()) ++numbers;
    if (json.is_string()) ++names;
    const bool isSample = json.is_string() || (json.is_number() && numbers % 401 == 1);  // each takes milliseconds
    if (isSample) check(path, json.is_string() ? json.get<std::string>() : json.dump());
  }
  void check(const std::string& path, const std::string& value) const {
    EXPECT_TRUE(Condition(path + '=' + value).holds(kind_, values_)) << path;
    EXPECT_FALSE(Condition(path + "!=" + value).holds(kind_, values_)) << path;
  }

  ContentKind kind_;
  ModelValues values_;
};

TEST(Condition, aPathIsThatOfTheJson) {
  for (std::size_t i = 0; i < kContentKinds; ++i) {
    const auto kind = ContentKind(i);
    const ModelSet models = filled(emptySetFor(kind), std::uint32_t(i) + 7);
    const Walk walk(kind, models);
    EXPECT_EQ(walk.numbers, valuesOf(models).numbers.size());
    EXPECT_EQ(walk.names, valuesOf(models).names.size());
  }
}

TEST(Condition, aNameIsComparedWithEachCharacterAsItStands) {
  ModelSet set = emptySetFor(ContentKind::voice);
  set.voice->name.assign(" Lead ");
  const ModelValues values = valuesOf(set);
  EXPECT_TRUE(Condition("voice.name= Lead ").holds(ContentKind::voice, values));
  EXPECT_TRUE(Condition(" voice.name = Lead ").holds(ContentKind::voice, values));
  for (const char* const other : {"voice.name=Lead", "voice.name= Lead", "voice.name=Lead ", "voice.name=  Lead "})
    EXPECT_FALSE(Condition(other).holds(ContentKind::voice, values)) << other;
  EXPECT_TRUE(Condition(" voice.common[3] = 0 ").holds(ContentKind::voice, values));
}

TEST(Condition, aNameStandsForItsParameterInEachKind) {
  ParameterNames names;
  names.nameParameter("voice.common[3]", "Volume");
  names.nameParameter("master.common[0]", "Volume");
  names.nameValue("voice.common[3]", 64, "Half");
  const ModelValues master = valuesOf(emptySetFor(ContentKind::master));
  EXPECT_TRUE(Condition("Volume=64", names).holds(ContentKind::voice, valuesOf(voice())));
  EXPECT_TRUE(Condition("Volume=0", names).holds(ContentKind::master, master));
  const Condition half("Volume != Half", names);
  EXPECT_FALSE(half.holds(ContentKind::voice, valuesOf(voice())));
  EXPECT_FALSE(half.holds(ContentKind::master, master)) << "which has no value of that name";
  const Condition::Asked asked = Condition("Volume>1", names).asked(ContentKind::voice, valuesOf(voice()));
  EXPECT_EQ(asked.path, "voice.common[3]");
  EXPECT_EQ(asked.value, ParameterValue(std::int64_t{64}));
}

TEST(Condition, aNameOfSeveralValuesIsNone) {
  ParameterNames names;
  names.nameValue("voice.common[3]", 0, "Off");
  names.nameValue("voice.common[3]", 1, "Off");
  try {
    const Condition several("voice.common[3]=Off", names);
    FAIL() << "both are meant";
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(), HasSubstr("\"Off\" is the name of 0, 1 of voice.common[3]"));
  }
}

TEST(Condition, aPathThatNoKindHasIsAskedAbout) {
  EXPECT_THAT(complaint("voice.comon[3]>1"), HasSubstr("did you mean voice.common[3]?"));
  EXPECT_THAT(complaint("voice.comon[300]>1"), HasSubstr("did you mean voice.common[92]?"));
  EXPECT_THAT(complaint("voice.nam=Piano"), HasSubstr("did you mean voice.name?"));
  EXPECT_THAT(complaint("voice.element[1].parms[5]=1"), HasSubstr("did you mean voice.element[1].params[5]?"));
  EXPECT_THAT(complaint("system.common[0]=1"), AllOf(HasSubstr("system.common[0]"), HasSubstr("no content has")));
  EXPECT_THAT(complaint("nonsense=1"), AllOf(HasSubstr("nonsense"), testing::Not(HasSubstr("did you mean"))));
}

TEST(Condition, whatIsAskedAboutWouldBeTaken) {
  ParameterNames names;
  names.nameParameter("voice.common[3]", "Volume");
  names.nameParameter("voice.common[4]", "Switch");
  names.nameParameter("voice.common[5]", "Switch");
  names.nameParameter("system.common[0]", "Tuning");
  const auto complaintOf = [&](const char* text) -> std::string {
    try {
      const Condition condition(text, names);
    } catch (const std::invalid_argument& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_THAT(complaintOf("Volum=1"), HasSubstr("did you mean Volume?"));
  for (const char* const text : {"Switc=1", "Tunin=1", "Tuning=1"})
    EXPECT_THAT(complaintOf(text), AllOf(HasSubstr("no content has"), testing::Not(HasSubstr("did you mean")))) << text;
}

TEST(Condition, aGroupIsNoParameter) {
  for (const char* const path :
       {"voice.common", "voice.common[93]", "voice.common[-1]", "voice.common[]", "voice.common[03]"})
    EXPECT_THAT(complaint(std::string(path) + "=1"),
                testing::AnyOf(HasSubstr("voice.common[0] to voice.common[92]"), HasSubstr("no content has")))
        << path;
  EXPECT_THAT(complaint("voice.common=1"), HasSubstr("expected voice.common[0] to voice.common[92]"));
  EXPECT_THAT(complaint("voice.name[0]=1"), HasSubstr("did you mean voice.name?"));
}

TEST(Condition, whatHasNoOperatorOrAnotherValueIsRefused) {
  EXPECT_THAT(complaint("voice.common[3]"), HasSubstr("expected a path, one of"));
  EXPECT_THAT(complaint(""), HasSubstr("expected a path, one of"));
  EXPECT_THAT(complaint("voice.common[3]!64"), HasSubstr("expected a path, one of"));
  for (const char* const value : {"", "x", "6x", "6.5", "=6", "99999999999999999999"})
    EXPECT_THAT(complaint(std::string("voice.common[3]=") + value), HasSubstr("expected an integer")) << value;
  EXPECT_THAT(complaint("voice.name<Piano"), HasSubstr("it can be equal (=) or not (!=)"));
}

}  // namespace
}  // namespace Editor
