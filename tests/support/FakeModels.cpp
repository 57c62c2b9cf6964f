#include "support/FakeModels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "support/FakeCalls.h"

namespace Testing {
namespace {

template <typename Node>
std::vector<std::unique_ptr<Node>> nodes(std::size_t count, Calls& calls, const std::string& path) {
  std::vector<std::unique_ptr<Node>> made;
  for (std::size_t i = 0; i < count; ++i)
    made.push_back(std::make_unique<Node>(calls, path + "[" + std::to_string(i) + "]"));
  return made;
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

}  // namespace

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

}  // namespace Testing
