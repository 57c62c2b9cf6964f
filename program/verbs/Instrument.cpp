// The verb instrument: the library answers at a port, as the instrument would.

#include "wire/Instrument.h"

#include <fmt/format.h>

#include <memory>
#include <optional>
#include <stdexcept>

#include "input/OpenPort.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "output/MessageReport.h"
#include "output/Progress.h"
#include "output/TranscriptFile.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

std::vector<Fault> faultsOf(const std::optional<std::string>& list) {
  try {
    return list ? parseFaults(*list) : std::vector<Fault>();
  } catch (const std::invalid_argument& error) {
    throw Failure(kWrongUsage, error.what());
  }
}

class Serving final : public Instrument::Observer {
 public:
  Serving(const InstrumentOptions& options, Program& program)
      : options_(options), program_(program), console_(program.console), faults_(faultsOf(options.faults)) {
    if (options.on == "-") console_.keepOutputForBytes();
    console_.flushEachLine();
  }

  void run() {
    transcript_.emplace(Transcript::Options{.verb = "instrument",
                                            .port = options_.on,
                                            .sent = Transcript::Sent::later,
                                            .echoes = options_.echoes,
                                            .hearsHanded = true},
                        program_);
    std::unique_ptr<Port> port = openPort(options_.on, BytePort::Direction::both, console_);
    const auto number = BDA::DevicePortNum(options_.port);
    port_ = port->name();
    longest_ = port->longestMessage();
    editor_ = program_.openToChange({.verb = "instrument", .sources = {port_}, .isEndless = true});
    transcript_->listen(*editor_);
    port = transcript_->listen(std::move(port));
    report_.emplace(program_, *editor_,
                    MessageReport::Options{number, false, options_.json, OtherDevices::WayOut::setting});
    // Who made a terminal has to know where its other end is.
    if (options_.on == "pty:") console_.line(port_);
    console_.note(fmt::format("on {}", escape(port_)));
    Progress progress(console_, "instrument", "message", 0);
    progress_ = &progress;
    Instrument instrument(*editor_,
                          {.port = number,
                           .echoes = options_.echoes,
                           .faults = faults_,
                           .seed = options_.seed,
                           .longestMessage = longest_},
                          Pacer(options_.pace.value_or(port->defaultPace()), options_.pauses, port->takes()), *this);
    std::optional<Failure> failure;
    try {
      if (!serve(*port, instrument)) failure = Failure(kInterrupted, "interrupted");
    } catch (const PortError& gone) {
      failure = Failure(kWrongUsage, gone.what());
      if (instrument.due()) console_.problem("not all that it answered has gone out");
    } catch (const LibraryError& error) {
      failure =
          Failure(kWrongUsage, fmt::format("the library failed, nothing more is handled: {}", escape(error.what())));
    }
    progress.end();
    report_->finish(true);
    if (spoiled_ > 0)
      console_.note(fmt::format("{} lost or altered by a fault before it was handled", counted(spoiled_, "message")));
    console_.note(report_->words());
    if (failure) throw *std::move(failure);
  }

 private:
  // The end of what comes through a pipe is one, once everything is answered.
  static bool serve(Port& port, Instrument& instrument) {
    try {
      const bool isDone = runAt(port, instrument, [&] { instrument.stop(); });
      instrument.finish();
      return isDone;
    } catch (const PortError& error) {
      instrument.finish();
      if (error.kind() != PortError::Kind::ended) throw;
      sendRest(instrument, port, Interruptible::isAsked);
      return !Interruptible::isAsked();
    }
  }

  void handling(std::uint64_t offset) override { transcript_->comesFrom(&port_, offset); }
  void handled(std::uint64_t number, std::uint64_t offset, std::span<const std::uint8_t> message,
               const Record& record) override {
    report_->tell({number, port_, offset, message}, record);
    progress_->show(1, message.size());
  }
  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    report_->lose({port_, offset, count, describe(reason), kindOf(reason)});
  }
  void spoiled(std::span<const std::uint8_t> message) override {
    ++spoiled_;
    transcript_->keptBack(message);
  }
  void goesOut(const std::optional<Pacer::Answer>& answer) override { transcript_->goesOut(answer); }
  void tooLong(std::uint64_t number, std::size_t length) override {
    program_.refuse();
    console_.problem(
        fmt::format("message {}: of its answer {} bytes are not sent: the port carries no message of more than {}",
                    number, length, longest_));
  }

  const InstrumentOptions& options_;
  Program& program_;
  Console& console_;
  const Interruptible interruptible_;
  const std::vector<Fault> faults_;
  std::string port_;
  std::optional<TranscriptFile> transcript_;
  std::size_t longest_ = 0;    // of the messages that it carries
  std::uint64_t spoiled_ = 0;  // messages, by faults, before they were handled
  std::unique_ptr<EmbeddedEditor> editor_;
  std::optional<MessageReport> report_;
  Progress* progress_ = nullptr;
};

}  // namespace

void instrument(const InstrumentOptions& options, Program& program) { Serving(options, program).run(); }

}  // namespace Editor
