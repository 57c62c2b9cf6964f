// The verb restore: messages into the library, all of them or none.

#include "history/Restore.h"

#include <fmt/format.h>

#include <map>
#include <memory>
#include <set>

#include "compare/Compare.h"
#include "input/InputFile.h"
#include "messages/Text.h"
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
      Restore restore(*editor, devices());
      receive(*editor, restore, "restore");
      const std::vector<PlaceChange> changes = restore.settle();
      restore.commit();
      if (!changes.empty()) program_.noteChange();
      tell(changes);
      tellTally(restore, changes);
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
    const auto tell = [&](const std::vector<MessageFault>& faults, const std::string& place) {
      for (const MessageFault& fault : faults) complaints.tell(fault.kind, fmt::format("{}: {}", place, fault.text));
    };
    input_.forEachMessage([&](const InputMessage& message) {
      const Reading reading = readMessage(message.bytes);
      tell(faultsIn(reading), placeOf(message));
      tell(faultsIn(verification.next(reading, message.number)), placeOf(message));
    });
    for (const UnitReport& unit : verification.finish())
      tell(faultsIn(std::vector{unit}), input_.place(unit.firstMessage));
    complaints.finish();
    if (!input_.isWhole() || !verification.areAllWhole()) giveUp();
    if (!verification.isAnyOurs())
      throw Failure(kUnusableInput, "no message is for this instrument: nothing is restored");
  }

  void receive(EmbeddedEditor& editor, Restore& restore, const char* verb) {
    Progress progress(console_, verb, "message", messages_);
    RepeatedPlaces repeated(editor, console_);
    input_.forEachMessage([&](const InputMessage& message) {
      const Reading reading = readMessage(message.bytes);
      const std::optional<Record> record = take(restore, reading, message, repeated);
      if (record && record->outcome == Outcome::refused) {
        console_.problem(
            fmt::format("{}: refused: {}: {}", placeOf(message), describeContent(reading), escape(record->reason)));
        if (record->report.refusal == BDA::BulkDumpRefusal::wrongDeviceNumber) tellOtherDevices(editor);
        giveUp(record->libraryFailed ? kWrongUsage : kRefused);
      }
      progress.step(message.bytes.size());
    });
    repeated.finish();
    for (const UnitReport& unit : editor.openUnits())
      console_.problem(fmt::format("{}: {}", input_.place(unit.firstMessage), describeUnit(unit)));
    if (!editor.openUnits().empty()) giveUp();
    if (const std::uint64_t others = messages_ - restore.dumps(); others > 0)
      console_.note(fmt::format("{} of {} messages are no dumps: ignored", others, messages_));
  }

  void tellOtherDevices(EmbeddedEditor& editor) const {
    OtherDevices others;
    input_.forEachMessage([&](const InputMessage& message) {
      const Reading reading = readMessage(message.bytes);
      if (reading.kind == Reading::Kind::dump && !editor.hears(reading)) others.add(*reading.device);
    });
    others.tell(console_, editor.isDeviceOff() ? OtherDevices::WayOut::option : OtherDevices::WayOut::optionOrSetting);
  }

  static std::optional<Record> take(Restore& restore, const Reading& reading, const InputMessage& message,
                                    RepeatedPlaces& repeated) {
    try {
      std::optional<Record> record = restore.take(reading, message);
      if (record) repeated.add(message, *record);
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

  void tellTally(Restore& restore, const std::vector<PlaceChange>& changes) const {
    const auto [stored, removed, same] = restore.tally(changes);
    console_.note(fmt::format("{}: {}, {} stored, {} removed{}", options_.dryRun ? "would be restored" : "restored",
                              counted(restore.dumps(), "message"), counted(stored, "content"), removed,
                              same == 0 ? "" : fmt::format(", {} as they were", same)));
  }

  // On a copy.
  void rehearse(EmbeddedEditor& library) {
    const EmbeddedEditor::View oneState(library);
    EmbeddedEditor copy;
    copy.library().copyFrom(library.library());
    copy.library().beginRun(run_);
    Restore restore(copy, devices());
    receive(copy, restore, "dry run");
    const std::vector<PlaceChange> changes = restore.settle();
    if (options_.json) return tellChanges(changes, options_, console_);
    restore.commit();       // to the copy
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
    tellTally(restore, changes);
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
};

}  // namespace

void restore(const std::string& file, const RestoreOptions& options, Program& program) {
  Restoring(file, options, program).run();
}

}  // namespace Editor
