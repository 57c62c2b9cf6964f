// The verb verify: whether every message and every unit of files is whole, judged without a library.

#include <fmt/format.h>

#include "messages/Verification.h"
#include "midi/Counted.h"
#include "output/Complaints.h"
#include "output/ReadingLines.h"
#include "verbs/Verbs.h"

namespace Editor {

void verify(const Words& files, bool json, Program& program) {
  Console& console = program.console;
  const LineForm form = json ? LineForm::json : LineForm::words;
  InputStream input(files);
  if (input.isLive()) console.flushEachLine();
  Complaints complaints(console);
  Verification verification;
  const auto tellUnits = [&](const std::vector<UnitReport>& ended) {
    for (const UnitReport& unit : ended) console.line(lineOf(unit, form));
  };
  const auto judge = [&](const InputMessage& message, const Reading& reading) {
    if (isBroken(reading))
      complaints.tell(wordOf(reading.verdict), fmt::format("{}: {}", placeOf(message), describeFault(reading)));
    tellUnits(verification.next(reading, message.number));
  };
  const ReadingResult result = printReadings(input, form, console, judge);
  tellUnits(verification.finish());
  complaints.finish();
  if (!result.areAllWhole || !verification.areAllWhole()) program.refuse();
  console.note(fmt::format("{}, {} broken; {}, {} broken", counted(verification.messages(), "message"),
                           verification.brokenMessages(), counted(verification.units(), "unit"),
                           verification.brokenUnits()));
  program.failInputs(result.problems);
}

}  // namespace Editor
