#pragma once

#include "BulkExecuter.h"

namespace BDA {

// The block that opens a dump of a voice, multi, performance, master or remote setting: an address, no data. Received,
// it opens the temporary models that the blocks after it write; dumped, it loads the content that they read, or leaves
// the edit buffer in place. In both directions it tells them the voice's number.
class BulkExecuterHeader : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;

  BDAErr getBulkDumpMessageImplement(std::vector<std::uint8_t>& message) override;
  // `data` and `length` are not looked at.
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
  // The low address byte: for the voice of a multi part, the part.
  virtual std::uint8_t getHeaderNumber() const { return getAddress().getLo(); }

 private:
  BDAErr openTemporaryModels();
  BDAErr loadContent();
};

// The block that closes such a dump. Received, it has the temporary model stored; its dump is only framed.
class BulkExecuterFooter : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;

  BDAErr getBulkDumpMessageImplement(std::vector<std::uint8_t>& message) override;
  // `data` and `length` are not looked at. Success is BDA_INFO_FOOTER.
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

}  // namespace BDA
