#include "BulkTable.h"

#include <new>

#include "AddressIndex.h"
#include "BulkExecuterCreator.h"
#include "Failure.h"
#include "bda/platform/CMA/JobTools.h"
#include "bda/platform/CMA/VoiceBanks.h"

namespace BDA {
namespace {

constexpr const char* kFile = "..\\..\\bda\\BulkTable.cpp";
constexpr const char* kHolder = "BDA::BulkTable::getBulkBlockHolderForBulkReq";
// Of voice blocks too, which are no footers.
constexpr const char* kMismatchText = "error : this footer don't much header! [hi=%02x, mid=%02x, lo=%02x]\n";
using Mismatch = Failure<unsigned, unsigned, unsigned>;
constexpr Mismatch kFooterBankMismatch{
    {kFile, Line::ofThisSource(), "BDA::BulkTable::findBulkDumpFooter"}, Refusal::headerMismatch, kMismatchText};
constexpr Mismatch kFooterMismatch{
    {kFile, Line::ofThisSource(), "BDA::BulkTable::findBulkDumpFooter"}, Refusal::headerMismatch, kMismatchText};
constexpr Mismatch kNormalVoiceMismatch{
    {kFile, Line::ofThisSource(), "BDA::BulkTable::findBulkDumpNVce"}, Refusal::headerMismatch, kMismatchText};
constexpr Mismatch kDrumVoiceMismatch{
    {kFile, Line::ofThisSource(), "BDA::BulkTable::findBulkDumpDVce"}, Refusal::headerMismatch, kMismatchText};
constexpr Failure<unsigned, unsigned, unsigned> kNotFound{
    {kFile, Line::ofThisSource(), kHolder}, Refusal::noBlock, "error : not found bulk block ! [ %02x %02x %02x ]\n"};
constexpr Failure<int> kInvalidRequest{{kFile, Line::ofThisSource(), kHolder},
                                       Refusal::notRequestedAlone,
                                       "error : invalid bulk req address ! [ blockType = %d ]\n"};
constexpr Failure<int> kInvalidBank{
    {kFile, Line::ofThisSource(), kHolder}, Refusal::wrongBank, "error : invalid bank Type ! [ bank = %d ] \n"};
constexpr Failure<int> kUnknownHeader{
    {kFile, Line::ofThisSource(), kHolder}, Refusal::unknownHeader, "error : not found block ! [ blockType = %d ]\n"};
constexpr Failure<> kNoFooter{
    {kFile, Line::ofThisSource(), kHolder}, Refusal::unknownHeader, "error : not found footer bulk block !\n"};

void report(const Mismatch& mismatch, const Address& address) {
  mismatch(address.getHi(), address.getMid(), address.getLo());
}

constexpr std::uint32_t kRequestOk = 0;
constexpr std::uint32_t kRequestRefused = 0xFFFFFFFF;

constexpr std::uint32_t kLastHeaderType = 17;

constexpr bool isHeaderType(std::uint32_t blockType) { return blockType >= 1 && blockType <= kLastHeaderType; }

// Block types that are requested by themselves: file dumps, system, editor names, screen capture, favourites.
constexpr std::array kSingleBlockTypes{run(37, 47), run(49, 59), run(112, 114), one(116), run(118, 123)};

constexpr bool isSingleBlockType(std::uint32_t blockType) {
  for (const Run& types : kSingleBlockTypes)
    if (blockType >= types.first && blockType <= types.last) return true;
  return false;
}

// Which list holds the blocks of a voice in a bank of that kind; kListCount for none.
constexpr std::size_t listOfBank(std::uint32_t bank) {
  switch (bank) {
    case BankType_NormalVoice:
    case BankType_MixingVoice:
      return std::size_t(List::normalVoice);
    case BankType_DrumVoice:
      return std::size_t(List::drumVoice);
    default:
      return kListCount;
  }
}

// Every address has the plain bytes of its base class; asking for those by name spares three virtual calls a lookup.
BlockPlace placeOf(const Address& address) {
  return kAddressIndex.find(address.Address::getHi(), address.Address::getMid(), address.Address::getLo());
}

constexpr auto countPerList() {
  std::array<std::size_t, kListCount> count{};
  forEachBlock([&](const AddressRow& row, std::uint8_t, std::uint8_t) { ++count[listOf(row.hi)]; });
  return count;
}
constexpr auto kListSize = countPerList();

struct BankRow {
  CMA::BankSelect bankSelect;
  BankType type;
};

// In the order of search, which is not the order of the bank codes. Made at first use: the platform's table lies in
// another library.
const std::array<BankRow, 17>& bankTable() {
  static const std::array<BankRow, 17> table = [] {
    constexpr CMA::BankSelect kSwallowed{0x3F, 0x32};
    std::array<BankRow, 17> rows{};
    for (std::size_t code = 0; code <= 10; ++code) rows[code] = {CMA::voiceBankSelTable[code], BankType_NormalVoice};
    rows[11] = {CMA::voiceBankSelTable[13], BankType_NormalVoice};
    rows[12] = {CMA::voiceBankSelTable[14], BankType_DrumVoice};
    rows[13] = {CMA::voiceBankSelTable[11], BankType_DrumVoice};
    rows[14] = {CMA::voiceBankSelTable[12], BankType_DrumVoice};
    rows[15] = {kSwallowed, BankType_Swallowed};
    rows[16] = {CMA::voiceBankSelTable[15], BankType_MixingVoice};
    return rows;
  }();
  return table;
}

}  // namespace

BulkTable::BulkTable(BulkExecuterCreator* creator, MessageModelInterfaceWrapper* owner, CMA::JobTools* jobTools)
    : jobTools_(jobTools), currentHeader_(0, 0, 0, 0), owner_(owner) {
  for (std::size_t i = 0; i < kListCount; ++i) lists_[i].reserve(kListSize[i]);
  forEachBlock([&](const AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    BulkExecuter* const executer = creator == nullptr ? nullptr : creator->getExecuter(executerOf(row, mid));
    lists_[listOf(row.hi)].push_back(new (std::nothrow)
                                         BulkBlock(row.type, indexOf(row, mid), executer, row.hi, mid, lo));
  });
}

BulkTable::~BulkTable() {
  for (const std::vector<BulkBlock*>& list : lists_)
    for (BulkBlock* block : list) delete block;
}

// The same answer as a walk over the list, from its front to the first block with these three bytes.
BulkBlock* BulkTable::search(List list, const Address& address) const {
  const BlockPlace place = placeOf(address);
  return place.list == std::size_t(list) ? lists_[place.list][place.position] : nullptr;
}

BulkBlock* BulkTable::search(const Address& address) const {
  const BlockPlace place = placeOf(address);
  return place.list == kListCount ? nullptr : lists_[place.list][place.position];
}

BulkBlock* BulkTable::findBulkBlock(const Address& address) {
  const Route* const route = findRoute(address.Address::getHi());
  if (route == nullptr || !route->admits(currentHeader_.getBlockType())) return nullptr;
  switch (route->list) {
    case List::header:
      return findBulkDumpHeader(address);
    case List::footer:
      return findBulkDumpFooter(address);
    case List::normalVoice:
      return findBulkDumpNVce(address);
    case List::drumVoice:
      return findBulkDumpDVce(address);
    default:
      return search(route->list, address);
  }
}

// A part's voice in a bank of no kind is admitted by contract, though no block of it is: its footer then stores a voice
// as new.
BulkBlock* BulkTable::findBulkDumpHeader(const Address& address) {
  BulkBlock* const block = search(List::header, address);
  if (block == nullptr) return nullptr;
  std::uint32_t bank = BankType_None;
  if (block->getBlockType() == kPartVoiceHeader) {
    bank = getBankType(address.getLo());
    // The open header stays as far as the table goes. The dummy block fails, and the assistant then forgets the header,
    // so that the blocks that follow are refused.
    if (bank == BankType_Swallowed) return &dummyBlock_;
  }
  currentHeader_.setHeader(block->getBlockType(), address.getHi(), address.getMid(), address.getLo(), bank);
  return block;
}

// Block types are not compared: while no header is open (type 0, address 00 00 00), the footer 0F 00 00 fits and has
// whatever the temporary model holds stored. By contract it is the editor's mode check and store job that refuse it.
BulkBlock* BulkTable::findBulkDumpFooter(const Address& address) {
  BulkBlock* block = search(List::footer, address);
  if (block == nullptr) return nullptr;
  if (block->getBlockType() == kPartVoiceFooter && currentHeader_.getBank() != getBankType(address.getLo())) {
    report(kFooterBankMismatch, address);
    block = nullptr;
  }
  if (address.getHi() != kFooterHi || !currentHeader_.isEqualMidLo(address.getMid(), address.getLo())) {
    report(kFooterMismatch, address);
    block = nullptr;
  }
  return block;
}

BulkBlock* BulkTable::findBulkDumpNVce(const Address& address) { return findVoiceBlock(List::normalVoice, address); }

BulkBlock* BulkTable::findBulkDumpDVce(const Address& address) { return findVoiceBlock(List::drumVoice, address); }

BulkBlock* BulkTable::findVoiceBlock(List list, const Address& address) {
  BulkBlock* const block = search(list, address);
  if (block == nullptr) return nullptr;
  const std::uint32_t header = currentHeader_.getBlockType();
  const std::uint32_t bank = currentHeader_.getBank();
  // A part's voice in a swallowed bank counts as a normal voice here, though its header never becomes the open one.
  const std::size_t fitting = header == kPartVoiceHeader
                                  ? listOfBank(bank == BankType_Swallowed ? BankType_NormalVoice : bank)
                                  : listBetween(header);
  if (fitting == std::size_t(list)) return block;
  report(list == List::normalVoice ? kNormalVoiceMismatch : kDrumVoiceMismatch, address);
  return nullptr;
}

std::uint32_t BulkTable::getBankType(std::uint8_t lo) {
  const std::array<BankRow, 17>& table = bankTable();
  constexpr std::uint8_t kParts = 16;
  if (lo >= kParts) return BankType_None;
  CMA::MultiParameterModel* const multi = jobTools_->getMultiModel();
  CMA::MultiParameterModel::PartNode* const part = multi == nullptr ? nullptr : multi->getPart(lo);
  CMA::ParameterGroup* const bankProgram = part == nullptr ? nullptr : part->getBankProgram();
  if (bankProgram == nullptr) return BankType_None;
  CMA::BankSelect selected{0, 0};
  bankProgram->get(&selected.msb, 0);
  bankProgram->get(&selected.lsb, 1);
  for (const BankRow& row : table)
    if (row.bankSelect.msb == selected.msb && row.bankSelect.lsb == selected.lsb) return row.type;
  return BankType_None;
}

std::uint32_t BulkTable::getBulkBlockHolderForBulkReq(const Address& address, BulkBlockHolder& holder) {
  holder.clear();
  BulkBlock* const block = findBulkBlock(address);
  if (block == nullptr) {
    kNotFound(address.getHi(), address.getMid(), address.getLo());
    return kRequestRefused;
  }
  const std::uint32_t type = block->getBlockType();
  if (type == kDummyBlockType) return kRequestOk;
  if (isSingleBlockType(type)) {
    holder.push_back(block);
    return kRequestOk;
  }
  if (!isHeaderType(type)) {
    kInvalidRequest(int(type));
    return kRequestRefused;
  }

  holder.push_back(block);
  // The lookup has answered a swallowed bank, and every header type has a list: both are asked for again by contract.
  std::size_t list = listBetween(type);
  if (type == kPartVoiceHeader) {
    const std::uint32_t bank = getBankType(address.getLo());
    if (bank == BankType_Swallowed) {
      holder.clear();
      return kRequestOk;
    }
    list = listOfBank(bank);
    if (list == kListCount) {
      kInvalidBank(int(bank));
      return kRequestRefused;
    }
  }
  if (list == kListCount) {
    kUnknownHeader(int(type));
    return kRequestRefused;
  }
  for (BulkBlock* member : lists_[list])
    if (member != nullptr) holder.push_back(member);

  BulkBlock* const footer = findBulkBlock(Address(kFooterHi, address.getMid(), address.getLo()));
  if (footer == nullptr) {
    kNoFooter();
    return kRequestRefused;
  }
  holder.push_back(footer);
  return kRequestOk;
}

}  // namespace BDA
