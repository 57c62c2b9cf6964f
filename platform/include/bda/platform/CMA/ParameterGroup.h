#pragma once

#include <cstddef>
#include <cstdint>

#include "bda/Export.h"

namespace CMA {

// How large a group has to be for all that the module asks of it: its parameters are those of index 0 to `count` - 1,
// all of them `bits` wide.
struct GroupSize {
  std::size_t count;  // how many parameters
  int bits = 8;       // how wide each is: 8 or 16
};

// One parameter node of a model: a run of parameters addressed by index. A parameter is one byte or 16 bits wide; the
// caller knows which. Owned by its model, used on the thread that handles bulk messages.
class BDA_PLATFORM_API ParameterGroup {
 public:
  virtual ~ParameterGroup();

  // Gives parameter `index`. False, with `*value` untouched, when the group has no such parameter, or its value does
  // not fit: callers ask for 16 bits where a parameter has them.
  virtual bool get(std::uint8_t* value, std::uint16_t index) const = 0;
  virtual bool get(std::uint16_t* value, std::uint16_t index) const = 0;

  // Makes `*value` parameter `index`, in the parameter's own width. False, with nothing changed, when the group has no
  // such parameter; callers go on all the same. `flag` 1 tells the model's listeners of the change, 0 does not.
  virtual bool set(const std::uint8_t* value, std::uint16_t index, int flag) = 0;
  virtual bool set(const std::uint16_t* value, std::uint16_t index, int flag) = 0;
};

}  // namespace CMA
