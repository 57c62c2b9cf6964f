#include "convert/UnitModels.h"

#include <algorithm>

#include "AddressRows.h"
#include "exchange/Answers.h"
#include "targets/CarryCheck.h"
#include "targets/TargetModels.h"

namespace Editor {

namespace {

// The content as which file dumps of a kind are received here.
std::optional<MidLo> receivingDumpOf(ContentKind kind) {
  switch (kind) {
    case ContentKind::voice:
    case ContentKind::mix:
      return MidLo{0x0A, 0};
    case ContentKind::drum:
      return MidLo{0x28, 0};
    case ContentKind::multi:
      return MidLo{0x50, 0};
    case ContentKind::single:
      return MidLo{0x7F, 0};
    default:
      return std::nullopt;
  }
}

BulkAddress at(std::uint8_t hi, MidLo place) { return {hi, place.mid, place.lo}; }

[[noreturn]] void refuse(const std::string& why) { throw TargetError(TargetError::Kind::refused, why); }

void ask(EmbeddedEditor& editor, BulkAddress address, std::uint64_t number, MessageBytes& messages) {
  const Record record = editor.handle(editor.requestFor(address), BDA::DevicePort_Main, number);
  if (const std::string why = whyUnanswered(record); !why.empty()) refuse(nameOrBytes(address) + ": " + why);
  for (const AssistantHost::Sent& sent : record.sent) messages.push_back(sent.bytes);
}

// What the blocks of a target leave out of its models.
std::vector<std::string> checkBlocks(const Target& target, const ModelSet& models) {
  CarryCheck check = checkCarried(target, models);
  if (!check.refusal.empty()) refuse(target, check.refusal);
  const bool isPart = target.kind == Target::Kind::editBuffer && target.buffer == EditBuffer::partVoice;
  if (isPart)  // of the multi that it plays in its blocks have no more than the effects
    check.leftOut.erase(std::remove_if(check.leftOut.begin(), check.leftOut.end(),
                                       [](const std::string& path) { return path.rfind("voice", 0) != 0; }),
                        check.leftOut.end());
  return check.leftOut;
}

}  // namespace

UnitModels::Held UnitModels::read(const Batch::Unit& unit, const MessageBytes& messages) {
  if (unit.removes) return {{}, {}, "it carries no content"};
  return unit.form == Batch::Unit::Form::blocks ? readBlocks(unit, messages) : readFileDump(unit, messages.front());
}

UnitModels::Held UnitModels::readBlocks(const Batch::Unit& unit, MessageBytes messages) {
  const EditBuffer buffer = *editBufferOf(unit.kind);
  readdress(messages.front(), at(BDA::kHeaderHi, headerOf(buffer)));
  readdress(messages.back(), at(BDA::kFooterHi, headerOf(buffer)));
  for (const std::vector<std::uint8_t>& message : messages)
    if (std::string why = receive(message); !why.empty()) return {{}, {}, std::move(why)};
  const ModelSet& models = editor_.tools().live(buffer);
  return {nameOf(models), models, {}};
}

UnitModels::Held UnitModels::readFileDump(const Batch::Unit& unit, std::vector<std::uint8_t> message) {
  const MidLo place = *receivingDumpOf(unit.kind);
  const ContentId id = *contentOfFileDump(place);
  editor_.library().remove(id);
  readdress(message, at(BDA::kFileDumpHi, place));
  for (const std::vector<std::uint8_t>& one : {message, writeTrigger()})
    if (std::string why = receive(one); !why.empty()) return {{}, {}, std::move(why)};
  Held held{editor_.library().contentName(id).value_or(""), emptySetFor(id), {}};
  if (editor_.store().loadModels(id, *held.models, held.why) != ContentStore::Loaded::ok) held.models.reset();
  return held;
}

// Why it was refused; empty: it was not.
std::string UnitModels::receive(const std::vector<std::uint8_t>& message) {
  const Record record = editor_.handle(message, BDA::DevicePort_Main, ++number_);
  return record.outcome == Outcome::refused ? record.reason : "";
}

Dumps UnitModels::blocksOf(ContentKind kind, const ModelSet& models) {
  const std::optional<EditBuffer> buffer = editBufferOf(kind);
  if (!buffer) refuse(std::string(wordsOf(kind)) + " has no blocks");
  const BulkAddress header = at(BDA::kHeaderHi, headerOf(*buffer));
  Dumps dumps{{}, checkBlocks(parseTarget(nameOrBytes(header)), models)};
  if (!editor_.tools().replaceLive(*buffer, 0, models)) refuse(editor_.tools().lastError());
  ask(editor_, header, ++number_, dumps.messages);
  return dumps;
}

Dumps UnitModels::fileDumpOf(ContentKind kind, const ModelSet& models) {
  const std::optional<MidLo> place = receivingDumpOf(kind);
  if (!place) refuse(std::string(wordsOf(kind)) + " has no file dump");
  std::string why;
  if (!editor_.store().storeModels(*contentOfFileDump(*place), nameOf(models), models, why)) refuse(why);
  Dumps dumps;
  ask(editor_, at(BDA::kFileDumpHi, *place), ++number_, dumps.messages);
  return dumps;
}

Dumps dumpsOf(const Target& target, const std::optional<BulkAddress>& address, const ModelSet& models) {
  Dumps dumps;
  if (!address || address->hi == BDA::kHeaderHi) dumps.leftOut = checkBlocks(target, models);
  EmbeddedEditor editor;
  storeTarget(editor, target, models);
  const EmbeddedEditor::Run run(editor);
  std::uint64_t number = 0;
  for (const BulkAddress one : address ? std::vector<BulkAddress>{*address} : systemAddresses())
    ask(editor, one, ++number, dumps.messages);
  return dumps;
}

}  // namespace Editor
