#pragma once

// Files of captured messages, message by message, and what is salvaged of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "editor/messages/BulkMessages.h"
#include "salvage/Salvage.h"

inline constexpr Editor::BulkAddress kVoice6{0x0E, 0x0A, 0x05};
inline constexpr Editor::BulkAddress kVoice7{0x0E, 0x0A, 0x06};
inline constexpr Editor::BulkAddress kElement{0x41, 0x02, 0x00};
inline constexpr Editor::BulkAddress kCommon{0x00, 0x00, 0x00};

// The messages of a unit, block by block.
struct Unit {
  explicit Unit(Editor::BulkAddress header, std::uint8_t value = 0, BDA::List list = BDA::List::normalVoice) {
    messages.push_back(blockDump(header));
    for (const Editor::BulkAddress block : blocksOf(list)) messages.push_back(blockDump(block, value));
    messages.push_back(blockDump(footerOf(header)));
  }
  Unit without(Editor::BulkAddress address) const {
    Unit unit = *this;
    std::erase_if(unit.messages, [&](const Bytes& one) { return Editor::readMessage(one).address == address; });
    return unit;
  }
  // The blocks from the `first`th to before the `last`th, 0 is the header.
  Unit part(std::size_t first, std::size_t last) const {
    Unit unit = *this;
    unit.messages.assign(messages.begin() + std::ptrdiff_t(first), messages.begin() + std::ptrdiff_t(last));
    return unit;
  }
  Unit with(Editor::BulkAddress address, const Bytes& instead) const {
    Unit unit = *this;
    for (Bytes& one : unit.messages)
      if (Editor::readMessage(one).address == address) one = instead;
    return unit;
  }
  std::vector<Bytes> messages;
};

class Salvaging : public testing::Test {
 public:
  Salvaging& file() {
    ++source_;
    return *this;
  }
  Salvaging& send(const Bytes& message) {
    salvage().add({std::size_t(source_), ++number_, 0, message, std::nullopt});
    return *this;
  }
  Salvaging& send(const Unit& unit) {
    for (const Bytes& message : unit.messages) send(message);
    return *this;
  }
  Salvaging& cutShort(const Bytes& message, std::size_t length) {
    salvage().addFragment(std::size_t(source_), std::span(message).first(length));
    return *this;
  }
  Salvaging& loose() {
    salvage().addLoose(std::size_t(source_));
    return *this;
  }
  Salvaging& anew() {
    salvage_.reset();
    result_.reset();
    source_ = -1;
    return *this;
  }
  const Editor::SalvageResult& result() {
    if (!result_) result_ = salvage().finish();
    return *result_;
  }
  // "voice:user1:6 whole 0"
  std::vector<std::string> units() {
    std::vector<std::string> words;
    for (const Editor::Salvaged& unit : result().units) {
      words.push_back(Editor::nameOrBytes(unit.address) + " " + wordOf(unit.state));
      for (const std::size_t source : unit.from) words.back() += " " + std::to_string(source);
    }
    return words;
  }
  // What is left out for the first of them.
  const std::vector<Editor::NotTaken>& notTaken() { return result().units.at(0).notTaken; }
  std::vector<Bytes> kept() {
    std::vector<Bytes> messages;
    for (const Editor::Piece& piece : result().messages) messages.push_back(piece.bytes);
    return messages;
  }

  Editor::Salvage::Options options;

 private:
  Editor::Salvage& salvage() {
    if (!salvage_) salvage_.emplace(options);
    return *salvage_;
  }

  std::optional<Editor::Salvage> salvage_;
  std::optional<Editor::SalvageResult> result_;
  int source_ = -1;
  std::uint64_t number_ = 0;
};
