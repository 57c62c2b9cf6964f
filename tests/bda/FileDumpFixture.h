#pragma once

// The file dump executer on a recording store, and fields of file dumps made by the plain form of their packing.

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "BulkExecuterFileDump.h"
#include "ExecuterFixture.h"
#include "support/PlainFileDumpCodec.h"

namespace BDA {

inline const Bytes kEmptyDump{0, 0, 0, 0};

// The data field of a content: packed name and packed bytes, each after its length.
inline Bytes fieldOfPacked(const Bytes& name, const Bytes& bytes) {
  Bytes field;
  for (const Bytes* packed : {&name, &bytes}) {
    field.push_back(std::uint8_t(packed->size() / 128));
    field.push_back(std::uint8_t(packed->size() % 128));
    field.insert(field.end(), packed->begin(), packed->end());
  }
  return field;
}
inline Bytes fieldOf(std::string_view name, const Bytes& bytes) {
  return fieldOfPacked(Testing::Plain::encode(Bytes(name.begin(), name.end())), Testing::Plain::encode(bytes));
}

class FileDumpFixture : public ExecuterFixture {
 protected:
  static constexpr std::size_t kNumber = 60;

  // Types of contents.
  static constexpr std::uint32_t kVoice = 4;
  static constexpr std::uint32_t kMulti = 1;
  static constexpr std::uint32_t kSingle = 14;

  // What the address map gives to the executer with each address.
  struct Row {
    std::uint8_t firstMid;
    std::uint8_t lastMid;
    std::uint8_t lastLo;
    std::uint32_t type;
  };
  static constexpr Row kRows[] = {
      {0x00, 0x07, 0x7F, 37}, {0x09, 0x09, 0x7F, 38}, {0x0A, 0x0C, 0x7F, 39}, {0x20, 0x20, 0x3F, 40},
      {0x21, 0x21, 0x00, 42}, {0x28, 0x28, 0x1F, 41}, {0x31, 0x31, 0x0F, 43}, {0x10, 0x1F, 0x7F, 44},
      {0x50, 0x50, 0x7F, 45}, {0x7F, 0x7F, 0x00, 46},
  };

  BulkExecuterFileDump& at(std::string_view address) {
    const Bytes bytes = bytesOf(address);
    std::uint32_t type = 47;
    std::uint32_t index = 0;
    for (const Row& row : kRows) {
      if (bytes.at(0) != 0x0C || bytes.at(1) < row.firstMid || bytes.at(1) > row.lastMid) continue;
      type = row.type;
      index = bytes[1] - row.firstMid;
    }
    return at(address, type, index);
  }
  BulkExecuterFileDump& at(std::string_view address, std::uint32_t type, std::uint32_t index = 0) {
    return dynamic_cast<BulkExecuterFileDump&>(executer(kNumber, address, type, index));
  }

  // A field arrives, in a buffer of exactly its length.
  BDAErr receive(std::string_view address, const Bytes& field) { return receiveBy(at(address), field); }
  static BDAErr receiveBy(BulkExecuter& block, const Bytes& field) {
    const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[field.size()]);
    std::copy(field.begin(), field.end(), exact.get());
    return block.setBulkDumpMessage(exact.get(), std::uint32_t(field.size()));
  }
  // The same, that must be taken over, without a trace in the record.
  void hold(std::string_view address, const Bytes& field) {
    ASSERT_EQ(receive(address, field), 0x1000u) << address;
    calls();
  }
  BDAErr trigger() { return receive("11 00 00", {}); }

  // The one message of an answer.
  BDAErr request(std::string_view address, Bytes& message) {
    std::vector<Bytes> messages{{1}, {2}};
    const BDAErr result = at(address).getBulkDumpMessage(messages);
    EXPECT_EQ(messages.size(), 1u);
    message = messages.at(0);
    return result;
  }

  static std::string reportIn(const char* function, const std::string& message) {
    return std::string("BulkExecuterFileDump.cpp [BDA::BulkExecuterFileDump::") + function + "] " + message;
  }
  static std::string inSet(const std::string& message) { return reportIn("setBulkDumpMessage", message); }
  static std::string inPass(const std::string& message) { return reportIn("writeFileDumps", message); }
  static std::string inWrite(const std::string& message) { return reportIn("writeFileDump", message); }
  static std::string inRead(const std::string& message) { return reportIn("readFileDump", message); }
  static std::string lengthError() { return reportIn("decode", "Length Error !!!\n"); }
  static std::string cannotRead() { return reportIn("getBulkDumpMessageImplement", "Read File Dump Error !!!\n"); }

  // What a pass asks of the store around its contents.
  static Lines pass(const std::vector<Lines>& contents, int lastType) {
    Lines all{"getMixingVoiceSumSync"};
    for (const Lines& content : contents) all.insert(all.end(), content.begin(), content.end());
    all.push_back("requestOverWriteConfig(" + std::to_string(lastType) + ")");
    all.push_back("sync");
    return all;
  }
  static std::string place(std::uint32_t type, std::uint32_t number, const char* separator) {
    return std::to_string(type) + separator + std::to_string(number);
  }
  // ... for one content: `name` empty: it has none; `isMixing`: it is a mixing voice.
  static Lines written(std::uint32_t type, std::uint32_t number, const std::string& name, std::size_t size,
                       bool isMixing = false) {
    Lines all{"getDataFilePath(" + place(type, number, ", ") + ")"};
    if (isMixing) all.push_back("getContentName(" + place(type, number, ", ") + ")");
    all.push_back("openDataFile(" + place(type, number, "/") + ", write)");
    all.push_back("openData");
    if (!name.empty()) all.push_back("setContentName(" + place(type, number, ", ") + ", " + name + ", false)");
    all.push_back("write(" + std::to_string(size) + ")");
    all.push_back("closeDataWithoutSync");
    all.push_back("closeDataFile(0)");
    return all;
  }
  // What an answer asks of it for one content.
  static Lines readOf(std::uint32_t type, std::uint32_t number, std::size_t size) {
    Lines all{"getDataFilePath(" + place(type, number, ", ") + ")"};
    if (type != kSingle) all.push_back("getContentName(" + place(type, number, ", ") + ")");
    all.push_back("openDataFile(" + place(type, number, "/") + ", read)");
    all.insert(all.end(), {"openData", "getSize"});
    if (size > 0) all.push_back("read(" + std::to_string(size) + ")");
    all.insert(all.end(), {"closeData", "closeDataFile(0)"});
    return all;
  }

  // What the store holds: name and bytes by type and number.
  using Stored = std::map<Testing::FakeWork::Place, std::pair<std::string, Bytes>>;
  Stored stored() const {
    Stored all;
    for (const auto& [place, content] : work.contents) all[place] = {content.name, content.bytes};
    return all;
  }

  static std::string nameOf(const std::string& call) { return call.substr(0, call.find('(')); }
};

}  // namespace BDA
