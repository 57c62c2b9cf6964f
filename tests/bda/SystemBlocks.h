#pragma once

// The system blocks, typed a second time: which bytes carry which parameters, in the order of conversion, and what
// receiving them should do.

#include <ostream>
#include <string>
#include <vector>

#include "support/Bytes.h"

namespace SystemBlocks {

using Testing::Bytes;
using Lines = std::vector<std::string>;

enum class Kind { byte, wideByte, pair, nibbles, name };

struct Step {
  Kind kind;
  std::size_t byte;
  std::string target;
  unsigned index = 0;
  std::size_t size = 1;  // data bytes
};

struct Block {
  std::string name;
  std::size_t executer;
  std::string address;
  unsigned type;
  std::size_t length;
  std::string classAndTitle[2];    // in reports
  std::vector<std::string> nodes;  // of the model, each of which may be missing
  std::vector<Step> steps;
};

inline void PrintTo(const Block& block, std::ostream* out) { *out << block.name; }

using Steps = std::vector<Step>;

// Bytes `first` to `last` are one-byte parameters from `index` on.
inline Steps bytes(std::size_t first, std::size_t last, const std::string& target, unsigned index) {
  Steps steps;
  for (std::size_t byte = first; byte <= last; ++byte)
    steps.push_back({Kind::byte, byte, target, index + unsigned(byte - first)});
  return steps;
}

inline Steps insertionEffect(const std::string& target) {
  Steps steps{{Kind::wideByte, 0, target, 0}, {Kind::wideByte, 1, target, 1}, {Kind::wideByte, 2, target, 4}};
  for (unsigned k = 0; k < 16; ++k) steps.push_back({Kind::pair, 4 + 2 * k, target, 5 + k, 2});
  return steps;
}

inline Steps all(const std::vector<Steps>& parts) {
  Steps steps;
  for (const Steps& part : parts) steps.insert(steps.end(), part.begin(), part.end());
  return steps;
}

inline const std::string kCommon = "system.common";
inline const std::string kAd = "system.adPart[0]";
// All but the quick setups, of which there are six.
inline const std::vector<Block> kSingleBlocks{
    {"Common",
     48,
     "00 00 00",
     49,
     68,
     {"Common", "System Common"},
     {"system", kCommon, "system.tune"},
     all({bytes(0, 1, kCommon, 0),
          {{Kind::nibbles, 2, "system.tune", 0, 4}},
          bytes(6, 11, kCommon, 2),
          bytes(13, 13, kCommon, 8),
          bytes(17, 18, kCommon, 12),
          bytes(20, 21, kCommon, 14),
          bytes(24, 24, kCommon, 16),
          bytes(27, 31, kCommon, 21),
          bytes(35, 35, kCommon, 27),
          bytes(40, 51, kCommon, 28),
          bytes(53, 53, kCommon, 41),
          bytes(55, 55, kCommon, 42),
          bytes(57, 57, kCommon, 44),
          bytes(59, 60, kCommon, 45),
          bytes(62, 62, kCommon, 48),
          bytes(64, 64, kCommon, 49)})},
    {"Ad",
     49,
     "00 40 00",
     50,
     8,
     {"Ad", "System AD"},
     {"system", kAd, kAd + ".params"},
     all({bytes(0, 4, kAd + ".params", 0), bytes(6, 6, kAd + ".params", 5)})},
    {"AdInsertionA",
     50,
     "00 03 00",
     51,
     36,
     {"AdInsAB", "System AD Ins AB"},
     {"system", kAd, kAd + ".insertionA"},
     insertionEffect(kAd + ".insertionA")},
    {"AdInsertionB",
     51,
     "00 04 00",
     52,
     36,
     {"AdInsAB", "System AD Ins AB"},
     {"system", kAd, kAd + ".insertionB"},
     insertionEffect(kAd + ".insertionB")},
    {"MasterEq",
     52,
     "00 20 00",
     53,
     20,
     {"Meq", "System MEQ"},
     {"system", "system.masterEq"},
     all({bytes(0, 6, "system.masterEq", 0), bytes(8, 10, "system.masterEq", 8), bytes(12, 14, "system.masterEq", 11),
          bytes(16, 19, "system.masterEq", 14)})},
    {"MasterEffect",
     53,
     "00 21 00",
     54,
     38,
     {"Mef", "System MEF"},
     {"system", "system.masterEffect", "system.masterEffectSettings"},
     all({insertionEffect("system.masterEffect"), bytes(36, 36, "system.masterEffectSettings", 0)})},
    {"Sequencer",
     55,
     "00 05 00",
     58,
     22,
     {"Seq", "Seq"},
     {"system", "system.sequencer"},
     all({bytes(0, 3, "system.sequencer", 0), bytes(11, 13, "system.sequencer", 4)})},
    {"Remote",
     56,
     "00 06 00",
     59,
     5,
     {"Remote", "Remote"},
     {"system", "system.remote"},
     bytes(0, 1, "system.remote", 0)},
};

inline Block quickSetup(unsigned number) {
  const std::string node = "system.quickSetup[" + std::to_string(number) + "]";
  return {"QuickSetup" + std::to_string(number),
          54,
          "00 5" + std::to_string(number) + " 00",
          57,
          10,
          {"UserQuickSetup", "User Quick Setup"},
          {"system", node, node + ".name", node + ".params"},
          all({{{Kind::name, 0, node + ".name", 0, 8}}, bytes(8, 9, node + ".params", 0)})};
}

inline const std::vector<Block>& blocks() {
  static const std::vector<Block> made = [] {
    std::vector<Block> every = kSingleBlocks;
    for (unsigned number = 0; number < 6; ++number) every.push_back(quickSetup(number));
    return every;
  }();
  return made;
}

// What a step writes into the model when it receives.
inline unsigned valueOf(const Step& step, const Bytes& data) {
  const std::uint8_t* const at = data.data() + step.byte;
  switch (step.kind) {
    case Kind::pair:
      return at[0] * 128U | at[1];
    case Kind::nibbles:
      return at[0] % 16 * 4096U + at[1] % 16 * 256U + at[2] % 16 * 16U + at[3] % 16;
    default:
      return at[0];
  }
}

inline Lines expectedSets(const Block& block, const Bytes& data) {
  Lines lines;
  for (const Step& step : block.steps) {
    if (step.kind == Kind::name) {
      const std::string text(data.begin() + long(step.byte), data.begin() + long(step.byte + step.size));
      lines.push_back("setName(" + step.target + ", " + text.c_str() + ")");
      continue;
    }
    lines.push_back((step.kind == Kind::byte ? "set(" : "set16(") + step.target + ", " + std::to_string(step.index) +
                    ", " + std::to_string(valueOf(step, data)) + ", flag 1)");
  }
  return lines;
}

// The bits of a byte that reach the model: a name takes all eight, as one-byte parameters do.
inline unsigned carriedBits(const Block& block, std::size_t byte) {
  for (const Step& step : block.steps)
    if (byte >= step.byte && byte < step.byte + step.size) return step.kind == Kind::nibbles ? 0x0F : 0xFF;
  return 0;
}

}  // namespace SystemBlocks
