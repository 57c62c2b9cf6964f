#include "support/FakeJobTools.h"

#include <gtest/gtest.h>

#include "support/FakeCalls.h"

namespace Testing {

FakeJobTools::FakeJobTools(Calls& calls) : system(calls), additional(calls), calls_(calls) {}
FakeJobTools::~FakeJobTools() { EXPECT_EQ(standing_, 0) << "a temporary model that nobody destroyed"; }

void FakeJobTools::expectTemporary(const CMA::TemporaryCoreModel* model) const { EXPECT_EQ(model, created_); }

CMA::TemporaryCoreModel* FakeJobTools::createTemporaryModel() {
  created_ = nullptr;
  if (calls_.use("createTemporaryModel", 1, 0, [] { return call("createTemporaryModel"); }) != 0)
    created_ = &temporaryModel;
  if (created_ != nullptr) ++standing_;
  return created_;
}

void FakeJobTools::destroyTemporaryModel(CMA::TemporaryCoreModel* model) {
  EXPECT_EQ(model, &temporaryModel);
  if (--standing_ == 0) created_ = nullptr;
  calls_.use("destroyTemporaryModel", 1, 0, [] { return call("destroyTemporaryModel"); });
}

bool FakeJobTools::initTemporaryVoiceModel(CMA::TemporaryCoreModel* model, std::uint16_t number, bool normalVoice) {
  expectTemporary(model);
  if (calls_.use("initVoice", 1, 0, [&] { return call("initVoice", number, normalVoice ? "normal" : "drum"); }) == 0)
    return false;
  openTemporaryVoice(number, normalVoice);
  return true;
}

bool FakeJobTools::initTemporaryMultiModel(CMA::TemporaryCoreModel* model, std::uint32_t state) {
  expectTemporary(model);
  if (calls_.use("initMulti", 1, 0, [&] { return call("initMulti", state); }) == 0) return false;
  temporaryMulti = std::make_unique<FakeMulti>(calls_, "temporary.multi");
  return true;
}

bool FakeJobTools::initTemporaryArpeggioModel(CMA::TemporaryCoreModel* model, bool ofVoice, std::uint16_t number,
                                              bool asNew) {
  expectTemporary(model);
  const auto text = [&] { return call("initArpeggio", yesNo(ofVoice), number, yesNo(asNew)); };
  if (calls_.use("initArpeggio", 1, 0, text) == 0) return false;
  temporaryArpeggio = std::make_unique<FakeArpeggio>(calls_, "temporary.arpeggio");
  return true;
}

bool FakeJobTools::initTemporaryMasterModel(CMA::TemporaryCoreModel* model) {
  expectTemporary(model);
  if (calls_.use("initMaster", 1, 0, [] { return call("initMaster"); }) == 0) return false;
  temporaryMaster = std::make_unique<FakeMaster>(calls_, "temporary.master");
  return true;
}

bool FakeJobTools::initTemporaryRemoteModel(CMA::TemporaryCoreModel* model) {
  expectTemporary(model);
  if (calls_.use("initRemote", 1, 0, [] { return call("initRemote"); }) == 0) return false;
  temporaryRemote = std::make_unique<FakeRemote>(calls_, "temporary.remote");
  return true;
}

CMA::VoiceParameterModel* FakeJobTools::getTemporaryVoiceModel(CMA::TemporaryCoreModel* model, std::uint16_t number) {
  expectTemporary(model);
  return givenModel(calls_, "temporary.voice", temporaryVoice(number));
}
CMA::MultiParameterModel* FakeJobTools::getTemporaryMultiModel(CMA::TemporaryCoreModel* model) {
  expectTemporary(model);
  return givenModel(calls_, "temporary.multi", temporaryMulti.get());
}
CMA::ArpeggioParameterModel* FakeJobTools::getTemporaryArpeggioModel(CMA::TemporaryCoreModel* model) {
  expectTemporary(model);
  return givenModel(calls_, "temporary.arpeggio", temporaryArpeggio.get());
}
CMA::MasterParameterModel* FakeJobTools::getTemporaryMasterModel(CMA::TemporaryCoreModel* model) {
  expectTemporary(model);
  return givenModel(calls_, "temporary.master", temporaryMaster.get());
}
CMA::RemoteParameterModel* FakeJobTools::getTemporaryRemoteModel(CMA::TemporaryCoreModel* model) {
  expectTemporary(model);
  return givenModel(calls_, "temporary.remote", temporaryRemote.get());
}

CMA::VoiceParameterModel* FakeJobTools::getVoiceModel(std::uint16_t number) {
  return givenModel(calls_, "voice", number < 16 ? &liveVoice(number) : nullptr);
}
CMA::MultiParameterModel* FakeJobTools::getMultiModel() { return givenModel(calls_, "multi", &liveMulti()); }
CMA::ArpeggioParameterModel* FakeJobTools::getArpeggioModel() {
  return givenModel(calls_, "arpeggio", &liveArpeggio());
}
CMA::MasterParameterModel* FakeJobTools::getMasterModel() { return givenModel(calls_, "master", &liveMaster()); }
CMA::RemoteParameterModel* FakeJobTools::getRemoteModel() { return givenModel(calls_, "remote", &liveRemote()); }
CMA::SystemParameterModel* FakeJobTools::getSystemModel() { return givenModel(calls_, "system", &system); }
CMA::AdditionalParameterModel* FakeJobTools::getAdditionalModel() {
  return givenModel(calls_, "additional", &additional);
}

unsigned long FakeJobTools::loadForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid,
                                                     std::uint8_t lo) {
  expectTemporary(model);
  const long result = calls_.use("load", CMA::JOB::Result_Success, CMA::JOB::Result_CurrentStateError, [&] {
    return "load(" + textOf({mid, lo}) + ")";
  });
  if (result == CMA::JOB::Result_Success) openAll(mid != 0x20 && mid != 0x21 && mid != 0x28);
  return static_cast<unsigned long>(result);
}

unsigned long FakeJobTools::storeForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid,
                                                      std::uint8_t lo) {
  expectTemporary(model);
  return static_cast<unsigned long>(
      calls_.use("store", CMA::JOB::Result_Success, CMA::JOB::Result_CurrentStateError, [&] {
        return "store(" + textOf({mid, lo}) + ")";
      }));
}

unsigned long FakeJobTools::checkModeForReceivedSysExBulk(CMA::TemporaryCoreModel* model, unsigned char hi,
                                                          unsigned char mid, unsigned char lo) {
  expectTemporary(model);
  return static_cast<unsigned long>(
      calls_.use("checkMode", CMA::JOB::Result_Success, CMA::JOB::Result_CurrentStateError, [&] {
        return "checkMode(" + textOf({hi, mid, lo}) + ")";
      }));
}

std::uint32_t FakeJobTools::getVoiceContentNumber(std::uint8_t bank, std::uint8_t number) {
  const long contentNumber = bank * 256L + number;
  return static_cast<std::uint32_t>(calls_.use("voiceContentNumber", contentNumber, contentNumber,
                                               [&] { return call("voiceContentNumber", bank, number); }));
}

void FakeJobTools::suspendOutputMidi() {
  calls_.use("suspendOutputMidi", 1, 0, [] { return call("suspendOutputMidi"); });
}
void FakeJobTools::resumeOutputMidi() {
  calls_.use("resumeOutputMidi", 1, 0, [] { return call("resumeOutputMidi"); });
}

unsigned long FakeJobTools::getWaveformContentName(std::uint32_t number, std::uint8_t bank, std::string& name) {
  const long result = calls_.use("waveformName", CMA::JOB::Result_Success, CMA::JOB::Result_UnknownError,
                                 [&] { return call("waveformName", number, bank); });
  if (result == CMA::JOB::Result_Success) name = contentName;
  return static_cast<unsigned long>(result);
}
unsigned long FakeJobTools::getArpeggioContentName(std::uint32_t number, std::uint8_t bank, std::string& name) {
  const long result = calls_.use("arpeggioName", CMA::JOB::Result_Success, CMA::JOB::Result_UnknownError,
                                 [&] { return call("arpeggioName", number, bank); });
  if (result == CMA::JOB::Result_Success) name = contentName;
  return static_cast<unsigned long>(result);
}
EvtSrv::EventPortManager* FakeJobTools::getEventPortManager() {
  return givenModel(calls_, "eventPortManager", manager);
}
std::uint32_t FakeJobTools::getScreenImage(std::vector<std::uint8_t>& bytes) {
  const long result = calls_.use("screenImage", 0, 1, [] { return call("screenImage"); });
  bytes = result == 0 ? screenImage : Bytes{};
  return static_cast<std::uint32_t>(result);
}

FakeVoice& FakeJobTools::liveVoice(std::uint16_t number, bool normal) {
  std::unique_ptr<FakeVoice>& voice = liveVoices_[number];
  if (voice == nullptr) voice = std::make_unique<FakeVoice>(calls_, "voice[" + std::to_string(number) + "]", normal);
  return *voice;
}
FakeMulti& FakeJobTools::liveMulti() {
  if (liveMulti_ == nullptr) liveMulti_ = std::make_unique<FakeMulti>(calls_, "multi");
  return *liveMulti_;
}
FakeArpeggio& FakeJobTools::liveArpeggio() {
  if (liveArpeggio_ == nullptr) liveArpeggio_ = std::make_unique<FakeArpeggio>(calls_, "arpeggio");
  return *liveArpeggio_;
}
FakeMaster& FakeJobTools::liveMaster() {
  if (liveMaster_ == nullptr) liveMaster_ = std::make_unique<FakeMaster>(calls_, "master");
  return *liveMaster_;
}
FakeRemote& FakeJobTools::liveRemote() {
  if (liveRemote_ == nullptr) liveRemote_ = std::make_unique<FakeRemote>(calls_, "remote");
  return *liveRemote_;
}

FakeVoice* FakeJobTools::temporaryVoice(std::uint16_t number) {
  const auto found = temporaryVoices_.find(number);
  return found == temporaryVoices_.end() ? nullptr : found->second.get();
}

// One voice at a time: opening one closes the one before it.
void FakeJobTools::openTemporaryVoice(std::uint16_t number, bool normal) {
  temporaryVoices_.clear();
  temporaryVoices_[number] = std::make_unique<FakeVoice>(calls_, "temporary.voice", normal);
}

void FakeJobTools::openAll(bool normalVoice) {
  openTemporaryVoice(0, normalVoice);
  temporaryMulti = std::make_unique<FakeMulti>(calls_, "temporary.multi");
  temporaryArpeggio = std::make_unique<FakeArpeggio>(calls_, "temporary.arpeggio");
  temporaryMaster = std::make_unique<FakeMaster>(calls_, "temporary.master");
  temporaryRemote = std::make_unique<FakeRemote>(calls_, "temporary.remote");
}

}  // namespace Testing
