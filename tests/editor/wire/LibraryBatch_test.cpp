#include "wire/LibraryBatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "editor/wire/WireFixture.h"
#include "targets/TargetModels.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LibraryBatches : public testing::Test {
 protected:
  LibraryBatches() {
    for (const char* const place : {"voice:user1:6", "voice:user1:7", "master:3"})
      storeTarget(editor, parseTarget(place), freshTarget(parseTarget(place), false));
  }

  // Units by their places, and the triggers between them.
  std::vector<std::string> read(const std::vector<std::string>& words, Triggers triggers = Triggers::behindFileDumps) {
    missing.clear();
    const Batch batch = batchOf(
        editor, parseAddresses(words), triggers,
        [&](BulkAddress address, const std::string& why) { missing.push_back(nameOrBytes(address) + ": " + why); });
    std::vector<std::string> told;
    std::optional<std::size_t> unit;
    for (const Batch::Message& message : batch.messages) {
      if (!message.unit) told.push_back(describeAddress(readMessage(message.bytes).address.value()));
      if (message.unit && message.unit != unit) told.push_back(batch.units[*message.unit].place);
      unit = message.unit;
    }
    return told;
  }

  EmbeddedEditor editor;
  std::vector<std::string> missing;
};

TEST_F(LibraryBatches, fileDumpsThatFollowEachOtherShareATrigger) {
  const std::string trigger = describeAddress(kWriteTrigger);
  EXPECT_THAT(read({"file:voice:user1:6", "file:voice:user1:7", "master:3", "file:voice:user1:6"}),
              ElementsAre("voice:user1:6", "voice:user1:7", trigger, "master:3", "voice:user1:6", trigger));
  EXPECT_THAT(missing, IsEmpty());
}

TEST_F(LibraryBatches, whatIsNotStoredThereNeedsNoTrigger) {
  EXPECT_THAT(read({"file:voice:user1:6", "master:3"}, Triggers::none), ElementsAre("voice:user1:6", "master:3"));
  EXPECT_THAT(read({"voice:user1:6"}), ElementsAre("voice:user1:6"));
}

TEST_F(LibraryBatches, whatIsNotThereIsNamedAndKeepsNoneFromTheOthers) {
  EXPECT_THAT(read({"file:voice:user1:8", "voice:user1:8", "voice:user1:6"}), ElementsAre("voice:user1:6"));
  EXPECT_THAT(missing,
              ElementsAre("file:voice:user1:8: nothing is stored there", testing::StartsWith("voice:user1:8: ")));
}

}  // namespace
}  // namespace Editor
