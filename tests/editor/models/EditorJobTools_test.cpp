#include "models/EditorJobTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "EditorJobToolsFixture.h"
#include "bda/platform/EvtSrv/EventPort.h"
#include "bda/platform/EvtSrv/EventPortManager.h"

namespace Editor {
namespace {

using namespace CMA::JOB;
using testing::IsEmpty;

// ---- Temporary models ----------------------------------------------------------------------------------------------

using TemporaryModels = EditorJobToolsTest;

TEST_F(TemporaryModels, AreMissingUntilTheyAreOpened) {
  EXPECT_EQ(temporaryModels(), ModelSet());
  tools_->initTemporaryMasterModel(temporary_);
  ModelSet expected;
  expected.master.emplace();
  EXPECT_EQ(temporaryModels(), expected);
}

TEST_F(TemporaryModels, AreFreshWheneverTheyAreOpened) {
  openVoice(0, false);
  tools_->initTemporaryMasterModel(temporary_);
  tools_->initTemporaryRemoteModel(temporary_);
  ModelSet all = emptySetFor(1);
  all.master.emplace();
  all.remote.emplace();
  EXPECT_EQ(temporaryModels(), all);
  receive(all, 1);
  EXPECT_NE(temporaryModels(), all);
  openVoice(0, false);
  tools_->initTemporaryMasterModel(temporary_);
  tools_->initTemporaryRemoteModel(temporary_);
  EXPECT_EQ(temporaryModels(), all);
}

TEST_F(TemporaryModels, AVoiceIsOfTheKindItWasOpenedAs) {
  tools_->initTemporaryVoiceModel(temporary_, 0, false);
  auto* voice = tools_->getTemporaryVoiceModel(temporary_, 0);
  EXPECT_EQ(get(voice->getType(), 0), 1);
  EXPECT_NE(voice->getKey(72), nullptr);
  EXPECT_EQ(voice->getElement(0), nullptr);
  tools_->initTemporaryVoiceModel(temporary_, 0, true);
  voice = tools_->getTemporaryVoiceModel(temporary_, 0);
  EXPECT_EQ(get(voice->getType(), 0), 0);
  EXPECT_EQ(voice->getKey(0), nullptr);
  EXPECT_NE(voice->getElement(7), nullptr);
}

TEST_F(TemporaryModels, AVoiceIsFoundUnderItsNumberOnly) {
  tools_->initTemporaryVoiceModel(temporary_, 5, true);
  EXPECT_NE(tools_->getTemporaryVoiceModel(temporary_, 5), nullptr);
  EXPECT_EQ(tools_->getTemporaryVoiceModel(temporary_, 0), nullptr);
  EXPECT_EQ(tools_->getTemporaryVoiceModel(temporary_, 4), nullptr);
  tools_->initTemporaryVoiceModel(temporary_, 0, true);
  EXPECT_EQ(tools_->getTemporaryVoiceModel(temporary_, 5), nullptr);
}

TEST_F(TemporaryModels, ANewHeaderLeavesTheOtherKindsAlone) {
  tools_->initTemporaryMasterModel(temporary_);
  ModelSet master;
  master.master.emplace();
  master = receive(master, 3);
  openVoice(0, false);
  EXPECT_EQ(temporaryModels().master, master.master);
}

TEST_F(TemporaryModels, OfTwoAssistantsAreApart) {
  CMA::TemporaryCoreModel* const other = tools_->createTemporaryModel();
  tools_->initTemporaryMasterModel(other);
  EXPECT_EQ(tools_->getTemporaryMasterModel(temporary_), nullptr);
  tools_->destroyTemporaryModel(other);
}

TEST_F(TemporaryModels, WithoutATemporaryModelNothingIsOpened) {
  EXPECT_FALSE(tools_->initTemporaryVoiceModel(nullptr, 0, true));
  EXPECT_FALSE(tools_->initTemporaryMultiModel(nullptr, 0));
  EXPECT_FALSE(tools_->initTemporaryArpeggioModel(nullptr, true, 0, true));
  EXPECT_FALSE(tools_->initTemporaryMasterModel(nullptr));
  EXPECT_FALSE(tools_->initTemporaryRemoteModel(nullptr));
  EXPECT_EQ(tools_->getTemporaryVoiceModel(nullptr, 0), nullptr);
  EXPECT_EQ(tools_->getTemporaryMultiModel(nullptr), nullptr);
  EXPECT_EQ(tools_->getTemporaryArpeggioModel(nullptr), nullptr);
  EXPECT_EQ(tools_->getTemporaryMasterModel(nullptr), nullptr);
  EXPECT_EQ(tools_->getTemporaryRemoteModel(nullptr), nullptr);
  EXPECT_EQ(tools_->loadForReceivedSysExBulk(nullptr, 0x0A, 5), Result_UnknownError);
  EXPECT_EQ(tools_->storeForReceivedSysExBulk(nullptr, 0x0A, 5), Result_CurrentStateError);
  tools_->destroyTemporaryModel(nullptr);
}

// ---- Mixing voices -------------------------------------------------------------------------------------------------

using MixingVoices = EditorJobToolsTest;

TEST_F(MixingVoices, AreRefusedWhenThereIsNoPlaceForANewOne) {
  store_.mostMixingVoices = 3;
  for (const int hi : {0x0E, 0x0F})
    for (int lo = 0; lo < 16; ++lo) {
      store_.mixingVoices = 2;
      EXPECT_EQ(check(hi, 0x31, lo), Result_Success) << lo;
      store_.mixingVoices = 3;
      EXPECT_EQ(check(hi, 0x31, lo), Result_MixingVoiceFullError) << lo;
      store_.mixingVoices = 4;
      EXPECT_EQ(check(hi, 0x31, lo), Result_MixingVoiceFullError) << lo;
    }
}

TEST_F(MixingVoices, CanBeReplacedAtAnyTime) {
  store_.mixingVoices = store_.mostMixingVoices = 3;
  store_.contents[{kVoice, 0x3F3C05}] = {"x", emptySetFor(10)};
  EXPECT_EQ(check(0x0F, 0x31, 5), Result_Success);
  EXPECT_EQ(check(0x0F, 0x31, 4), Result_MixingVoiceFullError);
  store_.opaque[{kVoice, 0x3F3C04}] = "whatever";
  EXPECT_EQ(check(0x0F, 0x31, 4), Result_Success);
}

TEST_F(MixingVoices, DoNotConcernOtherAddresses) {
  store_.mixingVoices = store_.mostMixingVoices = 3;
  for (const auto& [hi, mid, lo] : {std::tuple{0x0E, 0x31, 0x10},
                                    {0x0F, 0x31, 0x45},
                                    {0x0E, 0x0A, 0},
                                    {0x40, 0x31, 0},
                                    {0x0C, 0x31, 0},
                                    {0x0E, 0x30, 0},
                                    {0x0E, 0x32, 0}})
    EXPECT_EQ(check(hi, mid, lo), Result_Success) << hi << ' ' << mid;
}

TEST_F(MixingVoices, AreRefusedWhenTheStoreCannotTell) {
  store_.failure = "the file is locked";
  EXPECT_EQ(check(0x0E, 0x31, 0), Result_CurrentStateError);
  EXPECT_EQ(tools_->lastError(), "the file is locked");
}

// ---- The rest ------------------------------------------------------------------------------------------------------

using JobTools = EditorJobToolsTest;

TEST_F(JobTools, NumberVoicesAsTheStoreDoes) {
  for (int bank = 0; bank < 16; ++bank)
    for (int voice = 0; voice < 256; ++voice)
      ASSERT_EQ(tools_->getVoiceContentNumber(std::uint8_t(bank), std::uint8_t(voice)),
                voiceContentNumber(unsigned(bank), std::uint8_t(voice)));
  EXPECT_EQ(tools_->getVoiceContentNumber(8, 5), 0x3F0805u);
}

TEST_F(JobTools, SuspendOutputAsOftenAsTheyAreAsked) {
  EXPECT_FALSE(tools_->isOutputSuspended());
  tools_->suspendOutputMidi();
  tools_->suspendOutputMidi();
  tools_->resumeOutputMidi();
  EXPECT_TRUE(tools_->isOutputSuspended());
  tools_->resumeOutputMidi();
  EXPECT_FALSE(tools_->isOutputSuspended());
  tools_->resumeOutputMidi();
  tools_->suspendOutputMidi();
  EXPECT_TRUE(tools_->isOutputSuspended()) << "one resume too many does not count";
}

TEST_F(JobTools, NameWaveformsFromNumber1) {
  ASSERT_EQ(tools_->setWaveNames({"first", "second"}), "");
  std::string name = "unset";
  EXPECT_EQ(tools_->getWaveformContentName(1, 1, name), Result_Success);
  EXPECT_EQ(name, "first");
  EXPECT_EQ(tools_->getWaveformContentName(2, 1, name), Result_Success);
  EXPECT_EQ(name, "second");
  EXPECT_EQ(tools_->getWaveformContentName(3, 1, name), Result_Success);
  EXPECT_EQ(name, "");
  name = "unset";
  EXPECT_EQ(tools_->getWaveformContentName(0, 1, name), Result_UnknownError);
  EXPECT_EQ(tools_->getWaveformContentName(1, 2, name), Result_UnknownError);
  EXPECT_EQ(name, "unset");
}

TEST_F(JobTools, NameArpeggiosFromNumber0) {
  ASSERT_EQ(tools_->setArpeggioNames({"first", "second"}), "");
  std::string name = "unset";
  EXPECT_EQ(tools_->getArpeggioContentName(0, 1, name), Result_Success);
  EXPECT_EQ(name, "first");
  EXPECT_EQ(tools_->getArpeggioContentName(2, 1, name), Result_Success);
  EXPECT_EQ(name, "");
  name = "unset";
  EXPECT_EQ(tools_->getArpeggioContentName(0, 0, name), Result_UnknownError);
  EXPECT_EQ(name, "unset");
}

TEST_F(JobTools, HaveNamesOfTheirOwnThatFitTheirBlocks) {
  std::string name;
  int named = 0;
  for (std::uint32_t i = 1; i <= 1024; ++i) {
    ASSERT_EQ(tools_->getWaveformContentName(i, 1, name), Result_Success);
    ASSERT_LE(name.size(), 28u);
    named += !name.empty();
  }
  EXPECT_GT(named, 0);
  EXPECT_EQ(tools_->getArpeggioContentName(0, 1, name), Result_Success);
  EXPECT_NE(name, "");
}

TEST_F(JobTools, RefuseNamesThatTheirBlocksCannotCarry) {
  std::string before;
  tools_->getWaveformContentName(1, 1, before);
  EXPECT_EQ(tools_->setWaveNames({"ok", std::string(29, 'x')}), "name 2 is longer than 28 characters");
  EXPECT_EQ(tools_->setWaveNames({"\xFC"}), "name 1 has a character that is not printable ASCII");
  EXPECT_EQ(tools_->setWaveNames({"a\n"}), "name 1 has a character that is not printable ASCII");
  EXPECT_EQ(tools_->setWaveNames(std::vector<std::string>(1025)), "more than 1024 names");
  EXPECT_EQ(tools_->setArpeggioNames(std::vector<std::string>(257)), "more than 256 names");
  std::string after;
  tools_->getWaveformContentName(1, 1, after);
  EXPECT_EQ(after, before);
  EXPECT_EQ(tools_->setWaveNames({std::string(28, '~')}), "");
  EXPECT_EQ(tools_->setWaveNames(std::vector<std::string>(1024)), "");
}

TEST_F(JobTools, HandOutTheirManager) {
  EXPECT_EQ(tools_->getEventPortManager(), nullptr);
  struct : EvtSrv::EventPortManager {
    EvtSrv::EventPort* openPort(const char*, unsigned char) override { return nullptr; }
    ContSrv::Work* getContentsWork() override { return nullptr; }
  } manager;
  EXPECT_EQ(EditorJobTools(store_, &manager).getEventPortManager(), &manager);
}

TEST_F(JobTools, HaveNoScreen) {
  std::vector<std::uint8_t> bytes{1, 2, 3};
  EXPECT_EQ(tools_->getScreenImage(bytes), 0u);
  EXPECT_THAT(bytes, IsEmpty());
}

}  // namespace
}  // namespace Editor
