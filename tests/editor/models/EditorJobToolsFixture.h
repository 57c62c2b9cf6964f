#pragma once

// The editor's job tools on a store in memory, with a temporary model that is filled as received blocks fill it.

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ModelMaker.h"
#include "bda/platform/StmcSrv/State.h"
#include "models/EditorJobTools.h"
#include "support/MemoryContentStore.h"

namespace Editor {

inline constexpr auto kVoice = ContSrv::ContType_Voice;
inline const ContentId kUserVoice{kVoice, 0x3F0805};  // 0A 05
inline const ContentId kUserDrum{kVoice, 0x3F2801};   // 28 01

inline void set(ArrayGroup& group, std::uint16_t index, std::uint16_t value) {
  ASSERT_TRUE(group.set(&value, index, 1));
}
inline void set(CMA::ParameterGroup* group, std::uint16_t index, std::uint8_t value) {
  ASSERT_NE(group, nullptr);
  ASSERT_TRUE(group->set(&value, index, 1));
}
inline int get(CMA::ParameterGroup* group, std::uint16_t index) {
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
    ASSERT_EQ(check(0x0E, 0x5F, 0), CMA::JOB::Result_Success);
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

}  // namespace Editor
