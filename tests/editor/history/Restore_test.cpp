#include "history/Restore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "editor/wire/WireFixture.h"

namespace Editor {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr BulkAddress kSixth{0x0E, 0x0A, 0x05};
constexpr BulkAddress kSeventh{0x0E, 0x0A, 0x06};

class Restoring : public testing::Test {
 protected:
  void take(Restore& restore, const std::vector<Bytes>& messages) {
    for (const Bytes& message : messages) {
      const std::optional<Record> record = restore.take(readMessage(message), {++number, file, 0, message});
      ASSERT_TRUE(record);
      ASSERT_NE(record->outcome, Outcome::refused) << number << ": " << record->reason;
    }
  }
  std::vector<PlaceChange> restored(const std::vector<Bytes>& messages) {
    editor.library().beginRun({"restore"});
    Restore restore(editor, EmbeddedEditor::Run::Devices::asSet);
    take(restore, messages);
    std::vector<PlaceChange> changes = restore.settle();
    restore.commit();
    tally = restore.tally(changes);
    return changes;
  }

  const std::string file = "a.syx";
  std::uint64_t number = 0;
  EmbeddedEditor editor;
  Restore::Tally tally;
};

TEST_F(Restoring, CountsWhatWasStoredAndWhatWasSo) {
  EXPECT_THAT(restored(unitOf(kSixth, BDA::List::normalVoice, 3)), SizeIs(1));
  EXPECT_EQ(tally.stored, 1U);
  EXPECT_EQ(tally.same, 0U);
  std::vector<Bytes> both = unitOf(kSixth, BDA::List::normalVoice, 3);
  for (const Bytes& message : unitOf(kSeventh, BDA::List::normalVoice, 4)) both.push_back(message);
  EXPECT_THAT(restored(both), SizeIs(1));
  EXPECT_EQ(tally.stored, 1U);
  EXPECT_EQ(tally.same, 1U);
  EXPECT_EQ(tally.removed, 0U);
}

TEST_F(Restoring, PassesOverWhatIsNoDump) {
  editor.library().beginRun({"restore"});
  Restore restore(editor, EmbeddedEditor::Run::Devices::asSet);
  const Bytes request = requestMessage(kSixth, 0);
  EXPECT_FALSE(restore.take(readMessage(request), {1, file, 0, request}));
  EXPECT_EQ(restore.dumps(), 0U);
  take(restore, unitOf(kSixth, BDA::List::normalVoice));
  EXPECT_EQ(restore.dumps(), unitOf(kSixth, BDA::List::normalVoice).size());
}

TEST_F(Restoring, ChangesNothingUnlessItIsCommitted) {
  {
    Restore restore(editor, EmbeddedEditor::Run::Devices::asSet);
    take(restore, unitOf(kSixth, BDA::List::normalVoice, 3));
    restore.settle();
  }
  EXPECT_THAT(editor.library().contents(), IsEmpty());
}

}  // namespace
}  // namespace Editor
