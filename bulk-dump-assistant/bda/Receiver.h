#pragma once

#include <cstdint>
#include <vector>

#include "BDAErr.h"
#include "bda/BulkDumpAssistant.h"

namespace BDA {

class BulkTable;

// What both receivers stand on. Nothing is owned; the bridge is null until the editor registers one.
class BulkReceiverBase {
 public:
  BulkReceiverBase(BulkTable* table, CMA::JobTools* jobTools, BulkDumpBridge* bridge)
      : table_(table), jobTools_(jobTools), bridge_(bridge) {}
  BulkReceiverBase(const BulkReceiverBase&) = delete;
  BulkReceiverBase& operator=(const BulkReceiverBase&) = delete;
  virtual ~BulkReceiverBase();

 protected:
  // Skipped without a bridge: the editor may unregister it from inside a send.
  void send(const std::vector<std::uint8_t>& message, DevicePortNum port) const;

  BulkTable* table_;
  CMA::JobTools* jobTools_;
  BulkDumpBridge* bridge_;
};

// Hands the data of a bulk dump to the block of its address, and answers a completed unit with a completion notice.
class BulkDumpReceiver : public BulkReceiverBase {
 public:
  BulkDumpReceiver(BulkTable* table, CMA::JobTools* jobTools, BulkDumpBridge* bridge,
                   MessageModelInterfaceWrapper* messageModel);

  // The block's result, or why no block was asked. Lets through what is thrown on the way.
  virtual BDAErr receiveBulkDump(const std::uint8_t* message, std::uint32_t length, DevicePortNum port);
  virtual void setBridge(BulkDumpBridge* bridge) { bridge_ = bridge; }

 private:
  void sendNotice(DevicePortNum port);

  std::vector<std::uint8_t> notice_;
  [[maybe_unused]] MessageModelInterfaceWrapper* messageModel_;  // only kept
  std::uint8_t noticeType_;
};

// Answers a bulk request with the dumps of the blocks that it names.
class BulkRequestReceiver : public BulkReceiverBase {
 public:
  BulkRequestReceiver(BulkTable* table, CMA::JobTools* jobTools, BulkDumpBridge* bridge, ContSrv::Work* work);

  // The blocks' results, ORed; BDA_INFO_SWALLOWED when there is nothing to send. What was built before a failure has
  // been sent. Lets through what is thrown on the way.
  virtual BDAErr receiveBulkRequest(const std::uint8_t* message, std::uint32_t length, DevicePortNum port);
  virtual void setBridge(BulkDumpBridge* bridge) { bridge_ = bridge; }

 private:
  [[maybe_unused]] ContSrv::Work* work_;  // only kept
};

}  // namespace BDA
