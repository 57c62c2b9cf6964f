// What fetch tells beside its units: what they change along, which of them is refused, what a file of them removes.

#include "Wire.h"
#include "messages/Messages.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST_F(Wire, whatChangesAlongWithAUnitIsTold) {
  fillInstrument();
  const Serving instrument = serve();
  EXPECT_THAT(fetch(instrument, {"voice:part:1", "--dry-run"}).out,
              AllOf(HasSubstr("would be stored: voice:part:1\n"), HasSubstr("would be stored with it: multi:edit")));
  const Json object = Json::parse(fetch(instrument, {"voice:part:1", "--json"}).out);
  std::vector<std::string> with;
  for (const Json& one : object["with"]) with.push_back(one["content"]);
  EXPECT_THAT(with, AllOf(testing::Contains("multi:edit"), Not(testing::Contains("voice:part:1"))));
  EXPECT_FALSE(Json::parse(fetch(instrument, {"master:4", "--json"}).out).contains("with"));
  EXPECT_FALSE(Json::parse(fetch(instrument, {"voice:part:1", "--json"}).out).contains("with")) << "they are equal";
}

TEST_F(Wire, ofAllThatIsRefusedTogetherTheCulpritIsNamed) {
  write("mix.syx", {unit({0x0E, 0x31, 0x00}, BDA::List::normalVoice)});
  fillInstrument();
  bda({"receive", "-q", "mix.syx", "--library", directory / "instrument.db"});
  bda({"settings", "mixing-voices", "0"});
  const Serving instrument = serve();
  const Result refused = fetch(instrument, {"master:4", "voice:mix:1", "multi:edit", "--atomic"});
  EXPECT_THAT(refused, Exits(3));
  EXPECT_THAT(refused.err, AllOf(HasSubstr("lost: master:4: not stored: another one is "),
                                 HasSubstr("lost: multi:edit: not stored: another one is "),
                                 HasSubstr("lost: voice:mix:1: "), Not(HasSubstr("voice:mix:1: not stored: another"))));
  EXPECT_EQ(library().contents().size(), 0u);
}

TEST_F(Wire, whatAFileRemovesIsTold) {
  fillInstrument();
  const Serving instrument = serve();
  const Result kept = fetch(instrument, {"file:voice:user1:8", "-o", "empty.syx", "--remove-empty"});
  EXPECT_THAT(kept, Exits(0));
  EXPECT_EQ(kept.out, "empty: file:voice:user1:8: who receives the file removes what is there\n");
  EXPECT_THAT(kept.err, HasSubstr("1 empty; who receives the file removes 1 content\n"));
}

TEST_F(Wire, requestsOnStandardOutputStandThereAlone) {
  EXPECT_THAT(bda({"fetch", "master:1", "--from", "pty:", "-o", "-", "--requests", "-"}), Exits(1));
  EXPECT_THAT(bda({"fetch", "master:1", "--from", "-", "--requests", "-"}), Exits(1));
  const std::vector<std::uint8_t> request = Editor::requestMessage({0x0E, 0x70, 0x00});
  const Serving deaf = serve("--faults deaf=1");
  for (const char* const how : {"--json", "--atomic"}) {
    const Result lost = fetch(deaf, {"master:1", "--requests", "-", "--retries", "0", how});
    EXPECT_THAT(lost, Exits(3));
    EXPECT_EQ(lost.out, std::string(request.begin(), request.end())) << how;
    EXPECT_THAT(lost.err, HasSubstr("silent"));
  }
}

TEST_F(Wire, whatCouldNotBeComparedBeforeItWasSentIsTold) {
  write("master.syx", {unit({0x0E, 0x70, 0x03}, BDA::List::master)});
  const Serving deaf = serve("--faults deaf=1");
  const Result sent =
      bda({"send", "master.syx", "--to", deaf.path, "--changed", "--timeout", "0.2", "--retries", "0", "--json"});
  EXPECT_THAT(sent, Exits(0));
  EXPECT_THAT(sent.err, HasSubstr("not compared before: master:4: silent\n"));
  EXPECT_EQ(Json::parse(sent.out)["state"], "sent");
}
