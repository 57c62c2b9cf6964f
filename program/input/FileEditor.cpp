#include "input/FileEditor.h"

#include <fmt/format.h>

#include "messages/Text.h"
#include "output/Complaints.h"
#include "output/Progress.h"
#include "output/RepeatedPlaces.h"

namespace Editor {

std::unique_ptr<EmbeddedEditor> editorOf(const InputFile& input, const char* verb, Program& program) {
  auto editor = std::make_unique<EmbeddedEditor>();
  Complaints complaints(program.console);
  const auto complain = [&](const std::string& kind, const std::string& text) {
    complaints.tell(kind, text);
    program.refuse();
  };
  if (!input.isWhole()) program.refuse();
  Progress progress(program.console, verb, "message", input.countMessages());
  RepeatedPlaces repeated(*editor, program.console);
  EmbeddedEditor::Run run(*editor, Library::Transaction::Access::Write, EmbeddedEditor::Run::Devices::any);
  input.forEachMessage([&](const InputMessage& message) {
    const Reading reading = readMessage(message.bytes);
    if (reading.kind != Reading::Kind::foreign) {
      const Record record = editor->handle(reading, message.bytes, BDA::DevicePort_Main, message.number);
      for (const MessageFault& fault : faultsOf(record))
        complain(fault.kind, fmt::format("{}: {}", placeOf(message), fault.text));
      repeated.add(message, record);
    }
    progress.step(message.bytes.size());
  });
  for (const UnitReport& unit : editor->openUnits())
    complain(wordOf(unit.state), fmt::format("{}: {}", input.place(unit.firstMessage), describeUnit(unit)));
  complaints.finish();
  repeated.finish();
  run.commit();
  return editor;
}

}  // namespace Editor
