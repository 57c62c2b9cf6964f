// The verb salvage: what is whole in broken captures, as a backup has it, and requests for what is lost.

#include "salvage/Salvage.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "input/InputStream.h"
#include "midi/Counted.h"
#include "output/Complaints.h"
#include "output/LossReport.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/SalvageLines.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

std::optional<std::size_t> preferredOf(const Words& files, const std::string& preferred) {
  if (preferred.empty()) return std::nullopt;
  const auto found = std::ranges::find(files, preferred);
  if (found == files.end())
    throw Failure(kWrongUsage, fmt::format("--prefer {}: it is none of the files", displayName(preferred)));
  return std::size_t(found - files.begin());
}

class Salvaging {
 public:
  Salvaging(const Words& files, const SalvageOptions& options, Program& program)
      : files_(files),
        options_(options),
        program_(program),
        console_(program.console),
        input_(files),
        salvage_({options.fixChecksums, options.merge, preferredOf(files, options.preferred)}),
        good_(options.output) {
    if (options.output == "-" || options.requests == "-") console_.keepOutputForBytes();
    if (!options.requests.empty()) requests_.emplace(options.requests);
  }

  void run() {
    const std::vector<std::string> problems = read();
    const SalvageResult result = salvage_.finish();
    tell(result);
    if (result.messages.empty()) {
      console_.problem("nothing is whole: nothing is written");
      program_.refuse();
    } else {
      for (const Piece& message : result.messages) good_.write(message.bytes);
      good_.commit();
    }
    if (requests_) writeRequests(result);
    program_.failInputs(problems);
  }

 private:
  std::vector<std::string> read() {
    Complaints complaints(console_);
    LossReport losses(console_);
    Progress progress(console_, "salvage", "messages", 0, input_.size());
    std::vector<std::string> problems = input_.read(
        [&](const InputMessage& message) {
          const Reading reading = readMessage(message.bytes);
          if (isBroken(reading))
            complaints.tell(wordOf(reading.verdict),
                            fmt::format("{}: {}: {}", placeOf(message), wordOf(reading.verdict), reading.note));
          salvage_.add({sourceOf(message.file),
                        message.number,
                        message.offset,
                        {message.bytes.begin(), message.bytes.end()},
                        std::nullopt});
          progress.step(message.bytes.size());
        },
        [&](const InputLoss& loss) {
          losses.add(loss);
          add(loss);
        });
    complaints.finish();
    losses.finish();
    return problems;
  }

  void add(const InputLoss& loss) {
    switch (loss.kind) {
      case InputLoss::Kind::realTime:
        return;
      case InputLoss::Kind::cutShort:
        return salvage_.addFragment(sourceOf(loss.file), loss.beginning);
      case InputLoss::Kind::loose:
      case InputLoss::Kind::brokenFile:
        return salvage_.addLoose(sourceOf(loss.file));
    }
  }

  // The files come in their order, and one can be named twice.
  std::size_t sourceOf(const std::string& file) {
    if (&file != lastFile_) {
      if (lastFile_ != nullptr) ++source_;
      while (files_[source_] != file) ++source_;
      lastFile_ = &file;
    }
    return source_;
  }

  std::string placeIn(const Piece& piece) const {
    return placeOf(InputMessage{piece.number, files_[piece.source], piece.offset, {}});
  }

  void tell(const SalvageResult& result) {
    std::map<Salvaged::State, std::size_t> counts;
    for (const Salvaged& unit : result.units) {
      ++counts[unit.state];
      console_.line(options_.json ? jsonOf(unit, files_) : lineOf(unit, files_));
      tellDoubts(unit);
    }
    tellLeftOut(result);
    for (const ContentId content : result.twice)
      console_.note(fmt::format("{}: kept as a file dump and as a unit, which is stored last", nameOf(content)));
    if (result.isTriggerAdded) console_.note("no file has the write trigger behind its file dumps: one is added");
    if (result.unknown > 0)
      console_.problem(
          fmt::format("{}: nothing says what is lost with that", counted(result.unknown, "broken message")));
    if (counts[Salvaged::State::lost] + result.unknown > 0) program_.refuse();
    console_.note(fmt::format("{} whole, {} completed, {} lost; {} kept", counts[Salvaged::State::whole],
                              counts[Salvaged::State::completed], counts[Salvaged::State::lost],
                              counted(result.messages.size(), "message")));
  }

  // What its user has to know of a unit that is kept.
  void tellDoubts(const Salvaged& unit) {
    const std::string name = nameOrBytes(unit.address);
    for (const std::size_t source : unit.repeatedIn)
      console_.note(fmt::format("{}: more than once in {}: the last one counts", name, displayName(files_[source])));
    if (unit.isMerged)
      console_.problem(fmt::format("{}: merged, and {}", name,
                                   unit.contradicts.empty()
                                       ? "nothing says that it is one sound"
                                       : "captures differ in " + describeBlocks(unit.contradicts)));
    for (const Piece& piece : unit.messages)
      if (piece.wrongChecksum)
        console_.problem(fmt::format("{}: {}: checksum {:02X} corrected to {:02X}", placeIn(piece),
                                     describeContent(readMessage(piece.bytes)), *piece.wrongChecksum,
                                     piece.bytes[piece.bytes.size() - 2]));
  }

  void tellLeftOut(const SalvageResult& result) {
    std::map<std::string, std::size_t> counts;
    for (const Captures::LeftOut& one : result.leftOut) {
      ++counts[one.why];
      console_.detail(fmt::format("{}: left out: {}", placeIn(one.piece), one.why));
    }
    for (const auto& [why, count] : counts)
      console_.note(fmt::format("{} left out: {}", counted(count, "message"), why));
  }

  void writeRequests(const SalvageResult& result) {
    const std::size_t unfetchable = tellUnfetchable(result);
    if (result.requests.empty())
      return console_.note(unfetchable == 0 ? "nothing has to be requested: no requests are written"
                                            : "no requests are written");
    for (const std::vector<std::uint8_t>& request : result.requests) requests_->write(request);
    requests_->commit();
  }

  // Returns how much is lost that no request fetches.
  std::size_t tellUnfetchable(const SalvageResult& result) {
    std::vector<std::string> lost;
    for (const Salvaged& unit : result.units)
      if (unit.state == Salvaged::State::lost && !unit.device)
        lost.push_back(fmt::format("blocks of no known unit, {} and after it", describeAddress(unit.address)));
    if (result.unknown > 0) lost.push_back(fmt::format("what was in {}", counted(result.unknown, "broken message")));
    for (const std::string& what : lost) console_.problem(fmt::format("lost, and no request can fetch it: {}", what));
    return lost.size();
  }

  const Words& files_;
  const SalvageOptions& options_;
  Program& program_;
  Console& console_;
  const Interruptible interruptible_;  // or what is written beside the outputs would stay
  InputStream input_;
  Salvage salvage_;
  OutputFile good_;
  std::optional<OutputFile> requests_;
  const std::string* lastFile_ = nullptr;
  std::size_t source_ = 0;
};

}  // namespace

void salvage(const Words& files, const SalvageOptions& options, Program& program) {
  if (options.output == "-" && options.requests == "-")
    throw Failure(kWrongUsage, "what is whole and requests cannot both go to standard output");
  Salvaging(files, options, program).run();
}

}  // namespace Editor
