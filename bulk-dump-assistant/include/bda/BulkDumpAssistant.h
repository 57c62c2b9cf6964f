#pragma once

#include <cstdint>
#include <vector>

#include "bda/Export.h"
#include "bda/MessageModelInterfaceWrapper.h"
#include "bda/platform/CMA/DeviceNumber.h"
#include "bda/platform/UtilSrv/Thread.h"

namespace CMA {
class JobReceiver;
class JobTools;
class TemporaryCoreModel;
}  // namespace CMA
namespace ContSrv {
class Work;
}

namespace BDA {

class Address;
class BulkDumpAssistant;
class BulkDumpObserver;
class BulkDumpReceiver;
class BulkExecuterCreator;
class BulkRequestReceiver;
class BulkTable;
class JobDrumVoiceBulkBDA;
class JobMasterBulkBDA;
class JobMixBulkBDA;
class JobNormalVoiceBulkBDA;
class JobPerformanceBulkBDA;
struct Reception;

// The messages, F0 to F7:
//
//   bulk dump      F0 7D 0n 7F 14 BH BL AH AM AL data... checksum F7    n: device, BH BL: byte count (7 bits each),
//   bulk request   F0 7D 2n 7F 14 AH AM AL F7                           AH AM AL: address
//   notice         F0 7D 6n 02 F7                                       sent only: a unit is complete
//
// The high nibble of byte 2 is the type; only 0 and 2 are handled. Checked, in this order: F0; at least 9 bytes; 7D; 7F
// 14, or 15 as byte 4 whatever byte 3 is; the device number; of a dump that it has 12 bytes or more, the receive-bulk
// switch and the checksum; of a request that it has 9 bytes, and the switch. Neither the last byte nor whether data
// bytes have 7 bits is checked.

// What became of a message; the numbers are part of the contract.
enum BulkMsgType : std::uint32_t {
  BulkMsg_BulkDump = 0,           // a valid bulk dump
  BulkMsg_BulkRequest = 1,        // a valid bulk request
  BulkMsg_Type1 = 2,              // recognised, not handled here: type nibble 1,
  BulkMsg_Type3 = 3,              // type nibble 3,
  BulkMsg_Type4 = 4,              // type nibble 4
  BulkMsg_OtherModel = 5,         // too short, or another maker or model
  BulkMsg_NotSysEx = 6,           // does not begin with F0
  BulkMsg_CheckSumError = 7,      // a bulk dump with a wrong checksum
  BulkMsg_DeviceNumberOff = 8,    // the device-number setting is OFF
  BulkMsg_WrongDeviceNumber = 9,  // for another device number
  BulkMsg_ReceiveSwOff = 10,      // the receive-bulk switch is off
  BulkMsg_ReceiveError = 11,      // a length that does not fit its type, or an unknown type nibble
  BulkMsg_RequestSkipped = 12,    // a bulk request to which there is nothing to send
};

// The port on which a message arrived or leaves. Other values pass through unchanged.
enum DevicePortNum : std::uint32_t {
  DevicePort_Main = 1,    // dumps that arrive here are echoed on DevicePort_Echo
  DevicePort_Echo = 4,    // gets the echoes; a completion notice answers here what arrives here
  DevicePort_Remote = 5,  // likewise; and gets the answers and notices of remotes, whatever port they came on
  DevicePort_Thru = 6,    // as DevicePort_Main, but no bulk request is answered save that for an empty mixing voice
};

// Facts of a System Exclusive bulk message.
class BDA_API Utility {
 public:
  // The checksum (0 to 127) of a complete bulk dump of `length` bytes, F0 and F7 included: byte count, address, data
  // and checksum add up to 0 modulo 128. The last two bytes are not read. Logs and gives 0 when `length` does not fit
  // the message's byte count, or for a null message.
  static unsigned char calcCheckSum(const unsigned char* message, unsigned long length);

  // Whether a bulk dump's checksum byte is right. A length that does not fit the byte count is logged; a message that
  // lacks only its F7, or has bytes after it, then passes if its checksum byte is 0, as the instrument has it.
  static bool isCorrectCheckSum(const unsigned char* message, unsigned long length);

  // The device-number setting: 0 to 15, CMA::DeviceNumber_All or CMA::DeviceNumber_Off (also when the editor has no
  // system model). `*nibble`, unless null, becomes what an outgoing message carries: 0 for all and OFF. A setting that
  // is none of these comes back as it is, in both.
  static CMA::DeviceNumber getDeviceNumber(CMA::JobTools& jobTools, unsigned char* nibble);
};

// What an editor implements so that the assistant can send. The editor owns its bridge and unregisters it
// (BulkDumpAssistant::registerBDABridge with null) before destroying it.
class BDA_API BulkDumpBridge {
 public:
  virtual ~BulkDumpBridge();

  // Sends one complete System Exclusive message, F0 to F7. `message` is the library's (or, for an echo, the caller's)
  // and valid during the call only. Called on the thread that called the assistant; it may call the assistant's
  // registerBDABridge, but must not hand it messages.
  virtual void sendSysEx(const unsigned char* message, std::uint32_t length, DevicePortNum port) = 0;

  // Registers the new bridge with `assistant`; null registers nothing. That happens before the derived object is
  // constructed: hand the assistant no message until its constructor has returned.
  explicit BulkDumpBridge(BulkDumpAssistant* assistant);
  // Copies register nothing.
  BulkDumpBridge(const BulkDumpBridge& other);
  BulkDumpBridge& operator=(const BulkDumpBridge& other);
};

// The bulk dump assistant: an editor creates one per instrument, registers a bridge and hands it every System
// Exclusive message that comes in.
//
// Threads: it creates none and locks nothing. Construction, bridge registration and destruction run on the editor's
// thread, receiveBulkDump on any one thread at a time, never beside one of the others. Two assistants do not share
// state.
//
// Exceptions: none comes out, whoever threw. What a service throws, or storage that runs out, ends the message like any
// failure of its block: with 44 on the screen where a message was being shown, the open header forgotten and nothing
// more in the log (but what a file dump that cannot be written or read has to say); MIDI output is resumed and the
// thread's scheduling restored, as far as the system lets it, if they had been suspended and changed. What a block
// meets is still echoed, what is thrown before or after it ends the message there. The next message finds everything in
// order.
class BulkDumpAssistant {
 public:
  // Nothing that is handed over changes owner, and all of it outlives the assistant; `jobTools` must not be null.
  //   eventPortManager  through which on-screen messages reach the editor; may be null
  //   jobReceivers      the jobs that the block executers may use; only passed on
  //   bulkJobs          gets the assistant's five jobs appended (normal voice, drum voice, performance, mix, master;
  //                     null for one that could not be allocated). Each sends the dumps of its edit buffer on
  //                     DevicePort_Main and answers with a CMA::JOB::Result. To run one is a call of receiveBulkDump:
  //                     never beside another, nor from inside sendSysEx. They stay the assistant's: drop them from the
  //                     vector before or when the assistant goes. Null: they are appended nowhere
  //   work              the contents store; null: nothing that needs it succeeds
  //   silent            true: no on-screen messages
  // When a service throws, all that was made but the way to the screen is undone (`bulkJobs` is as before, the
  // temporary model destroyed), and the assistant refuses every dump and request. What merely cannot be allocated is
  // missing, and the rest works.
  BDA_API BulkDumpAssistant(EvtSrv::EventPortManager* eventPortManager, std::vector<CMA::JobReceiver*>* jobReceivers,
                            std::vector<CMA::JobReceiver*>* bulkJobs, CMA::JobTools* jobTools, ContSrv::Work* work,
                            bool silent);
  // Member by member: a copy shares everything that the source owns. Never destroy a copy next to its source, and an
  // assistant that is assigned to loses what it owned. The jobs keep pointing at the source.
  BDA_API BulkDumpAssistant(const BulkDumpAssistant& other);
  BDA_API BulkDumpAssistant& operator=(const BulkDumpAssistant& other);
  BDA_API ~BulkDumpAssistant();

  // Sends from now on through `bridge`, not owned; null: nothing can be sent, and every block is refused.
  BDA_API void registerBDABridge(BulkDumpBridge* bridge);

  // Tells `observer` from now on how each message fared (bda/BulkDumpObserver.h). Not owned; null, as at first: nobody.
  // The editor unregisters its observer before destroying it.
  BDA_API void registerObserver(BulkDumpObserver* observer);

  // What kind of message this is and whether the settings admit it, 0 to 11; BulkMsg_ReceiveError, too, when the
  // settings' model throws. Writes log lines, changes nothing. Here and in receiveBulkDump `message` is only read, and
  // only during the call; null or no bytes are BulkMsg_NotSysEx.
  BDA_API BulkMsgType checkBulkDumpMessage(const unsigned char* message, unsigned long length);

  // Handles one complete System Exclusive message that arrived on `port`, and tells what kind of message it was, not
  // how it fared: a dump that was refused, or a request that failed, still gives BulkMsg_BulkDump and
  // BulkMsg_BulkRequest; a BulkDumpObserver is told how it fared. All that it does with the bridge and the editor's
  // services is done when it returns. Once a service threw, the kind is what was known by then, BulkMsg_ReceiveError if
  // nothing was.
  BDA_API BulkMsgType receiveBulkDump(const unsigned char* message, unsigned long length, DevicePortNum port);

  // A hook that does nothing, whenever it is called.
  BDA_API void bdaLoop();

 protected:
  // Forgets the open header: the next block must again begin with one.
  BDA_API void init();
  // Whether the editor's mode admits the address: 0, 8 (ignore it) or a failure (bit 31), which is logged and shown.
  BDA_API unsigned long checkAddress(const Address& address);
  // Whether the address is the footer of an edit buffer, which is handed to the editor without a message of storing.
  BDA_API bool isEditBufferFooter(const Address& address);
  // Replaces the on-screen message, by its number:
  //   1, 2     a footer of a bank or a write trigger is being stored; that has ended, well or not
  //   11, 12   any other dump is being received; its unit is complete or has failed, or another message takes over
  //   13, 14   a request is being answered; that has ended, well or not
  //   40       checksum error
  //   41       the receive-bulk switch is off
  //   42, 43   the device number is OFF; the message is for another one
  //   44       any other error
  //   45       mode error or voice type error
  //   46       too many mixing voices
  // 1 also tells the editor that it is about to store (CMA::AdditionalParameterModel).
  BDA_API void showMsg(std::uint16_t id);
  // Shows 2, 12 or 14 after 1, 11 or 13. Other messages stay.
  BDA_API void closeMsg();

 private:
  friend class JobBulkTools;  // a job tells a throw from an answer

  // As receiveBulkDump, but tells more.
  void receive(const unsigned char* message, unsigned long length, DevicePortNum port, Reception& reception) noexcept;

  // All of these let through what a service throws.
  void handle(const unsigned char* message, unsigned long length, DevicePortNum port, Reception& reception);
  void receiveDump(const unsigned char* message, unsigned long length, DevicePortNum port, Reception& reception);
  void answerRequest(const unsigned char* message, unsigned long length, DevicePortNum port, Reception& reception);
  BulkMsgType classify(const unsigned char* message, unsigned long length);
  std::uint32_t admit(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo);
  void show(std::uint16_t id);
  void close();

  void raiseReceivePriority();  // to round robin, priority 1
  void restoreReceivePriority();
  void destroyParts() noexcept;

  BulkDumpReceiver* dumpReceiver_;
  BulkRequestReceiver* requestReceiver_;
  BulkTable* bulkTable_;
  BulkExecuterCreator* executerCreator_;
  std::vector<CMA::JobReceiver*>* jobReceivers_;
  CMA::JobTools* jobTools_;
  MessageModelInterfaceWrapper messageModel_;
  BulkDumpBridge* bridge_;
  CMA::TemporaryCoreModel* temporaryModel_;
  JobNormalVoiceBulkBDA* normalVoiceJob_;
  JobDrumVoiceBulkBDA* drumVoiceJob_;
  JobPerformanceBulkBDA* performanceJob_;
  JobMixBulkBDA* mixJob_;
  JobMasterBulkBDA* masterJob_;
  ContSrv::Work* work_;
  std::uint16_t messageShown_;  // 0: none
  UtilSrv::Thread receiveThread_;
  UtilSrv::Thread::_PolicyType savedPolicy_;
  UtilSrv::Thread::_PriorityType savedPriority_;
  bool boosted_;
  BulkDumpObserver* observer_;
};

}  // namespace BDA
