#include "contents/Library.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "contents/Database.h"
#include "contents/LibraryFile.h"

namespace Editor {
namespace {

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace

Library::Library(const std::filesystem::path& file, const Options& options)
    : file_(file.empty() ? file : std::filesystem::absolute(file)) {
  if (file.empty()) throw LibraryError(LibraryError::Kind::CannotOpen, "a library needs a file name");
  if (options.use != Use::memory) place_ = std::make_unique<LibraryFile>(file_, options.busyTimeout, options.vfs);
  run([&] {
    if (options.use != Use::memory) database_ = options.use == Use::read ? place_->openToRead() : place_->open();
    if (database_ != nullptr) return;
    if (options.use == Use::read && !place_->exists())
      throw SQLite::Exception("there is no such library", SQLITE_CANTOPEN);
    isYetToBeMade_ = options.use == Use::change;
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
      throw LibraryError(Kind::CannotOpen, name + " cannot be opened: " + text);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      throw LibraryError(Kind::Locked, name + " is locked by another program");
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      throw LibraryError(Kind::Damaged, name + " is damaged: " + text);
    default:
      throw LibraryError(Kind::Failed, name + ": " + text);
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
      undo_(outer_ == 0 ? "ROLLBACK" : "ROLLBACK TO " + savepoint() + "; RELEASE " + savepoint()) {
  library.open_.reserve(outer_ + 1);
  library.run([&] {
    if (outer_ > 0) {
      requireTransaction();
      library.database_->connection.exec("SAVEPOINT " + savepoint());
      return;
    }
    if (library.isYetToBeMade_) {
      if (access == Access::Write) making_ = std::make_unique<LibraryMaking>(*library.place_);
      if (library.lookForLibrary()) making_.reset();
    }
    Query(access == Access::Write ? library.database_->beginWriting : library.database_->begin).next();
  });
  library.open_.push_back(this);
}

Library::Transaction::~Transaction() {
  std::vector<const Transaction*>& open = library_.open_;
  const auto self = std::find(open.begin(), open.end(), this);
  if (self == open.end()) return;  // committed, or ended with an outer one
  open.erase(self, open.end());
  library_.pending_.resize(changes_);
  if (outer_ == 0 || !library_.database_->transactionLost()) library_.database_->connection.tryExec(undo_);
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
    if (outer_ > 0)
      library_.database_->connection.exec("RELEASE " + savepoint());
    else if (making_ != nullptr && (making == Making::Always || library_.database_->holdsAnything()))
      library_.setDatabase(making_->make(*library_.database_));
    else if (library_.database_->isFileGone())
      throw SQLite::Exception("somebody has removed or renamed it", SQLITE_IOERR);
    else
      Query(library_.database_->commit).next();
  });
  making_.reset();
  open.pop_back();
  if (outer_ > 0) return;
  library_.changeCount_ += library_.pending_.size();
  library_.committed_.insert(library_.committed_.end(), library_.pending_.begin(), library_.pending_.end());
  library_.pending_.clear();
}

template <typename Operation>
auto Library::read(Operation operation) -> decltype(operation()) {
  return run([&] {
    if (open_.empty() && isYetToBeMade_) lookForLibrary();
    return operation();
  });
}

template <typename Operation>
void Library::change(Operation operation) {
  Transaction transaction(*this);
  run(operation);
  transaction.commit();
}

void Library::copyFrom(Library& other) {
  change([&] { other.database_->copyRowsTo(*database_); });
}

std::optional<Library::Content> Library::content(ContentId id) {
  return read([&]() -> std::optional<Content> {
    Query query(database_->statements->content, id);
    if (!query.next()) return std::nullopt;
    return Content{query.blob<std::string>(0), query.blob<Bytes>(1)};
  });
}

std::optional<std::string> Library::contentName(ContentId id) {
  return read([&]() -> std::optional<std::string> {
    Query query(database_->statements->contentName, id);
    if (!query.next()) return std::nullopt;
    return query.blob<std::string>(0);
  });
}

std::vector<ContentId> Library::contents() {
  return read([&] {
    std::vector<ContentId> ids;
    for (Query query(database_->statements->contents); query.next();) ids.push_back(query.id());
    return ids;
  });
}

void Library::store(ContentId id, std::span<const std::uint8_t> bytes, const std::string& name) {
  change([&] {
    Query(database_->statements->store, id, bytesOf(name), bytes).changes();
    pending_.push_back({Change::Kind::Stored, canonical(id)});
  });
}

void Library::store(ContentId id, std::span<const std::uint8_t> bytes) {
  change([&] {
    Query(database_->statements->storeBytes, id, bytes).changes();
    pending_.push_back({Change::Kind::Stored, canonical(id)});
  });
}

bool Library::rename(ContentId id, const std::string& name) {
  bool renamed = false;
  change([&] {
    renamed = Query(database_->statements->rename, bytesOf(name), id).changes();
    if (renamed) pending_.push_back({Change::Kind::Renamed, canonical(id)});
  });
  return renamed;
}

bool Library::remove(ContentId id) {
  bool removed = false;
  change([&] {
    removed = Query(database_->statements->remove, id).changes();
    if (removed) pending_.push_back({Change::Kind::Removed, canonical(id)});
  });
  return removed;
}

std::uint8_t Library::favourite(ContentId id) {
  return read([&] {
    Query query(database_->statements->favourite, id);
    return query.next() ? query.number<std::uint8_t>(0) : std::uint8_t(0);
  });
}

std::vector<std::pair<ContentId, std::uint8_t>> Library::favourites() {
  return read([&] {
    std::vector<std::pair<ContentId, std::uint8_t>> flags;
    for (Query query(database_->statements->favourites); query.next();)
      flags.emplace_back(query.id(), query.number<std::uint8_t>(2));
    return flags;
  });
}

void Library::setFavourite(ContentId id, std::uint8_t flag) {
  change([&] {
    if (favourite(id) == flag) return;
    if (flag == 0)
      Query(database_->statements->unflag, id).changes();
    else
      Query(database_->statements->flag, id, flag).changes();
    pending_.push_back({Change::Kind::Flagged, canonical(id)});
  });
}

std::int64_t Library::mixingVoiceCount() {
  return read([&] {
    std::int64_t count = 0;
    for (Query query(database_->statements->voices, ContSrv::ContType_Voice); query.next();)
      if (isMixingVoice({ContSrv::ContType_Voice, query.number<std::uint32_t>(0)})) ++count;
    return count;
  });
}

std::optional<Library::Bytes> Library::live(const std::string& key) {
  return read([&]() -> std::optional<Bytes> {
    Query query(database_->statements->live, key);
    if (!query.next()) return std::nullopt;
    return query.blob<Bytes>(0);
  });
}

std::vector<std::string> Library::liveKeys() {
  return read([&] {
    std::vector<std::string> keys;
    for (Query query(database_->statements->liveKeys); query.next();) keys.push_back(query.blob<std::string>(0));
    return keys;
  });
}

void Library::storeLive(const std::string& key, std::span<const std::uint8_t> bytes) {
  change([&] { Query(database_->statements->storeLive, key, bytes).changes(); });
}

Library::Version Library::dataVersion() {
  return read([&] {
    Query query(database_->statements->dataVersion);
    query.next();
    return std::pair(databases_, query.integer(0));
  });
}

std::optional<std::int64_t> Library::setting(const std::string& name) {
  return read([&]() -> std::optional<std::int64_t> {
    Query query(database_->statements->setting, name);
    if (!query.next()) return std::nullopt;
    return query.integer(0);
  });
}

void Library::set(const std::string& setting, std::int64_t value) {
  change([&] { Query(database_->statements->set, setting, value).changes(); });
}

}  // namespace Editor
