#pragma once

// Blocks whose results a test decides: an executer that takes the place of a block's own.

#include <map>
#include <new>
#include <string>
#include <vector>

#include "BulkExecuter.h"
#include "BulkTable.h"
#include "support/RecordingPlatform.h"

namespace Testing {

// Recorded: "block.receive(00 40 00, <data>)", "block.dump(00 40 00)"; both calls can be scripted to throw.
class ScriptedExecuter : public BDA::BulkExecuter {
 public:
  ScriptedExecuter(Calls& calls, CMA::JobTools* jobTools)
      : BulkExecuter(nullptr, jobTools, nullptr, &sharedState_, 0), calls_(calls) {}

  BDA::BDAErr setBulkDumpMessage(const std::uint8_t* data, std::uint32_t length) override {
    calls_.use("block.receive", 1, 0, [&] { return "block.receive(" + here() + ", " + textOf(data, length) + ")"; });
    return result;
  }
  BDA::BDAErr getBulkDumpMessage(std::vector<Bytes>& built) override {
    calls_.use("block.dump", 1, 0, [&] { return "block.dump(" + here() + ")"; });
    built = messages;
    const auto own = resultOf.find(here());
    return own == resultOf.end() ? result : own->second;
  }

  BDA::BDAErr result = BDA::BDA_OK;
  std::map<std::string, BDA::BDAErr> resultOf;  // of single blocks, by address, in the dump direction
  std::vector<Bytes> messages;

 private:
  std::string here() const { return textOf({getAddress().getHi(), getAddress().getMid(), getAddress().getLo()}); }

  Calls& calls_;
  BDA::ExecuterSharedState sharedState_;
};

// Puts `executer` behind the block of that address. Opens the header, if it is one's.
inline void replaceExecuter(BDA::BulkTable& table, std::string_view address, BDA::BulkExecuter& executer) {
  const Bytes bytes = bytesOf(address);
  BDA::BulkBlock* const block = table.findBulkBlock({bytes[0], bytes[1], bytes[2]});
  ASSERT_NE(block, nullptr) << address;
  const std::uint32_t type = block->getBlockType();
  const std::uint8_t index = block->getBlockIndex();
  block->~BulkBlock();
  new (block) BDA::BulkBlock(type, index, &executer, bytes[0], bytes[1], bytes[2]);
}

}  // namespace Testing
