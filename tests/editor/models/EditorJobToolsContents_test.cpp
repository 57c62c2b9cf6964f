#include "models/EditorJobTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "EditorJobToolsFixture.h"

namespace Editor {
namespace {

using namespace CMA::JOB;
using testing::IsEmpty;

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

}  // namespace
}  // namespace Editor
