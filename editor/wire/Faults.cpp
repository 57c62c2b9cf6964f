#include "wire/Faults.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <utility>

#include "messages/Nearest.h"
#include "messages/Text.h"

namespace Editor {

namespace {

using Kind = Fault::Kind;

struct FaultWord {
  const char* name;
  Kind kind;
  bool canBeIncoming;
  std::optional<std::uint64_t> amount;  // without one; nothing: it has none
};
constexpr std::array kWords{
    FaultWord{"drop", Kind::drop, true, {}},        FaultWord{"repeat", Kind::repeat, false, {}},
    FaultWord{"flip", Kind::flip, true, {}},        FaultWord{"cut", Kind::cut, true, {}},
    FaultWord{"clock", Kind::clock, false, {}},     FaultWord{"delay", Kind::delay, false, 100},
    FaultWord{"stall", Kind::stall, false, 1'000},  FaultWord{"slow", Kind::slow, false, 300},
    FaultWord{"reorder", Kind::reorder, false, {}}, FaultWord{"wrong-device", Kind::wrongDevice, false, {}},
    FaultWord{"deaf", Kind::deaf, false, 0},        FaultWord{"chatter", Kind::chatter, false, {}},
    FaultWord{"full", Kind::full, false, 0},
};
constexpr std::string_view kIncoming = "in-";

[[noreturn]] void fail(std::string_view fault, const std::string& why) {
  throw std::invalid_argument(fmt::format("fault \"{}\": {}", escape(fault), why));
}

[[noreturn]] void failToName(std::string_view fault, std::string_view name) {
  if (name.empty()) fail(fault, "expected a name, as in drop=1%,delay=0.05:300");
  const std::string meant = didYouMean(name, faultNames());
  fail(fault, "there is none of that name" +
                  (meant.empty() ? fmt::format(": there are {}", fmt::join(faultNames(), ", ")) : meant));
}

Fault parseFault(std::string_view text) {
  const std::size_t equals = text.find('=');
  std::string_view name = text.substr(0, equals);
  const auto word = std::ranges::find_if(kWords, [&](const FaultWord& one) {
    return name == one.name || (one.canBeIncoming && name == std::string(kIncoming) + one.name);
  });
  if (word == kWords.end()) failToName(text, name);
  if (equals == std::string_view::npos) fail(text, "expected its rate behind it, as in drop=0.01 or drop=1%");
  const std::string_view values = text.substr(equals + 1);
  const std::size_t colon = values.find(':');
  std::string_view rate = values.substr(0, colon);
  const bool isPercent = rate.ends_with('%');
  if (isPercent) rate.remove_suffix(1);
  Fault fault{word->kind, name != word->name};
  const auto [end, error] = std::from_chars(rate.data(), rate.data() + rate.size(), fault.rate);
  if (isPercent) fault.rate /= 100;
  if (error != std::errc() || end != rate.data() + rate.size() || !(fault.rate >= 0 && fault.rate <= 1))
    fail(text, "expected a rate from 0 to 1, or from 0% to 100%");
  fault.amount = word->amount.value_or(0);
  if (colon == std::string_view::npos) return fault;
  if (!word->amount) fail(text, "it has a rate only");
  const std::string_view amount = values.substr(colon + 1);
  const auto [last, wrong] = std::from_chars(amount.data(), amount.data() + amount.size(), fault.amount);
  constexpr std::uint64_t kMost = 1'000'000'000;
  const bool isPace = word->kind == Kind::slow;
  if (wrong != std::errc() || last != amount.data() + amount.size() || fault.amount > kMost ||
      (isPace && fault.amount == 0))
    fail(text, fmt::format("expected a whole number from {} to {} behind the colon", isPace ? 1 : 0, kMost));
  return fault;
}

}  // namespace

std::vector<Fault> parseFaults(std::string_view text) {
  std::vector<Fault> faults;
  while (true) {
    const std::size_t comma = text.find(',');
    const Fault fault = parseFault(text.substr(0, comma));
    if (std::ranges::any_of(
            faults, [&](const Fault& one) { return one.kind == fault.kind && one.isIncoming == fault.isIncoming; }))
      fail(text.substr(0, comma), "it is there twice");
    faults.push_back(fault);
    if (comma == std::string_view::npos) return faults;
    text.remove_prefix(comma + 1);
  }
}

std::vector<std::string> faultNames() {
  std::vector<std::string> names;
  names.reserve(2 * kWords.size());
  for (const FaultWord& word : kWords) names.emplace_back(word.name);
  for (const FaultWord& word : kWords)
    if (word.canBeIncoming) names.push_back(std::string(kIncoming) + word.name);
  return names;
}

Faults::Faults(std::vector<Fault> faults, std::uint64_t seed) : faults_(std::move(faults)), random_(seed) {
  std::ranges::sort(faults_, {}, [](const Fault& fault) { return std::pair(fault.kind, fault.isIncoming); });
}

bool Faults::happens(double rate) {
  constexpr double kUnit = 1.0 / double(1ULL << 53U);
  return double(random_() >> 11U) * kUnit < rate;
}

std::uint64_t Faults::below(std::uint64_t count) { return random_() % count; }

bool Faults::happensBehind(Kind kind, std::uint64_t count) {
  return std::ranges::any_of(
      faults_, [&](const Fault& fault) { return fault.kind == kind && count >= fault.amount && happens(fault.rate); });
}

std::vector<Pacer::Message> Faults::send(std::vector<Pacer::Message> answer) {
  for (const Fault& fault : faults_) {
    if (fault.isIncoming || fault.kind == Kind::deaf || fault.kind == Kind::full) continue;
    // From the last on: what a fault adds or takes away is not asked for again.
    for (std::size_t at = answer.size(); at-- > 0;)
      if (happens(fault.rate)) send(fault, answer, at);
  }
  return answer;
}

void Faults::send(const Fault& fault, std::vector<Pacer::Message>& messages, std::size_t at) {
  const auto message = messages.begin() + std::ptrdiff_t(at);
  switch (fault.kind) {
    case Kind::drop:
      messages.erase(message);
      break;
    case Kind::repeat:
      messages.insert(message, Pacer::Message(*message));
      break;
    case Kind::delay:
      message->delay += std::chrono::milliseconds(fault.amount);
      break;
    case Kind::stall:
      if (message->bytes.size() > 1)
        message->stall = {1 + std::size_t(below(message->bytes.size() - 1)), std::chrono::milliseconds(fault.amount)};
      break;
    case Kind::slow:
      message->pace = Pace{fault.amount};
      break;
    case Kind::reorder:
      if (at + 1 < messages.size()) std::iter_swap(message, message + 1);
      break;
    case Kind::chatter:
      messages.insert(message, Pacer::Message{somethingElse()});
      break;
    default:
      spoil(fault.kind, message->bytes);
  }
}

std::vector<std::uint8_t> Faults::receive(std::span<const std::uint8_t> message) {
  std::vector<std::uint8_t> bytes(message.begin(), message.end());
  for (const Fault& fault : faults_) {
    if (!fault.isIncoming || bytes.empty() || !happens(fault.rate)) continue;
    if (fault.kind == Kind::drop) bytes.clear();
    if (fault.kind == Kind::flip || fault.kind == Kind::cut) spoil(fault.kind, bytes);
  }
  return bytes;
}

void Faults::spoil(Kind kind, std::vector<std::uint8_t>& message) {
  constexpr std::size_t kDevice = 2;
  constexpr std::array<std::uint8_t, 2> kRealTime{0xF8, 0xFE};
  if (message.size() <= kDevice) return;
  switch (kind) {
    case Kind::flip:
      message[std::size_t(below(message.size()))] ^= std::uint8_t(1U << below(8));
      break;
    case Kind::cut:
      message.resize(std::size_t(1 + below(message.size() - 1)));
      break;
    case Kind::clock:
      message.insert(message.begin() + std::ptrdiff_t(1 + below(message.size() - 1)),
                     kRealTime[std::size_t(below(kRealTime.size()))]);
      break;
    case Kind::wrongDevice:
      message[kDevice] = std::uint8_t((message[kDevice] & 0xF0U) | ((message[kDevice] + 1 + below(15)) & 0x0FU));
      break;
    default:
      break;
  }
}

// A note, a controller, a message of another maker.
std::vector<std::uint8_t> Faults::somethingElse() {
  const std::array<std::vector<std::uint8_t>, 3> kOthers{
      {{0x90, 0x3C, 0x40}, {0xB0, 0x01, 0x20}, {0xF0, 0x7E, 0x7F, 0x06, 0x01, 0xF7}}};
  return kOthers[std::size_t(below(kOthers.size()))];
}

}  // namespace Editor
