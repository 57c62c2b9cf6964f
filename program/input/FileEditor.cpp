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
      // A request is only for what it does to a unit that is open.
      if (record.outcome == Outcome::refused && reading.kind != Reading::Kind::request)
        complain(fmt::format("refused: {}", escape(record.reasonInCommon)),
                 fmt::format("{}: refused: {}: {}", placeOf(message), describeContent(reading), escape(record.reason)));
      if (isSilentlyBroken(record))
        complain(wordOf(reading.verdict), fmt::format("{}: {}", placeOf(message), describeFault(reading)));
      for (const UnitReport& unit : record.ended)
        if (isBroken(unit)) complain(wordOf(unit.state), fmt::format("{}: {}", placeOf(message), describeUnit(unit)));
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
