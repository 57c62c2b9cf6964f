// The verb fetch: what an instrument holds, into the library or into a file.

#include "wire/Fetch.h"

#include <fmt/format.h>

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "exchange/Handover.h"
#include "input/OpenPort.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/ChangeLines.h"
#include "output/Complaints.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/TranscriptFile.h"
#include "verbs/Verbs.h"
#include "wire/FetchJson.h"
#include "wire/Settlement.h"

namespace Editor {

namespace {

using State = FetchedAs;

class Fetching {
 public:
  Fetching(const Words& words, const FetchOptions& options, Program& program)
      : options_(options),
        program_(program),
        console_(program.console),
        units_(unitsToFetch(words)),
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
    const Settlement::Options settling{options_.atomic, options_.removeEmpty, options_.retries};
    const auto tellOne = [this](const Settled& settled) { tell(settled); };
    if (isKeptInFile_)
      settlement_.emplace(
          units_, settling, [this](const Fetched& fetched) { keep(fetched); }, tellOne);
    else
      settlement_.emplace(units_, settling, *editor_, tellOne);
    // Whoever is to be at the other end of a new terminal has to know where that is.
    const std::string from = fmt::format("from {}", escape(port->name()));
    options_.from == "pty:" ? console_.problem(from) : console_.note(from);
    Progress progress(console_, "fetch", "unit", units_.size());
    progress_ = &progress;
    const std::uint8_t device = deviceNumberOf(editor_->tools());
    Fetch fetch(addressesOf(units_), {device, options_.timeout, options_.retries},
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
      settlement_->finish(fetch.late(), !failure);
    } catch (const LibraryError& error) {
      failure = Failure(kWrongUsage, escape(error.what()));
    }
    tellLate(fetch);
    tellDropped(*port, console_);
    finish(fetch, device);
    if (failure) throw *std::move(failure);
  }

 private:
  void take(Fetched fetched) {
    progress_->show(1, 0);
    settlement_->take(std::move(fetched));
    if (!options_.atomic) transcript_->settle();
  }

  void keep(const Fetched& fetched) {
    for (const std::vector<std::uint8_t>& message : fetched.messages) file_->write(message);
    ++kept_;
    if (fetched.state == Fetched::State::empty) ++removals_;
  }

  void tell(const Settled& settled) {
    const Fetched& fetched = settled.fetched;
    const bool isLost = settled.as == State::lost;
    ++counts_[settled.as];
    if (isLost) program_.refuse();
    if (settled.isTaken && !isKeptInFile_ && !options_.dryRun) program_.noteChange();
    if (options_.json) return console_.line(jsonLine(toJson(fetched, settled.as, settled.isRemoved, settled.with)));
    const std::string line = lineOf(settled);
    if (isLost && fetched.tries == 0) return unasked_.tell("not asked for", line);
    isLost ? console_.problem(line) : console_.line(line);
    for (const PlaceChange& change : settled.with)
      console_.line(fmt::format("{}stored with it: {}{}", would(settled), change.place, detailOf(change)));
  }

  const char* would(const Settled& settled) const {
    return options_.dryRun && (settled.as == State::stored || settled.isRemoved) ? "would be " : "";
  }

  std::string lineOf(const Settled& settled) const {
    const auto& [fetched, as, isTaken, isRemoved, why, replaced, with] = settled;
    std::string line =
        fmt::format("{}{}: {}", would(settled), isRemoved ? "removed" : wordOf(as), nameOrBytes(fetched.address));
    if (replaced && !replaced->empty())
      line += fmt::format(", {} \"{}\"", isRemoved ? "it was" : "replaces", showName(*replaced));
    if (replaced && replaced->empty() && !isRemoved) line += ", replaces what was there";
    if (fetched.isEmptyBySilence) line += " (it answers nothing)";
    if (as == State::empty && isKeptInFile_ && isTaken) line += ": who receives the file removes what is there";
    if (as == State::lost) line += wordsOfLoss(fetched, why);
    if (fetched.tries != 1) line += fmt::format(" ({})", counted(fetched.tries, "try", "tries"));
    return line;
  }

  static std::string wordsOfLoss(const Fetched& fetched, const std::string& why) {
    std::string words = fmt::format(": {}", fetched.reason);
    if (!why.empty()) words += fmt::format(": {}", escape(why));
    if (fetched.reason == "incomplete" && fetched.missing.empty())
      words += ": two answers in one, which differ";
    else if (fetched.reason == "incomplete" && fetched.other && fetched.missing.front() == fetched.address)
      words += fmt::format(": {} came instead", nameOrBytes(*fetched.other));
    else if (fetched.reason == "incomplete" || fetched.reason == "broken")
      words += fmt::format(", missing {}", describeBlocks(fetched.missing));
    return words;
  }

  // Of what was told empty by silence nothing else tells that it is lost.
  void tellLate(const Fetch& fetch) {
    Complaints complaints(console_);
    for (const std::size_t unit : fetch.late()) {
      complaints.tell("came too late", fmt::format("too late: {}: it came when it was waited for no longer",
                                                   nameOrBytes(units_[unit].address)));
      program_.refuse();
    }
    complaints.finish();
    if (!fetch.late().empty()) console_.problem("--timeout SECONDS waits longer");
  }

  // What has come by now stays, however the run ends.
  void finish(const Fetch& fetch, std::uint8_t device) {
    if (isKeptInFile_ && kept_ > 0) {
      if (options_.trigger) file_->write(writeTrigger(device));
      file_->commit();
    } else if (isKeptInFile_) {
      console_.note("no unit came whole: nothing is written");
    }
    const std::vector<BulkAddress> lost = settlement_->toAskAgain(fetch.late());
    if (requests_ && !lost.empty()) {
      for (const BulkAddress address : lost) requests_->write(requestMessage(address, device));
      requests_->commit();
    }
    if (settlement_->isSilenceDoubtful()) program_.refuse();
    std::string words;
    for (const auto& [state, count] : counts_)
      words += fmt::format("{}{} {}", words.empty() ? "" : ", ", count, wordOf(state));
    if (settlement_->unasked() > 0)
      words += fmt::format("{}{} not asked for", words.empty() ? "" : ", ", settlement_->unasked());
    if (removals_ > 0) words += fmt::format("; who receives the file removes {}", counted(removals_, "content"));
    console_.note((options_.dryRun ? "dry run, nothing is changed: " : "") + words);
  }

  const FetchOptions& options_;
  Program& program_;
  Console& console_;
  const Interruptible interruptible_;
  const std::vector<WantedUnit> units_;
  const bool isKeptInFile_;
  std::optional<OutputFile> file_;
  std::optional<OutputFile> requests_;
  std::optional<TranscriptFile> transcript_;
  std::unique_ptr<EmbeddedEditor> editor_;
  std::optional<Settlement> settlement_;
  Progress* progress_ = nullptr;
  Complaints unasked_;
  std::uint64_t kept_ = 0;      // units, and of these
  std::uint64_t removals_ = 0;  // what says that they are empty
  std::map<State, std::uint64_t> counts_;
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
