#include "models/Models.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "ModelMaker.h"

namespace Editor {
namespace {

struct CountingWatcher final : ChangeWatcher {
  int changes = 0;
  void changed() override { ++changes; }
};

std::uint8_t byte(const CMA::ParameterGroup& group, std::uint16_t index) {
  std::uint8_t value = 0xEE;
  EXPECT_TRUE(group.get(&value, index)) << "parameter " << index;
  return value;
}

void setByte(CMA::ParameterGroup& group, std::uint16_t index, std::uint8_t value) {
  EXPECT_TRUE(group.set(&value, index, 1)) << "parameter " << index;
}

// ---- Groups --------------------------------------------------------------------------------------------------------

TEST(ArrayGroup, StartsWithEveryParameterZero) {
  EXPECT_EQ(ArrayGroup({3}).values(), (std::vector<std::uint16_t>{0, 0, 0}));
}

TEST(ArrayGroup, KeepsWhatIsSet) {
  ArrayGroup group({3, 16});
  const std::uint16_t wide = 0x1234;
  const std::uint8_t narrow = 0xFF;
  EXPECT_TRUE(group.set(&wide, 0, 0));
  EXPECT_TRUE(group.set(&narrow, 2, 1));
  std::uint16_t value = 1;
  EXPECT_TRUE(group.get(&value, 0));
  EXPECT_EQ(value, 0x1234);
  EXPECT_TRUE(group.get(&value, 1));
  EXPECT_EQ(value, 0);
  EXPECT_EQ(byte(group, 2), 0xFF);
}

TEST(ArrayGroup, RefusesParametersThatItHasNot) {
  ArrayGroup group({3});
  std::uint8_t narrow = 0x55;
  std::uint16_t wide = 0x5566;
  for (const std::uint16_t index : std::initializer_list<std::uint16_t>{3, 4, 0xFFFF}) {
    EXPECT_FALSE(group.get(&narrow, index));
    EXPECT_FALSE(group.get(&wide, index));
    EXPECT_FALSE(group.set(&narrow, index, 1));
    EXPECT_FALSE(group.set(&wide, index, 1));
  }
  EXPECT_EQ(narrow, 0x55);
  EXPECT_EQ(wide, 0x5566);
  EXPECT_EQ(group, ArrayGroup({3}));
}

TEST(ArrayGroup, NeverCutsAValue) {
  ArrayGroup bytes({1});
  const std::uint16_t wide = 0x100;
  EXPECT_FALSE(bytes.set(&wide, 0, 1));
  EXPECT_EQ(byte(bytes, 0), 0);

  ArrayGroup words({1, 16});
  EXPECT_TRUE(words.set(&wide, 0, 1));
  std::uint8_t narrow = 0x77;
  EXPECT_FALSE(words.get(&narrow, 0));
  EXPECT_EQ(narrow, 0x77);
}

TEST(ArrayGroup, AssignsAllOrNothing) {
  ArrayGroup group({2});
  EXPECT_FALSE(group.assign({1}));
  EXPECT_FALSE(group.assign({1, 2, 3}));
  EXPECT_FALSE(group.assign({1, 256}));
  EXPECT_EQ(group, ArrayGroup({2}));
  EXPECT_TRUE(group.assign({1, 255}));
  EXPECT_EQ(group.values(), (std::vector<std::uint16_t>{1, 255}));
}

TEST(ArrayGroup, TellsItsWatcherOfEveryNewValueAndOfNothingElse) {
  CountingWatcher watcher;
  ArrayGroup group({2});
  group.watch(&watcher);
  setByte(group, 0, 0);
  EXPECT_EQ(watcher.changes, 0) << "the value that it had";
  const std::uint8_t value = 7;
  group.set(&value, 0, 0);
  EXPECT_EQ(watcher.changes, 1) << "flag 0 changes the value, too";
  group.set(&value, 9, 1);
  EXPECT_EQ(watcher.changes, 1) << "no such parameter";
  group.assign({7, 0});
  EXPECT_EQ(watcher.changes, 1);
  group.assign({7, 1});
  EXPECT_EQ(watcher.changes, 2);
  group = ArrayGroup({2});
  EXPECT_EQ(watcher.changes, 3);
  group = ArrayGroup({2});
  EXPECT_EQ(watcher.changes, 3);
}

TEST(ArrayGroup, IsCopiedWithoutItsWatcher) {
  CountingWatcher watcher;
  ArrayGroup group({1});
  group.watch(&watcher);
  ArrayGroup copy = group;
  setByte(copy, 0, 1);
  EXPECT_EQ(watcher.changes, 0);
  EXPECT_NE(byte(group, 0), byte(copy, 0));
}

// ---- Names ---------------------------------------------------------------------------------------------------------

TEST(NameText, CutsWhatIsTooLong) {
  NameText name(4);
  name.setToServer("Lead Synth", ModelSrv::ModelPartIndex_All);
  EXPECT_EQ(name.text(), "Lead");
}

TEST(NameText, TakesNoElementForTheWhole) {
  NameText name(4);
  name.setToServer("Lead", 0);
  EXPECT_EQ(name.text(), "");
}

TEST(NameText, FillsABufferWithoutOverrunningIt) {
  NameText name(20);
  name.setToServer("Organ", ModelSrv::ModelPartIndex_All);
  char buffer[8] = {};
  name.getFromServer(buffer, 7);
  EXPECT_STREQ(buffer, "Organ");
  std::memset(buffer, 0, sizeof buffer);
  name.getFromServer(buffer, 3);
  EXPECT_STREQ(buffer, "Org");
}

TEST(NameText, RefusesWhatItCannotHold) {
  NameText name(3);
  EXPECT_TRUE(name.assign("abc"));
  EXPECT_FALSE(name.assign("abcd"));
  EXPECT_FALSE(name.assign(std::string("a\0b", 3)));
  EXPECT_EQ(name.text(), "abc");
}

TEST(NameText, TellsItsWatcherOfEveryNewText) {
  CountingWatcher watcher;
  NameText name(3);
  name.watch(&watcher);
  name.assign("");
  EXPECT_EQ(watcher.changes, 0);
  name.setToServer("abc", ModelSrv::ModelPartIndex_All);
  EXPECT_EQ(watcher.changes, 1);
  name = NameText(3);
  EXPECT_EQ(watcher.changes, 2);
}

// ---- What the models consist of ------------------------------------------------------------------------------------

// "common 50, tune 1w, adPart x1 {params 6 ...}" as one line.
struct Describer {
  std::string text;

  void separate() {
    if (!text.empty() && text.back() != '{') text += ", ";
  }
  void group(const char* key, const ArrayGroup& group) {
    separate();
    text += std::string(key) + ' ' + std::to_string(group.values().size()) + (group.width() == Width::word ? "w" : "");
  }
  void name(const char* key, const NameText& name) {
    separate();
    text += std::string(key) + " \"" + std::to_string(name.capacity()) + '"';
  }
  template <typename Visit>
  void list(const char* key, std::size_t count, Visit visit) {
    separate();
    text += std::string(key) + " x" + std::to_string(count);
    std::string before = std::exchange(text, "");
    std::string first;
    for (std::size_t i = 0; i < count; ++i) {
      text.clear();
      visit(i);
      if (i == 0) first = text;
      EXPECT_EQ(text, first) << key << ' ' << i;
    }
    text = before + (count == 0 ? "" : " {" + first + '}');
  }
};

template <typename Model>
std::string describe(const Model& model) {
  Describer describer;
  visitFields(model, describer);
  return describer.text;
}

TEST(Models, HaveTheLengthsOfTheInstrument) {
  const std::string voice =
      "name \"20\", type 1, common 93, commonExtra 1, arpeggioCommon 7, arpeggioTempo 1w, arpeggioEntry 38, "
      "arpeggioSix 6w, insertionA 21w, insertionB 21w, insertionL 37w, ";
  EXPECT_EQ(describe(VoiceModel(false)), voice + "element x8 {params 137, wave 1w}, key x0");
  EXPECT_EQ(describe(VoiceModel(true)), voice + "element x0, key x73 {params 125, wave 1w}");
  EXPECT_EQ(describe(MultiModel()),
            "name \"20\", common 41, reverb 21w, reverbSettings 2, chorus 21w, chorusSettings 3, insertionA 21w, "
            "insertionB 21w, masterEq 18, masterEffect 21w, masterEffectSettings 1, adPart x1 {params 8}, "
            "part x16 {bankProgram 3, main 58, extra 7}");
  EXPECT_EQ(describe(ArpeggioModel()), "tempo 1w, common 7, part x16 {params 39, six 6w}");
  EXPECT_EQ(describe(MasterModel()), "name \"20\", common 8, zone x4 {params 33}");
  EXPECT_EQ(describe(RemoteModel()),
            "name1 \"13\", name2 \"12\", common 2, controller x12 {name1 \"9\", name2 \"15\", params 2}");
  EXPECT_EQ(describe(SystemModel()),
            "common 50, tune 1w, adPart x1 {params 6, insertionA 21w, insertionB 21w}, masterEq 18, masterEffect 21w, "
            "masterEffectSettings 1, quickSetup x6 {name \"8\", params 2}, sequencer 7, remote 2, utility 52");
  EXPECT_EQ(describe(AdditionalModel()), "params 1");
}

// Collects where each field lies, to hold it against what the getters give.
struct Addresses {
  std::map<std::string, const void*> at;
  std::string prefix;

  void group(const char* key, const ArrayGroup& group) {
    at[prefix + key] = static_cast<const CMA::ParameterGroup*>(&group);
  }
  void name(const char* key, const NameText& name) {
    at[prefix + key] = static_cast<const ModelSrv::ModelPart*>(&name);
  }
  template <typename Visit>
  void list(const char* key, std::size_t count, Visit visit) {
    const std::string outer = prefix;
    for (std::size_t i = 0; i < count; ++i) {
      prefix = outer + key + '[' + std::to_string(i) + "].";
      visit(i);
    }
    prefix = outer;
  }
};

template <typename Model>
std::map<std::string, const void*> addressesOf(const Model& model) {
  Addresses addresses;
  visitFields(model, addresses);
  return addresses.at;
}

std::string node(const char* list, std::uint32_t i, const char* key) {
  return std::string(list) + '[' + std::to_string(i) + "]." + key;
}

// What a model hands out, by the keys of its fields: nothing more and nothing else than it consists of.
using HandedOut = std::map<std::string, const void*>;

TEST(Models, AVoiceHandsOutWhatItConsistsOf) {
  for (const bool drum : {false, true}) {
    VoiceModel voice(drum);
    EXPECT_EQ(voice.getArpeggioEntryIndex(), 0u);
    EXPECT_EQ(voice.getArpeggioEntry(1), nullptr);
    HandedOut handed{{"name", voice.getName()},
                     {"type", voice.getType()},
                     {"common", voice.getCommon()},
                     {"commonExtra", voice.getCommonExtra()},
                     {"arpeggioCommon", voice.getArpeggioCommon()},
                     {"arpeggioTempo", voice.getArpeggioTempo()},
                     {"arpeggioEntry", voice.getArpeggioEntry(0)},
                     {"arpeggioSix", voice.getArpeggioSix()},
                     {"insertionA", voice.getInsertionA()},
                     {"insertionB", voice.getInsertionB()},
                     {"insertionL", voice.getInsertionL()}};
    for (std::uint32_t i = 0; i < 100; ++i) {
      if (auto* const element = voice.getElement(i)) {
        handed[node("element", i, "params")] = element->getParams();
        handed[node("element", i, "wave")] = element->getWave();
        ASSERT_NE(element->getExceptionalParam(), nullptr);
        element->getExceptionalParam()->changeCorrectType(false);
        element->getExceptionalParam()->changeCorrectType(true);
      }
      if (auto* const key = voice.getKey(i)) {
        handed[node("key", i, "params")] = key->getParams();
        handed[node("key", i, "wave")] = key->getWave();
      }
    }
    EXPECT_EQ(handed, addressesOf(voice));
  }
}

TEST(Models, AMultiHandsOutWhatItConsistsOf) {
  MultiModel multi;
  HandedOut handed{{"name", multi.getName()},
                   {"common", multi.getCommon()},
                   {"reverb", multi.getReverb()},
                   {"reverbSettings", multi.getReverbSettings()},
                   {"chorus", multi.getChorus()},
                   {"chorusSettings", multi.getChorusSettings()},
                   {"insertionA", multi.getInsertionA()},
                   {"insertionB", multi.getInsertionB()},
                   {"masterEq", multi.getMasterEq()},
                   {"masterEffect", multi.getMasterEffect()},
                   {"masterEffectSettings", multi.getMasterEffectSettings()}};
  for (std::uint32_t i = 0; i < 100; ++i) {
    if (auto* const part = multi.getPart(i)) {
      handed[node("part", i, "bankProgram")] = part->getBankProgram();
      handed[node("part", i, "main")] = part->getMain();
      handed[node("part", i, "extra")] = part->getExtra();
    }
    if (auto* const part = multi.getAdPart(i)) handed[node("adPart", i, "params")] = part->getParams();
  }
  EXPECT_EQ(handed, addressesOf(multi));
}

TEST(Models, AnArpeggioHandsOutWhatItConsistsOf) {
  ArpeggioModel arpeggio;
  HandedOut handed{{"tempo", arpeggio.getTempo()}, {"common", arpeggio.getCommon()}};
  for (std::uint32_t i = 0; i < 100; ++i)
    if (auto* const part = arpeggio.getPart(i)) {
      handed[node("part", i, "params")] = part->getParams();
      handed[node("part", i, "six")] = part->getSix();
    }
  EXPECT_EQ(handed, addressesOf(arpeggio));
}

TEST(Models, AMasterHandsOutWhatItConsistsOf) {
  MasterModel master;
  HandedOut handed{{"name", master.getName()}, {"common", master.getCommon()}};
  for (std::uint32_t i = 0; i < 100; ++i)
    if (auto* const zone = master.getZone(i)) handed[node("zone", i, "params")] = zone->getParams();
  EXPECT_EQ(handed, addressesOf(master));
}

TEST(Models, ARemoteSettingHandsOutWhatItConsistsOf) {
  RemoteModel remote;
  HandedOut handed{{"name1", remote.getName1()}, {"name2", remote.getName2()}, {"common", remote.getCommon()}};
  for (std::uint32_t i = 0; i < 100; ++i)
    if (auto* const controller = remote.getController(i)) {
      handed[node("controller", i, "name1")] = controller->getName1();
      handed[node("controller", i, "name2")] = controller->getName2();
      handed[node("controller", i, "params")] = controller->getParams();
    }
  EXPECT_EQ(handed, addressesOf(remote));
}

TEST(Models, TheSystemHandsOutWhatItConsistsOf) {
  SystemModel system;
  HandedOut handed{{"common", system.getCommon()},
                   {"tune", system.getTune()},
                   {"masterEq", system.getMasterEq()},
                   {"masterEffect", system.getMasterEffect()},
                   {"masterEffectSettings", system.getMasterEffectSettings()},
                   {"sequencer", system.getSequencer()},
                   {"remote", system.getRemote()},
                   {"utility", system.getUtility()}};
  for (std::uint32_t i = 0; i < 100; ++i) {
    if (auto* const part = system.getAdPart(i)) {
      handed[node("adPart", i, "params")] = part->getParams();
      handed[node("adPart", i, "insertionA")] = part->getInsertionA();
      handed[node("adPart", i, "insertionB")] = part->getInsertionB();
    }
    if (auto* const setup = system.getQuickSetup(i)) {
      handed[node("quickSetup", i, "name")] = setup->getName();
      handed[node("quickSetup", i, "params")] = setup->getParams();
    }
  }
  EXPECT_EQ(handed, addressesOf(system));
}

TEST(Models, TheAdditionalModelHandsOutWhatItConsistsOf) {
  AdditionalModel additional;
  EXPECT_EQ(HandedOut({{"params", additional.getParams()}}), addressesOf(additional));
  EXPECT_EQ(additional.getEventPort(), nullptr) << "nobody listens";
}

TEST(Models, AVoiceSaysOfWhichKindItIs) {
  VoiceModel normal(false);
  EXPECT_FALSE(normal.isDrum());
  EXPECT_EQ(byte(normal.type, 0), 0);
  VoiceModel drum(true);
  EXPECT_TRUE(drum.isDrum());
  EXPECT_EQ(byte(drum.type, 0), 1);
}

// ---- Values --------------------------------------------------------------------------------------------------------

TEST(Models, AreEqualWhenFreshAndOfOneKind) {
  EXPECT_EQ(VoiceModel(false), VoiceModel(false));
  EXPECT_EQ(VoiceModel(true), VoiceModel(true));
  EXPECT_FALSE(VoiceModel(true) == VoiceModel(false));
  EXPECT_EQ(MultiModel(), MultiModel());
}

TEST(Models, DifferByASingleParameterOrName) {
  MultiModel multi;
  MultiModel other = multi;
  EXPECT_EQ(multi, other);
  setByte(other.part[15].extra, 6, 1);
  EXPECT_FALSE(multi == other);
  other = multi;
  EXPECT_EQ(multi, other);
  other.name.assign("x");
  EXPECT_FALSE(multi == other);
}

RC_GTEST_PROP(Models, ACopyHasValuesOfItsOwn, ()) {
  const ModelSet shape = anyShape();
  const std::uint32_t seed = anySeed();
  const ModelSet original = filled(shape, seed);
  ModelSet copy = original;
  RC_ASSERT(copy == original);
  fill(copy, anySeed());
  RC_ASSERT(original == filled(shape, seed));
}

TEST(Models, AnAssignedModelKeepsItsWatchersAndTellsThem) {
  CountingWatcher watcher;
  VoiceModel voice(false);
  voice.element[7].wave.watch(&watcher);
  VoiceModel other(false);
  setByte(other.element[7].wave, 0, 9);
  voice = other;
  EXPECT_EQ(watcher.changes, 1);
  setByte(voice.element[7].wave, 0, 10);
  EXPECT_EQ(watcher.changes, 2);
}

// ---- Banks and switches --------------------------------------------------------------------------------------------

bool plays(int msb, int lsb, int program) {
  MultiModel multi;
  auto bankSelectMsb = std::uint8_t(msb);
  auto bankSelectLsb = std::uint8_t(lsb);
  auto programNumber = std::uint8_t(program);
  const bool answer = multi.part[3].correctBankSelAndProgramNum(3, bankSelectMsb, bankSelectLsb, programNumber, true);
  EXPECT_EQ(bankSelectMsb, msb);
  EXPECT_EQ(bankSelectLsb, lsb);
  EXPECT_EQ(programNumber, program);
  return answer;
}

TEST(Models, APartPlaysExactlyTheProgramsOfTheKnownBanks) {
  const std::map<std::pair<int, int>, int> programs{
      {{0x3F, 0x00}, 128}, {{0x3F, 0x01}, 128}, {{0x3F, 0x02}, 128}, {{0x3F, 0x03}, 128}, {{0x3F, 0x04}, 128},
      {{0x3F, 0x05}, 128}, {{0x3F, 0x06}, 128}, {{0x3F, 0x07}, 128}, {{0x3F, 0x08}, 128}, {{0x3F, 0x09}, 128},
      {{0x3F, 0x0A}, 128}, {{0x3F, 0x20}, 64},  {{0x3F, 0x28}, 32},  {{0x00, 0x00}, 128}, {{0x7F, 0x00}, 1},
      {{0x3F, 0x3C}, 16},  {{0x3F, 0x32}, 128}};
  for (int msb = 0; msb < 256; ++msb)
    for (int lsb = 0; lsb < 256; ++lsb) {
      const auto bank = programs.find({msb, lsb});
      if (bank == programs.end()) {
        ASSERT_FALSE(plays(msb, lsb, 0)) << msb << ' ' << lsb;
        continue;
      }
      for (int program = 0; program < 256; ++program)
        ASSERT_EQ(plays(msb, lsb, program), program < bank->second) << msb << ' ' << lsb << ' ' << program;
    }
}

TEST(Models, InsertionSwitchAllOffClearsTheSwitchesAndNothingElse) {
  ModelSet set = filled(emptySetFor(11), 1);
  MultiModel& multi = *set.multi;
  for (MultiModel::Part& part : multi.part) setByte(part.main, 54, 1);
  setByte(multi.adPart[0].params, 7, 1);
  MultiModel expected = multi;
  for (MultiModel::Part& part : expected.part) setByte(part.main, 54, 0);
  setByte(expected.adPart[0].params, 7, 0);
  ASSERT_FALSE(multi == expected);
  multi.insertionSwitchAllOff();
  EXPECT_EQ(multi, expected);
}

}  // namespace
}  // namespace Editor
