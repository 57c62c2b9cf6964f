#pragma once

// Two libraries, one of them an instrument at the other end of a wire.

#include <gtest/gtest.h>

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
