#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "bda/platform/CMA/ParameterModels.h"

// The parameter models of the embedded editor: plain arrays behind the platform's interfaces. A model is a value: it
// can be copied and compared, and starts with every parameter 0 and every name empty.
//
// What a model consists of is said once, in its visitFields(): JSON, stored bytes and comparison all follow that.
namespace Editor {

// How many bits a parameter has: 8 or 16.
enum class Width : std::uint8_t { byte, word };

// Told after a group or a name got another value, whoever set it.
class ChangeWatcher {
 public:
  virtual void changed() = 0;

 protected:
  ~ChangeWatcher() = default;
};

// A pointer that belongs to the object, not to its value: a copy starts without, an assignment keeps its own.
template <typename Pointee>
class Wire {
 public:
  Wire() = default;
  Wire(const Wire&) noexcept {}
  Wire& operator=(const Wire&) noexcept { return *this; }  // NOLINT(bugprone-unhandled-self-assignment): no-op

  void connect(Pointee* pointee) { pointee_ = pointee; }
  Pointee* get() const { return pointee_; }

 private:
  Pointee* pointee_ = nullptr;
};

// A run of parameters, all of one width.
class ArrayGroup final : public CMA::ParameterGroup {
 public:
  explicit ArrayGroup(CMA::GroupSize size) : width_(size.bits == 8 ? Width::byte : Width::word), values_(size.count) {}
  ArrayGroup(const ArrayGroup&) = default;
  ArrayGroup& operator=(const ArrayGroup& other);

  Width width() const { return width_; }
  std::uint16_t maximum() const { return width_ == Width::byte ? 0xFF : 0xFFFF; }
  const std::vector<std::uint16_t>& values() const { return values_; }
  // Replaces all parameters; false, with nothing changed, unless there are as many of them and each fits the width.
  bool assign(const std::vector<std::uint16_t>& values);

  // A value that does not fit the pointer's type or the group's width counts as a parameter that is not there: nothing
  // is ever cut. `flag` is for listeners of the user interface, of which there are none; the watcher is told anyway.
  bool get(std::uint8_t* value, std::uint16_t index) const override;
  bool get(std::uint16_t* value, std::uint16_t index) const override;
  bool set(const std::uint8_t* value, std::uint16_t index, int flag) override;
  bool set(const std::uint16_t* value, std::uint16_t index, int flag) override;

  void watch(ChangeWatcher* watcher) { watcher_.connect(watcher); }
  bool operator==(const ArrayGroup& other) const { return width_ == other.width_ && values_ == other.values_; }

 private:
  Width width_;
  std::vector<std::uint16_t> values_;
  Wire<ChangeWatcher> watcher_;
};

// A name of at most `capacity` characters, bytes of ISO 8859-1 without zeros.
class NameText final : public ModelSrv::ModelPart {
 public:
  explicit NameText(std::size_t capacity) : capacity_(capacity) {}
  NameText(const NameText&) = default;
  NameText& operator=(const NameText& other);

  std::size_t capacity() const { return capacity_; }
  const std::string& text() const { return text_; }
  // False, with nothing changed, when `text` is longer than the capacity or holds a zero.
  bool assign(std::string_view text);

  void setToServer(const char* text, int index) override;
  void getFromServer(char* buffer, std::size_t capacity) const override;

  void watch(ChangeWatcher* watcher) { watcher_.connect(watcher); }
  bool operator==(const NameText& other) const { return capacity_ == other.capacity_ && text_ == other.text_; }

 private:
  std::size_t capacity_;
  std::string text_;
  Wire<ChangeWatcher> watcher_;
};

// Visits what `model` consists of, in the order of the published JSON:
//   visitor.group(key, group)        a run of parameters
//   visitor.name(key, name)          a name
//   visitor.list(key, count, visit)  nodes; visit(i) visits the fields of node i with the same visitor
// A const model is visited with const groups and names.
template <typename Model, typename Visitor>
void visitFields(Model& model, Visitor& visitor) {
  std::remove_const_t<Model>::fields(model, visitor);
}

template <typename Nodes, typename Visitor>
void visitNodes(const char* key, Nodes& nodes, Visitor& visitor) {
  visitor.list(key, nodes.size(), [&](std::size_t i) { visitFields(nodes[i], visitor); });
}

// The parts of a multi, each of which plays a voice.
inline constexpr std::size_t kParts = CMA::MultiParameterModel::kPartCount;

class VoiceModel final : public CMA::VoiceParameterModel {
 public:
  struct Element final : ElementNode {
    // Nothing depends on anything here: there is no correction to suspend.
    struct Uncorrected final : ExceptionalParam8 {
      void changeCorrectType(bool /*correct*/) override {}
    };

    ArrayGroup params{kParamsSize};
    ArrayGroup wave{kWaveSize};
    Uncorrected exceptional;

    CMA::ParameterGroup* getParams() override { return &params; }
    CMA::ParameterGroup* getWave() override { return &wave; }
    ExceptionalParam8* getExceptionalParam() override { return &exceptional; }

    template <typename Self, typename Visitor>
    static void fields(Self& self, Visitor& visitor) {
      visitor.group("params", self.params);
      visitor.group("wave", self.wave);
    }
  };

  struct Key final : KeyNode {
    ArrayGroup params{kParamsSize};
    ArrayGroup wave{kWaveSize};

    CMA::ParameterGroup* getParams() override { return &params; }
    CMA::ParameterGroup* getWave() override { return &wave; }

    template <typename Self, typename Visitor>
    static void fields(Self& self, Visitor& visitor) {
      visitor.group("params", self.params);
      visitor.group("wave", self.wave);
    }
  };

  // A fresh voice: a drum voice has 73 keys and type 1, a normal voice 8 elements and type 0.
  explicit VoiceModel(bool drum);
  // By what it is made of; parameter 0 of the type group is data like any other.
  bool isDrum() const { return !key.empty(); }

  NameText name{kNameLength};
  ArrayGroup type{kTypeSize};
  ArrayGroup common{kCommonSize};
  ArrayGroup commonExtra{kCommonExtraSize};
  ArrayGroup arpeggioCommon{kArpeggioCommonSize};
  ArrayGroup arpeggioTempo{kArpeggioTempoSize};
  ArrayGroup arpeggioEntry{kArpeggioEntrySize};
  ArrayGroup arpeggioSix{kArpeggioSixSize};
  ArrayGroup insertionA{kInsertionASize};
  ArrayGroup insertionB{kInsertionBSize};
  ArrayGroup insertionL{kInsertionLSize};
  std::vector<Element> element;
  std::vector<Key> key;

  ModelSrv::ModelPart* getName() override { return &name; }
  CMA::ParameterGroup* getType() override { return &type; }
  CMA::ParameterGroup* getCommon() override { return &common; }
  CMA::ParameterGroup* getCommonExtra() override { return &commonExtra; }
  CMA::ParameterGroup* getArpeggioCommon() override { return &arpeggioCommon; }
  CMA::ParameterGroup* getArpeggioTempo() override { return &arpeggioTempo; }
  // A voice has one entry, entry 0.
  std::uint32_t getArpeggioEntryIndex() override { return 0; }
  CMA::ParameterGroup* getArpeggioEntry(std::uint32_t entry) override { return entry == 0 ? &arpeggioEntry : nullptr; }
  CMA::ParameterGroup* getArpeggioSix() override { return &arpeggioSix; }
  CMA::ParameterGroup* getInsertionA() override { return &insertionA; }
  CMA::ParameterGroup* getInsertionB() override { return &insertionB; }
  CMA::ParameterGroup* getInsertionL() override { return &insertionL; }
  ElementNode* getElement(std::uint32_t i) override { return i < element.size() ? &element[i] : nullptr; }
  KeyNode* getKey(std::uint32_t i) override { return i < key.size() ? &key[i] : nullptr; }

  template <typename Self, typename Visitor>
  static void fields(Self& self, Visitor& visitor) {
    visitor.name("name", self.name);
    visitor.group("type", self.type);
    visitor.group("common", self.common);
    visitor.group("commonExtra", self.commonExtra);
    visitor.group("arpeggioCommon", self.arpeggioCommon);
    visitor.group("arpeggioTempo", self.arpeggioTempo);
    visitor.group("arpeggioEntry", self.arpeggioEntry);
    visitor.group("arpeggioSix", self.arpeggioSix);
    visitor.group("insertionA", self.insertionA);
    visitor.group("insertionB", self.insertionB);
    visitor.group("insertionL", self.insertionL);
    visitNodes("element", self.element, visitor);
    visitNodes("key", self.key, visitor);
  }
};

class MultiModel final : public CMA::MultiParameterModel {
 public:
  struct Part final : PartNode {
    ArrayGroup bankProgram{kBankProgramSize};
    ArrayGroup main{kMainSize};
    ArrayGroup extra{kExtraSize};

    CMA::ParameterGroup* getBankProgram() override { return &bankProgram; }
    CMA::ParameterGroup* getMain() override { return &main; }
    CMA::ParameterGroup* getExtra() override { return &extra; }
    // Changes nothing: true when the bank is known (a voice bank, or 3F/32) and has such a program.
    bool correctBankSelAndProgramNum(std::uint32_t part, std::uint8_t& bankSelectMsb, std::uint8_t& bankSelectLsb,
                                     std::uint8_t& programNumber, bool bulk) override;

    template <typename Self, typename Visitor>
    static void fields(Self& self, Visitor& visitor) {
      visitor.group("bankProgram", self.bankProgram);
      visitor.group("main", self.main);
      visitor.group("extra", self.extra);
    }
  };

  struct AdPart final : AdPartNode {
    ArrayGroup params{kParamsSize};

    CMA::ParameterGroup* getParams() override { return &params; }

    template <typename Self, typename Visitor>
    static void fields(Self& self, Visitor& visitor) {
      visitor.group("params", self.params);
    }
  };

  NameText name{kNameLength};
  ArrayGroup common{kCommonSize};
  ArrayGroup reverb{kReverbSize};
  ArrayGroup reverbSettings{kReverbSettingsSize};
  ArrayGroup chorus{kChorusSize};
  ArrayGroup chorusSettings{kChorusSettingsSize};
  ArrayGroup insertionA{kInsertionASize};
  ArrayGroup insertionB{kInsertionBSize};
  ArrayGroup masterEq{kMasterEqSize};
  ArrayGroup masterEffect{kMasterEffectSize};
  ArrayGroup masterEffectSettings{kMasterEffectSettingsSize};
  std::vector<AdPart> adPart{kAdPartCount};
  std::vector<Part> part{kPartCount};

  ModelSrv::ModelPart* getName() override { return &name; }
  CMA::ParameterGroup* getCommon() override { return &common; }
  CMA::ParameterGroup* getReverb() override { return &reverb; }
  CMA::ParameterGroup* getReverbSettings() override { return &reverbSettings; }
  CMA::ParameterGroup* getChorus() override { return &chorus; }
  CMA::ParameterGroup* getChorusSettings() override { return &chorusSettings; }
  CMA::ParameterGroup* getInsertionA() override { return &insertionA; }
  CMA::ParameterGroup* getInsertionB() override { return &insertionB; }
  CMA::ParameterGroup* getMasterEq() override { return &masterEq; }
  CMA::ParameterGroup* getMasterEffect() override { return &masterEffect; }
  CMA::ParameterGroup* getMasterEffectSettings() override { return &masterEffectSettings; }
  AdPartNode* getAdPart(std::uint32_t i) override { return i < adPart.size() ? &adPart[i] : nullptr; }
  PartNode* getPart(std::uint32_t i) override { return i < part.size() ? &part[i] : nullptr; }
  void insertionSwitchAllOff() override;

  template <typename Self, typename Visitor>
  static void fields(Self& self, Visitor& visitor) {
    visitor.name("name", self.name);
    visitor.group("common", self.common);
    visitor.group("reverb", self.reverb);
    visitor.group("reverbSettings", self.reverbSettings);
    visitor.group("chorus", self.chorus);
    visitor.group("chorusSettings", self.chorusSettings);
    visitor.group("insertionA", self.insertionA);
    visitor.group("insertionB", self.insertionB);
    visitor.group("masterEq", self.masterEq);
    visitor.group("masterEffect", self.masterEffect);
    visitor.group("masterEffectSettings", self.masterEffectSettings);
    visitNodes("adPart", self.adPart, visitor);
    visitNodes("part", self.part, visitor);
  }
};

class ArpeggioModel final : public CMA::ArpeggioParameterModel {
 public:
  struct Part final : PartNode {
    ArrayGroup params{kParamsSize};
    ArrayGroup six{kSixSize};

    CMA::ParameterGroup* getParams() override { return &params; }
    CMA::ParameterGroup* getSix() override { return &six; }

    template <typename Self, typename Visitor>
    static void fields(Self& self, Visitor& visitor) {
      visitor.group("params", self.params);
      visitor.group("six", self.six);
    }
  };

  ArrayGroup tempo{kTempoSize};
  ArrayGroup common{kCommonSize};
  std::vector<Part> part{kPartCount};

  CMA::ParameterGroup* getTempo() override { return &tempo; }
  CMA::ParameterGroup* getCommon() override { return &common; }
  PartNode* getPart(std::uint32_t i) override { return i < part.size() ? &part[i] : nullptr; }

  template <typename Self, typename Visitor>
  static void fields(Self& self, Visitor& visitor) {
    visitor.group("tempo", self.tempo);
    visitor.group("common", self.common);
    visitNodes("part", self.part, visitor);
  }
};

class MasterModel final : public CMA::MasterParameterModel {
 public:
  struct Zone final : ZoneNode {
    ArrayGroup params{kParamsSize};

    CMA::ParameterGroup* getParams() override { return &params; }

    template <typename Self, typename Visitor>
    static void fields(Self& self, Visitor& visitor) {
      visitor.group("params", self.params);
    }
  };

  NameText name{kNameLength};
  ArrayGroup common{kCommonSize};
  std::vector<Zone> zone{kZoneCount};

  ModelSrv::ModelPart* getName() override { return &name; }
  CMA::ParameterGroup* getCommon() override { return &common; }
  ZoneNode* getZone(std::uint32_t i) override { return i < zone.size() ? &zone[i] : nullptr; }

  template <typename Self, typename Visitor>
  static void fields(Self& self, Visitor& visitor) {
    visitor.name("name", self.name);
    visitor.group("common", self.common);
    visitNodes("zone", self.zone, visitor);
  }
};

class RemoteModel final : public CMA::RemoteParameterModel {
 public:
  struct Controller final : ControllerNode {
    NameText name1{kName1Length};
    NameText name2{kName2Length};
    ArrayGroup params{kParamsSize};

    ModelSrv::ModelPart* getName1() override { return &name1; }
    ModelSrv::ModelPart* getName2() override { return &name2; }
    CMA::ParameterGroup* getParams() override { return &params; }

    template <typename Self, typename Visitor>
    static void fields(Self& self, Visitor& visitor) {
      visitor.name("name1", self.name1);
      visitor.name("name2", self.name2);
      visitor.group("params", self.params);
    }
  };

  NameText name1{kName1Length};
  NameText name2{kName2Length};
  ArrayGroup common{kCommonSize};
  std::vector<Controller> controller{kControllerCount};

  ModelSrv::ModelPart* getName1() override { return &name1; }
  ModelSrv::ModelPart* getName2() override { return &name2; }
  CMA::ParameterGroup* getCommon() override { return &common; }
  ControllerNode* getController(std::uint32_t i) override { return i < controller.size() ? &controller[i] : nullptr; }

  template <typename Self, typename Visitor>
  static void fields(Self& self, Visitor& visitor) {
    visitor.name("name1", self.name1);
    visitor.name("name2", self.name2);
    visitor.group("common", self.common);
    visitNodes("controller", self.controller, visitor);
  }
};

class SystemModel final : public CMA::SystemParameterModel {
 public:
  // Parameters of the utility group.
  static constexpr std::uint16_t kReceiveBulk = 50;   // 0 off, 1 on
  static constexpr std::uint16_t kDeviceNumber = 51;  // see CMA::DeviceNumber

  struct AdPart final : AdPartNode {
    ArrayGroup params{kParamsSize};
    ArrayGroup insertionA{kInsertionASize};
    ArrayGroup insertionB{kInsertionBSize};

    CMA::ParameterGroup* getParams() override { return &params; }
    CMA::ParameterGroup* getInsertionA() override { return &insertionA; }
    CMA::ParameterGroup* getInsertionB() override { return &insertionB; }

    template <typename Self, typename Visitor>
    static void fields(Self& self, Visitor& visitor) {
      visitor.group("params", self.params);
      visitor.group("insertionA", self.insertionA);
      visitor.group("insertionB", self.insertionB);
    }
  };

  struct QuickSetup final : QuickSetupNode {
    NameText name{kNameLength};
    ArrayGroup params{kParamsSize};

    ModelSrv::ModelPart* getName() override { return &name; }
    CMA::ParameterGroup* getParams() override { return &params; }

    template <typename Self, typename Visitor>
    static void fields(Self& self, Visitor& visitor) {
      visitor.name("name", self.name);
      visitor.group("params", self.params);
    }
  };

  ArrayGroup common{kCommonSize};
  ArrayGroup tune{kTuneSize};
  std::vector<AdPart> adPart{kAdPartCount};
  ArrayGroup masterEq{kMasterEqSize};
  ArrayGroup masterEffect{kMasterEffectSize};
  ArrayGroup masterEffectSettings{kMasterEffectSettingsSize};
  std::vector<QuickSetup> quickSetup{kQuickSetupCount};
  ArrayGroup sequencer{kSequencerSize};
  ArrayGroup remote{kRemoteSize};
  ArrayGroup utility{kUtilitySize};

  CMA::ParameterGroup* getCommon() override { return &common; }
  CMA::ParameterGroup* getTune() override { return &tune; }
  AdPartNode* getAdPart(std::uint32_t i) override { return i < adPart.size() ? &adPart[i] : nullptr; }
  CMA::ParameterGroup* getMasterEq() override { return &masterEq; }
  CMA::ParameterGroup* getMasterEffect() override { return &masterEffect; }
  CMA::ParameterGroup* getMasterEffectSettings() override { return &masterEffectSettings; }
  QuickSetupNode* getQuickSetup(std::uint32_t i) override { return i < quickSetup.size() ? &quickSetup[i] : nullptr; }
  CMA::ParameterGroup* getSequencer() override { return &sequencer; }
  CMA::ParameterGroup* getRemote() override { return &remote; }
  CMA::ParameterGroup* getUtility() override { return &utility; }

  template <typename Self, typename Visitor>
  static void fields(Self& self, Visitor& visitor) {
    visitor.group("common", self.common);
    visitor.group("tune", self.tune);
    visitNodes("adPart", self.adPart, visitor);
    visitor.group("masterEq", self.masterEq);
    visitor.group("masterEffect", self.masterEffect);
    visitor.group("masterEffectSettings", self.masterEffectSettings);
    visitNodes("quickSetup", self.quickSetup, visitor);
    visitor.group("sequencer", self.sequencer);
    visitor.group("remote", self.remote);
    visitor.group("utility", self.utility);
  }
};

class AdditionalModel final : public CMA::AdditionalParameterModel {
 public:
  ArrayGroup params{kParamsSize};
  // Who is told that the parameters are to be shown; not part of the value, not owned.
  Wire<EvtSrv::EventPort> eventPort;

  CMA::ParameterGroup* getParams() override { return &params; }
  EvtSrv::EventPort* getEventPort() override { return eventPort.get(); }

  template <typename Self, typename Visitor>
  static void fields(Self& self, Visitor& visitor) {
    visitor.group("params", self.params);
  }
};

bool operator==(const VoiceModel& a, const VoiceModel& b);
bool operator==(const MultiModel& a, const MultiModel& b);
bool operator==(const ArpeggioModel& a, const ArpeggioModel& b);
bool operator==(const MasterModel& a, const MasterModel& b);
bool operator==(const RemoteModel& a, const RemoteModel& b);
bool operator==(const SystemModel& a, const SystemModel& b);
bool operator==(const AdditionalModel& a, const AdditionalModel& b);

}  // namespace Editor
