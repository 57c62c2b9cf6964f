// What is on disk, and when: each unit is one commit of the library, and what was told outlives a power cut.

#include <gtest/gtest.h>

#include <map>

#include "editor/contents/FaultyVfs.h"
#include "editor/contents/TemporaryLibrary.h"
#include "editor/messages/BulkMessages.h"
#include "exchange/EmbeddedEditor.h"

namespace Editor {
namespace {

constexpr BulkAddress kTrigger{0x11, 0x00, 0x00};

using Messages = std::vector<Bytes>;

Messages unit(BulkAddress header, BDA::List list, std::uint8_t value) {
  Messages messages{blockDump(header)};
  for (const BulkAddress block : blocksOf(list)) messages.push_back(blockDump(block, value));
  messages.push_back(blockDump({BDA::kFooterHi, header.mid, header.lo}));
  return messages;
}

void append(Messages& messages, const Messages& more) { messages.insert(messages.end(), more.begin(), more.end()); }

// Whether something is now done, and told.
bool isDone(const Record& record) { return record.outcome == Outcome::stored || record.outcome == Outcome::completed; }

class EmbeddedEditorDisk : public testing::Test {
 protected:
  static constexpr std::uint64_t kAnyNumber = 1;
  static inline const Library::Options kOnDisk{.vfs = FaultyVfs::kName};

  static Record send(EmbeddedEditor& editor, const Bytes& message) {
    return editor.handle(message, BDA::DevicePort_Main, kAnyNumber);
  }
  // Sends them, each of which but the last writes nothing.
  static void sendAsOneCommit(EmbeddedEditor& editor, const FaultyVfs& disk, const Messages& messages) {
    const int before = disk.commits();
    for (const Bytes& message : messages) {
      ASSERT_EQ(disk.commits(), before);
      send(editor, message);
    }
    EXPECT_EQ(disk.commits(), before + 1);
  }

  TemporaryDirectory directory;
};

// Everything that the messages below change.
struct State {
  std::map<ContentId, Library::Content> contents;
  ModelSet multi;
  ModelSet system;

  friend bool operator==(const State&, const State&) = default;
};

State stateIn(const std::filesystem::path& file) {
  EmbeddedEditor editor(file);
  State state;
  for (const ContentId id : editor.library().contents()) state.contents[id] = editor.library().content(id).value();
  state.multi = editor.tools().live(EditBuffer::multi);
  state.system = editor.tools().liveSystem();
  return state;
}

// Rounds of everything that is stored in a way of its own.
Messages rounds() {
  Messages messages;
  for (std::uint8_t round = 1; round <= 3; ++round) {
    append(messages, unit({0x0E, 0x70, round}, BDA::List::master, round));
    append(messages, unit({0x0E, 0x5F, 0x00}, BDA::List::multi, round));
    messages.push_back(blockDump({0x00, 0x06, 0x00}, round));
    messages.push_back(dump({0x0C, 0x50, round}, {0, 0, 0, 2, 0, round}));
    messages.push_back(dump(kTrigger));
  }
  return messages;
}

}  // namespace

TEST_F(EmbeddedEditorDisk, eachUnitIsOneCommit) {
  const FaultyVfs disk;
  EmbeddedEditor editor(madeLibrary(directory / "library.db"), kOnDisk);
  for (std::uint8_t number = 0; number < 20; ++number)
    sendAsOneCommit(editor, disk, unit({0x0E, 0x0A, number}, BDA::List::normalVoice, number));
  for (const BDA::AddressRow& row : BDA::kHeaderRows) {
    SCOPED_TRACE(int(row.type));
    const bool isOfPart = row.type == BDA::kPartVoiceHeader;
    const BDA::List list = isOfPart ? BDA::List::normalVoice : BDA::List(BDA::listBetween(row.type));
    sendAsOneCommit(editor, disk, unit({row.hi, row.mid.first, row.lo.first}, list, 1));
  }
  sendAsOneCommit(editor, disk, {blockDump({0x00, 0x06, 0x00}, 1)});
  sendAsOneCommit(editor, disk, {blockDump({0x71, 0x28, 0x00}, 1)});
  sendAsOneCommit(editor, disk,
                  {dump({0x0C, 0x50, 0x04}, {0, 0, 0, 2, 0, 0x41}), dump({0x0C, 0x0A, 0x05}, {0, 0, 0, 2, 0, 0x42}),
                   dump(kTrigger)});
}

TEST_F(EmbeddedEditorDisk, whatChangesNothingIsNoCommit) {
  const FaultyVfs disk;
  EmbeddedEditor editor(directory / "library.db", kOnDisk);
  send(editor, blockDump({0x00, 0x06, 0x00}, 1));
  const int before = disk.commits();
  send(editor, blockDump({0x00, 0x06, 0x00}, 1));
  send(editor, damaged(blockDump({0x00, 0x06, 0x00}, 2)));
  send(editor, request({0x00, 0x06, 0x00}));
  send(editor, blockDump({0x0E, 0x0A, 0x00}));
  send(editor, blockDump({0x41, 0x00, 0x00}, 1));
  send(editor, blockDump({0x0E, 0x0A, 0x01}));  // which abandons the unit
  EXPECT_EQ(disk.commits(), before);
}

TEST_F(EmbeddedEditorDisk, whatWasToldOutlivesAPowerCutAtAnyStep) {
  const Messages messages = rounds();
  std::vector<State> states;  // after 0, 1 ... messages that were done
  {
    EmbeddedEditor editor(directory / "good.db");
    states.push_back(stateIn(directory / "good.db"));
    for (const Bytes& message : messages)
      if (isDone(send(editor, message))) states.push_back(stateIn(directory / "good.db"));
  }
  bool hasStruck = true;
  for (int step = 1; hasStruck; ++step) {
    const TemporaryDirectory before;
    const TemporaryDirectory after;
    FaultyVfs disk;
    std::size_t told = 0;
    {
      EmbeddedEditor editor(before / "library.db", kOnDisk);
      disk.arm(FaultyVfs::Fault::PowerCut, step);
      try {
        for (const Bytes& message : messages)
          if (isDone(send(editor, message))) ++told;
      } catch (const LibraryError&) {
        // The power is off.
      }
      hasStruck = disk.hasStruck();
    }
    disk.leaveFiles(after.path(), unsigned(step));
    const State left = stateIn(after / "library.db");
    EXPECT_TRUE(left == states.at(told) || left == states.at(std::min(told + 1, states.size() - 1)))
        << "step " << step << ", " << told << " told";
    EXPECT_TRUE(hasStruck || told == states.size() - 1);
    ASSERT_LT(step, 1000);
  }
}

}  // namespace Editor
