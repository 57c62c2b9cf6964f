#pragma once

// The executers on a recording platform, without the front end around them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "BulkExecuterCreator.h"
#include "support/RecordingPlatform.h"

namespace BDA {

using Testing::Bytes;
using Testing::bytesOf;
using Lines = std::vector<std::string>;

// A failure's two texts as one, without the line number, which moves with the code:
// "BulkTable.cpp [BDA::BulkTable::find] message\n". What is not such a pair fails the test.
inline Lines reportsOf(const Lines& texts) {
  constexpr std::string_view kFolder = "..\\..\\bda\\";
  Lines reports;
  for (std::size_t i = 0; i < texts.size(); i += 2) {
    const std::string& location = texts[i];
    const std::size_t number = location.find(':') + 1;
    const std::size_t function = location.find_first_not_of("0123456789", number);
    const bool isLocation = location.rfind(kFolder, 0) == 0 && number != 0 && location[number] != '0' &&
                            function != number && function != std::string::npos &&
                            location.compare(function, 2, " [") == 0 && location.size() > 2 &&
                            location.compare(location.size() - 2, 2, "] ") == 0;
    if (!isLocation || i + 1 == texts.size()) {
      ADD_FAILURE() << "not a location and a message: " << location;
      return texts;
    }
    reports.push_back(location.substr(kFolder.size(), number - 1 - kFolder.size()) + location.substr(function) +
                      texts[i + 1]);
  }
  return reports;
}

class ExecuterFixture : public testing::Test {
 protected:
  void SetUp() override { record.take(); }  // what the creator asked

  // What was reported, and what was asked of the platform, since the last time. Reports that nobody takes fail the
  // test.
  Lines reports() { return reportsOf(traceScope.take()); }
  Lines calls() { return record.take(); }

  // The reads of the platform too, and in their order.
  void recordReads() { record.recordsReads = true; }

  // Executer `number` serves this block from now on.
  BulkExecuter& executer(std::size_t number, std::string_view address, std::uint32_t type, std::uint32_t index = 0) {
    BulkExecuter* const found = creator.getExecuter(number);
    if (found == nullptr) throw std::logic_error("no such executer");
    const Bytes bytes = bytesOf(address);
    found->setBlockInfo(Address(bytes.at(0), bytes.at(1), bytes.at(2)), type, index);
    return *found;
  }

  void setDevice(unsigned setting) { tools.system.utility[51] = std::uint16_t(setting); }

  Testing::Calls record;
  Testing::TraceScope traceScope;
  Testing::FakeJobTools tools{record};
  Testing::FakeWork work{record};
  std::vector<CMA::JobReceiver*> jobReceivers;
  BulkExecuterCreator creator{nullptr, &jobReceivers, &tools, &tools.temporaryModel, &work};
};

}  // namespace BDA
