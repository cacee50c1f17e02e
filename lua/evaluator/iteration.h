#pragma once

#include "lua/value/iterator_state.h"

namespace tarvel::lua::internal {

// Advances an iterator: writes the next item's values, shared, into `count` consecutive slots that
// own nothing yet, nil where the item has fewer, and returns true. False at the end, which leaves
// the slots unchanged.
bool nextIteratorItem(IteratorState& state, Value* slots, std::uint32_t count) noexcept;

}  // namespace tarvel::lua::internal
