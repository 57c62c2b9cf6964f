#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "contents/Recorder.h"

namespace Editor {

class LibraryFile;
class LibraryMaking;
enum class Listed : std::uint8_t;

// What went wrong with a library, as a text that names the file.
class LibraryError : public std::runtime_error {
 public:
  enum class Kind {
    CannotOpen,  // no such directory, no permission, not a file
    NotALibrary,
    NewerVersion,
    Locked,        // by another program, for longer than the time we wait
    Damaged,       // the file, or what it says about itself
    DamagedPlace,  // what one place holds, whatever of the file can be read beside it
    Failed,        // anything else: no space, an input or output error, a transaction that was lost to one of them
  };

  LibraryError(Kind kind, const std::string& text) : LibraryError(kind, text, text) {}
  // The text names what is at fault, the reason alone says why.
  LibraryError(Kind kind, const std::string& text, std::string reason)
      : std::runtime_error(text), kind_(kind), reason_(std::move(reason)) {}
  Kind kind() const { return kind_; }
  // For who has named it already, and said that it is damaged where that is so.
  const std::string& reason() const { return reason_; }

 private:
  Kind kind_;
  std::string reason_;
};

// A change, listed once it is on disk. What is stored may be what stood there before.
struct Change {
  What what = What::stored;
  Place place;
  std::optional<Standing> before = {};  // nothing: the place was empty
  std::optional<Standing> after = {};
  bool wasDamaged = false;  // what stood there: nothing can bring it back

  // The same change, whatever stood there.
  friend bool operator==(const Change& a, const Change& b) { return a.what == b.what && a.place == b.place; }
};

// The editor's memory: contents, favourite flags, live models and settings in one SQLite file. Every change is on disk
// when its transaction has been committed, power cut or not; a change outside of a transaction is one of its own. Other
// programs may use the same file at the same time: they see what has been committed, and whoever changes something
// makes the others wait.
//
// Every change is written into the history beside it, in the same transaction: Recorder says what is, and what is not.
// A library of version 1 is read as it is; its first change brings it to this version, and leaves a copy beside it.
// What stores what is there already, or takes back all that it did, is no change.
//
// Every operation throws LibraryError when the file fails it, with nothing changed. One thread at a time.
class Library {
 public:
  using Bytes = std::vector<std::uint8_t>;

  enum class Use : std::uint8_t {
    change,  // one that does not exist, or is empty, is made along with its directory by the first change that it keeps
    read,    // it must exist; nothing is written, and a place that cannot be written will do
    memory,  // a new one, gone with this object; its file is a name only
  };

  struct Options {
    Use use = Use::change;
    std::chrono::milliseconds busyTimeout{5000};  // how long to wait for another program's transaction
    const char* vfs = nullptr;                    // the SQLite VFS to use; null: the operating system's files
    Recorder::Clock clock = std::chrono::system_clock::now;  // of the history
  };

  static constexpr std::int64_t kDefaultMixingVoiceMaximum = Settings::kMixingVoices.otherwise;

  // Opens the library in `file`. What is no library of ours, or one of a newer version, stays as it is, to the byte.
  explicit Library(const std::filesystem::path& file) : Library(file, Options()) {}
  Library(const std::filesystem::path& file, const Options& options);
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library();

  // What cannot be read of it: one place, or some of a table.
  struct Unread {
    std::optional<Place> place;
    std::string table;
    std::string reason;
  };
  // For who only reads. From now on what cannot be read is left out of what is listed, and told, as often as it is met;
  // a single place that cannot be read throws DamagedPlace. Without this the library is Damaged then: who changes
  // something has to know all.
  void leaveOutUnread(std::function<void(const Unread&)> tell) { tellUnread_ = std::move(tell); }

  // Holds what `other` does from now on, with its history and what is damaged, and bears its name: a change of this one
  // fails where it would fail there, in the same words. This one is empty, in memory, and in no transaction.
  void copyFrom(Library& other);
  // All of it as a file has it, as the transaction sees it that is open; and the other way round: it holds what that
  // file does, as if it had been copied, and bears the name it has.
  Bytes image();
  void copyFrom(std::span<const std::uint8_t> image);

  // Makes one change of many, or for reading holds one state of the library still. Inside another transaction it is a
  // part of that: its commit takes effect with the outer one's, its end without a commit takes back its own part only.
  // An outer one that ends without a commit ends those inside as well; it cannot be committed before them.
  class Transaction {
   public:
    enum class Access { Write, Read };
    // Whether a library that does not exist yet is made of nothing, too.
    enum class Making { IfThereIsAnything, Always };

    explicit Transaction(Library& library, Access access = Access::Write);
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction();  // takes back what was not committed

    void commit(Making making = Making::IfThereIsAnything);

   private:
    void requireTransaction() const;
    std::string savepoint() const;
    void beginOutermost(Access access);

    Library& library_;
    const std::size_t outer_;                // how many transactions it is inside of
    const std::size_t changes_;              // how many were pending when it began
    const Recorder::Mark recorded_;          // how far the history was
    const std::string undo_;                 // kept ready: to take something back needs no storage
    std::unique_ptr<LibraryMaking> making_;  // there is no library yet, and only this transaction can make one
  };

  struct Content {
    std::string name;
    Bytes bytes;

    friend bool operator==(const Content&, const Content&) = default;
  };

  // Names and bytes are kept as they come, whatever they are. An id need not be canonical, what comes back is. A
  // content that does not fit the checksum which is kept with it throws DamagedPlace.
  std::optional<Content> content(ContentId id);
  std::optional<std::string> contentName(ContentId id);
  std::vector<ContentId> contents();  // by type and number
  void store(ContentId id, std::span<const std::uint8_t> bytes, const std::string& name);
  // The content keeps its name; a new one has the empty name.
  void store(ContentId id, std::span<const std::uint8_t> bytes);
  bool rename(ContentId id, const std::string& name);  // false: nothing is stored there
  bool remove(ContentId id);                           // false: nothing was stored there

  // A flag belongs to the place, whether a content is stored there or not; 0 is no favourite. One out of range is
  // damaged: it throws DamagedPlace, or is told and counts as none; of those that are listed it is told and nothing.
  std::uint8_t favourite(ContentId id);
  using Flag = std::optional<std::uint8_t>;  // nothing: it is damaged
  Flag flag(ContentId id);
  std::vector<std::pair<ContentId, Flag>> favourites();
  void setFavourite(ContentId id, std::uint8_t flag);

  std::int64_t mixingVoiceCount();
  std::int64_t mixingVoiceMaximum() { return number(Settings::kMixingVoices); }
  void setMixingVoiceMaximum(std::int64_t most) { set(Settings::kMixingVoices.name, most); }

  // The live models, each as bytes under one of the keys of LiveKeys.h.
  std::optional<Bytes> live(const std::string& key);
  std::vector<std::string> liveKeys();
  void storeLive(const std::string& key, std::span<const std::uint8_t> bytes);

  // One that is out of its range is damaged: it throws DamagedPlace.
  std::optional<std::int64_t> setting(const std::string& name);
  std::int64_t number(const Setting& setting) { return this->setting(setting.name).value_or(setting.otherwise); }
  void set(const std::string& setting, std::int64_t value);

  // The history. What changes from now on is of that run; without one it is of a verb without a name.
  void beginRun(LibraryRun run) { recorder_.begin(std::move(run)); }
  // The entry of that run, nothing before its first change. Others do not see it before it is committed.
  std::optional<std::int64_t> entryOfRun() const { return recorder_.mark().entry; }
  std::vector<RecordedEntry> recordedEntries();  // the newest first
  std::vector<RecordedChange> recordedChanges(std::int64_t entry, bool withBytes);
  std::vector<std::int64_t> missingEntries();  // that have changes all the same
  // What a place holds, damaged or not.
  std::optional<Held> held(const Place& place);
  // For an undo: begins its entry, whatever it changes, and has a place hold that, or nothing.
  void openEntry();
  void putBack(const Place& place, const std::optional<Held>& held);

  // What SQLite finds wrong with each table, and the names of those that are good with nothing.
  std::vector<std::pair<std::string, std::string>> checkTables();

  // The changes committed since the last call, in order: those of a transaction that was taken back never appear.
  std::vector<Change> takeChanges() { return std::exchange(committed_, {}); }
  // Those of the transaction that is open, so far.
  const std::vector<Change>& pendingChanges() const { return pending_; }
  // How many there have been since the library was opened.
  std::uint64_t changeCount() const { return changeCount_; }

  // Tells states of the library apart: another one than before when another program, or another Library, has
  // committed something meanwhile. What this one commits does not change it. Inside of a transaction it belongs to the
  // state that the transaction sees, now and to its end.
  using Version = std::pair<std::uint32_t, std::int64_t>;
  Version dataVersion();

  // How many operations the file has failed since the library was opened.
  std::uint64_t failureCount() const { return failureCount_; }

  // How many contents can still be stored, as in an instrument whose memory comes to its end; nothing: as many as come.
  void setRoom(std::optional<std::size_t> contents) { room_ = contents; }
  std::optional<std::size_t> room() const { return room_; }

  // Whether the next change that is kept brings the library to this version, and leaves a copy.
  bool isOfOlderVersion();
  // Whether there is nothing in the file yet, or no file at all.
  bool isYetEmpty() const { return isInMemory_; }

  const std::filesystem::path& file() const { return file_; }

 private:
  [[noreturn]] void fail(int sqliteCode, const std::string& text) const;
  template <typename Operation>
  auto run(Operation operation) const -> decltype(operation());
  template <typename Operation>
  auto read(Operation operation) -> decltype(operation());
  template <typename Operation>
  void change(Operation operation);
  template <typename Statement, typename Visit>
  void list(Listed rows, Statement& inOrder, Visit visit);
  template <typename Statement, typename Visit, typename... Entry>
  void listHistory(Listed rows, Statement& inOrder, Visit visit, const Entry&... entry);
  void leaveOut(const Unread& unread) const;
  bool lookForLibrary();
  void setDatabase(std::unique_ptr<Database> made);
  void keepMade(std::unique_ptr<Database> made) noexcept;
  void requireVersion();
  void requireIndexes() const;
  void endCopy() noexcept;
  std::optional<Held> heldNow(const Place& place);
  void replace(What what, const Place& place, const std::optional<Held>& before, const std::optional<Held>& after);

  std::filesystem::path file_;
  Use use_;
  std::unique_ptr<LibraryFile> place_;  // null: in memory for good
  std::unique_ptr<Database> database_;
  bool isInMemory_ = false;
  std::uint32_t databases_ = 0;                    // how many have stood here before, of others' making
  std::int64_t versionBefore_ = 0;                 // what the one that stands here adds to
  bool isYetToBeMade_ = false;                     // the database is one in memory until there is something to keep
  std::vector<const Transaction*> open_;           // from the outermost to the innermost
  std::function<void(const Unread&)> tellUnread_;  // none: what cannot be read is an error
  Recorder recorder_;
  std::filesystem::path copy_;  // of a library of version 1, made in the transaction that is open
  std::vector<Change> pending_;
  std::vector<Change> committed_;
  std::uint64_t changeCount_ = 0;
  mutable std::uint64_t failureCount_ = 0;
  std::optional<std::size_t> room_;
};

}  // namespace Editor
