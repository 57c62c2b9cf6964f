#include "wire/Recording.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "midi/Hex.h"
#include "wire/LoopPort.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<std::uint8_t>;

// Sends what a test wrote down, each when it says.
class Script final : public WireEnd {
 public:
  explicit Script(std::vector<std::pair<WireTime, Bytes>> lines) : lines_(std::move(lines)) {}

  void receive(std::span<const std::uint8_t> bytes, WireTime /*now*/) override {
    heard.insert(heard.end(), bytes.begin(), bytes.end());
  }
  void pass(WireTime /*now*/) override {}
  std::optional<WireTime> due() const override { return isDone() ? std::nullopt : std::optional(lines_[line_].first); }
  std::span<const std::uint8_t> toSend(WireTime now) override {
    if (isDone() || now < lines_[line_].first) return {};
    return std::span(lines_[line_].second).subspan(done_);
  }
  void sent(std::size_t count) override {
    done_ += count;
    if (done_ < lines_[line_].second.size()) return;
    done_ = 0;
    ++line_;
  }
  bool isDone() const override { return line_ == lines_.size(); }

  Bytes heard;

 private:
  std::vector<std::pair<WireTime, Bytes>> lines_;
  std::size_t line_ = 0;
  std::size_t done_ = 0;
};

struct Heard final : StreamJoiner::Receiver {
  void message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) override {
    text += formatHex(bytes) + '\n';
  }
  void dropped(std::uint64_t /*offset*/, std::uint64_t count, StreamJoiner::Reason reason) override {
    text += std::to_string(count) + ' ' + describe(reason) + '\n';
  }
  std::string text;
};

bool never() { return false; }

TEST(Recording, HearsUntilNothingHasComeForSoLong) {
  for (const std::size_t chunk : {1U, 2U, 4096U}) {
    Script other({{1s, {0xF0, 0x43, 0xF7}},
                  {4s, {0xF0, 0x44, 0xF8, 0x01}},
                  {6'500ms, {0xF7}},
                  {9s, {0xF8}},
                  {30s, {0xF0, 0x45, 0xF7}}});
    LoopPort port(other, chunk);
    Heard heard;
    Recording recording(heard, 3s);
    run(recording, port, never);
    EXPECT_EQ(heard.text, "F0 43 F7\n1 real-time\nF0 44 01 F7\n") << chunk;
    EXPECT_EQ(port.now(), 9'500ms) << "the clock at 9 s is nothing";
  }
}

TEST(Recording, EndsWhenNothingComesAtAll) {
  Script other({});
  LoopPort port(other);
  Heard heard;
  Recording recording(heard, 2s);
  run(recording, port, never);
  EXPECT_EQ(port.now(), 2s);
  EXPECT_EQ(heard.text, "");
}

TEST(Recording, GoesOnUntilItIsStoppedWhereNothingElseEndsIt) {
  Script other({{1s, {0xF0, 0x43}}, {100h, {0xF7, 0xF0, 0x44}}});
  LoopPort port(other);
  Heard heard;
  Recording recording(heard, std::nullopt);
  run(recording, port, [&] { return other.isDone(); });
  EXPECT_FALSE(recording.isDone());
  EXPECT_EQ(heard.text, "F0 43 F7\n");
  recording.finish();
  EXPECT_EQ(heard.text, "F0 43 F7\n2 message without end\n");
}

TEST(LoopPort, ThatHangsUpIsGoneWhicheverByteItIs) {
  for (std::uint64_t byte = 0; byte < 6; ++byte) {
    Script other({{0s, {1, 2, 3}}, {1s, {4, 5, 6}}});
    LoopPort port(other);
    port.hangUpAt(byte);
    Heard heard;
    Recording recording(heard, 60s);
    try {
      run(recording, port, never);
      ADD_FAILURE() << byte;
    } catch (const PortError& error) {
      EXPECT_EQ(error.kind(), PortError::Kind::gone);
      EXPECT_STREQ(error.what(), "port loop-back: it has hung up");
    }
    recording.finish();
    EXPECT_EQ(heard.text, byte == 0 ? "" : std::to_string(byte) + " outside of any message\n");
  }
}

TEST(LoopPort, SaysSoWhereBothWaitForEver) {
  Script other({});
  LoopPort port(other);
  Heard heard;
  Recording recording(heard, std::nullopt);
  EXPECT_THROW(run(recording, port, never), PortError);
}

// Has no room for what comes behind the first message.
class FullPort final : public Port {
 public:
  const std::string& name() const override { return name_; }
  Pacer::Takes takes() const override { return Pacer::Takes::messages; }
  Pace defaultPace() const override { return kNoPace; }
  WireTime now() override { return now_; }
  std::size_t send(std::span<const std::uint8_t> bytes) override { return bytes.size(); }
  std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool /*wantsToSend*/) override {
    if (dropped_ == 0) {
      dropped_ = 7;
      return message_;
    }
    now_ = until.value_or(now_);
    return {};
  }
  std::uint64_t dropped() const override { return dropped_; }

 private:
  const std::string name_ = "full";
  const Bytes message_{0xF0, 0x01, 0xF7};
  WireTime now_{};
  std::uint64_t dropped_ = 0;
};

TEST(Recording, TellsOnceWhatThePortHadNoRoomFor) {
  FullPort port;
  Heard heard;
  Recording recording(heard, 2s);
  run(recording, port, never);
  EXPECT_EQ(heard.text, "F0 01 F7\n7 came faster than it was taken\n");
}

}  // namespace
}  // namespace Editor
