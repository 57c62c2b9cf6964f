#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "messages/InputMessage.h"
#include "salvage/Captures.h"

namespace Editor {

// What is left out for something else that is kept of the same place, though nothing says that it is worse.
struct NotTaken {
  enum class Form : std::uint8_t { remains, whole, asFileDump, asUnit };

  Form form;
  std::vector<std::size_t> from;     // the sources that have it
  std::vector<BulkAddress> differs;  // the blocks in which it does; in another form: its own address
};

// What became of one unit, or of one single block, of which some file has something.
struct Salvaged {
  enum class State : std::uint8_t {
    whole,
    completed,  // by several captures together
    lost,
  };

  BulkAddress address{};  // as that of a Capture
  State state = State::lost;
  std::vector<std::size_t> from;         // the sources: of what is kept, or of all that there is
  std::vector<BulkAddress> missing;      // lost: the blocks that none has, or else those that the fullest lacks
  std::vector<BulkAddress> contradicts;  // the blocks in which captures differ; the header: they are of two kinds
  std::vector<Piece> messages;           // of what is kept, from header to footer
  bool isMerged = false;                 // completed though nothing says that it is one sound
  std::vector<std::size_t> repeatedIn;   // sources that have it whole more than once: the last one counts
  std::optional<unsigned> device;        // lost: whom to ask; none: nobody can be asked for it
  bool isMergeable = false;              // lost: merging would complete it
  std::vector<NotTaken> notTaken;        // kept: what is left out for it, one for each form
};

// A trigger that no file has, behind the file dumps for a device.
struct AddedTrigger {
  unsigned device;          // from 1
  bool isInsteadOfAnother;  // a file has one for it, that would have all mixing voices removed
};

const char* wordOf(Salvaged::State state);

struct SalvageResult {
  std::vector<Salvaged> units;  // in the order of a backup, then blocks of no known unit
  // All that is kept, as a backup has it, but that file dumps of one device stand together, before their trigger. None:
  // nothing is whole.
  std::vector<Piece> messages;
  std::vector<AddedTrigger> addedTriggers;
  std::vector<std::vector<std::uint8_t>> requests;  // that fetch what is lost
  std::vector<Captures::LeftOut> leftOut;
  std::vector<ContentId> twice;  // contents that are kept as a file dump and as a unit: the unit is stored last
  // Broken messages of which nothing says what is lost with them.
  std::uint64_t unknown = 0;
  std::size_t notInFull = 0;  // sources that are not built as they must be: nobody knows what else was in them

  bool isNothingLost() const;
};

// Finds what is whole in captured messages, in a time that grows as they do. Captures of one unit, for one device,
// complete each other only where all blocks that are in two of them are equal, and each has some such block of
// parameters: remains of two sounds never become one. A file dump and a unit of one content are both kept, unless one
// of them alone is of the preferred source.
class Salvage {
 public:
  struct Options {
    bool correctsChecksums = false;  // messages of which the checksum alone is wrong count, where nothing else does
    bool merges = false;             // captures complete each other, whatever they have in common
    std::optional<std::size_t> preferred;  // the source that counts where two differ, or have two forms
  };

  explicit Salvage(const Options& options);

  // As Captures.
  void add(Piece piece);
  void addFragment(std::size_t source, std::span<const std::uint8_t> beginning);
  void addLoose(std::size_t source);
  // Bytes of a source that became no message, whatever they are.
  void lose(std::size_t source, const InputLoss& loss);
  // Call it once, at the end. Calls `pause` between two units: it may throw.
  SalvageResult finish(const std::function<void()>& pause = [] {});

 private:
  const Options options_;
  Captures captures_{Captures::Checksums::mustBeRight};
  std::optional<Captures> corrected_;
  std::set<std::size_t> notInFull_;
};

}  // namespace Editor
