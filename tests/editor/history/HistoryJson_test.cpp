#include "history/HistoryJson.h"

#include <gtest/gtest.h>

#include "models/ModelJson.h"

namespace Editor {
namespace {

TEST(HistoryJson, anEntryHasItsChanges) {
  const HistoryEntry entry{3, 86'400, "receive", {"a\x1B.syx"}, std::nullopt, 4};
  const std::vector<PlaceChange> changes{{"voice:user1:6", What::stored, std::nullopt, "N\xE9w"},
                                         {"voice:user1:6", What::flagged, std::nullopt, "1", true}};
  EXPECT_EQ(jsonLine(toJson(entry, changes)),
            R"({"entry":3,"time":"1970-01-02T00:00:00Z","verb":"receive","sources":["a\u001b.syx"],"changes":[)"
            R"({"content":"voice:user1:6","what":"stored","before":null,"after":"N\u00e9w"},)"
            R"({"content":"voice:user1:6","what":"flagged","before":null,"after":1,"damaged":true}],)"
            R"("undoes":null,"undoneBy":4})");
}

TEST(HistoryJson, anUndoOfNothingHasEmptyLists) {
  EXPECT_EQ(jsonLine(toJson({4, 0, "undo", {}, 3, std::nullopt}, {})),
            R"({"entry":4,"time":"1970-01-01T00:00:00Z","verb":"undo","sources":[],"changes":[],"undoes":3,)"
            R"("undoneBy":null})");
}

TEST(HistoryJson, aTimeThatIsNoneIsTheFirst) {
  EXPECT_EQ(timeOf({1, -1, "", {}, {}, {}}), "1970-01-01T00:00:00Z");
  EXPECT_EQ(timeOf({1, 253'402'300'799, "", {}, {}, {}}), "9999-12-31T23:59:59Z");
  EXPECT_EQ(timeOf({1, 253'402'300'800, "", {}, {}, {}}), "1970-01-01T00:00:00Z");
}

}  // namespace
}  // namespace Editor
