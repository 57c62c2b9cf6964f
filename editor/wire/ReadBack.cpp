#include "wire/ReadBack.h"

#include <algorithm>
#include <set>
#include <utility>

#include "AddressRows.h"
#include "BulkMessage.h"
#include "explain/BlockMap.h"
#include "messages/Messages.h"

namespace Editor {

namespace {

using Data = std::span<const std::uint8_t>;

Data dataOf(const std::vector<std::uint8_t>& dump) {
  return Data(dump).subspan(BDA::kDataAt, dump.size() - BDA::kDumpFrame);
}

// What fits the part of a multi.
std::string kindOf(const ReadBack::Messages& unit) {
  const bool isDrum = std::ranges::any_of(unit, [](const auto& dump) {
    return BDA::List(BDA::listOf(readMessage(dump).address->hi)) == BDA::List::drumVoice;
  });
  return isDrum ? "drum voice" : "normal voice";
}

}  // namespace

std::vector<ReadBackDifference> ReadBack::compare(const Messages& sent, const Messages& read) {
  differences_.clear();
  for (const std::vector<std::uint8_t>& dump : sent) {
    const Reading reading = readMessage(dump);
    const auto answer = std::ranges::find_if(
        read, [&](const std::vector<std::uint8_t>& one) { return readMessage(one).address == reading.address; });
    if (answer == read.end()) {
      if (&dump == &sent.front())
        differences_.push_back({*reading.address, 0, std::nullopt, std::monostate(), std::monostate(), true});
      else  // the header of a part's voice begins either kind
        differences_.push_back(
            {*readMessage(sent.front()).address, 0, std::nullopt, kindOf(sent), kindOf(read), false});
      break;
    }
    if (std::ranges::equal(dataOf(dump), dataOf(*answer))) continue;
    if (reading.role == Role::fileDump)
      compareFileDumps(*reading.address, dump, *answer);
    else
      compareBlocks(*reading.address, dataOf(dump), dataOf(*answer));
  }
  return std::exchange(differences_, {});
}

void ReadBack::compareBlocks(BulkAddress block, Data sent, Data read) {
  const std::optional<BlockMap> map = BlockMap::of(block);
  if (!map || map->size() != sent.size() || map->size() != read.size()) return compareBytes(block, sent, read);
  const ModelSet sentModels = receiver_.receive(block, sent);
  const ModelSet readModels = receiver_.receive(block, read);
  const std::vector<ModelField> sentFields = fieldsOf(sentModels);
  const std::vector<ModelField> readFields = fieldsOf(readModels);
  std::set<std::string> seen;
  for (std::size_t byte = 0; byte < map->size(); ++byte)
    for (const BlockMap::Carried& carried : map->at(byte)) {
      if (!seen.insert(carried.path).second) continue;
      ParameterValue was = valueIn(sentFields, carried);
      ParameterValue is = valueIn(readFields, carried);
      if (was != is) differences_.push_back({block, byte, carried.path, std::move(was), std::move(is), false});
    }
}

void ReadBack::compareFileDumps(BulkAddress address, Data sent, Data read) {
  constexpr std::size_t kNameAt = 2;  // behind its length
  FileDumpParts was = partsOfFileDump(sent);
  FileDumpParts is = partsOfFileDump(read);
  if (was.name != is.name)
    differences_.push_back({address, kNameAt, "name", std::move(was.name), std::move(is.name), false});
  compareBytes(address, was.content, is.content);
}

void ReadBack::compareBytes(BulkAddress address, Data sent, Data read) {
  const auto at = [](Data data, std::size_t byte) {
    return byte < data.size() ? ParameterValue(std::int64_t(data[byte])) : ParameterValue(std::monostate());
  };
  for (std::size_t byte = 0; byte < std::max(sent.size(), read.size()); ++byte)
    if (at(sent, byte) != at(read, byte))
      differences_.push_back({address, byte, std::nullopt, at(sent, byte), at(read, byte), false});
}

}  // namespace Editor
