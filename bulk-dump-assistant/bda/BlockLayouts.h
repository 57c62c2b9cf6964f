#pragma once

// Which layout a block of parameters has, by its type in the address map, bound to the models that it converts. Nobody
// converts by this: it is for whoever wants to say what a data byte carries.

#include <optional>
#include <span>
#include <vector>

#include "LayoutTargets.h"

namespace BDA {

// Those that the blocks of a unit convert; the others are null.
struct BlockModels {
  Voice* voice = nullptr;
  Multi* multi = nullptr;
  Arpeggio* arpeggio = nullptr;
  Master* master = nullptr;
  Remote* remote = nullptr;
  System* system = nullptr;
};

// The rows of a layout, with the groups and names that their slots are. Null: the model does not have it.
struct BoundLayout {
  std::size_t length;
  std::span<const Row> rows;
  std::vector<CMA::ParameterGroup*> groups;
  std::vector<ModelSrv::ModelPart*> names;
};

template <const auto& kLayout>
BoundLayout bind(const Targets<kLayout>& targets) {
  static_assert(kIsSound<kLayout>);
  return {kLayout.length,
          kLayout.rows,
          {targets.groups.begin(), targets.groups.end()},
          {targets.names.begin(), targets.names.end()}};
}

inline BoundLayout bindElement(bool isFilter, const BlockModels& models, std::uint32_t index) {
  Voice::ElementNode* const element = from(models.voice, &Voice::getElement, index);
  return isFilter ? bind(NormalVoiceElmFilter::targetsIn(element)) : bind(NormalVoiceElmOsc::targetsIn(element));
}

// Of the block `index` of that type: counted from the first of its row of the map. Nothing: it carries no parameters.
inline std::optional<BoundLayout> layoutOf(unsigned blockType, std::uint32_t index, const BlockModels& models) {
  const auto& [voice, multi, arpeggio, master, remote, system] = models;
  // clang-format off
  switch (blockType) {
    case 61: return bind(VoiceCommon::targetsIn<VoiceCommon::kNormal>(voice, multi));
    case 72: return bind(VoiceCommon::targetsIn<VoiceCommon::kDrum>(voice, multi));
    case 62: case 73: case 83: case 95: return bind(VoiceCommonRev::targetsIn(multi));
    case 63: case 74: case 84: case 96: return bind(VoiceCommonCho::targetsIn(multi));
    case 64: case 75: return bind(VoiceInsertion::targetsOfA(voice));
    case 65: case 76: return bind(VoiceInsertion::targetsOfB(voice));
    case 66: case 77: return bind(VoiceCommonInsL::targetsIn(voice));
    case 67: return bind(VoiceCommonCtrl::targetsIn<VoiceCommonCtrl::kNormal>(voice));
    case 78: return bind(VoiceCommonCtrl::targetsIn<VoiceCommonCtrl::kDrum>(voice));
    case 68: case 79: return bind(VoiceCommonArp::targetsIn(voice));
    case 69: case 70: return bindElement(blockType == 70, models, index);
    case 80: return bind(DrumVoiceKey::targetsIn(voice, index));
    case 82: return bind(MultiCommon::targetsIn(multi));
    case 94: return bind(PerfCommon::targetsIn(multi));
    case 85: case 97: return bind(MultiInsertion::targetsOfA(multi));
    case 86: case 98: return bind(MultiInsertion::targetsOfB(multi));
    case 87: case 99: return bind(MultiEq::targetsIn(multi));
    case 88: case 100: return bind(MultiEffect::targetsIn(multi));
    case 89: return bind(MultiCommonArp::targetsIn<MultiCommonArp::kMulti>(arpeggio));
    case 101: return bind(MultiCommonArp::targetsIn<MultiCommonArp::kPerformance>(arpeggio));
    case 90: return bind(MultiPart::targetsIn<MultiPart::kLayout>(from(multi, &Multi::getPart, index)));
    case 102: return bind(MultiPart::targetsIn<PerfPart::kLayout>(from(multi, &Multi::getPart, index)));
    case 91: case 103: return bind(MultiPartArp::targetsIn(arpeggio, index));
    case 92: case 104: return bind(MultiAdPart::targetsIn(multi, index));
    case 106: return bind(MasterCommon::targetsIn(master));
    case 107: return bind(MasterZone::targetsIn(master, index));
    case 109: return bind(RemoteCommon::targetsIn(remote));
    case 110: return bind(RemoteController::targetsIn(remote, index));
    case 49: return bind(SystemCommon::targetsIn(system));
    case 50: return bind(SystemAd::targetsIn(SystemAd::partIn(system, index)));
    case 51: return bind(SystemAd::targetsOfA(SystemAd::partIn(system, index)));
    case 52: return bind(SystemAd::targetsOfB(SystemAd::partIn(system, index)));
    case 53: return bind(SystemEq::targetsIn(system));
    case 54: return bind(SystemEffect::targetsIn(system));
    case 57: return bind(SystemUserQuickSetup::targetsIn(system, index));
    case 58: return bind(SystemSeq::targetsIn(system));
    case 59: return bind(SystemRemote::targetsIn(system));
    default: return std::nullopt;
  }
  // clang-format on
}

}  // namespace BDA
