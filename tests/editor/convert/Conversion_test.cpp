#include "convert/Conversion.h"

#include <gmock/gmock.h>

#include "ConvertFixture.h"

using Editor::Batch;
using Editor::Conversion;
using Editor::ConversionError;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ConversionTest : public testing::Test, protected Conversion::Listener {
 protected:
  void missing(const std::string& text) override { told.push_back("missing: " + text); }
  void broken(const std::vector<Editor::MessageFault>& faults) override {
    for (const Editor::MessageFault& fault : faults) told.push_back("broken: " + fault.kind);
  }
  void note(const std::string& text) override { told.push_back("note: " + text); }
  void placing() override { ++placed; }

  void apply(Batch& batch, const Conversion::Options& options) { Conversion(options).apply(batch, models, *this); }
  // Why it is not done.
  std::optional<ConversionError::Kind> refusal(Batch batch, const Conversion::Options& options) {
    try {
      apply(batch, options);
    } catch (const ConversionError& error) {
      return error.kind();
    }
    return std::nullopt;
  }

  const std::vector<Bytes> voice = unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1);
  const std::vector<Bytes> other = unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 2);
  const Bytes brokenFileDump = damaged(fileDump({0x0C, 0x0A, 0x06}, "Kept", {1}));
  Editor::UnitModels models;
  std::vector<std::string> told;
  std::size_t placed = 0;
};

TEST_F(ConversionTest, chosenUnitsGoToTheirPlacesForTheirDevice) {
  Batch batch = batchOf({voice, other});
  apply(batch, {{"voice:user1:7", "voice:user1:9"}, "voice:user2:1..2", 5});
  EXPECT_THAT(placesOf(batch), ElementsAre("voice:user2:1"));
  EXPECT_EQ(batch.units[0].from, "voice:user1:7");
  EXPECT_EQ(bytesOf(batch), joined({unit({0x0E, 0x0B, 0x00}, BDA::List::normalVoice, 2, 4)}));
  EXPECT_THAT(told, ElementsAre("missing: voice:user1:9: there is none in the files",
                                "note: 1 unit for 2 places: the first of them are taken"));
  EXPECT_EQ(placed, 1u);
}

TEST_F(ConversionTest, whatIsBrokenGoesAlongButIsNotPlaced) {
  const Batch batch = batchOf({voice, {brokenFileDump}});
  EXPECT_FALSE(refusal(batch, {}));
  EXPECT_THAT(told, IsEmpty());
  EXPECT_EQ(refusal(batch, {.place = "voice:user2:1"}), ConversionError::Kind::refused);
  EXPECT_THAT(told, ElementsAre("broken: broken file dump"));
}

TEST_F(ConversionTest, whyNothingIsWritten) {
  EXPECT_EQ(refusal(batchOf({voice}), {.select = {"voice:user1:9"}}), ConversionError::Kind::refused);
  EXPECT_EQ(refusal(batchOf({voice, other}), {.place = "voice:user2:1"}), ConversionError::Kind::unusable);
  EXPECT_EQ(refusal(batchOf({}), {.place = "voice:user2:1"}), ConversionError::Kind::unusable);
  Editor::BatchBuilder json;
  json.addJson(nlohmann::ordered_json::object(), "a.json");
  EXPECT_EQ(refusal(json.finish(), {}), ConversionError::Kind::noPlace);
}

}  // namespace
