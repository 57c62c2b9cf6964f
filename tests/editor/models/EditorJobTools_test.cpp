#include "models/EditorJobTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <memory>

#include "ModelMaker.h"
#include "bda/platform/EvtSrv/EventPort.h"
#include "bda/platform/EvtSrv/EventPortManager.h"
#include "bda/platform/StmcSrv/State.h"
#include "support/MemoryContentStore.h"

namespace Editor {
namespace {

using namespace CMA::JOB;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kVoice = ContSrv::ContType_Voice;
const ContentId kUserVoice{kVoice, 0x3F0805};  // 0A 05
const ContentId kUserDrum{kVoice, 0x3F2801};   // 28 01

void set(ArrayGroup& group, std::uint16_t index, std::uint16_t value) { ASSERT_TRUE(group.set(&value, index, 1)); }
void set(CMA::ParameterGroup* group, std::uint16_t index, std::uint8_t value) {
  ASSERT_NE(group, nullptr);
  ASSERT_TRUE(group->set(&value, index, 1));
}
int get(CMA::ParameterGroup* group, std::uint16_t index) {
  std::uint8_t value = 0;
  return group != nullptr && group->get(&value, index) ? value : -1;
}

class EditorJobToolsTest : public testing::Test {
 protected:
  EditorJobToolsTest() { restart(); }
  ~EditorJobToolsTest() override { tools_->destroyTemporaryModel(temporary_); }

  // As if the editor was closed and opened again, with the same library.
  void restart() {
    if (tools_) tools_->destroyTemporaryModel(temporary_);
    tools_ = std::make_unique<EditorJobTools>(store_);
    temporary_ = tools_->createTemporaryModel();
  }

  void openVoice(std::uint16_t number, bool drum) {
    tools_->initTemporaryVoiceModel(temporary_, number, !drum);
    tools_->initTemporaryMultiModel(temporary_, StmcSrv::StateTyp_Void);
    tools_->initTemporaryArpeggioModel(temporary_, true, 0, true);
  }
  void openMulti() {
    tools_->initTemporaryMultiModel(temporary_, StmcSrv::StateTyp_Void);
    tools_->initTemporaryArpeggioModel(temporary_, false, 0, true);
  }

  // Fills what is open in the temporary model, as blocks do, and returns it.
  ModelSet receive(const ModelSet& shape, std::uint32_t seed, std::uint16_t number = 0) {
    ModelSet received = filled(shape, seed);
    if (received.voice) static_cast<VoiceModel&>(*tools_->getTemporaryVoiceModel(temporary_, number)) = *received.voice;
    if (received.multi) static_cast<MultiModel&>(*tools_->getTemporaryMultiModel(temporary_)) = *received.multi;
    if (received.arpeggio)
      static_cast<ArpeggioModel&>(*tools_->getTemporaryArpeggioModel(temporary_)) = *received.arpeggio;
    if (received.master) static_cast<MasterModel&>(*tools_->getTemporaryMasterModel(temporary_)) = *received.master;
    if (received.remote) static_cast<RemoteModel&>(*tools_->getTemporaryRemoteModel(temporary_)) = *received.remote;
    return received;
  }

  // The models that the temporary model holds.
  ModelSet temporaryModels(std::uint16_t number = 0) {
    ModelSet models;
    if (auto* const voice = tools_->getTemporaryVoiceModel(temporary_, number))
      models.voice = static_cast<VoiceModel&>(*voice);
    if (auto* const multi = tools_->getTemporaryMultiModel(temporary_)) models.multi = static_cast<MultiModel&>(*multi);
    if (auto* const arpeggio = tools_->getTemporaryArpeggioModel(temporary_))
      models.arpeggio = static_cast<ArpeggioModel&>(*arpeggio);
    if (auto* const master = tools_->getTemporaryMasterModel(temporary_))
      models.master = static_cast<MasterModel&>(*master);
    if (auto* const remote = tools_->getTemporaryRemoteModel(temporary_))
      models.remote = static_cast<RemoteModel&>(*remote);
    return models;
  }

  unsigned long load(int mid, int lo) {
    return tools_->loadForReceivedSysExBulk(temporary_, std::uint8_t(mid), std::uint8_t(lo));
  }
  unsigned long footer(int mid, int lo) {
    return tools_->storeForReceivedSysExBulk(temporary_, std::uint8_t(mid), std::uint8_t(lo));
  }
  unsigned long check(int hi, int mid, int lo) {
    return tools_->checkModeForReceivedSysExBulk(temporary_, static_cast<unsigned char>(hi),
                                                 static_cast<unsigned char>(mid), static_cast<unsigned char>(lo));
  }

  // Selects a bank for a part of the live multi.
  void selectBank(std::size_t part, unsigned bank) {
    ASSERT_EQ(check(0x0E, 0x5F, 0), Result_Success);
    CMA::ParameterGroup* const group = tools_->getMultiModel()->getPart(std::uint32_t(part))->getBankProgram();
    const std::uint32_t number = voiceContentNumber(bank, 0);
    set(group, 0, std::uint8_t(number >> 16));
    set(group, 1, std::uint8_t(number >> 8));
  }
  const VoiceModel& partVoice(int part) { return *tools_->live(EditBuffer::partVoice, std::uint8_t(part)).voice; }
  std::vector<std::string> saveChanged() {
    std::vector<std::string> saved;
    EXPECT_TRUE(tools_->saveChanged(saved)) << tools_->lastError();
    return saved;
  }

  MemoryContentStore store_;
  std::unique_ptr<EditorJobTools> tools_;
  CMA::TemporaryCoreModel* temporary_ = nullptr;
};

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

// ---- Which models are live -----------------------------------------------------------------------------------------

using LiveModels = EditorJobToolsTest;

// Which getters have something: v0 and v15 the voices 0 and 15, then multi, arpeggio, master, remote.
std::string there(EditorJobTools& tools) {
  std::string text;
  if (tools.getVoiceModel(0) != nullptr) text += tools.getVoiceModel(0)->getKey(0) != nullptr ? "d0 " : "v0 ";
  if (tools.getVoiceModel(15) != nullptr) text += "v15 ";
  if (tools.getMultiModel() != nullptr) text += "multi ";
  if (tools.getArpeggioModel() != nullptr) text += "arpeggio ";
  if (tools.getMasterModel() != nullptr) text += "master ";
  if (tools.getRemoteModel() != nullptr) text += "remote ";
  return text;
}

TEST_F(LiveModels, AreThoseOfTheMultiBeforeAnyAddress) {
  EXPECT_EQ(tools_->current(), EditBuffer::multi);
  EXPECT_EQ(there(*tools_), "v0 v15 multi arpeggio ");
  EXPECT_EQ(tools_->getVoiceModel(16), nullptr);
}

TEST_F(LiveModels, FollowTheEditBufferThatAnAddressNames) {
  for (const int hi : {0x0E, 0x0F}) {
    EXPECT_EQ(check(hi, 0x0F, 0), Result_Success);
    EXPECT_EQ(there(*tools_), "v0 multi arpeggio ");
    EXPECT_EQ(check(hi, 0x2F, 0), Result_Success);
    EXPECT_EQ(there(*tools_), "d0 multi arpeggio ");
    EXPECT_EQ(check(hi, 0x4F, 0), Result_Success);
    EXPECT_EQ(there(*tools_), "multi arpeggio ");
    EXPECT_EQ(tools_->current(), EditBuffer::performance);
    EXPECT_EQ(check(hi, 0x7F, 0), Result_Success);
    EXPECT_EQ(there(*tools_), "master ");
    EXPECT_EQ(check(hi, 0x6F, 0), Result_Success);
    EXPECT_EQ(there(*tools_), "remote ");
    EXPECT_EQ(check(hi, 0x5F, 0), Result_Success);
    EXPECT_EQ(there(*tools_), "v0 v15 multi arpeggio ");
  }
}

TEST_F(LiveModels, OfAPartVoiceAreThoseOfTheMulti) {
  EXPECT_EQ(check(0x0E, 0x5F, 0), Result_Success);
  auto* const multi = tools_->getMultiModel();
  EXPECT_EQ(check(0x0E, 0x4F, 0), Result_Success);
  EXPECT_NE(tools_->getMultiModel(), multi) << "the performance has a multi of its own";
  EXPECT_EQ(check(0x0E, 0x30, 3), Result_Success);
  EXPECT_EQ(tools_->getMultiModel(), multi);
  EXPECT_EQ(tools_->current(), EditBuffer::multi);
}

TEST_F(LiveModels, StayThroughAllOtherAddresses) {
  EXPECT_EQ(check(0x0E, 0x7F, 0), Result_Success);
  for (const auto& [hi, mid] : {std::pair{0x0E, 0x00},
                                {0x0F, 0x0A},
                                {0x0E, 0x31},
                                {0x40, 0x0F},
                                {0x00, 0x5F},
                                {0x0C, 0x7F},
                                {0x71, 0x2F},
                                {0x01, 0x30}}) {
    EXPECT_EQ(check(hi, mid, 0), Result_Success);
    EXPECT_EQ(tools_->current(), EditBuffer::master) << hi << ' ' << mid;
  }
}

TEST_F(LiveModels, DoNotOverwriteEachOther) {
  for (const int mid : {0x0F, 0x2F, 0x4F, 0x5F}) {
    check(0x0E, mid, 0);
    set(tools_->getMultiModel()->getCommon(), 0, std::uint8_t(mid));
  }
  for (const int mid : {0x0F, 0x2F, 0x4F, 0x5F}) {
    check(0x0E, mid, 0);
    EXPECT_EQ(get(tools_->getMultiModel()->getCommon(), 0), mid);
  }
}

TEST_F(LiveModels, SystemAndAdditionalAreAlwaysThere) {
  auto* const system = tools_->getSystemModel();
  auto* const additional = tools_->getAdditionalModel();
  ASSERT_NE(system, nullptr);
  ASSERT_NE(additional, nullptr);
  check(0x0E, 0x7F, 0);
  EXPECT_EQ(tools_->getSystemModel(), system);
  EXPECT_EQ(tools_->getAdditionalModel(), additional);
}

TEST_F(LiveModels, OfAFreshLibraryReceiveBulkDumpsForDevice1AndAreZeroOtherwise) {
  ModelSet system = systemSet();
  set(system.system->utility, SystemModel::kReceiveBulk, 1);
  EXPECT_EQ(differingPaths(systemSet(), tools_->liveSystem()), std::vector<std::string>{"system.utility[50]"});
  EXPECT_EQ(tools_->liveSystem(), system);
  EXPECT_EQ(get(tools_->getSystemModel()->getUtility(), 51), 0);
  EXPECT_EQ(tools_->liveAdditional(), additionalSet());
  EXPECT_EQ(tools_->live(EditBuffer::normalVoice), emptySetFor(4));
  EXPECT_EQ(tools_->live(EditBuffer::drumVoice), emptySetFor(8));
  EXPECT_EQ(tools_->live(EditBuffer::multi), emptySetFor(11));
  EXPECT_EQ(tools_->live(EditBuffer::performance), emptySetFor(13));
  EXPECT_EQ(tools_->live(EditBuffer::master), emptySetFor(15));
  EXPECT_EQ(tools_->live(EditBuffer::remote), emptySetFor(17));
  for (int part = 0; part < 16; ++part) EXPECT_EQ(partVoice(part), VoiceModel(false));
}

// ---- Voices of the multi's parts -----------------------------------------------------------------------------------

using PartVoices = EditorJobToolsTest;

TEST_F(PartVoices, AreDrumVoicesExactlyInDrumBanks) {
  for (unsigned bank = 0; bank < kBankCount; ++bank) {
    selectBank(7, bank);
    EXPECT_EQ(partVoice(7).isDrum(), bank == 11 || bank == 12 || bank == 14) << bank;
    EXPECT_EQ(tools_->getVoiceModel(7), static_cast<const CMA::VoiceParameterModel*>(&partVoice(7)));
    EXPECT_EQ(get(tools_->getVoiceModel(7)->getType(), 0), isDrumBank(bank));
    EXPECT_FALSE(partVoice(6).isDrum()) << "only part 7 changes";
  }
}

TEST_F(PartVoices, AreNormalVoicesInUnknownBanks) {
  selectBank(0, 12);
  EXPECT_TRUE(partVoice(0).isDrum());
  set(tools_->getMultiModel()->getPart(0)->getBankProgram(), 1, 0x32);
  EXPECT_FALSE(partVoice(0).isDrum());
}

TEST_F(PartVoices, AreFreshAfterTheirKindHasChangedOnly) {
  set(tools_->getVoiceModel(2)->getCommon(), 0, 9);
  selectBank(2, 8);
  EXPECT_EQ(get(tools_->getVoiceModel(2)->getCommon(), 0), 9) << "a bank of the same kind";
  selectBank(2, 12);
  EXPECT_EQ(partVoice(2), VoiceModel(true));
  set(tools_->getVoiceModel(2)->getCommon(), 0, 9);
  selectBank(2, 11);
  EXPECT_EQ(get(tools_->getVoiceModel(2)->getCommon(), 0), 9);
  selectBank(2, 0);
  EXPECT_EQ(partVoice(2), VoiceModel(false));
}

TEST_F(PartVoices, FollowTheBankOfTheMultiAndNoOther) {
  check(0x0E, 0x4F, 0);
  set(tools_->getMultiModel()->getPart(1)->getBankProgram(), 0, 0x7F);  // GM drums, in the performance
  EXPECT_FALSE(partVoice(1).isDrum());
}

TEST_F(PartVoices, FollowAReceivedMulti) {
  set(tools_->getVoiceModel(3)->getCommon(), 0, 3);
  set(tools_->getVoiceModel(4)->getCommon(), 0, 4);
  openMulti();
  set(tools_->getTemporaryMultiModel(temporary_)->getPart(4)->getBankProgram(), 0, 0x7F);
  ASSERT_EQ(footer(0x5F, 0), Result_Success);
  EXPECT_EQ(partVoice(4), VoiceModel(true));
  EXPECT_EQ(get(tools_->getVoiceModel(3)->getCommon(), 0), 3);
  EXPECT_EQ(*store_.live.at("part:4").voice, VoiceModel(true)) << "stored in the same breath";
}

TEST_F(PartVoices, AreDrumVoicesAgainAfterARestart) {
  selectBank(9, 14);
  set(tools_->getVoiceModel(9)->getKey(72)->getParams(), 124, 5);
  saveChanged();
  restart();
  EXPECT_TRUE(partVoice(9).isDrum());
  EXPECT_EQ(get(tools_->getVoiceModel(9)->getKey(72)->getParams(), 124), 5);
  selectBank(9, 0);
  EXPECT_EQ(partVoice(9), VoiceModel(false)) << "still watched";
}

// ---- Loading -------------------------------------------------------------------------------------------------------

using Load = EditorJobToolsTest;

TEST_F(Load, FillsTheTemporaryModelWithTheContent) {
  struct Case {
    int mid, lo;
    ContentId id;
    unsigned headerType;
  };
  for (const Case& one :
       {Case{0x00, 5, {kVoice, 0x3F0005}, 1}, Case{0x09, 1, {kVoice, 1}, 2}, Case{0x0A, 5, kUserVoice, 3},
        Case{0x20, 3, {kVoice, 0x3F2003}, 5}, Case{0x28, 1, kUserDrum, 6}, Case{0x21, 0, {kVoice, 0x7F0000}, 7},
        Case{0x31, 4, {kVoice, 0x3F3C04}, 10}, Case{0x41, 2, {kContentPerformance, 130}, 12},
        Case{0x70, 9, {kContentMaster, 9}, 14}, Case{0x60, 9, {kContentRemote, 9}, 16}}) {
    restart();
    store_.contents[one.id] = {"x", filled(emptySetFor(one.headerType), 5)};
    EXPECT_EQ(load(one.mid, one.lo), Result_Success) << one.mid;
    EXPECT_EQ(temporaryModels(), store_.contents[one.id].models) << one.mid;
    EXPECT_EQ(tools_->lastError(), "");
  }
}

TEST_F(Load, ReadsAVoiceUnderNumberZero) {
  store_.contents[kUserVoice] = {"x", filled(emptySetFor(3), 5)};
  openVoice(7, true);
  EXPECT_EQ(load(0x0A, 5), Result_Success);
  EXPECT_NE(tools_->getTemporaryVoiceModel(temporary_, 0), nullptr);
  EXPECT_EQ(tools_->getTemporaryVoiceModel(temporary_, 7), nullptr);
}

TEST_F(Load, FailsForAnEmptySlotAndLeavesTheTemporaryModel) {
  openVoice(0, false);
  const ModelSet received = receive(emptySetFor(1), 8);
  EXPECT_EQ(load(0x0A, 5), Result_UnknownError);
  EXPECT_EQ(tools_->lastError(), "nothing is stored there");
  EXPECT_EQ(temporaryModels(), received);
}

TEST_F(Load, FailsForOpaqueBytesAndSaysWhy) {
  store_.opaque[kUserVoice] = "it begins with 00";
  EXPECT_EQ(load(0x0A, 5), Result_UnknownError);
  EXPECT_EQ(tools_->lastError(), "it begins with 00");
  EXPECT_EQ(temporaryModels(), ModelSet());
}

TEST_F(Load, FailsForAContentOfAnotherShape) {
  store_.contents[kUserDrum] = {"x", emptySetFor(1)};
  EXPECT_EQ(load(0x28, 1), Result_UnknownError);
  EXPECT_EQ(tools_->lastError(), "other models than asked for");
}

TEST_F(Load, FailsForAnAddressWithoutContent) {
  for (const auto& [mid, lo] : {std::pair{0x0F, 0}, {0x30, 3}, {0x5F, 0}, {0x08, 0}, {0x60, 0x32}, {0xFF, 0xFF}}) {
    EXPECT_EQ(load(mid, lo), Result_UnknownError) << mid;
    EXPECT_EQ(tools_->lastError(), "the address names no content");
  }
}

TEST_F(Load, ForgetsTheErrorWithTheNextSuccess) {
  load(0x0A, 5);
  store_.contents[kUserVoice] = {"x", emptySetFor(3)};
  EXPECT_EQ(load(0x0A, 5), Result_Success);
  EXPECT_EQ(tools_->lastError(), "");
}

// ---- Storing -------------------------------------------------------------------------------------------------------

using Store = EditorJobToolsTest;

TEST_F(Store, KeepsAReceivedContentWithItsName) {
  struct Case {
    int mid, lo;
    ContentId id;
    unsigned headerType;
  };
  for (const Case& one :
       {Case{0x00, 5, {kVoice, 0x3F0005}, 1}, Case{0x09, 1, {kVoice, 1}, 2}, Case{0x0C, 5, {kVoice, 0x3F0A05}, 3},
        Case{0x20, 3, {kVoice, 0x3F2003}, 5}, Case{0x28, 1, kUserDrum, 6}, Case{0x21, 0, {kVoice, 0x7F0000}, 7},
        Case{0x31, 4, {kVoice, 0x3F3C04}, 10}, Case{0x41, 2, {kContentPerformance, 130}, 12},
        Case{0x70, 9, {kContentMaster, 9}, 14}, Case{0x60, 9, {kContentRemote, 9}, 16}}) {
    restart();
    const ModelSet shape = emptySetFor(one.headerType);
    if (shape.voice) openVoice(0, shape.voice->isDrum());
    if (shape.multi && !shape.voice) openMulti();
    if (shape.master) tools_->initTemporaryMasterModel(temporary_);
    if (shape.remote) tools_->initTemporaryRemoteModel(temporary_);
    const ModelSet received = receive(shape, 5);
    EXPECT_EQ(footer(one.mid, one.lo), Result_Success) << one.mid;
    EXPECT_EQ(tools_->lastError(), "");
    ASSERT_EQ(store_.contents.count(one.id), 1u) << one.mid;
    EXPECT_EQ(store_.contents[one.id].models, received);
    EXPECT_EQ(store_.contents[one.id].name, nameOf(received));
    EXPECT_NE(store_.contents[one.id].name, "");
  }
  EXPECT_EQ(store_.contents.size(), 10u);
  EXPECT_THAT(store_.liveStores, IsEmpty()) << "no edit buffer was touched";
}

TEST_F(Store, ReplacesOpaqueBytes) {
  store_.opaque[kUserVoice] = "whatever";
  openVoice(0, false);
  EXPECT_EQ(footer(0x0A, 5), Result_Success);
  EXPECT_EQ(store_.contents.count(kUserVoice), 1u);
}

TEST_F(Store, NeedsAHeaderSinceTheLastStore) {
  EXPECT_EQ(footer(0x0A, 5), Result_CurrentStateError);
  openVoice(0, false);
  EXPECT_EQ(footer(0x0A, 5), Result_Success);
  EXPECT_EQ(footer(0x0A, 5), Result_CurrentStateError) << "stored already";
  EXPECT_EQ(footer(0x0F, 0), Result_CurrentStateError);
  openVoice(0, false);
  EXPECT_EQ(footer(0x0F, 0), Result_Success);
  EXPECT_EQ(footer(0x0F, 0), Result_CurrentStateError);
  EXPECT_EQ(tools_->lastError(), "no header has opened what is to be stored there");
}

TEST_F(Store, NeedsWhatTheHeaderOfThatAddressOpens) {
  openMulti();
  for (const auto& [mid, lo] : {std::pair{0x0A, 5},
                                {0x28, 1},
                                {0x31, 0},
                                {0x0F, 0},
                                {0x2F, 0},
                                {0x30, 0},
                                {0x70, 0},
                                {0x7F, 0},
                                {0x60, 0},
                                {0x6F, 0}})
    EXPECT_EQ(footer(mid, lo), Result_CurrentStateError) << mid;
  EXPECT_THAT(store_.contents, IsEmpty());
  EXPECT_THAT(store_.liveStores, IsEmpty());
  EXPECT_EQ(footer(0x40, 0), Result_Success);
}

TEST_F(Store, NeedsEachOfTheModels) {
  tools_->initTemporaryVoiceModel(temporary_, 0, true);
  tools_->initTemporaryMultiModel(temporary_, StmcSrv::StateTyp_Void);
  EXPECT_EQ(footer(0x0A, 5), Result_CurrentStateError);
  tools_->initTemporaryArpeggioModel(temporary_, true, 0, true);
  EXPECT_EQ(footer(0x0A, 5), Result_Success);
}

TEST_F(Store, DoesNotTakeTheVoiceOfAPartForASingleOne) {
  openVoice(5, false);
  EXPECT_EQ(footer(0x0A, 5), Result_CurrentStateError);
  EXPECT_EQ(footer(0x0F, 0), Result_CurrentStateError);
  EXPECT_EQ(footer(0x30, 4), Result_CurrentStateError);
  EXPECT_EQ(footer(0x30, 5), Result_Success);
  openVoice(0, false);
  EXPECT_EQ(footer(0x30, 5), Result_CurrentStateError);
}

TEST_F(Store, KeepsKindsOfVoicesApart) {
  openVoice(0, true);
  for (const auto& [mid, lo] : {std::pair{0x00, 0}, {0x09, 0}, {0x0A, 5}, {0x31, 2}, {0x0F, 0}, {0x30, 0}}) {
    EXPECT_EQ(footer(mid, lo), Result_VoiceTypeError) << mid;
    EXPECT_EQ(tools_->lastError(), "a drum voice does not go there");
  }
  openVoice(0, false);
  for (const auto& [mid, lo] : {std::pair{0x20, 0}, {0x21, 0}, {0x28, 1}, {0x2F, 0}}) {
    EXPECT_EQ(footer(mid, lo), Result_VoiceTypeError) << mid;
    EXPECT_EQ(tools_->lastError(), "a normal voice does not go there");
  }
  EXPECT_THAT(store_.contents, IsEmpty());
  EXPECT_THAT(store_.liveStores, IsEmpty());
}

TEST_F(Store, StoresNothingAfterALoad) {
  store_.contents[kUserVoice] = {"x", filled(emptySetFor(3), 5)};
  openVoice(0, false);
  EXPECT_EQ(load(0x0A, 5), Result_Success);
  EXPECT_EQ(footer(0x0A, 6), Result_CurrentStateError) << "the models that were received are gone";
  EXPECT_EQ(store_.contents.size(), 1u);
}

TEST_F(Store, GoesOnAfterALoadThatFailed) {
  openVoice(0, false);
  EXPECT_EQ(load(0x0A, 5), Result_UnknownError);
  EXPECT_EQ(footer(0x0A, 6), Result_Success);
}

TEST_F(Store, FailsForAnAddressThatDoesNotExist) {
  openVoice(0, false);
  for (const auto& [mid, lo] : {std::pair{0x08, 0}, {0x0F, 1}, {0x30, 16}, {0x60, 0x32}, {0xFF, 0}}) {
    EXPECT_EQ(footer(mid, lo), Result_UnknownError) << mid;
    EXPECT_EQ(tools_->lastError(), "the address names neither a content nor an edit buffer");
  }
}

TEST_F(Store, ThatFailsSaysWhyAndCanBeTriedAgain) {
  store_.failure = "the disk is full";
  openVoice(0, false);
  EXPECT_EQ(footer(0x0A, 5), Result_UnknownError);
  EXPECT_EQ(tools_->lastError(), "the disk is full");
  EXPECT_THAT(store_.contents, IsEmpty());
  store_.failure.clear();
  EXPECT_EQ(footer(0x0A, 5), Result_Success);
  EXPECT_EQ(tools_->lastError(), "");
}

// ---- Edit buffers --------------------------------------------------------------------------------------------------

using EditBuffers = EditorJobToolsTest;

TEST_F(EditBuffers, TakeWhatWasReceivedAndKeepIt) {
  struct Case {
    int mid;
    EditBuffer buffer;
    unsigned headerType;
  };
  for (const Case& one : {Case{0x0F, EditBuffer::normalVoice, 4}, Case{0x2F, EditBuffer::drumVoice, 8},
                          Case{0x5F, EditBuffer::multi, 11}, Case{0x4F, EditBuffer::performance, 13},
                          Case{0x7F, EditBuffer::master, 15}, Case{0x6F, EditBuffer::remote, 17}}) {
    const ModelSet shape = emptySetFor(one.headerType);
    if (shape.voice) openVoice(0, shape.voice->isDrum());
    if (shape.multi && !shape.voice) openMulti();
    if (shape.master) tools_->initTemporaryMasterModel(temporary_);
    if (shape.remote) tools_->initTemporaryRemoteModel(temporary_);
    const ModelSet received = receive(shape, std::uint32_t(one.mid));
    EXPECT_EQ(footer(one.mid, 0), Result_Success) << one.mid;
    EXPECT_EQ(tools_->live(one.buffer), received) << one.mid;
    restart();
    EXPECT_EQ(tools_->live(one.buffer), received) << one.mid << " after a restart";
    EXPECT_THAT(saveChanged(), IsEmpty());
  }
  EXPECT_THAT(store_.contents, IsEmpty()) << "no content was touched";
}

TEST_F(EditBuffers, OfAPartTakesTheVoiceAndTheMultisEffectsAndNothingElse) {
  for (const bool drum : {false, true}) {
    restart();
    selectBank(5, drum ? 12 : 8);
    const ModelSet before = tools_->live(EditBuffer::multi);
    openVoice(5, drum);
    const ModelSet received = receive(emptySetFor(9, drum), 7, 5);
    EXPECT_EQ(footer(0x30, 5), Result_Success);

    ModelSet expected = before;
    expected.multi->reverb = received.multi->reverb;
    expected.multi->reverbSettings = received.multi->reverbSettings;
    expected.multi->chorus = received.multi->chorus;
    expected.multi->chorusSettings = received.multi->chorusSettings;
    expected.multi->part[0].extra = received.multi->part[0].extra;
    EXPECT_EQ(differingPaths(tools_->live(EditBuffer::multi), expected), std::vector<std::string>{});
    EXPECT_EQ(partVoice(5), *received.voice);
    EXPECT_EQ(partVoice(4), VoiceModel(false));

    restart();
    EXPECT_EQ(tools_->live(EditBuffer::multi), expected) << "after a restart";
    EXPECT_EQ(partVoice(5), *received.voice) << "after a restart";
  }
}

TEST_F(EditBuffers, OfAPartRefusesTheOtherKindOfVoice) {
  selectBank(5, 12);
  openVoice(5, false);
  EXPECT_EQ(footer(0x30, 5), Result_VoiceTypeError);
  openVoice(6, true);
  EXPECT_EQ(footer(0x30, 6), Result_VoiceTypeError);
}

TEST_F(EditBuffers, StayAsTheyAreWhenTheStoreFails) {
  selectBank(5, 8);
  saveChanged();
  const ModelSet multi = tools_->live(EditBuffer::multi);
  store_.failure = "the disk is full";

  openMulti();
  receive(emptySetFor(11), 7);
  set(tools_->getTemporaryMultiModel(temporary_)->getPart(4)->getBankProgram(), 0, 0x7F);
  set(tools_->getTemporaryMultiModel(temporary_)->getPart(4)->getBankProgram(), 1, 0x00);
  EXPECT_EQ(footer(0x5F, 0), Result_UnknownError);
  EXPECT_EQ(tools_->lastError(), "the disk is full");
  EXPECT_EQ(tools_->live(EditBuffer::multi), multi);
  EXPECT_FALSE(partVoice(4).isDrum());

  openVoice(5, false);
  receive(emptySetFor(9), 7, 5);
  EXPECT_EQ(footer(0x30, 5), Result_UnknownError);
  EXPECT_EQ(tools_->live(EditBuffer::multi), multi);
  EXPECT_EQ(partVoice(5), VoiceModel(false));
}

TEST_F(EditBuffers, OfTheMultiAndItsPartsAreStoredTogether) {
  openVoice(5, false);
  ASSERT_EQ(footer(0x30, 5), Result_Success);
  ASSERT_EQ(store_.liveStores.size(), 1u) << "all or nothing";
  EXPECT_THAT(store_.liveStores[0],
              ElementsAre("multi", "part:0", "part:1", "part:2", "part:3", "part:4", "part:5", "part:6", "part:7",
                          "part:8", "part:9", "part:10", "part:11", "part:12", "part:13", "part:14", "part:15"));
}

TEST_F(EditBuffers, CanBeReplacedByTheEditor) {
  const ModelSet drum = filled(emptySetFor(8), 4);
  EXPECT_TRUE(tools_->replaceLive(EditBuffer::drumVoice, 0, drum));
  EXPECT_EQ(tools_->live(EditBuffer::drumVoice), drum);
  EXPECT_EQ(store_.live.at("drum"), drum);

  ModelSet multi = emptySetFor(11);
  set(multi.multi->part[4].bankProgram, 0, 0x7F);
  EXPECT_TRUE(tools_->replaceLive(EditBuffer::multi, 0, multi));
  EXPECT_TRUE(partVoice(4).isDrum());

  ModelSet voice;
  voice.voice.emplace(true);
  set(voice.voice->common, 3, 3);
  EXPECT_TRUE(tools_->replaceLive(EditBuffer::partVoice, 4, voice));
  EXPECT_EQ(partVoice(4), *voice.voice);
  EXPECT_FALSE(tools_->replaceLive(EditBuffer::partVoice, 5, voice)) << "part 5 plays a normal voice";
  EXPECT_EQ(tools_->lastError(), "these are no models of \"part:5\"");
  EXPECT_EQ(partVoice(5), VoiceModel(false));

  const ModelSet system = filled(systemSet(), 4);
  EXPECT_TRUE(tools_->replaceSystem(system));
  EXPECT_EQ(tools_->liveSystem(), system);
  EXPECT_FALSE(tools_->replaceSystem(additionalSet()));
  const ModelSet additional = filled(additionalSet(), 4);
  EXPECT_TRUE(tools_->replaceAdditional(additional));
  EXPECT_THAT(saveChanged(), IsEmpty()) << "all of it is stored";
  restart();
  EXPECT_EQ(tools_->liveSystem(), system);
  EXPECT_EQ(tools_->liveAdditional(), additional);
  EXPECT_EQ(partVoice(4), *voice.voice);
}

// ---- Keeping the live models ---------------------------------------------------------------------------------------

using LiveStore = EditorJobToolsTest;

TEST_F(LiveStore, SavesWhatChangedAndSaysWhat) {
  EXPECT_THAT(saveChanged(), IsEmpty());
  EXPECT_THAT(store_.liveStores, IsEmpty()) << "nothing changed, nothing written";
  set(tools_->getSystemModel()->getUtility(), 51, 3);
  tools_->getSystemModel()->getQuickSetup(5)->getName()->setToServer("Drums", ModelSrv::ModelPartIndex_All);
  set(tools_->getAdditionalModel()->getParams(), 0, 1);
  EXPECT_THAT(saveChanged(), ElementsAre("system", "additional"));
  EXPECT_THAT(saveChanged(), IsEmpty());
  check(0x0E, 0x0F, 0);
  set(tools_->getVoiceModel(0)->getElement(7)->getWave(), 0, 1);
  EXPECT_THAT(saveChanged(), ElementsAre("voice"));
  restart();
  EXPECT_EQ(get(tools_->getSystemModel()->getUtility(), 51), 3);
  EXPECT_EQ(tools_->liveSystem().system->quickSetup[5].name.text(), "Drums");
  EXPECT_EQ(get(tools_->getAdditionalModel()->getParams(), 0), 1);
  EXPECT_EQ(tools_->live(EditBuffer::normalVoice).voice->element[7].wave.values()[0], 1);
}

TEST_F(LiveStore, SavesThePartVoiceThatABankHasChanged) {
  selectBank(3, 12);
  EXPECT_THAT(saveChanged(), ElementsAre("multi", "part:3"));
  EXPECT_EQ(store_.liveStores.back().size(), 17u) << "with all parts beside";
}

TEST_F(LiveStore, SavesAPartVoiceWhoseNodesAloneAreOfTheOtherKind) {
  set(tools_->getVoiceModel(3)->getType(), 0, 1);
  saveChanged();
  selectBank(3, 12);
  EXPECT_THAT(saveChanged(), ElementsAre("multi", "part:3"));
}

TEST_F(LiveStore, SavesWhatChangesInAPartVoiceAfterItsBank) {
  selectBank(3, 12);
  saveChanged();
  set(tools_->getVoiceModel(3)->getKey(72)->getParams(), 124, 5);
  EXPECT_THAT(saveChanged(), ElementsAre("part:3"));
}

TEST_F(LiveStore, SavesWhatChangesAfterAFooter) {
  openMulti();
  set(tools_->getTemporaryMultiModel(temporary_)->getPart(4)->getBankProgram(), 0, 0x7F);
  ASSERT_EQ(footer(0x5F, 0), Result_Success);
  set(tools_->getVoiceModel(4)->getKey(72)->getParams(), 124, 5);
  set(tools_->getMultiModel()->getPart(15)->getExtra(), 6, 1);
  EXPECT_THAT(saveChanged(), ElementsAre("multi", "part:4"));
}

TEST_F(LiveStore, ForgetsTheErrorWithTheNextSuccess) {
  EXPECT_EQ(footer(0x0A, 5), Result_CurrentStateError);
  EXPECT_NE(tools_->lastError(), "");
  saveChanged();
  EXPECT_EQ(tools_->lastError(), "");
  EXPECT_EQ(footer(0x0A, 5), Result_CurrentStateError);
  openVoice(0, false);
  EXPECT_EQ(footer(0x0A, 5), Result_Success);
  EXPECT_EQ(tools_->lastError(), "");
  EXPECT_EQ(footer(0x0A, 5), Result_CurrentStateError);
  EXPECT_TRUE(tools_->replaceSystem(systemSet()));
  EXPECT_EQ(tools_->lastError(), "");
}

TEST_F(LiveStore, StillHasToSaveWhatFailedToBeSaved) {
  set(tools_->getSystemModel()->getUtility(), 51, 3);
  store_.failure = "the disk is full";
  std::vector<std::string> saved;
  EXPECT_FALSE(tools_->saveChanged(saved));
  EXPECT_THAT(saved, IsEmpty());
  EXPECT_EQ(tools_->lastError(), "the disk is full");
  store_.failure.clear();
  EXPECT_THAT(saveChanged(), ElementsAre("system"));
}

TEST_F(LiveStore, SavesWhatChangedBeforeAlongWithAFooter) {
  set(tools_->getSystemModel()->getUtility(), 51, 3);
  openVoice(0, false);
  EXPECT_EQ(footer(0x0F, 0), Result_Success);
  EXPECT_THAT(store_.liveStores.back(), ElementsAre("voice", "system"));
  EXPECT_THAT(saveChanged(), IsEmpty());
}

TEST_F(LiveStore, ReadsAnewWhatWasTakenBack) {
  set(tools_->getSystemModel()->getUtility(), 51, 3);
  saveChanged();
  store_.live.clear();  // the transaction was taken back
  selectBank(2, 12);
  tools_->reload();
  EXPECT_EQ(get(tools_->getSystemModel()->getUtility(), 51), 0);
  EXPECT_FALSE(partVoice(2).isDrum());
  EXPECT_EQ(tools_->live(EditBuffer::multi), emptySetFor(11));
  EXPECT_THAT(saveChanged(), IsEmpty());
  selectBank(2, 12);
  EXPECT_TRUE(partVoice(2).isDrum()) << "still watched";
  EXPECT_THAT(saveChanged(), ElementsAre("multi", "part:2"));
}

TEST_F(LiveStore, RefusesToStartOverModelsThatCannotBeRead) {
  store_.live["drum"] = emptySetFor(4);
  try {
    EditorJobTools tools(store_);
    FAIL() << "the next save would overwrite them";
  } catch (const LiveModelError& error) {
    EXPECT_STREQ(error.what(), "the live models \"drum\" cannot be read: other models than asked for");
  }
  const ModelSet multi = tools_->live(EditBuffer::multi);
  EXPECT_THROW(tools_->reload(), LiveModelError);
  EXPECT_EQ(tools_->live(EditBuffer::multi), multi);
}

RC_GTEST_FIXTURE_PROP(LiveStore, HasExactlyTheLiveModelsAfterEverySave, ()) {
  for (int step = 0; step < 6; ++step) {
    const int mid = *rc::gen::element(0x0F, 0x2F, 0x30, 0x4F, 0x5F, 0x6F, 0x7F);
    const int lo = mid == 0x30 ? int(anyOf(0, 16)) : 0;
    const auto part = std::uint8_t(lo);
    ModelSet shape = emptySetFor(headerTypeOf({std::uint8_t(mid), part}), mid == 0x30 && partVoice(lo).isDrum());
    if (shape.voice) openVoice(part, shape.voice->isDrum());
    if (shape.multi && !shape.voice) openMulti();
    if (shape.master) tools_->initTemporaryMasterModel(temporary_);
    if (shape.remote) tools_->initTemporaryRemoteModel(temporary_);
    receive(shape, anySeed(), part);
    if (mid == 0x5F) {
      const std::uint32_t number = voiceContentNumber(anyOf(0, 16), 0);
      auto* const bank = tools_->getTemporaryMultiModel(temporary_)->getPart(3)->getBankProgram();
      set(bank, 0, std::uint8_t(number >> 16));
      set(bank, 1, std::uint8_t(number >> 8));
    }
    RC_ASSERT(footer(mid, lo) == Result_Success);
  }
  EditorJobTools other(store_);
  for (const EditBuffer buffer : {EditBuffer::normalVoice, EditBuffer::drumVoice, EditBuffer::multi,
                                  EditBuffer::performance, EditBuffer::master, EditBuffer::remote})
    RC_ASSERT(other.live(buffer) == tools_->live(buffer));
  for (std::uint8_t part = 0; part < 16; ++part)
    RC_ASSERT(other.live(EditBuffer::partVoice, part) == tools_->live(EditBuffer::partVoice, part));
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
