#include "BulkTable.h"

#include <set>

#include "TableFixture.h"
#include "support/Allocations.h"

namespace BDA {
namespace {

using Testing::allocations;

constexpr std::uint32_t kRefused = 0xFFFFFFFF;

class BulkTableTest : public TableFixture {
 protected:
  std::uint32_t request(std::string_view address) {
    holder.assign(3, nullptr);  // what it held before must go
    return table.getBulkBlockHolderForBulkReq(at(address), holder);
  }
  // The blocks of a list between a header and its footer.
  std::vector<BulkBlock*> group(unsigned header, const char* address, int list) const {
    std::vector<BulkBlock*> blocks{blockAt(address)};
    EXPECT_EQ(blocks.front()->getBlockType(), header);
    const auto& members = table.getList(List(list));
    blocks.insert(blocks.end(), members.begin(), members.end());
    blocks.push_back(blockAt("0F" + std::string(address).substr(2)));
    return blocks;
  }
  static std::string holderReport(const std::string& message) {
    return "BulkTable.cpp [BDA::BulkTable::getBulkBlockHolderForBulkReq] " + message;
  }
  void expectHeader(unsigned type, std::string_view address, unsigned bank) const {
    const HeaderAddress& header = table.getCurrentHeader();
    EXPECT_EQ(header.getBlockType(), type);
    EXPECT_TRUE(header.isEqual(at(address))) << Testing::textOf({header.getHi(), header.getMid(), header.getLo()});
    EXPECT_EQ(header.getBank(), bank);
  }

  BulkBlockHolder holder;
};

// ---- Contents ----

class ListOfTheTable : public BulkTableTest, public testing::WithParamInterface<int> {};

TEST_P(ListOfTheTable, HoldsItsBlocksInOrder) {
  const std::vector<BulkBlock*>& list = table.getList(List(GetParam()));
  const std::vector<InstrumentMap::Block>& blocks = InstrumentMap::lists()[std::size_t(GetParam())];
  ASSERT_EQ(list.size(), blocks.size());
  for (std::size_t i = 0; i < list.size(); ++i) {
    ASSERT_TRUE(list[i]->isEqual(addressOf(blocks[i]))) << "block " << i;
    ASSERT_EQ(list[i]->getBlockType(), blocks[i].type) << "block " << i;
    ASSERT_EQ(list[i]->getBlockIndex(), blocks[i].index) << "block " << i;
  }
}

// A block that is handed a message tells its executer type, index and address, and no other executer anything. Three
// bytes fit no block, so that nothing is converted.
TEST_P(ListOfTheTable, BindsEachBlockToItsExecuter) {
  constexpr std::uint32_t kNobody = 0xABCD;
  BulkExecuterCreator withoutStore(nullptr, &jobReceivers, &tools, &tools.temporaryModel, nullptr);
  BulkTable ownTable(&withoutStore, nullptr, &tools);
  const std::vector<BulkBlock*>& list = ownTable.getList(List(GetParam()));
  const std::vector<InstrumentMap::Block>& blocks = InstrumentMap::lists()[std::size_t(GetParam())];
  ASSERT_EQ(list.size(), blocks.size());
  record.records = false;
  const std::uint8_t data[3] = {};
  for (std::size_t number = 1; number <= 77; ++number)
    if (BulkExecuter* const executer = withoutStore.getExecuter(number))
      executer->setBlockInfo(Address(0x7E, 0x7E, 0x7E), kNobody, 0);
  for (std::size_t i = 0; i < list.size(); ++i) {
    BulkExecuter* const own = withoutStore.getExecuter(blocks[i].executer);
    const BDAErr result = list[i]->setBulkDumpMessage(data, sizeof data);
    const Lines texts = traceScope.take();
    if (own == nullptr) {
      ASSERT_EQ(result, BDA_ERR);
      ASSERT_EQ(reportsOf(texts),
                Lines{"BulkBlock.cpp [BDA::BulkBlock::setBulkDumpMessage] BulkExecuter is NULL !!!\n"});
      ASSERT_EQ(list[i]->getDataLength(), 0u);
      continue;
    }
    ASSERT_EQ(own->getBlockType(), blocks[i].type) << "block " << i;
    ASSERT_EQ(own->getBlockIndex(), blocks[i].index) << "block " << i;
    ASSERT_EQ(list[i]->getDataLength(), own->getDataLength()) << "block " << i;
    for (std::size_t number = 1; number <= 77; ++number) {
      BulkExecuter* const other = withoutStore.getExecuter(number);
      if (other != nullptr && other != own) {
        ASSERT_EQ(other->getBlockType(), kNobody) << "block " << i << ", executer " << number;
      }
    }
    own->setBlockInfo(Address(0x7E, 0x7E, 0x7E), kNobody, 0);
  }
}
INSTANTIATE_TEST_SUITE_P(AllThirteen, ListOfTheTable, testing::Range(0, 13));

TEST_F(BulkTableTest, StartsWithoutAHeader) { expectHeader(0, "00 00 00", 0); }

TEST_F(BulkTableTest, KeepsItsOwner) { EXPECT_EQ(table.getOwner(), owner); }

TEST_F(BulkTableTest, AsksNothingOfThePlatformToBeBuilt) {
  calls();
  recordReads();
  const BulkTable another(&creator, owner, &tools);
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(BulkTableTest, HasBlocksWithoutExecutersWhenThereIsNoCreator) {
  BulkTable bare(nullptr, nullptr, &tools);
  BulkBlock* const block = bare.findBulkBlock(at("00 00 00"));
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(block->setBulkDumpMessage(nullptr, 0), BDA_ERR);
  EXPECT_EQ(reports(), Lines{"BulkBlock.cpp [BDA::BulkBlock::setBulkDumpMessage] BulkExecuter is NULL !!!\n"});
}

TEST_F(BulkTableTest, BothWriteTriggersAreOfType47) {
  ASSERT_NE(find("11 00 00"), nullptr);
  ASSERT_NE(find("11 01 00"), nullptr);
  EXPECT_EQ(find("11 00 00")->getBlockType(), 47u);
  EXPECT_EQ(find("11 01 00")->getBlockType(), 47u);
  EXPECT_NE(find("11 00 00"), find("11 01 00"));
}

// ---- Blocks that could not be allocated ----

class BulkTableWithoutMemory : public BulkTableTest {
 protected:
  BulkTableWithoutMemory() { allocations.onlyNothrow = true; }
  ~BulkTableWithoutMemory() override { allocations = {}; }
  std::unique_ptr<BulkTable> makeTable() {
    std::unique_ptr<BulkTable> made;
    allocations.of([&] { made = std::make_unique<BulkTable>(&creator, owner, &tools); });
    return made;
  }
};

TEST_F(BulkTableWithoutMemory, DoesNotKnowABlockThatCouldNotBeAllocated) {
  allocations.failing = {1, 2};  // 40 00 00 and 40 01 00
  const auto poor = makeTable();
  EXPECT_EQ(allocations.count, 8330);  // one object each
  ASSERT_NE(poor->findBulkBlock(at("0E 00 05")), nullptr);
  EXPECT_EQ(poor->findBulkBlock(at("40 00 00")), nullptr);
  EXPECT_EQ(poor->findBulkBlock(at("40 01 00")), nullptr);
  ASSERT_NE(poor->findBulkBlock(at("40 02 00")), nullptr);
  EXPECT_EQ(poor->findBulkBlock(at("40 02 00"))->getBlockType(), 63u);
}

TEST_F(BulkTableWithoutMemory, LeavesMissingBlocksOutOfAnswers) {
  allocations.failing = {1, 24};
  const auto poor = makeTable();
  EXPECT_EQ(poor->getBulkBlockHolderForBulkReq(at("0E 00 05"), holder), 0u);
  ASSERT_EQ(holder.size(), 24u);
  for (const BulkBlock* block : holder) EXPECT_NE(block, nullptr);
  EXPECT_EQ(holder[1]->getBlockType(), 62u);
}

TEST_F(BulkTableWithoutMemory, KnowsNothingWithoutAnyBlock) {
  allocations.failingFrom = 1;
  const auto poor = makeTable();
  for (const auto& list : InstrumentMap::lists())
    for (const InstrumentMap::Block& block : list) ASSERT_EQ(poor->findBulkBlock(addressOf(block)), nullptr);
  EXPECT_EQ(poor->getBulkBlockHolderForBulkReq(at("00 00 00"), holder), kRefused);
  EXPECT_EQ(reports(), Lines{holderReport("error : not found bulk block ! [ 00 00 00 ]\n")});
}

// ---- Lookups under every header ----

class UnderAHeader : public BulkTableTest, public testing::WithParamInterface<Opening> {};

TEST_P(UnderAHeader, EveryBlockIsFoundOrRefused) {
  open(GetParam());
  for (const auto& list : InstrumentMap::lists())
    for (const InstrumentMap::Block& block : list) {
      if (block.hi == 0x0E) continue;
      const Answer answer = expected(GetParam(), block.hi, block.mid, block.lo);
      ASSERT_EQ(table.findBulkBlock(addressOf(block)), answer.block)
          << unsigned(block.hi) << ' ' << unsigned(block.mid);
      ASSERT_EQ(reports(), answer.reports);
    }
}

TEST_P(UnderAHeader, LookupsLeaveTheHeaderOpen) {
  open(GetParam());
  for (const char* address : {"00 00 00", "40 00 00", "46 00 00", "36 00 00", "0F 5F 00", "0F 30 03", "70 20 00",
                              "0E 5E 00", "0E 7F 01", "7F 00 00", "0E 80 00"})
    find(address);
  traceScope.take();
  expectHeader(GetParam().type, GetParam().address == nullptr ? "00 00 00" : GetParam().address, GetParam().bankType);
}
INSTANTIATE_TEST_SUITE_P(While, UnderAHeader, testing::ValuesIn(kOpenings), nameOf);

TEST_F(BulkTableTest, HighBytesAbove71AreUnknown) {
  for (unsigned hi = 0x72; hi < 0x100; ++hi) EXPECT_EQ(table.findBulkBlock(Address(std::uint8_t(hi), 0, 0)), nullptr);
}

TEST_F(BulkTableTest, TheMultiIsFoundOnlyAfterItsHeader) {
  EXPECT_EQ(find("36 00 00"), nullptr);
  EXPECT_EQ(reports(), Lines{});
  find("0E 5F 00");
  EXPECT_EQ(find("36 00 00"), blockAt("36 00 00"));
}

TEST_F(BulkTableTest, DrumBlocksOfANormalVoiceAreRefusedWithTheTextOfFooters) {
  find("0E 00 05");
  EXPECT_EQ(find("40 00 00"), blockAt("40 00 00"));
  EXPECT_EQ(find("46 00 00"), nullptr);
  EXPECT_EQ(reports(), Lines{"BulkTable.cpp [BDA::BulkTable::findBulkDumpDVce] error : this footer don't much header! "
                             "[hi=46, mid=00, lo=00]\n"});
}

TEST_F(BulkTableTest, TheFooterOfTheNextVoiceIsRefused) {
  find("0E 00 05");
  EXPECT_EQ(find("0F 00 05"), blockAt("0F 00 05"));
  EXPECT_EQ(find("0F 00 06"), nullptr);
  EXPECT_EQ(reports(),
            Lines{"BulkTable.cpp [BDA::BulkTable::findBulkDumpFooter] error : this footer don't much header! "
                  "[hi=0f, mid=00, lo=06]\n"});
}

TEST_F(BulkTableTest, LookupsOfOneKindSearchTheirListAlone) {
  find("0E 00 05");
  EXPECT_EQ(table.findBulkDumpNVce(at("40 00 00")), blockAt("40 00 00"));
  for (const char* other : {"46 00 00", "00 00 00", "0E 00 05", "0F 00 05", "40 00 01"}) {
    EXPECT_EQ(table.findBulkDumpNVce(at(other)), nullptr) << other;
  }
  EXPECT_EQ(table.findBulkDumpDVce(at("40 00 00")), nullptr);
  EXPECT_EQ(table.findBulkDumpFooter(at("0E 00 05")), nullptr);
  EXPECT_EQ(table.findBulkDumpFooter(at("0F 00 05")), blockAt("0F 00 05"));
  EXPECT_EQ(table.findBulkDumpHeader(at("0F 00 05")), nullptr);
  EXPECT_EQ(reports(), Lines{});
}

// ---- Headers and footers ----

TEST_F(BulkTableTest, EveryHeaderBecomesTheOpenOneAndItsFooterClosesIt) {
  selectBankOfAllParts(kDrumBank);
  for (const InstrumentMap::Block& header : InstrumentMap::lists()[InstrumentMap::header]) {
    BulkBlock* const block = table.findBulkBlock(addressOf(header));
    ASSERT_EQ(block, blockAt(header.hi, header.mid, header.lo));
    const HeaderAddress& open = table.getCurrentHeader();
    ASSERT_EQ(open.getBlockType(), header.type);
    ASSERT_TRUE(open.isEqual(header.hi, header.mid, header.lo));
    ASSERT_EQ(open.getBank(), header.type == 9 ? 2u : 0u);
    ASSERT_EQ(table.findBulkBlock(Address(0x0F, header.mid, header.lo)), blockAt(0x0F, header.mid, header.lo));
  }
  EXPECT_EQ(reports(), Lines{});
}

TEST_F(BulkTableTest, AHeaderMayComeAtAnyTimeAndReplacesTheOpenOne) {
  find("0E 5F 00");
  find("0E 0A 05");
  expectHeader(3, "0E 0A 05", 0);
  EXPECT_EQ(find("36 00 00"), nullptr);
  EXPECT_EQ(find("40 00 00"), blockAt("40 00 00"));
}

TEST_F(BulkTableTest, NothingClosesTheHeaderAfterItsFooter) {
  find("0E 0A 05");
  find("0F 0A 05");
  expectHeader(3, "0E 0A 05", 0);
  EXPECT_EQ(find("40 00 00"), blockAt("40 00 00"));
}

TEST_F(BulkTableTest, ResettingForgetsTheHeader) {
  selectBankOfAllParts(kPresetBank);
  find("0E 30 03");
  expectHeader(9, "0E 30 03", 1);
  table.resetHeader();
  expectHeader(0, "00 00 00", 0);
  EXPECT_EQ(find("36 00 00"), nullptr);
}

// By contract: block types are not compared. The footer stores what the temporary model still holds.
TEST_F(BulkTableTest, TheFooterOfTheFirstVoiceFitsWhileNoHeaderIsOpen) {
  EXPECT_EQ(find("0F 00 00"), blockAt("0F 00 00"));
  EXPECT_EQ(reports(), Lines{});
  EXPECT_EQ(find("0F 00 01"), nullptr);
  EXPECT_EQ(reports(), Lines{mismatch("findBulkDumpFooter", 0x0F, 0, 1)});
}

TEST_F(BulkTableTest, TheFooterOfAPartIsRefusedTwiceWhenBankAndAddressDiffer) {
  selectBank(3, kPresetBank);
  selectBank(4, kDrumBank);
  find("0E 30 03");
  EXPECT_EQ(find("0F 30 04"), nullptr);
  EXPECT_EQ(reports(), Lines(2, mismatch("findBulkDumpFooter", 0x0F, 0x30, 0x04)));
}

TEST_F(BulkTableTest, TheFooterOfAPartIsRefusedOnceWhenItsBankHasChanged) {
  selectBank(3, kPresetBank);
  find("0E 30 03");
  selectBank(3, kDrumBank);
  EXPECT_EQ(find("0F 30 03"), nullptr);
  EXPECT_EQ(reports(), Lines(1, mismatch("findBulkDumpFooter", 0x0F, 0x30, 0x03)));
}

TEST_F(BulkTableTest, TheFooterOfAPartIsRefusedOnceWhenOnlyItsAddressDiffers) {
  selectBankOfAllParts(kPresetBank);
  find("0E 30 03");
  EXPECT_EQ(find("0F 30 04"), nullptr);
  EXPECT_EQ(reports(), Lines(1, mismatch("findBulkDumpFooter", 0x0F, 0x30, 0x04)));
}

TEST_F(BulkTableTest, ThePartOfAFooterMayPlayAnotherBankOfTheSameKind) {
  selectBank(3, kPresetBank);
  find("0E 30 03");
  selectBank(3, {0x3F, 0x0A});
  EXPECT_EQ(find("0F 30 03"), blockAt("0F 30 03"));
}

// ---- Banks ----

// MSB, LSB and kind of every bank that is known.
constexpr struct {
  CMA::BankSelect select;
  unsigned type;
} kBanks[] = {
    {{0x3F, 0x00}, 1}, {{0x3F, 0x01}, 1}, {{0x3F, 0x02}, 1}, {{0x3F, 0x03}, 1}, {{0x3F, 0x04}, 1}, {{0x3F, 0x05}, 1},
    {{0x3F, 0x06}, 1}, {{0x3F, 0x07}, 1}, {{0x3F, 0x08}, 1}, {{0x3F, 0x09}, 1}, {{0x3F, 0x0A}, 1}, {{0x00, 0x00}, 1},
    {{0x7F, 0x00}, 2}, {{0x3F, 0x20}, 2}, {{0x3F, 0x28}, 2}, {{0x3F, 0x32}, 4}, {{0x3F, 0x3C}, 3},
};

unsigned bankTypeOf(unsigned msb, unsigned lsb) {
  for (const auto& bank : kBanks)
    if (bank.select.msb == msb && bank.select.lsb == lsb) return bank.type;
  return 0;
}

TEST_F(BulkTableTest, EveryPairOfBankSelectBytesHasItsKind) {
  record.records = false;
  unsigned known = 0;
  for (unsigned msb = 0; msb < 128; ++msb)
    for (unsigned lsb = 0; lsb < 128; ++lsb) {
      selectBank(7, {std::uint8_t(msb), std::uint8_t(lsb)});
      ASSERT_EQ(table.getBankType(7), bankTypeOf(msb, lsb)) << msb << ' ' << lsb;
      known += bankTypeOf(msb, lsb) != 0;
    }
  EXPECT_EQ(known, 17u);
}

TEST_F(BulkTableTest, EachPartHasItsOwnBank) {
  for (std::size_t part = 0; part < 16; ++part) selectBank(part, kBanks[part].select);
  for (std::uint8_t part = 0; part < 16; ++part) EXPECT_EQ(table.getBankType(part), kBanks[part].type) << int(part);
}

TEST_F(BulkTableTest, ABankIsReadFromTheLiveMulti) {
  selectBank(5, kDrumBank);
  recordReads();
  table.getBankType(5);
  EXPECT_EQ(calls(), (Lines{"multi", "multi.part[5]", "multi.part[5].bankProgram", "get(multi.part[5].bankProgram, 0)",
                            "get(multi.part[5].bankProgram, 1)"}));
}

TEST_F(BulkTableTest, APartFrom16OnHasNoBankAndTheModelIsNotAsked) {
  recordReads();
  for (unsigned part = 16; part < 256; ++part) EXPECT_EQ(table.getBankType(std::uint8_t(part)), 0u);
  EXPECT_EQ(calls(), Lines{});
}

TEST_F(BulkTableTest, ThereIsNoBankWithoutMultiPartOrGroup) {
  selectBank(5, kDrumBank);
  for (const char* missing : {"multi", "multi.part[5]", "multi.part[5].bankProgram"}) {
    record.fail(missing);
    EXPECT_EQ(table.getBankType(5), 0u) << missing;
    record.heal();
    EXPECT_EQ(table.getBankType(5), 2u);
  }
}

// ---- The voice of a multi part ----

// Where in kBanks the banks are that have voices.
std::vector<std::size_t> banksOfVoices() {
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < std::size(kBanks); ++i)
    if (kBanks[i].type != 4) places.push_back(i);
  return places;
}

class VoiceOfAPart : public BulkTableTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(VoiceOfAPart, IsNormalOrDrumByTheBankOfThePart) {
  const auto& bank = kBanks[GetParam()];
  for (std::uint8_t part = 0; part < 16; ++part) {
    selectBankOfAllParts(kSwallowedBank);
    selectBank(part, bank.select);
    BulkBlock* const header = table.findBulkBlock(Address(0x0E, 0x30, part));
    ASSERT_EQ(header, blockAt(0x0E, 0x30, part));
    EXPECT_EQ(table.getCurrentHeader().getBlockType(), 9u);
    EXPECT_EQ(table.getCurrentHeader().getBank(), bank.type);
    EXPECT_EQ(find("42 07 00") != nullptr, bank.type != 2);
    EXPECT_EQ(find("47 48 00") != nullptr, bank.type == 2);
    EXPECT_EQ(table.findBulkBlock(Address(0x0F, 0x30, part)), blockAt(0x0F, 0x30, part));
    EXPECT_EQ(reports().size(), 1u);  // of the kind that it is not
  }
}
INSTANTIATE_TEST_SUITE_P(InEveryBank, VoiceOfAPart, testing::ValuesIn(banksOfVoices()));

TEST_F(BulkTableTest, TheVoiceOfAPartInTheSwallowedBankLeavesTheHeaderAlone) {
  find("0E 5F 00");
  for (std::uint8_t part = 0; part < 16; ++part) {
    selectBankOfAllParts(kPresetBank);
    selectBank(part, kSwallowedBank);
    BulkBlock* const block = table.findBulkBlock(Address(0x0E, 0x30, part));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->getBlockType(), 125u);
    expectHeader(11, "0E 5F 00", 0);
  }
  EXPECT_EQ(reports(), Lines{});
}

TEST_F(BulkTableTest, BlocksAfterASwallowedHeaderAreRefusedByTheLookups) {
  selectBank(3, kSwallowedBank);
  find("0E 30 03");
  EXPECT_EQ(find("40 00 00"), nullptr);
  EXPECT_EQ(reports(), Lines{mismatch("findBulkDumpNVce", 0x40, 0, 0)});
  EXPECT_EQ(find("0F 30 03"), nullptr);  // another bank than the header's, which is none, and another address
  EXPECT_EQ(reports(), Lines(2, mismatch("findBulkDumpFooter", 0x0F, 0x30, 0x03)));
}

// By contract: only the swallowed bank is special. The voice stays as it was initialised, and is stored so.
TEST_F(BulkTableTest, TheVoiceOfAPartInAnUnknownBankIsOpenedAndClosedWithoutBlocks) {
  selectBank(3, kNoBank);
  EXPECT_EQ(find("0E 30 03"), blockAt("0E 30 03"));
  expectHeader(9, "0E 30 03", 0);
  EXPECT_EQ(find("40 00 00"), nullptr);
  EXPECT_EQ(find("46 00 00"), nullptr);
  EXPECT_EQ(reports(), (Lines{mismatch("findBulkDumpNVce", 0x40, 0, 0), mismatch("findBulkDumpDVce", 0x46, 0, 0)}));
  EXPECT_EQ(find("0F 30 03"), blockAt("0F 30 03"));
  EXPECT_EQ(reports(), Lines{});
}

// ---- Requests ----

TEST_F(BulkTableTest, ARequestForANormalVoiceIsAnsweredWith26Blocks) {
  EXPECT_EQ(request("0E 00 00"), 0u);
  ASSERT_EQ(holder.size(), 26u);
  std::vector<unsigned> types;
  for (const BulkBlock* block : holder) types.push_back(block->getBlockType());
  EXPECT_EQ(types, (std::vector<unsigned>{1,  61, 62, 63, 64, 65, 66, 67, 68, 69, 69, 69, 69,
                                          69, 69, 69, 69, 70, 70, 70, 70, 70, 70, 70, 70, 19}));
  EXPECT_TRUE(holder.front()->isEqual(0x0E, 0, 0));
  EXPECT_TRUE(holder.back()->isEqual(0x0F, 0, 0));
  EXPECT_EQ(holder, group(1, "0E 00 00", InstrumentMap::normalVoice));
}

TEST_F(BulkTableTest, EveryHeaderIsAnsweredWithItsGroup) {
  for (const InstrumentMap::Block& header : InstrumentMap::lists()[InstrumentMap::header]) {
    const std::string address = Testing::textOf({header.hi, header.mid, header.lo});
    int list = InstrumentMap::normalVoice;
    if (header.type >= 5 && header.type <= 8) list = InstrumentMap::drumVoice;
    if (header.type == 11) list = InstrumentMap::multi;
    if (header.type == 12 || header.type == 13) list = InstrumentMap::performance;
    if (header.type == 14 || header.type == 15) list = InstrumentMap::master;
    if (header.type == 16 || header.type == 17) list = InstrumentMap::remote;
    if (header.type == 9) {
      selectBankOfAllParts(header.lo % 2 == 0 ? kDrumBank : header.lo % 4 == 1 ? kPresetBank : kMixingBank);
      if (header.lo % 2 == 0) list = InstrumentMap::drumVoice;
    }
    ASSERT_EQ(request(address), 0u) << address;
    ASSERT_EQ(holder, group(header.type, address.c_str(), list)) << address;
    ASSERT_TRUE(table.getCurrentHeader().isEqual(header.hi, header.mid, header.lo));
  }
  EXPECT_EQ(reports(), Lines{});
}

TEST_F(BulkTableTest, BlocksThatStandAloneAreAnsweredAlone) {
  for (const int list : {InstrumentMap::system, InstrumentMap::editorName, InstrumentMap::fileDump,
                         InstrumentMap::screenCap, InstrumentMap::favorite})
    for (const InstrumentMap::Block& block : InstrumentMap::lists()[std::size_t(list)]) {
      const std::string address = Testing::textOf({block.hi, block.mid, block.lo});
      ASSERT_EQ(request(address), 0u) << address;
      ASSERT_EQ(holder, std::vector<BulkBlock*>{blockAt(address)}) << address;
    }
  EXPECT_EQ(reports(), Lines{});
  expectHeader(0, "00 00 00", 0);
}

class RequestUnderAHeader : public BulkTableTest, public testing::WithParamInterface<Opening> {};

TEST_P(RequestUnderAHeader, IsRefusedForParameterBlocksAndFooters) {
  open(GetParam());
  for (const int list :
       {InstrumentMap::footer, InstrumentMap::normalVoice, InstrumentMap::drumVoice, InstrumentMap::multi,
        InstrumentMap::performance, InstrumentMap::master, InstrumentMap::remote})
    for (const InstrumentMap::Block& block : InstrumentMap::lists()[std::size_t(list)]) {
      if (block.type == 16 || block.type == 17) continue;  // remote footers: see below
      const Answer answer = expected(GetParam(), block.hi, block.mid, block.lo);
      const std::string address = Testing::textOf({block.hi, block.mid, block.lo});
      Lines lines = answer.reports;
      char text[80];
      if (answer.block == nullptr)
        std::snprintf(text, sizeof text, "error : not found bulk block ! [ %02x %02x %02x ]\n", unsigned(block.hi),
                      unsigned(block.mid), unsigned(block.lo));
      else
        std::snprintf(text, sizeof text, "error : invalid bulk req address ! [ blockType = %u ]\n", block.type);
      lines.push_back(holderReport(text));
      ASSERT_EQ(request(address), kRefused) << address;
      ASSERT_EQ(reports(), lines) << address;
      ASSERT_TRUE(holder.empty()) << address;
    }
}
INSTANTIATE_TEST_SUITE_P(While, RequestUnderAHeader, testing::ValuesIn(kOpenings), nameOf);

TEST_F(BulkTableTest, ARequestForABlockOfAnOpenVoiceNamesItsType) {
  find("0E 00 05");
  EXPECT_EQ(request("40 00 00"), kRefused);
  EXPECT_EQ(reports(), Lines{holderReport("error : invalid bulk req address ! [ blockType = 61 ]\n")});
}

TEST_F(BulkTableTest, ARequestForABlockWithoutAHeaderIsNotFound) {
  EXPECT_EQ(request("40 00 00"), kRefused);
  EXPECT_EQ(reports(), (Lines{mismatch("findBulkDumpNVce", 0x40, 0, 0),
                              holderReport("error : not found bulk block ! [ 40 00 00 ]\n")}));
}

TEST_F(BulkTableTest, ARequestForNoAddressOfTheMapIsNotFound) {
  EXPECT_EQ(request("0E 60 32"), kRefused);
  EXPECT_EQ(reports(), Lines{holderReport("error : not found bulk block ! [ 0e 60 32 ]\n")});
  EXPECT_EQ(request("7F FF 80"), kRefused);
  EXPECT_EQ(reports(), Lines{holderReport("error : not found bulk block ! [ 7f ff 80 ]\n")});
}

// By contract: remote footers are of a header's type.
TEST_F(BulkTableTest, ARequestForAnOpenRemoteFooterIsAnsweredLikeItsHeader) {
  for (const auto& [header, footer] : {std::pair{"0E 60 31", "0F 60 31"}, std::pair{"0E 6F 00", "0F 6F 00"}}) {
    find(header);
    EXPECT_EQ(request(footer), 0u);
    std::vector<BulkBlock*> answer{blockAt(footer)};
    const auto& blocks = table.getList(List::remote);
    answer.insert(answer.end(), blocks.begin(), blocks.end());
    answer.push_back(blockAt(footer));
    EXPECT_EQ(holder, answer);
    EXPECT_EQ(reports(), Lines{});
  }
}

TEST_F(BulkTableTest, ARequestForARemoteFooterWithoutItsHeaderIsNotFound) {
  EXPECT_EQ(request("0F 6F 00"), kRefused);
  EXPECT_EQ(reports(), (Lines{mismatch("findBulkDumpFooter", 0x0F, 0x6F, 0),
                              holderReport("error : not found bulk block ! [ 0f 6f 00 ]\n")}));
}

TEST_F(BulkTableTest, ARequestForTheVoiceOfAPartInTheSwallowedBankGivesNothingToSend) {
  selectBank(3, kSwallowedBank);
  EXPECT_EQ(request("0E 30 03"), 0u);
  EXPECT_TRUE(holder.empty());
  expectHeader(0, "00 00 00", 0);
}

TEST_F(BulkTableTest, ARequestForTheVoiceOfAPartInAnUnknownBankIsRefused) {
  selectBank(3, kNoBank);
  EXPECT_EQ(request("0E 30 03"), kRefused);
  EXPECT_EQ(reports(), Lines{holderReport("error : invalid bank Type ! [ bank = 0 ] \n")});
  EXPECT_EQ(holder, std::vector<BulkBlock*>{blockAt("0E 30 03")});
}

// The bank is asked for once per step; a multi that changes in between is noticed.
class PartThatChangesDuringARequest : public BulkTableTest {
 protected:
  void changeAt(unsigned nth, CMA::BankSelect bank) {
    record.during("multi", [this, nth, bank] {
      if (++uses == nth) selectBank(3, bank);
    });
  }
  unsigned uses = 0;
};

TEST_F(PartThatChangesDuringARequest, GivesNothingToSendWhenItsBankIsSwallowed) {
  selectBank(3, kPresetBank);
  changeAt(2, kSwallowedBank);
  EXPECT_EQ(request("0E 30 03"), 0u);
  EXPECT_TRUE(holder.empty());
  EXPECT_EQ(uses, 2u);
}

TEST_F(PartThatChangesDuringARequest, LacksItsFooterWhenItsBankChangesLast) {
  selectBank(3, kPresetBank);
  changeAt(3, kDrumBank);
  EXPECT_EQ(request("0E 30 03"), kRefused);
  EXPECT_EQ(reports(), (Lines{mismatch("findBulkDumpFooter", 0x0F, 0x30, 0x03),
                              holderReport("error : not found footer bulk block !\n")}));
  EXPECT_EQ(holder.size(), 25u);  // what was found before stays
}

}  // namespace
}  // namespace BDA
