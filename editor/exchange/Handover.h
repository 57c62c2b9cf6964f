#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "contents/ContentsWork.h"
#include "contents/Library.h"
#include "exchange/AssistantHost.h"
#include "messages/Messages.h"

namespace Editor {

// What the assistant made of a message, and what that did to the library.
struct Handed : AssistantHost::Effects {
  std::vector<Change> changes;  // inside of a run those that its commit brings to disk
  bool isKept = false;          // they are on disk: they were not taken back, and no run has still to commit them
  std::string storeError;       // what first went wrong in the store, also behind the assistant's back; empty: nothing
  bool libraryFailed = false;   // the library's file failed meanwhile
  bool storeFails = false;      // for that, or for want of room: it is not the message's fault
};

// Hands messages to the assistant, each in one transaction of the library. A message that was refused leaves no trace
// there. The write trigger is the exception: what it could write is written, whatever became of the rest.
//
// The live models are read again only when they may be other than the library's. A transaction writes only what the
// message changed: inside of a unit that is nothing, for its blocks go into the temporary model until the footer.
class Handover {
 public:
  // All outlive this object.
  Handover(Library& library, ContentsWork& work, AssistantHost& host) : library_(library), work_(work), host_(host) {}

  // `nameless`: the contents for which file dumps without a name are held. Throws LibraryError when the library fails:
  // the message has then changed nothing.
  Handed hand(const Reading& reading, std::span<const std::uint8_t> message, BDA::DevicePortNum port,
              const std::set<ContentId>& nameless);

  // Runs one of kBulkJobs. `request` is what it asks for. Throws LibraryError when the library fails.
  Handed run(std::size_t job, const Reading& request);

  // Whether the instrument listens to it, as it is set now: to its device number, and to any dumps and requests at all.
  // Throws LibraryError.
  bool hears(const Reading& reading);

  // Tells from now on which state the library is in that no message has brought: at once, and when another program has
  // changed it. It is called in the transaction that sees it, before the message is handed over.
  void watch(std::function<void()> findState) {
    findState_ = std::move(findState);
    known_.reset();
    if (!findState_) return;
    const Library::Transaction oneState(library_, Library::Transaction::Access::Read);
    noticeState();
  }
  // The same for who has begun a transaction of his own.
  void noticeState();

  // Between these a run's transaction, which is the caller's, is around all messages.
  void beginRun();
  void endRun();

  // The live models are those of the library again: now, or where that cannot be read, before the next message.
  void rereadLive();

  // From now on each message is handed over as if it were for the device number that is set then.
  void takeAnyDevice() { takesAnyDevice_ = true; }

 private:
  using Act = std::function<AssistantHost::Effects()>;

  Handed handDump(const Reading& reading, const Act& act, const std::set<ContentId>& nameless);
  Handed handRequest(const Reading& reading, const Act& act);
  void hand(Handed& handed, const Reading& reading, const Act& act);
  AssistantHost::Effects pass(const Reading& reading, std::span<const std::uint8_t> message, BDA::DevicePortNum port);
  std::string damageAt(const Reading& reading) const;
  void seeWhatOthersChanged();
  void leaveNameless(std::size_t firstChange, const std::set<ContentId>& nameless);
  void rememberLive();
  void reload();

  // When the live models were those of the library: in which of its states, and at which count of their changes.
  struct Seen {
    Library::Version version;
    std::uint64_t changes = 0;

    friend bool operator==(const Seen&, const Seen&) = default;
  };

  Library& library_;
  ContentsWork& work_;
  AssistantHost& host_;
  bool inRun_ = false;
  bool takesAnyDevice_ = false;
  std::optional<Seen> seen_;  // none: not for certain
  std::function<void()> findState_;
  std::optional<Library::Version> known_;  // the state that was told last
};

// The device number that is set, 0 to 15; 0 when it is "all" or "off".
std::uint8_t deviceNumberOf(const EditorJobTools& tools);

// Saves the live models that were changed. Throws LibraryError.
void saveLive(EditorJobTools& tools);

// The setting itself, in words: "1" to "16", "all" or "off".
std::string deviceNumberWords(const EditorJobTools& tools);

}  // namespace Editor
