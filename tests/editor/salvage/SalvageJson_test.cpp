#include "salvage/SalvageJson.h"

#include "SalvageFixture.h"
#include "models/ModelJson.h"

namespace Editor {
namespace {

TEST(SalvageJson, aUnitHasItsFilesByName) {
  Salvaged unit;
  unit.address = {0x0E, 0x0A, 0x05};
  unit.from = {0, 2};
  unit.missing = {{0x41, 0x02, 0x00}};
  EXPECT_EQ(jsonLine(toJson(unit, {"a.syx", "b.syx", "c.syx"})),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"lost","from":["a.syx","c.syx"],)"
            R"("missing":["41 02 00"],"contradicts":[]})");
}

TEST(SalvageJson, whatIsNotTakenContradictsInTheOrderOfABackup) {
  Salvaged unit;
  unit.address = {0x0E, 0x0A, 0x05};
  unit.state = Salvaged::State::completed;
  unit.isMerged = true;
  unit.contradicts = {{0x41, 0x02, 0x00}};
  unit.notTaken = {{NotTaken::Form::remains, {0}, {{0x41, 0x02, 0x00}, {0x40, 0x00, 0x00}}}};
  unit.messages.push_back({0, 1, 0, blockDump({0x40, 0x00, 0x00}), 0x12});
  unit.messages.push_back({0, 2, 0, blockDump({0x41, 0x02, 0x00}), std::nullopt});
  EXPECT_EQ(jsonLine(toJson(unit, {"a.syx"})),
            R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"completed","from":[],"missing":[],)"
            R"("contradicts":["40 00 00","41 02 00"],"corrected":["40 00 00"],"merged":true})");
}

}  // namespace
}  // namespace Editor
