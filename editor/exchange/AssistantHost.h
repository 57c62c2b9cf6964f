#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bda/BulkDumpObserver.h"
#include "models/EditorJobTools.h"

namespace Editor {

// A job of the assistant, which an editor runs to send an edit buffer.
struct BulkJob {
  const char* name;
  EditBuffer buffer;
};
// In the order in which the assistant gives them to its editor.
inline constexpr std::array<BulkJob, 5> kBulkJobs{{
    {"voice", EditBuffer::normalVoice},
    {"drum", EditBuffer::drumVoice},
    {"performance", EditBuffer::performance},
    {"mix", EditBuffer::multi},
    {"master", EditBuffer::master},
}};

// An assistant with an editor around it, over any store of contents: hands messages to it and tells what it did. One
// thread uses it.
class AssistantHost {
 public:
  struct Sent {
    BDA::DevicePortNum port;
    std::vector<std::uint8_t> bytes;
  };

  // What one message did.
  struct Effects {
    BDA::BulkMsgType result = BDA::BulkMsg_NotSysEx;
    BDA::BulkDumpReport report;        // how it fared, as far as the assistant knows
    std::vector<std::uint16_t> shown;  // ids given to the message model, in order
    std::vector<std::string> log;      // the tracer's texts as they came
    std::vector<Sent> sent;            // echo, notices and answers, in order
  };

  // `store` and `work`, which may be null, outlive this object. Throws what EditorJobTools throws.
  AssistantHost(ContentStore& store, ContSrv::Work* work);
  AssistantHost(const AssistantHost&) = delete;
  AssistantHost& operator=(const AssistantHost&) = delete;
  ~AssistantHost();

  EditorJobTools& tools();
  const EditorJobTools& tools() const;

  // One complete message, F0 to F7.
  Effects handle(std::span<const std::uint8_t> message, BDA::DevicePortNum port);
  // One of kBulkJobs, as an editor runs it. It leaves the receive-bulk switch as it was.
  Effects run(std::size_t job);

 private:
  Effects watch(const std::function<void()>& act);

  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace Editor
