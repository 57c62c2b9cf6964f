// What becomes of file dumps when storage runs out. The store allocates nothing, so every allocation is the module's.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <string_view>

#include "FileDumpFixture.h"
#include "support/Allocations.h"

namespace BDA {
namespace {

using Testing::allocations;
using Testing::pattern;

// Answers everything well, remembers numbers only, and tells when a file is not closed as it was opened.
class StillWork final : public ContSrv::Work, public ContSrv::DataFile, public ContSrv::Data {
 public:
  int writes = 0;
  int removals = 0;
  int syncs = 0;
  int openFiles = 0;
  int openData_ = 0;
  std::int64_t size = 100;

  unsigned char getLoadSaveFlag() override { return 0; }
  ContSrv::_ContResult removeMixingVoice(ContSrv::_ContType, unsigned long, unsigned long) override { return 0; }
  ContSrv::_ContResult getMixingVoiceName(ContSrv::_ContType, unsigned long, unsigned long, std::string&) override {
    return 0;
  }
  std::uint32_t getMixingVoiceNumber(ContSrv::_ContType, unsigned long number, unsigned long) override {
    return std::uint32_t(0x3F8000 + number);
  }
  ContSrv::_ContResult getMixingVoiceSumSync(std::int64_t& count, std::int64_t& maximum) override {
    count = 0;
    maximum = 2048;
    return 0;
  }
  ContSrv::_ContResult requestOverWriteConfig(ContSrv::_ContType) override { return 0; }
  ContSrv::_ContResult removeContents(ContSrv::_ContType, const std::vector<std::uint32_t>& numbers, bool) override {
    removals += int(numbers.size());
    return 0;
  }
  ContSrv::_ContResult removeContent(ContSrv::_ContType, std::uint32_t) override { return 0; }
  ContSrv::_ContResult getDataFilePath(ContSrv::_ContType, std::uint32_t, std::string& path) override {
    path = "p";
    return 0;
  }
  ContSrv::_ContResult getContentName(ContSrv::_ContType, std::uint32_t, std::string& name) override {
    name = "Name";
    return 0;
  }
  ContSrv::_ContResult setContentName(ContSrv::_ContType, std::uint32_t, const std::string&, bool) override {
    return 0;
  }
  ContSrv::DataFile* openDataFile(const std::string&, ContSrv::_OpenMode) override {
    ++openFiles;
    return this;
  }
  ContSrv::_ContResult closeDataFile(ContSrv::DataFile*, int) override {
    --openFiles;
    return 0;
  }
  ContSrv::_ContResult sync() override {
    ++syncs;
    return 0;
  }
  ContSrv::_ContResult setContentFavoriteFlag(ContSrv::_ContType, std::uint32_t, ContSrv::_ContFavoriteFlag,
                                              bool) override {
    return 0;
  }
  ContSrv::_ContResult getContentInformation(ContSrv::_ContType, std::uint32_t, ContSrv::ContentInformation&) override {
    return 0;
  }

  ContSrv::Data* openData() override {
    ++openData_;
    return this;
  }
  ContSrv::_ContResult closeData(ContSrv::Data*) override {
    --openData_;
    return 0;
  }
  ContSrv::_ContResult closeDataWithoutSync(ContSrv::Data*) override {
    --openData_;
    return 0;
  }
  std::int64_t write(const std::uint8_t*, std::int64_t count) override {
    ++writes;
    return count;
  }
  std::int64_t read(std::uint8_t* bytes, std::int64_t count) override {
    std::memset(bytes, 0x55, std::size_t(count));
    return count;
  }
  std::int64_t getSize() override { return size; }
};

// Keeps what is traced, without allocating.
class FixedSink : public Basekit::TracerSink {
 public:
  FixedSink() : before_(Basekit::Tracer::setThreadSink(this)) {}
  ~FixedSink() override { Basekit::Tracer::setThreadSink(before_); }
  void write(const char* text, std::size_t length) noexcept override {
    if (used_ + length > sizeof text_) std::abort();
    std::memcpy(text_ + used_, text, length);
    used_ += length;
  }
  // Whether that message was traced; whether any was.
  bool has(std::string_view message) const {
    return std::string_view(text_, used_).find(message) != std::string_view::npos;
  }
  bool isEmpty() const { return used_ == 0; }
  void clear() { used_ = 0; }

 private:
  char text_[16'384] = {};
  std::size_t used_ = 0;
  Basekit::TracerSink* before_;
};

class FileDumpMemory : public FileDumpFixture {
 protected:
  FileDumpMemory() { record.records = false; }

  BulkExecuterFileDump& block(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo, std::uint32_t type) {
    executer_.setBlockInfo(Address(hi, mid, lo), type, 0);
    return executer_;
  }
  BDAErr send(std::uint8_t lo, const Bytes& field) {
    return block(0x0C, 0x50, lo, 45).setBulkDumpMessage(field.data(), std::uint32_t(field.size()));
  }
  BDAErr write() { return block(0x11, 0x00, 0x00, 47).setBulkDumpMessage(nullptr, 0); }

  void expectNothingOpen() const {
    EXPECT_EQ(still_.openFiles, 0);
    EXPECT_EQ(still_.openData_, 0);
  }
  // Nothing is held, and a new set is written.
  void expectCleanPass() {
    still_ = {};
    sink_.clear();
    ASSERT_EQ(write(), 0x800u);
    EXPECT_EQ(still_.writes, 0) << "something was still held";
    ASSERT_EQ(send(1, fieldOf("One", pattern(50))), 0x1000u);
    ASSERT_EQ(write(), 0x800u);
    EXPECT_EQ(still_.writes, 1);
    EXPECT_EQ(still_.syncs, 2);
    EXPECT_TRUE(sink_.isEmpty());
    still_ = {};
  }

  StillWork still_;
  FixedSink sink_;
  ExecuterSharedState state_;
  BulkExecuterFileDump executer_{nullptr, &tools, nullptr, &state_, 0, nullptr, &still_};
};

TEST_F(FileDumpMemory, WhenADumpCannotBeHeldAllAreDiscardedAndToldSo) {
  const Bytes field = fieldOf("Name", pattern(500));
  send(0, field);
  const long count = allocations.of([&] { EXPECT_EQ(send(1, field), 0x1000u); });
  ASSERT_EQ(count, 3) << "the holder, its bytes, its place in the list";
  write();
  for (const bool onwards : {false, true}) {
    for (long number = 1; number <= count; ++number) {
      executer_.clearFileDumpBuffers();
      BulkExecuterFileDump fresh(nullptr, &tools, nullptr, &state_, 0, nullptr, &still_);
      fresh.setBlockInfo(Address(0x0C, 0x50, 0x00), 45, 0);
      ASSERT_EQ(receiveBy(fresh, field), 0x1000u);
      fresh.setBlockInfo(Address(0x0C, 0x50, 0x01), 45, 0);
      sink_.clear();
      BDAErr result = 0;
      allocations.ofWithFailure(number, onwards,
                                [&] { result = fresh.setBulkDumpMessage(field.data(), std::uint32_t(field.size())); });
      EXPECT_EQ(result, 0x82001000u) << number;
      EXPECT_TRUE(sink_.has("[BDA::BulkExecuterFileDump::setBulkDumpMessage] error: memory over flow ! \n"));
      EXPECT_EQ(sink_.has("[BDA::FileDumpBuffer::initData] File Dump Buufer's data is over flow !!!\n"), number == 2);
      still_ = {};
      fresh.setBlockInfo(Address(0x11, 0x00, 0x00), 47, 0);
      EXPECT_EQ(fresh.setBulkDumpMessage(nullptr, 0), 0x800u);
      EXPECT_EQ(still_.writes, 0) << "half a set";
      expectCleanPass();
    }
  }
}

TEST_F(FileDumpMemory, WhenARepeatedDumpCannotBeHeldAllAreDiscardedAndToldSo) {
  send(0, fieldOf("Other", pattern(50)));
  send(1, fieldOf("First", pattern(50)));
  const Bytes longer = fieldOf("Second", pattern(500));
  sink_.clear();
  BDAErr result = 0;
  const long count = allocations.ofWithFailure(1, false, [&] { result = send(1, longer); });
  EXPECT_EQ(count, 1);
  EXPECT_EQ(result, 0x82001000u);
  EXPECT_TRUE(sink_.has("error: memory over flow ! \n"));
  EXPECT_FALSE(sink_.has("initData"));
  expectCleanPass();
}

TEST_F(FileDumpMemory, AShorterRepetitionNeedsNoMemory) {
  const Bytes field = fieldOf("First", pattern(50));
  const Bytes shorter = fieldOf("Second", pattern(5));
  send(1, field);
  EXPECT_EQ(allocations.of([&] { EXPECT_EQ(send(1, shorter), 0x1000u); }), 0);
}

TEST_F(FileDumpMemory, WhenStorageRunsOutInAPassTheOthersAreWrittenAndThePassEndsAsAnyOther) {
  constexpr int kContents = 3;
  const Bytes field = fieldOf("A name too long to be short", pattern(500));
  const auto fill = [&] {
    for (std::uint8_t lo = 0; lo < kContents; ++lo) ASSERT_EQ(send(lo, field), 0x1000u);
    ASSERT_EQ(send(9, kEmptyDump), 0x1000u);
    still_ = {};
    sink_.clear();
  };
  fill();
  const long count = allocations.of([&] { EXPECT_EQ(write(), 0x800u); });
  EXPECT_EQ(still_.writes, kContents);
  EXPECT_EQ(still_.removals, 1);
  ASSERT_GE(count, kContents * 4 + 1);
  for (long number = 1; number <= count; ++number) {
    fill();
    BDAErr result = 0;
    allocations.ofWithFailure(number, false, [&] { result = write(); });
    EXPECT_EQ(result, 0x80000800u) << number;
    const bool isOfRemoval = number == count;
    EXPECT_EQ(sink_.has("Decode Error !!!\n") || sink_.has("error : decode error !\n"), !isOfRemoval) << number;
    EXPECT_GE(still_.writes, kContents - 1) << number;
    EXPECT_EQ(still_.removals, isOfRemoval ? 0 : 1) << number;
    EXPECT_EQ(still_.syncs, 1) << number;
    expectNothingOpen();
    expectCleanPass();
  }
  for (long number = 1; number <= count; ++number) {
    fill();
    BDAErr result = 0;
    allocations.ofWithFailure(number, true, [&] { result = write(); });
    EXPECT_EQ(result, 0x80000800u) << number;
    EXPECT_EQ(still_.syncs, 1) << number;
    expectNothingOpen();
    expectCleanPass();
  }
}

TEST_F(FileDumpMemory, WhenStorageRunsOutInAnAnswerItFailsAndIsClosedAndTheNextIsWhole) {
  std::vector<Bytes> messages;
  const auto answer = [&]() -> std::optional<BDAErr> {
    try {
      return block(0x0C, 0x50, 0x01, 45).getBulkDumpMessage(messages);
    } catch (const std::bad_alloc&) {  // the receiver of the request is there for it
      return std::nullopt;
    }
  };
  const auto fresh = [&] { messages = std::vector<Bytes>(); };  // without a capacity either
  fresh();
  std::optional<BDAErr> first;
  const long count = allocations.of([&] { first = answer(); });
  EXPECT_EQ(first, 0x1000u);
  const Bytes whole = messages.at(0);
  EXPECT_EQ(whole, Testing::dumpMessage("0C 50 01", fieldOf("Name", Bytes(100, 0x55))));
  int caught = 0;
  for (const bool onwards : {false, true}) {
    for (long number = 1; number <= count; ++number) {
      fresh();
      sink_.clear();
      std::optional<BDAErr> result;
      allocations.ofWithFailure(number, onwards, [&] { result = answer(); });
      if (result.has_value()) {
        EXPECT_EQ(*result, 0x80001000u) << number;
        EXPECT_TRUE(sink_.has("error : content data read error ! \n"));
        EXPECT_TRUE(sink_.has("Read File Dump Error !!!\n"));
        ++caught;
      }
      expectNothingOpen();
      fresh();
      EXPECT_EQ(answer(), 0x1000u);
      EXPECT_EQ(messages.at(0), whole);
    }
  }
  EXPECT_GE(caught, 8) << "name, packed name, bytes, packed bytes, field";
}

TEST_F(FileDumpMemory, AFileGreaterThanAnyMemoryCannotBeRead) {
  // With 32 bits for sizes these just above 4 GiB must not become buffers of 16 or 28 bytes.
  constexpr std::int64_t k4GiB = std::int64_t{1} << 32;
  for (const std::int64_t size : {k4GiB + 16, k4GiB + 28, k4GiB << 8, std::int64_t{1} << 62, INT64_MAX}) {
    still_.size = size;
    sink_.clear();
    std::vector<Bytes> messages;
    EXPECT_EQ(block(0x0C, 0x50, 0x01, 45).getBulkDumpMessage(messages), 0x80001000u);
    EXPECT_TRUE(sink_.has("[BDA::BulkExecuterFileDump::readFileDump] error : content data read error ! \n"));
    expectNothingOpen();
  }
}

}  // namespace
}  // namespace BDA
