#pragma once

#include <memory>
#include <utility>

#include "midi/StreamJoiner.h"
#include "wire/Port.h"

namespace Editor {

// Hears the messages at a port. It throws nothing.
class PortListener {
 public:
  PortListener() = default;
  PortListener(const PortListener&) = delete;
  PortListener& operator=(const PortListener&) = delete;
  virtual ~PortListener() = default;

  // A whole message, when its last byte has come, or has gone out.
  virtual void arrived(std::span<const std::uint8_t> message) = 0;
  virtual void left(std::span<const std::uint8_t> message) = 0;
};

// A port as it is, but that somebody hears what passes it. What is no whole message is not told.
class ListenedPort final : public Port {
 public:
  // The listener outlives this object.
  ListenedPort(std::unique_ptr<Port> port, PortListener& listener)
      : port_(std::move(port)), arrived_(listener, &PortListener::arrived), left_(listener, &PortListener::left) {}

  const std::string& name() const override { return port_->name(); }
  Pacer::Takes takes() const override { return port_->takes(); }
  Pace defaultPace() const override { return port_->defaultPace(); }
  std::size_t longestMessage() const override { return port_->longestMessage(); }
  WireTime now() override { return port_->now(); }
  std::uint64_t dropped() const override { return port_->dropped(); }
  void discard() override {
    port_->discard();
    dropped_ = 0;
  }
  void drain() override { port_->drain(); }

  std::size_t send(std::span<const std::uint8_t> bytes) override {
    const std::size_t count = port_->send(bytes);
    left_.joiner.feed(bytes.first(count));
    return count;
  }
  std::span<const std::uint8_t> wait(std::optional<WireTime> until, bool wantsToSend) override {
    const std::span<const std::uint8_t> bytes = port_->wait(until, wantsToSend);
    arrived_.joiner.feed(bytes);
    if (const std::uint64_t count = port_->dropped() - std::exchange(dropped_, port_->dropped()); count > 0)
      arrived_.joiner.lose(count);
    return bytes;
  }

 private:
  using Told = void (PortListener::*)(std::span<const std::uint8_t>);

  struct Direction final : StreamJoiner::Receiver {
    Direction(PortListener& listener, Told told) : listener_(listener), told_(told) {}
    void message(std::span<const std::uint8_t> bytes, std::uint64_t /*offset*/) override { (listener_.*told_)(bytes); }
    void dropped(std::uint64_t /*offset*/, std::uint64_t /*count*/, StreamJoiner::Reason /*reason*/) override {}

    PortListener& listener_;
    const Told told_;
    StreamJoiner joiner{*this, kLongestMessage};
  };

  const std::unique_ptr<Port> port_;
  std::uint64_t dropped_ = 0;
  Direction arrived_;
  Direction left_;
};

}  // namespace Editor
