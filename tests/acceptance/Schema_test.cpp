// What --json prints, judged by the schema that is installed with the program.

#include <fstream>
#include <set>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

#include "Library.h"
#include "Program.h"

using Json = nlohmann::json;
using valijson::adapters::NlohmannJsonAdapter;

namespace {

Json schemaText() { return Json::parse(std::ifstream(BDA_SOURCE_DIR "/program/bda.schema.json")); }

// One definition of it.
class Definition {
 public:
  explicit Definition(const std::string& name) : text_(schemaText()) {
    text_.erase("anyOf");
    text_["allOf"] = Json::array({{{"$ref", "#/definitions/" + name}}});
    valijson::SchemaParser().populateSchema(NlohmannJsonAdapter(text_), schema_);
  }
  // Why not; empty when it fits.
  std::string misfit(const Json& object) const {
    valijson::ValidationResults results;
    if (valijson::Validator().validate(schema_, NlohmannJsonAdapter(object), &results)) return "";
    std::string text = "it does not fit";
    valijson::ValidationResults::Error error;
    while (results.popError(error)) {
      for (const std::string& part : error.context) text += part;
      text += ": " + error.description + "\n";
    }
    return text;
  }

 private:
  Json text_;
  valijson::Schema schema_;
};

class Schema : public Program {
 protected:
  // What that prints, each object fitting the definition.
  std::vector<Json> printed(const std::string& definition, const std::vector<std::string>& arguments) {
    const Result result = bda(arguments);
    EXPECT_GE(result.code, 0);
    std::vector<Json> objects;
    for (const std::string& line : lines(result.out)) objects.push_back(Json::parse(line));
    EXPECT_FALSE(objects.empty()) << testing::PrintToString(arguments) << result.err;
    const Definition fits(definition);
    for (const Json& object : objects) EXPECT_EQ(fits.misfit(object), "") << object;
    ran_.insert(arguments.front());
    return objects;
  }

  // Whatever is left out or called otherwise is noticed, but for fields that are not always there.
  void isExact(const std::string& definition, const std::vector<Json>& objects) {
    static const std::set<std::string> kOptional{"name",     "note",    "target", "verdict",
                                                 "contents", "missing", "voice"};  // without it the rest is a multi
    const Definition fits(definition);
    for (const Json& object : objects)
      for (const auto& [key, value] : object.items()) {
        Json other = object;
        other.erase(key);
        if (!kOptional.contains(key)) EXPECT_NE(fits.misfit(other), "") << other;
        other[key + "s"] = value;
        EXPECT_NE(fits.misfit(other), "") << other;
      }
  }
  void exactly(const std::vector<std::string>& arguments) {
    isExact(arguments.front(), printed(arguments.front(), arguments));
  }

  void writeFiles() {
    const Bytes voice = unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice);
    write("voice.syx", text(voice));
    Bytes wrong = blockDump({0x00, 0x00, 0x00}, 1);
    wrong[wrong.size() - 2] ^= 1;
    write("all.syx", text(voice) + text(wrong) + text(Bytes{0xF0, 0x41, 0x10, 0xF7}) + text(systemDump(1)) + "loose" +
                         text(fileDump({0x0C, 0x08, 0x07}, "Raw", {1, 2, 3})) +
                         text(fileDump({0x0C, 0x08, 0x05}, "", {})) + text(dump({0x11, 0, 0}, {})) +
                         text(request({0x0E, 0x0A, 0x05})) + text(Bytes{0xF0, 0x7D, 0x00}));
  }

  std::set<std::string> ran_;
};

}  // namespace

TEST_F(Schema, everyVerbThatHasJsonPrintsWhatTheSchemaSays) {
  writeFiles();
  exactly({"list", "--json", "all.syx"});
  exactly({"verify", "--json", "all.syx"});
  exactly({"restore", "--json", "voice.syx"});
  exactly({"rename", "voice:user1:6", "One", "--json"});
  exactly({"favourite", "voice:user1:6", "on", "--json"});
  exactly({"copy", "voice:user1:6", "voice:user1:7", "--json"});
  exactly({"move", "voice:user1:7", "voice:user1:8", "--json"});
  bda({"rename", "voice:user1:8", "Two"});
  exactly({"swap", "voice:user1:6", "voice:user1:8", "--json"});
  exactly({"settings", "--json"});
  exactly({"settings", "device-number", "--json"});
  exactly({"settings", "device-number", "5", "--json"});
  bda({"settings", "device-number", "1"});
  Editor::Library(libraryFile()).store(kMulti1, Bytes{1, 2, 3}, "Raw");
  Editor::Library(libraryFile()).setFavourite(kPresetVoice1, 1);
  exactly({"contents", "--json"});
  exactly({"check", "--json"});
  exactly({"show", "voice:user1:8", "drum:edit", "multi:edit", "master:edit", "remote:edit", "system", "additional",
           "performance:edit", "--json"});
  exactly({"show", "voice:user1:8", "--json"});
  write("system.json", bda({"show", "system", "--json"}).out);
  bda({"receive", "all.syx"});
  exactly({"apply", "system", "system.json", "--json"});
  exactly({"diff", "library.db", "voice.syx", "--json"});
  exactly({"remove", "voice:user1:8", "--dry-run", "--json"});
  exactly({"undo", "--json"});
  exactly({"history", "--json"});

  const Json definitions = schemaText().at("definitions");
  for (const std::string& line : lines(bda({"__complete", ""}).out)) {
    const std::string verb = line.substr(0, line.find('\t'));
    if (bda({"__complete", verb, "--json"}).out.empty()) continue;
    EXPECT_TRUE(definitions.contains(verb)) << verb;
    EXPECT_TRUE(ran_.contains(verb)) << verb << " is not run here";
  }
}

TEST_F(Schema, theTraceIsWhatTheSchemaSays) {
  writeFiles();
  isExact("trace", printed("trace", {"receive", "all.syx", "--trace", "-", "-q"}));
  isExact("trace", printed("trace", {"request", "voice:user1:6", "-o", "back.syx", "--trace", "-"}));
}
