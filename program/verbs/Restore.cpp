// The verb restore: messages into the library, all of them or none.

#include <fmt/format.h>

#include <memory>
#include <set>

#include "compare/Compare.h"
#include "input/InputFile.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "output/Complaints.h"
#include "output/DifferenceLines.h"
#include "output/Progress.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

class Restoring {
 public:
  Restoring(const std::string& file, const RestoreOptions& options, Program& program)
      : file_(file),
        options_(options),
        program_(program),
        console_(program.console),
        input_(file),
        messages_(input_.countMessages()) {}

  void run() {
    verify();
    if (!options_.dryRun) {
      const std::unique_ptr<EmbeddedEditor> editor = program_.openToChange(run_);
      EmbeddedEditor::Run run(*editor, Library::Transaction::Access::Write, devices());
      receive(*editor, "restore");
      run.settle();
      const std::vector<PlaceChange> changes = changesOfRun(editor->library());
      if (dumps_ > 0) run.commit();
      tell(changes);
      tellTally(editor->library().takeChanges(), changes);
    } else if (program_.hasLibrary()) {
      rehearse(*program_.openToRead());
    } else {
      EmbeddedEditor empty;
      rehearse(empty);
    }
  }

 private:
  [[noreturn]] static void giveUp(ExitCode code = kRefused) {
    throw Failure(code, "nothing is restored, the library is as it was");
  }

  EmbeddedEditor::Run::Devices devices() const {
    return options_.anyDevice ? EmbeddedEditor::Run::Devices::any : EmbeddedEditor::Run::Devices::asSet;
  }

  // Judges the file by itself, before any library is opened.
  void verify() {
    bool isForUs = false;
    bool isWhole = input_.reportLosses(console_);
    Complaints complaints(console_);
    const auto complain = [&](const std::string& kind, const std::string& text) {
      isWhole = false;
      complaints.tell(kind, text);
    };
    UnitFollower follower;
    const auto judge = [&](const std::vector<UnitReport>& units, const std::string& place) {
      for (const UnitReport& unit : units)
        if (isBroken(unit)) complain(wordOf(unit.state), fmt::format("{}: {}", place, describeUnit(unit)));
    };
    input_.forEachMessage([&](const InputMessage& message) {
      const Reading reading = readMessage(message.bytes);
      isForUs = isForUs || reading.kind != Reading::Kind::foreign;
      if (isBroken(reading))
        complain(wordOf(reading.verdict),
                 fmt::format("{}: {}: {}", placeOf(message), wordOf(reading.verdict), reading.note));
      if (reading.kind != Reading::Kind::request) judge(follower.next(reading, message.number), placeOf(message));
    });
    for (const UnitReport& unit : follower.finish()) judge({unit}, input_.place(unit.firstMessage));
    complaints.finish();
    if (!isWhole) giveUp();
    if (!isForUs) throw Failure(kUnusableInput, "no message is for this instrument: nothing is restored");
  }

  void receive(EmbeddedEditor& editor, const char* verb) {
    Progress progress(console_, verb, "messages", messages_);
    input_.forEachMessage([&](const InputMessage& message) {
      const Reading reading = readMessage(message.bytes);
      if (reading.kind == Reading::Kind::dump) {
        ++dumps_;
        const Record record = handle(editor, reading, message);
        if (record.outcome == Outcome::refused) {
          console_.problem(
              fmt::format("{}: refused: {}: {}", placeOf(message), describeContent(reading), escape(record.reason)));
          if (record.report.refusal == BDA::BulkDumpRefusal::wrongDeviceNumber)
            console_.problem("--any-device takes messages for other devices too");
          giveUp(record.libraryFailed ? kWrongUsage : kRefused);
        }
      }
      progress.step(message.bytes.size());
    });
    for (const UnitReport& unit : editor.openUnits())
      console_.problem(fmt::format("{}: {}", input_.place(unit.firstMessage), describeUnit(unit)));
    if (!editor.openUnits().empty()) giveUp();
    if (dumps_ < messages_)
      console_.note(fmt::format("{} of {} messages are no dumps: ignored", messages_ - dumps_, messages_));
  }

  static Record handle(EmbeddedEditor& editor, const Reading& reading, const InputMessage& message) {
    try {
      return editor.handle(reading, message.bytes, BDA::DevicePort_Main, message.number);
    } catch (const LibraryError& error) {
      throw Failure(kWrongUsage, fmt::format("{}: {}; nothing is restored", placeOf(message), escape(error.what())));
    }
  }

  // What fills an empty place is told with -v.
  void tell(std::vector<PlaceChange> changes) const {
    if (!options_.json && !console_.isVerbose() && !changes.empty()) {
      std::erase_if(changes, [](const PlaceChange& change) { return isNumber(change.what) || !change.before; });
      if (changes.empty()) return;
    }
    tellChanges(changes, options_, console_);
  }

  void tellTally(const std::vector<Change>& handed, const std::vector<PlaceChange>& changes) const {
    std::set<std::string> received;
    for (const Change& change : handed)
      if (change.kind == Change::Kind::Stored || change.kind == Change::Kind::Removed)
        received.insert(nameOf(change.id));
    std::size_t removed = 0;
    std::size_t stored = 0;
    for (const PlaceChange& change : changes)
      if (received.contains(change.place)) ++(change.what == What::removed ? removed : stored);
    const std::size_t same = received.size() - stored - removed;
    console_.note(fmt::format("restored: {}, {} stored, {} removed{}", counted(dumps_, "message"),
                              counted(stored, "content"), removed,
                              same == 0 ? "" : fmt::format(", {} as they were", same)));
  }

  // On a copy.
  void rehearse(EmbeddedEditor& library) {
    const EmbeddedEditor::View oneState(library);
    EmbeddedEditor copy;
    copy.library().copyFrom(library.library());
    copy.library().beginRun(run_);
    EmbeddedEditor::Run run(copy, Library::Transaction::Access::Write, devices());
    receive(copy, "dry run");
    run.settle();
    if (options_.json) return tellChanges(changesOfRun(copy.library()), options_, console_);
    std::uint64_t changes = 0;
    compareLibraries(library, copy, Reception::ignored, [&](const Difference& change) {
      ++changes;
      tell(change);
    });
    console_.note(changes == 0 ? "nothing would change"
                               : counted(changes, "content or setting", "contents or settings") + " would change");
  }

  void tell(const Difference& change) {
    switch (change.kind) {
      case Difference::Kind::onlyInFirst:
        return console_.line(fmt::format("would remove: {}", change.target));
      case Difference::Kind::onlyInSecond:
        return console_.line(fmt::format("would store: {} {}", change.target, contentOf(change)));
      case Difference::Kind::renamed:
        return console_.line(fmt::format("would rename: {}: {}", change.target, namesOf(change)));
      case Difference::Kind::different:
        break;
    }
    const std::vector<std::string> details = detailsOf(change);
    console_.line(fmt::format("would change: {} ({})", change.target, counted(details.size(), "difference")));
    if (!console_.isVerbose()) return;
    for (const std::string& detail : details) console_.line("    " + detail);  // where the line above went
  }

  const std::string file_;
  const LibraryRun run_{"restore", {file_}};
  const RestoreOptions options_;
  Program& program_;
  Console& console_;
  const InputFile input_;
  const Interruptible interruptible_;  // until everything is told and closed
  const std::uint64_t messages_;
  std::uint64_t dumps_ = 0;
};

}  // namespace

void restore(const std::string& file, const RestoreOptions& options, Program& program) {
  Restoring(file, options, program).run();
}

}  // namespace Editor
