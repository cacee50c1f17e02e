#pragma once

#include <cstdint>

#include "lua/value/value.h"

// How a statement ended. Statements hand their completion back in the two registers of a Value: a
// tag below the completion tags is `return` of that one value, which the completion owns; the
// others are made here. `return` and `break` leave loops and blocks this way and are never
// exceptions. A failure may travel either way.

namespace tarvel::lua::internal {

inline Value normalCompletion() noexcept { return Value::ofTag(kNormalCompletion); }

inline bool isNormal(Value completion) noexcept { return completion.tag == kNormalCompletion; }

// A `break` on its way to the innermost loop.
struct BreakSignal {
  static Value completion() noexcept { return Value::ofTag(kBreakCompletion); }
  static bool is(Value completion) noexcept { return completion.tag == kBreakCompletion; }
};

// A `return` of none or several values on its way to the call; `return` of one value is that value.
struct ReturnSignal {
  static Value noValues() noexcept { return Value::ofTag(kNoValuesCompletion); }

  // The values stand in consecutive slots of the value stack, which own them until the call moves
  // them to where its frame started.
  static Value severalValues(Value* first, std::uint32_t count) noexcept {
    Value completion =
        Value::ofTag(kSeveralValuesCompletion | static_cast<std::uint64_t>(count) << 32);
    completion.values = first;
    return completion;
  }

  static bool isSeveral(Value completion) noexcept {
    return static_cast<std::uint32_t>(completion.tag) == kSeveralValuesCompletion;
  }
  static std::uint32_t count(Value completion) noexcept {
    return static_cast<std::uint32_t>(completion.tag >> 32);
  }
};

// A failure of the script on its way to the pcall or the run that it ends; what it is stands in the
// interpreter's PendingFailure. Statements and calls hand it on and release nothing, as if it were
// an exception. Where it comes to an expression that needs a value, it becomes one.
inline Value failedCompletion() noexcept { return Value::ofTag(kFailedCompletion); }
inline bool isFailed(Value completion) noexcept { return completion.tag == kFailedCompletion; }

// The two that a block has to look at before it releases its locals: one comparison of the tag.
inline bool isFailedOrSeveral(Value completion) noexcept {
  return completion.tag >= kFailedCompletion;
}

// One value, owned, as opposed to any of the above.
inline bool isSingleValue(Value completion) noexcept { return completion.tag < kNormalCompletion; }

}  // namespace tarvel::lua::internal
