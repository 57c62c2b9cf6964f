// Fields of every length, good and bad, against the plain rule of what becomes of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "FileDumpFixture.h"

namespace BDA {
namespace {

constexpr std::uint32_t kLongest = 0x4001;

enum class Outcome { tooLong, empty, lengthError, removed, dataError, undecodable, written };

// Over a field as a list of numbers, without any care for how the module does it.
Outcome outcomeOf(const Bytes& field) {
  if (field.size() > 0x3FFF) return Outcome::tooLong;
  if (field.empty()) return Outcome::empty;
  if (field.size() < 4) return Outcome::lengthError;
  const std::size_t name = field[0] * 128U | field[1];
  if (name + 4 > field.size()) return Outcome::lengthError;
  const std::size_t data = field[name + 2] * 128U | field[name + 3];
  if (data == 0) return Outcome::removed;
  if (name + data + 4 > field.size()) return Outcome::dataError;
  return data % 8 == 1 || name % 8 == 1 ? Outcome::undecodable : Outcome::written;
}

class FileDumpLengths : public FileDumpFixture {
 protected:
  // What becomes of a field: by the calls on the store, the result and the reports together.
  Outcome play(const Bytes& field) {
    work.contents.clear();
    const BDAErr received = receive("0C 50 05", field);
    const Lines refusal = reports();
    if (received != 0x1000u) {
      EXPECT_EQ(received, 0x80000000u);
      EXPECT_EQ(refusal, Lines{inSet("File Dump over length !!!!\n")});
      EXPECT_TRUE(calls().empty());
      return Outcome::tooLong;
    }
    EXPECT_TRUE(refusal.empty());
    const BDAErr result = trigger();
    const Lines told = reports();
    const Lines made = calls();
    const auto has = [&](const std::string& call) { return std::count(made.begin(), made.end(), call) == 1; };
    const bool isOpened = has("openDataFile(1/5, write)");
    EXPECT_EQ(made.size(), isOpened ? 8u + (isWritten(made) ? 1 : 0) + (isNamed(made) ? 1 : 0)
                           : has("removeContents(1, {5}, false)") ? 4u
                                                                  : 3u);
    EXPECT_EQ(result, told.empty() ? 0x800u : 0x80000800u);
    if (has("removeContents(1, {5}, false)") && told.empty()) return Outcome::removed;
    if (!isOpened && told == Lines{inWrite("error : file dump is empty !\n")}) return Outcome::empty;
    if (!isOpened && told == Lines{inWrite("error : file dump length error !\n")}) return Outcome::lengthError;
    if (!isOpened && told == Lines{inWrite("error : file dump data error !\n")}) return Outcome::dataError;
    if (isOpened && !told.empty() && told[0] == lengthError()) return Outcome::undecodable;
    EXPECT_TRUE(isOpened && told.empty()) << "an unexpected outcome";
    EXPECT_TRUE(isWritten(made));
    return Outcome::written;
  }
  void expectStated(const Bytes& field) {
    const Outcome stated = outcomeOf(field);
    ASSERT_EQ(int(play(field)), int(stated)) << field.size() << " bytes: " << Testing::textOf(field).substr(0, 60);
    if (stated != Outcome::written) return;
    const std::size_t name = field[0] * 128U | field[1];
    const std::size_t data = field[name + 2] * 128U | field[name + 3];
    const auto begin = field.begin() + std::ptrdiff_t(name + 4);
    const auto& content = work.contents[{1, 5}];
    ASSERT_EQ(content.bytes, Testing::Plain::decode(Bytes(begin, begin + std::ptrdiff_t(data))).bytes);
    const Bytes unpacked =
        Testing::Plain::decode(Bytes(field.begin() + 2, field.begin() + 2 + std::ptrdiff_t(name))).bytes;
    ASSERT_EQ(content.name, std::string(unpacked.begin(), unpacked.end()));
  }

 private:
  static bool isWritten(const Lines& made) {
    return std::any_of(made.begin(), made.end(), [](const std::string& call) { return nameOf(call) == "write"; });
  }
  static bool isNamed(const Lines& made) {
    return std::any_of(made.begin(), made.end(),
                       [](const std::string& call) { return nameOf(call) == "setContentName"; });
  }
};

Bytes withCounts(std::size_t length, std::size_t name, std::size_t data) {
  Bytes field = Testing::pattern(length);
  const auto put = [&field](std::size_t at, std::size_t count) {
    if (at < field.size()) field[at] = std::uint8_t(count >> 7);
    if (at + 1 < field.size()) field[at + 1] = std::uint8_t(count & 0x7F);
  };
  put(name + 2, data);
  put(0, name);
  return field;
}

TEST_F(FileDumpLengths, OfZeros) {
  for (std::uint32_t length = 0; length <= kLongest; ++length) {
    expectStated(Bytes(length));
    if (HasFatalFailure()) return;
  }
}

TEST_F(FileDumpLengths, OfAFileThatFillsTheField) {
  for (std::uint32_t length = 4; length <= kLongest; ++length) {
    expectStated(withCounts(length, 0, length - 4));
    if (HasFatalFailure()) return;
  }
}

TEST_F(FileDumpLengths, OfAFileThatIsOneByteShorterOrLongerThanTheField) {
  for (std::uint32_t length = 5; length <= kLongest; ++length) {
    expectStated(withCounts(length, 0, length - 3));
    expectStated(withCounts(length, 0, length - 5));
    if (HasFatalFailure()) return;
  }
}

// The name's end runs over the end of the field.
TEST_F(FileDumpLengths, OfANameThatEndsAroundTheEndOfTheField) {
  for (std::uint32_t length = 16; length <= kLongest; ++length) {
    for (const std::size_t left : {0U, 1U, 2U, 3U, 4U, 5U, 6U}) {
      if (length % 64 >= 8 && left != length % 7) continue;  // all of them at some lengths, one of them at each
      expectStated(withCounts(length, length - left, 2));
    }
    if (HasFatalFailure()) return;
  }
}

TEST_F(FileDumpLengths, OfEveryNameBeforeTwoBytesOfData) {
  for (std::uint32_t name = 0; name <= 0x3FFF; ++name) {
    expectStated(withCounts(name + 6, name, 2));
    if (HasFatalFailure()) return;
  }
}

TEST_F(FileDumpLengths, OfNothingButHighBytes) {
  for (std::uint32_t length = 0; length <= kLongest; length += length < 300 ? 1 : 97) {
    expectStated(Bytes(length, 0xFF));
    expectStated(Bytes(length, 0x80));
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace BDA
