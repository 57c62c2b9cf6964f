#include "EmbeddedEditor.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string_view>

#include "AddressRows.h"
#include "EditorNumbers.h"
#include "FileDumpCodec.h"
#include "ScreenText.h"

namespace Editor {

namespace {

constexpr std::size_t kLongestFileDump = 0x3FFF;
// From here on the shown ids tell that the open header was forgotten.
constexpr std::uint16_t kFirstResettingId = BDA::kReceiveSwitchOffMessage;

bool isList(BulkAddress address, BDA::List list) { return BDA::listOf(address.hi) == std::size_t(list); }

bool isEditBufferFooter(BulkAddress address) {
  return address.hi == BDA::kFooterHi && editBufferOf(address.mid).has_value();
}

bool isTrigger(const Reading& reading) {
  return reading.kind == Reading::Kind::dump && reading.verdict != Reading::Verdict::unknownAddress &&
         reading.address->hi == BDA::kTriggerHi;
}

// Whether the assistant now waits for a header again.
bool hasForgottenHeader(const Record& record) {
  if (record.shown.empty()) return false;
  switch (record.result) {
    case BDA::BulkMsg_BulkDump:
      return record.outcome == Outcome::completed || record.outcome == Outcome::stored ||
             lastShown(record) >= kFirstResettingId;
    case BDA::BulkMsg_BulkRequest:
    case BDA::BulkMsg_RequestSkipped:
    case BDA::BulkMsg_DeviceNumberOff:
    case BDA::BulkMsg_WrongDeviceNumber:
    case BDA::BulkMsg_ReceiveSwOff:
    case BDA::BulkMsg_ReceiveError:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::string nameOf(ContentId content) {
  if (const auto header = headerOf(content)) return nameOrBytes({BDA::kHeaderHi, header->mid, header->lo});
  if (const auto dump = fileDumpOf(content)) return nameOrBytes({BDA::kFileDumpHi, dump->mid, dump->lo});
  return fmt::format("content {} of type {}", content.number, content.type);
}

EmbeddedEditor::EmbeddedEditor(const std::filesystem::path& libraryFile, const Library::Options& options)
    : library_(libraryFile, options), store_(library_), work_(library_), host_(store_, &work_) {
  tools().setScreenPainter([this] { return paintScreen(screenLines()); });
}

std::vector<std::string> EmbeddedEditor::screenLines() {
  const Library::Transaction oneState(library_, Library::Transaction::Access::Read);
  const std::vector<ContentId> contents = library_.contents();
  const auto count = [&](auto belongs) { return std::count_if(contents.begin(), contents.end(), belongs); };
  const auto countType = [&](ContSrv::_ContType type) { return count([&](ContentId id) { return id.type == type; }); };
  const auto countBanks = [&](auto belongs) {
    return count([&](ContentId id) {
      const std::optional<BankVoice> voice = bankVoiceOf(id);
      return voice && belongs(voice->bank);
    });
  };
  const auto isUserBank = [](unsigned bank) { return bank >= 8 && bank <= 10; };
  const std::vector<std::uint16_t>& utility = tools().liveSystem().system->utility.values();
  const unsigned device = utility[SystemModel::kDeviceNumber];
  const auto line = [](const char* left, auto leftCount, const char* right, auto rightCount) {
    return fmt::format("{:<8}{:>4}  {:<8}{:>4}", left, leftCount, right, rightCount);
  };
  return {"Bulk Dump Assistant",
          library_.file().filename().string(),
          fmt::format("Device {}, receive {}",
                      device == unsigned(CMA::DeviceNumber_All)   ? "all"
                      : device == unsigned(CMA::DeviceNumber_Off) ? "off"
                                                                  : std::to_string(device + 1),
                      utility[SystemModel::kReceiveBulk] != 0 ? "on" : "off"),
          line("Preset",
               countBanks([&](unsigned bank) { return !isUserBank(bank) && !isDrumBank(bank) && bank != kMixingBank; }),
               "User", countBanks(isUserBank)),
          line("Drum", countBanks(isDrumBank), "Mixing", count(isMixingVoice)),
          line("Multi", countType(ContSrv::ContType_Multi), "Perform.", countType(kContentPerformance)),
          line("Master", countType(kContentMaster), "Remote", countType(kContentRemote)),
          fmt::format("{} contents in all", contents.size())};
}

Record EmbeddedEditor::handle(std::span<const std::uint8_t> message, BDA::DevicePortNum port, std::uint64_t number) {
  const Reading reading = readMessage(message);
  Record record;
  changes_.clear();
  try {
    if (reading.kind == Reading::Kind::dump) {
      handleDump(record, reading, message, port);
    } else if (reading.kind == Reading::Kind::request) {
      const Library::Transaction oneState(library_, Library::Transaction::Access::Read);
      if (!inRun_) tools().reload();  // another program may have changed the live models
      hand(record, message, port);
    } else {
      hand(record, message, port);
    }
  } catch (const LiveModelError& error) {
    throw LibraryError(LibraryError::Kind::Damaged, error.what());
  }

  bool changed = false;
  if (reading.kind == Reading::Kind::dump &&
      (reading.address->hi == BDA::kFooterHi || reading.address->hi == BDA::kTriggerHi)) {
    if (!inRun_) nameChanges(record);
    if (!inRun_ && isEditBufferFooter(*reading.address) && record.result == BDA::BulkMsg_BulkDump &&
        !hasFailed(record) && !record.shown.empty())
      record.contents.push_back(nameOrBytes({BDA::kHeaderHi, reading.address->mid, reading.address->lo}));
    changed = !record.contents.empty();
  }
  record.outcome = outcomeOf(record, reading, changed);
  // The module does not look at how the last step of a write trigger went, and answers a content that cannot be read as
  // an empty one.
  if (!hasFailed(record) && !storeError_.empty()) record.outcome = Outcome::refused;
  if (record.outcome == Outcome::refused) {
    record.reason = whyRefused(record, reading);
    if (isTrigger(reading)) record.reason += heldInVain();
  }
  follow(record, reading, number);
  return record;
}

// Hands the message to the assistant, and learns what failed behind its back.
void EmbeddedEditor::hand(Record& record, std::span<const std::uint8_t> message, BDA::DevicePortNum port) {
  const std::uint64_t failures = library_.failureCount();
  tools().forgetErrors();
  static_cast<AssistantHost::Effects&>(record) = host_.handle(message, port);
  work_.abandonPass();
  record.libraryFailed = library_.failureCount() != failures;
  storeError_ = work_.takeError();
  if (storeError_.empty() && hasFailed(record)) storeError_ = tools().lastError();
}

// A message that was refused leaves no trace in the library. The write trigger is the exception: what it could write
// is written, whatever became of the rest.
void EmbeddedEditor::handleDump(Record& record, const Reading& reading, std::span<const std::uint8_t> message,
                                BDA::DevicePortNum port) {
  bool kept = false;
  storeError_.clear();
  try {
    Library::Transaction transaction(library_);
    const std::size_t before = library_.pendingChanges().size();
    if (!inRun_) tools().reload();  // another program may have changed the live models
    hand(record, message, port);
    if (isTrigger(reading)) leaveNameless(before);
    kept = isTrigger(reading) || (!hasFailed(record) && storeError_.empty());
    std::vector<std::string> saved;
    if (kept && !tools().saveChanged(saved)) throw LibraryError(LibraryError::Kind::Failed, tools().lastError());
    if (kept) transaction.commit();
    if (inRun_)
      changes_.assign(library_.pendingChanges().begin() + std::ptrdiff_t(before), library_.pendingChanges().end());
  } catch (const std::exception&) {
    work_.abandonPass();
    work_.takeError();
    reloadIfPossible();
    // What came first is the reason, what follows from it is not.
    if (!storeError_.empty()) throw LibraryError(LibraryError::Kind::Failed, storeError_);
    throw;
  }
  if (!inRun_) changes_ = library_.takeChanges();
  if (!kept) tools().reload();
}

// The store keeps the name of a content that is written and not named: of a dump whose name is broken, and it cannot
// know, of one that says that there is none.
void EmbeddedEditor::leaveNameless(std::size_t firstChange) {
  const std::vector<Change> changes(library_.pendingChanges().begin() + std::ptrdiff_t(firstChange),
                                    library_.pendingChanges().end());
  for (const Change& change : changes) {
    if (change.kind != Change::Kind::Stored || !nameless_.contains(change.id)) continue;
    if (library_.contentName(change.id) != "") library_.rename(change.id, "");
  }
}

void EmbeddedEditor::reloadIfPossible() {
  try {
    tools().reload();
  } catch (const std::exception&) {
    // The next message reads them again, and tells.
  }
}

// What the message did to each content in the end.
void EmbeddedEditor::nameChanges(Record& record) {
  std::map<std::string, Change::Kind> last;
  for (const Change& change : changes_) {
    if (change.kind != Change::Kind::Stored && change.kind != Change::Kind::Removed) continue;
    const std::string name = nameOf(change.id);
    if (last.insert_or_assign(name, change.kind).second) record.contents.push_back(name);
  }
  for (const std::string& name : record.contents)
    if (last[name] == Change::Kind::Removed) record.removed.push_back(name);
}

namespace {

std::string noteOf(const std::vector<std::uint64_t>& doubtful) {
  if (doubtful.empty()) return {};
  return fmt::format("refused, and in it all the same, is what {} {} carried",
                     doubtful.size() == 1 ? "message" : "messages", fmt::join(doubtful, ", "));
}

}  // namespace

void EmbeddedEditor::follow(Record& record, const Reading& reading, std::uint64_t number) {
  const auto end = [&](UnitReport::State state, std::uint64_t first, BulkAddress address) -> UnitReport& {
    return record.ended.emplace_back(UnitReport{state, first, number, address, {}, {}});
  };
  const auto abandon = [&] {
    if (!open_) return;
    UnitReport& unit = end(UnitReport::State::abandoned, open_->firstMessage(), open_->header());
    unit.cause = describeContent(reading);
    if (record.outcome == Outcome::refused) unit.cause += ", which was refused,";
    open_.reset();
  };
  const auto endHeld = [&](UnitReport::State state) {
    UnitReport& unit = end(state, held_.empty() ? number : held_.front().message, *reading.address);
    std::vector<std::uint64_t> doubtful;
    for (const Held& held : held_) {
      unit.blocks.push_back(held.address);
      if (held.isDoubtful) doubtful.push_back(held.message);
    }
    if (state == UnitReport::State::written) unit.note = noteOf(doubtful);
    held_.clear();
    nameless_.clear();
  };

  const bool isDump = record.result == BDA::BulkMsg_BulkDump && reading.address.has_value();
  // A dump whose length is wrong is refused in words, but taken when the byte where its checksum should be is 0.
  const bool isTakenAnyway = record.outcome == Outcome::refused && reading.verdict == Reading::Verdict::lengthWrong &&
                             lastShown(record) == BDA::kReceiving;
  const bool isTaken =
      isDump && (isTakenAnyway || (record.outcome != Outcome::refused && record.outcome != Outcome::ignored));
  if (isTaken && isList(*reading.address, BDA::List::header)) {
    abandon();
    open_.emplace(*reading.address, number);
    doubtful_.clear();
    if (editBufferOf(reading.address->mid) == EditBuffer::partVoice)
      open_->expectVoice(tools().live(EditBuffer::partVoice, reading.address->lo).voice->isDrum());
  }
  if (isTakenAnyway && open_) doubtful_.push_back(number);
  if (isTaken && open_ && open_->isClosedBy(*reading.address)) {
    record.missing = open_->missing();
    UnitReport& unit = end(record.missing.empty() ? UnitReport::State::complete : UnitReport::State::incomplete,
                           open_->firstMessage(), open_->header());
    unit.blocks = record.missing;
    unit.note = noteOf(doubtful_);
    open_.reset();
  } else if (isTaken && reading.address->hi == BDA::kFileDumpHi) {
    hold(reading, number, isTakenAnyway);
  } else if (isTaken && open_) {
    open_->arrive(*reading.address);
  }
  if (record.result == BDA::BulkMsg_BulkDump && isTrigger(reading) && !record.shown.empty())
    endHeld(UnitReport::State::written);
  if (isDump && reading.address->hi == BDA::kFileDumpHi && record.outcome == Outcome::refused &&
      lastShown(record) >= kFirstResettingId && !held_.empty())
    endHeld(UnitReport::State::discarded);
  if (hasForgottenHeader(record)) abandon();
}

// A dump that comes again takes the place of the one that is held, and a mixing voice has two addresses.
void EmbeddedEditor::hold(const Reading& reading, std::uint64_t number, bool isDoubtful) {
  const BulkAddress address = *reading.address;
  const auto same = std::find_if(held_.begin(), held_.end(), [&](const Held& held) { return held.address == address; });
  if (same == held_.end())
    held_.push_back({address, number, isDoubtful});
  else
    same->isDoubtful = isDoubtful;
  const std::optional<ContentId> content = contentOfFileDump({address.mid, address.lo});
  if (!content) return;
  if (reading.isNamed)
    nameless_.erase(canonical(*content));
  else
    nameless_.insert(canonical(*content));
}

std::vector<UnitReport> EmbeddedEditor::openUnits() const {
  std::vector<UnitReport> units;
  if (open_)
    units.push_back(
        {UnitReport::State::open, open_->firstMessage(), open_->firstMessage(), open_->header(), open_->missing(), {}});
  if (!held_.empty()) {
    UnitReport unit{
        UnitReport::State::held, held_.front().message, held_.back().message, held_.front().address, {}, {}};
    for (const Held& held : held_) unit.blocks.push_back(held.address);
    units.push_back(std::move(unit));
  }
  return units;
}

std::string EmbeddedEditor::whyRefused(const Record& record, const Reading& reading) {
  const unsigned setting = tools().liveSystem().system->utility.values()[SystemModel::kDeviceNumber];
  switch (record.result) {
    case BDA::BulkMsg_DeviceNumberOff:
      return "the device number is off";
    case BDA::BulkMsg_WrongDeviceNumber:
      return fmt::format("it is for device {}, the device number is {}", *reading.device, setting + 1);
    case BDA::BulkMsg_ReceiveSwOff:
      return "receive-bulk is off";
    default:
      break;
  }
  if (lastShown(record) == BDA::kMixingVoiceFullMessage) return wordsOf(BDA::BulkDumpRefusal::mixingVoicesFull);
  if (isBroken(reading)) return fmt::format("{}: {}", wordOf(reading.verdict), reading.note);
  if (!storeError_.empty()) return storeError_;
  const BulkAddress address = reading.address.value_or(BulkAddress{});
  const std::size_t list = BDA::listOf(address.hi);
  const bool isUnitBlock = list >= std::size_t(BDA::List::normalVoice) && list <= std::size_t(BDA::List::remote);
  if (record.result == BDA::BulkMsg_BulkRequest && isUnitBlock)
    return "it is not answered by itself, only with the header that it belongs to";
  if (record.result == BDA::BulkMsg_BulkDump) {
    if (isUnitBlock && (!open_ || !OpenUnit(*open_).arrive(address))) return "no open header admits this block";
    if (isList(address, BDA::List::footer) && (!open_ || !open_->isClosedBy(address)))
      return "it closes no open header";
    if (address.hi == BDA::kFileDumpHi && !isWritableFileDump(address)) return "this bank is not stored by file dumps";
  }
  if (record.result == BDA::BulkMsg_BulkRequest && reading.address->hi == BDA::kFileDumpHi)
    if (const std::size_t size = fileDumpSize(*reading.address); size > kLongestFileDump)
      return fmt::format("its file dump would have {} data bytes, at most {} are possible", size, kLongestFileDump);
  return wordsOf(record.report.refusal);
}

// The file dumps that a refused write trigger has not written.
std::string EmbeddedEditor::heldInVain() const {
  std::string names;
  for (const Held& held : held_) {
    const std::optional<ContentId> id = contentOfFileDump({held.address.mid, held.address.lo});
    const auto isIt = [&](const Change& change) { return id && change.id == canonical(*id); };
    if (std::any_of(changes_.begin(), changes_.end(), isIt)) continue;
    names += fmt::format("{} {} (message {})", names.empty() ? "; not written:" : ",", nameOrBytes(held.address),
                         held.message);
  }
  return names;
}

// As many data bytes as a file dump of what is stored there would have.
std::size_t EmbeddedEditor::fileDumpSize(BulkAddress address) {
  const auto packed = [](std::size_t size) { return BDA::FileDumpCodec::packedSize(size); };
  const std::optional<ContentId> id = contentOfFileDump({address.mid, address.lo});
  const std::optional<Library::Content> content = id ? library_.content(*id) : std::nullopt;
  return content ? packed(content->name.size()) + packed(content->bytes.size()) + 4 : 0;
}

namespace {

void setUtility(EditorJobTools& tools, std::uint16_t parameter, std::uint8_t value) {
  tools.getSystemModel()->getUtility()->set(&value, parameter, 0);
}

void save(EditorJobTools& tools) {
  std::vector<std::string> saved;
  if (!tools.saveChanged(saved)) throw LibraryError(LibraryError::Kind::Failed, tools.lastError());
}

}  // namespace

EmbeddedEditor::Run::Run(EmbeddedEditor& editor, Library::Transaction::Access access, Devices devices)
    : editor_(editor), transaction_(std::in_place, editor.library_, access) {
  EditorJobTools& tools = editor.tools();
  tools.reload();
  system_ = tools.liveSystem();
  const unsigned device = system_.system->utility.values()[SystemModel::kDeviceNumber];
  setUtility(tools, SystemModel::kReceiveBulk, 1);
  if (devices == Devices::any)
    setUtility(tools, SystemModel::kDeviceNumber, CMA::DeviceNumber_All);
  else if (device == unsigned(CMA::DeviceNumber_Off))
    setUtility(tools, SystemModel::kDeviceNumber, 0);
  if (access == Library::Transaction::Access::Write) save(tools);
  editor.inRun_ = true;
}

EmbeddedEditor::Run::~Run() {
  editor_.inRun_ = false;
  transaction_.reset();
  editor_.reloadIfPossible();
}

void EmbeddedEditor::Run::commit() {
  EditorJobTools& tools = editor_.tools();
  for (const std::uint16_t parameter : {SystemModel::kReceiveBulk, SystemModel::kDeviceNumber})
    setUtility(tools, parameter, std::uint8_t(system_.system->utility.values()[parameter]));
  save(tools);
  transaction_->commit();
}

std::vector<std::uint8_t> EmbeddedEditor::requestFor(BulkAddress address) {
  const unsigned setting = tools().liveSystem().system->utility.values()[SystemModel::kDeviceNumber];
  const auto device = std::uint8_t(setting < 16 ? setting : 0);
  return requestMessage(address, device);
}

}  // namespace Editor
