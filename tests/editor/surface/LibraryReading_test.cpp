#include <nlohmann/json.hpp>
#include <string>

#include "editor/surface/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* kPlace = "voice:user1:6";

class LibraryReading : public LibraryCallTest {
 protected:
  LibraryReading() {
    receiveVoice();
    EXPECT_EQ(bda_library_rename(library, kPlace, "Piano", nullptr), BDA_OK);
    EXPECT_EQ(bda_library_copy_places(library, kPlace, "voice:user2:1", nullptr), BDA_OK);
    receiveVoice(5, {0x0E, 0x0B, 0x05});
    EXPECT_EQ(bda_library_rename(library, "voice:user2:6", "Strings", nullptr), BDA_OK);
  }

  // How many a search finds.
  std::ptrdiff_t count(const char* options) {
    EXPECT_EQ(bda_library_find(library, options, &json), BDA_OK) << options << ": " << error();
    return linesIn(take());
  }
  // A library in a file with these voices, one of which is damaged.
  void damage() {
    receiveVoice(3);
    receiveVoice(5, {0x0E, 0x0B, 0x05});
    PlainDatabase(directory / "library.db")("UPDATE content SET bytes = x'00' WHERE number = " +
                                            std::to_string(0x3F0805));
  }

  TemporaryDirectory directory;
};

TEST_F(LibraryReading, ContentsAreFoundByWhatIsAskedOfThem) {
  EXPECT_EQ(count(nullptr), 3);
  EXPECT_EQ(count("{}"), 3);
  EXPECT_EQ(count(R"({"terms": "pia"})"), 2);
  EXPECT_EQ(count(R"({"terms": ["pia", "no"]})"), 2);
  EXPECT_EQ(count(R"({"duplicates": true})"), 2);
  EXPECT_EQ(count(R"({"same-as": "voice:user1:6"})"), 1);
  EXPECT_EQ(count(R"({"same-as": "0E 0A 05"})"), 1);
  EXPECT_EQ(count(R"({"kind": "voice", "where": "voice.name=Strings"})"), 1);
  EXPECT_EQ(bda_library_find(library, R"({"like": "voice:user1:6", "kind": "voice"})", &json), BDA_OK) << error();
  const std::string found = take();
  EXPECT_THAT(found, StartsWith(R"({"source":"memory","content":"voice:user2:1","name":"Piano")"));
  EXPECT_THAT(found, AllOf(HasSubstr("\"likeness\":1.0"), Not(HasSubstr(kPlace)), Not(HasSubstr("\"hash\":\"\""))));
  ASSERT_EQ(bda_library_favourite(library, kPlace, 1, nullptr), BDA_OK);
  EXPECT_EQ(count(R"({"favourite": true})"), 1);
  EXPECT_EQ(count(R"({"terms": "Piano", "edit-buffers": true})"), 2);
}

TEST_F(LibraryReading, WhatIsNotFoundIsRefusedAndWhatCannotBeAskedIsUnusable) {
  EXPECT_EQ(bda_library_find(library, R"({"terms": "Organ"})", &json), BDA_REFUSED);
  EXPECT_EQ(take(), "");
  EXPECT_EQ(error(), "nothing is found");
  EXPECT_EQ(bda_library_find(library, R"({"same-as": "voice:user1:9"})", &json), BDA_REFUSED);
  for (const char* const options :
       {"[]", "{", R"({"kind": "voices"})", R"({"where": "voice.comon[3]=1"})", R"({"term": "x"})",
        R"({"favourite": 1})", R"({"like": "system"})", R"({"like": ""})", "{\"terms\": \"\xFF\"}"}) {
    EXPECT_EQ(bda_library_find(library, options, &json), BDA_UNUSABLE) << options;
    EXPECT_NE(error(), "") << options;
    EXPECT_EQ(json, nullptr);
  }
  EXPECT_EQ(bda_library_find(nullptr, nullptr, &json), BDA_MISUSED);
}

TEST_F(LibraryReading, LibrariesAreCompared) {
  bda_library* copy = nullptr;
  ASSERT_EQ(bda_library_clone(library, &copy), BDA_OK);
  EXPECT_EQ(bda_library_diff(library, copy, &json), BDA_OK) << error();
  EXPECT_THAT(take(), StartsWith("{\"summary\":{\"equal\":3"));
  EXPECT_EQ(bda_library_diff(library, library, &json), BDA_OK) << "one with itself";
  take();
  ASSERT_EQ(bda_library_set(copy, "mixing-voices", "7", nullptr), BDA_OK);
  ASSERT_EQ(bda_library_rename(copy, kPlace, "Grand", nullptr), BDA_OK);
  EXPECT_EQ(bda_library_diff(library, copy, &json), BDA_REFUSED);
  EXPECT_THAT(take(), AllOf(HasSubstr("Grand"), HasSubstr("mixing-voices")));
  EXPECT_EQ(bda_library_diff(library, nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_diff(nullptr, copy, &json), BDA_MISUSED);
  bda_library_close(copy);
  bda_library* closed = nullptr;
  bda_library_open("/nowhere/at/all.db", BDA_OPEN_READ, &closed);
  EXPECT_EQ(bda_library_diff(library, closed, &json), BDA_MISUSED);
  bda_library_close(closed);
}

TEST_F(LibraryReading, TheBytesOfAParameterAreExplained) {
  EXPECT_EQ(bda_library_explain(library, kPlace, "voice.common[3]", &json), BDA_OK) << error();
  EXPECT_THAT(take(), StartsWith("{\"address\":\"40 00 00\",\"message\":2,\"dataByte\":30,"));
  EXPECT_EQ(bda_library_explain(library, "system", "system.utility[50]", &json), BDA_REFUSED);
  EXPECT_EQ(json, nullptr);
  EXPECT_EQ(bda_library_explain(library, "voice:user1:9", "voice.common[3]", &json), BDA_REFUSED);
  EXPECT_THAT(error(), HasSubstr("no answer: "));
  EXPECT_EQ(take(), "");
  EXPECT_EQ(bda_library_explain(library, kPlace, "voice.comon[3]", &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_explain(library, "voice:user1", "voice.common[3]", &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_explain(library, "voice:user1:6 voice:user1:7", "voice.common[3]", &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_explain(library, kPlace, nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_explain(library, nullptr, "voice.common[3]", &json), BDA_MISUSED);
}

TEST_F(LibraryReading, WhatIsDamagedIsRefused) {
  EXPECT_EQ(bda_library_check(library, &json), BDA_OK) << error();
  EXPECT_THAT(take(), HasSubstr("\"voice:user1:6\""));
  open(directory / "library.db");
  damage();
  EXPECT_EQ(bda_library_check(library, &json), BDA_REFUSED);
  EXPECT_THAT(take(), HasSubstr("\"damaged\""));
  EXPECT_THAT(error(), StartsWith("voice:user1:6: "));
  EXPECT_EQ(bda_library_find(library, nullptr, &json), BDA_REFUSED);
  EXPECT_THAT(take(), HasSubstr("voice:user2:6"));
  EXPECT_THAT(error(), StartsWith("voice:user1:6: "));
  EXPECT_EQ(bda_library_contents(library, nullptr, &json), BDA_REFUSED);
  take();
  EXPECT_EQ(bda_library_show(library, "voice:user1", &json), BDA_REFUSED);
  take();
  EXPECT_EQ(bda_library_check(nullptr, &json), BDA_MISUSED);
}

TEST_F(LibraryReading, TheNewestEntriesComeFirst) {
  EXPECT_EQ(bda_library_history(library, 0, &json), BDA_OK) << error();
  const std::string all = take();
  EXPECT_EQ(linesIn(all), 5);
  EXPECT_EQ(bda_library_history(library, 1, &json), BDA_OK);
  const std::string newest = take();
  EXPECT_THAT(newest, AllOf(StartsWith("{\"entry\":5,"), HasSubstr("Strings")));
  EXPECT_THAT(all, StartsWith(newest));
  EXPECT_EQ(bda_library_history(library, 100, &json), BDA_OK);
  EXPECT_EQ(take(), all);
  EXPECT_EQ(bda_library_history(nullptr, 0, &json), BDA_MISUSED);
}

TEST_F(LibraryReading, SettingsAreThoseOfNow) {
  EXPECT_EQ(bda_library_settings(library, nullptr, &json), BDA_OK) << error();
  EXPECT_THAT(take(), StartsWith("{\"setting\":\"device-number\",\"value\":\"1\"}\n{\"setting\":\"receive-bulk\""));
  ASSERT_EQ(bda_library_set(library, "device-number", "all", nullptr), BDA_OK);
  EXPECT_EQ(bda_library_settings(library, "device-number", &json), BDA_OK);
  EXPECT_EQ(take(), "{\"setting\":\"device-number\",\"value\":\"all\"}\n");
  EXPECT_EQ(bda_library_settings(library, "", &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_settings(library, "\xFF", &json), BDA_UNUSABLE);
  EXPECT_EQ(bda_library_settings(nullptr, nullptr, &json), BDA_MISUSED);
  open(directory / "library.db");
  damage();
  PlainDatabase(directory / "library.db")("INSERT INTO setting VALUES('history', -1)");
  EXPECT_EQ(bda_library_settings(library, nullptr, &json), BDA_REFUSED);
  EXPECT_EQ(linesIn(take()), 4);
  EXPECT_THAT(error(), StartsWith("history: "));
}

TEST_F(LibraryReading, ALibraryOfFilesIsComparedWithoutWhatNoMessageCarries) {
  uint8_t* bytes = nullptr;
  std::size_t size = 0;
  ASSERT_EQ(bda_library_backup(library, &bytes, &size, nullptr), BDA_OK) << error();
  ASSERT_EQ(bda_library_set(library, "mixing-voices", "7", nullptr), BDA_OK);
  bda_files* files = nullptr;
  ASSERT_EQ(bda_files_new(&files), BDA_OK);
  EXPECT_EQ(bda_files_add(files, "a.syx", bytes, size), BDA_OK);
  bda_free(bytes);
  bda_library* ofFiles = nullptr;
  ASSERT_EQ(bda_library_of_files(files, &ofFiles), BDA_OK) << bda_files_error(files);
  EXPECT_EQ(bda_library_diff(library, ofFiles, &json), BDA_OK) << error();
  take();
  bda_library_close(ofFiles);
  bda_files_close(files);
}

TEST_F(LibraryReading, ABackupIsWholeAndSaysWhatIsInIt) {
  uint8_t* bytes = nullptr;
  std::size_t size = 0;
  EXPECT_EQ(bda_library_backup(library, &bytes, &size, &json), BDA_OK) << error();
  EXPECT_THAT(take(),
              AllOf(HasSubstr(R"("deviceNumber":"1")"), HasSubstr(R"({"place":"voice:user1:6","name":"Piano")")));
  ASSERT_GT(size, 2U);
  EXPECT_EQ(bytes[0], 0xF0);
  EXPECT_EQ(bytes[size - 1], 0xF7);
  bda_free(bytes);
  EXPECT_EQ(bda_library_backup(library, nullptr, nullptr, nullptr), BDA_OK) << "whether it can be made";
  EXPECT_EQ(bda_library_backup(library, &bytes, nullptr, nullptr), BDA_MISUSED);
  EXPECT_EQ(bda_library_backup(nullptr, &bytes, &size, nullptr), BDA_MISUSED);
}

TEST_F(LibraryReading, WhatABackupDoesNotCarryIsSaid) {
  auto system = nlohmann::ordered_json::parse(show("system"));
  system["system"]["utility"][3] = 200;
  ASSERT_EQ(bda_library_apply(library, "system", system.dump().c_str(), nullptr), BDA_OK) << error();
  uint8_t* bytes = nullptr;
  std::size_t size = 0;
  EXPECT_EQ(bda_library_backup(library, &bytes, &size, nullptr), BDA_REFUSED);
  EXPECT_EQ(error(), "system: no message carries this: system.utility[3]");
  EXPECT_NE(bytes, nullptr) << "the rest is there";
  bda_free(bytes);
  open(directory / "library.db");
  EXPECT_EQ(bda_library_backup(library, &bytes, &size, nullptr), BDA_UNUSABLE) << "there is none yet";
  damage();
  EXPECT_EQ(bda_library_backup(library, &bytes, &size, &json), BDA_REFUSED);
  EXPECT_THAT(error(), HasSubstr("voice:user1:6: not in the backup: "));
  EXPECT_THAT(take(), AllOf(HasSubstr("voice:user2:6"), Not(HasSubstr("voice:user1:6"))));
  bda_free(bytes);
}

}  // namespace
}  // namespace Editor
