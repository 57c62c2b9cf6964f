// Arbitrary bytes at every end of a wire, cut into chunks of any sizes: the same messages and results as without cuts.
// The first byte of the input chooses when what arrives, and how it is cut.

#include "editor/wire/AnyCuts.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Editor::AnyCuts::Stream stream{{data + 1, data + size}, data[0]};
  for (const auto& [name, end] : Editor::AnyCuts::kEnds)
    require(end(stream, data[0]) == end(stream, std::nullopt), name);
  return 0;
}
