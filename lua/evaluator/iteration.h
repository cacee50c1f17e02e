#pragma once

#include "lua/value/iterator_state.h"

namespace tarvel::lua::internal {

// Advances an iterator: writes the next item's values, shared, into `count` consecutive slots that
// own nothing yet, nil where the item has fewer, and returns true. False at the end, which leaves
// the slots unchanged. The step of a gmatch may fail, at `site` where the failure has a place; what
// it has written by then is owned by the slots.
bool nextIteratorItem(LuaVM::Impl& interpreter, IteratorState& state, Value* slots,
                      std::uint32_t count, Site site);

}  // namespace tarvel::lua::internal
