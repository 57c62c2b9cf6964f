#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "contents/ModelStore.h"
#include "exchange/UnitTracker.h"
#include "messages/Verification.h"

namespace Editor {

// One message's whole way: what it says of itself, what the assistant and the library did with it, what that means.
// What it says of contents is on disk, but inside a Run.
struct Record : Handed, Touched {
  Reading reading;
  Outcome outcome = Outcome::ignored;
  std::string reason;                // refused: why, in words
  std::string reasonInCommon;        // the same without what is this message's own
  std::vector<BulkAddress> missing;  // blocks of the unit that was stored which had not arrived
  std::vector<UnitReport> ended;     // units that ended with this message; the trace tells only `missing`
};

// Whether the message is broken, and the assistant says nothing of that: it takes file dumps without a look into them,
// and what is too short for any message for somebody else's.
bool isSilentlyBroken(const Record& record);

// What of a message that was received is refused or broken, and so not there afterwards.
std::vector<MessageFault> faultsOf(const Record& record);

// Hears what an editor is handed and what comes of it, in order. It uses no editor, and throws nothing but what the
// library does.
class EditorListener {
 public:
  EditorListener() = default;
  EditorListener(const EditorListener&) = delete;
  EditorListener& operator=(const EditorListener&) = delete;
  virtual ~EditorListener() = default;

  // The library is in a state that no message has brought: the first one, and what another program has made of it. The
  // next message finds it like that. In the transaction that sees it.
  virtual void found(Library& library) = 0;
  // `record` is null where the library failed: the message has changed nothing.
  virtual void handed(std::uint64_t number, BDA::DevicePortNum port, std::span<const std::uint8_t> message,
                      const Record* record) = 0;
  // The same of one of kBulkJobs, which makes a request.
  virtual void ran(std::size_t job, std::span<const std::uint8_t> request, const Record* record) = 0;
  // What is handed between these belongs to one Run.
  virtual void runBegins() = 0;
  virtual void runEnds(bool isCommitted) = 0;
};

// An editor on a library file: everything that a message changes is one transaction, committed before its outcome is
// told. Other programs may change the same library at the same time. One thread uses it.
class EmbeddedEditor {
 public:
  // One whose library is in memory, gone with it.
  EmbeddedEditor() : EmbeddedEditor("memory", {.use = Library::Use::memory}) {}
  // Opens the library as `options` say. Throws LibraryError and LiveModelError.
  explicit EmbeddedEditor(const std::filesystem::path& libraryFile, const Library::Options& options = {});

  Library& library() { return library_; }
  ContentStore& store() { return store_; }
  EditorJobTools& tools() { return host_.tools(); }
  const EditorJobTools& tools() const { return host_.tools(); }

  // Handles one complete message that arrived on `port`, the `number`th of its run. Throws LibraryError when the
  // library fails: the message has then changed nothing.
  Record handle(std::span<const std::uint8_t> message, BDA::DevicePortNum port, std::uint64_t number) {
    return handle(readMessage(message), message, port, number);
  }
  // The same for who has already read it.
  Record handle(const Reading& reading, std::span<const std::uint8_t> message, BDA::DevicePortNum port,
                std::uint64_t number);

  // From now on, or nobody any more. The listener outlives this object, or that. Throws LibraryError.
  void setListener(EditorListener* listener);

  // Runs one of kBulkJobs: the record of the request that it makes, and of what the assistant sends for that. Throws
  // LibraryError.
  Record run(std::size_t job);

  // From now on dumps and requests are taken as if they were for the device number that is set, whatever theirs is.
  void takeAnyDevice() { handover_.takeAnyDevice(); }

  // Whether the instrument listens to such a dump, as it is set now. Throws LibraryError.
  bool hears(const Reading& reading) { return handover_.hears(reading); }

  // Whether the device number that is set is off, inside of a Run too, where another counts.
  bool isDeviceOff() const;

  // For who has taken back a change that had reached the live models: they are those of the library again, now, or
  // where that cannot be read, before the next message.
  void rereadLive() { handover_.rereadLive(); }

  // The units that are still open, and the file dumps that are still held.
  std::vector<UnitReport> openUnits() const { return units_.open(); }

  // A request for that address as this library's instrument accepts it.
  std::vector<std::uint8_t> requestFor(BulkAddress address);

  // As long as it lives everything that is read belongs to one state of the library, the live models too.
  class View {
   public:
    explicit View(EmbeddedEditor& editor) : oneState_(editor.library_, Library::Transaction::Access::Read) {
      editor.tools().reload();
    }

   private:
    Library::Transaction oneState_;
  };

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

    // Puts the switches back as they were set, when all messages are handled.
    void settle();
    void commit();  // and settles; a library that does not exist yet is made, whatever it holds

   private:
    EmbeddedEditor& editor_;
    std::optional<Library::Transaction> transaction_;
    bool isCommitted_ = false;
    ModelSet system_;                 // as it was
    std::optional<Held> heldSystem_;  // what the library holds of it
    bool isSystemNew_ = false;        // for nothing is stored, or what is stored is damaged
  };

 private:
  template <typename Act, typename Tell>
  Record told(Act act, Tell tell);
  Record recordOf(const Reading& reading, Handed handed, std::uint64_t number);

  Library library_;
  ModelStore store_;
  ContentsWork work_;
  AssistantHost host_;
  Handover handover_;
  UnitTracker units_;
  EditorListener* listener_ = nullptr;
  bool countsOffAsOn_ = false;  // a Run has replaced a device number that is off
};

}  // namespace Editor
