#pragma once

#include <set>
#include <string>
#include <vector>

#include "convert/Batch.h"

namespace Editor {

// Which units of a batch stay: those of the addresses, banks and ranges that words name. A place is the same whether
// its header or its file dump was named. What is taken by itself (system blocks, favourites, triggers) is named by
// itself.
class Selection {
 public:
  // Throws TargetError (noTarget).
  explicit Selection(const std::vector<std::string>& words);

  struct Result {
    std::vector<std::string> notFound;  // words of which nothing is there
    bool tamesTrigger = false;          // one that removes all mixing voices became one that only writes
  };
  // Leaves nothing else in the batch; of `broken` what was asked for. The trigger of a file dump stays with it, but
  // removes nothing.
  Result apply(Batch& batch) const;

 private:
  struct Word {
    std::string text;
    std::set<std::string> places;
  };
  bool takes(const std::string& place) const;
  bool takesAlone(const Batch::Message& message) const;

  std::vector<Word> words_;
};

}  // namespace Editor
