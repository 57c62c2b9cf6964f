#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bda/platform/CMA/JobTools.h"
#include "support/Bytes.h"
#include "support/Calls.h"
#include "support/FakeModels.h"

namespace Testing {

struct FakeTemporaryCoreModel : CMA::TemporaryCoreModel {};

// Everything live exists: voices 0 to 15 as normal voices (see liveVoice), one multi and so on. A temporary model is
// there once it was initialised; a load that succeeds opens all of them. Names of the calls: createTemporaryModel,
// destroyTemporaryModel, initVoice, initMulti, initArpeggio, initMaster, initRemote, temporary.voice (and so on, the
// getters), voice, multi, arpeggio, master, remote, system, additional, load, store, checkMode, voiceContentNumber,
// suspendOutputMidi, resumeOutputMidi, waveformName, arpeggioName, eventPortManager, screenImage.
class FakeJobTools : public CMA::JobTools {
 public:
  explicit FakeJobTools(Calls& calls);
  ~FakeJobTools() override;

  CMA::TemporaryCoreModel* createTemporaryModel() override;
  void destroyTemporaryModel(CMA::TemporaryCoreModel* model) override;
  bool initTemporaryVoiceModel(CMA::TemporaryCoreModel* model, std::uint16_t number, bool normalVoice) override;
  bool initTemporaryMultiModel(CMA::TemporaryCoreModel* model, std::uint32_t state) override;
  bool initTemporaryArpeggioModel(CMA::TemporaryCoreModel* model, bool ofVoice, std::uint16_t number,
                                  bool asNew) override;
  bool initTemporaryMasterModel(CMA::TemporaryCoreModel* model) override;
  bool initTemporaryRemoteModel(CMA::TemporaryCoreModel* model) override;
  CMA::VoiceParameterModel* getTemporaryVoiceModel(CMA::TemporaryCoreModel* model, std::uint16_t number) override;
  CMA::MultiParameterModel* getTemporaryMultiModel(CMA::TemporaryCoreModel* model) override;
  CMA::ArpeggioParameterModel* getTemporaryArpeggioModel(CMA::TemporaryCoreModel* model) override;
  CMA::MasterParameterModel* getTemporaryMasterModel(CMA::TemporaryCoreModel* model) override;
  CMA::RemoteParameterModel* getTemporaryRemoteModel(CMA::TemporaryCoreModel* model) override;
  CMA::VoiceParameterModel* getVoiceModel(std::uint16_t number) override;
  CMA::MultiParameterModel* getMultiModel() override;
  CMA::ArpeggioParameterModel* getArpeggioModel() override;
  CMA::MasterParameterModel* getMasterModel() override;
  CMA::RemoteParameterModel* getRemoteModel() override;
  CMA::SystemParameterModel* getSystemModel() override;
  CMA::AdditionalParameterModel* getAdditionalModel() override;
  unsigned long loadForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid, std::uint8_t lo) override;
  unsigned long storeForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid, std::uint8_t lo) override;
  unsigned long checkModeForReceivedSysExBulk(CMA::TemporaryCoreModel* model, unsigned char hi, unsigned char mid,
                                              unsigned char lo) override;
  std::uint32_t getVoiceContentNumber(std::uint8_t bank, std::uint8_t number) override;
  void suspendOutputMidi() override;
  void resumeOutputMidi() override;
  unsigned long getWaveformContentName(std::uint32_t number, std::uint8_t bank, std::string& name) override;
  unsigned long getArpeggioContentName(std::uint32_t number, std::uint8_t bank, std::string& name) override;
  EvtSrv::EventPortManager* getEventPortManager() override;
  std::uint32_t getScreenImage(std::vector<std::uint8_t>& bytes) override;

  // The live models, made when first asked for.
  FakeVoice& liveVoice(std::uint16_t number, bool normal = true);
  FakeMulti& liveMulti();
  FakeArpeggio& liveArpeggio();
  FakeMaster& liveMaster();
  FakeRemote& liveRemote();
  FakeSystem system;
  FakeAdditional additional;

  // The temporary models, null until opened.
  FakeVoice* temporaryVoice(std::uint16_t number = 0);
  std::unique_ptr<FakeMulti> temporaryMulti;
  std::unique_ptr<FakeArpeggio> temporaryArpeggio;
  std::unique_ptr<FakeMaster> temporaryMaster;
  std::unique_ptr<FakeRemote> temporaryRemote;
  void openTemporaryVoice(std::uint16_t number, bool normal);
  void openAll(bool normalVoice);

  FakeTemporaryCoreModel temporaryModel;
  EvtSrv::EventPortManager* manager = nullptr;
  std::string contentName = "name";
  Bytes screenImage;

 private:
  // A call that was not given the temporary model of this editor, or null where it has none, fails the test.
  void expectTemporary(const CMA::TemporaryCoreModel* model) const;

  Calls& calls_;
  CMA::TemporaryCoreModel* created_ = &temporaryModel;
  int standing_ = 0;  // temporary models that were created and not yet destroyed
  std::map<std::uint16_t, std::unique_ptr<FakeVoice>> liveVoices_;
  std::map<std::uint16_t, std::unique_ptr<FakeVoice>> temporaryVoices_;
  std::unique_ptr<FakeMulti> liveMulti_;
  std::unique_ptr<FakeArpeggio> liveArpeggio_;
  std::unique_ptr<FakeMaster> liveMaster_;
  std::unique_ptr<FakeRemote> liveRemote_;
};

}  // namespace Testing
