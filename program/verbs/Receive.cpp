// The verb receive: messages handed to the library's instrument, and what became of each.

#include <fmt/format.h>

#include <functional>
#include <map>
#include <memory>

#include "exchange/Answers.h"
#include "exchange/WholeUnits.h"
#include "input/InputStream.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "output/MessageReport.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/Trace.h"
#include "output/TranscriptFile.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// What comes to standard input may come for ever.
LibraryRun runOf(const Words& files) { return {.verb = "receive", .sources = files, .isEndless = true}; }

class Receiving {
 public:
  Receiving(const Words& files, const ExchangeOptions& options, const ReceiveOptions& how, Program& program)
      : program_(program),
        console_(program.console),
        port_(BDA::DevicePortNum(options.port)),
        input_(files),
        progress_(program.console, "receive", "message", 0, input_.size()),
        transcript_({.verb = "receive", .anyDevice = options.anyDevice}, program),
        editor_(how.dryRun ? program.openToRehearse(runOf(files)) : program.openToChange(runOf(files))),
        report_(program, *editor_, {port_, how.dryRun, how.json}),
        trace_(options.trace) {
    if (how.whole) whole_.emplace();
    if (!options.output.empty()) answers_.emplace(options.output);
    if (options.output == "-" || options.trace == "-") console_.keepOutputForBytes();
    if (input_.isLive() || how.json) console_.flushEachLine();
    if (options.anyDevice) editor_->takeAnyDevice();
    transcript_.listen(*editor_);
  }

  void run() {
    std::vector<std::string> unusable;
    std::optional<Failure> failure;
    try {
      unusable = input_.read([this](const InputMessage& message) { receive(message); },
                             [this](const InputLoss& loss) {
                               report_.lose(loss);
                               if (whole_ && loss.kind == InputLoss::Kind::cutShort) whole_->lose();
                             });
    } catch (const Failure& early) {
      failure = early;
    } catch (...) {
      finish(false);
      throw;
    }
    finish(!failure || failure->code() == kInterrupted);
    program_.failInputs(unusable);
    if (failure) {
      console_.problem(fmt::format("bda: {}", failure->what()));
      program_.endWith(failure->code());
    }
    console_.note(report_.words());
  }

 private:
  // What was done was done, however the run ends. `isHandled`: all that came.
  void finish(bool isHandled) {
    progress_.end();
    if (whole_)
      for (const WholeUnits::Decided& decided : whole_->finish()) settle(decided);
    report_.finish(isHandled);
    output([this] {
      if (answers_ && hasAnswers_) answers_->commit();
    });
    output([this] { trace_.commit(); });
    if (answers_ && !hasAnswers_) console_.note("no request was answered: nothing is written");
  }

  // False when it could not be written, which is told.
  bool output(const std::function<void()>& write) {
    try {
      write();
      return true;
    } catch (const Failure& failure) {
      console_.problem(fmt::format("bda: {}", failure.what()));
      program_.failOutput();
      return false;
    }
  }

  void receive(const InputMessage& message) {
    progress_.step(message.bytes.size());
    if (!whole_) {
      hand(message);
      return;
    }
    const Reading reading = readMessage(message.bytes);
    origins_.insert_or_assign(message.number, Origin{&message.file, message.offset});
    const bool isHeard = reading.kind != Reading::Kind::dump || asked(message, [&] { return editor_->hears(reading); });
    const std::vector<WholeUnits::Decided> decided =
        whole_->next({message.number, reading, {message.bytes.begin(), message.bytes.end()}}, isHeard);
    for (const WholeUnits::Decided& one : decided) settle(one);
  }

  // Hands on what belongs together, or refuses it.
  void settle(const WholeUnits::Decided& decided) {
    std::string why = decided.refusal;
    for (const WholeUnits::Message& held : decided.messages) {
      const Origin origin = origins_.extract(held.number).mapped();
      const InputMessage message{held.number, *origin.file, origin.offset, held.bytes};
      // Another program can have changed meanwhile what the instrument listens to: what has lost a block is not stored.
      if (why.empty() || (decided.refusal.empty() && held.reading.role != Role::footer)) {
        const bool isRefused = hand(message) == Outcome::refused;
        if (isRefused && held.reading.role == Role::part) why = "a block of it was refused";
        continue;
      }
      transcript_.arrived(held.bytes);
      const bool isAlone = decided.messages.size() == 1;
      const char* const kind = isAlone && isBroken(held.reading) ? wordOf(held.reading.verdict) : "refused: not whole";
      report_.refuse(&held == &decided.messages.back() ? kind : "",
                     fmt::format("{}: {}: {}{}", placeOf(message), report_.said("refused"), withOthers(decided), why));
    }
  }

  static std::string withOthers(const WholeUnits::Decided& decided) {
    const std::size_t count = decided.messages.size();
    return count == 1 ? "" : fmt::format("{}: ", counted(count, "message"));
  }

  Outcome hand(const InputMessage& message) {
    const Record record = handle(message);
    const bool isAnswer = record.outcome == Outcome::answered && answers_;
    const std::string unsendable = isAnswer ? whyUnsendable(record.sent) : "";
    report_.tell(message, record, unsendable);
    if (isAnswer && unsendable.empty()) keepAnswer(record);
    try {
      trace_.add({message.number, &message.file, message.offset}, port_, message.bytes, record);
      trace_.passOn();
    } catch (const Failure& failure) {
      throw Failure(failure.code(),
                    fmt::format("{}: {}; nothing after it is handled", placeOf(message), failure.what()));
    }
    if (record.libraryFailed && record.reading.kind == Reading::Kind::dump)
      throw Failure(kWrongUsage, fmt::format("{}: the library failed, nothing after it is handled", placeOf(message)));
    return record.outcome;
  }

  template <typename Ask>
  auto asked(const InputMessage& message, Ask ask) -> decltype(ask()) {
    try {
      return ask();
    } catch (const LibraryError& error) {
      throw Failure(kWrongUsage, fmt::format("{}: not handled, nor is anything after it: {}", placeOf(message),
                                             escape(error.what())));
    }
  }

  Record handle(const InputMessage& message) {
    transcript_.comesFrom(&message.file, message.offset);
    return asked(message, [&] { return editor_->handle(message.bytes, port_, message.number); });
  }

  void keepAnswer(const Record& record) {
    hasAnswers_ = true;
    const bool isWritten = output([&] {
      for (const AssistantHost::Sent& sent : record.sent) answers_->write(sent.bytes);
      answers_->passOn();
    });
    if (!isWritten) answers_.reset();  // the run goes on: what it stores has nothing to do with that
  }

  struct Origin {
    const std::string* file;
    std::uint64_t offset;
  };

  Program& program_;
  Console& console_;
  const BDA::DevicePortNum port_;
  InputStream input_;
  Progress progress_;
  TranscriptFile transcript_;
  const std::unique_ptr<EmbeddedEditor> editor_;
  MessageReport report_;
  Trace trace_;
  std::optional<OutputFile> answers_;
  bool hasAnswers_ = false;
  std::optional<WholeUnits> whole_;          // none: what comes is handed on at once
  std::map<std::uint64_t, Origin> origins_;  // of what is held back
};

}  // namespace

void receive(const Words& files, const ExchangeOptions& exchange, const ReceiveOptions& options, Program& program) {
  if (exchange.output == "-" && exchange.trace == "-")
    throw Failure(kWrongUsage, "answers and trace cannot both go to standard output");
  Receiving(files, exchange, options, program).run();
}

}  // namespace Editor
