// The verb send: dumps to an instrument, and whether it has them.

#include "wire/Send.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <utility>

#include "convert/Placing.h"
#include "exchange/Answers.h"
#include "input/InputStream.h"
#include "input/OpenPort.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/Latin1.h"
#include "models/ModelJson.h"
#include "output/Complaints.h"
#include "output/LossReport.h"
#include "output/Progress.h"
#include "output/TranscriptFile.h"
#include "targets/Targets.h"
#include "verbs/Verbs.h"
#include "wire/SendPlan.h"

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
    refuseBroken(batch);
    if (options_.toEditBuffer) placeInEditBuffers(batch);
    const SendPlan plan(batch);
    if (plan.leftOut > 0)
      console_.note(fmt::format("{} left out: no dumps for this instrument", counted(plan.leftOut, "message")));
    if (plan.units.empty()) throw Failure(kUnusableInput, "no dump for this instrument: nothing is sent");
    if (plan.devices.size() > 1 && (options_.verify || options_.changed))
      throw Failure(
          kUnusableInput,
          fmt::format("its messages are for different devices ({}): nobody can be asked for them, nothing is sent",
                      fmt::join(plan.devices, ", ")));
    options_.dryRun ? rehearse(plan) : send(plan);
  }

  // The words are files, or places of the library.
  Batch read(const Words& words) {
    BatchBuilder builder;
    Words files;
    for (const std::string& word : words)
      if (!isAddress(word)) files.push_back(word);
    if (files.size() < words.size()) {
      if (!files.empty())
        throw Failure(kWrongUsage, fmt::format("\"{}\" is no address: expected files, or places of the library",
                                               escape(files.front())));
      readLibrary(words, builder);
    } else {
      readFiles(files, builder);
    }
    return builder.finish();
  }

 private:
  void readFiles(const Words& files, BatchBuilder& builder) {
    for (const std::string& file : files) {
      std::error_code unknown;
      const bool isFile = file == "-" || file.find_first_of("./") != std::string::npos;
      if (!isFile && !std::filesystem::exists(file, unknown)) parseAddresses({file});  // throws what may be meant
    }
    InputStream input(files);
    LossReport losses(console_);
    const std::vector<std::string> problems =
        input.read([&](const InputMessage& message) { builder.add(message.bytes); },
                   [&](const InputLoss& loss) { losses.add(loss); });
    losses.finish();
    if (!problems.empty()) throw Failure(kUnusableInput, problems.front());
    if (!losses.areAllWhole()) throw Failure(kRefused, "it is not whole: nothing is sent");
  }

  // What `request` answers, with a trigger behind file dumps.
  void readLibrary(const Words& words, BatchBuilder& builder) {
    const std::unique_ptr<EmbeddedEditor> editor = program_.openToRead();
    transcript_.listen(*editor);
    const EmbeddedEditor::Run oneState(*editor, Library::Transaction::Access::Read);
    Complaints complaints(console_);
    std::optional<std::vector<std::uint8_t>> held;  // a file dump that no trigger has written yet
    std::uint64_t number = 0;
    const auto writeHeld = [&] {
      if (held && !options_.toEditBuffer) builder.add(triggerFor(*held));
      held.reset();
    };
    for (const BulkAddress address : parseAddresses(words)) {
      const Record record = editor->handle(editor->requestFor(address), BDA::DevicePort_Main, ++number);
      const std::string why = whyUnanswered(record);
      const bool isEmpty = why.empty() && readMessage(record.sent.back().bytes).removes;
      if (!why.empty() || isEmpty) {
        complaints.tell(
            isEmpty ? "nothing is stored there" : escape(why),
            fmt::format("{}: not sent: {}", nameOrBytes(address), isEmpty ? "nothing is stored there" : escape(why)));
        program_.refuse();
        continue;
      }
      const bool isFileDump = readMessage(record.sent.front().bytes).role == Role::fileDump;
      if (!isFileDump) writeHeld();
      for (const AssistantHost::Sent& sent : record.sent) builder.add(sent.bytes);
      if (isFileDump) held = record.sent.front().bytes;
    }
    writeHeld();
    complaints.finish();
  }

  void refuseBroken(const Batch& batch) {
    Complaints complaints(console_);
    for (const UnitReport& unit : batch.broken) complaints.tell(wordOf(unit.state), describeUnit(unit));
    for (const Batch::BrokenMessage& message : batch.brokenMessages)
      complaints.tell("broken message",
                      fmt::format("{}: broken (message {}): {}",
                                  message.address ? nameOrBytes(*message.address) : "of no known type", message.message,
                                  message.why));
    const std::vector<std::size_t> unwritten = options_.toEditBuffer ? std::vector<std::size_t>() : unwrittenIn(batch);
    for (const std::size_t unit : unwritten)
      complaints.tell("without a write trigger",
                      fmt::format("{}: its file dump has no write trigger: the instrument would not store it",
                                  batch.units[unit].place));
    complaints.finish();
    if (!batch.broken.empty() || !batch.brokenMessages.empty() || !unwritten.empty())
      throw Failure(kRefused, "it is not whole: nothing is sent");
  }

  void placeInEditBuffers(Batch& batch) {
    UnitModels models;
    Placing placing(batch, models);
    std::set<EditBuffer> taken;
    for (std::size_t unit = 0; unit < batch.units.size(); ++unit) {
      const std::optional<EditBuffer> buffer = editBufferOf(batch.units[unit].kind);
      if (!buffer) throw Failure(kRefused, fmt::format("{}: there is no edit buffer for it", batch.units[unit].place));
      const MidLo header = headerOf(*buffer);
      const std::string name = nameOrBytes({0x0E, header.mid, header.lo});
      if (!taken.insert(*buffer).second)
        throw Failure(kUnusableInput, fmt::format("{} would be overwritten by a second one: nothing is sent", name));
      placing.place(unit, parseDestinations(name).front());
    }
    placing.finish();
    // What stands by itself would overwrite what is stored: system blocks, favourites, triggers.
    const std::size_t leftOut = std::erase_if(batch.messages, [](const Batch::Message& message) {
      return !message.unit && readMessage(message.bytes).kind == Reading::Kind::dump;
    });
    if (leftOut > 0) console_.note(fmt::format("{} left out: no edit buffer takes them", counted(leftOut, "message")));
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
    tellDropped(*port, console_);
    tellEnd(plan, end);
    if (failure) throw *std::move(failure);
  }

  void tellEnd(const SendPlan& plan, const Send& end) {
    if (const std::optional<Send::Unfinished> begun = end.unfinished())
      console_.problem(fmt::format("begun and not finished: {}{}{}", plan.places[begun->unit],
                                   begun->missing.empty() ? "" : ", missing ", describeBlocks(begun->missing)));
    for (const std::size_t unit : end.unwritten())
      console_.problem(fmt::format("sent and not stored: {}: its write trigger has not gone out", plan.places[unit]));
    std::string words;
    const auto count = [&](std::uint64_t number, const std::string& word) {
      if (number > 0) words += fmt::format("{}{} {}", words.empty() ? "" : ", ", number, word);
    };
    for (const auto& [state, number] : counts_) count(number, wordOf(state));
    count(plan.units.size() - told_, "not sent");
    console_.note(words);
  }

  void tell(const SendPlan& plan, SentUnit unit) {
    ++told_;
    ++counts_[unit.state];
    const std::string& place = plan.places[unit.unit];
    const bool isMissed = unit.state == SentUnit::State::different || unit.state == SentUnit::State::unanswered ||
                          (options_.verify && unit.state == SentUnit::State::sent);
    if (isMissed) program_.refuse();
    if (isMissed && unit.state == SentUnit::State::sent)
      unit.reason = plan.units[unit.unit].asked ? "not verified" : "cannot be asked for";
    if (options_.json) return console_.line(jsonOf(plan, unit));
    const std::string line =
        fmt::format("{}: {}{}{}", wordOf(unit.state), place, unit.reason.empty() ? "" : ": ", unit.reason);
    isMissed ? console_.problem(line) : console_.line(line);
    if (unit.differences.empty()) return;
    if (unit.state == SentUnit::State::sent) console_.problem(fmt::format("was different: {}", place));
    constexpr std::size_t kMostTold = 20;
    for (std::size_t i = 0; i < std::min(unit.differences.size(), kMostTold); ++i)
      console_.problem("    " + lineOf(unit.differences[i]));
    if (unit.differences.size() > kMostTold)
      console_.problem(fmt::format("    and {} more", unit.differences.size() - kMostTold));
  }

  static std::string lineOf(const ReadBackDifference& difference) {
    return fmt::format("{} data byte {}: {}{} sent, {} read", formatAddress(difference.address), difference.dataByte,
                       difference.path ? *difference.path + ": " : "", wordsOf(difference.sent),
                       wordsOf(difference.read));
  }
  static std::string wordsOf(const ParameterValue& value) {
    return std::holds_alternative<std::monostate>(value) ? "nothing" : showValue(value);
  }

  static nlohmann::ordered_json toJson(const ParameterValue& value) {
    if (const auto* const number = std::get_if<std::int64_t>(&value)) return *number;
    if (const auto* const text = std::get_if<std::string>(&value)) return latin1ToUtf8(*text);
    return nullptr;
  }

  static std::string jsonOf(const SendPlan& plan, const SentUnit& unit) {
    nlohmann::ordered_json differences = nlohmann::ordered_json::array();
    const bool isDifferent = unit.state == SentUnit::State::different;
    for (const ReadBackDifference& one : unit.differences)
      if (isDifferent)
        differences.push_back({{"address", formatAddress(one.address)},
                               {"dataByte", one.dataByte},
                               {"path", one.path ? nlohmann::ordered_json(*one.path) : nlohmann::ordered_json(nullptr)},
                               {"sent", toJson(one.sent)},
                               {"read", toJson(one.read)}});
    const BulkAddress address = *readMessage(plan.units[unit.unit].messages.front()).address;
    return jsonLine(nlohmann::ordered_json{{"unit", nameOrBytes(address)},
                                           {"address", formatAddress(address)},
                                           {"state", wordOf(unit.state)},
                                           {"differences", std::move(differences)},
                                           {"reason", unit.reason}});
  }

  const SendOptions& options_;
  Program& program_;
  Console& console_;
  const Interruptible interruptible_;
  TranscriptFile transcript_;
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
