#pragma once

#include <array>
#include <vector>

#include "AddressRows.h"
#include "BulkBlock.h"

namespace CMA {
class JobTools;
}

namespace BDA {

class BulkExecuterCreator;
class MessageModelInterfaceWrapper;

// The blocks that answer a bulk request, in the order in which they are sent. Not owned.
using BulkBlockHolder = std::vector<BulkBlock*>;

// Kind of a voice bank, as multi parts select it.
enum BankType : std::uint32_t {
  BankType_None = 0,
  BankType_NormalVoice = 1,
  BankType_DrumVoice = 2,
  BankType_MixingVoice = 3,  // normal voices of the multi
  BankType_Swallowed = 4,    // voices of which neither dumps nor requests are handled
};

// The address map: every three-byte address of the instrument is one block, and blocks of parameters are found only
// while a fitting header is open. Owns its blocks; not for use from two threads.
class BulkTable {
 public:
  // Nothing is owned; the executers outlive the table. `jobTools` knows the live multi, whose banks decide what the
  // voice of a multi part is. A block that cannot be allocated stays unknown.
  BulkTable(BulkExecuterCreator* creator, MessageModelInterfaceWrapper* owner, CMA::JobTools* jobTools);
  BulkTable(const BulkTable&) = delete;
  BulkTable& operator=(const BulkTable&) = delete;
  ~BulkTable();

  // The block that handles an address now, or null. A header becomes the open header. Refusals that the sender should
  // know of are logged: a footer or a voice block that does not fit the open header.
  BulkBlock* findBulkBlock(const Address& address);
  BulkBlock* findBulkDumpHeader(const Address& address);
  BulkBlock* findBulkDumpFooter(const Address& address);
  BulkBlock* findBulkDumpNVce(const Address& address);
  BulkBlock* findBulkDumpDVce(const Address& address);

  // The block of an address, whatever header is open; null when the address is not in the map.
  BulkBlock* search(const Address& address) const;

  // The kind of bank that multi part `lo` selects in the live multi; BankType_None from 16 on.
  std::uint32_t getBankType(std::uint8_t lo);

  // Replaces `holder` with the blocks that answer a request: header, parameter blocks and footer, or a single block; or
  // with none when the request is to be swallowed. 0, or 0xFFFFFFFF after logging why there is no answer.
  std::uint32_t getBulkBlockHolderForBulkReq(const Address& address, BulkBlockHolder& holder);

  // Forgets the open header.
  void resetHeader() { currentHeader_.setHeader(0, 0, 0, 0, 0); }

  const HeaderAddress& getCurrentHeader() const { return currentHeader_; }
  // What the constructor was given, only kept.
  MessageModelInterfaceWrapper* getOwner() const { return owner_; }
  const std::vector<BulkBlock*>& getList(List list) const { return lists_[std::size_t(list)]; }

 private:
  BulkBlock* search(List list, const Address& address) const;
  BulkBlock* findVoiceBlock(List list, const Address& address);

  CMA::JobTools* jobTools_;
  HeaderAddress currentHeader_;
  std::array<std::vector<BulkBlock*>, kListCount> lists_;
  MessageModelInterfaceWrapper* owner_;
  DummyBulkBlock dummyBlock_;
};

}  // namespace BDA
