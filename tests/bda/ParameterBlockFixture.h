#pragma once

// One parameter block on a recording platform, converted by its executer alone.

#include <set>

#include "ExecuterFixture.h"
#include "ParameterBlocks.h"

namespace BDA {

inline constexpr std::uint8_t kReceive = 1;
inline constexpr std::uint8_t kDump = 0;

class ParameterBlockFixture : public ExecuterFixture {
 protected:
  // The current numbers: of a normal voice, and of a drum voice.
  static constexpr std::uint8_t kNormalVoice = 5;
  static constexpr std::uint8_t kDrumVoice = 6;

  // A block of `type`, in the temporary models or in the live ones, serves from now on.
  void serve(unsigned type, bool isLive, unsigned index = 0) {
    kind = &ParameterBlocks::kindOf(type);
    blockIndex = index;
    const bool isNormalVoice = type < 72;
    number = isNormalVoice ? kNormalVoice : kDrumVoice;
    tools.liveVoice(number, isNormalVoice);
    tools.openAll(isNormalVoice);
    tools.openTemporaryVoice(number, isNormalVoice);
    models = modelsOf(isLive);
    others = modelsOf(!isLive);
    steps = ParameterBlocks::stepsOf(*kind, index);
    ParameterBlocks::findTargets(steps, models);
    for (const InstrumentMap::Block& block : ParameterBlocks::allBlocks())
      if (block.type == type && block.index == index) {
        address = Testing::textOf({block.hi, block.mid, block.lo});
        served = &executer(block.executer, address, type, index);
        served->setLoadSkipped(isLive ? 1 : 0);
        served->setCurrentNumber(number);
        record.take();
        return;
      }
    throw std::logic_error("no such block");
  }

  BDAErr exec(Bytes& data, std::uint8_t isReceive) {
    return served->execBulkBlock(data.data(), std::uint32_t(data.size()), isReceive);
  }
  // Receives without writing to the data; what the models were told.
  Lines receive(Bytes data) {
    const Bytes sent = data;
    EXPECT_EQ(exec(data, kReceive), 0u);
    EXPECT_EQ(data, sent) << "receiving wrote to the data";
    return calls();
  }
  Bytes dump() {
    Bytes data(kind->length, 0);
    EXPECT_EQ(exec(data, kDump), 0u);
    return data;
  }

  Bytes pattern() const { return ParameterBlocks::patternOf(*kind, steps); }
  Lines expectedCalls(const Bytes& data) const { return ParameterBlocks::expectedCalls(steps, blockIndex, data); }
  Bytes expectedDump() const { return ParameterBlocks::expectedDump(steps, kind->length); }

  // Other values everywhere for every `seed`; those of switches are 0, 1 and 2.
  static void fill(ParameterBlocks::Models& filled, unsigned seed) {
    for (auto& [path, group] : filled.groups)
      for (unsigned index = 0; index < 256; ++index) (*group)[index] = valueFor(seed++);
    for (auto& [path, name] : filled.names) name->text = "Name of " + std::to_string(seed++);
  }
  void fillModels(unsigned seed = 1) {
    fill(models, seed);
    fill(others, seed + 12345);
    for (const ParameterBlocks::Step& step : steps)
      if (step.routine == ParameterBlocks::Routine::bits)
        (*step.group)[step.index] = std::uint16_t((*step.group)[step.index] % 3);
  }
  static std::uint16_t valueFor(unsigned seed) { return std::uint16_t(seed * 2654435761U >> 13); }

  // The names under which the platform can be told to miss what the block needs: models, nodes, groups, names.
  std::set<std::string> neededNodes() const {
    std::set<std::string> nodes;
    for (const ParameterBlocks::Step& step : steps) {
      const std::size_t model = step.target.find('.');
      const std::string rest = model == std::string::npos ? "" : step.target.substr(model);
      const std::string modelPath = models.realPaths.at(step.target.substr(0, model));
      // A live voice is asked for by number.
      nodes.insert(modelPath.substr(0, modelPath.find('[')));
      for (std::size_t end = rest.find('.', 1); !rest.empty(); end = rest.find('.', end + 1)) {
        nodes.insert(modelPath + rest.substr(0, end));
        if (end == std::string::npos) break;
      }
    }
    return nodes;
  }

  const ParameterBlocks::Kind* kind = nullptr;
  unsigned blockIndex = 0;
  std::uint8_t number = 0;
  std::string address;
  ParameterBlocks::Models models;  // that the block is about
  ParameterBlocks::Models others;  // live ones when those are temporary, and the other way round
  ParameterBlocks::Steps steps;
  BulkExecuter* served = nullptr;

 private:
  ParameterBlocks::Models modelsOf(bool isLive) {
    ParameterBlocks::Models made;
    made.add(isLive ? tools.liveVoice(number) : *tools.temporaryVoice(number));
    made.add(isLive ? tools.liveMulti() : *tools.temporaryMulti);
    made.add(isLive ? tools.liveArpeggio() : *tools.temporaryArpeggio);
    made.add(isLive ? tools.liveMaster() : *tools.temporaryMaster);
    made.add(isLive ? tools.liveRemote() : *tools.temporaryRemote);
    return made;
  }
};

}  // namespace BDA
