#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "BulkExecuter.h"
#include "bda/platform/ContSrv/ContSrv.h"

namespace EvtSrv {
class EventPortManager;
}

namespace BDA {

// One received file dump, held as it came until the write trigger.
class FileDumpBuffer {
 public:
  FileDumpBuffer(std::uint32_t contType, std::uint32_t contNumber) : contType_(contType), contNumber_(contNumber) {}
  FileDumpBuffer(const FileDumpBuffer&) = delete;
  FileDumpBuffer& operator=(const FileDumpBuffer&) = delete;
  virtual ~FileDumpBuffer();

  virtual std::uint32_t getContType() const { return contType_; }
  virtual std::uint32_t getContNumber() const { return contNumber_; }
  virtual std::vector<std::uint8_t>& getData() { return data_; }
  // Replaces the data. Throws std::bad_alloc when storage runs out; the old data may be gone then.
  virtual void setData(const std::uint8_t* data, std::uint32_t size);
  virtual bool isEmpty() const { return data_.empty(); }

  // The data of a buffer that has none. Logs and throws std::bad_alloc when storage runs out.
  void initData(const std::uint8_t* data, std::uint32_t size);

 private:
  std::uint32_t contType_;
  std::uint32_t contNumber_;
  std::vector<std::uint8_t> data_;
};

// The blocks 0C mm ll, each a whole content as its name and its file, and the write triggers 11 00 00 and 11 01 00.
//
// A data field: length of the packed name (two bytes of 7 bits), packed name, length of the packed file, packed file.
// Four zero bytes are an empty content. Received dumps are held until a trigger has all of them written in one pass;
// one block that cannot be written to (preset and GM banks), or a failure, discards all that is held.
class BulkExecuterFileDump : public BulkExecuter {
 public:
  // `work` is the front end's; null: every operation that needs the store fails. The manager is not used.
  BulkExecuterFileDump(std::vector<CMA::JobReceiver*>* jobReceivers, CMA::JobTools* jobTools,
                       CMA::TemporaryCoreModel* temporaryModel, ExecuterSharedState* sharedState,
                       std::uint32_t dataLength, EvtSrv::EventPortManager* eventPortManager, ContSrv::Work* work);
  ~BulkExecuterFileDump() override;

  BDAErr getBulkDumpMessageImplement(std::vector<std::uint8_t>& message) override;
  BDAErr setBulkDumpMessage(const std::uint8_t* data, std::uint32_t length) override;
  // Writes everything that is held, empties what is empty, synchronises the store and lets go of the buffers. A content
  // that fails does not stop the others; the results are ORed.
  virtual BDAErr writeFileDumps();
  // Writes one. `mixingVoiceCount` is kept up to date; a number in `removeList` is removed with its type's others.
  virtual BDAErr writeFileDump(FileDumpBuffer& buffer, std::int64_t& mixingVoiceCount, std::int64_t mixingVoiceMaximum,
                               std::vector<std::uint32_t>& removeList);
  // Replaces `field` with the data field of the content that the block names.
  virtual BDAErr readFileDump(std::vector<std::uint8_t>& field);

  // The store's type and number of the content that the block names. Type 0 and number result -1 after logging when it
  // names none.
  std::uint32_t getContentsType() const;
  std::int32_t getContentsNumber(std::uint32_t& number) const;
  static bool isMixingVoiceContent(std::uint32_t contType, std::uint32_t contNumber);

  // The 7-bit packing. `destination` is another array than `source`; packing nothing leaves it as it is. False, after
  // logging, when the last packed group is a single byte: `destination` then holds what came before it.
  static bool encode(const std::vector<std::uint8_t>& source, std::vector<std::uint8_t>& destination);
  static bool decode(const std::vector<std::uint8_t>& source, std::vector<std::uint8_t>& destination);
  static bool encodeGroup(const std::uint8_t* source, std::uint8_t count, std::uint8_t* out);
  static bool decodeGroup(const std::uint8_t* source, std::uint8_t count, std::uint8_t* out);
  // A length in two bytes of 7 bits; lengths above 0x3FFF do not survive. False for a null pointer.
  static bool splitByteCount(std::uint8_t* hi, std::uint8_t* lo, std::uint32_t value);
  static std::int32_t joinByteCount(std::uint8_t hi, std::uint8_t lo) { return std::int32_t{hi} << 7 | lo; }

  void clearFileDumpBuffers();

 private:
  BDAErr removeMixingVoices();
  BDAErr hold(std::uint32_t contType, std::uint32_t contNumber, const std::uint8_t* data, std::uint32_t size);
  BDAErr flushType(std::uint32_t contType, std::vector<std::uint32_t>& removeList);
  BDAErr writeName(std::uint32_t contType, std::uint32_t contNumber, std::span<const std::uint8_t> packed);
  BDAErr writeData(ContSrv::Data& data, std::span<const std::uint8_t> packed);
  static BDAErr readField(ContSrv::Data& data, const std::string& name, std::vector<std::uint8_t>& field);
  BDAErr removeFileDump(const FileDumpBuffer& buffer, std::int64_t& mixingVoiceCount,
                        std::vector<std::uint32_t>& removeList);

  ContSrv::Work* work_;
  std::vector<std::unique_ptr<FileDumpBuffer>> buffers_;  // in the order of arrival
};

}  // namespace BDA
