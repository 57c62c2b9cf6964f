#include "compare/Backup.h"

#include <nlohmann/json.hpp>

#include "AddressRows.h"
#include "exchange/Answers.h"

namespace Editor {

using Access = Library::Transaction::Access;

Backup::Backup(EmbeddedEditor& editor)
    : editor_(editor),
      oneState_(editor, Access::Read),
      received_(proof_, Access::Write, EmbeddedEditor::Run::Devices::any),
      plan_(planBackup(editor)),
      count_(plan_.fileDumps.size() + plan_.units.size() + plan_.system.size() + plan_.favourites.size()) {}

void Backup::run(const Visitor& visitor) {
  for (const std::string& name : plan_.unaddressed) leaveOut(name, "no address carries it", visitor);
  add(plan_.fileDumps, visitor);
  if (done_ > 0) back({kWriteTrigger, nameOrBytes(kWriteTrigger), std::nullopt}, visitor);
  add(plan_.units, visitor);
  add(plan_.system, visitor);
  add(plan_.favourites, visitor);
}

void Backup::add(const std::vector<BackupPlan::Item>& items, const Visitor& visitor) {
  for (const BackupPlan::Item& item : items) {
    const std::uint64_t bytes = back(item, visitor);
    if (bytes > 0) ++done_;
    visitor.asked(bytes);
  }
}

void Backup::leaveOut(const std::string& name, const std::string& why, const Visitor& visitor) {
  leftOut_.insert(name);
  visitor.leftOut(name, why);
}

std::uint64_t Backup::back(const BackupPlan::Item& item, const Visitor& visitor) {
  const Record record = editor_.handle(editor_.requestFor(item.address), BDA::DevicePort_Main, ++number_);
  if (const std::string why = whyUnanswered(record); !why.empty()) {
    leaveOut(item.name, why, visitor);
    return 0;
  }
  for (const AssistantHost::Sent& sent : record.sent) {
    const Record received = proof_.handle(sent.bytes, BDA::DevicePort_Main, ++number_);
    if (received.outcome != Outcome::refused) continue;
    leaveOut(item.name, "it would not be restored: " + received.reason, visitor);
    return 0;
  }
  std::uint64_t bytes = 0;
  for (const AssistantHost::Sent& sent : record.sent) {
    visitor.message(sent.bytes);
    bytes += sent.bytes.size();
  }
  messages_ += record.sent.size();
  bytes_ += bytes;
  return bytes;
}

nlohmann::ordered_json Backup::manifest() { return manifestOf(editor_, plan_, leftOut_); }

void Backup::visitLost(const std::function<void(const Difference&)>& visit) {
  compareLibraries(editor_, proof_, Reception::ignored, [&](const Difference& lost) {
    if (!leftOut_.contains(lost.target)) visit(lost);
  });
}

}  // namespace Editor
