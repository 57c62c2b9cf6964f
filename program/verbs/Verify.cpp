// The verb verify: whether every message and every unit of files is whole, judged without a library.

#include <fmt/format.h>

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
  std::size_t messages = 0;
  std::size_t brokenMessages = 0;
  std::size_t units = 0;
  std::size_t brokenUnits = 0;
  Complaints complaints(console);
  UnitFollower follower;
  const auto tellUnits = [&](const std::vector<UnitReport>& ended) {
    for (const UnitReport& unit : ended) {
      ++units;
      if (isBroken(unit)) ++brokenUnits;
      console.line(lineOf(unit, form));
    }
  };
  const auto judge = [&](const InputMessage& message, const Reading& reading) {
    ++messages;
    if (isBroken(reading)) {
      ++brokenMessages;
      complaints.tell(wordOf(reading.verdict), fmt::format("{}: {}", placeOf(message), describeFault(reading)));
    }
    tellUnits(follower.next(reading, message.number));
  };
  const ReadingResult result = printReadings(input, form, console, judge);
  tellUnits(follower.finish());
  complaints.finish();
  if (!result.areAllWhole || brokenMessages + brokenUnits != 0) program.refuse();
  console.note(fmt::format("{}, {} broken; {}, {} broken", counted(messages, "message"), brokenMessages,
                           counted(units, "unit"), brokenUnits));
  program.failInputs(result.problems);
}

}  // namespace Editor
