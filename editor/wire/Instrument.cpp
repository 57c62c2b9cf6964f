#include "wire/Instrument.h"

#include <algorithm>
#include <utility>

namespace Editor {

namespace {

// Whether a dump has the instrument store contents.
bool stores(const Reading& reading) {
  return reading.kind == Reading::Kind::dump &&
         (reading.role == Role::trigger || (reading.role == Role::footer && !editBufferOf(reading.address->mid)));
}

}  // namespace

void Instrument::receive(std::span<const std::uint8_t> bytes, WireTime now) {
  now_ = now;
  if (!isStopped_) joiner_.feed(bytes);
}

void Instrument::lost(std::uint64_t count, WireTime now) {
  now_ = now;
  joiner_.lose(count);
}

// What nobody takes is lost, as on a cable that leads nowhere.
void Instrument::pass(WireTime now) {
  constexpr WireTime kPatience = std::chrono::seconds(2);
  isNobodyThere_ = offeredSince_ && now > *offeredSince_ + kPatience;
  if (isNobodyThere_) pacer_.forgetWaiting();
}

std::span<const std::uint8_t> Instrument::toSend(WireTime now) {
  const std::span<const std::uint8_t> bytes = pacer_.take(now);
  if (!bytes.empty()) observer_.goesOut(pacer_.answer());
  offeredSince_ = bytes.empty() ? std::nullopt : std::optional(offeredSince_.value_or(now));
  return bytes;
}

void Instrument::sent(std::size_t count) {
  if (count > 0) offeredSince_.reset();
  pacer_.sent(count);
}

void Instrument::stop() {
  isStopped_ = true;
  pacer_.forgetWaiting();
}

// What a fault has left of a message may be none any more, or several.
void Instrument::message(std::span<const std::uint8_t> bytes, std::uint64_t offset) {
  const std::vector<std::uint8_t> left = faults_.receive(bytes);
  if (std::ranges::equal(left, bytes)) return handle(bytes, offset);
  observer_.spoiled(bytes);
  class Rest final : public StreamJoiner::Receiver {
   public:
    explicit Rest(Instrument& instrument) : instrument_(instrument) {}
    void message(std::span<const std::uint8_t> bytes, std::uint64_t offset) override {
      instrument_.handle(bytes, offset);
    }
    void dropped(std::uint64_t offset, std::uint64_t count, StreamJoiner::Reason reason) override {
      instrument_.dropped(offset, count, reason);
    }

   private:
    Instrument& instrument_;
  } rest(*this);
  StreamJoiner joiner(rest);
  joiner.skipTo(offset);
  joiner.feed(left);
  joiner.finish();
}

void Instrument::handle(std::span<const std::uint8_t> message, std::uint64_t offset) {
  const Reading reading = readMessage(message);
  const bool mayStore = stores(reading);
  const bool isFull = mayStore && faults_.isFull();
  editor_.library().setRoom(isFull ? std::optional<std::size_t>(0) : std::nullopt);
  observer_.handling(offset);
  const Record record = editor_.handle(reading, message, options_.port, ++number_);
  if (mayStore && record.outcome == Outcome::stored) faults_.hasStored();
  std::vector<Pacer::Message> answer;
  std::uint64_t sentSoFar = 0;
  for (const AssistantHost::Sent& sent : record.sent) {
    ++sentSoFar;
    if (options_.echoes || !std::ranges::equal(sent.bytes, message))
      answer.push_back({.bytes = sent.bytes, .answer = Pacer::Answer{number_, sentSoFar}});
  }
  std::vector<Pacer::Message> leaving;
  if (!faults_.isDeaf()) leaving = faults_.send(std::move(answer));
  observer_.handled(number_, offset, message, record);
  for (Pacer::Message& one : leaving)
    if (one.bytes.size() > options_.longestMessage)
      observer_.tooLong(number_, one.bytes.size());
    else
      pacer_.push(std::move(one), now_);
}

}  // namespace Editor
