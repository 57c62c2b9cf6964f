#include "surface/WireWork.h"

#include <fmt/format.h>

#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "exchange/Handover.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "surface/FilesReading.h"
#include "surface/Options.h"
#include "transcript/MessageJson.h"
#include "wire/Instrument.h"
#include "wire/LibraryBatch.h"
#include "wire/SendJson.h"
#include "wire/Sendable.h"
#include "wire/Settlement.h"

namespace Editor {

namespace {

WireTime timeBy(Options& options, const char* name, double unit, WireTime otherwise) {
  constexpr double kMost = 1e9;
  const std::optional<double> number = options.number(name, 0, kMost);
  return number ? WireTime(std::llround(*number * unit)) : otherwise;
}

Pacer pacerBy(Options& options) {
  constexpr double kMillisecond = 1e3;
  const std::string word = options.word("pace").value_or("cable");
  const std::optional<Pace> pace = parsePace(word);
  if (!pace)
    throw CallFailure{BDA_UNUSABLE, fmt::format("option \"pace\": \"{}\": expected cable, usb, none, or bytes a second",
                                                escape(word))};
  const WireTime pause = timeBy(options, "pause", kMillisecond, {});
  const WireTime unitPause = timeBy(options, "unit-pause", kMillisecond, {});
  return {*pace, {pause, unitPause}, options.flag("whole-messages") ? Pacer::Takes::messages : Pacer::Takes::bytes};
}

AskingTerms askingBy(Options& options) {
  constexpr double kSecond = 1e6;
  constexpr int kMostRetries = 1'000;
  AskingTerms terms;
  terms.timeout = timeBy(options, "timeout", kSecond, terms.timeout);
  terms.retries = unsigned(options.integer("retries", 0, kMostRetries).value_or(terms.retries));
  return terms;
}

class FetchWork final : public WireWork {
 public:
  FetchWork(std::shared_ptr<EmbeddedEditor> editor, const std::vector<WantedUnit>& units,
            const Settlement::Options& settling, const AskingTerms& terms, Pacer pacer)
      : editor_(std::move(editor)),
        settlement_(units, settling, *editor_, [this](const Settled& settled) { tell(settled); }),
        fetch_(addressesOf(units), terms, std::move(pacer),
               [this](Fetched fetched) { settlement_.take(std::move(fetched)); }),
        units_(addressesOf(units)) {}

  WireEnd& end() override { return fetch_; }

  void stop() override {
    isStopped_ = true;
    fetch_.stop();
  }

  void finish(bool isWhole) override {
    for (const std::size_t unit : fetch_.late())
      doubts.add(fmt::format("too late: {}: it came when it was waited for no longer", nameOrBytes(units_[unit])));
    if (settlement_.unasked() > 0) doubts.add(fmt::format("{} not asked for", counted(settlement_.unasked(), "unit")));
    if (settlement_.isSilenceDoubtful()) doubts.add("what answers nothing may be empty or lost");
    settlement_.finish(fetch_.late(), isWhole && !isStopped_);
  }

  Progress progress() const override { return {told_, units_.size()}; }

 private:
  void tell(const Settled& settled) {
    ++told_;
    const Fetched& fetched = settled.fetched;
    lines += jsonLine(toJson(fetched, settled.as, settled.isRemoved, settled.with)) + '\n';
    if (settled.as == FetchedAs::lost)
      doubts.add(fmt::format("lost: {}: {}{}{}", nameOrBytes(fetched.address), fetched.reason,
                             settled.why.empty() ? "" : ": ", escape(settled.why)));
  }

  const std::shared_ptr<EmbeddedEditor> editor_;
  Settlement settlement_;
  Fetch fetch_;
  const std::vector<BulkAddress> units_;
  std::size_t told_ = 0;
  bool isStopped_ = false;
};

class SendWork final : public WireWork {
 public:
  SendWork(SendPlan plan, std::vector<std::string> leftOut, const Send::Options& options, Pacer pacer)
      : plan_(std::move(plan)),
        leftOut_(std::move(leftOut)),
        duration_(durationOf(plan_.units, pacer)),
        send_(plan_.units, options, std::move(pacer), [this](const SentUnit& unit) { tell(unit); }) {}

  WireEnd& end() override { return send_; }
  void stop() override { send_.stop(); }

  void finish(bool isWhole) override {
    if (!isWhole) send_.giveUp();
    if (const std::optional<Send::Unfinished> begun = send_.unfinished())
      doubts.add(fmt::format("begun and not finished: {}", plan_.places[begun->unit]));
    const std::vector<std::size_t> unwritten = send_.unwritten();
    for (const std::size_t unit : unwritten)
      doubts.add(fmt::format("sent and not stored: {}: its write trigger has not gone out", plan_.places[unit]));
    if (const std::size_t unsent = plan_.units.size() - told_ - unwritten.size(); unsent > 0)
      doubts.add(fmt::format("{} not sent", counted(unsent, "unit")));
  }

  Progress progress() const override { return {told_, plan_.units.size(), plan_.bytes, duration_}; }

  std::string effects() const override {
    std::string words;
    for (const std::vector<std::string>* const list : {&plan_.effects, &plan_.further, &leftOut_})
      for (const std::string& line : *list) words += line + '\n';
    return words;
  }

 private:
  void tell(const SentUnit& unit) {
    ++told_;
    lines += jsonLine(toJson(plan_, unit)) + '\n';
    if (isMissed(unit))
      doubts.add(fmt::format("{}: {}{}{}", wordOf(unit.state), plan_.places[unit.unit], unit.reason.empty() ? "" : ": ",
                             unit.reason));
  }

  const SendPlan plan_;
  const std::vector<std::string> leftOut_;
  const WireTime duration_;
  Send send_;
  std::size_t told_ = 0;
};

class InstrumentWork final : public WireWork, private Instrument::Observer {
 public:
  InstrumentWork(std::shared_ptr<EmbeddedEditor> editor, const Instrument::Options& options, Pacer pacer)
      : editor_(std::move(editor)), port_(options.port), instrument_(*editor_, options, std::move(pacer), *this) {}

  Progress progress() const override { return {handled_}; }

  WireEnd& end() override { return instrument_; }
  void stop() override { instrument_.stop(); }

  void finish(bool isWhole) override {
    if (isWhole) instrument_.finish();
    for (const UnitReport& unit : editor_->openUnits()) doubts.add(describeUnit(unit));
  }

 private:
  void handled(std::uint64_t number, std::uint64_t offset, std::span<const std::uint8_t> message,
               const Record& record) override {
    ++handled_;
    lines += jsonOf({number, nullptr, offset}, port_, message, record) + '\n';
    const std::string place = fmt::format("message {} at offset {}", number, offset);
    doubt(faultsOf(record), place, doubts);
    if (record.outcome == Outcome::refused && record.reading.kind == Reading::Kind::request)
      doubts.add(fmt::format("{}: refused: {}: {}", place, describeContent(record.reading), escape(record.reason)));
  }
  void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
    if (kindOf(reason) == InputLoss::Kind::cutShort)
      doubts.add(fmt::format("at offset {}: {} dropped, {}", offset, counted(count, "byte"), describe(reason)));
  }
  void tooLong(std::uint64_t /*number*/, std::size_t /*length*/) override {}  // no message is

  const std::shared_ptr<EmbeddedEditor> editor_;
  const BDA::DevicePortNum port_;
  std::uint64_t handled_ = 0;
  Instrument instrument_;
};

// How a caller wants to have something sent.
struct SendTerms {
  explicit SendTerms(Options given)
      : toEditBuffers(given.flag("to-edit-buffer")),
        options{given.flag("verify"), given.flag("changed"), askingBy(given)},
        pacer(pacerBy(given)) {
    given.finish();
  }

  std::shared_ptr<WireWork> work(Batch batch, Doubts missing) const;

  bool toEditBuffers;
  Send::Options options;
  Pacer pacer;
};

// `missing`: what is to be sent and cannot.
std::shared_ptr<WireWork> SendTerms::work(Batch batch, Doubts missing) const {
  Sendable sendable = sendableOf(std::move(batch), {toEditBuffers, options.verifies || options.onlyChanged});
  if (!sendable.plan) {
    for (const MessageFault& fault : sendable.faults) missing.add(fault.text);
    for (const std::string& words : sendable.leftOut) missing.add(words);
    missing.add(sendable.words);
    missing.fail(sendable.why == Sendable::Why::isBroken ? BDA_REFUSED : BDA_UNUSABLE);
  }
  Send::Options asking = options;
  asking.terms.device = std::uint8_t(*sendable.plan->devices.begin() - 1);
  auto work = std::make_shared<SendWork>(*std::move(sendable.plan), std::move(sendable.leftOut), asking, pacer);
  work->doubts = std::move(missing);
  return work;
}

}  // namespace

std::shared_ptr<WireWork> fetchOver(std::shared_ptr<EmbeddedEditor> editor, const char* places, const char* text) {
  const std::vector<WantedUnit> units = unitsToFetch(wordsOf(places, "places"));
  Options options(text);
  AskingTerms terms = askingBy(options);
  const Settlement::Options settling{options.flag("atomic"), options.flag("remove-empty"), terms.retries};
  const Pacer pacer = pacerBy(options);
  options.finish();
  {
    const EmbeddedEditor::View oneState(*editor);
    terms.device = deviceNumberOf(editor->tools());
  }
  editor->library().beginRun({"fetch"});
  return std::make_shared<FetchWork>(std::move(editor), units, settling, terms, pacer);
}

std::shared_ptr<WireWork> sendFrom(EmbeddedEditor& editor, const char* places, const char* text) {
  const std::vector<BulkAddress> addresses = parseAddresses(wordsOf(places, "places"));
  const SendTerms terms{Options(text)};
  Doubts missing;
  const LeavingOut leavingOut(editor, missing);
  Batch batch = batchOf(editor, addresses, terms.toEditBuffers ? Triggers::none : Triggers::behindFileDumps,
                        [&](BulkAddress address, const std::string& why) {
                          missing.add(fmt::format("{}: not sent: {}", nameOrBytes(address), escape(why)));
                        });
  return terms.work(std::move(batch), std::move(missing));
}

std::shared_ptr<WireWork> sendFrom(const bda_files& files, const char* text) {
  const SendTerms terms{Options(text)};
  Doubts broken;
  BatchBuilder builder;
  readAll(
      files, [&](const InputMessage& message, std::size_t) { builder.add(message.bytes); },
      [&](const InputLoss& loss, std::size_t) { doubtLoss(loss, broken); });
  broken.refuse();
  return terms.work(builder.finish(), {});
}

std::shared_ptr<WireWork> instrumentOf(std::shared_ptr<EmbeddedEditor> editor, const char* text) {
  Options given(text);
  const std::int64_t port = given.integer("port", 1, 6).value_or(1);
  if (port == 2 || port == 3) throw CallFailure{BDA_UNUSABLE, "option \"port\": expected 1, 4, 5 or 6"};
  Instrument::Options options{.port = BDA::DevicePortNum(port), .echoes = given.flag("echo")};
  if (const std::optional<std::string> faults = given.text("faults")) options.faults = parseFaults(*faults);
  options.seed = std::uint64_t(given.integer("seed", 0, INT64_MAX).value_or(0));
  const Pacer pacer = pacerBy(given);
  given.finish();
  editor->library().beginRun({.verb = "instrument", .isEndless = true});
  return std::make_shared<InstrumentWork>(std::move(editor), options, pacer);
}

}  // namespace Editor
