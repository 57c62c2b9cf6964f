#pragma once

#include <utility>
#include <vector>

#include "bda/BulkDumpObserver.h"
#include "support/RecordingPlatform.h"

namespace Testing {

// Keeps what it is told. Recorded: "observed".
class RecordingObserver : public BDA::BulkDumpObserver {
 public:
  explicit RecordingObserver(Calls& calls) : calls_(calls) {}

  void bulkDumpHandled(const BDA::BulkDumpReport& report) override {
    reports_.push_back(report);
    calls_.use("observed", 1, 0, [] { return "observed"; });
  }

  // Takes.
  std::vector<BDA::BulkDumpReport> reports() { return std::exchange(reports_, {}); }

 private:
  Calls& calls_;
  std::vector<BDA::BulkDumpReport> reports_;
};

}  // namespace Testing
