#include "explain/BlockReceiver.h"

#include "AddressRows.h"
#include "messages/Messages.h"

namespace Editor {

namespace {

// The edit buffer whose unit has the block.
std::optional<EditBuffer> bufferOf(BulkAddress block) {
  for (const EditBuffer buffer : kSingleEditBuffers)
    if (BDA::listBetween(headerTypeOf(headerOf(buffer))) == BDA::listOf(block.hi)) return buffer;
  return std::nullopt;
}

}  // namespace

BlockReceiver::BlockReceiver() : host_(store_, nullptr) {
  const std::uint8_t on = 1;
  host_.tools().getSystemModel()->getUtility()->set(&on, SystemModel::kReceiveBulk, 0);
}

const ModelSet& BlockReceiver::receive(BulkAddress block, std::span<const std::uint8_t> data) {
  const std::optional<EditBuffer> buffer = bufferOf(block);
  if (!buffer) {
    send(block, data);
    return host_.tools().liveSystem();
  }
  const MidLo header = headerOf(*buffer);
  send({BDA::kHeaderHi, header.mid, header.lo});
  send(block, data);
  send({BDA::kFooterHi, header.mid, header.lo});
  return host_.tools().live(*buffer);
}

void BlockReceiver::send(BulkAddress address, std::span<const std::uint8_t> data) {
  host_.handle(dumpMessage(address, data), BDA::DevicePort_Main);
}

}  // namespace Editor
