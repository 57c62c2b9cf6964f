#pragma once

#include "BulkExecuter.h"

namespace BDA {

// The system blocks (high address byte 00). No header opens them: they are received at any time, straight into the live
// system model, and answer with BDA_INFO_SYSTEM in both directions.

// 00 00 00, 68 bytes: common settings and the master tune.
class BulkExecuterSystemCommon : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 00 40 00, 8 bytes: the audio input part of the block index.
class BulkExecuterSystemAd : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 00 03 00 and 00 04 00, 36 bytes: insertion effect A or B of that part, by the block type.
class BulkExecuterSystemAdInsAB : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 00 20 00, 20 bytes: the master EQ.
class BulkExecuterSystemMeq : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 00 21 00, 38 bytes: the master effect.
class BulkExecuterSystemMef : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 00 50 00 to 00 55 00, 10 bytes: a quick setup of the sequencer, chosen by the low nibble of the middle address byte.
class BulkExecuterSystemUserQuickSetup : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 00 05 00, 22 bytes: the sequencer.
class BulkExecuterSystemSeq : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

// 00 06 00, 5 bytes: remote control.
class BulkExecuterSystemRemote : public BulkExecuter {
 public:
  using BulkExecuter::BulkExecuter;
  BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive) override;
};

}  // namespace BDA
