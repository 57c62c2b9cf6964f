#pragma once

// program/bda.ksy: all messages and the layouts in Kaitai Struct, for programs.

#include <array>
#include <cctype>
#include <map>
#include <string>
#include <vector>

#include "BulkMessage.h"
#include "FileDumpCodec.h"
#include "LayoutSections.h"
#include "bda/platform/CMA/VoiceBanks.h"

namespace BDA::LayoutListing {

// What stands around the layouts. A word in @ is replaced.
inline constexpr const char* kKsyHead =
    R"(# Written from the tables that the module converts by, as docs/layouts.md is; a test compares them.
meta:
  id: bda
  title: System Exclusive bulk dumps and requests of the instrument
  file-extension: syx
  license: MIT
  ks-version: 0.9
  endian: be
  bit-endian: be
doc: |
  A file of MIDI bytes: messages from F0 to F7, and whatever stands between them.

  Each parameter of a block is an instance, whose value is that of `bda show --json`; `-orig-id` is its path there. An i
  in a path is the parameter i of the type, which counts the blocks of that layout. A message that does not fit its own
  byte count and one of somebody else are opaque, and so is the data of a block that has another length.
seq:
  - id: pieces
    type: piece
    repeat: eos
types:
  piece:
    seq:
      - id: loose
        terminator: @start@
        consume: false
        eos-error: false
        doc: Bytes of no message.
      - id: message
        type: message
        terminator: @end@
        eos-error: false
        if: not _io.eof
  message:
    seq:
      - id: start
        contents: [@start@]
      - id: body
        size-eos: true
        type:
          switch-on: kind
          cases:
            @dump@: dump
            @request@: request
    instances:
      bytes:
        pos: 0
        size-eos: true
      is_ours:
        value: >-
          _io.size >= @shortest@ and bytes[1] == @maker@ and
          (bytes[3] == @model1@ and bytes[4] == @model2@ or bytes[4] == @other_model2@)
      is_dump:
        value: >-
          is_ours and bytes[2] >> 4 == @dump@ and _io.size >= @frame@ and
          _io.size - @frame@ == (bytes[@count_at@] << 7 | bytes[@count_low_at@])
      is_request:
        value: is_ours and bytes[2] >> 4 == @request@ and _io.size == @shortest@
      kind:
        value: 'is_dump ? @dump@ : is_request ? @request@ : -1'
        doc: The type of a dump or a request.
  head:
    seq:
      - id: maker
        type: u1
      - id: type
        type: b4
      - id: device
        type: b4
        doc: The device number, from 0.
      - id: model
        type: u2
  address:
    seq:
      - id: high
        type: u1
      - id: middle
        type: u1
      - id: low
        type: u1
  seven_bit_pair:
    seq:
      - id: high
        type: u1
      - id: low
        type: u1
    instances:
      value:
        value: high << 7 | low
  request:
    seq:
      - id: head
        type: head
      - id: address
        type: address
  dump:
    seq:
      - id: head
        type: head
      - id: byte_count
        type: seven_bit_pair
      - id: address
        type: address
      - id: data
        size: byte_count.value
        doc: |
          A header (@header@), the footer with the same other two bytes (@footer@) and a trigger that has
          file dumps written (@trigger@) have none.
        type:
          switch-on: address.high
          cases:
@lists@      - id: checksum
        type: u1
    instances:
      sums:
        pos: @count_in_body@
        type: 'running_sum(_index == 0 ? 0 : sums[_index - 1].value)'
        repeat: expr
        repeat-expr: 5 + byte_count.value
        doc: From the byte count to the last of the data.
      expected_checksum:
        value: (0x80 - sums[4 + byte_count.value].value % 0x80) % 0x80
  running_sum:
    params:
      - id: before
        type: u4
    seq:
      - id: byte
        type: u1
    instances:
      value:
        value: before + byte
  file_dump:
    doc: A content, or without one of its bytes what has it removed.
    seq:
      - id: name
        type: packed
        if: _io.size >= 2
      - id: content
        type: packed
        if: _io.size - _io.pos >= 2
      - id: unused
        size-eos: true
  packed:
    seq:
      - id: byte_count
        type: seven_bit_pair
      - id: groups
        type: packed_groups
        size: 'byte_count.value < _io.size - _io.pos ? byte_count.value : _io.size - _io.pos'
  packed_groups:
    seq:
      - id: groups
        type: packed_group
        size: '_io.size - _io.pos < @packed_group@ ? _io.size - _io.pos : @packed_group@'
        repeat: eos
  packed_group:
    doc: Up to @group@ bytes behind one that has their top bits, the first one's in bit 6.
    seq:
      - id: top_bits
        type: u1
      - id: low_bits
        type: u1
        repeat: eos
    instances:
@unpacked@  names:
    doc: Of sixteen waveforms or arpeggios, or of all multis.
    seq:
      - id: names
        size: width
        type: str
        encoding: ISO-8859-1
        terminator: 0
        repeat: expr
        repeat-expr: _io.size / width
    instances:
      width:
        value: '_parent.address.middle == 0x30 ? 20 : 28'
  favourites:
    seq:
      - id: flags
        type: u1
        repeat: eos
  screen:
    seq:
      - id: head
        type: screen_head
        if: _parent.address.low == 0 and _io.size == 7
      - id: block
        type: screen_block
        if: _parent.address.low == 1 and _io.size > 2
  screen_head:
    seq:
      - id: block_count
        type: seven_bit_pair
      - id: width
        type: seven_bit_pair
      - id: height
        type: seven_bit_pair
      - id: zero
        type: u1
  screen_block:
    seq:
      - id: number
        type: seven_bit_pair
      - id: pixels
        size-eos: true
        doc: Row by row, from 0 for black to 127 for white.
  block:
    seq:
      - id: parameters
        size-eos: true
        type:
          switch-on: shape
          cases:
)";
inline constexpr const char* kKsyShape = R"(    instances:
      shape:
        value: '_parent.address.low == 0 ? _parent.address.high << 24 | _parent.address.middle << 16 | _io.size : -1'
        doc: The first two bytes of the address in the high half, the number of data bytes in the low one.
)";

inline std::string hex(unsigned byte) { return print("0x%02x", byte); }

// The types of data by the high byte of the address. Those that are not here have none, or nobody knows what.
inline std::string casesOfLists() {
  std::string text;
  for (const Route& route : kRoutes)
    for (unsigned hi = route.hi.first; hi <= route.hi.last; ++hi) {
      const char* type = "block";
      if (hi == kHeaderHi || hi == kFooterHi || hi == kTriggerHi) continue;
      if (hi == kFileDumpHi) type = "file_dump";
      if (route.list == List::editorName) type = "names";
      if (route.list == List::screenCap) type = "screen";
      if (route.list == List::favorite) type = "favourites";
      text += "            " + hex(hi) + ": " + type + "\n";
    }
  return text;
}

inline std::string unpackedBytes() {
  std::string text;
  for (unsigned i = 0; i < FileDumpCodec::kGroup; ++i)
    text +=
        print("      byte_%u:\n        value: low_bits[%u] | (top_bits & 0x%02x) << %u\n        if: _io.size > %u\n", i,
              i, 0x40U >> i, i + 1, i + 1);
  return text;
}

inline std::string ksyHead() {
  const std::map<std::string, std::string> words{
      {"start", hex(kStartOfExclusive)},
      {"end", hex(kEndOfExclusive)},
      {"maker", hex(kMakerId)},
      {"model1", hex(kModelId1)},
      {"model2", hex(kModelId2)},
      {"other_model2", hex(kOtherModelId2)},
      {"dump", std::to_string(kTypeDump >> 4)},
      {"request", std::to_string(kTypeRequest >> 4)},
      {"frame", std::to_string(kDumpFrame - 1)},  // the last byte is the terminator
      {"shortest", std::to_string(kRequestLength - 1)},
      {"count_at", std::to_string(kByteCountAt)},
      {"count_low_at", std::to_string(kByteCountAt + 1)},
      {"count_in_body", std::to_string(kByteCountAt - 1)},  // which F0 is no part of
      {"group", std::to_string(FileDumpCodec::kGroup)},
      {"packed_group", std::to_string(FileDumpCodec::kPackedGroup)},
      {"header", hex(kHeaderHi)},
      {"footer", hex(kFooterHi)},
      {"trigger", hex(kTriggerHi)},
      {"lists", casesOfLists()},
      {"unpacked", unpackedBytes()},
  };
  std::string text = kKsyHead;
  for (const auto& [word, value] : words)
    for (std::size_t at = 0; (at = text.find("@" + word + "@", at)) != std::string::npos; at += value.size())
      text.replace(at, word.size() + 2, value);
  return text;
}

// "voice.element[i].params[3]" -> "voice_element_params_3", "Drum key" -> "drum_key".
inline std::string idOf(const std::string& text) {
  std::string id;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (text.compare(i, 3, "[i]") == 0) {
      i += 2;
    } else if (std::isalnum(c) != 0) {
      if (std::isupper(c) != 0 && !id.empty() && std::islower(static_cast<unsigned char>(text[i - 1])) != 0) id += '_';
      id += char(std::tolower(c));
    } else if (c != ']' && c != '\'') {
      id += '_';
    }
  }
  return id;
}

// ---- The voice of a part -------------------------------------------------------------------------------------------

// How many voices a bank has, by its code.
inline unsigned voicesOf(std::size_t bank) {
  constexpr std::array<std::uint8_t, 16> kHeaderTypes{1, 1, 1, 1, 1, 1, 1, 1, 3, 3, 3, 5, 6, 2, 7, 10};
  for (const AddressRow& row : kHeaderRows)
    if (row.type == kHeaderTypes.at(bank)) return row.lo.size();
  return 0;
}

// Banks that differ in their second byte alone, which runs.
struct Banks {
  unsigned msb;
  unsigned first;
  unsigned last;
  unsigned voices;
};

inline std::vector<Banks> banks() {
  std::vector<Banks> all;
  for (std::size_t code = 0; code < std::size(CMA::voiceBankSelTable); ++code) {
    const auto& [msb, lsb] = CMA::voiceBankSelTable[code];
    if (!all.empty() && all.back().msb == msb && all.back().last + 1 == lsb && all.back().voices == voicesOf(code))
      all.back().last = lsb;
    else
      all.push_back({msb, lsb, lsb, voicesOf(code)});
  }
  all.push_back({0x3F, 0x32, 0x32, 128});  // no bank of voices, and received as one
  return all;
}

// Whether the three bytes from `byte` on select a voice that exists: otherwise the part keeps the one that it has.
inline std::string selectsVoice(unsigned byte) {
  std::string text;
  for (const Banks& bank : banks()) {
    if (!text.empty()) text += " or\n";
    text += print("          data[%u] == 0x%02x and ", byte, bank.msb);
    text += bank.first == bank.last
                ? print("data[%u] == 0x%02x", byte + 1, bank.first)
                : print("data[%u] >= 0x%02x and data[%u] <= 0x%02x", byte + 1, bank.first, byte + 1, bank.last);
    text += print(" and data[%u] < %u", byte + 2, bank.voices);
  }
  return "      selects_voice:\n        value: >-\n" + text +
         "\n        doc: Without one the part keeps the voice that it has.\n";
}

// ---- Parameters ----------------------------------------------------------------------------------------------------

// What the bytes from `at` on make of the parameter; of two that share a byte the first.
inline std::string valueOf(const Row& row, int at) {
  switch (row.routine) {
    case Routine::setByteParam:
    case Routine::setWideByteParam:
    case Routine::setSharedByteParam:
      return print("pos: %d, type: u1", at);
    case Routine::dumpByteParam:
      return print("pos: %d, type: u1, if: selects_voice", at);
    case Routine::setNameParam:
      return print("pos: %d, size: %u, type: str, encoding: ISO-8859-1, terminator: 0", at, unsigned{row.count});
    case Routine::setPairParam:
      return print("value: 'data[%d] << 7 | data[%d]'", at, at + 1);
    case Routine::setSplitByteParam:
      return print("value: '(data[%d] << 7 | data[%d]) & 0xff'", at, at + 1);
    case Routine::setSplitByteHigh:
      return print("value: 'data[%d] << 7 & 0xff'", at);
    case Routine::setNibbleSplitParam:
      return print("value: '(data[%d] << 4 | data[%d]) & 0xff'", at, at + 1);
    case Routine::setNibbleParams:
    case Routine::setLowNibble:
      return print("value: 'data[%d] & 0x0f'", at);
    case Routine::setBitParam:
      return print("value: '(data[%d] & 0x%02x) != 0 ? 1 : 0'", at, unsigned{row.mask});
    case Routine::setNibbleWord:
      return print(
          "value: '(data[%d] & 0x0f) << 12 | (data[%d] & 0x0f) << 8 | (data[%d] & 0x0f) << 4 | data[%d] & 0x0f'", at,
          at + 1, at + 2, at + 3);
  }
  return "?";
}

class KsyWriter {
 public:
  void begin(const Section& section) {
    const std::string type = idOf(section.title);
    const std::string& path = section.groups.front();
    const bool isOneOfMany = path.find("[i]") != std::string::npos;
    forEachAddressRow(section, [&](const AddressRow& row) {
      for (unsigned mid = row.mid.first; mid <= row.mid.last; ++mid)
        cases_ += print("            0x%02x%02x_%04x: %s%s\n", unsigned{row.hi}, mid, section.length, type.c_str(),
                        isOneOfMany ? print("(%u)", mid - row.mid.first).c_str() : "");
    });
    types_ += "  " + type + ":\n    doc: " + section.title + ".\n";
    if (isOneOfMany) types_ += "    params:\n      - id: i\n        type: u1\n        doc: Which of them, from 0.\n";
    types_ += "    seq:\n      - id: data\n        size: " + std::to_string(section.length) + "\n    instances:\n";
  }
  void row(const Section& section, const Row& row) {
    if (row.routine == Routine::dumpByteParam) types_ += selectsVoice(row.byte);
    if (isName(row)) return instance(valueOf(row, row.byte), section.names[row.slot]);
    for (int n = 0; n < row.count; ++n)
      instance(valueOf(row, row.byte + n * bytesPerStep(row.routine)),
               section.groups[row.slot] + "[" + std::to_string(row.index + n) + "]");
    if (row.routine == Routine::setNibbleParams)
      instance(print("value: 'data[%u] >> 4'", unsigned{row.byte}),
               section.groups[row.slot2] + "[" + std::to_string(row.index2) + "]");
  }
  void end(const Section& /*section*/) {}
  std::string text() const { return ksyHead() + cases_ + kKsyShape + types_; }

 private:
  void instance(const std::string& value, const std::string& path) {
    types_ += "      " + idOf(path) + ": {" + value + ", -orig-id: '" + path + "'}\n";
  }

  std::string cases_;
  std::string types_;
};

}  // namespace BDA::LayoutListing
