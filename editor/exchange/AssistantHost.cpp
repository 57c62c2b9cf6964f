#include "exchange/AssistantHost.h"

#include <cstring>
#include <utility>

#include "bda/platform/Basekit/Tracer.h"
#include "bda/platform/CMA/MessageModelInterface.h"
#include "bda/platform/EvtSrv/EventPort.h"
#include "bda/platform/EvtSrv/EventPortManager.h"

namespace Editor {

namespace {

// The editor's screen: keeps what the assistant shows.
class Screen final : public EvtSrv::EventPortManager, private EvtSrv::EventPort {
 public:
  explicit Screen(ContSrv::Work* work) : work_(work) {}

  std::vector<std::uint16_t> take() { return std::exchange(shown_, {}); }

  EvtSrv::EventPort* openPort(const char* modelName, unsigned char /*channel*/) override {
    return std::strcmp(modelName, CMA::BDA::ModelName) == 0 ? this : nullptr;
  }
  ContSrv::Work* getContentsWork() override { return work_; }

 private:
  void post(std::uint16_t messageId) override { shown_.push_back(messageId); }
  void flush(int /*mode*/) override {}

  ContSrv::Work* work_;
  std::vector<std::uint16_t> shown_;
};

// The editor's MIDI outputs.
class Outputs final : public BDA::BulkDumpBridge {
 public:
  Outputs() : BulkDumpBridge(nullptr) {}

  std::vector<AssistantHost::Sent> take() { return std::exchange(sent_, {}); }

  void sendSysEx(const unsigned char* message, std::uint32_t length, BDA::DevicePortNum port) override {
    sent_.push_back({port, {message, message + length}});
  }

 private:
  std::vector<AssistantHost::Sent> sent_;
};

// Hears how messages fared.
class Reports final : public BDA::BulkDumpObserver {
 public:
  BDA::BulkDumpReport last;

  void bulkDumpHandled(const BDA::BulkDumpReport& report) override { last = report; }
};

// Hears the tracer as long as it lives.
class Listener final : public Basekit::TracerSink {
 public:
  explicit Listener(std::vector<std::string>& log) : log_(log), before_(Basekit::Tracer::setThreadSink(this)) {}
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() override { Basekit::Tracer::setThreadSink(before_); }

  void write(const char* text, std::size_t length) noexcept override { log_.emplace_back(text, length); }

 private:
  std::vector<std::string>& log_;
  Basekit::TracerSink* before_;
};

}  // namespace

struct AssistantHost::Parts {
  Parts(ContentStore& store, ContSrv::Work* work)
      : screen(work), tools(store, &screen), assistant(&screen, &receivers, &jobs, &tools, work, false) {
    assistant.registerBDABridge(&outputs);
    assistant.registerObserver(&reports);
  }

  Screen screen;
  Outputs outputs;
  Reports reports;
  EditorJobTools tools;
  std::vector<CMA::JobReceiver*> receivers;
  std::vector<CMA::JobReceiver*> jobs;
  BDA::BulkDumpAssistant assistant;
};

AssistantHost::AssistantHost(ContentStore& store, ContSrv::Work* work) : parts_(new Parts(store, work)) {}

AssistantHost::~AssistantHost() { parts_->assistant.registerBDABridge(nullptr); }

EditorJobTools& AssistantHost::tools() { return parts_->tools; }
const EditorJobTools& AssistantHost::tools() const { return parts_->tools; }

AssistantHost::Effects AssistantHost::handle(std::span<const std::uint8_t> message, BDA::DevicePortNum port) {
  return watch([&] { parts_->assistant.receiveBulkDump(message.data(), message.size(), port); });
}

// Where the device number is off it makes no request, and nothing is reported.
AssistantHost::Effects AssistantHost::run(std::size_t job) {
  parts_->reports.last = {};
  parts_->reports.last.kind = BDA::BulkMsg_DeviceNumberOff;
  parts_->reports.last.outcome = BDA::BulkDumpOutcome::refused;
  parts_->reports.last.refusal = BDA::BulkDumpRefusal::deviceNumberOff;
  return watch([&] { parts_->jobs.at(job)->execEvent(nullptr, nullptr); });
}

AssistantHost::Effects AssistantHost::watch(const std::function<void()>& act) {
  Effects effects;
  {
    const Listener listener(effects.log);
    act();
  }
  effects.report = parts_->reports.last;
  effects.result = effects.report.kind;
  effects.shown = parts_->screen.take();
  effects.sent = parts_->outputs.take();
  return effects;
}

}  // namespace Editor
