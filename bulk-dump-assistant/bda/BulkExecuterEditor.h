#pragma once

#include "BulkExecuter.h"

namespace BDA {

// Tables of names for the editor: slots of a fixed size, each with a name's characters, unterminated and padded with
// zeros. They are only sent, never received.

// 70 20 ll, 16 slots of 28 bytes: waveforms 16 * ll + 1 and on.
class BulkExecuterEditorWaveName : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 70 10 ll, 16 slots of 28 bytes: arpeggios 16 * ll and on.
class BulkExecuterEditorArpName : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 70 30 00, 128 slots of 20 bytes: the stored multis.
class BulkExecuterEditorMultiName : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 51 00 00: the screen's image, as a start message that tells how many data messages (51 00 01) follow it.
class BulkExecuterScreenCap : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr getBulkDumpMessage(std::vector<std::vector<std::uint8_t>>& messages) override;
};

}  // namespace BDA
