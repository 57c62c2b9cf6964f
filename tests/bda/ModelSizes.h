#pragma once

// The sizes that the platform states for the parameter models, by the paths that the tests know the models by: "[i]" is
// any node of a list.

#include <array>
#include <string>

#include "bda/platform/CMA/ParameterModels.h"

namespace ModelSizes {

using Voice = CMA::VoiceParameterModel;
using Multi = CMA::MultiParameterModel;
using Arpeggio = CMA::ArpeggioParameterModel;
using Master = CMA::MasterParameterModel;
using Remote = CMA::RemoteParameterModel;
using System = CMA::SystemParameterModel;
using Additional = CMA::AdditionalParameterModel;

struct Group {
  const char* path;
  CMA::GroupSize size;
};
inline constexpr std::array kGroups{
    Group{"voice.type", Voice::kTypeSize},
    Group{"voice.common", Voice::kCommonSize},
    Group{"voice.commonExtra", Voice::kCommonExtraSize},
    Group{"voice.arpeggioCommon", Voice::kArpeggioCommonSize},
    Group{"voice.arpeggioTempo", Voice::kArpeggioTempoSize},
    Group{"voice.arpeggioEntry", Voice::kArpeggioEntrySize},
    Group{"voice.arpeggioSix", Voice::kArpeggioSixSize},
    Group{"voice.insertionA", Voice::kInsertionASize},
    Group{"voice.insertionB", Voice::kInsertionBSize},
    Group{"voice.insertionL", Voice::kInsertionLSize},
    Group{"voice.element[i].params", Voice::ElementNode::kParamsSize},
    Group{"voice.element[i].wave", Voice::ElementNode::kWaveSize},
    Group{"voice.key[i].params", Voice::KeyNode::kParamsSize},
    Group{"voice.key[i].wave", Voice::KeyNode::kWaveSize},
    Group{"multi.common", Multi::kCommonSize},
    Group{"multi.reverb", Multi::kReverbSize},
    Group{"multi.reverbSettings", Multi::kReverbSettingsSize},
    Group{"multi.chorus", Multi::kChorusSize},
    Group{"multi.chorusSettings", Multi::kChorusSettingsSize},
    Group{"multi.insertionA", Multi::kInsertionASize},
    Group{"multi.insertionB", Multi::kInsertionBSize},
    Group{"multi.masterEq", Multi::kMasterEqSize},
    Group{"multi.masterEffect", Multi::kMasterEffectSize},
    Group{"multi.masterEffectSettings", Multi::kMasterEffectSettingsSize},
    Group{"multi.adPart[i].params", Multi::AdPartNode::kParamsSize},
    Group{"multi.part[i].bankProgram", Multi::PartNode::kBankProgramSize},
    Group{"multi.part[i].main", Multi::PartNode::kMainSize},
    Group{"multi.part[i].extra", Multi::PartNode::kExtraSize},
    Group{"arpeggio.tempo", Arpeggio::kTempoSize},
    Group{"arpeggio.common", Arpeggio::kCommonSize},
    Group{"arpeggio.part[i].params", Arpeggio::PartNode::kParamsSize},
    Group{"arpeggio.part[i].six", Arpeggio::PartNode::kSixSize},
    Group{"master.common", Master::kCommonSize},
    Group{"master.zone[i].params", Master::ZoneNode::kParamsSize},
    Group{"remote.common", Remote::kCommonSize},
    Group{"remote.controller[i].params", Remote::ControllerNode::kParamsSize},
    Group{"system.common", System::kCommonSize},
    Group{"system.tune", System::kTuneSize},
    Group{"system.adPart[i].params", System::AdPartNode::kParamsSize},
    Group{"system.adPart[i].insertionA", System::AdPartNode::kInsertionASize},
    Group{"system.adPart[i].insertionB", System::AdPartNode::kInsertionBSize},
    Group{"system.masterEq", System::kMasterEqSize},
    Group{"system.masterEffect", System::kMasterEffectSize},
    Group{"system.masterEffectSettings", System::kMasterEffectSettingsSize},
    Group{"system.quickSetup[i].params", System::QuickSetupNode::kParamsSize},
    Group{"system.sequencer", System::kSequencerSize},
    Group{"system.remote", System::kRemoteSize},
    Group{"system.utility", System::kUtilitySize},
    Group{"additional.params", Additional::kParamsSize},
};

// Characters of a name, or nodes of a list.
struct Count {
  const char* path;
  std::size_t count;
};
inline constexpr std::array kNames{
    Count{"voice.name", Voice::kNameLength},
    Count{"multi.name", Multi::kNameLength},
    Count{"master.name", Master::kNameLength},
    Count{"remote.name1", Remote::kName1Length},
    Count{"remote.name2", Remote::kName2Length},
    Count{"remote.controller[i].name1", Remote::ControllerNode::kName1Length},
    Count{"remote.controller[i].name2", Remote::ControllerNode::kName2Length},
    Count{"system.quickSetup[i].name", System::QuickSetupNode::kNameLength},
};
inline constexpr std::array kLists{
    Count{"voice.element", Voice::kElementCount},         Count{"voice.key", Voice::kKeyCount},
    Count{"multi.adPart", Multi::kAdPartCount},           Count{"multi.part", Multi::kPartCount},
    Count{"arpeggio.part", Arpeggio::kPartCount},         Count{"master.zone", Master::kZoneCount},
    Count{"remote.controller", Remote::kControllerCount}, Count{"system.adPart", System::kAdPartCount},
    Count{"system.quickSetup", System::kQuickSetupCount},
};

// "multi.part[3].main" -> "multi.part[i].main".
inline std::string anyNode(const std::string& path) {
  std::string any;
  bool isNumber = false;
  for (const char c : path) {
    if (c == ']') any += 'i';
    isNumber = isNumber && c != ']';
    if (!isNumber) any += c;
    isNumber = isNumber || c == '[';
  }
  return any;
}

}  // namespace ModelSizes
