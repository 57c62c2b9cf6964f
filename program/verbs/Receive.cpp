// The verb receive: messages handed to the library's instrument, and what became of each.

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

#include "exchange/Answers.h"
#include "exchange/LogLines.h"
#include "exchange/Tally.h"
#include "exchange/WholeUnits.h"
#include "history/History.h"
#include "input/InputStream.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "output/ChangeLines.h"
#include "output/LossReport.h"
#include "output/OtherDevices.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/Trace.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// Where messages stand that something may still have to be said of when they have gone by.
class Places {
 public:
  void add(const InputMessage& message, const EmbeddedEditor& editor) {
    if (places_.size() >= most_) forgetEnded(editor);
    places_.emplace(message.number, Place{&message.file, message.offset});
  }
  std::string at(std::uint64_t number) const {
    const Place& place = places_.at(number);
    return placeOf({number, *place.file, place.offset, {}});
  }

 private:
  void forgetEnded(const EmbeddedEditor& editor) {
    std::map<std::uint64_t, Place> open;
    for (const UnitReport& unit : editor.openUnits())
      if (auto place = places_.extract(unit.firstMessage); !place.empty()) open.insert(std::move(place));
    places_ = std::move(open);
    most_ = 2 * places_.size() + kFew;
  }

  struct Place {
    const std::string* file;
    std::uint64_t offset;
  };
  static constexpr std::size_t kFew = 100;
  std::map<std::uint64_t, Place> places_;
  std::size_t most_ = kFew;
};

class Receiving {
 public:
  Receiving(const Words& files, const ExchangeOptions& options, const ReceiveOptions& how, Program& program)
      : program_(program),
        console_(program.console),
        isRehearsal_(how.dryRun),
        saysJson_(how.json),
        port_(BDA::DevicePortNum(options.port)),
        input_(files),
        losses_(console_),
        refusals_(console_),
        progress_(program.console, "receive", "message", 0, input_.size()),
        editor_(isRehearsal_ ? program.openToRehearse({"receive", files}) : program.openToChange({"receive", files})),
        trace_(options.trace) {
    if (how.whole) whole_.emplace();
    if (!options.output.empty()) answers_.emplace(options.output);
    if (options.output == "-" || options.trace == "-") console_.keepOutputForBytes();
    if (input_.isLive() || saysJson_) console_.flushEachLine();
    if (options.anyDevice) editor_->takeAnyDevice();
  }

  void run() {
    std::vector<std::string> unusable;
    std::optional<Failure> failure;
    try {
      unusable = input_.read([this](const InputMessage& message) { receive(message); },
                             [this](const InputLoss& loss) { losses_.add(loss); });
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
    console_.note((isRehearsal_ ? "dry run, nothing is changed: " : "") + tally_.words());
  }

 private:
  // What was done was done, however the run ends. `isHandled`: all that came.
  void finish(bool isHandled) {
    progress_.end();
    if (whole_)
      for (const WholeUnits::Decided& decided : whole_->finish()) settle(decided);
    for (const UnitReport& unit : editor_->openUnits())
      complain(fmt::format("{}: {}", places_.at(unit.firstMessage),
                           isHandled ? describeUnit(unit) : "what began here is not handled to its end, nor stored"));
    refusals_.finish();
    losses_.finish();
    if (!losses_.areAllWhole()) program_.refuse();
    otherDevices_.tell(console_);
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

  void complain(const std::string& text) {
    console_.problem(text);
    program_.refuse();
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
      tally_.addRefused();
      program_.refuse();
      const bool isAlone = decided.messages.size() == 1;
      if (&held == &decided.messages.back())
        refusals_.tell(isAlone && isBroken(held.reading) ? wordOf(held.reading.verdict) : "refused: not whole",
                       fmt::format("{}: {}: {}{}", placeOf(message), said("refused"), withOthers(decided), why));
    }
  }

  static std::string withOthers(const WholeUnits::Decided& decided) {
    const std::size_t count = decided.messages.size();
    return count == 1 ? "" : fmt::format("{}: ", counted(count, "message"));
  }

  // "stored", or what would be.
  std::string said(const char* word) const { return fmt::format("{}{}", isRehearsal_ ? "would be " : "", word); }

  void say(const std::string& line) {
    if (!saysJson_) console_.line(line);
  }

  Outcome hand(const InputMessage& message) {
    const Record record = handle(message);
    places_.add(message, *editor_);
    const bool isPassedOn = tell(message, record);
    isPassedOn ? tally_.add(record) : tally_.addRefused();
    const MessageOrigin origin{message.number, &message.file, message.offset};
    if (saysJson_) console_.line(jsonOf(origin, port_, message.bytes, record));
    try {
      trace_.add(origin, port_, message.bytes, record);
      trace_.passOn();
    } catch (const Failure& failure) {
      throw Failure(failure.code(),
                    fmt::format("{}: {}; nothing after it is handled", placeOf(message), failure.what()));
    }
    for (const UnitReport& unit : record.ended)
      if (isBroken(unit) || !unit.note.empty()) complain(fmt::format("{}: {}", placeOf(message), describeUnit(unit)));
    for (const std::string& line : linesOf(record.log, record.reading)) console_.detail("    log: " + line);
    const Reading& reading = record.reading;
    if (record.outcome != Outcome::refused && reading.verdict == Reading::Verdict::fileDumpBroken)
      complain(fmt::format("{}: {}", placeOf(message), describeFault(reading)));
    if (record.libraryFailed && reading.kind == Reading::Kind::dump)
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
    return asked(message, [&] { return editor_->handle(message.bytes, port_, message.number); });
  }

  // False for an answer that cannot be passed on.
  bool tell(const InputMessage& message, const Record& record) {
    const std::string what = describeContent(record.reading);
    switch (record.outcome) {
      case Outcome::stored:
        tellContents(message, record);
        break;
      case Outcome::refused:
        refuse(message, record, what);
        tellContents(message, record);
        break;
      case Outcome::answered:
        return answer(message, record, what);
      case Outcome::accepted:
        console_.detail(fmt::format("{}: {} ({})", said("accepted"), what, placeOf(message)));
        break;
      case Outcome::completed:
        say(fmt::format("{}: {} ({})", said("completed"), what, placeOf(message)));
        for (const Change& change : record.changed)
          if (change.place.kind == Place::Kind::favourite && change.wasDamaged)
            say(fmt::format("{}: its favourite flag {}{}", nameOf(change.place), said("set"), kOverDamage));
        break;
      case Outcome::notOurs:
      case Outcome::ignored:
      case Outcome::nothingToSend:
        say(fmt::format("{}: {} ({})", wordOf(record.outcome), what, placeOf(message)));
        break;
    }
    return true;
  }

  void tellContents(const InputMessage& message, const Record& record) {
    for (const std::string& content : record.contents) {
      const bool isRemoved = std::ranges::find(record.removed, content) != record.removed.end();
      const auto before = record.replaced.find(content);
      const bool wasDamaged = std::ranges::any_of(record.changed, [&](const Change& change) {
        return change.wasDamaged && change.place.kind != Place::Kind::favourite && nameOf(change.place) == content;
      });
      say(fmt::format("{}: {} ({}){}{}", said(isRemoved ? "removed" : "stored"), content, placeOf(message),
                      before == record.replaced.end() ? "" : wasIn(before->second, isRemoved),
                      wasDamaged ? kOverDamage : ""));
    }
    // The edit buffers that a footer stores along with its own: the parts of a multi, the multi of a part.
    for (const Change& change : record.changed) {
      const std::string place = nameOf(change.place);
      if (change.place.kind != Place::Kind::live || std::ranges::find(record.contents, place) != record.contents.end())
        continue;
      say(fmt::format("{}: {} ({}){}{}", said("stored with it"), place, placeOf(message),
                      change.before ? wasIn(change.before->name, false) : "", change.wasDamaged ? kOverDamage : ""));
    }
  }

  // What stood in the place.
  std::string wasIn(const std::string& name, bool isRemoved) const {
    if (name.empty()) return isRemoved ? "" : ", replaces what was there";
    const char* const verb = isRehearsal_ ? "it is" : "it was";
    return fmt::format(", {} \"{}\"", isRemoved ? verb : "replaces", showName(name));
  }

  void refuse(const InputMessage& message, const Record& record, const std::string& what) {
    program_.refuse();
    const BDA::BulkDumpRefusal refusal = record.report.refusal;
    if (refusal == BDA::BulkDumpRefusal::wrongDeviceNumber && !otherDevices_.add(*record.reading.device)) return;
    refusals_.tell(fmt::format("refused: {}", wordsOf(refusal)),
                   fmt::format("{}: {}: {}: {}", placeOf(message), said("refused"), what, escape(record.reason)));
  }

  bool answer(const InputMessage& message, const Record& record, const std::string& what) {
    if (const std::string why = whyUnsendable(record.sent); answers_ && !why.empty()) {
      complain(fmt::format("{}: {}: {}", placeOf(message), what, why));
      return false;
    }
    say(fmt::format("{}: {}, {} ({})", said("answered"), what, counted(record.sent.size(), "message"),
                    placeOf(message)));
    if (!answers_) return true;
    hasAnswers_ = true;
    const bool isWritten = output([&] {
      for (const AssistantHost::Sent& sent : record.sent) answers_->write(sent.bytes);
      answers_->passOn();
    });
    if (!isWritten) answers_.reset();  // the run goes on: what it stores has nothing to do with that
    return true;
  }

  struct Origin {
    const std::string* file;
    std::uint64_t offset;
  };

  Program& program_;
  Console& console_;
  const bool isRehearsal_;
  const bool saysJson_;
  const BDA::DevicePortNum port_;
  InputStream input_;
  LossReport losses_;
  Complaints refusals_;
  Progress progress_;
  const std::unique_ptr<EmbeddedEditor> editor_;
  Trace trace_;
  std::optional<OutputFile> answers_;
  bool hasAnswers_ = false;
  std::optional<WholeUnits> whole_;          // none: what comes is handed on at once
  std::map<std::uint64_t, Origin> origins_;  // of what is held back
  Places places_;
  OtherDevices otherDevices_;
  Tally tally_;
};

}  // namespace

void receive(const Words& files, const ExchangeOptions& exchange, const ReceiveOptions& options, Program& program) {
  if (exchange.output == "-" && exchange.trace == "-")
    throw Failure(kWrongUsage, "answers and trace cannot both go to standard output");
  Receiving(files, exchange, options, program).run();
}

}  // namespace Editor
