#pragma once

// The models of an editor: parameters and names, and the trees of them.

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bda/platform/CMA/ParameterModels.h"
#include "support/Calls.h"
#include "support/FakeEventPorts.h"

namespace Testing {

// A parameter group of 256 parameters, all 0. Recorded: "set(system.utility, 50, 1, flag 1)"; "set16(...)" and
// "get16(...)" for the 16-bit overloads; "get(system.utility, 50)". Its getter counts under its path.
class FakeGroup : public CMA::ParameterGroup {
 public:
  FakeGroup(Calls& calls, std::string path) : calls_(calls), path_(std::move(path)), values_(256) {}

  bool get(std::uint8_t* value, std::uint16_t index) const override;
  bool get(std::uint16_t* value, std::uint16_t index) const override;
  bool set(const std::uint8_t* value, std::uint16_t index, int flag) override;
  bool set(const std::uint16_t* value, std::uint16_t index, int flag) override;

  const std::string& path() const { return path_; }
  // The group as a model hands it out; null when scripted so.
  CMA::ParameterGroup* given();

  std::uint16_t& operator[](std::size_t index) { return values_[index]; }
  // The parameters of which no one has said anything are 0; these many exist.
  void resize(std::size_t count) { values_.resize(count); }

 private:
  Calls& calls_;
  std::string path_;
  std::vector<std::uint16_t> values_;
};

// Recorded: "setName(voice.name, text)" and "getName(voice.name)".
class FakeName : public ModelSrv::ModelPart {
 public:
  FakeName(Calls& calls, std::string path) : calls_(calls), path_(std::move(path)) {}

  void setToServer(const char* text, int index) override;
  void getFromServer(char* buffer, std::size_t capacity) const override;
  ModelSrv::ModelPart* given();

  std::string text;

 private:
  Calls& calls_;
  std::string path_;
};

// Models: each is a tree of groups and names under a path; see the .cpp for the paths.
struct FakeVoice : CMA::VoiceParameterModel {
  FakeVoice(Calls& recordedCalls, const std::string& recordedPath, bool normal);
  ~FakeVoice() override;
  ModelSrv::ModelPart* getName() override { return name.given(); }
  CMA::ParameterGroup* getType() override { return type.given(); }
  CMA::ParameterGroup* getCommon() override { return common.given(); }
  CMA::ParameterGroup* getCommonExtra() override { return commonExtra.given(); }
  CMA::ParameterGroup* getArpeggioCommon() override { return arpeggioCommon.given(); }
  CMA::ParameterGroup* getArpeggioTempo() override { return arpeggioTempo.given(); }
  std::uint32_t getArpeggioEntryIndex() override { return arpeggioEntryIndex; }
  CMA::ParameterGroup* getArpeggioEntry(std::uint32_t entry) override;
  CMA::ParameterGroup* getArpeggioSix() override { return arpeggioSix.given(); }
  CMA::ParameterGroup* getInsertionA() override { return insertionA.given(); }
  CMA::ParameterGroup* getInsertionB() override { return insertionB.given(); }
  CMA::ParameterGroup* getInsertionL() override { return insertionL.given(); }
  ElementNode* getElement(std::uint32_t element) override;
  KeyNode* getKey(std::uint32_t key) override;

  struct Element;
  struct Key;
  Calls& calls;
  std::string path;
  FakeName name;
  FakeGroup type, common, commonExtra, arpeggioCommon, arpeggioTempo, arpeggioEntry, arpeggioSix;
  FakeGroup insertionA, insertionB, insertionL;
  std::uint32_t arpeggioEntryIndex = 0;
  std::vector<std::unique_ptr<Element>> elements;
  std::vector<std::unique_ptr<Key>> keys;
};
struct FakeVoice::Element : CMA::VoiceParameterModel::ElementNode {
  struct Exceptional : ExceptionalParam8 {
    Exceptional(Calls& recordedCalls, std::string recordedPath) : calls(recordedCalls), path(std::move(recordedPath)) {}
    void changeCorrectType(bool correct) override;
    Calls& calls;
    std::string path;
  };
  Element(Calls& calls, const std::string& path)
      : params(calls, path + ".params"), wave(calls, path + ".wave"), exceptional(calls, path) {}
  CMA::ParameterGroup* getParams() override { return params.given(); }
  CMA::ParameterGroup* getWave() override { return wave.given(); }
  ExceptionalParam8* getExceptionalParam() override { return &exceptional; }
  FakeGroup params, wave;
  Exceptional exceptional;
};
struct FakeVoice::Key : CMA::VoiceParameterModel::KeyNode {
  Key(Calls& calls, const std::string& path) : params(calls, path + ".params"), wave(calls, path + ".wave") {}
  CMA::ParameterGroup* getParams() override { return params.given(); }
  CMA::ParameterGroup* getWave() override { return wave.given(); }
  FakeGroup params, wave;
};

struct FakeMulti : CMA::MultiParameterModel {
  FakeMulti(Calls& recordedCalls, const std::string& recordedPath);
  ~FakeMulti() override;
  ModelSrv::ModelPart* getName() override { return name.given(); }
  CMA::ParameterGroup* getCommon() override { return common.given(); }
  CMA::ParameterGroup* getReverb() override { return reverb.given(); }
  CMA::ParameterGroup* getReverbSettings() override { return reverbSettings.given(); }
  CMA::ParameterGroup* getChorus() override { return chorus.given(); }
  CMA::ParameterGroup* getChorusSettings() override { return chorusSettings.given(); }
  CMA::ParameterGroup* getInsertionA() override { return insertionA.given(); }
  CMA::ParameterGroup* getInsertionB() override { return insertionB.given(); }
  CMA::ParameterGroup* getMasterEq() override { return masterEq.given(); }
  CMA::ParameterGroup* getMasterEffect() override { return masterEffect.given(); }
  CMA::ParameterGroup* getMasterEffectSettings() override { return masterEffectSettings.given(); }
  AdPartNode* getAdPart(std::uint32_t part) override;
  PartNode* getPart(std::uint32_t part) override;
  void insertionSwitchAllOff() override;

  struct Part;
  struct AdPart;
  Calls& calls;
  std::string path;
  FakeName name;
  FakeGroup common, reverb, reverbSettings, chorus, chorusSettings, insertionA, insertionB;
  FakeGroup masterEq, masterEffect, masterEffectSettings;
  std::vector<std::unique_ptr<Part>> parts;
  std::unique_ptr<AdPart> adPart;
};
struct FakeMulti::Part : CMA::MultiParameterModel::PartNode {
  Part(Calls& recordedCalls, const std::string& recordedPath)
      : calls(recordedCalls),
        path(recordedPath),
        bankProgram(calls, path + ".bankProgram"),
        main(calls, path + ".main"),
        extra(calls, path + ".extra") {}
  CMA::ParameterGroup* getBankProgram() override { return bankProgram.given(); }
  CMA::ParameterGroup* getMain() override { return main.given(); }
  CMA::ParameterGroup* getExtra() override { return extra.given(); }
  bool correctBankSelAndProgramNum(std::uint32_t part, std::uint8_t& bankSelectMsb, std::uint8_t& bankSelectLsb,
                                   std::uint8_t& programNumber, bool bulk) override;
  Calls& calls;
  std::string path;
  FakeGroup bankProgram, main, extra;
};
struct FakeMulti::AdPart : CMA::MultiParameterModel::AdPartNode {
  AdPart(Calls& calls, const std::string& path) : params(calls, path + ".params") {}
  CMA::ParameterGroup* getParams() override { return params.given(); }
  FakeGroup params;
};

struct FakeArpeggio : CMA::ArpeggioParameterModel {
  FakeArpeggio(Calls& recordedCalls, const std::string& recordedPath);
  ~FakeArpeggio() override;
  CMA::ParameterGroup* getTempo() override { return tempo.given(); }
  CMA::ParameterGroup* getCommon() override { return common.given(); }
  PartNode* getPart(std::uint32_t part) override;

  struct Part;
  Calls& calls;
  std::string path;
  FakeGroup tempo, common;
  std::vector<std::unique_ptr<Part>> parts;
};
struct FakeArpeggio::Part : CMA::ArpeggioParameterModel::PartNode {
  Part(Calls& calls, const std::string& path) : params(calls, path + ".params"), six(calls, path + ".six") {}
  CMA::ParameterGroup* getParams() override { return params.given(); }
  CMA::ParameterGroup* getSix() override { return six.given(); }
  FakeGroup params, six;
};

struct FakeMaster : CMA::MasterParameterModel {
  FakeMaster(Calls& recordedCalls, const std::string& recordedPath);
  ~FakeMaster() override;
  ModelSrv::ModelPart* getName() override { return name.given(); }
  CMA::ParameterGroup* getCommon() override { return common.given(); }
  ZoneNode* getZone(std::uint32_t zone) override;

  struct Zone;
  Calls& calls;
  std::string path;
  FakeName name;
  FakeGroup common;
  std::vector<std::unique_ptr<Zone>> zones;
};
struct FakeMaster::Zone : CMA::MasterParameterModel::ZoneNode {
  Zone(Calls& calls, const std::string& path) : params(calls, path + ".params") {}
  CMA::ParameterGroup* getParams() override { return params.given(); }
  FakeGroup params;
};

struct FakeRemote : CMA::RemoteParameterModel {
  FakeRemote(Calls& recordedCalls, const std::string& recordedPath);
  ~FakeRemote() override;
  ModelSrv::ModelPart* getName1() override { return name1.given(); }
  ModelSrv::ModelPart* getName2() override { return name2.given(); }
  CMA::ParameterGroup* getCommon() override { return common.given(); }
  ControllerNode* getController(std::uint32_t controller) override;

  struct Controller;
  Calls& calls;
  std::string path;
  FakeName name1, name2;
  FakeGroup common;
  std::vector<std::unique_ptr<Controller>> controllers;
};
struct FakeRemote::Controller : CMA::RemoteParameterModel::ControllerNode {
  Controller(Calls& calls, const std::string& path)
      : name1(calls, path + ".name1"), name2(calls, path + ".name2"), params(calls, path + ".params") {}
  ModelSrv::ModelPart* getName1() override { return name1.given(); }
  ModelSrv::ModelPart* getName2() override { return name2.given(); }
  CMA::ParameterGroup* getParams() override { return params.given(); }
  FakeName name1, name2;
  FakeGroup params;
};

// Receive-bulk is on and the device number is 1, as in a new editor.
struct FakeSystem : CMA::SystemParameterModel {
  explicit FakeSystem(Calls& recordedCalls);
  ~FakeSystem() override;
  CMA::ParameterGroup* getCommon() override { return common.given(); }
  CMA::ParameterGroup* getTune() override { return tune.given(); }
  AdPartNode* getAdPart(std::uint32_t part) override;
  CMA::ParameterGroup* getMasterEq() override { return masterEq.given(); }
  CMA::ParameterGroup* getMasterEffect() override { return masterEffect.given(); }
  CMA::ParameterGroup* getMasterEffectSettings() override { return masterEffectSettings.given(); }
  QuickSetupNode* getQuickSetup(std::uint32_t quickSetup) override;
  CMA::ParameterGroup* getSequencer() override { return sequencer.given(); }
  CMA::ParameterGroup* getRemote() override { return remote.given(); }
  CMA::ParameterGroup* getUtility() override { return utility.given(); }

  struct AdPart;
  struct QuickSetup;
  Calls& calls;
  FakeGroup common, tune, masterEq, masterEffect, masterEffectSettings, sequencer, remote, utility;
  std::unique_ptr<AdPart> adPart;
  std::vector<std::unique_ptr<QuickSetup>> quickSetups;
};
struct FakeSystem::AdPart : CMA::SystemParameterModel::AdPartNode {
  AdPart(Calls& calls, const std::string& path)
      : params(calls, path + ".params"),
        insertionA(calls, path + ".insertionA"),
        insertionB(calls, path + ".insertionB") {}
  CMA::ParameterGroup* getParams() override { return params.given(); }
  CMA::ParameterGroup* getInsertionA() override { return insertionA.given(); }
  CMA::ParameterGroup* getInsertionB() override { return insertionB.given(); }
  FakeGroup params, insertionA, insertionB;
};
struct FakeSystem::QuickSetup : CMA::SystemParameterModel::QuickSetupNode {
  QuickSetup(Calls& calls, const std::string& path) : name(calls, path + ".name"), params(calls, path + ".params") {}
  ModelSrv::ModelPart* getName() override { return name.given(); }
  CMA::ParameterGroup* getParams() override { return params.given(); }
  FakeName name;
  FakeGroup params;
};

struct FakeAdditional : CMA::AdditionalParameterModel {
  explicit FakeAdditional(Calls& recordedCalls)
      : calls(recordedCalls), params(calls, "additional.params"), eventPort(calls, "additional") {}
  CMA::ParameterGroup* getParams() override { return params.given(); }
  EvtSrv::EventPort* getEventPort() override;
  Calls& calls;
  FakeGroup params;
  FakeEventPort eventPort;
};

}  // namespace Testing
