#include "convert/UnitFileJson.h"

#include <gtest/gtest.h>

#include "ConvertFixture.h"
#include "models/ModelJson.h"

using Editor::jsonLine;
using Editor::toJson;

namespace {

Editor::Batch fileDumpOf(bool removes) {
  Editor::Batch batch;
  Editor::Batch::Unit unit;
  unit.form = Editor::Batch::Unit::Form::fileDump;
  unit.place = "voice:user1:6";
  unit.address = {0x0C, 0x0A, 0x05};
  unit.removes = removes;
  batch.units.push_back(unit);
  return batch;
}

}  // namespace

TEST(UnitFileJson, aUnitHasItsPlaceAndForm) {
  const Editor::UnitFile file{0, "stem", "Caf\xE9", {{1, 2, 3}, {4, 5}}};
  EXPECT_EQ(jsonLine(toJson(file, fileDumpOf(false), "a.syx")),
            R"({"unit":"voice:user1:6","address":"0C 0A 05","form":"file dump","name":"Caf\u00e9","messages":2,)"
            R"("bytes":5,"file":"a.syx"})");
  Editor::Batch blocks = fileDumpOf(true);
  blocks.units[0].form = Editor::Batch::Unit::Form::blocks;
  blocks.units[0].from = "voice:user2:1";
  EXPECT_EQ(jsonLine(toJson(file, blocks, "a.syx")),
            R"({"unit":"voice:user1:6","address":"0C 0A 05","form":"blocks","name":"Caf\u00e9",)"
            R"("from":"voice:user2:1","removes":["voice:user1:6"],"messages":2,"bytes":5,"file":"a.syx"})");
}

TEST(UnitFileJson, messagesOfNoUnitHaveNoPlace) {
  EXPECT_EQ(jsonLine(toJson({std::nullopt, "other", "", {{1}}}, {}, "other.syx")),
            R"({"unit":null,"messages":1,"bytes":1,"file":"other.syx"})");
}
