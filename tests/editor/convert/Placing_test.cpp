#include "convert/Placing.h"

#include <gmock/gmock.h>

#include "ConvertFixture.h"
#include "contents/ContentFormat.h"
#include "messages/Messages.h"
#include "targets/TargetJson.h"

using Editor::Batch;
using Editor::BulkAddress;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const Bytes kTrigger = blockDump({0x11, 0x00, 0x00});

constexpr unsigned kDrumHeaderType = 6;

class Placing : public testing::Test {
 protected:
  // Places all units, in their order.
  std::vector<std::string> place(Batch& batch, const std::string& to) {
    Editor::Placing placing(batch, models_);
    const std::vector<Editor::Destination> places = Editor::parseDestinations(to);
    std::vector<std::string> leftOut;
    for (std::size_t i = 0; i < batch.units.size(); ++i)
      for (std::string& path : placing.place(i, places.at(i)).parameters) leftOut.push_back(std::move(path));
    placing.finish();
    return leftOut;
  }
  Bytes placed(const std::vector<std::vector<Bytes>>& groups, const std::string& to) {
    Batch batch = batchOf(groups);
    EXPECT_THAT(place(batch, to), IsEmpty());
    return bytesOf(batch);
  }
  std::string refusal(const std::vector<std::vector<Bytes>>& groups, const std::string& to) {
    Batch batch = batchOf(groups);
    try {
      place(batch, to);
    } catch (const Editor::TargetError& error) {
      EXPECT_EQ(error.kind(), Editor::TargetError::Kind::refused);
      EXPECT_EQ(bytesOf(batch), joined(groups));
      return error.what();
    }
    return "taken";
  }

  Editor::UnitModels models_;
};

std::vector<Bytes> voice(BulkAddress header) { return unit(header, BDA::List::normalVoice, 1, 4); }
std::vector<Bytes> drum(BulkAddress header) { return unit(header, BDA::List::drumVoice, 1, 4); }

// A file dump of models in our format.
Bytes ownFileDump(BulkAddress address, const Editor::ModelSet& models, const std::string& name) {
  Bytes field;
  const auto append = [&](const Bytes& plain) {
    Bytes packed;
    for (std::size_t i = 0; i < plain.size(); i += 7) {
      const std::size_t high = packed.size();
      packed.push_back(0);
      for (std::size_t j = i; j < std::min(i + 7, plain.size()); ++j) {
        packed[high] = std::uint8_t(packed[high] | (plain[j] & 0x80) >> (j - i + 1));
        packed.push_back(plain[j] & 0x7F);
      }
    }
    field.push_back(std::uint8_t(packed.size() >> 7));
    field.push_back(std::uint8_t(packed.size() & 0x7F));
    field.insert(field.end(), packed.begin(), packed.end());
  };
  append({name.begin(), name.end()});
  append(Editor::encodeContent(models));
  return dump(address, field, 4);
}
Bytes ownFileDump(BulkAddress address, const Editor::ModelSet& models) {
  return ownFileDump(address, models, nameOf(models));
}

Editor::ModelSet multiModels() {
  Editor::ModelSet models = Editor::emptySetFor(Editor::ContentId{1, 0});
  models.multi->name.assign("A multi");
  return models;
}

}  // namespace

TEST_F(Placing, headerAndFooterGoAndBlocksStay) {
  EXPECT_EQ(placed({voice({0x0E, 0x0A, 0x05})}, "voice:edit"), joined({voice({0x0E, 0x0F, 0x00})}));
  EXPECT_EQ(placed({voice({0x0E, 0x0F, 0x00})}, "voice:mix:3"), joined({voice({0x0E, 0x31, 0x02})}));
  EXPECT_EQ(placed({voice({0x0E, 0x00, 0x00})}, "voice:part:16"), joined({voice({0x0E, 0x30, 0x0F})}));
  EXPECT_EQ(placed({drum({0x0E, 0x30, 0x0F})}, "drum:user:1"), joined({drum({0x0E, 0x28, 0x00})}));
  EXPECT_EQ(placed({drum({0x0E, 0x21, 0x00})}, "voice:part:1"), joined({drum({0x0E, 0x30, 0x00})}));
}

TEST_F(Placing, aFileDumpStaysOneWhereTheyAreWritten) {
  const Bytes from = fileDump({0x0C, 0x0A, 0x05}, "Name", {1, 2});
  EXPECT_EQ(placed({{from, kTrigger}}, "voice:user3:2"),
            joined({{fileDump({0x0C, 0x0C, 0x01}, "Name", {1, 2}), kTrigger}}));
  EXPECT_EQ(placed({{from}}, "file:mix:2:1"), fileDump({0x0C, 0x10, 0x01}, "Name", {1, 2}));
  EXPECT_EQ(placed({{from}}, "file:mix:1:3"), fileDump({0x0C, 0x12, 0x00}, "Name", {1, 2}));
  EXPECT_EQ(placed({{dump({0x0C, 0x0A, 0x05}, Bytes(4))}}, "voice:user1:1"), dump({0x0C, 0x0A, 0x00}, Bytes(4)));
}

TEST_F(Placing, unitsGoToTheirPlacesInOrderAndAllElseStays) {
  const Bytes system = blockDump({0, 0, 0}, 3);
  EXPECT_EQ(placed({voice({0x0E, 0x0A, 0x05}), {system}, voice({0x0E, 0x0A, 0x05})}, "voice:user2:1..2"),
            joined({voice({0x0E, 0x0B, 0x00}), {system}, voice({0x0E, 0x0B, 0x01})}));
}

TEST_F(Placing, nothingNewIsPutInsideOfAnotherUnitOfBlocks) {
  const std::vector<Bytes> outer = voice({0x0E, 0x0A, 0x05});
  const Bytes inner = ownFileDump({0x0C, 0x0A, 0x06}, Editor::emptySetFor(*Editor::contentOfFileDump({0x0A, 0x06})));
  Batch batch = batchOf({{outer.begin(), outer.begin() + 3}, {inner}, {outer.begin() + 3, outer.end()}, {kTrigger}});
  place(batch, "voice:part:1..2");
  const Batch again = batchOf({[&] {
    std::vector<Bytes> messages;
    for (const Batch::Message& message : batch.messages) messages.push_back(message.bytes);
    return messages;
  }()});
  EXPECT_THAT(placesOf(again), ElementsAre("voice:part:1", "voice:part:2"));
  EXPECT_THAT(again.broken, IsEmpty());
  const Bytes all = bytesOf(batch);
  const Bytes first = joined({voice({0x0E, 0x30, 0x00})});
  EXPECT_EQ(Bytes(all.begin(), all.begin() + std::ptrdiff_t(first.size())), first);
}

// The trigger of the new one would write the others, and theirs might remove it.
TEST_F(Placing, nothingNewIsPutBetweenFileDumpsAndTheirTrigger) {
  const Bytes before = ownFileDump({0x0C, 0x50, 0x00}, multiModels());
  const Bytes removing = dump({0x11, 0x01, 0x00}, {}, 4);
  const Bytes behind = ownFileDump({0x0C, 0x50, 0x01}, multiModels());
  Batch batch = batchOf({{before}, voice({0x0E, 0x0A, 0x05}), {behind, removing}});
  Editor::Placing placing(batch, models_);
  placing.place(1, Editor::parseDestinations("file:mix:2:1").front());
  placing.finish();
  ASSERT_EQ(batch.messages.size(), 5u);
  EXPECT_EQ(batch.messages[1].bytes, behind);
  EXPECT_EQ(batch.messages[2].bytes, removing);
  EXPECT_EQ(batch.messages[3].unit, 1u);
  EXPECT_EQ(batch.messages[4].bytes, dump({0x11, 0x00, 0x00}, {}, 4));
}

TEST_F(Placing, aBlockThatCameTwiceGoesWithItsUnit) {
  std::vector<Bytes> twice = voice({0x0E, 0x0A, 0x05});
  twice.insert(twice.begin() + 1, twice[1]);
  twice.insert(twice.begin() + 1, Bytes{0xF0, 0x41, 0xF7});
  Batch batch = batchOf({twice});
  place(batch, "file:mix:2:1");
  ASSERT_EQ(batch.messages.size(), 3u);
  EXPECT_EQ(batch.messages[0].unit, 0u);
  EXPECT_EQ(batch.messages[2].bytes, (Bytes{0xF0, 0x41, 0xF7}));
}

TEST_F(Placing, anotherKindDoesNotFit) {
  EXPECT_EQ(refusal({voice({0x0E, 0x0A, 0x05})}, "drum:edit"),
            "drum:edit: voice:user1:6 does not fit, it is a normal voice");
  EXPECT_THAT(refusal({drum({0x0E, 0x2F, 0x00})}, "voice:user1:1"), HasSubstr("it is a drum voice"));
  EXPECT_THAT(refusal({unit({0x0E, 0x40, 0x00}, BDA::List::performance, 0)}, "multi:edit"),
              HasSubstr("it is a performance"));
  EXPECT_THAT(refusal({unit({0x0E, 0x70, 0x00}, BDA::List::master, 0)}, "remote:1"), HasSubstr("it is a master"));
  EXPECT_THAT(refusal({voice({0x0E, 0x0A, 0x05})}, "system"), HasSubstr("does not fit"));
  EXPECT_THAT(refusal({voice({0x0E, 0x0A, 0x05})}, "voice:part:1"), "taken");
}

TEST_F(Placing, blocksBecomeAFileDumpWhereThereIsNoHeader) {
  const std::vector<Bytes> multi = unit({0x0E, 0x5F, 0x00}, BDA::List::multi, 1, 4);
  Batch batch = batchOf({multi});
  EXPECT_THAT(place(batch, "file:multi:3"), IsEmpty());
  ASSERT_EQ(batch.messages.size(), 2u);
  const Editor::Reading reading = Editor::readMessage(batch.messages[0].bytes);
  EXPECT_EQ(reading.verdict, Editor::Reading::Verdict::good);
  EXPECT_EQ(reading.address, (BulkAddress{0x0C, 0x50, 0x02}));
  EXPECT_EQ(reading.device, 5u);
  EXPECT_EQ(batch.messages[1].bytes, dump({0x11, 0, 0}, {}, 4));
  EXPECT_THAT(placesOf(batch), ElementsAre("file:multi:3"));

  // And back: blocks that carry the same.
  Batch blocks = batchOf({{batch.messages[0].bytes, batch.messages[1].bytes}});
  EXPECT_THAT(place(blocks, "multi:edit"), IsEmpty());
  EXPECT_EQ(blocks.messages.size(), multi.size());
  EXPECT_THAT(place(blocks, "file:multi:3"), IsEmpty());
  EXPECT_EQ(bytesOf(blocks), bytesOf(batch));
}

TEST_F(Placing, aFileDumpBecomesBlocksWhereNobodyWritesOne) {
  const Bytes fileDump = ownFileDump({0x0C, 0x50, 0x02}, multiModels());
  Batch batch = batchOf({{fileDump, Editor::triggerFor(fileDump)}});
  EXPECT_THAT(place(batch, "multi:edit"), ElementsAre("multi.name"));
  EXPECT_THAT(placesOf(batch), ElementsAre("multi:edit"));
  std::vector<std::string> verdicts;
  Editor::UnitFollower follower;
  std::vector<Editor::UnitReport> units;
  for (std::size_t i = 0; i < batch.messages.size(); ++i) {
    const Editor::Reading reading = Editor::readMessage(batch.messages[i].bytes);
    verdicts.emplace_back(wordOf(reading.verdict));
    EXPECT_EQ(reading.device, 5u);
    for (Editor::UnitReport& ended : follower.next(reading, i)) units.push_back(std::move(ended));
  }
  EXPECT_THAT(verdicts, Each("good"));
  ASSERT_EQ(units.size(), 1u);  // and no trigger, which has nothing left to write
  EXPECT_EQ(units.front().state, Editor::UnitReport::State::complete);
}

TEST_F(Placing, theNameOfAFileDumpIsLeftOutOfItsBlocksWhereTheOneInsideIsAnother) {
  const auto nameLeftOut = [&](BulkAddress from, const Editor::ModelSet& models, const std::string& name,
                               const std::string& to) {
    Batch batch = batchOf({{ownFileDump(from, models, name)}});
    return Editor::Placing(batch, models_).place(0, Editor::parseDestinations(to).front()).name;
  };
  Editor::ModelSet voice = Editor::emptySetFor(*Editor::contentOfFileDump({0x0A, 0x06}));
  voice.voice->name.assign("Amber Strings");
  EXPECT_EQ(nameLeftOut({0x0C, 0x0A, 0x06}, voice, "Quite Other", "voice:edit"), "Quite Other");
  EXPECT_EQ(nameLeftOut({0x0C, 0x0A, 0x06}, voice, "Amber Strings", "voice:edit"), "");
  EXPECT_EQ(nameLeftOut({0x0C, 0x0A, 0x06}, voice, "Quite Other", "voice:user2:1"), "") << "it stays a file dump";
  EXPECT_EQ(nameLeftOut({0x0C, 0x50, 0x02}, multiModels(), "Evening", "multi:edit"), "Evening");
}

TEST_F(Placing, bytesThatAreNotOursStayInTheirFileDump) {
  EXPECT_THAT(refusal({{fileDump({0x0C, 0x0A, 0x05}, "Name", {1, 2}), kTrigger}}, "voice:edit"),
              HasSubstr("voice:user1:6 cannot go there, where blocks are taken"));
  EXPECT_THAT(refusal({{dump({0x0C, 0x0A, 0x05}, Bytes(4))}}, "voice:edit"), HasSubstr("it carries no content"));
}

TEST_F(Placing, whatNoBlockCarriesIsNamed) {
  Editor::ModelSet models;
  models.system.emplace();
  const std::uint8_t value = 200;
  const std::uint8_t on = 1;
  models.system->utility.set(&value, 3, 0);
  models.system->utility.set(&on, Editor::SystemModel::kReceiveBulk, 0);
  Editor::BatchBuilder builder;
  builder.addJson(Editor::toJson(models));
  Batch batch = builder.finish();
  EXPECT_THAT(place(batch, "system"), ElementsAre("system.utility[3]"));
  EXPECT_EQ(batch.messages.size(), 14u);
}

TEST_F(Placing, jsonBecomesWhatRequestAnswers) {
  Editor::ModelSet models = Editor::emptySetFor(Editor::ContentId{4, 0x3F0805});
  models.voice->name.assign("Grand Piano");
  for (const auto& [to, messages, first] : {std::tuple("voice:user1:6", 26u, BulkAddress{0x0E, 0x0A, 0x05}),
                                            std::tuple("file:voice:user1:6", 2u, BulkAddress{0x0C, 0x0A, 0x05}),
                                            std::tuple("file:voice:preset1:6", 26u, BulkAddress{0x0E, 0x00, 0x05}),
                                            std::tuple("voice:part:2", 26u, BulkAddress{0x0E, 0x30, 0x01})}) {
    Editor::BatchBuilder builder;
    builder.addJson(Editor::toJson(models));
    Batch batch = builder.finish();
    EXPECT_THAT(place(batch, to), IsEmpty()) << to;
    EXPECT_EQ(batch.messages.size(), messages) << to;
    EXPECT_EQ(Editor::readMessage(batch.messages.front().bytes).address, first);
    EXPECT_EQ(batch.units.front().kind, Editor::ContentKind::voice);
  }
}

TEST_F(Placing, jsonOfAnotherKindDoesNotFit) {
  const auto refused = [&](nlohmann::ordered_json object, const std::string& to) {
    Editor::BatchBuilder builder;
    builder.addJson(std::move(object));
    Batch batch = builder.finish();
    EXPECT_THROW(place(batch, to), Editor::TargetError) << to;
  };
  const nlohmann::ordered_json multi = Editor::toJson(multiModels());
  refused(multi, "voice:edit");
  refused(multi, "system");
  refused(multi, "additional");
  nlohmann::ordered_json named{{"target", "multi:edit"}};
  named.update(multi);
  refused(named, "performance:a:1");
  refused(Editor::toJson(Editor::emptySetFor(kDrumHeaderType)), "voice:edit");
}

TEST_F(Placing, jsonOfAnotherShapeIsNone) {
  Editor::BatchBuilder builder;
  nlohmann::ordered_json object = Editor::toJson(multiModels());
  object.erase("arpeggio");
  builder.addJson(object);
  Batch batch = builder.finish();
  EXPECT_THROW(place(batch, "multi:edit"), Editor::TargetJsonError);
}
