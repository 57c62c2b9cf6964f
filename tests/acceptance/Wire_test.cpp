// The program at a port: an instrument at a pseudo terminal, and who asks it.

#include "Wire.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "messages/Messages.h"
#include "wire/BytePort.h"

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(Wire, whatAnInstrumentHoldsIsFetchedIntoTheLibrary) {
  fillInstrument();
  Serving instrument = serve();
  EXPECT_THAT(instrument.path, StartsWith("/dev/"));
  const Result fetched = fetch(instrument, {"file:voice:user1:6", "master:4", "multi:edit", "system"});
  EXPECT_THAT(fetched, Exits(0));
  EXPECT_THAT(fetched.out, StartsWith("stored: file:voice:user1:6\nstored: master:4\nstored: multi:edit\n"
                                      "stored with it: voice:part:1\n"));
  EXPECT_THAT(fetched.out,
              HasSubstr("stored with it: voice:part:16\nstored: system:common\nstored: system:audio-input\n"));
  EXPECT_THAT(fetched.err, HasSubstr("17 stored\n"));
  EXPECT_EQ(instrument.stop(), 130);
  EXPECT_THAT(instrument.told, HasSubstr("answered: request of file dump of voice user1:6, 1 message ("));
  EXPECT_THAT(bda({"diff", "library.db", "instrument.db", "--brief"}), Exits(0));
  EXPECT_EQ(objects({"history", "--json"}).size(), 1u);
  EXPECT_THAT(bda({"undo", "-q"}), Exits(0));
}

TEST_F(Wire, aUnitThatReplacesAnotherSaysWhichAndIsOneObject) {
  fillInstrument();
  write("old.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42)});
  bda({"receive", "-q", "old.syx"});
  bda({"rename", "-q", "voice:user1:6", "Old"});
  Serving instrument = serve();
  EXPECT_THAT(fetch(instrument, {"voice:user1:6", "--dry-run"}).out,
              HasSubstr("would be stored: voice:user1:6, replaces \"Old\""));
  EXPECT_EQ(
      objectsOf(fetch(instrument, {"voice:user1:6..7", "file:voice:user1:8", "--json"}).out),
      objectsOf(R"({"unit":"voice:user1:6","address":"0E 0A 05","state":"stored","tries":1,"missing":[],"reason":""}
{"unit":"voice:user1:7","address":"0E 0A 06","state":"empty","tries":3,"missing":[],"reason":"","silent":true}
{"unit":"file:voice:user1:8","address":"0C 0A 07","state":"empty","tries":1,"missing":[],"reason":""})"));
  EXPECT_THAT(fetch(instrument, {"voice:user1:7"}), Exits(3)) << "asked for by its name, it may be lost";
  EXPECT_THAT(fetch(instrument, {"file:voice:user1:8"}), Exits(0));
}

TEST_F(Wire, intoAFileTheAnswersGoByteForByte) {
  fillInstrument();
  Serving instrument = serve();
  EXPECT_THAT(fetch(instrument, {"master:4", "file:voice:user1:6", "file:voice:user1:7", "-o", "got.syx", "--trigger"}),
              Exits(0));
  instrument.stop();
  const std::string before = files().size() > 0 ? read("got.syx") : "";
  bda({"request", "master:4", "file:voice:user1:6", "--library", directory / "instrument.db", "-o", "asked.syx"});
  EXPECT_EQ(before, read("asked.syx") + text(dump(Editor::kWriteTrigger)));
}

TEST_F(Wire, nobodyAtTheOtherEndIsSaid) {
  Serving instrument = serve("--faults deaf=1");
  const Result fetched =
      fetch(instrument, {"voice:user1:6", "master:1", "--retries", "1", "--requests", "r.syx", "--json"});
  EXPECT_THAT(fetched, Exits(3));
  const std::vector<Json> units = objectsOf(fetched.out);
  ASSERT_EQ(units.size(), 2u);
  EXPECT_EQ(units[0]["reason"], "silent");
  EXPECT_EQ(units[0]["tries"], 2);
  EXPECT_EQ(units[1]["reason"], "silent");
  EXPECT_EQ(units[1]["tries"], 0);
  EXPECT_EQ(read("r.syx"), text(request({0x0E, 0x0A, 0x05})) + text(request({0x0E, 0x70, 0x00})));
}

TEST_F(Wire, allOrNothingIsNothingWhereOneIsLost) {
  fillInstrument();
  Serving instrument = serve("--faults deaf=1:1");
  const Result fetched = fetch(instrument, {"master:4", "multi:edit", "--atomic"});
  EXPECT_THAT(fetched, Exits(3));
  EXPECT_EQ(fetched.out, "");
  EXPECT_THAT(fetched.err, AllOf(HasSubstr("lost: multi:edit: silent (3 tries)"),
                                 HasSubstr("lost: master:4: not stored: others are lost")));
  EXPECT_EQ(library().contents().size(), 0u);
}

TEST_F(Wire, portsThatCannotBeOpenedAreUnusableInput) {
  for (const char* const port : {"/nobody/here", "/dev", "midi 7", "all.syx"}) {
    write("all.syx", {dump(Editor::kWriteTrigger)});
    EXPECT_THAT(bda({"fetch", "master:1", "--from", port}), Exits(2)) << port;
    EXPECT_THAT(bda({"record", "--from", port, "-o", "a.syx"}), Exits(2)) << port;
    EXPECT_THAT(bda({"instrument", "--on", port}), Exits(2)) << port;
  }
  EXPECT_THAT(bda({"fetch", "screen", "--from", "-"}), Exits(1));
  EXPECT_THAT(bda({"fetch", "master:1", "--from", "-", "-o", "-"}), Exits(1));
  EXPECT_THAT(bda({"record", "--from", "-", "-o", "-"}), Exits(1));
  EXPECT_THAT(bda({"instrument", "--on", "pty:", "--faults", "dorp=1"}), Exits(1));
  EXPECT_THAT(bda({"instrument", "--on", "pty:", "--pace", "0"}), Exits(1));
  EXPECT_FALSE(exists("a.syx"));
}

TEST_F(Wire, standardInputAndOutputAreAPort) {
  fillInstrument();
  const std::string asked = text(request({0x0E, 0x70, 0x03}));
  const Result answered = bda({"instrument", "--on", "-", "--json", "--library", directory / "instrument.db"}, asked);
  EXPECT_THAT(answered, Exits(0));
  bda({"request", "master:4", "--library", directory / "instrument.db", "-o", "asked.syx"});
  EXPECT_EQ(answered.out, read("asked.syx"));
  const Result fetched = bda({"fetch", "master:4", "--from", "-", "--json"}, answered.out);
  EXPECT_THAT(fetched, Exits(0));
  EXPECT_EQ(fetched.out, asked);
  EXPECT_THAT(fetched.err, HasSubstr(R"({"unit":"master:4")"));
}

TEST_F(Wire, whatIsSentIsReadBackAndNamedBefore) {
  fillInstrument();
  write("new.syx",
        {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42), unit({0x0E, 0x70, 0x03}, BDA::List::master)});
  Serving instrument = serve();
  const std::vector<std::string> words{"send", "new.syx", "--to", instrument.path, "--verify", "--timeout", "0.3"};
  const Result sent = bda(words);
  EXPECT_THAT(sent, Exits(0));
  EXPECT_EQ(sent.out, "overwrites: voice:user1:6\noverwrites: master:4\nequal: voice:user1:6\nequal: master:4\n");
  EXPECT_THAT(sent.err, HasSubstr("2 units, 33 messages, "));
  instrument.stop();
  EXPECT_THAT(bda({"diff", "new.syx", "instrument.db", "--json"}).out, HasSubstr("\"onlyA\":0"));
}

TEST_F(Wire, whatTheInstrumentDoesNotKeepIsDifferent) {
  fillInstrument();
  write("new.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42)});
  Serving instrument = serve("--faults full=1 --echo");
  const Result sent = bda({"send", "new.syx", "--to", instrument.path, "--verify", "--json", "--timeout", "0.3"});
  EXPECT_THAT(sent, Exits(3));
  const std::vector<Json> units = objectsOf(sent.out);
  ASSERT_EQ(units.size(), 1u);
  EXPECT_EQ(units[0]["state"], "different");
  ASSERT_GT(units[0]["differences"].size(), 10u);
  const Json& first = units[0]["differences"][0];
  EXPECT_EQ(first["address"], "40 00 00");
  EXPECT_NE(first["sent"], first["read"]);
}

TEST_F(Wire, toTheEditBufferNothingThatIsStoredIsOverwritten) {
  write("new.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42)});
  bda({"receive", "-q", "new.syx"});
  Serving instrument = serve();
  const Result sent =
      bda({"send", "file:voice:user1:6", "--to", instrument.path, "--to-edit-buffer", "--verify", "--timeout", "0.3"});
  EXPECT_THAT(sent, Exits(0));
  EXPECT_EQ(sent.out, "overwrites: voice:edit\nequal: voice:edit\n");
  instrument.stop();
  EXPECT_EQ(library("instrument.db").contents().size(), 0u);
}

TEST_F(Wire, whatIsNotWholeIsNotSentAndADryRunSendsNothing) {
  const Bytes voice = unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice);
  write("cut.syx", text(voice).substr(0, voice.size() - 12));
  EXPECT_THAT(bda({"send", "cut.syx", "--to", "/nobody/here"}), Exits(3));
  write("held.syx", {fileDump({0x0C, 0x0A, 0x05}, "Held", {1, 2, 3})});
  EXPECT_THAT(bda({"send", "held.syx", "--to", "/nobody/here"}), Exits(3));
  write("whole.syx", {voice});
  const Result dry = bda({"send", "whole.syx", "--to", "/nobody/here", "--dry-run", "--pace", "1000"});
  EXPECT_THAT(dry, Exits(0));
  EXPECT_EQ(dry.out, "overwrites: voice:user1:6\n");
  EXPECT_THAT(dry.err, HasSubstr("1 unit, 26 messages, " + std::to_string(voice.size()) + " bytes, "));
  EXPECT_THAT(bda({"send", "voice:user1:6", "--to", "/nobody/here"}), Exits(2)) << "nothing is stored there";
  EXPECT_THAT(bda({"send", "nothing.syx", "--to", "pty:"}), Exits(2));
  EXPECT_THAT(bda({"send", "whole.syx", "voice:user1:6", "--to", "pty:"}), Exits(1));
}

TEST_F(Wire, whatArrivesIsRecordedMessageByMessage) {
  const std::string voice = text(unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice));
  const Result whole = bda({"record", "--from", "-", "-o", "a.syx"}, "noise" + voice);
  EXPECT_THAT(whole, Exits(0));
  EXPECT_EQ(read("a.syx"), voice);
  EXPECT_THAT(whole.err, AllOf(HasSubstr("voice:user1:6: complete"), HasSubstr("26 messages, 1 unit whole, 0 broken")));
  EXPECT_THAT(bda({"record", "--from", "-", "-o", "b.syx"}, voice + voice.substr(0, voice.size() - 5)), Exits(3));
  EXPECT_EQ(read("b.syx"), voice + voice.substr(0, voice.size() - 12));
  const Result nothing = bda({"record", "--from", "pty:", "-o", "c.syx", "--quiet-after", "0.1"});
  EXPECT_THAT(nothing, Exits(0));
  EXPECT_THAT(nothing.err, HasSubstr("no message came: nothing is written"));
  EXPECT_FALSE(exists("c.syx"));
}

TEST_F(Wire, whatIsBrokenIsToldBesideObjects) {
  Bytes half = dump({0x0E, 0x70, 0x03});
  const Bytes footer = dump({0x0F, 0x70, 0x03});
  half.insert(half.end(), footer.begin(), footer.end());
  const Result recorded = bda({"record", "--from", "-", "-o", "half.syx", "--json", "-q"}, text(half));
  EXPECT_THAT(recorded, Exits(3));
  EXPECT_THAT(recorded.err, AllOf(HasSubstr("master:4: "), HasSubstr("missing")));
  EXPECT_EQ(recorded.out, "");
  Serving recording("env -C '" + directory.string() +
                    "' " BDA_PROGRAM " record --from pty: -o again.syx --json --quiet-after 1 2>&1");
  ASSERT_EQ(recording.path.find("from /dev/"), 0u) << recording.path;
  Editor::BytePort there(recording.path.substr(5), Editor::BytePort::Direction::both);
  EXPECT_EQ(there.send(half), half.size());
  EXPECT_EQ(recording.wait(), 3);
  EXPECT_THAT(recording.told, AllOf(HasSubstr("{\"message\":2,"), HasSubstr("master:4: ")));
}

TEST_F(Wire, aMessageThatHasNoEndWhenTheInputEndsIsBroken) {
  const Result cut = bda({"instrument", "--on", "-"}, text(dump({0x0E, 0x70, 0x03})) + "\xF0\x7D");
  EXPECT_THAT(cut, Exits(3));
  EXPECT_THAT(cut.err, HasSubstr("offset 12: 2 bytes dropped, message without end"));
}

TEST_F(Wire, whatStillHasToGoOutAtTheEndOfTheInputGoesOut) {
  fillInstrument();
  bda({"request", "voice:user1:6", "--library", directory / "instrument.db", "-o", "asked.syx"});
  std::string requests;
  std::string answers;
  for (int i = 0; i < 100; ++i) {
    requests += text(request({0x0E, 0x0A, 0x05}));
    answers += read("asked.syx");
  }
  const Result answered = bda({"instrument", "--on", "-", "-q", "--library", directory / "instrument.db"}, requests);
  EXPECT_THAT(answered, Exits(0));
  EXPECT_EQ(answered.out, answers);
}

TEST_F(Wire, whatIsPacedAtTheEndOfTheInputGoesOutToItsEnd) {
  fillInstrument();
  const std::string asked = text(request({0x0E, 0x7F, 0x00}));
  const Result atOnce = bda({"instrument", "--on", "-", "-q", "--library", directory / "instrument.db"}, asked);
  EXPECT_THAT(atOnce.out, StartsWith("\xF0"));
  for (const char* const how : {"--pace=cable", "--pause=10", "--faults=delay=1:1"}) {
    const Result later = bda({"instrument", "--on", "-", how, "-q", "--library", directory / "instrument.db"}, asked);
    EXPECT_THAT(later, Exits(0)) << how;
    EXPECT_EQ(later.out, atOnce.out) << how;
  }
}

TEST_F(Wire, silenceThatWasNotAskedTwiceMayBeALoss) {
  fillInstrument();
  Serving instrument = serve();
  EXPECT_THAT(fetch(instrument, {"voice:user1:7..8", "--retries", "0"}), Exits(3));
  EXPECT_THAT(fetch(instrument, {"voice:user1:7..8", "--retries", "1"}), Exits(0));
}

TEST_F(Wire, whatIsEmptyThereIsRemovedHereWhenItIsAskedFor) {
  write("old.syx", {unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice, 0x42)});
  bda({"receive", "-q", "old.syx"});
  bda({"rename", "-q", "voice:user1:7", "Old"});
  fillInstrument();
  Serving instrument = serve();
  EXPECT_THAT(fetch(instrument, {"file:voice:user1:7"}), Exits(0));
  EXPECT_EQ(library().contents().size(), 1u);
  EXPECT_THAT(fetch(instrument, {"file:voice:user1:7", "--remove-empty", "--dry-run"}).out,
              StartsWith("would be removed: file:voice:user1:7, it was \"Old\""));
  EXPECT_EQ(library().contents().size(), 1u);
  const Result removed = fetch(instrument, {"file:voice:user1:7", "--remove-empty", "--json"});
  EXPECT_THAT(removed, Exits(0));
  EXPECT_EQ(Json::parse(removed.out)["removed"], true);
  EXPECT_EQ(library().contents().size(), 0u);
}

TEST_F(Wire, ctrlCKeepsWhatCameAndSaysWhatIsLost) {
  fillInstrument();
  Serving instrument = serve("--faults delay=1:200");
  const std::string command = std::string(BDA_PROGRAM) +
                              " fetch master:4 voice:user1:6 master:4 --json --timeout 20 -o '" +
                              (directory / "got.syx").string() + "' --from " + instrument.path + " 2>/dev/null";
  Serving fetching(command);
  EXPECT_EQ(Json::parse(fetching.path)["state"], "kept");
  EXPECT_EQ(fetching.stop(), 130);
  EXPECT_EQ(Json::parse(fetching.told)["state"], "lost");
  instrument.stop();
  bda({"request", "master:4", "--library", directory / "instrument.db", "-o", "asked.syx"});
  EXPECT_EQ(read("got.syx"), read("asked.syx"));
}

TEST_F(Wire, whatGoesOutLastIsReadBeforeItsTerminalGoes) {
  fillInstrument();
  Serving instrument(std::string(BDA_PROGRAM) + " instrument --on pty: --pace 20 --library '" +
                     (directory / "instrument.db").string() + "' 2>/dev/null");
  Editor::BytePort there(instrument.path, Editor::BytePort::Direction::both);
  there.send(Editor::requestMessage({0x0E, 0x70, 0x03}));
  Bytes heard;
  const auto hear = [&] {
    const std::span<const std::uint8_t> bytes = there.wait(there.now() + std::chrono::seconds(10), false);
    heard.insert(heard.end(), bytes.begin(), bytes.end());
  };
  hear();
  instrument.interrupt();
  std::this_thread::sleep_for(std::chrono::seconds(1));  // which is longer than the message
  EXPECT_THROW(while (heard.size() < 1000) hear(), Editor::PortError);
  EXPECT_EQ(heard, dump({0x0E, 0x70, 0x03}));
  EXPECT_EQ(instrument.wait(), 130);
}

TEST_F(Wire, aTriggerThatRemovesAllMixingVoicesIsNamedBefore) {
  write("wipe.syx", {fileDump({0x0C, 0x31, 0x05}, "Mix", {1, 2, 3}), dump({0x11, 0x01, 0x00})});
  const Result sent = bda({"send", "wipe.syx", "--to", "pty:", "--dry-run"});
  EXPECT_THAT(sent, Exits(0));
  EXPECT_EQ(sent.out, "overwrites: voice:mix:6\nremoves: all mixing voices\n");
}

TEST_F(Wire, toSendOneFifoWillDo) {
  write("master.syx", {unit({0x0E, 0x70, 0x03}, BDA::List::master)});
  const std::string fifo = directory / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const int reader = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_THAT(bda({"send", "master.syx", "--to", fifo, "--pace", "none"}), Exits(0));
  std::string got(1000, '\0');
  got.resize(std::size_t(::read(reader, got.data(), got.size())));
  ::close(reader);
  EXPECT_EQ(got, read("master.syx"));
  EXPECT_THAT(bda({"send", "master.syx", "--to", fifo, "--verify"}), Exits(2));
}
