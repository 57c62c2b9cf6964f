#include "bda/BulkDumpAssistant.h"

namespace BDA {

BulkDumpBridge::BulkDumpBridge(BulkDumpAssistant* assistant) {
  if (assistant != nullptr) assistant->registerBDABridge(this);
}
BulkDumpBridge::BulkDumpBridge(const BulkDumpBridge&) = default;
BulkDumpBridge& BulkDumpBridge::operator=(const BulkDumpBridge&) = default;
BulkDumpBridge::~BulkDumpBridge() = default;

}  // namespace BDA
