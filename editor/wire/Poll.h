#pragma once

#include <poll.h>

#include <optional>
#include <span>

#include "wire/WireTime.h"

namespace Editor {

// As poll() does, until that time of the machine or without end.
int pollUntil(std::span<pollfd> watched, std::optional<WireTime> until);

}  // namespace Editor
