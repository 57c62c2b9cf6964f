// Transcripts of runs on real libraries, done again.

#include "transcript/Replay.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "editor/contents/TemporaryLibrary.h"
#include "editor/wire/WireFixture.h"
#include "midi/Hex.h"
#include "models/ModelJson.h"
#include "transcript/Transcript.h"
#include "wire/Intake.h"

namespace Editor {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Json = nlohmann::ordered_json;

constexpr BulkAddress kMaster{0x0E, 0x70, 0x03};
constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};
constexpr BulkAddress kSystemRemote{0x00, 0x06, 0x00};

// A library at which a run is written down.
class ReplayTest : public testing::Test {
 protected:
  ReplayTest() { begin(); }

  void begin(bool withLibrary = true) {
    text.clear();
    transcript.emplace(
        Transcript::Options{.verb = "receive", .withLibrary = withLibrary}, [this] { return now++; },
        [this](const std::string& line) { text += line + '\n'; });
    editor->setListener(&*transcript);
  }
  void hand(const std::vector<Bytes>& messages) {
    for (const Bytes& message : messages) editor->handle(message, BDA::DevicePort_Main, ++number);
  }
  const std::string& finished() {
    transcript->finish();
    return text;
  }

  static Replay::Result again(const std::string& text, std::optional<Library::Bytes> library = {}) {
    EmbeddedEditor fresh;
    return Replay(text).run(fresh, std::move(library));
  }
  // "line 5: ...", or "" for no difference.
  static std::string differenceIn(const std::string& text, std::optional<Library::Bytes> library = {}) {
    const Replay::Result result = again(text, std::move(library));
    return result.difference ? "line " + std::to_string(result.difference->line) + ": " + result.difference->text : "";
  }
  std::vector<Json> lines() {
    std::vector<Json> lines;
    const std::string& all = finished();
    for (std::size_t at = 0; at < all.size(); at = all.find('\n', at) + 1)
      lines.push_back(Json::parse(all.substr(at, all.find('\n', at) - at)));
    return lines;
  }
  // As somebody who changes it writes it: without seals.
  static std::string textOf(std::vector<Json> lines) {
    std::string text;
    for (Json& line : lines) {
      line.erase("hash");
      line.erase("sealed");
      text += jsonLine(line) + '\n';
    }
    return text;
  }

  TemporaryDirectory directory;
  std::optional<EmbeddedEditor> editor{std::in_place, directory / "library.db"};
  WireTime now{};
  std::uint64_t number = 0;
  std::string text;
  std::optional<Transcript> transcript;
};

TEST_F(ReplayTest, EachMessageIsALineInEitherDirection) {
  hand({request(kSystemRemote)});
  const std::vector<Json> all = lines();
  ASSERT_EQ(all.size(), 3U);
  EXPECT_EQ(all[0].at("transcript"), 1);
  EXPECT_TRUE(all[0].at("library").is_string());
  EXPECT_EQ(all[0].at("libraryName"), (directory / "library.db").string());
  EXPECT_TRUE(all[0].at("names").is_null());
  EXPECT_EQ(all[1].at("direction"), "in");
  EXPECT_EQ(all[1].at("port"), 1);
  EXPECT_EQ(all[1].at("bytes"), formatHex(request(kSystemRemote)));
  EXPECT_EQ(all[1].at("outcome"), "answered");
  EXPECT_EQ(all[1].at("shown"), (Json{13, 14}));
  EXPECT_EQ(all[1].count("in") + all[1].count("sent"), 0U);
  EXPECT_EQ(all[2].at("direction"), "out");
  EXPECT_EQ(all[2].at("message"), all[1].at("message"));
  EXPECT_GT(all[2].at("time"), all[1].at("time"));
  EXPECT_EQ(differenceIn(text), "");
}

TEST_F(ReplayTest, WhatIsStoredIsThereForWhatFollows) {
  hand(unitOf(kVoice, BDA::List::normalVoice, 7));
  hand({editor->requestFor(kVoice)});
  const Replay::Result result = again(finished());
  EXPECT_EQ(result.messages, number);
  EXPECT_FALSE(result.difference) << result.difference->text;
}

TEST_F(ReplayTest, ItBeginsWithTheLibraryAsItWas) {
  hand(unitOf(kMaster, BDA::List::master, 3));
  begin();
  hand({editor->requestFor(kMaster)});
  hand(unitOf(kMaster, BDA::List::master, 4));
  EXPECT_EQ(differenceIn(finished()), "");
}

TEST_F(ReplayTest, AnotherLibraryAnswersOtherwise) {
  hand(unitOf(kMaster, BDA::List::master, 3));
  begin(false);
  const Library::Bytes image = editor->library().image();
  hand({editor->requestFor(kMaster)});
  EXPECT_TRUE(Replay(finished()).needsLibrary());
  EXPECT_EQ(differenceIn(text, image), "");
  EmbeddedEditor other;
  receive(other, unitOf(kMaster, BDA::List::master, 4));
  EXPECT_THAT(differenceIn(text, other.library().image()), HasSubstr("line 4: sent other bytes: byte "));
  EXPECT_THAT(differenceIn(text, EmbeddedEditor().library().image()), HasSubstr("line 2: "));
  EXPECT_THROW(again(text), TranscriptError);
}

TEST_F(ReplayTest, EveryAlteredByteOfEveryLineIsADifference) {
  hand(unitOf(kMaster, BDA::List::master, 3));
  hand({editor->requestFor(kMaster)});
  hand({Bytes{0xF0, 0x41, 0x01, 0xF7}});  // another maker's
  begin(false);
  const Library::Bytes library = editor->library().image();
  hand(unitOf(kMaster, BDA::List::master, 5));
  hand({editor->requestFor(kMaster), Bytes{0xF0, 0x41, 0x01, 0xF7}, Bytes{0xF0, 0x41, 0x02, 0xF7}});
  const std::string whole = finished();
  ASSERT_EQ(differenceIn(whole, library), "");
  std::size_t line = 1;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string altered = whole;
    altered[at] = whole[at] == '0' ? '1' : whole[at] == '\n' ? ' ' : '0';
    try {
      const Replay::Result result = again(altered, library);
      ASSERT_TRUE(result.difference) << "line " << line << ": " << altered.substr(at > 20 ? at - 20 : 0, 40);
      ASSERT_EQ(result.difference->line, line) << result.difference->text << ", at " << altered.substr(at, 20);
    } catch (const TranscriptError& error) {  // which version it is the first line says alone
      ASSERT_EQ(line, 1U);
      ASSERT_THAT(error.what(), HasSubstr("of another version")) << altered.substr(0, 40);
    }
    line += std::size_t(whole[at] == '\n');
  }
}

// Bytes that mean the same in JSON are others all the same.
TEST_F(ReplayTest, WhatIsWrittenOtherwiseIsADifference) {
  editor.emplace(directory / "\u00fc.db");
  begin();
  hand({request(kSystemRemote)});
  const std::string whole = finished();
  ASSERT_EQ(differenceIn(whole), "");
  const std::size_t name = whole.find("u00fc");
  ASSERT_NE(name, std::string::npos);
  const std::string upper = whole.substr(0, name + 3) + "F" + whole.substr(name + 4);
  EXPECT_THAT(differenceIn(upper), HasSubstr("line 1: "));
  EXPECT_THAT(differenceIn("\xEF\xBB\xBF" + whole), HasSubstr("line 1: "));
  std::string lines = whole;
  for (std::size_t at = 0; (at = lines.find('\n', at)) != std::string::npos; at += 2) lines.insert(at, "\r");
  EXPECT_THAT(differenceIn(lines), HasSubstr("line 1: "));
  const std::string line = "line " + std::to_string(std::count(whole.begin(), whole.end(), '\n')) + ": ";
  for (const char end : {' ', '\t', '\r'}) {
    EXPECT_THAT(differenceIn(whole.substr(0, whole.size() - 1) + end), HasSubstr(line));
    EXPECT_THAT(differenceIn(whole.substr(0, whole.size() - 1) + end + '\n'), HasSubstr(line));
  }
  EXPECT_EQ(differenceIn(whole.substr(0, whole.size() - 1)), "") << "of the line itself nothing is missing";
  const std::string head = whole.substr(0, whole.find('\n'));
  EXPECT_THAT(differenceIn(head.substr(0, 40) + "?" + head.substr(41)), HasSubstr("line 1: ")) << "alone, too";
  EXPECT_THAT(differenceIn(head + ' ' + head), HasSubstr("line 1: ")) << "and no JSON any more";
}

TEST_F(ReplayTest, AFirstLineThatIsNoneWasOneWhereALineOfATranscriptStandsBehindIt) {
  hand({request(kSystemRemote)});
  const std::string whole = finished();
  const std::string rest = whole.substr(whole.find('\n') + 1);
  for (const std::string& head : {std::string(), std::string("x"), std::string("{}"), std::string("[]"),
                                  whole.substr(0, 40), whole.substr(1, whole.find('\n') - 1)}) {
    const Replay altered(head + '\n' + rest);
    EXPECT_FALSE(altered.needsLibrary()) << head;
    EXPECT_THAT(differenceIn(head + '\n' + rest), HasSubstr("line 1: ")) << head;
  }
  EXPECT_THAT(differenceIn(rest), HasSubstr("line 1: ")) << "it is missing";
  EXPECT_THAT(differenceIn("x\n{\"library\": null}\n"), HasSubstr("line 1: "));
  for (const char* const none :
       {"x\n", "x\nx\n", "x\n[]\n", "x\n{}\n", "x\n\"direction\"\n", "{}\n\n{\"direction\": 1}\n"})
    EXPECT_THROW(again(none), TranscriptError) << none;
}

TEST_F(ReplayTest, AFirstLineThatWasAlteredNeedsNoLibrary) {
  begin(false);
  hand({request(kSystemRemote)});
  std::string altered = finished();
  EXPECT_TRUE(Replay(altered).needsLibrary());
  altered[altered.find("libraryName")] = 'L';
  EXPECT_FALSE(Replay(altered).needsLibrary());
  EXPECT_THAT(differenceIn(altered), HasSubstr("line 1: "));
}

TEST_F(ReplayTest, ALibraryOfVersion1IsMetAgain) {
  const std::filesystem::path old = directory / "old.db";
  makeOldLibrary(old);
  editor.emplace(old);
  begin();
  hand({editor->requestFor(kMaster), request(kSystemRemote)});
  hand(unitOf(kMaster, BDA::List::master, 3));
  hand({editor->requestFor(kMaster)});
  ASSERT_FALSE(editor->library().isOfOlderVersion());
  EXPECT_EQ(differenceIn(finished()), "");
}

TEST_F(ReplayTest, ALineThatIsMissingOrTwiceThereIsADifference) {
  hand(unitOf(kMaster, BDA::List::master, 3));
  const std::vector<Json> all = lines();
  for (std::size_t line = 1; line + 1 < all.size(); ++line) {
    std::string missing;
    std::string twice;
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (i != line) missing += jsonLine(all[i]) + '\n';
      for (int count = 0; count <= int(i == line); ++count) twice += jsonLine(all[i]) + '\n';
    }
    EXPECT_NE(differenceIn(missing), "") << line;
    EXPECT_NE(differenceIn(twice), "") << line;
  }
}

TEST_F(ReplayTest, WhatIsComparedNeedsNoSeal) {
  hand(unitOf(kMaster, BDA::List::master, 3));
  hand({editor->requestFor(kMaster), Bytes{0xF0, 0x7D, 0x00, 0xF7}});
  const std::vector<Json> all = lines();
  ASSERT_EQ(differenceIn(textOf(all)), "");
  const auto altered = [&](const char* key, const auto& change) {
    for (std::size_t line = 1; line < all.size(); ++line) {
      if (!all[line].contains(key)) continue;
      std::vector<Json> other = all;
      change(other[line][key]);
      EXPECT_THAT(differenceIn(textOf(other)), HasSubstr("line " + std::to_string(line + 1) + ": "))
          << key << " of " << all[line];
    }
  };
  altered("outcome", [](Json& outcome) { outcome = outcome == "stored" ? "accepted" : "stored"; });
  altered("shown", [](Json& shown) { shown.push_back(9); });
  altered("log", [](Json& log) { log.push_back("more"); });
  altered("contents", [](Json& contents) { contents[0] = "master:5"; });
  altered("changes", [](Json& changes) { changes[0]["after"] = "other"; });
  altered("result", [](Json& result) { result["value"] = 40; });
}

TEST_F(ReplayTest, WhatIsSentMustBeThatAndNoMoreAndNoLess) {
  hand({request(kSystemRemote)});
  const std::vector<Json> all = lines();
  const std::vector<Json> fewer(all.begin(), all.end() - 1);
  EXPECT_EQ(again(textOf(fewer)).unwritten, 1U);
  std::vector<Json> none = fewer;
  none.back().erase("answers");
  EXPECT_THAT(differenceIn(textOf(none)), HasSubstr("line 2: 0 messages sent then, 1 now"));
  std::vector<Json> more = all;
  more.push_back(all.back());
  EXPECT_EQ(differenceIn(textOf(more)), "line 4: that answer stands before it already");
  more.back()["answer"] = 2;
  EXPECT_EQ(differenceIn(textOf(more)), "line 4: it is not sent now");
  more.back().erase("answer");
  EXPECT_EQ(differenceIn(textOf(more)), "line 4: it is not sent now");
  std::vector<Json> elsewhere = all;
  elsewhere.back()["port"] = 4;
  EXPECT_EQ(differenceIn(textOf(elsewhere)), "line 3: sent on port 4 then, on port 1 now");
}

// What becomes of it on its way out, in which order, and whether it was written down before the end came.
TEST_F(ReplayTest, WhatIsSentIsComparedInTheOrderInWhichTheAssistantSentIt) {
  hand(unitOf(kVoice, BDA::List::normalVoice, 7));
  const Bytes request = editor->requestFor(kVoice);
  const std::vector<AssistantHost::Sent> answers =
      EmbeddedEditor(directory / "library.db").handle(request, BDA::DevicePort_Main, 1).sent;
  ASSERT_GT(answers.size(), 3U);
  text.clear();
  transcript.emplace(
      Transcript::Options{
          .verb = "instrument", .withLibrary = true, .sent = Transcript::Sent::later, .hearsHanded = true},
      [this] { return now++; }, [this](const std::string& line) { text += line + '\n'; });
  editor->setListener(&*transcript);
  hand({request});
  transcript->left(answers[1].bytes);
  transcript->left(answers[0].bytes);
  transcript->left(answers[0].bytes);
  transcript->left(Bytes{0xF0, 0x41, 0x01, 0xF7});
  const std::string killed = text;
  const std::vector<Json> all = lines();
  EXPECT_EQ(all[1].at("answers"), answers.size());
  EXPECT_EQ(all[2].at("answer"), 2);
  EXPECT_EQ(all[3].at("answer"), 1);
  EXPECT_FALSE(all[4].contains("message"));
  EXPECT_EQ(again(text).unwritten, 0U);
  EXPECT_EQ(differenceIn(text), "");
  EXPECT_EQ(again(killed).unwritten, answers.size() - 2);
  EXPECT_EQ(differenceIn(killed), "");
  std::vector<Json> swapped = all;
  std::swap(swapped[2]["answer"], swapped[3]["answer"]);
  EXPECT_THAT(differenceIn(textOf(swapped)), HasSubstr("line 3: sent other bytes"));
}

TEST_F(ReplayTest, AStoreThatFailedFailsAgain) {
  editor->library().setRoom(0);
  hand(unitOf(kMaster, BDA::List::master, 3));
  editor->library().setRoom(std::nullopt);
  hand({editor->requestFor(kMaster)});
  const std::vector<Json> all = lines();
  const auto failed = std::ranges::find_if(all, [](const Json& line) { return line.contains("storeFails"); });
  ASSERT_NE(failed, all.end());
  EXPECT_EQ(failed->at("outcome"), "refused");
  EXPECT_EQ(differenceIn(text), "");
  std::vector<Json> other = all;
  other[std::size_t(failed - all.begin())].erase("storeFails");
  EXPECT_THAT(differenceIn(textOf(other)), HasSubstr("outcome: \"refused\" then, \"stored\" now"));
}

TEST_F(ReplayTest, AMessageAtWhichTheLibraryFailedSaysSoAndIsPassedOver) {
  hand({request(kSystemRemote)});
  transcript->handed(++number, BDA::DevicePort_Main, dump(kMaster), nullptr);
  const Json last = lines().back();
  EXPECT_EQ(last.at("storeFails"), true);
  EXPECT_FALSE(last.contains("outcome"));
  const Replay::Result result = again(text);
  EXPECT_EQ(result.messages, 1U);
  EXPECT_FALSE(result.difference);
}

TEST_F(ReplayTest, WhatAnotherProgramMadeOfTheLibraryIsInItToo) {
  hand({request(kSystemRemote)});
  hand(unitOf(kMaster, BDA::List::master, 3));
  EmbeddedEditor other{directory / "library.db"};
  receive(other, unitOf(kMaster, BDA::List::master, 4));
  hand({editor->requestFor(kMaster)});
  hand(unitOf(kMaster, BDA::List::master, 5));
  const std::vector<Json> all = lines();
  EXPECT_EQ(std::ranges::count_if(all, [](const Json& line) { return line.contains("library"); }), 2);
  EXPECT_EQ(differenceIn(text), "");
}

TEST_F(ReplayTest, WithoutItsLibraryItEndsWhereAnotherProgramChangedIt) {
  begin(false);
  const Library::Bytes image = editor->library().image();
  hand(unitOf(kMaster, BDA::List::master, 3));
  EmbeddedEditor other{directory / "library.db"};
  receive(other, unitOf(kMaster, BDA::List::master, 4));
  const std::uint64_t before = number;
  hand({editor->requestFor(kMaster)});
  const Replay::Result result = again(finished(), image);
  EXPECT_EQ(result.messages, before);
  EXPECT_FALSE(result.difference);
  EXPECT_TRUE(result.endsAt);
}

TEST_F(ReplayTest, ARunIsDoneAgainAsOneChange) {
  Intake intake(*editor);  // numbers messages itself
  const std::vector<Bytes> whole = unitOf(kMaster, BDA::List::master, 3);
  std::vector<Bytes> broken = unitOf(kVoice, BDA::List::normalVoice, 3);
  broken[1].back() = 0x7F;
  broken[1].push_back(0xF7);
  EXPECT_EQ(intake.store({whole}).state, Intake::Result::State::stored);
  EXPECT_EQ(intake.store({whole, broken}).state, Intake::Result::State::refused);
  hand({editor->requestFor(kMaster), editor->requestFor(kVoice)});
  const std::vector<Json> all = lines();
  EXPECT_EQ(all[1].at("run"), 1);
  EXPECT_EQ(all[1].at("committed"), true);
  EXPECT_TRUE(std::ranges::any_of(all, [](const Json& line) { return line.value("committed", true) == false; }));
  EXPECT_EQ(differenceIn(text), "");
}

TEST_F(ReplayTest, WhatIsCutShortIsDoneAgainAsFarAsItGoes) {
  hand(unitOf(kMaster, BDA::List::master, 3));
  const std::string whole = finished();
  const Replay::Result cut = again(whole.substr(0, whole.size() - 5));
  EXPECT_TRUE(cut.isCutShort);
  EXPECT_FALSE(cut.difference) << cut.difference->text;
  EXPECT_FALSE(again(whole).isCutShort);
}

TEST_F(ReplayTest, WhatIsNoTranscriptIsRefused) {
  for (const char* const wrong : {"", "\n", "x", "{}\n", "[]\n", "{\"transcript\": 2}\n", "{\"transcript\": 1}\n",
                                  "{\"transcript\": 1, \"library\": \"?\"}\n", "{\"transcript\": 1, \"library\": 5}\n",
                                  "{\"transcript\": 1, \"library\": null, \"names\": 5}\n"}) {
    EXPECT_THROW(again(wrong), TranscriptError) << wrong;
  }
  EXPECT_THROW(again("{\"transcript\": 1, \"library\": null}\n", Library::Bytes{0, 0, 0}), LibraryError);
  try {
    again("{\"transcript\": 1, \"library\": \"AAAA\"}\n");
    ADD_FAILURE();
  } catch (const TranscriptError& error) {
    EXPECT_STREQ(error.what(), "the library in it: it is no library");
  }
}

// Units whole and broken, requests, triggers, foreign messages, bytes of nothing, at any of the ports, with stores that
// fail, runs, and other programs.
TEST_F(ReplayTest, RandomTranscriptsGiveTheSame) {
#ifdef BDA_SAMPLED
  constexpr unsigned kRuns = 10;
#else
  constexpr unsigned kRuns = 200;
#endif
  for (unsigned seed = 0; seed < kRuns; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto draw = [&](unsigned below) { return unsigned(random() % below); };
    editor.emplace(directory / "library.db");
    begin();
    const auto unit = [&] {
      const auto value = std::uint8_t(draw(64));
      switch (draw(4)) {
        case 0:
          return unitOf({0x0E, 0x70, std::uint8_t(draw(3))}, BDA::List::master, value);
        case 1:
          return unitOf({0x0E, 0x0A, std::uint8_t(draw(3))}, BDA::List::normalVoice, value);
        case 2:
          return unitOf({0x0E, 0x5F, 0}, BDA::List::multi, value);
        default:
          return std::vector<Bytes>{dump({0x24, 0x08, std::uint8_t(draw(3))}, Bytes{0, 2, 0, 'x', 0, 2, 0, value}),
                                    writeTrigger(0)};
      }
    };
    for (int step = 0; step < 6; ++step) {
      std::vector<Bytes> messages = unit();
      if (draw(3) == 0) messages = {editor->requestFor({0x0E, 0x70, std::uint8_t(draw(3))}), request(kSystemRemote)};
      if (draw(4) == 0) messages[draw(unsigned(messages.size()))][draw(6) + 1] ^= std::uint8_t(1U << draw(7));
      if (draw(4) == 0) messages.erase(messages.begin() + draw(unsigned(messages.size())));
      if (draw(5) == 0) receive(*std::make_unique<EmbeddedEditor>(directory / "library.db"), {request(kSystemRemote)});
      if (draw(5) == 0) {
        EmbeddedEditor other{directory / "library.db"};
        for (const Bytes& message : unit()) other.handle(message, BDA::DevicePort_Main, 1);
      }
      constexpr BDA::DevicePortNum kPorts[] = {BDA::DevicePort_Main, BDA::DevicePortNum(4), BDA::DevicePortNum(5)};
      editor->library().setRoom(draw(4) == 0 ? std::optional<std::size_t>(draw(2)) : std::nullopt);
      if (draw(4) == 0) {
        const EmbeddedEditor::Run run(*editor);
        hand(messages);
      } else {
        const BDA::DevicePortNum port = kPorts[draw(3)];
        for (const Bytes& message : messages) editor->handle(message, port, ++number);
      }
      editor->library().setRoom(std::nullopt);
    }
    ASSERT_EQ(differenceIn(finished()), "") << text.substr(0, 2000);
  }
}

}  // namespace
}  // namespace Editor
