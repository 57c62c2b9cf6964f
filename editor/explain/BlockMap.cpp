#include "explain/BlockMap.h"

#include <unordered_map>

#include "AddressRows.h"
#include "BlockLayouts.h"

namespace Editor {

namespace {

using BDA::Routine;
using BDA::Row;

constexpr std::uint8_t kSevenBits = 0x7F;
constexpr std::uint8_t kLowNibble = 0x0F;

// Which part of its parameter's value the bits of byte `n` of a step are.
const char* partOf(Routine routine, unsigned n) {
  switch (routine) {
    case Routine::setByteParam:
      return "the value";
    case Routine::setWideByteParam:
      return "the value, of a parameter of 16 bits";
    case Routine::setPairParam:
      return n == 0 ? "bits 13-7" : "bits 6-0";
    case Routine::setSplitByteParam:
      return n == 0 ? "bit 7" : "bits 6-0";
    case Routine::setNibbleSplitParam:
      return n == 0 ? "bits 7-4" : "bits 6-0";
    case Routine::setNibbleParams:
      return n == 0 ? "the value, in the low nibble" : "the value, in the high nibble";
    case Routine::setLowNibble:
      return "the value, in the low nibble";
    case Routine::setBitParam:
      return "a switch: 1 when the bit is set";
    case Routine::setNibbleWord: {
      constexpr const char* kNibbles[] = {"bits 15-12", "bits 11-8", "bits 7-4", "bits 3-0"};
      return kNibbles[n];
    }
    case Routine::setNameParam:
      return "a character";
    case Routine::setSharedByteParam:
      return "the value, when received: the byte is sent for another parameter";
    case Routine::setSplitByteHigh:
      return "bit 7, bits 6-0 do not travel";
    case Routine::dumpByteParam:
      return "the value, received with its neighbours as the editor corrects them together";
  }
  return "?";
}

BDA::BlockModels blockModels(ModelSet& set) {
  const auto pointer = [](auto& slot) { return slot ? &*slot : nullptr; };
  return {pointer(set.voice),  pointer(set.multi),  pointer(set.arpeggio),
          pointer(set.master), pointer(set.remote), pointer(set.system)};
}

}  // namespace

// Goes through the rows of a layout and puts what they carry to the bytes.
class BlockMap::Builder {
 public:
  Builder(const BDA::BoundLayout& layout, const std::vector<ModelField>& fields) : layout_(layout), fields_(fields) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (fields[i].group != nullptr) places_[static_cast<const CMA::ParameterGroup*>(fields[i].group)] = i;
      if (fields[i].name != nullptr) places_[static_cast<const ModelSrv::ModelPart*>(fields[i].name)] = i;
    }
    map.bytes_.resize(layout.length);
    for (const Row& row : layout.rows) add(row);
  }

  BlockMap map;

 private:
  void add(const Row& row) {
    switch (row.routine) {
      case Routine::setNameParam:
        return addName(row);
      case Routine::setNibbleParams:
        put(row.byte, kLowNibble, placeOf(row.slot), row.index, partOf(row.routine, 0));
        put(row.byte, kSevenBits & ~kLowNibble, placeOf(row.slot2), row.index2, partOf(row.routine, 1));
        return;
      case Routine::dumpByteParam:
        return addCorrected(row);
      default:
        break;
    }
    const auto bytes = unsigned(BDA::bytesPerStep(row.routine));
    for (unsigned step = 0; step < row.count; ++step)
      for (unsigned n = 0; n < bytes; ++n)
        put(row.byte + step * bytes + n, BDA::claimedBits(row, int(n)) & kSevenBits, placeOf(row.slot),
            row.index + step, partOf(row.routine, n));
  }

  void addName(const Row& row) {
    const std::size_t place = places_.at(static_cast<const ModelSrv::ModelPart*>(layout_.names[row.slot]));
    for (unsigned n = 0; n < row.count; ++n)
      map.bytes_[row.byte + n].push_back({fields_[place].path, kSevenBits,
                                          std::string(partOf(row.routine, n)) + ": number " + std::to_string(n + 1),
                                          place, 0});
  }

  // Any of the bytes can make the editor take, change or leave all of the parameters.
  void addCorrected(const Row& row) {
    for (unsigned n = 0; n < row.count; ++n)
      for (unsigned other = 0; other < row.count; ++other)
        put(row.byte + n, kSevenBits, placeOf(row.slot), row.index + other, partOf(row.routine, n));
  }

  std::size_t placeOf(unsigned slot) const {
    return places_.at(static_cast<const CMA::ParameterGroup*>(layout_.groups[slot]));
  }
  void put(std::size_t byte, unsigned bits, std::size_t place, std::size_t index, const char* how) {
    map.bytes_[byte].push_back({parameterPath(fields_[place], index), std::uint8_t(bits), how, place, index});
  }

  const BDA::BoundLayout& layout_;
  const std::vector<ModelField>& fields_;
  std::unordered_map<const void*, std::size_t> places_;
};

std::optional<BlockMap> BlockMap::of(BulkAddress block) {
  const std::optional<BlockFacts> facts = findBlock(block);
  if (!facts) return std::nullopt;
  ModelSet models = modelsAround(block);
  const std::optional<BDA::BoundLayout> layout = BDA::layoutOf(facts->type, facts->running, blockModels(models));
  if (!layout) return std::nullopt;
  return Builder(*layout, fieldsOf(models)).map;
}

std::uint8_t BlockMap::unusedBits(std::size_t dataByte) const {
  unsigned used = 0;
  for (const Carried& carried : bytes_[dataByte]) used |= carried.bits;
  return std::uint8_t(kSevenBits & ~used);
}

ModelSet modelsAround(BulkAddress block) {
  const std::size_t list = BDA::listOf(block.hi);
  ModelSet models;
  if (list == std::size_t(BDA::List::system)) models.system.emplace();
  for (unsigned type = 1; list != BDA::kListCount && type <= kHeaderTypes; ++type)
    if (BDA::listBetween(type) == list) return emptySetFor(type);
  return models;
}

ParameterValue valueIn(const std::vector<ModelField>& fields, const BlockMap::Carried& carried) {
  const ModelField& field = fields[carried.field];
  if (field.name != nullptr) return field.name->text();
  return std::int64_t(field.group->values()[carried.index]);
}

}  // namespace Editor
