// What --json prints, judged by the schema that is installed with the program.

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

#include "Jackd.h"
#include "Library.h"
#include "Program.h"
#include "Serving.h"
#include "editor/contents/TemporaryLibrary.h"
#include "wire/BytePort.h"

using Value = nlohmann::json;
using valijson::adapters::NlohmannJsonAdapter;

namespace {

Value schemaText() { return Value::parse(std::ifstream(BDA_SOURCE_DIR "/program/bda.schema.json")); }

// Fields that are not always there.
const std::map<std::string, std::set<std::string>> kOptional{
    {"list", {"name", "note", "verdict"}},
    {"verify", {"name", "note", "verdict"}},
    {"convert", {"from", "removes"}},
    {"explain", {"device", "parameters", "unused", "content", "contentByte", "nameByte", "reason"}},
    {"salvage", {"corrected", "merged"}},
    {"find", {"message", "parameters"}},
    {"diff", {"name", "aName", "bName"}},
    {"show", {"target", "voice"}},  // without it the rest is a multi
    {"receive", {"name", "contents", "changes", "missing", "damaged"}},
    {"instrument", {"name", "contents", "changes", "missing", "damaged"}},
    {"record", {"verdict"}},
    {"fetch", {"silent", "removed", "with"}},
    {"send", {"before"}},
    {"trace", {"name", "contents", "changes", "missing", "damaged"}},
    {"copy", {"damaged"}},
    {"favourite", {"damaged"}},
};

// The messages of a stream.
std::vector<Bytes> messagesOf(const Bytes& stream) {
  std::vector<Bytes> messages;
  for (const std::uint8_t byte : stream) {
    if (byte == 0xF0) messages.emplace_back();
    messages.back().push_back(byte);
  }
  return messages;
}
// A stream of all but one of them.
Bytes joined(const std::vector<Bytes>& messages, std::size_t leftOut) {
  Bytes stream;
  for (std::size_t i = 0; i < messages.size(); ++i)
    if (i != leftOut) stream.insert(stream.end(), messages[i].begin(), messages[i].end());
  return stream;
}

// Where in it objects stand, itself among them; of those of a list the first.
std::vector<Value::json_pointer> objectsIn(const Value& value, const Value::json_pointer& at = Value::json_pointer()) {
  std::vector<Value::json_pointer> found;
  if (value.is_object()) found.push_back(at);
  if (!value.is_structured() || value.empty()) return found;
  for (const auto& [key, inner] : value.items()) {
    const Value::json_pointer there = value.is_array() ? at / 0 : at / key;
    const std::vector<Value::json_pointer> more = objectsIn(inner, there);
    found.insert(found.end(), more.begin(), more.end());
    if (value.is_array()) break;
  }
  return found;
}

// The fields of all of them.
std::string shapeOf(const Value& object) {
  std::string shape;
  for (const Value::json_pointer& at : objectsIn(object))
    for (const auto& [key, value] : object[at].items())
      shape += at.to_string() + ' ' + key + ' ' + value.type_name() + '\n';
  return shape;
}

// One definition of it.
class Definition {
 public:
  explicit Definition(const std::string& name) : text_(schemaText()) {
    text_.erase("anyOf");
    text_["allOf"] = Value::array({{{"$ref", "#/definitions/" + name}}});
    valijson::SchemaParser().populateSchema(NlohmannJsonAdapter(text_), schema_);
  }
  // Why not; empty when it fits.
  std::string misfit(const Value& object) const {
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
  Value text_;
  valijson::Schema schema_;
};

class Schema : public Program {
 protected:
  // What that prints, each object fitting the definition.
  std::vector<Value> printed(const std::string& definition, const std::vector<std::string>& arguments) {
    const Result result = bda(arguments);
    EXPECT_GE(result.code, 0);
    std::vector<Value> objects;
    for (const std::string& line : lines(result.out)) objects.push_back(Value::parse(line));
    EXPECT_FALSE(objects.empty()) << testing::PrintToString(arguments) << result.err;
    const Definition fits(definition);
    for (const Value& object : objects) EXPECT_EQ(fits.misfit(object), "") << object;
    ran_.insert(arguments.front());
    return objects;
  }

  // Whatever is left out or called otherwise is noticed, and so is a field that nobody knows, however deep.
  void isExact(const std::string& definition, const std::vector<Value>& objects) {
    const Definition fits(definition);
    const auto optional = kOptional.find(definition);
    std::set<std::string> shapes;  // one of each is enough
    for (const Value& object : objects) {
      if (!shapes.insert(shapeOf(object)).second) continue;
      for (const auto& [key, value] : object.items()) {
        Value other = object;
        other.erase(key);
        const bool isOptional = optional != kOptional.end() && optional->second.contains(key);
        if (!isOptional) {
          EXPECT_NE(fits.misfit(other), "") << other;
        }
        other[key + "s"] = value;
        EXPECT_NE(fits.misfit(other), "") << other;
      }
      for (const Value::json_pointer& at : objectsIn(object)) {
        Value other = object;
        other[at]["madeUp"] = 1;
        EXPECT_NE(fits.misfit(other), "") << definition << ' ' << at;
      }
    }
  }
  void exactly(const std::vector<std::string>& arguments) {
    isExact(arguments.front(), printed(arguments.front(), arguments));
  }

  // What a verb prints of messages that arrive at standard input.
  std::vector<Value> heard(const std::string& verb) {
    const std::vector<std::string> words = verb == "record" ? std::vector<std::string>{"--from", "-", "-o", "heard.syx"}
                                                            : std::vector<std::string>{"--on", "-"};
    std::vector<std::string> arguments{verb, "--json", "-q"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    std::vector<Value> objects;
    const Definition fits(verb);
    for (const std::string& line : lines(bda(arguments, read("all.syx")).err)) {
      if (line.empty() || line[0] != '{') continue;
      objects.push_back(Value::parse(line));
      EXPECT_EQ(fits.misfit(objects.back()), "") << line;
    }
    EXPECT_FALSE(objects.empty());
    ran_.insert(verb);
    return objects;
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
    write("bytes.syx", text(dump({0x40, 0x00, 0x00}, Bytes(80, 5))) + text(Bytes{0xF0, 0x7D, 0x00, 0xF7}) + "loose" +
                           text(fileDump({0x0C, 0x08, 0x07}, "Raw", {1, 2, 3})) + text(request({0x0E, 0x0A, 0x05})));
    write("louder.syx", text(unit({0x0E, 0x0A, 0x05}, BDA::List::normalVoice, 1)));
    // Two captures of a unit, each without another block, and one of another unit without its footer.
    const std::vector<Bytes> blocks = messagesOf(voice);
    write("one.syx", text(joined(blocks, 2)) +
                         text(joined(messagesOf(unit({0x0E, 0x0A, 0x06}, BDA::List::normalVoice)), blocks.size() - 1)));
    write("other.syx", text(joined(blocks, 3)));
    write("names", "parameter voice.common[4] Volume\nvalue voice.common[4] 0 Off\nvalue voice.common[4] 1 On\n");
  }

  std::set<std::string> ran_;
};

// Every verb that has --json with it, and between them what makes it say something: one after the other, in a library
// with an opaque multi and a favourite that holds nothing.
const std::vector<std::vector<std::string>> kRuns{
    {"list", "--json", "all.syx"},
    {"verify", "--json", "all.syx"},
    {"convert", "--json", "all.syx", "--split", "units"},
    {"convert", "--json", "all.syx", "-o", "all.txt"},
    {"convert", "--json", "voice.syx", "--place", "voice:user1:9", "-o", "placed.syx"},
    {"explain", "--json", "bytes.syx"},
    {"explain", "--json", "--names", "names", "voice.syx", "52"},
    {"salvage", "--json", "one.syx", "other.syx", "-o", "good.syx"},
    {"salvage", "--json", "all.syx", "--fix-checksums", "-o", "good.syx"},
    {"restore", "--json", "voice.syx"},
    {"explain", "--json", "voice:user1:6", "voice.common[3]"},
    {"rename", "voice:user1:6", "One", "--json"},
    {"favourite", "voice:user1:6", "on", "--json"},
    {"copy", "voice:user1:6", "voice:user1:7", "--json"},
    {"move", "voice:user1:7", "voice:user1:8", "--json"},
    {"rename", "voice:user1:8", "Two"},
    {"swap", "voice:user1:6", "voice:user1:8", "--json"},
    {"find", "--json", "--names", "names", "--where", "Volume=Off", "--where", "voice.name!=Nobody"},
    {"find", "--json", "--like", "voice:user1:6"},
    {"find", "--json", "--duplicates", "--in", "all.syx", "--in", "library.db"},
    {"settings", "--json"},
    {"settings", "device-number", "--json"},
    {"settings", "device-number", "5", "--json"},
    {"settings", "device-number", "1"},
    {"contents", "--json"},
    {"check", "--json"},
    {"show", "voice:user1:8", "drum:edit", "multi:edit", "master:edit", "remote:edit", "system", "additional",
     "performance:edit", "--json"},
    {"show", "voice:user1:8", "--json"},
    {"receive", "all.syx", "--json"},
    {"apply", "system", "system.json", "--json"},
    {"diff", "library.db", "voice.syx", "--json"},
    {"diff", "voice.syx", "louder.syx", "--names", "names", "--json"},
    {"remove", "voice:user1:8", "--dry-run", "--json"},
    {"undo", "--json"},
    {"history", "--json"},
    {"send", "--json", "voice.syx", "--to", "./terminal", "--pace", "none"},
    {"job", "master", "--json", "--to", "./terminal", "--pace", "none"},
    {"fetch", "--json", "master:1", "--from", "pty:", "--timeout", "0"},
};

}  // namespace

TEST_F(Schema, everyVerbThatHasJsonPrintsWhatTheSchemaSays) {
  writeFiles();
  write("system.json", bda({"show", "system", "--json"}).out);
  const Editor::BytePort port("pty:", Editor::BytePort::Direction::both);
  std::filesystem::create_symlink(port.name(), directory / "terminal");
  Editor::Library(libraryFile()).store(kMulti1, Bytes{1, 2, 3}, "Raw");
  Editor::Library(libraryFile()).setFavourite(kPresetVoice1, 1);
  for (const std::vector<std::string>& run : kRuns)
    if (std::find(run.begin(), run.end(), "--json") != run.end())
      exactly(run);
    else
      bda(run);

  for (const char* const verb : {"record", "instrument"}) isExact(verb, heard(verb));
#ifdef BDA_MIDI_PORTS
  const Jackd server;
  Serving recording("'" BDA_PROGRAM "' record --from virtual:Desk -o '" + (directory / "a.syx").string() + "' 2>&1");
  exactly({"ports", "--json"});
#else
  ran_.insert("ports");  // there is none for certain
#endif

  const Value definitions = schemaText().at("definitions");
  for (const std::string& line : lines(bda({"__complete", ""}).out)) {
    const std::string verb = line.substr(0, line.find('\t'));
    if (bda({"__complete", verb, "--json"}).out.empty()) continue;
    EXPECT_TRUE(definitions.contains(verb)) << verb;
    EXPECT_TRUE(ran_.contains(verb)) << verb << " is not run here";
  }
}

TEST_F(Schema, whatIsDamagedIsWhatTheSchemaSays) {
  writeFiles();
  bda({"receive", "-q", "voice.syx"});
  bda({"copy", "-q", "voice:user1:6", "voice:user1:7"});
  for (const char* place : {"voice:user1:7", "voice:user1:8"}) bda({"favourite", "-q", place, "on"});
  const auto damage = [&] {
    Editor::PlainDatabase{libraryFile()}(
        "UPDATE content SET checksum = checksum + 1 WHERE number = 0x3F0805; UPDATE favourite SET flag = 300; "
        "INSERT OR REPLACE INTO setting VALUES('history', 100001)");
  };
  damage();
  bda({"backup", "-q", "-o", "rest.syx"});
  exactly({"contents", "--json"});
  exactly({"find", "--json"});
  exactly({"diff", "library.db", "rest.syx", "--json"});
  exactly({"check", "--json"});
  exactly({"receive", "voice.syx", "--json"});
  exactly({"favourite", "voice:user1:7..8", "off", "--json"});
  printed("settings", {"settings", "history", "off", "--json"});
  printed("settings", {"settings", "history", "5", "--json"});
  exactly({"history", "--json"});
}

TEST_F(Schema, theManifestIsWhatTheSchemaSays) {
  writeFiles();
  bda({"receive", "voice.syx"});
  EXPECT_THAT(bda({"backup", "-o", "backup.syx", "--manifest", "backup.json"}), Exits(0));
  const Value manifest = Value::parse(read("backup.json"));
  EXPECT_EQ(manifest.at("contents").size(), 1u);
  EXPECT_EQ(Definition("manifest").misfit(manifest), "");
  isExact("manifest", {manifest});
}

TEST_F(Schema, theTranscriptIsWhatTheSchemaSays) {
  writeFiles();
  const Editor::BytePort port("pty:", Editor::BytePort::Direction::both);
  std::filesystem::create_symlink(port.name(), directory / "terminal");
  const auto written = [&](const std::vector<std::string>& run) {
    std::vector<std::string> words = run;
    words.insert(words.end(), {"--transcript", "run.jsonl", "--with-library"});
    bda(words);
    std::vector<Value> lines;
    for (const std::string& line : ::lines(read("run.jsonl"))) lines.push_back(Value::parse(line));
    return lines;
  };
  for (const std::vector<std::string>& run : {std::vector<std::string>{"receive", "-q", "all.syx"},
                                              {"request", "-q", "voice:user1:6", "-o", "back.syx"},
                                              {"send", "-q", "voice:user1:6", "--to", "./terminal", "--pace", "none"},
                                              {"fetch", "-q", "master:1", "--from", "pty:", "--timeout", "0"}})
    for (const Value& line : written(run)) EXPECT_EQ(Definition("transcript").misfit(line), "") << line;
}

TEST_F(Schema, theTraceIsWhatTheSchemaSays) {
  writeFiles();
  isExact("trace", printed("trace", {"receive", "all.syx", "--trace", "-", "-q"}));
  isExact("trace", printed("trace", {"request", "voice:user1:6", "-o", "back.syx", "--trace", "-"}));
}
