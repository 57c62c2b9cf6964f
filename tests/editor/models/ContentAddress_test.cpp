#include "models/ContentAddress.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <vector>

#include "AddressRows.h"

namespace Editor {
namespace {

constexpr auto kVoiceType = ContSrv::ContType_Voice;

template <typename Visit>
void forEachMidLo(Visit visit) {
  for (unsigned mid = 0; mid < 256; ++mid)
    for (unsigned lo = 0; lo < 256; ++lo) visit(MidLo{std::uint8_t(mid), std::uint8_t(lo)});
}

std::vector<ContentId> allContents() {
  std::vector<ContentId> contents;
  for (unsigned bank = 0; bank < kBankCount; ++bank)
    for (unsigned voice = 0; voice < kVoicesPerBank[bank]; ++voice)
      contents.push_back({kVoiceType, voiceContentNumber(bank, std::uint8_t(voice))});
  for (std::uint32_t number = 0x3F8010; number <= 0x3F87FF; ++number) contents.push_back({kVoiceType, number});
  for (std::uint32_t i = 0; i < 128; ++i) contents.push_back({ContSrv::ContType_Multi, i});
  for (std::uint32_t i = 0; i < 256; ++i) contents.push_back({kContentPerformance, i});
  for (std::uint32_t i = 0; i < 128; ++i) contents.push_back({kContentMaster, i});
  for (std::uint32_t i = 0; i < 50; ++i) contents.push_back({kContentRemote, i});
  contents.push_back({ContSrv::ContType_Single, 0});
  return contents;
}

ContentId header(int mid, int lo) {
  const auto id = contentOfHeader({std::uint8_t(mid), std::uint8_t(lo)});
  EXPECT_TRUE(id.has_value()) << mid << ' ' << lo;
  return id.value_or(ContentId{});
}

TEST(ContentAddress, AVoicesNumberIsItsBankSelectAndItsPlace) {
  EXPECT_EQ(voiceContentNumber(0, 5), 0x3F0005u);
  EXPECT_EQ(voiceContentNumber(7, 127), 0x3F077Fu);
  EXPECT_EQ(voiceContentNumber(8, 0), 0x3F0800u);
  EXPECT_EQ(voiceContentNumber(10, 0), 0x3F0A00u);
  EXPECT_EQ(voiceContentNumber(11, 63), 0x3F203Fu);
  EXPECT_EQ(voiceContentNumber(12, 31), 0x3F281Fu);
  EXPECT_EQ(voiceContentNumber(13, 1), 0x000001u);
  EXPECT_EQ(voiceContentNumber(14, 0), 0x7F0000u);
  EXPECT_EQ(voiceContentNumber(15, 15), 0x3F3C0Fu);
}

TEST(ContentAddress, ThePlaceAfterABanksLastVoiceHasANumberButNoContent) {
  for (unsigned bank = 0; bank < kBankCount; ++bank) {
    const std::uint8_t count = kVoicesPerBank[bank];
    EXPECT_EQ(voiceContentNumber(bank, count), voiceContentNumber(bank, 0) + count);
    EXPECT_FALSE(isContent({kVoiceType, voiceContentNumber(bank, count)})) << bank;
    EXPECT_TRUE(isContent({kVoiceType, voiceContentNumber(bank, std::uint8_t(count - 1))})) << bank;
  }
}

TEST(ContentAddress, NoContentHasTheNumberOfAnUnknownBank) {
  std::set<std::uint32_t> numbers;
  for (unsigned bank = 16; bank < 256; ++bank)
    for (unsigned voice = 0; voice < 256; ++voice) {
      const std::uint32_t number = voiceContentNumber(bank, std::uint8_t(voice));
      ASSERT_FALSE(isContent({kVoiceType, number}));
      ASSERT_NE(number, ContSrv::ContentNumber_All);
      ASSERT_TRUE(numbers.insert(number).second);
    }
}

TEST(ContentAddress, HasTheBanksOfTheInstrument) {
  EXPECT_EQ(bankOf(0x3F, 0x0A), 10u);
  EXPECT_EQ(bankOf(0x3F, 0x28), 12u);
  EXPECT_EQ(bankOf(0x00, 0x00), 13u);
  EXPECT_EQ(bankOf(0x7F, 0x00), 14u);
  EXPECT_EQ(bankOf(0x3F, 0x3C), 15u);
  int known = 0;
  for (int msb = 0; msb < 256; ++msb)
    for (int lsb = 0; lsb < 256; ++lsb) known += bankOf(std::uint8_t(msb), std::uint8_t(lsb)).has_value();
  EXPECT_EQ(known, 16);
  for (unsigned bank = 0; bank < 16; ++bank)
    EXPECT_EQ(isDrumBank(bank), bank == 11 || bank == 12 || bank == 14) << bank;
}

TEST(ContentAddress, NumbersMixingVoicesMultiByMulti) {
  EXPECT_EQ(mixingVoiceNumber(1, 0), 0x3F8010u);
  EXPECT_EQ(mixingVoiceNumber(5, 3), 0x3F8053u);
  EXPECT_EQ(mixingVoiceNumber(127, 15), 0x3F87FFu);
  EXPECT_FALSE(isContent({kVoiceType, mixingVoiceNumber(128, 0)}));
  EXPECT_FALSE(isContent({kVoiceType, mixingVoiceNumber(0, 16)}));
}

TEST(ContentAddress, KeepsTheMixingVoicesOfMulti0AsBank15) {
  for (std::uint32_t voice = 0; voice < 16; ++voice) {
    const ContentId known{kVoiceType, 0x3F3C00 + voice};
    EXPECT_EQ(mixingVoiceNumber(0, voice), known.number);
    EXPECT_EQ(canonical({kVoiceType, 0x3F8000 + voice}), known);
    EXPECT_EQ(canonical(known), known);
    EXPECT_TRUE(isMixingVoice({kVoiceType, 0x3F8000 + voice}));
    EXPECT_TRUE(isMixingVoice(known));
    EXPECT_TRUE(isContent({kVoiceType, 0x3F8000 + voice}));
    EXPECT_EQ(headerOf(ContentId{kVoiceType, 0x3F8000 + voice}), (MidLo{0x31, std::uint8_t(voice)}));
    EXPECT_EQ(contentOfFileDump({std::uint8_t(0x10 + voice), 0}), known);
  }
  EXPECT_EQ(canonical({kVoiceType, 0x3F8010}), (ContentId{kVoiceType, 0x3F8010}));
  EXPECT_EQ(canonical({ContSrv::ContType_Multi, 0x3F8000}), (ContentId{ContSrv::ContType_Multi, 0x3F8000}));
}

TEST(ContentAddress, KnowsMixingVoicesFromOthers) {
  EXPECT_TRUE(isMixingVoice({kVoiceType, 0x3F87FF}));
  EXPECT_FALSE(isMixingVoice({kVoiceType, 0x3F8800}));
  EXPECT_FALSE(isMixingVoice({kVoiceType, 0x3F3C10}));
  EXPECT_FALSE(isMixingVoice({kVoiceType, 0x3F0805}));
  EXPECT_FALSE(isMixingVoice({ContSrv::ContType_Multi, 0x3F8020}));
}

TEST(ContentAddress, KnowsDrumVoicesFromOthers) {
  EXPECT_TRUE(isDrumVoice(header(0x20, 0)));
  EXPECT_TRUE(isDrumVoice(header(0x21, 0)));
  EXPECT_TRUE(isDrumVoice(header(0x28, 0x1F)));
  EXPECT_FALSE(isDrumVoice(header(0x0A, 0)));
  EXPECT_FALSE(isDrumVoice(header(0x31, 0)));
  EXPECT_FALSE(isDrumVoice(header(0x40, 0)));
}

TEST(ContentAddress, voicesOfAllBanksButTheMixingOnesCanBeFavourites) {
  for (const int mid : {0x00, 0x07, 0x09, 0x0A, 0x0C, 0x20, 0x21, 0x28})
    EXPECT_TRUE(canBeFavourite(header(std::uint8_t(mid), 0))) << mid;
  EXPECT_FALSE(canBeFavourite(header(0x31, 0)));
  EXPECT_FALSE(canBeFavourite({ContSrv::ContType_Voice, mixingVoiceNumber(3, 4)}));
  EXPECT_FALSE(canBeFavourite({ContSrv::ContType_Multi, 0}));
  EXPECT_FALSE(canBeFavourite(header(0x40, 0)));
  EXPECT_FALSE(canBeFavourite(header(0x70, 0)));
}

TEST(ContentAddress, HeadersNameTheirContents) {
  EXPECT_EQ(header(0x00, 0x05), (ContentId{kVoiceType, 0x3F0005}));
  EXPECT_EQ(header(0x09, 0x7F), (ContentId{kVoiceType, 0x00007F}));
  EXPECT_EQ(header(0x0A, 0x05), (ContentId{kVoiceType, 0x3F0805}));
  EXPECT_EQ(header(0x0C, 0x00), (ContentId{kVoiceType, 0x3F0A00}));
  EXPECT_EQ(header(0x20, 0x3F), (ContentId{kVoiceType, 0x3F203F}));
  EXPECT_EQ(header(0x21, 0x00), (ContentId{kVoiceType, 0x7F0000}));
  EXPECT_EQ(header(0x28, 0x01), (ContentId{kVoiceType, 0x3F2801}));
  EXPECT_EQ(header(0x31, 0x0F), (ContentId{kVoiceType, 0x3F3C0F}));
  EXPECT_EQ(header(0x40, 0x11), (ContentId{kContentPerformance, 0x11}));
  EXPECT_EQ(header(0x41, 0x11), (ContentId{kContentPerformance, 0x91}));
  EXPECT_EQ(header(0x70, 0x02), (ContentId{kContentMaster, 0x02}));
  EXPECT_EQ(header(0x60, 0x31), (ContentId{kContentRemote, 0x31}));
}

TEST(ContentAddress, EveryHeaderNamesOneContentOrAnEditBufferAndNothingElseDoes) {
  std::map<std::pair<unsigned, unsigned>, unsigned> types;
  BDA::forEachAddress(BDA::kHeaderRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    types[{mid, lo}] = row.type;
  });
  ASSERT_EQ(types.size(), 2105u);
  std::set<ContentId> contents;
  int editBuffers = 0;
  forEachMidLo([&](MidLo address) {
    const auto known = types.find({address.mid, address.lo});
    ASSERT_EQ(headerTypeOf(address), known == types.end() ? 0u : known->second);
    const std::optional<ContentId> id = contentOfHeader(address);
    if (known == types.end()) {
      ASSERT_FALSE(id);
      return;
    }
    const std::optional<EditBuffer> buffer = editBufferOf(address.mid);
    ASSERT_NE(id.has_value(), buffer.has_value());
    if (buffer) {
      ++editBuffers;
      ASSERT_EQ(headerOf(*buffer, address.lo), address);
    } else {
      ASSERT_TRUE(isContent(*id));
      ASSERT_EQ(canonical(*id), *id);
      ASSERT_TRUE(contents.insert(*id).second) << "two headers name one content";
      ASSERT_EQ(headerOf(*id), address);
    }
  });
  EXPECT_EQ(editBuffers, 22) << "six single ones, sixteen part voices";
  EXPECT_EQ(contents.size(), 2105u - 22u);
}

TEST(ContentAddress, EditBuffersHaveTheirMiddleBytes) {
  EXPECT_EQ(editBufferOf(0x0F), EditBuffer::normalVoice);
  EXPECT_EQ(editBufferOf(0x2F), EditBuffer::drumVoice);
  EXPECT_EQ(editBufferOf(0x30), EditBuffer::partVoice);
  EXPECT_EQ(editBufferOf(0x4F), EditBuffer::performance);
  EXPECT_EQ(editBufferOf(0x5F), EditBuffer::multi);
  EXPECT_EQ(editBufferOf(0x6F), EditBuffer::remote);
  EXPECT_EQ(editBufferOf(0x7F), EditBuffer::master);
  int count = 0;
  for (int mid = 0; mid < 256; ++mid) count += editBufferOf(std::uint8_t(mid)).has_value();
  EXPECT_EQ(count, 7);
  EXPECT_EQ(headerOf(EditBuffer::partVoice, 9), (MidLo{0x30, 9}));
  EXPECT_EQ(headerOf(EditBuffer::multi, 9), (MidLo{0x5F, 0}));
}

TEST(ContentAddress, EveryFileDumpAddressNamesAContentAndNothingElseDoes) {
  std::set<std::pair<unsigned, unsigned>> known;
  BDA::forEachAddress(BDA::kFileDumpRows, [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    if (row.hi == 0x0C) known.insert({mid, lo});
  });
  std::set<ContentId> contents;
  forEachMidLo([&](MidLo address) {
    const std::optional<ContentId> id = contentOfFileDump(address);
    ASSERT_EQ(id.has_value(), known.count({address.mid, address.lo}) == 1)
        << int(address.mid) << ' ' << int(address.lo);
    if (!id) return;
    ASSERT_TRUE(isContent(*id));
    ASSERT_EQ(canonical(*id), *id);
    contents.insert(*id);
    const MidLo back = fileDumpOf(*id).value();
    const bool isBank15 = address.lo == 0 && address.mid >= 0x10 && address.mid <= 0x1F;
    ASSERT_EQ(back, isBank15 ? (MidLo{0x31, std::uint8_t(address.mid - 0x10)}) : address);
  });
  EXPECT_EQ(contents.size(), known.size() - 16) << "the voices of bank 15 have two addresses each";
}

TEST(ContentAddress, EveryContentHasAnAddress) {
  for (const ContentId id : allContents()) {
    ASSERT_TRUE(isContent(id)) << id.type << ' ' << id.number;
    const std::optional<MidLo> header = headerOf(id);
    const std::optional<MidLo> dump = fileDumpOf(id);
    ASSERT_TRUE(header || dump) << id.type << ' ' << id.number;
    if (header) {
      ASSERT_EQ(contentOfHeader(*header), id);
    }
    if (dump) {
      ASSERT_EQ(contentOfFileDump(*dump), id);
    }
  }
}

TEST(ContentAddress, KnowsNoOtherContents) {
  for (const ContentId id :
       {ContentId{ContSrv::ContType_None, 0}, ContentId{ContSrv::ContType_Multi, 128}, ContentId{kVoiceType, 0x3F0B00},
        ContentId{kVoiceType, 0x3F8800}, ContentId{kVoiceType, 0x013F0005}, ContentId{kVoiceType, 0xFFFFFFFF},
        ContentId{ContSrv::ContType_Single, 1}, ContentId{kContentPerformance, 256}, ContentId{kContentMaster, 128},
        ContentId{kContentRemote, 50}, ContentId{77, 0}}) {
    EXPECT_FALSE(isContent(id)) << id.type << ' ' << id.number;
    EXPECT_FALSE(headerOf(id)) << id.type << ' ' << id.number;
    EXPECT_FALSE(fileDumpOf(id)) << id.type << ' ' << id.number;
  }
}

TEST(ContentAddress, TypesOfContentsAreToldApart) {
  const std::set<ContSrv::_ContType> types{
      ContSrv::ContType_None, ContSrv::ContType_Multi, kVoiceType,    ContSrv::ContType_Single,
      kContentPerformance,    kContentMaster,          kContentRemote};
  EXPECT_EQ(types.size(), 7u);
}

}  // namespace
}  // namespace Editor
