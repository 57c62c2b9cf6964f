// Arbitrary bytes through the packing of file dumps, from and to buffers of exactly their size: both directions do what
// the plain form does, packed bytes are of seven bits, and what was packed comes back.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "FileDumpCodec.h"
#include "require.h"
#include "support/PlainFileDumpCodec.h"

namespace {

namespace Codec = BDA::FileDumpCodec;
namespace Plain = Testing::Plain;

using Bytes = std::vector<std::uint8_t>;
using Packing = bool (*)(std::span<const std::uint8_t> from, std::uint8_t* to);

Bytes run(Packing packing, const Bytes& source, std::size_t size) {
  const std::unique_ptr<std::uint8_t[]> from(new std::uint8_t[source.size()]);
  std::copy(source.begin(), source.end(), from.get());
  const std::unique_ptr<std::uint8_t[]> to(new std::uint8_t[size]);
  require(packing({from.get(), source.size()}, to.get()), "a group step failed");
  return Bytes(to.get(), to.get() + size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes source(data, data + size);
  const Bytes packed = run(Codec::encode, source, Codec::packedSize(size));
  require(packed == Plain::encode(source), "packed otherwise than the plain form");
  require(std::all_of(packed.begin(), packed.end(), [](unsigned byte) { return byte < 0x80; }), "not of seven bits");
  require(run(Codec::decode, packed, Codec::unpackedSize(packed.size())) == source,
          "what was packed does not come back");

  const Plain::Unpacked unpacked = Plain::decode(source);
  Bytes groups = source;
  if (!unpacked.isWhole) groups.pop_back();
  require(run(Codec::decode, groups, Codec::unpackedSize(groups.size())) == unpacked.bytes,
          "unpacked otherwise than the plain form");
  return 0;
}
