// The verbs about the library itself: settings and contents.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "cli/Verbs.h"
#include "contents/ContentFormat.h"
#include "models/Latin1.h"

namespace Editor {

namespace {

// ---- settings ----

std::uint8_t utilityOf(const EmbeddedEditor& editor, std::uint16_t parameter) {
  return std::uint8_t(editor.tools().liveSystem().system->utility.values()[parameter]);
}

void setUtility(EmbeddedEditor& editor, std::uint16_t parameter, std::uint8_t value) {
  Library::Transaction transaction(editor.library());
  editor.tools().reload();  // another program may have changed the other system settings
  ModelSet system = editor.tools().liveSystem();
  system.system->utility.set(&value, parameter, 0);
  if (!editor.tools().replaceSystem(system)) throw Failure(kWrongUsage, editor.tools().lastError());
  transaction.commit();
}

std::optional<std::int64_t> parseNumber(const std::string& text, std::int64_t least, std::int64_t most) {
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < least || value > most) return std::nullopt;
  return value;
}

struct Setting {
  const char* name;
  const char* values;  // what can be set
  std::string (*get)(EmbeddedEditor&);
  bool (*set)(EmbeddedEditor&, const std::string&);  // false: no such value
};

const std::array kSettings{
    Setting{"device-number", "1 to 16, all or off",
            [](EmbeddedEditor& editor) -> std::string {
              const unsigned device = utilityOf(editor, SystemModel::kDeviceNumber);
              if (device == unsigned(CMA::DeviceNumber_All)) return "all";
              if (device == unsigned(CMA::DeviceNumber_Off)) return "off";
              return std::to_string(device + 1);
            },
            [](EmbeddedEditor& editor, const std::string& value) {
              const auto device = value == "all"   ? std::optional<std::int64_t>(CMA::DeviceNumber_All + 1)
                                  : value == "off" ? std::optional<std::int64_t>(CMA::DeviceNumber_Off + 1)
                                                   : parseNumber(value, 1, 16);
              if (device) setUtility(editor, SystemModel::kDeviceNumber, std::uint8_t(*device - 1));
              return device.has_value();
            }},
    Setting{"receive-bulk", "on or off",
            [](EmbeddedEditor& editor) -> std::string {
              return utilityOf(editor, SystemModel::kReceiveBulk) == 0 ? "off" : "on";
            },
            [](EmbeddedEditor& editor, const std::string& value) {
              if (value != "on" && value != "off") return false;
              setUtility(editor, SystemModel::kReceiveBulk, value == "on" ? 1 : 0);
              return true;
            }},
    Setting{"mixing-voices", "a number from 0 to 2048",
            [](EmbeddedEditor& editor) { return std::to_string(editor.library().mixingVoiceMaximum()); },
            [](EmbeddedEditor& editor, const std::string& value) {
              const auto most = parseNumber(value, 0, Library::kDefaultMixingVoiceMaximum);
              if (most) editor.library().setMixingVoiceMaximum(*most);
              return most.has_value();
            }},
};

}  // namespace

void settings(const std::string& name, const std::optional<std::string>& value, Program& program) {
  const auto found =
      std::find_if(kSettings.begin(), kSettings.end(), [&](const Setting& setting) { return name == setting.name; });
  if (!name.empty() && found == kSettings.end()) {
    std::string names;
    for (const Setting& setting : kSettings) names += fmt::format("{}{}", names.empty() ? "" : ", ", setting.name);
    throw Failure(kWrongUsage, fmt::format("there is no setting \"{}\": expected {}", escape(name), names));
  }
  const std::unique_ptr<EmbeddedEditor> editor = program.openEditor();
  if (name.empty()) {
    for (const Setting& setting : kSettings)
      program.console.line(fmt::format("{} {}", setting.name, setting.get(*editor)));
  } else if (!value) {
    program.console.line(found->get(*editor));
  } else if (!found->set(*editor, *value)) {
    throw Failure(kWrongUsage, fmt::format("{}: \"{}\": expected {}", name, escape(*value), found->values));
  }
}

// ---- contents ----

namespace {

struct Entry {
  ContentId id;
  std::optional<Library::Content> content;  // nothing: only a favourite flag
  std::uint8_t favourite = 0;
};

// The part of a readable name that its bank shares: "voice:user1:6" is number 6 of "voice:user1"; "drum:gm" has a bank
// to itself.
std::string bankOfName(const std::string& name) {
  const std::size_t colon = name.rfind(':');
  const bool isNumbered = name.find_first_not_of("0123456789", colon + 1) == std::string::npos;
  return isNumbered ? name.substr(0, colon) : name;
}

bool isOpaque(const Entry& entry) {
  ModelSet models = emptySetFor(entry.id);
  return haveSameShape(models, ModelSet()) || decodeContent(entry.content->bytes, models).has_value();
}

std::vector<Entry> entriesOf(Library& library) {
  std::map<ContentId, Entry> entries;
  const Library::Transaction oneState(library, Library::Transaction::Access::Read);
  for (const ContentId id : library.contents()) entries[id] = {id, library.content(id), 0};
  for (const auto& [id, flag] : library.favourites()) {
    entries[id].id = id;
    entries[id].favourite = flag;
  }
  std::vector<Entry> list;
  list.reserve(entries.size());
  for (auto& [id, entry] : entries) list.push_back(std::move(entry));
  return list;
}

std::string toJsonLine(const Entry& entry) {
  nlohmann::ordered_json json{{"content", nameOf(entry.id)},
                              {"type", entry.id.type},
                              {"number", entry.id.number},
                              {"stored", entry.content.has_value()}};
  if (entry.content) {
    json["name"] = latin1ToUtf8(entry.content->name);
    json["bytes"] = entry.content->bytes.size();
    json["opaque"] = isOpaque(entry);
  }
  json["favourite"] = entry.favourite;
  return json.dump(-1, ' ', true);  // a terminal would obey U+0080 to U+009F
}

// The contents bank by bank, a line each; flags of empty slots, of which there may be hundreds, share one line a bank.
void printByBank(const std::vector<Entry>& entries, Console& console) {
  std::string bank;
  std::string emptyFavourites;
  const auto endBank = [&] {
    if (!emptyFavourites.empty()) console.line("  favourites that hold nothing: " + emptyFavourites);
    emptyFavourites.clear();
  };
  for (const Entry& entry : entries) {
    const std::string name = nameOf(entry.id);
    if (bankOfName(name) != bank) {
      endBank();
      bank = bankOfName(name);
      console.line(bank + ":");
    }
    if (!entry.content) {
      if (!emptyFavourites.empty()) emptyFavourites += ", ";
      emptyFavourites += name == bank ? "the only one" : name.substr(bank.size() + 1);
      continue;
    }
    std::string line = fmt::format("  {:<24} {}", name, showName(entry.content->name));
    if (entry.favourite != 0) line += "  *favourite";
    if (isOpaque(entry)) line += fmt::format("  opaque, {} bytes", entry.content->bytes.size());
    console.line(line);
  }
  endBank();
}

}  // namespace

void contents(bool json, Program& program) {
  const std::unique_ptr<EmbeddedEditor> editor = program.openEditor();
  const std::vector<Entry> entries = entriesOf(editor->library());
  if (json) {
    for (const Entry& entry : entries) program.console.line(toJsonLine(entry));
  } else {
    printByBank(entries, program.console);
  }
  const auto stored =
      std::count_if(entries.begin(), entries.end(), [](const Entry& entry) { return entry.content.has_value(); });
  program.console.note(fmt::format("{} content{} stored", stored, stored == 1 ? "" : "s"));
}

}  // namespace Editor
