// The verb salvage: what is whole in broken captures, as a backup has it, and requests for what is lost.

#include "salvage/Salvage.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <numeric>
#include <utility>

#include "input/FilesInUse.h"
#include "input/InputStream.h"
#include "input/Sources.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/Complaints.h"
#include "output/LossReport.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/SalvageLines.h"
#include "salvage/SalvageJson.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// By its name, or by another name of the same file.
std::optional<std::size_t> preferredOf(const Words& files, const std::string& preferred) {
  if (preferred.empty()) return std::nullopt;
  auto found = std::ranges::find(files, preferred);
  if (found == files.end())
    found = std::ranges::find_if(files, [&](const std::string& file) {
      std::error_code unknown;
      return std::filesystem::equivalent(file, preferred, unknown);
    });
  if (found == files.end())
    throw Failure(kWrongUsage, fmt::format("--prefer {}: it is none of the files", displayName(preferred)));
  return std::size_t(found - files.begin());
}

std::string nameOfOutput(const std::string& file) { return file == "-" ? "standard output" : escape(file); }

class Salvaging {
 public:
  Salvaging(const Words& files, const SalvageOptions& options, Program& program)
      : options_(options),
        program_(program),
        console_(program.console),
        sources_(sourcesOf(files)),
        salvage_({options.fixChecksums, options.merge, preferredOf(files_, options.preferred)}),
        good_(options.output) {
    if (options.output == "-" || options.requests == "-") console_.keepOutputForBytes();
    if (!options.requests.empty()) requests_.emplace(options.requests);
  }

  void run() {
    read();
    const SalvageResult result = salvage_.finish(Interruptible::check);
    tell(result);
    for (const Piece& message : result.messages) good_.write(message.bytes);
    if (requests_)
      for (const std::vector<std::uint8_t>& request : result.requests) requests_->write(request);
    const bool areRequested = requests_ && !result.requests.empty();
    Interruptible::check();  // both are written, or none
    if (!result.messages.empty()) good_.commit();
    if (areRequested) requests_->commit();
    tellWritten(result);
    program_.failInputs(sources_.problems);
  }

 private:
  // Those that may be message files. An output is none of them.
  Sources sourcesOf(const Words& files) {
    Sources sources = findSources(files);
    FilesInUse inUse;
    for (const Source& source : sources.list) {
      if (!source.isNamed) inUse.add(source.path, "this is also an input");
      if (source.isLibrary && !source.isNamed)
        ++sources.ofOtherKinds;
      else
        files_.push_back(source.path);
    }
    std::erase_if(sources.list, [](const Source& source) { return source.isLibrary && !source.isNamed; });
    inUse.addOutput(options_.output, "-o");
    if (!options_.requests.empty()) inUse.addOutput(options_.requests, "--requests");
    return sources;
  }

  void read() {
    // What is named has to be there and of messages, before anything is read.
    for (const Source& source : sources_.list)
      if (source.isNamed && source.size != 0) InputStream({source.path});
    const auto size = std::transform_reduce(sources_.list.begin(), sources_.list.end(), std::uint64_t{0}, std::plus(),
                                            [](const Source& source) { return source.size; });
    Complaints complaints(console_);
    LossReport losses(console_);
    Progress progress(console_, "salvage", "message", 0, size);
    for (const Source& source : sources_.list) {
      try {
        readFile(source, complaints, losses, progress);
      } catch (const NotMessages& failure) {
        passOver(sources_, source, failure);
      } catch (const Failure& failure) {
        if (source.isNamed || failure.code() != kUnusableInput) throw;
        sources_.problems.emplace_back(failure.what());
      }
      ++file_;
    }
    complaints.finish();
    losses.finish();
    if (!hasFile_) throw Failure(kUnusableInput, "no file of messages is in the folders");
  }

  void readFile(const Source& source, Complaints& complaints, LossReport& losses, Progress& progress) {
    InputStream input({source.path});
    hasFile_ = true;
    const std::uint64_t before = messages_;  // they are numbered through all files
    const std::vector<std::string> problems = input.read(
        [&](const InputMessage& message) {
          messages_ = before + message.number;
          const Reading reading = readMessage(message.bytes);
          if (isBroken(reading))
            complaints.tell(
                wordOf(reading.verdict),
                fmt::format("{}: {}", placeOf({messages_, message.file, message.offset, {}}), describeFault(reading)));
          salvage_.add({file_, messages_, message.offset, {message.bytes.begin(), message.bytes.end()}, std::nullopt});
          progress.step(message.bytes.size());
        },
        [&](const InputLoss& loss) {
          losses.add(loss);
          salvage_.lose(file_, loss);
        });
    sources_.problems.insert(sources_.problems.end(), problems.begin(), problems.end());
  }

  std::string placeIn(const Piece& piece) const {
    return placeOf(InputMessage{piece.number, files_[piece.source], piece.offset, {}});
  }

  void tell(const SalvageResult& result) {
    std::map<Salvaged::State, std::size_t> counts;
    for (const Salvaged& unit : result.units) {
      ++counts[unit.state];
      console_.line(options_.json ? jsonLine(toJson(unit, files_)) : lineOf(unit, files_));
      tellDoubts(unit);
    }
    tellLeftOut(result);
    for (const ContentId content : result.twice)
      console_.note(fmt::format("{}: kept as a file dump and as a unit, which is stored last", nameOf(content)));
    for (const AddedTrigger& added : result.addedTriggers)
      console_.note(fmt::format("device {}: {}: one is added", added.device,
                                added.isInsteadOfAnother
                                    ? "no file has a write trigger behind its file dumps that removes nothing"
                                    : "no file has the write trigger behind its file dumps"));
    for (const Piece& message : result.messages)
      if (readMessage(message.bytes).role == Role::trigger) tellCorrection(message);
    if (result.unknown > 0)
      console_.problem(
          fmt::format("{}: nothing says what is lost with that", counted(result.unknown, "broken message")));
    if (!result.isNothingLost()) program_.refuse();
    std::string summary = fmt::format("{} whole, {} completed, {} lost; {} kept", counts[Salvaged::State::whole],
                                      counts[Salvaged::State::completed], counts[Salvaged::State::lost],
                                      counted(result.messages.size(), "message"));
    if (sources_.ofOtherKinds != 0)
      summary += "; passed over: " + counted(sources_.ofOtherKinds, "file of another kind", "files of other kinds");
    if (result.notInFull > 0) summary += fmt::format("; {} not read in full", counted(result.notInFull, "file"));
    console_.note(summary);
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
    for (const Piece& piece : unit.messages) tellCorrection(piece);
    for (const NotTaken& other : unit.notTaken)
      console_.problem(fmt::format("{}: {}, and that is not taken: {}", name, describe(other, files_),
                                   describeBlocks(other.differs)));
  }

  void tellCorrection(const Piece& piece) {
    if (!piece.wrongChecksum) return;
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

  void tellWritten(const SalvageResult& result) {
    const std::string requests =
        result.requests.empty()
            ? ""
            : fmt::format("{} in {}", counted(result.requests.size(), "request"), nameOfOutput(options_.requests));
    const bool areRequested = requests_ && !result.requests.empty();
    if (result.messages.empty()) {
      console_.problem(fmt::format("nothing is whole: {} is not written{}", nameOfOutput(options_.output),
                                   areRequested ? "; " + requests : ""));
      program_.refuse();
    } else if (areRequested) {
      console_.note(requests);
    }
    if (requests_) tellRequests(result);
  }

  void tellRequests(const SalvageResult& result) {
    const std::size_t unfetchable = tellUnfetchable(result);
    if (result.requests.empty())
      console_.note(unfetchable == 0 ? "nothing has to be requested: no requests are written"
                                     : "no requests are written");
    const auto isLostFileDump = [](const Salvaged& unit) {
      const std::optional<BlockFacts> block = findBlock(unit.address);
      return unit.state == Salvaged::State::lost && unit.device && block && block->role == Role::fileDump;
    };
    if (std::ranges::none_of(result.units, isLostFileDump)) return;
    console_.note(
        fmt::format("file dumps are answered without the trigger that has them written: "
                    "bda salvage {}ANSWERS -o FILE adds it",
                    result.messages.empty() ? "" : nameOfOutput(options_.output) + " "));
  }

  // Returns how much is lost that no request fetches.
  std::size_t tellUnfetchable(const SalvageResult& result) {
    std::vector<std::string> lost;
    for (const Salvaged& unit : result.units)
      if (unit.state == Salvaged::State::lost && !unit.device)
        lost.push_back(fmt::format("blocks of no known unit, {} and after it", describeAddress(unit.address)));
    if (result.unknown > 0) lost.push_back(fmt::format("what was in {}", counted(result.unknown, "broken message")));
    if (result.notInFull > 0) lost.push_back(fmt::format("what was not read of {}", counted(result.notInFull, "file")));
    for (const std::string& what : lost) console_.problem(fmt::format("lost, and no request can fetch it: {}", what));
    return lost.size();
  }

  const SalvageOptions& options_;
  Program& program_;
  Console& console_;
  const Interruptible interruptible_;  // or what is written beside the outputs would stay
  Words files_;                        // the sources by their names
  Sources sources_;
  Salvage salvage_;
  OutputFile good_;
  std::optional<OutputFile> requests_;
  std::size_t file_ = 0;  // which of them is read
  bool hasFile_ = false;
  std::uint64_t messages_ = 0;
};

}  // namespace

void salvage(const Words& files, const SalvageOptions& options, Program& program) {
  if (options.output == "-" && options.requests == "-")
    throw Failure(kWrongUsage, "what is whole and requests cannot both go to standard output");
  Salvaging(files, options, program).run();
}

}  // namespace Editor
