#include "transcript/Transcript.h"

#include <algorithm>
#include <utility>

#include "midi/Base64.h"
#include "midi/Hex.h"
#include "models/ModelJson.h"

namespace Editor {

namespace {

// So many messages may still go out when one behind them has.
constexpr std::size_t kMostPassed = 64;

}  // namespace

void Transcript::writeHead(Library* library) {
  if (std::exchange(hasHead_, true)) return;
  const bool isKept = library != nullptr && options_.withLibrary;
  write({{"transcript", 1},
         {"sealed", true},
         {"library", isKept ? Json(formatBase64(library->image())) : Json(nullptr)},
         {"libraryName", library != nullptr ? Json(library->file().string()) : Json(nullptr)},
         {"names", options_.names ? Json(*options_.names) : Json(nullptr)},
         {"verb", options_.verb},
         {"wire", options_.port.empty() ? Json(nullptr) : Json(options_.port)},
         {"anyDevice", options_.anyDevice},
         {"readsOnly", options_.readsOnly}});
}

void Transcript::found(Library& library) {
  if (!hasHead_) return writeHead(&library);
  const Json image{{"library", options_.withLibrary ? Json(formatBase64(library.image())) : Json(nullptr)}};
  lines_.insert(handedTo_, {image, {}});
  flush();
}

Transcript::Json Transcript::lineOf(const char* direction, BDA::DevicePortNum port,
                                    std::span<const std::uint8_t> message) const {
  return {{"direction", direction},
          {"time", (clock_() - begin_).count()},
          {"port", unsigned(port)},
          {"bytes", formatHex(message)}};
}

void Transcript::arrived(std::span<const std::uint8_t> message) {
  if (options_.hearsHanded) return;
  lines_.push_back({lineOf("in", BDA::DevicePort_Main, message), {}});
  if (options_.handsOnLater) lines_.back().arrived.assign(message.begin(), message.end());
  flush();
}

void Transcript::keptBack(std::span<const std::uint8_t> message) {
  lines_.push_back({lineOf("in", BDA::DevicePort_Main, message), {}});
  lines_.back().json["passedOn"] = false;
  flush();
}

void Transcript::left(std::span<const std::uint8_t> message) {
  Json line = lineOf("out", BDA::DevicePort_Main, message);
  const auto known = std::ranges::find_if(outgoing_, [&](const Outgoing& one) {
    return (!next_ || one.answer == *next_) && std::ranges::equal(one.sent.bytes, message);
  });
  if (known != outgoing_.end()) {
    line["port"] = unsigned(known->sent.port);
    line["message"] = known->answer.message;
    line["answer"] = known->answer.number;
    const auto before = std::size_t(known - outgoing_.begin());
    outgoing_.erase(known);
    leaveBehind(before > kMostPassed ? before - kMostPassed : 0);
  }
  lines_.push_back({std::move(line), {}});
  flush();
}

// In the order in which they came, but for one that came twice.
Transcript::Lines::iterator Transcript::findArrived(std::span<const std::uint8_t> message) {
  const auto isIt = [&](const Line& line) { return std::ranges::equal(line.arrived, message); };
  const auto found = std::find_if(handedTo_, lines_.end(), isIt);
  return found != lines_.end() ? found : std::find_if(lines_.begin(), lines_.end(), isIt);
}

void Transcript::handed(std::uint64_t number, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
                        const Record* record) {
  auto line = findArrived(message);
  if (line == lines_.end()) line = lines_.insert(handedTo_, {lineOf("in", port, message), {}});
  line->arrived.clear();
  line->isOfRun = isInRun_;
  handedTo_ = std::next(line);
  origin_.message = number;
  if (record != nullptr) {
    const Json trace = toJson(origin_, port, message, *record);
    for (const auto& [key, value] : trace.items())
      if (key != "in" && key != "sent") line->json[key] = value;
  }
  if (record == nullptr || record->storeFails) line->json["storeFails"] = true;
  if (isInRun_) line->json["run"] = runs_;
  if (job_) line->json["job"] = kBulkJobs.at(*job_).name;
  origin_ = {};
  if (record != nullptr) {
    if (!record->sent.empty()) line->json["answers"] = record->sent.size();
    tell(*record, number, message);
  }
  flush();
}

void Transcript::ran(std::size_t job, std::span<const std::uint8_t> request, const Record* record) {
  job_ = job;
  handed(1, BDA::DevicePort_Main, request, record);
  job_.reset();
}

void Transcript::tell(const Record& record, std::uint64_t number, std::span<const std::uint8_t> message) {
  std::uint64_t answer = 0;
  for (const AssistantHost::Sent& sent : record.sent) {
    ++answer;
    if (options_.sent == Sent::later && (options_.echoes || !std::ranges::equal(sent.bytes, message))) {
      outgoing_.push_back({{number, answer}, sent});
      continue;
    }
    Json line = lineOf("out", sent.port, sent.bytes);
    line["message"] = number;
    line["answer"] = answer;
    if (options_.sent != Sent::atOnce) line["passedOn"] = false;
    lines_.insert(handedTo_, {std::move(line), {}});
  }
}

void Transcript::runBegins() {
  isInRun_ = true;
  ++runs_;
}

void Transcript::runEnds(bool isCommitted) {
  isInRun_ = false;
  for (Line& line : lines_)
    if (std::exchange(line.isOfRun, false)) line.json["committed"] = isCommitted;
  flush();
}

void Transcript::flush() {
  if (isInRun_ || options_.handsOnLater) return;
  settle();
}

void Transcript::settle() {
  for (const Line& line : lines_) write(line.json);
  lines_.clear();
  handedTo_ = lines_.end();
}

// The first of what has not gone out will not.
void Transcript::leaveBehind(std::size_t count) {
  for (; count > 0; --count) {
    const Outgoing& one = outgoing_.front();
    Json line = lineOf("out", one.sent.port, one.sent.bytes);
    line["message"] = one.answer.message;
    line["answer"] = one.answer.number;
    line["passedOn"] = false;
    lines_.push_back({std::move(line), {}});
    outgoing_.pop_front();
  }
}

void Transcript::finish() {
  leaveBehind(outgoing_.size());
  settle();
  writeHead(nullptr);
}

void Transcript::write(const Json& json) {
  writeHead(nullptr);
  write_(seal_.close(json));
}

}  // namespace Editor
