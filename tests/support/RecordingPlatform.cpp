#include "support/RecordingPlatform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace Testing {
namespace {

std::string call(std::string_view name) { return std::string(name); }
template <typename First, typename... More>
std::string call(std::string_view name, const First& first, const More&... more) {
  const auto text = [](const auto& value) {
    if constexpr (std::is_convertible_v<decltype(value), std::string>)
      return std::string(value);
    else
      return std::to_string(value);
  };
  std::string line = std::string(name) + "(" + text(first);
  ((line += ", " + text(more)), ...);
  return line + ")";
}

std::string yesNo(bool value) { return value ? "true" : "false"; }

template <typename Node>
std::vector<std::unique_ptr<Node>> nodes(std::size_t count, Calls& calls, const std::string& path) {
  std::vector<std::unique_ptr<Node>> made;
  for (std::size_t i = 0; i < count; ++i)
    made.push_back(std::make_unique<Node>(calls, path + "[" + std::to_string(i) + "]"));
  return made;
}

template <typename Made>
Made* givenModel(Calls& calls, std::string_view name, Made* model) {
  return calls.read(name, 1, 0, [&] { return std::string(name); }) != 0 ? model : nullptr;
}

// A node as a model hands it out: counted under its path, null beyond the last one or when scripted so. The path is put
// together only where it is counted: a string of some libraries has room for no more than 10 characters.
template <typename Node>
Node* givenNode(Calls& calls, const std::string& model, const char* part, std::uint32_t index, Node* node) {
  return calls.records ? givenModel(calls, model + part + "[" + std::to_string(index) + "]", node) : node;
}
template <typename Node>
Node* given(Calls& calls, const std::vector<std::unique_ptr<Node>>& nodes, const std::string& model, const char* part,
            std::uint32_t index) {
  return givenNode(calls, model, part, index, index < nodes.size() ? nodes[index].get() : nullptr);
}

constexpr long kStoreFailed = ContSrv::ContRes_Failure;

}  // namespace

void Calls::heal() {
  scripts_.clear();
  actions_.clear();
  uses_.clear();
  thrown_ = 0;
}

std::vector<std::string> Calls::take() { return std::exchange(list_, {}); }

long Calls::scripted(std::string_view name, long good, long bad) {
  auto use = uses_.find(name);
  if (use == uses_.end()) use = uses_.emplace(std::string(name), 0U).first;
  const unsigned nth = ++use->second;
  if (const auto action = actions_.find(name); action != actions_.end()) {
    const std::function<void()> run = action->second;
    run();
  }
  const auto scripts = scripts_.find(name);
  if (scripts == scripts_.end()) return good;
  auto script = scripts->second.find(nth);
  if (script == scripts->second.end()) script = scripts->second.find(0);
  if (script == scripts->second.end()) return good;
  switch (script->second.kind) {
    case Script::fails:
      return bad;
    case Script::answers:
      return script->second.value;
    case Script::throws:
      break;
  }
  ++thrown_;
  throw std::bad_alloc();
}

bool FakeGroup::get(std::uint8_t* value, std::uint16_t index) const {
  if (calls_.read("get", 1, 0, [&] { return call("get", path_, index); }) == 0 || index >= values_.size()) return false;
  *value = std::uint8_t(values_[index]);
  return true;
}

bool FakeGroup::get(std::uint16_t* value, std::uint16_t index) const {
  if (calls_.read("get16", 1, 0, [&] { return call("get16", path_, index); }) == 0 || index >= values_.size())
    return false;
  *value = values_[index];
  return true;
}

bool FakeGroup::set(const std::uint8_t* value, std::uint16_t index, int flag) {
  const auto text = [&] { return call("set", path_, index, *value, "flag " + std::to_string(flag)); };
  if (calls_.use("set", 1, 0, text) == 0 || index >= values_.size()) return false;
  values_[index] = *value;
  return true;
}

bool FakeGroup::set(const std::uint16_t* value, std::uint16_t index, int flag) {
  const auto text = [&] { return call("set16", path_, index, *value, "flag " + std::to_string(flag)); };
  if (calls_.use("set16", 1, 0, text) == 0 || index >= values_.size()) return false;
  values_[index] = *value;
  return true;
}

CMA::ParameterGroup* FakeGroup::given() {
  return calls_.read(path_, 1, 0, [&] { return path_; }) != 0 ? this : nullptr;
}

void FakeName::setToServer(const char* value, int index) {
  EXPECT_EQ(index, ModelSrv::ModelPartIndex_All);
  if (calls_.use("setName", 1, 0, [&] { return call("setName", path_, value); }) != 0) text = value;
}

void FakeName::getFromServer(char* buffer, std::size_t capacity) const {
  if (calls_.read("getName", 1, 0, [&] { return call("getName", path_); }) == 0) return;
  std::memcpy(buffer, text.data(), std::min(capacity, text.size()));
}

ModelSrv::ModelPart* FakeName::given() {
  return calls_.read(path_, 1, 0, [&] { return path_; }) != 0 ? this : nullptr;
}

void FakeEventPort::post(std::uint16_t messageId) {
  calls_.use("setId", 1, 0, [&] { return call("setId", messageId); });
  if (calls_.records) posted.push_back(messageId);
}

void FakeEventPort::flush(int mode) {
  calls_.use("flush", 1, 0, [&] { return mode == 0 ? call("flush", name_) : call("flush", name_, mode); });
}

EvtSrv::EventPort* FakeEventPortManager::openPort(const char* modelName, unsigned char channel) {
  return calls_.use("openPort", 1, 0, [&] { return call("openPort", modelName, channel); }) != 0 ? &messages : nullptr;
}

FakeVoice::FakeVoice(Calls& recordedCalls, const std::string& recordedPath, bool normal)
    : calls(recordedCalls),
      path(recordedPath),
      name(calls, path + ".name"),
      type(calls, path + ".type"),
      common(calls, path + ".common"),
      commonExtra(calls, path + ".commonExtra"),
      arpeggioCommon(calls, path + ".arpeggioCommon"),
      arpeggioTempo(calls, path + ".arpeggioTempo"),
      arpeggioEntry(calls, path + ".arpeggioEntry"),
      arpeggioSix(calls, path + ".arpeggioSix"),
      insertionA(calls, path + ".insertionA"),
      insertionB(calls, path + ".insertionB"),
      insertionL(calls, path + ".insertionL"),
      elements(nodes<Element>(normal ? 8 : 0, calls, path + ".element")),
      keys(nodes<Key>(normal ? 0 : 73, calls, path + ".key")) {
  type[0] = normal ? 0 : 1;
}
FakeVoice::~FakeVoice() = default;

CMA::ParameterGroup* FakeVoice::getArpeggioEntry(std::uint32_t entry) {
  return entry == arpeggioEntryIndex ? arpeggioEntry.given() : nullptr;
}
CMA::VoiceParameterModel::ElementNode* FakeVoice::getElement(std::uint32_t element) {
  return given(calls, elements, path, ".element", element);
}
CMA::VoiceParameterModel::KeyNode* FakeVoice::getKey(std::uint32_t key) {
  return given(calls, keys, path, ".key", key);
}
void FakeVoice::Element::Exceptional::changeCorrectType(bool correct) {
  calls.use("changeCorrectType", 1, 0, [&] { return call("changeCorrectType", path, yesNo(correct)); });
}

FakeMulti::FakeMulti(Calls& recordedCalls, const std::string& recordedPath)
    : calls(recordedCalls),
      path(recordedPath),
      name(calls, path + ".name"),
      common(calls, path + ".common"),
      reverb(calls, path + ".reverb"),
      reverbSettings(calls, path + ".reverbSettings"),
      chorus(calls, path + ".chorus"),
      chorusSettings(calls, path + ".chorusSettings"),
      insertionA(calls, path + ".insertionA"),
      insertionB(calls, path + ".insertionB"),
      masterEq(calls, path + ".masterEq"),
      masterEffect(calls, path + ".masterEffect"),
      masterEffectSettings(calls, path + ".masterEffectSettings"),
      parts(nodes<Part>(16, calls, path + ".part")),
      adPart(std::make_unique<AdPart>(calls, path + ".adPart[0]")) {}
FakeMulti::~FakeMulti() = default;

CMA::MultiParameterModel::AdPartNode* FakeMulti::getAdPart(std::uint32_t part) {
  return part == 0 ? givenNode(calls, path, ".adPart", 0, adPart.get()) : nullptr;
}
CMA::MultiParameterModel::PartNode* FakeMulti::getPart(std::uint32_t part) {
  return given(calls, parts, path, ".part", part);
}
void FakeMulti::insertionSwitchAllOff() {
  calls.use("insertionSwitchAllOff", 1, 0, [&] { return call("insertionSwitchAllOff", path); });
}
bool FakeMulti::Part::correctBankSelAndProgramNum(std::uint32_t part, std::uint8_t& bankSelectMsb,
                                                  std::uint8_t& bankSelectLsb, std::uint8_t& programNumber, bool bulk) {
  return calls.use("correctBankSelAndProgramNum", 1, 0, [&] {
    return call("correctBankSelAndProgramNum", path, part, bankSelectMsb, bankSelectLsb, programNumber, yesNo(bulk));
  }) != 0;
}

FakeArpeggio::FakeArpeggio(Calls& recordedCalls, const std::string& recordedPath)
    : calls(recordedCalls),
      path(recordedPath),
      tempo(calls, path + ".tempo"),
      common(calls, path + ".common"),
      parts(nodes<Part>(16, calls, path + ".part")) {}
FakeArpeggio::~FakeArpeggio() = default;
CMA::ArpeggioParameterModel::PartNode* FakeArpeggio::getPart(std::uint32_t part) {
  return given(calls, parts, path, ".part", part);
}

FakeMaster::FakeMaster(Calls& recordedCalls, const std::string& recordedPath)
    : calls(recordedCalls),
      path(recordedPath),
      name(calls, path + ".name"),
      common(calls, path + ".common"),
      zones(nodes<Zone>(4, calls, path + ".zone")) {}
FakeMaster::~FakeMaster() = default;
CMA::MasterParameterModel::ZoneNode* FakeMaster::getZone(std::uint32_t zone) {
  return given(calls, zones, path, ".zone", zone);
}

FakeRemote::FakeRemote(Calls& recordedCalls, const std::string& recordedPath)
    : calls(recordedCalls),
      path(recordedPath),
      name1(calls, path + ".name1"),
      name2(calls, path + ".name2"),
      common(calls, path + ".common"),
      controllers(nodes<Controller>(12, calls, path + ".controller")) {}
FakeRemote::~FakeRemote() = default;
CMA::RemoteParameterModel::ControllerNode* FakeRemote::getController(std::uint32_t controller) {
  return given(calls, controllers, path, ".controller", controller);
}

FakeSystem::FakeSystem(Calls& recordedCalls)
    : calls(recordedCalls),
      common(calls, "system.common"),
      tune(calls, "system.tune"),
      masterEq(calls, "system.masterEq"),
      masterEffect(calls, "system.masterEffect"),
      masterEffectSettings(calls, "system.masterEffectSettings"),
      sequencer(calls, "system.sequencer"),
      remote(calls, "system.remote"),
      utility(calls, "system.utility"),
      adPart(std::make_unique<AdPart>(calls, "system.adPart[0]")),
      quickSetups(nodes<QuickSetup>(6, calls, "system.quickSetup")) {
  utility[50] = 1;
}
FakeSystem::~FakeSystem() = default;
CMA::SystemParameterModel::AdPartNode* FakeSystem::getAdPart(std::uint32_t part) {
  return part == 0 ? givenModel(calls, "system.adPart[0]", adPart.get()) : nullptr;
}
CMA::SystemParameterModel::QuickSetupNode* FakeSystem::getQuickSetup(std::uint32_t quickSetup) {
  return given(calls, quickSetups, "system", ".quickSetup", quickSetup);
}

EvtSrv::EventPort* FakeAdditional::getEventPort() { return givenModel(calls, "additional.eventPort", &eventPort); }

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

struct FakeWork::File : ContSrv::DataFile, ContSrv::Data {
  File(Calls& recordedCalls, FakeWork& owner, Place openedPlace, bool forWriting)
      : calls(recordedCalls), work(owner), place(openedPlace), writes(forWriting) {
    if (!writes) bytes = work.contents[place].bytes;
  }

  ContSrv::Data* openData() override {
    return calls.use("openData", 1, 0, [] { return call("openData"); }) != 0 ? this : nullptr;
  }
  ContSrv::_ContResult closeData(ContSrv::Data* data) override {
    EXPECT_EQ(data, this);
    return close("closeData");
  }
  ContSrv::_ContResult closeDataWithoutSync(ContSrv::Data* data) override {
    EXPECT_EQ(data, this);
    return close("closeDataWithoutSync");
  }
  std::int64_t write(const std::uint8_t* from, std::int64_t size) override {
    const long written = calls.use("write", long(size), 0, [&] { return call("write", size); });
    bytes.insert(bytes.end(), from, from + std::clamp(written, 0L, long(size)));
    return written;
  }
  std::int64_t read(std::uint8_t* to, std::int64_t size) override {
    const std::int64_t left = std::min(size, std::int64_t(bytes.size() - position));
    const long count = calls.use("read", long(left), 0, [&] { return call("read", size); });
    const std::size_t copied = std::size_t(std::max(count, 0L));
    std::copy_n(bytes.begin() + std::ptrdiff_t(position), copied, to);
    position += copied;
    return count;
  }
  std::int64_t getSize() override {
    return calls.use("getSize", long(bytes.size()), 0, [] { return call("getSize"); });
  }

  ContSrv::_ContResult close(std::string_view name) {
    const long result = calls.use(name, ContSrv::ContRes_Success, kStoreFailed, [&] { return call(name); });
    if (result == ContSrv::ContRes_Success && writes) work.contents[place].bytes = bytes;
    return ContSrv::_ContResult(result);
  }

  Calls& calls;
  FakeWork& work;
  Place place;
  bool writes;
  Bytes bytes;
  std::size_t position = 0;
};

FakeWork::FakeWork(Calls& calls) : calls_(calls) {}
FakeWork::~FakeWork() { EXPECT_EQ(file_, nullptr) << "a file that nobody closed"; }

unsigned char FakeWork::getLoadSaveFlag() {
  return static_cast<unsigned char>(calls_.use("getLoadSaveFlag", 0, 1, [] { return call("getLoadSaveFlag"); }));
}

ContSrv::_ContResult FakeWork::removeMixingVoice(ContSrv::_ContType type, unsigned long number, unsigned long voice) {
  return ContSrv::_ContResult(calls_.use("removeMixingVoice", ContSrv::ContRes_Success, kStoreFailed,
                                         [&] { return call("removeMixingVoice", type, number, voice); }));
}

ContSrv::_ContResult FakeWork::getMixingVoiceName(ContSrv::_ContType type, unsigned long number, unsigned long voice,
                                                  std::string& name) {
  EXPECT_EQ(name, "");
  const long result = calls_.use("getMixingVoiceName", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("getMixingVoiceName", type, number, voice); });
  if (result == ContSrv::ContRes_Success) name = "Mixing";
  return ContSrv::_ContResult(result);
}

std::uint32_t FakeWork::getMixingVoiceNumber(ContSrv::_ContType type, unsigned long number, unsigned long voice) {
  const long answer = long(0x3F8000 + 16 * number + voice);
  return std::uint32_t(calls_.use("getMixingVoiceNumber", answer, answer,
                                  [&] { return call("getMixingVoiceNumber", type, number, voice); }));
}

ContSrv::_ContResult FakeWork::getMixingVoiceSumSync(std::int64_t& count, std::int64_t& maximum) {
  const long result = calls_.use("getMixingVoiceSumSync", ContSrv::ContRes_Success, kStoreFailed,
                                 [] { return call("getMixingVoiceSumSync"); });
  if (result == ContSrv::ContRes_Success) {
    count = mixingVoices;
    maximum = maximumOfMixingVoices;
  }
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::requestOverWriteConfig(ContSrv::_ContType type) {
  return ContSrv::_ContResult(calls_.use("requestOverWriteConfig", ContSrv::ContRes_Success, kStoreFailed,
                                         [&] { return call("requestOverWriteConfig", type); }));
}

ContSrv::_ContResult FakeWork::removeContents(ContSrv::_ContType type, const std::vector<std::uint32_t>& numbers,
                                              bool sync) {
  const long result = calls_.use("removeContents", ContSrv::ContRes_Success, kStoreFailed, [&] {
    std::string list;
    for (const std::uint32_t number : numbers) list += (list.empty() ? "" : " ") + std::to_string(number);
    return call("removeContents", type, "{" + list + "}", yesNo(sync));
  });
  if (result == ContSrv::ContRes_Success)
    for (const std::uint32_t number : numbers) contents.erase({type, number});
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::removeContent(ContSrv::_ContType type, std::uint32_t number) {
  const long result = calls_.use("removeContent", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("removeContent", type, number); });
  if (result == ContSrv::ContRes_Success) contents.erase({type, number});
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::getDataFilePath(ContSrv::_ContType type, std::uint32_t number, std::string& path) {
  const long result = calls_.use("getDataFilePath", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("getDataFilePath", type, number); });
  if (result == ContSrv::ContRes_Success) path = std::to_string(type) + "/" + std::to_string(number);
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::getContentName(ContSrv::_ContType type, std::uint32_t number, std::string& name) {
  const auto found = contents.find({type, number});
  const long good = found == contents.end() ? ContSrv::ContRes_EmptyContent : ContSrv::ContRes_Success;
  const long result =
      calls_.use("getContentName", good, kStoreFailed, [&] { return call("getContentName", type, number); });
  if (result == ContSrv::ContRes_Success && found != contents.end()) name = found->second.name;
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::setContentName(ContSrv::_ContType type, std::uint32_t number, const std::string& name,
                                              bool sync) {
  const long result = calls_.use("setContentName", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("setContentName", type, number, name, yesNo(sync)); });
  if (result == ContSrv::ContRes_Success) contents[{type, number}].name = name;
  return ContSrv::_ContResult(result);
}

ContSrv::DataFile* FakeWork::openDataFile(const std::string& path, ContSrv::_OpenMode mode) {
  const bool writes = mode == ContSrv::OpenMode_Write;
  const auto text = [&] { return call("openDataFile", path, writes ? "write" : "read"); };
  const bool opened = calls_.use("openDataFile", 1, 0, text) != 0;
  const std::size_t slash = path.find('/');
  if (!opened || slash == std::string::npos) return nullptr;
  const Place place{std::uint32_t(std::stoul(path.substr(0, slash))),
                    std::uint32_t(std::stoul(path.substr(slash + 1)))};
  if (!writes && contents.find(place) == contents.end()) return nullptr;
  EXPECT_EQ(file_, nullptr) << "one file at a time";
  file_ = std::make_unique<File>(calls_, *this, place, writes);
  return file_.get();
}

ContSrv::_ContResult FakeWork::closeDataFile(ContSrv::DataFile* file, int mode) {
  EXPECT_EQ(file, file_.get());
  file_.reset();
  return ContSrv::_ContResult(
      calls_.use("closeDataFile", ContSrv::ContRes_Success, kStoreFailed, [&] { return call("closeDataFile", mode); }));
}

ContSrv::_ContResult FakeWork::sync() {
  return ContSrv::_ContResult(calls_.use("sync", ContSrv::ContRes_Success, kStoreFailed, [] { return call("sync"); }));
}

ContSrv::_ContResult FakeWork::setContentFavoriteFlag(ContSrv::_ContType type, std::uint32_t number,
                                                      ContSrv::_ContFavoriteFlag flag, bool last) {
  const long result = calls_.use("setContentFavoriteFlag", ContSrv::ContRes_Success, kStoreFailed,
                                 [&] { return call("setContentFavoriteFlag", type, number, flag, yesNo(last)); });
  if (result == ContSrv::ContRes_Success) favourites[{type, number}] = flag;
  return ContSrv::_ContResult(result);
}

ContSrv::_ContResult FakeWork::getContentInformation(ContSrv::_ContType type, std::uint32_t number,
                                                     ContSrv::ContentInformation& information) {
  const bool stored = contents.find({type, number}) != contents.end();
  const long result =
      calls_.use("getContentInformation", stored ? ContSrv::ContRes_Success : ContSrv::ContRes_EmptyContent,
                 kStoreFailed, [&] { return call("getContentInformation", type, number); });
  const auto found = favourites.find({type, number});
  if (result < kStoreFailed && found != favourites.end()) information.favoriteFlag = found->second;
  return ContSrv::_ContResult(result);
}

void FakeBridge::sendSysEx(const unsigned char* message, std::uint32_t length, BDA::DevicePortNum port) {
  const auto text = [&] { return call("send", std::uint32_t{port}, textOf(message, length)); };
  if (calls_.use("send", 1, 0, text) == 0 || !calls_.records) return;
  messages.push_back({port, Bytes(message, message + length)});
  pointers.push_back(message);
}

void RecordingThreadListener::attached() noexcept {
  calls_.use("thread.attach", 1, 0, [] { return call("thread.attach"); });
}
void RecordingThreadListener::policyRead() noexcept {
  calls_.use("thread.getPolicy", 1, 0, [] { return call("thread.getPolicy"); });
}
void RecordingThreadListener::priorityRead() noexcept {
  calls_.use("thread.getPriority", 1, 0, [] { return call("thread.getPriority"); });
}
void RecordingThreadListener::changed(UtilSrv::Thread::_PolicyType policy, UtilSrv::Thread::_PriorityType priority,
                                      int mode) noexcept {
  calls_.use("thread.change", 1, 0, [&] { return call("thread.change", policy, priority, mode); });
}
void RecordingThreadListener::detached() noexcept {
  calls_.use("thread.detach", 1, 0, [] { return call("thread.detach"); });
}

TraceScope::~TraceScope() {
  Basekit::Tracer::setThreadSink(before_);
  for (const std::string& line : lines_) ADD_FAILURE() << "unexpected line: " << line;
}

void TraceScope::write(const char* text, std::size_t length) noexcept {
  lines_.emplace_back(text, length);
  if (calls_ != nullptr) calls_->trace(lines_.back());
}

std::vector<std::string> TraceScope::take() { return std::exchange(lines_, {}); }

std::vector<std::string> failure(std::string_view family, int line, std::string_view function,
                                 std::string_view message) {
  return {"..\\..\\bda\\" + std::string(family) + ".cpp:" + std::to_string(line) + " [" + std::string(function) + "] ",
          std::string(message)};
}

}  // namespace Testing
