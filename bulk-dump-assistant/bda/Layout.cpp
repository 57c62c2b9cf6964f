#include "Layout.h"

#include <algorithm>

namespace BDA {
namespace {

constexpr int kSetFlag = 1;  // the model tells its listeners

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

// The routines of the instrument's blocks. Each converts one step of a row.

void receiveStep(const Row& row, CMA::ParameterGroup& group, CMA::ParameterGroup& group2, Word index,
                 const Byte* data) {
  switch (row.routine) {
    case Routine::setByteParam:
    case Routine::setSharedByteParam:
      setParameter<Byte>(group, index, data[0]);
      break;
    case Routine::setWideByteParam:
      setParameter<Word>(group, index, data[0]);
      break;
    case Routine::setPairParam:
      setParameter<Word>(group, index, unsigned{data[0]} << 7 | data[1]);
      break;
    case Routine::setSplitByteParam:
      setParameter<Byte>(group, index, unsigned{data[0]} << 7 | data[1]);
      break;
    case Routine::setSplitByteHigh:
      setParameter<Byte>(group, index, unsigned{data[0]} << 7);
      break;
    case Routine::setNibbleSplitParam:
      setParameter<Byte>(group, index, unsigned{data[0]} << 4 | data[1]);
      break;
    case Routine::setNibbleParams:
      setParameter<Byte>(group, index, data[0] & 0x0FU);
      setParameter<Byte>(group2, row.index2, unsigned{data[0]} >> 4);
      break;
    case Routine::setLowNibble:
      setParameter<Byte>(group, index, data[0] & 0x0FU);
      break;
    case Routine::setBitParam:
      setParameter<Byte>(group, index, (data[0] & row.mask) != 0 ? 1 : 0);
      break;
    case Routine::setNibbleWord:
      setParameter<Word>(group, index,
                         (data[0] & 0x0FU) << 12 | (data[1] & 0x0FU) << 8 | (data[2] & 0x0FU) << 4 | (data[3] & 0x0FU));
      break;
    case Routine::dumpByteParam:
    case Routine::setNameParam:  // not a step of a group
      break;
  }
}

void dumpStep(const Row& row, const CMA::ParameterGroup& group, const CMA::ParameterGroup& group2, Word index,
              Byte* data) {
  switch (row.routine) {
    case Routine::setByteParam:
    case Routine::setSharedByteParam:
    case Routine::dumpByteParam:
      data[0] = Byte(getParameter<Byte>(group, index));
      break;
    case Routine::setWideByteParam:
      data[0] = Byte(getParameter<Word>(group, index));
      break;
    case Routine::setPairParam: {
      const unsigned value = getParameter<Word>(group, index);
      data[0] = value >> 7 & 0x7F;
      data[1] = value & 0x7F;
      break;
    }
    case Routine::setSplitByteParam: {
      const unsigned value = getParameter<Byte>(group, index);
      data[0] = value >> 7 & 0x01;
      data[1] = value & 0x7F;
      break;
    }
    case Routine::setSplitByteHigh:
      data[0] = getParameter<Byte>(group, index) >> 7 & 0x01;
      break;
    case Routine::setNibbleSplitParam: {
      const unsigned value = getParameter<Byte>(group, index);
      data[0] = value >> 4 & 0x7F;
      data[1] = value & 0x7F;
      break;
    }
    case Routine::setNibbleParams: {
      const unsigned low = getParameter<Byte>(group, index);
      const unsigned high = getParameter<Byte>(group2, row.index2);
      data[0] = Byte((high << 4 & 0xF0U) | (low & 0x0FU));
      break;
    }
    // These share their byte: it starts at zero and is never cleared.
    case Routine::setLowNibble:
      data[0] = Byte(data[0] | (getParameter<Byte>(group, index) & 0x0FU));
      break;
    case Routine::setBitParam:
      if (getParameter<Byte>(group, index) == 1) data[0] = data[0] | row.mask;
      break;
    case Routine::setNibbleWord: {
      const unsigned value = getParameter<Word>(group, index);
      data[0] = value >> 12 & 0x0F;
      data[1] = value >> 8 & 0x0F;
      data[2] = value >> 4 & 0x0F;
      data[3] = value & 0x0F;
      break;
    }
    case Routine::setNameParam:  // not a step of a group
      break;
  }
}

// Characters travel as they are; a received name ends at its first zero.
void convertName(const Row& row, ModelSrv::ModelPart& name, std::uint8_t* data, std::uint8_t isReceive) {
  std::array<char, kMaxLength + 1> text{};
  if (isReceive == 1) {
    std::copy_n(data, row.count, text.begin());
    name.setToServer(text.data(), ModelSrv::ModelPartIndex_All);
  } else {
    name.getFromServer(text.data(), row.count);
    std::copy_n(text.begin(), row.count, data);
  }
}

}  // namespace

void convertRows(std::span<const Row> rows, std::span<CMA::ParameterGroup* const> groups,
                 std::span<ModelSrv::ModelPart* const> names, std::uint8_t* data, std::uint8_t isReceive) {
  if (isReceive > 1) return;
  for (const Row& row : rows) {
    std::uint8_t* at = data + row.byte;
    if (isName(row)) {
      convertName(row, *names[row.slot], at, isReceive);
      continue;
    }
    CMA::ParameterGroup& group = *groups[row.slot];
    CMA::ParameterGroup& group2 = *groups[row.slot2];
    const int step = bytesPerStep(row.routine);
    for (unsigned n = 0; n < row.count; ++n, at += step) {
      const auto index = std::uint16_t(row.index + n);
      if (isReceive == 1)
        receiveStep(row, group, group2, index, at);
      else
        dumpStep(row, group, group2, index, at);
    }
  }
}

}  // namespace BDA
