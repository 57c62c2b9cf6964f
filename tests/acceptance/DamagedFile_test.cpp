// A library of whose file pages, rows or numbers are damaged: who reads gets the rest, and is told what is missing.

#include <algorithm>
#include <fstream>
#include <functional>
#include <sstream>

#include "Program.h"
#include "editor/contents/TemporaryLibrary.h"
#include "exchange/EmbeddedEditor.h"

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr int kVoices = 40;  // on many pages
constexpr std::size_t kPage = 4096;

class DamagedFile : public Program {
 protected:
  DamagedFile() {
    Bytes bank;
    for (std::uint8_t i = 0; i < kVoices; ++i) {
      const Bytes voice = unit({0x0E, 0x0A, i}, BDA::List::normalVoice, 0x41);
      bank.insert(bank.end(), voice.begin(), voice.end());
    }
    write("bank.syx", {bank});
    ok({"receive", "-q", "bank.syx"});
    for (std::uint8_t i = 0; i < 5; ++i) store({0x0E, 0x0C, i}, BDA::List::normalVoice);  // an entry each
    store({0x0E, 0x0F, 0x00}, BDA::List::normalVoice);
    store({0x0E, 0x5F, 0x00}, BDA::List::multi);
    for (const char* place : {"voice:user1:1", "voice:user1:2"}) ok({"favourite", "-q", place, "on"});
    ok({"settings", "-q", "mixing-voices", "9"});
    std::filesystem::copy_file(libraryFile(), directory / "whole.db");
  }
  void store(Editor::BulkAddress header, BDA::List list) {
    write("a.syx", {unit(header, list, 0x41)});
    ok({"receive", "-q", "a.syx"});
  }
  void ok(const std::vector<std::string>& words) { ASSERT_THAT(bda(words), Exits(0)) << testing::PrintToString(words); }

  void asItWas() {
    for (const char* ending : {"", "-wal", "-shm"}) std::filesystem::remove(libraryFile().string() + ending);
    std::filesystem::copy_file(directory / "whole.db", libraryFile());
  }
  std::size_t number(const std::string& sql) { return std::stoul(Editor::PlainDatabase{libraryFile()}(sql)); }
  void zeroPage(std::size_t page) {
    std::string bytes = Editor::bytesOfFile(libraryFile());
    bytes.replace((page - 1) * kPage, kPage, std::string(kPage, '\0'));
    Editor::writeFile(libraryFile(), bytes);
  }
  void zeroRoot(const std::string& name) {
    asItWas();
    zeroPage(number("SELECT rootpage FROM sqlite_master WHERE name = '" + name + "'"));
  }
  std::vector<std::size_t> pagesOf(const std::vector<std::string>& names) {
    std::vector<std::size_t> pages;
    for (const std::string& name : names) {
      std::istringstream list(Editor::PlainDatabase{libraryFile()}(
          "SELECT group_concat(pageno, ' ') FROM dbstat WHERE name = '" + name + "' AND pagetype <> 'overflow'"));
      for (std::size_t page = 0; list >> page;) pages.push_back(page);
    }
    return pages;
  }
  void change(const std::string& sql) {
    asItWas();
    Editor::PlainDatabase{libraryFile()}(sql);
  }
  // With one bit flipped in the entries of an index, here and there; `visit` says whether it was found out.
  void forEachFlip(const std::string& index, std::size_t step, const std::function<bool(std::size_t)>& visit) {
    asItWas();
    const std::string whole = Editor::bytesOfFile(libraryFile());
    const std::size_t page = kPage * (number("SELECT rootpage FROM sqlite_master WHERE name = '" + index + "'") - 1);
    const std::size_t entries = page + std::uint8_t(whole[page + 5]) * 256 + std::uint8_t(whole[page + 6]);
    int wrong = 0;
    for (std::size_t at = entries; at < page + kPage; at += step) {
      std::string flipped = whole;
      flipped[at] = char(std::uint8_t(flipped[at]) ^ (1U << at % 8));
      Editor::writeFile(libraryFile(), flipped);
      wrong += visit(at) ? 1 : 0;
    }
    EXPECT_GT(wrong, 3) << index;
  }
  // How many voices of the bank contents names.
  int voicesTold() {
    const Result run = bda({"contents", "voice:user1", "--json"});
    EXPECT_THAT(run.code, AnyOf(0, 3));
    int count = 0;
    for (const Json& content : objectsOf(run.out)) count += content.contains("name") ? 1 : 0;
    return count;
  }
  // Each ends with 3, and says what is damaged.
  void expectTold(const std::string& what) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"contents"}, {"backup", "-o", "b.syx"}, {"find", "A", "--edit-buffers"}}) {
      const Result run = bda(words);
      EXPECT_THAT(run, Exits(3)) << what << " " << words[0];
      EXPECT_THAT(run.err, HasSubstr("damaged")) << what << " " << words[0];
    }
    EXPECT_THAT(bda({"check"}), Exits(3)) << what;
  }
};

TEST_F(DamagedFile, anIndexThatCannotBeReadLosesNothing) {
  for (const char* index : {"sqlite_autoindex_content_1", "sqlite_autoindex_live_model_1"}) {
    zeroRoot(index);
    expectTold(index);
    EXPECT_THAT(bda({"diff", "library.db", "whole.db"}).out, IsEmpty()) << index;
    EXPECT_EQ(voicesTold(), kVoices) << index;
    ok({"show", "voice:user1:6"});
    ok({"show", "voice:edit"});
    ok({"request", "voice:user1:6", "-o", "r.syx"});
    EXPECT_THAT(bda({"show", "voice:user2:1"}).err, HasSubstr("nothing is stored there"));
    removeLibrary();
    ASSERT_THAT(bda({"restore", "-q", "b.syx"}), Exits(0));
    EXPECT_THAT(bda({"diff", "library.db", "whole.db", "--brief"}).out, "settings: different\n") << index;
  }
}

TEST_F(DamagedFile, anIndexThatIsWrongIsNotBelieved) {
  for (const char* index : {"sqlite_autoindex_content_1", "sqlite_autoindex_live_model_1"})
    forEachFlip(index, 41, [&](std::size_t at) {
      const bool isWrong = bda({"contents"}).code == 3;  // else it leads to every row, or is not in use
      EXPECT_TRUE(!isWrong || bda({"check"}).code == 3) << index << at;
      EXPECT_EQ(voicesTold(), kVoices) << index << at;
      ok({"show", "voice:user1:6"});
      EXPECT_EQ(bda({"diff", "library.db", "whole.db"}).out, "") << index << at;
      EXPECT_THAT(bda({"backup", "-o", "b.syx"}), Exits(isWrong ? 3 : 0)) << index << at;
      for (const char* option : {"--dry-run", "-q"})
        EXPECT_THAT(bda({"rename", "voice:user1:6", "Grand", option}), Exits(isWrong ? 1 : 0)) << index << at;
      EXPECT_EQ(voicesTold(), kVoices) << index << at;
      return isWrong;
    });
}

TEST_F(DamagedFile, anIndexOfTheHistoryThatIsWrongHasNothingPutBackInAnotherPlace) {
  asItWas();
  ok({"remove", "-q", "voice:user1:1..5"});
  std::filesystem::copy_file(libraryFile(), directory / "whole.db", std::filesystem::copy_options::overwrite_existing);
  const std::string history = bda({"history", "-v", "-n", "1"}).out;
  forEachFlip("sqlite_autoindex_change_1", 37, [&](std::size_t at) {
    const Result told = bda({"history", "-v", "-n", "1"});
    EXPECT_EQ(told.out, history) << at;
    const bool isWrong = told.code == 3;
    for (const char* option : {"--dry-run", "-q"}) EXPECT_THAT(bda({"undo", option}), Exits(isWrong ? 1 : 0)) << at;
    EXPECT_EQ(voicesTold(), isWrong ? kVoices - 5 : kVoices) << at;
    return isWrong;
  });
}

TEST_F(DamagedFile, aTableThatCannotBeReadKeepsNobodyFromTheOthers) {
  for (const char* table : {"live_model", "favourite", "setting"}) {
    zeroRoot(table);
    if (table != std::string("setting")) expectTold(table);
    EXPECT_EQ(voicesTold(), kVoices) << table;
    const Result backup = bda({"backup", "-o", "b.syx"});
    EXPECT_EQ(backup.code, table == std::string("setting") ? 0 : 3) << table << backup.err;
    const std::string messages = bda({"list", "b.syx"}).out;
    EXPECT_THAT(messages, HasSubstr("voice user1:40")) << table;
  }
  zeroRoot("setting");
  EXPECT_EQ(bda({"diff", "library.db", "whole.db"}).out, "settings: not compared: damaged | good\n");
  zeroRoot("live_model");
  EXPECT_THAT(bda({"show", "voice:edit"}), Exits(3));
  EXPECT_THAT(bda({"diff", "library.db", "whole.db"}).out, HasSubstr("voice:edit: not compared: damaged | good\n"));
  EXPECT_THAT(bda({"backup", "-o", "b.syx"}).err, HasSubstr("voice:edit: not in the backup"));
  zeroRoot("favourite");
  EXPECT_THAT(bda({"contents"}).err, HasSubstr("table favourite is damaged"));
  const Result flags = bda({"request", "favourites:voice:user1", "-o", "r.syx"});
  EXPECT_THAT(flags, Exits(3)) << "a flag that cannot be read is none that is off";
}

TEST_F(DamagedFile, aPageOfContentsLosesNoMoreThanThose) {
  const std::size_t root = number("SELECT rootpage FROM sqlite_master WHERE name = 'content'");
  // The pages of contents that are not its root; what is in one only those contents have.
  const std::size_t pages = number("PRAGMA page_count");
  int lost = 0;
  for (std::size_t page = 2; page <= pages; page += 13) {
    if (page == root) continue;
    asItWas();
    zeroPage(page);
    const Result contents = bda({"contents", "--lines"});
    EXPECT_THAT(contents.code, AnyOf(0, 3)) << page;
    EXPECT_GE(voicesTold(), kVoices / 2) << page;
    const Result backup = bda({"backup", "-o", "b.syx"});
    EXPECT_THAT(backup.code, AnyOf(0, 3)) << page << backup.err;
    if (voicesTold() == kVoices) continue;
    ++lost;
    EXPECT_EQ(contents.code, 3) << page;
    EXPECT_THAT(contents.err, HasSubstr("damaged")) << page;
    EXPECT_EQ(backup.code, 3) << page;
  }
  EXPECT_GT(lost, 0);
  zeroRoot("content");
  EXPECT_THAT(bda({"show", "voice:user1:6"}), Exits(3));
  EXPECT_THAT(bda({"show", "voice:user1:6"}).err, AllOf(HasSubstr("damaged"), Not(HasSubstr("nothing is stored"))));
  EXPECT_THAT(bda({"show", "voice:edit"}), Exits(0));
  EXPECT_THAT(bda({"request", "voice:user1:6", "-o", "r.syx"}), Exits(3));
}

TEST_F(DamagedFile, whoChangesSomethingIsRefusedAndToldTheWayOn) {
  for (const char* table : {"content", "entry", "change", "sqlite_autoindex_content_1"}) {
    zeroRoot(table);
    for (const std::vector<std::string>& words : {std::vector<std::string>{"rename", "voice:user1:6", "Grand"},
                                                  {"remove", "voice:user1:6"},
                                                  {"copy", "voice:user1:6", "voice:user2:1"}}) {
      const Result run = bda(words);
      EXPECT_THAT(run, Exits(1)) << table;
      EXPECT_THAT(run.err, AllOf(HasSubstr("library.db is damaged"), HasSubstr("restored into a new library")))
          << table;
    }
    const Result backup = bda({"backup", "-o", "b.syx"});
    EXPECT_THAT(backup.code, AnyOf(0, 3)) << table;
  }
  zeroRoot("content");
  write("v.json", bda({"--library", "whole.db", "show", "voice:user1:6", "--json"}).out);
  EXPECT_THAT(bda({"apply", "voice:user1:6", "v.json"}), Exits(1));
  write("a.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42)});
  for (const char* option : {"-q", "--dry-run"}) {
    const Result restore = bda({"restore", option, "a.syx"});
    EXPECT_THAT(restore, Exits(1)) << option;
    EXPECT_THAT(restore.err, AllOf(HasSubstr("library.db is damaged"), Not(HasSubstr("memory is")))) << option;
  }
}

TEST_F(DamagedFile, aDryRunIsRefusedWhereTheVerbIsAndInTheSameWords) {
  for (const char* table : {"content", "favourite", "setting", "entry", "change", "sqlite_autoindex_change_1"}) {
    write("a.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42)});
    for (std::vector<std::string> words : {std::vector<std::string>{"rename", "voice:user1:6", "Grand"},
                                           {"favourite", "voice:user1:6", "on"},
                                           {"remove", "voice:user1:6"},
                                           {"copy", "voice:user1:6", "voice:user2:1"},
                                           {"settings", "mixing-voices", "5"},
                                           {"undo"},
                                           {"restore", "a.syx"}}) {
      zeroRoot(table);
      const std::string what = std::string(table) + " " + words[0];
      words.emplace_back("--dry-run");
      const Result dry = bda(words);
      words.pop_back();
      const Result wet = bda(words);
      if (wet.code != 0) {
        EXPECT_EQ(dry.code, wet.code) << what << dry.err << wet.err;
        EXPECT_EQ(dry.err, wet.err) << what;
      } else {
        EXPECT_THAT(dry, Exits(0)) << what;
      }
    }
  }
}

TEST_F(DamagedFile, aRowOfNoPlaceIsToldAndLeftOut) {
  change("UPDATE content SET number = -5 WHERE number = 0x3F0805");
  expectTold("number");
  EXPECT_EQ(voicesTold(), kVoices - 1);
  EXPECT_THAT(bda({"contents"}).err, HasSubstr("table content is damaged"));
}

TEST_F(DamagedFile, aFlagOutOfRangeIsDamagedAndCanBeMended) {
  for (const char* flag : {"-3", "300"}) {
    change(std::string("UPDATE favourite SET flag = ") + flag + " WHERE number = 0x3F0800");
    expectTold(flag);
    EXPECT_THAT(bda({"check"}).out, HasSubstr("table favourite: damaged: voice:user1:1"));
    EXPECT_THAT(bda({"contents"}).err, HasSubstr("voice:user1:1: its favourite flag is left out"));
    const Result contents = bda({"contents", "voice:user1:1", "--json"});
    EXPECT_THAT(contents.out, HasSubstr(R"("favourite":null)"));
    EXPECT_EQ(bda({"diff", "library.db", "whole.db"}).out, "voice:user1:1: favourite: not compared: damaged | 1\n");
    EXPECT_THAT(bda({"diff", "whole.db", "library.db", "--json"}).out,
                HasSubstr(R"({"content":"voice:user1:1","path":"favourite","a":1,"b":null})"));
    EXPECT_THAT(bda({"find", "--kind", "voice", "--json"}).out,
                HasSubstr(R"("content":"voice:user1:1","name":"AAAAAAAAAAAAAAAAAAAA","favourite":null)"));
    const Result copy = bda({"copy", "voice:user1:1..2", "voice:user2:1"});
    EXPECT_THAT(copy, Exits(3));
    EXPECT_THAT(copy.err, AllOf(HasSubstr("voice:user1:1: left out"), HasSubstr("stored: voice:user2:2")));
    ok({"favourite", "voice:user1:1", "off"});
    EXPECT_THAT(bda({"check"}), Exits(3)) << "the history has what it was";
    EXPECT_THAT(bda({"contents"}), Exits(0));
    EXPECT_THAT(bda({"undo"}), Exits(3)) << "what is damaged is never put back";
  }
}

TEST_F(DamagedFile, aDryRunOfARestoreForetellsWhatItDoesToADamagedFlag) {
  ok({"request", "favourites:voice:user1", "-o", "flags.syx"});
  write("voice.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42)});
  for (const char* file : {"flags.syx", "voice.syx"}) {
    change("UPDATE favourite SET flag = -3 WHERE number = 0x3F0800");
    const bool mends = file == std::string("flags.syx");
    const Result dry = bda({"restore", "--dry-run", file});
    const Json planned = bda({"restore", "--dry-run", "--json", file}).out;
    const Result wet = bda({"restore", file});
    EXPECT_THAT(dry, Exits(0)) << file;
    EXPECT_THAT(wet, Exits(0)) << file;
    constexpr const char* kGone = "what was there is damaged, an undo cannot bring it back";
    EXPECT_EQ(dry.out.find(kGone) != std::string::npos, mends) << dry.out;
    EXPECT_EQ(wet.err.find(kGone) != std::string::npos, mends) << wet.err;
    EXPECT_EQ(dry.out.find("would change: voice:user1:1 (") != std::string::npos, mends) << dry.out;
    EXPECT_EQ(wet.err.find("flagged: voice:user1:1: a favourite;") != std::string::npos, mends) << wet.err;
    const Json done = objects({"history", "-n", "1", "--json"})[0]["changes"];
    EXPECT_EQ(planned.get<std::string>(), done[0].dump() + "\n");
    if (mends) {
      EXPECT_EQ(done.dump(),
                R"([{"content":"voice:user1:1","what":"flagged","before":null,"after":1,"damaged":true}])");
    }
    EXPECT_EQ(bda({"contents"}).code, mends ? 0 : 3) << file;
  }
}

TEST_F(DamagedFile, aContentThatIsDamagedIsStoredAndToldWhenItIsOverwritten) {
  write("a.syx", {unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 0x42)});
  ok({"contents", "voice:user1:6"});
  for (const std::vector<std::string>& words : {std::vector<std::string>{"receive", "a.syx"},
                                                {"restore", "a.syx"},
                                                {"copy", "voice:user1:1", "voice:user1:6"},
                                                {"remove", "voice:user1:6"}}) {
    change("UPDATE content SET checksum = checksum + 1 WHERE number = 0x3F0805");
    const Result there = bda({"contents", "voice:user1:6"});
    EXPECT_THAT(there, Exits(3));
    EXPECT_THAT(there.out, HasSubstr("voice:user1:6            (damaged)"));
    EXPECT_THAT(there.err,
                AllOf(HasSubstr("voice:user1:6: it is damaged"), HasSubstr("1 content stored (1 damaged) there")));
    EXPECT_EQ(bda({"contents", "voice:user1:6", "--json"}).out,
              R"({"content":"voice:user1:6","type":4,"number":4130821,"stored":true,"damaged":true,"favourite":0})"
              "\n");
    std::vector<std::string> rehearsal = words;
    rehearsal.emplace_back("--dry-run");
    for (const std::vector<std::string>& run : {rehearsal, words}) {
      const Result told = bda(run);
      EXPECT_THAT(told, Exits(0));
      EXPECT_THAT(told.out + told.err, HasSubstr("what was there is damaged, an undo cannot bring it back")) << run[0];
    }
    EXPECT_THAT(bda({"history", "-n", "1"}).out,
                HasSubstr("(cannot be undone: what voice:user1:6 held before is damaged)"));
    EXPECT_THAT(bda({"history", "-n", "1", "-v"}).out, HasSubstr("an undo cannot bring it back"));
    EXPECT_THAT(bda({"history", "-n", "1", "--json"}).out, HasSubstr(R"("damaged":true)"));
    EXPECT_THAT(bda({"undo"}), Exits(3));
  }
}

TEST_F(DamagedFile, whatIsReceivedOverWhatIsDamagedIsInItsTraceAndEachOfMany) {
  write("edit.syx", {unit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice, 0x42)});
  ok({"request", "favourites:voice:user1", "-o", "flags.syx"});
  change("UPDATE live_model SET checksum = checksum + 1 WHERE key = 'voice'; UPDATE favourite SET flag = 999");
  const Json changes = objectsOf(bda({"receive", "edit.syx", "--json"}).out).back()["changes"];
  ASSERT_EQ(changes.size(), 1u);
  EXPECT_EQ(changes[0]["content"], "voice:edit");
  EXPECT_EQ(changes[0]["damaged"], true);
  const Result flags = bda({"receive", "flags.syx"});
  EXPECT_THAT(flags.out, AllOf(HasSubstr("voice:user1:1: its favourite flag set; what was there is damaged"),
                               HasSubstr("voice:user1:2: its favourite flag set")));
  change("UPDATE content SET checksum = checksum + 1");
  const Result all = bda({"restore", "bank.syx"});
  std::size_t told = 0;
  for (const std::string& line : lines(all.err)) told += line.find("an undo cannot") != std::string::npos ? 1 : 0;
  EXPECT_EQ(told, std::size_t(kVoices)) << all.err;
}

TEST_F(DamagedFile, rowsOfATypeThatThereIsNotAreDamagedToAll) {
  change("INSERT INTO content SELECT 77, 5, name, bytes, checksum FROM content LIMIT 1");
  const Result contents = bda({"contents"});
  EXPECT_THAT(contents, Exits(3));
  EXPECT_THAT(contents.out, Not(HasSubstr("type 77")));
  EXPECT_THAT(contents.err, HasSubstr("content 5 of type 77: left out: it is damaged"));
  expectTold("a content");
  EXPECT_THAT(bda({"check"}).out, HasSubstr("content 5 of type 77: damaged: there is no such place"));
  EXPECT_EQ(voicesTold(), kVoices);
  change("INSERT INTO favourite VALUES(77, 5, 1)");
  expectTold("a flag");
  EXPECT_THAT(bda({"check"}).out, HasSubstr("table favourite: damaged: content 5 of type 77: there is no such place"));
  for (const char* sql :
       {"UPDATE change SET type = 77 WHERE entry = 6", "UPDATE change SET number = 0x7FFFFF WHERE entry = 6"}) {
    change(sql);
    EXPECT_THAT(bda({"check"}), Exits(3)) << sql;
    EXPECT_THAT(bda({"check"}).out, HasSubstr("entry 6: a change of it is of a place that there is not")) << sql;
    EXPECT_THAT(bda({"undo", "6"}), Exits(3)) << sql;
  }
}

TEST_F(DamagedFile, aSettingOutOfItsRangeIsDamagedAndCanBeMended) {
  for (const auto& [name, value] : {std::pair("history", -5), {"history-size", 0}, {"mixing-voices", 2049}}) {
    change(std::string("INSERT OR REPLACE INTO setting VALUES('") + name + "', " + std::to_string(value) + ")");
    const Result check = bda({"check"});
    EXPECT_THAT(check, Exits(3)) << name;
    EXPECT_THAT(check.out, HasSubstr(std::string("table setting: damaged: ") + name + ": " + std::to_string(value)));
    const Result settings = bda({"settings"});
    EXPECT_THAT(settings, Exits(3)) << name;
    EXPECT_THAT(settings.err, HasSubstr(std::string(name) + ": left out: it is damaged"));
    const std::size_t entries = objects({"history", "--json"}).size();
    ok({"favourite", "voice:user1:9", "on"});
    EXPECT_EQ(objects({"history", "--json"}).size(), entries + 1) << name;
    const Json told = json({"settings", name, "7", "--json"});
    EXPECT_EQ(told["before"], Json()) << name;
    EXPECT_EQ(told["damaged"], true) << name;
    EXPECT_EQ(json({"settings", name, "--json"})["value"], "7");
    ok({"settings"});
  }
  EXPECT_THAT(bda({"undo"}), Exits(3)) << "nothing puts such a number back";
}

TEST_F(DamagedFile, aDeviceNumberThatThereIsNotIsTold) {
  asItWas();
  for (const std::uint8_t device : Bytes{18, 99, 255}) {
    {
      Editor::EmbeddedEditor editor(libraryFile());
      Editor::ModelSet system = editor.tools().liveSystem();
      system.system->utility.set(&device, Editor::SystemModel::kDeviceNumber, 0);
      ASSERT_TRUE(editor.tools().replaceSystem(system));
    }
    const Result check = bda({"check"});
    EXPECT_THAT(check, Exits(3));
    EXPECT_THAT(check.out, HasSubstr("system: damaged: device-number: "));
    EXPECT_THAT(bda({"settings", "device-number"}), Exits(3));
    ok({"settings", "device-number", "all"});
    ok({"check"});
  }
}

TEST_F(DamagedFile, anEntryOfTheHistoryThatIsNoneIsNamedAndNotUndone) {
  for (const char* sql :
       {"UPDATE change SET what = 9 WHERE entry = 6", "UPDATE change SET kind = 9 WHERE entry = 6",
        "UPDATE change SET what = 4 WHERE entry = 6", "UPDATE change SET type = -1 WHERE entry = 6",
        "UPDATE change SET name_after = NULL WHERE entry = 6", "DELETE FROM change WHERE entry = 6",
        "UPDATE entry SET undoes = 6 WHERE number = 6",
        "UPDATE entry SET undoes = 7 WHERE number = 6; UPDATE entry SET undoes = 6 WHERE number = 7",
        "UPDATE entry SET undoes = -1 WHERE number = 6", "UPDATE entry SET undoes = 5 WHERE number = 6",
        "UPDATE entry SET verb = 'undo' WHERE number = 6", "UPDATE change SET key = 'voice' WHERE entry = 6",
        "UPDATE entry SET verb = 'undo', undoes = 9 WHERE number = 6",
        "UPDATE entry SET time = 9223372036854775807 WHERE number = 6",
        "UPDATE change SET held_name = x'41', held_bytes = x'41', held_checksum = 5 WHERE entry = 6"}) {
    change(sql);
    const Result check = bda({"check"});
    EXPECT_THAT(check, Exits(3)) << sql;
    EXPECT_THAT(check.out, HasSubstr("entry 6: ")) << sql;
    const std::vector<Json> history = objects({"history", "--json"});
    EXPECT_GE(history.size(), 10U) << sql;
    EXPECT_THAT(bda({"history", "-v"}), Exits(0)) << sql;
    for (const std::vector<std::string>& words : {std::vector<std::string>{"undo", "6"}, {"undo", "6", "--force"}}) {
      const Result undo = bda(words);
      EXPECT_THAT(undo, Exits(3)) << sql;
      EXPECT_THAT(undo.err, AnyOf(HasSubstr("entry 6 is damaged"), HasSubstr("entry 6 is already undone"))) << sql;
      EXPECT_THAT(undo.out, IsEmpty()) << sql;
    }
    EXPECT_EQ(objects({"history", "--json"}).size(), history.size()) << sql;
    ok({"undo"});
  }
  change("DELETE FROM entry WHERE number = 6");
  EXPECT_THAT(bda({"check"}).out, HasSubstr("entry 6: it is not there"));
  EXPECT_THAT(bda({"check"}), Exits(3));
  EXPECT_THAT(bda({"history"}), Exits(3));
  EXPECT_THAT(bda({"history"}).err, HasSubstr("entry 6: left out: it is not there"));
}

TEST_F(DamagedFile, anEntryOfANumberThatThereCannotBeIsLeftOut) {
  const std::size_t entries = objects({"history", "--json"}).size();
  change(
      "INSERT INTO entry(number, time, bytes, verb, sources) VALUES(-7, 0, 0, 'x', x''), "
      "(9223372036854775807, 0, 0, 'x', x'')");
  const Result history = bda({"history", "--json"});
  EXPECT_THAT(history, Exits(3));
  EXPECT_EQ(std::ranges::count(history.out, '\n'), std::ptrdiff_t(entries));
  EXPECT_THAT(history.err, HasSubstr("there is no entry -7"));
  ok({"favourite", "voice:user1:3", "on"});
  ok({"undo"});
}

TEST_F(DamagedFile, aPageOfTheHistoryLosesNoMoreThanStandsOnIt) {
  for (int i = 0; i < 40; ++i) ok({"favourite", "-q", "voice:user1:3", i % 2 == 0 ? "on" : "off"});
  ok({"copy", "-q", "voice:user1:1..40", "voice:user3:1"});
  ok({"remove", "-q", "voice:user3:1..40"});  // what they held stands in the history now
  std::filesystem::copy_file(libraryFile(), directory / "whole.db", std::filesystem::copy_options::overwrite_existing);
  const std::size_t entries = objects({"history", "--json"}).size();
  std::size_t most = 0;
  for (const std::size_t page : pagesOf({"entry", "change", "sqlite_autoindex_change_1"})) {
    asItWas();
    zeroPage(page);
    const Result history = bda({"history", "--json"});
    EXPECT_THAT(history, Exits(3)) << page;
    EXPECT_THAT(history.err, HasSubstr("is damaged, what cannot be read of it is left out")) << page;
    most = std::max(most, objectsOf(history.out).size());
    EXPECT_THAT(bda({"check"}), Exits(3)) << page;
    EXPECT_THAT(bda({"contents"}), Exits(0)) << page;
  }
  EXPECT_EQ(most, entries);
  zeroRoot("sqlite_autoindex_change_1");
  const Result all = bda({"--library", "whole.db", "history", "--json"});
  EXPECT_EQ(bda({"history", "--json"}).out, all.out) << "the table has all that the index does not find";
  zeroRoot("entry");
  EXPECT_THAT(bda({"history"}).err, AllOf(HasSubstr("table entry is damaged"), Not(HasSubstr("nothing is recorded"))));
}

TEST_F(DamagedFile, aSettingThatCannotBeReadKeepsNobodyFromTheOthers) {
  zeroRoot("setting");
  const Result all = bda({"settings"});
  EXPECT_THAT(all, Exits(3));
  EXPECT_EQ(all.out, "device-number 1\nreceive-bulk on\n");
  for (const char* name : {"mixing-voices", "history", "history-size"}) {
    EXPECT_THAT(all.err, HasSubstr(std::string(name) + ": left out: it is damaged"));
    const Result one = bda({"settings", name, "--json"});
    EXPECT_THAT(one, Exits(3)) << name;
    EXPECT_THAT(one.out, IsEmpty()) << name;
  }
  ok({"settings", "device-number"});
  EXPECT_THAT(bda({"settings", "history", "5"}), Exits(1)) << "who changes something is refused";
}

TEST_F(DamagedFile, aContentThatIsRenamedIsNamedWithTheLineOfTheTable) {
  change("UPDATE content SET checksum = checksum + 1 WHERE number = 0x3F0805");
  const Result one = bda({"rename", "voice:user1:6", "Grand"});
  EXPECT_THAT(one, Exits(3));
  EXPECT_THAT(one.err, AllOf(HasSubstr("voice:user1:6: it is damaged"), Not(HasSubstr("library.db"))));
  write("names", "voice:user1:5 Soft\nvoice:user1:6 Grand\n");
  const Result all = bda({"rename", "--from", "names"});
  EXPECT_THAT(all, Exits(3));
  EXPECT_THAT(all.err, HasSubstr("line 2: voice:user1:6: it is damaged"));
}

}  // namespace
