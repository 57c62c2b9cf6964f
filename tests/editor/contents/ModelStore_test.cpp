#include "contents/ModelStore.h"

#include <gtest/gtest.h>

#include "contents/ContentFormat.h"
#include "editor/contents/TemporaryLibrary.h"

namespace Editor {
namespace {

using Loaded = ContentStore::Loaded;

constexpr ContentId kVoice{4, 0x3F0805};
constexpr ContentId kDrum{4, 0x3F2803};
constexpr ContentId kSingle{14, 0};

struct ModelStoreTest : ::testing::Test {
  // A voice that differs from a fresh one.
  static ModelSet voiceNamed(const char* name) {
    ModelSet models = emptySetFor(kVoice);
    EXPECT_TRUE(models.voice->name.assign(name));
    return models;
  }
  void lock() { other("BEGIN IMMEDIATE"); }
  // Takes a table away: every statement on it fails from now on.
  void breakLibrary() { other("DROP TABLE content; DROP TABLE live_model; DROP TABLE setting"); }

  TemporaryDirectory directory;
  Library library{madeLibrary(directory / "library.db"), {.busyTimeout = std::chrono::milliseconds(20)}};
  PlainDatabase other{directory / "library.db"};
  ModelStore store{library};
  std::string why;
};

TEST_F(ModelStoreTest, LoadsWhatWasStored) {
  for (const ContentId id :
       {kVoice, kDrum, ContentId{4, 0x3F3C00}, ContentId{4, 0x3F8013}, ContentId{1, 127},
        ContentId{kContentPerformance, 255}, ContentId{kContentMaster, 0}, ContentId{kContentRemote, 49}}) {
    ModelSet models = emptySetFor(id);
    const std::uint8_t value = 42;
    if (models.multi) models.multi->part[15].main.set(&value, 57, 0);
    if (models.master) models.master->zone[3].params.set(&value, 32, 0);
    if (models.remote) models.remote->controller[11].params.set(&value, 1, 0);
    EXPECT_FALSE(models == emptySetFor(id));
    ASSERT_TRUE(store.storeModels(id, "A name", models, why)) << id.number << why;
    ModelSet loaded = emptySetFor(id);
    ASSERT_EQ(store.loadModels(id, loaded, why), Loaded::ok) << id.number << why;
    EXPECT_TRUE(loaded == models);
    EXPECT_EQ(library.contentName(id), "A name");
  }
}

TEST_F(ModelStoreTest, NothingStoredIsEmpty) {
  ModelSet models = voiceNamed("untouched");
  EXPECT_TRUE(store.isEmpty(kVoice));
  EXPECT_EQ(store.loadModels(kVoice, models, why), Loaded::empty);
  EXPECT_EQ(why, "nothing is stored there");
  EXPECT_TRUE(models == voiceNamed("untouched"));
}

TEST_F(ModelStoreTest, ForeignBytesAreOpaqueUntilModelsReplaceThem) {
  const Library::Bytes foreign{1, 2, 3};
  library.store(kVoice, foreign, "Foreign");
  ModelSet models = voiceNamed("untouched");
  EXPECT_FALSE(store.isEmpty(kVoice));
  EXPECT_EQ(store.loadModels(kVoice, models, why), Loaded::opaque);
  EXPECT_EQ(why, "its bytes are not in this editor's format");
  EXPECT_TRUE(models == voiceNamed("untouched"));
  EXPECT_EQ(library.content(kVoice)->bytes, foreign);

  ASSERT_TRUE(store.storeModels(kVoice, "Mine", voiceNamed("Mine"), why));
  EXPECT_EQ(store.loadModels(kVoice, models, why), Loaded::ok);
  EXPECT_TRUE(models == voiceNamed("Mine"));
}

TEST_F(ModelStoreTest, ModelsThatDoNotFitTheirAddressAreOpaque) {
  library.store(kVoice, encodeContent(emptySetFor(kDrum)), "Drum");
  ModelSet models = emptySetFor(kVoice);
  EXPECT_EQ(store.loadModels(kVoice, models, why), Loaded::opaque);
  EXPECT_EQ(why, "it holds models of another kind");
}

TEST_F(ModelStoreTest, RefusesModelsThatDoNotFitTheirAddress) {
  EXPECT_FALSE(store.storeModels(kVoice, "x", emptySetFor(kDrum), why));
  EXPECT_EQ(why, "such models cannot be stored there");
  EXPECT_FALSE(store.storeModels(kSingle, "x", ModelSet(), why));
  EXPECT_FALSE(store.storeModels({4, 0xFFFFFF}, "x", emptySetFor(kVoice), why));
  EXPECT_TRUE(library.contents().empty());
}

TEST_F(ModelStoreTest, AStoreIsPartOfTheCallersTransaction) {
  {
    Library::Transaction transaction(library);
    ASSERT_TRUE(store.storeModels(kVoice, "x", emptySetFor(kVoice), why));
    ASSERT_TRUE(store.storeLive({}, why));
  }
  EXPECT_TRUE(store.isEmpty(kVoice));
}

TEST_F(ModelStoreTest, KeepsLiveModelsByKey) {
  ModelSet system;
  system.system.emplace();
  const std::uint8_t on = 1;
  ASSERT_TRUE(system.system->utility.set(&on, SystemModel::kReceiveBulk, 0));
  const ModelSet voice = voiceNamed("Live");
  ASSERT_TRUE(store.storeLive({{"system", &system}, {"voice", &voice}}, why));

  ModelSet loaded;
  loaded.system.emplace();
  EXPECT_EQ(store.loadLive("system", loaded, why), Loaded::ok);
  EXPECT_TRUE(loaded == system);
  loaded = emptySetFor(kVoice);
  EXPECT_EQ(store.loadLive("voice", loaded, why), Loaded::ok);
  EXPECT_TRUE(loaded == voice);
  EXPECT_EQ(store.loadLive("system", loaded, why), Loaded::opaque);
  EXPECT_EQ(store.loadLive("multi", loaded, why), Loaded::empty);
}

TEST_F(ModelStoreTest, StoresAllLiveModelsOrNone) {
  other(
      "CREATE TRIGGER full BEFORE INSERT ON live_model WHEN new.key = 'voice' BEGIN SELECT RAISE(ABORT, 'disk full'); "
      "END");
  const ModelSet voice = voiceNamed("Live");
  EXPECT_FALSE(store.storeLive({{"system", &voice}, {"voice", &voice}}, why));
  EXPECT_NE(why.find("disk full"), std::string::npos);
  EXPECT_TRUE(library.liveKeys().empty());
}

TEST_F(ModelStoreTest, ALockedLibraryRefusesAStoreAndSaysSo) {
  lock();
  EXPECT_FALSE(store.storeModels(kVoice, "x", emptySetFor(kVoice), why));
  EXPECT_NE(why.find("is locked by another program"), std::string::npos);
}

TEST_F(ModelStoreTest, TellsOfALibraryThatFails) {
  breakLibrary();
  ModelSet models = voiceNamed("untouched");
  EXPECT_EQ(store.loadModels(kVoice, models, why), Loaded::failed);
  EXPECT_NE(why.find("library.db"), std::string::npos);
  EXPECT_TRUE(models == voiceNamed("untouched"));
  EXPECT_EQ(store.loadLive("system", models, why), Loaded::failed);
  EXPECT_THROW(store.isEmpty(kVoice), LibraryError);
  EXPECT_THROW(store.mixingVoiceCount(), LibraryError);
  EXPECT_THROW(store.mixingVoiceMaximum(), LibraryError);
  EXPECT_FALSE(store.storeModels(kVoice, "x", models, why));
}

TEST_F(ModelStoreTest, KnowsHowManyMixingVoicesThereAreAndMayBe) {
  EXPECT_EQ(store.mixingVoiceMaximum(), 2048);
  library.setMixingVoiceMaximum(3);
  ASSERT_TRUE(store.storeModels({4, 0x3F3C00}, "x", emptySetFor(kVoice), why));
  EXPECT_EQ(store.mixingVoiceCount(), 1);
  EXPECT_EQ(store.mixingVoiceMaximum(), 3);
}

}  // namespace
}  // namespace Editor
