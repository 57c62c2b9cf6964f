// docs/layouts.md is generated from the layouts that the module converts by; this test keeps the two the same.
// With BDA_UPDATE_DOCS set in the environment it writes the page instead.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "AddressRows.h"
#include "ExecuterNumbers.h"
#include "MasterRemoteLayouts.h"
#include "ModelSizes.h"
#include "MultiLayouts.h"
#include "SystemLayouts.h"
#include "TravellingBits.h"
#include "VoiceLayouts.h"

namespace {

using namespace BDA;

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

Texts withParts(Texts groups, int parts) {
  for (int i = 0; i < parts; ++i) groups.push_back("multi.part[" + std::to_string(i) + "].main");
  return groups;
}

std::vector<Section> sections() {
  const Texts voiceCommon{"voice.common", "voice.commonExtra", "multi.part[0].extra"};
  const Texts part{"multi.part[i].bankProgram", "multi.part[i].main", "multi.part[i].extra"};
  return {
      section("Normal voice common", {3}, VoiceCommon::kNormal, voiceCommon, {"voice.name"}),
      section("Drum voice common", {13}, VoiceCommon::kDrum, voiceCommon, {"voice.name"}),
      section("Reverb", {4, 14, 23, 34}, VoiceCommonRev::kLayout, {"multi.reverb", "multi.reverbSettings"}),
      section("Chorus", {5, 15, 24, 35}, VoiceCommonCho::kLayout, {"multi.chorus", "multi.chorusSettings"}),
      section("Insertion effects A and B of a voice", {6, 7, 16, 17}, kInsEffect, {"voice.insertionA (B)"}),
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
      section("Insertion effects A and B of a multi or performance", {25, 26, 36, 37}, kInsEffect,
              {"multi.insertionA (B)"}),
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
      section("Insertion effects A and B of the system's audio input part", {50, 51}, kInsEffect,
              {"system.adPart[0].insertionA (B)"}),
      section("System master EQ", {52}, kEq, {"system.masterEq"}),
      section("System master effect", {53}, kMasterEffect, {"system.masterEffect", "system.masterEffectSettings"}),
      section("Quick setup", {54}, SystemUserQuickSetup::kLayout, {"system.quickSetup[i].params"},
              {"system.quickSetup[i].name"}),
      section("System sequencer", {55}, SystemSeq::kLayout, {"system.sequencer"}),
      section("System remote", {56}, SystemRemote::kLayout, {"system.remote"}),
  };
}

const char* wordOf(Routine routine) {
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

template <typename... Arguments>
std::string print(const char* format, Arguments... arguments) {
  char text[256];
  std::snprintf(text, sizeof text, format, arguments...);
  return text;
}

std::string span(int first, int last) {
  return first == last ? std::to_string(first) : std::to_string(first) + "-" + std::to_string(last);
}

std::string addressesOf(const Section& section) {
  std::string text;
  for (const AddressRow& row : kParameterRows)
    for (const unsigned executer : section.executers) {
      if (row.executer != executer) continue;
      if (!text.empty()) text += ", ";
      text += print("%02X %02X %02X", unsigned(row.hi), unsigned(row.mid.first), unsigned(row.lo.first));
      if (row.mid.size() > 1) text += print(" to %02X %02X %02X", unsigned(row.hi), unsigned(row.mid.last), 0U);
    }
  return text;
}

std::string parametersOf(const Section& section, const Row& row) {
  if (isName(row)) return section.names[row.slot];
  std::string text = section.groups[row.slot] + "[" + span(row.index, row.index + row.count - 1) + "]";
  if (row.routine == Routine::setNibbleParams)
    text += ", " + section.groups[row.slot2] + "[" + std::to_string(row.index2) + "]";
  return text;
}

// Of each byte of a step, if they differ.
std::string bitsOf(const Row& row) {
  std::string text = print("%02X", unsigned{claimedBits(row, 0)});
  for (int n = 1; n < bytesPerStep(row.routine); ++n)
    if (claimedBits(row, n) != claimedBits(row, 0)) text += print(", %02X", unsigned{claimedBits(row, n)});
  return text;
}

std::string unusedIn(const Section& section) {
  std::string text;
  for (const Gap& gap : section.gaps) {
    if (!text.empty()) text += ", ";
    text += span(gap.first, gap.last);
    if (gap.mask != 0xFF)
      text += print(gap.step == 1 ? " (bits %02X)" : " (bits %02X of high bytes)", unsigned{gap.mask});
  }
  return text;
}

// What an editor needs to hold all of it.
std::string sizesOfModels() {
  std::string text =
      "\n## The models\n\nHow many parameters each group has and how wide they are, how many characters each name "
      "and how many nodes each\nlist: the constants of `bda/platform/CMA/ParameterModels.h`. They include the "
      "few parameters that no block carries.\n\n| group | parameters | bits |\n|---|---|---|\n";
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

std::string listing() {
  std::string text =
      "# The layouts of the parameter blocks\n\n"
      "Which data bytes of a bulk dump carry which parameters, by their path in `bda show --json`, in the order in "
      "which\n"
      "they are converted. Byte 0 is the first after the address. In a path, i counts the addresses of the block from "
      "0.\n\n"
      "The bits of a byte that travel stand as a mask; two masks are those of the high and the low byte of a pair. All "
      "others\n"
      "are unused: ignored when received and 0 when dumped. Bit 7 travels wherever the mask has it, although no MIDI "
      "cable can\n"
      "carry it: bytes are received and dumped as they are. Pairs alone are dumped without it; received, the high byte "
      "is\n"
      "shifted and the low one ORed onto it, as they come.\n\n"
      "This page is generated from the tables that the module converts by; a test compares the two.\n";
  for (const Section& section : sections()) {
    text += "\n## " + section.title + "\n\n" + addressesOf(section) + ": " + std::to_string(section.length) +
            " data bytes.\n\n| bytes | bits | carry | parameters |\n|---|---|---|---|\n";
    for (const Row& row : section.rows)
      text += "| " + span(row.byte, lastByte(row)) + " | " + bitsOf(row) + " | " + wordOf(row.routine) + " | " +
              parametersOf(section, row) + " |\n";
    const std::string unused = unusedIn(section);
    if (!unused.empty()) text += "\nUnused: " + unused + ".\n";
  }
  return text + sizesOfModels();
}

TEST(LayoutListing, ThePageInDocsIsWhatTheTablesSay) {
  const std::string path = BDA_SOURCE_DIR "/docs/layouts.md";
  if (std::getenv("BDA_UPDATE_DOCS") != nullptr) std::ofstream(path, std::ios::binary) << listing();
  std::stringstream page;
  page << std::ifstream(path, std::ios::binary).rdbuf();
  EXPECT_EQ(page.str(), listing()) << "run this test with BDA_UPDATE_DOCS=1 and read what changed";
}

TEST(LayoutListing, EveryBitTravelsThatIsNotUnused) {
  for (const Section& section : sections()) {
    Testing::Bytes expected(section.length, 0xFF);
    for (const Gap& gap : section.gaps)
      for (std::size_t byte = gap.first; byte <= gap.last; byte += gap.step)
        expected[byte] = std::uint8_t(expected[byte] & ~gap.mask);
    EXPECT_EQ(TravellingBits::of(section.rows, section.length), expected) << section.title;
  }
}

struct Reach {
  std::size_t count = 0;
  std::set<int> widths;
};

bool isWide(Routine routine) {
  return routine == Routine::setWideByteParam || routine == Routine::setPairParam || routine == Routine::setNibbleWord;
}

// How far the rows of all sections reach into each group. "multi.insertionA (B)" are two.
std::map<std::string, Reach> reachOfRows() {
  std::map<std::string, Reach> reach;
  const auto note = [&reach](std::string path, const Row& row, std::size_t last) {
    path = ModelSizes::anyNode(path);
    Texts paths{path.substr(0, path.find(' '))};
    if (path.ends_with("A (B)")) paths.push_back(paths.front().substr(0, paths.front().size() - 1) + "B");
    for (const std::string& of : paths) {
      reach[of].count = std::max(reach[of].count, last + 1);
      reach[of].widths.insert(isWide(row.routine) ? 16 : 8);
    }
  };
  for (const Section& section : sections())
    for (const Row& row : section.rows) {
      if (isName(row)) continue;
      note(section.groups[row.slot], row, std::size_t(row.index) + row.count - 1);
      if (row.routine == Routine::setNibbleParams) note(section.groups[row.slot2], row, row.index2);
    }
  return reach;
}

TEST(LayoutListing, TheModelsAreAsLargeAsTheRowsReach) {
  const std::map<std::string, Reach> reach = reachOfRows();
  std::set<std::string> withoutRows;
  for (const ModelSizes::Group& group : ModelSizes::kGroups) {
    const auto found = reach.find(group.path);
    if (found == reach.end()) {
      withoutRows.insert(group.path);
      continue;
    }
    EXPECT_EQ(group.size.count, found->second.count) << group.path;
    EXPECT_EQ(std::set<int>{group.size.bits}, found->second.widths) << group.path;
  }
  EXPECT_EQ(withoutRows,
            (std::set<std::string>{"voice.type", "arpeggio.tempo", "system.utility", "additional.params"}));
  EXPECT_EQ(reach.size() + withoutRows.size(), ModelSizes::kGroups.size()) << "a row reaches a group without a size";
}

TEST(LayoutListing, TheNamesAreAsLongAsTheRowsCarry) {
  std::map<std::string, std::size_t> carried;
  for (const Section& section : sections())
    for (const Row& row : section.rows)
      if (isName(row)) carried[section.names[row.slot]] = row.count;
  std::map<std::string, std::size_t> stated;
  for (const ModelSizes::Count& name : ModelSizes::kNames) stated[name.path] = name.count;
  EXPECT_EQ(stated, carried);
}

TEST(LayoutListing, NamesEveryBlockOfParametersOnce) {
  std::vector<int> listed(kExecuterCount + 1, 0);
  for (const Section& section : sections())
    for (const unsigned executer : section.executers) {
      ++listed[executer];
      EXPECT_EQ(section.length, kExecuterDataLength[executer]) << section.title;
    }
  for (unsigned executer = 3; executer <= 56; ++executer) EXPECT_EQ(listed[executer], 1) << "executer " << executer;
}

}  // namespace
