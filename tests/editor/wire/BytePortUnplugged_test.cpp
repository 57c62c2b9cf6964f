// Ports whose other end goes away after any byte, and ports that fail whenever they are used.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "editor/contents/TemporaryLibrary.h"
#include "editor/wire/WireFixture.h"
#include "wire/BytePort.h"
#include "wire/Fetch.h"
#include "wire/Intake.h"
#include "wire/Recording.h"
#include "wire/Send.h"

namespace Editor {
namespace {

using namespace std::chrono_literals;
using Direction = BytePort::Direction;

constexpr BulkAddress kVoice{0x0E, 0x0A, 0x05};
constexpr BulkAddress kRemote{0x0E, 0x60, 0x00};
constexpr BulkAddress kPerformance{0x0E, 0x40, 0x00};

bool never() { return false; }

// Whoever opens them waits for nobody meanwhile.
class FifosInUse {
 public:
  explicit FifosInUse(const std::string& name) {
    for (const std::string& path : BytePort::pathsOf(name))
      if (const int fifo = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC); fifo >= 0) fifos_.push_back(fifo);
  }
  FifosInUse(const FifosInUse&) = delete;
  FifosInUse& operator=(const FifosInUse&) = delete;
  ~FifosInUse() {
    for (const int fifo : fifos_) ::close(fifo);
  }

 private:
  std::vector<int> fifos_;
};

// A port of this machine and who is at its other end, in one thread. When so many bytes have passed, in both directions
// together, that end is closed.
class Unplugged final : public Port {
 public:
  // The names of both ends; that of the second empty: a pseudo terminal says it.
  Unplugged(const std::pair<std::string, std::string>& names, WireEnd& other, std::uint64_t bytes)
      : Unplugged(names, other, bytes, FifosInUse(names.first)) {}

  const std::string& name() const override { return near_.name(); }
  Pacer::Takes takes() const override { return near_.takes(); }
  Pace defaultPace() const override { return near_.defaultPace(); }
  WireTime now() override { return near_.now(); }

  std::size_t send(std::span<const std::uint8_t> bytes) override {
    if (left_ == 0) far_.reset();
    const std::size_t count = near_.send(far_ ? first(bytes) : bytes);
    left_ -= count;
    for (std::size_t arrived = 0; arrived < count;) {
      const std::span<const std::uint8_t> some = far_->wait(now() + 10s, false);
      EXPECT_FALSE(some.empty());
      other_.receive(some, now());
      arrived += some.size();
    }
    return count;
  }

  std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool wantsToSend) override {
    if (left_ == 0 && underWay_ == 0) far_.reset();
    if (!far_) return near_.wait(until, wantsToSend);
    if (underWay_ == 0) {
      const std::span<const std::uint8_t> bytes = first(other_.toSend(now()));
      const std::size_t count = bytes.empty() ? 0 : far_->send(bytes);
      if (count > 0) other_.sent(count);
      left_ -= count;
      underWay_ += count;
    }
    if (underWay_ == 0) return near_.wait(until, wantsToSend);
    const std::span<const std::uint8_t> arrived = near_.wait(now() + 10s, false);
    EXPECT_FALSE(arrived.empty());
    underWay_ -= arrived.size();
    return arrived;
  }

  void drain() override { near_.drain(); }

 private:
  Unplugged(const std::pair<std::string, std::string>& names, WireEnd& other, std::uint64_t bytes, const FifosInUse&)
      : far_(std::in_place, names.first, Direction::both),
        near_(names.second.empty() ? far_->name() : names.second, Direction::both),
        other_(other),
        left_(bytes) {}

  std::span<const std::uint8_t> first(std::span<const std::uint8_t> bytes) const {
    return bytes.first(std::size_t(std::min<std::uint64_t>(bytes.size(), left_)));
  }

  std::optional<BytePort> far_;
  BytePort near_;
  WireEnd& other_;
  std::uint64_t left_;
  std::size_t underWay_ = 0;  // to this end
};

class BytePortUnplugged : public testing::Test {
 protected:
  BytePortUnplugged() {
    std::signal(SIGPIPE, SIG_IGN);
    for (const char* const name : {"up", "down"}) EXPECT_EQ(::mkfifo((folder / name).c_str(), 0600), 0);
    const std::string up = folder / "up";
    const std::string down = folder / "down";
    ends = {{"pty:", ""}, {up + "," + down, down + "," + up}};
    receive(source, unitOf(kVoice, BDA::List::normalVoice, 1));
    receive(source, unitOf(kRemote, BDA::List::remote, 1));
    receive(source, unitOf(kPerformance, BDA::List::performance, 1));
  }

  Pacer pacer() const { return {kNoPace, {}, Pacer::Takes::bytes}; }

  // Of a fetch into a library: what had come stays, what is open is lost, and told so.
  void fetchAndUnplug(const std::vector<BulkAddress>& units, std::uint64_t step) {
    for (const auto& names : ends) {
      bool isDone = false;
      for (std::uint64_t byte = 0; !isDone; byte += step) {
        SCOPED_TRACE(names.first + ", unplugged at byte " + std::to_string(byte));
        EmbeddedEditor target;
        Intake intake(target);
        std::vector<Fetched> told;
        Fetch end(units, {}, pacer(), [&](Fetched fetched) {
          if (fetched.state == Fetched::State::whole) {
            EXPECT_EQ(intake.store({fetched.messages}).state, Intake::Result::State::stored);
          }
          told.push_back(std::move(fetched));
        });
        Instrument instrument(source, {}, pacer(), nobody);
        Unplugged port(names, instrument, byte);
        isDone = !isGone([&] { run(end, port, never); });
        const std::size_t whole = told.size();
        end.stop();
        ASSERT_EQ(told.size(), isDone ? whole : whole + 1);
        ASSERT_EQ(isDone, whole == units.size());
        for (std::size_t unit = 0; unit < told.size(); ++unit)
          ASSERT_EQ(told[unit].state, unit < whole ? Fetched::State::whole : Fetched::State::lost);
        ASSERT_EQ(target.library().contents().size(), whole);
        for (std::size_t unit = 0; unit < whole; ++unit)
          ASSERT_EQ(answerOf(target, units[unit]), answerOf(source, units[unit]));
      }
    }
  }

  // Of a send: the instrument has what went out to its last byte, and what is open changed nothing there.
  void sendAndUnplug(const std::vector<BulkAddress>& addresses, std::uint64_t step) {
    std::vector<Send::Unit> units;
    for (const BulkAddress address : addresses) units.push_back({address, answerOf(source, address), {}});
    for (const auto& names : ends) {
      bool isDone = false;
      for (std::uint64_t byte = 0; !isDone; byte += step) {
        SCOPED_TRACE(names.first + ", unplugged at byte " + std::to_string(byte));
        EmbeddedEditor target;
        Instrument instrument(target, {}, pacer(), nobody);
        std::size_t told = 0;
        Send end(units, {}, pacer(), [&](const SentUnit& /*unit*/) { ++told; });
        Unplugged port(names, instrument, byte);
        isDone = !isGone([&] { run(end, port, never); });
        ASSERT_EQ(isDone, told == units.size());
        // The last byte may have passed without anybody there to say so.
        const std::size_t there = target.library().contents().size();
        ASSERT_TRUE(there == told || (!isDone && there == told + 1)) << there << ", told " << told;
        for (std::size_t unit = 0; unit < there; ++unit)
          ASSERT_EQ(answerOf(target, addresses[unit]), units[unit].messages);
      }
    }
  }

  template <typename Action>
  static bool isGone(Action action) {
    try {
      action();
      return false;
    } catch (const PortError& error) {
      EXPECT_EQ(error.kind(), PortError::Kind::gone) << error.what();
      return true;
    }
  }

  TemporaryDirectory folder;
  std::vector<std::pair<std::string, std::string>> ends;
  EmbeddedEditor source;
  NobodyIsTold nobody;
};

TEST_F(BytePortUnplugged, AFetchKeepsWhatCameWhicheverByteWasTheLast) {
  fetchAndUnplug({kRemote}, 1);
  fetchAndUnplug({kRemote, kPerformance, kVoice}, 97);
}

TEST_F(BytePortUnplugged, ASendLeavesNoHalfUnitWhicheverByteWasTheLast) {
  sendAndUnplug({kRemote}, 1);
  sendAndUnplug({kRemote, kPerformance, kVoice}, 97);
}

// Fails when it is used the `use`th time, from 0.
class Failing final : public Port {
 public:
  Failing(Port& port, std::size_t use, PortError::Kind kind) : port_(port), left_(use), kind_(kind) {}

  const std::string& name() const override { return port_.name(); }
  Pacer::Takes takes() const override { return port_.takes(); }
  Pace defaultPace() const override { return port_.defaultPace(); }
  WireTime now() override { return port_.now(); }
  std::size_t send(std::span<const std::uint8_t> bytes) override {
    use();
    return port_.send(bytes);
  }
  std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool wantsToSend) override {
    use();
    return port_.wait(until, wantsToSend);
  }
  void drain() override {
    use();
    port_.drain();
  }

 private:
  void use() {
    if (left_-- == 0) throw PortError(kind_, "port: it fails");
  }

  Port& port_;
  std::size_t left_;
  const PortError::Kind kind_;
};

// Calls visit(runs) with a loop-back port that fails at its first use, its second and so on, until it has not failed:
// runs(end) lets an end go on there, with what is made at the other one, and says whether the port failed, as visit
// does. How often it did.
template <typename MakeOther, typename Visit>
std::size_t forEachUse(MakeOther makeOther, Visit visit) {
  for (std::size_t use = 0;; ++use) {
    SCOPED_TRACE("use " + std::to_string(use));
    const auto other = makeOther();
    LoopPort loop(*other);
    const PortError::Kind kind = use % 2 == 0 ? PortError::Kind::gone : PortError::Kind::failed;
    Failing port(loop, use, kind);
    const bool hasFailed = visit([&](WireEnd& end) {
      try {
        run(end, port, never);
        return false;
      } catch (const PortError& error) {
        EXPECT_EQ(error.kind(), kind);
        return true;
      }
    });
    if (!hasFailed || testing::Test::HasFailure()) return use;
  }
}

TEST_F(BytePortUnplugged, AFetchHoldsWheneverItsPortFails) {
  const auto instrument = [&] { return std::make_unique<Instrument>(source, Instrument::Options{}, pacer(), nobody); };
  const std::size_t uses = forEachUse(instrument, [&](const auto& runs) {
    std::vector<Fetched::State> told;
    Fetch end({kRemote, kVoice}, {}, pacer(), [&](const Fetched& fetched) { told.push_back(fetched.state); });
    const bool hasFailed = runs(end);
    const std::size_t whole = told.size();
    end.stop();
    EXPECT_EQ(end.isDone(), end.toSend(std::chrono::hours(1)).empty())
        << "a request that has begun goes out to its end";
    EXPECT_EQ(told.size(), whole == 2 ? 2 : whole + 1);
    for (std::size_t unit = 0; unit < told.size(); ++unit)
      EXPECT_EQ(told[unit], unit < whole ? Fetched::State::whole : Fetched::State::lost);
    return hasFailed;
  });
  EXPECT_GT(uses, 25u) << "one for each message at least";
}

TEST_F(BytePortUnplugged, ASendHoldsWheneverItsPortFails) {
  const std::vector<Send::Unit> units{{kRemote, answerOf(source, kRemote), {}}, {kVoice, answerOf(source, kVoice), {}}};
  std::optional<EmbeddedEditor> target;
  const auto instrument = [&] {
    target.emplace();
    return std::make_unique<Instrument>(*target, Instrument::Options{}, pacer(), nobody);
  };
  const std::size_t uses = forEachUse(instrument, [&](const auto& runs) {
    std::vector<SentUnit::State> told;
    Send end(units, {.verifies = true, .terms = {}}, pacer(),
             [&](const SentUnit& unit) { told.push_back(unit.state); });
    const bool hasFailed = runs(end);
    // At the end all are told together; before nothing is.
    EXPECT_EQ(told, std::vector(end.isDone() ? 2 : 0, SentUnit::State::equal));
    for (const Send::Unit& unit : units)
      if (target->library().content(contentOfHeader({unit.asked->mid, unit.asked->lo}).value())) {
        EXPECT_EQ(answerOf(*target, *unit.asked), unit.messages);
      }
    return hasFailed;
  });
  EXPECT_GT(uses, 50u);
}

TEST_F(BytePortUnplugged, ARecordingHoldsWheneverItsPortFails) {
  struct Counting final : StreamJoiner::Receiver {
    void message(std::span<const std::uint8_t> /*bytes*/, std::uint64_t /*offset*/) override { ++messages; }
    void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason /*reason*/) override {}
    std::size_t messages = 0;
  };
  const auto instrument = [&] {
    auto made = std::make_unique<Instrument>(source, Instrument::Options{}, pacer(), nobody);
    made->receive(source.requestFor(kVoice), 0s);
    return made;
  };
  std::size_t before = 0;
  const std::size_t uses = forEachUse(instrument, [&](const auto& runs) {
    Counting counting;
    Recording end(counting, 1s);
    const bool hasFailed = runs(end);
    end.finish();
    EXPECT_GE(counting.messages, before) << "each use that went well brought one";
    before = counting.messages;
    return hasFailed;
  });
  EXPECT_EQ(before, 26u);
  EXPECT_GE(uses, 26u);
}

TEST_F(BytePortUnplugged, WhatIsOpenIsClosedWhenTheNextCannotBeOpened) {
  const auto isOpen = [](int descriptor) { return ::fcntl(descriptor, F_GETFD) != -1; };
  const auto countOpen = [&] {
    int count = 0;
    for (int descriptor = 0; descriptor < 1'000; ++descriptor) count += isOpen(descriptor) ? 1 : 0;
    return count;
  };
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  for (const std::string& name : {ends[0].first, ends[1].first}) {
    for (std::size_t opens = 0; opens < 2; ++opens) {
      SCOPED_TRACE(name + " after " + std::to_string(opens));
      const int openBefore = countOpen();
      int limit = 0;  // the number that would be the first too many
      for (std::size_t left = opens + 1; left > 0; ++limit) left -= isOpen(limit) ? 0 : 1;
      rlimit few = before;
      few.rlim_cur = rlim_t(limit - 1);
      ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
      std::string why;
      try {
        const BytePort port(name, Direction::both);
      } catch (const PortError& error) {
        // A sanitizer that looks at what a virtual call is made on needs a descriptor for that.
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
        EXPECT_EQ(error.kind(), PortError::Kind::cannotOpen);
        why = error.what();
      }
      ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
      EXPECT_NE(why.find("Too many open files"), std::string::npos) << why;
      EXPECT_EQ(countOpen(), openBefore);
    }
  }
}

}  // namespace
}  // namespace Editor
