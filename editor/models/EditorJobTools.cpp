#include "models/EditorJobTools.h"

#include <algorithm>
#include <utility>

#include "models/LiveKeys.h"

namespace Editor {

namespace {

constexpr std::uint8_t kHeaderHi = 0x0E;
constexpr std::uint8_t kFooterHi = 0x0F;

constexpr const char* kMultiDamaged = "the multi that it plays in is damaged";

constexpr std::size_t kMostWaves = 1024;
constexpr std::size_t kMostArpeggios = 256;
constexpr std::size_t kLongestName = 28;

// One bit for each kind of model that is there.
unsigned kindsOf(const ModelSet& models) {
  unsigned kinds = 0;
  forEachSlot(
      [&, kind = 1u](const char* /*key*/, const auto& slot) mutable {
        if (slot) kinds |= kind;
        kind <<= 1;
      },
      models);
  return kinds;
}

class TemporaryModel final : public CMA::TemporaryCoreModel {
 public:
  ModelSet models;
  std::uint16_t voiceNumber = 0;  // that the voice was opened under
  unsigned opened = 0;            // the kinds that were opened since the last load or store

  // Replaces the models of the kinds that `others` has.
  void adopt(ModelSet others) {
    forEachSlot(
        [](const char* /*key*/, auto& slot, auto& other) {
          if (other) slot = std::move(other);
        },
        models, others);
  }
};

TemporaryModel* temporary(CMA::TemporaryCoreModel* model) { return static_cast<TemporaryModel*>(model); }

bool open(CMA::TemporaryCoreModel* model, ModelSet fresh) {
  if (model == nullptr) return false;
  temporary(model)->opened |= kindsOf(fresh);
  temporary(model)->adopt(std::move(fresh));
  return true;
}

template <typename Model>
Model* pointer(std::optional<Model>& slot) {
  return slot ? &*slot : nullptr;
}

ModelSet freshSystem() {
  const std::uint8_t on = 1;
  ModelSet set;
  set.system.emplace();
  set.system->utility.set(&on, SystemModel::kReceiveBulk, 0);
  return set;
}

ModelSet freshAdditional() {
  ModelSet set;
  set.additional.emplace();
  return set;
}

ModelSet freshVoice(bool drum) {
  ModelSet set;
  set.voice.emplace(drum);
  return set;
}

ModelSet freshSet(EditBuffer buffer) { return emptySetFor(headerTypeOf(headerOf(buffer))); }

struct WatcherSetter {
  ChangeWatcher* watcher;

  void group(const char* /*key*/, ArrayGroup& group) { group.watch(watcher); }
  void name(const char* /*key*/, NameText& name) { name.watch(watcher); }
  template <typename Visit>
  void list(const char* /*key*/, std::size_t count, Visit visit) {
    for (std::size_t i = 0; i < count; ++i) visit(i);
  }
};

std::string refusal(const std::vector<std::string>& names, std::size_t most) {
  if (names.size() > most) return "more than " + std::to_string(most) + " names";
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i].size() > kLongestName)
      return "name " + std::to_string(i + 1) + " is longer than " + std::to_string(kLongestName) + " characters";
    if (std::any_of(names[i].begin(), names[i].end(), [](char c) { return c < ' ' || c > '~'; }))
      return "name " + std::to_string(i + 1) + " has a character that is not printable ASCII";
  }
  return {};
}

}  // namespace

// ---- Live models ---------------------------------------------------------------------------------------------------

EditorJobTools::EditorJobTools(ContentStore& store, EvtSrv::EventPortManager* manager)
    : store_(store),
      manager_(manager),
      waveNames_{"Sine",      "Triangle",  "Saw Up",      "Saw Down",  "Square",
                 "Pulse 25%", "Pulse 10%", "White Noise", "Pink Noise"},
      arpeggioNames_{"Up", "Down", "Up/Down", "Down/Up", "Random", "As Played", "Chord"} {
  for (const EditBuffer buffer : kSingleEditBuffers) units_[unitOf(buffer, 0)].key = liveKeyOf(buffer);
  units_[kSystem].key = kSystemKey;
  units_[kAdditional].key = kAdditionalKey;
  for (std::size_t part = 0; part < kParts; ++part) {
    units_[kFirstPart + part].key = liveKeyOf(EditBuffer::partVoice, std::uint8_t(part));
    bankWatchers_[part].tools = this;
    bankWatchers_[part].part = part;
  }
  reload();
}

std::size_t EditorJobTools::unitOf(EditBuffer buffer, std::uint8_t part) {
  switch (buffer) {
    case EditBuffer::normalVoice:
      return kNormalVoice;
    case EditBuffer::drumVoice:
      return kDrumVoice;
    case EditBuffer::partVoice:
      return kFirstPart + part % kParts;
    case EditBuffer::multi:
      return kMulti;
    case EditBuffer::performance:
      return kPerformance;
    case EditBuffer::master:
      return kMaster;
    case EditBuffer::remote:
      break;
  }
  return kRemote;
}

bool EditorJobTools::playsDrums(const MultiModel& multi, std::size_t part) {
  const std::vector<std::uint16_t>& select = multi.part[part].bankProgram.values();
  const std::optional<unsigned> bank = bankOf(std::uint8_t(select[0]), std::uint8_t(select[1]));
  return bank && isDrumBank(*bank);
}

// A part's voice follows the part's bank, whoever changes it.
void EditorJobTools::BankWatcher::changed() {
  tools->units_[kMulti].changed();
  const bool drum = playsDrums(*tools->units_[kMulti].models.multi, part);
  Unit& unit = tools->units_[kFirstPart + part];
  if (unit.models.voice->isDrum() == drum) return;
  unit.models = freshVoice(drum);
  unit.changed();
  tools->watch(kFirstPart + part);
}

void EditorJobTools::watch(std::size_t unit) {
  WatcherSetter visitor{&units_[unit]};
  forEachModel(units_[unit].models, [&](const char* /*key*/, auto& model) { visitFields(model, visitor); });
  if (unit == kMulti)
    for (std::size_t part = 0; part < kParts; ++part)
      units_[kMulti].models.multi->part[part].bankProgram.watch(&bankWatchers_[part]);
}

void EditorJobTools::reload() {
  using Loaded = ContentStore::Loaded;
  struct Read {
    ModelSet models;
    std::string damage;
  };
  std::array<Read, kUnitCount> read;
  const auto load = [&](std::size_t unit, ModelSet fresh) {
    std::string why;
    const Loaded result = store_.loadLive(units_[unit].key, fresh, why);
    if (result == Loaded::failed)
      throw LiveModelError("the live models \"" + units_[unit].key + "\" cannot be read: " + why);
    read[unit] = {std::move(fresh), result == Loaded::opaque ? "what is stored there is damaged: " + why : ""};
  };
  for (const EditBuffer buffer : kSingleEditBuffers) load(unitOf(buffer, 0), freshSet(buffer));
  load(kSystem, freshSystem());
  load(kAdditional, freshAdditional());
  for (std::size_t part = 0; part < kParts; ++part) {
    const std::size_t unit = kFirstPart + part;
    const bool drum = playsDrums(*read[kMulti].models.multi, part);
    load(unit, freshVoice(drum));
    // The bank that says what the part plays is damaged itself.
    if (!read[kMulti].damage.empty() && !read[unit].damage.empty()) load(unit, freshVoice(!drum));
  }

  for (std::size_t unit = 0; unit < kUnitCount; ++unit) {
    units_[unit].models = std::move(read[unit].models);
    units_[unit].damage = std::move(read[unit].damage);
    units_[unit].isChanged = false;
  }
  for (std::size_t unit = 0; unit < kUnitCount; ++unit) watch(unit);
}

const ModelSet& EditorJobTools::live(EditBuffer buffer, std::uint8_t part) const {
  return units_[unitOf(buffer, part)].models;
}

std::string EditorJobTools::damage(EditBuffer buffer, std::uint8_t part) const {
  const bool isOfMulti = buffer == EditBuffer::partVoice && !units_[kMulti].damage.empty();
  const std::string& own = ownDamage(buffer, part);
  return own.empty() && isOfMulti ? kMultiDamaged : own;
}

bool EditorJobTools::replaceLive(EditBuffer buffer, std::uint8_t part, const ModelSet& models) {
  return replace({{unitOf(buffer, part), models}});
}

bool EditorJobTools::replaceSystem(const ModelSet& models) { return replace({{kSystem, models}}); }

bool EditorJobTools::replaceAdditional(const ModelSet& models) { return replace({{kAdditional, models}}); }

// Stores first: what the store refuses must not be live either.
bool EditorJobTools::replace(std::vector<Replacement> replacements) {
  error_.clear();
  for (const Replacement& replacement : replacements)
    if (!haveSameShape(replacement.models, units_[replacement.unit].models)) {
      error_ = "these are no models of \"" + units_[replacement.unit].key + '"';
      return false;
    }
  if (replacements.front().unit == kMulti)
    for (std::size_t part = 0; part < kParts; ++part) {
      const bool drum = playsDrums(*replacements.front().models.multi, part);
      if (units_[kFirstPart + part].models.voice->isDrum() != drum)
        replacements.push_back({kFirstPart + part, freshVoice(drum)});
    }
  if (!save(replacements)) return false;
  for (const Replacement& replacement : replacements) {
    units_[replacement.unit].models = replacement.models;
    units_[replacement.unit].damage.clear();
  }
  for (Unit& unit : units_) unit.isChanged = false;
  return true;
}

// Stores all live models that changed, the replacements in their place. The kinds of the part voices follow the multi:
// they are always stored together, so that what is stored agrees even when several programs write it. What is damaged
// is stored when it is replaced: what stands for it here is not what it was.
bool EditorJobTools::save(const std::vector<Replacement>& replacements) {
  std::array<const ModelSet*, kUnitCount> models{};
  for (std::size_t unit = 0; unit < kUnitCount; ++unit)
    if (units_[unit].isChanged && units_[unit].damage.empty()) models[unit] = &units_[unit].models;
  for (const Replacement& replacement : replacements) models[replacement.unit] = &replacement.models;

  const auto isOfMulti = [](std::size_t unit) { return unit == kMulti || unit >= kFirstPart; };
  bool multi = false;
  for (std::size_t unit = 0; unit < kUnitCount; ++unit) multi |= models[unit] != nullptr && isOfMulti(unit);

  std::vector<ContentStore::LiveModels> live;
  for (std::size_t unit = 0; unit < kUnitCount; ++unit) {
    if (multi && isOfMulti(unit) && models[unit] == nullptr && units_[unit].damage.empty())
      models[unit] = &units_[unit].models;
    if (models[unit] != nullptr) live.push_back({units_[unit].key, models[unit]});
  }
  return live.empty() || store_.storeLive(live, error_);
}

std::uint64_t EditorJobTools::changeCount() const {
  std::uint64_t count = 0;
  for (const Unit& unit : units_) count += unit.changeCount;
  return count;
}

bool EditorJobTools::saveChanged(std::vector<std::string>& saved) {
  error_.clear();
  if (!save({})) return false;
  for (Unit& unit : units_)
    if (std::exchange(unit.isChanged, false) && unit.damage.empty()) saved.push_back(unit.key);
  return true;
}

CMA::VoiceParameterModel* EditorJobTools::getVoiceModel(std::uint16_t number) {
  if (current_ == EditBuffer::multi)
    return number < kParts ? pointer(units_[kFirstPart + number].models.voice) : nullptr;
  return number == 0 ? pointer(currentModels().voice) : nullptr;
}

CMA::MultiParameterModel* EditorJobTools::getMultiModel() { return pointer(currentModels().multi); }
CMA::ArpeggioParameterModel* EditorJobTools::getArpeggioModel() { return pointer(currentModels().arpeggio); }
CMA::MasterParameterModel* EditorJobTools::getMasterModel() { return pointer(currentModels().master); }
CMA::RemoteParameterModel* EditorJobTools::getRemoteModel() { return pointer(currentModels().remote); }
CMA::SystemParameterModel* EditorJobTools::getSystemModel() { return pointer(units_[kSystem].models.system); }
CMA::AdditionalParameterModel* EditorJobTools::getAdditionalModel() {
  return pointer(units_[kAdditional].models.additional);
}

// ---- Temporary models ----------------------------------------------------------------------------------------------

CMA::TemporaryCoreModel* EditorJobTools::createTemporaryModel() { return new TemporaryModel; }

void EditorJobTools::destroyTemporaryModel(CMA::TemporaryCoreModel* model) { delete model; }

bool EditorJobTools::initTemporaryVoiceModel(CMA::TemporaryCoreModel* model, std::uint16_t number, bool normalVoice) {
  if (model != nullptr) temporary(model)->voiceNumber = number;
  return open(model, freshVoice(!normalVoice));
}

bool EditorJobTools::initTemporaryMultiModel(CMA::TemporaryCoreModel* model, std::uint32_t /*state*/) {
  ModelSet fresh;
  fresh.multi.emplace();
  return open(model, std::move(fresh));
}

bool EditorJobTools::initTemporaryArpeggioModel(CMA::TemporaryCoreModel* model, bool /*ofVoice*/,
                                                std::uint16_t /*number*/, bool /*asNew*/) {
  ModelSet fresh;
  fresh.arpeggio.emplace();
  return open(model, std::move(fresh));
}

bool EditorJobTools::initTemporaryMasterModel(CMA::TemporaryCoreModel* model) {
  ModelSet fresh;
  fresh.master.emplace();
  return open(model, std::move(fresh));
}

bool EditorJobTools::initTemporaryRemoteModel(CMA::TemporaryCoreModel* model) {
  ModelSet fresh;
  fresh.remote.emplace();
  return open(model, std::move(fresh));
}

CMA::VoiceParameterModel* EditorJobTools::getTemporaryVoiceModel(CMA::TemporaryCoreModel* model, std::uint16_t number) {
  if (model == nullptr || temporary(model)->voiceNumber != number) return nullptr;
  return pointer(temporary(model)->models.voice);
}

CMA::MultiParameterModel* EditorJobTools::getTemporaryMultiModel(CMA::TemporaryCoreModel* model) {
  return model == nullptr ? nullptr : pointer(temporary(model)->models.multi);
}

CMA::ArpeggioParameterModel* EditorJobTools::getTemporaryArpeggioModel(CMA::TemporaryCoreModel* model) {
  return model == nullptr ? nullptr : pointer(temporary(model)->models.arpeggio);
}

CMA::MasterParameterModel* EditorJobTools::getTemporaryMasterModel(CMA::TemporaryCoreModel* model) {
  return model == nullptr ? nullptr : pointer(temporary(model)->models.master);
}

CMA::RemoteParameterModel* EditorJobTools::getTemporaryRemoteModel(CMA::TemporaryCoreModel* model) {
  return model == nullptr ? nullptr : pointer(temporary(model)->models.remote);
}

// ---- Jobs ----------------------------------------------------------------------------------------------------------

unsigned long EditorJobTools::loadForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid,
                                                       std::uint8_t lo) {
  error_.clear();
  const std::optional<ContentId> id = contentOfHeader({mid, lo});
  if (model == nullptr || !id) {
    error_ = model == nullptr ? "there is no temporary model" : "the address names no content";
    return CMA::JOB::Result_UnknownError;
  }
  ModelSet loaded = emptySetFor(*id);
  const ContentStore::Loaded result = store_.loadModels(*id, loaded, error_);
  if (result != ContentStore::Loaded::ok) {
    if (result == ContentStore::Loaded::empty) error_ = "nothing is stored there";
    return CMA::JOB::Result_UnknownError;
  }
  // What is loaded to be sent was not received: a footer has nothing to store then.
  TemporaryModel& target = *temporary(model);
  target.opened = 0;
  if (loaded.voice) target.voiceNumber = 0;
  target.adopt(std::move(loaded));
  return CMA::JOB::Result_Success;
}

unsigned long EditorJobTools::storeForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid,
                                                        std::uint8_t lo) {
  error_.clear();
  const unsigned headerType = headerTypeOf({mid, lo});
  if (headerType == 0) {
    error_ = "the address names neither a content nor an edit buffer";
    return CMA::JOB::Result_UnknownError;
  }
  const std::optional<EditBuffer> buffer = editBufferOf(mid);
  const bool ofPart = buffer == EditBuffer::partVoice;
  ModelSet models = emptySetFor(headerType, ofPart && playsDrums(*units_[kMulti].models.multi, lo));

  if (model == nullptr || (kindsOf(models) & ~temporary(model)->opened) != 0 ||
      (models.voice && temporary(model)->voiceNumber != (ofPart ? lo : 0))) {
    error_ = "no header has opened what is to be stored there";
    return CMA::JOB::Result_CurrentStateError;
  }
  TemporaryModel& received = *temporary(model);
  if (models.voice && models.voice->isDrum() != received.models.voice->isDrum()) {
    error_ = models.voice->isDrum() ? "a normal voice does not go there" : "a drum voice does not go there";
    return CMA::JOB::Result_VoiceTypeError;
  }
  forEachSlot(
      [](const char* /*key*/, auto& to, const auto& from) {
        if (to) to = from;
      },
      models, received.models);

  const unsigned long result =
      buffer ? storeLive(*buffer, lo, models) : storeContent(*contentOfHeader({mid, lo}), models);
  if (result == CMA::JOB::Result_Success) received.opened = 0;
  return result;
}

unsigned long EditorJobTools::storeLive(EditBuffer buffer, std::uint8_t part, const ModelSet& models) {
  std::vector<Replacement> replacements;
  if (buffer == EditBuffer::partVoice) {
    if (!units_[kMulti].damage.empty()) {
      error_ = kMultiDamaged;
      return CMA::JOB::Result_UnknownError;
    }
    ModelSet multi = units_[kMulti].models;
    multi.multi->reverb = models.multi->reverb;
    multi.multi->reverbSettings = models.multi->reverbSettings;
    multi.multi->chorus = models.multi->chorus;
    multi.multi->chorusSettings = models.multi->chorusSettings;
    multi.multi->part[0].extra = models.multi->part[0].extra;
    ModelSet voice;
    voice.voice = models.voice;
    replacements = {{kMulti, std::move(multi)}, {unitOf(buffer, part), std::move(voice)}};
  } else {
    replacements = {{unitOf(buffer, part), models}};
  }
  return replace(std::move(replacements)) ? CMA::JOB::Result_Success : CMA::JOB::Result_UnknownError;
}

unsigned long EditorJobTools::storeContent(ContentId id, const ModelSet& models) {
  return store_.storeModels(id, nameOf(models), models, error_) ? CMA::JOB::Result_Success
                                                                : CMA::JOB::Result_UnknownError;
}

unsigned long EditorJobTools::checkModeForReceivedSysExBulk(CMA::TemporaryCoreModel* /*model*/, unsigned char hi,
                                                            unsigned char mid, unsigned char lo) {
  if (hi != kHeaderHi && hi != kFooterHi) return CMA::JOB::Result_Success;
  if (const std::optional<EditBuffer> buffer = editBufferOf(mid))
    current_ = *buffer == EditBuffer::partVoice ? EditBuffer::multi : *buffer;
  const std::optional<ContentId> id = contentOfHeader({mid, lo});
  if (!id || !isMixingVoice(*id)) return CMA::JOB::Result_Success;
  try {
    const bool full = store_.isEmpty(*id) && store_.mixingVoiceCount() >= store_.mixingVoiceMaximum();
    return full ? CMA::JOB::Result_MixingVoiceFullError : CMA::JOB::Result_Success;
  } catch (const std::exception& failure) {
    error_ = failure.what();
    return CMA::JOB::Result_CurrentStateError;
  }
}

// ---- The rest ------------------------------------------------------------------------------------------------------

std::uint32_t EditorJobTools::getVoiceContentNumber(std::uint8_t bank, std::uint8_t number) {
  return voiceContentNumber(bank, number);
}

void EditorJobTools::resumeOutputMidi() {
  if (suspended_ > 0) --suspended_;
}

std::string EditorJobTools::setWaveNames(std::vector<std::string> names) {
  std::string error = refusal(names, kMostWaves);
  if (error.empty()) waveNames_ = std::move(names);
  return error;
}

std::string EditorJobTools::setArpeggioNames(std::vector<std::string> names) {
  std::string error = refusal(names, kMostArpeggios);
  if (error.empty()) arpeggioNames_ = std::move(names);
  return error;
}

unsigned long EditorJobTools::getWaveformContentName(std::uint32_t number, std::uint8_t bank, std::string& name) {
  if (number == 0 || bank != 1) return CMA::JOB::Result_UnknownError;
  name = number <= waveNames_.size() ? waveNames_[number - 1] : std::string();
  return CMA::JOB::Result_Success;
}

std::uint32_t EditorJobTools::getScreenImage(std::vector<std::uint8_t>& bytes) {
  error_.clear();
  bytes.clear();
  if (!paintScreen_) return 0;
  try {
    bytes = paintScreen_();
    return 0;
  } catch (const std::exception& failure) {
    error_ = failure.what();
    return 1;
  }
}

unsigned long EditorJobTools::getArpeggioContentName(std::uint32_t number, std::uint8_t bank, std::string& name) {
  if (bank != 1) return CMA::JOB::Result_UnknownError;
  name = number < arpeggioNames_.size() ? arpeggioNames_[number] : std::string();
  return CMA::JOB::Result_Success;
}

}  // namespace Editor
