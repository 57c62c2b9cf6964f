// The verb request: what the library's instrument answers.

#include <fmt/format.h>
#include <unistd.h>

#include <memory>

#include "exchange/Answers.h"
#include "messages/Text.h"
#include "midi/Counted.h"
#include "midi/Hex.h"
#include "output/Complaints.h"
#include "output/OutputFile.h"
#include "output/Progress.h"
#include "output/Trace.h"
#include "output/TranscriptFile.h"
#include "targets/Targets.h"
#include "verbs/Verbs.h"

namespace Editor {

namespace {

// Without a file: bytes to a pipe, hex to a terminal.
void writeAnswers(const std::vector<std::vector<std::uint8_t>>& answers, const std::string& path, Console& console) {
  if (path.empty() && ::isatty(STDOUT_FILENO) != 0) {
    for (const std::vector<std::uint8_t>& message : answers) console.line(formatHex(message));
    return;
  }
  OutputFile file(path.empty() ? "-" : path);
  for (const std::vector<std::uint8_t>& message : answers) file.write(message);
  file.commit();
}

// An empty place is answered by a dump without data, which is no harmless one, nor is a trigger that removes.
void tellErasers(const std::vector<AssistantHost::Sent>& sent, Complaints& notes) {
  constexpr const char* kEraser = "nothing is stored there: this dump has whoever receives it remove what is";
  constexpr const char* kTrigger = "this dump has whoever receives it remove all mixing voices";
  for (const AssistantHost::Sent& message : sent) {
    const Reading reading = readMessage(message.bytes);
    if (!reading.removes && !reading.removesMixingVoices) continue;
    // The footer of an empty mixing voice has no name, its place has.
    const std::optional<std::string> name = nameOf(*reading.address);
    const char* const what = reading.removes ? kEraser : kTrigger;
    notes.note(what, fmt::format("{}: {}", name ? *name : nameOf(*reading.removes), what));
  }
}

}  // namespace

void request(const Words& words, const ExchangeOptions& options, Program& program) {
  const std::vector<BulkAddress> addresses = parseAddresses(words);
  const auto port = BDA::DevicePortNum(options.port);
  if (options.trace == "-" && (options.output.empty() || options.output == "-"))
    throw Failure(kWrongUsage, "answers and trace cannot both go to standard output");
  TranscriptFile transcript({.verb = "request", .readsOnly = true}, program);
  const std::unique_ptr<EmbeddedEditor> editor = program.openToRead();
  transcript.listen(*editor);
  const Interruptible interruptible;  // or what is written beside the output would stay
  Trace trace(options.trace);
  std::vector<std::vector<std::uint8_t>> answers;
  Complaints complaints(program.console);
  std::size_t answered = 0;
  std::uint64_t number = 0;
  for (const BulkAddress address : addresses) {
    Interruptible::check();
    try {
      const std::vector<std::uint8_t> message = editor->requestFor(address);
      const Record record = editor->handle(message, port, ++number);
      trace.add({number, nullptr, std::nullopt}, port, message, record);
      if (const std::string why = whyUnanswered(record); !why.empty()) {
        complaints.tell(escape(why),
                        fmt::format("{}: no answer: {}", nameAndBytes(address, describeAddress(address)), escape(why)));
        record.libraryFailed ? program.endWith(kWrongUsage) : program.refuse();
        continue;
      }
      ++answered;
      tellErasers(record.sent, complaints);
      for (const AssistantHost::Sent& sent : record.sent) answers.push_back(sent.bytes);
    } catch (const LibraryError& error) {
      try {
        trace.commit();
      } catch (const Failure& second) {
        program.console.problem(second.what());
        program.failOutput();
      }
      throw Failure(kWrongUsage, fmt::format("{}: not asked, nor is anything after it: {}", nameAndBytes(address),
                                             escape(error.what())));
    }
  }
  complaints.finish();
  if (answered > 0) writeAnswers(answers, options.output, program.console);
  trace.commit();
  if (answered == 0) throw Failure(program.exitCode(), "no address was answered, nothing is written");
  program.console.note(
      fmt::format("{} answered, {}", counted(answered, "address", "addresses"), counted(answers.size(), "message")));
}

}  // namespace Editor
