#pragma once

#include <cstddef>

#include "lua/value/heap.h"

namespace tarvel::lua {

// The script objects that are alive, of all interpreters of the process. Only checked builds count
// them.
inline std::size_t liveObjectCount() noexcept { return internal::Heap::liveBlocks(); }

}  // namespace tarvel::lua
