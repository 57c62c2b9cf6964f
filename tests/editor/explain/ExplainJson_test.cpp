#include "explain/ExplainJson.h"

#include <gtest/gtest.h>

#include "editor/messages/BulkMessages.h"
#include "models/ModelJson.h"

namespace Editor {
namespace {

std::string lineAt(const Bytes& bytes, std::size_t at, const ParameterNames& names = {}) {
  const MessageFile file(bytes);
  const MessageFile::Byte byte = file.find(at).value();
  return jsonLine(toJson("a.syx", byte, FileExplainer(file).explain(byte), names));
}

TEST(ExplainJson, aByteOfABlockHasItsParametersWithTheirNames) {
  ParameterNames names;
  names.nameParameter("voice.common[4]", "Pan");
  names.nameValue("voice.common[4]", 5, "Left");
  EXPECT_EQ(lineAt(blockDump({0x40, 0x00, 0x00}, 0x05), 40, names),
            R"({"file":"a.syx","offset":40,"byte":5,"message":1,"address":"40 00 00","name":"normal voice common",)"
            R"("part":"data","type":"dump","dataByte":30,"parameters":[)"
            R"({"path":"voice.common[4]","name":"Pan","bits":15,"how":"the value, in the low nibble","value":5,)"
            R"("valueName":"Left"},)"
            R"({"path":"voice.common[3]","bits":112,"how":"the value, in the high nibble","value":0}],"unused":0})");
}

TEST(ExplainJson, whatIsNoDataHasNoParameters) {
  EXPECT_EQ(lineAt(request({0, 0, 0}, 2), 2),
            R"({"file":"a.syx","offset":2,"byte":34,"message":1,"address":"00 00 00","name":"system:common",)"
            R"("part":"device","type":"request","device":3,"parameters":[]})");
  EXPECT_EQ(lineAt({0xF0, 0xF7, 0x01}, 2), R"({"file":"a.syx","offset":2,"byte":1,"part":"outside","parameters":[],)"
                                           R"("reason":"outside of any message"})");
}

TEST(ExplainJson, aByteThatCarriesAParameterHasItsPlaceInWhatIsSent) {
  EXPECT_EQ(jsonLine(toJson(CarryingByte{{0x40, 0x00, 0x00}, 2, 30, 15, "the value", 27})),
            R"({"address":"40 00 00","message":2,"dataByte":30,"bits":15,"how":"the value","byte":27})");
}

}  // namespace
}  // namespace Editor
