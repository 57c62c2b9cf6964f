#include "messages/AddressNames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>
#include <stdexcept>

#include "AddressRows.h"

using Editor::BulkAddress;
using Editor::describeAddress;
using Editor::nameOf;
using Editor::parseAddress;
using testing::HasSubstr;
using testing::Not;

namespace {

template <typename Visit>
void forEachAddress(Visit visit) {
  BDA::forEachBlock([&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) {
    visit(BulkAddress{row.hi, mid, lo}, row);
  });
}

std::string whyNot(const std::string& text) {
  try {
    parseAddress(text);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "accepted";
}

}  // namespace

TEST(AddressNames, everyBlockOfTheMapIsFoundWithItsType) {
  std::size_t blocks = 0;
  forEachAddress([&](BulkAddress address, const BDA::AddressRow& row) {
    ++blocks;
    const auto found = Editor::findBlock(address);
    ASSERT_TRUE(found) << formatAddress(address);
    EXPECT_EQ(found->type, row.type) << formatAddress(address);
  });
  EXPECT_EQ(blocks, BDA::kBlockCount);
}

TEST(AddressNames, addressesOutsideTheMapAreUnknown) {
  for (const BulkAddress address : {BulkAddress{0x46, 0x06, 0x00},
                                    {0x47, 0x49, 0x00},
                                    {0x0E, 0x60, 0x32},
                                    {0x0C, 0x21, 0x01},
                                    {0x00, 0x56, 0x00},
                                    {0x7F, 0x00, 0x00}}) {
    EXPECT_FALSE(Editor::findBlock(address)) << formatAddress(address);
    EXPECT_EQ(describeAddress(address), "unknown address");
    EXPECT_FALSE(nameOf(address));
  }
}

TEST(AddressNames, everyHeaderAndFileDumpHasANameOfItsOwnThatParsesBack) {
  std::set<std::string> names;
  std::size_t named = 0;
  forEachAddress([&](BulkAddress address, const BDA::AddressRow& row) {
    const auto name = nameOf(address);
    const std::size_t list = BDA::listOf(row.hi);
    const bool isContent = list == std::size_t(BDA::List::header) || list == std::size_t(BDA::List::fileDump);
    EXPECT_TRUE(name || !isContent) << formatAddress(address);
    if (!name) return;
    ++named;
    EXPECT_TRUE(names.insert(*name).second) << *name << " names two addresses";
    EXPECT_EQ(parseAddress(*name), address) << *name;
  });
  EXPECT_GE(named, 2105u + 3828u);
}

TEST(AddressNames, theWordsTellAllBlocksApart) {
  std::map<std::string, BulkAddress> words;
  forEachAddress([&](BulkAddress address, const BDA::AddressRow&) {
    const std::string text = describeAddress(address);
    EXPECT_NE(text, "unknown address") << formatAddress(address);
    const auto [known, isNew] = words.emplace(text, address);
    EXPECT_TRUE(isNew) << text << ": " << formatAddress(address) << " and " << formatAddress(known->second);
  });
}

TEST(AddressNames, wordsCountFromOne) {
  EXPECT_EQ(describeAddress({0x0E, 0x0A, 0x05}), "normal voice user 1, 006: header");
  EXPECT_EQ(describeAddress({0x0F, 0x0A, 0x05}), "normal voice user 1, 006: footer");
  EXPECT_EQ(describeAddress({0x0F, 0x60, 0x31}), "remote setting 50: footer");
  EXPECT_EQ(describeAddress({0x41, 0x02, 0x00}), "element 3 oscillator");
  EXPECT_EQ(describeAddress({0x0E, 0x41, 0x11}), "performance B, 018: header");
  EXPECT_EQ(describeAddress({0x47, 0x48, 0x00}), "drum key 73");
  EXPECT_EQ(describeAddress({0x00, 0x00, 0x00}), "system common");
  EXPECT_EQ(describeAddress({0x00, 0x50, 0x00}), "system quick setup 1");
  EXPECT_EQ(describeAddress({0x0C, 0x0A, 0x05}), "file dump of voice user1:6");
  EXPECT_EQ(describeAddress({0x11, 0x00, 0x00}), "write trigger");
  EXPECT_EQ(describeAddress({0x71, 0x00, 0x00}), "favourites of preset bank 1");
  EXPECT_EQ(describeAddress({0x70, 0x20, 0x02}), "waveform names 33 to 48");
  EXPECT_EQ(describeAddress({0x0E, 0x31, 0x45}), "mixing voice 6: header of an empty voice");
}

TEST(AddressNames, namesAreThoseOfTheContract) {
  EXPECT_EQ(nameOf({0x0E, 0x0A, 0x05}), "voice:user1:6");
  EXPECT_EQ(nameOf({0x0E, 0x02, 0x7F}), "voice:preset3:128");
  EXPECT_EQ(nameOf({0x0E, 0x09, 0x00}), "voice:gm:1");
  EXPECT_EQ(nameOf({0x0E, 0x0F, 0x00}), "voice:edit");
  EXPECT_EQ(nameOf({0x0E, 0x30, 0x03}), "voice:part:4");
  EXPECT_EQ(nameOf({0x0E, 0x31, 0x00}), "voice:mix:1");
  EXPECT_EQ(nameOf({0x0E, 0x20, 0x00}), "drum:preset:1");
  EXPECT_EQ(nameOf({0x0E, 0x28, 0x02}), "drum:user:3");
  EXPECT_EQ(nameOf({0x0E, 0x21, 0x00}), "drum:gm");
  EXPECT_EQ(nameOf({0x0E, 0x2F, 0x00}), "drum:edit");
  EXPECT_EQ(nameOf({0x0E, 0x40, 0x00}), "performance:a:1");
  EXPECT_EQ(nameOf({0x0E, 0x41, 0x11}), "performance:b:18");
  EXPECT_EQ(nameOf({0x0E, 0x4F, 0x00}), "performance:edit");
  EXPECT_EQ(nameOf({0x0E, 0x5F, 0x00}), "multi:edit");
  EXPECT_EQ(nameOf({0x0E, 0x70, 0x00}), "master:1");
  EXPECT_EQ(nameOf({0x0E, 0x7F, 0x00}), "master:edit");
  EXPECT_EQ(nameOf({0x0E, 0x60, 0x31}), "remote:50");
  EXPECT_EQ(nameOf({0x0E, 0x6F, 0x00}), "remote:edit");
  EXPECT_EQ(nameOf({0x0C, 0x0A, 0x05}), "file:voice:user1:6");
  EXPECT_EQ(nameOf({0x0C, 0x12, 0x6D}), "file:mix:110:3");
  EXPECT_EQ(nameOf({0x0C, 0x50, 0x00}), "file:multi:1");
  EXPECT_EQ(nameOf({0x0C, 0x7F, 0x00}), "file:single");
  EXPECT_FALSE(nameOf({0x41, 0x02, 0x00}));
  EXPECT_FALSE(nameOf({0x0F, 0x0A, 0x05}));
}

TEST(AddressNames, aNameHasItsBytesBehindItAndBytesStandOnce) {
  using Editor::nameAndBytes;
  EXPECT_EQ(nameAndBytes({0x0E, 0x0A, 0x05}), "voice:user1:6 (0E 0A 05)");
  EXPECT_EQ(nameAndBytes({0x0E, 0x0A, 0x05}, "a header"), "voice:user1:6 (0E 0A 05, a header)");
  EXPECT_EQ(nameAndBytes({0x7F, 0x00, 0x00}), "7F 00 00");
  EXPECT_EQ(nameAndBytes({0x7F, 0x00, 0x00}, "unknown"), "7F 00 00 (unknown)");
}

TEST(AddressNames, threeHexBytesAreReadInEveryForm) {
  const BulkAddress address{0x0E, 0x0A, 0x05};
  for (const char* text : {"0E0A05", "0e0a05", "0E 0A 05", "0E/0A/05"}) EXPECT_EQ(parseAddress(text), address) << text;
  EXPECT_EQ(parseAddress("7E0000"), (BulkAddress{0x7E, 0, 0}));  // in the map or not
  EXPECT_EQ(parseAddress("Voice:User1:6"), address);
}

TEST(AddressNames, whatCannotBeReadSaysWhatWasExpected) {
  EXPECT_THAT(whyNot("0E0A"), HasSubstr("expected three hex bytes"));
  EXPECT_THAT(whyNot("0E0A0505"), HasSubstr("expected three hex bytes"));
  EXPECT_THAT(whyNot("0E0A80"), HasSubstr("00 to 7F"));
  EXPECT_THAT(whyNot(""), HasSubstr("expected three hex bytes"));
  EXPECT_THAT(whyNot("voice"), HasSubstr("voice:user1..3:1..128"));
  EXPECT_THAT(whyNot("voice:user4:1"), HasSubstr("expected voice:user1..3:1..128"));
  EXPECT_THAT(whyNot("voice:user1:0"), HasSubstr("expected voice:user1..3:1..128"));
  EXPECT_THAT(whyNot("voice:user1:129"), HasSubstr("expected voice:user1..3:1..128"));
  EXPECT_THAT(whyNot("voice:user1:99999"), HasSubstr("expected one of voice:preset1..8:1..128"));
  EXPECT_THAT(whyNot("performance:c:1"), HasSubstr("expected performance:a..b:1..128"));
  EXPECT_THAT(whyNot("drum:user:33"), HasSubstr("expected drum:user:1..32"));
  EXPECT_THAT(whyNot("nonsense"), HasSubstr("or a name such as voice:user1:6"));
}

TEST(AddressNames, thereAreFourteenSystemBlocks) {
  const std::vector<BulkAddress> addresses = Editor::systemAddresses();
  EXPECT_EQ(addresses.size(), 14u);
  EXPECT_EQ(addresses.front(), (BulkAddress{0, 0, 0}));
  for (const BulkAddress address : addresses) EXPECT_EQ(address.hi, 0);
}

TEST(AddressNames, theNameThatMayHaveBeenMeantIsAskedFor) {
  EXPECT_THAT(whyNot("voice:usr1:6"),
              HasSubstr("\"voice:usr1:6\": did you mean voice:user1:6? Else one of voice:preset"));
  EXPECT_THAT(whyNot("performence:a:18"), HasSubstr("did you mean performance:a:18?"));
  EXPECT_THAT(whyNot("drum:eidt"), HasSubstr("did you mean drum:edit?"));
  EXPECT_THAT(whyNot("flie:multi:128"), HasSubstr("did you mean file:multi:128?"));
  EXPECT_THAT(whyNot("voice:user4:1"), Not(HasSubstr("did you mean")));  // that range is told
  EXPECT_THAT(whyNot("voice:nonsense"), Not(HasSubstr("did you mean")));
  try {
    parseAddress("sytem", [] { return std::vector<std::string>{"system"}; });
    FAIL() << "accepted";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "\"sytem\": did you mean system?");
  }
}

TEST(AddressNames, aNameIsFoundWithoutAReasonWhenThereIsNone) {
  EXPECT_EQ(Editor::findName("Voice:User1:6"), (BulkAddress{0x0E, 0x0A, 0x05}));
  EXPECT_FALSE(Editor::findName("voice:user1:129"));
  EXPECT_FALSE(Editor::findName("voice:user1"));
  EXPECT_FALSE(Editor::findName("0E0A05"));
  EXPECT_FALSE(Editor::findName(""));
}

TEST(AddressNames, allNamesAreListedOnce) {
  const std::vector<std::string> names = Editor::blockNames();
  std::set<std::string> listed(names.begin(), names.end());
  EXPECT_EQ(listed.size(), names.size());
  forEachAddress([&](BulkAddress address, const BDA::AddressRow&) {
    const auto name = nameOf(address);
    if (name) {
      EXPECT_EQ(listed.erase(*name), 1u) << *name;
    }
  });
  EXPECT_TRUE(listed.empty());
}
