#pragma once

// The address map of the instrument, typed a second time and expanded the plain way: what the module's rows and its
// index are compared with.

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace InstrumentMap {

struct Block {
  unsigned type;
  std::uint8_t hi;
  std::uint8_t mid;
  std::uint8_t lo;
  unsigned index;
  std::size_t executer;

  bool stands(unsigned h, unsigned m, unsigned l) const { return hi == h && mid == m && lo == l; }
};

// In the order in which the table holds its lists.
enum List {
  header,
  footer,
  normalVoice,
  drumVoice,
  multi,
  performance,
  master,
  remote,
  system,
  editorName,
  fileDump,
  screenCap,
  favorite,
  listCount
};

// What the running middle byte of a row gives its blocks, counted from the row's first one.
enum class Mid { nothing, index, executer };

struct Row {
  unsigned type;
  const char* address;  // "40 00 00", or with running bytes "41 00..07 00"
  std::size_t executer;
  Mid counts = Mid::nothing;
};

inline constexpr Row kNormalVoice[] = {
    {61, "40 00 00", 3},
    {62, "40 01 00", 4},
    {63, "40 02 00", 5},
    {64, "40 03 00", 6},
    {65, "40 04 00", 7},
    {66, "40 05 00", 8},
    {67, "40 06 00", 9},
    {68, "40 30 00", 10},
    {69, "41 00..07 00", 11, Mid::index},
    {70, "42 00..07 00", 12, Mid::index},
};
inline constexpr Row kDrumVoice[] = {
    {72, "46 00 00", 13}, {73, "46 01 00", 14}, {74, "46 02 00", 15},
    {75, "46 03 00", 16}, {76, "46 04 00", 17}, {77, "46 05 00", 18},
    {78, "46 08 00", 19}, {79, "46 30 00", 20}, {80, "47 00..48 00", 21, Mid::index},
};
inline constexpr Row kMulti[] = {
    {82, "36 00 00", 22},
    {83, "36 01 00", 23},
    {84, "36 02 00", 24},
    {85, "36 03 00", 25},
    {86, "36 04 00", 26},
    {87, "36 10 00", 27},
    {88, "36 11 00", 28},
    {89, "36 30 00", 29},
    {90, "37 00..0F 00", 30, Mid::index},
    {91, "38 00..0F 00", 31, Mid::index},
    {92, "39 40 00", 32},
};
inline constexpr Row kPerformance[] = {
    {94, "30 00 00", 33},
    {95, "30 01 00", 34},
    {96, "30 02 00", 35},
    {97, "30 03 00", 36},
    {98, "30 04 00", 37},
    {99, "30 10 00", 38},
    {100, "30 11 00", 39},
    {101, "30 30 00", 40},
    {102, "31 00..03 00", 41, Mid::index},
    {103, "34 00..03 00", 42, Mid::index},
    {104, "35 40 00", 43},
};
inline constexpr Row kMaster[] = {{106, "33 00 00", 44}, {107, "32 00..03 00", 45, Mid::index}};
inline constexpr Row kRemote[] = {{109, "01 00 00", 46}, {110, "01 10..1B 00", 47, Mid::index}};
inline constexpr Row kSystem[] = {
    {49, "00 00 00", 48}, {50, "00 40 00", 49}, {51, "00 03 00", 50}, {52, "00 04 00", 51},
    {53, "00 20 00", 52}, {54, "00 21 00", 53}, {58, "00 05 00", 55}, {57, "00 50..55 00", 54, Mid::index},
    {59, "00 06 00", 56},
};
inline constexpr Row kEditorName[] = {{112, "70 20 00..3F", 57}, {113, "70 10 00..0F", 58}, {114, "70 30 00", 59}};
inline constexpr Row kScreenCap[] = {{116, "51 00 00", 61}};
inline constexpr Row kHeader[] = {
    {1, "0E 00..07 00..7F", 1, Mid::index},   // preset normal voices
    {2, "0E 09 00..7F", 1},                   // GM normal voices
    {3, "0E 0A..0C 00..7F", 1, Mid::index},   // user normal voices
    {4, "0E 0F 00", 1},                       // normal voice edit buffer
    {5, "0E 20 00..3F", 1},                   // preset drum voices
    {7, "0E 21 00", 1},                       // GM drum voice
    {6, "0E 28 00..1F", 1},                   // user drum voices
    {8, "0E 2F 00", 1},                       // drum voice edit buffer
    {9, "0E 30 00..0F", 1},                   // voices of multi parts
    {10, "0E 31 00..0F", 1},                  // numbered normal voices
    {11, "0E 5F 00", 1},                      // multi edit buffer
    {12, "0E 40..41 00..7F", 1, Mid::index},  // performances
    {13, "0E 4F 00", 1},                      // performance edit buffer
    {14, "0E 70 00..7F", 1},                  // masters
    {15, "0E 7F 00", 1},                      // master edit buffer
    {16, "0E 60 00..31", 1},                  // remote settings
    {17, "0E 6F 00", 1},                      // remote edit buffer
};
inline constexpr Row kFooter[] = {
    {19, "0F 00..07 00..7F", 2, Mid::index},
    {20, "0F 09 00..7F", 2},
    {21, "0F 0A..0C 00..7F", 2, Mid::index},
    {22, "0F 0F 00", 2},
    {23, "0F 20 00..3F", 2},
    {25, "0F 21 00", 2},
    {24, "0F 28 00..1F", 2},
    {26, "0F 2F 00", 2},
    {27, "0F 30 00..0F", 2},
    {28, "0F 31 00..0F", 2},
    {29, "0F 5F 00", 2},
    {30, "0F 40..41 00..7F", 2, Mid::index},
    {31, "0F 4F 00", 2},
    {32, "0F 70 00..7F", 2},
    {33, "0F 7F 00", 2},
    {16, "0F 60 00..31", 2},  // remote footers share the type of their header
    {17, "0F 6F 00", 2},
};
inline constexpr Row kFileDump[] = {
    {37, "0C 00..07 00..7F", 60, Mid::index},
    {38, "0C 09 00..7F", 60},
    {39, "0C 0A..0C 00..7F", 60, Mid::index},
    {40, "0C 20 00..3F", 60},
    {42, "0C 21 00", 60},
    {41, "0C 28 00..1F", 60},
    {43, "0C 31 00..0F", 60},
    {44, "0C 10..1F 00..7F", 60, Mid::index},
    {45, "0C 50 00..7F", 60},
    {46, "0C 7F 00", 60},
    {47, "11 00 00", 60},
    {47, "11 01 00", 60},
};
inline constexpr Row kFavorite[] = {
    {118, "71 00..07 00", 62, Mid::executer},
    {120, "71 09 00", 74},
    {119, "71 0A..0C 00", 70, Mid::executer},
    {121, "71 20 00", 75},
    {123, "71 21 00", 77},
    {122, "71 28 00", 76},
};

struct Bytes {
  unsigned first;
  unsigned last;
};
// The byte or run of bytes at the front of `text`, which moves behind it.
inline Bytes takeBytes(const char*& text) {
  char* end = nullptr;
  Bytes bytes{};
  bytes.first = bytes.last = unsigned(std::strtoul(text, &end, 16));
  if (*end == '.') bytes.last = unsigned(std::strtoul(end + 2, &end, 16));
  text = end;
  return bytes;
}

template <std::size_t RowCount>
std::vector<Block> expand(const Row (&rows)[RowCount]) {
  std::vector<Block> blocks;
  for (const Row& row : rows) {
    const char* text = row.address;
    const Bytes hi = takeBytes(text);
    const Bytes mid = takeBytes(text);
    const Bytes lo = takeBytes(text);
    for (unsigned m = mid.first; m <= mid.last; ++m)
      for (unsigned l = lo.first; l <= lo.last; ++l) {
        const unsigned step = m - mid.first;
        blocks.push_back({row.type, std::uint8_t(hi.first), std::uint8_t(m), std::uint8_t(l),
                          row.counts == Mid::index ? step : 0,
                          row.executer + (row.counts == Mid::executer ? step : 0)});
      }
  }
  return blocks;
}

// Every block of every list, in list order.
inline const std::array<std::vector<Block>, listCount>& lists() {
  static const std::array<std::vector<Block>, listCount> all = [] {
    std::array<std::vector<Block>, listCount> made;
    made[header] = expand(kHeader);
    made[footer] = expand(kFooter);
    made[normalVoice] = expand(kNormalVoice);
    made[drumVoice] = expand(kDrumVoice);
    made[multi] = expand(kMulti);
    made[performance] = expand(kPerformance);
    made[master] = expand(kMaster);
    made[remote] = expand(kRemote);
    made[system] = expand(kSystem);
    made[editorName] = expand(kEditorName);
    made[fileDump] = expand(kFileDump);
    made[screenCap] = expand(kScreenCap);
    made[favorite] = expand(kFavorite);
    return made;
  }();
  return all;
}

// The list that an address high byte is searched in; listCount when there is none.
inline int listOfHighByte(unsigned hi) {
  switch (hi) {
    case 0x0E:
      return header;
    case 0x0F:
      return footer;
    case 0x40:
    case 0x41:
    case 0x42:
      return normalVoice;
    case 0x46:
    case 0x47:
      return drumVoice;
    case 0x36:
    case 0x37:
    case 0x38:
    case 0x39:
      return multi;
    case 0x30:
    case 0x31:
    case 0x34:
    case 0x35:
      return performance;
    case 0x32:
    case 0x33:
      return master;
    case 0x01:
      return remote;
    case 0x00:
      return system;
    case 0x70:
      return editorName;
    case 0x0C:
    case 0x11:
      return fileDump;
    case 0x51:
      return screenCap;
    case 0x71:
      return favorite;
    default:
      return listCount;
  }
}

// The plain search: route by the high byte, walk that list from its front to the first block with these three bytes.
// Its position there, or -1.
inline int walk(unsigned hi, unsigned mid, unsigned lo) {
  const int list = listOfHighByte(hi);
  if (list == listCount) return -1;
  const std::vector<Block>& blocks = lists()[std::size_t(list)];
  for (std::size_t i = 0; i < blocks.size(); ++i)
    if (blocks[i].stands(hi, mid, lo)) return int(i);
  return -1;
}

// The same answers for every address that three bytes can spell, at [hi << 16 | mid << 8 | lo].
inline const std::vector<std::int16_t>& positions() {
  static const std::vector<std::int16_t> all = [] {
    std::vector<std::int16_t> made(std::size_t{1} << 24, std::int16_t{-1});
    for (const std::vector<Block>& blocks : lists())
      for (std::size_t i = 0; i < blocks.size(); ++i) {
        const Block& block = blocks[i];
        made[std::size_t{block.hi} << 16 | std::size_t{block.mid} << 8 | block.lo] = std::int16_t(i);
      }
    return made;
  }();
  return all;
}

struct Executer {
  std::size_t number;
  std::string_view name;  // of its class, after BDA::BulkExecuter
  std::uint32_t dataLength;
};
inline constexpr auto kExecuters = std::to_array<Executer>({
    {1, "Header", 0},
    {2, "Footer", 0},
    {3, "VoiceCommon", 80},
    {4, "VoiceCommonRev", 38},
    {5, "VoiceCommonCho", 40},
    {6, "VoiceCommonInsAB", 36},
    {7, "VoiceCommonInsAB", 36},
    {8, "VoiceCommonInsL", 68},
    {9, "VoiceCommonCtrl", 60},
    {10, "VoiceCommonArp", 86},
    {11, "NormalVoiceElmOsc", 88},
    {12, "NormalVoiceElmFilter", 74},
    {13, "VoiceCommon", 72},
    {14, "VoiceCommonRev", 38},
    {15, "VoiceCommonCho", 40},
    {16, "VoiceCommonInsAB", 36},
    {17, "VoiceCommonInsAB", 36},
    {18, "VoiceCommonInsL", 68},
    {19, "VoiceCommonCtrl", 24},
    {20, "VoiceCommonArp", 86},
    {21, "DrumVoiceKey", 46},
    {22, "MultiCommon", 80},
    {23, "VoiceCommonRev", 38},
    {24, "VoiceCommonCho", 40},
    {25, "MultiCommonInsAB", 36},
    {26, "MultiCommonInsAB", 36},
    {27, "MultiCommonMeq", 20},
    {28, "MultiCommonMef", 38},
    {29, "MultiCommonArp", 14},
    {30, "MultiPart", 62},
    {31, "MultiPartArp", 72},
    {32, "MultiPartAd", 8},
    {33, "PerfCommon", 81},
    {34, "VoiceCommonRev", 38},
    {35, "VoiceCommonCho", 40},
    {36, "MultiCommonInsAB", 36},
    {37, "MultiCommonInsAB", 36},
    {38, "MultiCommonMeq", 20},
    {39, "MultiCommonMef", 38},
    {40, "MultiCommonArp", 13},  // a byte shorter than the multi's
    {41, "PerfPart", 63},
    {42, "MultiPartArp", 72},
    {43, "MultiPartAd", 8},
    {44, "MasterCommon", 32},
    {45, "MasterZone", 16},
    {46, "RemoteCommon", 27},
    {47, "RemoteController", 26},
    {48, "SystemCommon", 68},
    {49, "SystemAd", 8},
    {50, "SystemAdInsAB", 36},
    {51, "SystemAdInsAB", 36},
    {52, "SystemMeq", 20},
    {53, "SystemMef", 38},
    {54, "SystemUserQuickSetup", 10},
    {55, "SystemSeq", 22},
    {56, "SystemRemote", 5},
    {57, "EditorWaveName", 448},
    {58, "EditorArpName", 448},
    {59, "EditorMultiName", 2560},
    {60, "FileDump", 0},
    {61, "ScreenCap", 10240},
    {62, "Favorite", 128},
    {63, "Favorite", 128},
    {64, "Favorite", 128},
    {65, "Favorite", 128},
    {66, "Favorite", 128},
    {67, "Favorite", 128},
    {68, "Favorite", 128},
    {69, "Favorite", 128},
    {70, "Favorite", 128},
    {71, "Favorite", 128},
    {72, "Favorite", 128},
    {73, "Favorite", 128},
    {74, "Favorite", 128},
    {75, "Favorite", 64},
    {76, "Favorite", 32},
    {77, "Favorite", 1},
});

}  // namespace InstrumentMap
