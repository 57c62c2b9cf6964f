#pragma once

// A wire of a library, and at its other end an instrument that is another library.

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "editor/surface/LibraryFixture.h"

namespace Editor {

class WireCallTest : public LibraryCallTest {
 protected:
  WireCallTest() { EXPECT_EQ(bda_library_open(nullptr, 0, &other), BDA_OK); }
  ~WireCallTest() override {
    bda_wire_close(wire);
    bda_wire_close(instrument);
    bda_library_close(other);
  }

  // The instrument holds a normal voice there, every data byte `value`.
  void give(BulkAddress header, std::uint8_t value = 3) {
    std::swap(library, other);
    receiveVoice(value, header);
    std::swap(library, other);
  }
  void serve(const char* options = R"({"pace": "none"})") {
    ASSERT_EQ(bda_wire_instrument(other, options, &instrument), BDA_OK) << bda_wire_error(instrument);
  }
  void fetch(const char* places, const char* options = R"({"pace": "none"})") {
    ASSERT_EQ(bda_wire_fetch(library, places, options, &wire), BDA_OK) << wireError();
  }
  void send(const char* places, const char* options = R"({"pace": "none"})") {
    ASSERT_EQ(bda_wire_send(library, places, options, &wire), BDA_OK) << wireError();
  }
  std::string wireError() const { return bda_wire_error(wire); }

  static std::ptrdiff_t takeAll(void* bytes, const std::uint8_t* taken, std::size_t size) {
    static_cast<Bytes*>(bytes)->insert(static_cast<Bytes*>(bytes)->end(), taken, taken + size);
    return std::ptrdiff_t(size);
  }
  // What it sends then.
  Bytes tick(bda_wire* one, std::int64_t* due = nullptr) const {
    Bytes bytes;
    EXPECT_EQ(bda_wire_tick(one, now, &takeAll, &bytes, due), BDA_OK) << bda_wire_error(one);
    return bytes;
  }
  void feed(bda_wire* one, const Bytes& bytes) const {
    EXPECT_EQ(bda_wire_feed(one, now, bytes.data(), bytes.size()), BDA_OK) << bda_wire_error(one);
  }
  // Both go on, and time too where nothing is on its way.
  void step() {
    std::int64_t due = BDA_NEVER;
    std::int64_t dueThere = BDA_NEVER;
    const Bytes there = tick(wire, &due);
    out.insert(out.end(), there.begin(), there.end());
    if (instrument != nullptr && !there.empty()) feed(instrument, there);
    const Bytes here = instrument == nullptr ? Bytes() : tick(instrument, &dueThere);
    if (!here.empty()) feed(wire, here);
    if (!there.empty() || !here.empty()) return;
    ASSERT_TRUE(bda_wire_is_done(wire) != 0 || std::min(due, dueThere) != BDA_NEVER) << "both wait for ever";
    now = std::max(now, std::min({due, dueThere, now + kHour}));
  }
  // To the end. What became of it all.
  bda_result run() {
    constexpr int kMostSteps = 100'000;
    for (int i = 0; i < kMostSteps && bda_wire_is_done(wire) == 0 && !HasFatalFailure(); ++i) step();
    EXPECT_EQ(bda_wire_is_done(wire), 1);
    return bda_wire_results(wire, &json);
  }
  void close() {
    bda_wire_close(std::exchange(wire, nullptr));
    bda_wire_close(std::exchange(instrument, nullptr));
  }
  std::string shownBy(bda_library* of, const char* places = "voice:user1:6") {
    EXPECT_EQ(bda_library_show(of, places, &json), BDA_OK) << bda_library_error(of);
    return take();
  }

  static constexpr std::int64_t kSecond = 1'000'000;
  static constexpr std::int64_t kHour = 3600 * kSecond;
  static constexpr BulkAddress kNext{0x0E, 0x0A, 0x06};

  bda_library* other = nullptr;
  bda_wire* wire = nullptr;
  bda_wire* instrument = nullptr;
  std::int64_t now = -5 * kSecond;
  Bytes out;  // all that the wire has sent
};

}  // namespace Editor
