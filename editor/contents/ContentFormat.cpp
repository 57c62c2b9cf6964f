#include "contents/ContentFormat.h"

#include <algorithm>
#include <array>

namespace Editor {
namespace {

constexpr std::array<std::uint8_t, 4> kMagic{'B', 'D', 'A', 'C'};
constexpr std::uint8_t kVersion = 1;
constexpr std::size_t kHeaderSize = kMagic.size() + 2;  // and version, shape

// Which models follow, one bit each.
std::uint8_t shapeOf(const ModelSet& models) {
  const std::array<bool, 8> bits{models.voice && !models.voice->isDrum(),
                                 models.voice && models.voice->isDrum(),
                                 models.multi.has_value(),
                                 models.arpeggio.has_value(),
                                 models.master.has_value(),
                                 models.remote.has_value(),
                                 models.system.has_value(),
                                 models.additional.has_value()};
  unsigned shape = 0;
  for (std::size_t i = 0; i < bits.size(); ++i) shape |= unsigned(bits[i]) << i;
  return std::uint8_t(shape);
}

// Nodes stand one after the other; how many there are, the shape says.
struct NodeVisitor {
  template <typename Visit>
  void list(const char* /*key*/, std::size_t count, Visit visit) {
    for (std::size_t i = 0; i < count; ++i) visit(i);
  }
};

struct Sizer : NodeVisitor {
  std::size_t size = kHeaderSize;

  void group(const char* /*key*/, const ArrayGroup& group) {
    size += group.values().size() * (group.width() == Width::byte ? 1 : 2);
  }
  void name(const char* /*key*/, const NameText& name) { size += 1 + name.capacity(); }
};

struct Writer : NodeVisitor {
  std::vector<std::uint8_t> bytes;

  void group(const char* /*key*/, const ArrayGroup& group) {
    for (const std::uint16_t value : group.values()) {
      if (group.width() == Width::word) bytes.push_back(std::uint8_t(value >> 8));
      bytes.push_back(std::uint8_t(value));
    }
  }
  void name(const char* /*key*/, const NameText& name) {
    bytes.push_back(std::uint8_t(name.text().size()));
    bytes.insert(bytes.end(), name.text().begin(), name.text().end());
    bytes.resize(bytes.size() + name.capacity() - name.text().size());
  }
};

// There are as many bytes as it will read.
struct Reader : NodeVisitor {
  std::span<const std::uint8_t> rest;
  bool good = true;

  std::span<const std::uint8_t> take(std::size_t count) {
    const auto taken = rest.first(count);
    rest = rest.subspan(count);
    return taken;
  }
  void group(const char* /*key*/, ArrayGroup& group) {
    std::vector<std::uint16_t> values(group.values().size());
    for (std::uint16_t& value : values) {
      const auto bytes = take(group.width() == Width::byte ? 1 : 2);
      value = std::uint16_t(bytes.size() == 1 ? bytes[0] : bytes[0] << 8 | bytes[1]);
    }
    good = group.assign(values) && good;
  }
  void name(const char* /*key*/, NameText& name) {
    const std::size_t length = take(1)[0];
    const auto field = take(name.capacity());
    good =
        good && length <= field.size() &&
        std::all_of(field.begin() + std::ptrdiff_t(length), field.end(), [](std::uint8_t byte) { return byte == 0; }) &&
        name.assign({reinterpret_cast<const char*>(field.data()), length});
  }
};

template <typename Visitor, typename Set>
Visitor& visitAll(Set& models, Visitor& visitor) {
  forEachModel(models, [&](const char* /*key*/, auto& model) { visitFields(model, visitor); });
  return visitor;
}

std::size_t sizeOf(const ModelSet& models) {
  Sizer sizer;
  return visitAll(models, sizer).size;
}

}  // namespace

std::vector<std::uint8_t> encodeContent(const ModelSet& models) {
  Writer writer;
  writer.bytes.reserve(sizeOf(models));
  writer.bytes.assign(kMagic.begin(), kMagic.end());
  writer.bytes.push_back(kVersion);
  writer.bytes.push_back(shapeOf(models));
  return std::move(visitAll(models, writer).bytes);
}

bool isContentFormat(std::span<const std::uint8_t> bytes) {
  return bytes.size() >= kMagic.size() && std::equal(kMagic.begin(), kMagic.end(), bytes.begin());
}

std::optional<std::string> decodeContent(std::span<const std::uint8_t> bytes, ModelSet& models) {
  if (!isContentFormat(bytes)) return "its bytes are not in this editor's format";
  if (bytes.size() < kHeaderSize) return "it ends inside its header";
  const std::uint8_t version = bytes[kMagic.size()];
  if (version != kVersion) return "it has version " + std::to_string(version) + " of the format, which is not known";
  const std::uint8_t shape = bytes[kMagic.size() + 1];
  if (shape == 0 || shape != shapeOf(models)) return "it holds models of another kind";
  if (const std::size_t size = sizeOf(models); bytes.size() != size)
    return "it has " + std::to_string(bytes.size()) + " bytes instead of " + std::to_string(size);
  ModelSet read = models;
  Reader reader;
  reader.rest = bytes.subspan(kHeaderSize);
  if (!visitAll(read, reader).good) return "a name in it is broken";
  models = std::move(read);
  return std::nullopt;
}

}  // namespace Editor
