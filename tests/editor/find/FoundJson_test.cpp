#include "find/FoundJson.h"

#include <gtest/gtest.h>

#include "models/ModelJson.h"

namespace Editor {
namespace {

Found piano() {
  Found found;
  found.source = "a.syx";
  found.content.place = "voice:user1:6";
  found.content.name = "Caf\xE9";
  found.content.favourite = std::nullopt;
  found.hash = "0123456789abcdef";
  return found;
}

TEST(FoundJson, aContentHasWhatItIsCalledAndWhatItIs) {
  EXPECT_EQ(jsonLine(toJson(piano(), {})),
            R"({"source":"a.syx","content":"voice:user1:6","name":"Caf\u00e9","favourite":null,"kind":"voice",)"
            R"("hash":"0123456789abcdef","group":null,"likeness":null})");
}

TEST(FoundJson, whatWasAskedStandsBehind) {
  Found found = piano();
  found.content.favourite = 1;
  found.content.message = 3;
  found.group = 2;
  found.likeness = 0.98765432;
  found.asked = {{"voice.common[3]", std::int64_t{0}}, {"voice.name", "Caf\xE9"}};
  ParameterNames names;
  names.nameParameter("voice.common[3]", "Volume");
  names.nameValue("voice.common[3]", 0, "Off");
  EXPECT_EQ(jsonLine(toJson(found, names)),
            R"({"source":"a.syx","content":"voice:user1:6","name":"Caf\u00e9","favourite":1,"kind":"voice",)"
            R"("hash":"0123456789abcdef","group":2,"likeness":0.987654,"message":3,"parameters":[)"
            R"({"path":"voice.common[3]","name":"Volume","value":0,"valueName":"Off"},)"
            R"({"path":"voice.name","value":"Caf\u00e9"}]})");
}

}  // namespace
}  // namespace Editor
