#include "output/ReadingLines.h"

#include <fmt/format.h>

#include <algorithm>

#include "messages/ReadingJson.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/LossReport.h"

namespace Editor {

namespace {

// File names need not be UTF-8, and a terminal would obey U+0080 to U+009F.
// "      7      1200  good                     1  41 02 00  element 3 oscillator, 88 data bytes, checksum 1F"
std::string toLine(const InputMessage& message, const Reading& reading) {
  std::string line = fmt::format("{:>6} {:>9}  {:<26} {:>2}  {:<8}  {}", message.number, message.offset,
                                 wordOf(reading.verdict), reading.device ? std::to_string(*reading.device) : "-",
                                 reading.address ? formatAddress(*reading.address) : "-", describeContent(reading));
  // A note about either has it in itself.
  const auto isAbout = [&](std::initializer_list<Reading::Verdict> verdicts) {
    return std::ranges::find(verdicts, reading.verdict) != verdicts.end();
  };
  using Verdict = Reading::Verdict;
  if (reading.kind == Reading::Kind::dump && !isAbout({Verdict::lengthWrong, Verdict::blockLengthWrong}))
    line += ", " + counted(reading.dataBytes, "data byte");
  if (reading.checksum && !isAbout({Verdict::checksumWrong}))
    line += fmt::format(", checksum {:02X}", *reading.checksum);
  if (reading.removes) line += fmt::format(" (removes {})", nameOf(*reading.removes));
  if (!reading.note.empty()) line += fmt::format(" ({})", reading.note);
  return line;
}

}  // namespace

std::string lineOf(const InputMessage& message, const Reading& reading, LineForm form) {
  return form == LineForm::json ? jsonLine(toJson(message, reading)) : toLine(message, reading);
}

std::string lineOf(const UnitReport& unit, LineForm form) {
  if (form == LineForm::json) return jsonLine(toJson(unit));
  return fmt::format("{} {}", isBroken(unit) ? "  !!" : "  ==", describeUnit(unit));
}

ReadingResult printReadings(InputStream& input, LineForm form, Console& console,
                            const std::function<void(const InputMessage&, const Reading&)>& visit) {
  const std::string* file = nullptr;
  LossReport losses(console);
  ReadingResult result;
  result.problems = input.read(
      [&](const InputMessage& message) {
        if (input.areSeveral() && form == LineForm::words && file != &message.file)
          console.line(displayName(message.file) + ":");
        file = &message.file;
        const Reading reading = readMessage(message.bytes);
        console.line(lineOf(message, reading, form));
        visit(message, reading);
      },
      [&](const InputLoss& loss) {
        losses.add(loss);
        if (form == LineForm::json) console.line(jsonLine(toJson(loss)));
      });
  losses.finish();
  result.areAllWhole = losses.areAllWhole();
  return result;
}

}  // namespace Editor
