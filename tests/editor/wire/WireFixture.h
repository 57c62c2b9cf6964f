#pragma once

// Two libraries, one of them an instrument at the other end of a wire.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "editor/messages/BulkMessages.h"
#include "wire/Instrument.h"
#include "wire/LoopPort.h"

namespace Editor {

struct NobodyIsTold final : Instrument::Observer {
  void handled(std::uint64_t /*number*/, std::uint64_t /*offset*/, std::span<const std::uint8_t> /*message*/,
               const Record& /*record*/) override {}
  void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason /*reason*/) override {}
  void tooLong(std::uint64_t /*number*/, std::size_t /*length*/) override {}
};

// The unit that a header begins, every data byte `value`.
inline std::vector<Bytes> unitOf(BulkAddress header, BDA::List list, std::uint8_t value = 0) {
  std::vector<Bytes> messages{dump(header)};
  for (const BulkAddress block : blocksOf(list)) messages.push_back(blockDump(block, value));
  messages.push_back(dump(footerOf(header)));
  return messages;
}

inline void receive(EmbeddedEditor& editor, const std::vector<Bytes>& messages) {
  std::uint64_t number = 0;
  for (const Bytes& message : messages)
    ASSERT_NE(editor.handle(message, BDA::DevicePort_Main, ++number).outcome, Outcome::refused) << number;
}

// What it answers when it is asked for that, on no wire.
inline std::vector<Bytes> answerOf(EmbeddedEditor& editor, BulkAddress asked) {
  std::vector<Bytes> answer;
  for (const AssistantHost::Sent& sent : editor.handle(editor.requestFor(asked), BDA::DevicePort_Main, 1).sent)
    answer.push_back(sent.bytes);
  return answer;
}

// Takes so many bytes, and then none; time goes on while it is waited for.
class StuckPort final : public Port {
 public:
  explicit StuckPort(std::size_t bytes) : left_(bytes) {}
  const std::string& name() const override { return name_; }
  Pacer::Takes takes() const override { return Pacer::Takes::bytes; }
  Pace defaultPace() const override { return kNoPace; }
  WireTime now() override { return now_; }
  std::size_t send(std::span<const std::uint8_t> bytes) override {
    const std::size_t count = std::min(left_, bytes.size());
    left_ -= count;
    return count;
  }
  std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool /*wantsToSend*/) override {
    now_ = std::max(now_, until.value_or(now_));
    return {};
  }

 private:
  const std::string name_ = "stuck";
  std::size_t left_;
  WireTime now_{};
};

// Calls visit(list, isRare, seed) for each fault at each of four rates, of which those up to 0.5 % are rare, until one
// fails.
template <typename Visit>
void forEachFault(Visit visit) {
#ifdef BDA_SAMPLED
  constexpr std::uint64_t kSeeds = 1;
#else
  constexpr std::uint64_t kSeeds = 16;
#endif
  for (const std::string& name : faultNames())
    for (const auto& [rate, isRare] : {std::pair("0.1%", true), {"0.5%", true}, {"5%", false}, {"20%", false}})
      for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
        SCOPED_TRACE(name + "=" + rate + ", seed " + std::to_string(seed));
        visit(name + "=" + rate, isRare, seed);
        if (testing::Test::HasFailure()) return;
      }
}

}  // namespace Editor
