#pragma once

// An editor's side of the platform for tests: every call on it is written into one list, in order, and any use of any
// call can be made to fail, to answer something else, or to throw.

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "bda/BulkDumpAssistant.h"
#include "bda/platform/Basekit/Tracer.h"
#include "bda/platform/CMA/JobTools.h"
#include "bda/platform/ContSrv/ContSrv.h"
#include "bda/platform/EvtSrv/EventPort.h"
#include "bda/platform/EvtSrv/EventPortManager.h"
#include "bda/platform/UtilSrv/Thread.h"
#include "support/Bytes.h"

namespace Testing {

// The record that all fakes of one test write to. Each call has a short name (checkMode, store, set, system.utility for
// the getter of that group ...) under which its uses are counted, from 1, and scripted.
class Calls {
 public:
  // Use `nth` of the call, or every use if 0, fails: null, false or a failing result, whatever that call has.
  void fail(std::string_view name, unsigned nth = 0) { scripts_[std::string(name)][nth] = Script{Script::fails, 0}; }
  // ... answers `value`.
  void answer(std::string_view name, long value, unsigned nth = 0) {
    scripts_[std::string(name)][nth] = Script{Script::answers, value};
  }
  // ... throws std::bad_alloc.
  void raise(std::string_view name, unsigned nth = 0) { scripts_[std::string(name)][nth] = Script{Script::throws, 0}; }
  // ... runs `action` first, from inside the call.
  void during(std::string_view name, std::function<void()> action) { actions_[std::string(name)] = std::move(action); }
  // Everything works again; counting starts anew.
  void heal();
  // How often a call threw since construction or heal().
  unsigned thrown() const { return thrown_; }

  // How often each call was used since construction or heal().
  const std::map<std::string, unsigned, std::less<>>& uses() const { return uses_; }

  // What was recorded so far, and from here on anew.
  std::vector<std::string> take();
  const std::vector<std::string>& list() const { return list_; }

  // Getters and reads of parameters are counted, but recorded only on demand; log lines likewise.
  bool recordsReads = false;
  bool recordsTrace = false;
  // False: calls are neither recorded nor counted nor scripted, and nothing is allocated for them.
  bool records = true;

  // For the fakes. `text` makes the line to record; the answer is `good` unless scripted otherwise.
  template <typename Text>
  long use(std::string_view name, long good, long bad, Text text) {
    if (!records) return good;
    list_.push_back(text());
    return scripted(name, good, bad);
  }
  template <typename Text>
  long read(std::string_view name, long good, long bad, Text text) {
    if (!records) return good;
    if (recordsReads) list_.push_back(text());
    return scripted(name, good, bad);
  }
  void trace(const std::string& text) {
    if (recordsTrace) list_.push_back("trace: " + text);
  }

 private:
  struct Script {
    enum { fails, answers, throws } kind;
    long value;
  };
  long scripted(std::string_view name, long good, long bad);

  std::vector<std::string> list_;
  std::map<std::string, unsigned, std::less<>> uses_;
  unsigned thrown_ = 0;
  std::map<std::string, std::map<unsigned, Script>, std::less<>> scripts_;
  std::map<std::string, std::function<void()>, std::less<>> actions_;
};

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

// Recorded: "setId(11)" and "flush(messages)", with the port's name for what it flushes.
class FakeEventPort : public EvtSrv::EventPort {
 public:
  FakeEventPort(Calls& calls, std::string name) : calls_(calls), name_(std::move(name)) {}
  void post(std::uint16_t messageId) override;
  void flush(int mode) override;

  std::vector<int> posted;

 private:
  Calls& calls_;
  std::string name_;
};

class FakeEventPortManager : public EvtSrv::EventPortManager {
 public:
  explicit FakeEventPortManager(Calls& calls) : messages(calls, "messages"), calls_(calls) {}
  EvtSrv::EventPort* openPort(const char* modelName, unsigned char channel) override;
  ContSrv::Work* getContentsWork() override { return work; }

  FakeEventPort messages;
  ContSrv::Work* work = nullptr;

 private:
  Calls& calls_;
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

// A store in memory. Every call is recorded under the operation's own name and answers ContRes_Success, or what is
// scripted; a failing one changes nothing.
class FakeWork : public ContSrv::Work {
 public:
  explicit FakeWork(Calls& calls);
  ~FakeWork() override;

  unsigned char getLoadSaveFlag() override;
  ContSrv::_ContResult removeMixingVoice(ContSrv::_ContType type, unsigned long number, unsigned long voice) override;
  ContSrv::_ContResult getMixingVoiceName(ContSrv::_ContType type, unsigned long number, unsigned long voice,
                                          std::string& name) override;
  std::uint32_t getMixingVoiceNumber(ContSrv::_ContType type, unsigned long number, unsigned long voice) override;
  ContSrv::_ContResult getMixingVoiceSumSync(std::int64_t& count, std::int64_t& maximum) override;
  ContSrv::_ContResult requestOverWriteConfig(ContSrv::_ContType type) override;
  ContSrv::_ContResult removeContents(ContSrv::_ContType type, const std::vector<std::uint32_t>& numbers,
                                      bool sync) override;
  ContSrv::_ContResult removeContent(ContSrv::_ContType type, std::uint32_t number) override;
  ContSrv::_ContResult getDataFilePath(ContSrv::_ContType type, std::uint32_t number, std::string& path) override;
  ContSrv::_ContResult getContentName(ContSrv::_ContType type, std::uint32_t number, std::string& name) override;
  ContSrv::_ContResult setContentName(ContSrv::_ContType type, std::uint32_t number, const std::string& name,
                                      bool sync) override;
  ContSrv::DataFile* openDataFile(const std::string& path, ContSrv::_OpenMode mode) override;
  ContSrv::_ContResult closeDataFile(ContSrv::DataFile* file, int mode) override;
  ContSrv::_ContResult sync() override;
  ContSrv::_ContResult setContentFavoriteFlag(ContSrv::_ContType type, std::uint32_t number,
                                              ContSrv::_ContFavoriteFlag flag, bool last) override;
  ContSrv::_ContResult getContentInformation(ContSrv::_ContType type, std::uint32_t number,
                                             ContSrv::ContentInformation& information) override;

  using Place = std::pair<ContSrv::_ContType, std::uint32_t>;
  struct Content {
    std::string name;
    Bytes bytes;
  };
  std::map<Place, Content> contents;
  std::map<Place, std::uint8_t> favourites;
  std::int64_t mixingVoices = 0;
  std::int64_t maximumOfMixingVoices = 2048;

 private:
  struct File;
  Calls& calls_;
  std::unique_ptr<File> file_;  // the one that is open
};

// Recorded: "send(4, F0 7D ...)".
class FakeBridge : public BDA::BulkDumpBridge {
 public:
  FakeBridge(Calls& calls, BDA::BulkDumpAssistant* assistant) : BulkDumpBridge(assistant), calls_(calls) {}
  void sendSysEx(const unsigned char* message, std::uint32_t length, BDA::DevicePortNum port) override;

  struct Message {
    BDA::DevicePortNum port;
    Bytes bytes;
  };
  std::vector<Message> messages;
  std::vector<const unsigned char*> pointers;  // where each message stood when it was sent

 private:
  Calls& calls_;
};

// Recorded: "thread.attach", "thread.getPolicy", "thread.getPriority", "thread.change(2, 1, 0)", "thread.detach".
// Listens to the thread that made it, while it lives.
class RecordingThreadListener : public UtilSrv::ThreadListener {
 public:
  explicit RecordingThreadListener(Calls& calls) : calls_(calls), before_(UtilSrv::Thread::setThreadListener(this)) {}
  ~RecordingThreadListener() override { UtilSrv::Thread::setThreadListener(before_); }
  void attached() noexcept override;
  void policyRead() noexcept override;
  void priorityRead() noexcept override;
  void changed(UtilSrv::Thread::_PolicyType policy, UtilSrv::Thread::_PriorityType priority,
               int mode) noexcept override;
  void detached() noexcept override;

 private:
  Calls& calls_;
  UtilSrv::ThreadListener* before_;
};

// Collects what is traced on the thread that made it. Whoever expects lines takes them; lines that are left at its end
// fail the test.
class TraceScope : public Basekit::TracerSink {
 public:
  explicit TraceScope(Calls* calls = nullptr) : calls_(calls), before_(Basekit::Tracer::setThreadSink(this)) {}
  ~TraceScope() override;
  void write(const char* text, std::size_t length) noexcept override;
  std::vector<std::string> take();

 private:
  Calls* calls_;
  Basekit::TracerSink* before_;
  std::vector<std::string> lines_;
};

// The texts of one failure: its location in the family's source file ("Receiver") and its message.
std::vector<std::string> failure(std::string_view family, int line, std::string_view function,
                                 std::string_view message);
// Several of them in a row.
template <typename... More>
std::vector<std::string> lines(std::vector<std::string> first, const More&... more) {
  (first.insert(first.end(), more.begin(), more.end()), ...);
  return first;
}

}  // namespace Testing
