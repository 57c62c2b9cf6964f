#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "exchange/EmbeddedEditor.h"

namespace Editor {

// One thing in which two libraries differ.
struct Difference {
  enum class Kind : std::uint8_t {
    onlyInFirst,
    onlyInSecond,
    renamed,  // nothing but the name of a content differs
    different,
  };

  std::string target;  // readable: a content, an edit buffer, "system", "additional", "settings"
  Kind kind = Kind::different;
  bool isContent = false;       // false too for the favourite flag of a place where both hold nothing
  std::string name;             // of a content that only one has
  Library::Flag favourite = 0;  // of a content that only one has
  // Of the place that is empty then, where that is another one; 0 too where it is the same.
  Library::Flag emptyFavourite = 0;
  // The name of a content that both have: in the library's list ("name") and inside its models ("voice.name"); one
  // entry, the models', where both say the same.
  std::vector<ParameterDifference> names;
  // Everything else: parameters by their paths, "favourite" for the flag, a damaged one without a value, "bytes" for
  // opaque contents; "damaged" (1 or 0) in place of all but the flag where what stands on either side is damaged, for
  // nobody knows then what it held.
  std::vector<ParameterDifference> parameters;
};

// It is not known whether that differs.
bool isDamagedInBoth(const ParameterDifference& found);

// How two libraries compare: each content that one of them holds counts once.
struct Comparison {
  std::uint64_t equal = 0;
  std::uint64_t different = 0;
  std::uint64_t onlyInFirst = 0;
  std::uint64_t onlyInSecond = 0;
  std::uint64_t renamed = 0;
  std::uint64_t others = 0;  // differences that are of no content

  bool isEqual() const { return different + onlyInFirst + onlyInSecond + renamed + others == 0; }
};

// Whether it counts how a library listens to messages: receive-bulk, the device number and the greatest number of
// mixing voices. No message carries that.
enum class Reception : std::uint8_t { compared, ignored };

// Calls `visit` for each difference when it is found, so that it takes no more memory than two contents do: contents by
// type and number with their favourite flags, then edit buffers, system and settings. Contents in our format are
// compared by parameter, others byte for byte; an edit buffer that was never stored is as new. What is damaged is equal
// to nothing. The live models are taken as the editors have them. Throws LibraryError.
Comparison compareLibraries(EmbeddedEditor& first, EmbeddedEditor& second, Reception reception,
                            const std::function<void(const Difference&)>& visit);

}  // namespace Editor
