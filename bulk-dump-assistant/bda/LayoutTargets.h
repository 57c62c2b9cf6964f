#pragma once

// Where in the models the slots of a layout lie. A model or node that is missing leaves its slots null.

#include "MasterRemoteLayouts.h"
#include "ModelNodes.h"
#include "MultiLayouts.h"
#include "SystemLayouts.h"
#include "VoiceLayouts.h"

namespace BDA {

// ---- Voices --------------------------------------------------------------------------------------------------------

// A single voice keeps some of its parameters in the multi model.
namespace VoiceCommon {

template <const auto& kLayout>
Targets<kLayout> targetsIn(Voice* voice, Multi* multi) {
  Multi::PartNode* const first = from(multi, &Multi::getPart, 0U);
  return {
      {from(voice, &Voice::getCommon), from(voice, &Voice::getCommonExtra), from(first, &Multi::PartNode::getExtra)},
      {from(voice, &Voice::getName)}};
}

}  // namespace VoiceCommon

namespace VoiceCommonArp {

inline Targets<kLayout> targetsIn(Voice* voice) {
  CMA::ParameterGroup* const entryGroup =
      voice == nullptr ? nullptr : voice->getArpeggioEntry(voice->getArpeggioEntryIndex());
  return {{from(voice, &Voice::getArpeggioCommon), from(voice, &Voice::getArpeggioTempo), entryGroup,
           from(voice, &Voice::getArpeggioSix)}};
}

}  // namespace VoiceCommonArp

namespace VoiceCommonRev {

inline Targets<kLayout> targetsIn(Multi* multi) {
  return {{from(multi, &Multi::getReverb), from(multi, &Multi::getReverbSettings)}};
}

}  // namespace VoiceCommonRev

namespace VoiceCommonCho {

inline Targets<kLayout> targetsIn(Multi* multi) {
  return {{from(multi, &Multi::getChorus), from(multi, &Multi::getChorusSettings)}};
}

}  // namespace VoiceCommonCho

namespace VoiceInsertion {

inline Targets<kInsEffect> targetsOfA(Voice* voice) { return {{from(voice, &Voice::getInsertionA)}}; }
inline Targets<kInsEffect> targetsOfB(Voice* voice) { return {{from(voice, &Voice::getInsertionB)}}; }

}  // namespace VoiceInsertion

namespace VoiceCommonInsL {

inline Targets<kLayout> targetsIn(Voice* voice) { return {{from(voice, &Voice::getInsertionL)}}; }

}  // namespace VoiceCommonInsL

namespace VoiceCommonCtrl {

template <const auto& kLayout>
Targets<kLayout> targetsIn(Voice* voice) {
  return {{from(voice, &Voice::getCommon)}};
}

}  // namespace VoiceCommonCtrl

namespace NormalVoiceElmOsc {

inline Targets<kLayout> targetsIn(Voice::ElementNode* node) {
  return {{from(node, &Voice::ElementNode::getParams), from(node, &Voice::ElementNode::getWave)}};
}

}  // namespace NormalVoiceElmOsc

namespace NormalVoiceElmFilter {

inline Targets<kLayout> targetsIn(Voice::ElementNode* node) { return {{from(node, &Voice::ElementNode::getParams)}}; }

}  // namespace NormalVoiceElmFilter

namespace DrumVoiceKey {

inline Targets<kLayout> targetsIn(Voice* voice, std::uint32_t index) {
  Voice::KeyNode* const node = from(voice, &Voice::getKey, index);
  return {{from(node, &Voice::KeyNode::getParams), from(node, &Voice::KeyNode::getWave)}};
}

}  // namespace DrumVoiceKey

// ---- Multis and performances ---------------------------------------------------------------------------------------

// The common blocks also switch the insertion effects of the first parts on and off.
template <const auto& kLayout>
void addPartTargets(Targets<kLayout>& targets, Multi* multi, int adPart0, int part0, int parts) {
  targets.groups[std::size_t(adPart0)] = from(from(multi, &Multi::getAdPart, 0U), &Multi::AdPartNode::getParams);
  for (int i = 0; i < parts; ++i)
    targets.groups[std::size_t(part0) + std::size_t(i)] =
        from(from(multi, &Multi::getPart, std::uint32_t(i)), &Multi::PartNode::getMain);
}

namespace MultiCommon {

inline Targets<kLayout> targetsIn(Multi* multi) {
  Targets<kLayout> targets{};
  targets.groups[common] = from(multi, &Multi::getCommon);
  addPartTargets(targets, multi, adPart0, part0, kParts);
  return targets;
}

}  // namespace MultiCommon

namespace PerfCommon {

inline Targets<kLayout> targetsIn(Multi* multi) {
  Targets<kLayout> targets{};
  targets.names[name] = from(multi, &Multi::getName);
  targets.groups[common] = from(multi, &Multi::getCommon);
  addPartTargets(targets, multi, adPart0, part0, kParts);
  return targets;
}

}  // namespace PerfCommon

namespace MultiPart {

// A multi's part, or a performance's with its own layout.
template <const auto& kOfPart>
Targets<kOfPart> targetsIn(Multi::PartNode* part) {
  return {{from(part, &Multi::PartNode::getBankProgram), from(part, &Multi::PartNode::getMain),
           from(part, &Multi::PartNode::getExtra)}};
}

}  // namespace MultiPart

namespace MultiCommonArp {

template <const auto& kLayout>
Targets<kLayout> targetsIn(Arpeggio* arpeggio) {
  return {{from(arpeggio, &Arpeggio::getCommon)}};
}

}  // namespace MultiCommonArp

namespace MultiPartArp {

inline Targets<kLayout> targetsIn(Arpeggio* model, std::uint32_t index) {
  Arpeggio::PartNode* const part = from(model, &Arpeggio::getPart, index);
  return {{from(part, &Arpeggio::PartNode::getParams), from(part, &Arpeggio::PartNode::getSix)}};
}

}  // namespace MultiPartArp

namespace MultiAdPart {

inline Targets<kAdPart> targetsIn(Multi* multi, std::uint32_t index) {
  return {{from(from(multi, &Multi::getAdPart, index), &Multi::AdPartNode::getParams)}};
}

}  // namespace MultiAdPart

namespace MultiInsertion {

inline Targets<kInsEffect> targetsOfA(Multi* multi) { return {{from(multi, &Multi::getInsertionA)}}; }
inline Targets<kInsEffect> targetsOfB(Multi* multi) { return {{from(multi, &Multi::getInsertionB)}}; }

}  // namespace MultiInsertion

namespace MultiEq {

inline Targets<kEq> targetsIn(Multi* multi) { return {{from(multi, &Multi::getMasterEq)}}; }

}  // namespace MultiEq

namespace MultiEffect {

inline Targets<kMasterEffect> targetsIn(Multi* multi) {
  return {{from(multi, &Multi::getMasterEffect), from(multi, &Multi::getMasterEffectSettings)}};
}

}  // namespace MultiEffect

// ---- Masters, remote settings --------------------------------------------------------------------------------------

namespace MasterCommon {

inline Targets<kLayout> targetsIn(Master* master) {
  return {{from(master, &Master::getCommon)}, {from(master, &Master::getName)}};
}

}  // namespace MasterCommon

namespace MasterZone {

inline Targets<kLayout> targetsIn(Master* master, std::uint32_t index) {
  return {{from(from(master, &Master::getZone, index), &Master::ZoneNode::getParams)}};
}

}  // namespace MasterZone

namespace RemoteCommon {

inline Targets<kLayout> targetsIn(Remote* remote) {
  return {{from(remote, &Remote::getCommon)}, {from(remote, &Remote::getName1), from(remote, &Remote::getName2)}};
}

}  // namespace RemoteCommon

namespace RemoteController {

inline Targets<kLayout> targetsIn(Remote* remote, std::uint32_t index) {
  using Controller = Remote::ControllerNode;
  Controller* const controller = from(remote, &Remote::getController, index);
  return {{from(controller, &Controller::getParams)},
          {from(controller, &Controller::getName1), from(controller, &Controller::getName2)}};
}

}  // namespace RemoteController

// ---- The system ----------------------------------------------------------------------------------------------------

namespace SystemCommon {

inline Targets<kLayout> targetsIn(System* system) {
  return {{from(system, &System::getCommon), from(system, &System::getTune)}};
}

}  // namespace SystemCommon

namespace SystemUserQuickSetup {

inline Targets<kLayout> targetsIn(System* system, std::uint32_t index) {
  System::QuickSetupNode* const quickSetup = from(system, &System::getQuickSetup, index);
  return {{from(quickSetup, &System::QuickSetupNode::getParams)}, {from(quickSetup, &System::QuickSetupNode::getName)}};
}

}  // namespace SystemUserQuickSetup

namespace SystemSeq {

inline Targets<kLayout> targetsIn(System* system) { return {{from(system, &System::getSequencer)}}; }

}  // namespace SystemSeq

namespace SystemRemote {

inline Targets<kLayout> targetsIn(System* system) { return {{from(system, &System::getRemote)}}; }

}  // namespace SystemRemote

namespace SystemAd {

inline System::AdPartNode* partIn(System* system, std::uint32_t index) {
  return from(system, &System::getAdPart, index);
}
inline Targets<kAdPart> targetsIn(System::AdPartNode* part) { return {{from(part, &System::AdPartNode::getParams)}}; }
inline Targets<kInsEffect> targetsOfA(System::AdPartNode* part) {
  return {{from(part, &System::AdPartNode::getInsertionA)}};
}
inline Targets<kInsEffect> targetsOfB(System::AdPartNode* part) {
  return {{from(part, &System::AdPartNode::getInsertionB)}};
}

}  // namespace SystemAd

namespace SystemEq {

inline Targets<kEq> targetsIn(System* system) { return {{from(system, &System::getMasterEq)}}; }

}  // namespace SystemEq

namespace SystemEffect {

inline Targets<kMasterEffect> targetsIn(System* system) {
  return {{from(system, &System::getMasterEffect), from(system, &System::getMasterEffectSettings)}};
}

}  // namespace SystemEffect

}  // namespace BDA
