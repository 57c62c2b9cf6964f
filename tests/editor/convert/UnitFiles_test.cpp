#include "convert/UnitFiles.h"

#include <gmock/gmock.h>

#include <map>

#include "ConvertFixture.h"

using Editor::Batch;
using Editor::Sharing;
using testing::ElementsAre;

namespace {

const Bytes kTrigger = blockDump({0x11, 0x00, 0x00});
const Bytes kSystem = blockDump({0, 0, 0});

std::string stemOf(Editor::BulkAddress address, const std::string& name) {
  Batch::Unit unit;
  unit.place = Editor::placeNameOf(address);
  return Editor::fileStemOf(unit, name);
}

// By their stems.
std::map<std::string, Bytes> filesOf(const Batch& batch, Sharing sharing) {
  std::map<std::string, Bytes> files;
  Editor::UnitModels models;
  Editor::forEachUnitFile(batch, sharing, models, [&](const Editor::UnitFile& file) {
    EXPECT_TRUE(files.emplace(file.stem, joined({file.messages})).second) << file.stem;
  });
  return files;
}

}  // namespace

TEST(UnitFiles, areNamedByKindNumberAndName) {
  EXPECT_EQ(stemOf({0x0E, 0x0A, 0x05}, "Grand Piano"), "voice-user1-006-Grand_Piano");
  EXPECT_EQ(stemOf({0x0C, 0x50, 0x7F}, "Big+Multi"), "multi-128-Big+Multi");
  EXPECT_EQ(stemOf({0x0C, 0x14, 0x02}, ""), "mix-003-005");
  EXPECT_EQ(stemOf({0x0E, 0x0F, 0x00}, "x"), "voice-edit-x");
  EXPECT_EQ(stemOf({0x0C, 0x7F, 0x00}, "One"), "single-One");
}

TEST(UnitFiles, aNameIsNothingButAName) {
  EXPECT_EQ(stemOf({0x0E, 0x0A, 0x05}, "../../etc/passwd"), "voice-user1-006-etc_passwd");
  EXPECT_EQ(stemOf({0x0E, 0x0A, 0x05}, ".."), "voice-user1-006");
  EXPECT_EQ(stemOf({0x0E, 0x0A, 0x05}, std::string("a\0b\x1B\xE9:*?", 9)), "voice-user1-006-a_b");
  EXPECT_EQ(stemOf({0x0E, 0x0A, 0x05}, "C:\\dir\\f. "), "voice-user1-006-C_dir_f");
}

TEST(UnitFiles, aLongNameIsShortened) {
  EXPECT_EQ(stemOf({0x0E, 0x0A, 0x05}, std::string(300, 'A')), "voice-user1-006-" + std::string(200, 'A'));
  EXPECT_EQ(stemOf({0x0E, 0x0A, 0x05}, std::string(199, 'A') + " and more"),
            "voice-user1-006-" + std::string(199, 'A'));
}

TEST(UnitFiles, namesAreGivenOnceWhateverTheirCase) {
  Editor::FileNames names;
  const auto isFree = [](const std::string& name) { return name != "a-3.syx"; };
  EXPECT_EQ(names.next("a", isFree), "a.syx");
  EXPECT_EQ(names.next("A", isFree), "A-2.syx");
  EXPECT_EQ(names.next("a", isFree), "a-4.syx");
  EXPECT_EQ(names.next("a-4", isFree), "a-4-2.syx");
}

TEST(UnitFiles, namesThatWereGivenAreNotAskedForAgain) {
  Editor::FileNames names;
  unsigned asked = 0;
  const auto isFree = [&](const std::string&) { return ++asked > 0; };
  constexpr unsigned kMany = 3000;
  for (unsigned i = 1; i < kMany; ++i) names.next("a", isFree);
  EXPECT_EQ(names.next("A", isFree), "A-3000.syx");
  EXPECT_EQ(asked, kMany);
}

TEST(UnitFiles, aFileThatIsFreeForAnotherUnitIsFound) {
  Editor::FileNames names;
  EXPECT_EQ(names.next("a", [](const std::string& name) { return name == "a-2.syx"; }), "a-2.syx");
  EXPECT_EQ(names.next("a", [](const std::string&) { return true; }), "a.syx");
  EXPECT_EQ(names.next("a", [](const std::string&) { return true; }), "a-3.syx");
}

TEST(UnitFiles, apartAFileDumpHasItsTriggerWithIt) {
  const Bytes voice = fileDump({0x0C, 0x0A, 0x06}, "Piano", {1});
  const Bytes eraser = dump({0x0C, 0x0A, 0x07}, Bytes(4), 2);
  const Bytes preset = fileDump({0x0C, 0x00, 0x00}, "Preset", {1});  // that nobody writes
  const Batch batch = batchOf({{kSystem, voice, eraser, kTrigger, kTrigger, preset}});
  EXPECT_THAT(
      filesOf(batch, Sharing::apart),
      ElementsAre(std::pair("other", joined({{kSystem, kTrigger}})), std::pair("voice-preset1-001-Preset", preset),
                  std::pair("voice-user1-007-Piano", joined({{voice, kTrigger}})),
                  std::pair("voice-user1-008-removes", joined({{eraser, dump({0x11, 0, 0}, {}, 2)}}))));
  EXPECT_THAT(filesOf(batch, Sharing::together),
              ElementsAre(std::pair("other", joined({{kSystem, kTrigger, kTrigger}})),
                          std::pair("voice-preset1-001-Preset", preset), std::pair("voice-user1-007-Piano", voice),
                          std::pair("voice-user1-008-removes", eraser)));
}

TEST(UnitFiles, theNameOfBlocksIsThatOfTheirModels) {
  for (const auto& [header, list] : {std::pair(Editor::BulkAddress{0x0E, 0x0A, 0x05}, BDA::List::normalVoice),
                                     std::pair(Editor::BulkAddress{0x0E, 0x30, 0x05}, BDA::List::drumVoice),
                                     std::pair(Editor::BulkAddress{0x0E, 0x40, 0x05}, BDA::List::performance),
                                     std::pair(Editor::BulkAddress{0x0E, 0x70, 0x05}, BDA::List::master)}) {
    const auto files = filesOf(batchOf({unit(header, list, 'A', 6)}), Sharing::apart);
    ASSERT_EQ(files.size(), 1u);
    EXPECT_THAT(files.begin()->first, testing::EndsWith("-006-AAAAAAAAAAAAAAAAAAAA"));
  }
}
