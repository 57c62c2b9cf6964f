#include "explain/Explain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <tuple>

#include "editor/messages/BulkMessages.h"
#include "exchange/EmbeddedEditor.h"

using Editor::BulkAddress;
using Editor::ByteMeaning;
using Editor::FileExplainer;
using Editor::MessageFile;
using Editor::Part;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The parts of a file's only message, byte by byte.
std::vector<std::string> partsOf(const Bytes& message) {
  const MessageFile file(message);
  FileExplainer explainer(file);
  std::vector<std::string> parts;
  file.forEachByte([&](const MessageFile::Byte& byte) { parts.emplace_back(wordOf(explainer.explain(byte).part)); });
  return parts;
}

ByteMeaning meaningAt(const Bytes& message, std::size_t at) {
  const MessageFile file(message);
  return FileExplainer(file).explain(file.find(at).value());
}

// What an editor sends that is asked for those blocks.
std::vector<Bytes> answersOf(const std::vector<BulkAddress>& asked) {
  Editor::EmbeddedEditor editor;
  std::vector<Bytes> answers;
  for (const BulkAddress address : asked)
    for (const auto& sent : editor.handle(editor.requestFor(address), BDA::DevicePort_Main, 1).sent)
      answers.push_back(sent.bytes);
  return answers;
}

using Place = std::tuple<std::uint64_t, std::size_t, unsigned>;  // message, data byte, bits

}  // namespace

TEST(Explain, aMessageOfAnotherMakerHasItsMaker) {
  EXPECT_THAT(partsOf({0xF0, 0x41, 0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0xF7}),
              ElementsAre("frame", "maker", "data", "data", "data", "data", "data", "data", "frame"));
  EXPECT_THAT(partsOf({0xF0, 0x00, 0x20, 0x33, 0x01, 0xF7}),
              ElementsAre("frame", "maker", "maker", "maker", "data", "frame"));
  EXPECT_THAT(partsOf({0xF0, 0xF7}), ElementsAre("frame", "frame"));
}

TEST(Explain, messagesThatAreNoDumpsHaveNoDataBytes) {
  Bytes notice = request({0, 0, 0});
  notice[2] = 0x60;
  for (const Bytes& message : {notice, request({0, 0, 0})})
    for (std::size_t at = 0; at < message.size(); ++at) EXPECT_FALSE(meaningAt(message, at).dataByte);
  EXPECT_EQ(meaningAt(request({0x0E, 0x0A, 0x05}), 5).name, "voice:user1:6");
}

TEST(Explain, aDumpThatIsTooShortIsNamedAsFarAsItGoes) {
  EXPECT_THAT(partsOf({0xF0, 0x7D, 0x00, 0x7F, 0x14, 0x00, 0x00, 0x40, 0x00, 0xF7}),
              ElementsAre("frame", "maker", "device", "model", "model", "byteCount", "byteCount", "address", "address",
                          "frame"));
}

TEST(Explain, aBlockOfAnotherLengthCarriesNoParameters) {
  const ByteMeaning meaning = meaningAt(dump({0x40, 0, 0}, Bytes(79)), 40);
  EXPECT_EQ(meaning.part, Part::data);
  EXPECT_THAT(meaning.parameters, IsEmpty());
  EXPECT_FALSE(meaning.unused);
}

TEST(Explain, aWrongChecksumDoesNotHideWhatTheBytesCarry) {
  EXPECT_EQ(meaningAt(damaged(dump({0x40, 0, 0}, Bytes(80, 'A'))), 10).parameters.front().path, "voice.name");
}

TEST(Explain, theValueOfANameIsTheWholeName) {
  Bytes data(80);
  const std::string name = "Piano";
  std::copy(name.begin(), name.end(), data.begin());
  EXPECT_EQ(meaningAt(dump({0x40, 0, 0}, data), 12).parameters.front().value, Editor::ParameterValue(name));
}

TEST(Explain, aBankThatDoesNotExistIsNotTaken) {
  Bytes data(62);
  data[1] = data[2] = data[3] = 0x11;
  for (const auto& parameter : meaningAt(dump({0x37, 0, 0}, data), 11).parameters)
    EXPECT_EQ(parameter.value, Editor::ParameterValue(std::int64_t{0}));
}

TEST(Explain, aBrokenFileDumpIsExplainedAsFarAsItGoes) {
  const Bytes field{0, 2, 0, 'A', 0x7F, 0x7F, 1, 2};  // a content that is longer than the message
  const Bytes message = dump({0x0C, 0x0A, 0x05}, field);
  EXPECT_EQ(meaningAt(message, 13).nameBytes->numbers, std::vector<std::size_t>{0});
  EXPECT_FALSE(meaningAt(message, 16).contentBytes);
  EXPECT_TRUE(meaningAt(message, 16).content);
}

// Every parameter of every kind of unit: exactly the bytes and bits that its blocks' maps name.
TEST(Explain, aParameterNamesExactlyTheBytesThatNameIt) {
  const std::vector<BulkAddress> headers{{0x0E, 0x0F, 0}, {0x0E, 0x2F, 0}, {0x0E, 0x5F, 0},
                                         {0x0E, 0x4F, 0}, {0x0E, 0x7F, 0}, {0x0E, 0x6F, 0}};
  std::vector<std::vector<BulkAddress>> units{Editor::systemAddresses()};
  for (const BulkAddress header : headers) units.push_back({header});
  for (const std::vector<BulkAddress>& unit : units) {
    const std::vector<Bytes> messages = answersOf(unit);
    std::map<std::string, std::vector<Place>> expected;
    for (std::size_t i = 0; i < messages.size(); ++i) {
      const MessageFile file(messages[i]);
      FileExplainer explainer(file);
      file.forEachByte([&](const MessageFile::Byte& byte) {
        const ByteMeaning meaning = explainer.explain(byte);
        for (const auto& parameter : meaning.parameters)
          expected[parameter.path].emplace_back(i + 1, *meaning.dataByte, parameter.bits);
      });
    }
    ASSERT_FALSE(expected.empty());
    const std::vector<std::string> paths = pathsOf(unit);
    std::set<std::string> known(paths.begin(), paths.end());
    for (const auto& [path, places] : expected) EXPECT_TRUE(known.contains(path)) << path;
    std::map<std::string, std::vector<Place>> found;
    for (const auto& [path, bytes] : Editor::bytesByPath(messages))
      for (const Editor::CarryingByte& byte : bytes) found[path].emplace_back(byte.message, byte.dataByte, byte.bits);
    EXPECT_EQ(found, expected);
  }
}
