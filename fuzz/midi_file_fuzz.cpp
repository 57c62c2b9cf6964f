// Arbitrary files into the reader of .syx and Standard MIDI Files: what it gives are messages that a cable could carry,
// found inside the file, and of a raw stream no byte is lost or counted twice.

#include <cstddef>
#include <cstdint>
#include <span>

#include "midi/Hex.h"
#include "midi/MidiFile.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  const Editor::MidiFile file = Editor::readMidiFile(bytes);

  std::uint64_t accounted = 0;
  for (const Editor::MidiFile::Message& message : file.messages) {
    require(Editor::isSevenBit(message.bytes), "a message is not F0, data bytes, F7");
    require(message.offset < size, "a message begins after the end of the file");
    require(Editor::parseHex(Editor::formatHex(message.bytes)).has_value(), "a message cannot be printed and read");
    accounted += message.bytes.size();
  }
  for (const Editor::MidiFile::Dropped& dropped : file.dropped) {
    require(dropped.count > 0, "nothing was dropped, but told");
    require(dropped.offset < size, "bytes were dropped after the end of the file");
    accounted += dropped.count;
  }
  for (const Editor::MidiFile::Error& error : file.errors) {
    require(error.offset <= size, "an error lies after the end of the file");
    require(!error.text.empty(), "an error says nothing");
  }
  require(accounted <= size, "more bytes were read than there are");
  if (!file.standard) {
    require(accounted == size, "bytes of a raw stream were lost");
    require(file.errors.empty(), "a raw stream cannot be built wrongly");
  }
  return 0;
}
