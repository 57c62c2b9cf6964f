// What the module allocates, and what becomes of it when storage runs out. The recording platform is silent meanwhile,
// so that only the module is measured.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <utility>

#include "ParameterBlocks.h"
#include "TableFixture.h"
#include "bda/BulkDumpAssistant.h"
#include "support/Allocations.h"
#include "support/AssistantFixture.h"

namespace {

using namespace Testing;
using namespace BDA;

class Memory : public AssistantFixture {
 protected:
  // What the module allocates in `action`.
  template <typename Action>
  long allocationsOf(Action action) {
    record.records = false;
    allocations.of(action);
    record.records = true;
    return allocations.count;
  }
  // With that allocation failing, and (`onwards`) all that follow.
  template <typename Action>
  void withFailure(long number, bool onwards, Action action) {
    record.records = false;
    allocations.ofWithFailure(number, onwards, action);
    record.records = true;
  }
  BulkMsgType feed(const Bytes& message, std::uint32_t from = 1) {
    return assistant->receiveBulkDump(message.data(), lengthOf(message), DevicePortNum(from));
  }
};

std::string addressOf(const InstrumentMap::Block& block) { return textOf({block.hi, block.mid, block.lo}); }

const std::vector<InstrumentMap::Block>& systemBlocks() { return InstrumentMap::lists()[InstrumentMap::system]; }

constexpr std::uint32_t kPorts[] = {1, 4, 5, 6, 2};

// Once. Called as a function: a new-expression that nobody needs may be left out by an optimiser.
void allocate() { ::operator delete(::operator new(7)); }

TEST_F(Memory, TheCounterCounts) { EXPECT_EQ(allocationsOf(allocate), 1); }

TEST_F(Memory, RejectionsAllocateNothing) {
  Bytes wrong = dumpMessage("00 40 00", pattern(8));
  wrong[12] ^= 1;
  const Bytes other = dumpMessage("00 40 00", pattern(8), 3);
  const Bytes foreign = bytesOf("F0 7E 00 7F 14 00 00 00 F7");
  struct NoSink : Basekit::TracerSink {
    void write(const char*, std::size_t) noexcept override {}
  } none;
  Basekit::TracerSink* const before = Basekit::Tracer::setThreadSink(&none);
  for (const Bytes& message : {wrong, other, foreign}) EXPECT_EQ(allocationsOf([&] { feed(message); }), 0);
  Basekit::Tracer::setThreadSink(before);
}

// ---- All parameter blocks ----

struct Uncounted {
  ~Uncounted() { allocations.counting = before; }
  const bool before = std::exchange(allocations.counting, false);
};

// An editor whose models are its own: what is allocated to make them, or for a name to be kept, is not the module's.
class UncountedJobTools : public FakeJobTools {
 public:
  using FakeJobTools::FakeJobTools;

  long stores = 0;

  bool initTemporaryVoiceModel(CMA::TemporaryCoreModel* model, std::uint16_t number, bool normalVoice) override {
    return uncounted([&] { return FakeJobTools::initTemporaryVoiceModel(model, number, normalVoice); });
  }
  bool initTemporaryMultiModel(CMA::TemporaryCoreModel* model, std::uint32_t state) override {
    return uncounted([&] { return FakeJobTools::initTemporaryMultiModel(model, state); });
  }
  bool initTemporaryArpeggioModel(CMA::TemporaryCoreModel* model, bool ofVoice, std::uint16_t number,
                                  bool asNew) override {
    return uncounted([&] { return FakeJobTools::initTemporaryArpeggioModel(model, ofVoice, number, asNew); });
  }
  bool initTemporaryMasterModel(CMA::TemporaryCoreModel* model) override {
    return uncounted([&] { return FakeJobTools::initTemporaryMasterModel(model); });
  }
  bool initTemporaryRemoteModel(CMA::TemporaryCoreModel* model) override {
    return uncounted([&] { return FakeJobTools::initTemporaryRemoteModel(model); });
  }
  unsigned long loadForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid, std::uint8_t lo) override {
    return uncounted([&] { return FakeJobTools::loadForReceivedSysExBulk(model, mid, lo); });
  }
  unsigned long storeForReceivedSysExBulk(CMA::TemporaryCoreModel* model, std::uint8_t mid, std::uint8_t lo) override {
    ++stores;
    return FakeJobTools::storeForReceivedSysExBulk(model, mid, lo);
  }

  // The live models as a header needs them: parts that select a voice of `bank`, and the voice of one of them.
  void makeLive(std::uint16_t voice, bool isNormalVoice, CMA::BankSelect bank) {
    settle(&liveVoice(voice, isNormalVoice));
    settle(&liveMulti());
    settle(&liveArpeggio());
    settle(&liveMaster());
    settle(&liveRemote());
    for (auto& part : liveMulti().parts) {
      part->bankProgram[0] = bank.msb;
      part->bankProgram[1] = bank.lsb;
    }
  }

 private:
  template <typename Make>
  auto uncounted(Make make) -> decltype(make()) {
    const Uncounted models;
    const auto result = make();
    for (std::uint16_t number = 0; number < 16; ++number) settle(temporaryVoice(number));
    settle(temporaryMulti.get());
    settle(temporaryArpeggio.get());
    settle(temporaryMaster.get());
    settle(temporaryRemote.get());
    return result;
  }
  // Nothing is allocated in a model from here on: there is room for its names. One without a path has been here.
  template <typename Model>
  static void settle(Model* model) {
    if (model == nullptr || model->path.empty()) return;
    ParameterBlocks::Models names;
    names.add(*model);
    for (const auto& [path, name] : names.names) name->text.reserve(32);
    model->path.clear();
  }
};

// Notes the count of allocations at each message that is sent.
struct CountingBridge : BulkDumpBridge {
  explicit CountingBridge(BulkDumpAssistant* assistant) : BulkDumpBridge(assistant) { counts.reserve(1000); }
  void sendSysEx(const unsigned char* message, std::uint32_t length, DevicePortNum) override {
    constexpr std::uint32_t kNotice = 5;
    if (length > kNotice && counts.size() < counts.capacity())
      counts.push_back({{message[7], message[8], message[9]}, allocations.count});
  }
  struct Count {
    std::array<std::uint8_t, 3> address;
    long allocations;
  };
  std::vector<Count> counts;
};

// An assistant in that editor.
class MemoryOfBlocks : public Memory {
 protected:
  void expectNoAllocation(const Bytes& message, std::uint32_t from) {
    BulkMsgType type = BulkMsg_NotSysEx;
    const auto receive = [&] { type = own.receiveBulkDump(message.data(), lengthOf(message), DevicePortNum(from)); };
    EXPECT_EQ(allocationsOf(receive), 0) << textOf(message);
    EXPECT_EQ(type, BulkMsg_BulkDump);
  }
  // The counts of the messages of the answer: the first with what was allocated before it.
  const std::vector<CountingBridge::Count>& request(const std::string& address) {
    ownBridge.counts.clear();
    const Bytes message = requestMessage(address);
    allocationsOf([&] {
      EXPECT_EQ(own.receiveBulkDump(message.data(), lengthOf(message), DevicePort_Main), BulkMsg_BulkRequest);
    });
    return ownBridge.counts;
  }

  UncountedJobTools ownTools{record};
  OpenAssistant own{&manager, nullptr, nullptr, &ownTools, &work, false};
  CountingBridge ownBridge{&own};
};

// What is reported as not received fails these tests as a trace that nobody took.
TEST_F(MemoryOfBlocks, AReceivedSystemBlockAllocatesNothing) {
  for (const InstrumentMap::Block& block : systemBlocks()) {
    const Bytes data = pattern(InstrumentMap::kExecuters[block.executer - 1].dataLength);
    for (const std::uint32_t from : kPorts) expectNoAllocation(dumpMessage(addressOf(block), data), from);
  }
}

TEST_F(MemoryOfBlocks, ASystemBlockBuiltIntoAMessageAllocatesAtMostTwice) {
  constexpr long kListOfBlocks = 1;
  for (const InstrumentMap::Block& block : systemBlocks()) {
    const std::vector<CountingBridge::Count>& built = request(addressOf(block));
    ASSERT_EQ(built.size(), 1U);
    EXPECT_LE(built[0].allocations, 2 + kListOfBlocks) << addressOf(block);
    EXPECT_GE(built[0].allocations, 1) << "nothing was built";
  }
}

class MemoryOfUnits : public MemoryOfBlocks, public testing::WithParamInterface<Opening> {
 protected:
  void SetUp() override {
    MemoryOfBlocks::SetUp();
    ownTools.makeLive(voice, list() != InstrumentMap::drumVoice, GetParam().bank);
  }

  InstrumentMap::List list() const {
    const unsigned type = GetParam().type;
    if (type == 9) return GetParam().bankType == 2 ? InstrumentMap::drumVoice : InstrumentMap::normalVoice;
    if (type <= 4 || type == 10) return InstrumentMap::normalVoice;
    if (type <= 8) return InstrumentMap::drumVoice;
    if (type == 11) return InstrumentMap::multi;
    if (type <= 13) return InstrumentMap::performance;
    return type <= 15 ? InstrumentMap::master : InstrumentMap::remote;
  }
  const std::vector<InstrumentMap::Block>& blocks() const { return InstrumentMap::lists().at(list()); }

  const std::string header = GetParam().address;
  const std::uint16_t voice = GetParam().type == 9 ? bytesOf(header)[2] : 0;
};

// Those that admit blocks: without the voice of a part whose bank is none.
std::vector<Opening> unitOpenings() {
  std::vector<Opening> openings(std::begin(kOpenings), std::end(kOpenings));
  std::erase_if(openings, [](const Opening& opening) {
    return opening.address == nullptr || (opening.type == 9 && opening.bankType == 0);
  });
  return openings;
}
INSTANTIATE_TEST_SUITE_P(Of, MemoryOfUnits, testing::ValuesIn(unitOpenings()), nameOf);

TEST_P(MemoryOfUnits, AHeaderEachOfItsBlocksAndItsFooterAllocateNothing) {
  for (const std::uint32_t from : kPorts) {
    expectNoAllocation(dumpMessage(header), from);
    for (const InstrumentMap::Block& block : blocks()) {
      const ParameterBlocks::Kind& kind = ParameterBlocks::kindOf(block.type);
      const Bytes data = ParameterBlocks::patternOf(kind, ParameterBlocks::stepsOf(kind, block.index));
      expectNoAllocation(dumpMessage(addressOf(block), data), from);
    }
    expectNoAllocation(dumpMessage("0F" + header.substr(2)), from);
  }
  EXPECT_EQ(ownTools.stores, long(std::size(kPorts)));
}

TEST_P(MemoryOfUnits, EachMessageOfTheAnswerAllocatesAtMostTwice) {
  const std::size_t count = blocks().size() + 2;
  const long listOfBlocks = long(std::bit_width(count - 1)) + 1;  // it grows by doubling, before the first message
  for (int time = 0; time < 2; ++time) {
    const std::vector<CountingBridge::Count>& answer = request(header);
    ASSERT_EQ(answer.size(), count);
    long before = listOfBlocks;
    for (const CountingBridge::Count& built : answer) {
      EXPECT_LE(built.allocations - before, 2) << textOf(built.address.data(), 3);
      before = built.allocations;
    }
    EXPECT_GE(answer.back().allocations, 1) << "nothing was built";
  }
}

// ---- Storage that runs out ----

TEST_F(Memory, WhenStorageRunsOutARequestFailsAndTheNextIsAnswered) {
  const Bytes message = requestMessage("00 00 00");
  const long count = allocationsOf([&] { feed(message); });
  ASSERT_GT(count, 0);
  forget();
  for (const bool onwards : {false, true}) {
    for (long number = 1; number <= count; ++number) {
      BulkMsgType type = BulkMsg_NotSysEx;
      withFailure(number, onwards, [&] { type = feed(message); });
      EXPECT_EQ(type, BulkMsg_BulkRequest);
      assistant->closeMsg();
      forget();
      EXPECT_EQ(request("00 00 00"), BulkMsg_BulkRequest);
      EXPECT_EQ(shown(), (std::vector<int>{13, 14})) << number;
      EXPECT_EQ(sent().size(), 1U);
    }
  }
}

TEST_F(Memory, WhenStorageRunsOutInsideADumpItFailsAndTheNextIsReceived) {
  struct Greedy : FakeJobTools {
    using FakeJobTools::FakeJobTools;
    unsigned long storeForReceivedSysExBulk(CMA::TemporaryCoreModel*, std::uint8_t, std::uint8_t) override {
      allocate();
      return CMA::JOB::Result_Success;
    }
    void suspendOutputMidi() override { ++suspended; }
    void resumeOutputMidi() override { --suspended; }
    int suspended = 0;
  } greedy(record);
  OpenAssistant own(&manager, nullptr, nullptr, &greedy, nullptr, false);
  FakeBridge ownBridge(record, &own);
  const Bytes header = dumpMessage("0E 0A 05");
  const Bytes footer = dumpMessage("0F 0A 05");
  own.receiveBulkDump(header.data(), lengthOf(header), DevicePort_Main);
  forget();
  withFailure(1, true, [&] { own.receiveBulkDump(footer.data(), lengthOf(footer), DevicePort_Main); });
  EXPECT_EQ(greedy.suspended, 0);
  own.closeMsg();
  EXPECT_EQ(shown(), std::vector<int>{}) << "44 has no closing id";
  own.receiveBulkDump(header.data(), lengthOf(header), DevicePort_Main);
  own.receiveBulkDump(footer.data(), lengthOf(footer), DevicePort_Main);
  EXPECT_EQ(shown(), (std::vector<int>{11, 12, 1, 2}));
}

// Every allocation of the construction fails once, alone and with all that follow: the assistant stands, whatever is
// left of it, takes messages of every kind, and goes without a trace.
TEST_F(Memory, WhenStorageRunsOutWhileItIsConstructedItStandsAndGoes) {
  assistant->registerBDABridge(nullptr);
  assistant.reset();
  alignas(OpenAssistant) static std::byte place[sizeof(OpenAssistant)];
  OpenAssistant* made = nullptr;
  std::vector<CMA::JobReceiver*> jobs;
  const auto constructIt = [&] {
    jobs.clear();
    made = nullptr;
    made = new (place) OpenAssistant(&manager, nullptr, &jobs, &tools, &work, false);
  };
  const long count = allocationsOf(constructIt);
  made->~OpenAssistant();
  ASSERT_GT(count, 8330) << "one object a block";

  struct NoSink : Basekit::TracerSink {
    void write(const char*, std::size_t) noexcept override {}
  } none;
  Basekit::TracerSink* const before = Basekit::Tracer::setThreadSink(&none);
  const auto tryOut = [&](long number, bool onwards) {
    jobs.shrink_to_fit();
    withFailure(number, onwards, constructIt);
    ASSERT_NE(made, nullptr);
    record.records = false;
    FakeBridge own(record, made);
    for (const char* address : {"00 40 00", "0E 0A 05", "0F 0A 05", "0E 5F 00", "36 10 00", "05 05 05", "71 00 00"}) {
      const Bytes dump = dumpMessage(address, pattern(8));
      EXPECT_EQ(made->receiveBulkDump(dump.data(), lengthOf(dump), DevicePort_Main), BulkMsg_BulkDump);
      const Bytes ask = requestMessage(address);
      const BulkMsgType type = made->receiveBulkDump(ask.data(), lengthOf(ask), DevicePort_Main);
      EXPECT_TRUE(type == BulkMsg_BulkRequest || type == BulkMsg_RequestSkipped);
    }
    for (CMA::JobReceiver* job : jobs)
      if (job != nullptr) job->execEvent(nullptr, nullptr);
    made->~OpenAssistant();
    record.records = true;
  };
  // All of the first and the last ones, where the objects are; a sample of the blocks between.
  for (long number = 1; number <= count; number += number < 140 || number > count - 40 ? 1 : 211) tryOut(number, false);
  for (long number = 1; number <= count; number += number < 140 || number > count - 40 ? 7 : 1009) tryOut(number, true);
  Basekit::Tracer::setThreadSink(before);
}

}  // namespace
