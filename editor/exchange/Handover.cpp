#include "exchange/Handover.h"

#include "AddressRows.h"
#include "exchange/Outcome.h"

namespace Editor {

namespace {

using Making = Library::Transaction::Making;

// Whether a message is a whole by itself, or ends one.
bool isWhole(Role role) { return role == Role::alone || role == Role::footer; }

// The checksum does not cover that byte.
std::vector<std::uint8_t> withDevice(std::span<const std::uint8_t> message, std::uint8_t device) {
  constexpr std::size_t kDevice = 2;
  std::vector<std::uint8_t> changed(message.begin(), message.end());
  changed[kDevice] = std::uint8_t((changed[kDevice] & 0xF0) | device);
  return changed;
}

}  // namespace

std::uint8_t deviceNumberOf(const EditorJobTools& tools) {
  constexpr unsigned kDevices = 16;
  const unsigned setting = tools.liveSystem().system->utility.values()[SystemModel::kDeviceNumber];
  return std::uint8_t(setting < kDevices ? setting : 0);
}

void saveLive(EditorJobTools& tools) {
  std::vector<std::string> saved;
  if (!tools.saveChanged(saved)) throw LibraryError(LibraryError::Kind::Failed, tools.lastError());
}

Handed Handover::hand(const Reading& reading, std::span<const std::uint8_t> message, BDA::DevicePortNum port,
                      const std::set<ContentId>& nameless) {
  const Act act = [&] { return pass(reading, message, port); };
  if (reading.kind == Reading::Kind::dump) return handDump(reading, act, nameless);
  if (reading.kind == Reading::Kind::request) return handRequest(reading, act);
  Handed handed;
  hand(handed, reading, act);
  return handed;
}

Handed Handover::run(std::size_t job, const Reading& request) {
  return handRequest(request, [&] { return host_.run(job); });
}

bool Handover::hears(const Reading& reading) {
  {
    const Library::Transaction oneState(library_, Library::Transaction::Access::Read);
    seeWhatOthersChanged();
  }
  const ModelSet live = host_.tools().liveSystem();
  const auto& utility = live.system->utility.values();
  const unsigned device = utility[SystemModel::kDeviceNumber];
  if (utility[SystemModel::kReceiveBulk] == 0 || device == unsigned(CMA::DeviceNumber_Off)) return false;
  return takesAnyDevice_ || device == unsigned(CMA::DeviceNumber_All) || reading.device == device + 1;
}

Handed Handover::handRequest(const Reading& reading, const Act& act) {
  Handed handed;
  const Library::Transaction oneState(library_, Library::Transaction::Access::Read);
  seeWhatOthersChanged();
  hand(handed, reading, act);
  return handed;
}

Handed Handover::handDump(const Reading& reading, const Act& act, const std::set<ContentId>& nameless) {
  const bool isTrigger = reading.role == Role::trigger;
  EditorJobTools& tools = host_.tools();
  Handed handed;
  bool isKept = false;
  std::uint64_t liveBefore = 0;
  try {
    Library::Transaction transaction(library_);
    const std::size_t before = library_.pendingChanges().size();
    seeWhatOthersChanged();
    liveBefore = tools.changeCount();
    hand(handed, reading, act);
    if (isTrigger) leaveNameless(before, nameless);
    isKept = isTrigger || (!hasFailed(handed) && handed.storeError.empty());
    if (isKept) {
      saveLive(tools);
      // What has nothing left to wait for is on disk when it is told, also where it changed nothing.
      transaction.commit(isWhole(reading.role) ? Making::Always : Making::IfThereIsAnything);
      rememberLive();
    }
    if (inRun_)
      handed.changes.assign(library_.pendingChanges().begin() + std::ptrdiff_t(before),
                            library_.pendingChanges().end());
  } catch (const std::exception&) {
    work_.abandonPass();
    work_.takeError();
    rereadLive();
    // What came first is the reason, what follows from it is not.
    if (!handed.storeError.empty()) throw LibraryError(LibraryError::Kind::Failed, handed.storeError);
    throw;
  }
  if (!inRun_) handed.changes = library_.takeChanges();
  handed.isKept = isKept && !inRun_;
  if (!isKept && tools.changeCount() != liveBefore) {
    reload();
    rememberLive();
  }
  return handed;
}

AssistantHost::Effects Handover::pass(const Reading& reading, std::span<const std::uint8_t> message,
                                      BDA::DevicePortNum port) {
  if (!takesAnyDevice_ || !reading.device) return host_.handle(message, port);
  return host_.handle(withDevice(message, deviceNumberOf(host_.tools())), port);
}

// Has the assistant act, and learns what failed behind its back.
void Handover::hand(Handed& handed, const Reading& reading, const Act& act) {
  const std::uint64_t failures = library_.failureCount();
  host_.tools().forgetErrors();
  static_cast<AssistantHost::Effects&>(handed) = act();
  work_.abandonPass();
  handed.libraryFailed = library_.failureCount() != failures;
  handed.storeError = work_.takeError();
  if (handed.storeError.empty() && hasFailed(handed)) handed.storeError = host_.tools().lastError();
  handed.storeFails = handed.libraryFailed || (!handed.storeError.empty() && library_.room());
  if (!handed.storeError.empty()) return;
  handed.storeError = damageAt(reading);
  if (!handed.storeError.empty()) handed.sent.clear();
}

// Damaged live models are neither sent, as if they were new, nor changed in part.
std::string Handover::damageAt(const Reading& reading) const {
  const EditorJobTools& tools = host_.tools();
  if (reading.role == Role::alone && BDA::listOf(reading.address->hi) == std::size_t(BDA::List::system))
    return tools.systemDamage();
  if (reading.role != Role::header || reading.kind != Reading::Kind::request) return {};
  const std::optional<EditBuffer> buffer = editBufferOf(reading.address->mid);
  return buffer ? tools.damage(*buffer, reading.address->lo) : std::string();
}

// Another program may have changed the live models, but not while a run holds the library; and whoever uses this editor
// may have, with or without the library.
void Handover::seeWhatOthersChanged() {
  if (inRun_) return;
  noticeState();
  const Library::Version version = library_.dataVersion();
  if (seen_ == Seen{version, host_.tools().changeCount()}) return;
  reload();
  seen_ = Seen{version, host_.tools().changeCount()};
}

void Handover::noticeState() {
  if (!findState_ || known_ == library_.dataVersion()) return;
  known_ = library_.dataVersion();
  findState_();
}

// They are those of the state that was seen, or of what this editor made of it.
void Handover::rememberLive() {
  if (seen_) seen_->changes = host_.tools().changeCount();
}

// The store keeps the name of a content that is written and not named: of a dump whose name is broken, and it cannot
// know, of one that says that there is none.
void Handover::leaveNameless(std::size_t firstChange, const std::set<ContentId>& nameless) {
  const std::vector<Change> changes(library_.pendingChanges().begin() + std::ptrdiff_t(firstChange),
                                    library_.pendingChanges().end());
  for (const Change& change : changes) {
    const ContentId id = change.place.id;
    if (change.what != What::stored || !nameless.contains(id)) continue;
    if (library_.contentName(id) != "") library_.rename(id, "");
  }
}

void Handover::beginRun() {
  inRun_ = true;
  seen_.reset();
}

void Handover::endRun() {
  inRun_ = false;
  rereadLive();
}

void Handover::reload() {
  try {
    host_.tools().reload();
  } catch (const LiveModelError& error) {
    throw LibraryError(LibraryError::Kind::Damaged, error.what());
  }
}

void Handover::rereadLive() {
  seen_.reset();
  try {
    reload();
  } catch (const std::exception&) {
    // The next message reads them again, and tells.
  }
}

std::string deviceNumberWords(const EditorJobTools& tools) {
  return wordsOf(Settings::kDeviceNumber, tools.liveSystem().system->utility.values()[SystemModel::kDeviceNumber]);
}

}  // namespace Editor
