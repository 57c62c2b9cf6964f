#pragma once

// docs/layouts.md: the layouts as tables, for people.

#include <string>

#include "LayoutSections.h"
#include "ModelSizes.h"

namespace BDA::LayoutListing {

inline const char* wordOf(Routine routine) {
  switch (routine) {
    case Routine::setByteParam:
      return "byte";
    case Routine::setWideByteParam:
      return "byte of a 16-bit parameter";
    case Routine::setPairParam:
      return "14 bits, high byte first";
    case Routine::setSplitByteParam:
      return "bit 7, then bits 6-0";
    case Routine::setNibbleSplitParam:
      return "bits 7-4, then bits 6-0";
    case Routine::setNibbleParams:
      return "low nibble, high nibble";
    case Routine::setLowNibble:
      return "low nibble";
    case Routine::setBitParam:
      return "switch";
    case Routine::setNibbleWord:
      return "16 bits in four nibbles";
    case Routine::setNameParam:
      return "name";
    case Routine::setSharedByteParam:
      return "byte, shared: received, but the later row is dumped";
    case Routine::setSplitByteHigh:
      return "bit 7; bits 6-0 do not travel";
    case Routine::dumpByteParam:
      return "byte; received as the editor corrects it";
  }
  return "?";
}

inline std::string span(int first, int last) {
  return first == last ? std::to_string(first) : std::to_string(first) + "-" + std::to_string(last);
}

inline std::string addressesOf(const Section& section) {
  std::string text;
  forEachAddressRow(section, [&](const AddressRow& row) {
    if (!text.empty()) text += ", ";
    text += print("%02X %02X %02X", unsigned(row.hi), unsigned(row.mid.first), unsigned(row.lo.first));
    if (row.mid.size() > 1) text += print(" to %02X %02X %02X", unsigned(row.hi), unsigned(row.mid.last), 0U);
  });
  return text;
}

inline std::string parametersOf(const Section& section, const Row& row) {
  if (isName(row)) return section.names[row.slot];
  std::string text = section.groups[row.slot] + "[" + span(row.index, row.index + row.count - 1) + "]";
  if (row.routine == Routine::setNibbleParams)
    text += ", " + section.groups[row.slot2] + "[" + std::to_string(row.index2) + "]";
  return text;
}

// Of each byte of a step, if they differ.
inline std::string bitsOf(const Row& row) {
  std::string text = print("%02X", unsigned{claimedBits(row, 0)});
  for (int n = 1; n < bytesPerStep(row.routine); ++n)
    if (claimedBits(row, n) != claimedBits(row, 0)) text += print(", %02X", unsigned{claimedBits(row, n)});
  return text;
}

inline std::string unusedIn(const Section& section) {
  std::string text;
  for (const Gap& gap : section.gaps) {
    if (!text.empty()) text += ", ";
    text += span(gap.first, gap.last);
    if (gap.mask != 0xFF)
      text += print(gap.step == 1 ? " (bits %02X)" : " (bits %02X of high bytes)", unsigned{gap.mask});
  }
  return text;
}

inline constexpr const char* kPageHead = R"(# The layouts of the parameter blocks

Which data bytes of a bulk dump carry which parameters, by their path in `bda show --json`, in the order in which
they are converted. Byte 0 is the first after the address. In a path, i counts the addresses of the block from 0.

The bits of a byte that travel stand as a mask; two masks are those of the high and the low byte of a pair. All others
are unused: ignored when received and 0 when dumped. Bit 7 travels wherever the mask has it, although no MIDI cable can
carry it: bytes are received and dumped as they are. Pairs alone are dumped without it; received, the high byte is
shifted and the low one ORed onto it, as they come.

This page is generated from the tables that the module converts by; a test compares the two. So is a description of all
messages and blocks in Kaitai Struct, [bda.ksy](../program/bda.ksy), installed as `share/bda/bda.ksy`: each parameter is
an instance there, with its path as `-orig-id`.
)";

// What an editor needs to hold all of it.
inline std::string sizesOfModels() {
  std::string text = R"(
## The models

How many parameters each group has and how wide they are, how many characters each name and how many nodes each
list: the constants of `bda/platform/CMA/ParameterModels.h`. They include the few parameters that no block carries.

| group | parameters | bits |
|---|---|---|
)";
  for (const ModelSizes::Group& group : ModelSizes::kGroups)
    text += std::string("| ") + group.path + print(" | %zu | %d |\n", group.size.count, group.size.bits);
  text += "\n| name | characters |\n|---|---|\n";
  for (const ModelSizes::Count& name : ModelSizes::kNames)
    text += std::string("| ") + name.path + print(" | %zu |\n", name.count);
  text += "\n| list | nodes |\n|---|---|\n";
  for (const ModelSizes::Count& list : ModelSizes::kLists)
    text += std::string("| ") + list.path + print(" | %zu |\n", list.count);
  return text;
}

class PageWriter {
 public:
  void begin(const Section& section) {
    text_ += "\n## " + section.title + "\n\n" + addressesOf(section) + ": " + std::to_string(section.length) +
             " data bytes.\n\n| bytes | bits | carry | parameters |\n|---|---|---|---|\n";
  }
  void row(const Section& section, const Row& row) {
    text_ += "| " + span(row.byte, lastByte(row)) + " | " + bitsOf(row) + " | " + wordOf(row.routine) + " | " +
             parametersOf(section, row) + " |\n";
  }
  void end(const Section& section) {
    if (!section.gaps.empty()) text_ += "\nUnused: " + unusedIn(section) + ".\n";
  }
  std::string text() const { return kPageHead + text_ + sizesOfModels(); }

 private:
  std::string text_;
};

}  // namespace BDA::LayoutListing
