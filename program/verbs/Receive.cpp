// The verb receive: messages handed to the library's instrument, and what became of each.

#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "exchange/Answers.h"
#include "exchange/LogLines.h"
#include "exchange/Tally.h"
#include "input/InputFiles.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "midi/MidiFile.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/Trace.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

class Receiving {
 public:
  Receiving(const Words& files, const ExchangeOptions& options, Program& program)
      : program_(program),
        console_(program.console),
        port_(BDA::DevicePortNum(options.port)),
        input_(files, program.console),
        progress_(program.console, "receive", "messages", input_.countMessages()),
        editor_(program.openEditor()),
        trace_(options.trace) {
    if (!options.output.empty()) answers_.emplace(options.output);
    if (options.output == "-" || options.trace == "-") console_.keepOutputForBytes();
    if (!input_.reportLosses(console_)) program.refuse();
  }

  void run() {
    try {
      input_.forEachMessage([&](const InputFiles::Message& message) { receive(message); });
    } catch (...) {
      try {
        commitOutputs();  // what was done was done
      } catch (const Failure& second) {
        console_.problem(second.what());
        program_.failOutput();
      }
      throw;
    }
    for (const UnitReport& unit : editor_->openUnits())
      complain(fmt::format("{}: {}", input_.place(unit.firstMessage), describeUnit(unit)));
    commitOutputs();
    if (answers_ && !hasAnswers_) console_.note("no request was answered: nothing is written");
    console_.note(tally_.words());
  }

 private:
  void commitOutputs() {
    if (answers_ && hasAnswers_) answers_->commit();
    trace_.commit();
  }

  void complain(const std::string& text) {
    console_.problem(text);
    program_.refuse();
  }

  void receive(const InputFiles::Message& message) {
    progress_.step(message.bytes.size());
    const Record record = handle(message);
    const bool isPassedOn = tell(message, record);
    isPassedOn ? tally_.add(record) : tally_.addRefused();
    try {
      trace_.add({message.number, &message.file, message.offset}, port_, message.bytes, record);
    } catch (const Failure& failure) {
      throw Failure(failure.code(),
                    fmt::format("{}: {}; nothing after it is handled", placeOf(message), failure.what()));
    }
    for (const UnitReport& unit : record.ended)
      if (isBroken(unit) || !unit.note.empty()) complain(fmt::format("{}: {}", placeOf(message), describeUnit(unit)));
    for (const std::string& line : linesOf(record.log, record.reading)) console_.detail("    log: " + line);
    const Reading& reading = record.reading;
    if (record.outcome != Outcome::refused && reading.verdict == Reading::Verdict::fileDumpBroken)
      complain(fmt::format("{}: {}: {}", placeOf(message), wordOf(reading.verdict), reading.note));
    if (record.libraryFailed && reading.kind == Reading::Kind::dump)
      throw Failure(kWrongUsage, fmt::format("{}: the library failed, nothing after it is handled", placeOf(message)));
  }

  Record handle(const InputFiles::Message& message) {
    try {
      return editor_->handle(message.bytes, port_, message.number);
    } catch (const LibraryError& error) {
      throw Failure(kWrongUsage, fmt::format("{}: not handled, nor is anything after it: {}", placeOf(message),
                                             escape(error.what())));
    }
  }

  // False for an answer that cannot be passed on.
  bool tell(const InputFiles::Message& message, const Record& record) {
    const std::string what = describeContent(record.reading);
    const auto line = [&](const std::string& text) {
      console_.line(fmt::format("{}: {} ({})", wordOf(record.outcome), text, placeOf(message)));
    };
    const auto tellContents = [&] {
      for (const std::string& content : record.contents) {
        const bool isRemoved = std::find(record.removed.begin(), record.removed.end(), content) != record.removed.end();
        console_.line(fmt::format("{}: {} ({})", isRemoved ? "removed" : "stored", content, placeOf(message)));
      }
    };
    switch (record.outcome) {
      case Outcome::stored:
        tellContents();
        break;
      case Outcome::refused:
        complain(fmt::format("{}: refused: {}: {}", placeOf(message), what, escape(record.reason)));
        tellContents();
        break;
      case Outcome::answered:
        return answer(message, record, what);
      case Outcome::accepted:
        console_.detail(fmt::format("accepted: {} ({})", what, placeOf(message)));
        break;
      case Outcome::notOurs:
      case Outcome::ignored:
      case Outcome::nothingToSend:
      case Outcome::completed:
        line(what);
        break;
    }
    return true;
  }

  bool answer(const InputFiles::Message& message, const Record& record, const std::string& what) {
    if (const std::string why = whyUnsendable(record.sent); answers_ && !why.empty()) {
      complain(fmt::format("{}: {}: {}", placeOf(message), what, why));
      return false;
    }
    console_.line(fmt::format("answered: {}, {} ({})", what, counted(record.sent.size(), "message"), placeOf(message)));
    if (!answers_) return true;
    for (const AssistantHost::Sent& sent : record.sent) answers_->write(sent.bytes);
    hasAnswers_ = true;
    return true;
  }

  Program& program_;
  Console& console_;
  const BDA::DevicePortNum port_;
  const InputFiles input_;
  Progress progress_;
  const std::unique_ptr<EmbeddedEditor> editor_;
  Trace trace_;
  std::optional<OutputFile> answers_;
  bool hasAnswers_ = false;
  Tally tally_;
};

}  // namespace

void receive(const Words& files, const ExchangeOptions& options, Program& program) {
  if (options.output == "-" && options.trace == "-")
    throw Failure(kWrongUsage, "answers and trace cannot both go to standard output");
  Receiving(files, options, program).run();
}

}  // namespace Editor
