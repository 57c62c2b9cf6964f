#include "salvage/Captures.h"

#include <algorithm>
#include <utility>

#include "AddressRows.h"
#include "BulkMessage.h"

namespace Editor {

namespace {

bool isInList(BulkAddress address, BDA::List list) { return BDA::listOf(address.hi) == std::size_t(list); }

BulkAddress headerOf(BulkAddress footer) { return {BDA::kHeaderHi, footer.mid, footer.lo}; }
BulkAddress footerOf(BulkAddress header) { return {BDA::kFooterHi, header.mid, header.lo}; }

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

std::span<const std::uint8_t> dataOf(const Piece& piece) {
  return std::span(piece.bytes).subspan(BDA::kDataAt, piece.bytes.size() - BDA::kDumpFrame);
}

}  // namespace

bool carrySame(const Piece& a, const Piece& b) { return std::ranges::equal(dataOf(a), dataOf(b)); }

bool isUnit(const Capture& capture) { return capture.address.hi == BDA::kHeaderHi; }

std::vector<BulkAddress> blocksOf(BulkAddress address, const Pieces& pieces) {
  if (address.hi != BDA::kHeaderHi) return {address};
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
  if (piece.source != source_) endSource();
  source_ = piece.source;
  message_ = piece.number;
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
  const bool hadRun = run_.has_value();
  const std::vector<UnitReport> ended = follower_.next(reading, message_);
  const bool isAbandoned =
      std::ranges::any_of(ended, [](const UnitReport& unit) { return unit.state == UnitReport::State::abandoned; });
  if (isAbandoned) endRun();
  if (!isBroken(reading))
    take(std::move(piece), reading, ended);
  else if (reading.block)
    takeBroken(reading, piece.source, hadRun);
  else if (!hadRun)
    ++unknown_;
}

void Captures::addFragment(std::size_t source, std::span<const std::uint8_t> beginning) {
  if (source != source_) endSource();
  source_ = source;
  constexpr std::size_t kMaker = 1;
  if (beginning.size() > kMaker && beginning[kMaker] != BDA::kMakerId) return;
  Reading reading;
  if (beginning.size() >= BDA::kDataAt) {
    std::vector<std::uint8_t> message(beginning.begin(), beginning.end());
    message.resize(std::max(message.size() + 1, BDA::kDumpFrame));
    message.back() = BDA::kEndOfExclusive;
    reading = readMessage(message);
    if (reading.kind == Reading::Kind::foreign) return;
    reading.verdict = Reading::Verdict::lengthWrong;
  }
  if (reading.kind == Reading::Kind::dump && reading.block)
    takeBroken(reading, source, run_.has_value());
  else if (!run_)
    ++unknown_;
}

void Captures::endSource() {
  endRun();
  follower_ = UnitFollower();
}

void Captures::take(Piece piece, const Reading& reading, const std::vector<UnitReport>& ended) {
  if (reading.kind == Reading::Kind::request) endRun();
  if (reading.kind != Reading::Kind::dump)
    return leaveOut(piece, reading.kind == Reading::Kind::foreign ? "for another instrument" : "no dump");
  const unsigned device = *reading.device;
  switch (reading.role) {
    case Role::header:
      begin(piece.source, piece.number, *reading.address);
      run_->isSure = true;
      run_->capture.devices = {device};
      run_->capture.pieces.emplace(*reading.address, std::move(piece));
      return;
    case Role::part:
      return takePart(std::move(piece), reading);
    case Role::footer:
      return takeFooter(std::move(piece), reading, std::ranges::any_of(ended, [&](const UnitReport& unit) {
                          return unit.state == UnitReport::State::complete && run_ &&
                                 unit.firstMessage == run_->firstMessage;
                        }));
    case Role::fileDump:
      if (!isWritableFileDump(*reading.address)) return leaveOut(piece, "no instrument stores it");
      if (reading.removes) return leaveOut(piece, "it would have what stands in its place removed");
      return addSingle(placeOf(*reading.address), source_, std::move(piece), device);
    case Role::trigger:
      endRun();
      triggers_.push_back(std::move(piece));
      return;
    case Role::alone:
      endRun();
      if (!isStoredAlone(*reading.address)) return leaveOut(piece, "no instrument stores it");
      return addSingle(*reading.address, source_, std::move(piece), device);
    case Role::emptyHeader:
    case Role::emptyFooter:
      return leaveOut(piece, "it would have a mixing voice removed");
    case Role::unknown:
      return leaveOut(piece, "no instrument stores it");
  }
}

// What it claims to be has been there. Only header and footer of one claim make it sure.
void Captures::takeBroken(const Reading& reading, std::size_t source, bool isOfRun) {
  const BulkAddress address = *reading.address;
  if (!isPlausible(reading)) {
    if (!isOfRun) ++unknown_;
    return;
  }
  switch (reading.role) {
    case Role::header:
      begin(source, message_, address);
      run_->capture.devices = {*reading.device};
      return;
    case Role::part:
      if (run_) return;
      begin(source, message_);
      run_->goesOn = isOfRun;
      return;
    case Role::footer:
      return claimFooter(address, source);
    case Role::fileDump:
      if (isWritableFileDump(address)) addSingle(placeOf(address), source, std::nullopt, *reading.device);
      return;
    case Role::alone:
      if (isStoredAlone(address)) addSingle(address, source, std::nullopt, *reading.device);
      return;
    default:
      return;
  }
}

void Captures::begin(std::size_t source, std::uint64_t number) {
  endRun();
  run_ = Run();
  run_->firstMessage = number;
  run_->capture.source = source;
}

void Captures::begin(std::size_t source, std::uint64_t number, BulkAddress header) {
  begin(source, number);
  run_->unit.emplace(header, number);
  run_->capture.address = header;
}

void Captures::takePart(Piece piece, const Reading& reading) {
  const BulkAddress address = *reading.address;
  const bool isAdmitted =
      run_ && (run_->unit ? run_->unit->arrive(address)
                          : run_->capture.pieces.empty() ||
                                BDA::listOf(run_->capture.pieces.begin()->first.hi) == BDA::listOf(address.hi));
  if (!isAdmitted) begin(piece.source, piece.number);
  put(std::move(piece), address, *reading.device);
}

// Blocks that come again with other data are those of another time: what came before has lost its footer, and they
// their header. What came of the unit since they began to come again is one sound, all before is not.
void Captures::put(Piece piece, BulkAddress address, unsigned device) {
  Pieces& pieces = run_->capture.pieces;
  const auto before = pieces.find(address);
  const bool comesAgain = before != pieces.end();
  if (comesAgain && (!run_->isRepeating || run_->pass.contains(address))) run_->pass.clear();
  run_->isRepeating = comesAgain;
  run_->pass.insert(address);
  if (comesAgain && !carrySame(before->second, piece))
    std::erase_if(pieces, [&](const Pieces::value_type& one) {
      return one.first.hi != BDA::kHeaderHi && !run_->pass.contains(one.first);
    });
  run_->capture.devices.insert(device);
  pieces.insert_or_assign(address, std::move(piece));
}

void Captures::takeFooter(Piece piece, const Reading& reading, bool isComplete) {
  const BulkAddress header = headerOf(*reading.address);
  if (run_ && !run_->unit) {
    OpenUnit unit(header, run_->firstMessage);
    const bool isItsOwn = std::ranges::all_of(run_->capture.pieces,
                                              [&](const Pieces::value_type& one) { return unit.arrive(one.first); });
    if (isItsOwn) {
      run_->unit = unit;
      run_->capture.address = header;
    }
  }
  const bool closes = run_ && run_->unit && run_->capture.address == header;
  if (run_ && run_->unit && !closes) claimFooter(*reading.address, piece.source);
  if (!closes) begin(piece.source, piece.number, header);
  run_->isSure = true;
  run_->capture.devices.insert(*reading.device);
  Pieces& pieces = run_->capture.pieces;
  pieces.insert_or_assign(*reading.address, std::move(piece));
  run_->capture.isWhole = isComplete && pieces.size() == blocksOf(header, pieces).size();
  endRun();
}

// A footer that is broken, or of another unit than the open one: then nothing says which of the two a block is of.
void Captures::claimFooter(BulkAddress footer, std::size_t source) {
  const BulkAddress header = headerOf(footer);
  if (run_ && run_->unit && !(run_->capture.address == header)) {
    Capture blocks{{}, source, std::exchange(run_->capture.pieces, {}), false, run_->capture.devices};
    if (auto own = blocks.pieces.extract(run_->capture.address); !own.empty())
      run_->capture.pieces.insert(std::move(own));
    if (!blocks.pieces.empty()) {
      blocks.address = blocks.pieces.begin()->first;
      orphans_.push_back(std::move(blocks));
    }
  }
  const bool isKnown = run_ && run_->unit && run_->capture.address == header;
  endRun();
  if (!isKnown) captures_.push_back({header, source, {}, false});
}

void Captures::addSingle(BulkAddress address, std::size_t source, std::optional<Piece> piece, unsigned device) {
  Capture single{address, source, {}, piece.has_value(), {device}};
  if (piece) single.pieces.emplace(address, std::move(*piece));
  captures_.push_back(std::move(single));
}

void Captures::leaveOut(const Piece& piece, const char* why) {
  leftOut_.push_back({{piece.source, piece.number, piece.offset, {}, std::nullopt}, why});
}

void Captures::endRun() {
  if (!run_) return;
  Capture capture = std::move(run_->capture);
  const bool isKnown = run_->unit.has_value();
  const bool isSure = run_->isSure;
  const bool goesOn = run_->goesOn;
  run_.reset();
  if (isKnown && isSure) return captures_.push_back(std::move(capture));
  if (isKnown) captures_.push_back({capture.address, capture.source, {}, false});
  if (!capture.pieces.empty()) {
    capture.address = capture.pieces.begin()->first;
    orphans_.push_back(std::move(capture));
  } else if (!isKnown && !goesOn) {
    ++unknown_;
  }
}

}  // namespace Editor
