#include "salvage/Captures.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "AddressRows.h"
#include "BulkMessage.h"

namespace Editor {

namespace {

bool isInList(BulkAddress address, BDA::List list) { return BDA::listOf(address.hi) == std::size_t(list); }

BulkAddress headerOf(BulkAddress footer) { return {BDA::kHeaderHi, footer.mid, footer.lo}; }

// Some contents have two file dumps: they are told apart by the content.
BulkAddress placeOf(BulkAddress fileDump) {
  const std::optional<ContentId> content = contentOfFileDump({fileDump.mid, fileDump.lo});
  const std::optional<MidLo> place = content ? fileDumpOf(canonical(*content)) : std::nullopt;
  return place ? BulkAddress{BDA::kFileDumpHi, place->mid, place->lo} : fileDump;
}

// The others can only be asked for.
bool isStoredAlone(BulkAddress address) {
  return isInList(address, BDA::List::system) || isInList(address, BDA::List::favorite);
}

// Whether a broken message may be what its address says: another address has mostly another length.
bool isPlausible(const Reading& reading) {
  const bool isLengthKnown = reading.verdict == Reading::Verdict::checksumWrong && reading.block->dataLength;
  return !isLengthKnown || *reading.block->dataLength == reading.dataBytes;
}

}  // namespace

std::span<const std::uint8_t> dataOf(const Piece& piece) {
  return std::span(piece.bytes).subspan(BDA::kDataAt, piece.bytes.size() - BDA::kDumpFrame);
}

bool carrySame(const Piece& a, const Piece& b) { return std::ranges::equal(dataOf(a), dataOf(b)); }

bool isUnit(BulkAddress address) { return address.hi == BDA::kHeaderHi; }

std::vector<BulkAddress> blocksOf(BulkAddress address, const Pieces& pieces) {
  if (!isUnit(address)) return {address};
  OpenUnit unit(address, 0);
  const bool isDrum = std::ranges::any_of(
      pieces, [](const Pieces::value_type& piece) { return isInList(piece.first, BDA::List::drumVoice); });
  unit.expectVoice(isDrum);
  std::vector<BulkAddress> blocks = unit.missing();
  blocks.insert(blocks.begin(), address);
  blocks.push_back(footerOf(address));
  return blocks;
}

void Captures::add(Piece piece) {
  enter(piece.source);
  Reading reading = readMessage(piece.bytes);
  if (corrects_ && reading.verdict == Reading::Verdict::checksumWrong) {
    Piece corrected = piece;
    corrected.wrongChecksum = *reading.checksum;
    corrected.bytes[corrected.bytes.size() - 2] = *reading.expectedChecksum;
    if (Reading again = readMessage(corrected.bytes); !isBroken(again)) {
      piece = std::move(corrected);
      reading = std::move(again);
    }
  }
  if (isBroken(reading))
    takeBroken(reading);
  else
    take(std::move(piece), reading);
}

void Captures::addFragment(std::size_t source, std::span<const std::uint8_t> beginning) {
  enter(source);
  constexpr std::size_t kMaker = 1;
  if (beginning.size() > kMaker && beginning[kMaker] != BDA::kMakerId) return breakRun();
  Reading reading;
  if (beginning.size() >= BDA::kDataAt) {
    std::vector<std::uint8_t> message(beginning.begin(), beginning.end());
    message.resize(std::max(message.size() + 1, BDA::kDumpFrame));
    message.back() = BDA::kEndOfExclusive;
    reading = readMessage(message);
    if (reading.kind == Reading::Kind::foreign) return breakRun();
    if (reading.kind != Reading::Kind::dump) reading.block.reset();
    reading.verdict = Reading::Verdict::lengthWrong;
  }
  takeBroken(reading);
}

void Captures::addLoose(std::size_t source) {
  enter(source);
  breakRun();
}

void Captures::enter(std::size_t source) {
  if (source != source_) endRun();
  source_ = source;
}

// A dump is one run of messages, but a damaged one of them may seem to be of another kind.
void Captures::take(Piece piece, const Reading& reading) {
  if (reading.kind == Reading::Kind::dump) return takeDump(std::move(piece), reading);
  reading.kind == Reading::Kind::request ? endRun() : breakRun();
  leaveOut(piece, reading.kind == Reading::Kind::foreign ? "for another instrument" : "no dump");
}

void Captures::takeDump(Piece piece, const Reading& reading) {
  const bool isOfUnit = reading.role == Role::header || reading.role == Role::part || reading.role == Role::footer;
  if (!isOfUnit) endRun();
  switch (reading.role) {
    case Role::header:
      return takeHeader(std::move(piece), reading);
    case Role::part:
      return takePart(std::move(piece), reading);
    case Role::footer:
      return takeFooter(std::move(piece), reading);
    case Role::fileDump:
      if (!isWritableFileDump(*reading.address)) return leaveOut(piece, "no instrument stores it");
      if (reading.removes) return leaveOut(piece, "it would have what stands in its place removed");
      return addSingle(placeOf(*reading.address), std::move(piece), *reading.device);
    case Role::trigger:
      if (reading.address != kWriteTrigger) leaveOut(piece, "it would have all mixing voices removed");
      triggers_.push_back(std::move(piece));
      return;
    case Role::alone:
      if (!isStoredAlone(*reading.address)) return leaveOut(piece, "no instrument stores it");
      return addSingle(*reading.address, std::move(piece), *reading.device);
    case Role::emptyHeader:
    case Role::emptyFooter:
      return leaveOut(piece, "it would have a mixing voice removed");
    case Role::unknown:
      return leaveOut(piece, "no instrument stores it");
  }
}

// A header that stands twice, where blocks do too, says that whoever recorded it heard all twice.
void Captures::takeHeader(Piece piece, const Reading& reading) {
  const BulkAddress header = *reading.address;
  const bool isDoubled = run_ && run_->isSure && run_->capture.device == *reading.device &&
                         run_->capture.pieces.size() == 1 && run_->capture.pieces.contains(header);
  begin(header);
  run_->isSure = true;
  run_->isDoubled = isDoubled;
  run_->isCopied = isDoubled;
  run_->capture.device = *reading.device;
  run_->capture.pieces.emplace(header, std::move(piece));
}

// What it claims to be has been there. Only header and footer of one claim make it sure. Inside of a unit it is what
// that one lacks, unless it claims to be something else.
void Captures::takeBroken(const Reading& reading) {
  const bool isOfRun = run_.has_value();
  if (!reading.block || !isPlausible(reading)) {
    if (!isOfRun) ++unknown_;
    return breakRun();
  }
  const BulkAddress address = *reading.address;
  switch (reading.role) {
    case Role::header:
      begin(address);
      run_->capture.device = *reading.device;
      return;
    case Role::part:
      begin();
      run_->goesOn = isOfRun;
      return;
    case Role::footer:
      return claimFooter(address);
    case Role::fileDump:
      breakRun();
      if (isWritableFileDump(address)) addSingle(placeOf(address), std::nullopt, *reading.device);
      return;
    case Role::alone:
      breakRun();
      if (isStoredAlone(address)) addSingle(address, std::nullopt, *reading.device);
      return;
    default:
      return breakRun();
  }
}

void Captures::begin() {
  endRun();
  run_ = Run();
  run_->capture.source = source_;
}

void Captures::begin(BulkAddress header) {
  begin();
  run_->unit.emplace(header, 0);
  run_->capture.address = header;
}

// Of which unit it is what follows, nothing says any more.
void Captures::breakRun() {
  if (!run_) return;
  begin();
  run_->goesOn = true;
}

void Captures::takePart(Piece piece, const Reading& reading) {
  const BulkAddress address = *reading.address;
  if (!admits(address, *reading.device)) begin();
  run_->capture.device = *reading.device;
  put(std::move(piece), address);
}

bool Captures::admits(BulkAddress address, unsigned device) {
  if (!run_ || run_->capture.device.value_or(device) != device) return false;
  if (run_->unit) return run_->unit->arrive(address);
  const Pieces& pieces = run_->capture.pieces;
  return pieces.empty() || BDA::listOf(pieces.begin()->first.hi) == BDA::listOf(address.hi);
}

// Where blocks come again what came before may have lost its footer, and they their header, and nothing says that they
// are of one sound, be they equal: only what came since is one.
void Captures::put(Piece piece, BulkAddress address) {
  if (isCopy(piece, address)) return;
  Pieces& pieces = run_->capture.pieces;
  const bool comesAgain = !run_->seen.insert(address).second;
  if (comesAgain && (!run_->isRepeating || pieces.contains(address))) {
    run_->earlier.push_back(pieces);
    std::erase_if(pieces, [](const Pieces::value_type& one) { return one.first.hi != BDA::kHeaderHi; });
  }
  run_->isRepeating = comesAgain;
  pieces.emplace(address, std::move(piece));
}

// Whether it is the second of two copies, where each message has come twice.
bool Captures::isCopy(const Piece& piece, BulkAddress address) {
  if (!run_->isDoubled) return false;
  const auto before = run_->capture.pieces.find(address);
  const bool isCopy = !run_->isCopied && run_->last == address && carrySame(before->second, piece);
  run_->isDoubled = isCopy || run_->isCopied;
  run_->isCopied = isCopy;
  run_->last = address;
  return isCopy;
}

void Captures::takeFooter(Piece piece, const Reading& reading) {
  const BulkAddress header = headerOf(*reading.address);
  const unsigned device = *reading.device;
  if (run_ && run_->capture.device.value_or(device) != device) endRun();
  if (run_ && !run_->unit) {
    OpenUnit unit(header, 0);
    const bool isItsOwn = std::ranges::all_of(run_->capture.pieces,
                                              [&](const Pieces::value_type& one) { return unit.arrive(one.first); });
    if (isItsOwn) {
      run_->unit = unit;
      run_->capture.address = header;
    }
  }
  const bool closes = run_ && run_->unit && run_->capture.address == header;
  if (run_ && run_->unit && !closes) claimFooter(*reading.address);
  if (!closes) begin(header);
  run_->isSure = true;
  run_->capture.device = device;
  Pieces& pieces = run_->capture.pieces;
  pieces.insert_or_assign(*reading.address, std::move(piece));
  run_->capture.isWhole = pieces.size() == blocksOf(header, pieces).size();
  endRun();
}

// A footer that is broken, or of another unit than the open one: then nothing says which of the two a block is of.
void Captures::claimFooter(BulkAddress footer) {
  const BulkAddress header = headerOf(footer);
  if (run_ && run_->unit && !(run_->capture.address == header)) {
    Capture blocks{{}, source_, std::exchange(run_->capture.pieces, {}), false, run_->capture.device};
    if (auto own = blocks.pieces.extract(run_->capture.address); !own.empty())
      run_->capture.pieces.insert(std::move(own));
    for (Pieces& pieces : std::exchange(run_->earlier, {})) {
      pieces.erase(run_->capture.address);
      addOrphan({{}, source_, std::move(pieces), false, run_->capture.device});
    }
    addOrphan(std::move(blocks));
  }
  const bool isKnown = run_ && run_->unit && run_->capture.address == header;
  endRun();
  if (!isKnown) captures_.push_back({header, source_, {}, false});
}

void Captures::addSingle(BulkAddress address, std::optional<Piece> piece, unsigned device) {
  Capture single{address, source_, {}, piece.has_value(), device};
  if (piece) single.pieces.emplace(address, std::move(*piece));
  captures_.push_back(std::move(single));
}

void Captures::leaveOut(const Piece& piece, const char* why) {
  leftOut_.push_back({{piece.source, piece.number, piece.offset, {}, std::nullopt}, why});
}

void Captures::addOrphan(Capture blocks) {
  if (blocks.pieces.empty()) return;
  blocks.address = blocks.pieces.begin()->first;
  orphans_.push_back(std::move(blocks));
}

// What came before the last blocks of a unit. That it shares blocks with them says nothing.
void Captures::addEarlier(const Run& run) {
  Pieces later = run.capture.pieces;
  bool isSuperseded = false;
  std::vector<Capture> earlier;
  for (auto pieces = run.earlier.rbegin(); pieces != run.earlier.rend(); ++pieces) {
    Capture capture{run.capture.address, source_, *pieces, false, run.capture.device};
    for (const auto& [address, piece] : *pieces) {
      const auto [again, isNew] = later.emplace(address, piece);
      isSuperseded = isSuperseded || !carrySame(again->second, piece);
      if (!isNew && !isUnit(address)) capture.pieces.erase(address);
    }
    capture.isSuperseded = isSuperseded;
    if (isSuperseded) capture.pieces = *pieces;
    earlier.push_back(std::move(capture));
  }
  std::move(earlier.rbegin(), earlier.rend(), std::back_inserter(captures_));
}

void Captures::endRun() {
  if (!run_) return;
  Run run = std::move(*run_);
  run_.reset();
  const bool isKnown = run.unit.has_value();
  Capture& capture = run.capture;
  if (isKnown && run.isSure) {
    addEarlier(run);
    return captures_.push_back(std::move(capture));
  }
  if (isKnown) captures_.push_back({capture.address, capture.source, {}, false});
  if (capture.pieces.empty() && !isKnown && !run.goesOn) ++unknown_;
  for (Pieces& pieces : run.earlier) addOrphan({{}, capture.source, std::move(pieces), false, capture.device});
  addOrphan(std::move(capture));
}

}  // namespace Editor
