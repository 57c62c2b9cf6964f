#include "ParameterBlocks.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>

#include "ParameterBlockFixture.h"
#include "support/Bytes.h"

// What all parameter blocks of voices, multis, performances, masters and remote settings have in common, in the
// temporary models and in the live ones.

namespace BDA {
namespace {

using ParameterBlocks::Kind;
using ParameterBlocks::Routine;
using ParameterBlocks::Step;

struct Served {
  unsigned type;
  bool isLive;
  unsigned index;  // of the block: an inner one where there are several
};

std::vector<Served> allServed() {
  std::map<unsigned, unsigned> lastIndex;
  for (const InstrumentMap::Block& block : ParameterBlocks::allBlocks())
    lastIndex[block.type] = std::max(lastIndex[block.type], block.index);
  std::vector<Served> all;
  for (const auto& [type, last] : lastIndex)
    for (const bool isLive : {false, true}) all.push_back({type, isLive, (last + 1) / 2});
  return all;
}

class ParameterBlock : public ParameterBlockFixture, public testing::WithParamInterface<Kind> {
 protected:
  // Runs the test with every type of block of the kind, in the temporary models and in the live ones.
  template <typename Test>
  void forEachBlock(Test test) {
    const std::vector<unsigned>& types = GetParam().types;
    for (const Served& block : allServed()) {
      if (std::find(types.begin(), types.end(), block.type) == types.end()) continue;
      SCOPED_TRACE("type " + std::to_string(block.type) + (block.isLive ? ", live" : ", temporary"));
      serve(block.type, block.isLive, block.index);
      test();
      record.records = true;
      record.heal();
      calls();
      setDevice(0);
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Of, ParameterBlock, testing::ValuesIn(ParameterBlocks::kKinds), [](const auto& test) {
  return test.param.className + std::to_string(test.param.types.front());
});

TEST_P(ParameterBlock, SetsItsParametersInOrder) {
  forEachBlock([this] {
    const Bytes data = pattern();
    EXPECT_EQ(served->setBulkDumpMessage(data.data(), std::uint32_t(data.size())), 0u);
    EXPECT_EQ(calls(), expectedCalls(data));
  });
}

TEST_P(ParameterBlock, AnyOtherLoadSkippedFlagMeansTheLiveModelsToVoicesAndTheTemporaryOnesToAllElse) {
  forEachBlock([this] {
    const bool isLive = served->getLoadSkipped() == 1;
    const bool isVoice = kind->file == "Voice";
    if (isLive != isVoice) return;
    for (const std::uint8_t flag : Bytes{2, 0x80, 255}) {
      served->setLoadSkipped(flag);
      const Bytes data = pattern();
      EXPECT_EQ(receive(data), expectedCalls(data)) << unsigned{flag};
      EXPECT_EQ(dump(), ParameterBlocks::canonical(steps, data)) << unsigned{flag};
      calls();
    }
  });
}

TEST_P(ParameterBlock, EachBitOfTheDataReachesItsParametersAndNoOthers) {
  forEachBlock([this] {
    const Bytes before = pattern();
    const Lines callsBefore = expectedCalls(before);
    for (std::size_t byte = 0; byte < kind->length; ++byte)
      for (unsigned bit = 1; bit < 0x100; bit *= 2) {
        Bytes data = before;
        data[byte] = std::uint8_t(data[byte] ^ bit);
        const Lines told = receive(data);
        ASSERT_EQ(told, expectedCalls(data)) << "byte " << byte << ", bit " << bit;
        if (bit == 0x80) continue;  // no 7-bit byte has it; the low byte of a pair ORs it into the high one
        const bool isCarried = (ParameterBlocks::carriedBits(steps, before, byte) & bit) != 0;
        ASSERT_EQ(told != callsBefore, isCarried) << "byte " << byte << ", bit " << bit;
      }
  });
}

TEST_P(ParameterBlock, ReceivesAnyNoise) {
  forEachBlock([this] {
    unsigned seed = 1;
    for (int i = 0; i < 50; ++i) {
      Bytes data(kind->length);
      for (std::uint8_t& byte : data) byte = std::uint8_t(valueFor(seed++));
      ASSERT_EQ(receive(data), expectedCalls(data));
    }
  });
}

TEST_P(ParameterBlock, DumpsItsParametersAndZerosBetweenThem) {
  forEachBlock([this] {
    for (unsigned seed = 1; seed < 50; ++seed) {
      fillModels(seed * 100000);
      ASSERT_EQ(dump(), expectedDump());
      ASSERT_EQ(calls(), ParameterBlocks::expectedCallsOfDump(steps)) << "dumping wrote to the models";
    }
  });
}

TEST_P(ParameterBlock, EachBitOfAParameterReachesItsBytesAndNoOthers) {
  forEachBlock([this] {
    fillModels();
    record.records = false;
    std::set<Testing::FakeGroup*> own;
    for (const Step& step : steps)
      if (step.group != nullptr) own.insert(step.group);
    for (Testing::FakeGroup* group : own)
      for (unsigned index = 0; index < 160; ++index)
        for (unsigned bit = 1; bit < 0x10000; bit *= 2) {
          (*group)[index] = std::uint16_t((*group)[index] ^ bit);
          ASSERT_EQ(dump(), expectedDump()) << group->path() << ' ' << index << ", bit " << bit;
          (*group)[index] = std::uint16_t((*group)[index] ^ bit);
        }
  });
}

TEST_P(ParameterBlock, ReadsNothingButItsOwn) {
  forEachBlock([this] {
    fillModels();
    const Bytes before = dump();
    fill(others, 777);
    for (auto& [path, group] : models.groups) {
      std::set<unsigned> own;
      for (const Step& step : steps)
        if (step.group == group) {
          own.insert({step.index, step.index2});
          if (step.routine == Routine::selection) own.insert({0, 1, 2});
        }
      for (unsigned index = 0; index < 256; ++index)
        if (own.count(index) == 0) (*group)[index] = std::uint16_t(~(*group)[index]);
    }
    EXPECT_EQ(dump(), before);
  });
}

TEST_P(ParameterBlock, DumpsACompleteMessage) {
  forEachBlock([this] {
    fillModels();
    setDevice(9);
    std::vector<Bytes> messages;
    EXPECT_EQ(served->getBulkDumpMessage(messages), 0u);
    EXPECT_EQ(messages, std::vector<Bytes>{Testing::dumpMessage(address, expectedDump(), 9)});
  });
}

TEST_P(ParameterBlock, DumpsNothingWithoutADeviceNumber) {
  forEachBlock([this] {
    setDevice(17);
    std::vector<Bytes> messages;
    EXPECT_EQ(served->getBulkDumpMessage(messages), 0x80000000u);
    EXPECT_EQ(messages, std::vector<Bytes>{bytesOf("F0 7D")});
  });
}

TEST_P(ParameterBlock, LeavesTheBytesOfGapsUntouched) {
  forEachBlock([this] {
    fillModels();
    Bytes data(kind->length, 0x55);
    ASSERT_EQ(exec(data, kDump), 0u);
    const Bytes any(kind->length, 0);
    for (std::size_t byte = 0; byte < data.size(); ++byte) {
      if (ParameterBlocks::carriedBits(steps, any, byte) == 0) {
        EXPECT_EQ(data[byte], 0x55) << byte;
      }
    }
  });
}

TEST_P(ParameterBlock, RefusesEveryOtherLength) {
  forEachBlock([this] {
    for (std::size_t length = 0; length <= kind->length + 2; ++length) {
      if (length == kind->length) continue;
      for (const std::uint8_t isReceive : {kReceive, kDump, std::uint8_t{2}}) {
        Bytes data(length, 0x55);
        data.shrink_to_fit();
        ASSERT_EQ(exec(data, isReceive), 0x88000000u) << length;
        ASSERT_EQ(reports(), Lines{ParameterBlocks::wrongLength(*kind, length)});
        ASSERT_EQ(data, Bytes(length, 0x55));
      }
    }
    EXPECT_EQ(served->execBulkBlock(nullptr, 0x12345, kReceive), 0x88000000u);
    EXPECT_EQ(reports(), Lines{ParameterBlocks::wrongLength(*kind, 0x12345)});
    EXPECT_EQ(calls(), Lines{});
  });
}

TEST_P(ParameterBlock, RefusesToReadOrWriteNowhere) {
  forEachBlock([this] {
    for (const std::uint8_t isReceive : {kReceive, kDump})
      EXPECT_EQ(served->execBulkBlock(nullptr, std::uint32_t(kind->length), isReceive), 0x88000000u);
    EXPECT_EQ(calls(), Lines{});
    EXPECT_EQ(reports(), Lines{});
  });
}

TEST_P(ParameterBlock, FailsWithoutAnyOfItsModelsNodesAndGroupsBeforeAllElse) {
  forEachBlock([this] {
    for (const std::string& missing : neededNodes())
      for (const std::uint8_t isReceive : {kReceive, kDump, std::uint8_t{2}})
        for (const std::size_t length : {kind->length, kind->length + 1}) {
          record.fail(missing);
          Bytes data(length, 0x55);
          EXPECT_EQ(exec(data, isReceive), 0x80000000u) << missing;
          EXPECT_EQ(reports(), Lines{ParameterBlocks::noModel(*kind)}) << missing;
          EXPECT_EQ(data, Bytes(length, 0x55));
          EXPECT_EQ(calls(), Lines{}) << missing;
          record.heal();
        }
  });
}

TEST_P(ParameterBlock, ReportsAFailedDumpTwice) {
  forEachBlock([this] {
    record.fail(*neededNodes().begin());
    std::vector<Bytes> messages;
    EXPECT_EQ(served->getBulkDumpMessage(messages), 0x80000000u);
    EXPECT_EQ(messages, std::vector<Bytes>{Bytes{}});
    EXPECT_EQ(reports(),
              (Lines{ParameterBlocks::noModel(*kind),
                     "BulkExecuter.cpp [BDA::BulkExecuter::getBulkDumpMessageImplement] Bulk create Error !!!\n"}));
  });
}

TEST_P(ParameterBlock, ConvertsNothingInOtherDirections) {
  forEachBlock([this] {
    fillModels();
    for (unsigned direction = 2; direction < 0x100; ++direction) {
      Bytes data(kind->length, 0x55);
      EXPECT_EQ(exec(data, std::uint8_t(direction)), 0u);
      EXPECT_EQ(data, Bytes(kind->length, 0x55));
    }
    for (const std::string& call : calls()) EXPECT_TRUE(call.starts_with("changeCorrectType(")) << call;
  });
}

TEST_P(ParameterBlock, IgnoresWhatSettingAParameterAnswers) {
  forEachBlock([this] {
    record.fail("set");
    record.fail("set16");
    const Bytes data = pattern();
    EXPECT_EQ(receive(data), expectedCalls(data));
  });
}

TEST_P(ParameterBlock, DumpsZerosForParametersThatCannotBeRead) {
  forEachBlock([this] {
    fillModels();
    record.fail("get");
    record.fail("get16");
    record.fail("getName");
    EXPECT_EQ(dump(), Bytes(kind->length, 0));
  });
}

TEST_P(ParameterBlock, IsConvertedAsEverAfterAnEditorThrew) {
  forEachBlock([this] {
    const Bytes data = pattern();
    for (const char* const call : {"set", "set16", "setName", "get", "get16", "getName"})
      for (const std::uint8_t isReceive : {kReceive, kDump}) {
        for (unsigned nth = 1;; ++nth) {
          record.heal();
          record.raise(call, nth);
          Bytes converted = data;
          try {
            exec(converted, isReceive);
            break;  // it has fewer of these
          } catch (const std::bad_alloc&) {
          }
          const Lines told = calls();
          for (const Step& step : steps) {
            if (step.routine == Routine::release) {
              EXPECT_EQ(told.back(), "changeCorrectType(" + step.path + ", true)");
            }
          }
        }
        record.heal();
        calls();
      }
    ASSERT_EQ(receive(data), expectedCalls(data));
    EXPECT_EQ(dump(), expectedDump());
  });
}

TEST_P(ParameterBlock, LeavesWhatTheHeaderSaidAsItIs) {
  forEachBlock([this] {
    const std::uint8_t loadSkipped = served->getLoadSkipped();
    for (const std::uint8_t isReceive : {kReceive, kDump}) {
      Bytes data = pattern();
      EXPECT_EQ(exec(data, isReceive), 0u);
      EXPECT_EQ(served->getLoadSkipped(), loadSkipped);
      EXPECT_EQ(served->getCurrentNumber(), number);
    }
  });
}

// ---- Properties ----

RC_GTEST_FIXTURE_PROP(ParameterBlockFixture, ReceivedDataComeBackInTheirCanonicalFormAndChangeNothingASecondTime, ()) {
  const std::vector<Served> all = allServed();
  const Served chosen = all[*rc::gen::inRange<std::size_t>(0, all.size())];
  serve(chosen.type, chosen.isLive, chosen.index);
  const Bytes data = *rc::gen::container<Bytes>(kind->length, rc::gen::inRange<std::uint8_t>(0, 0x80));
  receive(data);
  const Bytes back = dump();
  RC_ASSERT(back == ParameterBlocks::canonical(steps, data));
  calls();
  const Lines told = receive(back);
  RC_ASSERT(dump() == back);
  RC_ASSERT(told == expectedCalls(back));
  calls();
}

// A value that the step's bytes can carry.
std::uint16_t carried(Routine routine, unsigned value) {
  switch (routine) {
    case Routine::pair:
      return value % 0x4000;
    case Routine::split:
    case Routine::nibsplit:
      return value % 0x100;
    case Routine::high:
      return value % 2 * 0x80;
    case Routine::nibbles:
    case Routine::low:
      return value % 0x10;
    case Routine::bits:
      return value % 2;
    default:
      return value % 0x80;
  }
}

RC_GTEST_FIXTURE_PROP(ParameterBlockFixture, DumpedParametersComeBackAsTheyWere, ()) {
  const std::vector<Served> all = allServed();
  const Served chosen = all[*rc::gen::inRange<std::size_t>(0, all.size())];
  serve(chosen.type, chosen.isLive, chosen.index);
  const auto anyValue = rc::gen::resize(100, rc::gen::inRange<unsigned>(0, 0x10000));
  using Place = std::pair<Testing::FakeGroup*, unsigned>;
  std::map<Place, std::uint16_t> before;
  std::map<std::size_t, std::uint16_t> ofSharedByte;  // two parameters that one byte carries agree
  for (const Step& step : steps) {
    if (step.routine == Routine::name) {
      const auto letters = rc::gen::container<std::string>(step.size, rc::gen::inRange<char>(' ', 0x7F));
      step.name->text = (*letters).substr(0, *rc::gen::inRange<std::size_t>(0, step.size + 1));
    } else if (step.routine == Routine::selection) {
      for (unsigned i = 0; i < 3; ++i) before[{step.group, i}] = carried(step.routine, *anyValue);
    } else if (step.group != nullptr) {
      std::uint16_t value = carried(step.routine, *anyValue);
      if (step.routine == Routine::byte) value = ofSharedByte.emplace(step.byte, value).first->second;
      before[{step.group, step.index}] = value;
      if (step.routine == Routine::nibbles) before[{step.group, step.index2}] = carried(step.routine, *anyValue);
    }
  }
  std::vector<std::string> names;
  for (const Step& step : steps)
    if (step.name != nullptr) names.push_back(step.name->text);
  for (const auto& [place, value] : before) (*place.first)[place.second] = value;

  const Bytes data = dump();
  for (const auto& [place, value] : before) (*place.first)[place.second] = 0x55;
  for (const Step& step : steps)
    if (step.name != nullptr) step.name->text = "other";
  receive(data);

  for (const auto& [place, value] : before) RC_ASSERT((*place.first)[place.second] == value);
  std::size_t next = 0;
  for (const Step& step : steps)
    if (step.name != nullptr) RC_ASSERT(step.name->text == names[next++]);
  calls();
}

// ---- All blocks of the instrument ----

class ParameterBlockMap : public ParameterBlockFixture {};

TEST_F(ParameterBlockMap, EveryBlockReachesTheNodeOfItsIndex) {
  for (const InstrumentMap::Block& block : ParameterBlocks::allBlocks())
    for (const bool isLive : {false, true}) {
      serve(block.type, isLive, block.index);
      const Bytes data = pattern();
      ASSERT_EQ(receive(data), expectedCalls(data)) << address;
      ASSERT_EQ(dump(), ParameterBlocks::canonical(steps, data)) << address;
      calls();
    }
}

TEST_F(ParameterBlockMap, EveryKindHasTheLengthAndClassOfTheMap) {
  for (const InstrumentMap::Block& block : ParameterBlocks::allBlocks()) {
    const Kind& of = ParameterBlocks::kindOf(block.type);
    const InstrumentMap::Executer& mapped = InstrumentMap::kExecuters.at(block.executer - 1);
    EXPECT_EQ(mapped.number, block.executer);
    EXPECT_EQ(mapped.name, of.className);
    EXPECT_EQ(mapped.dataLength, of.length);
    EXPECT_EQ(creator.getExecuter(block.executer)->getDataLength(), of.length);
  }
}

TEST_F(ParameterBlockMap, NodesBeyondTheLastAreMissing) {
  const std::map<unsigned, unsigned> counts{{69, 8},   {70, 8},   {80, 73}, {90, 16}, {91, 16}, {92, 1},
                                            {102, 16}, {103, 16}, {104, 1}, {107, 4}, {110, 12}};
  for (const auto& [type, count] : counts)
    for (const bool isLive : {false, true})
      for (const unsigned index : {count, 200U, 255U}) {
        serve(type, isLive);
        served->setBlockInfo(Address(0x41, 0, 0), type, index);
        Bytes data(kind->length, 1);
        EXPECT_EQ(exec(data, kReceive), 0x80000000u) << type;
        EXPECT_EQ(exec(data, kDump), 0x80000000u) << type;
        EXPECT_EQ(reports(), Lines(2, ParameterBlocks::noModel(*kind)));
        EXPECT_EQ(calls(), Lines{});
      }
}

TEST_F(ParameterBlockMap, ANewNumberIsReadWithEachBlock) {
  serve(69, true, 2);
  tools.liveVoice(7);
  served->setCurrentNumber(7);
  const Bytes data = pattern();
  const Lines told = receive(data);
  EXPECT_EQ(told[1], "set(voice[7].element[2].params, 0, " + std::to_string(data[0]) + ", flag 1)");
}

TEST_F(ParameterBlockMap, ATemporaryVoiceOfAnotherNumberIsMissing) {
  serve(69, false, 2);
  served->setCurrentNumber(0);
  Bytes data = pattern();
  EXPECT_EQ(exec(data, kReceive), 0x80000000u);
  EXPECT_EQ(reports(), Lines{ParameterBlocks::noModel(*kind)});
}

}  // namespace
}  // namespace BDA
