#include "messages/Messages.h"

#include <gtest/gtest.h>

#include "editor/messages/BulkMessages.h"

using Editor::BulkAddress;
using Editor::Reading;
using Editor::readMessage;
using Kind = Reading::Kind;
using Verdict = Reading::Verdict;

TEST(Messages, aGoodDumpIsReadWhole) {
  const Reading reading = readMessage(blockDump({0x41, 0x02, 0x00}, 0x01));
  EXPECT_EQ(reading.kind, Kind::dump);
  EXPECT_EQ(reading.verdict, Verdict::good);
  EXPECT_EQ(reading.device, 1u);
  EXPECT_EQ(reading.address, (BulkAddress{0x41, 0x02, 0x00}));
  EXPECT_EQ(reading.dataBytes, 88u);
  EXPECT_EQ(reading.checksum, reading.expectedChecksum);
  EXPECT_EQ(describeContent(reading), "element 3 oscillator");
  EXPECT_FALSE(isBroken(reading));
}

TEST(Messages, anyDeviceNumberIsGood) {
  for (std::uint8_t device = 0; device < 16; ++device) {
    const Reading reading = readMessage(dump({0x0E, 0x00, 0x00}, {}, device));
    EXPECT_EQ(reading.verdict, Verdict::good);
    EXPECT_EQ(reading.device, device + 1u);
  }
}

TEST(Messages, aWrongChecksumIsNamedWithTheRightOne) {
  Bytes message = dump({0x0E, 0x31, 0x02});
  message[10] = 0x00;
  const Reading reading = readMessage(message);
  EXPECT_EQ(reading.verdict, Verdict::checksumWrong);
  EXPECT_EQ(reading.note, "checksum 00, expected 3F");
  EXPECT_TRUE(isBroken(reading));
}

TEST(Messages, aByteCountThatDoesNotFitIsAWrongLength) {
  Bytes message = blockDump({0x00, 0x40, 0x00});
  message.erase(message.begin() + 12);
  const Reading reading = readMessage(message);
  EXPECT_EQ(reading.verdict, Verdict::lengthWrong);
  EXPECT_EQ(reading.note, "7 data bytes, its byte count says 8");
}

TEST(Messages, aBlockOfAnotherLengthIsNamedWithTheRightOne) {
  const Reading reading = readMessage(dump({0x00, 0x40, 0x00}, Bytes(7)));
  EXPECT_EQ(reading.verdict, Verdict::blockLengthWrong);
  EXPECT_EQ(reading.note, "7 data bytes, this block has 8");
}

TEST(Messages, fileDumpsComeInAnyLength) {
  EXPECT_EQ(readMessage(dump({0x0C, 0x0A, 0x05}, Bytes(4))).verdict, Verdict::removes);
  EXPECT_EQ(readMessage(dump({0x11, 0x01, 0x00})).verdict, Verdict::removes);
  EXPECT_EQ(readMessage(dump({0x11, 0x00, 0x00})).verdict, Verdict::good);
  Bytes field(404);
  field[2] = 3;  // 3 * 128 + 16 bytes of content
  field[3] = 16;
  EXPECT_EQ(readMessage(dump({0x0C, 0x0A, 0x05}, field)).verdict, Verdict::good);
}

TEST(Messages, aFileDumpThatIsNotOneContentIsBroken) {
  const auto read = [](const Bytes& field) { return readMessage(dump({0x0C, 0x0A, 0x05}, field)); };
  EXPECT_EQ(read({0, 2, 0, 'A', 0, 2, 0, 'B'}).verdict, Verdict::good);
  for (const Bytes& field : {Bytes{0, 0, 0, 0}, Bytes{0, 1, 0, 0, 0}}) {  // no content, whatever its name
    EXPECT_EQ(read(field).verdict, Verdict::removes) << testing::PrintToString(field);
    EXPECT_EQ(read(field).removes, (Editor::ContentId{4, 0x3F0805}));
    EXPECT_FALSE(isBroken(read(field)));
  }
  const std::pair<Bytes, const char*> broken[] = {
      {{}, "0 bytes of data, a file dump has at least 4"},
      {{0}, "1 byte of data, a file dump has at least 4"},
      {{0, 0, 0}, "3 bytes of data, a file dump has at least 4"},
      {{0, 3, 0, 'A', 0, 0}, "its name has 3 bytes, but there is room for 2"},
      {{1, 0, 0, 0}, "its name has 128 bytes, but there is room for 0"},
      {{0, 2, 0, 'A', 0, 3, 0, 'B'}, "its content has 3 bytes, but there is room for 2"},
      {{0, 1, 0, 0, 2, 0, 'B'}, "its name has 1 byte, the last of which is a packed group without data"},
      {{0, 0, 0, 1, 0}, "its content has 1 byte, the last of which is a packed group without data"},
      {{0, 0, 0, 2, 0, 'B', 1, 2, 3}, "3 bytes behind its content, which are not used"},
      {{0, 1, 0, 0, 0, 1}, "1 byte behind its content, which are not used"},
      {{0, 0, 0, 9, 0, 1, 2, 3, 4, 5, 6, 7, 0},
       "its content has 9 bytes, the last of which is a packed group without data"}};
  for (const auto& [field, note] : broken) {
    EXPECT_EQ(read(field).verdict, Verdict::fileDumpBroken) << testing::PrintToString(field);
    EXPECT_EQ(read(field).note, note);
    EXPECT_TRUE(isBroken(read(field)));
  }
  EXPECT_EQ(readMessage(dump({0x11, 0x00, 0x00}, {0})).verdict, Verdict::good);  // the trigger's data is not looked at
}

TEST(Messages, aFileDumpIsNamedWhateverIsWrongWithTheName) {
  const auto isNamed = [](const Bytes& field) { return readMessage(dump({0x0C, 0x0A, 0x00}, field)).isNamed; };
  EXPECT_TRUE(isNamed({0, 2, 0, 'A', 0, 2, 0, 'B'}));
  EXPECT_TRUE(isNamed({0, 1, 0, 0, 2, 0, 'B'}));
  EXPECT_TRUE(isNamed({1, 0}));
  EXPECT_FALSE(isNamed({0, 0, 0, 2, 0, 'B'}));
  EXPECT_FALSE(isNamed({1}));
  EXPECT_FALSE(isNamed({}));
  EXPECT_FALSE(readMessage(blockDump({0x41, 0x02, 0x00}, 0x01)).isNamed);
}

TEST(Messages, anAddressOutsideTheMapIsUnknown) {
  EXPECT_EQ(readMessage(dump({0x46, 0x06, 0x00}, Bytes(24))).verdict, Verdict::unknownAddress);
  EXPECT_EQ(readMessage(request({0x0E, 0x60, 0x32})).verdict, Verdict::unknownAddress);
}

TEST(Messages, theMarkOfAnEmptyMixingVoiceIsGood) {
  const Reading reading = readMessage(dump({0x0E, 0x31, 0x45}));
  EXPECT_EQ(reading.verdict, Verdict::good);
  EXPECT_EQ(describeContent(reading), "mixing voice 6: header of an empty voice");
}

TEST(Messages, theDataOfAScreenStandsOutsideTheMapAndIsGood) {
  const Reading reading = readMessage(dump({0x51, 0x00, 0x01}, Bytes(1026)));
  EXPECT_EQ(reading.verdict, Verdict::good);
  EXPECT_EQ(describeContent(reading), "screen capture data");
  EXPECT_EQ(readMessage(request({0x51, 0x00, 0x01})).verdict, Verdict::unknownAddress);
}

TEST(Messages, requestsHaveNineBytes) {
  EXPECT_EQ(readMessage(request({0x00, 0x00, 0x00})).verdict, Verdict::good);
  EXPECT_EQ(describeContent(readMessage(request({0x00, 0x00, 0x00}))), "request of system common");
  Bytes message = request({0x00, 0x00, 0x00});
  message.insert(message.end() - 1, 0x00);
  EXPECT_EQ(readMessage(message).kind, Kind::invalid);
  EXPECT_EQ(readMessage(message).note, "10 bytes, a request has 9");
}

TEST(Messages, aDumpShorterThanItsFrameIsInvalid) {
  const Reading reading = readMessage(Bytes{0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0x00, 0x0E, 0xF7});
  EXPECT_EQ(reading.kind, Kind::invalid);
  EXPECT_EQ(reading.verdict, Verdict::lengthWrong);
}

TEST(Messages, whatAnEndInTheMidstLeavesOfOneIsInvalid) {
  const Bytes whole = dump({0x0E, 0x0A, 0x05}, {1, 2, 3});
  for (std::size_t size = 5; size < 9; ++size) {
    Bytes message(whole.begin(), whole.begin() + std::ptrdiff_t(size - 1));
    message.push_back(0xF7);
    const Reading reading = readMessage(message);
    EXPECT_EQ(reading.kind, Kind::invalid) << size;
    EXPECT_EQ(reading.verdict, Verdict::lengthWrong) << size;
    EXPECT_EQ(reading.note, std::to_string(size) + " bytes, a message has at least 9");
    EXPECT_FALSE(reading.device) << "the instrument takes no notice of it";
  }
  for (const Bytes& other :
       {Bytes{0xF0, 0x7D, 0xF7}, Bytes{0xF0, 0x7D, 0x00, 0xF7}, Bytes{0xF0, 0x7D, 0x00, 0x01, 0xF7},
        Bytes{0xF0, 0x7D, 0x00, 0x7F, 0x01, 0xF7}, Bytes{0xF0, 0x7E, 0x00, 0x7F, 0x14, 0xF7}})
    EXPECT_EQ(readMessage(other).kind, Kind::foreign);
}

TEST(Messages, typesBeyondThoseOfTheInstrumentAreUnknown) {
  for (const int type : {0x10, 0x30, 0x40}) {
    Bytes message = request({0, 0, 0});
    message[2] = std::uint8_t(type);
    EXPECT_EQ(readMessage(message).kind, Kind::other) << type;
    EXPECT_EQ(readMessage(message).verdict, Verdict::good) << type;
  }
  for (const int type : {0x50, 0x60, 0x70}) {
    Bytes message = request({0, 0, 0});
    message[2] = std::uint8_t(type);
    EXPECT_EQ(readMessage(message).verdict, Verdict::typeUnknown) << type;
  }
}

TEST(Messages, aFileDumpGivesItsContentAName) {
  const Bytes field{0, 10, 0, 'A', 'B', 'C', 'D', 'E', 'F', 'G', 0x40, 0x69, 0, 2, 0, 1};
  const Bytes message = dump({0x0C, 0x50, 0x00}, field);
  ASSERT_EQ(readMessage(message).verdict, Verdict::good);
  EXPECT_EQ(Editor::partsOfFileDump(message).name, "ABCDEFG\xE9");
  EXPECT_EQ(Editor::partsOfFileDump(dump({0x0C, 0x50, 0x00}, {0, 0, 0, 2, 0, 1})).name, "");
  EXPECT_EQ(Editor::partsOfFileDump(message).content, Bytes{1});
}

TEST(Messages, otherMakersAndModelsAreNotJudged) {
  Bytes maker = dump({0, 0, 0}, Bytes(1));
  maker[1] = 0x7E;
  Bytes model = dump({0, 0, 0}, Bytes(1));
  model[4] = 0x13;
  Bytes tooShort{0xF0, 0x7D, 0x60, 0x02, 0xF7};
  for (const Bytes& message : {maker, model, tooShort}) {
    EXPECT_EQ(readMessage(message).kind, Kind::foreign);
    EXPECT_FALSE(isBroken(readMessage(message)));
  }
  Bytes secondModel = blockDump({0, 0, 0});
  secondModel[3] = 0x00;
  secondModel[4] = 0x15;
  EXPECT_EQ(readMessage(secondModel).kind, Kind::dump);
}
