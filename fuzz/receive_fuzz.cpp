// Arbitrary sequences of messages into the assistant over the embedded editor: nothing is read or written outside of a
// message, every answer is framed as a message is, and what is refused is what log and screen tell.

#include <cstddef>
#include <cstdint>
#include <span>

#include "EditorNumbers.h"
#include "commands.h"
#include "contents/ContentsWork.h"
#include "contents/Library.h"
#include "contents/ModelStore.h"
#include "exchange/AssistantHost.h"
#include "exchange/Outcome.h"
#include "scratch.h"

namespace {

class EmbeddedInstrument {
 public:
  explicit EmbeddedInstrument(Editor::Library& library) : store_(library), work_(library), host_(store_, &work_) {}

  bool handle(const Commands::Bytes& message, BDA::DevicePortNum port) {
    // As long as the message and no longer, so that a byte read after its end is noticed.
    const Editor::AssistantHost::Effects effects = host_.handle(std::span(message.data(), message.size()), port);
    require(effects.result <= BDA::BulkMsg_RequestSkipped, "a result that does not exist");
    require(effects.report.kind == effects.result, "an observer that was told of something else");
    // What is logged, or shown as an error, is a refusal, but for a message of another device that was not asked for.
    const bool isUnasked = effects.shown.empty() && (effects.result == BDA::BulkMsg_DeviceNumberOff ||
                                                     effects.result == BDA::BulkMsg_WrongDeviceNumber);
    const bool isError = !effects.shown.empty() && effects.shown.back() >= BDA::kCheckSumErrorMessage;
    require(Editor::hasFailed(effects) == ((!effects.log.empty() && !isUnasked) || isError),
            "a refusal that log and screen do not know, or one that they alone know");
    for (const Editor::AssistantHost::Sent& sent : effects.sent) {
      const bool isEcho = sent.bytes == message;
      require(isEcho || (sent.bytes.size() >= 5 && sent.bytes.front() == 0xF0 && sent.bytes.back() == 0xF7),
              "an answer is no message");
    }
    return effects.result == BDA::BulkMsg_BulkDump && effects.log.empty();
  }

  void set(std::uint16_t parameter, std::uint8_t value) {
    host_.tools().getSystemModel()->getUtility()->set(&value, parameter, 1);
  }
  void misbehave(Input& input) { work_.setLoadSaveFlag(input.byte() % 2); }
  void heal() { work_.setLoadSaveFlag(0); }

 private:
  Editor::ModelStore store_;
  Editor::ContentsWork work_;
  Editor::AssistantHost host_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Unchanged between inputs: each runs in a transaction that is taken back.
  static const Scratch scratch("receive_fuzz");
  static Editor::Library library(scratch.library());
  const Editor::Library::Transaction unchanged(library);
  EmbeddedInstrument instrument(library);
  Commands::play(instrument, data, size);
  return 0;
}
