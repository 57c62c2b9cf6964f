#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "explain/BlockReceiver.h"
#include "messages/AddressNames.h"
#include "models/ModelSet.h"

namespace Editor {

// A parameter that an instrument gives back other than it was sent.
struct ReadBackDifference {
  BulkAddress address{};     // of its block
  std::size_t dataByte = 0;  // the first that carries it; of a file dump the byte of its content
  // Nothing: it is a byte of a file dump, or of a block without parameters. Of a header it is the whole unit, and the
  // values are words for what it is.
  std::optional<std::string> path;
  ParameterValue sent;
  ParameterValue read;
  bool isOfOneOnly = false;  // the other one says that nothing is stored there: there are no values
};

// Compares what was sent with what was read back of the same unit, parameter by parameter, as an instrument takes them:
// bits that carry nothing do not count, nor do values that it corrects.
class ReadBack {
 public:
  using Messages = std::vector<std::vector<std::uint8_t>>;

  // Whole units, of one address. In the order of what was sent; none: they are equal.
  std::vector<ReadBackDifference> compare(const Messages& sent, const Messages& read);

 private:
  using Data = std::span<const std::uint8_t>;
  void compareBlocks(BulkAddress block, Data sent, Data read);
  void compareFileDumps(BulkAddress address, Data sent, Data read);  // whole messages
  void compareBytes(BulkAddress address, Data sent, Data read);

  BlockReceiver receiver_;
  std::vector<ReadBackDifference> differences_;
};

}  // namespace Editor
