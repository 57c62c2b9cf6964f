#pragma once

// An editor without a store: one model of each kind, always open. What is measured through it is the module.

#include "bda/platform/CMA/JobTools.h"
#include "models/ModelSet.h"
#include "models/Models.h"

namespace Naive {

class FlatEditor final : public CMA::JobTools, public CMA::TemporaryCoreModel {
 public:
  FlatEditor() {
    constexpr std::uint8_t kOn = 1;
    system.getUtility()->set(&kOn, 50, 1);
  }

  CMA::TemporaryCoreModel* createTemporaryModel() override { return this; }
  void destroyTemporaryModel(CMA::TemporaryCoreModel*) override {}

  bool initTemporaryVoiceModel(CMA::TemporaryCoreModel*, std::uint16_t, bool) override { return true; }
  bool initTemporaryMultiModel(CMA::TemporaryCoreModel*, std::uint32_t) override { return true; }
  bool initTemporaryArpeggioModel(CMA::TemporaryCoreModel*, bool, std::uint16_t, bool) override { return true; }
  bool initTemporaryMasterModel(CMA::TemporaryCoreModel*) override { return false; }
  bool initTemporaryRemoteModel(CMA::TemporaryCoreModel*) override { return false; }

  CMA::VoiceParameterModel* getTemporaryVoiceModel(CMA::TemporaryCoreModel*, std::uint16_t) override { return &voice; }
  CMA::MultiParameterModel* getTemporaryMultiModel(CMA::TemporaryCoreModel*) override { return &multi; }
  CMA::ArpeggioParameterModel* getTemporaryArpeggioModel(CMA::TemporaryCoreModel*) override { return &arpeggio; }
  CMA::MasterParameterModel* getTemporaryMasterModel(CMA::TemporaryCoreModel*) override { return nullptr; }
  CMA::RemoteParameterModel* getTemporaryRemoteModel(CMA::TemporaryCoreModel*) override { return nullptr; }

  CMA::VoiceParameterModel* getVoiceModel(std::uint16_t) override { return &voice; }
  CMA::MultiParameterModel* getMultiModel() override { return &multi; }
  CMA::ArpeggioParameterModel* getArpeggioModel() override { return &arpeggio; }
  CMA::MasterParameterModel* getMasterModel() override { return nullptr; }
  CMA::RemoteParameterModel* getRemoteModel() override { return nullptr; }
  CMA::SystemParameterModel* getSystemModel() override { return &system; }
  CMA::AdditionalParameterModel* getAdditionalModel() override { return nullptr; }

  unsigned long loadForReceivedSysExBulk(CMA::TemporaryCoreModel*, std::uint8_t, std::uint8_t) override { return 0; }
  unsigned long storeForReceivedSysExBulk(CMA::TemporaryCoreModel*, std::uint8_t, std::uint8_t) override { return 0; }
  unsigned long checkModeForReceivedSysExBulk(CMA::TemporaryCoreModel*, unsigned char, unsigned char,
                                              unsigned char) override {
    return 0;
  }
  std::uint32_t getVoiceContentNumber(std::uint8_t bank, std::uint8_t number) override { return bank << 8 | number; }
  void suspendOutputMidi() override {}
  void resumeOutputMidi() override {}
  unsigned long getWaveformContentName(std::uint32_t, std::uint8_t, std::string&) override { return 0; }
  unsigned long getArpeggioContentName(std::uint32_t, std::uint8_t, std::string&) override { return 0; }
  EvtSrv::EventPortManager* getEventPortManager() override { return nullptr; }

  Editor::VoiceModel voice{false};
  Editor::MultiModel multi;
  Editor::ArpeggioModel arpeggio;
  Editor::SystemModel system;
};

}  // namespace Naive
