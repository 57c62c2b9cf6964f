#pragma once

#include <cstdint>

#include "bda/BulkDumpAssistant.h"

// How each message fared, for an editor that wants to tell its user without reading the log.
namespace BDA {

// What became of a message. It tells what the assistant knows: what was handed to the store is not yet stored, for the
// last step of a write trigger (ContSrv::Work::sync) is not looked at. An editor joins it with its own store's errors.
enum class BulkDumpOutcome : std::uint8_t {
  accepted,       // a block of an open unit, a header, or a file dump that waits for its write trigger
  handedToStore,  // a footer stored the temporary model, a write trigger wrote or removed contents, or an empty mixing
                  // voice was removed
  completed,      // taken at once, without a unit: a system block, favorites
  nothingToDo,    // a write trigger with nothing to write or remove, the removal of a mixing voice that is not there
  answered,       // a request: all its dumps were sent
  nothingToSend,  // a request for blocks that are swallowed
  ignored,        // not handled here (BulkMsg_Type1 ...), or ignored by the editor's mode; a request on DevicePort_Thru
  notOurs,        // BulkMsg_OtherModel, BulkMsg_NotSysEx
  refused,        // see BulkDumpRefusal
};

// Why a message was refused: the first thing that went wrong.
enum class BulkDumpRefusal : std::uint8_t {
  none,  // nothing was

  // The message itself, and the system's settings.

  malformedMessage,   // BulkMsg_ReceiveError: a length that does not fit its type, or an unknown type
  wrongByteCount,     // the byte count does not fit the length
  wrongCheckSum,      // the checksum is not that of the data
  deviceNumberOff,    // the device-number setting is OFF
  wrongDeviceNumber,  // for another device number
  receiveSwitchOff,   // the receive-bulk switch is off

  // The editor's mode (CMA::JobTools::checkModeForReceivedSysExBulk).

  wrongMode,             // CMA::JOB::Result_CurrentStateError
  wrongVoiceTypeInMode,  // CMA::JOB::Result_VoiceTypeError
  editCompare,           // CMA::JOB::Result_EditCompareModeError
  sampleAudition,        // CMA::JOB::Result_SampleAuditionError
  mixingVoicesFull,      // CMA::JOB::Result_MixingVoiceFullError, or more mixing voices written than there may be
  unknownModeResult,     // a result that is none of CMA::JOB::Result
  loadingOrSaving,       // a content file is being loaded or saved (ContSrv::Work::getLoadSaveFlag)

  // The address.

  noBlock,            // no block has this address, or no open header admits it
  headerMismatch,     // a footer, or a voice's block, that does not fit the open header, or comes without one
  unknownHeader,      // no models, no blocks or no footer belong to such a header
  unknownVoiceType,   // a header of a voice that is neither a normal nor a drum voice
  wrongBank,          // a request for the voice of a part whose bank is none
  notRequestedAlone,  // a block that is sent with its header only
  requestOnly,        // a dump of names, which can only be requested
  wrongBlockType,     // of an insertion effect, which is neither A nor B

  // The block and its models.

  wrongDataLength,  // not the block's
  modelMissing,     // the editor gave no model, or a model without that part
  wrongDirection,   // a footer that is not received
  dumpNotCreated,   // a dump could not be built
  blockFailed,      // and nothing more is known
  noExecuter,       // the block's converter could not be allocated
  notLoaded,        // CMA::JobTools::loadForReceivedSysExBulk
  notStored,        // CMA::JobTools::storeForReceivedSysExBulk

  // Names and favorites.

  nameNotFound,     // of a waveform, an arpeggio, a multi
  nameTooLong,      // a name is longer than its field
  noSuchFavorites,  // by the numbers of the platform the bank ends before them
  favoriteNotSet,   // ContSrv::Work::setContentFavoriteFlag
  favoriteNotRead,  // ContSrv::Work::getContentInformation

  // File dumps.

  fileDumpTooLong,         // more than 16,383 data bytes
  emptyFileDump,           // no data bytes at all
  fileDumpNameCutShort,    // the data end before the name does
  fileDumpDataCutShort,    // the data end before the content does
  notPacked,               // a name or a content could not be packed
  notUnpacked,             // a content that no packing gives: nothing of it is written
  nameNotUnpacked,         // a name that no packing gives: the content is written, and keeps its old name
  noContentType,           // the address is of no type of content
  noContentNumber,         // the address has no number in the store
  mixingVoicesNotCounted,  // ContSrv::Work::getMixingVoiceSumSync
  mixingVoiceNotRemoved,   // ContSrv::Work::removeMixingVoice
  overwriteRefused,        // ContSrv::Work::requestOverWriteConfig
  contentNotRemoved,       // ContSrv::Work::removeContent, removeContents
  noFilePath,              // ContSrv::Work::getDataFilePath
  fileNotOpened,           // ContSrv::Work::openDataFile
  fileNotClosed,           // ContSrv::Work::closeDataFile
  dataNotOpened,           // ContSrv::DataFile::openData
  dataNotClosed,           // ContSrv::DataFile::closeData, closeDataWithoutSync
  dataNotWritten,          // ContSrv::Data::write
  dataNotRead,             // ContSrv::Data::read, getSize
  nameNotSet,              // ContSrv::Work::setContentName
  nameNotRead,             // ContSrv::Work::getContentName

  // The assistant itself.

  noBridge,        // none is registered
  outOfMemory,     // storage ran out
  serviceThrew,    // a service of the editor threw an exception
  notConstructed,  // its construction was undone
};

// What is told of one message.
struct BulkDumpReport {
  BulkMsgType kind = BulkMsg_ReceiveError;  // what receiveBulkDump returns
  bool hasAddress = false;                  // of valid dumps and requests, and of dumps with a wrong checksum
  std::uint8_t address[3] = {0, 0, 0};      // high, middle, low byte
  std::uint32_t result = 0;                 // of the block; bit 31 set: failure. 0, too, if none was asked
  // Of a dump: its block has taken it, or its empty mixing voice was removed. A refused dump that was taken all the
  // same has something wrong with it that the instrument overlooks, or a service threw when its block was done
  // (serviceThrew): then the header that it opened is forgotten, and what it stored is told by `handedOver`.
  bool isTaken = false;
  BulkDumpOutcome outcome = BulkDumpOutcome::ignored;
  BulkDumpRefusal refusal = BulkDumpRefusal::none;  // unless `outcome` is refused
  // How many contents were handed to the store: written or removed by a write trigger, also by one that was refused for
  // the rest; 1 of a footer. What was written, but not without a failure, does not count. Contents removed together
  // count if the store removes any: each of a type that file dumps removed, the mixing voices of a multi as one.
  std::uint32_t handedOver = 0;
};

// What an editor implements to be told how messages fared (BulkDumpAssistant::registerObserver). It stays the editor's.
class BulkDumpObserver {
 public:
  virtual ~BulkDumpObserver() = default;

  // The last thing that happens in every receiveBulkDump, on the calling thread, once, of the observer that is
  // registered then. What it throws is dropped. It must not hand the assistant a message, nor destroy it. Of the
  // request that a job makes it is told before the job puts the receive-bulk switch back: if that throws, the job fails
  // all the same.
  virtual void bulkDumpHandled(const BulkDumpReport& report) = 0;
};

}  // namespace BDA
