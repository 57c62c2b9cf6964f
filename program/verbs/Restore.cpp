// The verb restore: messages into the library, all of them or none.

#include <fmt/format.h>

#include <map>
#include <memory>
#include <set>

#include "compare/Compare.h"
#include "history/History.h"
#include "input/InputFile.h"
#include "messages/Text.h"
#include "messages/Verification.h"
#include "midi/Counted.h"
#include "output/ChangeLines.h"
#include "output/Complaints.h"
#include "output/DifferenceLines.h"
#include "output/OtherDevices.h"
#include "output/Progress.h"
#include "output/RepeatedPlaces.h"
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
        input_(file, console_),
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
      if (!changes.empty()) program_.noteChange();
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
    Complaints complaints(console_);
    Verification verification;
    const auto judge = [&](const std::vector<UnitReport>& units, const std::string& place) {
      for (const UnitReport& unit : units)
        if (isBroken(unit)) complaints.tell(wordOf(unit.state), fmt::format("{}: {}", place, describeUnit(unit)));
    };
    input_.forEachMessage([&](const InputMessage& message) {
      const Reading reading = readMessage(message.bytes);
      if (isBroken(reading))
        complaints.tell(wordOf(reading.verdict), fmt::format("{}: {}", placeOf(message), describeFault(reading)));
      judge(verification.next(reading, message.number), placeOf(message));
    });
    for (const UnitReport& unit : verification.finish()) judge({unit}, input_.place(unit.firstMessage));
    complaints.finish();
    if (!input_.isWhole() || !verification.areAllWhole()) giveUp();
    if (!verification.isAnyOurs())
      throw Failure(kUnusableInput, "no message is for this instrument: nothing is restored");
  }

  void receive(EmbeddedEditor& editor, const char* verb) {
    Progress progress(console_, verb, "message", messages_);
    RepeatedPlaces repeated(editor, console_);
    input_.forEachMessage([&](const InputMessage& message) {
      const Reading reading = readMessage(message.bytes);
      if (reading.kind == Reading::Kind::dump) {
        ++dumps_;
        const Record record = handle(editor, reading, message, repeated);
        if (record.outcome == Outcome::refused) {
          console_.problem(
              fmt::format("{}: refused: {}: {}", placeOf(message), describeContent(reading), escape(record.reason)));
          if (record.report.refusal == BDA::BulkDumpRefusal::wrongDeviceNumber) tellOtherDevices(editor);
          giveUp(record.libraryFailed ? kWrongUsage : kRefused);
        }
      }
      progress.step(message.bytes.size());
    });
    repeated.finish();
    for (const UnitReport& unit : editor.openUnits())
      console_.problem(fmt::format("{}: {}", input_.place(unit.firstMessage), describeUnit(unit)));
    if (!editor.openUnits().empty()) giveUp();
    if (dumps_ < messages_)
      console_.note(fmt::format("{} of {} messages are no dumps: ignored", messages_ - dumps_, messages_));
  }

  void tellOtherDevices(EmbeddedEditor& editor) const {
    OtherDevices others;
    input_.forEachMessage([&](const InputMessage& message) {
      const Reading reading = readMessage(message.bytes);
      if (reading.kind == Reading::Kind::dump && !editor.hears(reading)) others.add(*reading.device);
    });
    others.tell(console_, editor.isDeviceOff() ? OtherDevices::WayOut::option : OtherDevices::WayOut::optionOrSetting);
  }

  static Record handle(EmbeddedEditor& editor, const Reading& reading, const InputMessage& message,
                       RepeatedPlaces& repeated) {
    try {
      Record record = editor.handle(reading, message.bytes, BDA::DevicePort_Main, message.number);
      repeated.add(message, record);
      return record;
    } catch (const LibraryError& error) {
      throw Failure(kWrongUsage, fmt::format("{}: {}; nothing is restored", placeOf(message), escape(error.what())));
    }
  }

  // What fills an empty place, and what becomes a favourite, is told with -v.
  void tell(std::vector<PlaceChange> changes) const {
    if (!options_.json && !console_.isVerbose() && !changes.empty()) {
      std::erase_if(changes, [](const PlaceChange& change) {
        return !change.wasDamaged && (change.what == What::flagged ? change.after != kNoFavourite : !change.before);
      });
      if (changes.empty()) return;
    }
    tellChanges(changes, options_, console_);
  }

  void tellTally(const std::vector<Change>& handed, const std::vector<PlaceChange>& changes) const {
    std::set<std::string> received;
    for (const Change& change : handed)
      if (change.place.kind == Place::Kind::content && change.what != What::renamed)
        received.insert(nameOf(change.place));
    std::size_t removed = 0;
    std::size_t stored = 0;
    for (const PlaceChange& change : changes)
      if (received.contains(change.place) && change.what != What::flagged)
        ++(change.what == What::removed ? removed : stored);
    const std::size_t same = received.size() - stored - removed;
    console_.note(fmt::format("{}: {}, {} stored, {} removed{}", options_.dryRun ? "would be restored" : "restored",
                              counted(dumps_, "message"), counted(stored, "content"), removed,
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
    const std::vector<PlaceChange> changes = changesOfRun(copy.library());
    if (options_.json) return tellChanges(changes, options_, console_);
    run.commit();           // to the copy
    copy.tools().reload();  // what is damaged stays so
    // What the messages do not touch is none of this verb's business.
    for (EmbeddedEditor* const one : {&library, &copy}) one->library().leaveOutUnread([](const Library::Unread&) {});
    std::set<std::string> overDamage;
    std::map<std::string, std::string> sounds;  // by place
    for (const PlaceChange& change : changes) {
      if (change.wasDamaged) overDamage.insert(change.place);
      const bool isNamed = !change.before.value_or("").empty() || !change.after.value_or("").empty();
      if (isNamed && change.what != What::flagged) sounds.emplace(change.place, detailOf(change));
    }
    bool isAnyTold = false;
    compareLibraries(library, copy, Reception::ignored, [&](Difference change) {
      if (std::erase_if(change.parameters, isDamagedInBoth) != 0 && change.parameters.empty() && change.names.empty())
        return;  // messages do not damage: nothing has come there
      isAnyTold = true;
      tell(change, sounds[change.target], overDamage.contains(change.target) ? kOverDamage : "");
    });
    if (!isAnyTold) console_.note("nothing would change");
    tellTally(copy.library().takeChanges(), changes);
  }

  // `sounds`: which is replaced by which.
  void tell(const Difference& change, const std::string& sounds, const char* overDamage) {
    switch (change.kind) {
      case Difference::Kind::onlyInFirst:
        return console_.line(
            fmt::format("would remove: {}{}{}{}", change.target, sounds, emptyPlaceOf(change), overDamage));
      case Difference::Kind::onlyInSecond:
        return console_.line(fmt::format("would store: {}{}{}{}", change.target,
                                         change.name.empty() ? "" : fmt::format(" \"{}\"", showName(change.name)),
                                         flagsOf(change), overDamage));
      case Difference::Kind::renamed:
        return console_.line(fmt::format("would rename: {}: {}", change.target, namesOf(change)));
      case Difference::Kind::different:
        break;
    }
    const std::vector<std::string> details = detailsOf(change);
    console_.line(fmt::format("would change: {}{} ({}){}", change.target, sounds, counted(details.size(), "difference"),
                              overDamage));
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
