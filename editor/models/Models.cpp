#include "models/Models.h"

#include <algorithm>
#include <cstring>

#include "models/ContentAddress.h"

namespace Editor {

// ---- Groups and names ----------------------------------------------------------------------------------------------

namespace {

void tell(const Wire<ChangeWatcher>& watcher) {
  if (watcher.get() != nullptr) watcher.get()->changed();
}

}  // namespace

ArrayGroup& ArrayGroup::operator=(const ArrayGroup& other) {
  const bool changes = !(*this == other);
  width_ = other.width_;
  values_ = other.values_;
  if (changes) tell(watcher_);
  return *this;
}

bool ArrayGroup::assign(const std::vector<std::uint16_t>& values) {
  if (values.size() != values_.size()) return false;
  if (std::any_of(values.begin(), values.end(), [this](std::uint16_t value) { return value > maximum(); }))
    return false;
  if (values == values_) return true;
  values_ = values;
  tell(watcher_);
  return true;
}

bool ArrayGroup::get(std::uint8_t* value, std::uint16_t index) const {
  if (index >= values_.size() || values_[index] > 0xFF) return false;
  *value = std::uint8_t(values_[index]);
  return true;
}

bool ArrayGroup::get(std::uint16_t* value, std::uint16_t index) const {
  if (index >= values_.size()) return false;
  *value = values_[index];
  return true;
}

bool ArrayGroup::set(const std::uint8_t* value, std::uint16_t index, int flag) {
  const std::uint16_t wide = *value;
  return set(&wide, index, flag);
}

bool ArrayGroup::set(const std::uint16_t* value, std::uint16_t index, int /*flag*/) {
  if (index >= values_.size() || *value > maximum()) return false;
  if (values_[index] == *value) return true;
  values_[index] = *value;
  tell(watcher_);
  return true;
}

NameText& NameText::operator=(const NameText& other) {
  const bool changes = !(*this == other);
  capacity_ = other.capacity_;
  text_ = other.text_;
  if (changes) tell(watcher_);
  return *this;
}

bool NameText::assign(std::string_view text) {
  if (text.size() > capacity_ || text.find('\0') != std::string_view::npos) return false;
  if (text == text_) return true;
  text_ = text;
  tell(watcher_);
  return true;
}

void NameText::setToServer(const char* text, int index) {
  if (index == ModelSrv::ModelPartIndex_All) assign(std::string_view(text, strnlen(text, capacity_)));
}

void NameText::getFromServer(char* buffer, std::size_t capacity) const { text_.copy(buffer, capacity); }

// ---- What the models do --------------------------------------------------------------------------------------------

VoiceModel::VoiceModel(bool drum) : element(drum ? 0 : kElementCount), key(drum ? kKeyCount : 0) {
  const std::uint16_t kind = drum ? 1 : 0;
  type.set(&kind, 0, 0);
}

bool MultiModel::Part::correctBankSelAndProgramNum(std::uint32_t /*part*/, std::uint8_t& bankSelectMsb,
                                                   std::uint8_t& bankSelectLsb, std::uint8_t& programNumber,
                                                   bool /*bulk*/) {
  constexpr unsigned kPrograms = 128;  // of 3F/32, which is no bank of ours
  if (const std::optional<unsigned> bank = bankOf(bankSelectMsb, bankSelectLsb))
    return programNumber < kVoicesPerBank[*bank];
  return bankSelectMsb == 0x3F && bankSelectLsb == 0x32 && programNumber < kPrograms;
}

void MultiModel::insertionSwitchAllOff() {
  constexpr std::uint16_t kPartSwitch = 54;
  constexpr std::uint16_t kAdPartSwitch = 7;
  const std::uint8_t off = 0;
  for (Part& node : part) node.main.set(&off, kPartSwitch, 1);
  for (AdPart& node : adPart) node.params.set(&off, kAdPartSwitch, 1);
}

// ---- Comparison ----------------------------------------------------------------------------------------------------

namespace {

// The groups and names of a model in their order. How many nodes there are shows in the count.
struct Leaves {
  std::vector<const ArrayGroup*> groups;
  std::vector<const NameText*> names;

  void group(const char* /*key*/, const ArrayGroup& field) { groups.push_back(&field); }
  void name(const char* /*key*/, const NameText& field) { names.push_back(&field); }
  template <typename Visit>
  void list(const char* /*key*/, std::size_t count, Visit visit) {
    for (std::size_t i = 0; i < count; ++i) visit(i);
  }
};

template <typename Model>
bool equal(const Model& a, const Model& b) {
  const auto same = [](const auto* x, const auto* y) { return *x == *y; };
  Leaves left;
  Leaves right;
  visitFields(a, left);
  visitFields(b, right);
  return std::equal(left.groups.begin(), left.groups.end(), right.groups.begin(), right.groups.end(), same) &&
         std::equal(left.names.begin(), left.names.end(), right.names.begin(), right.names.end(), same);
}

}  // namespace

bool operator==(const VoiceModel& a, const VoiceModel& b) { return equal(a, b); }
bool operator==(const MultiModel& a, const MultiModel& b) { return equal(a, b); }
bool operator==(const ArpeggioModel& a, const ArpeggioModel& b) { return equal(a, b); }
bool operator==(const MasterModel& a, const MasterModel& b) { return equal(a, b); }
bool operator==(const RemoteModel& a, const RemoteModel& b) { return equal(a, b); }
bool operator==(const SystemModel& a, const SystemModel& b) { return equal(a, b); }
bool operator==(const AdditionalModel& a, const AdditionalModel& b) { return equal(a, b); }

}  // namespace Editor
