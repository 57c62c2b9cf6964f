#include "Layout.h"

#include <algorithm>

#include "EditorNumbers.h"

namespace BDA {
namespace {

template <typename Value>
void setParameter(CMA::ParameterGroup& group, std::uint16_t index, unsigned value) {
  const auto stored = static_cast<Value>(value);
  group.set(&stored, index, kSetFlag);
}

// A parameter that the model does not have reads 0.
template <typename Value>
unsigned getParameter(const CMA::ParameterGroup& group, std::uint16_t index) {
  Value value = 0;
  group.get(&value, index);
  return value;
}

using Byte = std::uint8_t;
using Word = std::uint16_t;

// Calls step(index, bytes) for every step of a row, each `kBytes` long.
template <int kBytes, typename Data, typename Step>
void forEachStep(const Row& row, Data* data, Step step) {
  Data* at = data + row.byte;
  for (unsigned n = 0; n < row.count; ++n, at += kBytes) step(Word(row.index + n), at);
}

// The low seven bits of a value in the second byte; those from `shift` on in the first one, as far as its mask goes.
void putInTwo(Byte* to, unsigned value, unsigned shift, unsigned mask) {
  to[0] = Byte(value >> shift & mask);
  to[1] = value & 0x7F;
}

// The routines of the instrument's blocks, data into the model and back.

void receiveRow(const Row& row, CMA::ParameterGroup& group, CMA::ParameterGroup& group2, const Byte* data) {
  switch (row.routine) {
    case Routine::setByteParam:
    case Routine::setSharedByteParam:
      forEachStep<1>(row, data, [&](Word index, const Byte* from) { group.set(from, index, kSetFlag); });
      break;
    case Routine::setWideByteParam:
      forEachStep<1>(row, data, [&](Word index, const Byte* from) { setParameter<Word>(group, index, from[0]); });
      break;
    case Routine::setPairParam:
      forEachStep<2>(row, data, [&](Word index, const Byte* from) {
        setParameter<Word>(group, index, unsigned{from[0]} << 7 | from[1]);
      });
      break;
    case Routine::setSplitByteParam:
      forEachStep<2>(row, data, [&](Word index, const Byte* from) {
        setParameter<Byte>(group, index, unsigned{from[0]} << 7 | from[1]);
      });
      break;
    case Routine::setSplitByteHigh:
      forEachStep<1>(row, data,
                     [&](Word index, const Byte* from) { setParameter<Byte>(group, index, unsigned{from[0]} << 7); });
      break;
    case Routine::setNibbleSplitParam:
      forEachStep<2>(row, data, [&](Word index, const Byte* from) {
        setParameter<Byte>(group, index, unsigned{from[0]} << 4 | from[1]);
      });
      break;
    case Routine::setNibbleParams:
      forEachStep<1>(row, data, [&](Word index, const Byte* from) {
        setParameter<Byte>(group, index, from[0] & 0x0FU);
        setParameter<Byte>(group2, row.index2, unsigned{from[0]} >> 4);
      });
      break;
    case Routine::setLowNibble:
      forEachStep<1>(row, data,
                     [&](Word index, const Byte* from) { setParameter<Byte>(group, index, from[0] & 0x0FU); });
      break;
    case Routine::setBitParam:
      forEachStep<1>(row, data, [&](Word index, const Byte* from) {
        setParameter<Byte>(group, index, (from[0] & row.mask) != 0 ? 1 : 0);
      });
      break;
    case Routine::setNibbleWord:
      forEachStep<4>(row, data, [&](Word index, const Byte* from) {
        setParameter<Word>(
            group, index,
            (from[0] & 0x0FU) << 12 | (from[1] & 0x0FU) << 8 | (from[2] & 0x0FU) << 4 | (from[3] & 0x0FU));
      });
      break;
    case Routine::dumpByteParam:
    case Routine::setNameParam:  // no parameter of a group
      break;
  }
}

void dumpRow(const Row& row, const CMA::ParameterGroup& group, const CMA::ParameterGroup& group2, Byte* data) {
  switch (row.routine) {
    case Routine::setByteParam:
    case Routine::setSharedByteParam:
    case Routine::dumpByteParam:
      forEachStep<1>(row, data, [&](Word index, Byte* to) { to[0] = Byte(getParameter<Byte>(group, index)); });
      break;
    case Routine::setWideByteParam:
      forEachStep<1>(row, data, [&](Word index, Byte* to) { to[0] = Byte(getParameter<Word>(group, index)); });
      break;
    case Routine::setPairParam:
      forEachStep<2>(row, data, [&](Word index, Byte* to) { putInTwo(to, getParameter<Word>(group, index), 7, 0x7F); });
      break;
    case Routine::setSplitByteParam:
      forEachStep<2>(row, data, [&](Word index, Byte* to) { putInTwo(to, getParameter<Byte>(group, index), 7, 0x01); });
      break;
    case Routine::setSplitByteHigh:
      forEachStep<1>(row, data, [&](Word index, Byte* to) { to[0] = getParameter<Byte>(group, index) >> 7 & 0x01; });
      break;
    case Routine::setNibbleSplitParam:
      forEachStep<2>(row, data, [&](Word index, Byte* to) { putInTwo(to, getParameter<Byte>(group, index), 4, 0x7F); });
      break;
    case Routine::setNibbleParams:
      forEachStep<1>(row, data, [&](Word index, Byte* to) {
        const unsigned low = getParameter<Byte>(group, index);
        const unsigned high = getParameter<Byte>(group2, row.index2);
        to[0] = Byte((high << 4 & 0xF0U) | (low & 0x0FU));
      });
      break;
    // These share their byte: it starts at zero and is never cleared.
    case Routine::setLowNibble:
      forEachStep<1>(row, data,
                     [&](Word index, Byte* to) { to[0] = Byte(to[0] | (getParameter<Byte>(group, index) & 0x0FU)); });
      break;
    case Routine::setBitParam:
      forEachStep<1>(row, data, [&](Word index, Byte* to) {
        if (getParameter<Byte>(group, index) == 1) to[0] = to[0] | row.mask;
      });
      break;
    case Routine::setNibbleWord:
      forEachStep<4>(row, data, [&](Word index, Byte* to) {
        const unsigned value = getParameter<Word>(group, index);
        to[0] = value >> 12 & 0x0F;
        to[1] = value >> 8 & 0x0F;
        to[2] = value >> 4 & 0x0F;
        to[3] = value & 0x0F;
      });
      break;
    case Routine::setNameParam:  // no parameter of a group
      break;
  }
}

// Characters travel as they are; a received name ends at its first zero.
void convertName(const Row& row, ModelSrv::ModelPart& name, std::uint8_t* data, std::uint8_t isReceive) {
  std::array<char, kMaxLength + 1> text;
  std::fill_n(text.begin(), row.count + 1, '\0');
  if (isReceive == 1) {
    std::copy_n(data + row.byte, row.count, text.begin());
    name.setToServer(text.data(), ModelSrv::ModelPartIndex_All);
  } else {
    name.getFromServer(text.data(), row.count);
    std::copy_n(text.begin(), row.count, data + row.byte);
  }
}

}  // namespace

void convertRows(std::span<const Row> rows, std::span<CMA::ParameterGroup* const> groups,
                 std::span<ModelSrv::ModelPart* const> names, std::uint8_t* data, std::uint8_t isReceive) {
  if (isReceive > 1) return;
  for (const Row& row : rows) {
    if (isName(row))
      convertName(row, *names[row.slot], data, isReceive);
    else if (isReceive == 1)
      receiveRow(row, *groups[row.slot], *groups[row.slot2], data);
    else
      dumpRow(row, *groups[row.slot], *groups[row.slot2], data);
  }
}

}  // namespace BDA
