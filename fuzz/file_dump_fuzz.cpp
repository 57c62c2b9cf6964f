// Sequences of file dumps into the embedded editor, beside a plain model of it. After every message the library holds
// what the model says, to the byte; the dumps that wait for their trigger are the model's; and the editor calls refused
// what the model refuses. What is asked for is sent as it is stored, and changes nothing when it is sent back.
//
// An input is a list of commands. The frame of a message is always right, what it carries need not be. What a footer
// stores is not modelled: the one content that it names is taken over from the library.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "AddressRows.h"
#include "editor/messages/BulkMessages.h"
#include "exchange/EmbeddedEditor.h"
#include "input.h"
#include "models/Models.h"
#include "require.h"
#include "scratch.h"
#include "support/PlainFileDumpCodec.h"

namespace {

namespace Plain = Testing::Plain;
using Editor::BulkAddress;
using Editor::ContentId;
using Content = Editor::Library::Content;
using Contents = std::map<ContentId, Content>;

constexpr std::size_t kLongestField = 0x3FFF;
constexpr std::uint16_t kFirstErrorId = 41;  // on the screen
constexpr ContentId kSingle{ContSrv::ContType_Single, 0};
constexpr BulkAddress kRemovingTrigger{BDA::kTriggerHi, 0x01, 0x00};  // removes all mixing voices, then writes

std::optional<ContentId> contentAt(BulkAddress place) {
  return place.hi == BDA::kFileDumpHi ? Editor::contentOfFileDump({place.mid, place.lo}) : std::nullopt;
}

bool isMixing(const Contents::value_type& content) { return Editor::isMixingVoice(content.first); }

Bytes packedName(const Content& content) { return Plain::encode({content.name.begin(), content.name.end()}); }

Bytes fieldOfPacked(const Bytes& name, const Bytes& data) {
  Bytes field;
  for (const Bytes* packed : {&name, &data}) {
    field.push_back(std::uint8_t(packed->size() / 128));
    field.push_back(std::uint8_t(packed->size() % 128));
    field.insert(field.end(), packed->begin(), packed->end());
  }
  return field;
}
Bytes fieldOf(const Content& content) { return fieldOfPacked(packedName(content), Plain::encode(content.bytes)); }

struct Model {
  Contents stored;
  std::vector<std::pair<ContentId, Bytes>> held;  // in the order of arrival
  std::int64_t mostMixingVoices = Editor::Library::kDefaultMixingVoiceMaximum;

  // Whether the dump is taken; otherwise it is refused.
  bool receive(BulkAddress address, const Bytes& field) {
    if (address.hi == BDA::kTriggerHi) return writeAll(address == kRemovingTrigger);
    const std::optional<ContentId> id = contentAt(address);
    if (!id) return false;
    if (address.mid <= 0x09 || address.mid == 0x20 || address.mid == 0x21) {  // preset and GM banks
      held.clear();
      return false;
    }
    const auto same = std::find_if(held.begin(), held.end(), [&](const auto& dump) { return dump.first == *id; });
    if (same == held.end())
      held.emplace_back(*id, field);
    else
      same->second = field;
    return true;
  }

 private:
  bool writeAll(bool removesMixingVoices) {
    if (removesMixingVoices) std::erase_if(stored, isMixing);
    std::int64_t mixingVoices = std::count_if(stored.begin(), stored.end(), isMixing);
    bool areAllTaken = true;
    for (const auto& [id, field] : std::exchange(held, {})) areAllTaken = write(id, field, mixingVoices) && areAllTaken;
    return areAllTaken;
  }

  bool write(ContentId id, const Bytes& field, std::int64_t& mixingVoices) {
    const auto countAt = [&](std::size_t at) { return std::size_t(field[at] << 7 | field[at + 1]); };
    if (field.size() < 4 || countAt(0) + 4 > field.size()) return false;
    const std::size_t dataCountAt = 2 + countAt(0);
    const std::size_t end = dataCountAt + 2 + countAt(dataCountAt);
    if (end > field.size()) return false;
    if (end == dataCountAt + 2) {
      if (stored.erase(id) > 0 && Editor::isMixingVoice(id)) --mixingVoices;
      return true;
    }
    // A new one counts whatever becomes of it: also if it is one too many, or cannot be unpacked.
    if (Editor::isMixingVoice(id) && stored.count(id) == 0 && ++mixingVoices > mostMixingVoices) return false;
    const auto unpack = [&](std::size_t from, std::size_t to) {
      return Plain::decode({field.begin() + std::ptrdiff_t(from), field.begin() + std::ptrdiff_t(to)});
    };
    // A name that cannot be unpacked leaves the old one to the new bytes, a name is not stored without its bytes.
    const Plain::Unpacked name = unpack(2, dataCountAt);
    const Plain::Unpacked data = unpack(dataCountAt + 2, end);
    if (data.isWhole) {
      Content& content = stored[id];
      if (name.isWhole) content.name.assign(name.bytes.begin(), name.bytes.end());
      content.bytes = data.bytes;
    }
    return name.isWhole && data.isWhole;
  }
};

// The editor and the model: both are done the same to.
class Pair {
 public:
  explicit Pair(Editor::EmbeddedEditor& editor) : editor_(editor) {}

  void dump(BulkAddress address, Bytes field) {
    if (address == kRemovingTrigger && std::exchange(hasRemoved_, true)) return;  // asks the library 2,048 times
    field.resize(std::min(field.size(), kLongestField));
    const Editor::Record record = handle(::dump(address, field));
    const bool isTaken = isReceiving_ && model_.receive(address, field);
    require(isRefused(record) == !isTaken, "the editor says otherwise how a dump fared");
    const bool showsError = Editor::lastShown(record) >= kFirstErrorId;
    require(address.hi != BDA::kTriggerHi || showsError == !isTaken, "the screen says otherwise how a trigger fared");
    compare();
  }
  void trigger() { dump(Editor::kWriteTrigger, {}); }

  // The data field of the answer, if there is one.
  std::optional<Bytes> request(BulkAddress address) {
    const Editor::Record record = handle(::request(address));
    std::optional<Bytes> field;
    if (address.hi == BDA::kTriggerHi) field.emplace();
    if (const std::optional<ContentId> id = contentAt(address)) {
      const auto stored = model_.stored.find(*id);
      Content content = stored == model_.stored.end() ? Content() : stored->second;
      if (id == kSingle) content.name.clear();  // by contract it is sent without
      field = fieldOf(content);
    }
    if (!isReceiving_ || (field && field->size() > kLongestField)) field.reset();
    require(isRefused(record) == !field, "the editor says otherwise how a request fared");
    require(record.sent.size() == (field ? 1 : 0), "not one answer");
    require(!field || record.sent[0].bytes == ::dump(address, *field), "sent otherwise than stored");
    compare();
    return field;
  }

  void sendBack(BulkAddress place) {
    trigger();
    Contents before = model_.stored;
    const std::optional<Bytes> field = request(place);
    if (!field || !contentAt(place)) return;
    dump(place, *field);
    trigger();
    if (contentAt(place) == kSingle && before.count(kSingle) > 0) before[kSingle].name.clear();
    require(model_.stored == before, "what was sent changes something when it comes back");
  }

  void headerOrFooter(BulkAddress address) {
    handle(::dump(address));
    const bool isEmpty = address.mid == BDA::kMixingVoiceMid && (address.lo & BDA::kEmptyVoice) != 0;
    const std::uint8_t lo = isEmpty ? address.lo & 0x0F : address.lo;
    const std::optional<ContentId> id = Editor::contentOfHeader({address.mid, lo});
    if (address.hi == BDA::kFooterHi && id) {
      const std::optional<Content> content = editor_.library().content(*id);
      require(!content || !isEmpty || !isReceiving_, "a mixing voice is there that came as empty");
      model_.stored.erase(*id);
      if (content) model_.stored[*id] = *content;
    }
    compare();
  }

  // Stored by somebody else, preset banks and what is too long for a dump included.
  void store(BulkAddress place, const Content& content) {
    const std::optional<ContentId> id = contentAt(place);
    if (!id || content.bytes.empty()) return;
    editor_.library().store(*id, content.bytes, content.name);
    model_.stored[*id] = content;
  }

  void setMostMixingVoices(int most) { editor_.library().setMixingVoiceMaximum(model_.mostMixingVoices = most); }

  void setReceiving(bool on) {
    if (isReceiving_ == on) return;
    isReceiving_ = on;
    const std::uint8_t value = on;
    std::vector<std::string> saved;
    editor_.tools().getSystemModel()->getUtility()->set(&value, Editor::SystemModel::kReceiveBulk, 0);
    require(editor_.tools().saveChanged(saved), "a setting is not saved");
  }

 private:
  static bool isRefused(const Editor::Record& record) { return record.outcome == Editor::Outcome::refused; }

  Editor::Record handle(const Bytes& message) { return editor_.handle(message, BDA::DevicePort_Main, ++messages_); }

  void compare() {
    Contents stored;
    for (const ContentId id : editor_.library().contents()) stored[id] = editor_.library().content(id).value();
    require(stored == model_.stored, "the library is not what it must be");

    std::vector<ContentId> held;  // a mixing voice may have come to each of its two addresses
    for (const Editor::UnitReport& unit : editor_.openUnits())
      for (const BulkAddress address : unit.blocks)
        if (const auto id = contentAt(address); id && std::find(held.begin(), held.end(), *id) == held.end())
          held.push_back(*id);
    const auto isSame = [](ContentId id, const auto& dump) { return id == dump.first; };
    require(std::equal(held.begin(), held.end(), model_.held.begin(), model_.held.end(), isSame),
            "other dumps are held than must be");
  }

  Editor::EmbeddedEditor& editor_;
  Model model_;
  bool isReceiving_ = true;
  bool hasRemoved_ = false;
  std::uint64_t messages_ = 0;
};

// Mostly one of a few, so that commands meet; any address now and then.
template <typename Rows>
BulkAddress addressIn(const Rows& rows, Input& input) {
  const std::uint8_t which = input.byte();
  if (which >= 0xF0) return {rows[0].hi, std::uint8_t(input.byte() & 0x7F), std::uint8_t(input.byte() & 0x7F)};
  const BDA::AddressRow& row = rows[which % rows.size()];
  const std::size_t turn = which / rows.size();
  return {row.hi, std::uint8_t(row.mid.first + turn / 4 % row.mid.size()),
          std::uint8_t(row.lo.first + turn % 4 % row.lo.size())};
}

Content contentIn(Input& input) {
  const Bytes name = input.bytes(input.byte() % 32);
  Content content{{name.begin(), name.end()}, {}};
  if (const unsigned size = input.byte(); size < 0xF8) {
    content.bytes = input.bytes(size);
  } else {
    content.bytes.resize(input.word() % 15000);  // at most a little more than a field can hold
    for (std::size_t i = 0; i < content.bytes.size(); ++i) content.bytes[i] = std::uint8_t(i * size);
  }
  return content;
}

// Groups that cannot be unpacked, wrong bytes anywhere, a wrong length.
Bytes brokenFieldIn(Input& input) {
  const Content content = contentIn(input);
  Bytes name = packedName(content);
  Bytes data = Plain::encode(content.bytes);
  const std::uint8_t kind = input.byte();
  if (kind & 1) name.resize(name.size() / 8 * 8 + 1);
  if (kind & 2) data.resize(data.size() / 8 * 8 + 1);
  Bytes field = fieldOfPacked(name, data);
  if (kind & 4) field[input.word() % field.size()] = input.byte();
  if (kind & 8) field.resize(input.word() % (field.size() + 20));
  return field;
}

void run(Pair& pair, Input input) {
  constexpr int kMostCommands = 40;
  for (int i = 0; i < kMostCommands && !input.empty(); ++i) {
    const unsigned command = input.byte() % 11;
    if (command == 0) {
      pair.trigger();
    } else if (command == 1) {
      pair.setMostMixingVoices(input.byte() % 6);
    } else if (command == 2) {
      pair.setReceiving(input.byte() % 4 != 0);
    } else if (command == 3) {
      BulkAddress address = addressIn(BDA::kHeaderRows, input);
      const std::uint8_t kind = input.byte();
      if (kind & 1) address.hi = BDA::kFooterHi;
      if (kind & 2) address.lo |= BDA::kEmptyVoice;
      pair.headerOrFooter(address);
    } else {
      const BulkAddress address = addressIn(BDA::kFileDumpRows, input);
      if (command == 4) pair.dump(address, fieldOf({}));
      if (command == 5 || command == 6) pair.dump(address, fieldOf(contentIn(input)));
      if (command == 7) pair.dump(address, brokenFieldIn(input));
      if (command == 8) pair.sendBack(address);
      if (command == 9) pair.store(address, contentIn(input));
      if (command == 10) pair.request(address);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Scratch scratch("file_dump_fuzz");
  static Editor::EmbeddedEditor editor(scratch.library());
  const Editor::EmbeddedEditor::Run unchanged(editor);  // is taken back
  Pair pair(editor);
  run(pair, Input(data, size));
  pair.setReceiving(true);
  pair.trigger();  // nothing stays held for the next input
  return 0;
}
