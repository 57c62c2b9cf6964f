#include "contents/Recorder.h"

#include <utility>

#include "contents/Database.h"

namespace Editor {

namespace {

constexpr std::int64_t kMegabyte = 1'000'000;
constexpr std::int64_t kRowBytes = 64;            // about what a row takes beside its blobs
constexpr std::int64_t kUntrimmedBytes = 65'536;  // so much may an entry grow before it is looked at again

bool isOfHistory(const Place& place) {
  return place.kind == Place::Kind::setting && (place.key == Recorder::kEntries || place.key == Recorder::kMegabytes);
}

// One that is damaged loses nobody his history.
std::int64_t settingOf(Database& database, const Setting& setting) {
  Query query(database.reading->setting, std::string(setting.name));
  return query.next() && setting.has(query.integer(0)) ? query.integer(0) : setting.otherwise;
}

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

Bytes packed(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += word + '\0';
  return bytesOf(text);
}

std::vector<std::string> unpacked(const std::string& text) {
  std::vector<std::string> words;
  for (std::size_t begin = 0, end = 0; (end = text.find('\0', begin)) != std::string::npos; begin = end + 1)
    words.push_back(text.substr(begin, end - begin));
  return words;
}

std::int64_t sizeOf(const std::optional<Held>& before) {
  return kRowBytes + (before ? std::int64_t(before->name.size() + before->bytes.size()) : 0);
}

// Of a row of the table of changes; empty when it says what one of ours does.
std::string faultIn(const Query& row) {
  const auto isIn = [&](int column, auto first, auto last) {
    return row.integer(column) >= std::int64_t(first) && row.integer(column) <= std::int64_t(last);
  };
  if (!isIn(0, Place::Kind::content, Place::Kind::setting)) return "a change of it is of no kind of place";
  if (!isIn(4, What::stored, What::set)) return "a change of it is of no kind";
  constexpr std::uint32_t kMost = 0xFFFFFFFF;
  const auto kind = Place::Kind(row.integer(0));
  const bool hasKey = kind == Place::Kind::live || kind == Place::Kind::setting;
  const bool isThere = isIn(1, 0, kMost) && isIn(2, 0, kMost) &&
                       (hasKey || isContent({row.number<std::uint32_t>(1), row.number<std::uint32_t>(2)}));
  if (!isThere) return "a change of it is of a place that there is not";
  const bool isNamed =
      hasKey ? isIn(1, 0, 0) && isIn(2, 0, 0) && !row.blob<std::string>(3).empty() : row.blob<std::string>(3).empty();
  if (!isNamed) return "a change of it does not name its place as it must";
  const auto what = What(row.integer(4));
  const bool isNumber = kind == Place::Kind::favourite || kind == Place::Kind::setting;
  const bool fits = isNumber ? what == (kind == Place::Kind::favourite ? What::flagged : What::set)
                             : what != What::flagged && what != What::set;
  if (!fits) return "a change of it does not fit its place";
  for (const int name : {5, 6})
    if (isNumber && !row.isNull(name) && !numberIn(row.blob<std::string>(name))) return "a change of it has no value";
  const bool lacksName = (what == What::stored && row.isNull(6)) || (what == What::removed && row.isNull(5));
  return lacksName ? "a change of it has no name" : "";
}

}  // namespace

void Recorder::begin(LibraryRun run) {
  run_ = std::move(run);
  at_ = {};
}

bool Recorder::isOff(Database& database) const { return !run_.undoes && settingOf(database, Settings::kHistory) == 0; }

bool Recorder::goesOn(Database& database) const {
  if (!at_.entry) return false;
  if (at_.hasRecorded) return true;  // nobody else can have changed anything since
  if ((run_.isEndless && now_() - lastChange_ >= kPause) || isOff(database)) return false;
  Query query(database.writing->isOpenEntry, *at_.entry);
  return query.next() && query.integer(0) != 0;
}

void Recorder::open(Database& database) {
  if (!goesOn(database)) {
    const auto time = std::chrono::duration_cast<std::chrono::seconds>(now_().time_since_epoch()).count();
    Query(database.writing->addEntry, std::int64_t(time), run_.undoes, run_.verb, packed(run_.sources), kLastEntry)
        .changes();
    at_.entry = database.integer("SELECT last_insert_rowid()");
    at_.hasBegun = true;
    untrimmed_ = kUntrimmedBytes;
  }
  at_.hasRecorded = true;
}

void Recorder::record(Database& database, const Place& place, const std::optional<Held>& before,
                      const std::optional<Held>& after) {
  if (isOfHistory(place)) {
    at_.hasSet = at_.hasSet || before != after;
    return trim(database);
  }
  if (before == after && !goesOn(database)) return;
  open(database);
  std::optional<Held> first = before;
  std::int64_t grown = 0;
  {
    Query found(database.reading->changeAt, *at_.entry, place);
    if (found.next()) {
      first = found.isNull(1) ? std::nullopt
                              : std::optional(Held{found.blob<std::string>(0), found.blob<std::vector<std::uint8_t>>(2),
                                                   found.integer(1)});
      grown = -sizeOf(first);
    } else if (before == after) {
      return;
    }
  }
  // The number of an entry that others may have seen is not given again: such an entry keeps its places.
  if (first == after && at_.hasBegun)
    Query(database.writing->removeChange, *at_.entry, place).changes();
  else
    grown += addRow(database, place, first, after);
  if (grown != 0) Query(database.writing->growEntry, grown, *at_.entry).changes();
  untrimmed_ += grown;
  lastChange_ = now_();
}

std::int64_t Recorder::addRow(Database& database, const Place& place, const std::optional<Held>& before,
                              const std::optional<Held>& after) const {
  const auto ifHeld = [](const std::optional<Held>& held, auto read) {
    return held ? std::optional(read(*held)) : std::nullopt;
  };
  const auto shownName = [&](const Held& held) { return bytesOf(nameIn(place, held)); };
  const auto checksum = [](const Held& held) { return held.checksum; };
  Query(database.writing->addChange, *at_.entry, place, std::int64_t(whatBecame(place, before, after, run_.isRenaming)),
        ifHeld(before, shownName), ifHeld(after, shownName), ifHeld(after, checksum),
        ifHeld(before, [](const Held& held) { return bytesOf(held.name); }), ifHeld(before, checksum),
        ifHeld(before, [](const Held& held) { return held.bytes; }))
      .changes();
  return sizeOf(before);
}

bool Recorder::isEmpty(Database& database) const {
  Query query(database.writing->isEmptyEntry, *at_.entry);
  return query.next() && query.integer(0) != 0;
}

bool Recorder::finish(Database& database) {
  const bool hasSet = std::exchange(at_.hasSet, false);
  if (!std::exchange(at_.hasRecorded, false)) return hasSet;
  const bool hasBegun = std::exchange(at_.hasBegun, false);
  const bool isNothing = hasBegun && isEmpty(database);
  if (hasBegun && !run_.undoes && (isNothing || isOff(database))) {
    Query(database.writing->removeChanges, *at_.entry).changes();
    Query(database.writing->removeEntry, *at_.entry).changes();
    at_.entry.reset();
  }
  if (untrimmed_ >= kUntrimmedBytes) trim(database);
  return hasSet || !isNothing;
}

void Recorder::trim(Database& database) {
  untrimmed_ = 0;
  std::int64_t most = settingOf(database, Settings::kHistory);
  if (most == 0) most = kDefaultEntries;  // off: what stands is kept
  const std::int64_t bytes = settingOf(database, Settings::kHistorySize) * kMegabyte - kUntrimmedBytes;
  const auto isTooMuch = [&] {
    Query query(database.reading->sizeOfHistory);
    query.next();
    const std::int64_t entries = query.integer(0);
    return entries > 1 && (entries > most || query.integer(1) > bytes);
  };
  while (isTooMuch()) {
    const std::int64_t oldest = database.integer("SELECT min(number) FROM entry");
    Query(database.writing->removeChanges, oldest).changes();
    Query(database.writing->removeEntry, oldest).changes();
  }
}

std::int64_t sizeOf(const RecordedChange& change) { return sizeOf(change.before); }

std::vector<std::int64_t> missingEntries(Database& database) {
  std::vector<std::int64_t> numbers;
  for (Query query(database.reading->missingEntries); query.next();) numbers.push_back(query.integer(0));
  return numbers;
}

RecordedEntry recordedEntry(const Query& row) {
  return {row.integer(0),
          row.integer(1),
          {row.blob<std::string>(3), unpacked(row.blob<std::string>(4)),
           row.isNull(2) ? std::nullopt : std::optional(row.integer(2))},
          row.integer(5)};
}

RecordedChange recordedChange(const Query& row, bool withBytes) {
  const auto text = [&](int column) {
    return row.isNull(column) ? std::nullopt : std::optional(row.blob<std::string>(column));
  };
  RecordedChange change;
  change.fault = faultIn(row);
  if (!change.fault.empty()) return change;
  change.place = {Place::Kind(row.integer(0)),
                  {row.number<std::uint32_t>(1), row.number<std::uint32_t>(2)},
                  row.blob<std::string>(3)};
  change.what = What(row.integer(4));
  change.nameBefore = text(5);
  change.nameAfter = text(6);
  if (!row.isNull(7)) change.checksumAfter = row.integer(7);
  const bool isNumber = change.place.kind == Place::Kind::favourite || change.place.kind == Place::Kind::setting;
  change.wasDamaged =
      row.integer(8) != 0 || (isNumber && change.nameBefore && !isSound(change.place, heldOf(*change.nameBefore, {})));
  if (withBytes && !row.isNull(10))
    change.before = Held{row.blob<std::string>(9), row.blob<std::vector<std::uint8_t>>(11), row.integer(10)};
  return change;
}

}  // namespace Editor
