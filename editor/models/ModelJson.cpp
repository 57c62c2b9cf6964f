#include "models/ModelJson.h"

#include <set>
#include <vector>

#include "midi/Hex.h"
#include "models/Latin1.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

// ---- Writing -------------------------------------------------------------------------------------------------------

class Writer {
 public:
  void group(const char* key, const ArrayGroup& group) { json[key] = group.values(); }
  void name(const char* key, const NameText& name) { json[key] = latin1ToUtf8(name.text()); }
  template <typename Visit>
  void list(const char* key, std::size_t count, Visit visit) {
    Json outer = std::exchange(json, Json::object());
    Json nodes = Json::array();
    for (std::size_t i = 0; i < count; ++i) {
      visit(i);
      nodes.push_back(std::exchange(json, Json::object()));
    }
    json = std::move(outer);
    json[key] = std::move(nodes);
  }

  Json json = Json::object();
};

// ---- Reading -------------------------------------------------------------------------------------------------------

std::string joined(const std::string& path, const std::string& key) { return path.empty() ? key : path + '.' + key; }
std::string indexed(const std::string& path, std::size_t i) { return path + '[' + std::to_string(i) + ']'; }

// Fills one model, stopping at the first error.
class Reader {
 public:
  // Reads the object at `path`: `visit` asks for each of its keys.
  template <typename Visit>
  void object(const Json& json, const std::string& path, Visit visit) {
    if (!json.is_object()) return fail(path.empty() ? "the document" : path, "an object is expected");
    const Object outer = std::exchange(object_, Object{&json, path, {}});
    visit();
    for (const auto& [key, value] : json.items())
      if (!object_.keys.contains(key)) fail(joined(path, key), "unknown key");
    object_ = outer;
  }

  const Json* find(const std::string& key) {
    object_.keys.insert(key);
    if (error) return nullptr;
    const auto found = object_.json->find(key);
    if (found != object_.json->end()) return &*found;
    fail(joined(object_.path, key), "missing");
    return nullptr;
  }

  void group(const char* key, ArrayGroup& group) {
    const Json* const values = array(key, group.values().size());
    if (values == nullptr) return;
    const std::string path = joined(object_.path, key);
    std::vector<std::uint16_t> numbers;
    for (const Json& value : *values) {
      if (!value.is_number_integer() || value < 0 || value > group.maximum())
        return fail(indexed(path, numbers.size()),
                    shown(value) + " is no integer from 0 to " + std::to_string(group.maximum()));
      numbers.push_back(value.get<std::uint16_t>());
    }
    group.assign(numbers);
  }

  void name(const char* key, NameText& name) {
    const Json* const value = find(key);
    if (value == nullptr) return;
    const std::string path = joined(object_.path, key);
    if (!value->is_string()) return fail(path, "a string is expected");
    const std::optional<std::string> bytes = utf8ToLatin1(value->get_ref<const std::string&>());
    if (!bytes) return fail(path, "a name has no other characters than U+0001 to U+00FF");
    if (!name.assign(*bytes)) fail(path, "longer than " + std::to_string(name.capacity()) + " characters");
  }

  template <typename Visit>
  void list(const char* key, std::size_t count, Visit visit) {
    const Json* const nodes = array(key, count);
    if (nodes == nullptr) return;
    const std::string path = joined(object_.path, key);
    for (std::size_t i = 0; i < count && !error; ++i) object((*nodes)[i], indexed(path, i), [&] { visit(i); });
  }

  std::optional<std::string> error;

 private:
  struct Object {
    const Json* json;
    std::string path;
    std::set<std::string> keys;  // that were asked for
  };

  static std::string shown(const Json& value) { return value.is_number() ? value.dump() : value.type_name(); }

  void fail(const std::string& path, const std::string& what) {
    if (!error) error = path + ": " + what;
  }

  const Json* array(const char* key, std::size_t length) {
    const Json* const value = find(key);
    if (value == nullptr) return nullptr;
    const std::string path = joined(object_.path, key);
    if (!value->is_array()) {
      fail(path, "an array is expected");
      return nullptr;
    }
    if (value->size() != length) {
      fail(path, std::to_string(value->size()) + " entries instead of " + std::to_string(length));
      return nullptr;
    }
    return value;
  }

  Object object_{nullptr, {}, {}};
};

}  // namespace

Json toJson(const ModelSet& models) {
  Json json = Json::object();
  forEachModel(models, [&](const char* key, const auto& model) {
    Writer writer;
    visitFields(model, writer);
    json[key] = std::move(writer.json);
  });
  return json;
}

Json valueToJson(const ParameterValue& value) {
  struct ToJson {
    Json operator()(std::int64_t number) const { return number; }
    Json operator()(const std::string& name) const { return latin1ToUtf8(name); }
    Json operator()(const std::vector<std::uint8_t>& bytes) const { return formatHex(bytes); }
    Json operator()(std::monostate /*unknown*/) const { return nullptr; }
  };
  return std::visit(ToJson(), value);
}

std::optional<std::string> fromJson(const Json& json, ModelSet& models) {
  ModelSet read = models;
  Reader reader;
  reader.object(json, "", [&] {
    forEachModel(read, [&](const char* key, auto& model) {
      if (const Json* const found = reader.find(key)) reader.object(*found, key, [&] { visitFields(model, reader); });
    });
  });
  if (!reader.error) models = read;
  return reader.error;
}

constexpr int kDeepest = 32;  // models have five

std::optional<std::string> parseJson(std::string_view text, Json& json) {
  std::vector<std::set<std::string>> open;  // the keys so far of each object around the parser's place
  std::optional<std::string> error;
  struct TooDeep {};
  const auto watch = [&](int depth, Json::parse_event_t event, Json& parsed) {
    if (depth > kDeepest) throw TooDeep();  // or whoever walks through it runs out of stack
    if (event == Json::parse_event_t::object_start) open.emplace_back();
    if (event == Json::parse_event_t::object_end) open.pop_back();
    if (event == Json::parse_event_t::key && !open.back().insert(parsed.get<std::string>()).second && !error)
      error = "key " + parsed.dump() + " occurs twice in an object";
    return true;
  };
  if (text.find('\0') != std::string_view::npos) return "there is a character U+0000 in it";  // the parser stops there
  try {
    Json parsed = Json::parse(text, watch);
    if (!error) json = std::move(parsed);
  } catch (const Json::exception& exception) {
    error = exception.what();
  } catch (const TooDeep&) {
    error = "more than " + std::to_string(kDeepest) + " objects and lists inside each other";
  }
  return error;
}

std::string jsonLine(const Json& json) { return json.dump(-1, ' ', true, Json::error_handler_t::replace); }

}  // namespace Editor
