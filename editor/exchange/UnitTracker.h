#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "exchange/Handover.h"
#include "exchange/Outcome.h"
#include "messages/Units.h"

namespace Editor {

// Follows units as the instrument really took them, message by message: what is open, which file dumps it holds.
// UnitFollower does the same for messages that nobody received.
class UnitTracker {
 public:
  // `tools` outlives this object.
  explicit UnitTracker(const EditorJobTools& tools) : tools_(tools) {}

  // The units that ended with this message, the `number`th of its run.
  std::vector<UnitReport> follow(const Reading& reading, const Handed& handed, Outcome outcome, std::uint64_t number);
  // The units that are still open, and the file dumps that are still held.
  std::vector<UnitReport> open() const;

  bool admits(BulkAddress block) const { return open_ && OpenUnit(*open_).arrive(block); }
  bool isClosedBy(BulkAddress footer) const { return open_ && open_->isClosedBy(footer); }

  struct Held {
    BulkAddress address;
    std::uint64_t message;
    bool isDoubtful;  // refused, and taken all the same
  };
  const std::vector<Held>& held() const { return held_; }
  // The contents whose dump carries no name, of those held.
  const std::set<ContentId>& nameless() const { return nameless_; }

 private:
  // The message that is followed.
  struct Message {
    const Reading& reading;
    const Handed& handed;
    Outcome outcome;
    std::uint64_t number;
    bool isDoubtful;  // refused, and taken all the same
  };

  void take(const Message& message);
  void begin(const Message& message);
  void close(const Message& message);
  void abandon(const Message& message);
  void hold(const Message& message);
  void endHeld(const Message& message, UnitReport::State state);

  const EditorJobTools& tools_;
  std::optional<OpenUnit> open_;
  std::vector<std::uint64_t> doubtful_;  // of the open unit: messages that were refused, and taken all the same
  std::vector<Held> held_;
  std::set<ContentId> nameless_;
  std::vector<UnitReport> ended_;
};

}  // namespace Editor
