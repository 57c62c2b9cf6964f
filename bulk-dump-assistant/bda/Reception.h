#pragma once

#include "bda/BulkDumpAssistant.h"

namespace BDA {

// What became of one message.
struct Reception {
  BulkMsgType type = BulkMsg_ReceiveError;  // until it is known
  bool hasThrown = false;                   // a service, or storage that ran out
};

}  // namespace BDA
