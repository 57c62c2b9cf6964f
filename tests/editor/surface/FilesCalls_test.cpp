#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "bda/editor.h"
#include "editor/wire/WireFixture.h"

namespace Editor {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};

class FilesCalls : public testing::Test {
 protected:
  FilesCalls() {
    EXPECT_EQ(bda_files_new(&files), BDA_OK);
    for (const Bytes& message : unitOf(kVoice, BDA::List::normalVoice, 3))
      file.insert(file.end(), message.begin(), message.end());
  }
  ~FilesCalls() override { bda_files_close(files); }

  bda_result add(const char* name, const Bytes& bytes) const {
    return bda_files_add(files, name, bytes.data(), bytes.size());
  }
  static std::string take(char* text) {
    std::string taken = text == nullptr ? "NULL" : text;
    bda_free(text);
    return taken;
  }
  static std::size_t linesIn(const std::string& text) {
    return std::size_t(std::count(text.begin(), text.end(), '\n'));
  }

  bda_files* files = nullptr;
  Bytes file;  // one voice, whole
  char* json = nullptr;
};

TEST_F(FilesCalls, AFileIsJudged) {
  EXPECT_EQ(add("a.syx", file), BDA_OK);
  EXPECT_EQ(bda_files_verify(files, &json), BDA_OK) << bda_files_error(files);
  EXPECT_THAT(take(json), AllOf(HasSubstr("\"file\":\"a.syx\""), HasSubstr("\"state\":\"complete\"")));
  EXPECT_EQ(bda_files_list(files, &json), BDA_OK);
  EXPECT_THAT(take(json), Not(HasSubstr("\"state\"")));
}

TEST_F(FilesCalls, WhatIsBrokenIsInTheAnswerAndInTheError) {
  Bytes cut = file;
  cut.pop_back();
  add("cut.syx", cut);
  EXPECT_EQ(bda_files_list(files, &json), BDA_REFUSED);
  EXPECT_THAT(take(json), HasSubstr("cut short"));
  EXPECT_THAT(bda_files_error(files), StartsWith("cut.syx: at offset "));
  EXPECT_EQ(bda_files_verify(files, &json), BDA_REFUSED);
  EXPECT_THAT(take(json), HasSubstr("\"state\":\"open\""));
  EXPECT_THAT(bda_files_error(files), HasSubstr("voice:user1:6"));
  file[file.size() - 2] ^= 1;
  add("wrong.syx", file);
  EXPECT_EQ(bda_files_list(files, &json), BDA_REFUSED);
  EXPECT_THAT(take(json), HasSubstr("checksum wrong"));
  EXPECT_THAT(bda_files_error(files), HasSubstr("wrong.syx: message "));
}

TEST_F(FilesCalls, WhatHoldsNoMessagesIsNotAdded) {
  EXPECT_EQ(add("a.txt", {'h', 'e', 'l', 'l', 'o'}), BDA_UNUSABLE);
  EXPECT_STREQ(bda_files_error(files), "a.txt: no System Exclusive message in it: it seems to be text");
  EXPECT_EQ(add("none", {}), BDA_UNUSABLE);
  EXPECT_EQ(bda_files_list(files, &json), BDA_OK);
  EXPECT_EQ(take(json), "");
}

TEST_F(FilesCalls, MessagesAreVisitedThroughAllFiles) {
  add("a.syx", file);
  add("b.syx", file);
  struct Visited {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> places;
    Bytes bytes;
  } visited;
  const bda_visit visit = [](void* context, uint64_t number, uint64_t offset, const uint8_t* message, size_t size) {
    auto* const all = static_cast<Visited*>(context);
    all->places.emplace_back(number, offset);
    all->bytes.insert(all->bytes.end(), message, message + size);
  };
  EXPECT_EQ(bda_files_each(files, visit, &visited), BDA_OK);
  const std::size_t messages = unitOf(kVoice, BDA::List::normalVoice).size();
  ASSERT_EQ(visited.places.size(), 2 * messages);
  EXPECT_EQ(visited.places[messages], std::pair(std::uint64_t(messages + 1), std::uint64_t(0)));
  EXPECT_EQ(visited.bytes.size(), 2 * file.size());
  EXPECT_EQ(bda_files_each(files, nullptr, nullptr), BDA_MISUSED);
}

TEST_F(FilesCalls, BytesAreExplainedManyAtATimeOrOne) {
  add("a.syx", file);
  EXPECT_EQ(bda_files_explain(files, 0, 0, UINT64_MAX, &json), BDA_OK);
  const std::string all = take(json);
  EXPECT_EQ(linesIn(all), file.size());
  EXPECT_EQ(bda_files_explain(files, 0, 1, 1, &json), BDA_OK);
  const std::string one = take(json);
  EXPECT_EQ(linesIn(one), 1U);
  EXPECT_THAT(one, HasSubstr("\"part\":\"maker\""));
  EXPECT_THAT(all, HasSubstr(one));
  EXPECT_EQ(bda_files_explain(files, 0, UINT64_MAX, UINT64_MAX, &json), BDA_OK);
  EXPECT_EQ(take(json), "") << "behind its end";
  EXPECT_EQ(bda_files_explain(files, 1, 0, 1, &json), BDA_UNUSABLE);
  EXPECT_EQ(json, nullptr);
}

TEST_F(FilesCalls, BytesOfHexTextAreExplainedOnce) {
  const std::string text = "# a comment\nF0 43 F7\n";
  add("a.txt", Bytes(text.begin(), text.end()));
  add("b.txt", Bytes(text.begin() + 12, text.end()));
  EXPECT_EQ(bda_files_explain(files, 0, 0, UINT64_MAX, &json), BDA_OK) << bda_files_error(files);
  EXPECT_EQ(linesIn(take(json)), 3U);
}

TEST_F(FilesCalls, WhatIsWholeIsSalvagedAndTheRestIsAskedFor) {
  Bytes cut = file;
  cut.resize(cut.size() / 2);
  add("cut.syx", cut);
  uint8_t* whole = nullptr;
  uint8_t* requests = nullptr;
  std::size_t wholeSize = 0;
  std::size_t requestsSize = 0;
  EXPECT_EQ(bda_files_salvage(files, nullptr, &whole, &wholeSize, &requests, &requestsSize, &json), BDA_REFUSED);
  EXPECT_THAT(take(json), HasSubstr("\"state\":\"lost\""));
  EXPECT_EQ(wholeSize, 0U);
  EXPECT_EQ(requestsSize, requestMessage(kVoice, 0).size());
  bda_free(whole);
  bda_free(requests);
  add("whole.syx", file);
  EXPECT_EQ(bda_files_salvage(files, R"({"prefer": "whole.syx"})", &whole, &wholeSize, nullptr, nullptr, &json), BDA_OK)
      << bda_files_error(files);
  EXPECT_EQ(Bytes(whole, whole + wholeSize), file);
  bda_free(whole);
  bda_free(json);
  EXPECT_EQ(bda_files_salvage(files, R"({"prefer": "other.syx"})", nullptr, nullptr, nullptr, nullptr, &json),
            BDA_UNUSABLE);
  EXPECT_EQ(bda_files_salvage(files, R"({"merg": true})", nullptr, nullptr, nullptr, nullptr, &json), BDA_UNUSABLE);
  EXPECT_THAT(bda_files_error(files), HasSubstr("did you mean merge?"));
  EXPECT_EQ(bda_files_salvage(files, nullptr, &whole, nullptr, nullptr, nullptr, nullptr), BDA_MISUSED);
}

TEST_F(FilesCalls, FilesBecomeALibraryOfWhatTheyHold) {
  Bytes broken = file;
  broken[broken.size() - 2] ^= 1;
  add("a.syx", file);
  bda_library* library = nullptr;
  EXPECT_EQ(bda_library_of_files(files, &library), BDA_OK) << bda_files_error(files);
  EXPECT_EQ(bda_library_show(library, "voice:user1:6", &json), BDA_OK);
  EXPECT_THAT(take(json), StartsWith("{\"voice\":{"));
  EXPECT_EQ(bda_library_show(library, "system", &json), BDA_REFUSED);
  EXPECT_STREQ(bda_library_error(library), "system: it is in none of the files");
  bda_library_close(library);
  add("broken.syx", broken);
  EXPECT_EQ(bda_library_of_files(files, &library), BDA_REFUSED);
  EXPECT_THAT(bda_files_error(files), HasSubstr("broken.syx: message "));
  EXPECT_EQ(bda_library_contents(library, nullptr, &json), BDA_OK);
  EXPECT_THAT(take(json), HasSubstr("voice:user1:6"));
  bda_library_close(library);
}

TEST_F(FilesCalls, WhatIsMisusedSaysSo) {
  EXPECT_EQ(bda_files_new(nullptr), BDA_MISUSED);
  EXPECT_EQ(bda_files_add(nullptr, "a", nullptr, 0), BDA_MISUSED);
  EXPECT_EQ(bda_files_add(files, nullptr, file.data(), file.size()), BDA_MISUSED);
  EXPECT_EQ(bda_files_add(files, "a", nullptr, 1), BDA_MISUSED);
  EXPECT_EQ(bda_files_add(files, "\xFF", file.data(), file.size()), BDA_UNUSABLE);
  EXPECT_EQ(bda_files_list(nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_of_files(files, nullptr), BDA_MISUSED);
  EXPECT_STREQ(bda_files_error(nullptr), "files is NULL");
  bda_files_close(nullptr);
}

}  // namespace
}  // namespace Editor
