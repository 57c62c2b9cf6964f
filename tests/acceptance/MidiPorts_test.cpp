// MIDI ports of the system, by their names: a JACK server without a sound card, and programs at it.

#include <chrono>

#include "Jackd.h"
#include "Library.h"
#include "Program.h"
#include "Serving.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

class MidiPorts : public Program {
 protected:
  // The program beside the test, all that it says in one.
  Serving start(const std::string& words) const {
    return Serving("'" + std::string(BDA_PROGRAM) + "' " + words + " 2>&1 </dev/null");
  }
  Serving serve(const std::string& name, const std::string& options = "",
                const std::string& library = "instrument.db") {
    return start("instrument --on 'virtual:" + name + "' --pace none --library '" + (directory / library).string() +
                 "' " + options);
  }
  Result fetch(std::vector<std::string> words) {
    words.insert(words.begin(), "fetch");
    words.insert(words.end(), {"--timeout", "0.5"});
    return bda(words);
  }
  void fill(const std::string& library = "instrument.db", std::uint8_t value = 0x41) {
    write("all.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, value)});
    EXPECT_THAT(bda({"receive", "-q", "all.syx", "--library", directory / library}), Exits(0));
  }
  std::string voiceOf(const std::string& library) {
    EXPECT_THAT(bda({"request", "voice:user1:6", "--library", directory / library, "-o", "voice.syx"}), Exits(0));
    return read("voice.syx");
  }

  Jackd server;
};

}  // namespace

TEST_F(MidiPorts, whatAnInstrumentHoldsIsFetchedByAPartOfItsName) {
  fill();
  Serving instrument = serve("Stage Piano");
  EXPECT_EQ(instrument.path, "on virtual:Stage Piano");
  const Result fetched = fetch({"voice:user1:6", "--from", "stage p"});
  EXPECT_THAT(fetched, Exits(0));
  EXPECT_EQ(fetched.out, "stored: voice:user1:6\n");
  EXPECT_THAT(fetched.err, AllOf(StartsWith("from Stage Piano\n"), Not(HasSubstr("ack"))));
  EXPECT_EQ(instrument.stop(), 130);
  EXPECT_THAT(instrument.told, HasSubstr("answered: request of normal voice user 1, 006: header, 26 messages"));
  EXPECT_THAT(bda({"diff", "library.db", "instrument.db", "--brief"}), Exits(0));
}

TEST_F(MidiPorts, whatIsSentIsReadBackAndMessagesGoAtThePace) {
  write("new.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42)});
  Serving instrument = serve("Piano");
  const auto begin = std::chrono::steady_clock::now();
  const Result sent = bda({"send", "new.syx", "--to", "Piano", "--verify", "--timeout", "0.5"});
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
  EXPECT_THAT(sent, Exits(0));
  EXPECT_THAT(sent.out, HasSubstr("equal: voice:user1:6\n"));
  EXPECT_GE(took.count(), double(read("new.syx").size()) / 3125) << "a cable's pace";
  instrument.stop();
  EXPECT_THAT(bda({"diff", "new.syx", "instrument.db", "--json"}).out, HasSubstr("\"onlyA\":0"));
}

TEST_F(MidiPorts, whatIsSentWithoutPaceArrivesWholeAndIsRecorded) {
  std::string many;
  for (int i = 0; i < 20; ++i)
    many += text(unit({0x0E, 0x0A, std::uint8_t(i)}, BDA::List::normalVoice, std::uint8_t(i)));
  write("many.syx", many);
  Serving recording =
      start("record --from virtual:Desk --quiet-after 2 -o '" + (directory / "heard.syx").string() + "'");
  EXPECT_EQ(recording.path, "from virtual:Desk");
  EXPECT_THAT(bda({"send", "many.syx", "--to", "desk", "--pace", "none"}), Exits(0));
  EXPECT_EQ(recording.wait(), 0) << recording.told;
  EXPECT_EQ(read("heard.syx"), many);
}

TEST_F(MidiPorts, portsAreListedWithWhatTheyAreFor) {
  Serving instrument = serve("Piano");
  Serving recording = start("record --from virtual:Desk -o '" + (directory / "a.syx").string() + "'");
  const Result listed = bda({"ports"});
  EXPECT_THAT(listed, Exits(0));
  EXPECT_THAT(listed.out, AllOf(HasSubstr("Piano: virtual, in and out\n"), HasSubstr("Desk: virtual, out\n"),
                                Not(HasSubstr("bda-"))));
  EXPECT_EQ(listed.err, "");
  const std::vector<Json> objects = this->objects({"ports", "--json"});
  EXPECT_THAT(objects, testing::Contains(Json::parse(R"({"name":"Piano","kind":"virtual","in":true,"out":true})")));
  EXPECT_THAT(objects, testing::Contains(Json::parse(R"({"name":"Desk","kind":"virtual","in":false,"out":true})")));
}

TEST_F(MidiPorts, twoOfTheSameNameAreToldApart) {
  fill("first.db", 0x41);
  fill("second.db", 0x42);
  Serving first = serve("Piano", "", "first.db");
  Serving second = serve("Piano", "", "second.db");
  EXPECT_THAT(fetch({"voice:user1:6", "--from", "Piano", "-o", "a.syx"}), Exits(0));
  EXPECT_THAT(fetch({"voice:user1:6", "--from", "piano (2)", "-o", "b.syx"}), Exits(0));
  const Result either = fetch({"voice:user1:6", "--from", "pian", "-o", "c.syx"});
  EXPECT_THAT(either, Exits(2));
  EXPECT_THAT(either.err, HasSubstr("port pian: several may be meant: Piano, Piano (2)\n"));
  first.stop();
  second.stop();
  const std::string a = read("a.syx");
  const std::string b = read("b.syx");
  EXPECT_NE(a, b);
  EXPECT_THAT((std::vector{a, b}), testing::UnorderedElementsAre(voiceOf("first.db"), voiceOf("second.db")));
}

TEST_F(MidiPorts, aNameThatNobodyHasIsRefusedAndTheNearestTold) {
  EXPECT_THAT(bda({"send", "--to", "virtual:", "voice:edit"}), Exits(2));
  write("a.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice)});
  EXPECT_THAT(bda({"send", "a.syx", "--to", "virtual:"}).err, HasSubstr("it needs a name"));
  Serving recording = start("record --from virtual:Desk -o '" + (directory / "heard.syx").string() + "'");
  const Result near = bda({"send", "a.syx", "--to", "Deks"});
  EXPECT_THAT(near, Exits(2));
  EXPECT_THAT(near.err, HasSubstr("port Deks: there is none of that name: did you mean Desk?\n"));
  const Result far = bda({"send", "a.syx", "--to", "Organ"});
  EXPECT_THAT(far, Exits(2));
  EXPECT_THAT(far.err, HasSubstr("port Organ: there is none of that name: there are Desk"));
  const Result deaf = fetch({"voice:user1:6", "--from", "Desk"});
  EXPECT_THAT(deaf, Exits(2));
  EXPECT_THAT(deaf.err, HasSubstr("port Desk: nothing can be received from it\n"));
}

TEST_F(MidiPorts, aMessageThatIsTooLongIsRefusedBeforeAnyIsSent) {
  constexpr std::size_t kLongest = 16'379;  // by JACK
  const auto fileOf = [](std::size_t bytes) { return fileDump({0x0C, 0x0A, 0x05}, "Long", Bytes(bytes, 1)); };
  std::size_t most = 14'320;
  const Bytes tooLong = fileOf(most);
  ASSERT_GT(tooLong.size(), kLongest);
  while (fileOf(most).size() > kLongest) --most;
  const Bytes fits = fileOf(most);
  write("fits.syx", {fits, dump(Editor::kWriteTrigger)});
  write("long.syx", {unit({0x0E, 0x0A, 0x04}, BDA::List::normalVoice), tooLong, dump(Editor::kWriteTrigger)});
  Serving recording =
      start("record --from virtual:Desk --quiet-after 3 -o '" + (directory / "heard.syx").string() + "'");
  const Result refused = bda({"send", "long.syx", "--to", "Desk"});
  EXPECT_THAT(refused, Exits(3));
  EXPECT_THAT(refused.err, HasSubstr("longer than the port carries (16379): nothing is sent"));
  EXPECT_EQ(refused.out, "");
  EXPECT_THAT(bda({"send", "fits.syx", "--to", "Desk", "--pace", "none"}), Exits(0));
  EXPECT_EQ(recording.wait(), 0) << recording.told;
  EXPECT_EQ(read("heard.syx"), read("fits.syx")) << "the longest arrives, and of what was refused nothing";
}

TEST_F(MidiPorts, anAnswerThatIsTooLongIsTold) {
  library("instrument.db").store(kUserVoice6, Bytes(14'320, 1), "Long");
  Serving instrument = serve("Piano");
  EXPECT_THAT(fetch({"file:voice:user1:6", "--from", "Piano", "--retries", "0"}), Exits(3));
  instrument.stop();
  EXPECT_THAT(instrument.told,
              AllOf(HasSubstr("message 1: of its answer "), HasSubstr("no message of more than 16379")));
}

TEST_F(MidiPorts, aServerThatEndsAndAPortThatGoesEndTheRun) {
  fill();
  Serving instrument = serve("Piano");
  Serving recording = start("record --from piano -o '" + (directory / "heard.syx").string() + "'");
  EXPECT_EQ(recording.path, "from Piano");
  EXPECT_EQ(instrument.stop(), 130);
  EXPECT_EQ(recording.wait(), 1);
  EXPECT_THAT(recording.told, HasSubstr("port Piano: it has gone"));
  Serving other = serve("Piano");
  Serving sender = start("record --from virtual:Desk -o '" + (directory / "heard.syx").string() + "'");
  server.end();
  EXPECT_EQ(other.wait(), 1);
  EXPECT_THAT(other.told, HasSubstr("port virtual:Piano: the JACK server has ended"));
  EXPECT_EQ(sender.wait(), 1);
  EXPECT_THAT(bda({"check", "--library", directory / "instrument.db"}), Exits(0));
}

TEST_F(MidiPorts, withoutAServerPortsSaySoAndPathsWorkAllTheSame) {
  server.end();
  const Result listed = bda({"ports"});
  EXPECT_THAT(listed, Exits(0));
  EXPECT_THAT(listed.err, HasSubstr("JACK: there is no server"));
  EXPECT_THAT(bda({"instrument", "--on", "-", "--library", directory / "instrument.db"}), Exits(0));
}
