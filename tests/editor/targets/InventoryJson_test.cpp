#include "targets/InventoryJson.h"

#include <gtest/gtest.h>

#include "models/ModelJson.h"

namespace Editor {
namespace {

Inventory::Entry placeWith(Library::Flag flag) {
  Inventory::Entry entry;
  entry.id = {4, 0x3F0807};
  entry.favourite = flag;
  return entry;
}

TEST(InventoryJson, aPlaceWithNothingButAFlagIsNotStored) {
  EXPECT_EQ(jsonLine(toJson(placeWith(1))),
            R"({"content":"voice:user1:8","type":4,"number":4130823,"stored":false,"favourite":1})");
  EXPECT_EQ(jsonLine(toJson(placeWith(std::nullopt))),
            R"({"content":"voice:user1:8","type":4,"number":4130823,"stored":false,"favourite":null})");
}

TEST(InventoryJson, aContentHasWhatItIsUnlessItIsDamaged) {
  Inventory::Entry entry = placeWith(0);
  entry.content = {"Caf\xE9", {1, 2}};
  EXPECT_EQ(jsonLine(toJson(entry)),
            R"({"content":"voice:user1:8","type":4,"number":4130823,"stored":true,"name":"Caf\u00e9","bytes":2,)"
            R"("opaque":true,"hash":"082f2407b4e8902a","favourite":0})");
  entry.content.reset();
  entry.isDamaged = true;
  EXPECT_EQ(jsonLine(toJson(entry)),
            R"({"content":"voice:user1:8","type":4,"number":4130823,"stored":true,"damaged":true,"favourite":0})");
}

}  // namespace
}  // namespace Editor
