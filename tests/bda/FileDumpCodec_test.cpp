#include "FileDumpCodec.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>

#include "BulkExecuterFileDump.h"
#include "support/Bytes.h"
#include "support/PlainFileDumpCodec.h"
#include "support/RecordingPlatform.h"

namespace BDA {
namespace {

using Testing::Bytes;
using Testing::bytesOf;
namespace Plain = Testing::Plain;

#ifdef BDA_SAMPLED
constexpr unsigned kStep = 251;
#else
constexpr unsigned kStep = 1;
#endif

// Both directions read from and write to buffers of exactly their size, so that a sanitizer sees one byte too many.
Bytes encoded(const Bytes& source) {
  const std::unique_ptr<std::uint8_t[]> from(new std::uint8_t[source.size()]);
  std::copy(source.begin(), source.end(), from.get());
  const std::size_t size = FileDumpCodec::packedSize(source.size());
  const std::unique_ptr<std::uint8_t[]> to(new std::uint8_t[size]);
  EXPECT_TRUE(FileDumpCodec::encode({from.get(), source.size()}, to.get()));
  return Bytes(to.get(), to.get() + size);
}
Bytes decoded(const Bytes& packed) {
  const std::unique_ptr<std::uint8_t[]> from(new std::uint8_t[packed.size()]);
  std::copy(packed.begin(), packed.end(), from.get());
  const std::size_t size = FileDumpCodec::unpackedSize(packed.size());
  const std::unique_ptr<std::uint8_t[]> to(new std::uint8_t[size]);
  EXPECT_TRUE(FileDumpCodec::decode({from.get(), packed.size()}, to.get()));
  return Bytes(to.get(), to.get() + size);
}

Bytes randomBytes(std::size_t size, std::uint32_t seed) {
  std::mt19937 random(seed);
  Bytes bytes(size);
  std::generate(bytes.begin(), bytes.end(), [&] { return std::uint8_t(random()); });
  return bytes;
}

std::vector<std::size_t> everyLength() {
  std::vector<std::size_t> lengths;
  for (std::size_t length = 0; length <= 600; ++length) lengths.push_back(length);
  lengths.push_back(14'336);
  return lengths;
}

// The packing itself ------------------------------------------------------------------------------------------------

TEST(FileDumpCodec, TopBitsMeetInTheLeadingByteTheFirstHighest) {
  EXPECT_EQ(encoded(bytesOf("80 00 00 00 00 00 01")), bytesOf("40 00 00 00 00 00 00 01"));
  EXPECT_EQ(encoded(bytesOf("00 00 00 00 00 00 81")), bytesOf("01 00 00 00 00 00 00 01"));
  EXPECT_EQ(encoded(bytesOf("FF FF FF FF FF FF FF")), bytesOf("7F 7F 7F 7F 7F 7F 7F 7F"));
}

TEST(FileDumpCodec, AShortLastGroupLeavesTheLowBitsOfItsLeadingByteZero) {
  EXPECT_EQ(encoded(bytesOf("FF")), bytesOf("40 7F"));
  EXPECT_EQ(encoded(bytesOf("FF FF FF")), bytesOf("70 7F 7F 7F"));
}

TEST(FileDumpCodec, EightBytesAreAFullGroupAndAGroupOfTwo) {
  EXPECT_EQ(encoded(bytesOf("00 81 02 03 04 05 06 87")), bytesOf("20 00 01 02 03 04 05 06 40 07"));
  EXPECT_EQ(decoded(bytesOf("20 00 01 02 03 04 05 06 40 07")), bytesOf("00 81 02 03 04 05 06 87"));
}

TEST(FileDumpCodec, UnpackingGivesTheTopBitBack) { EXPECT_EQ(decoded(bytesOf("40 7F")), bytesOf("FF")); }

TEST(FileDumpCodec, UnpackingIgnoresBit7OfTheLeadingByteAndWhatAShortGroupLeavesFree) {
  EXPECT_EQ(decoded(bytesOf("80 00")), bytesOf("00"));
  EXPECT_EQ(decoded(bytesOf("BF 00")), bytesOf("00"));
  EXPECT_EQ(decoded(bytesOf("FF 00")), bytesOf("80"));
  EXPECT_EQ(decoded(bytesOf("80 00 00 00 00 00 00 00")), Bytes(7));
  EXPECT_EQ(decoded(bytesOf("80 00 00 00 00 00 00 00 80 00 00 00 00 00 00 00")), Bytes(14));
}

TEST(FileDumpCodec, UnpackingDoesNotMaskDataBytes) {
  EXPECT_EQ(decoded(bytesOf("00 FF")), bytesOf("FF"));
  EXPECT_EQ(decoded(bytesOf("00 FF 81 82 83 84 85 86")), bytesOf("FF 81 82 83 84 85 86"));
  EXPECT_EQ(decoded(bytesOf("00 FF 81 82 83 84 85 86 00 FF 81 82 83 84 85 86")),
            bytesOf("FF 81 82 83 84 85 86 FF 81 82 83 84 85 86"));
}

TEST(FileDumpCodec, SizesOfBothDirectionsFitEachOther) {
  for (std::size_t size = 0; size < 2000; ++size) {
    const std::size_t packed = FileDumpCodec::packedSize(size);
    EXPECT_EQ(packed, size + (size + 6) / 7);
    EXPECT_EQ(FileDumpCodec::unpackedSize(packed), size);
  }
}

// Against the plain form --------------------------------------------------------------------------------------------

TEST(FileDumpCodec, EveryGroupOfOneByte) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    const Bytes source{std::uint8_t(byte)};
    ASSERT_EQ(encoded(source), Plain::encode(source));
    ASSERT_EQ(decoded(encoded(source)), source);
  }
}

TEST(FileDumpCodec, EveryGroupOfTwoBytes) {
  for (unsigned pair = 0; pair < 65'536; pair += kStep) {
    const Bytes source{std::uint8_t(pair >> 8), std::uint8_t(pair)};
    ASSERT_EQ(encoded(source), Plain::encode(source));
    ASSERT_EQ(decoded(encoded(source)), source);
  }
}

TEST(FileDumpCodec, EveryPackedGroupOfOneByteWhateverItsTopBits) {
  for (unsigned pair = 0; pair < 65'536; pair += kStep) {
    const Bytes packed{std::uint8_t(pair >> 8), std::uint8_t(pair)};
    ASSERT_EQ(decoded(packed), Plain::decode(packed).bytes);
  }
}

TEST(FileDumpCodec, EveryPackedGroupOfTwoBytes) {
  std::array<std::uint8_t, 3> packed{};
  std::array<std::uint8_t, 2> out{};
  for (unsigned leading = 0; leading < 256; ++leading) {
    packed[0] = std::uint8_t(leading);
    const unsigned first = leading >> 6 & 1;
    const unsigned second = leading >> 5 & 1;
    for (unsigned pair = 0; pair < 65'536; pair += kStep) {
      packed[1] = std::uint8_t(pair >> 8);
      packed[2] = std::uint8_t(pair);
      ASSERT_TRUE(FileDumpCodec::decode(packed, out.data()));
      ASSERT_EQ(out[0], packed[1] | first << 7);
      ASSERT_EQ(out[1], packed[2] | second << 7);
    }
  }
}

// Whole groups travel as words: each byte of each place of the first, a middle and the last group, among neighbours of
// all ones and of all zeros.
TEST(FileDumpCodec, EveryByteAtEveryPlaceOfWholeGroups) {
  for (const std::uint8_t around : bytesOf("00 FF")) {
    for (std::size_t place = 0; place < 21; ++place) {
      for (unsigned byte = 0; byte < 256; ++byte) {
        Bytes source(21, around);
        source[place] = std::uint8_t(byte);
        ASSERT_EQ(encoded(source), Plain::encode(source)) << place;
      }
    }
    for (std::size_t place = 0; place < 24; ++place) {
      for (unsigned byte = 0; byte < 256; ++byte) {
        Bytes packed(24, around);
        packed[place] = std::uint8_t(byte);
        ASSERT_EQ(decoded(packed), Plain::decode(packed).bytes) << place;
      }
    }
  }
}

TEST(FileDumpCodec, EveryLengthIsEncodedAsThePlainForm) {
  for (const std::size_t length : everyLength()) {
    const Bytes source = randomBytes(length, std::uint32_t(length));
    ASSERT_EQ(encoded(source), Plain::encode(source)) << length;
  }
}

TEST(FileDumpCodec, EveryLengthIsDecodedAsThePlainForm) {
  for (const std::size_t length : everyLength()) {
    if (length % 8 == 1) continue;  // no packed data has this length
    const Bytes packed = randomBytes(length, std::uint32_t(length));
    ASSERT_EQ(decoded(packed), Plain::decode(packed).bytes) << length;
  }
}

TEST(FileDumpCodec, EveryLengthComesBackAndIsOfSevenBits) {
  for (const std::size_t length : everyLength()) {
    const Bytes source = randomBytes(length, 1000 + std::uint32_t(length));
    const Bytes packed = encoded(source);
    ASSERT_TRUE(std::all_of(packed.begin(), packed.end(), [](unsigned byte) { return byte < 0x80; })) << length;
    ASSERT_EQ(decoded(packed), source) << length;
  }
}

RC_GTEST_PROP(FileDumpCodecProperty, EncodesAsThePlainForm, (const std::vector<std::uint8_t>& source)) {
  RC_ASSERT(encoded(source) == Plain::encode(source));
}

RC_GTEST_PROP(FileDumpCodecProperty, DecodesAsThePlainForm, (std::vector<std::uint8_t> packed)) {
  if (packed.size() % 8 == 1) packed.pop_back();
  RC_ASSERT(decoded(packed) == Plain::decode(packed).bytes);
}

RC_GTEST_PROP(FileDumpCodecProperty, DecodingUndoesEncoding, (const std::vector<std::uint8_t>& source)) {
  RC_ASSERT(decoded(encoded(source)) == source);
}

// The steps for one group -------------------------------------------------------------------------------------------

TEST(FileDumpCodecGroup, EncodesUpTo7BytesAndRefusesMore) {
  const Bytes source = randomBytes(255, 1);
  for (unsigned count = 0; count < 256; ++count) {
    const bool isRefused = count > 7;
    const std::unique_ptr<std::uint8_t[]> out(new std::uint8_t[isRefused ? 1 : count + 1]);
    out[0] = 0xEE;
    EXPECT_EQ(BulkExecuterFileDump::encodeGroup(source.data(), std::uint8_t(count), out.get()), !isRefused) << count;
    if (isRefused) {
      EXPECT_EQ(out[0], 0xEE) << "nothing is written";
    } else if (count == 0) {
      EXPECT_EQ(out[0], 0) << "a leading byte alone";
    } else {
      const Bytes group(source.data(), source.data() + count);
      EXPECT_EQ(Bytes(out.get(), out.get() + count + 1), Plain::encode(group)) << count;
    }
  }
}

TEST(FileDumpCodecGroup, DecodesUpTo8BytesAndRefusesMore) {
  const Bytes packed = randomBytes(255, 2);
  for (unsigned count = 0; count < 256; ++count) {
    const bool isRefused = count > 8;
    const std::size_t room = isRefused || count < 2 ? 1 : count - 1;
    const std::unique_ptr<std::uint8_t[]> out(new std::uint8_t[room]);
    out[0] = 0xEE;
    EXPECT_EQ(BulkExecuterFileDump::decodeGroup(packed.data(), std::uint8_t(count), out.get()), !isRefused) << count;
    if (isRefused || count < 2) {
      EXPECT_EQ(out[0], 0xEE) << "nothing is written";
    } else {
      const Bytes group(packed.data(), packed.data() + count);
      EXPECT_EQ(Bytes(out.get(), out.get() + room), Plain::decode(group).bytes) << count;
    }
  }
}

TEST(FileDumpCodecGroup, RefusesNullPointers) {
  std::array<std::uint8_t, 8> bytes{};
  for (unsigned count = 0; count < 256; ++count) {
    EXPECT_FALSE(BulkExecuterFileDump::encodeGroup(nullptr, std::uint8_t(count), bytes.data()));
    EXPECT_FALSE(BulkExecuterFileDump::encodeGroup(bytes.data(), std::uint8_t(count), nullptr));
    EXPECT_FALSE(BulkExecuterFileDump::decodeGroup(nullptr, std::uint8_t(count), bytes.data()));
    EXPECT_FALSE(BulkExecuterFileDump::decodeGroup(bytes.data(), std::uint8_t(count), nullptr));
  }
}

// Lengths -----------------------------------------------------------------------------------------------------------

TEST(FileDumpByteCount, IsSplitInTwoTimesSevenBits) {
  for (std::uint32_t value = 0; value <= 0x3FFF; ++value) {
    std::uint8_t hi = 0xFF;
    std::uint8_t lo = 0xFF;
    ASSERT_TRUE(BulkExecuterFileDump::splitByteCount(&hi, &lo, value));
    ASSERT_EQ(hi, value / 128);
    ASSERT_EQ(lo, value % 128);
    ASSERT_EQ(BulkExecuterFileDump::joinByteCount(hi, lo), std::int32_t(value));
  }
}

TEST(FileDumpByteCount, FillsBothBytesAt3FFFAndNoMoreFitsSevenBits) {
  std::uint8_t hi = 0;
  std::uint8_t lo = 0;
  ASSERT_TRUE(BulkExecuterFileDump::splitByteCount(&hi, &lo, 0x3FFF));
  EXPECT_EQ((Bytes{hi, lo}), bytesOf("7F 7F"));
  ASSERT_TRUE(BulkExecuterFileDump::splitByteCount(&hi, &lo, 0x4000));
  EXPECT_EQ((Bytes{hi, lo}), bytesOf("80 00"));
  ASSERT_TRUE(BulkExecuterFileDump::splitByteCount(&hi, &lo, 0x8000));
  EXPECT_EQ((Bytes{hi, lo}), bytesOf("00 00")) << "the upper byte is cut off";
  ASSERT_TRUE(BulkExecuterFileDump::splitByteCount(&hi, &lo, 0xFFFFFFFF));
  EXPECT_EQ((Bytes{hi, lo}), bytesOf("FF 7F"));
}

TEST(FileDumpByteCount, IsNotSplitIntoNullPointers) {
  std::uint8_t byte = 0xEE;
  EXPECT_FALSE(BulkExecuterFileDump::splitByteCount(nullptr, &byte, 1));
  EXPECT_FALSE(BulkExecuterFileDump::splitByteCount(&byte, nullptr, 1));
  EXPECT_FALSE(BulkExecuterFileDump::splitByteCount(nullptr, nullptr, 1));
  EXPECT_EQ(byte, 0xEE);
}

TEST(FileDumpByteCount, IsJoinedFromWhateverBytes) {
  for (unsigned pair = 0; pair < 65'536; pair += kStep) {
    const std::uint8_t hi = std::uint8_t(pair >> 8);
    const std::uint8_t lo = std::uint8_t(pair);
    ASSERT_EQ(BulkExecuterFileDump::joinByteCount(hi, lo), (hi * 128) | lo);
  }
}

// Arrays ------------------------------------------------------------------------------------------------------------

class FileDumpCodecArrays : public testing::Test {
 protected:
  static std::vector<std::string> lengthError(const std::vector<std::string>& texts) {
    if (texts.size() != 2) return texts;
    EXPECT_EQ(texts[0].rfind("..\\..\\bda\\BulkExecuterFileDump.cpp:", 0), 0u) << texts[0];
    EXPECT_NE(texts[0].find(" [BDA::BulkExecuterFileDump::decode] "), std::string::npos) << texts[0];
    return {texts[1]};
  }
  Testing::TraceScope traceScope;
};

TEST_F(FileDumpCodecArrays, EncodingNothingSucceedsAndLeavesTheDestinationAsItWas) {
  Bytes destination = bytesOf("01 02 03");
  EXPECT_TRUE(BulkExecuterFileDump::encode({}, destination));
  EXPECT_EQ(destination, bytesOf("01 02 03"));
}

TEST_F(FileDumpCodecArrays, DecodingNothingSucceedsAndEmptiesTheDestination) {
  Bytes destination = bytesOf("01 02 03");
  EXPECT_TRUE(BulkExecuterFileDump::decode({}, destination));
  EXPECT_EQ(destination, Bytes());
}

TEST_F(FileDumpCodecArrays, WhatTheDestinationHeldIsReplaced) {
  for (const std::size_t before : {0U, 1U, 7U, 8U, 100U}) {
    Bytes destination(before, 0xEE);
    EXPECT_TRUE(BulkExecuterFileDump::encode(bytesOf("80 00 00 00 00 00 00 01"), destination));
    EXPECT_EQ(destination, bytesOf("40 00 00 00 00 00 00 00 00 01"));
    destination.assign(before, 0xEE);
    EXPECT_TRUE(BulkExecuterFileDump::decode(bytesOf("40 00 00 00 00 00 00 00 00 01"), destination));
    EXPECT_EQ(destination, bytesOf("80 00 00 00 00 00 00 01"));
  }
}

TEST_F(FileDumpCodecArrays, ALastGroupOfOneByteIsALengthErrorAfterTheGroupsBeforeIt) {
  Bytes destination = bytesOf("01 02 03");
  EXPECT_FALSE(BulkExecuterFileDump::decode(bytesOf("40 00 01 02 03 04 05 06 07"), destination));
  EXPECT_EQ(destination, bytesOf("80 01 02 03 04 05 06"));
  EXPECT_EQ(lengthError(traceScope.take()), std::vector<std::string>{"Length Error !!!\n"});
}

TEST_F(FileDumpCodecArrays, OneByteAloneIsALengthError) {
  Bytes destination = bytesOf("01 02 03");
  EXPECT_FALSE(BulkExecuterFileDump::decode(bytesOf("40"), destination));
  EXPECT_EQ(destination, Bytes());
  EXPECT_EQ(lengthError(traceScope.take()), std::vector<std::string>{"Length Error !!!\n"});
}

TEST_F(FileDumpCodecArrays, EveryLengthIsAsThePlainForm) {
  for (const std::size_t length : everyLength()) {
    const Bytes bytes = randomBytes(length, 3000 + std::uint32_t(length));
    Bytes packed;
    ASSERT_TRUE(BulkExecuterFileDump::encode(bytes, packed));
    ASSERT_EQ(packed, Plain::encode(bytes)) << length;
    const Plain::Unpacked plain = Plain::decode(bytes);
    Bytes unpacked;
    ASSERT_EQ(BulkExecuterFileDump::decode(bytes, unpacked), plain.isWhole) << length;
    ASSERT_EQ(unpacked, plain.bytes) << length;
    ASSERT_EQ(traceScope.take().empty(), plain.isWhole) << length;
  }
}

RC_GTEST_PROP(FileDumpCodecArraysProperty, DecodesWhateverComesAsThePlainForm,
              (const std::vector<std::uint8_t>& packed)) {
  Testing::TraceScope scope;
  const Plain::Unpacked plain = Plain::decode(packed);
  Bytes unpacked;
  RC_ASSERT(BulkExecuterFileDump::decode(packed, unpacked) == plain.isWhole);
  RC_ASSERT(unpacked == plain.bytes);
  RC_ASSERT(scope.take().size() == (plain.isWhole ? 0U : 2U));
}

// The holder of a received field ------------------------------------------------------------------------------------

TEST(FileDumpBufferTest, KeepsTypeAndNumberAndBeginsEmpty) {
  FileDumpBuffer buffer(14, 0xFEDCBA98);
  EXPECT_EQ(buffer.getContType(), 14u);
  EXPECT_EQ(buffer.getContNumber(), 0xFEDCBA98u);
  EXPECT_TRUE(buffer.isEmpty());
  EXPECT_EQ(buffer.getData(), Bytes());
}

TEST(FileDumpBufferTest, InitDataInsertsAtTheFront) {
  FileDumpBuffer buffer(1, 2);
  buffer.initData(bytesOf("01 02").data(), 2);
  EXPECT_EQ(buffer.getData(), bytesOf("01 02"));
  buffer.initData(bytesOf("03").data(), 1);
  EXPECT_EQ(buffer.getData(), bytesOf("03 01 02"));
  EXPECT_FALSE(buffer.isEmpty());
}

TEST(FileDumpBufferTest, SetDataReplaces) {
  FileDumpBuffer buffer(1, 2);
  buffer.initData(bytesOf("01 02").data(), 2);
  buffer.setData(bytesOf("04 05 06").data(), 3);
  EXPECT_EQ(buffer.getData(), bytesOf("04 05 06"));
  buffer.setData(bytesOf("07").data(), 1);
  EXPECT_EQ(buffer.getData(), bytesOf("07"));
}

TEST(FileDumpBufferTest, NoBytesMayComeFromNowhere) {
  FileDumpBuffer buffer(1, 2);
  buffer.initData(nullptr, 0);
  EXPECT_TRUE(buffer.isEmpty());
  buffer.setData(bytesOf("01").data(), 1);
  buffer.setData(nullptr, 0);
  EXPECT_TRUE(buffer.isEmpty());
}

}  // namespace
}  // namespace BDA
