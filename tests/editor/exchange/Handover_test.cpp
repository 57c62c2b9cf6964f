// When the live models are read from the library, and when they are written to it.

#include "exchange/Handover.h"

#include <gtest/gtest.h>

#include "contents/ModelStore.h"
#include "editor/contents/TemporaryLibrary.h"
#include "editor/messages/BulkMessages.h"
#include "messages/Units.h"

namespace Editor {
namespace {

constexpr BulkAddress kSystemRemote{0x00, 0x06, 0x00};

// A library's store that counts.
class CountingStore final : public ContentStore {
 public:
  explicit CountingStore(Library& library) : store_(library) {}

  int reads = 0;   // of all live models
  int writes = 0;  // of live models, of one message

  Loaded loadModels(ContentId id, ModelSet& models, std::string& why) override {
    return store_.loadModels(id, models, why);
  }
  bool storeModels(ContentId id, const std::string& name, const ModelSet& models, std::string& why) override {
    return store_.storeModels(id, name, models, why);
  }
  bool isEmpty(ContentId id) override { return store_.isEmpty(id); }
  std::int64_t mixingVoiceCount() override { return store_.mixingVoiceCount(); }
  std::int64_t mixingVoiceMaximum() override { return store_.mixingVoiceMaximum(); }
  Loaded loadLive(const std::string& key, ModelSet& models, std::string& why) override {
    if (key == "system") ++reads;
    return store_.loadLive(key, models, why);
  }
  bool storeLive(const std::vector<LiveModels>& live, std::string& why) override {
    ++writes;
    return store_.storeLive(live, why);
  }

 private:
  ModelStore store_;
};

class HandoverTest : public testing::Test {
 protected:
  // The first message reads the live models: the library may have changed since the tools did.
  HandoverTest() { send(request(kSystemRemote)); }

  Handed send(const Bytes& message) {
    store.writes = 0;
    const Reading reading = readMessage(message);
    return handover.hand(reading, message, BDA::DevicePort_Main, {});
  }
  bool isKept(const Bytes& message) { return send(message).isKept; }
  // How often the live models are read when these messages come.
  int readsFor(std::initializer_list<Bytes> messages) {
    const int before = store.reads;
    for (const Bytes& message : messages) send(message);
    return store.reads - before;
  }
  ModelSet inLibrary() {
    ModelStore fresh(library);
    return EditorJobTools(fresh).liveSystem();
  }

  TemporaryDirectory directory;
  Library library{madeLibrary(directory / "library.db")};
  CountingStore store{library};
  ContentsWork work{library};
  AssistantHost host{store, &work};
  Handover handover{library, work, host};
};

// Refused for its byte count, and taken all the same: where four bytes of data would have their checksum there is 0.
Bytes refusedAndTaken() {
  Bytes message = dump(kSystemRemote, {1, 1, 0, 0, 0});
  message[6] = 4;
  return message;
}

TEST_F(HandoverTest, whoIsAloneNeverReadsTheLiveModelsAgain) {
  EXPECT_EQ(readsFor({blockDump(kSystemRemote, 1), request(kSystemRemote), blockDump({0x0E, 0x5F, 0x00}),
                      blockDump({0x0F, 0x5F, 0x00}), damaged(blockDump(kSystemRemote, 2)),
                      blockDump({0x41, 0x00, 0x00}), blockDump(kSystemRemote, 3)}),
            0);
  EXPECT_EQ(host.tools().liveSystem(), inLibrary());
}

TEST_F(HandoverTest, whatAnotherProgramCommittedIsReadOnceAtTheNextMessage) {
  Library another(directory / "library.db");
  int value = 0;
  for (const Bytes& next : {blockDump(kSystemRemote, 1), request(kSystemRemote), blockDump({0x0E, 0x0A, 0x05})}) {
    another.set("anything", ++value);
    EXPECT_EQ(readsFor({next}), 1);
    EXPECT_EQ(readsFor({next, next}), 0);
  }
}

TEST_F(HandoverTest, whatAnotherProgramTookBackIsNotRead) {
  Library another(directory / "library.db");
  {
    const Library::Transaction transaction(another);
    another.set("anything", 1);
  }
  EXPECT_EQ(readsFor({blockDump(kSystemRemote, 1)}), 0);
}

TEST_F(HandoverTest, whatARefusedMessageChangedIsReadBack) {
  ASSERT_TRUE(isKept(blockDump(kSystemRemote, 2)));
  const ModelSet before = host.tools().liveSystem();
  const std::uint64_t changes = host.tools().changeCount();
  EXPECT_EQ(readsFor({refusedAndTaken()}), 1);
  EXPECT_NE(host.tools().changeCount(), changes) << "nothing was to be read back";
  EXPECT_EQ(host.tools().liveSystem(), before);
  EXPECT_EQ(readsFor({request(kSystemRemote), blockDump(kSystemRemote, 3)}), 0);
}

TEST_F(HandoverTest, whatWasChangedWithoutAMessageAndNotSavedIsForgotten) {
  const ModelSet before = host.tools().liveSystem();
  const std::uint8_t value = 7;
  host.tools().getSystemModel()->getRemote()->set(&value, 0, 0);
  ASSERT_NE(host.tools().liveSystem(), before);
  EXPECT_EQ(readsFor({request(kSystemRemote)}), 1);
  EXPECT_EQ(host.tools().liveSystem(), before);
}

TEST_F(HandoverTest, aRunReadsTheLiveModelsWhenItEnds) {
  handover.beginRun();
  EXPECT_EQ(readsFor({blockDump(kSystemRemote, 1), request(kSystemRemote)}), 0);
  handover.endRun();
  EXPECT_EQ(readsFor({request(kSystemRemote)}), 1);  // it may have been taken back, and another been faster
}

TEST_F(HandoverTest, theBlocksOfAUnitChangeAndWriteNothingBeforeItsFooter) {
  for (const BDA::AddressRow& row : BDA::kHeaderRows) {
    const BulkAddress header{row.hi, row.mid.first, row.lo.first};
    SCOPED_TRACE(nameOrBytes(header));
    // Then blocks are taken from the edit buffer, until a header comes.
    send(request({0x0E, 0x5F, 0x00}));
    ASSERT_TRUE(isKept(blockDump(header)));
    const bool isOfPart = row.type == BDA::kPartVoiceHeader;
    for (const BulkAddress block :
         blocksOf(isOfPart ? BDA::List::normalVoice : BDA::List(BDA::listBetween(row.type)))) {
      const std::uint64_t changes = host.tools().changeCount();
      ASSERT_TRUE(isKept(blockDump(block, 1)));
      ASSERT_EQ(host.tools().changeCount(), changes);
      ASSERT_EQ(store.writes, 0);
    }
    EXPECT_TRUE(isKept(blockDump({BDA::kFooterHi, header.mid, header.lo})));
  }
}

}  // namespace
}  // namespace Editor
