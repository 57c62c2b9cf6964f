#pragma once

#include <cstdint>
#include <vector>

#include "Address.h"
#include "BDAErr.h"
#include "Failure.h"
#include "Layout.h"

namespace CMA {
class JobReceiver;
class JobTools;
class TemporaryCoreModel;
}  // namespace CMA

namespace BDA {

// What the blocks of one dump tell each other: the header writes it, the blocks after it read it. All executers of an
// assistant share one.
struct ExecuterSharedState {
  // The voice that is received or dumped, as getTemporaryVoiceModel and getVoiceModel number it.
  std::uint8_t currentNumber = 0;
  // 1 while an edit buffer is dumped: nothing was loaded, so the blocks read the live models. 0 otherwise.
  std::uint8_t loadSkipped = 0;
};

// What a parameter block reports before it converts anything.
struct BlockFailures {
  Failure<> noModel;
  Failure<unsigned, unsigned> wrongLength;  // expected, given
};
consteval BlockFailures blockFailures(const char* file, const char* function, const char* wrongLength,
                                      const char* noModel = "Temporary Model is NULL !!!\n",
                                      Line line = Line::ofThisSource()) {
  return {{{file, line, function}, Refusal::modelMissing, noModel},
          {{file, line, function}, Refusal::wrongDataLength, wrongLength}};
}

// Converts between the data bytes of one kind of block and the parameters of the editor's models. One executer serves
// every block of its kind; setBlockInfo tells it which, before each message.
//
// Executers run on the thread that handles bulk messages, lock nothing and throw nothing of their own.
class BulkExecuter {
 public:
  // Everything handed over is the front end's (the shared state: the creator's) and outlives the executer.
  BulkExecuter(std::vector<CMA::JobReceiver*>* jobReceivers, CMA::JobTools* jobTools,
               CMA::TemporaryCoreModel* temporaryModel, ExecuterSharedState* sharedState, std::uint32_t dataLength);
  BulkExecuter(const BulkExecuter&) = delete;
  BulkExecuter& operator=(const BulkExecuter&) = delete;
  virtual ~BulkExecuter();

  virtual void setBlockInfo(const Address& address, std::uint32_t blockType, std::uint32_t blockIndex);
  // Replaces `messages` with the complete bulk dump messages of the block: one, unless a subclass says otherwise.
  virtual BDAErr getBulkDumpMessage(std::vector<std::vector<std::uint8_t>>& messages);
  // Replaces `message` with one complete bulk dump. What a failure leaves there is not to be sent.
  virtual BDAErr getBulkDumpMessageImplement(std::vector<std::uint8_t>& message);
  // Receives the data bytes of a bulk dump.
  virtual BDAErr setBulkDumpMessage(const std::uint8_t* data, std::uint32_t length);
  virtual std::uint8_t getBlockIndex() const { return std::uint8_t(blockIndex_); }
  virtual std::uint32_t getBlockType() const { return blockType_; }
  virtual std::uint32_t getDataLength() const { return dataLength_; }
  virtual std::uint8_t getLoadSkipped() const { return sharedState_->loadSkipped; }
  virtual void setLoadSkipped(std::uint8_t loadSkipped) { sharedState_->loadSkipped = loadSkipped; }
  virtual std::uint8_t getCurrentNumber() const { return sharedState_->currentNumber; }
  virtual void setCurrentNumber(std::uint8_t number) { sharedState_->currentNumber = number; }
  // The conversion: `isReceive` 1 moves `length` data bytes into the models, and `data` is then not written to; 0 moves
  // the models into `data`, which starts as zeros. A block that knows neither direction fails.
  virtual BDAErr execBulkBlock(std::uint8_t* data, std::uint32_t length, std::uint8_t isReceive);
  // Three layouts that several families share: 36, 7 and 20 bytes.
  virtual BDAErr convertInsEffectBlock(CMA::ParameterGroup& group, std::uint8_t* data, std::uint8_t isReceive);
  virtual BDAErr convertSixParamBlock(CMA::ParameterGroup& group, std::uint8_t* data, std::uint8_t isReceive);
  virtual BDAErr convertEqBlock(CMA::ParameterGroup& group, std::uint8_t* data, std::uint8_t isReceive);
  // Appends F0, maker, device and model. Fails silently after the second byte when the device number is OFF.
  virtual BDAErr writeBulkDumpHead(std::vector<std::uint8_t>& message);

  const ExecuterSharedState* getSharedState() const { return sharedState_; }

 protected:
  const Address& getAddress() const { return address_; }
  std::vector<CMA::JobReceiver*>* getJobReceivers() const { return jobReceivers_; }
  CMA::JobTools& getJobTools() const { return *jobTools_; }
  CMA::TemporaryCoreModel* getTemporaryModel() const { return temporaryModel_; }

  // Appends what follows the head of every dump: byte count, address, data, checksum and F7.
  static void writeBulkDumpBody(std::vector<std::uint8_t>& message, const Address& address, const std::uint8_t* data,
                                std::uint32_t length);
  // Appends the checksum of all that stands in `message`, and F7.
  static void writeBulkDumpEnd(std::vector<std::uint8_t>& message);

  // BDA_OK when `length` is the block's and reaches at least to `touchedLength`, the end of what its layout touches.
  BDAErr checkLength(const BlockFailures& failures, const std::uint8_t* data, std::uint32_t length,
                     std::size_t touchedLength) const;

  // What every block of one layout does first: fail without its models, then without its length.
  template <const auto& kLayout>
  BDAErr checkBlock(const BlockFailures& failures, const Targets<kLayout>& targets, const std::uint8_t* data,
                    std::uint32_t length) const {
    if (!targets.areComplete()) {
      failures.noModel();
      return BDA_ERR;
    }
    return checkLength(failures, data, length, touchedLength(kLayout));
  }

  // All that most blocks do: check, convert, and answer `success`.
  template <const auto& kLayout>
  BDAErr convertBlock(const BlockFailures& failures, const Targets<kLayout>& targets, std::uint8_t* data,
                      std::uint32_t length, std::uint8_t isReceive, BDAErr success = BDA_OK) const {
    if (const BDAErr result = checkBlock<kLayout>(failures, targets, data, length); isFailure(result)) return result;
    convert<kLayout>(targets, data, isReceive);
    return success;
  }

 private:
  std::vector<CMA::JobReceiver*>* jobReceivers_;
  CMA::JobTools* jobTools_;
  std::uint32_t blockType_;
  std::uint32_t blockIndex_;
  Address address_;
  std::uint32_t dataLength_;
  ExecuterSharedState* sharedState_;
  CMA::TemporaryCoreModel* temporaryModel_;
};

}  // namespace BDA
