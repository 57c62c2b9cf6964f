#pragma once

// Every layout of the module, with the blocks that have it and the paths of what its rows carry; and the one way
// through all their rows.

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "AddressRows.h"
#include "MasterRemoteLayouts.h"
#include "MultiLayouts.h"
#include "SystemLayouts.h"
#include "VoiceLayouts.h"

namespace BDA::LayoutListing {

using Texts = std::vector<std::string>;

struct Section {
  std::string title;
  std::vector<unsigned> executers;  // whose blocks have this layout
  unsigned length;
  std::vector<Row> rows;
  std::vector<Gap> gaps;
  Texts groups;  // in slot order, by their path in JSON
  Texts names;
};

template <typename L>
Section section(std::string title, std::vector<unsigned> executers, const L& layout, Texts groups, Texts names = {}) {
  return {std::move(title),
          std::move(executers),
          layout.length,
          {layout.rows.begin(), layout.rows.end()},
          {layout.gaps.begin(), layout.gaps.end()},
          std::move(groups),
          std::move(names)};
}

inline Texts withParts(Texts groups, int parts) {
  for (int i = 0; i < parts; ++i) groups.push_back("multi.part[" + std::to_string(i) + "].main");
  return groups;
}

inline std::vector<Section> sections() {
  const Texts voiceCommon{"voice.common", "voice.commonExtra", "multi.part[0].extra"};
  const Texts part{"multi.part[i].bankProgram", "multi.part[i].main", "multi.part[i].extra"};
  return {
      section("Normal voice common", {3}, VoiceCommon::kNormal, voiceCommon, {"voice.name"}),
      section("Drum voice common", {13}, VoiceCommon::kDrum, voiceCommon, {"voice.name"}),
      section("Reverb", {4, 14, 23, 34}, VoiceCommonRev::kLayout, {"multi.reverb", "multi.reverbSettings"}),
      section("Chorus", {5, 15, 24, 35}, VoiceCommonCho::kLayout, {"multi.chorus", "multi.chorusSettings"}),
      section("Insertion effect A of a voice", {6, 16}, kInsEffect, {"voice.insertionA"}),
      section("Insertion effect B of a voice", {7, 17}, kInsEffect, {"voice.insertionB"}),
      section("Insertion effect L of a voice", {8, 18}, VoiceCommonInsL::kLayout, {"voice.insertionL"}),
      section("Normal voice controllers", {9}, VoiceCommonCtrl::kNormal, {"voice.common"}),
      section("Drum voice controllers", {19}, VoiceCommonCtrl::kDrum, {"voice.common"}),
      section("Arpeggio of a voice", {10, 20}, VoiceCommonArp::kLayout,
              {"voice.arpeggioCommon", "voice.arpeggioTempo", "voice.arpeggioEntry", "voice.arpeggioSix"}),
      section("Oscillator of an element", {11}, NormalVoiceElmOsc::kLayout,
              {"voice.element[i].params", "voice.element[i].wave"}),
      section("Filter of an element", {12}, NormalVoiceElmFilter::kLayout, {"voice.element[i].params"}),
      section("Drum key", {21}, DrumVoiceKey::kLayout, {"voice.key[i].params", "voice.key[i].wave"}),
      section("Multi common", {22}, MultiCommon::kLayout, withParts({"multi.common", "multi.adPart[0].params"}, 16)),
      section("Performance common", {33}, PerfCommon::kLayout, withParts({"multi.common", "multi.adPart[0].params"}, 4),
              {"multi.name"}),
      section("Insertion effect A of a multi or performance", {25, 36}, kInsEffect, {"multi.insertionA"}),
      section("Insertion effect B of a multi or performance", {26, 37}, kInsEffect, {"multi.insertionB"}),
      section("Master EQ of a multi or performance", {27, 38}, kEq, {"multi.masterEq"}),
      section("Master effect of a multi or performance", {28, 39}, kMasterEffect,
              {"multi.masterEffect", "multi.masterEffectSettings"}),
      section("Arpeggio of a multi", {29}, MultiCommonArp::kMulti, {"arpeggio.common"}),
      section("Arpeggio of a performance", {40}, MultiCommonArp::kPerformance, {"arpeggio.common"}),
      section("Multi part", {30}, MultiPart::kLayout, part),
      section("Performance part", {41}, PerfPart::kLayout, part),
      section("Arpeggio of a part", {31, 42}, MultiPartArp::kLayout,
              {"arpeggio.part[i].params", "arpeggio.part[i].six"}),
      section("Audio input part of a multi or performance", {32, 43}, kAdPart, {"multi.adPart[i].params"}),
      section("Master common", {44}, MasterCommon::kLayout, {"master.common"}, {"master.name"}),
      section("Master zone", {45}, MasterZone::kLayout, {"master.zone[i].params"}),
      section("Remote common", {46}, RemoteCommon::kLayout, {"remote.common"}, {"remote.name1", "remote.name2"}),
      section("Remote controller", {47}, RemoteController::kLayout, {"remote.controller[i].params"},
              {"remote.controller[i].name1", "remote.controller[i].name2"}),
      section("System common", {48}, SystemCommon::kLayout, {"system.common", "system.tune"}),
      section("System audio input part", {49}, kAdPart, {"system.adPart[0].params"}),
      section("Insertion effect A of the system's audio input part", {50}, kInsEffect, {"system.adPart[0].insertionA"}),
      section("Insertion effect B of the system's audio input part", {51}, kInsEffect, {"system.adPart[0].insertionB"}),
      section("System master EQ", {52}, kEq, {"system.masterEq"}),
      section("System master effect", {53}, kMasterEffect, {"system.masterEffect", "system.masterEffectSettings"}),
      section("Quick setup", {54}, SystemUserQuickSetup::kLayout, {"system.quickSetup[i].params"},
              {"system.quickSetup[i].name"}),
      section("System sequencer", {55}, SystemSeq::kLayout, {"system.sequencer"}),
      section("System remote", {56}, SystemRemote::kLayout, {"system.remote"}),
  };
}

// What a writer makes of all layouts: it is told begin(section), row(section, row) for each of its rows in order, and
// end(section).
template <typename Writer>
std::string written() {
  Writer writer;
  for (const Section& section : sections()) {
    writer.begin(section);
    for (const Row& row : section.rows) writer.row(section, row);
    writer.end(section);
  }
  return writer.text();
}

// Calls visit(row) for the rows of the address map whose blocks have the layout.
template <typename Visit>
void forEachAddressRow(const Section& section, Visit visit) {
  for (const AddressRow& row : kParameterRows)
    for (const unsigned executer : section.executers)
      if (row.executer == executer) visit(row);
}

template <typename... Arguments>
std::string print(const char* format, Arguments... arguments) {
  char text[256];
  std::snprintf(text, sizeof text, format, arguments...);
  return text;
}

}  // namespace BDA::LayoutListing
