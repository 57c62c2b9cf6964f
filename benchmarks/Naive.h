#pragma once

// The plain forms that the benchmarks measure ours against: a loop over bytes, a walk over lists, a vector that grows
// byte by byte.

#include <cstdint>
#include <vector>

#include "BulkMessage.h"
#include "BulkTable.h"

namespace Naive {

std::uint8_t checkSum(const std::uint8_t* message, std::uint32_t length);

// The first block of the address's list that has these three bytes.
BDA::BulkBlock* find(const BDA::BulkTable& table, const BDA::Address& address);

void encode(const std::vector<std::uint8_t>& source, std::vector<std::uint8_t>& destination);
bool decode(const std::vector<std::uint8_t>& source, std::vector<std::uint8_t>& destination);

}  // namespace Naive
