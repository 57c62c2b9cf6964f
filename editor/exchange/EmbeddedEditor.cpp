#include "exchange/EmbeddedEditor.h"

#include <utility>

#include "AddressRows.h"
#include "exchange/Reason.h"
#include "exchange/ScreenLines.h"
#include "exchange/ScreenText.h"
#include "messages/Text.h"

namespace Editor {

namespace {

void setUtility(EditorJobTools& tools, std::uint16_t parameter, std::uint8_t value) {
  tools.getSystemModel()->getUtility()->set(&value, parameter, 0);
}

bool isOff(const ModelSet& system) {
  return system.system->utility.values()[SystemModel::kDeviceNumber] == unsigned(CMA::DeviceNumber_Off);
}

// The blocks that the unit which this message closed has not got.
std::vector<BulkAddress> missingIn(const std::vector<UnitReport>& ended) {
  for (const UnitReport& unit : ended)
    if (unit.state == UnitReport::State::incomplete) return unit.blocks;
  return {};
}

}  // namespace

bool isSilentlyBroken(const Record& record) {
  if (record.outcome == Outcome::notOurs) return isBroken(record.reading);
  return record.outcome != Outcome::refused && record.reading.verdict == Reading::Verdict::fileDumpBroken;
}

std::vector<MessageFault> faultsOf(const Record& record) {
  std::vector<MessageFault> faults;
  const Reading& reading = record.reading;
  // A request is only for what it does to a unit that is open.
  if (record.outcome == Outcome::refused && reading.kind != Reading::Kind::request)
    faults.push_back({"refused: " + escape(record.reasonInCommon),
                      "refused: " + describeContent(reading) + ": " + escape(record.reason)});
  if (isSilentlyBroken(record)) faults.push_back({wordOf(reading.verdict), describeFault(reading)});
  for (MessageFault& fault : faultsIn(record.ended)) faults.push_back(std::move(fault));
  return faults;
}

EmbeddedEditor::EmbeddedEditor(const std::filesystem::path& libraryFile, const Library::Options& options)
    : library_(libraryFile, options),
      store_(library_),
      work_(library_),
      host_(store_, &work_),
      handover_(library_, work_, host_),
      units_(host_.tools()) {
  tools().setScreenPainter([this] { return paintScreen(screenLines(library_, tools())); });
}

void EmbeddedEditor::setListener(EditorListener* listener) {
  listener_ = listener;
  handover_.watch(listener == nullptr ? std::function<void()>() : [this] { listener_->found(library_); });
}

template <typename Act, typename Tell>
Record EmbeddedEditor::told(Act act, Tell tell) {
  if (listener_ == nullptr) return act();
  try {
    Record record = act();
    tell(*listener_, &record);
    return record;
  } catch (const LibraryError&) {
    tell(*listener_, nullptr);
    throw;
  }
}

Record EmbeddedEditor::handle(const Reading& reading, std::span<const std::uint8_t> message, BDA::DevicePortNum port,
                              std::uint64_t number) {
  return told([&] { return recordOf(reading, handover_.hand(reading, message, port, units_.nameless()), number); },
              [&](EditorListener& listener, const Record* record) { listener.handed(number, port, message, record); });
}

Record EmbeddedEditor::run(std::size_t job) {
  const MidLo header = headerOf(kBulkJobs.at(job).buffer);
  const std::vector<std::uint8_t> message = requestFor({BDA::kHeaderHi, header.mid, header.lo});
  const Reading request = readMessage(message);
  return told([&] { return recordOf(request, handover_.run(job, request), 0); },
              [&](EditorListener& listener, const Record* record) { listener.ran(job, message, record); });
}

Record EmbeddedEditor::recordOf(const Reading& reading, Handed handed, std::uint64_t number) {
  Record record;
  record.reading = reading;
  static_cast<Handed&>(record) = std::move(handed);
  static_cast<Touched&>(record) = touchedBy(reading, record);
  record.outcome = outcomeOf(reading, record, record);
  if (record.outcome == Outcome::refused) {
    Reason reason = reasonOf(reading, record, units_, library_, tools(), isDeviceOff());
    record.reason = std::move(reason.words);
    record.reasonInCommon = std::move(reason.inCommon);
  }
  record.ended = units_.follow(reading, record, record.outcome, number);
  record.missing = missingIn(record.ended);
  return record;
}

bool EmbeddedEditor::isDeviceOff() const { return countsOffAsOn_ || isOff(tools().liveSystem()); }

EmbeddedEditor::Run::Run(EmbeddedEditor& editor, Library::Transaction::Access access, Devices devices)
    : editor_(editor), transaction_(std::in_place, editor.library_, access) {
  EditorJobTools& tools = editor.tools();
  editor.handover_.noticeState();
  tools.reload();
  system_ = tools.liveSystem();
  if (access == Library::Transaction::Access::Write) heldSystem_ = editor.library_.held(liveAt(tools.systemKey()));
  isSystemNew_ = !heldSystem_ || !tools.systemDamage().empty();
  const bool isDeviceOff = isOff(system_);
  setUtility(tools, SystemModel::kReceiveBulk, 1);
  if (devices == Devices::any)
    setUtility(tools, SystemModel::kDeviceNumber, CMA::DeviceNumber_All);
  else if (isDeviceOff)
    setUtility(tools, SystemModel::kDeviceNumber, 0);
  if (access == Library::Transaction::Access::Write) {
    // What the messages bring may replace damaged system settings.
    if (!tools.systemDamage().empty() && !tools.replaceSystem(tools.liveSystem()))
      throw LibraryError(LibraryError::Kind::Failed, tools.lastError());
    saveLive(tools);
  }
  editor.countsOffAsOn_ = isDeviceOff;
  editor.handover_.beginRun();
  if (editor.listener_ != nullptr) editor.listener_->runBegins();
}

EmbeddedEditor::Run::~Run() {
  transaction_.reset();
  editor_.countsOffAsOn_ = false;
  editor_.handover_.endRun();
  if (editor_.listener_ != nullptr) editor_.listener_->runEnds(isCommitted_);
}

void EmbeddedEditor::Run::settle() {
  EditorJobTools& tools = editor_.tools();
  for (const std::uint16_t parameter : {SystemModel::kReceiveBulk, SystemModel::kDeviceNumber})
    setUtility(tools, parameter, std::uint8_t(system_.system->utility.values()[parameter]));
  saveLive(tools);
  // What only this run has stored is no change.
  if (isSystemNew_ && tools.liveSystem() == system_) editor_.library_.putBack(liveAt(tools.systemKey()), heldSystem_);
}

void EmbeddedEditor::Run::commit() {
  settle();
  transaction_->commit(Library::Transaction::Making::Always);
  isCommitted_ = true;
}

std::vector<std::uint8_t> EmbeddedEditor::requestFor(BulkAddress address) {
  return requestMessage(address, deviceNumberOf(tools()));
}

}  // namespace Editor
