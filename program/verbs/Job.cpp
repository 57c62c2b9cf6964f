// The verb job: a job of the assistant, run as its editor would, and what it sends to an instrument.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <memory>

#include "exchange/Answers.h"
#include "messages/Nearest.h"
#include "messages/Text.h"
#include "output/TranscriptFile.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

std::size_t jobOf(const std::string& name) {
  const auto found = std::ranges::find(kBulkJobs, name, &BulkJob::name);
  if (found != kBulkJobs.end()) return std::size_t(found - kBulkJobs.begin());
  std::vector<std::string> names;
  names.reserve(kBulkJobs.size());
  for (const BulkJob& job : kBulkJobs) names.emplace_back(job.name);
  throw Failure(kWrongUsage, fmt::format("\"{}\" is no job: expected one of {}{}", escape(name), fmt::join(names, ", "),
                                         didYouMean(name, names)));
}

}  // namespace

void job(const std::string& name, const SendOptions& options, Program& program) {
  const std::size_t job = jobOf(name);
  const auto read = [&](TranscriptFile& transcript) {
    const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
    transcript.listen(*editor);
    const Record record = editor->run(job);
    if (const std::string why = whyUnanswered(record); !why.empty())
      throw Failure(record.libraryFailed ? kWrongUsage : kRefused,
                    fmt::format("{}: nothing is sent: {}", nameOrBytes(*record.reading.address), escape(why)));
    BatchBuilder builder;
    for (const AssistantHost::Sent& sent : record.sent) builder.add(sent.bytes);
    return builder.finish();
  };
  send("job", read, options, program);
}

}  // namespace Editor
