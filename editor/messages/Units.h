#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "messages/Messages.h"

namespace Editor {

// What ends a unit, by what begins it.
BulkAddress footerOf(BulkAddress header);

// One content on its way: the header came, the blocks that it admits are coming.
class OpenUnit {
 public:
  OpenUnit(BulkAddress header, std::uint64_t message);

  BulkAddress header() const { return header_; }
  std::uint64_t firstMessage() const { return firstMessage_; }

  // Which kind of voice the part of a multi takes, where that is known before its blocks come.
  void expectVoice(bool isDrum);
  // False when the header does not admit the block. `message` is the number under which messages() has it.
  bool arrive(BulkAddress block, std::uint64_t message = 0);
  bool isClosedBy(BulkAddress footer) const;
  // The blocks that did not arrive, in table order. The voice of a multi part is a normal or a drum voice as its first
  // block tells; without any, those of a normal voice are missing.
  std::vector<BulkAddress> missing() const;
  // The header and the blocks that arrived, in their order; of a block that came twice the last.
  std::vector<std::uint64_t> messages() const;

 private:
  struct Block {
    BulkAddress address;
    bool arrived;
    std::uint64_t message;
  };
  void expect(std::size_t list);

  BulkAddress header_;
  std::uint64_t firstMessage_;
  std::vector<Block> blocks_;
};

// What became of a unit: a content block by block, or the file dumps before a write trigger.
struct UnitReport {
  enum class State : std::uint8_t {
    complete,
    incomplete,   // closed by its footer, but blocks are missing
    abandoned,    // another message took its place or broke it
    open,         // not closed when the messages ended
    outside,      // a block that no open header admits
    strayFooter,  // a footer that closes no open header
    written,      // file dumps, by their trigger
    held,         // file dumps without trigger when the messages ended
    discarded,    // file dumps that a refused one took along
  };

  State state = State::complete;
  std::uint64_t firstMessage = 0;
  std::uint64_t lastMessage = 0;
  BulkAddress address{};                // of the header, the block, the footer, the trigger or the refused file dump
  std::vector<BulkAddress> blocks;      // incomplete and open: those missing; file dumps: those it is about, when they
                                        // are written without the broken ones, of which the instrument may take some
  std::string cause;                    // abandoned: by what
  std::string note = {};                // what is odd about one that is whole, or was not written
  std::vector<ContentId> removes = {};  // written: what the file dumps without data among them removed
  // Complete and incomplete: what it is made of, of a block that came twice the last. Written: the file dumps, and the
  // trigger. Only a UnitFollower says so.
  std::vector<std::uint64_t> messages = {};
};

const char* wordOf(UnitReport::State state);
bool isBroken(const UnitReport& unit);
// One line, without its end.
std::string describeUnit(const UnitReport& unit);
// "element 3 oscillator (41 02 00), ..."
std::string describeBlocks(const std::vector<BulkAddress>& blocks);

// Follows units over a run of messages as an instrument would, knowing nothing but the messages.
class UnitFollower {
 public:
  // Messages are numbered by the caller. Returns the units that end with this one.
  std::vector<UnitReport> next(const Reading& reading, std::uint64_t message);
  // Those that are still open; call it once, at the end.
  std::vector<UnitReport> finish();

 private:
  struct HeldFileDump {
    BulkAddress address;
    std::uint64_t message;
    std::optional<ContentId> removes;
    bool isBroken;  // the instrument holds it all the same, and finds out when it should write it
  };
  void dump(const Reading& reading);
  void footer(const Reading& reading);
  void part(const Reading& reading);
  void fileDump(const Reading& reading);
  void writeTrigger(BulkAddress address, unsigned device);
  void abandon(const std::string& by);
  void report(UnitReport::State state, BulkAddress address);
  UnitReport endHeld(UnitReport::State state, BulkAddress address);

  std::uint64_t message_ = 0;
  std::optional<OpenUnit> open_;
  bool isHeaderBroken_ = false;     // of the wrong length: the instrument takes it all the same, and its blocks
  std::set<unsigned> openDevices_;  // whom its messages are for
  std::vector<HeldFileDump> held_;
  std::uint64_t firstHeld_ = 0;
  std::set<unsigned> heldDevices_;
  std::string superseded_;  // of the file dumps held: the first of those that came again
  std::uint64_t supersededCount_ = 0;
  std::vector<UnitReport> ended_;
};

}  // namespace Editor
