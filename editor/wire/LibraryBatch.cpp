#include "wire/LibraryBatch.h"

#include <optional>

#include "exchange/Answers.h"

namespace Editor {

Batch batchOf(EmbeddedEditor& editor, const std::vector<BulkAddress>& addresses, Triggers triggers,
              const std::function<void(BulkAddress, const std::string&)>& visitMissing) {
  const EmbeddedEditor::Run oneState(editor, Library::Transaction::Access::Read);
  BatchBuilder builder;
  std::optional<std::vector<std::uint8_t>> held;  // a file dump that no trigger has written yet
  const auto writeHeld = [&] {
    if (held && triggers == Triggers::behindFileDumps) builder.add(triggerFor(*held));
    held.reset();
  };
  std::uint64_t number = 0;
  for (const BulkAddress address : addresses) {
    const Record record = editor.handle(editor.requestFor(address), BDA::DevicePort_Main, ++number);
    std::string why = whyUnanswered(record);
    if (why.empty() && readMessage(record.sent.back().bytes).removes) why = "nothing is stored there";
    if (!why.empty()) {
      visitMissing(address, why);
      continue;
    }
    const bool isFileDump = readMessage(record.sent.front().bytes).role == Role::fileDump;
    if (!isFileDump) writeHeld();
    for (const AssistantHost::Sent& sent : record.sent) builder.add(sent.bytes);
    if (isFileDump) held = record.sent.front().bytes;
  }
  writeHeld();
  return builder.finish();
}

}  // namespace Editor
