#pragma once

// A bulk table on a recording platform, and what it should answer by the second map.

#include "BulkTable.h"
#include "ExecuterFixture.h"
#include "InstrumentMap.h"
#include "bda/platform/CMA/VoiceBanks.h"

namespace BDA {

// A header that a test opens, and the bank that its multi part plays when it is the header of a part's voice.
struct Opening {
  unsigned type;
  const char* address;  // null: no header at all
  CMA::BankSelect bank = {0x55, 0x55};
  unsigned bankType = 0;
};

inline constexpr CMA::BankSelect kNoBank{0x55, 0x55};
inline constexpr CMA::BankSelect kPresetBank{0x3F, 0x00};
inline constexpr CMA::BankSelect kDrumBank{0x3F, 0x20};
inline constexpr CMA::BankSelect kMixingBank{0x3F, 0x3C};
inline constexpr CMA::BankSelect kSwallowedBank{0x3F, 0x32};

// One of each kind.
inline constexpr Opening kOpenings[] = {
    {0, nullptr},
    {1, "0E 00 05"},
    {2, "0E 09 7F"},
    {3, "0E 0B 10"},
    {4, "0E 0F 00"},
    {5, "0E 20 3F"},
    {6, "0E 28 1F"},
    {7, "0E 21 00"},
    {8, "0E 2F 00"},
    {9, "0E 30 03", kNoBank, 0},
    {9, "0E 30 03", kPresetBank, 1},
    {9, "0E 30 03", kDrumBank, 2},
    {9, "0E 30 03", kMixingBank, 3},
    {10, "0E 31 0F"},
    {11, "0E 5F 00"},
    {12, "0E 41 10"},
    {13, "0E 4F 00"},
    {14, "0E 70 7F"},
    {15, "0E 7F 00"},
    {16, "0E 60 31"},
    {17, "0E 6F 00"},
};

inline void PrintTo(const Opening& opening, std::ostream* out) {
  *out << (opening.address == nullptr ? "none" : opening.address);
}
inline std::string nameOf(const testing::TestParamInfo<Opening>& info) {
  const Opening& opening = info.param;
  if (opening.address == nullptr) return "NoHeader";
  std::string name = "HeaderType" + std::to_string(opening.type);
  if (opening.type == 9) name += "OfBankType" + std::to_string(opening.bankType);
  return name;
}

class TableFixture : public ExecuterFixture {
 protected:
  static Address at(std::string_view address) {
    const Bytes bytes = bytesOf(address);
    return {bytes.at(0), bytes.at(1), bytes.at(2)};
  }
  static Address addressOf(const InstrumentMap::Block& block) { return {block.hi, block.mid, block.lo}; }

  BulkBlock* find(std::string_view address) { return table.findBulkBlock(at(address)); }
  BulkBlock* blockAt(std::string_view address) const {
    const Bytes bytes = bytesOf(address);
    return blockAt(bytes.at(0), bytes.at(1), bytes.at(2));
  }
  // The block that has these bytes, whether it may be found now or not.
  BulkBlock* blockAt(unsigned hi, unsigned mid, unsigned lo) const {
    const int position = InstrumentMap::positions()[hi << 16 | mid << 8 | lo];
    if (position < 0) return nullptr;
    return table.getList(List(InstrumentMap::listOfHighByte(hi)))[std::size_t(position)];
  }

  void selectBank(std::size_t part, CMA::BankSelect bank) {
    tools.liveMulti().parts.at(part)->bankProgram[0] = bank.msb;
    tools.liveMulti().parts.at(part)->bankProgram[1] = bank.lsb;
  }
  void selectBankOfAllParts(CMA::BankSelect bank) {
    for (std::size_t part = 0; part < 16; ++part) selectBank(part, bank);
  }
  void open(const Opening& opening) {
    selectBankOfAllParts(opening.bank);
    if (opening.address == nullptr) {
      table.resetHeader();
    } else {
      EXPECT_EQ(find(opening.address), blockAt(opening.address));
    }
  }

  static std::string mismatch(const char* function, unsigned hi, unsigned mid, unsigned lo) {
    char text[160];
    std::snprintf(text, sizeof text,
                  "BulkTable.cpp [BDA::BulkTable::%s] error : this footer don't much header! "
                  "[hi=%02x, mid=%02x, lo=%02x]\n",
                  function, hi, mid, lo);
    return text;
  }

  // What a lookup gives while `opening` is open. All parts play the same bank then.
  struct Answer {
    BulkBlock* block;
    Lines reports;
  };
  Answer expected(const Opening& opening, unsigned hi, unsigned mid, unsigned lo) const {
    BulkBlock* const block = blockAt(hi, mid, lo);
    if (block == nullptr) return {nullptr, {}};
    const unsigned type = opening.type;
    const auto onlyIf = [&](bool admitted) { return Answer{admitted ? block : nullptr, {}}; };
    switch (InstrumentMap::listOfHighByte(hi)) {
      case InstrumentMap::remote:
        return onlyIf(type == 16 || type == 17);
      case InstrumentMap::performance:
        return onlyIf(type == 12 || type == 13);
      case InstrumentMap::master:
        return onlyIf(type == 14 || type == 15);
      case InstrumentMap::multi:
        return onlyIf(type == 11);
      case InstrumentMap::normalVoice:
        if (type == 1 || type == 2 || type == 3 || type == 4 || type == 10) return {block, {}};
        if (type == 9 && (opening.bankType == 1 || opening.bankType == 3)) return {block, {}};
        return {nullptr, {mismatch("findBulkDumpNVce", hi, mid, lo)}};
      case InstrumentMap::drumVoice:
        if (type == 5 || type == 6 || type == 7 || type == 8) return {block, {}};
        if (type == 9 && opening.bankType == 2) return {block, {}};
        return {nullptr, {mismatch("findBulkDumpDVce", hi, mid, lo)}};
      case InstrumentMap::footer: {
        const unsigned bankOfHeader = type == 9 ? opening.bankType : 0;
        const Bytes header = opening.address == nullptr ? Bytes{0, 0, 0} : bytesOf(opening.address);
        Answer answer{block, {}};
        if (mid == 0x30 && bankOfHeader != opening.bankType)
          answer = {nullptr, {mismatch("findBulkDumpFooter", hi, mid, lo)}};
        if (header[1] != mid || header[2] != lo) {
          answer.block = nullptr;
          answer.reports.push_back(mismatch("findBulkDumpFooter", hi, mid, lo));
        }
        return answer;
      }
      default:
        return {block, {}};
    }
  }

  // Kept by the table and never used by it.
  MessageModelInterfaceWrapper* const owner = reinterpret_cast<MessageModelInterfaceWrapper*>(&owner_);
  BulkTable table{&creator, owner, &tools};

 private:
  int owner_ = 0;
};

}  // namespace BDA
