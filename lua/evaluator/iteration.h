#pragma once

#include "lua/value/iterator_state.h"
#include "lua/value/multi_value.h"

namespace tarvel::lua::internal {

// Advances an iterator: writes the next item's values to `out`, sharing them, and returns true;
// false at the end, which leaves `out` unchanged. A null state is at its end.
bool nextIteratorItem(IteratorState* state, MultiValue& out);

// As nextIteratorItem, into `count` consecutive slots that own nothing yet; nil where the item has
// fewer values.
bool nextIteratorItem(IteratorState& state, Value* slots, std::uint32_t count) noexcept;

}  // namespace tarvel::lua::internal
