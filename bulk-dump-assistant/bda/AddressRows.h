#pragma once

// The address map of the instrument as data. One row stands for a rectangle of addresses: a fixed high byte, a run of
// middle bytes and a run of low bytes; 93 rows make 8,330 blocks. What the instrument relies on is proved below.

#include <array>
#include <cstddef>
#include <cstdint>

namespace BDA {

inline constexpr std::size_t kBlockCount = 8330;

// The thirteen lists of the bulk table, in member order.
enum class List : std::uint8_t {
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
};
inline constexpr std::size_t kListCount = 13;

struct Run {
  std::uint8_t first;
  std::uint8_t last;
  constexpr unsigned size() const { return unsigned(last - first + 1); }
};
constexpr Run one(int value) { return {std::uint8_t(value), std::uint8_t(value)}; }
constexpr Run run(int first, int last) { return {std::uint8_t(first), std::uint8_t(last)}; }

// High bytes that say what a message is for.
inline constexpr std::uint8_t kFileDumpHi = 0x0C;
inline constexpr std::uint8_t kHeaderHi = 0x0E;
inline constexpr std::uint8_t kFooterHi = 0x0F;
inline constexpr std::uint8_t kTriggerHi = 0x11;  // has the file dumps that are held written

// The middle byte of a mixing voice's header and footer; and what marks, in their low byte, that the voice is empty.
inline constexpr std::uint8_t kMixingVoiceMid = 0x31;
inline constexpr std::uint8_t kEmptyVoice = 0x40;

// Block types of the voice of a multi part.
inline constexpr std::uint32_t kPartVoiceHeader = 9;
inline constexpr std::uint32_t kPartVoiceFooter = 27;

// Where addresses are searched: every high byte routes to at most one list. Parameter blocks of the lists that name
// header types exist only while a header of one of those types is open.
struct Route {
  Run hi;
  List list;
  Run openHeader = {0, 0};  // {0, 0}: needs none, or (voices) is checked by the lookup itself

  constexpr bool admits(unsigned headerType) const {
    return openHeader.last == 0 || (headerType >= openHeader.first && headerType <= openHeader.last);
  }
};
inline constexpr std::array kRoutes{
    Route{one(0x00), List::system},
    Route{one(0x01), List::remote, run(16, 17)},
    Route{one(kFileDumpHi), List::fileDump},
    Route{one(kHeaderHi), List::header},
    Route{one(kFooterHi), List::footer},
    Route{one(kTriggerHi), List::fileDump},
    Route{run(0x30, 0x31), List::performance, run(12, 13)},
    Route{run(0x32, 0x33), List::master, run(14, 15)},
    Route{run(0x34, 0x35), List::performance, run(12, 13)},
    Route{run(0x36, 0x39), List::multi, one(11)},
    Route{run(0x40, 0x42), List::normalVoice},
    Route{run(0x46, 0x47), List::drumVoice},
    Route{one(0x51), List::screenCap},
    Route{one(0x70), List::editorName},
    Route{one(0x71), List::favorite},
};

// Indices, not pointers: under the undefined behaviour sanitizer g++ compares no pointer with null in a constant.
inline constexpr auto kRouteOfHighByte = [] {
  std::array<std::uint8_t, 256> routes{};
  routes.fill(kRoutes.size());
  for (std::size_t route = 0; route < kRoutes.size(); ++route)
    for (std::size_t hi = kRoutes[route].hi.first; hi <= kRoutes[route].hi.last; ++hi) routes[hi] = std::uint8_t(route);
  return routes;
}();
constexpr const Route* findRoute(std::uint8_t hi) {
  const std::size_t route = kRouteOfHighByte[hi];
  return route < kRoutes.size() ? &kRoutes[route] : nullptr;
}
// The list that an address high byte is searched in; kListCount when there is none.
constexpr std::size_t listOf(std::uint8_t hi) {
  const std::size_t route = kRouteOfHighByte[hi];
  return route < kRoutes.size() ? std::size_t(kRoutes[route].list) : kListCount;
}

// The parameter blocks that stand between a header of that type (1 to 17) and its footer. Type 9, the voice of a multi
// part, holds a normal or a drum voice by the part's bank: ask for List::normalVoice or List::drumVoice there.
constexpr std::size_t listBetween(unsigned headerType) {
  constexpr std::array<std::uint8_t, 18> kList{
      kListCount,
      std::uint8_t(List::normalVoice),  // 1-4
      std::uint8_t(List::normalVoice),
      std::uint8_t(List::normalVoice),
      std::uint8_t(List::normalVoice),
      std::uint8_t(List::drumVoice),  // 5-8
      std::uint8_t(List::drumVoice),
      std::uint8_t(List::drumVoice),
      std::uint8_t(List::drumVoice),
      kListCount,                       // 9
      std::uint8_t(List::normalVoice),  // 10
      std::uint8_t(List::multi),        // 11
      std::uint8_t(List::performance),  // 12, 13
      std::uint8_t(List::performance),
      std::uint8_t(List::master),  // 14, 15
      std::uint8_t(List::master),
      std::uint8_t(List::remote),  // 16, 17
      std::uint8_t(List::remote),
  };
  return headerType < kList.size() ? kList[headerType] : kListCount;
}

// What a running middle byte counts: nothing, the block's index, or the executer.
enum class MidCounts : std::uint8_t { nothing, index, executer };

struct AddressRow {
  std::uint8_t type;
  std::uint8_t hi;
  Run mid;
  Run lo;
  std::uint8_t executer;  // number of the executer instance; the first one if MidCounts::executer
  MidCounts midCounts = MidCounts::nothing;

  constexpr bool overlaps(const AddressRow& other) const {
    return hi == other.hi && mid.first <= other.mid.last && other.mid.first <= mid.last && lo.first <= other.lo.last &&
           other.lo.first <= lo.last;
  }
};

// Calls visit(row, mid, lo) for every address of the rows, in table order: row by row, the middle byte varying slowest.
template <typename Rows, typename Visit>
constexpr void forEachAddress(const Rows& rows, Visit visit) {
  for (const AddressRow& row : rows)
    for (unsigned mid = row.mid.first; mid <= row.mid.last; ++mid)
      for (unsigned lo = row.lo.first; lo <= row.lo.last; ++lo) visit(row, std::uint8_t(mid), std::uint8_t(lo));
}

inline constexpr auto kByIndex = MidCounts::index;

// Parameter blocks.
inline constexpr std::array kParameterRows{
    AddressRow{61, 0x40, one(0x00), one(0), 3},
    AddressRow{62, 0x40, one(0x01), one(0), 4},
    AddressRow{63, 0x40, one(0x02), one(0), 5},
    AddressRow{64, 0x40, one(0x03), one(0), 6},
    AddressRow{65, 0x40, one(0x04), one(0), 7},
    AddressRow{66, 0x40, one(0x05), one(0), 8},
    AddressRow{67, 0x40, one(0x06), one(0), 9},
    AddressRow{68, 0x40, one(0x30), one(0), 10},
    AddressRow{69, 0x41, run(0, 7), one(0), 11, kByIndex},
    AddressRow{70, 0x42, run(0, 7), one(0), 12, kByIndex},
    AddressRow{72, 0x46, one(0x00), one(0), 13},
    AddressRow{73, 0x46, one(0x01), one(0), 14},
    AddressRow{74, 0x46, one(0x02), one(0), 15},
    AddressRow{75, 0x46, one(0x03), one(0), 16},
    AddressRow{76, 0x46, one(0x04), one(0), 17},
    AddressRow{77, 0x46, one(0x05), one(0), 18},
    AddressRow{78, 0x46, one(0x08), one(0), 19},  // 08 here, 06 in the normal voice
    AddressRow{79, 0x46, one(0x30), one(0), 20},
    AddressRow{80, 0x47, run(0, 0x48), one(0), 21, kByIndex},
    AddressRow{82, 0x36, one(0x00), one(0), 22},
    AddressRow{83, 0x36, one(0x01), one(0), 23},
    AddressRow{84, 0x36, one(0x02), one(0), 24},
    AddressRow{85, 0x36, one(0x03), one(0), 25},
    AddressRow{86, 0x36, one(0x04), one(0), 26},
    AddressRow{87, 0x36, one(0x10), one(0), 27},
    AddressRow{88, 0x36, one(0x11), one(0), 28},
    AddressRow{89, 0x36, one(0x30), one(0), 29},
    AddressRow{90, 0x37, run(0, 0x0F), one(0), 30, kByIndex},
    AddressRow{91, 0x38, run(0, 0x0F), one(0), 31, kByIndex},
    AddressRow{92, 0x39, one(0x40), one(0), 32},
    AddressRow{94, 0x30, one(0x00), one(0), 33},
    AddressRow{95, 0x30, one(0x01), one(0), 34},
    AddressRow{96, 0x30, one(0x02), one(0), 35},
    AddressRow{97, 0x30, one(0x03), one(0), 36},
    AddressRow{98, 0x30, one(0x04), one(0), 37},
    AddressRow{99, 0x30, one(0x10), one(0), 38},
    AddressRow{100, 0x30, one(0x11), one(0), 39},
    AddressRow{101, 0x30, one(0x30), one(0), 40},
    AddressRow{102, 0x31, run(0, 3), one(0), 41, kByIndex},
    AddressRow{103, 0x34, run(0, 3), one(0), 42, kByIndex},
    AddressRow{104, 0x35, one(0x40), one(0), 43},
    AddressRow{106, 0x33, one(0x00), one(0), 44},
    AddressRow{107, 0x32, run(0, 3), one(0), 45, kByIndex},
    AddressRow{109, 0x01, one(0x00), one(0), 46},
    AddressRow{110, 0x01, run(0x10, 0x1B), one(0), 47, kByIndex},
    AddressRow{49, 0x00, one(0x00), one(0), 48},
    AddressRow{50, 0x00, one(0x40), one(0), 49},
    AddressRow{51, 0x00, one(0x03), one(0), 50},
    AddressRow{52, 0x00, one(0x04), one(0), 51},
    AddressRow{53, 0x00, one(0x20), one(0), 52},
    AddressRow{54, 0x00, one(0x21), one(0), 53},
    AddressRow{58, 0x00, one(0x05), one(0), 55},
    AddressRow{57, 0x00, run(0x50, 0x55), one(0), 54, kByIndex},
    AddressRow{59, 0x00, one(0x06), one(0), 56},
    AddressRow{112, 0x70, one(0x20), run(0, 0x3F), 57},
    AddressRow{113, 0x70, one(0x10), run(0, 0x0F), 58},
    AddressRow{114, 0x70, one(0x30), one(0), 59},
    AddressRow{116, 0x51, one(0x00), one(0), 61},
};

// Headers and footers: each row makes a header (high byte 0E) and a footer (0F) per address.
inline constexpr std::array kHeaderRows{
    AddressRow{1, kHeaderHi, run(0x00, 0x07), run(0, 0x7F), 1, kByIndex},
    AddressRow{2, kHeaderHi, one(0x09), run(0, 0x7F), 1},
    AddressRow{3, kHeaderHi, run(0x0A, 0x0C), run(0, 0x7F), 1, kByIndex},
    AddressRow{4, kHeaderHi, one(0x0F), one(0), 1},
    AddressRow{5, kHeaderHi, one(0x20), run(0, 0x3F), 1},
    AddressRow{7, kHeaderHi, one(0x21), one(0), 1},
    AddressRow{6, kHeaderHi, one(0x28), run(0, 0x1F), 1},
    AddressRow{8, kHeaderHi, one(0x2F), one(0), 1},
    AddressRow{kPartVoiceHeader, kHeaderHi, one(0x30), run(0, 0x0F), 1},
    AddressRow{10, kHeaderHi, one(kMixingVoiceMid), run(0, 0x0F), 1},
    AddressRow{11, kHeaderHi, one(0x5F), one(0), 1},
    AddressRow{12, kHeaderHi, run(0x40, 0x41), run(0, 0x7F), 1, kByIndex},
    AddressRow{13, kHeaderHi, one(0x4F), one(0), 1},
    AddressRow{14, kHeaderHi, one(0x70), run(0, 0x7F), 1},
    AddressRow{15, kHeaderHi, one(0x7F), one(0), 1},
    AddressRow{16, kHeaderHi, one(0x60), run(0, 0x31), 1},
    AddressRow{17, kHeaderHi, one(0x6F), one(0), 1},
};

// What a block at (mid, ...) of a row is told apart by.
constexpr std::uint8_t indexOf(const AddressRow& row, std::uint8_t mid) {
  return row.midCounts == MidCounts::index ? std::uint8_t(mid - row.mid.first) : std::uint8_t(0);
}
constexpr unsigned executerOf(const AddressRow& row, std::uint8_t mid) {
  return row.executer + (row.midCounts == MidCounts::executer ? unsigned(mid - row.mid.first) : 0u);
}

constexpr AddressRow footerOf(AddressRow header) {
  header.hi = kFooterHi;
  header.executer = 2;
  if (header.type < 16) header.type = std::uint8_t(header.type + 18);  // 16 and 17 are shared
  return header;
}

// File dumps.
inline constexpr std::array kFileDumpRows{
    AddressRow{37, kFileDumpHi, run(0x00, 0x07), run(0, 0x7F), 60, kByIndex},
    AddressRow{38, kFileDumpHi, one(0x09), run(0, 0x7F), 60},
    AddressRow{39, kFileDumpHi, run(0x0A, 0x0C), run(0, 0x7F), 60, kByIndex},
    AddressRow{40, kFileDumpHi, one(0x20), run(0, 0x3F), 60},
    AddressRow{42, kFileDumpHi, one(0x21), one(0), 60},
    AddressRow{41, kFileDumpHi, one(0x28), run(0, 0x1F), 60},
    AddressRow{43, kFileDumpHi, one(0x31), run(0, 0x0F), 60},
    AddressRow{44, kFileDumpHi, run(0x10, 0x1F), run(0, 0x7F), 60, kByIndex},
    AddressRow{45, kFileDumpHi, one(0x50), run(0, 0x7F), 60},
    AddressRow{46, kFileDumpHi, one(0x7F), one(0), 60},
    AddressRow{47, kTriggerHi, one(0x00), one(0), 60},
    AddressRow{47, kTriggerHi, one(0x01), one(0), 60},
};

// Favourites; every middle byte has its own executer.
inline constexpr std::array kFavoriteRows{
    AddressRow{118, 0x71, run(0x00, 0x07), one(0), 62, MidCounts::executer},
    AddressRow{120, 0x71, one(0x09), one(0), 74},
    AddressRow{119, 0x71, run(0x0A, 0x0C), one(0), 70, MidCounts::executer},
    AddressRow{121, 0x71, one(0x20), one(0), 75},
    AddressRow{123, 0x71, one(0x21), one(0), 77},
    AddressRow{122, 0x71, one(0x28), one(0), 76},
};

// All blocks, in the order in which the table appends them: visit(row, mid, lo). Headers and footers alternate,
// address by address.
template <typename Visit>
constexpr void forEachBlock(Visit visit) {
  forEachAddress(kParameterRows, visit);
  for (const AddressRow& row : kHeaderRows) {
    const AddressRow footer = footerOf(row);
    forEachAddress(std::array{row}, [&](const AddressRow& header, std::uint8_t mid, std::uint8_t lo) {
      visit(header, mid, lo);
      visit(footer, mid, lo);
    });
  }
  forEachAddress(kFileDumpRows, visit);
  forEachAddress(kFavoriteRows, visit);
}

// ---- The proof ---------------------------------------------------------------

namespace proof {

constexpr std::size_t blocksIn(List list) {
  std::size_t n = 0;
  forEachBlock([&](const AddressRow& row, std::uint8_t, std::uint8_t) { n += listOf(row.hi) == std::size_t(list); });
  return n;
}
constexpr std::size_t blocksInAll() {
  std::size_t n = 0;
  forEachBlock([&](const AddressRow&, std::uint8_t, std::uint8_t) { ++n; });
  return n;
}
template <typename Rows>
constexpr bool everyRowHasAList(const Rows& rows) {
  for (const AddressRow& row : rows)
    if (listOf(row.hi) == kListCount || row.mid.last > 0x7F || row.lo.last > 0x7F) return false;
  return true;
}
template <typename Rows>
constexpr bool noTwoRowsOverlap(const Rows& rows) {
  for (std::size_t i = 0; i < rows.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (rows[i].overlaps(rows[j])) return false;
  return true;
}

static_assert(blocksIn(List::header) == 2105 && blocksIn(List::footer) == 2105);
static_assert(blocksIn(List::fileDump) == 3828);
static_assert(blocksIn(List::normalVoice) == 24);  // a request for a normal voice answers with 26 blocks
static_assert(blocksInAll() == kBlockCount);
// Each row's high byte routes to exactly one list and the four groups of rows use different lists, so "no two rows of a
// group overlap" is "no address occurs twice".
static_assert(everyRowHasAList(kParameterRows) && everyRowHasAList(kHeaderRows));
static_assert(everyRowHasAList(kFileDumpRows) && everyRowHasAList(kFavoriteRows));
static_assert(noTwoRowsOverlap(kParameterRows) && noTwoRowsOverlap(kHeaderRows));
static_assert(noTwoRowsOverlap(kFileDumpRows) && noTwoRowsOverlap(kFavoriteRows));

}  // namespace proof

}  // namespace BDA
