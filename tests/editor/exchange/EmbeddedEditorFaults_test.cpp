// A disk that fails at any step: what the editor says of a message is what is in the library.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "editor/contents/FaultyVfs.h"
#include "editor/messages/BulkMessages.h"
#include "exchange/EmbeddedEditor.h"

using Editor::BulkAddress;
using Editor::EmbeddedEditor;
using Editor::Outcome;
using Editor::Record;

namespace {

constexpr BulkAddress kFooter{0x0F, 0x0A, 0x05};
constexpr Editor::ContentId kVoice{4, 0x3F0805};
constexpr Editor::ContentId kMulti{1, 4};

// Everything that messages change.
struct State {
  Editor::ModelSet system;
  Editor::ModelSet multi;
  std::vector<std::pair<Editor::ContentId, Editor::Library::Flag>> favourites;
  std::optional<Editor::Library::Content> voice;
  std::optional<Editor::Library::Content> stored;

  friend bool operator==(const State&, const State&) = default;
};

class Faults : public testing::TestWithParam<Editor::FaultyVfs::Fault> {
 protected:
  Faults() {
    std::string name = (std::filesystem::temp_directory_path() / "bda-faults-XXXXXX").string();
    directory_ = ::mkdtemp(name.data());
  }
  ~Faults() override { std::filesystem::remove_all(directory_); }

  // As a program sees it that opens the library now.
  static State stateOf(const std::filesystem::path& file) {
    EmbeddedEditor editor(file);
    return {editor.tools().liveSystem(), editor.tools().live(Editor::EditBuffer::multi), editor.library().favourites(),
            editor.library().content(kVoice), editor.library().content(kMulti)};
  }

  // Whatever has failed: at its next message the editor has what is in the library.
  static void goOn(EmbeddedEditor& editor, const std::filesystem::path& file) {
    EXPECT_EQ(editor.handle(request({0x00, 0x06, 0x00}), BDA::DevicePort_Main, 1).outcome, Outcome::answered);
    const State now = stateOf(file);
    EXPECT_EQ(editor.tools().liveSystem(), now.system);
    EXPECT_EQ(editor.tools().live(Editor::EditBuffer::multi), now.multi);
  }

  // Sends `before` and then `message`, whose n-th step on the disk fails, for every n.
  void failAtEveryStep(const std::vector<Bytes>& before, const Bytes& message) {
    bool struck = true;
    for (int step = 1; struck; ++step) {
      const std::filesystem::path file = directory_ / (std::to_string(step) + ".db");
      std::optional<Record> record;
      State old;
      {
        Editor::FaultyVfs disk;
        Editor::Library::Options options;
        options.vfs = Editor::FaultyVfs::kName;
        EmbeddedEditor editor(file, options);
        std::uint64_t number = 0;
        for (const Bytes& earlier : before) editor.handle(earlier, BDA::DevicePort_Main, ++number);
        old = stateOf(file);
        disk.arm(GetParam(), step);
        try {
          record = editor.handle(message, BDA::DevicePort_Main, ++number);
        } catch (const std::runtime_error&) {
          // The run ends here.
        }
        struck = disk.hasStruck();
        disk.disarm();
        goOn(editor, file);
      }
      const State now = stateOf(file);
      const bool isTold = record && (record->outcome == Outcome::stored || record->outcome == Outcome::completed);
      if (record) {
        EXPECT_EQ(isTold, now != old) << "step " << step << ", " << wordOf(record->outcome);
        EXPECT_EQ(record->outcome == Outcome::refused, !record->reason.empty()) << "step " << step;
      }
      EXPECT_TRUE(struck || isTold) << "without a fault";
      ASSERT_LT(step, 200);
    }
  }

 private:
  std::filesystem::path directory_;
};

}  // namespace

TEST_P(Faults, ofASystemBlock) { failAtEveryStep({blockDump({0x00, 0x06, 0x00}, 1)}, blockDump({0, 0, 0}, 1)); }

TEST_P(Faults, ofTheFooterOfABank) {
  std::vector<Bytes> unit{blockDump({0x0E, 0x0A, 0x05})};
  for (const BulkAddress address : blocksOf(BDA::List::normalVoice)) unit.push_back(blockDump(address, 1));
  failAtEveryStep(unit, blockDump(kFooter));
}

TEST_P(Faults, ofTheFooterOfAnEditBuffer) {
  std::vector<Bytes> unit{blockDump({0x0E, 0x5F, 0x00})};
  for (const BulkAddress address : blocksOf(BDA::List::multi)) unit.push_back(blockDump(address, 1));
  failAtEveryStep(unit, blockDump({0x0F, 0x5F, 0x00}));
}

TEST_P(Faults, ofFavourites) { failAtEveryStep({}, blockDump({0x71, 0x28, 0x00}, 1)); }

TEST_P(Faults, ofAWriteTrigger) {
  failAtEveryStep({dump({0x0C, 0x50, 0x04}, {0, 0, 0, 2, 0, 0x41}), dump({0x0C, 0x0A, 0x05}, {0, 0, 0, 2, 0, 0x42})},
                  dump({0x11, 0x00, 0x00}));
}

INSTANTIATE_TEST_SUITE_P(Disk, Faults,
                         testing::Values(Editor::FaultyVfs::Fault::IoError, Editor::FaultyVfs::Fault::DiskFull));
