#pragma once

#include <cstddef>

#include "bda/Export.h"

// Parts of models that are no parameters: names.
namespace ModelSrv {

// The whole part, not one of its elements.
inline constexpr int ModelPartIndex_All = -1;

// A part of a model that holds one text: the name of a voice, of a performance, of a quick setup. Characters are bytes,
// ISO 8859-1. Bulk dumps carry them as they are, so one above 7F makes a dump that no cable can carry.
class BDA_PLATFORM_API ModelPart {
 public:
  virtual ~ModelPart();

  // Makes `text`, a terminated string, the part's value. `index` is ModelPartIndex_All. What is longer than the part
  // can hold is cut. Called on the thread that handles bulk messages.
  virtual void setToServer(const char* text, int index) = 0;

  // Copies at most `capacity` characters of the value to `buffer`, which the caller has filled with zeros; a text as
  // long as `capacity` or longer arrives without a terminator.
  virtual void getFromServer(char* buffer, std::size_t capacity) const = 0;
};

}  // namespace ModelSrv
