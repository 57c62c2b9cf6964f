#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bda/platform/CMA/JobTools.h"
#include "models/ContentStore.h"

namespace Editor {

// The store failed while the live models were read.
class LiveModelError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The embedded editor's models and the jobs on them.
//
// Each edit buffer has live models of its own: one set each for the normal voice, the drum voice, the multi (and its
// sixteen part voices), the performance, the master and the remote setting; the system settings and the additional
// parameters are always live. The set that the last checked address named is "the live one". All of them are kept in
// the store between two runs.
//
// Live models that are damaged in the store keep nobody from the others: here they are as new, damage() says that they
// are not what is stored, and what is stored stays until they are replaced as a whole.
class EditorJobTools final : public CMA::JobTools {
 public:
  // Loads the live models. The store and the manager, which may be null, outlive this object. Throws LiveModelError.
  explicit EditorJobTools(ContentStore& store, EvtSrv::EventPortManager* manager = nullptr);
  EditorJobTools(const EditorJobTools&) = delete;
  EditorJobTools& operator=(const EditorJobTools&) = delete;

  // ---- For the editor ----

  // The live models of an edit buffer; `part` (0 to 15) counts for partVoice only. Valid until they are changed.
  const ModelSet& live(EditBuffer buffer, std::uint8_t part = 0) const;
  // The key under which the store keeps them.
  const std::string& liveKey(EditBuffer buffer, std::uint8_t part = 0) const {
    return units_[unitOf(buffer, part)].key;
  }
  const std::string& systemKey() const { return units_[kSystem].key; }
  const std::string& additionalKey() const { return units_[kAdditional].key; }
  const ModelSet& liveSystem() const { return units_[kSystem].models; }
  const ModelSet& liveAdditional() const { return units_[kAdditional].models; }
  // Why they could not be read when they were last loaded; empty when they could. In place of what is damaged stand new
  // models, which are nobody's: whoever shows, sends or changes them asks first. `part` as for live(); the voice of a
  // part cannot be had without its multi, whose effects it uses, and says so where that is damaged.
  std::string damage(EditBuffer buffer, std::uint8_t part = 0) const;
  // The same of what is stored for it alone: for whoever asks for no more of a part than its voice.
  const std::string& ownDamage(EditBuffer buffer, std::uint8_t part = 0) const {
    return units_[unitOf(buffer, part)].damage;
  }
  const std::string& systemDamage() const { return units_[kSystem].damage; }
  const std::string& additionalDamage() const { return units_[kAdditional].damage; }
  // Whether that part of a multi plays a drum voice: its bank says so.
  static bool playsDrums(const MultiModel& multi, std::size_t part);
  // The edit buffer whose models the getters hand out.
  EditBuffer current() const { return current_; }

  // Replaces live models as a footer does, and saves them. A multi brings fresh part voices where the kind of the
  // part's voice changes. False, with nothing changed and lastError() set, when the shape is another one or the
  // store fails.
  bool replaceLive(EditBuffer buffer, std::uint8_t part, const ModelSet& models);
  bool replaceSystem(const ModelSet& models);
  bool replaceAdditional(const ModelSet& models);

  // Saves the live models that were changed since they were last saved, but for damaged ones, and adds their keys to
  // `saved`. False, with nothing saved and lastError() set, when the store fails: they still count as changed.
  bool saveChanged(std::vector<std::string>& saved);
  // Forgets what is not saved and reads all live models anew: after a transaction around a save was taken back, or
  // another program changed the store. Throws LiveModelError, nothing is changed then.
  void reload();

  // How often live models have got another value, whoever gave it to them, reload() too. Two equal counts: they have
  // the same values as before, or were replaced by equal ones.
  std::uint64_t changeCount() const;

  // Why the last load, store or save failed; empty when it did not.
  const std::string& lastError() const { return error_; }
  void forgetErrors() { error_.clear(); }

  // Whether the change of a model would be echoed as MIDI now: not between suspendOutputMidi and resumeOutputMidi.
  bool isOutputSuspended() const { return suspended_ != 0; }

  // Replace the names of the waveforms (the first is number 1) and arpeggios (the first is number 0). Refused, with an
  // answer that says which, when one is longer than 28 characters or has others than 20..7E, or when there are more
  // than 1,024 waveforms or 256 arpeggios.
  [[nodiscard]] std::string setWaveNames(std::vector<std::string> names);
  [[nodiscard]] std::string setArpeggioNames(std::vector<std::string> names);

  // What the screen shows, painted anew for every capture: one byte 0-127 a pixel, row by row. Until it is set there is
  // no screen. The painter may throw, the capture then fails.
  using ScreenPainter = std::function<std::vector<std::uint8_t>()>;
  void setScreenPainter(ScreenPainter painter) { paintScreen_ = std::move(painter); }

  // ---- For the module ----

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

  void suspendOutputMidi() override { ++suspended_; }
  void resumeOutputMidi() override;

  unsigned long getWaveformContentName(std::uint32_t number, std::uint8_t bank, std::string& name) override;
  unsigned long getArpeggioContentName(std::uint32_t number, std::uint8_t bank, std::string& name) override;

  EvtSrv::EventPortManager* getEventPortManager() override { return manager_; }

  std::uint32_t getScreenImage(std::vector<std::uint8_t>& bytes) override;

 private:
  // One set of live models, kept in the store under one key.
  struct Unit final : ChangeWatcher {
    std::string key;
    ModelSet models;
    std::string damage;      // why what is stored cannot be read; empty when it can
    bool isChanged = false;  // since it was last saved
    std::uint64_t changeCount = 0;

    void changed() override {
      isChanged = true;
      ++changeCount;
    }
  };

  // Watches the bank of one part of the live multi.
  struct BankWatcher final : ChangeWatcher {
    EditorJobTools* tools = nullptr;
    std::size_t part = 0;

    void changed() override;
  };

  enum UnitIndex : std::size_t {
    kNormalVoice,
    kDrumVoice,
    kMulti,
    kPerformance,
    kMaster,
    kRemote,
    kSystem,
    kAdditional,
    kFirstPart,
    kUnitCount = kFirstPart + kParts
  };

  struct Replacement {
    std::size_t unit;
    ModelSet models;
  };

  static std::size_t unitOf(EditBuffer buffer, std::uint8_t part);
  ModelSet& currentModels() { return units_[unitOf(current_, 0)].models; }

  void watch(std::size_t unit);
  bool replace(std::vector<Replacement> replacements);
  bool save(const std::vector<Replacement>& replacements);
  unsigned long storeLive(EditBuffer buffer, std::uint8_t part, const ModelSet& models);
  unsigned long storeContent(ContentId id, const ModelSet& models);

  ContentStore& store_;
  EvtSrv::EventPortManager* manager_;
  std::array<Unit, kUnitCount> units_;
  std::array<BankWatcher, kParts> bankWatchers_;
  EditBuffer current_ = EditBuffer::multi;
  int suspended_ = 0;
  std::string error_;
  ScreenPainter paintScreen_;
  std::vector<std::string> waveNames_;
  std::vector<std::string> arpeggioNames_;
};

}  // namespace Editor
