// docs/layouts.md and program/bda.ksy are generated from the layouts that the module converts by; this test keeps them
// the same. With BDA_UPDATE_DOCS set in the environment it writes the two instead.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "ExecuterNumbers.h"
#include "LayoutKsy.h"
#include "LayoutPage.h"
#include "LayoutSections.h"
#include "ModelSizes.h"
#include "TravellingBits.h"

namespace BDA::LayoutListing {
namespace {

void expectWritten(const char* file, const std::string& text) {
  const std::string path = std::string(BDA_SOURCE_DIR) + "/" + file;
  if (std::getenv("BDA_UPDATE_DOCS") != nullptr) std::ofstream(path, std::ios::binary) << text;
  std::stringstream written;
  written << std::ifstream(path, std::ios::binary).rdbuf();
  EXPECT_EQ(written.str(), text) << "run this test with BDA_UPDATE_DOCS=1 and read what changed";
}

TEST(LayoutListing, ThePageInDocsIsWhatTheTablesSay) { expectWritten("docs/layouts.md", written<PageWriter>()); }

TEST(LayoutListing, TheKaitaiStructDescriptionIsWhatTheTablesSay) {
  expectWritten("program/bda.ksy", written<KsyWriter>());
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

// How far the rows of all sections reach into each group.
std::map<std::string, Reach> reachOfRows() {
  std::map<std::string, Reach> reach;
  const auto note = [&reach](const std::string& path, const Row& row, std::size_t last) {
    Reach& of = reach[ModelSizes::anyNode(path)];
    of.count = std::max(of.count, last + 1);
    of.widths.insert(isWide(row.routine) ? 16 : 8);
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
}  // namespace BDA::LayoutListing
