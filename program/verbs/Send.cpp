// The verb send: dumps to an instrument, and whether it has them.

#include "wire/Send.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "input/InputStream.h"
#include "input/OpenPort.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/Complaints.h"
#include "output/LossReport.h"
#include "output/Progress.h"
#include "output/TranscriptFile.h"
#include "targets/Targets.h"
#include "verbs/Verbs.h"
#include "wire/LibraryBatch.h"
#include "wire/SendJson.h"
#include "wire/Sendable.h"

namespace Editor {

namespace {

// An address is what it is; a file of that name is ./NAME.
bool isAddress(const std::string& word) {
  try {
    parsePlaces(word);
    return true;
  } catch (const TargetError&) {
    return false;
  }
}

class Sending {
 public:
  Sending(const char* verb, const SendOptions& options, Program& program)
      : options_(options),
        program_(program),
        console_(program.console),
        transcript_({.verb = verb, .port = options.to, .readsOnly = true, .sent = Transcript::Sent::later}, program) {
    if (options.to == "-") console_.keepOutputForBytes();
    console_.flushEachLine();
  }

  TranscriptFile& transcript() { return transcript_; }

  void run(Batch batch) {
    const Sendable sendable =
        sendableOf(std::move(batch), {options_.toEditBuffer, options_.verify || options_.changed});
    Complaints complaints(console_);
    for (const MessageFault& fault : sendable.faults) complaints.tell(fault.kind, fault.text);
    complaints.finish();
    for (const std::string& words : sendable.leftOut) console_.note(words);
    if (sendable.why != Sendable::Why::isSent)
      throw Failure(sendable.why == Sendable::Why::isBroken ? kRefused : kUnusableInput, sendable.words);
    options_.dryRun ? rehearse(*sendable.plan) : send(*sendable.plan);
  }

  // The words are files, or places of the library.
  Batch read(const Words& words) {
    Words files;
    for (const std::string& word : words)
      if (!isAddress(word)) files.push_back(word);
    if (files.size() == words.size()) return readFiles(files);
    if (!files.empty())
      throw Failure(kWrongUsage, fmt::format("\"{}\" is no address: expected files, or places of the library",
                                             escape(files.front())));
    return readLibrary(words);
  }

 private:
  Batch readFiles(const Words& files) {
    for (const std::string& file : files) {
      std::error_code unknown;
      const bool isFile = file == "-" || file.find_first_of("./") != std::string::npos;
      if (!isFile && !std::filesystem::exists(file, unknown)) parseAddresses({file});  // throws what may be meant
    }
    InputStream input(files);
    BatchBuilder builder;
    LossReport losses(console_);
    const std::vector<std::string> problems =
        input.read([&](const InputMessage& message) { builder.add(message.bytes); },
                   [&](const InputLoss& loss) { losses.add(loss); });
    losses.finish();
    if (!problems.empty()) throw Failure(kUnusableInput, problems.front());
    if (!losses.areAllWhole()) throw Failure(kRefused, "it is not whole: nothing is sent");
    return builder.finish();
  }

  Batch readLibrary(const Words& words) {
    const std::unique_ptr<EmbeddedEditor> editor = program_.openToRead();
    transcript_.listen(*editor);
    Complaints complaints(console_);
    const auto complain = [&](BulkAddress address, const std::string& why) {
      complaints.tell(escape(why), fmt::format("{}: not sent: {}", nameOrBytes(address), escape(why)));
      program_.refuse();
    };
    const Triggers triggers = options_.toEditBuffer ? Triggers::none : Triggers::behindFileDumps;
    Batch batch = batchOf(*editor, parseAddresses(words), triggers, complain);
    complaints.finish();
    return batch;
  }

  void tellPlan(const SendPlan& plan, Pace pace) {
    // What is overwritten is named before the first byte, whoever reads the objects.
    const auto say = [&](const std::string& line) { options_.json ? console_.problem(line) : console_.line(line); };
    for (const std::string& effect : plan.effects) say(effect);
    for (const std::string& effect : plan.further) say(effect);
    const WireTime time = durationOf(plan.units, Pacer(pace, options_.pauses, Pacer::Takes::messages));
    console_.note(fmt::format("{}, {}, {} bytes, {:.1f} s", counted(plan.units.size(), "unit"),
                              counted(plan.messages, "message"), plan.bytes,
                              std::chrono::duration<double>(time).count()));
  }

  void rehearse(const SendPlan& plan) {
    tellPlan(plan, options_.pace.value_or(BytePort::defaultPaceOf(options_.to)));
    console_.note("dry run, nothing is sent");
  }

  void send(const SendPlan& plan) {
    const bool hears = options_.verify || options_.changed;
    const std::unique_ptr<Port> port = transcript_.listen(
        openPort(options_.to, hears ? BytePort::Direction::both : BytePort::Direction::out, console_));
    console_.note(fmt::format("to {}", escape(port->name())));
    if (plan.longest > port->longestMessage())
      throw Failure(kRefused, fmt::format("a message of {} bytes is longer than the port carries ({}): nothing is sent",
                                          plan.longest, port->longestMessage()));
    const Pace pace = options_.pace.value_or(port->defaultPace());
    tellPlan(plan, pace);
    Progress progress(console_, "send", "unit", plan.units.size());
    Send end(plan.units,
             {options_.verify,
              options_.changed,
              {std::uint8_t(*plan.devices.begin() - 1), options_.timeout, options_.retries}},
             Pacer(pace, options_.pauses, port->takes()), [&](const SentUnit& unit) {
               tell(plan, unit);
               progress.show(1, 0);
             });
    std::optional<Failure> failure;
    try {
      if (hears) port->discard();  // what came before nobody asked for
      // What has begun is finished, so that the instrument is not left deaf.
      if (!runAt(*port, end, [&] { end.stop(); })) failure = Failure(kInterrupted, "interrupted");
    } catch (const PortError& gone) {
      failure = Failure(kWrongUsage, gone.what());
    }
    end.giveUp();
    progress.end();
    unknown_.finish();
    tellDropped(*port, console_);
    tellEnd(plan, end);
    if (failure) throw *std::move(failure);
  }

  void tellEnd(const SendPlan& plan, const Send& end) {
    if (const std::optional<Send::Unfinished> begun = end.unfinished())
      console_.problem(fmt::format("begun and not finished: {}{}{}", plan.places[begun->unit],
                                   begun->missing.empty() ? "" : ", missing ", describeBlocks(begun->missing)));
    const std::vector<std::size_t> unwritten = end.unwritten();
    for (const std::size_t unit : unwritten)
      console_.problem(fmt::format("sent and not stored: {}: its write trigger has not gone out", plan.places[unit]));
    std::string words;
    const auto count = [&](std::uint64_t number, const std::string& word) {
      if (number > 0) words += fmt::format("{}{} {}", words.empty() ? "" : ", ", number, word);
    };
    for (const auto& [state, number] : counts_) count(number, wordOf(state));
    count(unwritten.size(), "sent and not stored");
    count(plan.units.size() - told_ - unwritten.size(), "not sent");
    console_.note(words);
  }

  void tell(const SendPlan& plan, const SentUnit& unit) {
    ++told_;
    ++counts_[unit.state];
    const std::string& place = plan.places[unit.unit];
    if (isMissed(unit)) program_.refuse();
    if (!unit.whyUnknown.empty())
      unknown_.tell("not compared before", fmt::format("not compared before: {}: {}", place, unit.whyUnknown));
    if (options_.json) return console_.line(jsonLine(toJson(plan, unit)));
    const std::string line =
        fmt::format("{}: {}{}{}", wordOf(unit.state), place, unit.reason.empty() ? "" : ": ", unit.reason);
    isMissed(unit) ? console_.problem(line) : console_.line(line);
    tellDifferences(unit.differences);
    if (!unit.before.empty()) console_.problem(fmt::format("was different: {}", place));
    tellDifferences(unit.before);
  }

  void tellDifferences(const std::vector<ReadBackDifference>& differences) {
    constexpr std::size_t kMostTold = 20;
    for (std::size_t i = 0; i < std::min(differences.size(), kMostTold); ++i)
      console_.problem("    " + lineOf(differences[i]));
    if (differences.size() > kMostTold)
      console_.problem(fmt::format("    and {} more", differences.size() - kMostTold));
  }

  static std::string lineOf(const ReadBackDifference& difference) {
    const std::optional<BlockFacts> block = findBlock(difference.address);
    const std::string address = formatAddress(difference.address);
    if (difference.isOfOneOnly)
      return fmt::format("{}: {}", address, block ? "nothing is stored there" : "something is stored there");
    if (block && block->role == Role::header)
      return fmt::format("{}: a {} sent, a {} read", address, std::get<std::string>(difference.sent),
                         std::get<std::string>(difference.read));
    const bool isOfContent = block && block->role == Role::fileDump && !difference.path;
    return fmt::format("{} {} {}: {}{} sent, {} read", address, isOfContent ? "content byte" : "data byte",
                       difference.dataByte, difference.path ? *difference.path + ": " : "", wordsOf(difference.sent),
                       wordsOf(difference.read));
  }
  static std::string wordsOf(const ParameterValue& value) {
    return std::holds_alternative<std::monostate>(value) ? "nothing" : showValue(value);
  }

  const SendOptions& options_;
  Program& program_;
  Console& console_;
  const Interruptible interruptible_;
  TranscriptFile transcript_;
  Complaints unknown_{console_};
  std::size_t told_ = 0;
  std::map<SentUnit::State, std::uint64_t> counts_;
};

}  // namespace

void send(const Words& words, const SendOptions& options, Program& program) {
  Sending sending("send", options, program);
  sending.run(sending.read(joinAddresses(words)));
}

void send(const char* verb, const std::function<Batch(TranscriptFile&)>& read, const SendOptions& options,
          Program& program) {
  Sending sending(verb, options, program);
  sending.run(read(sending.transcript()));
}

}  // namespace Editor
