// The verb backup: the whole library as messages.

#include <fmt/format.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>

#include "compare/Backup.h"
#include "messages/Text.h"
#include "models/ModelJson.h"
#include "output/Complaints.h"
#include "output/DifferenceLines.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

class BackingUp {
 public:
  BackingUp(const std::string& output, const std::string& manifest, Program& program)
      : program_(program), editor_(program.openToRead()), file_(output), complaints_(program.console) {
    if (!manifest.empty()) manifest_.emplace(manifest);
    if (editor_->library().isYetEmpty()) throw Failure(kUnusableInput, "a backup of nothing: nothing is written");
    if (output == "-" || manifest == "-") program.console.keepOutputForBytes();
  }

  void run() {
    Backup backup(*editor_);
    Progress progress(program_.console, "backup", "item", backup.count());
    backup.run({.message = [&](std::span<const std::uint8_t> message) { file_.write(message); },
                .asked = [&](std::uint64_t bytes) { progress.step(bytes); },
                .leftOut = [&](const std::string& name, const std::string& why) { leaveOut(name, why); }});
    complaints_.finish();
    if (backup.messages() == 0) throw Failure(kRefused, "nothing could be backed up, nothing is written");
    try {
      backup.visitLost([&](const Difference& lost) { tellLoss(lost); });
    } catch (const LibraryError& error) {
      complain(fmt::format("the backup could not be compared with the library: {}", escape(error.what())));
    }
    file_.commit();
    if (manifest_) {
      manifest_->write(jsonLine(backup.manifest()) + "\n");
      manifest_->commit();
    }
    program_.console.note(fmt::format("{} of {} items in {} messages, {} bytes", backup.done(),
                                      backup.count() + backup.unaddressed(), backup.messages(), backup.bytes()));
  }

 private:
  void complain(const std::string& text) {
    program_.console.problem(text);
    program_.refuse();
  }

  void leaveOut(const std::string& name, const std::string& why) {
    complaints_.tell("not in the backup: " + escape(why), fmt::format("{}: not in the backup: {}", name, escape(why)));
    program_.refuse();
  }

  void tellLoss(const Difference& lost) {
    constexpr std::size_t kMostDetails = 3;
    if (lost.kind == Difference::Kind::onlyInFirst || lost.kind == Difference::Kind::onlyInSecond)
      return complain(fmt::format("{}: not in the backup: no message carries it", lost.target));
    std::vector<std::string> details = detailsOf(lost);
    if (details.size() > kMostDetails) {
      const std::size_t more = details.size() - kMostDetails;
      details.resize(kMostDetails);
      details.push_back(fmt::format("and {} more", more));
    }
    complain(
        fmt::format("{}: no message carries this (here | in the backup): {}", lost.target, fmt::join(details, ", ")));
  }

  Program& program_;
  const Interruptible interruptible_;  // or what is written beside the output would stay
  const std::unique_ptr<EmbeddedEditor> editor_;
  OutputFile file_;
  std::optional<OutputFile> manifest_;
  Complaints complaints_;
};

}  // namespace

void backup(const std::string& output, const std::string& manifest, Program& program) {
  if (output == "-" && manifest == "-")
    throw Failure(kWrongUsage, "backup and manifest cannot both go to standard output");
  program.requireLibrary(kUnusableInput);
  BackingUp(output, manifest, program).run();
}

}  // namespace Editor
