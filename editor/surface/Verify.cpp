// Files of messages, judged without a library.

#include "messages/InputMessage.h"
#include "messages/MessageReader.h"
#include "messages/ReadingJson.h"
#include "messages/Verification.h"
#include "models/ModelJson.h"
#include "surface/Call.h"

using namespace Editor;

bda_result bda_verify(const uint8_t* file, size_t size, const char* name, char** json, char** error) {
  if (json != nullptr) *json = nullptr;
  if (error != nullptr) *error = nullptr;
  std::string why;
  const bda_result result = call(why, [&] {
    require(json, "json");
    if (size > 0) require(file, "file");
    const std::string fileName(textOf(name, "name"));
    std::string lines;
    Verification verification;
    bool areAllWhole = true;
    const auto tell = [&](const std::vector<UnitReport>& ended) {
      for (const UnitReport& unit : ended) lines += jsonLine(toJson(unit)) + '\n';
    };
    MessageReader reader(
        [&](const InputMessage& message) {
          const Reading reading = readMessage(message.bytes);
          lines += jsonLine(toJson(message, reading)) + '\n';
          tell(verification.next(reading, message.number));
        },
        [&](const InputLoss& loss) {
          lines += jsonLine(toJson(loss)) + '\n';
          areAllWhole = areAllWhole && !isBroken(loss);
        });
    BytesInMemory bytes({file, size});
    const FileJudgement judgement = reader.read(bytes, fileName);
    if (!judgement.isUsable()) throw CallFailure{BDA_UNUSABLE, fileName + ": " + judgement.kind()};
    tell(verification.finish());
    *json = handOut(lines);
    return areAllWhole && verification.areAllWhole() ? BDA_OK : BDA_REFUSED;
  });
  handOutError(why, error);
  return result;
}
