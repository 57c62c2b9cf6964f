#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "Outcome.h"
#include "contents/ContentsWork.h"
#include "contents/Library.h"
#include "contents/ModelStore.h"
#include "messages/Units.h"

namespace Editor {

// What one message did. What it says of contents is on disk, but inside a Run.
struct Record : AssistantHost::Effects {
  Outcome outcome = Outcome::ignored;
  std::vector<std::string> contents;  // readable names of what was stored or removed
  std::vector<std::string> removed;   // those of `contents` that were removed
  std::vector<BulkAddress> missing;   // blocks of the unit that was stored which had not arrived
  std::vector<UnitReport> ended;      // units that ended with this message; the trace tells only `missing`
  std::string reason;                 // refused: why, in words
  bool libraryFailed = false;         // that is why
};

// The readable name of a content: that of its header, or else of its file dump.
std::string nameOf(ContentId content);

// An editor on a library file: everything that a message changes is one transaction, committed before its outcome is
// told. Other programs may change the same library at the same time. One thread uses it.
class EmbeddedEditor {
 public:
  // Opens the library, or creates it. Throws LibraryError and LiveModelError.
  explicit EmbeddedEditor(const std::filesystem::path& libraryFile, const Library::Options& options = {});

  Library& library() { return library_; }
  ContentStore& store() { return store_; }
  EditorJobTools& tools() { return host_.tools(); }
  const EditorJobTools& tools() const { return host_.tools(); }

  // Handles one complete message that arrived on `port`, the `number`th of its run. Throws LibraryError when the
  // library fails: the message has then changed nothing.
  Record handle(std::span<const std::uint8_t> message, BDA::DevicePortNum port, std::uint64_t number);

  // The units that are still open, and the file dumps that are still held.
  std::vector<UnitReport> openUnits() const;

  // A request for that address as this library's instrument accepts it.
  std::vector<std::uint8_t> requestFor(BulkAddress address);

  // As long as it lives the messages that are handled are one change of the library, or see one state of it. Their
  // records name no contents as stored: nothing is, before the commit. One at a time, for one editor.
  //
  // It is the user who asks for it, not a cable: receive-bulk counts as on, and a device number that is off as 1.
  class Run {
   public:
    enum class Devices : std::uint8_t { asSet, any };

    explicit Run(EmbeddedEditor& editor, Library::Transaction::Access access = Library::Transaction::Access::Write,
                 Devices devices = Devices::asSet);
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;
    ~Run();  // takes back what was not committed

    void commit();

   private:
    EmbeddedEditor& editor_;
    std::optional<Library::Transaction> transaction_;
    ModelSet system_;  // as it was
  };

 private:
  void handleDump(Record& record, const Reading& reading, std::span<const std::uint8_t> message,
                  BDA::DevicePortNum port);
  void hand(Record& record, std::span<const std::uint8_t> message, BDA::DevicePortNum port);
  void leaveNameless(std::size_t firstChange);
  void nameChanges(Record& record);
  void reloadIfPossible();
  void follow(Record& record, const Reading& reading, std::uint64_t number);
  void hold(const Reading& reading, std::uint64_t number, bool isDoubtful);
  std::vector<std::string> screenLines();
  std::size_t fileDumpSize(BulkAddress address);
  std::string whyRefused(const Record& record, const Reading& reading);
  std::string heldInVain() const;

  struct Held {
    BulkAddress address;
    std::uint64_t message;
    bool isDoubtful;  // refused, and taken all the same
  };

  Library library_;
  ModelStore store_;
  ContentsWork work_;
  AssistantHost host_;
  std::optional<OpenUnit> open_;
  std::vector<std::uint64_t> doubtful_;  // of the open unit: messages that were refused, and taken all the same
  std::vector<Held> held_;
  std::set<ContentId> nameless_;  // the contents whose dump carries no name, of those held
  bool inRun_ = false;
  std::string storeError_;       // of the message that is being handled
  std::vector<Change> changes_;  // of that message, committed or not
};

}  // namespace Editor
