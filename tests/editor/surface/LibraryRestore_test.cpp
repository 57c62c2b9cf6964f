#include <string>

#include "editor/surface/LibraryFixture.h"

namespace Editor {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class LibraryRestore : public LibraryCallTest {
 protected:
  LibraryRestore() { EXPECT_EQ(bda_files_new(&files), BDA_OK); }
  ~LibraryRestore() override { bda_files_close(files); }

  static Bytes joined(const std::vector<Bytes>& messages) {
    Bytes bytes;
    for (const Bytes& message : messages) bytes.insert(bytes.end(), message.begin(), message.end());
    return bytes;
  }
  void add(const char* name, const Bytes& bytes) const {
    EXPECT_EQ(bda_files_add(files, name, bytes.data(), bytes.size()), BDA_OK) << bda_files_error(files);
  }
  bda_result restore(const char* options = nullptr) { return bda_library_restore(library, files, options, &json); }

  bda_files* files = nullptr;
  const std::vector<Bytes> voice = unitOf(kVoice, BDA::List::normalVoice, 3);
};

TEST_F(LibraryRestore, AllDumpsAreOneEntryOfTheHistory) {
  add("a.syx", joined(voice));
  add("b.syx", joined(unitOf({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 4)));
  add("request.syx", requestMessage(kVoice, 0));
  EXPECT_EQ(restore(), BDA_OK) << error();
  const std::string told = take();
  EXPECT_EQ(linesIn(told), 2);
  EXPECT_THAT(told, StartsWith(R"({"content":"voice:user1:6","what":"stored","before":null)"));
  EXPECT_EQ(bda_library_history(library, 0, &json), BDA_OK);
  const std::string history = take();
  EXPECT_EQ(linesIn(history), 1);
  EXPECT_THAT(history, HasSubstr(R"("verb":"restore","sources":["a.syx","b.syx","request.syx"])"));
  EXPECT_EQ(restore(), BDA_OK);
  EXPECT_EQ(take(), "") << "all was so before";
}

TEST_F(LibraryRestore, WhatIsRefusedHasNoEntry) {
  receive(voice);
  ASSERT_EQ(bda_library_rename(library, "voice:user1:6", "Grand", nullptr), BDA_OK);
  EXPECT_EQ(bda_library_entry(library), 2);
  EXPECT_EQ(restore(), BDA_UNUSABLE) << "there are no files";
  EXPECT_EQ(bda_library_entry(library), 0);
  ASSERT_EQ(bda_library_rename(library, "voice:user1:6", "Piano", nullptr), BDA_OK);
  EXPECT_EQ(bda_library_restore(library, nullptr, nullptr, nullptr), BDA_MISUSED);
  EXPECT_EQ(bda_library_entry(library), 0);
}

TEST_F(LibraryRestore, ABackupPutsBackWhatWasChanged) {
  receive(voice);
  uint8_t* bytes = nullptr;
  std::size_t size = 0;
  ASSERT_EQ(bda_library_backup(library, &bytes, &size, nullptr), BDA_OK) << error();
  add("backup.syx", Bytes(bytes, bytes + size));
  bda_free(bytes);
  const std::string before = contents();
  const std::string shown = show("voice:user1:6");
  ASSERT_EQ(bda_library_rename(library, "voice:user1:6", "Grand", nullptr), BDA_OK);
  EXPECT_EQ(restore(), BDA_OK) << error();
  EXPECT_THAT(take(), HasSubstr(R"("before":"Grand")"));
  EXPECT_EQ(contents(), before);
  EXPECT_EQ(show("voice:user1:6"), shown);
}

TEST_F(LibraryRestore, WhereSomethingIsBrokenNothingIsRestored) {
  add("a.syx", joined(voice));
  Bytes broken = joined(unitOf({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 4));
  broken[broken.size() - 2] ^= 1;
  add("broken.syx", broken);
  EXPECT_EQ(restore(), BDA_REFUSED);
  EXPECT_EQ(json, nullptr);
  EXPECT_THAT(error(), AllOf(StartsWith("broken.syx: message "), HasSubstr("checksum"), HasSubstr("voice:user1:7")));
  EXPECT_EQ(contents(), "");
}

TEST_F(LibraryRestore, WhatIsCutShortIsNotRestored) {
  Bytes cut = joined(voice);
  cut.pop_back();
  add("cut.syx", cut);
  EXPECT_EQ(restore(), BDA_REFUSED);
  EXPECT_THAT(error(), StartsWith("cut.syx: at offset "));
}

TEST_F(LibraryRestore, DumpsForAnotherDeviceAreTakenOnlyWhereThatIsAsked) {
  ASSERT_EQ(bda_library_set(library, "device-number", "6", nullptr), BDA_OK);
  add("a.syx", joined(voice));
  EXPECT_EQ(restore(), BDA_REFUSED);
  EXPECT_THAT(error(), AllOf(StartsWith("a.syx: message 1 at offset 0: refused: "), HasSubstr("device")));
  EXPECT_EQ(contents(), "");
  EXPECT_EQ(restore(R"({"any-device": false})"), BDA_REFUSED);
  EXPECT_EQ(restore(R"({"any-device": true})"), BDA_OK) << error();
  take();
  EXPECT_THAT(contents(), HasSubstr("voice:user1:6"));
  EXPECT_EQ(bda_library_settings(library, "device-number", &json), BDA_OK);
  EXPECT_THAT(take(), HasSubstr("\"6\"")) << "it listens as it did";
}

TEST_F(LibraryRestore, AUnitThatMessagesHaveBegunIsInItsWay) {
  receive({voice.front()});
  add("a.syx", joined(voice));
  EXPECT_EQ(restore(), BDA_REFUSED);
  EXPECT_THAT(error(), HasSubstr("voice:user1:6"));
  receive({voice.begin() + 1, voice.end()});
  EXPECT_EQ(restore(), BDA_OK) << error();
  EXPECT_EQ(take(), "");
}

TEST_F(LibraryRestore, WhatIsForNobodyHereIsUnusable) {
  EXPECT_EQ(restore(), BDA_UNUSABLE) << "there is no file";
  EXPECT_EQ(restore("[]"), BDA_UNUSABLE);
  EXPECT_EQ(restore(R"({"any-devic": true})"), BDA_UNUSABLE);
  EXPECT_THAT(error(), HasSubstr("did you mean any-device?"));
  EXPECT_EQ(bda_library_restore(library, nullptr, nullptr, &json), BDA_MISUSED);
  EXPECT_EQ(bda_library_restore(nullptr, files, nullptr, &json), BDA_MISUSED);
  TemporaryDirectory directory;
  open(directory / "library.db");
  receive(voice);
  open(directory / "library.db", BDA_OPEN_READ);
  add("a.syx", joined(voice));
  EXPECT_EQ(restore(), BDA_REFUSED);
}

TEST_F(LibraryRestore, AMessageBehindFilesIsToldItsOwnChangesOnly) {
  add("a.syx", joined(voice));
  bda_library* ofFiles = nullptr;
  ASSERT_EQ(bda_library_of_files(files, &ofFiles), BDA_OK) << bda_files_error(files);
  EXPECT_EQ(restore(), BDA_OK) << error();
  take();
  const Bytes message = unitOf({0x0E, 0x0A, 0x06}, BDA::List::normalVoice).front();
  for (bda_library* const one : {library, ofFiles}) {
    EXPECT_EQ(bda_library_handle(one, 1, message.data(), message.size(), nullptr, nullptr, &json), BDA_OK);
    EXPECT_THAT(take(), testing::Not(HasSubstr("voice:user1:6")));
  }
  bda_library_close(ofFiles);
}

}  // namespace
}  // namespace Editor
