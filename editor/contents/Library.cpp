#include "contents/Library.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <set>
#include <system_error>
#include <tuple>
#include <utility>

#include "contents/Database.h"
#include "contents/LibraryFile.h"
#include "contents/PastDamage.h"

namespace Editor {
namespace {

// Before it takes memory for what can never be kept.
Held countableHeld(const std::string& name, std::span<const std::uint8_t> bytes) {
  requireCountable(name.size());
  requireCountable(bytes.size());
  return heldOf(name, bytes);
}

[[noreturn]] void failPlace(const std::string& why) {
  throw LibraryError(LibraryError::Kind::DamagedPlace, "it is damaged: " + why, why);
}

constexpr const char* kWayOn = "; what is whole can be backed up, and restored into a new library";
constexpr const char* kWrongIndex = "an index does not fit its table";
constexpr const char* kNoFlag = "no favourite flag has such a number";

bool isDamaged(const Place& place, const std::optional<Held>& held) { return held && !isSound(place, *held); }

void requireWhole(const Held& held) {
  if (!isWhole(held)) failPlace("bytes that do not fit their checksum");
}

constexpr const char* tableOf(Listed rows) {
  constexpr std::array kTables{"content", "favourite", "live_model", "entry", "change", "change"};
  return kTables.at(std::size_t(rows));
}

template <typename Rows>
auto valuesOf(Rows& rows) {
  std::vector<typename Rows::mapped_type> values;
  values.reserve(rows.size());
  for (auto& [key, row] : rows) values.push_back(std::move(row));
  return values;
}

}  // namespace

Library::Library(const std::filesystem::path& file, const Options& options)
    : file_(file.empty() ? file : std::filesystem::absolute(file)), use_(options.use), recorder_(options.clock) {
  if (file.empty()) throw LibraryError(LibraryError::Kind::CannotOpen, "a library needs a file name");
  if (options.use != Use::memory) place_ = std::make_unique<LibraryFile>(file_, options.busyTimeout, options.vfs);
  run([&] {
    if (options.use != Use::memory) database_ = options.use == Use::read ? place_->openToRead() : place_->open();
    if (database_ != nullptr) return;
    if (options.use == Use::read && !place_->exists())
      throw SQLite::Exception("there is no such library", SQLITE_CANTOPEN);
    isYetToBeMade_ = use_ == Use::change;
    if (isYetToBeMade_) place_->requireRoom();
    database_ = Database::inMemory();
    isInMemory_ = true;
  });
}

Library::~Library() = default;

void Library::fail(int sqliteCode, const std::string& text) const {
  using Kind = LibraryError::Kind;
  ++failureCount_;
  const std::string name = file_.string();
  switch (sqliteCode & 0xFF) {
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_READONLY:
    case SQLITE_AUTH:
      throw LibraryError(Kind::CannotOpen, name + " cannot be opened: " + text, text);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw LibraryError(Kind::Locked, name + " is locked by another program", "another program has locked it");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      throw LibraryError(Kind::Damaged,
                         name + " is damaged: " + text + (use_ != Use::read && database_ != nullptr ? kWayOn : ""),
                         text);
    default:
      const std::string reason = database_ != nullptr && database_->isDiskFull() ? "the disk is full" : text;
      throw LibraryError(Kind::Failed, name + ": " + reason, reason);
  }
}

// Somebody may have made it meanwhile.
bool Library::lookForLibrary() {
  std::unique_ptr<Database> found = place_->open();
  if (found == nullptr) return false;
  setDatabase(std::move(found));
  return true;
}

void Library::setDatabase(std::unique_ptr<Database> made) {
  database_ = std::move(made);
  isYetToBeMade_ = isInMemory_ = false;
  ++databases_;
  versionBefore_ = 0;
}

// It holds what the one in memory did: its version goes on. What is on disk by now is not told as failed.
void Library::keepMade(std::unique_ptr<Database> made) noexcept {
  Version before = {};
  try {
    before = dataVersion();
    setDatabase(std::move(made));
    versionBefore_ = before.second - dataVersion().second;
    databases_ = before.first;
  } catch (const std::exception&) {
    if (made != nullptr) setDatabase(std::move(made));  // counts as another one
  }
}

template <typename Operation>
auto Library::run(Operation operation) const -> decltype(operation()) {
  try {
    return operation();
  } catch (const SQLite::Exception& error) {
    fail(error.getErrorCode(), error.what());
  } catch (const std::filesystem::filesystem_error& error) {
    fail(SQLITE_CANTOPEN, error.code().message());
  }
}

Library::Transaction::Transaction(Library& library, Access access)
    : library_(library),
      outer_(library.open_.size()),
      changes_(library.pending_.size()),
      recorded_(library.recorder_.mark()),
      undo_(outer_ == 0 ? "ROLLBACK" : "ROLLBACK TO " + savepoint() + "; RELEASE " + savepoint()) {
  library.open_.reserve(outer_ + 1);
  library.run([&] {
    if (outer_ == 0) return beginOutermost(access);
    requireTransaction();
    library.database_->connection.exec("SAVEPOINT " + savepoint());
  });
  library.open_.push_back(this);
}

void Library::Transaction::beginOutermost(Access access) {
  if (library_.isYetToBeMade_) {
    if (access == Access::Write) making_ = std::make_unique<LibraryMaking>(*library_.place_);
    if (library_.lookForLibrary()) making_.reset();
  }
  Database& database = *library_.database_;
  Query(access == Access::Write ? database.beginWriting : database.begin).next();
  if (library_.place_ == nullptr || library_.isYetToBeMade_) return;
  try {
    if (access == Access::Write)
      library_.place_->followVersion(database);
    else
      database.followVersion();
  } catch (...) {
    database.connection.tryExec(undo_);
    throw;
  }
}

Library::Transaction::~Transaction() {
  std::vector<const Transaction*>& open = library_.open_;
  const auto self = std::find(open.begin(), open.end(), this);
  if (self == open.end()) return;  // committed, or ended with an outer one
  open.erase(self, open.end());
  library_.pending_.resize(changes_);
  library_.recorder_.takeBack(recorded_);
  if (outer_ == 0 || !library_.database_->transactionLost()) library_.database_->connection.tryExec(undo_);
  if (outer_ == 0) library_.endCopy();
}

void Library::Transaction::requireTransaction() const {
  if (library_.database_->transactionLost()) library_.fail(SQLITE_ABORT, "an earlier error has ended the transaction");
}

std::string Library::Transaction::savepoint() const { return "inner" + std::to_string(outer_); }

void Library::Transaction::commit(Making making) {
  std::vector<const Transaction*>& open = library_.open_;
  if (open.empty() || open.back() != this)
    throw std::logic_error("a transaction is committed once, after those inside it");
  library_.committed_.reserve(library_.committed_.size() + library_.pending_.size());  // no failure after the fact
  library_.run([&] {
    requireTransaction();
    const bool hasChanged = outer_ > 0 || library_.recorder_.finish(*library_.database_);
    if (outer_ > 0)
      library_.database_->connection.exec("RELEASE " + savepoint());
    else if (!library_.copy_.empty() && !hasChanged)
      library_.database_->connection.exec(undo_);  // all is as it was: so is its version
    else if (making_ != nullptr && (making == Making::Always || library_.database_->holdsAnything()))
      library_.keepMade(making_->make(*library_.database_));
    else if (library_.database_->isFileGone())
      throw SQLite::Exception("somebody has removed or renamed it", SQLITE_IOERR);
    else
      Query(library_.database_->commit).next();
  });
  making_.reset();
  open.pop_back();
  if (outer_ > 0) return;
  library_.endCopy();
  library_.changeCount_ += library_.pending_.size();
  library_.committed_.insert(library_.committed_.end(), library_.pending_.begin(), library_.pending_.end());
  library_.pending_.clear();
}

template <typename Operation>
auto Library::read(Operation operation) -> decltype(operation()) {
  return run([&] {
    if (open_.empty() && isYetToBeMade_) lookForLibrary();
    if (open_.empty()) database_->followVersion();
    return operation();
  });
}

template <typename Operation>
void Library::change(Operation operation) {
  Transaction transaction(*this);
  run([&] {
    requireIndexes();
    operation();
  });
  transaction.commit();
}

bool Library::isOfOlderVersion() {
  return read([&] { return database_->version() < kLibraryVersion; });
}

// The transaction has changed nothing yet where the library is of an older one.
void Library::requireVersion() {
  if (database_->version() == kLibraryVersion) return;
  if (place_ != nullptr && copy_.empty()) copy_ = place_->copyOldVersion(*database_);
  database_->migrate();
}

// A transaction that ends has brought the library to this version, or there is no use for a copy.
void Library::endCopy() noexcept {
  if (copy_.empty()) return;
  try {
    std::error_code ignored;
    if (database_->version() < kLibraryVersion) std::filesystem::remove(copy_, ignored);
  } catch (const std::exception&) {
    // It stays: better one too many.
  }
  copy_.clear();
}

// Who reads goes without them where he has to.
void Library::requireIndexes() const {
  if (database_->hasWrongIndex()) throw SQLite::Exception(kWrongIndex, SQLITE_CORRUPT);
}

void Library::copyFrom(Library& other) {
  file_ = other.file_;
  run([&] { setDatabase(other.database_->copyInMemory()); });
}

Library::Bytes Library::image() {
  return run([&] { return database_->image(); });
}

void Library::copyFrom(std::span<const std::uint8_t> image) {
  run([&] { setDatabase(LibraryFile(file_, {}, nullptr).openImage(image)); });
}

// ---- Places ---------------------------------------------------------------------------------------------------------

std::optional<Held> Library::held(const Place& place) {
  return read([&] { return heldNow(place); });
}

std::optional<Held> Library::heldNow(const Place& place) {
  try {
    if (place.kind == Place::Kind::content || place.kind == Place::Kind::live) requireIndexes();
    return database_->held(place);
  } catch (const SQLite::Exception& error) {
    if (!isDamage(error)) throw;
  }
  try {
    return heldPastDamage(*database_, place);
  } catch (const SQLite::Exception& error) {
    if (!tellUnread_ || !isDamage(error)) throw;
    failPlace(error.what());
  }
}

// All that ever changes in a library is changed here. What stays as it is has no library brought to this version.
void Library::replace(What what, const Place& place, const std::optional<Held>& before,
                      const std::optional<Held>& after) {
  const auto standing = [&](const std::optional<Held>& held) {
    return held ? std::optional(standingOf(place, *held)) : std::nullopt;
  };
  Change change{what, place, standing(before)};
  change.after = before == after ? change.before : standing(after);
  change.wasDamaged = isDamaged(place, before);
  pending_.push_back(std::move(change));
  if (before == after && database_->version() < kLibraryVersion) return;
  if (room_ && after && place.kind == Place::Kind::content) {
    if (room_ == 0) throw LibraryError(LibraryError::Kind::Failed, "the memory is full");
    --*room_;
  }
  requireVersion();
  database_->write(place, after);
  if (place_ != nullptr || recorder_.hasRun()) recorder_.record(*database_, place, before, after);
}

void Library::putBack(const Place& place, const std::optional<Held>& held) {
  change([&] {
    const std::optional<Held> before = heldNow(place);
    replace(whatBecame(place, before, held, false), place, before, held);
  });
}

void Library::openEntry() {
  change([&] {
    requireVersion();
    recorder_.open(*database_);
  });
}

template <typename Statement, typename Visit, typename... Entry>
void Library::listHistory(Listed rows, Statement& inOrder, Visit visit, const Entry&... entry) {
  try {
    if (rows != Listed::entries && database_->hasWrongHistory()) throw SQLite::Exception(kWrongIndex, SQLITE_CORRUPT);
    for (Query query(inOrder, entry...); query.next();) visit(query);
  } catch (const SQLite::Exception& error) {
    if (!tellUnread_ || !isDamage(error)) throw;
    leaveOut({std::nullopt, tableOf(rows), error.what()});
    visitPastDamage(*database_, rows, visit, entry...);
  }
}

std::vector<RecordedEntry> Library::recordedEntries() {
  return read([&] {
    std::map<std::int64_t, RecordedEntry, std::greater<>> newestFirst;
    listHistory(Listed::entries, database_->reading->entries, [&](const Query& row) {
      const std::int64_t number = row.integer(0);
      if (number >= 1 && number <= kLastEntry)
        newestFirst.try_emplace(number, recordedEntry(row));
      else
        leaveOut({std::nullopt, tableOf(Listed::entries), "there is no entry " + std::to_string(number)});
    });
    return valuesOf(newestFirst);
  });
}

std::vector<RecordedChange> Library::recordedChanges(std::int64_t entry, bool withBytes) {
  return read([&] {
    std::map<std::tuple<std::int64_t, std::int64_t, std::int64_t, std::string>, RecordedChange> byPlace;
    const auto visit = [&](const Query& row) {
      byPlace.try_emplace({row.integer(0), row.integer(1), row.integer(2), row.blob<std::string>(3)},
                          recordedChange(row, withBytes));
    };
    Database::Reading& reading = *database_->reading;
    if (withBytes)
      listHistory(Listed::changesWithBytes, reading.changesWithBytes, visit, entry);
    else
      listHistory(Listed::changes, reading.changes, visit, entry);
    return valuesOf(byPlace);
  });
}

std::vector<std::int64_t> Library::missingEntries() {
  return read([&] {
    try {
      if (database_->hasWrongHistory()) throw SQLite::Exception(kWrongIndex, SQLITE_CORRUPT);
      return Editor::missingEntries(*database_);
    } catch (const SQLite::Exception& error) {
      if (!tellUnread_ || !isDamage(error)) throw;  // else it is told of what is listed
      return std::vector<std::int64_t>();
    }
  });
}

std::vector<std::pair<std::string, std::string>> Library::checkTables() {
  return read([&] { return database_->checkTables(); });
}

// ---- What cannot be read --------------------------------------------------------------------------------------------

void Library::leaveOut(const Unread& unread) const {
  if (tellUnread_) tellUnread_(unread);
}

template <typename Statement, typename Visit>
void Library::list(Listed rows, Statement& inOrder, Visit visit) {
  const auto visitRow = [&](const Query& query) {
    if (!tellUnread_ || rows == Listed::liveKeys) return visit(query);
    if (!query.isId()) return leaveOut({std::nullopt, tableOf(rows), "it has a row of a place that there is not"});
    const ContentId id = query.id();
    if (isContent(id)) return visit(query);
    leaveOut({rows == Listed::contents ? contentAt(id) : favouriteAt(id), tableOf(rows), "there is no such place"});
  };
  try {
    if (rows != Listed::favourites) requireIndexes();
    for (Query query(inOrder); query.next();) visitRow(query);
  } catch (const SQLite::Exception& error) {
    if (!tellUnread_ || !isDamage(error)) throw;
    leaveOut({std::nullopt, tableOf(rows), error.what()});
    visitPastDamage(*database_, rows, visitRow);
  }
}

// ---- Contents, flags, live models, settings -------------------------------------------------------------------------

std::optional<Library::Content> Library::content(ContentId id) {
  return read([&]() -> std::optional<Content> {
    std::optional<Held> held = heldNow(contentAt(id));
    if (!held) return std::nullopt;
    requireWhole(*held);
    return Content{std::move(held->name), std::move(held->bytes)};
  });
}

std::optional<std::string> Library::contentName(ContentId id) {
  return read([&]() -> std::optional<std::string> {
    try {
      requireIndexes();
      Query query(database_->reading->contentName, id);
      return query.next() ? std::optional(query.blob<std::string>(0)) : std::nullopt;
    } catch (const SQLite::Exception& error) {
      if (!isDamage(error)) throw;
    }
    const std::optional<Held> held = heldNow(contentAt(id));
    return held ? std::optional(held->name) : std::nullopt;
  });
}

std::vector<ContentId> Library::contents() {
  return read([&] {
    std::set<ContentId> ids;
    list(Listed::contents, database_->reading->contents, [&](const Query& query) { ids.insert(query.id()); });
    return std::vector(ids.begin(), ids.end());
  });
}

void Library::store(ContentId id, std::span<const std::uint8_t> bytes, const std::string& name) {
  change([&] {
    const Place place = contentAt(id);
    replace(What::stored, place, heldNow(place), countableHeld(name, bytes));
  });
}

void Library::store(ContentId id, std::span<const std::uint8_t> bytes) {
  change([&] {
    const Place place = contentAt(id);
    const std::optional<Held> before = heldNow(place);
    replace(What::stored, place, before, countableHeld(before ? before->name : std::string(), bytes));
  });
}

bool Library::rename(ContentId id, const std::string& name) {
  bool renamed = false;
  change([&] {
    const Place place = contentAt(id);
    const std::optional<Held> before = heldNow(place);
    renamed = before.has_value();
    if (!renamed) return;
    requireWhole(*before);  // with a new checksum it would pass for good
    replace(What::renamed, place, before, countableHeld(name, before->bytes));
  });
  return renamed;
}

bool Library::remove(ContentId id) {
  bool removed = false;
  change([&] {
    const Place place = contentAt(id);
    const std::optional<Held> before = heldNow(place);
    removed = before.has_value();
    if (!removed) return;
    replace(What::removed, place, before, std::nullopt);
  });
  return removed;
}

std::uint8_t Library::favourite(ContentId id) {
  const Place place = favouriteAt(id);
  const std::optional<Held> flag = held(place);
  if (!flag) return 0;
  if (const std::optional<std::uint8_t> number = flagIn(*flag)) return *number;
  if (!tellUnread_) failPlace(kNoFlag);
  leaveOut({place, tableOf(Listed::favourites), kNoFlag});
  return 0;
}

Library::Flag Library::flag(ContentId id) {
  try {
    const std::optional<Held> flag = held(favouriteAt(id));
    return flag ? flagIn(*flag) : std::uint8_t(0);
  } catch (const LibraryError& error) {
    if (error.kind() != LibraryError::Kind::DamagedPlace) throw;
    return std::nullopt;
  }
}

std::vector<std::pair<ContentId, Library::Flag>> Library::favourites() {
  return read([&] {
    std::map<ContentId, Flag> flags;
    list(Listed::favourites, database_->reading->favourites, [&](const Query& query) {
      const ContentId id = query.id();
      const bool isFlag = std::in_range<std::uint8_t>(query.integer(2));
      if (tellUnread_ && !isFlag) leaveOut({favouriteAt(id), tableOf(Listed::favourites), kNoFlag});
      flags.emplace(id, tellUnread_ && !isFlag ? Flag() : query.number<std::uint8_t>(2));
    });
    return std::vector<std::pair<ContentId, Flag>>(flags.begin(), flags.end());
  });
}

void Library::setFavourite(ContentId id, std::uint8_t flag) {
  change([&] {
    const Place place = favouriteAt(id);
    const std::optional<Held> before = heldNow(place);
    const std::optional<Held> after = flag == 0 ? std::nullopt : std::optional(heldOf(flag));
    if (before != after) replace(What::flagged, place, before, after);
  });
}

std::int64_t Library::mixingVoiceCount() {
  return read([&] {
    std::int64_t count = 0;
    for (Query query(database_->reading->voices, ContSrv::ContType_Voice); query.next();)
      if (isMixingVoice({ContSrv::ContType_Voice, query.number<std::uint32_t>(0)})) ++count;
    return count;
  });
}

std::optional<Library::Bytes> Library::live(const std::string& key) {
  return read([&]() -> std::optional<Bytes> {
    std::optional<Held> held = heldNow(liveAt(key));
    if (!held) return std::nullopt;
    requireWhole(*held);
    return std::move(held->bytes);
  });
}

std::vector<std::string> Library::liveKeys() {
  return read([&] {
    std::set<std::string> keys;
    list(Listed::liveKeys, database_->reading->liveKeys,
         [&](const Query& query) { keys.insert(query.blob<std::string>(0)); });
    return std::vector(keys.begin(), keys.end());
  });
}

void Library::storeLive(const std::string& key, std::span<const std::uint8_t> bytes) {
  change([&] {
    const Place place = liveAt(key);
    replace(What::stored, place, heldNow(place), countableHeld("", bytes));
  });
}

Library::Version Library::dataVersion() {
  return read([&] {
    Query query(database_->reading->dataVersion);
    query.next();
    return std::pair(databases_, versionBefore_ + query.integer(0));
  });
}

std::optional<std::int64_t> Library::setting(const std::string& name) {
  const Place place = settingAt(name);
  const std::optional<Held> row = held(place);
  if (!row) return std::nullopt;
  const std::optional<std::int64_t> number = settingIn(place, *row);
  if (!number) failPlace("no such setting has such a number");
  return number;
}

void Library::set(const std::string& setting, std::int64_t value) {
  change([&] {
    const Place place = settingAt(setting);
    replace(What::set, place, heldNow(place), heldOf(value));
  });
}

}  // namespace Editor
