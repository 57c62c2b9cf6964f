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

void receiveStep(Routine routine, CMA::ParameterGroup& group, std::uint16_t index, const std::uint8_t* data) {
  switch (routine) {
    case Routine::setByteParam:
      setParameter<std::uint8_t>(group, index, data[0]);
      break;
    case Routine::setWideByteParam:
      setParameter<std::uint16_t>(group, index, data[0]);
      break;
    case Routine::setPairParam:
      setParameter<std::uint16_t>(group, index, unsigned{data[0]} << 7 | data[1]);
      break;
    case Routine::setSplitByteParam:
      setParameter<std::uint8_t>(group, index, unsigned{data[0]} << 7 | data[1]);
      break;
    case Routine::setNibbleWord:
      setParameter<std::uint16_t>(
          group, index, (data[0] & 0x0FU) << 12 | (data[1] & 0x0FU) << 8 | (data[2] & 0x0FU) << 4 | (data[3] & 0x0FU));
      break;
    case Routine::setNameParam:  // not a step of a group
      break;
  }
}

void dumpStep(Routine routine, const CMA::ParameterGroup& group, std::uint16_t index, std::uint8_t* data) {
  switch (routine) {
    case Routine::setByteParam:
      data[0] = std::uint8_t(getParameter<std::uint8_t>(group, index));
      break;
    case Routine::setWideByteParam:
      data[0] = std::uint8_t(getParameter<std::uint16_t>(group, index));
      break;
    case Routine::setPairParam: {
      const unsigned value = getParameter<std::uint16_t>(group, index);
      data[0] = value >> 7 & 0x7F;
      data[1] = value & 0x7F;
      break;
    }
    case Routine::setSplitByteParam: {
      const unsigned value = getParameter<std::uint8_t>(group, index);
      data[0] = value >> 7 & 0x01;
      data[1] = value & 0x7F;
      break;
    }
    case Routine::setNibbleWord: {
      const unsigned value = getParameter<std::uint16_t>(group, index);
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
    const int step = bytesPerStep(row.routine);
    for (unsigned n = 0; n < row.count; ++n, at += step) {
      const auto index = std::uint16_t(row.index + n);
      if (isReceive == 1)
        receiveStep(row.routine, group, index, at);
      else
        dumpStep(row.routine, group, index, at);
    }
  }
}

}  // namespace BDA
