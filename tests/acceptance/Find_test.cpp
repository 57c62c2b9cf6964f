// find: contents of libraries, message files and folders of them, by what is asked of them.

#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "Library.h"
#include "Program.h"
#include "editor/contents/TemporaryLibrary.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

class Find : public Program {
 protected:
  // Three voices and a master with blocks of that value: the name is as many of that character.
  void fillLibrary() {
    write("all.syx",
          {unit({0x0E, 0x0A, 0x00}, BDA::List::normalVoice, 1), unit({0x0E, 0x0A, 0x01}, BDA::List::normalVoice, 1),
           unit({0x0E, 0x0A, 0x02}, BDA::List::normalVoice, 2), unit({0x0E, 0x70, 0x00}, BDA::List::master, 1),
           unit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice, 1)});
    ASSERT_THAT(bda({"receive", "-q", "all.syx"}), Exits(0));
    const std::vector<std::pair<const char*, const char*>> names{{"voice:user1:1", "Grand Piano"},
                                                                 {"voice:user1:2", "Upright piano"},
                                                                 {"voice:user1:3", "Organ"},
                                                                 {"master:1", "Piano and Organ"},
                                                                 {"voice:edit", "Edited Piano"}};
    for (const auto& [target, name] : names) ASSERT_THAT(bda({"rename", target, name}), Exits(0));
    ASSERT_THAT(bda({"favourite", "voice:user1:2", "on"}), Exits(0));
  }

  std::vector<Json> found(std::vector<std::string> words) {
    words.insert(words.begin(), {"find", "--json"});
    const Result run = bda(words);
    const std::vector<Json> objects = objectsOf(run.out);
    EXPECT_THAT(run, Exits(objects.empty() ? 3 : 0));
    return objects;
  }
  std::vector<std::string> places(const std::vector<std::string>& words) {
    std::vector<std::string> names;
    for (const Json& object : found(words)) names.push_back(object["content"]);
    return names;
  }
  std::vector<std::string> sources(const std::vector<std::string>& words) {
    std::vector<std::string> names;
    for (const Json& object : found(words)) names.push_back(object["source"]);
    return names;
  }

  void makeFolder(const std::string& name) { std::filesystem::create_directories(directory / name); }
};

}  // namespace

// ---- What is asked for ----

TEST_F(Find, aTermIsAPartOfTheNameOrWithAStarTheWhole) {
  fillLibrary();
  EXPECT_THAT(places({"piano"}), ElementsAre("voice:user1:1", "voice:user1:2", "master:1"));
  EXPECT_THAT(places({"*PIANO"}), ElementsAre("voice:user1:1", "voice:user1:2"));
  EXPECT_THAT(places({"piano", "organ"}), ElementsAre("master:1"));
  EXPECT_THAT(places({}), ElementsAre("voice:user1:1", "voice:user1:2", "voice:user1:3", "master:1"));
}

TEST_F(Find, aTermMayBeginWithADash) {
  fillLibrary();
  ASSERT_THAT(bda({"rename", "voice:user1:1", "--", "-dash-"}), Exits(0));
  const Result run = bda({"find", "--", "-dash"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("voice:user1:1"));
}

TEST_F(Find, nothingFoundIs3WithoutALine) {
  fillLibrary();
  for (const bool json : {false, true}) {
    std::vector<std::string> words{"find", "drum", "kit"};
    if (json) words.emplace_back("--json");
    const Result run = bda(words);
    EXPECT_THAT(run, Exits(3));
    EXPECT_EQ(run.out, "");
  }
}

TEST_F(Find, linesSayWhatJsonSays) {
  fillLibrary();
  const Result run = bda({"find", "piano", "--kind", "voice"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out,
            "voice:user1:1            Grand Piano\n"
            "voice:user1:2            Upright piano  *favourite\n");
  EXPECT_EQ(run.err, "2 found in 4 contents\n");
  const std::vector<Json> objects = found({"upright"});
  const Json stored = Json::parse(bda({"contents", "--json", "voice:user1:2"}).out);
  ASSERT_EQ(objects.size(), 1u);
  EXPECT_EQ(objects[0], (Json{{"source", libraryFile().string()},
                              {"content", "voice:user1:2"},
                              {"name", "Upright piano"},
                              {"favourite", 1},
                              {"kind", "voice"},
                              {"hash", stored["hash"]},
                              {"group", nullptr},
                              {"likeness", nullptr}}));
}

TEST_F(Find, kindFavouriteConditionsAndEditBuffersAreAndEd) {
  fillLibrary();
  EXPECT_THAT(places({"--kind", "master"}), ElementsAre("master:1"));
  EXPECT_THAT(places({"--favourite"}), ElementsAre("voice:user1:2"));
  EXPECT_THAT(places({"--favourite", "--kind", "master"}), IsEmpty());
  EXPECT_THAT(places({"piano", "--edit-buffers", "--kind", "voice"}),
              ElementsAre("voice:user1:1", "voice:user1:2", "voice:edit"));
  const Json voice = json({"show", "voice:user1:3", "--json"});
  const std::string value = voice["voice"]["element"][2]["wave"][0].dump();
  EXPECT_THAT(places({"--where", "voice.element[2].wave[0]=" + value}), ElementsAre("voice:user1:3"));
  EXPECT_THAT(places({"--where", "voice.element[2].wave[0]>0", "--where", "voice.element[2].wave[0]<" + value}),
              ElementsAre("voice:user1:1", "voice:user1:2"));
  EXPECT_THAT(places({"--where", "voice.name!=Organ", "upright"}), ElementsAre("voice:user1:2"));
}

TEST_F(Find, wrongUsageIsToldBeforeALibraryIsLookedFor) {
  for (const auto& [words, hint] : std::vector<std::pair<std::vector<std::string>, const char*>>{
           {{"--where", "voice.comon[3]>1"}, "did you mean voice.common[3]?"},
           {{"--where", "voice.common[3]~1"}, "expected a path"},
           {{"--kind", "master2"}, "did you mean master?"},
           {{"--kind", "sound"}, "voice, drum, mix"},
           {{"--like", "voice:usr1:1"}, "did you mean voice:user1:1?"},
           {{"--same-as", "system"}, "system is no content"},
           {{"--favorite"}, "did you mean --favourite?"}}) {
    std::vector<std::string> all{"find", "--library", "none.db"};
    all.insert(all.end(), words.begin(), words.end());
    const Result run = bda(all);
    EXPECT_THAT(run, Exits(1));
    EXPECT_THAT(run.err, HasSubstr(hint));
    EXPECT_EQ(run.out, "");
  }
  EXPECT_FALSE(exists("none.db"));
}

// ---- Compared with another ----

TEST_F(Find, theSameIsEqualButForTheName) {
  fillLibrary();
  EXPECT_THAT(places({"--same-as", "voice:user1:1"}), ElementsAre("voice:user1:2"));
  EXPECT_THAT(places({"--same-as", "0E 0A 00", "--edit-buffers"}), ElementsAre("voice:user1:2", "voice:edit"));
  EXPECT_THAT(places({"--same-as", "voice:user1:3"}), IsEmpty());
  EXPECT_THAT(places({"--same-as", "voice:user1:1", "--in", "all.syx"}), ElementsAre("voice:user1:1", "voice:user1:2"));
}

// By the definition: equal numbers / all numbers of what show prints.
std::pair<double, double> countNumbers(const Json& a, const Json& b) {
  std::pair<double, double> counts;
  if (a.is_number()) return {a == b ? 1 : 0, 1};
  if (!a.is_structured()) return {0, 0};
  for (auto left = a.begin(), right = b.begin(); left != a.end(); ++left, ++right) {
    const auto [equal, all] = countNumbers(*left, *right);
    counts.first += equal;
    counts.second += all;
  }
  return counts;
}

TEST_F(Find, likenessIsTheShareOfEqualNumbersInSixDigits) {
  fillLibrary();
  const std::vector<Json> objects = found({"--like", "voice:user1:1", "--edit-buffers"});
  ASSERT_EQ(objects.size(), 3u);
  EXPECT_EQ(objects[0]["content"], "voice:user1:2");
  EXPECT_EQ(objects[1]["content"], "voice:edit");
  EXPECT_EQ(objects[2]["content"], "voice:user1:3");
  for (const Json& object : objects) {
    const auto [equal, all] = countNumbers(json({"show", "voice:user1:1", "--json"}),
                                           json({"show", object["content"].get<std::string>(), "--json"}));
    EXPECT_NEAR(object["likeness"].get<double>(), equal / all, 0.5e-6);
    EXPECT_LE(object["likeness"].dump().size(), 8u);
  }
  const Result run = bda({"find", "--like", "voice:user1:1"});
  EXPECT_THAT(lines(run.out)[0], HasSubstr("1.000000  voice:user1:2 "));
}

TEST_F(Find, anAddressThatHoldsNothingIsRefused) {
  fillLibrary();
  for (const char* const option : {"--same-as", "--like"}) {
    const Result run = bda({"find", option, "voice:user1:9"});
    EXPECT_THAT(run, Exits(3));
    EXPECT_THAT(run.err, HasSubstr("voice:user1:9: nothing is stored there"));
  }
}

TEST_F(Find, duplicatesAreGroups) {
  fillLibrary();
  Editor::Library(libraryFile()).store(kMulti1, Bytes{1, 2}, "One");
  Editor::Library(libraryFile()).store(kMulti2, Bytes{1, 2}, "Two");
  const Result run = bda({"find", "--duplicates"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out,
            "group 1:\n"
            "  file:multi:1             One\n"
            "  file:multi:2             Two\n"
            "group 2:\n"
            "  voice:user1:1            Grand Piano\n"
            "  voice:user1:2            Upright piano  *favourite\n");
  const std::vector<Json> objects = found({"--duplicates", "--kind", "voice"});
  ASSERT_EQ(objects.size(), 2u);
  EXPECT_EQ(objects[0]["group"], 1);
  EXPECT_EQ(objects[1]["group"], 1);
  EXPECT_EQ(objects[0]["hash"], objects[1]["hash"]);
  EXPECT_THAT(places({"--duplicates", "--favourite"}), IsEmpty());
}

// ---- Sources ----

TEST_F(Find, sourcesAreLibrariesFilesAndFolders) {
  fillLibrary();
  makeFolder("dumps/deep/er");
  write("dumps/b.syx", {unit({0x0E, 0x0A, 0x10}, BDA::List::normalVoice, 0x42)});
  write("dumps/deep/er/a.syx", {unit({0x0E, 0x0A, 0x11}, BDA::List::normalVoice, 0x41)});
  write("dumps/picture.jpg", "\xFF\xD8\xFF\xE0 no messages");
  write("dumps/empty", "");
  Editor::Library((directory / "dumps/mine.db").string()).store(kUserVoice6, Bytes{1}, "In a library");
  const Result run = bda({"find", "--in", "dumps"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out,
            "dumps/b.syx: voice:user1:17           BBBBBBBBBBBBBBBBBBBB\n"
            "dumps/deep/er/a.syx: voice:user1:18           AAAAAAAAAAAAAAAAAAAA\n"
            "dumps/mine.db: voice:user1:6            In a library\n");
  EXPECT_EQ(run.err, "3 found in 3 contents; passed over: 2 files of other kinds\n");
  EXPECT_THAT(sources({"--in", "library.db", "--in", "dumps/b.syx", "grand*"}), ElementsAre("library.db"));
  EXPECT_EQ(found({"--in", "dumps/b.syx"}).at(0)["message"], 1);
}

TEST_F(Find, whatIsThereTwiceByTwoNamesIsSearchedOnce) {
  makeFolder("dumps");
  write("dumps/a.syx", {unit({0x0E, 0x0A, 0x10}, BDA::List::normalVoice)});
  EXPECT_THAT(sources({"--in", "dumps/a.syx", "--in", "dumps", "--in", "./dumps/../dumps/"}),
              ElementsAre("dumps/a.syx"));
}

TEST_F(Find, noLinkInAFolderIsFollowed) {
  makeFolder("dumps");
  makeFolder("elsewhere");
  write("elsewhere/a.syx", {unit({0x0E, 0x0A, 0x10}, BDA::List::normalVoice)});
  std::filesystem::create_directory_symlink(directory / "elsewhere", directory / "dumps/folder");
  std::filesystem::create_directory_symlink("..", directory / "dumps/up");
  std::filesystem::create_symlink(directory / "elsewhere/a.syx", directory / "dumps/a.syx");
  EXPECT_THAT(sources({"--in", "dumps"}), IsEmpty());
  EXPECT_THAT(sources({"--in", "dumps/folder"}), ElementsAre("dumps/folder/a.syx"));
}

TEST_F(Find, whatIsNamedSinglyHasToBeUsable) {
  write("good.syx", {unit({0x0E, 0x0A, 0x10}, BDA::List::normalVoice)});
  write("picture.jpg", "\xFF\xD8\xFF\xE0 no messages");
  write("other.db", std::string("SQLite format 3\0", 16) + std::string(200, 0));
  for (const char* const name : {"picture.jpg", "other.db", "none.syx", "none.db"}) {
    const Result run = bda({"find", "--in", "good.syx", "--in", name});
    EXPECT_THAT(run, Exits(2)) << name;
    EXPECT_THAT(run.err, HasSubstr(name));
  }
  EXPECT_EQ(bda({"find", "--in", "good.syx", "--in", "picture.jpg"}).out, "");
  EXPECT_FALSE(exists("none.db"));
}

TEST_F(Find, aDatabaseOfSomebodyElseInAFolderIsPassedOver) {
  makeFolder("dumps");
  write("dumps/other.db", std::string("SQLite format 3\0", 16) + std::string(200, 0));
  const Result run = bda({"find", "--in", "dumps"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_EQ(run.err, "nothing found in 0 contents; passed over: 1 file of another kind\n");
}

TEST_F(Find, standardInputIsASource) {
  const Bytes voice = unit({0x0E, 0x0A, 0x10}, BDA::List::normalVoice);
  const Result run = bda({"find", "--json", "--in", "-"}, text(voice));
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(Json::parse(run.out)["source"], "-");
  EXPECT_THAT(bda({"find", "--in", "-", "--in", "-"}, text(voice)), Exits(1));
}

TEST_F(Find, ofMessageFilesOnlyWholeUnitsAreSearched) {
  Bytes cut = unit({0x0E, 0x0A, 0x10}, BDA::List::normalVoice);
  cut.resize(cut.size() - 30);
  write("a.syx", {unit({0x0E, 0x0A, 0x11}, BDA::List::normalVoice), unit({0x0E, 0x0F, 0x00}, BDA::List::normalVoice),
                  fileDump({0x0C, 0x50, 0x00}, "Multi", {1}), dump({0x11, 0x00, 0x00}),
                  fileDump({0x0C, 0x50, 0x01}, "Held", {1}), fileDump({0x0C, 0x50, 0x02}, "Held", {1}), cut});
  EXPECT_THAT(places({"--in", "a.syx"}), ElementsAre("voice:user1:18", "file:multi:1"));
  EXPECT_THAT(places({"--in", "a.syx", "--edit-buffers"}), ElementsAre("voice:user1:18", "voice:edit", "file:multi:1"));
  EXPECT_THAT(bda({"find", "--in", "a.syx"}).err,
              HasSubstr("2 found in 2 contents; left out: 3 units that are not whole or never written"));
}

TEST_F(Find, aFileThatIsNotReadInFullIsToldAndTheOthersAreSearched) {
  makeFolder("dumps");
  fillLibrary();
  ASSERT_THAT(bda({"convert", "all.syx", "-o", "dumps/a.txt"}), Exits(0));
  ASSERT_THAT(bda({"convert", "all.syx", "-o", "b.mid"}), Exits(0));
  write("dumps/b.mid", read("b.mid").substr(0, 4000));
  write("dumps/c.syx", read("all.syx"));
  const Result good = bda({"find", "--in", "dumps/a.txt"});
  EXPECT_THAT(good, Exits(0));
  write("dumps/a.txt", read("dumps/a.txt") + "no hex at all\n");
  const Result text = bda({"find", "--in", "dumps/a.txt"});
  EXPECT_THAT(text, Exits(3));
  EXPECT_EQ(text.out, good.out);
  EXPECT_THAT(text.err, HasSubstr("dumps/a.txt: offset "));
  EXPECT_THAT(text.err, HasSubstr("4 found in 4 contents; 1 file not read in full\n"));
  EXPECT_THAT(text.err, HasSubstr(lines(bda({"list", "dumps/a.txt"}).err).front())) << "as others tell it";
  const Result both = bda({"find", "--in", "dumps"});
  EXPECT_THAT(both, Exits(3));
  EXPECT_THAT(both.err, HasSubstr("dumps/b.mid: offset 14: track 1 is cut short"));
  EXPECT_THAT(both.err, HasSubstr("; 2 files not read in full\n"));
  EXPECT_THAT(both.out, HasSubstr("dumps/c.syx: voice:user1:1"));
  write("dumps/d.syx", "\xF0");
  EXPECT_THAT(bda({"find", "--in", "dumps"}), Exits(2)) << "there is nothing in it that can be read";
}

TEST_F(Find, aBackupHoldsWhatItsLibraryHolds) {
  fillLibrary();
  Editor::Library(libraryFile()).store(kMulti1, Bytes{1, 2}, "Opaque");
  ASSERT_THAT(bda({"backup", "-q", "-o", "backup.syx"}), Exits(0));
  auto inLibrary = found({"--edit-buffers"});
  auto inBackup = found({"--edit-buffers", "--in", "backup.syx"});
  for (auto* const objects : {&inLibrary, &inBackup}) {
    for (Json& object : *objects) {
      object.erase("source");
      object.erase("message");
    }
    std::sort(objects->begin(), objects->end());
  }
  EXPECT_EQ(inBackup, inLibrary);
}

// ---- Libraries ----

TEST_F(Find, aDefaultLibraryThatDoesNotExistIsEmptyAndANamedOneIsRefused) {
  removeLibrary();
  const Result named = bda({"find"});  // by $BDA_LIBRARY
  EXPECT_THAT(named, Exits(2));
  EXPECT_THAT(bdaWithout("BDA_LIBRARY", {"find"}), Exits(3));
  EXPECT_FALSE(exists("library.db"));
  write("a.syx", {unit({0x0E, 0x0A, 0x11}, BDA::List::normalVoice)});
  EXPECT_THAT(bda({"find", "--in", "a.syx"}), Exits(0));  // asks for none
}

TEST_F(Find, aDamagedContentIsNamedAndKeepsNoneFromTheOthers) {
  fillLibrary();
  {
    Editor::PlainDatabase plain(libraryFile());
    plain("UPDATE content SET bytes = x'03' WHERE number = 4130816");  // voice:user1:1
  }
  const Result run = bda({"find", "piano"});
  EXPECT_THAT(run, Exits(3));
  EXPECT_THAT(run.out, AllOf(HasSubstr("voice:user1:2"), Not(HasSubstr("voice:user1:1 "))));
  EXPECT_THAT(run.err, HasSubstr("voice:user1:1: left out: it is damaged"));
}
