#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <vector>

#include "messages/BackupOrder.h"
#include "messages/Messages.h"
#include "messages/Units.h"

namespace Editor {

// A message of a file, as it was captured.
struct Piece {
  std::size_t source = 0;  // which of the files, from 0
  std::uint64_t number = 0;
  std::uint64_t offset = 0;
  std::vector<std::uint8_t> bytes;
  std::optional<std::uint8_t> wrongChecksum;  // what stood there before it was corrected
};
using Pieces = std::map<BulkAddress, Piece, BackupOrder>;

std::span<const std::uint8_t> dataOf(const Piece& piece);
// Whether two messages of one block carry the same, for whatever device.
bool carrySame(const Piece& a, const Piece& b);

// What one file has of one unit or of one single block: system, favourites, a file dump. Several captures of one unit
// can be in a file. What a broken message claims to be counts as evidence that there was such a thing, and never says
// what blocks belong to.
struct Capture {
  BulkAddress address{};  // of the header, the block or the file dump; of blocks of no known unit that of the first
  std::size_t source = 0;
  Pieces pieces;                        // those that are good; of a unit header and footer among them
  bool isWhole = false;                 // all of it is there, and nothing else between
  std::optional<unsigned> device = {};  // whom its messages are for
  // What followed in the same unit has some of its blocks otherwise: it is of an earlier time.
  bool isSuperseded = false;
};

// Not a single block, nor a file dump.
bool isUnit(BulkAddress address);

// All blocks of the unit, from header to footer; of anything else the block itself. What `pieces` has decides of which
// kind the voice of a multi part is.
std::vector<BulkAddress> blocksOf(BulkAddress address, const Pieces& pieces);

// Finds the units and single blocks in the messages of files. Whatever stands between two blocks of a unit ends the
// capture, be it damage, a message for another device or one of something else: it may have swallowed the end of one
// dump and the beginning of the next, of the same place. What follows is another capture. So is what follows where
// blocks come again, though nothing stands between: the footer of one dump and the header of the next may be lost.
class Captures {
 public:
  enum class Checksums : std::uint8_t { mustBeRight, areCorrected };

  explicit Captures(Checksums checksums) : corrects_(checksums == Checksums::areCorrected) {}

  // The next message. Sources follow one another; a unit does not go on in the next one.
  void add(Piece piece);
  // The beginning of a message that was cut short, as much as is known of it.
  void addFragment(std::size_t source, std::span<const std::uint8_t> beginning);
  // Bytes that belong to no message.
  void addLoose(std::size_t source);
  // Call it once, at the end.
  void finish() { endRun(); }

  const std::vector<Capture>& captures() const { return captures_; }
  // Blocks that belong to a unit of which nothing says which.
  const std::vector<Capture>& orphans() const { return orphans_; }
  // Those that remove mixing voices too are also left out.
  const std::vector<Piece>& triggers() const { return triggers_; }

  // A message that is kept nowhere, though nothing is wrong with it.
  struct LeftOut {
    Piece piece;  // without its bytes
    const char* why;
  };
  const std::vector<LeftOut>& leftOut() const { return leftOut_; }
  // How many broken messages there were of which nothing says what is lost with them.
  std::uint64_t countUnknown() const { return unknown_; }

 private:
  // What comes between the last boundary and the next one.
  struct Run {
    std::optional<OpenUnit> unit;  // none: its first header is lost
    bool isSure = false;           // a good header or footer says which unit it is
    Capture capture;
    std::vector<Pieces> earlier;              // what came before blocks came again, each time
    std::set<BulkAddress, BackupOrder> seen;  // all blocks
    bool isRepeating = false;
    bool isDoubled = false;  // each message so far came twice, one copy behind the other
    bool isCopied = false;   // the last one has
    BulkAddress last{};
    bool goesOn = false;  // it goes on with what another run has lost: that one is known
  };

  void enter(std::size_t source);
  void take(Piece piece, const Reading& reading);
  void takeDump(Piece piece, const Reading& reading);
  void takeBroken(const Reading& reading);
  void begin();
  void begin(BulkAddress header);
  void breakRun();
  void takeHeader(Piece piece, const Reading& reading);
  void takePart(Piece piece, const Reading& reading);
  bool admits(BulkAddress address, unsigned device);
  void put(Piece piece, BulkAddress address);
  bool isCopy(const Piece& piece, BulkAddress address);
  void addEarlier(const Run& run);
  void addOrphan(Capture blocks);
  void takeFooter(Piece piece, const Reading& reading);
  void claimFooter(BulkAddress footer);
  void addSingle(BulkAddress address, std::optional<Piece> piece, unsigned device);
  void leaveOut(const Piece& piece, const char* why);
  void endRun();

  const bool corrects_;
  std::size_t source_ = 0;
  std::optional<Run> run_;
  std::vector<Capture> captures_;
  std::vector<Capture> orphans_;
  std::vector<Piece> triggers_;
  std::vector<LeftOut> leftOut_;
  std::uint64_t unknown_ = 0;
};

}  // namespace Editor
