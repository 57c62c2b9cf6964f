// The verb fetch: what an instrument holds, into the library or into a file.

#include "wire/Fetch.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "exchange/Handover.h"
#include "input/OpenPort.h"
#include "messages/BackupOrder.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/ChangeLines.h"
#include "output/Complaints.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/TranscriptFile.h"
#include "targets/Targets.h"
#include "verbs/Verbs.h"
#include "wire/FetchJson.h"
#include "wire/Intake.h"

namespace Editor {

namespace {

struct Unit {
  BulkAddress address;
  bool isSingle;  // it was asked for by its own name
};

std::vector<Unit> unitsOf(const Words& words) {
  std::vector<Unit> units;
  for (const std::string& word : joinAddresses(words)) {
    const bool isAll = word == "all";
    const Places<BulkAddress> places =
        isAll ? Places<BulkAddress>{word, false, everythingInABackup()} : parsePlaces(word);
    for (const BulkAddress address : places.list) {
      if (!findBlock(address) || !isAnsweredByUnit(address))
        throw TargetError(TargetError::Kind::noTarget,
                          fmt::format("{} ({}) cannot be fetched: expected a header, a file dump that can be stored, a "
                                      "system block or favourites, such as voice:user1:6",
                                      nameOrBytes(address), describeAddress(address)));
      units.push_back({address, places.isOne});
    }
  }
  return units;
}

using State = FetchedAs;

class Fetching {
 public:
  Fetching(const Words& words, const FetchOptions& options, Program& program)
      : options_(options),
        program_(program),
        console_(program.console),
        units_(unitsOf(words)),
        isKeptInFile_(!options.output.empty()),
        unasked_(console_) {
    if (isKeptInFile_) file_.emplace(options.output);
    if (!options.requests.empty()) requests_.emplace(options.requests);
    if (options.from == "-" || options.output == "-" || options.requests == "-") console_.keepOutputForBytes();
    console_.flushEachLine();
  }

  void run() {
    transcript_.emplace(Transcript::Options{.verb = "fetch",
                                            .port = options_.from,
                                            .readsOnly = isKeptInFile_,
                                            .sent = Transcript::Sent::never,
                                            .handsOnLater = !isKeptInFile_},
                        program_);
    std::unique_ptr<Port> port = openPort(options_.from, BytePort::Direction::both, console_);
    const LibraryRun libraryRun{"fetch", {port->name()}};
    editor_ = isKeptInFile_     ? program_.openToRead()
              : options_.dryRun ? program_.openToRehearse(libraryRun)
                                : program_.openToChange(libraryRun);
    transcript_->listen(*editor_);
    port = transcript_->listen(std::move(port));
    intake_.emplace(*editor_);
    // Whoever is to be at the other end of a new terminal has to know where that is.
    const std::string from = fmt::format("from {}", escape(port->name()));
    options_.from == "pty:" ? console_.problem(from) : console_.note(from);
    Progress progress(console_, "fetch", "unit", units_.size());
    progress_ = &progress;
    const std::uint8_t device = deviceNumberOf(editor_->tools());
    Fetch fetch(addresses(), {device, options_.timeout, options_.retries},
                Pacer(options_.pace.value_or(port->defaultPace()), options_.pauses, port->takes()),
                [this](Fetched fetched) { take(std::move(fetched)); });
    std::optional<Failure> failure;
    try {
      port->discard();  // what came before nobody asked for
      if (!runAt(*port, fetch)) failure = Failure(kInterrupted, "interrupted");
      fetch.stop();
    } catch (const PortError& gone) {
      failure = Failure(kWrongUsage, gone.what());
      fetch.stop();
    } catch (const LibraryError& error) {
      failure = Failure(kWrongUsage, escape(error.what()));
    }
    progress.end();
    unasked_.finish();
    try {
      if (options_.atomic) settleTogether(fetch.late(), !failure);
    } catch (const LibraryError& error) {
      failure = Failure(kWrongUsage, escape(error.what()));
    }
    tellLate(fetch);
    tellDropped(*port, console_);
    finish(device);
    if (failure) throw *std::move(failure);
  }

 private:
  std::vector<BulkAddress> addresses() const {
    std::vector<BulkAddress> addresses;
    for (const Unit& unit : units_) addresses.push_back(unit.address);
    return addresses;
  }

  void take(Fetched fetched) {
    ++came_;
    progress_->show(1, 0);
    isAnyAskedAgain_ = isAnyAskedAgain_ || (isAnswered(fetched) && fetched.tries > 1);
    areAnyEmptyBySilence_ = areAnyEmptyBySilence_ || fetched.isEmptyBySilence;
    isSingleEmptyBySilence_ = isSingleEmptyBySilence_ || (fetched.isEmptyBySilence && units_[fetched.unit].isSingle);
    if (options_.atomic)
      waiting_.push_back(std::move(fetched));
    else
      settle(fetched);
    if (!options_.atomic) transcript_->settle();
  }

  static bool isAnswered(const Fetched& fetched) { return !fetched.messages.empty(); }
  // Whether something is to be done with its answer.
  bool isTaken(const Fetched& fetched) const {
    return isAnswered(fetched) && (fetched.state == Fetched::State::whole || options_.removeEmpty);
  }

  void settle(Fetched& fetched) {
    if (!isTaken(fetched)) return tell(fetched, stateOf(fetched, State::lost));
    if (!isKeptInFile_) return store({&fetched, 1});
    for (const std::vector<std::uint8_t>& message : fetched.messages) file_->write(message);
    ++kept_;
    if (fetched.state == Fetched::State::empty) ++removals_;
    tell(fetched, stateOf(fetched, State::kept));
  }

  static State stateOf(const Fetched& fetched, State other) {
    return fetched.state == Fetched::State::empty ? State::empty : other;
  }

  // All of them or none; `isWhole`: all were asked for.
  void settleTogether(const std::vector<std::size_t>& late, bool isWhole) {
    for (const std::size_t unit : late) loseAsLate(waiting_[unit]);
    if (isWhole && std::ranges::none_of(waiting_, [](const Fetched& one) { return one.state == Fetched::State::lost; }))
      return store(waiting_);
    for (Fetched& one : waiting_) isTaken(one) ? lose(one, "not stored", "others are lost") : settle(one);
  }

  // In one transaction, and tells all of them. Throws LibraryError.
  void store(std::span<Fetched> units) {
    std::vector<Intake::Messages> messages;
    for (const Fetched& unit : units)
      if (isTaken(unit)) messages.push_back(unit.messages);
    Intake::Result result;
    try {
      if (!messages.empty()) result = intake_->store(messages);
    } catch (const LibraryError&) {
      for (Fetched& unit : units) isTaken(unit) ? lose(unit, "not stored", "") : settle(unit);
      throw;
    }
    const bool isStored = result.state == Intake::Result::State::stored;
    const char* const reason = result.state == Intake::Result::State::refused ? "refused" : "not stored";
    if (isStored && !messages.empty() && !options_.dryRun) program_.noteChange();
    std::size_t taken = 0;
    for (Fetched& unit : units) {
      if (!isTaken(unit)) {
        settle(unit);
        continue;
      }
      const std::size_t which = taken++;
      if (isStored)
        tell(unit, stateOf(unit, State::stored), "", result.changes[which]);
      else
        which == result.unit ? lose(unit, reason, result.why)
                             : lose(unit, "not stored", fmt::format("another one is {}", reason));
    }
  }

  void lose(Fetched& unit, const char* reason, const std::string& why) {
    unit.reason = reason;
    tell(unit, State::lost, why);
  }

  void tell(const Fetched& fetched, State state, const std::string& why = "", std::span<const Change> changes = {}) {
    ++counts_[state];
    if (state == State::lost) {
      lost_.push_back(fetched.address);
      program_.refuse();
    }
    const std::string name = nameOrBytes(fetched.address);
    const std::string place = placeNameOf(fetched.address);
    std::optional<std::string> replaced;  // by its name; nothing: the place was empty, or nobody knows
    std::vector<PlaceChange> with;        // the multi of a part, the parts of a multi
    const bool isUnit = findBlock(fetched.address)->role == Role::header;
    for (const Change& change : changes)
      if (nameOf(change.place) == place) {
        if (change.before && !replaced) replaced = change.before->name;
      } else if (isUnit && change.place.kind == Place::Kind::live && change.before != change.after) {
        with.push_back(toPlaceChange(change));
      }
    const bool isRemoved = state == State::empty && replaced;
    if (options_.json) return console_.line(jsonLine(toJson(fetched, state, isRemoved, with)));
    const char* const would = options_.dryRun && (state == State::stored || isRemoved) ? "would be " : "";
    std::string line = fmt::format("{}{}: {}", would, isRemoved ? "removed" : wordOf(state), name);
    if (replaced && !replaced->empty())
      line += fmt::format(", {} \"{}\"", isRemoved ? "it was" : "replaces", showName(*replaced));
    if (replaced && replaced->empty() && !isRemoved) line += ", replaces what was there";
    if (fetched.isEmptyBySilence) line += " (it answers nothing)";
    if (state == State::empty && isKeptInFile_ && isTaken(fetched))
      line += ": who receives the file removes what is there";
    if (state == State::lost) {
      line += fmt::format(": {}", fetched.reason);
      if (!why.empty()) line += fmt::format(": {}", escape(why));
      if (fetched.reason == "incomplete" && fetched.missing.empty())
        line += ": two answers in one, which differ";
      else if (fetched.reason == "incomplete" && fetched.other && fetched.missing.front() == fetched.address)
        line += fmt::format(": {} came instead", nameOrBytes(*fetched.other));
      else if (fetched.reason == "incomplete" || fetched.reason == "broken")
        line += fmt::format(", missing {}", describeBlocks(fetched.missing));
    }
    if (fetched.tries != 1) line += fmt::format(" ({})", counted(fetched.tries, "try", "tries"));
    if (state == State::lost && fetched.tries == 0) return unasked_.tell("not asked for", line);
    state == State::lost ? console_.problem(line) : console_.line(line);
    for (const PlaceChange& change : with)
      console_.line(fmt::format("{}stored with it: {}{}", would, change.place, detailOf(change)));
  }

  // Of what was told empty by silence nothing else tells that it is lost.
  void tellLate(const Fetch& fetch) {
    Complaints complaints(console_);
    for (const std::size_t unit : fetch.late()) {
      const BulkAddress address = units_[unit].address;
      complaints.tell("came too late",
                      fmt::format("too late: {}: it came when it was waited for no longer", nameOrBytes(address)));
      if (std::ranges::find(lost_, address) == lost_.end()) lost_.push_back(address);
      program_.refuse();
    }
    complaints.finish();
    if (!fetch.late().empty()) console_.problem("--timeout SECONDS waits longer");
  }

  // What has come by now stays, however the run ends.
  void finish(std::uint8_t device) {
    if (isKeptInFile_ && kept_ > 0) {
      if (options_.trigger) file_->write(writeTrigger(device));
      file_->commit();
    } else if (isKeptInFile_) {
      console_.note("no unit came whole: nothing is written");
    }
    for (std::size_t unit = came_; unit < units_.size(); ++unit) lost_.push_back(units_[unit].address);
    if (requests_ && !lost_.empty()) {
      for (const BulkAddress address : lost_) requests_->write(requestMessage(address, device));
      requests_->commit();
    }
    const bool mayBeLoss = isAnyAskedAgain_ || options_.retries == 0;  // silence
    if (isSingleEmptyBySilence_ || (areAnyEmptyBySilence_ && mayBeLoss)) program_.refuse();
    std::string words;
    for (const auto& [state, count] : counts_)
      words += fmt::format("{}{} {}", words.empty() ? "" : ", ", count, wordOf(state));
    if (came_ < units_.size())
      words += fmt::format("{}{} not asked for", words.empty() ? "" : ", ", units_.size() - came_);
    if (removals_ > 0) words += fmt::format("; who receives the file removes {}", counted(removals_, "content"));
    console_.note((options_.dryRun ? "dry run, nothing is changed: " : "") + words);
  }

  const FetchOptions& options_;
  Program& program_;
  Console& console_;
  const Interruptible interruptible_;
  const std::vector<Unit> units_;
  const bool isKeptInFile_;
  std::optional<OutputFile> file_;
  std::optional<OutputFile> requests_;
  std::optional<TranscriptFile> transcript_;
  std::unique_ptr<EmbeddedEditor> editor_;
  std::optional<Intake> intake_;
  Progress* progress_ = nullptr;
  Complaints unasked_;
  std::vector<Fetched> waiting_;  // atomic: for all others to come
  std::size_t came_ = 0;
  std::uint64_t kept_ = 0;      // units, and of these
  std::uint64_t removals_ = 0;  // what says that they are empty
  std::map<State, std::uint64_t> counts_;
  std::vector<BulkAddress> lost_;
  bool isAnyAskedAgain_ = false;
  bool areAnyEmptyBySilence_ = false;
  bool isSingleEmptyBySilence_ = false;
};

}  // namespace

void fetch(const Words& words, const FetchOptions& options, Program& program) {
  if (options.from == "-" && options.output == "-")
    throw Failure(kWrongUsage, "requests and answers cannot both go to standard output");
  if (options.requests == "-" && (options.from == "-" || options.output == "-"))
    throw Failure(kWrongUsage, "requests of what is lost go to standard output alone");
  Fetching(words, options, program).run();
}

}  // namespace Editor
