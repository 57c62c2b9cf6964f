#include "targets/Inventory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contents/ContentFormat.h"
#include "models/ModelJson.h"
#include "targets/InventoryJson.h"
#include "targets/TargetModels.h"

namespace Editor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class InventoryTest : public testing::Test {
 protected:
  static constexpr ContentId kVoice{4, 0x3F0805};
  static constexpr ContentId kTorn{4, 0x3F0806};
  static constexpr ContentId kEmpty{4, 0x3F0807};
  static constexpr ContentId kMulti{1, 0};

  InventoryTest() {
    Library& library = editor.library();
    library.store(kMulti, std::vector<std::uint8_t>{1, 2}, "Opaque");
    library.store(kVoice, encodeContent(emptySetFor(kVoice)), "Caf\xE9");
    library.setFavourite(kVoice, 1);
    library.setFavourite(kEmpty, 1);
    Held torn = heldOf("Torn", std::vector<std::uint8_t>{1});
    ++torn.checksum;
    library.putBack(contentAt(kTorn), torn);
    storeTarget(editor, parseTarget("voice:edit"), freshTarget(parseTarget("voice:edit"), false));
    library.storeLive("master", std::vector<std::uint8_t>{1});
  }

  static std::vector<std::string> namesOf(const std::vector<Target>& targets) {
    std::vector<std::string> names;
    for (const Target& target : targets) names.push_back(target.name);
    return names;
  }
  std::vector<std::string> lines(const std::vector<Places<Target>>& asked = {}) {
    std::vector<std::string> lines;
    for (const Inventory::Entry& entry : inventoryOf(editor, asked).entries) lines.push_back(jsonLine(toJson(entry)));
    return lines;
  }

  EmbeddedEditor editor;
};

TEST_F(InventoryTest, hasContentsWithTheirFlagsByTypeAndNumber) {
  EXPECT_THAT(lines(),
              ElementsAre(R"({"content":"file:multi:1","type":1,"number":0,"stored":true,"name":"Opaque","bytes":2,)"
                          R"("opaque":true,"hash":"082f2407b4e8902a","favourite":0})",
                          testing::StartsWith(R"({"content":"voice:user1:6","type":4,"number":4130821,"stored":true,)"
                                              R"("name":"Caf\u00e9","bytes":)"),
                          R"({"content":"voice:user1:7","type":4,"number":4130822,"stored":true,"damaged":true,)"
                          R"("favourite":0})",
                          R"({"content":"voice:user1:8","type":4,"number":4130823,"stored":false,"favourite":1})"));
}

TEST_F(InventoryTest, tellsLiveModelsThatCannotBeReadFromTheOthers) {
  const Inventory inventory = inventoryOf(editor);
  EXPECT_THAT(namesOf(inventory.live), ElementsAre("voice:edit"));
  EXPECT_THAT(namesOf(inventory.damaged), ElementsAre("master:edit"));
}

TEST_F(InventoryTest, hasNothingElseThanWhatIsAskedFor) {
  EXPECT_THAT(lines({parseTargets("voice:user1:8"), parseTargets("voice:user3")}), testing::SizeIs(1));
  const Inventory inventory = inventoryOf(editor, {parseTargets("voice:edit"), parseTargets("system")});
  EXPECT_THAT(inventory.entries, IsEmpty());
  EXPECT_THAT(namesOf(inventory.live), ElementsAre("voice:edit"));
  EXPECT_THAT(inventory.damaged, IsEmpty());
}

}  // namespace
}  // namespace Editor
