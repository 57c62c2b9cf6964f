// The verb find: contents of libraries and message files by what is asked of them.

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <numeric>

#include "find/FileCandidates.h"
#include "find/FoundJson.h"
#include "find/Search.h"
#include "input/InputFile.h"
#include "input/Sources.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "models/ModelJson.h"
#include "output/Complaints.h"
#include "output/FoundLines.h"
#include "output/Progress.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

std::uint64_t sizeOf(const std::vector<Source>& sources) {
  return std::accumulate(sources.begin(), sources.end(), std::uint64_t{0},
                         [](std::uint64_t sum, const Source& source) { return sum + source.size; });
}

class Finding {
 public:
  Finding(const Words& terms, const FindOptions& options, Program& program)
      : options_(options),
        program_(program),
        console_(program.console),
        complaints_(program.console),
        buffers_(options.editBuffers ? EditBuffers::included : EditBuffers::leftOut),
        names_(program.parameterNames()) {
    // What is used wrongly is told before anything is opened.
    for (const std::string& term : terms) wanted_.names.emplace_back(term);
    if (!options.kind.empty()) wanted_.kind = contentKindNamed(options.kind);
    for (const std::string& condition : options.conditions)
      wanted_.conditions.emplace_back(condition, names_, wanted_.kind);
    wanted_.onlyFavourites = options.favourite;
    wanted_.duplicates = options.duplicates;
    wanted_.hashes = options.json;
    const std::optional<Target> sameAs = parseAddress(options.sameAs);
    const std::optional<Target> like = parseAddress(options.like);
    sources_ = findSources(options.sources);
    for (const Source& source : sources_.list)
      if (source.isNamed && source.size != 0 && !source.isLibrary) InputStream({source.path});
    if (sameAs) wanted_.sameAs = candidateAt(library(), *sameAs);
    if (like) wanted_.like = candidateAt(library(), *like);
  }

  void run() {
    Search search(std::move(wanted_), [this](const Found& found) { tell(found); });
    if (options_.sources.empty()) {
      Progress progress(console_, "find", "content", 0);
      searchLibrary({program_.libraryFile(), true}, library(), search, progress);
    } else {
      Progress progress(console_, "find", "content", 0, sizeOf(sources_.list));
      for (const Source& source : sources_.list) searchSource(source, search, progress);
    }
    const std::uint64_t found = search.finish();
    complaints_.finish();
    summarise(found);
    if (found == 0) program_.refuse();
    program_.failInputs(sources_.problems);
  }

 private:
  // Nothing: there is none.
  static std::optional<Target> parseAddress(const std::string& text) {
    if (text.empty()) return std::nullopt;
    Target target = parseTarget(text);
    requireCandidate(target);
    return target;
  }

  // The library of the addresses.
  EmbeddedEditor& library() {
    if (!library_) library_ = program_.openToRead();
    return *library_;
  }

  bool isTheLibrary(const std::string& path) const {
    std::error_code unknown;
    return library_ && std::filesystem::equivalent(path, program_.libraryFile(), unknown);
  }

  // What in a folder is of another kind is passed over, what cannot be read is told: the others are searched.
  void searchSource(const Source& source, Search& search, Progress& progress) {
    try {
      if (source.isLibrary)
        searchLibrary(source, isTheLibrary(source.path) ? library() : *program_.openToRead(source.path), search,
                      progress);
      else
        searchFile(source, search, progress);
    } catch (const NotMessages& failure) {
      passOver(sources_, source, failure);
    } catch (const Failure& failure) {
      if (source.isNamed || failure.code() != kUnusableInput) throw;
      std::error_code unknown;
      if (!std::filesystem::exists(source.path, unknown)) return;  // it went while the others were searched
      sources_.problems.emplace_back(failure.what());
    }
  }

  void searchLibrary(const Source& source, EmbeddedEditor& editor, Search& search, Progress& progress) {
    const Search::Source searched{source.path, &editor == library_.get()};
    const auto look = [&](Candidate candidate) {
      ++looked_;
      const std::size_t size = candidate.bytes.size();
      search.look(searched, std::move(candidate));
      progress.step(size);
    };
    const auto tellDamaged = [&](const std::string& place, const std::string& why) {
      const std::string where = options_.sources.empty() ? "" : displayName(source.path) + ": ";
      complaints_.tell("damaged", fmt::format("{}{}: left out: {} (bda check tells more)", where, place, why));
      program_.refuse();
    };
    forEachCandidate(editor, buffers_, look, tellDamaged);
  }

  void searchFile(const Source& source, Search& search, Progress& progress) {
    const InputFile input(source.path, console_);
    if (!input.isReadInFull()) {
      ++notInFull_;
      program_.refuse();
    }
    std::vector<FileMessage> messages;
    messages.reserve(input.countMessages());
    input.forEachMessage([&](const InputMessage& message) { messages.push_back({message.number, message.bytes}); });
    if (!receiver_) receiver_.emplace();
    std::uint64_t passed = 0;
    const auto passUpTo = [&](std::uint64_t bytes) {
      progress.pass(std::max(bytes, passed) - passed);
      passed = std::max(bytes, passed);
    };
    FileContents contents = receiver_->receive(messages, buffers_, [&](std::size_t done) {
      passUpTo(std::uint64_t(double(source.size) * double(done) / double(messages.size())));
    });
    broken_ += contents.broken;
    for (Candidate& candidate : contents.whole) {
      ++looked_;
      search.look({source.path}, std::move(candidate));
      progress.step(0);
    }
    passUpTo(source.size);
  }

  void tell(const Found& found) {
    Interruptible::check();
    if (options_.json) return console_.line(jsonLine(toJson(found, names_)));
    if (found.group && *found.group != group_) {
      group_ = *found.group;
      console_.line(fmt::format("group {}:", group_));
    }
    console_.line((found.group ? "  " : "") + lineOf(found, !options_.sources.empty(), names_));
  }

  void summarise(std::uint64_t found) {
    std::string text =
        fmt::format("{} found in {}", found == 0 ? "nothing" : std::to_string(found), counted(looked_, "content"));
    if (broken_ != 0)
      text += "; left out: " +
              counted(broken_, "unit that is not whole or never written", "units that are not whole or never written");
    if (notInFull_ != 0) text += fmt::format("; {} not read in full", counted(notInFull_, "file"));
    if (sources_.ofOtherKinds != 0)
      text += "; passed over: " + counted(sources_.ofOtherKinds, "file of another kind", "files of other kinds");
    console_.note(text);
  }

  const FindOptions& options_;
  Program& program_;
  Console& console_;
  Complaints complaints_;
  const EditBuffers buffers_;
  const ParameterNames names_;
  Wanted wanted_;
  Sources sources_;
  std::unique_ptr<EmbeddedEditor> library_;
  std::optional<FileReceiver> receiver_;
  std::uint64_t looked_ = 0;
  std::uint64_t broken_ = 0;     // units, which are only counted
  std::uint64_t notInFull_ = 0;  // files that are not built as they must be
  std::uint64_t group_ = 0;      // that was told last
};

}  // namespace

void find(const Words& terms, const FindOptions& options, Program& program) {
  const Interruptible interruptible;
  Finding(terms, options, program).run();
}

}  // namespace Editor
