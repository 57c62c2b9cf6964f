#pragma once

// The parameter blocks of voices, multis, performances, masters and remote settings, typed a second time as text.
//
// A row of a block is "routine bytes target index"; bytes and indices run on together:
//
//   byte 24-25 voice.common 0           bytes 24, 25 <-> voice common, indices 0, 1
//   split 44-45 multi.part[0].extra 0   high 44, low 45 <-> one parameter; likewise wide, pair, high, nibsplit, low
//   nibbles 30 voice.common 4 3         low nibble <-> index 4, high nibble <-> index 3
//   bits 19 voice.common 22 01 04       mask 01 <-> index 22, mask 04 <-> index 23
//   name 0-19 voice.name
//   selection 1-3 multi.part[#].bankProgram     received as corrected, dumped as it is
//   off multi                           all insertion switches off, when received
//   hold, release voice.element[#]      correction of dependent parameters suspended, resumed
//
// The targets are paths in the models; '#' is the block's index.

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "InstrumentMap.h"

namespace ParameterBlocks {

struct Kind {
  std::vector<unsigned> types;  // block types
  std::string file;             // in reports
  std::string className;
  std::string title;
  std::size_t length;
  std::string rows;
};

inline void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.className << " of " << kind.length << " bytes";
}

inline std::string insertionEffect(const std::string& target) {
  return "wide 0 " + target + " 0\n wide 1 " + target + " 1\n wide 2 " + target + " 4\n pair 4-35 " + target + " 5\n";
}

inline const char* const kVoiceCommon = R"(
  name 0-19 voice.name
  byte 24-25 voice.common 0
  nibbles 30 voice.common 4 3
  byte 31-38 voice.common 5
  byte 40-43 voice.common 13
  split 44-45 multi.part[0].extra 0
  split 48-49 multi.part[0].extra 2
  split 52-53 multi.part[0].extra 5
  byte 46 multi.part[0].extra 1
  byte 50 multi.part[0].extra 3
  byte 51 multi.part[0].extra 4
  byte 54 multi.part[0].extra 6
  byte 56-59 voice.common 17
  byte 63 voice.common 23
)";
inline const char* const kVoiceArpeggio = R"(
  byte 0 voice.arpeggioCommon 6
  pair 2-3 voice.arpeggioTempo 0
  byte 14 voice.arpeggioEntry 0
  byte 20-31 voice.arpeggioEntry 3
  split 32-33 voice.arpeggioEntry 15
  split 34-35 voice.arpeggioEntry 16
  split 40-41 voice.arpeggioEntry 17
  byte 42 voice.arpeggioEntry 20
  byte 43 voice.arpeggioEntry 21
  byte 44 voice.arpeggioEntry 18
  byte 45 voice.arpeggioEntry 19
  byte 46-49 voice.arpeggioEntry 22
  split 50-73 voice.arpeggioEntry 26
  pair 74-85 voice.arpeggioSix 0
)";
inline const char* const kControllers = R"(
  byte 1 voice.common 39
  split 2-3 voice.common 40
  byte 0 voice.common 41
  byte 5 voice.common 42
  split 6-7 voice.common 43
  byte 4 voice.common 44
  byte 9 voice.common 45
  split 10-11 voice.common 46
  byte 8 voice.common 47
  byte 13 voice.common 48
  split 14-15 voice.common 49
  byte 12 voice.common 50
  byte 17 voice.common 51
  split 18-19 voice.common 52
  byte 16 voice.common 53
  byte 21 voice.common 54
  split 22-23 voice.common 55
  byte 20 voice.common 56
)";
inline const char* const kNormalVoiceControllers = R"(
  byte 24-34 voice.common 57
  byte 36 voice.common 68
  byte 35 voice.common 69
  byte 38 voice.common 70
  byte 37 voice.common 71
  byte 40 voice.common 72
  byte 39 voice.common 73
  byte 41 voice.common 74
  byte 42 voice.common 75
  byte 43-58 voice.common 76
  byte 59 voice.common 92
)";
inline const char* const kOscillator = R"(
  hold voice.element[#]
  byte 0 voice.element[#].params 0
  byte 1 voice.element[#].params 1
  byte 4 voice.element[#].params 2
  pair 2-3 voice.element[#].wave 0
  byte 5-16 voice.element[#].params 6
  byte 17 voice.element[#].params 20
  bits 19 voice.element[#].params 22 01 02 04 08 10 20
  bits 21 voice.element[#].params 28 01 02 04
  byte 22 voice.element[#].params 31
  byte 23 voice.element[#].params 32
  byte 26-38 voice.element[#].params 33
  byte 40-43 voice.element[#].params 46
  byte 44-47 voice.element[#].params 51
  split 48-49 voice.element[#].params 55
  split 50-51 voice.element[#].params 56
  split 52-53 voice.element[#].params 57
  split 54-55 voice.element[#].params 58
  byte 56 voice.element[#].params 59
  byte 57 voice.element[#].params 50
  byte 58-69 voice.element[#].params 60
  split 70-71 voice.element[#].params 72
  split 72-73 voice.element[#].params 73
  split 74-75 voice.element[#].params 74
  split 76-77 voice.element[#].params 75
  split 78-79 voice.element[#].params 76
  byte 80-86 voice.element[#].params 77
  release voice.element[#]
)";
inline const char* const kFilter = R"(
  hold voice.element[#]
  byte 0 voice.element[#].params 84
  split 2-3 voice.element[#].params 85
  byte 4 voice.element[#].params 86
  byte 5 voice.element[#].params 87
  byte 6 voice.element[#].params 88
  split 8-9 voice.element[#].params 89
  split 10-11 voice.element[#].params 90
  split 12-13 voice.element[#].params 91
  byte 14-18 voice.element[#].params 92
  split 20-21 voice.element[#].params 97
  split 22-23 voice.element[#].params 98
  split 24-25 voice.element[#].params 99
  split 26-27 voice.element[#].params 100
  split 28-29 voice.element[#].params 101
  byte 30-36 voice.element[#].params 102
  byte 37-40 voice.element[#].params 109
  split 42-43 voice.element[#].params 113
  split 44-45 voice.element[#].params 114
  split 46-47 voice.element[#].params 115
  split 48-49 voice.element[#].params 116
  byte 50-53 voice.element[#].params 117
  split 54-55 voice.element[#].params 121
  byte 56 voice.element[#].params 122
  split 58-59 voice.element[#].params 123
  byte 60 voice.element[#].params 124
  byte 62-73 voice.element[#].params 125
  release voice.element[#]
)";
inline const char* const kDrumKey = R"(
  byte 0 voice.key[#].params 0
  byte 1 voice.key[#].params 1
  byte 4 voice.key[#].params 3
  byte 5 voice.key[#].params 4
  byte 6 voice.key[#].params 5
  pair 2-3 voice.key[#].wave 0
  byte 7-9 voice.key[#].params 6
  byte 10-12 voice.key[#].params 18
  byte 14-15 voice.key[#].params 33
  byte 17-19 voice.key[#].params 37
  byte 23 voice.key[#].params 44
  byte 26-28 voice.key[#].params 60
  split 30-31 voice.key[#].params 85
  byte 32-33 voice.key[#].params 86
  split 34-35 voice.key[#].params 89
  byte 36-37 voice.key[#].params 119
  split 38-39 voice.key[#].params 121
  byte 40 voice.key[#].params 122
  split 42-43 voice.key[#].params 123
  byte 44 voice.key[#].params 124
)";
inline const char* const kMultiPart = R"(
  selection 1-3 multi.part[#].bankProgram
  byte 4-15 multi.part[#].main 1
  nibsplit 16-17 multi.part[#].main 13
  byte 18 multi.part[#].main 14
  byte 19 multi.part[#].main 15
  byte 21 multi.part[#].main 16
  byte 22 multi.part[#].main 17
  byte 24-28 multi.part[#].main 18
  byte 30 multi.part[#].main 23
  bits 31 multi.part[#].main 24 04 08 10 20 40
  bits 32 multi.part[#].main 29 01 02 04 08 20 40
  bits 33 multi.part[#].main 35 01 02 04 08 10 20 40
  byte 34-43 multi.part[#].main 42
  byte 45 multi.part[#].main 52
  byte 46 multi.part[#].main 53
  split 48-49 multi.part[#].extra 0
  byte 50 multi.part[#].extra 1
  split 52-53 multi.part[#].extra 2
  byte 54 multi.part[#].extra 3
  byte 55 multi.part[#].extra 4
  split 56-57 multi.part[#].extra 5
  byte 58 multi.part[#].extra 6
  byte 60 multi.part[#].main 56
  byte 61 multi.part[#].main 57
)";
inline const char* const kMultiCommon = R"(
  nibbles 30 multi.common 2 33
  byte 63 multi.common 28
  byte 64 multi.common 29
  byte 75 multi.common 40
  off multi
  bits 77 multi.part[14].main 54 01
  bits 77 multi.part[15].main 54 02
  bits 77 multi.adPart[0].params 7 20
  bits 78 multi.part[7].main 54 01
  bits 79 multi.part[0].main 54 01
  bits 78 multi.part[8].main 54 02
  bits 79 multi.part[1].main 54 02
  bits 78 multi.part[9].main 54 04
  bits 79 multi.part[2].main 54 04
  bits 78 multi.part[10].main 54 08
  bits 79 multi.part[3].main 54 08
  bits 78 multi.part[11].main 54 10
  bits 79 multi.part[4].main 54 10
  bits 78 multi.part[12].main 54 20
  bits 79 multi.part[5].main 54 20
  bits 78 multi.part[13].main 54 40
  bits 79 multi.part[6].main 54 40
)";
inline const char* const kMultiArpeggioButTheLast = R"(
  byte 0 arpeggio.common 6
  byte 4 arpeggio.common 0
  byte 5 arpeggio.common 1
  split 6-7 arpeggio.common 2
  split 8-9 arpeggio.common 3
  split 10-11 arpeggio.common 4
)";
inline const char* const kMasterEq = R"(
  byte 0-6 multi.masterEq 0
  byte 8 multi.masterEq 8
  byte 9 multi.masterEq 9
  byte 10 multi.masterEq 10
  byte 12 multi.masterEq 11
  byte 13 multi.masterEq 12
  byte 14 multi.masterEq 13
  byte 16 multi.masterEq 14
  byte 17 multi.masterEq 15
  byte 18 multi.masterEq 16
  byte 19 multi.masterEq 17
)";
inline const char* const kPartArpeggio = R"(
  byte 0-2 arpeggio.part[#].params 0
  byte 3 arpeggio.part[#].params 38
  byte 6-17 arpeggio.part[#].params 3
  split 18-19 arpeggio.part[#].params 15
  split 20-21 arpeggio.part[#].params 16
  split 26-27 arpeggio.part[#].params 17
  byte 28 arpeggio.part[#].params 20
  byte 29 arpeggio.part[#].params 21
  byte 30 arpeggio.part[#].params 18
  byte 31 arpeggio.part[#].params 19
  byte 32-35 arpeggio.part[#].params 22
  split 36-59 arpeggio.part[#].params 26
  pair 60-71 arpeggio.part[#].six 0
)";
inline const char* const kAudioInput = R"(
  byte 0-4 multi.adPart[0].params 0
  byte 6 multi.adPart[0].params 5
)";
inline const char* const kPerformanceCommon = R"(
  name 0-19 multi.name
  byte 24 multi.common 0
  byte 25 multi.common 1
  nibbles 30 multi.common 2 33
  byte 31 multi.common 3
  byte 33-38 multi.common 4
  byte 40-43 multi.common 10
  byte 46 multi.common 14
  byte 47 multi.common 15
  byte 49-51 multi.common 16
  byte 53 multi.common 19
  byte 54 multi.common 20
  byte 56-60 multi.common 21
  byte 63 multi.common 28
  byte 64 multi.common 29
  byte 66 multi.common 31
  byte 67 multi.common 32
  byte 76 multi.common 40
  off multi
  bits 78 multi.adPart[0].params 7 20
  bits 80 multi.part[0].main 54 01
  bits 80 multi.part[1].main 54 02
  bits 80 multi.part[2].main 54 04
  bits 80 multi.part[3].main 54 08
)";
inline const char* const kMasterCommon = R"(
  name 0-19 master.name
  byte 25-29 master.common 0
  nibbles 30 master.common 5 6
  byte 31 master.common 7
)";
inline const char* const kMasterZone = R"(
  bits 0 master.zone[#].params 1 10 20
  low 0 master.zone[#].params 0
  byte 1-4 master.zone[#].params 3
  byte 6-10 master.zone[#].params 7
  bits 11 master.zone[#].params 12 01 02
  bits 11 master.zone[#].params 16 04
  bits 11 master.zone[#].params 14 08 10
  bits 12 master.zone[#].params 17 01 02 04 08 10 20 40
  bits 13 master.zone[#].params 24 01 02 04
  bits 13 master.zone[#].params 28 10 20 40
  byte 14 master.zone[#].params 31
  byte 15 master.zone[#].params 32
)";
inline const char* const kRemoteCommon = R"(
  name 0-12 remote.name1
  name 13-24 remote.name2
  byte 25 remote.common 0
  byte 26 remote.common 1
)";
inline const char* const kRemoteController = R"(
  name 0-8 remote.controller[#].name1
  name 9-23 remote.controller[#].name2
  byte 24 remote.controller[#].params 0
  byte 25 remote.controller[#].params 1
)";

inline std::string rowsOf(const std::string& first, const std::string& second) { return first + second; }

inline const std::vector<Kind> kKinds{
    {{61},
     "Voice",
     "VoiceCommon",
     "Voice Common",
     80,
     rowsOf(kVoiceCommon, "byte 64-76 voice.common 24\n byte 77 voice.commonExtra 0")},
    {{72},
     "Voice",
     "VoiceCommon",
     "Voice Common",
     72,
     rowsOf(kVoiceCommon,
            "byte 65 voice.common 28\n byte 66 voice.common 29\n byte 67 voice.common 35\n byte 68 voice.common 36\n"
            "byte 69 voice.commonExtra 0\n byte 70 voice.common 37\n byte 71 voice.common 38")},
    {{62, 73, 83, 95},
     "Voice",
     "VoiceCommonRev",
     "normal Voice Common Rev",
     38,
     rowsOf(insertionEffect("multi.reverb"), "byte 36 multi.reverbSettings 0\n byte 37 multi.reverbSettings 1")},
    {{63, 74, 84, 96},
     "Voice",
     "VoiceCommonCho",
     "normal Voice Common",  // not "Cho"
     40,
     rowsOf(insertionEffect("multi.chorus"), "byte 36-38 multi.chorusSettings 0")},
    {{64, 75}, "Voice", "VoiceCommonInsAB", "normal Voice Ins AB", 36, insertionEffect("voice.insertionA")},
    {{65, 76}, "Voice", "VoiceCommonInsAB", "normal Voice Ins AB", 36, insertionEffect("voice.insertionB")},
    {{66, 77},
     "Voice",
     "VoiceCommonInsL",
     "normal Voice Ins L",
     68,
     rowsOf(insertionEffect("voice.insertionL"), "pair 36-67 voice.insertionL 21")},
    {{67}, "Voice", "VoiceCommonCtrl", "Voice Common Ctrl", 60, rowsOf(kControllers, kNormalVoiceControllers)},
    {{78}, "Voice", "VoiceCommonCtrl", "Voice Common Ctrl", 24, kControllers},
    {{68, 79}, "Voice", "VoiceCommonArp", "normal Voice Arp", 86, kVoiceArpeggio},
    {{69}, "Voice", "NormalVoiceElmOsc", "normal Voice Elm Osc", 88, kOscillator},
    {{70}, "Voice", "NormalVoiceElmFilter", "normal Voice Elm Filter", 74, kFilter},
    {{80}, "Voice", "DrumVoiceKey", "Drum Voice Key", 46, kDrumKey},
    {{82}, "Multi", "MultiCommon", "Multi Common", 80, kMultiCommon},
    {{85, 97}, "Multi", "MultiCommonInsAB", "normal Voice Ins AB", 36, insertionEffect("multi.insertionA")},
    {{86, 98}, "Multi", "MultiCommonInsAB", "normal Voice Ins AB", 36, insertionEffect("multi.insertionB")},
    {{87, 99}, "Multi", "MultiCommonMeq", "Multi Common MEQ", 20, kMasterEq},
    {{88, 100},
     "Multi",
     "MultiCommonMef",
     "Multi Common MEF",
     38,
     rowsOf(insertionEffect("multi.masterEffect"), "byte 36 multi.masterEffectSettings 0")},
    {{89},
     "Multi",
     "MultiCommonArp",
     "Multi Common Arp",
     14,
     rowsOf(kMultiArpeggioButTheLast, "split 12-13 arpeggio.common 5")},
    {{101},
     "Multi",
     "MultiCommonArp",
     "Multi Common Arp",
     13,
     rowsOf(kMultiArpeggioButTheLast, "high 12 arpeggio.common 5")},
    {{90}, "Multi", "MultiPart", "Multi Part", 62, kMultiPart},
    {{91, 103}, "Multi", "MultiPartArp", "Multi Part Arp", 72, kPartArpeggio},
    {{92, 104}, "Multi", "MultiPartAd", "Multi Part AD", 8, kAudioInput},
    {{94}, "Perf", "PerfCommon", "Multi Common", 81, kPerformanceCommon},
    {{102},
     "Perf",
     "PerfPart",
     "Multi Common",
     63,
     rowsOf("byte 0 multi.part[#].main 0\n byte 30 multi.part[#].main 55\n", kMultiPart)},
    {{106}, "Master", "MasterCommon", "Master Common", 32, kMasterCommon},
    {{107}, "Master", "MasterZone", "Master Zone", 16, kMasterZone},
    {{109}, "Remote", "RemoteCommon", "Remote Common", 27, kRemoteCommon},
    {{110}, "Remote", "RemoteController", "Remote Controller", 26, kRemoteController},
};

inline const Kind& kindOf(unsigned type) {
  for (const Kind& kind : kKinds)
    if (std::find(kind.types.begin(), kind.types.end(), type) != kind.types.end()) return kind;
  throw std::logic_error("no parameter block of type " + std::to_string(type));
}

// All blocks of the instrument that are of these kinds, in the order of its map.
inline std::vector<InstrumentMap::Block> allBlocks() {
  std::vector<InstrumentMap::Block> all;
  for (const int list : {InstrumentMap::normalVoice, InstrumentMap::drumVoice, InstrumentMap::multi,
                         InstrumentMap::performance, InstrumentMap::master, InstrumentMap::remote})
    for (const InstrumentMap::Block& block : InstrumentMap::lists().at(std::size_t(list))) all.push_back(block);
  return all;
}

}  // namespace ParameterBlocks
