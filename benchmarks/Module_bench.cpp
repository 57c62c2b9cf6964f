// The module beside the plain form of what it does and beside memcpy, in one run: compare the rows of a group.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <unordered_map>
#include <vector>

#include "BulkExecuterCreator.h"
#include "BulkExecuterFileDump.h"
#include "BulkTable.h"
#include "FlatEditor.h"
#include "Naive.h"
#include "bda/BulkDumpAssistant.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes randomBytes(std::size_t size, unsigned limit) {
  std::mt19937 random(1);
  Bytes bytes(size);
  for (std::uint8_t& byte : bytes) byte = std::uint8_t(random() % limit);
  return bytes;
}

Bytes dumpOf(std::uint8_t hi, std::uint8_t mid, std::uint8_t lo, const Bytes& data) {
  Bytes message(data.size() + BDA::kDumpFrame);
  const Bytes head{0xF0, 0x7D, 0x00, 0x7F, 0x14, std::uint8_t(data.size() >> 7), std::uint8_t(data.size() & 0x7F),
                   hi,   mid,  lo};
  std::copy(head.begin(), head.end(), message.begin());
  std::copy(data.begin(), data.end(), message.begin() + BDA::kDataAt);
  message[message.size() - 2] = BDA::Utility::calcCheckSum(message.data(), message.size());
  message.back() = 0xF7;
  return message;
}

// ---- Checksum ------------------------------------------------------------------------------------------------------

void checkSum(benchmark::State& state) {
  const Bytes message = dumpOf(0, 0, 0, randomBytes(std::size_t(state.range(0)) - BDA::kDumpFrame, 128));
  for (auto run : state) {
    benchmark::DoNotOptimize(message.data());
    benchmark::DoNotOptimize(BDA::Utility::calcCheckSum(message.data(), message.size()));
  }
}
void checkSumNaive(benchmark::State& state) {
  const Bytes message = dumpOf(0, 0, 0, randomBytes(std::size_t(state.range(0)) - BDA::kDumpFrame, 128));
  for (auto run : state) {
    benchmark::DoNotOptimize(message.data());
    benchmark::DoNotOptimize(Naive::checkSum(message.data(), std::uint32_t(message.size())));
  }
}
// Takes half or twice the time by how the two buffers lie in their pages: the mean over all lines of a page.
void checkSumMemcpy(benchmark::State& state) {
  constexpr std::size_t kPage = 4096;
  constexpr std::size_t kLine = 64;
  const Bytes message = randomBytes(std::size_t(state.range(0)), 128);
  Bytes copy(message.size() + kPage);
  std::size_t at = 0;
  for (auto run : state) {
    std::memcpy(copy.data() + at, message.data(), message.size());
    benchmark::ClobberMemory();
    at = (at + kLine) % kPage;
  }
}
BENCHMARK(checkSum)->Name("Checksum/ours")->Arg(12)->Arg(100)->Arg(16395);
BENCHMARK(checkSumNaive)->Name("Checksum/naive")->Arg(12)->Arg(100)->Arg(16395);
BENCHMARK(checkSumMemcpy)->Name("Checksum/memcpy")->Arg(12)->Arg(100)->Arg(16395);

// ---- Lookup --------------------------------------------------------------------------------------------------------

// All blocks of the map, or as many addresses that are not in it.
std::vector<BDA::Address> addresses(bool hits) {
  std::vector<BDA::Address> all;
  if (hits) {
    BDA::forEachBlock(
        [&](const BDA::AddressRow& row, std::uint8_t mid, std::uint8_t lo) { all.emplace_back(row.hi, mid, lo); });
  } else {
    constexpr std::uint8_t kHighBytes[] = {0x00, 0x0C, 0x0E, 0x70, 0x71};
    for (std::uint8_t mid = 0x72; mid < 0x7F; ++mid)
      for (std::uint8_t lo = 0; lo < 0x80; ++lo)
        for (const std::uint8_t hi : kHighBytes) all.emplace_back(hi, mid, lo);
  }
  std::mt19937 random(2);
  std::shuffle(all.begin(), all.end(), random);
  return all;
}

struct Table {
  Naive::FlatEditor jobTools;
  BDA::BulkExecuterCreator creator{nullptr, nullptr, &jobTools, nullptr, nullptr};
  BDA::BulkTable table{&creator, nullptr, &jobTools};
};

template <typename Find>
void lookUp(benchmark::State& state, Find find) {
  const std::vector<BDA::Address> all = addresses(state.range(0) != 0);
  std::size_t next = 0;
  for (auto run : state) {
    benchmark::DoNotOptimize(find(all[next]));
    next = next + 1 == all.size() ? 0 : next + 1;
  }
}
void lookUpOurs(benchmark::State& state) {
  Table table;
  lookUp(state, [&](const BDA::Address& address) { return table.table.search(address); });
}
void lookUpNaive(benchmark::State& state) {
  Table table;
  lookUp(state, [&](const BDA::Address& address) { return Naive::find(table.table, address); });
}
void lookUpHashed(benchmark::State& state) {
  Table table;
  std::unordered_map<std::uint32_t, BDA::BulkBlock*> map;
  const auto key = [](const BDA::Address& address) {
    return std::uint32_t{address.getHi()} << 16 | std::uint32_t{address.getMid()} << 8 | address.getLo();
  };
  for (std::size_t list = 0; list < BDA::kListCount; ++list)
    for (BDA::BulkBlock* block : table.table.getList(BDA::List(list))) map.emplace(key(*block), block);
  lookUp(state, [&](const BDA::Address& address) {
    const auto found = map.find(key(address));
    return found == map.end() ? nullptr : found->second;
  });
}
BENCHMARK(lookUpOurs)->Name("Lookup/ours")->ArgName("hits")->Arg(1)->Arg(0);
BENCHMARK(lookUpNaive)->Name("Lookup/list walk")->ArgName("hits")->Arg(1)->Arg(0);
BENCHMARK(lookUpHashed)->Name("Lookup/unordered_map")->ArgName("hits")->Arg(1)->Arg(0);

// ---- The assistant -------------------------------------------------------------------------------------------------

class CountingBridge : public BDA::BulkDumpBridge {
 public:
  using BulkDumpBridge::BulkDumpBridge;
  void sendSysEx(const unsigned char* message, std::uint32_t length, BDA::DevicePortNum port) override {
    benchmark::DoNotOptimize(message);
    benchmark::DoNotOptimize(port);
    bytes += length;
  }
  std::uint64_t bytes = 0;
};

struct Instrument {
  Naive::FlatEditor jobTools;
  std::vector<CMA::JobReceiver*> jobs;
  BDA::BulkDumpAssistant assistant{nullptr, nullptr, &jobs, &jobTools, nullptr, true};
  CountingBridge bridge{&assistant};

  void receive(const Bytes& message) {
    // Port 4: no echo is sent, which the plain form does not send either.
    assistant.receiveBulkDump(message.data(), message.size(), BDA::DevicePort_Echo);
  }
};

void construct(benchmark::State& state) {
  Naive::FlatEditor jobTools;
  for (auto run : state) {
    BDA::BulkDumpAssistant assistant(nullptr, nullptr, nullptr, &jobTools, nullptr, true);
    benchmark::DoNotOptimize(&assistant);
  }
}
BENCHMARK(construct)->Name("Construction and destruction of the assistant")->Unit(benchmark::kMicrosecond);

// The plain form around the same executers and the same questions to the editor: byte loop, list walk, and messages
// that grow byte by byte.
class PlainInstrument {
 public:
  void receive(const Bytes& message) {
    if (!isAdmitted()) return;
    if (Naive::checkSum(message.data(), std::uint32_t(message.size())) != message[message.size() - 2]) return;
    const BDA::Address address(message[7], message[8], message[9]);
    jobTools.checkModeForReceivedSysExBulk(model, message[7], message[8], message[9]);
    BDA::BulkBlock* const block = Naive::find(table, address);
    if (block == nullptr) return;
    jobTools.suspendOutputMidi();
    block->setBulkDumpMessage(message.data() + BDA::kDataAt, std::uint32_t(message.size() - BDA::kDumpFrame));
    jobTools.resumeOutputMidi();
  }

  // The dumps that answer a request, each by a list walk.
  void build(const std::vector<BDA::Address>& addresses, std::uint64_t& bytes) {
    if (!isAdmitted()) return;
    jobTools.checkModeForReceivedSysExBulk(model, addresses[0].getHi(), addresses[0].getMid(), addresses[0].getLo());
    for (const BDA::Address& address : addresses) {
      const BDA::AddressRow& row = *rowOf(address);
      BDA::BulkExecuter* const executer = creator.getExecuter(BDA::executerOf(row, address.getMid()));
      executer->setBlockInfo(address, row.type, BDA::indexOf(row, address.getMid()));
      benchmark::DoNotOptimize(Naive::find(table, address));
      const std::uint32_t length = executer->getDataLength();
      Bytes data(length);
      executer->execBulkBlock(data.data(), length, 0);
      Bytes message;
      unsigned char device = 0;
      BDA::Utility::getDeviceNumber(jobTools, &device);
      for (const std::uint8_t byte :
           {BDA::kStartOfExclusive, BDA::kMakerId, device, BDA::kModelId1, BDA::kModelId2, std::uint8_t(length >> 7),
            std::uint8_t(length & 0x7F), address.getHi(), address.getMid(), address.getLo()})
        message.push_back(byte);
      for (const std::uint8_t byte : data) message.push_back(byte);
      message.push_back(Naive::checkSum(message.data(), std::uint32_t(message.size() + 2)));
      message.push_back(BDA::kEndOfExclusive);
      benchmark::DoNotOptimize(message.data());
      bytes += message.size();
    }
  }

  Naive::FlatEditor jobTools;
  CMA::TemporaryCoreModel* model = jobTools.createTemporaryModel();
  BDA::BulkExecuterCreator creator{nullptr, nullptr, &jobTools, model, nullptr};
  BDA::BulkTable table{&creator, nullptr, &jobTools};

 private:
  bool isAdmitted() {
    unsigned char device = 0;
    if (BDA::Utility::getDeviceNumber(jobTools, &device) == CMA::DeviceNumber_Off) return false;
    std::uint8_t on = 0;
    jobTools.getSystemModel()->getUtility()->get(&on, 50);
    return on != 0;
  }
  static const BDA::AddressRow* rowOf(const BDA::Address& address) {
    for (const BDA::AddressRow& row : BDA::kParameterRows)
      if (row.hi == address.getHi() && address.getMid() >= row.mid.first && address.getMid() <= row.mid.last)
        return &row;
    return nullptr;
  }
};

const Bytes& systemCommon() {
  static const Bytes message = dumpOf(0x00, 0x00, 0x00, randomBytes(68, 128));
  return message;
}

void receiveBlock(benchmark::State& state) {
  Instrument instrument;
  for (auto run : state) instrument.receive(systemCommon());
}
void receiveBlockNaive(benchmark::State& state) {
  PlainInstrument instrument;
  for (auto run : state) instrument.receive(systemCommon());
}
void receiveBlockMemcpy(benchmark::State& state) {
  Bytes copy(systemCommon().size());
  for (auto run : state) {
    std::memcpy(copy.data(), systemCommon().data(), copy.size());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(receiveBlock)->Name("Receive system common/ours");
BENCHMARK(receiveBlockNaive)->Name("Receive system common/naive");
BENCHMARK(receiveBlockMemcpy)->Name("Receive system common/memcpy");

void buildDump(benchmark::State& state) {
  Instrument instrument;
  instrument.receive(systemCommon());
  const Bytes request{0xF0, 0x7D, 0x20, 0x7F, 0x14, 0x00, 0x00, 0x00, 0xF7};
  for (auto run : state) instrument.receive(request);
}
void buildDumpNaive(benchmark::State& state) {
  PlainInstrument instrument;
  instrument.receive(systemCommon());
  const std::vector<BDA::Address> address{{0x00, 0x00, 0x00}};
  std::uint64_t bytes = 0;
  for (auto run : state) instrument.build(address, bytes);
}
BENCHMARK(buildDump)->Name("Build system common/ours");
BENCHMARK(buildDumpNaive)->Name("Build system common/naive");

// A whole normal voice, 26 messages and 2,052 bytes: its header, 24 blocks of parameters and its footer.
std::vector<Bytes> normalVoice() {
  std::vector<Bytes> messages{dumpOf(0x0E, 0x0F, 0x00, {})};
  for (const BDA::AddressRow& row : BDA::kParameterRows)
    if (BDA::listOf(row.hi) == std::size_t(BDA::List::normalVoice))
      for (unsigned mid = row.mid.first; mid <= row.mid.last; ++mid)
        messages.push_back(
            dumpOf(row.hi, std::uint8_t(mid), 0, randomBytes(BDA::kExecuterDataLength[row.executer], 128)));
  messages.push_back(dumpOf(0x0F, 0x0F, 0x00, {}));
  return messages;
}
std::vector<BDA::Address> addressesOf(const std::vector<Bytes>& messages) {
  std::vector<BDA::Address> all;
  for (const Bytes& message : messages)
    if (message[7] != 0x0E && message[7] != 0x0F) all.emplace_back(message[7], message[8], message[9]);
  return all;
}

void receiveVoice(benchmark::State& state) {
  const std::vector<Bytes> messages = normalVoice();
  Instrument instrument;
  for (auto run : state)
    for (const Bytes& message : messages) instrument.receive(message);
}
void receiveVoiceNaive(benchmark::State& state) {
  const std::vector<Bytes> messages = normalVoice();
  PlainInstrument instrument;
  for (auto run : state)
    for (const Bytes& message : messages) instrument.receive(message);
}
BENCHMARK(receiveVoice)->Name("Receive a normal voice/ours");
BENCHMARK(receiveVoiceNaive)->Name("Receive a normal voice/naive");

void buildVoice(benchmark::State& state) {
  Instrument instrument;
  const Bytes request{0xF0, 0x7D, 0x20, 0x7F, 0x14, 0x0E, 0x0F, 0x00, 0xF7};
  for (const Bytes& message : normalVoice()) instrument.receive(message);
  for (auto run : state) instrument.receive(request);
}
void buildVoiceNaive(benchmark::State& state) {
  PlainInstrument instrument;
  const std::vector<Bytes> messages = normalVoice();
  for (const Bytes& message : messages) instrument.receive(message);
  const std::vector<BDA::Address> addresses = addressesOf(messages);
  instrument.creator.getExecuter(1)->setLoadSkipped(1);
  std::uint64_t bytes = 0;
  for (auto run : state) instrument.build(addresses, bytes);
}
BENCHMARK(buildVoice)->Name("Build a normal voice/ours");
BENCHMARK(buildVoiceNaive)->Name("Build a normal voice/naive");

// ---- The codec of file dumps ---------------------------------------------------------------------------------------

void encodeOurs(benchmark::State& state) {
  const Bytes source = randomBytes(std::size_t(state.range(0)), 256);
  Bytes packed;
  for (auto run : state) {
    BDA::BulkExecuterFileDump::encode(source, packed);
    benchmark::DoNotOptimize(packed.data());
    benchmark::ClobberMemory();
  }
}
void encodeNaive(benchmark::State& state) {
  const Bytes source = randomBytes(std::size_t(state.range(0)), 256);
  Bytes packed;
  for (auto run : state) {
    Naive::encode(source, packed);
    benchmark::DoNotOptimize(packed.data());
    benchmark::ClobberMemory();
  }
}
void decodeOurs(benchmark::State& state) {
  Bytes packed;
  Naive::encode(randomBytes(std::size_t(state.range(0)), 256), packed);
  Bytes bytes;
  for (auto run : state) {
    BDA::BulkExecuterFileDump::decode(packed, bytes);
    benchmark::DoNotOptimize(bytes.data());
    benchmark::ClobberMemory();
  }
}
void decodeNaive(benchmark::State& state) {
  Bytes packed;
  Naive::encode(randomBytes(std::size_t(state.range(0)), 256), packed);
  Bytes bytes;
  for (auto run : state) {
    Naive::decode(packed, bytes);
    benchmark::DoNotOptimize(bytes.data());
    benchmark::ClobberMemory();
  }
}
void codecMemcpy(benchmark::State& state) {
  const Bytes source = randomBytes(std::size_t(state.range(0)), 256);
  Bytes copy(source.size());
  for (auto run : state) {
    std::memcpy(copy.data(), source.data(), source.size());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(encodeOurs)->Name("Encode/ours")->Arg(7)->Arg(64)->Arg(1024)->Arg(14336);
BENCHMARK(encodeNaive)->Name("Encode/naive")->Arg(7)->Arg(64)->Arg(1024)->Arg(14336);
BENCHMARK(decodeOurs)->Name("Decode/ours")->Arg(7)->Arg(64)->Arg(1024)->Arg(14336);
BENCHMARK(decodeNaive)->Name("Decode/naive")->Arg(7)->Arg(64)->Arg(1024)->Arg(14336);
BENCHMARK(codecMemcpy)->Name("Codec/memcpy")->Arg(7)->Arg(64)->Arg(1024)->Arg(14336);

}  // namespace
