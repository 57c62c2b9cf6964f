#pragma once

// The layout of a bulk block as data. A block's data bytes and the parameters that they carry are written once, as a
// constexpr list of rows in the order in which the conversions run:
//
//     setSplitByteParam(44, 45, part0, 0),      // bytes 44 (high), 45 (low) <-> part 0, index 0
//     setByteRun(56, 59, common, 17),           // bytes 56..59 <-> common, indices 17..20
//
// The same rows receive and dump. Before a layout can be used the compiler proves (see kIsSound) that
//   * every row lies inside the block;
//   * no bit of a data byte is written by two rows;
//   * the bits that no row claims are exactly the declared gaps, bit 7 of every byte included;
//   * no parameter is written by two rows.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "bda/platform/CMA/ParameterGroup.h"
#include "bda/platform/ModelSrv/ModelPart.h"

namespace BDA {

enum class Routine : std::uint8_t {
  setByteParam,         // 1 byte  <-> one-byte parameter
  setWideByteParam,     // 1 byte  <-> low byte of a 16-bit parameter
  setPairParam,         // 2 bytes <-> 14 bits of a 16-bit parameter
  setSplitByteParam,    // 2 bytes <-> bit 7 and bits 6-0 of a one-byte parameter
  setNibbleSplitParam,  // 2 bytes <-> bits 7-4 and bits 6-0 of a one-byte parameter: bits 6-4 are dumped twice
  setNibbleParams,      // 1 byte  <-> low nibble and high nibble, two parameters
  setLowNibble,         // low nibble of a byte whose other bits are switches <-> one parameter
  setBitParam,          // some bits of a byte <-> one 0/1 parameter
  setNibbleWord,        // 4 bytes <-> the nibbles of a 16-bit parameter, high bits of the bytes unused
  setNameParam,         // n bytes <-> a name, padded with zeros
  // The exceptions, each of which a few blocks have.
  setSharedByteParam,  // as setByteParam, with a byte that another row claims
  setSplitByteHigh,    // 1 byte  <-> bit 7 of a one-byte parameter whose other bits do not travel
  dumpByteParam,       // 1 byte  <-  one-byte parameter; received by the executer itself
};

// `count` applies the routine that many times, to consecutive bytes (pairs, quadruples) and consecutive indices; for
// setNameParam it is the number of characters. `slot` counts the executer's parameter groups, or its names.
struct Row {
  Routine routine;
  std::uint16_t byte;
  std::uint16_t count;
  std::uint8_t slot;
  std::uint16_t index;
  std::uint8_t mask = 0x7F;  // setBitParam: its bits
  std::uint8_t slot2 = 0;    // setNibbleParams: where the high nibble goes
  std::uint16_t index2 = 0;
};

// Data bits that carry nothing: ignored when received, 0 when dumped. `step` 2 leaves out every other byte.
struct Gap {
  std::uint16_t first;
  std::uint16_t last;
  std::uint8_t mask;
  std::uint16_t step = 1;
};

// ---- How rows are written ------------------------------------------------------------------------------------------

constexpr int bytesPerStep(Routine routine) {
  switch (routine) {
    case Routine::setPairParam:
    case Routine::setSplitByteParam:
    case Routine::setNibbleSplitParam:
      return 2;
    case Routine::setNibbleWord:
      return 4;
    default:
      return 1;
  }
}

// Not constexpr on purpose: naming bytes `first`..`last` that do not hold whole pairs stops the build here.
void a_pair_must_be_two_adjacent_bytes();

constexpr Row makeRun(Routine routine, int first, int last, int slot, int index) {
  const int bytes = last - first + 1;
  if (bytes <= 0 || bytes % bytesPerStep(routine) != 0) a_pair_must_be_two_adjacent_bytes();
  return {routine, std::uint16_t(first), std::uint16_t(bytes / bytesPerStep(routine)), std::uint8_t(slot),
          std::uint16_t(index)};
}
constexpr Row makePair(Routine routine, int high, int low, int slot, int index) {
  if (low != high + 1) a_pair_must_be_two_adjacent_bytes();
  return makeRun(routine, high, low, slot, index);
}

constexpr Row setByteParam(int byte, int slot, int index) {
  return makeRun(Routine::setByteParam, byte, byte, slot, index);
}
constexpr Row setByteRun(int first, int last, int slot, int index) {
  return makeRun(Routine::setByteParam, first, last, slot, index);
}
constexpr Row setWideByteParam(int byte, int slot, int index) {
  return makeRun(Routine::setWideByteParam, byte, byte, slot, index);
}
constexpr Row setPairParam(int high, int low, int slot, int index) {
  return makePair(Routine::setPairParam, high, low, slot, index);
}
constexpr Row setPairRun(int first, int last, int slot, int index) {
  return makeRun(Routine::setPairParam, first, last, slot, index);
}
constexpr Row setSplitByteParam(int high, int low, int slot, int index) {
  return makePair(Routine::setSplitByteParam, high, low, slot, index);
}
constexpr Row setSplitRun(int first, int last, int slot, int index) {
  return makeRun(Routine::setSplitByteParam, first, last, slot, index);
}
constexpr Row setNibbleSplitParam(int high, int low, int slot, int index) {
  return makePair(Routine::setNibbleSplitParam, high, low, slot, index);
}
constexpr Row setNibbleParams(int byte, int lowSlot, int lowIndex, int highSlot, int highIndex) {
  Row row = makeRun(Routine::setNibbleParams, byte, byte, lowSlot, lowIndex);
  row.slot2 = std::uint8_t(highSlot);
  row.index2 = std::uint16_t(highIndex);
  return row;
}
constexpr Row setLowNibble(int byte, int slot, int index) {
  return makeRun(Routine::setLowNibble, byte, byte, slot, index);
}
constexpr Row setBitParam(int byte, int mask, int slot, int index) {
  Row row = makeRun(Routine::setBitParam, byte, byte, slot, index);
  row.mask = std::uint8_t(mask);
  return row;
}
constexpr Row setSharedByteParam(int byte, int slot, int index) {
  return makeRun(Routine::setSharedByteParam, byte, byte, slot, index);
}
constexpr Row setSplitByteHigh(int byte, int slot, int index) {
  return makeRun(Routine::setSplitByteHigh, byte, byte, slot, index);
}
constexpr Row dumpByteRun(int first, int last, int slot, int index) {
  return makeRun(Routine::dumpByteParam, first, last, slot, index);
}
constexpr Row setNibbleWord(int first, int last, int slot, int index) {
  return makeRun(Routine::setNibbleWord, first, last, slot, index);
}
constexpr Row setNameParam(int first, int length, int slot) {
  return {Routine::setNameParam, std::uint16_t(first), std::uint16_t(length), std::uint8_t(slot), 0};
}

constexpr Gap spareBits(int first, int last, int mask) {
  return {std::uint16_t(first), std::uint16_t(last), std::uint8_t(mask)};
}
constexpr Gap spareBits(int byte, int mask) { return spareBits(byte, byte, mask); }
constexpr Gap gap(int first, int last) { return spareBits(first, last, 0xFF); }
constexpr Gap gap(int byte) { return gap(byte, byte); }
// Of the high byte of a split pair, or of all pairs in bytes `first`..`last`, bit 0 alone travels.
constexpr Gap spareOfSplit(int high) { return spareBits(high, 0xFE); }
constexpr Gap spareOfSplitRun(int first, int last) { return {std::uint16_t(first), std::uint16_t(last), 0xFE, 2}; }

template <std::size_t RowCount, std::size_t GapCount>
struct Layout {
  std::uint16_t length;
  std::array<Row, RowCount> rows;
  std::array<Gap, GapCount> gaps;
};
template <std::size_t RowCount, std::size_t GapCount>
Layout(int, std::array<Row, RowCount>, std::array<Gap, GapCount>) -> Layout<RowCount, GapCount>;

// Rows, or gaps, one list behind the other.
template <typename Item, std::size_t... Counts>
constexpr auto join(const std::array<Item, Counts>&... parts) {
  std::array<Item, (Counts + ...)> all{};
  std::size_t size = 0;
  const auto append = [&](const auto& part) {
    for (const Item& item : part) all[size++] = item;
  };
  (append(parts), ...);
  return all;
}

// ---- What can be asked of a layout ---------------------------------------------------------------------------------

inline constexpr int kNone = -1;
inline constexpr std::size_t kMaxLength = 512;

constexpr int lastByte(const Row& row) { return row.byte + row.count * bytesPerStep(row.routine) - 1; }

// The bits of byte `n` of a step that travel: those that change a parameter when received, or can be 1 when dumped.
// Bit 7, which no MIDI cable carries, is among them where a byte is taken as it comes.
constexpr std::uint8_t claimedBits(const Row& row, int n) {
  const bool isHigh = n == 0;
  switch (row.routine) {
    case Routine::setSplitByteParam:
      return isHigh ? 0x01 : 0xFF;
    case Routine::setSplitByteHigh:
      return 0x01;
    case Routine::setNibbleSplitParam:
      return isHigh ? 0x0F : 0xFF;
    case Routine::setLowNibble:
    case Routine::setNibbleWord:
      return 0x0F;
    case Routine::setBitParam:
      return row.mask;
    default:
      return 0xFF;
  }
}
// The bits of its bytes that a row writes when dumped, so that no other row may: all of them, but for the routines that
// share a byte. A row that shares another row's byte counts for nothing here.
constexpr std::uint8_t writtenBits(const Row& row) {
  switch (row.routine) {
    case Routine::setLowNibble:
    case Routine::setBitParam:
      return claimedBits(row, 0);
    case Routine::setSharedByteParam:
      return 0;
    default:
      return 0xFF;
  }
}
constexpr bool isName(const Row& row) { return row.routine == Routine::setNameParam; }

// The number of parameter groups, or of names, that the rows speak of.
template <typename L>
constexpr std::size_t slotCount(const L& layout, bool ofNames) {
  std::size_t count = 0;
  for (const Row& row : layout.rows)
    if (isName(row) == ofNames) {
      if (row.slot >= count) count = row.slot + 1U;
      if (row.slot2 >= count && !ofNames) count = row.slot2 + 1U;
    }
  return count;
}

template <typename L>
constexpr std::size_t touchedLength(const L& layout) {
  int length = 0;
  for (const Row& row : layout.rows)
    if (lastByte(row) >= length) length = lastByte(row) + 1;
  return std::size_t(length);
}

// ---- The proof -----------------------------------------------------------------------------------------------------

namespace proof {

using Bits = std::array<std::uint8_t, kMaxLength>;

// Each of these returns the first offending data byte (or row), kNone when there is none. The compiler prints the
// number in the failed static_assert.

template <typename L>
constexpr int firstRowOutside(const L& layout) {
  for (std::size_t i = 0; i < layout.rows.size(); ++i)
    if (layout.rows[i].count == 0 || lastByte(layout.rows[i]) >= layout.length) return int(i);
  return kNone;
}

template <typename L>
constexpr int firstByteWrittenTwice(const L& layout) {
  Bits written{};
  for (const Row& row : layout.rows)
    for (std::size_t byte = row.byte; byte <= std::size_t(lastByte(row)); ++byte) {
      if ((written[byte] & writtenBits(row)) != 0) return int(byte);
      written[byte] = std::uint8_t(written[byte] | writtenBits(row));
    }
  return kNone;
}

template <typename L>
constexpr Bits claimedIn(const L& layout) {
  Bits claimed{};
  for (const Row& row : layout.rows)
    for (int byte = row.byte; byte <= lastByte(row); ++byte) {
      std::uint8_t& bits = claimed[std::size_t(byte)];
      bits = std::uint8_t(bits | claimedBits(row, (byte - row.byte) % bytesPerStep(row.routine)));
    }
  return claimed;
}

template <typename L>
constexpr int firstGapThatIsClaimed(const L& layout) {
  const Bits claimed = claimedIn(layout);
  for (const Gap& unused : layout.gaps)
    for (std::size_t byte = unused.first; byte <= unused.last; byte += unused.step)
      if (byte >= layout.length || (claimed[byte] & unused.mask) != 0) return int(byte);
  return kNone;
}

template <typename L>
constexpr int firstByteNeitherClaimedNorGap(const L& layout) {
  Bits known = claimedIn(layout);
  for (const Gap& unused : layout.gaps)
    for (std::size_t byte = unused.first; byte <= unused.last; byte += unused.step)
      known[byte] = std::uint8_t(known[byte] | unused.mask);
  for (std::size_t byte = 0; byte < layout.length; ++byte)
    if (known[byte] != 0xFF) return int(byte);
  return kNone;
}

// The parameters that a row writes: entry 0 to parameterCount - 1.
struct Parameter {
  bool isName;
  int slot;
  int index;
  constexpr bool operator==(const Parameter& other) const {
    return isName == other.isName && slot == other.slot && index == other.index;
  }
};
constexpr int parameterCount(const Row& row) {
  return isName(row) ? 1 : row.routine == Routine::setNibbleParams ? 2 : row.count;
}
constexpr Parameter parameter(const Row& row, int n) {
  if (row.routine == Routine::setNibbleParams && n == 1) return {false, row.slot2, row.index2};
  return {isName(row), row.slot, row.index + n};
}

template <typename L>
constexpr int firstRowWithUsedTarget(const L& layout) {
  for (std::size_t i = 0; i < layout.rows.size(); ++i)
    for (int m = 0; m < parameterCount(layout.rows[i]); ++m)
      for (std::size_t j = 0; j <= i; ++j)
        for (int n = 0; n < (j < i ? parameterCount(layout.rows[j]) : m); ++n)
          if (parameter(layout.rows[i], m) == parameter(layout.rows[j], n)) return int(i);
  return kNone;
}

template <typename L>
constexpr int firstSharedByteThatIsNotWritten(const L& layout) {
  for (const Row& row : layout.rows) {
    if (row.routine != Routine::setSharedByteParam) continue;
    bool isWritten = false;
    for (const Row& other : layout.rows)
      isWritten = isWritten || (other.byte <= row.byte && row.byte <= lastByte(other) && writtenBits(other) != 0);
    if (!isWritten) return row.byte;
  }
  return kNone;
}

template <const auto& kLayout>
constexpr bool isSound() {
  static_assert(kLayout.length <= kMaxLength);
  static_assert(firstRowOutside(kLayout) == kNone, "a row lies outside the block (row number on the left)");
  static_assert(firstByteWrittenTwice(kLayout) == kNone, "two rows write this data byte");
  static_assert(firstGapThatIsClaimed(kLayout) == kNone, "this byte is declared a gap but a row claims it");
  static_assert(firstByteNeitherClaimedNorGap(kLayout) == kNone, "this byte is neither claimed nor a declared gap");
  static_assert(firstRowWithUsedTarget(kLayout) == kNone, "two rows write the same parameter (row number on the left)");
  static_assert(firstSharedByteThatIsNotWritten(kLayout) == kNone, "this shared byte is written by no other row");
  return true;
}

}  // namespace proof

template <const auto& kLayout>
inline constexpr bool kIsSound = proof::isSound<kLayout>();

// ---- The conversion ------------------------------------------------------------------------------------------------

// The parameter groups and names of a model that a layout converts, in slot order; none may be null when it runs.
template <const auto& kLayout>
struct Targets {
  std::array<CMA::ParameterGroup*, slotCount(kLayout, false)> groups;
  std::array<ModelSrv::ModelPart*, slotCount(kLayout, true)> names = {};

  bool areComplete() const {
    for (const CMA::ParameterGroup* group : groups)
      if (group == nullptr) return false;
    for (const ModelSrv::ModelPart* name : names)
      if (name == nullptr) return false;
    return true;
  }
};

void convertRows(std::span<const Row> rows, std::span<CMA::ParameterGroup* const> groups,
                 std::span<ModelSrv::ModelPart* const> names, std::uint8_t* data, std::uint8_t isReceive);

// Runs a whole layout, the only way to do so: an unsound one cannot be used. `isReceive` 1 moves data into the model, 0
// the model into data, which then starts as zeros; any other value touches nothing. `data` holds at least
// touchedLength(kLayout) bytes.
template <const auto& kLayout>
void convert(const Targets<kLayout>& targets, std::uint8_t* data, std::uint8_t isReceive) {
  static_assert(kIsSound<kLayout>);
  convertRows(kLayout.rows, targets.groups, targets.names, data, isReceive);
}

// The same for the first `kCount` rows only.
template <const auto& kLayout, std::size_t kCount>
void convertFirst(const Targets<kLayout>& targets, std::uint8_t* data, std::uint8_t isReceive) {
  static_assert(kIsSound<kLayout>);
  convertRows(std::span<const Row>(kLayout.rows).first(kCount), targets.groups, targets.names, data, isReceive);
}
// And for the rows after them.
template <const auto& kLayout, std::size_t kCount>
void convertRest(const Targets<kLayout>& targets, std::uint8_t* data, std::uint8_t isReceive) {
  static_assert(kIsSound<kLayout>);
  convertRows(std::span<const Row>(kLayout.rows).subspan(kCount), targets.groups, targets.names, data, isReceive);
}

}  // namespace BDA
