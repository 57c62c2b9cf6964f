#include "transcript/Replay.h"

#include <algorithm>
#include <utility>

#include "midi/Base64.h"
#include "midi/Counted.h"
#include "midi/Hex.h"
#include "models/ModelJson.h"
#include "names/NameFile.h"
#include "transcript/MessageJson.h"

namespace Editor {

namespace {

using Json = nlohmann::ordered_json;

// What of a message's line must come out as it did then.
constexpr const char* kCompared[] = {"result", "outcome", "contents", "changes", "missing", "shown", "log"};

// A line is JSON, and not such as it would have been written.
class WrongLine : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// It is not even JSON, as what is left of a line that was cut.
class NoJson : public WrongLine {
 public:
  NoJson() : WrongLine("it is no JSON object") {}
};

const Json* find(const Json& json, const char* key) {
  const auto found = json.find(key);
  return found == json.end() || found->is_null() ? nullptr : &*found;
}

std::uint64_t numberIn(const Json& json, const char* key) {
  const Json* const number = find(json, key);
  if (number == nullptr || !number->is_number_unsigned()) throw WrongLine(std::string(key) + " is no number");
  return number->get<std::uint64_t>();
}

std::string textIn(const Json& json, const char* key) {
  const Json* const text = find(json, key);
  if (text == nullptr || !text->is_string()) throw WrongLine(std::string(key) + " is no text");
  return text->get<std::string>();
}

bool isSet(const Json& json, const char* key) {
  const Json* const flag = find(json, key);
  return flag != nullptr && flag->is_boolean() && flag->get<bool>();
}

std::string wordsOf(const Json* json) { return json == nullptr ? "nothing" : jsonLine(*json); }

// Two messages that differ, where they begin to.
std::string describeOther(std::span<const std::uint8_t> then, std::span<const std::uint8_t> now) {
  const std::size_t at = std::size_t(std::ranges::mismatch(then, now).in1 - then.begin());
  const auto byteAt = [&](std::span<const std::uint8_t> message) {
    return at < message.size() ? formatHex(message.subspan(at, 1)) : std::string("none");
  };
  return "sent other bytes: byte " + std::to_string(at) + " was " + byteAt(then) + " then, is " + byteAt(now) + " now";
}

// How many contents the message stored before its store failed.
std::size_t roomOf(const Json& json) {
  const Json* const contents = find(json, "contents");
  return contents == nullptr || !contents->is_array() ? 0 : contents->size();
}

}  // namespace

Replay::Replay(std::string_view text) { readLines(text); }

std::string Replay::libraryName() const {
  const Json* const name = find(head_, "libraryName");
  return name != nullptr && name->is_string() ? name->get<std::string>() : "";
}

void Replay::readLines(std::string_view text) {
  for (std::size_t number = 1; !text.empty() && !altered_; ++number) {
    const std::size_t end = text.find('\n');
    const bool hasEnd = end != std::string_view::npos;
    const std::string line(text.substr(0, end));
    text.remove_prefix(hasEnd ? end + 1 : text.size());
    try {
      if (number == 1) {
        head_ = readHead(line, text.substr(0, text.find('\n')));
        continue;
      }
      readLine(line, lines_.emplace_back(number));
      link(lines_.size() - 1);
    } catch (const WrongLine& wrong) {
      lines_.pop_back();
      isCutShort_ = !hasEnd && dynamic_cast<const NoJson*>(&wrong) != nullptr;
      if (!isCutShort_) altered_ = Difference{number, wrong.what()};
    }
  }
  if (head_.is_null()) throw TranscriptError("it is no transcript: it is empty");
}

// What was sent belongs to the message before it that has its number.
void Replay::link(std::size_t line) {
  const Line& last = lines_[line];
  if (last.kind == Line::Kind::handed) handed_[last.message] = line;
  if (last.kind != Line::Kind::sent) return;
  const auto handed = handed_.find(last.message);
  if (handed == handed_.end()) throw WrongLine("no message before it has its number");
  auto& sent = lines_[handed->second].sent;
  const std::uint64_t answer = find(last.json, "answer") == nullptr ? sent.size() + 1 : numberIn(last.json, "answer");
  if (!sent.emplace(answer, line).second) throw WrongLine("that answer stands before it already");
}

// That it was one before it was altered its beginning says, or the line behind it.
Replay::Json Replay::readHead(const std::string& line, std::string_view next) {
  Json json;
  if (parseJson(line, json) || !json.is_object() || !json.contains("transcript")) {
    const char* const wrong = "its first line is none of one";
    Json second;
    const bool isBehindOne = !parseJson(next, second) && (second.contains("direction") || second.contains("library"));
    if (!isBehindOne && !line.starts_with(R"({"transcript":)"))
      throw TranscriptError(std::string("it is no transcript: ") + wrong);
    altered_ = Difference{1, std::string("this is a transcript, but ") + wrong + ": it was altered or removed"};
    json = Json::object();
    json["library"] = nullptr;
    return json;
  }
  if (json.at("transcript") != 1)
    throw TranscriptError("it is a transcript of another version: " + jsonLine(json.at("transcript")));
  if (const std::string wrong = seal_.open(line, json); !wrong.empty()) altered_ = Difference{1, wrong};
  if (json.find("library") == json.end()) json["library"] = nullptr;
  return json;
}

void Replay::readLine(const std::string& text, Line& line) {
  if (parseJson(text, line.json) || !line.json.is_object()) throw NoJson();
  if (const std::string wrong = seal_.open(text, line.json); !wrong.empty()) throw WrongLine(wrong);
  if (line.json.find("library") == line.json.end()) {
    readMessage(line);
    return;
  }
  line.kind = Line::Kind::library;
  if (std::optional<Library::Bytes> library = libraryIn(line.json)) line.bytes = *std::move(library);
}

void Replay::readMessage(Line& line) {
  const Json& json = line.json;
  const std::string direction = textIn(json, "direction");
  if (direction != "in" && direction != "out") throw WrongLine("direction is neither in nor out");
  std::optional<std::vector<std::uint8_t>> bytes = parseHex(textIn(json, "bytes"));
  if (!bytes) throw WrongLine("bytes are none in hex");
  line.bytes = *std::move(bytes);
  line.port = BDA::DevicePortNum(numberIn(json, "port"));
  const bool isHanded = direction == "in" && find(json, "outcome") != nullptr;
  if (!isHanded && (direction == "in" || find(json, "message") == nullptr)) return;
  line.kind = isHanded ? Line::Kind::handed : Line::Kind::sent;
  line.message = numberIn(json, "message");
  if (isHanded && find(json, "run") != nullptr) line.run = numberIn(json, "run");
  if (!isHanded || find(json, "job") == nullptr) return;
  const auto job = std::ranges::find(kBulkJobs, textIn(json, "job"), &BulkJob::name);
  if (job == kBulkJobs.end()) throw WrongLine("job is none");
  line.job = std::size_t(job - kBulkJobs.begin());
}

// The errors of its own library name that which it stands for, of which nothing is read.
void Replay::takeLibrary(EmbeddedEditor& editor, std::span<const std::uint8_t> image) {
  try {
    editor.library().copyFrom(image);
  } catch (const LibraryError& error) {
    throw TranscriptError("the library in it: " + error.reason());
  }
}

std::optional<Library::Bytes> Replay::libraryIn(const Json& json) {
  if (find(json, "library") == nullptr) return std::nullopt;
  std::optional<Library::Bytes> library = parseBase64(textIn(json, "library"));
  if (!library) throw WrongLine("library is not in base64");
  return library;
}

// Brings the editor to where it was when the transcript began.
void Replay::begin(EmbeddedEditor& editor, std::optional<Library::Bytes> library) const {
  try {
    if (library) {
      editor.library().copyFrom(*library);
    } else {
      library = libraryIn(head_);
      if (!library) throw TranscriptError("there is no library in it");
      takeLibrary(editor, *library);
    }
    NameLists names;
    if (find(head_, "names") != nullptr) {
      std::string error = parseNames(textIn(head_, "names"), names);
      if (error.empty()) error = giveNames(std::move(names), editor.tools());
      if (!error.empty()) throw TranscriptError("names: " + error);
    }
  } catch (const WrongLine& wrong) {
    throw TranscriptError(wrong.what());
  }
  if (isSet(head_, "anyDevice")) editor.takeAnyDevice();
  if (isSet(head_, "readsOnly")) editor.library().leaveOutUnread([](const Library::Unread&) {});
}

Replay::Result Replay::run(EmbeddedEditor& editor, std::optional<Library::Bytes> library) {
  Result result;
  result.isCutShort = isCutShort_;
  if (isHeadAltered()) {
    result.difference = altered_;
    return result;
  }
  begin(editor, std::move(library));
  std::optional<EmbeddedEditor::Run> run;
  std::uint64_t runNumber = 0;
  bool isCommitted = false;
  const auto endRun = [&] {
    if (run && isCommitted) run->commit();
    run.reset();
  };
  for (const Line& line : lines_) {
    if (line.kind == Line::Kind::library) {
      endRun();
      if (line.bytes.empty()) {
        result.endsAt = line.number;
        return result;
      }
      takeLibrary(editor, line.bytes);
    }
    if (line.kind != Line::Kind::handed) continue;
    if (run && line.run != runNumber) endRun();
    if (line.run != 0 && !run) {
      run.emplace(editor);
      runNumber = line.run;
      isCommitted = isSet(line.json, "committed");
    }
    ++result.messages;
    if ((result.difference = replay(line, editor, result))) return result;
  }
  endRun();
  result.difference = altered_;
  return result;
}

std::optional<Replay::Difference> Replay::replay(const Line& line, EmbeddedEditor& editor, Result& result) const {
  const bool failsToStore = isSet(line.json, "storeFails");
  editor.library().setRoom(failsToStore ? std::optional(roomOf(line.json)) : std::nullopt);
  std::optional<Record> record;
  try {
    record = line.job ? editor.run(*line.job) : editor.handle(line.bytes, line.port, line.message);
  } catch (const LibraryError& error) {
    return Difference{line.number, "the library fails now: " + error.reason()};
  }
  const Json now = toJson({line.message, nullptr, {}}, line.port, line.bytes, *record);
  for (const char* const key : kCompared) {
    const Json* const then = find(line.json, key);
    const Json* const here = find(now, key);
    if (then == nullptr ? here == nullptr : here != nullptr && *then == *here) continue;
    return Difference{line.number, std::string(key) + ": " + wordsOf(then) + " then, " + wordsOf(here) + " now"};
  }
  return compareSent(line, record->sent, result);
}

std::optional<Replay::Difference> Replay::compareSent(const Line& line, const std::vector<AssistantHost::Sent>& now,
                                                      Result& result) const {
  for (const auto& [answer, index] : line.sent) {
    const Line& sent = lines_[index];
    if (answer == 0 || answer > now.size()) return Difference{sent.number, "it is not sent now"};
    const AssistantHost::Sent& here = now[answer - 1];
    if (sent.port != here.port)
      return Difference{sent.number, "sent on port " + std::to_string(sent.port) + " then, on port " +
                                         std::to_string(here.port) + " now"};
    if (sent.bytes != here.bytes) return Difference{sent.number, describeOther(sent.bytes, here.bytes)};
  }
  // What was sent may stand behind what is not as it was written.
  const bool isCounted = find(line.json, "answers") != nullptr;
  if (!isCounted && (altered_ || isCutShort_)) return std::nullopt;
  const std::uint64_t then = isCounted ? numberIn(line.json, "answers") : line.sent.size();
  if (now.size() != then)
    return Difference{line.number, counted(then, "message") + " sent then, " + std::to_string(now.size()) + " now"};
  result.unwritten += then - line.sent.size();
  return std::nullopt;
}

}  // namespace Editor
