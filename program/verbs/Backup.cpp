// The verb backup: the whole library as messages.

#include <fmt/format.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "compare/Compare.h"
#include "exchange/Answers.h"
#include "messages/Text.h"
#include "models/ModelJson.h"
#include "output/Complaints.h"
#include "output/DifferenceLines.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "targets/BackupPlan.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// Asks for everything in one state of the library. Each message is also received by a library in memory: what that does
// not have in the end, the backup does not carry.
class BackingUp {
 public:
  BackingUp(const std::string& output, const std::string& manifest, Program& program)
      : program_(program), editor_(program.openToRead()), file_(output), complaints_(program.console) {
    if (!manifest.empty()) manifest_.emplace(manifest);
    if (editor_->library().isYetEmpty()) throw Failure(kUnusableInput, "a backup of nothing: nothing is written");
    if (output == "-" || manifest == "-") program.console.keepOutputForBytes();
  }

  void run() {
    using Access = Library::Transaction::Access;
    const EmbeddedEditor::Run oneState(*editor_, Access::Read);
    const EmbeddedEditor::Run proof(proof_, Access::Write, EmbeddedEditor::Run::Devices::any);
    const BackupPlan plan = planBackup(*editor_);
    const std::size_t count = plan.fileDumps.size() + plan.units.size() + plan.system.size() + plan.favourites.size();
    Progress progress(program_.console, "backup", "item", count);
    std::size_t done = 0;
    const auto add = [&](const std::vector<BackupPlan::Item>& items) {
      for (const BackupPlan::Item& item : items) {
        const std::uint64_t bytes = back(item);
        if (bytes > 0) ++done;
        progress.step(bytes);
      }
    };
    for (const std::string& name : plan.unaddressed) leaveOut(name, "no address carries it");
    add(plan.fileDumps);
    if (done > 0) back({kWriteTrigger, nameOrBytes(kWriteTrigger), std::nullopt});
    add(plan.units);
    add(plan.system);
    add(plan.favourites);
    complaints_.finish();
    if (messages_ == 0) throw Failure(kRefused, "nothing could be backed up, nothing is written");
    try {
      tellWhatIsLost();
    } catch (const LibraryError& error) {
      complain(fmt::format("the backup could not be compared with the library: {}", escape(error.what())));
    }
    file_.commit();
    if (manifest_) {
      manifest_->write(jsonLine(manifestOf(*editor_, plan, leftOut_)) + "\n");
      manifest_->commit();
    }
    program_.console.note(fmt::format("{} of {} items in {} messages, {} bytes", done, count + plan.unaddressed.size(),
                                      messages_, bytes_));
  }

 private:
  void complain(const std::string& text) {
    program_.console.problem(text);
    program_.refuse();
  }

  void leaveOut(const std::string& name, const std::string& why) {
    complaints_.tell("not in the backup: " + escape(why), fmt::format("{}: not in the backup: {}", name, escape(why)));
    program_.refuse();
    leftOut_.insert(name);
  }

  // The number of bytes written.
  std::uint64_t back(const BackupPlan::Item& item) {
    const Record record = editor_->handle(editor_->requestFor(item.address), BDA::DevicePort_Main, ++number_);
    if (const std::string why = whyUnanswered(record); !why.empty()) {
      leaveOut(item.name, why);
      return 0;
    }
    for (const AssistantHost::Sent& sent : record.sent) {
      const Record received = proof_.handle(sent.bytes, BDA::DevicePort_Main, ++number_);
      if (received.outcome != Outcome::refused) continue;
      leaveOut(item.name, fmt::format("it would not be restored: {}", received.reason));
      return 0;
    }
    std::uint64_t bytes = 0;
    for (const AssistantHost::Sent& sent : record.sent) {
      file_.write(sent.bytes);
      bytes += sent.bytes.size();
    }
    messages_ += record.sent.size();
    bytes_ += bytes;
    return bytes;
  }

  void tellWhatIsLost() {
    compareLibraries(*editor_, proof_, Reception::ignored, [&](const Difference& lost) {
      if (!leftOut_.contains(lost.target)) tellLoss(lost);
    });
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
  EmbeddedEditor proof_;
  std::uint64_t number_ = 0;
  std::uint64_t messages_ = 0;
  std::uint64_t bytes_ = 0;
  std::set<std::string> leftOut_;
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
