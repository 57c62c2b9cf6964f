#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "acceptance/Library.h"
#include "bda/editor.h"
#include "editor/wire/WireFixture.h"

namespace Editor {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};
constexpr BulkAddress kNext{0x0E, 0x0A, 0x06};

class FilesConvert : public testing::Test {
 protected:
  FilesConvert() { EXPECT_EQ(bda_files_new(&files), BDA_OK); }
  ~FilesConvert() override {
    bda_files_close(files);
    take();
  }

  void add(const std::vector<Bytes>& messages) const {
    const Bytes file = joined(messages);
    EXPECT_EQ(bda_files_add(files, "a.syx", file.data(), file.size()), BDA_OK) << error();
  }
  bda_result convert(const char* options) {
    take();
    return bda_files_convert(files, options, &bytes, &size, &json);
  }
  std::string told() const { return json == nullptr ? "NULL" : json; }
  std::string error() const { return bda_files_error(files); }
  Bytes written() const { return {bytes, bytes + size}; }
  void take() {
    bda_free(std::exchange(bytes, nullptr));
    bda_free(std::exchange(json, nullptr));
  }

  static Bytes joined(const std::vector<Bytes>& messages) {
    Bytes all;
    for (const Bytes& message : messages) all.insert(all.end(), message.begin(), message.end());
    return all;
  }

  bda_files* files = nullptr;
  std::uint8_t* bytes = nullptr;
  std::size_t size = 0;
  char* json = nullptr;
  const std::vector<Bytes> voice = unitOf(kVoice, BDA::List::normalVoice, 0x41);
};

TEST_F(FilesConvert, WithoutOptionsMessagesStayAsTheyAre) {
  add(voice);
  EXPECT_EQ(convert(nullptr), BDA_OK) << error();
  EXPECT_EQ(written(), joined(voice));
  EXPECT_THAT(told(), AllOf(StartsWith(R"({"unit":"voice:user1:6","address":"0E 0A 05","form":"blocks","name":"AAA)"),
                            HasSubstr(R"("messages":26,"bytes":)" + std::to_string(size) + R"(,"file":"-"})")));
}

TEST_F(FilesConvert, ToAnotherPlaceForAnotherDevice) {
  add(voice);
  EXPECT_EQ(convert(R"({"place": "voice:user1:7", "device": 5})"), BDA_OK) << error();
  std::vector<Bytes> moved = unitOf(kNext, BDA::List::normalVoice, 0x41);
  for (Bytes& message : moved) message[2] = 4;
  EXPECT_EQ(written(), joined(moved));
  EXPECT_THAT(told(), HasSubstr(R"("from":"voice:user1:6")"));
}

TEST_F(FilesConvert, ChosenByAddresses) {
  add(voice);
  add(unitOf(kNext, BDA::List::normalVoice));
  EXPECT_EQ(convert(R"({"select": "voice:user1:6"})"), BDA_OK) << error();
  EXPECT_EQ(written(), joined(voice));
  EXPECT_EQ(convert(R"({"select": ["0E 0A 05", "voice:user1:9"]})"), BDA_REFUSED);
  EXPECT_EQ(error(), "voice:user1:9: there is none in the files");
  EXPECT_EQ(written(), joined(voice)) << "the rest is there";
  EXPECT_EQ(convert(R"({"select": "voice:user1:9"})"), BDA_REFUSED);
  EXPECT_THAT(error(), HasSubstr("no message is left, nothing is written"));
  EXPECT_EQ(bytes, nullptr);
  EXPECT_EQ(json, nullptr);
}

TEST_F(FilesConvert, OtherFormsHaveTheSameMessages) {
  add(voice);
  for (const char* const options :
       {R"({"format": "mid"})", R"({"format": "mid", "pause": 0})", R"({"format": "txt"})"}) {
    EXPECT_EQ(convert(options), BDA_OK) << error();
    EXPECT_NE(written(), joined(voice));
    bda_files* back = nullptr;
    ASSERT_EQ(bda_files_new(&back), BDA_OK);
    EXPECT_EQ(bda_files_add(back, "back", bytes, size), BDA_OK) << bda_files_error(back);
    std::swap(files, back);
    EXPECT_EQ(convert("{}"), BDA_OK) << error();
    EXPECT_EQ(written(), joined(voice)) << options;
    std::swap(files, back);
    bda_files_close(back);
  }
}

TEST_F(FilesConvert, OnlyWhatIsWholeIsPlaced) {
  std::vector<Bytes> broken = voice;
  broken[3] = damaged(broken[3]);
  add(broken);
  EXPECT_EQ(convert(R"({"place": "voice:user1:7"})"), BDA_REFUSED);
  EXPECT_THAT(error(), AllOf(HasSubstr("voice:user1:6"), HasSubstr("\nonly whole units can be placed")));
  EXPECT_EQ(bytes, nullptr);
  EXPECT_EQ(convert(nullptr), BDA_OK) << "messages go along, whatever they are";
  EXPECT_EQ(written(), joined(broken));
}

TEST_F(FilesConvert, WhatDoesNotFitIsNotPlaced) {
  EXPECT_EQ(convert(R"({"place": "voice:user1:7"})"), BDA_UNUSABLE) << "there is nothing to place";
  add(voice);
  add(unitOf(kNext, BDA::List::normalVoice));
  EXPECT_EQ(convert(R"({"place": "voice:user2:1"})"), BDA_UNUSABLE);
  EXPECT_EQ(error(), "2 units for 1 place (voice:user2:1), nothing is written");
  EXPECT_EQ(convert(R"({"place": "master:1..2"})"), BDA_REFUSED);
  EXPECT_EQ(convert(R"({"place": "voice:user2:1..5"})"), BDA_OK) << error();
}

TEST_F(FilesConvert, WhatCannotBeUnderstoodIsUnusable) {
  add(voice);
  for (const char* const options :
       {"[]", R"({"format": "wav"})", R"({"format": "a.syx"})", R"({"place": "nowhere"})", R"({"select": "nowhere"})",
        R"({"select": 1})", R"({"device": 17})", R"({"device": 0})", R"({"pause": 10})",
        R"({"format": "mid", "pause": 60001})", R"({"formt": "mid"})"}) {
    EXPECT_EQ(convert(options), BDA_UNUSABLE) << options;
    EXPECT_EQ(bytes, nullptr);
  }
  EXPECT_THAT(error(), HasSubstr("did you mean format?"));
  EXPECT_EQ(bda_files_convert(files, "\xFF", &bytes, &size, &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_files_convert(files, nullptr, &bytes, nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(bda_files_convert(files, nullptr, nullptr, nullptr, nullptr), BDA_OK);
  EXPECT_EQ(bda_files_convert(nullptr, nullptr, &bytes, &size, &json), BDA_MISUSED);
}

}  // namespace
}  // namespace Editor
