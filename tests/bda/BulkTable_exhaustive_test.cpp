#include "TableFixture.h"

namespace BDA {
namespace {

class EveryAddress : public TableFixture, public testing::WithParamInterface<Opening> {};

// All but the headers themselves, which would open another one.
TEST_P(EveryAddress, IsFoundOrRefusedAsTheOpenHeaderSays) {
  open(GetParam());
  record.records = false;
  for (unsigned hi = 0; hi < 0x100; ++hi)
    for (unsigned mid = 0; mid < 0x80 && hi != 0x0E; ++mid)
      for (unsigned lo = 0; lo < 0x80; ++lo) {
        BulkBlock* const block = table.findBulkBlock(Address(std::uint8_t(hi), std::uint8_t(mid), std::uint8_t(lo)));
        const Answer answer = expected(GetParam(), hi, mid, lo);
        ASSERT_EQ(block, answer.block) << hi << ' ' << mid << ' ' << lo;
        if (const Lines texts = traceScope.take(); !texts.empty() || !answer.reports.empty()) {
          ASSERT_EQ(reportsOf(texts), answer.reports);
        }
      }
}
INSTANTIATE_TEST_SUITE_P(While, EveryAddress, testing::ValuesIn(kOpenings), nameOf);

class EveryHeader : public TableFixture {};

TEST_F(EveryHeader, IsClosedByItsOwnFooterAlone) {
  selectBankOfAllParts(kPresetBank);
  record.records = false;
  for (const InstrumentMap::Block& header : InstrumentMap::lists()[InstrumentMap::header]) {
    ASSERT_NE(table.findBulkBlock(addressOf(header)), nullptr);
    std::size_t found = 0;
    for (const InstrumentMap::Block& footer : InstrumentMap::lists()[InstrumentMap::footer]) {
      const bool closes = footer.mid == header.mid && footer.lo == header.lo;
      const BulkBlock* const block = table.findBulkBlock(addressOf(footer));
      ASSERT_EQ(block != nullptr, closes);
      found += block != nullptr;
      const bool otherBank = footer.type == 27 && header.type != 9;
      ASSERT_EQ(traceScope.take().size(), closes ? 0u : otherBank ? 4u : 2u);
    }
    ASSERT_EQ(found, 1u);
  }
}

}  // namespace
}  // namespace BDA
