#include "compare/Backup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "editor/wire/WireFixture.h"
#include "targets/TargetModels.h"

namespace Editor {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pair;

class BackingUp : public testing::Test {
 protected:
  BackingUp() { receive(editor, unitOf({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 3)); }

  void run(Backup& backup) {
    backup.run(
        {.message =
             [&](std::span<const std::uint8_t> message) { messages.emplace_back(message.begin(), message.end()); },
         .asked = [&](std::uint64_t bytes) { asked.push_back(bytes); },
         .leftOut = [&](const std::string& name, const std::string& why) { leftOut[name] = why; }});
  }

  EmbeddedEditor editor;
  std::vector<Bytes> messages;
  std::vector<std::uint64_t> asked;
  std::map<std::string, std::string> leftOut;
};

TEST_F(BackingUp, CarriesAllToALibraryThatReceivesIt) {
  {
    Backup backup(editor);
    run(backup);
    EXPECT_EQ(asked.size(), backup.count());
    EXPECT_EQ(backup.done(), backup.count());
    EXPECT_EQ(backup.messages(), messages.size());
    std::uint64_t bytes = 0;
    for (const Bytes& message : messages) bytes += message.size();
    EXPECT_EQ(backup.bytes(), bytes);
    backup.visitLost([](const Difference& lost) { ADD_FAILURE() << lost.target; });
    EXPECT_EQ(backup.manifest()["contents"][0]["place"], "voice:user1:6");
  }
  EXPECT_THAT(leftOut, IsEmpty());
  EmbeddedEditor other;
  receive(other, messages);
  EXPECT_EQ(loadTarget(other, parseTarget("voice:user1:6")), loadTarget(editor, parseTarget("voice:user1:6")));
}

TEST_F(BackingUp, SaysWhatNoMessageCarries) {
  editor.library().setFavourite({kContentPerformance, 4}, 1);
  Backup backup(editor);
  run(backup);
  std::vector<std::string> lost;
  backup.visitLost([&](const Difference& one) { lost.push_back(one.target); });
  EXPECT_THAT(lost, ElementsAre("performance:a:5"));
}

TEST_F(BackingUp, LeavesOutWhatNoAnswerCarriesWhole) {
  const ContentId tooLong{4, 0x3F0806};
  editor.library().store(tooLong, std::vector<std::uint8_t>(20'000), "long");
  Backup backup(editor);
  run(backup);
  EXPECT_THAT(leftOut, ElementsAre(Pair("voice:user1:7", HasSubstr("at most"))));
  EXPECT_EQ(backup.done(), backup.count() - 1);
  EXPECT_EQ(backup.manifest()["contents"].size(), 1U);
  backup.visitLost([](const Difference& lost) { ADD_FAILURE() << lost.target << " was said already"; });
}

}  // namespace
}  // namespace Editor
