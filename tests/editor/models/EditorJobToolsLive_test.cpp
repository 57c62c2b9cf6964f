#include "models/EditorJobTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "EditorJobToolsFixture.h"

namespace Editor {
namespace {

using namespace CMA::JOB;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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

TEST_F(LiveStore, TakesWhatIsDamagedAsNewAndLeavesItAsItIsUntilItIsReplaced) {
  store_.live["drum"] = emptySetFor(4);
  EditorJobTools tools(store_);
  EXPECT_THAT(tools.damage(EditBuffer::drumVoice), HasSubstr("other models than asked for"));
  EXPECT_EQ(tools.damage(EditBuffer::normalVoice), "");
  EXPECT_EQ(tools.live(EditBuffer::drumVoice), emptySetFor(8));
  std::vector<std::string> saved;
  set(tools.getSystemModel()->getUtility(), 0, 1);
  EXPECT_TRUE(tools.saveChanged(saved));
  EXPECT_THAT(saved, ElementsAre("system"));
  EXPECT_EQ(store_.live["drum"], emptySetFor(4));
  EXPECT_TRUE(tools.replaceLive(EditBuffer::drumVoice, 0, emptySetFor(8)));
  EXPECT_EQ(tools.damage(EditBuffer::drumVoice), "");
  EXPECT_EQ(store_.live["drum"], emptySetFor(8));
}

TEST_F(LiveStore, KeepsTheVoicesOfTheKindThatIsStoredWhereTheirMultiIsDamaged) {
  store_.live["multi"] = emptySetFor(4);
  store_.live["part:3"] = emptySetFor(8);
  EditorJobTools tools(store_);
  EXPECT_TRUE(tools.live(EditBuffer::partVoice, 3).voice->isDrum());
  EXPECT_THAT(tools.damage(EditBuffer::partVoice, 3), HasSubstr("damaged")) << "with its multi";
  std::vector<std::string> saved;
  tools.getVoiceModel(0);
  EXPECT_TRUE(tools.saveChanged(saved));
  EXPECT_EQ(store_.live["part:3"], emptySetFor(8));
}

TEST_F(LiveStore, RefusesToStartWhereTheStoreFails) {
  store_.failure = "the disk is full";
  EXPECT_THROW(EditorJobTools{store_}, LiveModelError);
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

}  // namespace
}  // namespace Editor
