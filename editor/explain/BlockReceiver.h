#pragma once

#include <cstdint>
#include <span>

#include "exchange/AssistantHost.h"
#include "messages/AddressNames.h"
#include "models/ScratchStore.h"

namespace Editor {

// An instrument with nothing in it that receives one block and shows what it made of it.
class BlockReceiver {
 public:
  BlockReceiver();

  // The models of the block's unit, fresh but for what these data bytes set: modelsAround() the block, filled. Valid
  // until the next call.
  const ModelSet& receive(BulkAddress block, std::span<const std::uint8_t> data);

 private:
  void send(BulkAddress address, std::span<const std::uint8_t> data = {});

  ScratchStore store_;
  AssistantHost host_;
};

}  // namespace Editor
