#include "bda/BulkDumpAssistant.h"

namespace BDA {

BulkDumpBridge::BulkDumpBridge(BulkDumpAssistant* assistant) {
  if (assistant != nullptr) assistant->registerBDABridge(this);
}
BulkDumpBridge::BulkDumpBridge(const BulkDumpBridge& /*other*/) {}
BulkDumpBridge& BulkDumpBridge::operator=(const BulkDumpBridge& /*other*/) { return *this; }
BulkDumpBridge::~BulkDumpBridge() = default;

}  // namespace BDA
