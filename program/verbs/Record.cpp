// The verb record: what arrives at a port, into a file.

#include <fmt/format.h>

#include <memory>
#include <optional>

#include "input/OpenPort.h"
#include "messages/ReadingJson.h"
#include "messages/Text.h"
#include "messages/Verification.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/Complaints.h"
#include "output/LossReport.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/ReadingLines.h"
#include "output/TranscriptFile.h"
#include "transcript/MessageJson.h"
#include "verbs/Verbs.h"
#include "wire/Recording.h"

namespace Editor {

namespace {

class Recorded final : public StreamJoiner::Receiver {
 public:
  Recorded(const RecordOptions& options, Program& program)
      : options_(options),
        program_(program),
        console_(program.console),
        file_(options.output),
        losses_(console_),
        complaints_(console_) {
    if (options.output == "-" || options.from == "-") console_.keepOutputForBytes();
    console_.flushEachLine();
  }

  void run() {
    const Interruptible interruptible;
    TranscriptFile transcript({.verb = "record", .port = options_.from}, program_);
    const std::unique_ptr<Port> port = transcript.listen(openPort(options_.from, BytePort::Direction::in, console_));
    port_ = port->name();
    console_.note(fmt::format("from {}", escape(port_)));
    Progress progress(console_, "record", "message", 0);
    progress_ = &progress;
    Recording recording(*this, options_.quietAfter);
    std::optional<PortError> error;
    bool isDone = false;
    try {
      isDone = runAt(*port, recording);
    } catch (const PortError& gone) {
      error = gone;
    }
    progress.end();
    recording.finish();
    finish();
    // The end of what comes through a pipe is one, and no failure.
    const bool isEnd = error && error->kind() == PortError::Kind::ended;
    if (error && !isEnd) throw Failure(kWrongUsage, error->what());
    if (!isDone && !error) throw Failure(kInterrupted, "interrupted");
  }

 private:
  void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) override {
    const InputMessage message{++messages_, port_, offset, bytes};
    file_.write(bytes);
    const Reading reading = readMessage(bytes);
    if (options_.json)
      console_.line(jsonOf({message.number, &port_, offset}, bytes));
    else
      console_.detail(lineOf(message, reading, LineForm::words));
    if (isBroken(reading))
      complaints_.tell(wordOf(reading.verdict), fmt::format("{}: {}", placeOf(message), describeFault(reading)));
    tell(verification_.next(reading, message.number));
    progress_->show(1, bytes.size());
  }

  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    const InputLoss loss{port_, offset, count, describe(reason), kindOf(reason)};
    losses_.add(loss);
    if (options_.json) console_.line(jsonLine(toJson(loss)));
  }

  void tell(const std::vector<UnitReport>& ended) {
    for (const UnitReport& unit : ended)
      if (!options_.json)
        console_.line(lineOf(unit, LineForm::words));
      else if (isBroken(unit))
        complaints_.tell(wordOf(unit.state), fmt::format("{}: {}", displayName(port_), describeUnit(unit)));
  }

  void finish() {
    tell(verification_.finish());
    losses_.finish();
    complaints_.finish();
    if (!losses_.areAllWhole() || !verification_.areAllWhole()) program_.refuse();
    if (messages_ == 0) return console_.note("no message came: nothing is written");
    file_.commit();
    console_.note(fmt::format("{}, {} whole, {} broken", counted(messages_, "message"),
                              counted(verification_.units() - verification_.brokenUnits(), "unit"),
                              verification_.brokenUnits()));
  }

  const RecordOptions& options_;
  Program& program_;
  Console& console_;
  OutputFile file_;
  LossReport losses_;
  Complaints complaints_;
  Progress* progress_ = nullptr;
  std::string port_;
  Verification verification_;
  std::uint64_t messages_ = 0;
};

}  // namespace

void record(const RecordOptions& options, Program& program) {
  if (options.from == "-" && options.output == "-")
    throw Failure(kWrongUsage, "a port at standard input leaves standard output to itself: name a file");
  Recorded(options, program).run();
}

}  // namespace Editor
