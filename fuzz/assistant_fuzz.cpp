// Arbitrary sequences of messages into the assistant alone, while services of its editor fail, answer something odd or
// throw: nothing is thrown further, the observer is told once and last, every answer is framed as a message is, output
// and scheduling are given back, and no temporary model or open file is left. No editor is needed, so it runs
// everywhere.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bda/BulkDumpAssistant.h"
#include "commands.h"
#include "support/RecordingObserver.h"
#include "support/RecordingPlatform.h"

namespace {

class RecordedInstrument {
 public:
  RecordedInstrument() {
    assistant_->registerObserver(&observer_);
    heal();
  }
  ~RecordedInstrument() {
    assistant_.reset();
    log_.take();
  }
  RecordedInstrument(const RecordedInstrument&) = delete;
  RecordedInstrument& operator=(const RecordedInstrument&) = delete;

  bool handle(const Commands::Bytes& message, BDA::DevicePortNum port) {
    const unsigned thrown = record_.thrown();
    const auto length = static_cast<unsigned long>(message.size());
    const BDA::BulkMsgType result = assistant_->receiveBulkDump(message.data(), length, port);
    require(result <= BDA::BulkMsg_RequestSkipped, "a result that does not exist");

    const std::vector<std::string> calls = record_.take();
    const std::vector<BDA::BulkDumpReport> reports = observer_.reports();
    require(reports.size() == 1 && calls.back() == "observed", "an observer that was not told once and last");
    require(reports.front().kind == result, "an observer that was told of something else");

    const auto count = [&](std::string_view call) { return std::count(calls.begin(), calls.end(), call); };
    require(count("thread.attach") == count("thread.detach"), "a thread that stays attached");
    require(count("thread.change(2, 1, 0)") * 2 <= std::count_if(calls.begin(), calls.end(), isChange),
            "a priority that is not restored");
    require(record_.thrown() != thrown || count("suspendOutputMidi") == count("resumeOutputMidi"),
            "an output that stays suspended");

    for (const Testing::FakeBridge::Message& sent : bridge_.messages) {
      const bool isEcho = sent.bytes == message;
      require(isEcho || (sent.bytes.size() >= 5 && sent.bytes.front() == 0xF0 && sent.bytes.back() == 0xF7),
              "an answer is no message");
    }
    bridge_.messages.clear();
    bridge_.pointers.clear();
    manager_.messages.posted.clear();
    const bool isSilent = log_.take().empty();
    return result == BDA::BulkMsg_BulkDump && isSilent;
  }

  void set(std::uint16_t parameter, std::uint8_t value) { tools_.system.utility[parameter] = value; }

  // One of the services that were used so far: at its n-th use from now on, or always.
  void misbehave(Input& input) {
    const auto uses = record_.uses();
    const std::uint8_t which = input.byte();
    const std::uint8_t how = input.byte();
    const std::uint8_t from = input.byte();
    if (uses.empty()) return;
    const auto& [call, used] = *std::next(uses.begin(), std::ptrdiff_t(which % uses.size()));
    if (call == "observed" || call.rfind("thread.", 0) == 0) return;  // only listen
    const unsigned nth = from == 0 ? 0 : used + from;
    if (how % 3 == 0)
      record_.fail(call, nth);
    else if (how % 3 == 1)
      record_.answer(call, input.byte(), nth);
    else
      record_.raise(call, nth);
  }
  void heal() { record_.heal(); }

 private:
  static bool isChange(std::string_view call) { return call.rfind("thread.change", 0) == 0; }

  Testing::Calls record_;
  Testing::TraceScope log_;
  Testing::RecordingThreadListener threads_{record_};
  Testing::FakeEventPortManager manager_{record_};
  Testing::FakeJobTools tools_{record_};
  Testing::FakeWork work_{record_};
  Testing::RecordingObserver observer_{record_};
  std::vector<CMA::JobReceiver*> executerJobs_;
  std::vector<CMA::JobReceiver*> bulkJobs_;
  std::unique_ptr<BDA::BulkDumpAssistant> assistant_ =
      std::make_unique<BDA::BulkDumpAssistant>(&manager_, &executerJobs_, &bulkJobs_, &tools_, &work_, false);
  Testing::FakeBridge bridge_{record_, assistant_.get()};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  {
    RecordedInstrument instrument;
    Commands::play(instrument, data, size);
  }
  require(!::testing::Test::HasFailure(), "a call that an editor does not expect");
  return 0;
}
